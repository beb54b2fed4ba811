// SPDX-License-Identifier: MIT
// The plot of the two power tests: named curves over linear axes with round ticks, drawn with the
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
  std::vector<double> X, Y;      // of one length
  std::vector<bool> Doubtful{};  // as long, or empty; these points are marked "?"
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
  std::vector<PlotCurve> Curves;  // named in a legend when there are two or more
};

// Values of the ticks of an axis: whole multiples of 1, 2 or 5 times a power of ten, from low to
// high, at most most of them. None when the axis has no length or is not finite.
struct Ticks {
  std::vector<double> Values;
  int Decimals = 0;  // that a label needs
};
Ticks RoundTicks(double low, double high, int most);

// Fills the canvas, whatever its size and shape. Curves end at the frame; values that are no number
// are left out.
void DrawPowerPlot(Canvas& canvas, const PowerPlot& plot);

}  // namespace qk
