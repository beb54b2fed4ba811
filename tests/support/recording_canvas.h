// SPDX-License-Identifier: MIT
// A picture area without pixels: it records what is drawn, with which pen and font, and on which of
// the two layers.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "display/canvas.h"
#include "display/report_document.h"

namespace qk::test {

struct Drawn {
  enum class Kind { Line, Rectangle, Fill, Ellipse, Arc, Polyline, Text, Polygon };
  Kind What = Kind::Line;
  std::vector<CanvasPoint>
      Points;  // ends, corners (top left first), polyline, or a text's top left
  std::uint32_t Colour = 0;
  PenStyle Style = PenStyle::Solid;
  int Width = 1;
  std::string Text;
  int FontSize = 0;
  double StartDeg = 0, SpanDeg = 0;
  double Opacity = 1;  // for a polygon
};

// A character is 0.6 em wide and a line 1 em high, where an em is the font size: 6 by 10 pixels at
// font size 10.
class RecordingCanvas : public Canvas {
 public:
  explicit RecordingCanvas(Extent size) : size_(size) {}

  Extent Size() const override { return size_; }
  void SetPen(std::uint32_t colour, PenStyle style, int width) override;
  void SetFontSize(int points) override { fontSize_ = points; }
  Extent TextExtent(std::string_view text) const override;
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

  void Resize(Extent size) { size_ = size; }

  std::vector<Drawn> Items;       // drawn since the last commit or wipe
  bool Covered = false;           // one of them filled the whole area
  std::vector<std::string> Log;   // every operation in short: "fill", "text S11 LogMag", "commit"
  mutable int TextsMeasured = 0;  // number of calls of TextExtent

 private:
  void Add(Drawn::Kind what, std::vector<CanvasPoint> points, const std::string& log);

  Extent size_;
  std::uint32_t colour_ = 0;
  PenStyle style_ = PenStyle::Solid;
  int width_ = 1;
  int fontSize_ = 10;
};

// A printed page: the request, and what was drawn on it.
struct PrintedPage {
  std::string Printer, Title, Window;
  Extent Size;
  std::optional<Rect> Place;
  std::vector<Drawn> Items;  // in the picture's pixels
};

class RecordingSurface : public PictureSurface {
 public:
  explicit RecordingSurface(Extent size = {1000, 600}) : canvas_(size) {}

  Canvas& Picture() override { return canvas_; }
  void Commit() override;
  void Wipe() override;
  void Present() override;

  RecordingCanvas& canvas() { return canvas_; }
  const std::vector<Drawn>& Background() const { return background_; }
  const std::vector<Drawn>& Overlay() const { return canvas_.Items; }
  const std::vector<std::string>& Log() const { return canvas_.Log; }
  int Presented = 0;
  // Defers drawing of the live layer until the picture is read, like a screen between two frames.
  bool PutsOff = false;
  void LiveChanged() override;
  void CatchUp() override;

  Result<Done> Save(const std::string& path) override;
  Result<Done> Copy() override {
    ++Copies;
    return Done{};
  }
  int Copies = 0;
  Result<Done> CopyText(const std::string& text) override {
    CopiedText = text;
    return Done{};
  }
  std::string CopiedText;
  Result<Done> Print(const PageJob& job) override;
  bool DrawsVectors(const std::string& path) const override { return path.ends_with(".svg"); }
  Result<Done> SaveDrawing(const std::string& path, Extent size,
                           const std::function<void(Canvas&)>& draw) override;
  Result<Done> CheckLogo(const std::string&) override {
    if (Unavailable) return *Unavailable;
    return Done{};
  }
  // Writes a file of one line at the path, because the real one creates a file there.
  Result<Done> WriteReport(const ReportDocument& report, const std::string& path) override;
  struct WrittenReport {
    std::string Path;
    ReportDocument Report;
    std::vector<Drawn> Picture;  // what its drawing function drew
  };
  std::vector<WrittenReport> Reports;
  std::vector<std::string> SavedFiles;
  std::vector<std::vector<Drawn>> SavedPictures;  // including the overlay
  std::vector<PrintedPage> Pages;
  Extent Page{9000, 13000};            // printer page size
  std::optional<Failure> Unavailable;  // the failure that Save and Print return
  // Clears the log, not the picture.
  void ClearLog() { canvas_.Log.clear(); }

 private:
  RecordingCanvas canvas_;
  std::vector<Drawn> background_;
  bool waits_ = false;
};

// The items of one kind, the texts among them, and a text's item (nullptr if it was not drawn).
std::vector<Drawn> OfKind(const std::vector<Drawn>& items, Drawn::Kind what);
std::vector<std::string> TextsOf(const std::vector<Drawn>& items);
const Drawn* FindText(const std::vector<Drawn>& items, std::string_view text);

}  // namespace qk::test
