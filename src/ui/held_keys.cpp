// SPDX-License-Identifier: MIT
#include "ui/held_keys.h"

#include <QCoreApplication>
#include <QKeyEvent>

namespace qk {

namespace {
bool ActsOnce(const QKeyEvent& key) {
  if (key.modifiers().testAnyFlags(Qt::ControlModifier | Qt::AltModifier)) return false;
  switch (key.key()) {
    case Qt::Key_Escape:
    case Qt::Key_F5:
    case Qt::Key_F6:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
      return true;
    default:
      return false;
  }
}
}  // namespace

HeldKeys::HeldKeys() {
  QCoreApplication::instance()->installEventFilter(this);
}

bool HeldKeys::eventFilter(QObject* watched, QEvent* event) {
  const QEvent::Type type = event->type();
  const bool release = type == QEvent::KeyRelease;
  if (!release && type != QEvent::KeyPress && type != QEvent::ShortcutOverride) return false;
  auto& key = static_cast<QKeyEvent&>(*event);
  if (!watched->isWindowType() || !ActsOnce(key)) return false;
  if (release) {
    released_ = key.key();
    releasedMs_ = key.timestamp();
    return false;
  }
  const bool unmarked = !key.isAutoRepeat() && key.key() == released_ && releasedMs_ != 0 &&
                        key.timestamp() == releasedMs_;
  if (!unmarked) return false;
  if (type == QEvent::ShortcutOverride) {
    key.accept();  // no shortcut: it comes again as a key press
    return true;
  }
  QKeyEvent repeat(type, key.key(), key.modifiers(), key.nativeScanCode(), key.nativeVirtualKey(),
                   key.nativeModifiers(), key.text(), true, static_cast<quint16>(key.count()));
  repeat.setTimestamp(key.timestamp());
  QCoreApplication::sendEvent(watched, &repeat);
  key.setAccepted(repeat.isAccepted());
  return true;
}

}  // namespace qk
