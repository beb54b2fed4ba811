// SPDX-License-Identifier: MIT
#include "trace/smoothing.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace qk {

namespace {
// Gaps are kept: a point without a value gets no smoothed value and does not contribute to others.
bool IsGap(const ChannelSettings& settings, std::size_t i) {
  return RowOf(settings.GraphType).HasGaps() && std::isnan(settings.Value[i]);
}

void Plot(const ChannelSettings& settings, PointSink& sink, int channel, int point) {
  const auto i = static_cast<std::size_t>(point);
  sink.PlotPoint(channel, point, static_cast<double>(settings.SmoothValue[i]),
                 static_cast<double>(settings.SmoothValue2[i]));
}

// Sets points first to last to the smoothed value of point from, and plots them.
void Spread(ChannelSettings& settings, PointSink& sink, int channel, int from, int first,
            int last) {
  for (int k = first; k <= last; ++k) {
    const auto to = static_cast<std::size_t>(k);
    settings.SmoothValue[to] = settings.SmoothValue[static_cast<std::size_t>(from)];
    if (IsGap(settings, to)) settings.SmoothValue[to] = std::numeric_limits<float>::quiet_NaN();
    settings.SmoothValue2[to] = settings.SmoothValue2[static_cast<std::size_t>(from)];
    Plot(settings, sink, channel, k);
  }
}
}  // namespace

bool IsSmoothed(const Session& session, const ChannelSettings& channel) {
  return RowOf(channel.GraphType).Smoothed && session.Averaging.SmoothOn &&
         session.Averaging.SmoothingPercent >= 1;
}

int SmoothingAperture(int percent, int numPoints) {
  int aperture = std::max(1, percent * numPoints / 100);
  if (aperture > 3 && aperture % 2 == 0) --aperture;
  return aperture;
}

double SmoothingWeight(int position, int aperture) {
  const int half = aperture / 2;
  if (half <= 1 || aperture <= 3) return 1;
  const double triangle = static_cast<double>(half - std::abs(position - half)) / (half - 1);
  return std::min(1.0, triangle * 0.8 + 0.2);
}

void SmoothPoint(Session& session, PointSink& sink, int channel, int pointIndex) {
  ChannelSettings& settings = session.Channel(channel);
  const int numPoints = session.Plan.NumPoints;
  const int aperture = SmoothingAperture(session.Averaging.SmoothingPercent, numPoints);
  const int half = aperture / 2;
  if (pointIndex < aperture) return;

  const int first = pointIndex - aperture + 1;
  double sumRe = 0, sumIm = 0;
  float sumW = 0;  // 32-bit, so that traces compare equal with earlier ones
  for (int position = 0; position < aperture; ++position) {
    const auto k = static_cast<std::size_t>(first + position);
    if (IsGap(settings, k)) continue;
    const double w = SmoothingWeight(position, aperture);
    sumRe += w * settings.Value[k];
    sumIm += w * settings.Value2[k];
    sumW = static_cast<float>(static_cast<double>(sumW) + w);
  }
  const int centre = pointIndex - half;
  const auto j = static_cast<std::size_t>(centre);
  settings.SmoothValue[j] = static_cast<float>(sumRe / static_cast<double>(sumW));
  settings.SmoothValue2[j] = static_cast<float>(sumIm / static_cast<double>(sumW));
  if (IsGap(settings, j)) settings.SmoothValue[j] = std::numeric_limits<float>::quiet_NaN();
  Plot(settings, sink, channel, centre);

  if (pointIndex == aperture) Spread(settings, sink, channel, centre, 1, half);
  if (pointIndex == numPoints && half >= 1)
    Spread(settings, sink, channel, numPoints - half, numPoints - half + 1, numPoints);
}

}  // namespace qk
