// SPDX-License-Identifier: MIT
// The value under the cursor, over the picture and not in it: what is printed and saved stays as it
// is.
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
  // Stands over the view, whose mouse it watches; read gives the text at a pixel of the view.
  CursorReadOut(QWidget& view, Read read);

  // The form of the cursor, which says what can be taken there; may be empty.
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
  QTimer refresh_;  // a sweep changes what stands under a cursor that rests
};

}  // namespace qk
