// SPDX-License-Identifier: MIT
#include "ui/title_bar.h"

#include <QFontMetrics>
#include <QWidget>

namespace qk {

int TitleBarWidth(const QWidget& window, const QString& title) {
  QFont bold = window.font();  // as many window managers set it
  bold.setBold(true);
  const QFontMetrics letters(bold);
  // An icon and three buttons beside it, each as high as the letters, with gaps.
  return letters.horizontalAdvance(title) + 4 * (letters.height() + 8);
}

}  // namespace qk
