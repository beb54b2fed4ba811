// SPDX-License-Identifier: MIT
#include "app/player.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>
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

constexpr int kPlayerLookMs = 50;
constexpr int kPatienceMs = 1500;
// An animated click of the toolkit holds the button down for 100 ms.
constexpr int kClickMs = 200;

// A box that a step can open, and its answer.
struct ExpectedBox {
  std::string_view Title, Text;  // its title, and a part of its text
  QMessageBox::StandardButton Answer;
};

struct Step {
  std::string_view Window, Control;
  std::string_view Value;  // text to type or entry to choose; empty for a click
  const char* Text;
  std::span<const ExpectedBox> Boxes = {};
};

// The loss of standards and calibration was confirmed before the first step.
constexpr std::array kAtApply = {
    ExpectedBox{"Sweep Freq Set", "would be dropped. Continue?", QMessageBox::Yes},
    ExpectedBox{"Sweep Freq Set", "cannot be kept for this sweep. Drop it?", QMessageBox::Yes},
    ExpectedBox{"Test Signals", "Keep existing Cal", QMessageBox::No}};
constexpr std::array kAtOpen = {ExpectedBox{"Open Cal", "Open Circuit on Port 1", QMessageBox::Ok}};
constexpr std::array kAtShort = {
    ExpectedBox{"Short Cal", "Short Circuit on Port 1", QMessageBox::Ok}};
constexpr std::array kAtLoad = {ExpectedBox{"Load Cal", "Matched Load on Port 1", QMessageBox::Ok}};

constexpr auto& kMain = window::kForm1;
constexpr auto& kCal = window::kCalibration;
constexpr std::array kSteps = {
    Step{kMain, "StopMeasurement", "", "No sweep may run while standards are measured"},
    Step{kMain, "SetCal", "", "Calibration: the sweep and the standards"},
    Step{kCal, "Text1", "3", "From 3 MHz ..."},
    Step{kCal, "Text2", "3000", "... to 3000 MHz ..."},
    Step{kCal, "PntsCombo", "201", "... with 201 points"},
    Step{kCal, "Command1", "", "Apply puts the sweep in force", kAtApply},
    Step{kCal, "Option3", "", "The kind: S11, with three standards on port 1"},
    Step{kCal, "O_Cal", "", "An open circuit on port 1", kAtOpen},
    Step{kCal, "S_Cal", "", "A short circuit", kAtShort},
    Step{kCal, "M_Cal", "", "A matched load", kAtLoad},
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
  look_.setInterval(kPlayerLookMs);
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
  QAbstractButton* answer = box == nullptr ? nullptr : AnswerTo(*box);
  if (answer == nullptr) {
    Stop();  // the user has taken over, or an error has occurred
    return true;
  }
  if (box != box_) shown_.start();
  box_ = box;
  if (shown_.elapsed() < pace_) return true;
  shown_.start();
  answer->animateClick();
  return true;
}

QAbstractButton* Player::AnswerTo(const QMessageBox& box) const {
  if (next_ == 0) return nullptr;
  const std::string title = box.windowTitle().toStdString(), text = box.text().toStdString();
  for (const ExpectedBox& expected : kSteps[next_ - 1].Boxes)
    if (title == expected.Title && text.find(expected.Text) != std::string::npos)
      return box.button(expected.Answer);
  return nullptr;
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
  if (OnStep) OnStep(step.Text);
  window->Widget().activateWindow();
  Work(*widget, step.Value);
}

}  // namespace qk
