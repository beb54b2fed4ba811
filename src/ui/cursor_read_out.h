// SPDX-License-Identifier: MIT
// The read-out under the cursor. It is a separate layer over the picture, so prints and saved
// pictures do not contain it.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include <QLabel>
#include <QTimer>

#include "display/canvas.h"

namespace qk {

class CursorReadOut : public QLabel {
 public:
  using Read = std::function<std::optional<std::string>(CanvasPoint cursor)>;
  // Placed over the view, whose mouse events it watches; read returns the text for a pixel of the
  // view.
  CursorReadOut(QWidget& view, Read read);

  // The cursor shape, which shows what can be dragged there; may be empty.
  std::function<Qt::CursorShape(CanvasPoint cursor)> Shape;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Follow(QPoint cursor);
  void Show();
  void Leave();

  QWidget& view_;
  Read read_;
  QPoint cursor_;
  QTimer refresh_;  // a sweep changes the value under a resting cursor
};

}  // namespace qk
