// SPDX-License-Identifier: MIT
// AM to PM conversion: how far the phase moves for a decibel of output power, from the readings of
// the through and of the device at 21 levels.
#pragma once

#include <string>

#include "utilities/compression.h"

namespace qk {

// Phases in degrees per level, as PhaseDeg gives them (32-bit values).
PowerSeries PhasesOf(const PowerSweep& sweep);

// Meant, in 32 bits and exactly so: above 300 it loses 180, and below 300 it then gains 180. Every
// ordinary difference gains 180, which goes out again between device and through; a difference
// near a step of 360 degrees is not unwrapped.
float Wrap(float degrees);

// Degrees per dB at each level: the difference to the second level below, less the through's, over
// the difference of output power; times 1e6 where the powers are equal. The two lowest levels
// repeat the third.
PowerSeries AmPmSlopes(const PowerSeries& phase, const PowerSeries& calPhase,
                       const PowerSeries& pout);
// The levels whose slope is half a turn or a whole one off, because the phase of the device or of
// the through passes 180 degrees on the way. A pass that both make in the same direction cancels.
PowerMarks PhasePasses(const PowerSeries& phase, const PowerSeries& calPhase);

// A measurement; as it stands here before one.
struct AmToPmResult {
  PowerSeries Pin{};   // dBm, at the device's input
  PowerSeries AmPm{};  // degrees per dB
  double ReadoutPin = -6;
  double AmPmValue = 0;
  bool ResultDoubtful = false;
  PowerMarks PhasePassed{};  // PhasePasses of device and through
  PowerMarks Doubtful{};     // these, or every level when the input powers are doubtful
};

struct AmToPmPads {
  double InputAtt = 0, OutputAtt = 0;  // dB
};

// ResultDoubtful when the read-out lies outside the measured span, rests on a level at which the
// phase passes 180 degrees, or the meter's table is doubtful.
AmToPmResult ReduceAmToPm(const PowerSweep& sweep, const PowerSeries& calPhase,
                          const AmToPmPads& pads, double readoutPin, const PowerMeter& meter,
                          RegressionObject& regression);

PowerPlot AmToPmPlot(const AmToPmResult& result, std::string title);
PowerPlot EmptyAmToPmPlot(std::string title);
std::string AmToPmText(const AmToPmResult& result, const PowerTextHead& head);

}  // namespace qk
