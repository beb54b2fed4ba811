// SPDX-License-Identifier: MIT
// The part of a window that scrolls where the screen is too small for it: everything but the row of
// buttons at the foot, which stays in view.
#pragma once

#include <QScrollArea>

namespace qk {

class ScrollBody : public QScrollArea {
 public:
  // foot: what stands below the content and does not scroll; may be null. Where the screen has the
  // room, the area is never smaller than its content.
  ScrollBody(QWidget* content, const QWidget* foot);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  // The size as far as the screen has room for it; a side that is cut makes room for a scroll bar.
  QSize Bounded(QSize wanted) const;

  const QWidget* foot_;
};

}  // namespace qk
