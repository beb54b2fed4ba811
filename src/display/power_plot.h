// SPDX-License-Identifier: MIT
// The plot of the two power tests: named curves over linear axes with round ticks, drawn on the
// program's own canvas, so that window, page, image file and console show the same.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "display/canvas.h"

namespace qk {

struct PlotRange {
  double XMin = 0, XMax = 1, YMin = 0, YMax = 1;
};

struct PlotCurve {
  std::string Name;
  std::uint32_t Colour = 0;      // 0xRRGGBB
  std::vector<double> X, Y;      // of equal length
  std::vector<bool> Doubtful{};  // of the same length, or empty; marks these points "?"
  bool Marks = true;             // a small square at each point

  void Add(double x, double y, bool doubtful = false) {
    X.push_back(x);
    Y.push_back(y);
    Doubtful.push_back(doubtful);
  }
};

struct PowerPlot {
  std::string Title, XLabel, YLabel;
  PlotRange Range;
  std::vector<PlotCurve> Curves;  // listed in a legend if there are two or more
};

// The tick values of an axis: multiples of 1, 2 or 5 times a power of ten, from low to high, at
// most the given number. Empty if the axis has no length or is not finite.
struct Ticks {
  std::vector<double> Values;
  int Decimals = 0;  // decimals needed for a label
};
Ticks RoundTicks(double low, double high, int most);

// Fills the canvas, whatever its size and aspect ratio. Curves are clipped at the frame; NaN values
// are skipped.
void DrawPowerPlot(Canvas& canvas, const PowerPlot& plot);

}  // namespace qk
