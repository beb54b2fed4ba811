// SPDX-License-Identifier: MIT
#include "app/player.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

#include "core/session.h"
#include "core/window_names.h"
#include "ui/form_window.h"
#include "ui/qt_host.h"

namespace qk {

namespace {

constexpr int kLookMs = 50;
constexpr int kPatienceMs = 1500;
// An animated click of the toolkit holds the button down for 100 ms.
constexpr int kClickMs = 200;

struct Step {
  std::string_view Window, Control;
  std::string_view Value;  // text to type or entry to choose; empty for a click
  const char* Told;
  // The box that the step opens, identified by its title and the beginning of its text, and its
  // answer.
  const char* Title = "";
  const char* Text = "";
  QMessageBox::StandardButton Answer = QMessageBox::Ok;
};

constexpr auto& kMain = window::kForm1;
constexpr auto& kCal = window::kCalibration;
constexpr std::array kSteps = {
    Step{kMain, "StopMeasurement", "", "No sweep may run while standards are measured"},
    Step{kMain, "SetCal", "", "Calibration: the sweep and the standards"},
    Step{kCal, "Text1", "3", "From 3 MHz ..."},
    Step{kCal, "Text2", "3000", "... to 3000 MHz ..."},
    Step{kCal, "PntsCombo", "201", "... with 201 points"},
    Step{kCal, "Command1", "", "Apply puts the sweep in force", "Test Signals", "Keep existing Cal",
         QMessageBox::No},
    Step{kCal, "Option3", "", "The kind: S11, with three standards on port 1"},
    Step{kCal, "O_Cal", "", "An open circuit on port 1", "Open Cal", "Open Circuit on Port 1"},
    Step{kCal, "S_Cal", "", "A short circuit", "Short Cal", "Short Circuit on Port 1"},
    Step{kCal, "M_Cal", "", "A matched load", "Load Cal", "Matched Load on Port 1"},
    Step{kCal, "App_Cal", "", "Apply Cal computes the error terms"},
    Step{kCal, "Cls_Cal", "", "The calibration is done"},
    Step{kMain, "StartMeasurement", "", "START measures the device, sweep after sweep"},
};

QString Text(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// Operates the widget as a user would.
void Work(QWidget& widget, std::string_view value) {
  widget.setFocus();
  if (auto* button = qobject_cast<QAbstractButton*>(&widget); button != nullptr) {
    button->animateClick();
  } else if (auto* field = qobject_cast<QLineEdit*>(&widget); field != nullptr) {
    field->selectAll();
    field->insert(Text(value));
  } else if (auto* list = qobject_cast<QComboBox*>(&widget); list != nullptr) {
    const int entry = list->findText(Text(value));
    list->setCurrentIndex(entry);
    emit list->activated(entry);
  }
}

}  // namespace

Player::Player(QtHost& host, const Session& session) : host_(host), session_(session) {
  look_.setInterval(kLookMs);
  connect(&look_, &QTimer::timeout, this, [this] { Look(); });
}

bool Player::MayPlay() const {
  return QApplication::activeModalWidget() == nullptr && !session_.Steps.Measuring;
}

void Player::Play() {
  if (!MayPlay() || Playing()) return;
  FormWindow* calibration = host_.WindowOf(kCal);
  const bool stars = calibration != nullptr && !calibration->GetForm().EscapeCloses();
  const char* lost = session_.Cal.AnyKind() ? "The calibration in force" : "What has been measured";
  if ((session_.Cal.AnyKind() || stars) &&
      host_.Ask({"Calibrate and measure for me", std::string(lost) + " will be replaced. Continue?",
                 Icon::Question, Buttons::YesNo}) != Answer::Yes)
    return;
  next_ = 0;
  box_ = nullptr;
  shown_.start();
  look_.start();
}

void Player::Stop() {
  look_.stop();
  if (OnStep) OnStep({});
}

void Player::SetPace(int ms) {
  pace_ = std::max(ms, kClickMs);
}

void Player::Look() {
  if (host_.Breathing() || ReadBox() || shown_.elapsed() < pace_) return;
  if (next_ == kSteps.size()) {
    Stop();
    return;
  }
  if (next_ == 1 && !session_.Flags.Idle()) return;  // STOP is pending
  Do();
}

bool Player::ReadBox() {
  QWidget* modal = QApplication::activeModalWidget();
  if (modal == nullptr) {
    box_ = nullptr;
    return false;
  }
  auto* box = qobject_cast<QMessageBox*>(modal);
  if (box == nullptr || !Expected(*box)) {
    Stop();  // the user has taken over, or an error has occurred
    return true;
  }
  if (box != box_) shown_.start();
  box_ = box;
  if (shown_.elapsed() < pace_) return true;
  shown_.start();
  box->button(kSteps[next_ - 1].Answer)->animateClick();
  return true;
}

bool Player::Expected(const QMessageBox& box) const {
  if (next_ == 0) return false;
  const Step& done = kSteps[next_ - 1];
  return *done.Title != 0 && box.windowTitle() == done.Title && box.text().startsWith(done.Text) &&
         box.button(done.Answer) != nullptr;
}

void Player::Do() {
  const Step& step = kSteps[next_];
  FormWindow* window = host_.WindowOf(step.Window);
  if (window == nullptr || window->GetForm().Busy()) return;
  auto* widget = window->Widget().findChild<QWidget*>(Text(step.Control));
  if (!window->GetForm().Shown || widget == nullptr || !widget->isEnabled()) {
    // A click needs a moment to open its window; a window that opens later was opened by the user.
    if (shown_.elapsed() > pace_ + kPatienceMs) Stop();
    return;
  }
  ++next_;
  shown_.start();
  if (OnStep) OnStep(step.Told);
  window->Widget().activateWindow();
  Work(*widget, step.Value);
}

}  // namespace qk
