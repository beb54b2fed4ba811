// SPDX-License-Identifier: MIT
// What the instrument is known to hold, beside what the session wants: the plan in sweep RAM, the
// record of its first point (which the generator and the self-test borrow), the level codes, the
// averages, the dwell, the record for the receiver's offsets. An exchange that went through sets
// its row. A failed exchange unsets all of them: the instrument may have been switched off, or may
// have taken the bytes that followed for the arguments of a command that was cut.
#pragma once

#include <optional>
#include <utility>

namespace qk {

// One row. Until its first exchange it agrees with whatever is wanted: start-up sends what it has
// to send by its own steps.
template <class T>
class HeldRow {
 public:
  HeldRow() = default;
  explicit HeldRow(T value) : value_(std::move(value)) {}

  bool Is(const T& wanted) const { return value_ ? *value_ == wanted : !lost_; }
  void Set(T value) {
    value_ = std::move(value);
    lost_ = false;
  }
  void Unset() {
    value_.reset();
    lost_ = true;
  }

 private:
  std::optional<T> value_;
  bool lost_ = false;
};

// The grid of a plan as it stands in sweep RAM.
struct HeldGrid {
  double StartFreq = 0, StepFreq = 0;  // Hz
  int NumPoints = 0;
  int Port2LevelTarget = 0;  // the receiver's codes are looked up by it

  bool operator==(const HeldGrid&) const = default;
};

struct InstrumentHolds {
  HeldRow<HeldGrid> Grid;        // number of points, and the record of each but the first
  HeldRow<double> FirstHz;       // frequency of the first point's record
  HeldRow<int> Level;            // port 1 level, dBm, that the codes of all points give
  std::optional<int> LentPoint;  // point (from 0) whose code gives another level
  HeldRow<int> Averages;
  HeldRow<bool> Dwell{false};  // an instrument begins without
  // Nothing is lost here by itself, so a flag is enough: sent once a start, and after a loss.
  bool OffsetPointLost = false;
  bool PathLost = false;

  // The code of one point (from 0) now gives level.
  void LendPoint(int point, int level) {
    if (LentPoint && *LentPoint != point) Level.Unset();
    if (Level.Is(level))
      LentPoint.reset();
    else
      LentPoint = point;
  }
  void SetLevel(int level) {
    Level.Set(level);
    LentPoint.reset();
  }
  void UnsetAll() {
    Grid.Unset();
    FirstHz.Unset();
    Level.Unset();
    Averages.Unset();
    Dwell.Unset();
    OffsetPointLost = PathLost = true;
  }
};

}  // namespace qk
