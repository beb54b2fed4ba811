// SPDX-License-Identifier: MIT
#include "ui/title_bar.h"

#include <QFontMetrics>
#include <QWidget>

namespace qk {

int TitleBarWidth(const QWidget& window, const QString& title) {
  QFont bold = window.font();  // as in many window managers
  bold.setBold(true);
  const QFontMetrics letters(bold);
  // Adds an icon and three buttons, each as high as the text, with gaps.
  return letters.horizontalAdvance(title) + 4 * (letters.height() + 8);
}

}  // namespace qk
