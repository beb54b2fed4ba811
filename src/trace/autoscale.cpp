#include "trace/autoscale.h"

#include <cmath>

namespace qk {

namespace {
// The next finer or coarser unit, or nothing where the units have no step that way.
const char* Finer(const std::string& units) {
  if (units == "U") return "mU";
  if (units == "us") return "ns";
  if (units == "ns") return "ps";
  return nullptr;
}

const char* Coarser(const std::string& units) {
  if (units == "mU") return "U";
  if (units == "ps") return "ns";
  if (units == "ns") return "us";
  return nullptr;
}

double TwoDecimals(double value) {
  return std::round(value * 100) / 100;
}
}  // namespace

AutoscaleResult Autoscale(const ChannelSettings& channel, int numPoints) {
  AutoscaleResult result{false, channel.Units, channel.Scale, channel.Reference};
  double max = -1e9, min = 1e12;
  for (int i = 1; i <= numPoints; ++i) {
    const double value = channel.Value[static_cast<std::size_t>(i)];
    if (value > max) max = value;
    if (value < min) min = value;
  }
  if (max == min) return result;

  result.Changed = true;
  result.Reference = std::fabs(max - min) / 2 + min;
  result.Scale = (max - min) * 1.05 / 8;
  // One step or, from one end of the times to the other, two.
  while (result.Scale < 0.1 && Finer(result.Units) != nullptr) {
    result.Units = Finer(result.Units);
    result.Scale *= 1000;
    result.Reference *= 1000;
  }
  while (result.Scale > 999 && Coarser(result.Units) != nullptr) {
    result.Units = Coarser(result.Units);
    result.Scale /= 1000;
    result.Reference /= 1000;
  }
  if (result.Scale < 0.01) result.Scale = 0.01;
  result.Scale = TwoDecimals(result.Scale);
  result.Reference = TwoDecimals(result.Reference);
  return result;
}

}  // namespace qk
