// SPDX-License-Identifier: MIT
#include "quality/quality_state.h"

#include "core/measured_sweep.h"

namespace qk {

namespace {
double Size(const ComplexArray& array, int k) {
  const Complex z = array[k];
  return Magnitude(z.re, z.im);
}

// That of the run when its sweeps are of this plan, else of the last sweeps.
Spread SpreadAt(const QualityState& quality, const Session& session, Parameter parameter, int k) {
  const PointStatistics* run = quality.Run.Of(parameter);
  if (run != nullptr && SameGrid(quality.Run.Grid(), session.Plan)) return {run->Deviation(k), 1};
  return {quality.Hints.Noise(parameter, k), 1};
}
}  // namespace

CalIdentity IdentityOf(const Session& session) {
  const PlanGrid& plan = session.Plan.SavedPlan;
  const PortTerms& terms = session.SavedTerms.Forward;
  return {session.CalMade, ModeInForce(session.Cal), plan.StartFreq, plan.StepFreq, terms.ED[0],
          terms.ETT[0]};
}

std::optional<double> UncertaintyAt(const QualityState& quality, const Session& session,
                                    Parameter parameter, int k) {
  using enum CheckTerm;
  const CalCheck& check = quality.Check;
  const bool reflection = RowOf(parameter).Reflection;
  const CheckTerm least = reflection ? Directivity : TransmissionTracking;
  const bool forward = parameter == Parameter::S11 || parameter == Parameter::S21;
  if (!forward || !check.Of(least).Known) return std::nullopt;

  const ResidualSizes residuals = check.SizesAt(session.Plan.Frequency(k));
  const SParamData& data = session.Data;
  DeviceSizes device;
  const bool both = session.Cal.Cal12Term;
  const bool s11 = both || session.Cal.CalS11 || session.Cal.CalS11S21;
  const bool s21 = both || session.Cal.CalS21 || session.Cal.CalS11S21;
  if (s11) device.S11 = Size(data.S11, k);
  if (s21) device.S21 = Size(data.S21, k);
  if (both) {
    device.S12 = Size(data.S12, k);
    device.S22 = Size(data.S22, k);
  }
  const Spread spread = SpreadAt(quality, session, parameter, k);
  return reflection ? UncertaintyOfReflection(residuals, device, spread)
                    : UncertaintyOfTransmission(residuals, device, spread);
}

}  // namespace qk
