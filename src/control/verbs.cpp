// SPDX-License-Identifier: MIT
#include "control/verbs.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "core/instrument_limits.h"
#include "core/status.h"
#include "core/text.h"
#include "display/markers.h"
#include "sweep/receiver.h"
#include "sweep/settings.h"
#include "trace/reference_plane.h"
#include "trace/time_domain.h"

namespace qk {

Parameter ActiveParameter(const Session& session) {
  return session.Channel(session.Display.ActiveChannel).Parameter;
}

void SelectActiveChannel(Session& session, Windows& windows, int channel) {
  for (int n = 1; n <= kChannels; ++n) session.Channel(n).Active = n == channel;
  session.Display.ActiveChannel = static_cast<std::int16_t>(channel);
  TakeActivePlane(session, windows);
}

void TakeActivePlane(Session& session, Windows& windows) {
  PlaneState& planes = session.Planes;
  const PlaneMembers& active = PlaneOf(ActiveParameter(session));
  planes.ActivePlane = planes.*active.Plane;
  planes.ActiveDelay = planes.*active.Delay;
  windows.SessionChanged();
}

void SetActivePlane(Session& session, Windows& windows, double metres) {
  const PlaneMembers& active = PlaneOf(ActiveParameter(session));
  float& plane = session.Planes.*active.Plane;
  plane = static_cast<float>(metres);
  session.Planes.*active.Delay = static_cast<float>(static_cast<double>(plane) / kSpeedOfLight);
  TakeActivePlane(session, windows);
}

void MarkersChanged(Windows& windows) {
  windows.SessionChanged();
}

void AdjustMarkersOf(Session& session, Windows& windows, int graph) {
  session.Markers.AdjustedGraph = static_cast<std::int16_t>(graph);
  windows.SessionChanged();
}

void ResumeTimer1(const Rig& rig) {
  const Session& session = rig.session;
  const bool mayTick = session.Id.PortNumber != 0 && !session.Flags.SigGenWave;
  rig.host.loop.Enable(TimerId::Timer1, mayTick);
}

void SetPort1Level(Rig& rig, std::int16_t level) {
  Session& session = rig.session;
  if (level == session.Plan.Port1Level) return;
  session.Plan.Port1Level = level;
  ShowLevel(session, rig.host.windows);
  if (session.Flags.SweepIdle) {
    std::ignore = SendLevelTable(rig);  // a failure is shown; the next START sends the codes
    session.Flags.LevelChangeDue = false;
  } else {
    session.Flags.LevelChangeDue = true;
  }
  rig.host.windows.SessionChanged();
}

void ChooseDisplaySet(Session& session, Windows& windows, DisplaySet set) {
  DisplayState& display = session.Display;
  display.DisplaySet = set;
  display.PlotRefreshPoints = set == DisplaySet::All ? 4 : 2;
  const DisplaySetRow& shown = RowOf(set);
  if (display.ActiveChannel < shown.First || display.ActiveChannel > shown.Last)
    SelectActiveChannel(session, windows, shown.First);
  else
    windows.SessionChanged();
}

namespace {
// Sets the channel's units to those of its graph type; true if they belong to another family than
// before.
bool TakeNaturalUnits(ChannelSettings& channel) {
  const GraphTypeRow& row = RowOf(channel.GraphType);
  if (!row.Family || RowOf(channel.Units).Family == *row.Family) return false;
  channel.Units = row.NaturalUnit.value_or(channel.Units);
  return true;
}
}  // namespace

bool ChooseGraphType(Session& session, Windows& windows, int channel, GraphType type) {
  ChannelSettings& settings = session.Channel(channel);
  settings.GraphType = type;
  const bool other = TakeNaturalUnits(settings);
  windows.SessionChanged();
  return other;
}

bool ChooseParameter(Session& session, Windows& windows, int channel, Parameter parameter) {
  ChannelSettings& settings = session.Channel(channel);
  settings.Parameter = parameter;
  if (RowOf(settings.GraphType).ReflectionOnly && !RowOf(parameter).Reflection)
    settings.GraphType = GraphType::LogMag;
  const bool other = TakeNaturalUnits(settings);
  if (settings.Active)
    TakeActivePlane(session, windows);
  else
    windows.SessionChanged();
  return other;
}

void ChooseAverages(Rig& rig, int count) {
  AveragingState& averaging = rig.session.Averaging;
  averaging.AveragesSet = static_cast<std::int16_t>(std::clamp(count, 1, int{kMostAverages}));
  if (averaging.AverOn && averaging.AveragesSet != averaging.Averages) {
    if (rig.session.Flags.SweepIdle)
      SetAveragesWhileIdle(rig, averaging.AveragesSet);
    else
      rig.session.Flags.AveragesChangeDue = true;
  }
  rig.host.windows.SessionChanged();
}

void ChooseSmoothing(Session& session, Windows& windows, int percent) {
  session.Averaging.SmoothingPercent =
      static_cast<std::int16_t>(std::clamp(percent, 0, int{kMostSmoothing}));
  windows.SessionChanged();
}

void UseMemory(Session& session, Windows& windows, int number) {
  session.Display.MemoryNumber = static_cast<std::int16_t>(std::clamp(number, 1, kMemories));
  windows.SessionChanged();
}

void ShowMemory(Session& session, Windows& windows, int number, bool shown) {
  session.Display.MemoryShown[static_cast<std::size_t>(std::clamp(number, 1, kMemories) - 1)] =
      shown;
  windows.SessionChanged();
}

Result<Done> SetTimeAxis(Session& session, const DistanceAxis& axis) {
  const double listed = RowOf(axis.Of).VelocityFactor;
  const double factor = axis.Of == Cable::Own ? axis.OwnFactor : listed;
  if (!(factor >= kLeastVelocityFactor && factor <= 1))
    return Failure{"Velocity factor must be 0.01 to 1", {}};
  TimeDomainState& td = session.TimeDomain;
  td.Axis = axis.Axis;
  td.Cable = axis.Of;
  td.VelocityFactor = factor;
  return Done{};
}

Result<Done> SetGate(Session& session, const GateSettings& gate) {
  static_assert(kFirstGateNs == -5 && kLastGateNs == 328.333 && kTimeDomainPoints == 1024,
                "the messages name the range and the number");
  if (!(gate.Start >= kFirstGateNs && gate.Stop <= kLastGateNs))
    return Failure{"Gate must be within -5 and 328.333 ns", {}};
  if (!(gate.Start < gate.Stop)) return Failure{"Gate stop must be greater than gate start", {}};
  if (gate.Kind != GateKind::Off) {
    if (std::ranges::none_of(gate.Channels, [](bool on) { return on; }))
      return Failure{"Choose a channel for the gate", {}};
    if (session.Plan.NumPoints != kTimeDomainPoints)
      return Failure{"Warning: Gate Only with 1024 Sweep points", {}};
  }
  TimeDomainState& td = session.TimeDomain;
  td.Gate = gate.Kind;
  td.GateStart = gate.Start;
  td.GateStop = gate.Stop;
  for (int n = 1; n <= kChannels; ++n)
    session.Channel(n).Gated = gate.Channels[static_cast<std::size_t>(n - 1)];
  return Done{};
}

Result<double> VelocityFactorFor(const Session& session, double metres) {
  if (!(metres > 0)) return Failure{"Enter the known length", {}};
  const TimeDomainState& td = session.TimeDomain;
  const DisplaySetRow& shown = RowOf(session.Display.DisplaySet);
  for (int n = shown.First; n <= shown.Last; ++n) {
    const ChannelSettings& channel = session.Channel(n);
    if (RowOf(channel.GraphType).Form != PointForm::Spectrum) continue;
    const int active = ActiveOf(session.Markers, n - 1);
    if (active < 0) break;
    const int reference = ReferenceOf(session.Markers, n - 1);
    const auto metresOf = [&](int marker) {
      const double ns = td.TdT1 + (session.Markers.Of(n - 1, marker).Point - 1) * td.TdStep;
      return MetresAt(session, channel.Parameter, ns);
    };
    const double way = metresOf(active) - (reference >= 0 ? metresOf(reference) : 0);
    const double factor = td.VelocityFactor * metres / std::fabs(way);
    if (factor >= kLeastVelocityFactor && factor <= 1) return factor;
    return Failure{"Not a cable: the velocity factor would be " + FormatNumber(factor, "#0.000"),
                   {}};
  }
  return Failure{"Put the active marker on the end of the cable in a time trace first", {}};
}

}  // namespace qk
