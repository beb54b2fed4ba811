// SPDX-License-Identifier: MIT
// AM to PM conversion: the phase change per decibel of output power, from the readings of the
// through and of the device at 21 levels.
#pragma once

#include <string>

#include "utilities/compression.h"

namespace qk {

// Phases in degrees per level, computed with PhaseDeg (32-bit values).
PowerSeries PhasesOf(const PowerSweep& sweep);

// Intentional, in exactly this order and in 32 bits: above 300 it subtracts 180, then below 300 it
// adds 180. Every ordinary difference gets 180 added, which cancels between device and through; a
// difference near a step of 360 degrees is not unwrapped.
float Wrap(float degrees);

// Degrees per dB at each level: the difference to the second level below, minus that of the
// through, divided by the difference of output power; multiplied by 1e6 if the powers are equal.
// The two lowest levels repeat the third.
PowerSeries AmPmSlopes(const PowerSeries& phase, const PowerSeries& calPhase,
                       const PowerSeries& pout);
// The levels whose slope is wrong by half a turn or a full turn, because the phase of the device or
// of the through crosses 180 degrees in between. If both cross in the same direction, the effects
// cancel.
PowerMarks PhasePasses(const PowerSeries& phase, const PowerSeries& calPhase);

// A measurement; defaults are shown until one is made.
struct AmToPmResult {
  PowerSeries Pin{};   // dBm, at the device's input
  PowerSeries AmPm{};  // degrees per dB
  double ReadoutPin = -6;
  double AmPmValue = 0;
  bool ResultDoubtful = false;
  PowerMarks PhasePassed{};  // PhasePasses of device and through
  PowerMarks Doubtful{};     // these, or every level if the input powers are doubtful
};

struct AmToPmPads {
  double InputAtt = 0, OutputAtt = 0;  // dB
};

// ResultDoubtful if the read-out is outside the measured span, uses a level at which the phase
// crosses 180 degrees, or the meter's table is doubtful.
AmToPmResult ReduceAmToPm(const PowerSweep& sweep, const PowerSeries& calPhase,
                          const AmToPmPads& pads, double readoutPin, const PowerMeter& meter,
                          RegressionObject& regression);

PowerPlot AmToPmPlot(const AmToPmResult& result, std::string title);
PowerPlot EmptyAmToPmPlot(std::string title);
std::string AmToPmText(const AmToPmResult& result, const PowerTextHead& head);

}  // namespace qk
