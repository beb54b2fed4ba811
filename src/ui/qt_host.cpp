// SPDX-License-Identifier: MIT
#include "ui/qt_host.h"

#include <cstdlib>
#include <utility>

#include <QAbstractButton>
#include <QApplication>
#include <QDesktopServices>
#include <QDialog>
#include <QEventLoop>
#include <QFileInfo>
#include <QKeyEvent>
#include <QUrl>
#include <QWindow>

#include "core/window_names.h"
#include "ui/dialogs.h"
#include "ui/form_window.h"
#include "ui/printing.h"
#include "ui/vector_registers.h"

namespace qk {

namespace {
// Interval for retrying an action that was deferred by a wait.
constexpr int kHeldMs = 10;
constexpr std::string_view kMainWindow = window::kForm1;

// Discards user input.
class InputSink : public QObject {
 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    switch (event->type()) {
      case QEvent::MouseButtonPress:
      case QEvent::MouseButtonRelease:
      case QEvent::MouseButtonDblClick:
      case QEvent::KeyPress:
      case QEvent::KeyRelease:
      case QEvent::Shortcut:
      case QEvent::ShortcutOverride:
      case QEvent::Wheel:
      case QEvent::TouchBegin:
      case QEvent::TouchUpdate:
      case QEvent::TouchEnd:
      case QEvent::ContextMenu:
      case QEvent::Close:
        return true;
      default:
        return false;
    }
  }
};
// Discards user input except for one button: the mouse on it, its mnemonic, Escape in any window,
// and STOP of the main window (may be nullptr).
class AllButOneButton : public InputSink {
 public:
  AllButOneButton(QAbstractButton& button, const QAbstractButton* stop)
      : button_(button), stop_(stop) {
    connect(&button, &QAbstractButton::pressed, this, [this] { Pressed = true; });
    connect(&button, &QAbstractButton::clicked, this, [this] { Pressed = true; });
  }
  bool Pressed = false;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    const bool key = event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride;
    if (key && Presses(*static_cast<const QKeyEvent*>(event))) {
      // Accepted, so that no shortcut takes the key: a docked window has those of the main window.
      event->accept();
      Pressed = Pressed || event->type() == QEvent::KeyPress;
      return true;
    }
    if (watched->isWindowType() || event->type() == QEvent::ShortcutOverride) return false;
    if (watched == stop_ && stop_->isEnabled() && button_.isEnabled() && IsPress(*event))
      Pressed = true;
    const bool keys = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
    if (watched == &button_ && !keys) return false;
    return InputSink::eventFilter(watched, event);
  }

 private:
  // The mouse, Space or Enter on a button.
  static bool IsPress(const QEvent& event) {
    if (event.type() == QEvent::MouseButtonPress)
      return static_cast<const QMouseEvent&>(event).button() == Qt::LeftButton;
    if (event.type() != QEvent::KeyPress) return false;
    const auto& key = static_cast<const QKeyEvent&>(event);
    return !key.isAutoRepeat() && (key.key() == Qt::Key_Space || key.key() == Qt::Key_Return ||
                                   key.key() == Qt::Key_Enter);
  }
  // True for Escape and for the letter of the button.
  bool Presses(const QKeyEvent& key) const {
    if (key.key() == Qt::Key_Escape) return true;
    const QKeySequence mnemonic = QKeySequence::mnemonic(button_.text());
    return !mnemonic.isEmpty() && button_.isEnabled() &&
           QKeySequence(QKeyCombination(key.modifiers(), static_cast<Qt::Key>(key.key()))) ==
               mnemonic;
  }

  QAbstractButton& button_;
  const QAbstractButton* stop_;
};
}  // namespace

QtHost::QtHost(FormRegistry& registry)
    : RegistryWindows(registry), Terminate([](int code) { std::_Exit(code); }) {
  clock_.start();
  for (const TimerId id : {TimerId::Timer1, TimerId::Timer2, TimerId::Timer3}) {
    QTimer& clock = Timer(id).Clock;
    clock.setTimerType(Qt::PreciseTimer);
    connect(&clock, &QTimer::timeout, this, [this, id] { Ticked(id); });
  }
  connect(qApp, &QGuiApplication::focusWindowChanged, this,
          [this](const QWindow* window) { NoteActive(window); });
}

QtHost::~QtHost() = default;

void QtHost::AddWindow(FormWindow& window) {
  windows_[window.GetForm().Name()] = &window;
  widgets_.emplace_back(&window.Widget());
  window.Sync();
}

void QtHost::ReleaseWindows() {
  ++breathing_;
  MakeWindow = nullptr;
  windows_.clear();
}

FormWindow* QtHost::MadeWindow(std::string_view form) const {
  const auto it = windows_.find(form);
  return it == windows_.end() ? nullptr : it->second;
}

FormWindow* QtHost::WindowOf(std::string_view form) {
  if (FormWindow* made = MadeWindow(form); made != nullptr || !MakeWindow) return made;
  FormWindow* window = MakeWindow(form);
  if (window != nullptr) AddWindow(*window);
  return window;
}

QWidget* QtHost::Owner() const {
  if (QWidget* modal = QApplication::activeModalWidget(); modal != nullptr) return modal;
  if (lastActive_ != nullptr && lastActive_->isVisible()) return lastActive_;
  FormWindow* window = MadeWindow(kMainWindow);
  return window != nullptr && window->Widget().isVisible() ? &window->Widget() : nullptr;
}

void QtHost::NoteActive(const QWindow* window) {
  if (window == nullptr) return;
  for (const QPointer<QWidget>& mine : widgets_) {
    if (mine == nullptr || mine->windowHandle() != window) continue;
    const QWidget* modal = QApplication::activeModalWidget();
    if (modal == nullptr || modal == mine)
      lastActive_ = mine;
    else
      QTimer::singleShot(0, this, [this] { KeyboardToModal(); });
  }
}

// When boxes follow each other, the window system may move the focus several times, and the toolkit
// may end with a blocked window as the active one: the box would then ignore the keyboard.
void QtHost::KeyboardToModal() const {
  const QWidget* modal = QApplication::activeModalWidget();
  if (modal == nullptr || modal->windowHandle() == nullptr || modal->isActiveWindow()) return;
  const QWidget* active = QApplication::activeWindow();
  for (const QPointer<QWidget>& mine : widgets_)
    if (mine != nullptr && mine == active) modal->windowHandle()->requestActivate();
}

void QtHost::Act(const std::function<void()>& action) {
  if (Breathing()) {
    heldActions_.push_back(action);
    QTimer::singleShot(kHeldMs, this, [this] { RunHeldActions(); });
    return;
  }
  ClearVectorRegisters();  // the button has been repainted
  if (AroundAct)
    AroundAct(action);
  else
    action();
  SyncAll();
}

// Runs the user actions deferred during a wait, at the first opportunity after it: from the message
// loop, or from a handler that lets events run between two waits.
void QtHost::RunHeldActions() {
  if (heldActions_.empty()) return;
  if (Breathing()) {
    QTimer::singleShot(kHeldMs, this, [this] { RunHeldActions(); });
    return;
  }
  for (const auto& action : std::exchange(heldActions_, {})) Act(action);
}

void QtHost::SyncAll() {
  for (const auto& [name, window] : windows_)
    if (window->GetForm().Shown) window->Sync();
}

// ---- prompts -----------------------------------------------------------------------------------

Answer QtHost::Ask(const Message& message) {
  if (OnPrompt) OnPrompt(message);
  SyncAll();
  if (Ending()) return message.Choice == Buttons::YesNo ? Answer::No : Answer::Cancel;
  Message shown = message;
  FormWindow* main = MadeWindow(kMainWindow);
  if (shown.Title.empty() && main != nullptr) shown.Title = main->GetForm().Caption();
  ++prompts_;
  const Answer answer = AskBox(Owner(), shown);
  ClearVectorRegisters();
  --prompts_;
  DeliverHeldTicks();
  return answer;
}

std::optional<std::string> QtHost::Choose(const Dialog& dialog) {
  SyncAll();
  if (Ending()) return std::nullopt;
  ++prompts_;
  std::optional<std::string> chosen = dialog.Kind == DialogKind::Print
                                          ? ChoosePrinter(Owner(), dialog, printer_)
                                          : ChooseDialog(Owner(), dialog, places_);
  --prompts_;
  DeliverHeldTicks();
  return chosen;
}

std::unique_ptr<QPrinter> QtHost::TakePrinter() {
  return std::move(printer_);
}

// ---- windows -----------------------------------------------------------------------------------

void QtHost::DoShow(Form& form) {
  FormWindow* window = WindowOf(form.Name());
  if (window == nullptr) return;
  window->Sync();
  QWidget& widget = window->Widget();
  widget.setWindowModality(form.Style().Modal ? Qt::WindowModal : Qt::NonModal);
  if (const QWidget* owner = Owner(); form.Style().Modal && owner != nullptr && owner != &widget) {
    widget.winId();  // creates the native window, which can then be placed above the blocked one
    widget.windowHandle()->setTransientParent(owner->window()->windowHandle());
  }
  window->ShowUp();
}

void QtHost::DoHide(Form& form) {
  if (FormWindow* window = MadeWindow(form.Name()); window != nullptr) {
    const QWindow* handle = window->Widget().windowHandle();
    QWindow* owner = form.Style().Modal && handle != nullptr ? handle->transientParent() : nullptr;
    window->HideAway();
    if (owner == nullptr) return;
    NoteActive(owner);  // at once, because a dialog that follows belongs to it
    owner->requestActivate();
  }
}

// A window that only shows information raises itself and does not take the focus.
void QtHost::DoRaise(Form& form) {
  FormWindow* window = MadeWindow(form.Name());
  if (window == nullptr || !form.Style().Closable) return;
  window->ToFront();
}

void QtHost::DoModal(Form& form) {
  QEventLoop loop;
  while (form.Shown && !Ending()) loop.processEvents(QEventLoop::WaitForMoreEvents);
  ClearVectorRegisters();
}

void QtHost::DoRefresh(Form& form) {
  if (FormWindow* window = MadeWindow(form.Name()); window != nullptr) window->Sync();
  Breathe();
}

void QtHost::CloseBox(Form& form) {
  Act([this, &form] {
    if (form.Busy() || !form.OnCloseBox()) return;
    if (form.Name() != kMainWindow) {
      Hide(form.Name());
      return;
    }
    if (BeforeTerminate) BeforeTerminate();
    Terminate(0);
  });
}

void QtHost::LeaveNow(const std::function<void()>& leave) {
  leaving_ = true;
  for (QWidget* window : QApplication::topLevelWidgets())
    if (auto* box = qobject_cast<QDialog*>(window);
        box != nullptr && box->isVisible() && dynamic_cast<FormWindow*>(window) == nullptr)
      box->done(0);
  Act(leave);
}

void QtHost::PanelChanged(Panel panel, const std::string& text) {
  if (OnPanel) OnPanel(panel, text);
}

void QtHost::DropInput() {
  InputSink sink;
  QCoreApplication::instance()->installEventFilter(&sink);
  ++breathing_;  // no handler and no timer runs meanwhile
  SyncAll();
  QCoreApplication::processEvents(QEventLoop::ExcludeSocketNotifiers);
  EndBreath();
  heldActions_.clear();
}

void QtHost::OpenDocument(const std::string& path) {
  const QFileInfo file(QString::fromStdString(path));
  const bool opened =
      file.isFile() && QDesktopServices::openUrl(QUrl::fromLocalFile(file.absoluteFilePath()));
  if (!opened && ShowInside) ShowInside(path);
}

void QtHost::Beep() {
  QApplication::beep();
}

void QtHost::EndProcess(int code) {
  exitCode_ = code;
  QCoreApplication::exit(code);  // all message loops, nested ones too, when control returns
}

// ---- time --------------------------------------------------------------------------------------

void QtHost::Arm(TimerState& timer) {
  if (timer.On && timer.IntervalMs > 0)
    timer.Clock.start(timer.IntervalMs);
  else
    timer.Clock.stop();
}

void QtHost::SetInterval(TimerId timer, int ms) {
  Timer(timer).IntervalMs = ms;
  Arm(Timer(timer));
}

void QtHost::Enable(TimerId timer, bool on) {
  TimerState& state = Timer(timer);
  if (state.On == on) return;
  state.On = on;
  state.Held = false;
  Arm(state);
}

bool QtHost::Holds(TimerId id) const {
  return Breathing() || (id == TimerId::Timer1 && prompts_ > 0);
}

void QtHost::Ticked(TimerId id) {
  TimerState& timer = Timer(id);
  if (Holds(id)) {
    timer.Held = true;
    return;
  }
  timer.Held = false;
  if (OnTick) OnTick(id);
  SyncAll();
}

void QtHost::DeliverHeldTicks() {
  QTimer::singleShot(0, this, [this] {
    for (const TimerId id : {TimerId::Timer1, TimerId::Timer2, TimerId::Timer3}) {
      if (!Timer(id).Held || Holds(id)) continue;
      Timer(id).Held = false;
      if (Timer(id).On) Ticked(id);
    }
  });
}

void QtHost::LetEventsRun() {
  SyncAll();
  QCoreApplication::processEvents();
  RunHeldActions();
  SyncAll();
  ClearVectorRegisters();  // windows have been painted
}

void QtHost::Breathe() {
  ++breathing_;
  SyncAll();
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents |
                                  QEventLoop::ExcludeSocketNotifiers);
  EndBreath();
  ClearVectorRegisters();
}

void QtHost::BreatheBut(std::string_view window, std::string_view control) {
  FormWindow* shown = MadeWindow(window);
  auto* button = shown == nullptr ? nullptr
                                  : shown->Widget().findChild<QAbstractButton*>(QString::fromUtf8(
                                        control.data(), static_cast<qsizetype>(control.size())));
  if (button == nullptr) return Breathe();
  bool pressed = false;
  {
    FormWindow* main = MadeWindow(kMainWindow);
    AllButOneButton sink(
        *button,
        main == nullptr ? nullptr : main->Widget().findChild<QAbstractButton*>("StopMeasurement"));
    QCoreApplication::instance()->installEventFilter(&sink);
    ++breathing_;
    SyncAll();
    QCoreApplication::processEvents(QEventLoop::ExcludeSocketNotifiers);
    EndBreath();
    pressed = sink.Pressed;
  }
  ClearVectorRegisters();
  if (pressed) shown->GetForm().Click(control);
}

void QtHost::EndBreath() {
  if (--breathing_ > 0) return;
  for (const TimerState& timer : timers_)
    if (timer.Held) return DeliverHeldTicks();
}

}  // namespace qk
