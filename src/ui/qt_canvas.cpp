// SPDX-License-Identifier: MIT
#include "ui/qt_canvas.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include <QClipboard>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QPaintEngine>

#include "ui/image_file.h"
#include "ui/printing.h"
#include "ui/report_pdf.h"
#include "ui/trace_stroke.h"
#include "ui/vector_file.h"
#include "ui/vector_registers.h"

namespace qk {

namespace {
constexpr const char* kFamily = "DejaVu Sans";
// A point is 1/72 inch; the picture is laid out for 96 pixels per inch on every screen.
constexpr double kPixelsPerPoint = 96.0 / 72.0;

// Blank rows above a text, so that it does not touch a frame's lower edge.
int Leading(const QFont& font) {
  return std::max(1, font.pixelSize() / 8);
}

QColor ColourOf(std::uint32_t rgb) {
  return QColor::fromRgb(static_cast<QRgb>(rgb | 0xFF000000u));
}

QString TextOf(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QRect Outline(CanvasPoint a, CanvasPoint b) {
  return QRect(a.x, a.y, b.x - a.x, b.y - a.y);
}
}  // namespace

QtCanvas::QtCanvas(QPaintDevice& device, Extent size)
    : device_(&device), size_(size), ratio_(device.devicePixelRatioF()) {
  font_.setFamily(QString::fromLatin1(kFamily));
  SetFontSize(10);
}

QtCanvas::QtCanvas(QPainter& painter, Extent size)
    : given_(&painter), size_(size), ratio_(painter.deviceTransform().m11()) {
  font_.setFamily(QString::fromLatin1(kFamily));
  SetFontSize(10);
}

QPainter& QtCanvas::Painter() {
  if (given_ != nullptr) return *given_;
  if (!painter_.isActive()) {
    painter_.begin(device_);
    painter_.setPen(pen_);
    painter_.setFont(font_);
  }
  return painter_;
}

void QtCanvas::Rest() {
  if (painter_.isActive()) painter_.end();
  ClearVectorRegisters();
}

void QtCanvas::Smooth(bool on) {
  Painter().setRenderHint(QPainter::Antialiasing, on);
}

void QtCanvas::Mark(const QRectF& drawn) {
  // A margin of one pixel for antialiasing and rounding.
  const double edge = penWidth_ + 1;
  if (Drawn == nullptr) return;
  const QRectF wide = drawn.adjusted(-edge, -edge, edge, edge);
  Drawn->Add(QRectF(wide.topLeft() * ratio_, wide.size() * ratio_));
}

double QtCanvas::Aligned(int p) const {
  const double width = penWidth_ * ratio_;
  return (std::round((p + 0.5) * ratio_ - width / 2) + width / 2) / ratio_;
}

// Draws a horizontal or vertical bar on whole pixels of the device, filled with the pen's colour.
void QtCanvas::DrawAligned(const QRectF& drawn) {
  Smooth(false);
  Painter().fillRect(drawn, pen_.color());
}

// The width is in canvas pixels, and at least one device pixel.
void QtCanvas::SetPen(std::uint32_t colour, PenStyle style, int width) {
  penWidth_ = std::max(1.0, std::round(width * ratio_)) / ratio_;
  pen_ = QPen(ColourOf(colour), penWidth_);
  if (style == PenStyle::Dashed) pen_.setDashPattern({6, 3});
  if (style == PenStyle::Dotted) pen_.setDashPattern({1, 2});
  if (style == PenStyle::DashDot) pen_.setDashPattern({6, 3, 1, 3});
  Painter().setPen(pen_);
}

void QtCanvas::SetFontSize(int points) {
  font_.setPixelSize(std::max(1, qRound(points * kPixelsPerPoint)));
  if (given_ != nullptr || painter_.isActive()) Painter().setFont(font_);
}

Extent QtCanvas::TextExtent(std::string_view text) const {
  const QFontMetrics metrics(font_);
  return {metrics.horizontalAdvance(TextOf(text)), metrics.height() + Leading(font_)};
}

int QtCanvas::LineHeight(int points) {
  QImage none(1, 1, QImage::Format_RGB32);
  QtCanvas canvas(none, {1, 1});
  canvas.SetFontSize(points);
  return canvas.TextExtent("X").height;
}

void QtCanvas::DrawLine(CanvasPoint a, CanvasPoint b) {
  Mark(QRectF(QPointF(std::min(a.x, b.x), std::min(a.y, b.y)),
              QPointF(std::max(a.x, b.x), std::max(a.y, b.y))));
  Smooth(a.x != b.x && a.y != b.y);
  Painter().drawLine(QPointF(Aligned(a.x), Aligned(a.y)), QPointF(Aligned(b.x), Aligned(b.y)));
}

void QtCanvas::DrawRectangle(CanvasPoint topLeft, CanvasPoint bottomRight) {
  Mark(Outline(topLeft, bottomRight));
  const double half = penWidth_ / 2;
  const double left = Aligned(topLeft.x) - half, right = Aligned(bottomRight.x) - half;
  const double top = Aligned(topLeft.y) - half, bottom = Aligned(bottomRight.y) - half;
  for (const double x : {left, right})
    DrawAligned(QRectF(x, top, penWidth_, bottom - top + penWidth_));
  for (const double y : {top, bottom})
    DrawAligned(QRectF(left, y, right - left + penWidth_, penWidth_));
}

void QtCanvas::FillRectangle(CanvasPoint topLeft, CanvasPoint bottomRight, std::uint32_t colour) {
  const QRect filled = Outline(topLeft, bottomRight).adjusted(0, 0, 1, 1);
  Mark(filled);
  Painter().fillRect(filled, ColourOf(colour));
}

void QtCanvas::DrawEllipse(CanvasPoint topLeft, CanvasPoint bottomRight) {
  Mark(Outline(topLeft, bottomRight));
  Smooth(true);
  Painter().setBrush(Qt::NoBrush);
  Painter().drawEllipse(Outline(topLeft, bottomRight));
}

void QtCanvas::DrawArc(CanvasPoint topLeft, CanvasPoint bottomRight, double startDeg,
                       double spanDeg) {
  Mark(Outline(topLeft, bottomRight));
  Smooth(true);
  Painter().drawArc(Outline(topLeft, bottomRight), qRound(startDeg * 16), qRound(spanDeg * 16));
}

// The image being drawn on, if its pixels can be written directly.
QImage* QtCanvas::Pixels() {
  if (given_ != nullptr || device_->devType() != QInternal::Image) return nullptr;
  auto* image = static_cast<QImage*>(device_);
  return image->format() == QImage::Format_RGB32 ? image : nullptr;
}

// Draws a separate line for each pair of points if the toolkit renders pixels: its cost for a whole
// path grows much faster than the number of lines. Paper gets the path as it is.
void QtCanvas::DrawLines() {
  QPainter& painter = Painter();
  if (painter.paintEngine()->type() != QPaintEngine::Raster) {
    painter.drawPolyline(line_.data(), static_cast<int>(line_.size()));
    return;
  }
  QPen joined = pen_;
  if (pen_.style() == Qt::SolidLine) joined.setCapStyle(Qt::RoundCap);  // joints without gaps
  painter.setPen(joined);
  double drawn = 0;  // dashes continue from line to line: most lines are shorter than one
  for (std::size_t i = 1; i < line_.size(); ++i) {
    if (pen_.style() != Qt::SolidLine) {
      joined.setDashOffset(drawn / penWidth_);
      painter.setPen(joined);
      drawn += QLineF(line_[i - 1], line_[i]).length();
    }
    painter.drawLine(line_[i - 1], line_[i]);
  }
  painter.setPen(pen_);
}

// A visible dot. A trace that fits in two by two pixels is drawn as dots: a load on a Smith chart,
// a short with a little noise, a channel without data.
void QtCanvas::DrawDot(CanvasPoint at) {
  const double around = std::max(1.0, std::round(ratio_)) / ratio_;
  const double size = penWidth_ + 2 * around;
  const QPointF corner(Aligned(at.x) - size / 2, Aligned(at.y) - size / 2);
  Mark(QRectF(corner, QSizeF(size, size)));
  DrawAligned(QRectF(corner, QSizeF(size, size)));
}

void QtCanvas::DrawPolyline(std::span<const CanvasPoint> points) {
  if (points.empty()) return;
  const auto [left, right] = std::ranges::minmax(points, {}, &CanvasPoint::x);
  const auto [top, bottom] = std::ranges::minmax(points, {}, &CanvasPoint::y);
  if (right.x - left.x <= 1 && bottom.y - top.y <= 1) {
    for (const CanvasPoint at : {CanvasPoint{left.x, top.y}, CanvasPoint{right.x, top.y},
                                 CanvasPoint{left.x, bottom.y}, CanvasPoint{right.x, bottom.y}})
      if (std::ranges::any_of(points, [at](CanvasPoint p) { return p.x == at.x && p.y == at.y; }))
        DrawDot(at);
    return;
  }
  // Pixel centres, so that a horizontal section is one sharp line.
  line_.clear();
  for (const CanvasPoint p : points) line_.emplace_back(Aligned(p.x), Aligned(p.y));
  for (std::size_t i = 1; Drawn != nullptr && i < line_.size(); ++i)
    Mark(QRectF(line_[i - 1], line_[i]).normalized());
  Smooth(true);  // starts the painting, which detaches the image's pixels
  if (QImage* image = Pixels(); image != nullptr && pen_.style() == Qt::SolidLine) {
    for (QPointF& point : line_) point *= ratio_;
    StrokeTrace(*image, line_, qRound(penWidth_ * ratio_), pen_.color().rgb());
  } else {
    DrawLines();
  }
}

void QtCanvas::FillPolygon(std::span<const CanvasPoint> points, std::uint32_t colour,
                           double opacity) {
  if (points.empty()) return;
  const auto [left, right] = std::ranges::minmax(points, {}, &CanvasPoint::x);
  const auto [top, bottom] = std::ranges::minmax(points, {}, &CanvasPoint::y);
  Mark(Outline({left.x, top.y}, {right.x, bottom.y}));
  line_.clear();
  for (const CanvasPoint p : points) line_.emplace_back(Aligned(p.x), Aligned(p.y));
  QColor filled = ColourOf(colour);
  filled.setAlphaF(static_cast<float>(std::clamp(opacity, 0.0, 1.0)));
  QPainter& painter = Painter();
  Smooth(true);
  if (QImage* image = Pixels(); image != nullptr) {
    for (QPointF& point : line_) point *= ratio_;
    FillArea(*image, line_, filled.rgb(), std::clamp(opacity, 0.0, 1.0));
    return;
  }
  painter.setPen(Qt::NoPen);
  painter.setBrush(filled);
  painter.drawPolygon(line_.data(), static_cast<int>(line_.size()), Qt::WindingFill);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(pen_);
}

void QtCanvas::DrawText(CanvasPoint topLeft, std::string_view text, std::uint32_t colour) {
  QPainter& painter = Painter();
  if (const Extent size = TextExtent(text); Drawn != nullptr)
    Mark(QRectF(topLeft.x, topLeft.y, size.width, size.height));
  painter.setPen(ColourOf(colour));
  painter.drawText(topLeft.x, topLeft.y + Leading(font_) + QFontMetrics(font_).ascent(),
                   TextOf(text));
  painter.setPen(pen_);
}

// ---- the picture area ------------------------------------------------------------------------

QtPicture::QtPicture(Extent size) {
  Resize(size);
}

QtPicture::~QtPicture() = default;

void QtPicture::Resize(Extent size, double pixelRatio) {
  canvas_.reset();
  const QSize pixels(std::max(1, qRound(size.width * pixelRatio)),
                     std::max(1, qRound(size.height * pixelRatio)));
  image_ = QImage(pixels, QImage::Format_RGB32);
  image_.setDevicePixelRatio(pixelRatio);
  image_.fill(Qt::white);
  background_ = image_.copy();
  kept_ = QImage();
  for (TileRecord* record : {&drawn_, &below_, &stale_, &changed_}) record->Resize(pixels);
  changed_.AddAll();
  canvas_.emplace(image_, size);
  canvas_->Drawn = &drawn_;
}

namespace {
void CopyTiles(const TileRecord& tiles, const QImage& from, QImage& to) {
  constexpr std::size_t kPixel = 4;  // bytes
  for (const QRect& run : tiles.Runs())
    for (int y = run.top(); y <= run.bottom(); ++y)
      std::memcpy(to.scanLine(y) + kPixel * static_cast<std::size_t>(run.left()),
                  from.constScanLine(y) + kPixel * static_cast<std::size_t>(run.left()),
                  kPixel * static_cast<std::size_t>(run.width()));
}
}  // namespace

void QtPicture::Copy(const QImage& from, QImage& to) {
  canvas_->Rest();
  drawn_.Add(below_);
  below_.Clear();
  CopyTiles(drawn_, from, to);
  changed_.Add(drawn_);
  stale_.Add(drawn_);
  drawn_.Clear();
}

bool QtPicture::Keep() {
  canvas_->Rest();
  drawn_.Add(below_);
  stale_.Add(drawn_);
  if (kept_.isNull())
    kept_ = image_.copy();
  else
    CopyTiles(stale_, image_, kept_);
  changed_.Add(drawn_);
  stale_.Clear();
  below_ = drawn_;
  drawn_.Clear();
  return true;
}

void QtPicture::Return() {
  canvas_->Rest();
  CopyTiles(drawn_, kept_, image_);
  changed_.Add(drawn_);
  drawn_.Clear();
}

void QtPicture::Commit() {
  Copy(image_, background_);
}

void QtPicture::Wipe() {
  Copy(background_, image_);
}

void QtPicture::Present() {
  canvas_->Rest();
  changed_.Add(drawn_);
  const bool reading = std::exchange(liveWaits_, false);
  if (!reading && OnPresent) OnPresent();
}

void QtPicture::LiveChanged() {
  if (liveWaits_) return;
  liveWaits_ = true;
  if (OnPresent) OnPresent();
}

Result<Done> QtPicture::Save(const std::string& path) {
  return WriteImageFile(Image(), path);
}

Result<Done> QtPicture::Copy() {
  QGuiApplication::clipboard()->setImage(Image().copy());
  return Done{};
}

Result<Done> QtPicture::CopyText(const std::string& text) {
  QGuiApplication::clipboard()->setText(QString::fromStdString(text));
  return Done{};
}

bool QtPicture::DrawsVectors(const std::string& path) const {
  return IsVectorPath(path);
}

Result<Done> QtPicture::SaveDrawing(const std::string& path, Extent size,
                                    const std::function<void(Canvas&)>& draw) {
  return WriteVectorFile(path, size, draw);
}

Result<Done> QtPicture::CheckLogo(const std::string& path) {
  return CheckReportLogo(path);
}

Result<Done> QtPicture::WriteReport(const ReportDocument& report, const std::string& path) {
  return WriteReportPdf(report, path);
}

Result<Done> QtPicture::Print(const PageJob& job) {
  std::unique_ptr<QPrinter> printer = ChosenPrinter ? ChosenPrinter() : PrinterNamed(job.Printer);
  if (!printer) return Failure{"No such printer", job.Printer};
  const bool seen = WindowImage && !job.Window.empty();
  return PrintOn(*printer, job, seen ? WindowImage(job.Window) : QImage());
}

void QtPicture::CatchUp() {
  if (liveWaits_ && DrawLive) DrawLive();
  liveWaits_ = false;
}

const QImage& QtPicture::Image() {
  CatchUp();
  canvas_->Rest();
  return image_;
}

QRegion QtPicture::TakeChanged() {
  QRegion region;
  const double ratio = image_.devicePixelRatio();
  for (const QRect& run : changed_.Runs())
    region += QRectF(run.x() / ratio, run.y() / ratio, run.width() / ratio, run.height() / ratio)
                  .toAlignedRect();
  changed_.Clear();
  return region;
}

}  // namespace qk
