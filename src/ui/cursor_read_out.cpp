// SPDX-License-Identifier: MIT
#include "ui/cursor_read_out.h"

#include <algorithm>

#include <QMouseEvent>
#include <QToolTip>

namespace qk {

namespace {
constexpr int kRefreshMs = 200;
constexpr int kBesideCursor = 14;  // pixels
}  // namespace

CursorReadOut::CursorReadOut(QWidget& view, Read read)
    : QLabel(&view), view_(view), read_(std::move(read)) {
  setObjectName("CursorReadOut");
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setTextFormat(Qt::PlainText);
  setBackgroundRole(QPalette::ToolTipBase);
  setForegroundRole(QPalette::ToolTipText);
  setAutoFillBackground(true);
  setFrameShape(QFrame::Box);
  setMargin(3);
  hide();
  refresh_.setInterval(kRefreshMs);
  connect(&refresh_, &QTimer::timeout, this, &CursorReadOut::Show);
  view.setMouseTracking(true);
  view.installEventFilter(this);
}

// A move without a button is used only here: the view handles only drags.
bool CursorReadOut::eventFilter(QObject*, QEvent* event) {
  switch (event->type()) {
    case QEvent::MouseMove: {
      const auto* move = static_cast<QMouseEvent*>(event);
      if (move->buttons() != Qt::NoButton) return false;
      Follow(move->position().toPoint());
      return true;
    }
    case QEvent::MouseButtonPress:
    case QEvent::Leave:
      Leave();
      return false;
    default:
      return false;
  }
}

void CursorReadOut::Follow(QPoint cursor) {
  cursor_ = cursor;
  if (Shape) {
    const Qt::CursorShape shape = Shape({cursor.x(), cursor.y()});
    if (view_.cursor().shape() != shape) view_.setCursor(shape);
  }
  if (!refresh_.isActive()) refresh_.start();
  Show();
}

void CursorReadOut::Show() {
  const auto text = read_({cursor_.x(), cursor_.y()});
  if (!text) {
    hide();
    return;
  }
  setText(QString::fromStdString(*text));
  setPalette(QToolTip::palette());  // the desktop may have turned dark or light
  // One line; several where the view is narrower.
  setWordWrap(false);
  adjustSize();
  if (width() > view_.width()) {
    setWordWrap(true);
    resize(view_.width(), heightForWidth(view_.width()));
  }
  // To the right of and below the cursor; to the left or above at the edge of the view.
  int x = cursor_.x() + kBesideCursor;
  int y = cursor_.y() + kBesideCursor;
  if (x + width() > view_.width()) x = cursor_.x() - kBesideCursor - width();
  if (y + height() > view_.height()) y = cursor_.y() - kBesideCursor - height();
  move(std::max(0, x), std::max(0, y));
  show();
}

void CursorReadOut::Leave() {
  refresh_.stop();
  hide();
}

}  // namespace qk
