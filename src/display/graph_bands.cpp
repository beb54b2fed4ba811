// SPDX-License-Identifier: MIT
// Bands around the data traces, drawn behind them in the live layer, and read-outs with a band.
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <span>

#include "core/text.h"
#include "display/graphs.h"
#include "display/layout.h"
#include "display/mapping.h"
#include "display/marker_table.h"
#include "display/markers.h"

namespace qk {

namespace {
constexpr double kOpacity = 0.28;  // grid and stored traces show through
constexpr int kDiscs = 40;         // along a trace on a Smith chart
constexpr double kLeastDisc = 2;   // pixels of radius: smaller ones are the trace
constexpr int kCorners = 32;       // of a disc

// The middle of a band. The toolkit's dots are dear by the line: of many points every second
// stretch is drawn instead, which looks the same.
void DrawMiddle(Canvas& canvas, std::span<const CanvasPoint> middle, std::uint32_t colour) {
  constexpr std::size_t kMany = 300, kStretch = 4;
  if (middle.empty()) return;
  if (middle.size() < kMany) {
    canvas.SetPen(colour, PenStyle::Dotted, 1);
    canvas.DrawPolyline(middle);
    return;
  }
  canvas.SetPen(colour, PenStyle::Solid, 1);
  for (std::size_t i = 0; i + 1 < middle.size(); i += 2 * kStretch)
    canvas.DrawPolyline(middle.subspan(i, std::min(kStretch, middle.size() - i)));
}
}  // namespace

// Fills a contiguous part of a band: upper edge forward and lower edge back.
void Graphs::FillBand(std::uint32_t colour) {
  if (bandUpper_.empty()) return;
  if (bandUpper_.size() == 1) {  // a single point between two gaps
    Target().SetPen(colour, PenStyle::Solid, 1);
    Target().DrawLine(bandUpper_[0], bandLower_[0]);
  } else {
    bandUpper_.insert(bandUpper_.end(), bandLower_.rbegin(), bandLower_.rend());
    Target().FillPolygon(bandUpper_, colour, kOpacity);
  }
  bandUpper_.clear();
  bandLower_.clear();
}

void Graphs::DrawBand(int graph, BandKind kind, std::uint32_t colour) {
  const GraphRecord& record = Graph(graph);
  if (record.IsSmith) return DrawCircles(graph, kind, colour);
  const ChannelSettings& channel = session_.Channel(graph + 1);
  const TraceRecord& trace = Trace(graph, kDataTrace);
  const bool spread = kind == BandKind::Spread;
  bandUpper_.clear();
  bandLower_.clear();
  bandMiddle_.clear();
  for (int i = 1; i <= trace.Count; ++i) {
    const std::optional<Region> region = Bands->RegionAt(kind, graph + 1, i - 1);
    double shown = trace.Value[static_cast<std::size_t>(i)];
    if (region && spread) shown = ShownFor(session_, channel, region->Centre, i);
    const auto edges =
        region ? EndsOf(session_, channel, *region, i, shown) : std::optional<BandEnds>();
    if (!edges) {
      FillBand(colour);
      continue;
    }
    const CanvasPoint high = MapRect(record, i, edges->High), low = MapRect(record, i, edges->Low);
    const CanvasPoint middle = MapRect(record, i, shown);
    // Points of one column of pixels are one: the band about all of them.
    if (!bandUpper_.empty() && bandUpper_.back().x == high.x) {
      bandUpper_.back().y = std::min(bandUpper_.back().y, high.y);
      bandLower_.back().y = std::max(bandLower_.back().y, low.y);
      if (spread) bandMiddle_.back() = middle;
      continue;
    }
    bandUpper_.push_back(high);
    bandLower_.push_back(low);
    if (spread) bandMiddle_.push_back(middle);
  }
  FillBand(colour);
  DrawMiddle(Target(), bandMiddle_, colour);
}

// A region is a disc on the chart: draws some of them along the trace.
void Graphs::DrawCircles(int graph, BandKind kind, std::uint32_t colour) {
  const GraphRecord& record = Graph(graph);
  const TraceRecord& trace = Trace(graph, kDataTrace);
  const int step = std::max(1, (trace.Count + kDiscs - 1) / kDiscs);
  for (int i = 1; i <= trace.Count; i += step) {
    const std::optional<Region> region = Bands->RegionAt(kind, graph + 1, i - 1);
    if (!region) continue;
    const double radius = region->Radius * record.Height() / 2;
    if (radius < kLeastDisc || radius > record.Height()) continue;
    const bool spread = kind == BandKind::Spread;
    const auto k = static_cast<std::size_t>(i);
    const CanvasPoint at = spread ? MapSmith(record, region->Centre.re, region->Centre.im)
                                  : MapSmith(record, trace.Value[k], trace.Value2[k]);
    std::array<CanvasPoint, kCorners> disc;
    for (std::size_t c = 0; c < disc.size(); ++c) {
      const double turn = 2 * std::numbers::pi * static_cast<double>(c) / kCorners;
      disc[c] = {at.x + WholePixel(radius * std::cos(turn)),
                 at.y + WholePixel(radius * std::sin(turn))};
    }
    Target().FillPolygon(disc, colour, kOpacity);
  }
}

void Graphs::DrawBands(int graph) {
  if (Bands == nullptr || !HoldsData(graph) || !IsMeasured(graph)) return;
  if (View.Spread) DrawBand(graph, BandKind::Spread, session_.Colour.MemoryColour);
  if (View.Uncertainty) DrawBand(graph, BandKind::Uncertainty, session_.Colour.DataColour);
}

std::string Graphs::ValueText(int graph, const Marker& marker, double zo) const {
  const GraphRecord& record = Graph(graph);
  std::string plain = MarkerValueText(record, marker, zo);
  const bool live = marker.Trace == MarkerTrace::Data && marker.State != MarkerState::Fixed;
  if (!View.Uncertainty || Bands == nullptr || !live || !HoldsData(graph) || !IsMeasured(graph))
    return plain;
  const auto region = Bands->RegionAt(BandKind::Uncertainty, graph + 1, marker.Point - 1);
  if (!region) return plain;
  if (record.IsSmith) {
    const bool admittance = record.Grid == ChartGrid::Admittance;
    const Complex gamma{marker.Value, marker.Value2};
    // An admittance is the impedance of -S.
    const auto radius =
        ImpedanceRadius(Element::Reflection, {admittance ? -gamma : gamma, region->Radius},
                        admittance ? 1000 / zo : zo);
    if (!radius) return plain;
    const char* picture = BandPicture(*radius);
    return MarkerValueText(record, marker, zo, picture) + "  ± " + FormatNumber(*radius, picture);
  }
  const auto edges =
      EndsOf(session_, session_.Channel(graph + 1), *region, marker.Point, marker.Value);
  return edges ? BandReadOut(marker.Value, *edges, record.Units) : plain;
}

}  // namespace qk
