// SPDX-License-Identifier: MIT
// The four kinds of sweep, which are the four kinds of calibration: what each delivers, which is in
// force, and their names. A row a kind in sweep_mode.cpp.
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "core/vocabulary.h"

namespace qk {

struct CalState;

enum class SweepMode { S11, S21, S11S21, All };

// Whether the calibration of this mode is in force.
bool InForce(const CalState& cal, SweepMode mode);
// The mode that START measures in: the first in force in the order S11, S21, S11+S21, all four.
// Nothing without a calibration.
std::optional<SweepMode> ModeInForce(const CalState& cal);
// Puts one mode in force and the others out; nothing: none of them.
void SetModeInForce(CalState& cal, std::optional<SweepMode> mode);

// The parameters that a sweep of this kind delivers, in the order in which each point formats them.
std::span<const Parameter> DeliveredBy(SweepMode mode);
bool Delivers(SweepMode mode, Parameter parameter);

// As session files hold CalKind: "S11", "S21", "both", "All".
std::string_view CalKindName(SweepMode mode);
// Meant: what is none of the others is taken for "All".
SweepMode CalKindNamed(std::string_view name);

}  // namespace qk
