// SPDX-License-Identifier: MIT
// Drawing as the display code needs it. The Qt skin gives one canvas for screen, printer and image
// files; the tests record what is drawn where.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/result.h"

namespace qk {

struct CanvasPoint {
  int x = 0;
  int y = 0;
};

struct Extent {
  int width = 0;
  int height = 0;
};

struct Rect {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;
};

enum class PenStyle { Solid = 0, Dashed = 1, Dotted = 2, DashDot = 3 };

// Pixels, y growing downward. Colours are 0xRRGGBB.
class Canvas {
 public:
  virtual ~Canvas() = default;
  virtual Extent Size() const = 0;
  virtual void SetPen(std::uint32_t colour, PenStyle style, int width) = 0;
  virtual void SetFontSize(int points) = 0;
  virtual Extent TextExtent(std::string_view text) const = 0;
  virtual void DrawLine(CanvasPoint a, CanvasPoint b) = 0;
  // Outline with the pen, not filled.
  virtual void DrawRectangle(CanvasPoint topLeft, CanvasPoint bottomRight) = 0;
  virtual void FillRectangle(CanvasPoint topLeft, CanvasPoint bottomRight,
                             std::uint32_t colour) = 0;
  virtual void DrawEllipse(CanvasPoint topLeft, CanvasPoint bottomRight) = 0;
  // Part of the ellipse in the rectangle; angles in degrees, anticlockwise from the right.
  virtual void DrawArc(CanvasPoint topLeft, CanvasPoint bottomRight, double startDeg,
                       double spanDeg) = 0;
  virtual void DrawPolyline(std::span<const CanvasPoint> points) = 0;
  // The area within the points, without an outline; opacity 0 (nothing) to 1. What was drawn before
  // shows through.
  virtual void FillPolygon(std::span<const CanvasPoint> points, std::uint32_t colour,
                           double opacity) = 0;
  // topLeft is the text's top left corner.
  virtual void DrawText(CanvasPoint topLeft, std::string_view text, std::uint32_t colour) = 0;
};

struct ReportDocument;  // display/report_document.h

// A picture for one page of paper.
struct PageJob {
  std::string Printer;  // as the printer dialog was answered
  std::string Title;    // of the document
  Extent Size;          // of what Draw draws, in its own pixels
  std::function<void(Canvas&)> Draw;
  // Where it comes to stand on a page of that size in the printer's pixels; nothing: the page stays
  // empty.
  std::function<std::optional<Rect>(Extent page, Extent picture)> Place;
  // A window to be printed as it stands on the screen, in place of Draw; may be empty. Where there
  // is no screen, Draw is printed.
  std::string Window;
};

// The picture area: a canvas in two layers. What stands drawn can be committed as the background;
// Wipe brings the background back in one step, however much was drawn over it.
class PictureSurface {
 public:
  virtual ~PictureSurface() = default;
  virtual Canvas& Picture() = 0;
  virtual void Commit() = 0;
  virtual void Wipe() = 0;
  // The picture is ready to be seen on the screen. Cheap: screens may join several.
  virtual void Present() = 0;

  // Draws the live layer as it is stored then; given by whoever draws, may be empty.
  std::function<void()> DrawLive;
  // The live layer has changed. A surface may put its drawing off until a frame is due or somebody
  // looks at the picture.
  virtual void LiveChanged() {
    if (DrawLive) DrawLive();
  }
  // Draws what was put off now: before markers are read, which take value and place as they are
  // drawn, and before anything is drawn over the live layer.
  virtual void CatchUp() {}

  // The picture as an image file: BMP, PNG, GIF, TIFF or JPEG (quality 85) by the extension. The
  // failure's message is the cause alone.
  virtual Result<Done> Save(const std::string& path) { return Failure{"Not Implemented", path}; }
  // ... on the clipboard.
  virtual Result<Done> Copy() { return Failure{"Not Implemented", {}}; }
  virtual Result<Done> CopyText(const std::string& text) {
    return Failure{"Not Implemented", text};
  }
  // The path's extension is that of a vector file (SVG, PDF), which SaveDrawing writes.
  virtual bool DrawsVectors(const std::string&) const { return false; }
  // Writes what draw draws, on a canvas of that size, as a vector file by the extension.
  virtual Result<Done> SaveDrawing(const std::string& path, Extent,
                                   const std::function<void(Canvas&)>&) {
    return Failure{"Not Implemented", path};
  }
  // Paints a report as a PDF file.
  virtual Result<Done> WriteReport(const ReportDocument&, const std::string& path) {
    return Failure{"Not Implemented", path};
  }
  // Prints one page, at the printer's resolution.
  virtual Result<Done> Print(const PageJob& job) { return Failure{"No printer", job.Printer}; }
};

}  // namespace qk
