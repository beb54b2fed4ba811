// SPDX-License-Identifier: MIT
#include "control/sweep_traits.h"

namespace qk {

namespace {

constexpr SweepTraits kTraitsS11{.Title = "Measure S11",
                                 .StallTitle = "Measure S11",
                                 .DeEmbed = DeEmbedPointS11,
                                 .NoResponseIcon = Icon::Exclamation};
// Intentional: Timer1 stays off if the link check of an S21 measurement fails.
constexpr SweepTraits kTraitsS21{.Title = "Measure S21",
                                 .StallTitle = "Measure S21",
                                 .DeEmbed = DeEmbedPointS21,
                                 .Precondition = &CalState::CalThruReady,
                                 .PreconditionText = "No Thru Calibration",
                                 .RestartsTimer = false,
                                 .EndsOnReplyTimedOut = true};
// Intentional: only a stall names S11+S21.
constexpr SweepTraits kTraitsS11S21{
    .Title = "Measure All", .StallTitle = "Measure S11+S21", .DeEmbed = DeEmbedPointS11S21};
constexpr SweepTraits kTraitsAll{
    .Title = "Measure All", .StallTitle = "Measure All", .DeEmbed = DeEmbedPointAll};

}  // namespace

const SweepTraits& TraitsOf(SweepMode mode) {
  switch (mode) {
    case SweepMode::S11:
      return kTraitsS11;
    case SweepMode::S21:
      return kTraitsS21;
    case SweepMode::S11S21:
      return kTraitsS11S21;
    case SweepMode::All:
      break;
  }
  return kTraitsAll;
}

}  // namespace qk
