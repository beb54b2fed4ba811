// SPDX-License-Identifier: MIT
// Gain compression: computes the 1 dB point, its plot and its text file from the readings at 21
// levels.
#pragma once

#include <string>

#include "display/power_plot.h"
#include "numeric/regression.h"
#include "utilities/receiver_scale.h"

namespace qk {

// The components around the device, in dB.
struct PowerPads {
  double InputAtt = 0, OutputAtt = 0;
  // Stored as 32-bit. Intentional: it shifts the range of the plot's x axis and changes no value.
  float CableLoss = 0;
};

// The level at which the gain is 1 dB less than at -20 dBm.
struct CompressionPoint {
  int Best = kLowestLevel;  // the nearest level; the lower one at equal distance
  double Reached = 0;       // dB of compression there
  double Received = 0;      // magnitude at exactly 1 dB, by a parabola through up to five levels
  bool ResultDoubtful = false;
};
// gain in dB, received in any linear unit. The regression object belongs to the window.
CompressionPoint LocateCompression(const PowerSeries& gain, const PowerSeries& received,
                                   RegressionObject& regression);

// The value at x of the least-squares parabola through up to five consecutive levels, around the
// one nearest to x. The regression object belongs to the window.
double ParabolaAround(int level, const PowerSeries& xs, const PowerSeries& ys, double x,
                      RegressionObject& regression);

// A measurement; defaults are shown until one is made.
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

// through: the corrected responses of the calibration, zero without one. Intentional: they are
// rounded to 32 bits.
CompressionResult ReduceCompression(const PowerSweep& sweep,
                                    const std::array<Complex, kPowerLevels>& through,
                                    const PowerPads& pads, const PowerMeter& meter,
                                    RegressionObject& regression);

// Two curves over the input power. The x values do not include the cable loss.
PowerPlot CompressionPlot(const CompressionResult& result, std::string title);
// The same before a measurement: only the axes.
PowerPlot EmptyCompressionPlot(std::string title);

// The header of both tests' text files: title, then date and time in two print zones.
struct PowerTextHead {
  std::string Title;
  std::string Date, Time;
  std::string TestFrequency;  // MHz, as shown
};
std::string CompressionText(const CompressionResult& result, const PowerTextHead& head);

// The first lines of both files; each ends with CR LF, the third contains a lone CR.
std::string PowerTextBegin(const PowerTextHead& head);
// The lower (direction -1) or upper (+1) end of an axis, from a value that is already extended
// outward by 1: rounded downward, and half a unit if that is 0.
double AxisEnd(double outward, int direction);

}  // namespace qk
