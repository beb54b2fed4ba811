// SPDX-License-Identifier: MIT
#include "forms/p1db_form.h"

#include "core/text.h"
#include "core/window_names.h"

namespace qk {

namespace {
constexpr const char* kP1dbTest = "P1dB Test";
constexpr const char* kNoP1db = "-99.00";
}  // namespace

P1dBForm::P1dBForm(Controller& controller)
    : PowerTestForm(window::kP1dBForm, "P1dB Utility", controller,
                    {.Test = kP1dbTest,
                     .MaxFrequency = kP1dbTest,
                     .Range = "P1dB Calibrate",
                     .Through = "P1dB Calibration",
                     .CalibrationLink = {"P1dB Calibrate", Icon::Critical},
                     .Levels = {kP1dbTest, Icon::Critical}}) {
  AddFrequencyAndPads("Enter Values (port1 sweeps -20 to 0 dBm)");
  lossField_ = AddText("Text5", "Input Cable Loss (dB)")
                   .Key('L')
                   .Number()
                   .Text(FormatNumber(0, "#0.0"))
                   .Tip("Moves the plot's input axis");
  AddTitle(kP1dbTest);
  Section("Results", {.Where = Position::Under});
  p1db_ = AddText("Text4", " P1dB (dBm)").ReadOnly().Number().Text(kNoP1db);
  gain_ = AddText("Text6", "Gain (dB)").ReadOnly().Number().Text(kNoP1db);
  AddPlotAndButtons({.Start = "Command1",
                     .Calibrate = "Command5",
                     .Save = "Command4",
                     .Print = "Command3",
                     .Exit = "Command2"},
                    EmptyCompressionPlot(kP1dbTest));
}

void P1dBForm::TakePads() {
  PowerTestForm::TakePads();
  cableLoss_ = static_cast<float>(Rounded(lossField_));
}

void P1dBForm::KeepCalibration(const PowerSweep& through) {
  for (std::size_t i = 0; i < through_.size(); ++i) through_[i] = through.Levels[i].Corrected;
}

void P1dBForm::ForgetResult() {
  result_ = {};
  p1db_.Text(kNoP1db);
  gain_.Text(kNoP1db);
  ShowPlot(EmptyCompressionPlot(title_->Text));
  ClearNote();
}

void P1dBForm::Measure() {
  const std::optional<int> point = ChosenPoint(kP1dbTest, kP1dbTest);
  if (!point || !MayStartWithoutCal() || !MayStartAtPoint(*point)) return;
  TakePads();
  const auto sweep = MeasureDevice(*point);
  if (!sweep) return;
  const auto meter = MeterFor(*point, sweep->Temperature);
  if (!meter) return;
  result_ =
      ReduceCompression(*sweep, through_, {inputAtt_, outputAtt_, cableLoss_}, *meter, regression_);
  session_.PowerRun = result_.AsRun();
  ShowResult();
  ShowNote(*sweep, *meter, NoteOn(*point));
}

void P1dBForm::ShowResult() {
  p1db_.Text(FormatNumber(result_.P1dBValue, "#0.00") + (result_.ResultDoubtful ? " ?" : ""));
  gain_.Text(
      FormatNumber(static_cast<double>(result_.GainAt1dB) + inputAtt_ + outputAtt_, "#0.00"));
  ShowPlot(CompressionPlot(result_, title_->Text));
}

std::string P1dBForm::NoteOn(int point) const {
  if (!powerCalDone_) return "Measured without a calibration: gain and input power mean nothing.";
  if (calPoint_ != point)
    return "Calibrated at another frequency: gain and input power are wrong by the change in the "
           "response of the through.";
  // The procedure marks a result below 0.5 dB, but from there to 1 dB it is also an extrapolation.
  if (result_.Gain[kLowestLevel] - result_.Gain[0] < 1)
    return "The gain falls by only " + FormatNumber(result_.Reached, "#0.00") +
           " dB: the 1 dB point is above the levels measured.";
  return {};
}

std::string P1dBForm::SavedText() const {
  return CompressionText(result_, TextHead());
}

}  // namespace qk
