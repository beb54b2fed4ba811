// SPDX-License-Identifier: MIT
// A panel of the status bar. It shows its full text if there is room; otherwise the text is
// shortened and the tool tip shows the full text.
#pragma once

#include <QLabel>

namespace qk {

class PanelLabel : public QLabel {
 public:
  // widest: a text for which the panel should have room. about: the meaning of the panel.
  PanelLabel(const QString& widest, const QString& about);

  void Show(const QString& text);
  // Appends a remark to the meaning in the tool tip; replaces the previous one.
  void SetRemark(const QString& remark);
  // The width that shows the full current text.
  int WholeWidth() const;
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  int TextRoom() const;
  void UpdateToolTip();

  QString widest_;
  QString about_;
  QString remark_;
};

}  // namespace qk
