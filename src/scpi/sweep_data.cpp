// SPDX-License-Identifier: MIT
#include "scpi/sweep_data.h"

#include <algorithm>
#include <cmath>

#include "control/sweep_traits.h"
#include "trace/formatting.h"
#include "trace/smoothing.h"

namespace qk::scpi {

bool SweepData::Holds(Parameter parameter) const {
  return Delivers(Mode, parameter);
}

KeptSweep KeepSweep(const Session& session, SweepMode mode) {
  auto kept = std::make_shared<SweepData>();
  kept->Grid = session.Plan;
  kept->Mode = mode;
  kept->Data = session.Data;
  return kept;
}

std::vector<double> Pairs(const ComplexArray& array, int numPoints) {
  std::vector<double> pairs;
  pairs.reserve(static_cast<std::size_t>(2 * numPoints));
  for (int i = 0; i < numPoints; ++i) {
    pairs.push_back(array[i].re);
    pairs.push_back(array[i].im);
  }
  return pairs;
}

const std::array<TraceFormRow, 18>& TraceForms() {
  static constexpr std::array<TraceFormRow, 18> kForms{
      {{"MLOGarithmic", GraphType::LogMag},
       {"MLINear", GraphType::LinMag},
       {"PHASe", GraphType::Phase},
       {"UPHase", GraphType::UnwrappedPhase},
       {"GDELay", GraphType::GroupDelay},
       {"SWR", GraphType::Swr},
       {"REAL", GraphType::Real},
       {"IMAGinary", GraphType::Imag},
       {"SMITh", GraphType::Smith},
       {"POLar", std::nullopt},
       {"ZMAGnitude", GraphType::ImpedanceMagnitude},
       {"RESistance", GraphType::Resistance},
       {"REACtance", GraphType::Reactance},
       {"INDuctance", GraphType::Inductance},
       {"CAPacitance", GraphType::Capacitance},
       {"QFACtor", GraphType::Quality},
       {"TDR", GraphType::Td},
       {"TDIMpedance", GraphType::TdImpedance}}};
  return kForms;
}

TraceForm FormOf(GraphType type) {
  for (std::size_t i = 0; i < TraceForms().size(); ++i)
    if (TraceForms()[i].Shown == type) return static_cast<TraceForm>(i);
  return TraceForm::Time;
}

namespace {

bool IsChart(TraceForm form) {
  return form == TraceForm::Smith || form == TraceForm::Polar;
}

double ValueAt(const ComplexArray& array, int i, TraceForm form) {
  const Complex z = array[i];
  switch (form) {
    case TraceForm::Mlog:
      return quantity::Db(z);
    case TraceForm::Mlin:
      return quantity::Linear(z);
    case TraceForm::Phase:
    case TraceForm::Unwrapped:
      return quantity::Degrees(z);
    case TraceForm::Swr:
      return quantity::Swr(z);
    case TraceForm::Imag:
      return z.im;
    default:
      return z.re;
  }
}

// The formula of a format that shows a component of an impedance.
ComponentQuantity ComponentOfForm(TraceForm form) {
  const std::optional<GraphType> shown = TraceForms()[static_cast<std::size_t>(form)].Shown;
  if (!shown || RowOf(*shown).Form != PointForm::Component) return nullptr;
  return RowOf(*shown).OfImpedance;
}

void Unwrap(std::vector<double>& degrees) {
  for (std::size_t i = 1; i < degrees.size(); ++i)
    degrees[i] -= 360 * std::round((degrees[i] - degrees[i - 1]) / 360);
}

// The delay of each step; the first point repeats the second.
std::vector<double> Delays(const ComplexArray& array, const PlanGrid& grid) {
  std::vector<double> delays(static_cast<std::size_t>(grid.NumPoints));
  float before = PhaseDeg(array[0].re, array[0].im);
  for (int i = 1; i < grid.NumPoints; ++i) {
    const float phase = PhaseDeg(array[i].re, array[i].im);
    delays[static_cast<std::size_t>(i)] = StepDelay(before, phase, grid.StepFreq);
    before = phase;
  }
  delays[0] = delays[1];
  return delays;
}

// The moving average used by the graphs: the ends repeat the first and the last average.
std::vector<double> Smoothed(const std::vector<double>& values, int percent) {
  const int count = static_cast<int>(values.size());
  const int aperture = SmoothingAperture(percent, count);
  const int half = aperture / 2;
  std::vector<double> smoothed(values.size());
  for (int centre = half; centre + (aperture - half) <= count; ++centre) {
    double sum = 0, weights = 0;
    for (int k = 0; k < aperture; ++k) {
      const double weight = SmoothingWeight(k, aperture);
      sum += weight * values[static_cast<std::size_t>(centre - half + k)];
      weights += weight;
    }
    smoothed[static_cast<std::size_t>(centre)] = sum / weights;
  }
  const int last = count - (aperture - half);
  for (int i = 0; i < half; ++i)
    smoothed[static_cast<std::size_t>(i)] = smoothed[static_cast<std::size_t>(half)];
  for (int i = last + 1; i < count; ++i)
    smoothed[static_cast<std::size_t>(i)] = smoothed[static_cast<std::size_t>(last)];
  return smoothed;
}

}  // namespace

std::vector<double> FormattedPairs(const SweepData& sweep, Parameter parameter, TraceForm form,
                                   int smoothing, const ImpedanceView& view) {
  const ComplexArray& array = ArrayOf(sweep.Data, parameter);
  const int count = sweep.Grid.NumPoints;
  if (IsChart(form)) return Pairs(array, count);
  std::vector<double> values;
  if (form == TraceForm::Delay) {
    values = Delays(array, sweep.Grid);
  } else if (const ComponentQuantity part = ComponentOfForm(form); part != nullptr) {
    for (int i = 0; i < count; ++i)
      values.push_back(
          part(component::ImpedanceOf(view.Element, array[i], view.Zo), sweep.Grid.Frequency(i)));
  } else {
    for (int i = 0; i < count; ++i) values.push_back(ValueAt(array, i, form));
    if (form == TraceForm::Unwrapped) Unwrap(values);
  }
  if (smoothing > 0) values = Smoothed(values, smoothing);
  std::vector<double> pairs;
  pairs.reserve(2 * values.size());
  for (const double value : values) {
    pairs.push_back(value);
    pairs.push_back(0);
  }
  return pairs;
}

}  // namespace qk::scpi
