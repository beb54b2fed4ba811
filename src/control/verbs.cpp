#include "control/verbs.h"

#include <algorithm>
#include <tuple>

#include "core/instrument_limits.h"
#include "core/status.h"
#include "sweep/receiver.h"
#include "sweep/settings.h"
#include "trace/reference_plane.h"

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

void ResumeTimer1(const Rig& rig) {
  const Session& session = rig.session;
  const bool mayTick = session.Id.PortNumber != 0 && !session.Flags.SigGenWave;
  rig.host.loop.Enable(TimerId::Timer1, mayTick);
}

void SetAveragesWhileIdle(Rig& rig, std::int16_t count) {
  SweepFlags& flags = rig.session.Flags;
  if (PutAveragesInForce(rig, count)) return;
  flags.AveragesChangeDue = true;
  flags.AveragesOffDue = !rig.session.Averaging.AverOn;
}

void SetPort1Level(Rig& rig, std::int16_t level) {
  Session& session = rig.session;
  if (level == session.Plan.Port1Level) return;
  session.Plan.Port1Level = level;
  ShowLevel(session, rig.host.windows);
  if (session.Flags.SweepIdle) {
    std::ignore = SendLevelTable(rig);  // a failure is told
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
// Gives the channel the units of its graph type; true when they are of another family than before.
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
      std::ignore = PutAveragesInForce(rig, averaging.AveragesSet);  // a failure is told
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

}  // namespace qk
