// SPDX-License-Identifier: MIT
// The scrolling part of a window that is too large for the screen: everything except the row of
// buttons at the bottom, which stays visible.
#pragma once

#include <QScrollArea>

namespace qk {

class ScrollBody : public QScrollArea {
 public:
  // foot: the widget below the content that does not scroll; may be null. If the screen has room,
  // the area is never smaller than its content.
  ScrollBody(QWidget* content, const QWidget* foot);

  // In the panel next to the graphs: content that needs more width than this scrolls.
  void LimitWidth(int width);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  // The size, limited by the screen; if one side is cut, the other includes room for a scroll bar.
  QSize Bounded(QSize wanted) const;

  const QWidget* foot_;
  int widthLimit_ = QWIDGETSIZE_MAX;
};

}  // namespace qk
