// SPDX-License-Identifier: MIT
// A whole sweep kept for clients, and its values in the forms that they ask for.
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

// The session's data as a whole sweep of the mode in force.
KeptSweep KeepSweep(const Session& session, SweepMode mode);

// re, im of each point, corrected or raw.
std::vector<double> Pairs(const ComplexArray& array, int numPoints);
const ComplexArray& RawOf(const SParamData& data, Parameter parameter);

// The forms of CALCulate:TRACe:FORMat.
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
  std::string_view Word;  // as SCPI writes it
  std::optional<GraphType> Shown;
};
const std::array<TraceFormRow, 18>& TraceForms();
// The form that a graph shows.
TraceForm FormOf(GraphType type);

// How the parts of an impedance are computed.
struct ImpedanceView {
  qk::Element Element = qk::Element::Reflection;
  double Zo = 50;
};

// value, second value of each point: dB, plain ratios, degrees, seconds, ohms, henries, farads; the
// second is 0 but on a Smith or polar chart. Not a number where an impedance has no value.
// smoothing: percent of the sweep, 0 for none; charts are never smoothed. Not for time responses.
std::vector<double> FormattedPairs(const SweepData& sweep, Parameter parameter, TraceForm form,
                                   int smoothing, const ImpedanceView& view);

}  // namespace qk::scpi
