#include "cal/apply.h"

#include "cal/error_terms.h"
#include "core/status.h"

namespace qk {

namespace {
bool ComputeReflection(Session& session, CalChoice choice) {
  switch (choice) {
    case CalChoice::S11:
    case CalChoice::S11S21:
      return ComputeOnePortTerms(session);
    case CalChoice::Insertable:
      return ComputeInsertableTerms(session);
    case CalChoice::NonInsertable:
      return ComputeNonInsertableTerms(session);
    case CalChoice::S21:
      break;
  }
  return true;
}

void SetKind(CalState& cal, CalChoice choice) {
  cal.CalS11 = choice == CalChoice::S11;
  cal.CalS21 = choice == CalChoice::S21;
  cal.CalS11S21 = choice == CalChoice::S11S21;
  cal.Cal12Term = choice == CalChoice::Insertable || choice == CalChoice::NonInsertable;
  cal.CalDataReady = true;
  if (cal.CalS11) cal.CalKind = "S11";
  if (cal.CalS21) cal.CalKind = "S21";
  if (cal.CalS11S21) cal.CalKind = "both";
  if (cal.Cal12Term) cal.CalKind = "All";
}

void ClearPlanes(PlaneState& planes) {
  const PlaneUnit units = planes.RefPlaneUnits;
  planes = PlaneState();
  planes.RefPlaneUnits = units;
}
}  // namespace

void ApplyCalibration(Session& session, Host& host, CalChoice choice, bool isoDone) {
  const bool tablesGood = ComputeReflection(session, choice);
  if (choice == CalChoice::NonInsertable ||
      (choice == CalChoice::Insertable && session.Cal.IsoMethod == 0))
    ClearIsolationCoefficients(session);

  SetKind(session.Cal, choice);
  SetPanel(session, host.windows, 3, CalStatusText(session.Cal));
  ShowLevel(session, host.windows);
  if (choice == CalChoice::S21) ComputeResponseTerms(session, isoDone);
  if (choice == CalChoice::S11S21) ComputeEnhancedTerms(session, isoDone);

  ClearPlanes(session.Planes);
  session.Plan.CalLevel = session.Plan.Port1Level;
  SaveCalForInterpolation(session);
  session.Cal.CalInterpolated = false;
  if (!tablesGood) host.prompts.Tell("CS Computation", "Cubic Spline Data Error", Icon::None);
}

void DropCal(Session& session, Windows& windows) {
  CalState& cal = session.Cal;
  cal.CalS11 = cal.CalS21 = cal.CalS11S21 = cal.Cal12Term = false;
  SetPanel(session, windows, 3, "UnCal");
}

}  // namespace qk
