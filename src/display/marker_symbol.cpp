// SPDX-License-Identifier: MIT
#include "display/marker_symbol.h"

#include <algorithm>
#include <array>

#include "core/text.h"
#include "display/layout.h"

namespace qk {

namespace {

// Offsets from the point: x in widths, y in heights of the number, y downward.
struct Offset {
  double X, Y;
};

struct Shape {
  double Stem;       // end of the stem
  Offset Text;       // top left corner of the number
  double Label;      // centre of the number
  Offset Box[2];     // active: corners of the box
  double Base, Tip;  // reference: the triangle
  double Bars[2];    // fixed reference
};

constexpr Shape kPlainAbove{-1, {-0.6, -1.9}, -1.4, {}, 0, 0, {}};
constexpr Shape kPlainBelow{1, {-0.6, 1}, 1.5, {}, 0, 0, {}};
constexpr Shape kActiveAbove{-0.8, {-0.6, -1.8}, -1.3, {{-0.5, -1.9}, {0.8, -0.75}}, 0, 0, {}};
constexpr Shape kActiveBelow{0.8, {-0.6, 0.8}, 1.3, {{-0.6, 0.9}, {0.7, 1.8}}, 0, 0, {}};
constexpr Shape kReferenceAbove{-0.8, {-0.6, -1.8}, -1.3, {}, -1.9, -2.5, {-1.9, -2.1}};
constexpr Shape kReferenceBelow{0.8, {-0.7, 0.9}, 1.4, {}, 2.5, 1.9, {2.2, 2}};

// height: of the number.
const Shape& ShapeOf(const GraphRecord& graph, const Marker& marker, int height) {
  const bool reference = marker.State >= MarkerState::Reference;
  const bool above = marker.Y - (reference ? 2.5 : 2) * height > graph.Top;
  if (marker.State == MarkerState::Active) return above ? kActiveAbove : kActiveBelow;
  if (reference) return above ? kReferenceAbove : kReferenceBelow;
  return above ? kPlainAbove : kPlainBelow;
}

}  // namespace

Rect MarkerBounds(const Canvas& canvas, const GraphRecord& graph, const Marker& marker) {
  const Extent size = canvas.TextExtent(WholeNumberText(marker.Number));
  const Shape& shape = ShapeOf(graph, marker, size.height);
  // What a shape does not have is 0, at the point.
  const auto [top, bottom] = std::minmax({0.0, shape.Text.Y, shape.Text.Y + 1, shape.Box[0].Y,
                                          shape.Box[1].Y, shape.Base, shape.Tip, shape.Bars[0]});
  return {WholePixel(marker.X - 0.7 * size.width), WholePixel(marker.Y + top * size.height),
          WholePixel(marker.X + 0.8 * size.width), WholePixel(marker.Y + bottom * size.height)};
}

void DrawMarker(Canvas& canvas, const MarkedGraph& graph, Marker& marker,
                std::optional<std::uint32_t> ground) {
  FollowTrace(graph, marker);
  const TraceRecord& trace = graph.Of(marker.Trace);
  canvas.SetPen(trace.Colour, static_cast<PenStyle>(trace.PenStyle), 1);
  const std::string number = WholeNumberText(marker.Number);
  const Extent size = canvas.TextExtent(number);
  const auto at = [&](double x, double y) {
    return CanvasPoint{WholePixel(marker.X + x * size.width),
                       WholePixel(marker.Y + y * size.height)};
  };
  const Shape& shape = ShapeOf(graph.Graph, marker, size.height);

  // Clears the background so that no trace crosses the digit: the whole box, or only the digit,
  // which follows a blank.
  if (ground && marker.State == MarkerState::Active)
    canvas.FillRectangle(at(shape.Box[0].X, shape.Box[0].Y), at(shape.Box[1].X, shape.Box[1].Y),
                         *ground);
  else if (ground)
    canvas.FillRectangle(at(shape.Text.X + 0.3, shape.Text.Y),
                         at(shape.Text.X + 1.1, shape.Text.Y + 1), *ground);
  canvas.DrawLine(at(0, 0), at(0, shape.Stem));
  if (marker.State == MarkerState::Active) {
    canvas.DrawRectangle(at(shape.Box[0].X, shape.Box[0].Y), at(shape.Box[1].X, shape.Box[1].Y));
  } else if (marker.State == MarkerState::Reference) {
    canvas.DrawPolyline(std::array<CanvasPoint, 4>{at(0.5, shape.Base), at(-0.5, shape.Base),
                                                   at(0, shape.Tip), at(0.5, shape.Base)});
  } else if (marker.State == MarkerState::Fixed) {
    for (const double bar : shape.Bars) canvas.DrawLine(at(0.5, bar), at(-0.5, bar));
  }
  canvas.DrawText(at(shape.Text.X, shape.Text.Y), number, trace.Colour);
  marker.LabelY = at(0, shape.Label).y;
}

}  // namespace qk
