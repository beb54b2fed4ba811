// SPDX-License-Identifier: MIT
// The interfaces to the program's surroundings: prompts, windows, time. A toolkit skin, the text
// console and the tests each implement them.
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

// A modal message box, answered by exactly one of its buttons.
struct Message {
  std::string Title;
  std::string Text;
  Icon MessageIcon = Icon::None;
  Buttons Choice = Buttons::Ok;
  // OK confirms that something has been connected and starts a measurement, so Escape must not
  // confirm it.
  bool AsksToConnect = false;
  // Enter answers No.
  bool NoByDefault = false;
  // Yes/No where No changes something too: only the buttons answer. Elsewhere Escape answers No.
  bool NoActs = false;
  // Work that continues while the box is open. It is called repeatedly until it returns false or
  // the box is answered. May be empty.
  std::function<bool()> BackgroundWork = {};
};

enum class DialogKind { Open, Save, Colour, Print };

// A file, colour or printer dialog. Folder is the initial folder of a file dialog, or the initial
// colour ("#RRGGBB") of a colour dialog. Filter is "Name (*.ext)|*.ext|...", FilterIndex counts
// from 1.
struct Dialog {
  DialogKind Kind = DialogKind::Open;
  std::string Title;
  std::string Folder;
  std::string Filter;
  int FilterIndex = 2;
  // The file extension to add to a name typed without one, if the chosen filter does not have
  // exactly one extension ("s1p"). May be empty.
  std::string Ending = {};
  // The name that a save dialog proposes, without folder and extension. May be empty.
  std::string Name = {};
};

class Prompts {
 public:
  virtual ~Prompts() = default;
  // Shows the box and returns when it is answered. Events, including timers, are handled meanwhile.
  virtual Answer Ask(const Message& message) = 0;
  // The chosen path ("#RRGGBB" for a colour), or empty if cancelled.
  virtual std::optional<std::string> Choose(const Dialog& dialog) = 0;

  // A box with only OK.
  void ShowMessage(std::string_view title, std::string_view text, Icon icon) {
    Ask({std::string(title), std::string(text), icon, Buttons::Ok});
  }
  // Says what to connect before the next sweep: an information box that only its OK
  // button can answer.
  void AskToConnect(std::string_view title, std::string_view text) {
    Ask({std::string(title), std::string(text), Icon::Information, Buttons::Ok, true});
  }
};

// Windows are named by the constants of core/window_names.h. A name that no window has is a
// programming error: std::logic_error.
class Windows {
 public:
  virtual ~Windows() = default;
  // Shows a window; no effect if it is already open. Returns at once; for a modal window, returns
  // when it has been hidden.
  virtual void Show(std::string_view window) = 0;
  virtual void Hide(std::string_view window) = 0;
  // Hides every window that closes on a program restart (WindowStyle::ClosesOnRestart).
  virtual void HideForRestart() = 0;
  // Repaints the window at once with the current content of its form.
  virtual void Refresh(std::string_view window) = 0;
  // Session data that windows show has changed: every window, open or not, reads it again
  // (Form::OnSessionChanged), so that none is stale.
  virtual void SessionChanged() = 0;
  // A session file has been loaded: its values replace even entries that were not yet applied
  // (Form::OnSessionLoaded). Ends with SessionChanged.
  virtual void SessionLoaded() = 0;
  // A START sweep has ended (Form::OnSweepEnded).
  virtual void SweepEnded() = 0;
  // Discards what the user clicked and typed while the program was busy. No effect where input is a
  // list of commands.
  virtual void DropInput() {}
  // Opens the document with the system's viewer; no effect if there is no such file or viewer.
  // "manual:PAGE#HEADING" is a page of the manual, opened in the program's own viewer.
  virtual void OpenDocument(const std::string& path) = 0;
  // Sets a window's progress bar, 0 to 100, and repaints it at once.
  virtual void Progress(std::string_view window, std::string_view bar, int percent) = 0;
  // A status panel has a new text. Session::Panels already contains it.
  virtual void PanelChanged(Panel panel, const std::string& text) = 0;
  virtual void Beep() = 0;
  // Ends the process when control returns to the message loop. Saves nothing.
  virtual void EndProcess(int code) = 0;
};

enum class TimerId { Timer1 = 1, Timer2 = 2, Timer3 = 3 };

// The clock and the message loop. Timers tick only in the message loop: inside Ask, inside Show of
// a modal window, and inside LetEventsRun, never inside Breathe.
class EventLoop {
 public:
  virtual ~EventLoop() = default;
  virtual std::int64_t NowMs() = 0;  // monotonic milliseconds
  // Date and time of day.
  virtual LocalTime Now() { return SystemLocalTime(); }
  // Seconds since 1970-01-01T00:00:00Z.
  virtual std::int64_t UnixSeconds() { return SystemUnixSeconds(); }
  // An enabled timer ticks every Interval ms. Setting the interval, or enabling a timer that was
  // off, restarts its period. With interval 0 (the initial value) it never ticks.
  virtual void SetInterval(TimerId timer, int ms) = 0;
  virtual void Enable(TimerId timer, bool on) = 0;
  virtual bool Enabled(TimerId timer) = 0;
  // Handles all pending events (clicks, timer ticks, repaints), without waiting.
  virtual void LetEventsRun() = 0;
  // Repaints what needs it; input and timer ticks stay queued. For waits that must not be
  // interrupted by a handler.
  virtual void Breathe() = 0;
  // The same, but one button of a window stays enabled (Handle::WhileBusy). Its action runs inside
  // this call and may only record that it was pressed.
  virtual void BreatheBut(std::string_view, std::string_view) { Breathe(); }
};

// The three interfaces together, as passed to routines.
struct Host {
  Prompts& prompts;
  Windows& windows;
  EventLoop& loop;
};

}  // namespace qk
