// SPDX-License-Identifier: MIT
#include "utilities/am_to_pm.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/text.h"

namespace qk {

namespace {
constexpr std::uint32_t kCurveColour = 0x0000FF;

double At(const PowerSeries& series, int i) {
  return series[static_cast<std::size_t>(i)];
}

// The level nearest to the read-out.
int ReadOutLevel(const AmToPmResult& result) {
  double best = 1000;
  int nearest = kLowestLevel;
  for (int i = kLowestLevel; i >= 0; --i) {
    const double distance = std::abs(result.ReadoutPin - At(result.Pin, i));
    if (distance < best) {
      best = distance;
      nearest = i;
    }
  }
  return nearest;
}

// True if one of the levels that ParabolaAround fits is marked.
bool MarkedAround(int level, const PowerMarks& marks) {
  const auto first = marks.begin() + std::max(level - 2, 0);
  const auto last = marks.begin() + std::min(level + 2, kLowestLevel);
  return std::find(first, last + 1, true) != last + 1;
}

double PhaseMove(const PowerSeries& phase, int i) {
  return At(phase, i) - At(phase, i + 2);
}

double WrappedMove(const PowerSeries& phase, int i) {
  return static_cast<double>(Wrap(static_cast<float>(PhaseMove(phase, i))));
}

// The two lowest levels have no second level below them; they repeat the third.
template <class Series>
void RepeatTheThird(Series& series) {
  series[kLowestLevel - 1] = series[kLowestLevel - 2];
  series[kLowestLevel] = series[kLowestLevel - 1];
}

PowerPlot AmToPmAxes(std::string title) {
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
  PowerSeries slopes{};
  for (int i = kLowestLevel - 2; i >= 0; --i) {
    const double moved = WrappedMove(phase, i) - WrappedMove(calPhase, i);
    const double power = At(pout, i) - At(pout, i + 2);
    slopes[static_cast<std::size_t>(i)] = std::abs(power) <= 1e-6 ? moved * 1e6 : moved / power;
  }
  RepeatTheThird(slopes);
  return slopes;
}

PowerMarks PhasePasses(const PowerSeries& phase, const PowerSeries& calPhase) {
  PowerMarks passes{};
  for (int i = kLowestLevel - 2; i >= 0; --i) {
    const auto error = [i](const PowerSeries& series) {  // usually 180 degrees
      return WrappedMove(series, i) - std::remainder(PhaseMove(series, i), 360);
    };
    passes[static_cast<std::size_t>(i)] = std::abs(error(phase) - error(calPhase)) > 90;
  }
  RepeatTheThird(passes);
  return passes;
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
  result.PhasePassed = PhasePasses(phase, calPhase);
  result.Doubtful = result.PhasePassed;
  if (meter.Foreign) result.Doubtful.fill(true);
  const int nearest = ReadOutLevel(result);
  result.ResultDoubtful = result.Pin[kLowestLevel] > readoutPin || result.Pin[0] < readoutPin ||
                          MarkedAround(nearest, result.Doubtful);
  result.AmPmValue =
      ParabolaAround(nearest, result.Pin, result.AmPm, result.ReadoutPin, regression);
  return result;
}

PowerPlot EmptyAmToPmPlot(std::string title) {
  PowerPlot plot = AmToPmAxes(std::move(title));
  plot.Range = {-22, 1, -1, 1};
  return plot;
}

PowerPlot AmToPmPlot(const AmToPmResult& result, std::string title) {
  PowerPlot plot = AmToPmAxes(std::move(title));
  PlotCurve curve{.Name = "AM to PM", .Colour = kCurveColour, .X = {}, .Y = {}};
  double xmin = 100, xmax = -100, ymin = 100, ymax = -100;
  for (int i = kLowestLevel; i >= 0; --i) {
    const double x = At(result.Pin, i), y = At(result.AmPm, i);
    curve.Add(x, y, result.Doubtful[static_cast<std::size_t>(i)]);
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
    text += NextZone(two(At(result.Pin, i)), two(At(result.AmPm, i))) +
            (result.Doubtful[static_cast<std::size_t>(i)] ? " ?" : "") + "\r\n";
  return text;
}

}  // namespace qk
