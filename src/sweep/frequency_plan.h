// SPDX-License-Identifier: MIT
// From a frequency to the 22 bytes that the instrument's synthesisers play back, and the load of
// a whole plan into sweep RAM.
#pragma once

#include "core/progress.h"
#include "link/exchange.h"

namespace qk {

struct LevelCodes {
  int Code1 = 27;
  int Code2 = 31;
};

// The codes (0 to 31) whose table values at frequency F (hertz) come nearest to Port1Level and
// Port2LevelTarget; the lower code on equal distance, 27 and 31 where nothing is near.
LevelCodes LookupLevelCodes(const Session& session, double F);

// Fills the record of point i (from 0) in FreqTable for frequency F in hertz.
void BuildPointRecord(Session& session, double F, int i);

// Builds the table of the whole plan and writes it to sweep RAM in blocks of 125 bytes, each
// followed by a link check. True, and SweepLoaded set, only when all of it went through; "No
// Response" under "Load Freq Sweep" otherwise.
[[nodiscard]] bool LoadFreqSweep(Rig& rig, const Progress& progress = {});

// Writes the record of point 0 in FreqTable to sweep RAM at address, byte by byte.
void SendPointRecord(Rig& rig, int address);

// Builds the record of F hertz at the session's level and writes it to the first point in sweep
// RAM, behind a link check. False after the complaint.
[[nodiscard]] bool SendFirstPoint(Rig& rig, const Complaint& complaint, double F);

// The grid of the session's plan, to be compared with what the instrument holds.
HeldGrid WantedGrid(const SweepPlan& plan);

}  // namespace qk
