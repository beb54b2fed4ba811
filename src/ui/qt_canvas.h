// Drawing with QPainter: one canvas for the screen, image files and the printer, and the picture
// area in its two layers.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include <QFont>
#include <QImage>
#include <QPainter>

#include "display/canvas.h"

namespace qk {

// A canvas over any paint device that outlives it. Traces and arcs are smoothed; grid, frames and
// text keep to whole pixels.
class QtCanvas final : public Canvas {
 public:
  QtCanvas(QPaintDevice& device, Extent size);

  Extent Size() const override { return size_; }
  void SetPen(std::uint32_t colour, PenStyle style, int width) override;
  void SetFontSize(int points) override;
  Extent TextExtent(std::string_view text) const override;
  void DrawLine(Point a, Point b) override;
  void DrawRectangle(Point topLeft, Point bottomRight) override;
  void FillRectangle(Point topLeft, Point bottomRight, std::uint32_t colour) override;
  void DrawEllipse(Point topLeft, Point bottomRight) override;
  void DrawArc(Point topLeft, Point bottomRight, double startDeg, double spanDeg) override;
  void DrawPolyline(std::span<const Point> points) override;
  void DrawText(Point topLeft, std::string_view text, std::uint32_t colour) override;

  // Ends the painting on the device, so that its pixels may be copied; the next drawing begins
  // anew with the same pen and font.
  void Rest();

 private:
  QPainter& Painter();
  void Smooth(bool on);

  QPaintDevice& device_;
  Extent size_;
  QPainter painter_;
  QPen pen_;
  QFont font_;
};

// The picture area: the image that is drawn on, and the committed background.
class QtPicture : public PictureSurface {
 public:
  explicit QtPicture(Extent size);

  Canvas& Picture() override { return *canvas_; }
  void Commit() override;
  void Wipe() override;
  void Present() override;

  Extent Size() const { return canvas_->Size(); }
  // Another size in (device-independent) pixels; the contents are gone, the caller redraws.
  void Resize(Extent size, double pixelRatio = 1);
  // What stands drawn now.
  const QImage& Image();

  // The picture is ready to be seen; may be empty.
  std::function<void()> OnPresent;

 private:
  QImage image_, background_;
  std::optional<QtCanvas> canvas_;
};

}  // namespace qk
