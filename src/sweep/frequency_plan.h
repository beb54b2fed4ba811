// From a frequency to the 22 bytes that the instrument's synthesisers play back, and the load of
// a whole plan into sweep RAM.
#pragma once

#include "core/progress.h"
#include "link/instrument_link.h"

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

}  // namespace qk
