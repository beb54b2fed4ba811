// SPDX-License-Identifier: MIT
// The seven panels of the status bar in a row. If there is not enough room, the others are
// shortened before the third, which shows calibration, overload and limits.
#pragma once

#include <array>

#include <QWidget>

#include "core/panels.h"

namespace qk {

class PanelLabel;

class PanelRow : public QWidget {
 public:
  PanelRow();

  void Show(Panel panel, const QString& text);
  // A remark in the tool tip of a panel; replaces the previous one.
  void Remark(Panel panel, const QString& remark);
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void Arrange();

  std::array<PanelLabel*, kPanels> panels_{};
};

}  // namespace qk
