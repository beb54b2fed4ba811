// SPDX-License-Identifier: MIT
// The picture area on the screen: shows the picture and reports mouse events and size changes.
#pragma once

#include <functional>
#include <vector>

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

#include "forms/program.h"
#include "ui/qt_canvas.h"

class QMenu;

namespace qk {

class QtHost;

class PictureView : public QWidget {
 public:
  PictureView(QtPicture& picture, QtHost& host);
  ~PictureView() override;

  std::function<void(Program::MouseAction, bool leftButton, int x, int y)> OnMouse;
  // Wheel steps away from the user; shift: the Shift key is pressed.
  std::function<void(int x, int y, int steps, bool shift)> OnWheel;
  std::function<void(int x, int y)> OnDoubleClick;
  // The menu at a position; empty for none.
  std::function<std::vector<MenuEntry>(int x, int y)> MenuAt;
  // Shows a menu at a position of the view and returns at once.
  void ShowMenu(const std::vector<MenuEntry>& entries, QPoint at);
  // The size of the picture has changed; it must be redrawn.
  std::function<void()> OnResized;

  QSize sizeHint() const override { return {820, 620}; }
  QSize minimumSizeHint() const override { return {480, 360}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  // Combines several drawings within one frame into one repaint.
  void Invalidate();
  void TakeSize();
  void Fill(QMenu& menu, const std::vector<MenuEntry>& entries);
  void ForwardMouse(Program::MouseAction action, const QMouseEvent& event, Qt::MouseButton button);

  QtPicture& picture_;
  QtHost& host_;
  QTimer repaint_;
  QTimer resize_;
  QElapsedTimer sinceRepaint_;
  qint64 frameMs_ = 0;  // duration of the last frame, drawing and painting
  bool sized_ = false;
  int turned_ = 0;  // wheel movement in eighths of a degree that is less than one step
};

}  // namespace qk
