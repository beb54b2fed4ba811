#include "forms/enhance_para.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "core/status.h"
#include "core/text.h"
#include "forms/lists.h"
#include "sweep/receiver.h"
#include "sweep/settings.h"
#include "trace/formatting.h"
#include "trace/smoothing.h"

namespace qk {

namespace {

// Plane (metres) and delay (seconds) of a parameter.
struct PlaneOf {
  float& Plane;
  float& Delay;
};

PlaneOf PlaneOfParameter(PlaneState& planes, Parameter parameter) {
  switch (parameter) {
    case Parameter::S21:
      return {planes.PlaneS21, planes.DelayS21};
    case Parameter::S12:
      return {planes.PlaneS12, planes.DelayS12};
    case Parameter::S22:
      return {planes.PlaneS22, planes.DelayS22};
    case Parameter::S11:
      break;
  }
  return {planes.PlaneS11, planes.DelayS11};
}

// A typed number as a whole one, inside what 16 bits hold.
std::int16_t WholeNumber(std::string_view text) {
  return static_cast<std::int16_t>(std::lround(std::clamp(Val(text), -32768.0, 32767.0)));
}

// Metres (or, for the time units, light's way in them) of one unit.
double MetresOf(PlaneUnit unit) {
  const PlaneUnitRow& row = RowOf(unit);
  return row.Delay ? kSpeedOfLight * row.Size : row.Size;
}

// The active plane, and with it that of the active channel's parameter.
void SetPlane(PlaneState& planes, const PlaneOf& plane, double metres) {
  planes.ActivePlane = static_cast<float>(metres);
  planes.ActiveDelay = static_cast<float>(static_cast<double>(planes.ActivePlane) / kSpeedOfLight);
  plane.Plane = planes.ActivePlane;
  plane.Delay = planes.ActiveDelay;
}

// Longer planes are no lengths, and would not fit a 32-bit number.
constexpr double kLongestPlane = 1e30;

// Mean group delay in seconds over the plan. Meant: the first difference counts twice, and the
// divisor is the number of points.
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

int ActiveChannelOf(const Session& session) {
  for (int n = 1; n <= 4; ++n)
    if (session.Channel(n).Active) return n;
  return 1;
}

}  // namespace

EnhancePara::EnhancePara(Controller& controller)
    : Form("EnhancePara", "Enhancement Set Up"),
      controller_(controller),
      session_(controller.rig().session),
      host_(controller.rig().host) {
  AddText("InputAverages", "Averages (1-255)");
  AddText("InputSmoothing", "Smoothing (0-10%)");
  AddText("SmoothAper", "Smoothing  (pts)").ReadOnly();
  AddList("ListDwell", "Dwell Time", {"0.5 ms", "2.5 ms"});
  AddList("ListLevel", "Port 1 Level        (dBm)", LevelEntries());
  AddLabel("Label4", "Ch 1, measuring S11");
  AddText("TimeInput", "Enter Value");
  AddList("ListRefPlaneInput", "Select Units", NamesOf<PlaneUnit>());
  AddButton("Command1", "Auto Ref", [this] { AutoRef(); });
  AddButton("ApplyEnhance", "Apply", [this] { ApplyEnhance(); });
  AddButton("CloseEnhance", "Exit", [this] { host_.windows.Hide(Name()); });
}

void EnhancePara::OnOpen() {
  AveragingState& averaging = session_.Averaging;
  if (averaging.Averages == 0) averaging.Averages = 1;
  (*this)["InputAverages"].Text = FormatNumber(averaging.Averages, "#0");
  (*this)["InputSmoothing"].Text = FormatNumber(averaging.SmoothingPercent, "#0");
  ShowAperture();
  (*this)["ListDwell"].Index = session_.Flags.DwellOn ? 1 : 0;
  FollowLevel();
  FollowActiveChannel();
}

void EnhancePara::FollowLevel() {
  (*this)["ListLevel"].Index = -session_.Plan.Port1Level;
}

void EnhancePara::FollowActiveChannel() {
  const int channel = ActiveChannelOf(session_);
  const Parameter parameter = session_.Channel(channel).Parameter;
  const PlaneOf plane = PlaneOfParameter(session_.Planes, parameter);
  session_.Planes.ActivePlane = plane.Plane;
  session_.Planes.ActiveDelay = plane.Delay;
  (*this)["Label4"].Caption =
      "Ch" + WholeNumberText(channel) + ", measuring " + std::string(NameOf(parameter));
  ShowPlane();
}

void EnhancePara::ShowPlane() {
  ShowEntry("ListRefPlaneInput", "mm");
  (*this)["TimeInput"].Text =
      FormatNumber(static_cast<double>(session_.Planes.ActivePlane) * 1000, "###0.000");
}

void EnhancePara::ShowAperture() {
  (*this)["SmoothAper"].Text = FormatNumber(
      SmoothingAperture(session_.Averaging.SmoothingPercent, session_.Plan.NumPoints), "##0");
}

void EnhancePara::ApplyEnhance() {
  if (controller_.StartingUp()) return;
  ApplyAverages();
  ApplySmoothing();
  ApplyDwell();
  ApplyLevel();
  ApplyPlane();
  const SweepFlags& flags = session_.Flags;
  if (flags.AveragesChangeDue || flags.DwellChangeDue || flags.LevelChangeDue)
    host_.windows.Show("Updating");
  controller_.graphs().ReplotAll();
}

void EnhancePara::ApplyAverages() {
  AveragingState& averaging = session_.Averaging;
  averaging.AveragesSet = WholeNumber(At("InputAverages").Text);
  // Meant: too small a number corrects the count in force, not the entered one.
  if (averaging.AveragesSet < 1) averaging.Averages = 1;
  if (averaging.AveragesSet > 255) averaging.AveragesSet = 255;
  (*this)["InputAverages"].Text = FormatNumber(averaging.AveragesSet, "#0");
  if (averaging.AveragesSet == averaging.Averages || !averaging.AverOn) return;
  if (session_.Flags.SweepIdle) {
    std::ignore = PutAveragesInForce(controller_.rig(), averaging.AveragesSet);
  } else {
    session_.Flags.AveragesChangeDue = true;
  }
}

void EnhancePara::ApplySmoothing() {
  session_.Averaging.SmoothingPercent =
      std::clamp<std::int16_t>(WholeNumber(At("InputSmoothing").Text), 0, 10);
  (*this)["InputSmoothing"].Text = FormatNumber(session_.Averaging.SmoothingPercent, "#0");
  ShowAperture();
}

void EnhancePara::ApplyDwell() {
  session_.Flags.DwellOn = At("ListDwell").Index != 0;
  if (session_.Flags.SweepIdle)
    std::ignore = SendDwell(controller_.rig());
  else
    session_.Flags.DwellChangeDue = true;
}

void EnhancePara::ApplyLevel() {
  const auto level = static_cast<std::int16_t>(-At("ListLevel").Index);
  if (level == session_.Plan.Port1Level) return;
  session_.Plan.Port1Level = level;
  ShowLevel(session_, host_.windows);
  if (session_.Flags.SweepIdle) {
    std::ignore = SendLevelTable(controller_.rig());
    session_.Flags.LevelChangeDue = false;
  } else {
    session_.Flags.LevelChangeDue = true;
  }
}

void EnhancePara::ApplyPlane() {
  const auto unit = Named<PlaneUnit>(At("ListRefPlaneInput").Value());
  if (!unit) return;
  PlaneState& planes = session_.Planes;
  planes.RefPlaneUnits = *unit;
  const double metres = Val(At("TimeInput").Text) * MetresOf(*unit);
  SetPlane(planes, PlaneOfParameter(planes, session_.Channel(ActiveChannelOf(session_)).Parameter),
           std::clamp(metres, -kLongestPlane, kLongestPlane));
}

void EnhancePara::AutoRef() {
  const CalState& cal = session_.Cal;
  if (!cal.AnyKind()) {
    host_.prompts.Tell("AutoRef", "No Calibration", Icon::Exclamation);
    return;
  }
  const Parameter parameter = session_.Channel(ActiveChannelOf(session_)).Parameter;
  PlaneState& planes = session_.Planes;
  const PlaneOf plane = PlaneOfParameter(planes, parameter);
  planes.ActivePlane = plane.Plane;
  if ((cal.CalS21 && parameter != Parameter::S21) || (cal.CalS11 && parameter != Parameter::S11)) {
    host_.prompts.Tell("AutoRef", "Warning: No Cal for Active Graph", Icon::None);
    return;
  }
  if (planes.ActivePlane != 0) {
    host_.prompts.Tell("AutoRef Start Value", "Set Ref Plane value to 0mm and Apply first",
                       Icon::None);
    return;
  }
  const ComplexArray& data = ArrayOf(session_.Data, parameter);
  double metres = MeanDelay(session_.Plan, data) * kSpeedOfLight;
  if (RowOf(parameter).Reflection) metres /= 2;
  SetPlane(planes, plane, metres);
  ShowPlane();
}

}  // namespace qk
