#include "core/session.h"

#include "core/measured_sweep.h"

namespace qk {

std::unique_ptr<Session> MakeSession() {
  auto session = std::make_unique<Session>();
  InitSession(*session);
  return session;
}

void InitSession(Session& session) {
  // Built on the heap: the record is far too large for the stack.
  auto fresh = std::make_unique<Session>();
  fresh->InstallFolder = session.InstallFolder;
  session = *fresh;

  ForgetSweep(session);
  Network& zoSet = session.MemoryZoSet;
  for (ComplexArray* array : {&zoSet.S11, &zoSet.S21, &zoSet.S12, &zoSet.S22})
    array->Fill({1e-6, 0});
  for (ChannelSettings& channel : session.Channels) {
    channel.UpperLimit.fill(kNoUpperLimit);
    channel.LowerLimit.fill(kNoLowerLimit);
  }
  session.Channel(1).Active = true;
  session.Kit1.KitMale = true;
  session.Kit2.KitMale = false;
}

std::string CalStatusText(const CalState& cal) {
  std::string text = "UNCAL";
  if (cal.CalS21) text = "S21 Cal";
  if (cal.CalS11) text = "S11 Cal";
  if (cal.Cal12Term) text = "12 Term Cal";
  if (cal.CalS11S21) text = "S11+S21 Cal";
  return text;
}

bool CalDoubtful(const Session& session) {
  return session.Cal.CalInterpolated || session.Plan.CalLevel != session.Plan.Port1Level;
}

}  // namespace qk
