// SPDX-License-Identifier: MIT
#include "cal/standards.h"

#include <algorithm>
#include <tuple>
#include <vector>

#include "cal/standard_sweeps.h"
#include "core/status.h"
#include "link/command_set.h"
#include "sweep/drain.h"
#include "sweep/settings.h"
#include "sweep/up_to_date.h"

namespace qk {

namespace {

constexpr std::int16_t kLeastAverages = 16;
constexpr int kMsPerPoint = 20;  // of the time-out: twice that of a measuring sweep
constexpr int kWaitSliceMs = 5;

void ShowMessage(Rig& rig, std::string_view title, std::string_view text, Icon icon) {
  rig.host.prompts.ShowMessage(title, text, icon);
}

bool Cancelled(const SweepWatch& watch) {
  return watch.Cancelled && watch.Cancelled();
}

void Breathe(Rig& rig, const SweepWatch& watch) {
  if (watch.Breathe)
    watch.Breathe();
  else
    rig.host.loop.Breathe();
}

// Prompts for the standard, then sweeps it into its arrays. False after "No Response", and without
// a message if the sweep was cancelled or delivered surplus bytes.
bool SweepOnce(Rig& rig, const StandardSweep& sweep, const SweepWatch& watch) {
  constexpr std::size_t kTakesAbort = 5;  // from this byte on
  Session& session = rig.session;
  if (!watch.Connected)
    rig.host.prompts.AskToConnect(sweep.Title, sweep.Prompt);
  else if (!watch.Connected(sweep))
    return false;

  EndGeneratorWave(session, rig.host.windows);
  if (watch.Begins) watch.Begins(sweep);
  const SweepWire wire = WireOf(sweep.Mode);
  const auto perPoint = static_cast<std::size_t>(wire.BytesPerPoint);
  const int numPoints = session.Plan.NumPoints;
  const int averages = session.Averaging.Averages;
  rig.link.SendCommand(wire.Path);
  rig.link.DropInput();  // bytes left from an interrupted sweep
  rig.link.SendCommand(wire.Trigger);
  const std::size_t expected = static_cast<std::size_t>(numPoints) * perPoint;
  const auto reduced = [&](const Bytes& data, int k) {
    return ReducePoint(sweep.Mode, data.data() + static_cast<std::size_t>(k) * perPoint,
                       session.Receiver, averages);
  };
  const bool abort = KnowsAbort(session);
  int reported = 0;
  const auto arrived = [&](const Bytes& data) {
    for (; watch.Point && reported < numPoints && data.size() >= (reported + 1U) * perPoint;
         ++reported)
      watch.Point(reported, reduced(data, reported));
    return !abort || !Cancelled(watch) || data.size() < kTakesAbort || data.size() + 1 >= expected;
  };
  const Bytes data =
      ReceiveCalData(rig, expected, SweepTimeout(averages, numPoints, kMsPerPoint), watch, arrived);
  if (session.Flags.ReplyTimedOut) {
    rig.link.ForgetState();
    ShowMessage(rig, sweep.Title, "No Response", Icon::Critical);
    return false;
  }
  if (data.size() < expected) {
    AbortSweep(rig, data.size(), expected, [&] {
      Breathe(rig, watch);
      return true;
    });
    return false;
  }
  // A surplus byte anywhere shifts every sample after it.
  Bytes surplus;
  rig.link.WaitForQuiet(command::kStreamQuiet, command::kDrainTimeout, &surplus);
  if (data.size() > expected || !surplus.empty() || Cancelled(watch)) return false;
  for (int k = 0; k < numPoints; ++k) {
    const RawPoint raw = reduced(data, k);
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

Bytes ReceiveCalData(Rig& rig, std::size_t byteCount, int timeoutMs, const SweepWatch& watch,
                     const std::function<bool(const Bytes&)>& arrived) {
  EventLoop& loop = rig.host.loop;
  bool& timedOut = rig.session.Flags.ReplyTimedOut;
  timedOut = false;
  Bytes data;
  data.reserve(byteCount);
  int shown = 0;
  ReportProgress(watch.Bar, shown);

  std::int64_t deadline = loop.NowMs() + timeoutMs;
  while (data.size() < byteCount) {
    if (rig.link.WaitForInput(kWaitSliceMs) && rig.link.TakeInput(data) > 0) {
      deadline = loop.NowMs() + timeoutMs;
      const auto percent = static_cast<int>(std::min(data.size(), byteCount) * 100 / byteCount);
      if (percent != shown) ReportProgress(watch.Bar, percent);
      shown = percent;
      if (data.size() < byteCount && arrived && !arrived(data)) break;
    } else if (loop.NowMs() > deadline || !rig.link.IsOpen()) {
      timedOut = true;
      break;
    }
    Breathe(rig, watch);
  }
  if (arrived && data.size() >= byteCount) arrived(data);
  return data;
}

bool MeasureStandard(Rig& rig, Standard standard, const SweepWatch& watch) {
  Session& session = rig.session;
  const bool isolation = standard == Standard::IsoInsertable;
  if (isolation && session.Cal.IsoMethod == IsoMethod::Basic)
    return true;  // the isolation of the load sweep is kept

  std::vector<StandardSweep> sweeps{SweepOf(session, standard)};
  if (isolation && session.Cal.IsoMethod == IsoMethod::TwoSweeps)
    sweeps.push_back(SecondIsoSweep(session));
  const bool good = MeasureSweeps(rig, sweeps, watch);
  if (good) SetFlags(session.Cal, standard);
  return good;
}

bool MeasureSweeps(Rig& rig, std::span<const StandardSweep> sweeps, const SweepWatch& watch) {
  Session& session = rig.session;
  const StandardSweep& sweep = sweeps.front();
  if (!session.Flags.SweepLoaded) {
    ShowMessage(rig, sweep.Title, "Sweep Not Set", Icon::Exclamation);
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
    ShowMessage(rig, sweep.Title, "No Response", Icon::Critical);
    return false;
  }
  if (!BringUpToDate(rig, {sweep.Title, Icon::Critical})) return false;

  const bool good = std::ranges::all_of(
      sweeps, [&](const StandardSweep& each) { return SweepOnce(rig, each, watch); });
  if (averages != averagesBefore) SetAveragesWhileIdle(rig, averagesBefore);
  return good;
}

}  // namespace qk
