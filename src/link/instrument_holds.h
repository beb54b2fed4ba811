// SPDX-License-Identifier: MIT
// The known state of the instrument, as opposed to the state that the session requires: the plan in
// sweep RAM, the record of its first point (which the generator and the self-test overwrite
// temporarily), the level codes, the averages, the dwell, and the record for the receiver's
// offsets. A successful exchange sets its entry. A failed exchange clears all entries: the
// instrument may have been switched off, or may have taken the following bytes as arguments of an
// incomplete command.
#pragma once

#include <optional>
#include <utility>

namespace qk {

// One entry. Until its first exchange it equals any required value, because start-up sends
// everything in its own steps.
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

// The grid of the plan in sweep RAM.
struct HeldGrid {
  double StartFreq = 0, StepFreq = 0;  // Hz
  int NumPoints = 0;
  int Port2LevelTarget = 0;  // selects the receiver's codes

  bool operator==(const HeldGrid&) const = default;
};

struct InstrumentHolds {
  HeldRow<HeldGrid> Grid;        // number of points, and all records but the first
  HeldRow<double> FirstHz;       // frequency of the first point's record
  HeldRow<int> Level;            // port 1 level in dBm set by the codes of all points
  std::optional<int> LentPoint;  // point (from 0) whose code sets another level
  HeldRow<int> Averages;
  HeldRow<bool> Dwell{false};  // off after power-on
  // These two are sent once per start and after a loss, so a flag is enough.
  bool OffsetPointLost = false;
  bool PathLost = false;

  // The code of one point (from 0) now sets this level.
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
