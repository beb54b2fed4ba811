// SPDX-License-Identifier: MIT
// A stored sweep as a channel shows it: for reads of values that the screen shows no longer.
#pragma once

#include <array>
#include <memory>

#include "core/instrument_limits.h"
#include "scpi/sweep_data.h"
#include "trace/channel_values.h"

namespace qk::scpi {

// Formats a sweep of the present plan into a channel (from 1), with its graph type, units, memory
// math, gate and smoothing. The channel has these values during the lifetime of the object, and its
// own ones afterwards. The picture does not change.
class FormattedSweep {
 public:
  FormattedSweep(Session& session, int channel, const SweepData& sweep);
  ~FormattedSweep();
  FormattedSweep(const FormattedSweep&) = delete;
  FormattedSweep& operator=(const FormattedSweep&) = delete;

  using PerPoint = std::array<double, kMaxPoints + 1>;  // from 1
  const PerPoint& Value() const { return shown_->Value; }
  const PerPoint& Value2() const { return shown_->Value2; }

 private:
  struct Shown {
    PerPoint Value{}, Value2{};
  };

  Session& session_;
  int channel_;
  std::unique_ptr<ChannelValues> live_ = std::make_unique<ChannelValues>();
  std::unique_ptr<Shown> shown_ = std::make_unique<Shown>();
};

}  // namespace qk::scpi
