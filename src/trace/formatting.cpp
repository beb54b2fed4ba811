#include "trace/formatting.h"

#include "trace/graph_type.h"
#include "trace/memory.h"
#include "trace/smoothing.h"

namespace qk {

namespace {
// "U" as it is; "mU" in thousandths.
double InUnits(const ChannelSettings& settings, double value) {
  return settings.Units == "mU" ? value / 0.001 : value;
}

double DelayInUnits(const ChannelSettings& settings, double seconds) {
  if (settings.Units == "ps") return seconds / 1e-12;
  if (settings.Units == "ns") return seconds / 1e-9;
  if (settings.Units == "us") return seconds / 1e-6;
  return seconds;
}

// Group delay of one sweep step. The previous phase is one scalar a formatter, shared by all
// channels. Meant: two channels that show the delay of reflections disturb each other.
void WriteGroupDelay(ChannelSettings& settings, const PlanGrid& grid, float& previous, Complex z,
                     int pointIndex) {
  const float phase = PhaseDeg(z.re, z.im);
  if (pointIndex > 1)
    settings.Value[static_cast<std::size_t>(pointIndex)] =
        DelayInUnits(settings, StepDelay(previous, phase, grid.StepFreq));
  previous = phase;
  settings.Value[1] = settings.Value[2];
}

void Emit(Session& session, PointSink& sink, int channel, int pointIndex, bool smooth) {
  if (smooth && session.Averaging.SmoothOn && session.Averaging.SmoothingPercent >= 1) {
    SmoothPoint(session, sink, channel, pointIndex);
    return;
  }
  const ChannelSettings& settings = session.Channel(channel);
  const auto i = static_cast<std::size_t>(pointIndex);
  sink.PlotPoint(channel, pointIndex, settings.Value[i], settings.Value2[i]);
}

void FormatPoint(Session& session, PointSink& sink, int channel, Complex z, int pointIndex,
                 bool reflection) {
  if (pointIndex < 1 || pointIndex > kMaxPoints) return;
  ChannelSettings& settings = session.Channel(channel);
  const GraphKind kind = GraphKindOf(settings.GraphType);
  z = ApplyMemoryMath(session.Display, settings, z, pointIndex);
  double& value = settings.Value[static_cast<std::size_t>(pointIndex)];
  switch (kind) {
    case GraphKind::LogMag:
      value = MagnitudeDb(z.re, z.im);
      break;
    case GraphKind::Phase:
      value = static_cast<double>(PhaseDeg(z.re, z.im));
      break;
    case GraphKind::LinMag:
      value = InUnits(settings, Magnitude(z.re, z.im));
      break;
    case GraphKind::Real:
      value = InUnits(settings, z.re);
      break;
    case GraphKind::Imag:
      value = InUnits(settings, z.im);
      break;
    case GraphKind::Swr:
      if (!reflection) return;
      value = InUnits(settings, SwrOf(z.re, z.im));
      break;
    case GraphKind::Smith:
      if (!reflection) return;
      value = z.re;
      settings.Value2[static_cast<std::size_t>(pointIndex)] = z.im;
      break;
    case GraphKind::GroupDelay:
      WriteGroupDelay(
          settings, session.Plan,
          reflection ? session.Display.PrevPhaseReflection : session.Display.PrevPhaseTransmission,
          z, pointIndex);
      // Only now the first point has its value; until here the graph showed that of last sweep.
      if (pointIndex == 2) Emit(session, sink, channel, 1, true);
      break;
    case GraphKind::Td:
    case GraphKind::Unknown:
      return;
  }
  Emit(session, sink, channel, pointIndex, kind != GraphKind::Smith);
}
}  // namespace

std::string_view NameOf(Parameter parameter) {
  switch (parameter) {
    case Parameter::S11:
      return "S11";
    case Parameter::S21:
      return "S21";
    case Parameter::S12:
      return "S12";
    case Parameter::S22:
      return "S22";
  }
  return "";
}

std::optional<Parameter> ParameterNamed(std::string_view name) {
  for (Parameter parameter : {Parameter::S11, Parameter::S21, Parameter::S12, Parameter::S22})
    if (NameOf(parameter) == name) return parameter;
  return std::nullopt;
}

namespace {
// One table for data that may be written and data that may not.
template <class Data>
auto& Corrected(Data& data, Parameter parameter) {
  switch (parameter) {
    case Parameter::S21:
      return data.S21;
    case Parameter::S12:
      return data.S12;
    case Parameter::S22:
      return data.S22;
    case Parameter::S11:
      break;
  }
  return data.S11;
}
}  // namespace

ComplexArray& ArrayOf(SParamData& data, Parameter parameter) {
  return Corrected(data, parameter);
}

const ComplexArray& ArrayOf(const SParamData& data, Parameter parameter) {
  return Corrected(data, parameter);
}

ChannelRange ChannelsOf(std::string_view displaySet) {
  if (displaySet == "all") return {1, 4};
  if (displaySet == "one-two") return {1, 2};
  if (displaySet == "three-four") return {3, 4};
  return {1, 1};
}

double StepDelay(float previousDeg, float phaseDeg, double stepHz) {
  double d = static_cast<double>(previousDeg) - static_cast<double>(phaseDeg);
  if (d > 180) d -= 360;
  if (d < -180) d += 360;
  d = d / 57.295775;
  return d / (stepHz * 6.2831853);
}

void DispatchPoint(Session& session, PointSink& sink, Complex z, int pointIndex,
                   Parameter parameter) {
  const ChannelRange channels = ChannelsOf(session.Display.DisplaySet);
  for (int channel = channels.First; channel <= channels.Last; ++channel)
    DispatchPointToChannel(session, sink, channel, z, pointIndex, parameter);
}

void DispatchPointToChannel(Session& session, PointSink& sink, int channel, Complex z,
                            int pointIndex, Parameter parameter) {
  if (session.Channel(channel).Parameter != NameOf(parameter)) return;
  if (parameter == Parameter::S11 || parameter == Parameter::S22) {
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
