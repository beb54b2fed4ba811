// SPDX-License-Identifier: MIT
// What the program asks of its surroundings: prompts, windows, time. A toolkit skin, the text
// console and the tests each give their own.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "core/local_time.h"
#include "core/panels.h"

namespace qk {

enum class Icon { None, Information, Question, Exclamation, Critical };
enum class Buttons { Ok, OkCancel, YesNo, RetryCancel };
enum class Answer { Ok, Cancel, Yes, No, Retry };

// A message box: modal, answered by exactly one of its buttons.
struct Message {
  std::string Title;
  std::string Text;
  Icon MessageIcon = Icon::None;
  Buttons Choice = Buttons::Ok;
  // Its OK says that something has been connected, and a measurement follows: a stray Escape must
  // not say so.
  bool AsksToConnect = false;
  // Enter answers No.
  bool NoByDefault = false;
  // Work that continues while the box is up: it is called again and again until it returns false
  // or the box is answered. May be empty.
  std::function<bool()> Meanwhile = {};
};

enum class DialogKind { Open, Save, Colour, Print };

// A file, colour or printer dialog. Folder is where a file dialog begins, and the colour
// ("#RRGGBB") on which a colour dialog does. Filter is "Name (*.ext)|*.ext|...", FilterIndex counts
// from 1.
struct Dialog {
  DialogKind Kind = DialogKind::Open;
  std::string Title;
  std::string Folder;
  std::string Filter;
  int FilterIndex = 2;
  // The ending of a file that is saved under a name without one, where the chosen filter has no
  // single ending of its own ("s1p"). May be empty.
  std::string Ending = {};
  // The name that a save dialog proposes, without folder and ending. May be empty.
  std::string Name = {};
};

class Prompts {
 public:
  virtual ~Prompts() = default;
  // Shows the box and returns when it is answered. Events, timers included, run meanwhile.
  virtual Answer Ask(const Message& message) = 0;
  // The chosen path ("#RRGGBB" for a colour), or nothing when cancelled.
  virtual std::optional<std::string> Choose(const Dialog& dialog) = 0;

  // A box with OK alone.
  void Tell(std::string_view title, std::string_view text, Icon icon) {
    Ask({std::string(title), std::string(text), icon, Buttons::Ok});
  }
  // What is to be connected before the next sweep: an information box with OK alone, which only OK
  // answers.
  void AskToConnect(std::string_view title, std::string_view text) {
    Ask({std::string(title), std::string(text), Icon::Information, Buttons::Ok, true});
  }
};

// Windows are named by the constants of core/window_names.h. A name that no window has is an error
// of the program: std::logic_error.
class Windows {
 public:
  virtual ~Windows() = default;
  // Shows a window; nothing when it is up already. Returns at once, but from a modal window when it
  // has been hidden.
  virtual void Show(std::string_view window) = 0;
  virtual void Hide(std::string_view window) = 0;
  // Every window that goes when the program starts anew is hidden (WindowStyle::ClosesOnRestart).
  virtual void HideForRestart() = 0;
  // Repaints the window at once, with what its form holds.
  virtual void Refresh(std::string_view window) = 0;
  // Something that windows show has changed in the session: every window takes it from there
  // (Form::OnSessionChanged), up or not, so that none is ever stale.
  virtual void SessionChanged() = 0;
  // A session file has come into force: what it brings replaces even what was entered in a window
  // and not applied (Form::OnSessionLoaded). Ends with SessionChanged.
  virtual void SessionLoaded() = 0;
  // A sweep of START has ended (Form::OnSweepEnded).
  virtual void SweepEnded() = 0;
  // What the user has clicked and typed while the program was busy is dropped. Where input comes as
  // a list of commands there is nothing to drop.
  virtual void DropInput() {}
  // The document is opened with the system's viewer; nothing when there is no such file or viewer.
  // "manual:PAGE#HEADING" is a page of the manual, opened in the program's own viewer.
  virtual void OpenDocument(const std::string& path) = 0;
  // Moves a window's progress bar, 0 to 100, and repaints it at once.
  virtual void Progress(std::string_view window, std::string_view bar, int percent) = 0;
  // A status panel has a new text, which Session::Panels holds already.
  virtual void PanelChanged(Panel panel, const std::string& text) = 0;
  virtual void Beep() = 0;
  // Ends the process once control is back in the message loop. Nothing is saved by this.
  virtual void EndProcess(int code) = 0;
};

enum class TimerId { Timer1 = 1, Timer2 = 2, Timer3 = 3 };

// The clock and the message loop. Timers tick only from the message loop: inside Ask, Show of
// a modal window and LetEventsRun, never inside Breathe.
class EventLoop {
 public:
  virtual ~EventLoop() = default;
  virtual std::int64_t NowMs() = 0;  // monotonic milliseconds
  // Date and time of day.
  virtual LocalTime Now() { return SystemLocalTime(); }
  // Seconds since 1970-01-01T00:00:00Z.
  virtual std::int64_t UnixSeconds() { return SystemUnixSeconds(); }
  // A timer ticks each Interval ms while enabled; setting the interval, or enabling a timer that
  // was off, starts its period anew. An interval of 0 (as at start) never ticks.
  virtual void SetInterval(TimerId timer, int ms) = 0;
  virtual void Enable(TimerId timer, bool on) = 0;
  virtual bool Enabled(TimerId timer) = 0;
  // Handles all pending events (clicks, timer ticks, repaints), without waiting.
  virtual void LetEventsRun() = 0;
  // Repaints what needs it; input and timer ticks stay queued. For waits that no handler may
  // interrupt.
  virtual void Breathe() = 0;
  // The same, but one button of a window can be worked meanwhile (Handle::WhileBusy). Its action
  // runs inside this call and may do no more than note that it was pressed.
  virtual void BreatheBut(std::string_view, std::string_view) { Breathe(); }
};

// The three together, as routines pass them around.
struct Host {
  Prompts& prompts;
  Windows& windows;
  EventLoop& loop;
};

}  // namespace qk
