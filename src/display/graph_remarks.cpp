// SPDX-License-Identifier: MIT
// Additional items of a graph: remarks, verdicts, failing points; and finding the item under the
// mouse.
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "core/measured_sweep.h"
#include "display/fail_mark.h"
#include "display/frame.h"
#include "display/graphs.h"
#include "display/layout.h"
#include "display/marker_symbol.h"
#include "display/remarks.h"

namespace qk {

namespace {
constexpr const char* kMore = " ...";  // where remarks are left out
constexpr int kBadgeEdge = 4;          // pixels around the word, and from the frame

bool Holds(const Rect& rect, CanvasPoint at, int around = 0) {
  return at.x >= rect.left - around && at.x <= rect.right + around && at.y >= rect.top - around &&
         at.y <= rect.bottom + around;
}

Rect RectAt(CanvasPoint at, Extent size) {
  return {at.x, at.y, at.x + size.width, at.y + size.height};
}
}  // namespace

void Graphs::TakeVerdicts(const std::array<LimitVerdict, kChannels>& verdicts) {
  TracesChanged();
  verdicts_ = verdicts;
  verdictGrid_ = session_.Plan;
}

bool Graphs::HasVerdict(int graph) const {
  const DisplayState& display = session_.Display;
  return View.Remarks && display.ShowLimits && display.LimitAlarmOn &&
         session_.Channel(graph + 1).LimitsOn && Verdict(graph).Tested &&
         SameGrid(verdictGrid_, session_.Plan) && ShowsMeasurement(graph);
}

// Records the space after the title and the channel's number, up to the graph's right edge or the
// impedance tag.
void Graphs::NoteRemarkPlace(int graph) {
  RemarkLine& line = remarks_[static_cast<std::size_t>(graph)];
  line = {};
  if (!View.Remarks && !View.AnyBand()) return;
  Canvas& canvas = Target();
  const Rect title = TitleRect(graph);
  const int blank = canvas.TextExtent("0").width;
  line.At = {title.right + 2 * blank, title.top};
  if (View.AxisNumbers)
    line.At.x += canvas.TextExtent("CH" + std::to_string(graph + 1)).width + blank;
  const GraphRecord& record = Graph(graph);
  line.End = record.Right;
  if (session_.Impedance.ZoConvertOn) {
    const Extent tag = canvas.TextExtent(ZoText(session_.Impedance));
    line.End = std::min(line.End, ZoTextAt(canvas.Size(), tag).x - blank);
  }
}

void Graphs::DrawRemarks(int graph) {
  Canvas& canvas = Target();
  RemarkLine& line = remarks_[static_cast<std::size_t>(graph)];
  std::vector<std::string> words;
  if (View.Remarks) words = RemarksOf(session_, graph + 1, ShowsMeasurement(graph));
  if (Bands != nullptr)
    for (const auto& [shown, kind] : {std::pair(View.Uncertainty, BandKind::Uncertainty),
                                      std::pair(View.Spread, BandKind::Spread)})
      if (shown)
        for (std::string& word : Bands->Words(kind, graph + 1)) words.push_back(std::move(word));
  std::string all;
  for (const std::string& word : words) all += (all.empty() ? "" : "  ") + word;
  canvas.SetFontSize(Letters(graph));
  if (all != line.All) {
    line.All = all;
    line.Fitting.clear();
    for (const std::string& word : words) {
      const std::string longer = line.Fitting + (line.Fitting.empty() ? "" : "  ") + word;
      if (line.At.x + canvas.TextExtent(longer).width > line.End) {
        if (line.At.x + canvas.TextExtent(line.Fitting + kMore).width <= line.End)
          line.Fitting += kMore;
        break;
      }
      line.Fitting = longer;
    }
  }
  if (!line.Fitting.empty()) canvas.DrawText(line.At, line.Fitting, session_.Colour.TextColour);
}

// At the right end of the upper edge, or at the nearest place to the left of it where the badge
// covers no failing point, no fail mark and no marker.
Rect Graphs::BadgePlace(int graph, Extent size) {
  const GraphRecord& record = Graph(graph);
  const CanvasPoint at{record.Right - kBadgeEdge - size.width, record.Top + kBadgeEdge};
  obstacles_.clear();
  const auto add = [&](const Rect& rect) {
    if (rect.top < at.y + size.height && rect.bottom > at.y) obstacles_.push_back(rect);
  };
  if (const std::optional<CanvasPoint> mark = FailMarkOf(graph); mark)
    add(FailMarkBounds(Target(), *mark));
  if (session_.Display.MarkersOn)
    for (int m = 0; m < kMarkers; ++m)
      if (const Marker& marker = session_.Markers.Of(graph, m); marker.State != MarkerState::Off)
        add(MarkerBounds(Target(), record, marker));
  const ChannelSettings& channel = session_.Channel(graph + 1);
  const TraceRecord& trace = Trace(graph, kDataTrace);
  const std::size_t firstRun = obstacles_.size();
  for (int i = 1; !Verdict(graph).Passed && i <= trace.Count; ++i) {
    const auto k = static_cast<std::size_t>(i);
    const CanvasPoint p = trace.Pixel[k];
    if (p.y < at.y || p.y > at.y + size.height ||
        PassesLimits(channel, static_cast<float>(trace.Value[k]), i))
      continue;
    // Neighbours within the width of a badge are one obstacle.
    if (obstacles_.size() > firstRun && p.x - obstacles_.back().right < size.width)
      obstacles_.back().right = p.x + 1;
    else
      obstacles_.push_back({p.x, at.y, p.x + 1, at.y + size.height});
  }
  const CanvasPoint place =
      ClearOf(obstacles_, at, size, kBadgeEdge, record.Left, record.Right - kBadgeEdge);
  return {place.x, place.y, place.x + size.width, place.y + size.height};
}

void Graphs::DrawBadge(int graph) {
  Canvas& canvas = Target();
  const LimitVerdict& verdict = Verdict(graph);
  canvas.SetFontSize(Letters(graph));
  const std::string word(WordOf(Judged(verdict.Passed, !UntestedText(graph).empty())));
  Extent size = canvas.TextExtent("FAIL");
  for (const std::string& text : {word, std::string("PASS")})
    size.width = std::max(size.width, canvas.TextExtent(text).width);
  size.width += 2 * kBadgeEdge;
  size.height += kBadgeEdge;
  const Rect badge = BadgePlace(graph, size);
  badges_[static_cast<std::size_t>(graph)] = badge;
  canvas.FillRectangle({badge.left, badge.top}, {badge.right, badge.bottom},
                       verdict.Passed ? kPassColour : kFailColour);
  canvas.DrawText({badge.left + kBadgeEdge, badge.top + kBadgeEdge / 2}, word, kBadgeText);
}

// Draws each run of failing points in the colour of the badge: a line, or a dot for a single point.
void Graphs::DrawFailingPoints(int graph) {
  const ChannelSettings& channel = session_.Channel(graph + 1);
  const TraceRecord& trace = Trace(graph, kDataTrace);
  const auto passes = [&channel, &trace](int i) {
    return PassesLimits(channel, static_cast<float>(trace.Value[static_cast<std::size_t>(i)]), i);
  };
  Canvas& canvas = Target();
  canvas.SetPen(kFailColour, PenStyle::Solid, 2);
  for (int i = 1; i <= trace.Count; ++i) {
    if (passes(i)) continue;
    const int first = i;
    while (i < trace.Count && !passes(i + 1)) ++i;
    canvas.DrawPolyline(
        {&trace.Pixel[static_cast<std::size_t>(first)], static_cast<std::size_t>(i - first + 1)});
  }
  SetTracePen(Trace(0, kDataTrace));
}

Graphs::Spot Graphs::SpotAt(CanvasPoint at) {
  Canvas& canvas = Target();
  for (int graph = 0; graph < kChannels; ++graph) {
    const GraphRecord& record = Graph(graph);
    if (!record.Enabled) continue;
    const Rect title = TitleRect(graph);  // sets the font of the graph
    if (Holds(title, at)) return {graph, SpotKind::Title};
    if (!record.IsSmith) {
      const ChannelSettings& channel = session_.Channel(graph + 1);
      const Extent scale = canvas.TextExtent(ScaleText(channel));
      if (Holds(RectAt(ScaleTextAt(record, scale), scale), at)) return {graph, SpotKind::Scale};
      const Extent reference = canvas.TextExtent(ReferenceText(channel));
      const int re = canvas.TextExtent("Re").width;
      if (Holds(RectAt(ReferenceTextAt(record, reference, re), reference), at))
        return {graph, SpotKind::Reference};
      constexpr int kAbout = 4;  // pixels of tolerance, because the mark is small
      const Extent r = canvas.TextExtent("R");
      const int line = record.Top + record.RefPosition * record.Height() / 8;
      const Rect mark{record.Left - 11 * r.width / 10, line - 3 * r.height / 10, record.Left - 1,
                      line + 3 * r.height / 10};
      if (at.x < record.Left && Holds(mark, at, kAbout)) return {graph, SpotKind::ReferenceMark};
    }
    if (View.Remarks && HasVerdict(graph) && Holds(badges_[static_cast<std::size_t>(graph)], at))
      return {graph, SpotKind::Badge};
    if (Holds({record.Left, record.Top, record.Right, record.Bottom}, at))
      return {graph, SpotKind::Inside};
    const Rect around{record.Left, title.top, record.Right,
                      record.Bottom + (title.bottom - title.top)};
    if (Holds(around, at)) return {graph, SpotKind::Beside};
  }
  return {};
}

int Graphs::PointAt(int graph, CanvasPoint at) const {
  const GraphRecord& record = Graph(graph);
  const TraceRecord& trace = Trace(graph, kDataTrace);
  int nearest = 1;
  double least = 1e18;
  for (int i = 1; i <= trace.Count; ++i) {
    const CanvasPoint p = trace.Pixel[static_cast<std::size_t>(i)];
    const double dx = p.x - at.x, dy = record.IsSmith ? p.y - at.y : 0;
    if (const double distance = dx * dx + dy * dy; distance < least) {
      least = distance;
      nearest = i;
    }
  }
  return nearest;
}

}  // namespace qk
