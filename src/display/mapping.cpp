// SPDX-License-Identifier: MIT
#include "display/mapping.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "display/layout.h"

namespace qk {

namespace {
// Pixels are stored in 16 bits; a picture is never larger.
int StoredPixel(double position) {
  using Stored = std::numeric_limits<std::int16_t>;
  return static_cast<std::int16_t>(
      std::clamp<double>(std::round(position), Stored::min(), Stored::max()));
}

// Rounds, then clamps to high and after that to low; NaN gives none.
int Clipped(double position, int low, int high, int none) {
  if (std::isnan(position)) return none;
  return StoredPixel(std::max<double>(std::min<double>(std::round(position), high), low));
}
}  // namespace

float UsableScale(float scale) {
  constexpr float kLeastScale = 1e-14f;
  if (std::fabs(scale) > kLeastScale) return scale;
  return scale < 0 ? -kLeastScale : kLeastScale;
}

CanvasPoint MapRect(const GraphRecord& graph, int index, double value) {
  const double scale = static_cast<double>(graph.Scale);
  const double dx = static_cast<double>(graph.Width()) / std::max(1, graph.NumPoints - 1);
  const double dy = (graph.Top - graph.Bottom) / (scale * 8);
  const double y =
      ((8 - graph.RefPosition) * scale + (value - graph.Reference)) * dy + graph.Bottom;
  return {StoredPixel(graph.Left + (index - 1) * dx),
          Clipped(y, graph.Top, graph.Bottom, graph.Bottom)};
}

CanvasPoint MapSmith(const GraphRecord& graph, double re, double im) {
  const int centreX = WholePixel(graph.Left + graph.Width() / 2.0);
  const int centreY = WholePixel(graph.Top + graph.Height() / 2.0);
  const double x = centreX + graph.Height() * re / 2;
  const double y = centreY - graph.Height() * im / 2;
  return {Clipped(x, graph.Left, graph.Right, centreX),
          Clipped(y, graph.Top, graph.Bottom, graph.Bottom)};
}

}  // namespace qk
