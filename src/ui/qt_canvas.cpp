#include "ui/qt_canvas.h"

#include <algorithm>
#include <cstring>

#include <QFontMetrics>

namespace qk {

namespace {
constexpr const char* kFamily = "DejaVu Sans";
// A point is 1/72 inch; the picture is laid out for 96 pixels an inch whatever the screen says.
constexpr double kPixelsPerPoint = 96.0 / 72.0;

// Blank rows above a text, so that what stands at a frame's lower edge keeps clear of it.
int Leading(const QFont& font) {
  return std::max(1, font.pixelSize() / 8);
}

QColor ColourOf(std::uint32_t rgb) {
  return QColor::fromRgb(static_cast<QRgb>(rgb | 0xFF000000u));
}

QString TextOf(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QRect Outline(Point a, Point b) {
  return QRect(a.x, a.y, b.x - a.x, b.y - a.y);
}
}  // namespace

QtCanvas::QtCanvas(QPaintDevice& device, Extent size) : device_(device), size_(size) {
  font_.setFamily(QString::fromLatin1(kFamily));
  SetFontSize(10);
}

QPainter& QtCanvas::Painter() {
  if (!painter_.isActive()) {
    painter_.begin(&device_);
    painter_.setPen(pen_);
    painter_.setFont(font_);
  }
  return painter_;
}

void QtCanvas::Rest() {
  if (painter_.isActive()) painter_.end();
}

void QtCanvas::Smooth(bool on) {
  Painter().setRenderHint(QPainter::Antialiasing, on);
}

void QtCanvas::SetPen(std::uint32_t colour, PenStyle style, int width) {
  pen_ = QPen(ColourOf(colour), width);
  if (style == PenStyle::Dotted) pen_.setDashPattern({1, 2});
  Painter().setPen(pen_);
}

void QtCanvas::SetFontSize(int points) {
  font_.setPixelSize(std::max(1, qRound(points * kPixelsPerPoint)));
  if (painter_.isActive()) painter_.setFont(font_);
}

Extent QtCanvas::TextExtent(std::string_view text) const {
  const QFontMetrics metrics(font_);
  return {metrics.horizontalAdvance(TextOf(text)), metrics.height() + Leading(font_)};
}

void QtCanvas::DrawLine(Point a, Point b) {
  Smooth(false);
  Painter().drawLine(a.x, a.y, b.x, b.y);
}

void QtCanvas::DrawRectangle(Point topLeft, Point bottomRight) {
  Smooth(false);
  Painter().setBrush(Qt::NoBrush);
  Painter().drawRect(Outline(topLeft, bottomRight));
}

void QtCanvas::FillRectangle(Point topLeft, Point bottomRight, std::uint32_t colour) {
  Painter().fillRect(Outline(topLeft, bottomRight).adjusted(0, 0, 1, 1), ColourOf(colour));
}

void QtCanvas::DrawEllipse(Point topLeft, Point bottomRight) {
  Smooth(true);
  Painter().setBrush(Qt::NoBrush);
  Painter().drawEllipse(Outline(topLeft, bottomRight));
}

void QtCanvas::DrawArc(Point topLeft, Point bottomRight, double startDeg, double spanDeg) {
  Smooth(true);
  Painter().drawArc(Outline(topLeft, bottomRight), qRound(startDeg * 16), qRound(spanDeg * 16));
}

void QtCanvas::DrawPolyline(std::span<const Point> points) {
  static_assert(sizeof(Point) == sizeof(QPoint) && alignof(Point) == alignof(QPoint));
  if (points.empty()) return;
  Smooth(true);
  // Pixel centres, so that a level stretch is one sharp line.
  Painter().translate(0.5, 0.5);
  Painter().drawPolyline(reinterpret_cast<const QPoint*>(points.data()),
                         static_cast<int>(points.size()));
  Painter().translate(-0.5, -0.5);
}

void QtCanvas::DrawText(Point topLeft, std::string_view text, std::uint32_t colour) {
  QPainter& painter = Painter();
  painter.setPen(ColourOf(colour));
  painter.drawText(topLeft.x, topLeft.y + Leading(font_) + QFontMetrics(font_).ascent(),
                   TextOf(text));
  painter.setPen(pen_);
}

// ---- the picture area ------------------------------------------------------------------------

QtPicture::QtPicture(Extent size) {
  Resize(size);
}

void QtPicture::Resize(Extent size, double pixelRatio) {
  canvas_.reset();
  const QSize pixels(std::max(1, qRound(size.width * pixelRatio)),
                     std::max(1, qRound(size.height * pixelRatio)));
  image_ = QImage(pixels, QImage::Format_RGB32);
  image_.setDevicePixelRatio(pixelRatio);
  image_.fill(Qt::white);
  background_ = image_.copy();
  canvas_.emplace(image_, size);
}

void QtPicture::Commit() {
  canvas_->Rest();
  std::memcpy(background_.bits(), image_.constBits(),
              static_cast<std::size_t>(image_.sizeInBytes()));
}

void QtPicture::Wipe() {
  canvas_->Rest();
  std::memcpy(image_.bits(), background_.constBits(),
              static_cast<std::size_t>(image_.sizeInBytes()));
}

void QtPicture::Present() {
  canvas_->Rest();
  if (OnPresent) OnPresent();
}

const QImage& QtPicture::Image() {
  canvas_->Rest();
  return image_;
}

}  // namespace qk
