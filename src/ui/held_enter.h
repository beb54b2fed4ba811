// SPDX-License-Identifier: MIT
// Makes a held Enter key act only once: the toolkit would press a button again at each key repeat.
#pragma once

#include <QKeyEvent>
#include <QObject>

namespace qk {

class HeldEnterActsOnce : public QObject {
 public:
  explicit HeldEnterActsOnce(QObject& widget) : QObject(&widget) {
    widget.installEventFilter(this);
  }

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() != QEvent::KeyPress) return false;
    const auto& key = static_cast<const QKeyEvent&>(*event);
    return key.isAutoRepeat() && (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter);
  }
};

}  // namespace qk
