// SPDX-License-Identifier: MIT
#include "display/marker_table.h"

#include <algorithm>
#include <cmath>

#include "core/quantity_text.h"
#include "core/text.h"
#include "display/frame.h"
#include "display/layout.h"
#include "trace/reference_plane.h"

namespace qk {

namespace {

// Fractions of the area's width and height.
constexpr double kLeft = 0.83, kColumn = 0.15, kRight = 0.98, kTop = 0.083, kBottom = 0.955;
constexpr double kRows = 0.2;
constexpr double kReferenceZo = 50;
constexpr const char* kBetweenParts = ",  ";  // of a complex value

std::string PositionText(const GraphRecord& graph, double position) {
  if (graph.IsDistance) return MetresText(position);
  return graph.IsTime ? NanosecondsText(position) : MegahertzText(position);
}

std::string ImpedanceText(Complex z, const char* picture = kImpedancePicture) {
  return FormatNumber(z.re, picture) + kBetweenParts + FormatNumber(z.im, picture) + " j";
}

std::string AdmittanceText(Complex y, const char* picture = kImpedancePicture) {
  if (!std::isfinite(y.re) || !std::isfinite(y.im)) return std::string(kNoValue);
  return ImpedanceText(1000 * y, picture) + " mS";
}

bool ReadsAdmittance(const GraphRecord& graph) {
  return graph.IsSmith && graph.Grid == ChartGrid::Admittance;
}

Complex GammaOf(const Marker& marker) {
  return {marker.Value, marker.Value2};
}

// The space before the uncertainty in a value: "± 0.01 dB", "+3.5 -6.0 dB", "at most -57.2".
std::size_t BandIn(const std::string& text) {
  std::size_t band = std::string::npos;
  for (const char* start : {" ± ", " +", " at most ", " at least "})
    band = std::min(band, text.find(start));
  return band;
}

// Draws lines centred in the column of the table; y is in text heights from a base line.
class TableText {
 public:
  TableText(Canvas& canvas, TableLetters letters) : canvas_(canvas), letters_(letters) {
    canvas_.SetFontSize(letters_.Points);
    height_ = canvas_.TextExtent("M").height;
  }

  void Draw(double base, double line, const std::string& text, std::uint32_t colour) {
    const Extent area = canvas_.Size();
    const double column = kColumn * area.width;
    // A reading that would touch the frame uses a smaller font, so that each digit can be read. In
    // the smallest one it may cross the frame, but not the edge of the picture.
    constexpr double kMargin = 3;  // pixels at each side
    int width = Width(text, letters_.Points);
    for (int points = letters_.Points - 1; width > column - 2 * kMargin && points >= letters_.Least;
         --points)
      width = Width(text, points);
    const int x = std::min(WholePixel(kLeft * area.width + (column - width) / 2),
                           std::max(0, area.width - width));
    canvas_.DrawText({x, WholePixel(base * area.height + line * height_)}, text, colour);
  }
  // The value of a row. An uncertainty that does not fit behind it is on the line below: smaller
  // letters could not be read; so is the second part of a complex value where it does not fit in
  // the smallest letters.
  void DrawValue(int row, const std::string& text, std::uint32_t colour) {
    const double column = kColumn * canvas_.Size().width;
    std::size_t end = std::string::npos;
    if (Width(text, letters_.Points) > column) end = BandIn(text);
    if (end == std::string::npos && letters_.Least > 1 && Width(text, letters_.Least) > column)
      end = text.find(kBetweenParts);
    DrawInRow(row, 3, text.substr(0, end), colour);
    if (end == std::string::npos) return;
    DrawInRow(row, 4, text.substr(text.find_first_not_of(kBetweenParts, end)), colour);
  }
  // Lines 1 to 3 of a row: title, position, value.
  void DrawInRow(int row, int line, const std::string& text, std::uint32_t colour) {
    Draw(kRows, line + 4 * row, text, colour);
  }

 private:
  int Width(const std::string& text, int points) {
    canvas_.SetFontSize(points);
    return canvas_.TextExtent(text).width;
  }

  Canvas& canvas_;
  TableLetters letters_;
  int height_ = 0;
};

// If there is a delta, it uses row 0 and the markers move down by one.
int RowOfMarker(const MarkerRecords& markers, int graph, int marker) {
  return ReferenceOf(markers, graph) >= 0 ? marker + 1 : marker;
}

}  // namespace

std::string MarkerPositionText(const GraphRecord& graph, const Marker& marker) {
  return PositionText(graph, PositionOf(graph, marker.Point));
}

std::string MarkerValueText(const GraphRecord& graph, const Marker& marker, double zo,
                            const char* picture) {
  if (ReadsAdmittance(graph)) return AdmittanceText(AdmittanceOf(GammaOf(marker), zo), picture);
  return graph.IsSmith ? ImpedanceText(ImpedanceOf(GammaOf(marker), zo), picture)
                       : ReadOut(marker.Value, graph.Units);
}

std::string DeltaPositionText(const GraphRecord& graph, const Marker& active,
                              const Marker& reference) {
  return PositionText(graph, PositionOf(graph, active.Point) - PositionOf(graph, reference.Point));
}

std::string DeltaValueText(const GraphRecord& graph, const Marker& active, const Marker& reference,
                           double zo) {
  if (ReadsAdmittance(graph))
    return AdmittanceText(AdmittanceOf(GammaOf(active), zo) - AdmittanceOf(GammaOf(reference), zo));
  return graph.IsSmith ? ImpedanceText(ImpedanceOf(GammaOf(active), zo) -
                                       ImpedanceOf(GammaOf(reference), kReferenceZo))
                       : ReadOut(active.Value - reference.Value, graph.Units);
}

TableLetters LettersOfTable(float screenScale, bool readable) {
  const int least = readable ? kReadablePoints : 1;
  return {std::max(least, static_cast<int>(screenScale * 10)), least};
}

Rect MarkerTableBox(Extent area) {
  return {WholePixel(kLeft * area.width), WholePixel(kTop * area.height),
          WholePixel(kRight * area.width), WholePixel(kBottom * area.height)};
}

void DrawMarkerTableBox(Canvas& canvas, const Colours& colours) {
  const Extent area = canvas.Size();
  const Rect box = MarkerTableBox(area);
  SetOutlinePen(canvas, colours);
  canvas.DrawRectangle({box.left, box.top}, {box.right, box.bottom});
  constexpr const char* kHeading = "MARKERS";
  const Extent size = canvas.TextExtent(kHeading);
  // Above the box and not beyond its right edge, even if the text is large for the area.
  const int y = std::min(WholePixel(1.8 * size.height), std::max(0, box.top - size.height));
  const int x = std::min(WholePixel(kLeft * area.width + size.width / 2.0),
                         std::max(0, box.right - size.width));
  canvas.DrawText({x, y}, kHeading, colours.TextColour);
}

void DrawMarkerTitles(Canvas& canvas, const Session& session, int graph, TableLetters letters) {
  const MarkerRecords& markers = session.Markers;
  const std::uint32_t colour = session.Colour.TextColour;
  const Parameter parameter = session.Channel(graph + 1).Parameter;
  TableText table(canvas, letters);
  table.Draw(kTop, 0.7,
             "Graph " + WholeNumberText(graph + 1) + " " + std::string(NameOf(parameter)), colour);
  table.Draw(kTop, 1.7, "Ref Plane", colour);
  const auto plane = static_cast<double>(session.Planes.*PlaneOf(parameter).Plane);
  table.Draw(kTop, 2.7, FormatNumber(plane * 1000, "###0.00") + " mm", colour);

  const int reference = ReferenceOf(markers, graph);
  const int active = ActiveOf(markers, graph);
  if (reference >= 0 && active >= 0)
    table.DrawInRow(
        0, 1, "delta (" + WholeNumberText(active + 1) + "-" + WholeNumberText(reference + 1) + ")",
        colour);
  for (int m = 0; m < kMarkers; ++m)
    if (markers.Of(graph, m).State != MarkerState::Off)
      table.DrawInRow(RowOfMarker(markers, graph, m), 1, "Marker " + WholeNumberText(m + 1),
                      colour);
}

void DrawMarkerReadings(Canvas& canvas, const Session& session, const GraphRecord& record,
                        int graph, TableLetters letters, bool holdsData,
                        const std::function<std::string(const Marker&)>& valueText) {
  const MarkerRecords& markers = session.Markers;
  const std::uint32_t colour = session.Colour.DataColour;
  const double zo = static_cast<double>(session.Impedance.SystemZo);
  TableText table(canvas, letters);
  const auto draw = [&](int row, const std::string& position, const std::string& value) {
    table.DrawInRow(row, 2, position, colour);
    table.DrawValue(row, holdsData ? value : "---", colour);
  };

  const int reference = ReferenceOf(markers, graph);
  const int active = ActiveOf(markers, graph);
  if (reference >= 0 && active >= 0) {
    const Marker& a = markers.Of(graph, active);
    const Marker& r = markers.Of(graph, reference);
    draw(0, DeltaPositionText(record, a, r), DeltaValueText(record, a, r, zo));
  }
  for (int m = 0; m < kMarkers; ++m) {
    const Marker& marker = markers.Of(graph, m);
    if (marker.State == MarkerState::Off) continue;
    draw(RowOfMarker(markers, graph, m), MarkerPositionText(record, marker),
         valueText ? valueText(marker) : MarkerValueText(record, marker, zo));
  }
}

}  // namespace qk
