// SPDX-License-Identifier: MIT
// The picture area on the screen: shows the picture, tells of the mouse and of another size.
#pragma once

#include <functional>

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

#include "forms/program.h"
#include "ui/qt_canvas.h"

namespace qk {

class QtHost;

class PictureView : public QWidget {
 public:
  PictureView(QtPicture& picture, QtHost& host);
  ~PictureView() override;

  std::function<void(Program::MouseAction, bool leftButton, int x, int y)> OnMouse;
  // The picture has another size and is to be drawn anew.
  std::function<void()> OnResized;

  QSize sizeHint() const override { return {820, 620}; }
  QSize minimumSizeHint() const override { return {480, 360}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  // Several drawings within one frame of the screen become one repaint.
  void Invalidate();
  void TakeSize();
  void TellMouse(Program::MouseAction action, const QMouseEvent& event, Qt::MouseButton button);

  QtPicture& picture_;
  QtHost& host_;
  QTimer repaint_;
  QTimer resize_;
  QElapsedTimer sinceRepaint_;
  qint64 frameMs_ = 0;  // what the last frame took, drawn and painted
  bool sized_ = false;
};

}  // namespace qk
