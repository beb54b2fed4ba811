// SPDX-License-Identifier: MIT
// Gain compression: from the readings at 21 levels to the 1 dB point, its plot and its text file.
#pragma once

#include <string>

#include "display/power_plot.h"
#include "numeric/regression.h"
#include "utilities/receiver_scale.h"

namespace qk {

// What stands around the device, in dB.
struct PowerPads {
  double InputAtt = 0, OutputAtt = 0;
  // 32-bit as held. Meant: it moves the range of the plot's x axis and no value.
  float CableLoss = 0;
};

// Where the gain has fallen by 1 dB below that at -20 dBm.
struct CompressionPoint {
  int Best = kLowestLevel;  // the level nearest to it; the lower one of two equally near
  double Reached = 0;       // dB of compression there
  double Received = 0;      // magnitude at exactly 1 dB, by a parabola through up to five levels
  bool ResultDoubtful = false;
};
// gain in dB, received in any linear unit. The regression is the window's own.
CompressionPoint LocateCompression(const PowerSeries& gain, const PowerSeries& received,
                                   RegressionObject& regression);

// y at x of the least-squares parabola through up to five levels of a run, those around the one at
// which x is nearly reached. The regression is the window's own.
double ParabolaAround(int level, const PowerSeries& xs, const PowerSeries& ys, double x,
                      RegressionObject& regression);

// A measurement; as it stands here before one.
struct CompressionResult {
  PowerSeries Gain{};  // dB, between the test set's ports
  PowerSeries Pout{};  // dBm at port 2
  PowerPads Pads;
  float GainAt1dB = -99;   // dB, at -20 dBm
  double P1dBValue = 100;  // dBm, at the device's output
  bool ResultDoubtful = false;
  bool PowersDoubtful = false;  // at every level: the receiver table may be another instrument's
  double Reached = 0;           // dB of compression at the level nearest to 1 dB

  PowerRun AsRun() const;
  double PinAt(int i) const { return At(Pout, i) - At(Gain, i) - Pads.InputAtt; }
  double GainAt(int i) const { return At(Gain, i) + Pads.InputAtt + Pads.OutputAtt; }
  double PoutAt(int i) const { return At(Pout, i) + Pads.OutputAtt; }
  static double At(const PowerSeries& series, int i) { return series[static_cast<std::size_t>(i)]; }
};

// through: the corrected responses of the calibration, zero without one. Meant: they pass through
// 32 bits.
CompressionResult ReduceCompression(const PowerSweep& sweep,
                                    const std::array<Complex, kPowerLevels>& through,
                                    const PowerPads& pads, const PowerMeter& meter,
                                    RegressionObject& regression);

// Two curves over the input power. The x values do not carry the cable's loss.
PowerPlot CompressionPlot(const CompressionResult& result, std::string title);
// The same before a measurement: axes alone.
PowerPlot EmptyCompressionPlot(std::string title);

// The head of both tests' text files: title, then date and time in two print zones.
struct PowerTextHead {
  std::string Title;
  std::string Date, Time;
  std::string TestFrequency;  // MHz, as shown
};
std::string CompressionText(const CompressionResult& result, const PowerTextHead& head);

// Lines that both files begin with; CR LF ends each, a lone CR stands on the third.
std::string PowerTextBegin(const PowerTextHead& head);
// The lower (direction -1) or upper (+1) end of an axis from a value that is 1 further out already:
// rounded downward, and half a unit where that is 0.
double AxisEnd(double outward, int direction);

}  // namespace qk
