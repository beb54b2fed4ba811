// SPDX-License-Identifier: MIT
// How the four kinds of sweep differ for the user.
#pragma once

#include "core/host.h"
#include "core/session.h"
#include "sweep/reduction.h"
#include "trace/de_embed.h"

namespace qk {

struct SweepTraits {
  const char* Title;
  const char* StallTitle;
  void (*DeEmbed)(Session& session, int i);  // removes the active networks from point i (from 0)
  bool CalState::*Precondition = &CalState::CalDataReady;
  const char* PreconditionText = "No Calibration";
  Icon NoResponseIcon = Icon::Critical;
  bool RestartsTimer = true;         // restart Timer1 after a failed link check
  bool EndsOnReplyTimedOut = false;  // treat a pending time-out as the end of the sweep
};

const SweepTraits& TraitsOf(SweepMode mode);

}  // namespace qk
