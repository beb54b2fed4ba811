// SPDX-License-Identifier: MIT
#include "core/sweep_mode.h"

#include <array>

#include "core/session.h"

namespace qk {

namespace {
struct Row {
  SweepMode Mode;
  bool CalState::*Flag;
  std::string_view Kind;
};
constexpr std::array<Row, 4> kModes{{{SweepMode::S11, &CalState::CalS11, "S11"},
                                     {SweepMode::S21, &CalState::CalS21, "S21"},
                                     {SweepMode::S11S21, &CalState::CalS11S21, "both"},
                                     {SweepMode::All, &CalState::Cal12Term, "All"}}};

const Row& RowOf(SweepMode mode) {
  return kModes[static_cast<std::size_t>(mode)];
}
}  // namespace

bool InForce(const CalState& cal, SweepMode mode) {
  return cal.*RowOf(mode).Flag;
}

std::optional<SweepMode> ModeInForce(const CalState& cal) {
  for (const Row& row : kModes)
    if (cal.*row.Flag) return row.Mode;
  return std::nullopt;
}

void SetModeInForce(CalState& cal, std::optional<SweepMode> mode) {
  for (const Row& row : kModes) cal.*row.Flag = row.Mode == mode;
}

std::string_view CalKindName(SweepMode mode) {
  return RowOf(mode).Kind;
}

SweepMode CalKindNamed(std::string_view name) {
  for (const Row& row : kModes)
    if (name == row.Kind) return row.Mode;
  return SweepMode::All;
}

}  // namespace qk
