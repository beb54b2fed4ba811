// SPDX-License-Identifier: MIT
#include "cal/standards.h"

#include <algorithm>
#include <tuple>
#include <vector>

#include "cal/standard_sweeps.h"
#include "core/status.h"
#include "link/command_set.h"
#include "sweep/settings.h"
#include "sweep/up_to_date.h"

namespace qk {

namespace {

constexpr std::int16_t kLeastAverages = 16;
constexpr int kMsPerPoint = 20;  // of the time-out: twice what a measuring sweep allows
constexpr int kWaitSliceMs = 5;

void Tell(Rig& rig, std::string_view title, std::string_view text, Icon icon) {
  rig.host.prompts.Tell(title, text, icon);
}

// The standard connected by the user, then one sweep of it into its arrays. False after "No
// Response", and, without a message, when the sweep brought more bytes than it has.
bool SweepOnce(Rig& rig, const StandardSweep& sweep, const Progress& progress) {
  Session& session = rig.session;
  rig.host.prompts.AskToConnect(sweep.Title, sweep.Prompt);

  EndGeneratorWave(session, rig.host.windows);
  const SweepWire wire = WireOf(sweep.Mode);
  const auto perPoint = static_cast<std::size_t>(wire.BytesPerPoint);
  const int numPoints = session.Plan.NumPoints;
  const int averages = session.Averaging.Averages;
  rig.link.SendCommand(wire.Path);
  rig.link.DropInput();  // bytes left from a broken sweep
  rig.link.SendCommand(wire.Trigger);
  const std::size_t expected = static_cast<std::size_t>(numPoints) * perPoint;
  const Bytes data =
      ReceiveCalData(rig, expected, SweepTimeout(averages, numPoints, kMsPerPoint), progress);
  if (session.Flags.ReplyTimedOut) {
    rig.link.LoseTrack();
    Tell(rig, sweep.Title, "No Response", Icon::Critical);
    return false;
  }
  // A byte too many somewhere shifts every sample behind it.
  Bytes surplus;
  rig.link.WaitForQuiet(command::kStreamQuiet, command::kDrainTimeout, &surplus);
  if (data.size() > expected || !surplus.empty()) return false;
  for (int k = 0; k < numPoints; ++k) {
    const std::uint8_t* bytes = data.data() + static_cast<std::size_t>(k) * perPoint;
    const RawPoint raw = ReducePoint(sweep.Mode, bytes, session.Receiver, averages);
    for (const Store& store : sweep.Stores)
      if (store.From != nullptr) store.To(session).Set(k, raw.*store.From);
  }
  return true;
}

void SetFlags(CalState& cal, Standard standard) {
  switch (standard) {
    case Standard::ThruS21:
    case Standard::ThruBoth:
    case Standard::ThruInsertable:
    case Standard::ThruNonInsertable:
      cal.CalThruReady = true;
      cal.IsoSweepDone = false;
      break;
    case Standard::IsoS21:
    case Standard::IsoBoth:
    case Standard::IsoInsertable:
      cal.IsoSweepDone = true;
      break;
    default:
      break;
  }
}

}  // namespace

Bytes ReceiveCalData(Rig& rig, std::size_t byteCount, int timeoutMs, const Progress& progress) {
  EventLoop& loop = rig.host.loop;
  bool& timedOut = rig.session.Flags.ReplyTimedOut;
  timedOut = false;
  Bytes data;
  data.reserve(byteCount);
  int shown = 0;
  TellProgress(progress, shown);

  std::int64_t deadline = loop.NowMs() + timeoutMs;
  while (data.size() < byteCount) {
    if (rig.link.WaitForInput(kWaitSliceMs) && rig.link.TakeInput(data) > 0) {
      deadline = loop.NowMs() + timeoutMs;
      const auto percent = static_cast<int>(std::min(data.size(), byteCount) * 100 / byteCount);
      if (percent != shown) TellProgress(progress, percent);
      shown = percent;
    } else if (loop.NowMs() > deadline || !rig.link.IsOpen()) {
      timedOut = true;
      break;
    }
    loop.Breathe();
  }
  return data;
}

bool MeasureStandard(Rig& rig, Standard standard, const Progress& progress) {
  Session& session = rig.session;
  const bool isolation = standard == Standard::IsoInsertable;
  if (isolation && session.Cal.IsoMethod == IsoMethod::Basic)
    return true;  // that of the load sweep is kept

  std::vector<StandardSweep> sweeps{SweepOf(session, standard)};
  if (isolation && session.Cal.IsoMethod == IsoMethod::TwoSweeps)
    sweeps.push_back(SecondIsoSweep(session));
  const bool good = MeasureSweeps(rig, sweeps, progress);
  if (good) SetFlags(session.Cal, standard);
  return good;
}

bool MeasureSweeps(Rig& rig, std::span<const StandardSweep> sweeps, const Progress& progress) {
  Session& session = rig.session;
  const StandardSweep& sweep = sweeps.front();
  if (!session.Flags.SweepLoaded) {
    Tell(rig, sweep.Title, "Sweep Not Set", Icon::Exclamation);
    return false;
  }
  std::int16_t& averages = session.Averaging.Averages;
  const std::int16_t averagesBefore = WantedAverages(session);
  bool ready = averagesBefore >= kLeastAverages || PutAveragesInForce(rig, kLeastAverages);
  if (ready) {
    rig.link.EnsurePortOpen();
    ready = rig.link.LinkCheck();
  }
  if (!ready) {
    Tell(rig, sweep.Title, "No Response", Icon::Critical);
    return false;
  }
  if (!BringUpToDate(rig, {sweep.Title, Icon::Critical})) return false;

  const bool good = std::ranges::all_of(
      sweeps, [&](const StandardSweep& each) { return SweepOnce(rig, each, progress); });
  // A failure is shown and leaves the count that the instrument uses.
  if (averages != averagesBefore) std::ignore = PutAveragesInForce(rig, averagesBefore);
  return good;
}

}  // namespace qk
