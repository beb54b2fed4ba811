// SPDX-License-Identifier: MIT
#include "quality/sweep_run.h"

#include <algorithm>

#include "core/measured_sweep.h"
#include "core/text.h"

namespace qk {

SweepRun::SweepRun() : statistics_(std::make_unique<std::array<PointStatistics, 4>>()) {}
SweepRun::~SweepRun() = default;

void SweepRun::Start(int wanted) {
  Forget();
  wanted_ = std::clamp(wanted, kLeastSweeps, kMostSweeps);
  sweeps_.resize(static_cast<std::size_t>(wanted_));
  running_ = true;
}

void SweepRun::Forget() {
  running_ = false;
  ofThisDevice_ = true;
  wanted_ = taken_ = 0;
  delivered_.clear();
  leftOut_.clear();
  sweeps_.clear();
  for (PointStatistics& statistics : *statistics_) statistics.Clear();
  judged_.reset();
  ++revision_;
}

int SweepRun::Counted() const {
  return taken_ - static_cast<int>(leftOut_.size());
}

bool SweepRun::Has(Parameter parameter) const {
  return std::ranges::find(delivered_, parameter) != delivered_.end();
}

void SweepRun::SweepEnded(const Session& session, std::span<const Parameter> delivered) {
  if (!running_) {
    const bool before = ofThisDevice_;
    ofThisDevice_ = IsAlike(session, delivered);
    if (ofThisDevice_ != before) ++revision_;
    return;
  }
  if (taken_ == 0) {
    grid_ = session.Plan;
    delivered_.assign(delivered.begin(), delivered.end());
  } else if (!SameGrid(grid_, session.Plan) || !std::ranges::equal(delivered_, delivered)) {
    running_ = false;
    return;
  }
  Kept& kept = sweeps_[static_cast<std::size_t>(taken_)];
  for (const Parameter parameter : delivered_) {
    const auto p = static_cast<std::size_t>(parameter);
    kept.Of[p] = ArrayOf(session.Data, parameter);
    (*statistics_)[p].Add(kept.Of[p], grid_.NumPoints);
  }
  ++taken_;
  judged_.reset();
  ++revision_;
  if (taken_ >= wanted_) running_ = false;
}

bool SweepRun::IsAlike(const Session& session, std::span<const Parameter> delivered) const {
  constexpr double kOther = 10;
  constexpr double kLeastDistance = 5e-5;           // the steps of the receiver's converter
  if (!SameGrid(grid_, session.Plan)) return true;  // not compared, and not used
  for (const Parameter parameter : delivered) {
    const PointStatistics* statistics = Of(parameter);
    if (statistics == nullptr) continue;
    const ComplexArray& now = ArrayOf(session.Data, parameter);
    double distance = 0, spread = 0;
    for (int k = 0; k < grid_.NumPoints; ++k) {
      const Complex mean = statistics->Mean(k), value = now[k];
      const double re = value.re - mean.re, im = value.im - mean.im;
      distance += re * re + im * im;
      const PointStatistics::Covariance c = statistics->CovarianceOf(k);
      spread += c.Re + c.Im;
    }
    const double least = kLeastDistance * kLeastDistance * grid_.NumPoints;
    if (distance > kOther * kOther * std::max(spread, least)) return false;
  }
  return true;
}

const PointStatistics* SweepRun::Of(Parameter parameter) const {
  const PointStatistics& statistics = (*statistics_)[static_cast<std::size_t>(parameter)];
  return statistics.Sweeps() >= 2 ? &statistics : nullptr;
}

bool SweepRun::IsLeftOut(int number) const {
  return std::ranges::find(leftOut_, number) != leftOut_.end();
}

std::vector<int> SweepRun::Numbers() const {
  std::vector<int> numbers;
  numbers.reserve(static_cast<std::size_t>(taken_));
  for (int n = 1; n <= taken_; ++n)
    if (!IsLeftOut(n)) numbers.push_back(n);
  return numbers;
}

std::vector<const ComplexArray*> SweepRun::SweepsOf(Parameter parameter,
                                                    const std::vector<int>& numbers) const {
  std::vector<const ComplexArray*> sweeps;
  sweeps.reserve(numbers.size());
  for (const int number : numbers)
    sweeps.push_back(
        &sweeps_[static_cast<std::size_t>(number - 1)].Of[static_cast<std::size_t>(parameter)]);
  return sweeps;
}

const SweepJudgement& SweepRun::Judge() const {
  if (judged_) return *judged_;
  judged_.emplace();
  const std::vector<int> numbers = Numbers();
  std::vector<int>& outliers = judged_->Outliers;
  for (const Parameter parameter : delivered_) {
    const SweepJudgement judged = JudgeSweeps(SweepsOf(parameter, numbers), grid_.NumPoints);
    for (const int index : judged.Outliers)
      outliers.push_back(numbers[static_cast<std::size_t>(index)]);
    judged_->Drift = judged_->Drift || judged.Drift;
  }
  std::ranges::sort(outliers);
  outliers.erase(std::unique(outliers.begin(), outliers.end()), outliers.end());
  return *judged_;
}

void SweepRun::LeaveOut(const std::vector<int>& numbers) {
  for (const int number : numbers)
    if (number >= 1 && number <= taken_ && !IsLeftOut(number)) leftOut_.push_back(number);
  Recount();
}

void SweepRun::Recount() {
  for (PointStatistics& statistics : *statistics_) statistics.Clear();
  for (int n = 1; n <= taken_; ++n) {
    if (IsLeftOut(n)) continue;
    for (const Parameter parameter : delivered_) {
      const auto p = static_cast<std::size_t>(parameter);
      (*statistics_)[p].Add(sweeps_[static_cast<std::size_t>(n - 1)].Of[p], grid_.NumPoints);
    }
  }
  judged_.reset();
  ++revision_;
}

}  // namespace qk
