// SPDX-License-Identifier: MIT
#include "ui/pending_mark.h"

#include <QFont>
#include <QWidget>

#include "core/control.h"

namespace qk {

void MarkPending(QWidget& widget, const Control& control) {
  if (!control.Grouped) return;
  const bool pending = control.Pending();
  QFont font = widget.font();
  if (font.italic() != pending) {
    font.setItalic(pending);
    widget.setFont(font);
  }
  const QString note = pending ? QStringLiteral("Not applied") : QString();
  widget.setAccessibleDescription(note);
  if (!pending) return;
  const QString tip = widget.toolTip();
  widget.setToolTip(tip.isEmpty() ? note : tip + "\n" + note);
}

}  // namespace qk
