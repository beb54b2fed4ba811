// SPDX-License-Identifier: MIT
// A complete sweep stored for clients, and its values in the formats that they request.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "core/session.h"

namespace qk::scpi {

struct SweepData {
  PlanGrid Grid;
  SweepMode Mode = SweepMode::All;
  SParamData Data;

  bool Holds(Parameter parameter) const;
};
using KeptSweep = std::shared_ptr<const SweepData>;

// The session's data as a complete sweep of the active mode.
KeptSweep KeepSweep(const Session& session, SweepMode mode);

// re, im of each point, corrected or raw.
std::vector<double> Pairs(const ComplexArray& array, int numPoints);

// The formats of CALCulate:TRACe:FORMat.
enum class TraceForm {
  Mlog,
  Mlin,
  Phase,
  Unwrapped,
  Delay,
  Swr,
  Real,
  Imag,
  Smith,
  Polar,
  ImpedanceMagnitude,
  Resistance,
  Reactance,
  Inductance,
  Capacitance,
  Quality,
  Time,
  TimeImpedance
};
struct TraceFormRow {
  std::string_view Word;  // in SCPI notation
  std::optional<GraphType> Shown;
};
const std::array<TraceFormRow, 18>& TraceForms();
// The format that a graph shows.
TraceForm FormOf(GraphType type);

// The settings for computing the components of an impedance.
struct ImpedanceView {
  qk::Element Element = qk::Element::Reflection;
  double Zo = 50;
};

// value, second value of each point: dB, plain ratios, degrees, seconds, ohms, henries, farads. The
// second value is 0 except on a Smith or polar chart. NaN where an impedance has no value.
// smoothing: percent of the sweep, 0 for none; charts are never smoothed. Not for time responses.
std::vector<double> FormattedPairs(const SweepData& sweep, Parameter parameter, TraceForm form,
                                   int smoothing, const ImpedanceView& view);

}  // namespace qk::scpi
