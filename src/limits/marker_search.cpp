// SPDX-License-Identifier: MIT
#include "limits/marker_search.h"

#include <cmath>

namespace qk {

namespace {

double Level(const ChannelSettings& channel, int point) {
  const auto i = static_cast<std::size_t>(point);
  return RowOf(channel.GraphType).Form == PointForm::Chart
             ? std::sqrt(channel.Value[i] * channel.Value[i] +
                         channel.Value2[i] * channel.Value2[i])
             : channel.Value[i];
}

// Compares the points next to an extreme with it.
class BandRule {
 public:
  BandRule(const ChannelSettings& channel, int extreme, Extreme which, double bandDb)
      : channel_(channel),
        peak_(which == Extreme::Peak),
        linear_(channel.GraphType == GraphType::LinMag),
        level_(Level(channel, extreme)),
        edge_(linear_ ? std::pow(10, bandDb / 20) : bandDb),
        far_(linear_ ? std::pow(10, 1.5 * bandDb / 20) : 1.5 * bandDb) {}

  double Distance(int point) const { return std::fabs(Relative(point) - edge_); }
  bool Candidate(int point) const { return !peak_ || Level(channel_, point) < level_; }
  bool TooFar(int point) const { return peak_ ? far_ > Relative(point) : far_ < Relative(point); }

 private:
  // Decibels above the extreme, or its ratio to it.
  double Relative(int point) const {
    const double level = Level(channel_, point);
    return linear_ ? level / std::fmax(level_, kDivisionFloor) : level - level_;
  }

  const ChannelSettings& channel_;
  bool peak_, linear_;
  double level_, edge_, far_;
};

// Walks from the extreme to end (exclusive); returns edge if there is no candidate.
int FindEdge(const BandRule& rule, int extreme, int step, int end, int edge) {
  double least = 1e9;
  for (int i = extreme + step; i != end; i += step) {
    const double distance = rule.Distance(i);
    if (distance < least && rule.Candidate(i)) {
      least = distance;
      edge = i;
    }
    if (rule.TooFar(i)) break;
  }
  return edge;
}

void TakeActiveMarker(MarkerRecords& markers, int chosen) {
  for (int m = 0; m < kMarkers; ++m) markers.Set(m).IsActive = m == chosen;
  markers.Set(chosen).Shown = true;
  markers.Set(chosen).IsRef = false;
}

// Shows only markers 1 to 3: the extreme, the lower edge as the reference, the upper edge as the
// active one.
void TakeMarkersForBand(MarkerRecords& markers) {
  for (int m = 0; m < kMarkers; ++m) {
    MarkerSettings& set = markers.Set(m);
    set.Shown = m < 3;
    set.IsRef = m == 1;
    set.IsActive = m == 2;
  }
}

}  // namespace

int FindExtreme(const ChannelSettings& channel, int numPoints, Extreme which) {
  int best = 1;
  while (best < numPoints && std::isnan(Level(channel, best))) ++best;  // a gap is not an extreme
  for (int i = best + 1; i <= numPoints; ++i) {
    const bool better = which == Extreme::Peak ? Level(channel, best) < Level(channel, i)
                                               : Level(channel, best) > Level(channel, i);
    if (better) best = i;
  }
  return best;
}

BandEdges FindBand(const ChannelSettings& channel, int numPoints, int extreme, Extreme which,
                   double bandDb) {
  const BandRule rule(channel, extreme, which, bandDb);
  const int lower = FindEdge(rule, extreme, -1, 0, extreme);
  return {lower, FindEdge(rule, extreme, 1, numPoints + 1, lower)};
}

bool SearchMarkers(Session& session, Extreme which, std::optional<double> bandDb, int chosen) {
  MarkerRecords& markers = session.Markers;
  const int active = session.Display.ActiveChannel;
  const ChannelSettings& channel = session.Channel(active);
  const bool magnitude =
      channel.GraphType == GraphType::LogMag || channel.GraphType == GraphType::LinMag;
  session.Display.MarkersOn = true;
  if (bandDb) markers.Set(0).Shown = true;
  if (bandDb && magnitude)
    TakeMarkersForBand(markers);
  else
    TakeActiveMarker(markers, chosen);
  for (int m = 0; m < kMarkers; ++m) markers.Set(m).Point = markers.Of(active - 1, m).Point;

  const int numPoints = session.Plan.NumPoints;
  const int extreme = FindExtreme(channel, numPoints, which);
  if (!bandDb || !magnitude) {
    markers.Set(chosen).Point = static_cast<std::int16_t>(extreme);
    return !bandDb;
  }
  const BandEdges band = FindBand(channel, numPoints, extreme, which, *bandDb);
  markers.Set(0).Point = static_cast<std::int16_t>(extreme);
  markers.Set(1).Point = static_cast<std::int16_t>(band.Lower);
  markers.Set(2).Point = static_cast<std::int16_t>(band.Upper);
  return true;
}

}  // namespace qk
