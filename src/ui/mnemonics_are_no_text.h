// SPDX-License-Identifier: MIT
// Alt and a letter is a mnemonic, never text. If its button is disabled, the toolkit would type the
// letter over the number that is selected in the field; in the panel beside the graphs it would
// search the focused list for it.
#pragma once

#include <QKeyEvent>
#include <QWidget>

namespace qk {

class MnemonicsAreNoText : public QObject {
 public:
  explicit MnemonicsAreNoText(QWidget& field) : QObject(&field) { field.installEventFilter(this); }

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() != QEvent::KeyPress) return false;
    const auto& key = static_cast<const QKeyEvent&>(*event);
    const Qt::KeyboardModifiers held = key.modifiers();
    const bool letter = !key.text().isEmpty() && key.text().front().isPrint();
    if (!letter || !held.testFlag(Qt::AltModifier) || held.testFlag(Qt::ControlModifier))
      return false;
    event->ignore();
    return true;
  }
};

}  // namespace qk
