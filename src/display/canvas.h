// SPDX-License-Identifier: MIT
// The drawing interface of the display code. The Qt skin implements it for screen, printer and
// image files; the tests record the drawing calls.
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

// Coordinates in pixels, y downward. Colours are 0xRRGGBB.
class Canvas {
 public:
  virtual ~Canvas() = default;
  virtual Extent Size() const = 0;
  virtual void SetPen(std::uint32_t colour, PenStyle style, int width) = 0;
  virtual void SetFontSize(int points) = 0;
  virtual Extent TextExtent(std::string_view text) const = 0;
  virtual void DrawLine(CanvasPoint a, CanvasPoint b) = 0;
  // The outline, drawn with the pen; not filled.
  virtual void DrawRectangle(CanvasPoint topLeft, CanvasPoint bottomRight) = 0;
  virtual void FillRectangle(CanvasPoint topLeft, CanvasPoint bottomRight,
                             std::uint32_t colour) = 0;
  virtual void DrawEllipse(CanvasPoint topLeft, CanvasPoint bottomRight) = 0;
  // An arc of the ellipse in the rectangle; angles in degrees, anticlockwise from the right.
  virtual void DrawArc(CanvasPoint topLeft, CanvasPoint bottomRight, double startDeg,
                       double spanDeg) = 0;
  virtual void DrawPolyline(std::span<const CanvasPoint> points) = 0;
  // Fills the area inside the points, without an outline; opacity 0 (invisible) to 1. What was
  // drawn before shows through.
  virtual void FillPolygon(std::span<const CanvasPoint> points, std::uint32_t colour,
                           double opacity) = 0;
  // topLeft is the top left corner of the text.
  virtual void DrawText(CanvasPoint topLeft, std::string_view text, std::uint32_t colour) = 0;
};

struct ReportDocument;  // display/report_document.h

// A picture to print on one page.
struct PageJob {
  std::string Printer;  // as chosen in the printer dialog
  std::string Title;    // title of the document
  Extent Size;          // size of the drawing, in its own pixels
  std::function<void(Canvas&)> Draw;
  // The position on a page of that size in the printer's pixels; empty: the page stays blank.
  std::function<std::optional<Rect>(Extent page, Extent picture)> Place;
  // A window to print as it looks on the screen, instead of Draw; may be empty. Draw is printed if
  // there is no screen.
  std::string Window;
};

// The picture area: a canvas with two layers. The current drawing can be committed as the
// background; Wipe restores the background in one step.
class PictureSurface {
 public:
  virtual ~PictureSurface() = default;
  virtual Canvas& Picture() = 0;
  virtual void Commit() = 0;
  virtual void Wipe() = 0;
  // Keeps the picture as it is now; Return restores it, at the cost of what was drawn since. The
  // next Commit or Wipe forgets it. False from a surface that cannot.
  virtual bool Keep() { return false; }
  virtual void Return() {}
  // The picture is ready to be shown. Cheap: screens may combine several calls.
  virtual void Present() = 0;

  // Draws the live layer from its stored data; set by the code that draws, may be empty.
  std::function<void()> DrawLive;
  // The live layer has changed. A surface may defer the drawing until the next frame or until the
  // picture is read.
  virtual void LiveChanged() {
    if (DrawLive) DrawLive();
  }
  // Performs deferred drawing now. Needed before reading markers, whose value and position are
  // updated by drawing, and before drawing over the live layer.
  virtual void CatchUp() {}

  // Saves the picture as an image file: BMP, PNG, GIF, TIFF or JPEG (quality 85), by the extension.
  // The failure's message contains only the cause.
  virtual Result<Done> Save(const std::string& path) { return Failure{"Not Implemented", path}; }
  // The same to the clipboard.
  virtual Result<Done> Copy() { return Failure{"Not Implemented", {}}; }
  virtual Result<Done> CopyText(const std::string& text) {
    return Failure{"Not Implemented", text};
  }
  // True if the path has a vector file extension (SVG, PDF); SaveDrawing writes such files.
  virtual bool DrawsVectors(const std::string&) const { return false; }
  // Runs draw on a canvas of that size and writes the result as a vector file, by the extension.
  virtual Result<Done> SaveDrawing(const std::string& path, Extent,
                                   const std::function<void(Canvas&)>&) {
    return Failure{"Not Implemented", path};
  }
  // Fails if WriteReport could not show this logo file. An empty path is no logo.
  virtual Result<Done> CheckLogo(const std::string& path) {
    return Failure{"Not Implemented", path};
  }
  // Writes a report as a PDF file.
  virtual Result<Done> WriteReport(const ReportDocument&, const std::string& path) {
    return Failure{"Not Implemented", path};
  }
  // Prints one page, at the printer's resolution.
  virtual Result<Done> Print(const PageJob& job) { return Failure{"No printer", job.Printer}; }
};

}  // namespace qk
