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

void StepDown(AutoscaleResult& result) {
  const char* units = Finer(result.Units);
  if (units == nullptr) return;
  result.Units = units;
  result.Scale *= 1000;
  result.Reference *= 1000;
}

void StepUp(AutoscaleResult& result) {
  const char* units = Coarser(result.Units);
  if (units == nullptr) return;
  result.Units = units;
  result.Scale /= 1000;
  result.Reference /= 1000;
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
  if (result.Scale < 0.1) {
    StepDown(result);
    if (channel.Units == "us" && result.Scale < 0.1) StepDown(result);
  } else if (result.Scale > 999) {
    StepUp(result);
    if (channel.Units == "ps" && result.Scale > 999) StepUp(result);
  }
  if (result.Scale < 0.01) result.Scale = 0.01;
  result.Scale = TwoDecimals(result.Scale);
  result.Reference = TwoDecimals(result.Reference);
  return result;
}

}  // namespace qk
