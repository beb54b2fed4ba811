// SPDX-License-Identifier: MIT
// A run of repeated sweeps: kept whole, so that outliers can be found and left out, with statistics
// by point that follow each sweep.
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

  // The next wanted sweeps are taken; what an earlier run took is forgotten. The room for all of
  // them is made here, so that a sweep's end allocates nothing.
  void Start(int wanted);
  void Stop() { running_ = false; }
  // What was taken belongs to another plan or another device.
  void Forget();

  bool Running() const { return running_; }
  int Wanted() const { return wanted_; }
  int Taken() const { return taken_; }
  // Taken and not left out.
  int Counted() const;
  const PlanGrid& Grid() const { return grid_; }
  std::span<const Parameter> Delivered() const { return delivered_; }
  bool Has(Parameter parameter) const;

  // A whole sweep has ended. The run ends by itself with the last sweep wanted, or when the plan or
  // the kind of sweep changes.
  void SweepEnded(const Session& session, std::span<const Parameter> delivered);

  // Nothing before two sweeps of the parameter.
  const PointStatistics* Of(Parameter parameter) const;

  // Sweeps, numbered from 1, that are outliers in any parameter; not those left out already.
  std::vector<int> Outliers() const;
  // Statistics without these sweeps (numbers from 1).
  void LeaveOut(const std::vector<int>& numbers);
  const std::vector<int>& LeftOut() const { return leftOut_; }

  // Changes whenever the statistics do.
  unsigned Revision() const { return revision_; }

 private:
  struct Kept {
    std::array<ComplexArray, 4> Of;  // by Parameter
  };
  bool IsLeftOut(int number) const;
  void Recount();

  bool running_ = false;
  int wanted_ = 0, taken_ = 0;
  PlanGrid grid_;
  std::vector<Parameter> delivered_;
  std::vector<Kept> sweeps_;
  std::vector<int> leftOut_;
  std::unique_ptr<std::array<PointStatistics, 4>> statistics_;
  unsigned revision_ = 0;
};

}  // namespace qk
