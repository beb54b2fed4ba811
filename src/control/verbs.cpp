#include "control/verbs.h"

#include <tuple>

#include "core/instrument_limits.h"
#include "core/status.h"
#include "sweep/receiver.h"
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
  const bool mayTick = session.Id.PortNumber != 0 && !session.Flags.SigGenActive;
  rig.host.loop.Enable(TimerId::Timer1, mayTick);
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

}  // namespace qk
