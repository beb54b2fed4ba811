// SPDX-License-Identifier: MIT
// Keeps a calibration when the plan changes: the terms as calibrated, and their interpolation on
// the new grid.
#include <array>

#include "cal/error_terms.h"
#include "core/cal_arrays.h"
#include "core/instrument_limits.h"
#include "numeric/spline.h"

namespace qk {

static_assert(CSplineObject::kCapacity >= kMaxPoints, "a knot a point of the saved grid");

namespace {
// Copies the points of the grid; points beyond them are unchanged.
void CopyTerms(ErrorTerms& to, const ErrorTerms& from, int numPoints) {
  for (const CalArray& array : CalArrays())
    for (int k = 0; k < numPoints; ++k) array.In(to).Set(k, array.In(from)[k]);
}

// Knots are relative to the saved start frequency: the spline's table is 32-bit, in which points
// 100 Hz apart above 1 GHz would become equal.
void Interpolate(std::array<double, kMaxPoints>& to, const std::array<double, kMaxPoints>& from,
                 const PlanGrid& plan, const PlanGrid& saved) {
  CSplineObject spline;
  for (int i = 0; i < saved.NumPoints; ++i)
    spline.XYAdd(i * saved.StepFreq, from[static_cast<std::size_t>(i)]);
  spline.DoCoeffs();
  for (int k = 0; k < plan.NumPoints; ++k)
    to[static_cast<std::size_t>(k)] = spline.GetY(plan.Frequency(k) - saved.StartFreq);
}
}  // namespace

void SaveCalForInterpolation(Session& session) {
  session.Plan.SavedPlan = session.Plan;
  CopyTerms(session.SavedTerms, session.Terms, session.Plan.NumPoints);
}

void RestoreCal(Session& session) {
  static_cast<PlanGrid&>(session.Plan) = session.Plan.SavedPlan;
  CopyTerms(session.Terms, session.SavedTerms, session.Plan.NumPoints);
}

void InterpolateCal(Session& session) {
  const PlanGrid& saved = session.Plan.SavedPlan;
  for (const CalArray& array : CalArrays()) {
    ComplexArray& target = array.In(session.Terms);
    const ComplexArray& source = array.In(session.SavedTerms);
    Interpolate(target.re, source.re, session.Plan, saved);
    Interpolate(target.im, source.im, session.Plan, saved);
  }
}

}  // namespace qk
