// SPDX-License-Identifier: MIT
// The four kinds of sweep, which are also the four kinds of calibration: the parameters that each
// delivers, which one is active, and their names. sweep_mode.cpp has one row per kind.
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "core/vocabulary.h"

namespace qk {

struct CalState;

enum class SweepMode { S11, S21, S11S21, All };

// True if the calibration of this mode is active.
bool InForce(const CalState& cal, SweepMode mode);
// The mode that START measures: the first active one in the order S11, S21, S11+S21, all four.
// Empty without a calibration.
std::optional<SweepMode> ModeInForce(const CalState& cal);
// Activates one mode and deactivates the others; an empty mode deactivates all.
void SetModeInForce(CalState& cal, std::optional<SweepMode> mode);

// The parameters that a sweep of this kind delivers, in the order in which each point formats them.
std::span<const Parameter> DeliveredBy(SweepMode mode);
bool Delivers(SweepMode mode, Parameter parameter);

// The text for CalKind in session files: "S11", "S21", "both", "All".
std::string_view CalKindName(SweepMode mode);
// Intentional: any other text is read as "All".
SweepMode CalKindNamed(std::string_view name);

}  // namespace qk
