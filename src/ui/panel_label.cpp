// SPDX-License-Identifier: MIT
#include "ui/panel_label.h"

#include <QPainter>
#include <QResizeEvent>

namespace qk {

namespace {
constexpr int kMargin = 2;
constexpr int kRoomBeside = 12;  // frame and margin at both sides
}  // namespace

PanelLabel::PanelLabel(const QString& widest, const QString& about)
    : widest_(widest), about_(about) {
  setTextFormat(Qt::PlainText);
  setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
  setMargin(kMargin);
  setToolTip(about_);
}

void PanelLabel::Show(const QString& text) {
  setText(text);
  UpdateToolTip();
}

void PanelLabel::SetRemark(const QString& remark) {
  remark_ = remark;
  UpdateToolTip();
}

QSize PanelLabel::sizeHint() const {
  return {fontMetrics().horizontalAdvance(widest_) + kRoomBeside, QLabel::sizeHint().height()};
}

int PanelLabel::WholeWidth() const {
  return fontMetrics().horizontalAdvance(text()) + kRoomBeside;
}

QSize PanelLabel::minimumSizeHint() const {
  return {3 * fontMetrics().averageCharWidth(), QLabel::sizeHint().height()};
}

int PanelLabel::TextRoom() const {
  return contentsRect().width() - 2 * kMargin;
}

void PanelLabel::UpdateToolTip() {
  const bool whole = fontMetrics().horizontalAdvance(text()) <= TextRoom();
  const QString about = remark_.isEmpty() ? about_ : about_ + "\n" + remark_;
  setToolTip(whole ? about : text() + "\n" + about);
}

void PanelLabel::resizeEvent(QResizeEvent* event) {
  QLabel::resizeEvent(event);
  UpdateToolTip();
}

void PanelLabel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  drawFrame(&painter);
  const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, TextRoom());
  painter.drawText(contentsRect().adjusted(kMargin, 0, -kMargin, 0),
                   Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, shown);
}

}  // namespace qk
