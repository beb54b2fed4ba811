// SPDX-License-Identifier: MIT
// Limit lines: the segments as typed, the switches of "Limit Lines Set Up", and the result of the
// last test. The limits per point are in ChannelSettings.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "core/instrument_limits.h"
#include "core/vocabulary.h"

namespace qk {

inline constexpr int kLimitSegments = 6;
inline constexpr float kNoUpperLimit = 1000, kNoLowerLimit = -1000;

// The four fields of a segment as text, as shown in the window: frequencies in MHz, limits in the
// unit of the channel. A segment without a stop frequency is not used.
struct LimitSegment {
  std::string Start, Stop;
  std::string Upper = "1000", Lower = "-1000";
  // The frequencies as typed, before Apply moved them to points of the sweep. Empty: edited since,
  // or unknown.
  std::string EnteredStart = {}, EnteredStop = {};

  const std::string& StartAsEntered() const { return EnteredStart.empty() ? Start : EnteredStart; }
  const std::string& StopAsEntered() const { return EnteredStop.empty() ? Stop : EnteredStop; }
};

struct ChannelLimits {
  std::array<LimitSegment, kLimitSegments> Segments;
  bool Show = false;     // "Show Limits"
  bool Applied = false;  // the segments are applied to the limits of the channel
  // What the channel showed when its limits were applied or loaded: they are numbers in that unit.
  Parameter ForParameter = Parameter::S11;
  GraphType ForType = GraphType::LogMag;
  Unit ForUnits = Unit::Db;
  bool Failed = false;         // result of the last test
  std::int16_t FailPoint = 0;  // the last failing point, from 1
  Parameter FailParameter = Parameter::S11;
};

struct LimitRecords {
  std::array<ChannelLimits, kChannels> OfChannels;
  bool Enabled = false;      // "Enable Limits"
  bool Alarm = false;        // "Alarm"
  bool LimitFailed = false;  // any channel, in the last test

  ChannelLimits& Of(int channel) { return OfChannels[static_cast<std::size_t>(channel - 1)]; }
  const ChannelLimits& Of(int channel) const {
    return OfChannels[static_cast<std::size_t>(channel - 1)];
  }
};

}  // namespace qk
