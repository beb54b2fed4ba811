// SPDX-License-Identifier: MIT
#include "utilities/compression.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <utility>

#include "core/text.h"

namespace qk {

namespace {
constexpr std::uint32_t kGainColour = 0x0000FF, kPointColour = 0xFF0000;

PowerPlot GainAxes(std::string title) {
  PowerPlot plot;
  plot.Title = std::move(title);
  plot.XLabel = "Pin (dBm)";
  plot.YLabel = "(dB/dBm)";
  return plot;
}

std::string TwoPlaces(double value) {
  return FormatNumber(value, "#0.00");
}
}  // namespace

double ParabolaAround(int level, const PowerSeries& xs, const PowerSeries& ys, double x,
                      RegressionObject& regression) {
  regression.init();
  regression.SetDegree(2);
  const int high = std::min(level + 2, kLowestLevel);
  for (int i = std::max(level - 2, 0); i <= high; ++i) {
    const auto k = static_cast<std::size_t>(i);
    regression.XYAdd(xs[k], ys[k]);
  }
  const double c1 = regression.Coeff(1), c2 = regression.Coeff(2), c0 = regression.Coeff(0);
  return c2 * x * x + (c1 * x + c0);
}

CompressionPoint LocateCompression(const PowerSeries& gain, const PowerSeries& received,
                                   RegressionObject& regression) {
  const auto at = [](const PowerSeries& series, int i) {
    return series[static_cast<std::size_t>(i)];
  };
  const double g0 = at(gain, kLowestLevel);
  const auto distance = [&](int i) { return std::abs(1 - (g0 - at(gain, i))); };
  CompressionPoint point;
  for (int k = kLowestLevel - 1; k >= 0; --k)
    if (distance(k) < distance(point.Best)) point.Best = k;
  point.Reached = g0 - at(gain, point.Best);
  point.ResultDoubtful = point.Reached < 0.5;

  point.Received = ParabolaAround(point.Best, gain, received, g0 - 1, regression);
  // A parabola that reaches zero or less does not follow the curve.
  if (!(point.Received > 0)) point.ResultDoubtful = true;
  return point;
}

CompressionResult ReduceCompression(const PowerSweep& sweep,
                                    const std::array<Complex, kPowerLevels>& through,
                                    const PowerPads& pads, const PowerMeter& meter,
                                    RegressionObject& regression) {
  CompressionResult result;
  result.Pads = pads;
  PowerSeries received;  // volts times 10000
  for (std::size_t i = 0; i < kPowerLevels; ++i) {
    const Complex kept{static_cast<double>(static_cast<float>(through[i].re)),
                       static_cast<double>(static_cast<float>(through[i].im))};
    const Complex normal = ComplexDivide(sweep.Levels[i].Corrected, kept);
    result.Gain[i] = MagnitudeDb(normal.re, normal.im);
    received[i] = sweep.Levels[i].TestVolts * 10000;
    result.Pout[i] = meter.Dbm(received[i] / 10);
  }
  const CompressionPoint point = LocateCompression(result.Gain, received, regression);
  result.GainAt1dB = static_cast<float>(result.Gain[kLowestLevel]);
  result.P1dBValue = pads.OutputAtt + meter.Dbm(point.Received / 10);
  result.ResultDoubtful = point.ResultDoubtful || meter.Foreign;
  result.PowersDoubtful = meter.Foreign;
  result.Reached = point.Reached;
  return result;
}

PowerRun CompressionResult::AsRun() const {
  PowerRun run{.Measured = true};
  for (int i = 0; i < kPowerLevels; ++i) {
    const auto at = static_cast<std::size_t>(i);
    run.Pin[at] = PinAt(i);
    run.Value[at] = GainAt(i);
    run.Value2[at] = PoutAt(i);
    run.Doubtful[at] = PowersDoubtful;
  }
  return run;
}

double AxisEnd(double outward, int direction) {
  const double end = std::floor(outward);
  return end == 0 ? 0.5 * direction : end;
}

PowerPlot EmptyCompressionPlot(std::string title) {
  PowerPlot plot = GainAxes(std::move(title));
  plot.Range = {-22, 1, -20, 20};
  return plot;
}

PowerPlot CompressionPlot(const CompressionResult& result, std::string title) {
  PowerPlot plot = GainAxes(std::move(title));
  PlotCurve gain{.Name = "Gain", .Colour = kGainColour, .X = {}, .Y = {}};
  PlotCurve pout{.Name = "Pout", .Colour = kPointColour, .X = {}, .Y = {}};
  double ymin = 100, ymax = -100;
  for (int i = kLowestLevel; i >= 0; --i) {
    const double x = result.PinAt(i);
    gain.Add(x, result.GainAt(i), result.PowersDoubtful);
    pout.Add(x, result.PoutAt(i), result.PowersDoubtful);
    for (const double y : {result.GainAt(i), result.PoutAt(i)}) {
      ymin = std::min(ymin, y);
      ymax = std::max(ymax, y);
    }
  }
  const double loss = static_cast<double>(result.Pads.CableLoss);
  const double attenuation = result.Pads.InputAtt;
  plot.Range = {AxisEnd((-22 - attenuation) - loss, -1), AxisEnd(1 + ((-attenuation) - loss), 1),
                AxisEnd(ymin - 1, -1), AxisEnd(ymax + 1, 1)};
  plot.Curves = {std::move(gain), std::move(pout)};
  return plot;
}

std::string PowerTextBegin(const PowerTextHead& head) {
  return head.Title + "\r\n" + NextZone(head.Date, head.Time) +
         "\r\n\r\r\nTest Frequency (MHz)=" + head.TestFrequency + "\r\n";
}

std::string CompressionText(const CompressionResult& result, const PowerTextHead& head) {
  std::string text = PowerTextBegin(head);
  text += "Measured P1dB (dBm)=" + TwoPlaces(result.P1dBValue) +
          (result.ResultDoubtful ? " ?" : "") + "\r\n\r\n";
  text += "  Pin(dBm)   Gain(dB)    Pout(dBm)\r\n";
  for (int i = kLowestLevel; i >= 0; --i) {
    std::string line = TwoPlaces(result.PinAt(i));
    line = NextZone(line, TwoPlaces(result.GainAt(i)));
    text +=
        NextZone(line, TwoPlaces(result.PoutAt(i))) + (result.PowersDoubtful ? " ?" : "") + "\r\n";
  }
  return text;
}

}  // namespace qk
