// SPDX-License-Identifier: MIT
// The continuous measurement: trigger, stream, processing point by point, and the changes served
// between two sweeps. One routine for all four kinds of sweep.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

#include "display/graphs.h"
#include "link/instrument_link.h"
#include "sweep/reduction.h"
#include "trace/formatting.h"

namespace qk {

// Progress of a sweep that takes more than two seconds, averages included.
struct SweepProgress {
  int Percent = 0;
  int SecondsLeft = 0;
  bool operator==(const SweepProgress&) const = default;
};

class Measurement {
 public:
  Measurement(Rig& rig, Graphs& graphs);

  // Sweeps until SweepFlags::SweepRunning is cleared, the stream stalls, or Abandon is called. Sets
  // SweepIdle again on every exit except the last. Handles events before each trigger, after every
  // point and while waiting.
  void Run(SweepMode mode);
  // The next or the running Run ends by itself after its first sweep without surplus bytes.
  void EndAfterOneSweep(bool on) { single_ = on; }
  // Leaves the loop at the next point without sending another byte: the process is ending.
  void Abandon() { abandoned_ = true; }

  // Called when exactly all points of a sweep have been received, before any change is served; may
  // be empty. Arguments: the delivered parameters, and the number of points that overloaded port 1
  // and port 2.
  std::function<void(std::span<const Parameter>, std::array<int, 2>)> OnWhole;

  const std::optional<SweepProgress>& Progress() const { return progress_; }
  long SweepsEnded() const { return sweepsEnded_; }
  // Number of points with a receiver overload.
  long Overloads() const { return overloads_; }

  // Called at the end of each sweep; complete is false if it was aborted or had surplus bytes.
  // Return false to end the measurement. May be empty.
  std::function<bool(bool complete)> OnSweepEnded;

 private:
  enum class Ending { Complete, Aborted, Stalled, Abandoned };
  // How a stop requested during this sweep is handled; Waiting before the first byte arrives.
  enum class Stop { None, Waiting, Abort, AtSweepEnd };

  bool Prepare();
  void LetWaitingEventsRun(bool first);
  void Trigger();
  Ending ReadSweep();
  void ReducePoints();
  void ProcessPoint(int p);
  void StoreRaw(const RawPoint& raw, int p);
  void Correct(int p);
  void DeEmbedAndConvert(int p);
  void MoveToPlane(Parameter parameter, int p);
  void ReportOverload(const RawPoint& raw);
  void NoteStop();
  void Abort();
  bool DropSurplus(Ending ending);
  bool Turn();
  void ReportStall();
  void EndAtOnce();
  void ReportProgress();
  void ShowProgress(std::optional<SweepProgress> progress);
  void ShowSweepStatus(const char* text);
  std::size_t Expected() const {
    return static_cast<std::size_t>(numPoints_) * static_cast<std::size_t>(bytesPerPoint_);
  }

  Rig& rig_;
  Graphs& graphs_;
  Bytes buffer_;  // the stream of one sweep; capacity reserved once for the largest
  long sweepsEnded_ = 0;
  long overloads_ = 0;
  bool abandoned_ = false;
  bool single_ = false;
  std::optional<SweepProgress> progress_;

  // Settings of the running sweep, captured at its trigger.
  SweepMode mode_ = SweepMode::S11;
  int numPoints_ = 0;
  int bytesPerPoint_ = 0;
  int averages_ = 1;
  std::array<int, 2> overloaded_{};
  Stop stop_ = Stop::None;
  std::int64_t triggeredMs_ = 0, nextProgressMs_ = 0;
};

}  // namespace qk
