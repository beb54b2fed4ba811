// SPDX-License-Identifier: MIT
#include "utilities/am_to_pm.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/text.h"

namespace qk {

namespace {
constexpr std::uint32_t kBlue = 0x0000FF;

double At(const PowerSeries& series, int i) {
  return series[static_cast<std::size_t>(i)];
}

// The slopes' parabola at the read-out, through up to five levels around the nearest one.
double ReadOut(const AmToPmResult& result, RegressionObject& regression) {
  double best = 1000;
  int nearest = kLowestLevel;
  for (int i = kLowestLevel; i >= 0; --i) {
    const double distance = std::abs(result.ReadoutPin - At(result.Pin, i));
    if (distance < best) {
      best = distance;
      nearest = i;
    }
  }
  return ParabolaAround(nearest, result.Pin, result.AmPm, result.ReadoutPin, regression);
}

PowerPlot Axes(std::string title) {
  PowerPlot plot;
  plot.Title = std::move(title);
  plot.XLabel = "Pin (dBm)";
  plot.YLabel = "(deg/dB)";
  return plot;
}
}  // namespace

PowerSeries PhasesOf(const PowerSweep& sweep) {
  PowerSeries phases;
  for (std::size_t i = 0; i < kPowerLevels; ++i) {
    const Complex z = sweep.Levels[i].Corrected;
    phases[i] = static_cast<double>(PhaseDeg(z.re, z.im));
  }
  return phases;
}

float Wrap(float degrees) {
  if (degrees > 300) degrees = degrees - 180;
  if (degrees < 300) degrees = degrees + 180;
  return degrees;
}

PowerSeries AmPmSlopes(const PowerSeries& phase, const PowerSeries& calPhase,
                       const PowerSeries& pout) {
  const auto step = [](const PowerSeries& series, int i) {
    return static_cast<double>(Wrap(static_cast<float>(At(series, i) - At(series, i + 2))));
  };
  PowerSeries slopes{};
  for (int i = kLowestLevel - 2; i >= 0; --i) {
    const double moved = step(phase, i) - step(calPhase, i);
    const double power = At(pout, i) - At(pout, i + 2);
    slopes[static_cast<std::size_t>(i)] = std::abs(power) <= 1e-6 ? moved * 1e6 : moved / power;
  }
  slopes[kLowestLevel - 1] = slopes[kLowestLevel - 2];
  slopes[kLowestLevel] = slopes[kLowestLevel - 1];
  return slopes;
}

int PhaseStepLevel(const PowerSeries& phase) {
  for (int i = 0; i + 2 < kPowerLevels; ++i)
    if (std::abs(At(phase, i) - At(phase, i + 2)) > 180) return i;
  return -1;
}

AmToPmResult ReduceAmToPm(const PowerSweep& sweep, const PowerSeries& calPhase,
                          const AmToPmPads& pads, double readoutPin, const PowerMeter& meter,
                          RegressionObject& regression) {
  AmToPmResult result;
  result.ReadoutPin = readoutPin;
  PowerSeries pout;
  for (std::size_t i = 0; i < kPowerLevels; ++i) {
    const PowerReading& reading = sweep.Levels[i];
    const double gain = MagnitudeDb(reading.Corrected.re, reading.Corrected.im);
    pout[i] = meter.Dbm(reading.TestVolts * 1000);
    result.Pin[i] = (pout[i] - gain) - pads.InputAtt;
  }
  const PowerSeries phase = PhasesOf(sweep);
  result.AmPm = AmPmSlopes(phase, calPhase, pout);
  result.PhaseStep = std::max(PhaseStepLevel(phase), PhaseStepLevel(calPhase));
  result.ResultDoubtful = result.Pin[kLowestLevel] > readoutPin || result.Pin[0] < readoutPin;
  result.AmPmValue = ReadOut(result, regression);
  return result;
}

PowerPlot EmptyAmToPmPlot(std::string title) {
  PowerPlot plot = Axes(std::move(title));
  plot.Range = {-22, 1, -1, 1};
  return plot;
}

PowerPlot AmToPmPlot(const AmToPmResult& result, std::string title) {
  PowerPlot plot = Axes(std::move(title));
  PlotCurve curve{.Name = "AM to PM", .Colour = kBlue, .X = {}, .Y = {}};
  double xmin = 100, xmax = -100, ymin = 100, ymax = -100;
  for (int i = kLowestLevel; i >= 0; --i) {
    const double x = At(result.Pin, i), y = At(result.AmPm, i);
    curve.Add(x, y);
    xmin = std::min(xmin, x);
    xmax = std::max(xmax, x);
    ymin = std::min(ymin, y);
    ymax = std::max(ymax, y);
  }
  plot.Range = {AxisEnd(xmin - 1, -1), AxisEnd(xmax + 1, 1), AxisEnd(ymin - 1, -1),
                AxisEnd(ymax + 1, 1)};
  plot.Curves = {std::move(curve)};
  return plot;
}

std::string AmToPmText(const AmToPmResult& result, const PowerTextHead& head) {
  const auto two = [](double value) { return FormatNumber(value, "#0.00"); };
  std::string text = PowerTextBegin(head);
  text += "Measured AM to PM (deg/dB)=" + two(result.AmPmValue) +
          (result.ResultDoubtful ? " ?" : "") + " at Pin= " + two(result.ReadoutPin) +
          " dBm\r\n\r\n";
  text += "  Pin(dBm)   AM to PM (deg/dB)\r\n";
  for (int i = kLowestLevel; i >= 0; --i)
    text += NextZone(two(At(result.Pin, i)), two(At(result.AmPm, i))) + "\r\n";
  return text;
}

}  // namespace qk
