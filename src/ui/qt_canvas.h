// SPDX-License-Identifier: MIT
// Drawing with QPainter: one canvas for the screen, image files and the printer, and the picture
// area in its two layers.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QFont>
#include <QImage>
#include <QPainter>
#include <QRegion>

#include "display/canvas.h"
#include "ui/tile_record.h"

class QPrinter;

namespace qk {

// A canvas over any paint device, or on a painter at work on one, that outlives it. Traces and arcs
// are smoothed; grid, frames and text keep to whole pixels.
class QtCanvas final : public Canvas {
 public:
  QtCanvas(QPaintDevice& device, Extent size);
  QtCanvas(QPainter& painter, Extent size);

  // The tiles of the device that are drawn on are marked here; nullptr: nobody asks.
  TileRecord* Drawn = nullptr;

  Extent Size() const override { return size_; }
  void SetPen(std::uint32_t colour, PenStyle style, int width) override;
  void SetFontSize(int points) override;
  Extent TextExtent(std::string_view text) const override;
  // Of a line of letters of that size, in pixels.
  static int LineHeight(int points);
  void DrawLine(CanvasPoint a, CanvasPoint b) override;
  void DrawRectangle(CanvasPoint topLeft, CanvasPoint bottomRight) override;
  void FillRectangle(CanvasPoint topLeft, CanvasPoint bottomRight, std::uint32_t colour) override;
  void DrawEllipse(CanvasPoint topLeft, CanvasPoint bottomRight) override;
  void DrawArc(CanvasPoint topLeft, CanvasPoint bottomRight, double startDeg,
               double spanDeg) override;
  void DrawPolyline(std::span<const CanvasPoint> points) override;
  void FillPolygon(std::span<const CanvasPoint> points, std::uint32_t colour,
                   double opacity) override;
  void DrawText(CanvasPoint topLeft, std::string_view text, std::uint32_t colour) override;

  // Ends the painting on the device, so that its pixels may be copied; the next drawing begins
  // anew with the same pen and font.
  void Rest();

 private:
  QPainter& Painter();
  void Smooth(bool on);
  // Where a line of the pen about pixel p lies on whole pixels of the device: its middle, in the
  // units of the canvas.
  double Aligned(int p) const;
  QImage* Pixels();
  void DrawLines();
  void DrawDot(CanvasPoint at);
  void Mark(const QRectF& drawn);
  void DrawAligned(const QRectF& drawn);

  QPaintDevice* device_ = nullptr;
  QPainter* given_ = nullptr;  // at work already, ended by its owner
  Extent size_;
  double ratio_;         // pixels of the device to one of the canvas
  double penWidth_ = 1;  // in units of the canvas, a whole number of pixels of the device
  std::vector<QPointF> line_;
  QPainter painter_;
  QPen pen_;
  QFont font_;
};

// The picture area: the image that is drawn on, and the committed background.
class QtPicture : public PictureSurface {
 public:
  explicit QtPicture(Extent size);
  ~QtPicture() override;

  Canvas& Picture() override { return *canvas_; }
  void Commit() override;
  void Wipe() override;
  void Present() override;
  // The drawing waits until the picture is read; OnPresent tells that there is something to see.
  void LiveChanged() override;
  void CatchUp() override;

  Extent Size() const { return canvas_->Size(); }
  double PixelRatio() const { return image_.devicePixelRatio(); }
  // Another size in (device-independent) pixels; the contents are gone, the caller redraws.
  void Resize(Extent size, double pixelRatio = 1);
  // What stands drawn now, the live layer up to date.
  const QImage& Image();
  // Where the picture has changed since the last call, in (device-independent) pixels.
  QRegion TakeChanged();

  Result<Done> Save(const std::string& path) override;
  Result<Done> Copy() override;
  Result<Done> CopyText(const std::string& text) override;
  bool DrawsVectors(const std::string& path) const override;
  Result<Done> SaveDrawing(const std::string& path, Extent size,
                           const std::function<void(Canvas&)>& draw) override;
  Result<Done> WriteReport(const ReportDocument& report, const std::string& path) override;
  Result<Done> Print(const PageJob& job) override;

  // The picture is ready to be seen; may be empty.
  std::function<void()> OnPresent;
  // The printer that the dialog has chosen, and a window as it stands on the screen; may be empty.
  std::function<std::unique_ptr<QPrinter>()> ChosenPrinter;
  std::function<QImage(const std::string& window)> WindowImage;

 private:
  // The tiles that were drawn on, from one layer to the other.
  void Copy(const QImage& from, QImage& to);

  QImage image_, background_;
  TileRecord drawn_;    // where the image may differ from the background
  TileRecord changed_;  // what nobody has seen yet
  bool liveWaits_ = false;
  std::optional<QtCanvas> canvas_;
};

}  // namespace qk
