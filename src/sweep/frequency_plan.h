// SPDX-License-Identifier: MIT
// Converts a frequency to the 22-byte record that programs the instrument's synthesisers, and loads
// a whole plan into sweep RAM.
#pragma once

#include "core/progress.h"
#include "link/exchange.h"

namespace qk {

struct LevelCodes {
  int Code1 = 27;
  int Code2 = 31;
};

// The level codes (0 to 31) whose table values at frequency F (hertz) are nearest to Port1Level and
// Port2LevelTarget; the lower code at equal distance, 27 and 31 if no value is near.
LevelCodes LookupLevelCodes(const Session& session, double F);

// Fills the record of point i (from 0) in FreqTable for frequency F in hertz.
void BuildPointRecord(Session& session, double F, int i);

// Builds the table of the whole plan and writes it to sweep RAM in blocks of 125 bytes, each
// followed by a link check. Returns true and sets SweepLoaded only if everything succeeded;
// otherwise shows "No Response" under "Load Freq Sweep".
[[nodiscard]] bool LoadFreqSweep(Rig& rig, const Progress& progress = {});

// Writes the record of point 0 in FreqTable to sweep RAM at address, byte by byte.
void SendPointRecord(Rig& rig, int address);

// Builds the record for F hertz at the session's level and writes it to the first point in sweep
// RAM, after a link check. False after a failure, which has been shown.
[[nodiscard]] bool SendFirstPoint(Rig& rig, const Complaint& complaint, double F);

// The grid of the session's plan, for comparison with the state of the instrument.
HeldGrid WantedGrid(const SweepPlan& plan);

}  // namespace qk
