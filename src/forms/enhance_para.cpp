// SPDX-License-Identifier: MIT
#include "forms/enhance_para.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

#include "control/verbs.h"
#include "core/instrument_limits.h"
#include "core/text.h"
#include "core/window_names.h"
#include "forms/lists.h"
#include "sweep/settings.h"
#include "trace/formatting.h"
#include "trace/smoothing.h"

namespace qk {

namespace {

// A typed number rounded to an integer, clamped to 16 bits.
std::int16_t WholeNumber(std::string_view text) {
  return static_cast<std::int16_t>(std::lround(std::clamp(Val(text), -32768.0, 32767.0)));
}

// The typed number converted to metres by its unit: a 32-bit number multiplied by each factor in
// turn; for time units the speed of light comes first.
double Metres(float typed, PlaneUnit unit) {
  const PlaneUnitRow& row = RowOf(unit);
  const auto number = static_cast<double>(typed);
  return row.Delay ? number * kSpeedOfLight * row.Size : number * row.Size;
}

// Larger values would not fit a 32-bit number.
constexpr double kLongestPlane = 1e30;

// Mean group delay in seconds over the plan. Intentional: the first difference counts twice, and
// the divisor is the number of points.
double MeanDelay(const SweepPlan& plan, const ComplexArray& s) {
  double sum = 0;
  double first = 0;
  float before = PhaseDeg(s[0].re, s[0].im);
  for (int i = 1; i < plan.NumPoints; ++i) {
    const float phase = PhaseDeg(s[i].re, s[i].im);
    const double d = StepDelay(before, phase, plan.StepFreq);
    before = phase;
    if (i == 1) first = d;
    sum += d;
  }
  return (sum + first) / plan.NumPoints;
}

}  // namespace

EnhancePara::EnhancePara(Controller& controller)
    : Form(window::kEnhancePara, "Enhancement Set Up"),
      controller_(controller),
      session_(controller.rig().session),
      host_(controller.rig().host) {
  AddValues();
  AddPlane();
  AddDeEmbedding();
  AddSystemZo();
  ActionRow();
  AddButton("ApplyEnhance", "Apply", [this] { ApplyEnhance(); })
      .Key('A')
      .Default()
      .Tip("Use these values; during a sweep they take effect at its end");
  AddButton("CloseEnhance", "Exit", [this] { host_.windows.Hide(Name()); }).Key('x');
}

void EnhancePara::AddValues() {
  Section("Set Values");
  averages_ = AddText("InputAverages", "Averages (1-255)")
                  .Key('v')
                  .Number()
                  .Tip("Readings averaged at each point while averaging is on");
  smoothing_ = AddText("InputSmoothing", "Smoothing (0-10%)")
                   .Key('S')
                   .Number()
                   .Tip("Aperture of the smoothing, in percent of the sweep");
  aperture_ =
      AddText("SmoothAper", "Smoothing  (pts)").ReadOnly().Number().Tip("The aperture in points");
  dwell_ = AddList("ListDwell", "Dwell Time", {"0.5 ms", "2.5 ms"})
               .Key('D')
               .Tip("Settling time at each point before it is measured");
  level_ = AddList("ListLevel", "Port 1 Level        (dBm)", LevelEntries())
               .Key('L')
               .Tip("Test signal level at port 1");
  signal_ = {dwell_, level_};
}

void EnhancePara::AddPlane() {
  Section("Ref Plane", {.Where = Position::Beside});
  measuring_ = AddLabel("Label4", "Ch 1, measuring S11");
  plane_ = AddText("TimeInput", "Enter Value")
               .Key('E')
               .Number()
               .Tip("Reference plane: a length, or the time light takes to travel it");
  planeUnit_ = AddList("ListRefPlaneInput", "Select Units", NamesOf<PlaneUnit>(), [this] {
                 PlaneUnitChosen();
               }).Key('U');
  planeEntry_ = {plane_, planeUnit_};
  numbers_ = {averages_, smoothing_};
  AddButton("Command1", "Auto Ref", [this] { AutoRef(); })
      .Key('R')
      .Tip("Find the plane from the mean group delay of the last sweep");
}

void EnhancePara::OnOpen() {
  AveragingState& averaging = session_.Averaging;
  if (averaging.Averages == 0) averaging.Averages = 1;
  averages_.Text(FormatNumber(averaging.Averages, "#0"));
  smoothing_.Text(FormatNumber(averaging.SmoothingPercent, "#0"));
  dwell_.Index(session_.Flags.DwellOn ? 1 : 0);
  level_.Index(-session_.Plan.Port1Level);
  ShowPlane();
  OpenSystem();
  TakeActivePlane(session_, host_.windows);
}

void EnhancePara::OnSessionChanged() {
  const std::int16_t before = std::exchange(averagesSet_, session_.Averaging.AveragesSet);
  if (averagesSet_ != before)
    averages_.FollowText(FormatNumber(session_.Averaging.AveragesSet, "#0"));
  smoothing_.FollowText(FormatNumber(session_.Averaging.SmoothingPercent, "#0"));
  ShowAperture();
  dwell_.FollowIndex(session_.Flags.DwellOn ? 1 : 0);
  level_.FollowIndex(-session_.Plan.Port1Level);
  measuring_.Caption("Ch" + WholeNumberText(session_.Display.ActiveChannel) + ", measuring " +
                     std::string(NameOf(ActiveParameter(session_))));
  // The parameter or its plane has changed: applying the contents of the fields would now be wrong.
  if (ShownPlane() != shown_) ShowPlane();
  ShowSystem();
}

void EnhancePara::OnSessionLoaded() {
  averages_.FollowText(FormatNumber(session_.Averaging.Averages, "#0"));
  ShowPlaneIn(session_.Planes.RefPlaneUnits);
}

void EnhancePara::ShowPlane() {
  ShowPlaneIn(PlaneUnit::Mm);
}

std::pair<Parameter, float> EnhancePara::ShownPlane() const {
  return {ActiveParameter(session_), session_.Planes.ActivePlane};
}

void EnhancePara::ShowPlaneIn(PlaneUnit unit) {
  shown_ = ShownPlane();
  const PlaneUnitRow& row = RowOf(unit);
  const double metres = static_cast<double>(session_.Planes.ActivePlane);
  planeUnit_.Index(static_cast<int>(unit));
  plane_.Text(FormatNumber((row.Delay ? metres / kSpeedOfLight : metres) / row.Size, "###0.000"));
}

// An applied plane is converted to the chosen unit; a number being typed is taken in that unit and
// is not changed.
void EnhancePara::PlaneUnitChosen() {
  if (plane_->Edited || planeUnit_->Index < 0) return;
  ShowPlaneIn(static_cast<PlaneUnit>(planeUnit_->Index));
}

void EnhancePara::ShowAperture() {
  aperture_.Text(FormatNumber(
      SmoothingAperture(session_.Averaging.SmoothingPercent, session_.Plan.NumPoints), "##0"));
}

void EnhancePara::ApplyEnhance() {
  if (controller_.StartingUp()) return;
  ApplyAverages();
  ApplySmoothing();
  ApplyDwell();
  SetPort1Level(controller_.rig(), static_cast<std::int16_t>(-level_->Index));
  ApplyPlane();
  const SweepFlags& flags = session_.Flags;
  const bool due = flags.AveragesChangeDue || flags.DwellChangeDue || flags.LevelChangeDue;
  if (due && !flags.SweepIdle) host_.windows.Show(window::kUpdating);
  if (ApplySystemZo())
    controller_.graphs().ReplotAll();
  else if (!session_.Flags.SweepIdle)  // new data use these values: update tag and table
    controller_.graphs().RedrawAll(true);
  signal_.Accept();
  planeUnit_.Accept();
  host_.windows.SessionChanged();
}

void EnhancePara::ApplyAverages() {
  AveragingState& averaging = session_.Averaging;
  averaging.AveragesSet = WholeNumber(averages_->Text);
  // Intentional: a number that is too small corrects the active count, not the entered one.
  if (averaging.AveragesSet < 1) averaging.Averages = 1;
  averaging.AveragesSet = std::min(averaging.AveragesSet, kMostAverages);
  averages_.Text(FormatNumber(averaging.AveragesSet, "#0"));
  if (averaging.AveragesSet == averaging.Averages || !averaging.AverOn) return;
  if (session_.Flags.SweepIdle) {
    SetAveragesWhileIdle(controller_.rig(), averaging.AveragesSet);
  } else {
    session_.Flags.AveragesChangeDue = true;
  }
}

void EnhancePara::ApplySmoothing() {
  session_.Averaging.SmoothingPercent =
      std::clamp<std::int16_t>(WholeNumber(smoothing_->Text), 0, kMostSmoothing);
  smoothing_.Text(FormatNumber(session_.Averaging.SmoothingPercent, "#0"));
  ShowAperture();
}

void EnhancePara::ApplyDwell() {
  session_.Flags.DwellOn = dwell_->Index != 0;
  if (session_.Flags.SweepIdle)
    std::ignore = SendDwell(controller_.rig());  // a failure is shown; the next START sends it
  else
    session_.Flags.DwellChangeDue = true;
}

void EnhancePara::ApplyPlane() {
  if (planeUnit_->Index < 0) return;
  const auto unit = static_cast<PlaneUnit>(planeUnit_->Index);
  session_.Planes.RefPlaneUnits = unit;
  // If the user has entered nothing, the field shows the active plane rounded. It is not read back;
  // otherwise applying any other setting would change a plane that was measured or loaded (in ns by
  // up to 0.15 mm).
  if (!planeEntry_.Edited()) return;
  const double typed = std::clamp(Val(plane_->Text), -kLongestPlane, kLongestPlane);
  const double metres =
      std::clamp(Metres(static_cast<float>(typed), unit), -kLongestPlane, kLongestPlane);
  shown_ = {ActiveParameter(session_), static_cast<float>(metres)};
  plane_.Text(plane_->Text);  // keeps the text, now applied
  SetActivePlane(session_, host_.windows, metres);
}

void EnhancePara::AutoRef() {
  const CalState& cal = session_.Cal;
  if (!cal.AnyKind()) {
    host_.prompts.ShowMessage("AutoRef", "No Calibration", Icon::Exclamation);
    return;
  }
  TakeActivePlane(session_, host_.windows);
  const Parameter parameter = ActiveParameter(session_);
  if ((cal.CalS21 && parameter != Parameter::S21) || (cal.CalS11 && parameter != Parameter::S11)) {
    host_.prompts.ShowMessage("AutoRef", "Warning: No Cal for Active Graph", Icon::None);
    return;
  }
  if (session_.Planes.ActivePlane != 0) {
    host_.prompts.ShowMessage("AutoRef Start Value", "Set Ref Plane value to 0mm and Apply first",
                              Icon::None);
    return;
  }
  double metres = MeanDelay(session_.Plan, ArrayOf(session_.Data, parameter)) * kSpeedOfLight;
  if (RowOf(parameter).Reflection) metres /= 2;
  SetActivePlane(session_, host_.windows, metres);
  ShowPlane();
  controller_.graphs().RedrawAll(true);  // the marker table shows the plane
}

}  // namespace qk
