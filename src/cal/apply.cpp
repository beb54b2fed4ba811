// SPDX-License-Identifier: MIT
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

SweepMode ModeOf(CalChoice choice) {
  switch (choice) {
    case CalChoice::S11:
      return SweepMode::S11;
    case CalChoice::S21:
      return SweepMode::S21;
    case CalChoice::S11S21:
      return SweepMode::S11S21;
    case CalChoice::Insertable:
    case CalChoice::NonInsertable:
      break;
  }
  return SweepMode::All;
}

void SetKind(CalState& cal, SweepMode mode) {
  SetModeInForce(cal, mode);
  cal.CalDataReady = true;
  cal.CalKind = mode;
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
      (choice == CalChoice::Insertable && session.Cal.IsoMethod == IsoMethod::Basic))
    ClearIsolationCoefficients(session);

  if (choice == CalChoice::S21) ComputeResponseTerms(session, isoDone);
  if (choice == CalChoice::S11S21) ComputeEnhancedTerms(session, isoDone);
  PutTermsInForce(session, host, ModeOf(choice));
  if (!tablesGood)
    host.prompts.ShowMessage("CS Computation", "Cubic Spline Data Error", Icon::None);
}

void PutTermsInForce(Session& session, Host& host, SweepMode mode) {
  SetKind(session.Cal, mode);
  SetPanel(session, host.windows, Panel::Calibration, CalStatusText(session.Cal));
  ShowLevel(session, host.windows);
  ClearPlanes(session.Planes);
  session.Plan.CalLevel = session.Plan.Port1Level;
  SaveCalForInterpolation(session);
  session.Cal.CalInterpolated = false;
  session.CalMade = {host.loop.UnixSeconds(), session.Receiver.Temperature, session.Kit1.KitName,
                     session.Kit2.KitName};
}

void DropCal(Session& session, Windows& windows) {
  SetModeInForce(session.Cal, std::nullopt);
  SetPanel(session, windows, Panel::Calibration, "UnCal");
}

}  // namespace qk
