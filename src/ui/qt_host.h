// SPDX-License-Identifier: MIT
// The program's surroundings on a desktop: message boxes, dialogs, one window per form, timers, and
// the toolkit's message loop.
#pragma once

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include "forms/form_registry.h"
#include "ui/dialogs.h"

class QPrinter;
class QWidget;
class QWindow;

namespace qk {

class FormWindow;

class QtHost : public QObject, public Prompts, public RegistryWindows, public EventLoop {
 public:
  explicit QtHost(FormRegistry& registry);
  ~QtHost() override;

  Host host() { return {*this, *this, *this}; }

  std::function<void(TimerId)> OnTick;
  std::function<void(const Message&)> OnPrompt;  // called before a box is shown; may be empty
  // Wraps every user action, so that code can run before and after it; may be empty.
  std::function<void(const std::function<void()>& act)> AroundAct;
  std::function<void(Panel panel, const std::string& text)> OnPanel;
  // Ends the process at once, whatever is running; tests replace it.
  std::function<void(int code)> Terminate;
  // Shows a document inside the program if the system has no viewer; false: it cannot. May be
  // empty.
  std::function<bool(const std::string& path)> ShowInside;
  std::function<void()> BeforeTerminate;  // closes the serial port; may be empty

  // Creates the window of a form, which must outlive the host's use of it; nullptr if there is
  // none. Windows are created on demand, because most are rarely opened.
  std::function<FormWindow*(std::string_view form)> MakeWindow;
  // Registers the window of a form.
  void AddWindow(FormWindow& window);
  // The windows are about to be destroyed; later signals of their widgets are ignored.
  void ReleaseWindows();
  // The window of a form, created now if necessary; nullptr if there is none.
  FormWindow* WindowOf(std::string_view form);
  // The window of a form if it has been created; otherwise nullptr.
  FormWindow* MadeWindow(std::string_view form) const;

  // Runs a user action, then updates all windows. Deferred while the program waits with windows
  // only repainting.
  void Act(const std::function<void()>& action);
  // True while the program waits and no handler may run.
  bool Breathing() const { return breathing_ > 0; }
  // Updates every visible window from its form.
  void SyncAll();

  // Returns the printer of the last dialog once; nullptr if there was none.
  std::unique_ptr<QPrinter> TakePrinter();

  // The close button of a window's title bar: asks the form, then hides the window. The main window
  // ends the process at once, and nothing is saved.
  void CloseBox(Form& form);
  bool Ending() const { return exitCode_.has_value() || leaving_; }
  // The program must end, whatever is running: open boxes, dialogs and modal windows return as if
  // they had been closed, later ones are not shown, and leave runs as soon as a handler may run.
  void LeaveNow(const std::function<void()>& leave);

  // ---- the interfaces ------------------------------------------------------------------------
  Answer Ask(const Message& message) override;
  std::optional<std::string> Choose(const Dialog& dialog) override;
  void PanelChanged(Panel panel, const std::string& text) override;
  void DropInput() override;
  void OpenDocument(const std::string& path) override;
  void Beep() override;
  void EndProcess(int code) override;
  std::int64_t NowMs() override { return clock_.elapsed(); }
  void SetInterval(TimerId timer, int ms) override;
  void Enable(TimerId timer, bool on) override;
  bool Enabled(TimerId timer) override { return Timer(timer).On; }
  void LetEventsRun() override;
  void Breathe() override;
  // The button can be operated by mouse, by its mnemonic, by Escape in any window, and by STOP.
  void BreatheBut(std::string_view window, std::string_view control) override;

 protected:
  void DoShow(Form& form) override;
  void DoHide(Form& form) override;
  void DoRaise(Form& form) override;
  void DoModal(Form& form) override;
  void DoRefresh(Form& form) override;

 private:
  struct TimerState {
    QTimer Clock;
    int IntervalMs = 0;
    bool On = false;
    bool Held = false;  // has ticked while its handler had to wait
  };
  TimerState& Timer(TimerId timer) { return timers_[static_cast<std::size_t>(timer) - 1]; }
  void Arm(TimerState& timer);
  void Ticked(TimerId id);
  // True while a tick of that timer must wait: no handler may run, or a box is open and the timer
  // is Timer1, which may show a prompt itself.
  bool Holds(TimerId id) const;
  void DeliverHeldTicks();
  void RunHeldActions();
  void EndBreath();
  QWidget* Owner() const;
  void NoteActive(const QWindow* window);
  // Moves the keyboard focus to the box or window that blocks the others.
  void KeyboardToModal() const;

  QElapsedTimer clock_;
  std::array<TimerState, 3> timers_;
  std::map<std::string, FormWindow*, std::less<>> windows_;
  // The last active window of the program. A box that immediately follows another belongs to it,
  // even if the window system has not returned the focus yet.
  QPointer<QWidget> lastActive_;
  std::vector<std::function<void()>> heldActions_;
  std::vector<QPointer<QWidget>> widgets_;  // of the windows; emit signals to the end
  std::optional<int> exitCode_;
  bool leaving_ = false;
  std::unique_ptr<QPrinter> printer_;
  int breathing_ = 0;
  Places places_;
  int prompts_ = 0;  // number of open boxes and dialogs
};

}  // namespace qk
