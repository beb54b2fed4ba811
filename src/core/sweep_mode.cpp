// SPDX-License-Identifier: MIT
#include "core/sweep_mode.h"

#include <algorithm>
#include <array>

#include "core/session.h"

namespace qk {

namespace {
constexpr std::array kS11 = {Parameter::S11};
constexpr std::array kS21 = {Parameter::S21};
constexpr std::array kS11S21 = {Parameter::S11, Parameter::S21};
constexpr std::array kAll = {Parameter::S21, Parameter::S12, Parameter::S11, Parameter::S22};

struct Row {
  SweepMode Mode;
  bool CalState::*Flag;
  std::string_view Kind;
  std::span<const Parameter> Delivered;
};
constexpr std::array<Row, 4> kModes{{{SweepMode::S11, &CalState::CalS11, "S11", kS11},
                                     {SweepMode::S21, &CalState::CalS21, "S21", kS21},
                                     {SweepMode::S11S21, &CalState::CalS11S21, "both", kS11S21},
                                     {SweepMode::All, &CalState::Cal12Term, "All", kAll}}};

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

std::span<const Parameter> DeliveredBy(SweepMode mode) {
  return RowOf(mode).Delivered;
}

bool Delivers(SweepMode mode, Parameter parameter) {
  const std::span<const Parameter> delivered = DeliveredBy(mode);
  return std::find(delivered.begin(), delivered.end(), parameter) != delivered.end();
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
