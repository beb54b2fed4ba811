// SPDX-License-Identifier: MIT
// A run of repeated sweeps. The sweeps are stored, so that outliers can be found and excluded;
// statistics per point are updated after each sweep.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/session.h"
#include "quality/repeats.h"

namespace qk {

class SweepRun {
 public:
  static constexpr int kLeastSweeps = 2, kMostSweeps = 200;

  SweepRun();
  ~SweepRun();

  // Starts a run of the next wanted sweeps and discards an earlier run. Allocates memory for all of
  // them here, so that the end of a sweep allocates nothing.
  void Start(int wanted);
  void Stop() { running_ = false; }
  // Discards the run, which belongs to another plan or another device.
  void Forget();

  bool Running() const { return running_; }
  int Wanted() const { return wanted_; }
  int Taken() const { return taken_; }
  // Number of sweeps taken and not excluded.
  int Counted() const;
  const PlanGrid& Grid() const { return grid_; }
  std::span<const Parameter> Delivered() const { return delivered_; }
  bool Has(Parameter parameter) const;

  // Processes a complete sweep. The run ends by itself after the last wanted sweep, or when the
  // plan or the kind of sweep changes. After the run it finds whether the sweep is of the same
  // device.
  void SweepEnded(const Session& session, std::span<const Parameter> delivered);

  // False after a sweep that differs from the mean of the run by more than 10 s (RMS over the
  // points, in any parameter): another device is connected, whose noise the run does not show.
  bool IsOfThisDevice() const { return ofThisDevice_; }

  // nullptr with fewer than two sweeps of the parameter.
  const PointStatistics* Of(Parameter parameter) const;

  // Sweeps, numbered from 1, that are outliers in any parameter, without those already excluded.
  std::vector<int> Outliers() const { return Judge().Outliers; }
  // True if the sweeps taken and not excluded drift in any parameter.
  bool Drifts() const { return Judge().Drift; }
  // Excludes these sweeps (numbers from 1) from the statistics.
  void LeaveOut(const std::vector<int>& numbers);
  const std::vector<int>& LeftOut() const { return leftOut_; }

  // Changes whenever the statistics change.
  unsigned Revision() const { return revision_; }

 private:
  struct Kept {
    std::array<ComplexArray, 4> Of;  // indexed by Parameter
  };
  bool IsLeftOut(int number) const;
  const SweepJudgement& Judge() const;
  std::vector<int> Numbers() const;  // of the sweeps taken and not excluded
  std::vector<const ComplexArray*> SweepsOf(Parameter parameter,
                                            const std::vector<int>& numbers) const;
  void Recount();
  bool IsAlike(const Session& session, std::span<const Parameter> delivered) const;

  bool running_ = false, ofThisDevice_ = true;
  int wanted_ = 0, taken_ = 0;
  PlanGrid grid_;
  std::vector<Parameter> delivered_;
  std::vector<Kept> sweeps_;
  std::vector<int> leftOut_;
  mutable std::optional<SweepJudgement> judged_;  // of the sweeps so far; numbers from 1
  std::unique_ptr<std::array<PointStatistics, 4>> statistics_;
  unsigned revision_ = 0;
};

}  // namespace qk
