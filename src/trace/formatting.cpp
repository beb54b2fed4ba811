#include "trace/formatting.h"

#include "core/instrument_limits.h"
#include "trace/memory.h"
#include "trace/smoothing.h"
#include "trace/time_domain.h"

namespace qk {

namespace {
// A value in the channel's unit, where that is one of the graph type's; as it is elsewhere.
double InUnits(const ChannelSettings& settings, double value) {
  const UnitRow& unit = RowOf(settings.Units);
  return unit.Family == RowOf(settings.GraphType).Family ? value / unit.Size : value;
}

// Group delay of one sweep step. The previous phase is one scalar a formatter, shared by all
// channels. Meant: two channels that show the delay of reflections disturb each other.
void WriteGroupDelay(ChannelSettings& settings, const PlanGrid& grid, float& previous, Complex z,
                     int pointIndex) {
  const float phase = PhaseDeg(z.re, z.im);
  if (pointIndex > 1)
    settings.Value[static_cast<std::size_t>(pointIndex)] =
        InUnits(settings, StepDelay(previous, phase, grid.StepFreq));
  previous = phase;
  settings.Value[1] = settings.Value[2];
}

void Emit(Session& session, PointSink& sink, int channel, int pointIndex) {
  const ChannelSettings& settings = session.Channel(channel);
  if (IsSmoothed(session, settings)) {
    SmoothPoint(session, sink, channel, pointIndex);
    return;
  }
  const auto i = static_cast<std::size_t>(pointIndex);
  sink.PlotPoint(channel, pointIndex, settings.Value[i], settings.Value2[i]);
}

void FormatPoint(Session& session, PointSink& sink, int channel, Complex z, int pointIndex,
                 bool reflection) {
  if (pointIndex < 1 || pointIndex > kMaxPoints) return;
  ChannelSettings& settings = session.Channel(channel);
  const GraphTypeRow& type = RowOf(settings.GraphType);
  if (type.ReflectionOnly && !reflection) return;
  z = ApplyMemoryMath(session.Display, settings, z, pointIndex);
  const auto i = static_cast<std::size_t>(pointIndex);
  switch (type.Form) {
    case PointForm::Quantity:
      settings.Value[i] = InUnits(settings, type.Formula(z));
      break;
    case PointForm::Chart:
      settings.Value[i] = z.re;
      settings.Value2[i] = z.im;
      break;
    case PointForm::Delay:
      WriteGroupDelay(
          settings, session.Plan,
          reflection ? session.Display.PrevPhaseReflection : session.Display.PrevPhaseTransmission,
          z, pointIndex);
      // Only now the first point has its value; until here the graph showed that of last sweep.
      if (pointIndex == 2) Emit(session, sink, channel, 1);
      break;
    case PointForm::Spectrum:
      TakeSpectrumPoint(session, z, pointIndex);
      if (pointIndex == kTimeDomainPoints) PlotTimeResponse(session, sink, channel);
      return;
  }
  Emit(session, sink, channel, pointIndex);
}

}  // namespace

double StepDelay(float previousDeg, float phaseDeg, double stepHz) {
  double d = static_cast<double>(previousDeg) - static_cast<double>(phaseDeg);
  if (d > 180) d -= 360;
  if (d < -180) d += 360;
  d = d / 57.295775;
  return d / (stepHz * 6.2831853);
}

void DispatchPoint(Session& session, PointSink& sink, Complex z, int pointIndex,
                   Parameter parameter) {
  const DisplaySetRow& channels = RowOf(session.Display.DisplaySet);
  for (int channel = channels.First; channel <= channels.Last; ++channel)
    DispatchPointToChannel(session, sink, channel, z, pointIndex, parameter);
}

void DispatchPointToChannel(Session& session, PointSink& sink, int channel, Complex z,
                            int pointIndex, Parameter parameter) {
  if (session.Channel(channel).Parameter != parameter) return;
  if (RowOf(parameter).Reflection) {
    FormatReflectionPoint(session, sink, channel, z, pointIndex);
  } else {
    FormatTransmissionPoint(session, sink, channel, z, pointIndex);
  }
}

void FormatReflectionPoint(Session& session, PointSink& sink, int channel, Complex z,
                           int pointIndex) {
  FormatPoint(session, sink, channel, z, pointIndex, true);
}

void FormatTransmissionPoint(Session& session, PointSink& sink, int channel, Complex z,
                             int pointIndex) {
  FormatPoint(session, sink, channel, z, pointIndex, false);
}

}  // namespace qk
