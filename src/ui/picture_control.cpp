// SPDX-License-Identifier: MIT
#include "ui/picture_control.h"

#include "ui/qt_canvas.h"

namespace qk {

PictureControl::PictureControl(const Control& control) : control_(control) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  setMinimumSize(control.PictureWidth / 2, control.PictureHeight / 2);
}

void PictureControl::paintEvent(QPaintEvent*) {
  if (!control_.Draw) return;
  QtCanvas canvas(*this, {width(), height()});
  control_.Draw(canvas);
}

}  // namespace qk
