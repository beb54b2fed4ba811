// SPDX-License-Identifier: MIT
#include "forms/power_test_form.h"

#include <utility>

#include "core/busy.h"
#include "core/instrument_limits.h"
#include "core/quantity_text.h"
#include "core/scopes.h"
#include "core/text.h"
#include "files/whole_file.h"
#include "forms/lists.h"
#include "forms/picture_output.h"

namespace qk {

namespace {
constexpr const char* kPlainCaption = "Calibrate";
constexpr const char* kDoneCaption = "Calibrate*";
constexpr const char* kOverloaded =
    "Port 2 was overloaded: clipped values read too low. Put an attenuator between the device and "
    "port 2.";
constexpr const char* kForeignTable =
    "RXCal.dat is not the table read from the instrument at the start of the program: powers may "
    "be wrong. Make sure that the file can be written and that no other program uses the folder, "
    "then choose Re-Start Program.";
constexpr int kPlotWidth = 560, kPlotHeight = 400;  // pixels
}  // namespace

PowerTestForm::PowerTestForm(std::string_view name, std::string caption, Controller& controller,
                             const Words& words)
    : Form(name, std::move(caption), {.Modal = true}),
      controller_(controller),
      rig_(controller.rig()),
      host_(rig_.host),
      session_(rig_.session),
      words_(words) {}

void PowerTestForm::AddFrequencyAndPads(const std::string& frame) {
  Section(frame);
  frequency_ = AddText("Text1", "Test Freq (MHz)")
                   .Key('F')
                   .Number()
                   .Tip("Frequency of the test; it moves to the nearest point of the sweep");
  inputAttField_ = AddText("Text2", "Input Attenuation (dB)")
                       .Key('I')
                       .Number()
                       .Tip("Attenuation between port 1 and the device");
  outputAttField_ = AddText("Text3", "Output Attenuation (dB)")
                        .Key('O')
                        .Number()
                        .Tip("Attenuation between the device and port 2");
  inputAttField_.Text(FormatNumber(0, "#0.0"));
  outputAttField_.Text(FormatNumber(0, "#0.0"));
}

void PowerTestForm::AddTitle(const std::string& title) {
  title_ = AddText("Text7", "Measurement Title")
               .Key('T')
               .Text(title)
               .Tip("Title of the plot, the printed page and the file");
}

void PowerTestForm::AddPlotAndButtons(const ButtonNames& names, PowerPlot empty) {
  Section("", {.Where = Position::Beside});
  plot_ = std::move(empty);
  picture_ = AddPicture("NTGraph1").Picture(kPlotWidth, kPlotHeight, [this](Canvas& canvas) {
    DrawPowerPlot(canvas, plot_);
  });
  note_ = AddLabel("Note", "").Lines(4).Wide();
  ActionRow();
  AddButton(names.Start, "Start",
            [this] {
              const BusyScope busy(*this, host_.windows);
              const Timer1Pause pause(host_.loop);
              Measure();
            })
      .Key('S')
      .Default();
  calibrate_ = AddButton(names.Calibrate, kPlainCaption, [this] { Calibrate(); }).Key('C');
  AddButton(names.Save, "Save", [this] { Save(); }).Key('v');
  AddButton(names.Print, "Print", [this] { Print(); }).Key('P');
  AddButton(names.Exit, "Exit", [this] { host_.windows.Hide(Name()); }).Key('x');
}

void PowerTestForm::OnOpen() {
  const Basis now = BasisNow();
  if (openBasis_ == now) return;
  const bool samePlan = openBasis_ && openBasis_->SamePlan(now);
  openBasis_ = now;
  DropCalibration();
  const SweepPlan& plan = session_.Plan;
  if (!samePlan) frequency_.Text(MegahertzNumber(plan.Frequency(plan.NumPoints / 2)));
}

PowerTestForm::Basis PowerTestForm::BasisNow() const {
  const SweepPlan& plan = session_.Plan;
  const PortTerms& terms = session_.Terms.Forward;
  const int at = calPoint_.value_or(0);
  return {plan.StartFreq, plan.StepFreq, plan.NumPoints, terms.EX[at], terms.ETT[at]};
}

std::optional<int> PowerTestForm::ChosenPoint(std::string_view maxTitle,
                                              std::string_view rangeTitle) {
  const double megahertz = Val(frequency_->Text);
  static_assert(kHighestPowerFreq == 3072e6, "the message names it");
  if (megahertz * 1e6 > kHighestPowerFreq) {
    host_.prompts.ShowMessage(maxTitle, "Max Freq is 3072 MHz", Icon::Exclamation);
    return std::nullopt;
  }
  const std::optional<int> point = NearestPoint(session_.Plan, megahertz);
  if (!point) {
    host_.prompts.ShowMessage(rangeTitle, "Test Frequency Outisde Cal Range", Icon::Exclamation);
    return std::nullopt;
  }
  frequency_.Text(MegahertzNumber(session_.Plan.Frequency(*point)));
  return point;
}

bool PowerTestForm::MayStartWithoutCal() {
  return powerCalDone_ || host_.prompts.Ask({.Title = std::string(words_.Test),
                                             .Text = "Cal Not Done. Continue?",
                                             .MessageIcon = Icon::Question,
                                             .Choice = Buttons::YesNo}) == Answer::Yes;
}

bool PowerTestForm::MayStartAtPoint(int point) {
  return !powerCalDone_ || calPoint_ == point ||
         host_.prompts.Ask({.Title = std::string(words_.Test),
                            .Text = "Cal Not at Correct Freq. Continue?",
                            .MessageIcon = Icon::Question,
                            .Choice = Buttons::YesNo}) == Answer::Yes;
}

double PowerTestForm::Rounded(const Handle& field) {
  const double value = TwoDecimals(field->Text);
  field.Text(FormatNumber(value, "#0.00"));
  return value;
}

void PowerTestForm::TakePads() {
  inputAtt_ = Rounded(inputAttField_);
  outputAtt_ = Rounded(outputAttField_);
}

void PowerTestForm::Calibrate() {
  const BusyScope busy(*this, host_.windows);
  const Timer1Pause pause(host_.loop);
  const std::optional<int> point = ChosenPoint(words_.MaxFrequency, words_.Range);
  if (!point) return;
  DropCalibration();
  TakePads();
  host_.prompts.AskToConnect(words_.Through,
                             "Connect through (exclude DUT and IN/OUT attenuators)");
  if (!SelectTestPoint(rig_, words_.CalibrationLink, *point)) return;
  const auto through = MeasurePowerSweep(rig_, words_.Levels, *point);
  if (!through) return;
  KeepCalibration(*through);
  powerCalDone_ = true;
  calPoint_ = *point;
  openBasis_ = BasisNow();
  calibrate_.Caption(kDoneCaption);
}

void PowerTestForm::DropCalibration() {
  AskForCalibration();
  ForgetCalibration();
  calPoint_.reset();
}

void PowerTestForm::AskForCalibration() {
  powerCalDone_ = false;
  calibrate_.Caption(kPlainCaption);
}

std::optional<PowerSweep> PowerTestForm::MeasureDevice(int point) {
  host_.prompts.AskToConnect(words_.Test, "Connect DUT");
  ForgetResult();
  session_.PowerRun = {};
  if (!SelectTestPoint(rig_, words_.Levels, point)) return std::nullopt;
  testFrequency_ = frequency_->Text;
  return MeasurePowerSweep(rig_, words_.Levels, point);
}

std::optional<PowerMeter> PowerTestForm::MeterFor(int point, float temperature) {
  const Result<ReceiverScale> scale = ReadReceiverScale(session_.InstallFolder);
  if (scale) {
    PowerMeter meter = qk::MeterFor(*scale, session_.Plan, point, temperature);
    const Result<ReceiverScale> own = ParseReceiverScale(controller_.ReceiverTable());
    meter.Foreign = !own || !(*own == *scale);
    return meter;
  }
  host_.prompts.ShowMessage(words_.Test, "I/O File Error", Icon::Exclamation);
  return std::nullopt;
}

void PowerTestForm::ShowPlot(PowerPlot plot) {
  plot_ = std::move(plot);
  picture_.Redraw();
}

void PowerTestForm::ShowNote(const PowerSweep& sweep, const PowerMeter& meter,
                             const std::string& text) {
  const std::string measured = sweep.Overloaded() ? kOverloaded : text;
  if (!meter.Foreign)
    note_.Text(measured);
  else
    note_.Text(kForeignTable + (measured.empty() ? "" : " " + measured));
}

PowerTextHead PowerTestForm::TextHead() const {
  const LocalTime now = host_.loop.Now();
  return {.Title = title_->Text,
          .Date = DateText(now),
          .Time = TimeText(now),
          .TestFrequency = FormatNumber(
              Val(testFrequency_.empty() ? frequency_->Text : testFrequency_), "###0.0000")};
}

void PowerTestForm::Print() {
  plot_.Title = title_->Text;
  picture_.Redraw();
  PrintWindow(host_, controller_.graphs().Surface(),
              {.Window = std::string(Name()),
               .Title = std::string(words_.Test),
               .Size = {kPlotWidth, kPlotHeight},
               .Draw = [this](Canvas& canvas) { DrawPowerPlot(canvas, plot_); }});
}

void PowerTestForm::Save() {
  const auto path = host_.prompts.Choose({.Kind = DialogKind::Save,
                                          .Title = "Save",
                                          .Folder = session_.InstallFolder,
                                          .Filter = kDataFiles});
  if (!path) return;
  const Result<Done> written = WriteWhole(*path, SavedText());
  if (!written) host_.prompts.ShowMessage(words_.Test, written.Why().Text(), Icon::Exclamation);
}

}  // namespace qk
