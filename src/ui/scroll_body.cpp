// SPDX-License-Identifier: MIT
#include "ui/scroll_body.h"

#include <algorithm>

#include <QEvent>
#include <QScrollBar>
#include <QStyle>

#include "ui/placement.h"

namespace qk {

ScrollBody::ScrollBody(QWidget* content, const QWidget* foot) : foot_(foot) {
  setObjectName("Body");
  setFrameShape(QFrame::NoFrame);
  setWidgetResizable(true);
  setFocusPolicy(Qt::NoFocus);
  setWidget(content);
}

QSize ScrollBody::Bounded(QSize wanted) const {
  // In the panel next to the graphs the available height is that of the graphs.
  if (parentWidget() != nullptr && !parentWidget()->isWindow()) {
    constexpr int kLeastHeight = 120;
    return {std::min(wanted.width() + verticalScrollBar()->sizeHint().width(), widthLimit_),
            std::min(wanted.height(), kLeastHeight)};
  }
  const QStyle& style = *this->style();
  const auto metric = [&style](QStyle::PixelMetric of) { return style.pixelMetric(of); };
  QSize room = RoomInside(*window());
  room -= QSize(metric(QStyle::PM_LayoutLeftMargin) + metric(QStyle::PM_LayoutRightMargin),
                metric(QStyle::PM_LayoutTopMargin) + metric(QStyle::PM_LayoutBottomMargin));
  if (foot_ != nullptr)
    room.rheight() -=
        foot_->minimumSizeHint().height() + 2 * metric(QStyle::PM_LayoutVerticalSpacing);
  const bool high = wanted.height() > room.height();
  if (high) wanted.rwidth() += verticalScrollBar()->sizeHint().width();
  if (wanted.width() > room.width()) wanted.rheight() += horizontalScrollBar()->sizeHint().height();
  return wanted.boundedTo(room);
}

void ScrollBody::LimitWidth(int width) {
  if (widthLimit_ == width) return;
  widthLimit_ = width;
  updateGeometry();
}

QSize ScrollBody::sizeHint() const {
  return Bounded(widget()->sizeHint().expandedTo(widget()->minimumSizeHint()));
}

QSize ScrollBody::minimumSizeHint() const {
  return Bounded(widget()->minimumSizeHint().expandedTo(widget()->minimumSize()));
}

bool ScrollBody::eventFilter(QObject* watched, QEvent* event) {
  const bool taken = QScrollArea::eventFilter(watched, event);
  if (watched == widget() && event->type() == QEvent::LayoutRequest) updateGeometry();
  return taken;
}

}  // namespace qk
