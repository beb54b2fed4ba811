// SPDX-License-Identifier: MIT
#include "trace/formatting.h"

#include <cmath>

#include "core/instrument_limits.h"
#include "trace/gate.h"
#include "trace/memory.h"
#include "trace/smoothing.h"
#include "trace/time_domain.h"
#include "trace/units.h"

namespace qk {

namespace {
// Group delay over one sweep step. The previous phase is one value per formatter, shared by all
// channels. Intentional: two channels that show the group delay of reflections disturb each other.
void WriteGroupDelay(ChannelSettings& settings, const PlanGrid& grid, float& previous, Complex z,
                     int pointIndex) {
  const float phase = PhaseDeg(z.re, z.im);
  if (pointIndex > 1)
    settings.Value[static_cast<std::size_t>(pointIndex)] =
        InUnits(settings, StepDelay(previous, phase, grid.StepFreq));
  previous = phase;
  settings.Value[1] = settings.Value[2];
}

// A wrapped phase shifted by whole turns to within half a turn of the previous point.
double CarriedOn(const ChannelSettings& settings, double phaseDeg, std::size_t i) {
  const double before = settings.Value[i - 1];
  if (i == 1 || !std::isfinite(before)) return phaseDeg;
  return phaseDeg + 360 * std::round((before - phaseDeg) / 360);
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

// Writes point pointIndex, after memory math, in the format of the graph type.
void WritePoint(Session& session, PointSink& sink, int channel, Complex z, int pointIndex,
                bool reflection) {
  ChannelSettings& settings = session.Channel(channel);
  const GraphTypeRow& type = RowOf(settings.GraphType);
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
      // The first point gets its value only now; until here the graph showed the one of the last
      // sweep.
      if (pointIndex == 2) Emit(session, sink, channel, 1);
      break;
    case PointForm::Spectrum:
      TakeSpectrumPoint(session, z, pointIndex);
      if (pointIndex == kTimeDomainPoints) PlotTimeResponse(session, sink, channel);
      return;
    case PointForm::Component:
      settings.Value[i] = InUnits(settings, ComponentOf(session, settings, z, pointIndex));
      break;
    case PointForm::Unwrapped:
      settings.Value[i] = CarriedOn(settings, quantity::Degrees(z), i);
      break;
  }
  Emit(session, sink, channel, pointIndex);
}

// Formats the whole sweep again, gated, when its last point has arrived; no point is shown before.
void WriteGated(Session& session, PointSink& sink, int channel, bool reflection) {
  DisplayState& display = session.Display;
  const float reflectionPhase = display.PrevPhaseReflection;
  const float transmissionPhase = display.PrevPhaseTransmission;
  ApplyGate(session, session.Gates.In[static_cast<std::size_t>(channel - 1)]);
  for (int i = 1; i <= kTimeDomainPoints; ++i)
    WritePoint(session, sink, channel, session.Gates.Work[static_cast<std::size_t>(i)], i,
               reflection);
  display.PrevPhaseReflection = reflectionPhase;
  display.PrevPhaseTransmission = transmissionPhase;
}

void FormatPoint(Session& session, PointSink& sink, int channel, Complex z, int pointIndex,
                 bool reflection) {
  if (pointIndex < 1 || pointIndex > kMaxPoints) return;
  const ChannelSettings& settings = session.Channel(channel);
  if (RowOf(settings.GraphType).ReflectionOnly && !reflection) return;
  z = ApplyMemoryMath(session, channel, z, pointIndex);
  if (!GateActs(session, settings)) {
    WritePoint(session, sink, channel, z, pointIndex, reflection);
    return;
  }
  session.Gates.In[static_cast<std::size_t>(channel - 1)][static_cast<std::size_t>(pointIndex)] = z;
  if (pointIndex == kTimeDomainPoints) WriteGated(session, sink, channel, reflection);
}

}  // namespace

double StepDelay(float previousDeg, float phaseDeg, double stepHz) {
  double d = static_cast<double>(previousDeg) - static_cast<double>(phaseDeg);
  if (d > 180) d -= 360;
  if (d < -180) d += 360;
  d = d / 57.295775;
  return d / (stepHz * 6.2831853);
}

double ComponentOf(const Session& session, const ChannelSettings& settings, Complex z,
                   int pointIndex) {
  const Complex ohms = component::ImpedanceOf(ElementOf(settings), z,
                                              static_cast<double>(session.Impedance.SystemZo));
  return RowOf(settings.GraphType).OfImpedance(ohms, session.Plan.Frequency(pointIndex - 1));
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
