// SPDX-License-Identifier: MIT
// A wheel that scrolls a window changes no list on its way: a list takes it once it has the
// keyboard.
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
