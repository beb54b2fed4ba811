// SPDX-License-Identifier: MIT
// A picture in a window, drawn by its form: the plots of the power tests, the connection diagrams
// of the isolation methods.
#pragma once

#include <QWidget>

#include "core/control.h"

namespace qk {

class PictureControl : public QWidget {
 public:
  explicit PictureControl(const Control& control);
  QSize sizeHint() const override { return {control_.PictureWidth, control_.PictureHeight}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  const Control& control_;
};

}  // namespace qk
