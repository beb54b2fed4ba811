// SPDX-License-Identifier: MIT
// Drawing with QPainter: one canvas for the screen, image files and the printer, and the picture
// area with its two layers.
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

// A canvas on any paint device, or on an active painter, which must outlive it. Traces and arcs are
// antialiased; grid, frames and text are aligned to whole pixels.
class QtCanvas final : public Canvas {
 public:
  QtCanvas(QPaintDevice& device, Extent size);
  QtCanvas(QPainter& painter, Extent size);

  // Records the tiles of the device that are drawn on; nullptr records nothing.
  TileRecord* Drawn = nullptr;

  Extent Size() const override { return size_; }
  void SetPen(std::uint32_t colour, PenStyle style, int width) override;
  void SetFontSize(int points) override;
  Extent TextExtent(std::string_view text) const override;
  // Height in pixels of a line of text of that size.
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

  // Ends the painting on the device, so that its pixels may be copied; the next drawing starts
  // again with the same pen and font.
  void Rest();

 private:
  QPainter& Painter();
  void Smooth(bool on);
  // The centre of a line of the pen at pixel p, aligned to whole pixels of the device, in canvas
  // units.
  double Aligned(int p) const;
  QImage* Pixels();
  void DrawLines();
  void DrawDot(CanvasPoint at);
  void Mark(const QRectF& drawn);
  void DrawAligned(const QRectF& drawn);

  QPaintDevice* device_ = nullptr;
  QPainter* given_ = nullptr;  // already active; its owner ends it
  Extent size_;
  double ratio_;         // device pixels per canvas pixel
  double penWidth_ = 1;  // in canvas units; a whole number of device pixels
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
  bool Keep() override;
  void Return() override;
  void Present() override;
  // Defers the drawing until the picture is read; OnPresent reports that there is something to
  // show.
  void LiveChanged() override;
  void CatchUp() override;

  Extent Size() const { return canvas_->Size(); }
  double PixelRatio() const { return image_.devicePixelRatio(); }
  // Changes the size, in (device-independent) pixels. Clears the contents; the caller redraws.
  void Resize(Extent size, double pixelRatio = 1);
  // The current image, with the live layer up to date.
  const QImage& Image();
  // The region that has changed since the last call, in (device-independent) pixels.
  QRegion TakeChanged();

  Result<Done> Save(const std::string& path) override;
  Result<Done> Copy() override;
  Result<Done> CopyText(const std::string& text) override;
  bool DrawsVectors(const std::string& path) const override;
  Result<Done> SaveDrawing(const std::string& path, Extent size,
                           const std::function<void(Canvas&)>& draw) override;
  Result<Done> CheckLogo(const std::string& path) override;
  Result<Done> WriteReport(const ReportDocument& report, const std::string& path) override;
  Result<Done> Print(const PageJob& job) override;

  // Called when the picture is ready to be shown; may be empty.
  std::function<void()> OnPresent;
  // Return the printer chosen in the dialog, and a window as it looks on the screen; may be empty.
  std::function<std::unique_ptr<QPrinter>()> ChosenPrinter;
  std::function<QImage(const std::string& window)> WindowImage;

 private:
  // Copies the tiles that were drawn on, from one layer to the other.
  void Copy(const QImage& from, QImage& to);

  QImage image_, background_, kept_;
  TileRecord drawn_;    // where the image may differ from the background, or from what is kept
  TileRecord below_;    // where what is kept may differ from the background
  TileRecord stale_;    // where the image may differ from what was kept before
  TileRecord changed_;  // changes not yet shown
  bool liveWaits_ = false;
  std::optional<QtCanvas> canvas_;
};

}  // namespace qk
