// SPDX-License-Identifier: MIT
#include "forms/am_to_pm_form.h"

#include <string>
#include <vector>

#include "core/text.h"
#include "core/window_names.h"

namespace qk {

namespace {
constexpr const char* kAmToPmTest = "AM to PM Test";
constexpr const char* kLevels = "AM-PM Test";
constexpr const char* kNoAmToPm = "0.00";

// The input powers at which the phase crosses 180 degrees, highest first. Adjacent levels form one
// entry: "A" for one or two of them, "A to B" for more.
std::vector<std::string> PassesOf(const AmToPmResult& result) {
  const auto pin = [&result](int i) {
    return FormatNumber(result.Pin[static_cast<std::size_t>(i)], "#0.0");
  };
  std::vector<std::string> places;
  for (int i = 0; i < kPowerLevels; ++i) {
    if (!result.PhasePassed[static_cast<std::size_t>(i)]) continue;
    const int first = i;
    while (i + 1 < kPowerLevels && result.PhasePassed[static_cast<std::size_t>(i + 1)]) ++i;
    places.push_back(i - first < 2 ? pin(first) : pin(first) + " to " + pin(i));
  }
  return places;
}
}  // namespace

AMtoPM::AMtoPM(Controller& controller)
    : PowerTestForm(window::kAMtoPM, "AM to PM Utility", controller,
                    {.Test = kAmToPmTest,
                     .MaxFrequency = "AM to PM Calibration",
                     .Range = "P1dB Test",  // intentional: the title of the other power test
                     .Through = kAmToPmTest,
                     .CalibrationLink = {kLevels, Icon::Critical},
                     .Levels = {kLevels, Icon::Critical}}) {
  AddFrequencyAndPads("Enter Values (Port1 Sweeps -20 to 0 dBm)");
  readout_ = AddText("Text6", "Pin (dBm) for Readout")
                 .Key('R')
                 .Number()
                 .Text(FormatNumber(result_.ReadoutPin, "#0.00"))
                 .Tip("Power at the device's input at which the result is shown");
  AddTitle(kLevels);
  Section("Result", {.Where = Position::Under});
  amPm_ = AddText("Text4", "AM-PM deg/dB").ReadOnly().Number().Text(kNoAmToPm);
  AddPlotAndButtons({.Start = "Command1",
                     .Calibrate = "Command5",
                     .Save = "Command2",
                     .Print = "Command3",
                     .Exit = "Command4"},
                    EmptyAmToPmPlot(kLevels));
}

void AMtoPM::ForgetResult() {
  result_ = {};
  amPm_.Text(kNoAmToPm);
  ShowPlot(EmptyAmToPmPlot(title_->Text));
  ClearNote();
}

void AMtoPM::Measure() {
  // Intentional: here the question about the calibration comes first.
  if (!MayStartWithoutCal()) return;
  const std::optional<int> point = ChosenPoint(kAmToPmTest, kAmToPmTest);
  if (!point || !MayStartAtPoint(*point)) return;
  TakePads();
  const auto sweep = MeasureDevice(*point);
  if (!sweep) return;
  const auto meter = MeterFor(*point, sweep->Temperature);
  if (!meter) return;
  result_ = ReduceAmToPm(*sweep, calPhase_, {inputAtt_, outputAtt_}, Val(readout_->Text), *meter,
                         regression_);
  session_.PowerRun = {.Measured = true,
                       .Pin = result_.Pin,
                       .Value = result_.AmPm,
                       .Value2 = {},
                       .Doubtful = result_.Doubtful};
  if (calPoint_ != *point) {
    result_.ResultDoubtful = true;
    AskForCalibration();
  }
  ShowResult();
  ShowNote(*sweep, *meter, Note());
}

void AMtoPM::ShowResult() {
  amPm_.Text(FormatNumber(result_.AmPmValue, "#0.00") + (result_.ResultDoubtful ? " ?" : ""));
  ShowPlot(AmToPmPlot(result_, title_->Text));
}

std::string AMtoPM::Note() const {
  const std::vector<std::string> places = PassesOf(result_);
  if (places.empty()) return {};
  std::string text = "The phase passes 180 degrees near ";
  for (std::size_t n = 0; n < places.size(); ++n)
    text += (n == 0 ? "" : n + 1 < places.size() ? ", " : " and ") + places[n];
  return text + " dBm: the values marked ? are not valid.";
}

std::string AMtoPM::SavedText() const {
  return AmToPmText(result_, TextHead());
}

}  // namespace qk
