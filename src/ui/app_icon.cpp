// SPDX-License-Identifier: MIT
#include "ui/app_icon.h"

#include <QPainter>
#include <QPainterPath>

namespace qk {

namespace {

QPixmap Drawn(int size) {
  QPixmap pixmap(size, size);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(size / 32.0, size / 32.0);
  painter.setPen(QPen(QColor(0x40, 0x48, 0x58), 1.5));
  painter.setBrush(QColor(0xF8, 0xFA, 0xFF));
  painter.drawRoundedRect(QRectF(1.5, 3.5, 29, 25), 3, 3);
  painter.setPen(QPen(QColor(0xC0, 0xC8, 0xD8), 0.8));
  for (const double x : {11.0, 21.0}) painter.drawLine(QPointF(x, 5), QPointF(x, 27));
  painter.drawLine(QPointF(3, 16), QPointF(29, 16));
  QPainterPath trace(QPointF(4, 9));
  trace.cubicTo(13, 9, 13, 9, 16, 24);
  trace.cubicTo(19, 9, 19, 9, 28, 9);
  painter.setPen(QPen(QColor(0, 0, 0x80), 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(Qt::NoBrush);
  painter.drawPath(trace);
  return pixmap;
}

}  // namespace

QIcon ProgramIcon() {
  QIcon icon;
  for (const int size : {16, 24, 32, 48, 64, 128}) icon.addPixmap(Drawn(size));
  return icon;
}

}  // namespace qk
