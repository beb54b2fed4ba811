// SPDX-License-Identifier: MIT
// Prevents the wheel from changing a list while it scrolls a window: a list takes the wheel only
// when it has the keyboard focus.
#pragma once

#include <QComboBox>
#include <QEvent>

namespace qk {

class WheelNeedsKeyboard : public QObject {
 public:
  explicit WheelNeedsKeyboard(QComboBox& list) : QObject(&list), list_(list) {
    list.setFocusPolicy(Qt::StrongFocus);
    list.installEventFilter(this);
  }

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() != QEvent::Wheel || list_.hasFocus()) return false;
    event->ignore();
    return true;
  }

 private:
  QComboBox& list_;
};

}  // namespace qk
