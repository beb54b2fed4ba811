// SPDX-License-Identifier: MIT
#include "core/session.h"

#include <memory>
#include <string>
#include <utility>

#include "core/measured_sweep.h"

namespace qk {

namespace {
// Sets the values whose defaults differ from the default of their type.
void SetFirstValues(Session& session) {
  ForgetSweep(session);
  const auto fill = [](Network& zoSet) {
    for (ComplexArray* array : {&zoSet.S11, &zoSet.S21, &zoSet.S12, &zoSet.S22})
      array->Fill({1e-6, 0});
  };
  fill(session.MemoryZoSet);
  for (MemoryBank& bank : session.MoreMemories) fill(bank.ZoSet);
  for (ChannelSettings& channel : session.Channels) {
    channel.UpperLimit.fill(kNoUpperLimit);
    channel.LowerLimit.fill(kNoLowerLimit);
  }
  session.Channel(1).Active = true;
  session.Kit1.KitMale = true;
  session.Kit2.KitMale = false;
}
}  // namespace

std::unique_ptr<Session> MakeSession() {
  auto session = std::make_unique<Session>();
  SetFirstValues(*session);
  return session;
}

void InitSession(Session& session) {
  std::string folder = std::move(session.InstallFolder);
  // Constructed in place: the record is too large for the stack and for copies.
  std::destroy_at(&session);
  std::construct_at(&session);
  session.InstallFolder = std::move(folder);
  SetFirstValues(session);
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
