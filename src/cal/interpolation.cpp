// A calibration kept over a change of the plan: the terms as they were calibrated, and their
// splines on the new grid.
#include <array>

#include "cal/error_terms.h"
#include "numeric/spline.h"

namespace qk {

namespace {
using TermArray = ComplexArray ErrorTerms::*;
using PortArray = ComplexArray PortTerms::*;

// Calls action with each of the eighteen arrays of both records.
template <class Action>
void ForEachArray(ErrorTerms& to, const ErrorTerms& from, Action action) {
  for (const PortArray term : {&PortTerms::ED, &PortTerms::ERT, &PortTerms::ES, &PortTerms::EX,
                               &PortTerms::ETT, &PortTerms::EL}) {
    action(to.Forward.*term, from.Forward.*term);
    action(to.Reverse.*term, from.Reverse.*term);
  }
  for (const TermArray term : {&ErrorTerms::IsoFwd0, &ErrorTerms::IsoFwd1, &ErrorTerms::IsoFwd2,
                               &ErrorTerms::IsoRev0, &ErrorTerms::IsoRev1, &ErrorTerms::IsoRev2})
    action(to.*term, from.*term);
}

// The points of the grid; what stands beyond them stays.
void CopyTerms(ErrorTerms& to, const ErrorTerms& from, int numPoints) {
  ForEachArray(to, from, [numPoints](ComplexArray& target, const ComplexArray& source) {
    for (int k = 0; k < numPoints; ++k) target.Set(k, source[k]);
  });
}

// Knots count from the saved start: the spline's table is 32-bit, in which points 100 Hz apart
// above 1 GHz would fall together.
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
  ForEachArray(session.Terms, session.SavedTerms,
               [&](ComplexArray& target, const ComplexArray& source) {
                 Interpolate(target.re, source.re, session.Plan, saved);
                 Interpolate(target.im, source.im, session.Plan, saved);
               });
}

}  // namespace qk
