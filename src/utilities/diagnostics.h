// SPDX-License-Identifier: MIT
// The fixed self-test: synthesisers, signal levels, receiver, crosstalk and offsets, with a verdict
// for each.
#pragma once

#include <functional>
#include <string>

#include "link/instrument_link.h"

namespace qk {

// " -" before the test, " OK", the failure, or "No Response" if a reply is missing or incomplete. A
// later failure replaces an earlier one.
struct DiagnosticVerdicts {
  std::string Synthesisers = " -";
  std::string TestLevels = " -";
  std::string ReceiverLevels = " -";
  std::string Crosstalk = " -";
  std::string DcOffset = " -";
};

// True if two adjacent test levels read 3 dB apart, within 2 dB: exactly 1 and 5 pass.
bool LevelStepHolds(double valueDb, double previousDb);

// Called whenever a verdict changes.
using VerdictsShown = std::function<void(const DiagnosticVerdicts&)>;

// Called between two exchanges: false ends the test. The verdicts so far are kept.
using MayContinue = std::function<bool()>;

// Runs the whole test, with its two prompts to connect and remove a cable; continues after
// failures. On a line that does not answer, each of its four parts waits for only one link check. A
// message that would repeat at each exchange is shown once. The caller pauses Timer1.
DiagnosticVerdicts RunDiagnostics(
    Rig& rig, const VerdictsShown& shown, const MayContinue& mayContinue = [] { return true; });

}  // namespace qk
