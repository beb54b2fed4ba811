// SPDX-License-Identifier: MIT
// Measures the calibration standards: one prompted sweep each, with at least 16 averages.
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

// Callbacks during the sweep of a standard. Each may be empty.
struct SweepWatch {
  SweepWatch() = default;
  SweepWatch(qk::Progress bar) : Bar(std::move(bar)) {}

  qk::Progress Bar;
  // Asks to connect what the sweep measures; false ends the measurement there. Empty: a box that
  // only OK answers.
  std::function<bool(const StandardSweep& sweep)> Connected;
  // Called when its prompt has been answered; then for each point (from 0) as its bytes arrive,
  // before it is known whether the sweep will be complete.
  std::function<void(const StandardSweep& sweep)> Begins;
  std::function<void(int point, const RawPoint& raw)> Point;
  // Called between two checks of the line, instead of EventLoop::Breathe.
  std::function<void()> Breathe;
  // Returns true to end the sweep like STOP: by an abort if the firmware supports it, otherwise
  // when it has finished.
  std::function<bool()> Cancelled;
};

// Measures one standard: prompt, path, sweep, reduction into the session's arrays. Averages below
// 16 are raised for the sweep and restored afterwards (intentional: not if the link fails before
// the prompt; they then stay at 16). A successful sweep sets the flags of its kind (a through sets
// CalThruReady and clears IsoSweepDone; an isolation sets IsoSweepDone). False if a message "No
// Response" or "Sweep Not Set" ended it, or without a message if it was cancelled; arrays and flags
// are then unchanged (of two isolation sweeps the first is kept).
[[nodiscard]] bool MeasureStandard(Rig& rig, Standard standard, const SweepWatch& watch = {});

// The same for several sweeps (at least one) with a common title and their own destinations, each
// after its prompt. Sets no calibration flags.
[[nodiscard]] bool MeasureSweeps(Rig& rig, std::span<const StandardSweep> sweeps,
                                 const SweepWatch& watch = {});

// Receives the bytes of a sweep until byteCount have arrived. After timeoutMs milliseconds without
// a byte, or if the port has gone, it ends with ReplyTimedOut set and returns what was received.
// Windows repaint, but no handler and no timer runs. arrived: called with the bytes so far whenever
// more have arrived; returning false ends the reception.
Bytes ReceiveCalData(Rig& rig, std::size_t byteCount, int timeoutMs, const SweepWatch& watch = {},
                     const std::function<bool(const Bytes&)>& arrived = {});

}  // namespace qk
