// SPDX-License-Identifier: MIT
// A panel of the status bar: shows its text whole where there is room for it, shortened where not;
// its tool tip then has the whole.
#pragma once

#include <QLabel>

namespace qk {

class PanelLabel : public QLabel {
 public:
  // widest: a text that the panel is to have room for. about: what it tells.
  PanelLabel(const QString& widest, const QString& about);

  void Show(const QString& text);
  // The width that shows the present text whole.
  int WholeWidth() const;
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  int TextRoom() const;
  void TellWhole();

  QString widest_;
  QString about_;
};

}  // namespace qk
