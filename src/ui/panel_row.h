// SPDX-License-Identifier: MIT
// The seven panels of the status bar, side by side. Where there is no room for all, the others are
// shortened before the third, which tells of calibration, overload and limits.
#pragma once

#include <array>

#include <QWidget>

namespace qk {

class PanelLabel;

class PanelRow : public QWidget {
 public:
  PanelRow();

  // n from 1 to 7.
  void Show(int n, const QString& text);
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void Arrange();

  std::array<PanelLabel*, 7> panels_{};
};

}  // namespace qk
