// SPDX-License-Identifier: MIT
// Measuring the calibration standards: one sweep each, prompted, with at least 16 averages.
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <utility>

#include "core/progress.h"
#include "link/instrument_link.h"
#include "sweep/reduction.h"

namespace qk {

enum class Standard {
  LoadS11,
  ShortS11,
  OpenS11,
  LoadBoth,
  ShortBoth,
  OpenBoth,
  LoadInsertable,
  ShortInsertable,
  OpenInsertable,
  LoadPort1,
  ShortPort1,
  OpenPort1,  // non-insertable, one port at a time
  LoadPort2,
  ShortPort2,
  OpenPort2,
  ThruS21,
  ThruBoth,
  ThruInsertable,
  ThruNonInsertable,
  IsoS21,
  IsoBoth,
  IsoInsertable  // by CalState::IsoMethod; Basic measures nothing
};

struct StandardSweep;

// What is told of a sweep of a standard while it runs, and asked about it. Each may be empty.
struct SweepWatch {
  SweepWatch() = default;
  SweepWatch(qk::Progress bar) : Bar(std::move(bar)) {}

  qk::Progress Bar;
  // Its prompt has been answered; then each point (from 0) as its bytes come, before anybody knows
  // whether the sweep comes in whole.
  std::function<void(const StandardSweep& sweep)> Begins;
  std::function<void(int point, const RawPoint& raw)> Point;
  // Between two looks at the line, in place of EventLoop::Breathe.
  std::function<void()> Breathe;
  // True once the sweep is to end as STOP ends one: by an abort where the firmware knows it, else
  // when it has run out.
  std::function<bool()> Cancelled;
};

// One standard: prompt, path, sweep, reduction into the session's arrays. Averages below 16 are
// raised for the sweep and put back (meant: not where the link fails before the prompt; they then
// stay at 16). A sweep that went through sets the flags of its kind (a through CalThruReady, and
// IsoSweepDone off; an isolation IsoSweepDone). False when a message "No Response" or "Sweep Not
// Set" ended it, or without a message when it was cancelled; the arrays and flags are then what
// they were (of two isolation sweeps the first one stands).
[[nodiscard]] bool MeasureStandard(Rig& rig, Standard standard, const SweepWatch& watch = {});

// The same for sweeps of one title with places of their own, each behind its prompt (at least one
// sweep). Sets no flag of a calibration.
[[nodiscard]] bool MeasureSweeps(Rig& rig, std::span<const StandardSweep> sweeps,
                                 const SweepWatch& watch = {});

// A sweep's bytes as they come, until byteCount of them are there; timeoutMs milliseconds without
// any (or a port that has gone) end it with ReplyTimedOut set and what there is. The windows
// repaint, but no handler and no timer runs. arrived: called with what there is whenever bytes have
// come; false ends the reception.
Bytes ReceiveCalData(Rig& rig, std::size_t byteCount, int timeoutMs, const SweepWatch& watch = {},
                     const std::function<bool(const Bytes&)>& arrived = {});

}  // namespace qk
