// SPDX-License-Identifier: MIT
#include "ui/vector_file.h"

#include <algorithm>
#include <string_view>

#include <QBuffer>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgGenerator>

#include "files/whole_file.h"
#include "ui/qt_canvas.h"

namespace qk {

namespace {

constexpr double kPointsPerPixel = 72.0 / 96.0;
constexpr int kVectorDpi = 1200;  // dots per inch

bool EndsIn(const std::string& path, std::string_view ending) {
  if (path.size() < ending.size()) return false;
  return std::equal(ending.begin(), ending.end(), path.end() - static_cast<int>(ending.size()),
                    [](char a, char b) {
                      return a == (b >= 'A' && b <= 'Z' ? static_cast<char>(b - 'A' + 'a') : b);
                    });
}

bool DrawOn(QPainter& painter, Extent size, const std::function<void(Canvas&)>& draw) {
  painter.setClipRect(0, 0, size.width, size.height);
  {
    QtCanvas canvas(painter, size);
    draw(canvas);
  }
  return painter.end();
}

bool DrawSvg(QBuffer& into, Extent size, const std::function<void(Canvas&)>& draw) {
  QSvgGenerator generator;
  generator.setOutputDevice(&into);
  generator.setSize({size.width, size.height});
  generator.setViewBox(QRect(0, 0, size.width, size.height));
  generator.setResolution(96);
  generator.setTitle(QStringLiteral("QK47-20-09"));
  QPainter painter;
  return painter.begin(&generator) && DrawOn(painter, size, draw);
}

bool DrawPdf(QBuffer& into, Extent size, const std::function<void(Canvas&)>& draw) {
  QPdfWriter writer(&into);
  writer.setResolution(kVectorDpi);
  writer.setPageMargins({0, 0, 0, 0});
  writer.setPageSize(QPageSize(QSizeF(size.width * kPointsPerPixel, size.height * kPointsPerPixel),
                               QPageSize::Point, {}, QPageSize::ExactMatch));
  writer.setTitle(QStringLiteral("QK47-20-09"));
  QPainter painter;
  if (!painter.begin(&writer)) return false;
  const double scale = kVectorDpi / 96.0;
  painter.scale(scale, scale);
  return DrawOn(painter, size, draw);
}

}  // namespace

bool IsVectorPath(const std::string& path) {
  return EndsIn(path, ".svg") || EndsIn(path, ".pdf");
}

Result<Done> WriteVectorFile(const std::string& path, Extent size,
                             const std::function<void(Canvas&)>& draw) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  const bool drawn =
      EndsIn(path, ".svg") ? DrawSvg(buffer, size, draw) : DrawPdf(buffer, size, draw);
  buffer.close();
  if (!drawn || bytes.isEmpty()) return Failure{"The picture could not be drawn", path};
  return WriteWhole(path, {bytes.constData(), static_cast<std::size_t>(bytes.size())});
}

}  // namespace qk
