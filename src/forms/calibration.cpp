// SPDX-License-Identifier: MIT
#include "forms/calibration.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "control/quality_watch.h"
#include "control/system_log.h"
#include "control/verbs.h"
#include "core/busy.h"
#include "core/instrument_limits.h"
#include "core/measured_sweep.h"
#include "core/window_names.h"
#include "forms/cal_progress.h"
#include "forms/lists.h"

namespace qk {

const std::array<Calibration::StepTexts, Calibration::kSteps> Calibration::kStepTexts{
    {{"M_Cal", "Load", "Load Cal", 'L', StandardKind::Load},
     {"S_Cal", "Short", "Short Cal", 'S', StandardKind::Short},
     {"O_Cal", "Open", "Open Cal", 'O', StandardKind::Open},
     {"Iso_Cal", "Isolation", "Isolation Cal", 'I', StandardKind::Isolation},
     {"Thru_Cal", "Through", "Through Cal", 'h', StandardKind::Through}}};

// One kind of calibration: its requirements, and the sweep for each standard. A sweep is empty if a
// separate window measures the standard, or if the kind does not use it.
struct Calibration::KindRow {
  CalChoice Choice;
  bool Reflection, Through, Isolation, SecondKit;
  std::array<std::optional<Standard>, kSteps> Sweeps;  // indexed by StepIndex
};

// In the order of the options Option3 to Option7.
const std::array<Calibration::KindRow, 5> Calibration::kKinds{
    {{CalChoice::S11,
      true,
      false,
      false,
      false,
      {Standard::LoadS11, Standard::ShortS11, Standard::OpenS11, std::nullopt, std::nullopt}},
     {CalChoice::S21,
      false,
      true,
      true,
      false,
      {std::nullopt, std::nullopt, std::nullopt, Standard::IsoS21, Standard::ThruS21}},
     {CalChoice::Insertable,
      true,
      true,
      true,
      true,
      {Standard::LoadInsertable, Standard::ShortInsertable, Standard::OpenInsertable,
       Standard::IsoInsertable, Standard::ThruInsertable}},
     {CalChoice::S11S21,
      true,
      true,
      true,
      false,
      {Standard::LoadBoth, Standard::ShortBoth, Standard::OpenBoth, Standard::IsoBoth,
       Standard::ThruBoth}},
     {CalChoice::NonInsertable, true, true, false, false, {}}}};

namespace {
static_assert(kLowestFreq == 3e6 && kHighestFreq == 3.08e9 && kTimeDomainPoints == 1024,
              "the tool tips name them");

std::vector<std::string> PointEntries() {
  std::vector<std::string> entries;
  entries.reserve(kPointCounts.size());
  for (const int points : kPointCounts)
    entries.push_back(std::to_string(points) + (points == kTimeDomainPoints ? " (TD)" : ""));
  return entries;
}
}  // namespace

Calibration::Calibration(Controller& controller, LiveStandard& live)
    : Form(window::kCalibration, "Calibration"),
      controller_(controller),
      live_(live),
      session_(controller.rig().session),
      host_(controller.rig().host) {
  AddSweepEntry();
  AddKinds();
  AddStandards();
  controller_.files().ConfirmDiscard = [this](std::string_view title) {
    return ConfirmDiscard(title, Discards::Everything);
  };
  controller_.ConfirmNoThrough = [this](std::string_view title) {
    return Choice() != CalChoice::NonInsertable || ConfirmDiscard(title, Discards::Standards);
  };
}

void Calibration::AddSweepEntry() {
  Section("Set Sweep Frequency");
  start_ = AddText("Text1", "Start", [this] { FollowStartAndStop(); })
               .Unit("MHz")
               .Key('a')
               .Number()
               .Tip("Start frequency, 3 MHz to 3.08 GHz");
  stop_ = AddText("Text2", "Stop", [this] { FollowStartAndStop(); })
              .Unit("MHz")
              .Key('t')
              .Number()
              .Tip("Stop frequency; Apply moves it to the last point of the grid");
  step_ = AddText("Text3", "Step")
              .Unit("MHz")
              .ReadOnly()
              .Number()
              .Tip("Frequency step that Apply makes of the entries: a multiple of 100 Hz");
  centre_ = AddText("Centre", "Centre", [this] { TakeCentreAndSpan(); })
                .Unit("MHz")
                .Number()
                .Tip("Centre frequency; an entry here moves start and stop");
  span_ = AddText("Span", "Span", [this] { TakeCentreAndSpan(); })
              .Unit("MHz")
              .Number()
              .Tip("Stop minus start; an entry here moves start and stop");
  points_ = AddList("PntsCombo", "Points", PointEntries(), [this] { FollowStep(); })
                .Key('P')
                .Tip("Points of a sweep; 1024 is for the time domain, 3 MHz to 3072 MHz");
  level_ = AddList("LvlCombo", "Level (dBm)", LevelEntries())
               .Key('v')
               .Tip("Test signal level at port 1");
  unit_ = AddOptions({{"Option1", "MHz"}, {"Option2", "kHz"}}, [this] {
    ShowUnits();
    FollowStep();
  });
  unit_.Heading("Unit").Keys("Mk");
  plan_ = {start_, stop_, step_, centre_, span_, points_, level_};
  plan_.Add(unit_);
  const Handle apply = AddButton("Command1", "Apply", [this] { ApplySweep(); })
                           .Key('y')
                           .Tip("Load this sweep into the instrument");
  // No default button: Enter for a field must not trigger an action that discards measured
  // standards.
  start_.Returns(apply);
  stop_.Returns(apply);
  centre_.Returns(apply);
  span_.Returns(apply);
}

void Calibration::AddKinds() {
  Section("Calibration", {.How = Arrange::Grid, .Where = Position::Beside});
  kinds_ = AddOptions({{"Option3", "S11"},
                       {"Option4", "S21"},
                       {"Option5", "Insertable DUT(2 cal kits)"},
                       {"Option6", "S11 + S21"},
                       {"Option7", "Non-insertable DUT (1 cal kit)"}},
                      [this] { KindClicked(); });
  // No mnemonics that the main window uses: Alt+D, intended for Display, would discard measured
  // standards.
  kinds_.Keys("  2 1");
  kinds_[1].Gap();
  kinds_[2].Heading("All");  // in the empty cell above
  Section("Cal Kit Loaded", {.Where = Position::Under});
  kit1_ = AddText("Text4", "Port 1 / Port 2").ReadOnly();
  kit2_ = AddText("Text5", "Port 2").ReadOnly();
  Section("Steps", {.Where = Position::Under});
  guide_ = AddLabel("Guide", "Steps").Lines(7);
}

void Calibration::AddStandard(StepIndex step) {
  const StepTexts& texts = kStepTexts[step];
  buttons_[step] = AddButton(texts.Button, texts.Plain, [this, step] { PressStandard(step); })
                       .Key(texts.Key)
                       .Tip("Measure this standard; a star marks it as done");
}

void Calibration::AddStandards() {
  Section("Reflection", {.How = Arrange::Row});
  for (const StepIndex step : {kOpen, kShort, kLoad}) AddStandard(step);
  Section("Transmission", {.How = Arrange::Row, .Where = Position::Beside});
  for (const StepIndex step : {kThru, kIso}) AddStandard(step);
  Section("");
  bar_ = AddProgress("ProgressBar1").Shown(false);
  cancel_ = AddButton("CancelStandard", "Cancel", [this] { live_.Cancel(); })
                .Key('n')
                .WhileBusy()
                .Enabled(false)
                .SameRow()
                .Tip("Stop this sweep; values measured before are kept (Esc)");
  nextStep_ = AddLabel("NextStep", "Next step").Bold().Lines(2);
  AddGuide();
  ActionRow();
  AddButton("App_Cal", "Apply Cal", [this] { ApplyCal(); })
      .Key('C')
      .Tip("Compute the error terms from the measured standards and use them");
  AddButton("Cls_Cal", "Close Window", [this] { Close(); }).Key('W');
}

// Shows the raw trace of the current standard and the expected trace.
void Calibration::AddGuide() {
  Section("Raw Trace");
  picture_ = AddPicture("StandardTrace").Picture(300, 96, [this](Canvas& canvas) {
    live_.Draw(canvas, session_.Colour.BackColour);
  });
  expected_ = AddLabel("Expected", "Expected");
  askFirst_ =
      AddCheck("AskFirst", "Ask before measured standards or a calibration are dropped")
          .Tip("Another kind, another sweep, a loaded session or Close Window discards them");
  askFirst_.Checked(controller_.AsksFirst);
}

void Calibration::OnOpen() {
  const CalState& cal = session_.Cal;
  std::size_t kind = 2;
  if (cal.CalKind == SweepMode::S11S21) kind = 3;
  if (cal.CalKind == SweepMode::S21) kind = 1;
  if (cal.CalKind == SweepMode::S11) kind = 0;
  if (cal.CalS21) kind = 1;
  if (cal.CalS11) kind = 0;
  if (cal.Cal12Term) kind = 2;
  bar_.Percent(0);
  ShowPlan();
  ChooseKind(kind);
  OnSessionChanged();
}

void Calibration::OnSessionLoaded() {
  loaded_ = session_.Plan;
  OnOpen();
}

void Calibration::OnSessionChanged() {
  if (!plan_.Edited()) ShowPlan();
  // The plan was changed elsewhere: the measured standards belong to other frequencies.
  if (!SameGrid(stepsGrid_, session_.Plan)) ResetSteps();
  // The new kit has no through standard: it cannot be used for the one-kit choice.
  if (Kind().Choice == CalChoice::NonInsertable && !session_.Kit1.KitHasThru) ChooseKind(2);
  kit1_.Text(session_.Kit1.KitName);
  kit2_.Text(session_.Kit2.KitName);
  ShowNextStep();
}

bool Calibration::OnCloseBox() {
  return ConfirmDiscard(Caption(), Discards::Standards);
}

void Calibration::Close() {
  if (ConfirmDiscard(Caption(), Discards::Standards)) host_.windows.Hide(Name());
}

bool Calibration::ConfirmDiscard(std::string_view title, Discards what) {
  if (!askFirst_->Checked) return true;
  const auto done = Shown ? std::ranges::count_if(steps_, &CalStep::Done) : 0;
  std::string text;
  if (done > 0)
    text = done == 1 ? "One measured standard" : std::to_string(done) + " measured standards";
  if (what == Discards::Everything && controller_.files().CalibrationUnsaved())
    text += std::string(text.empty() ? "The" : " and the") +
            " calibration, which is in none of the files used last,";
  if (text.empty()) return true;
  return host_.prompts.Ask({.Title = std::string(title),
                            .Text = text + " would be dropped. Continue?",
                            .MessageIcon = Icon::Question,
                            .Choice = Buttons::YesNo,
                            .NoByDefault = true}) == Answer::Yes;
}

bool Calibration::EscapeCloses() const {
  return std::none_of(steps_.begin(), steps_.end(), [](const CalStep& step) { return step.Done; });
}

const Calibration::KindRow& Calibration::Kind() const {
  return kKinds[kind_];
}

CalChoice Calibration::Choice() const {
  return Kind().Choice;
}

void Calibration::KindClicked() {
  auto kind = static_cast<std::size_t>(kinds_.Chosen());
  if (!ConfirmDiscard(Caption(), Discards::Standards)) {
    kinds_.Choose(static_cast<int>(kind_));
    return;
  }
  if (kKinds[kind].Choice == CalChoice::NonInsertable && !session_.Kit1.KitHasThru) {
    host_.prompts.ShowMessage(
        "Calibration", "Cal kit (Port 1/2) does not have calibrated Thru Standard.", Icon::None);
    kind = 2;
  }
  ChooseKind(kind);
}

void Calibration::ChooseKind(std::size_t kind) {
  kind_ = kind;
  kinds_.Choose(static_cast<int>(kind));
  for (const StepIndex reflection : {kOpen, kShort, kLoad})
    buttons_[reflection].Enabled(Kind().Reflection);
  buttons_[kThru].Enabled(Kind().Through);
  buttons_[kIso].Enabled(Kind().Isolation);
  kit2_.Enabled(Kind().SecondKit);
  ResetSteps();
  zoWarnPending_ = true;
}

void Calibration::ResetSteps() {
  steps_ = {};
  stepsGrid_ = session_.Plan;
  applied_ = false;
  for (std::size_t i = 0; i < kSteps; ++i) buttons_[i].Caption(kStepTexts[i].Plain);
  live_.Clear();
  picture_.Redraw();
  ShowNextStep();
}

bool Calibration::MayAct() {
  if (controller_.StartingUp()) return false;
  if (controller_.Idle()) return true;
  host_.prompts.ShowMessage("Calibration", "Stop Measurement First", Icon::Exclamation);
  return false;
}

void Calibration::PressStandard(StepIndex step) {
  if (!MayAct()) return;
  const StepTexts& texts = kStepTexts[step];
  if (!session_.Flags.SweepLoaded) {
    host_.prompts.ShowMessage(texts.Title, "Set Freq Sweep First", Icon::Exclamation);
    return;
  }
  const BusyScope busy(*this, host_.windows);
  WarnOfImpedance();
  applied_ = false;
  nextStep_.Text("Connect what the prompt asks for: " + std::string(texts.Plain));
  asked_ = step;
  live_.Clear();  // the trace of the standard before is not what is asked for
  picture_.Redraw();
  Measuring(true);
  const bool good = MeasureStep(step);
  live_.Ended();
  asked_.reset();
  // Intentional: the step counts as done whatever the result of the sweep. A cancelled step is
  // unchanged.
  if (good || !live_.Cancelled() || Choice() == CalChoice::NonInsertable) {
    buttons_[step].Caption(std::string(texts.Plain) + " *");
    steps_[step] = {true, !good};
  }
  Measuring(false);
  ShowNextStep();
  const StepIndex next = NextStep();
  RequestFocus(next == kSteps ? "App_Cal" : kStepTexts[next].Button);
}

void Calibration::Measuring(bool on) {
  session_.Steps.Measuring = on;
  if (on) bar_.Percent(0);  // clears the value of an earlier reception
  bar_.Shown(on);
  if (!on) cancel_.Enabled(false);
  host_.windows.SessionChanged();
  // Refresh now: otherwise the buttons could still be clicked during the reception.
  host_.windows.Refresh(Name());
}

void Calibration::WarnOfImpedance() {
  if (!zoWarnPending_ || session_.Impedance.SystemZo == static_cast<float>(kInstrumentOhms)) return;
  host_.prompts.ShowMessage(
      "Calibration",
      "System impedance not set to 50 ohms. Ensure your cal kit suits the value chosen.",
      Icon::Information);
  zoWarnPending_ = false;
}

SweepWatch Calibration::WatchOf(StepIndex step) {
  const auto bar = [this, step, bar = Bar(host_)](int percent) {
    nextStep_.Text("Measuring " + std::string(kStepTexts[step].Plain) + " ...");
    cancel_.Enabled();
    picture_.Redraw();
    bar(percent);
  };
  return live_.Watch(kStepTexts[step].Kind, session_.Plan.NumPoints, bar, Name(), cancel_->Name);
}

bool Calibration::MeasureStep(StepIndex step) {
  const KindRow& kind = Kind();
  if (kind.Choice == CalChoice::NonInsertable) {
    const CalSteps& ports = session_.Steps;
    switch (step) {
      case kThru:
        return MeasurePorts(window::kThruCalForm, ports.Thru);
      case kLoad:
        steps_[kIso].Done = true;  // the load sweeps provide the isolation
        return MeasurePorts(window::kMatchCal, ports.Load);
      case kShort:
        return MeasurePorts(window::kShortCal, ports.Short);
      default:
        return MeasurePorts(window::kOpenCal, ports.Open);
    }
  }
  if (kind.Choice == CalChoice::Insertable && step == kIso) return MeasureIsolation();
  return kind.Sweeps[step] && MeasureStandard(controller_.rig(), *kind.Sweeps[step], WatchOf(step));
}

// Measures in a separate window; complete when every port was measured without a failure.
bool Calibration::MeasurePorts(std::string_view window, std::span<const CalStep> ports) {
  host_.windows.Show(window);
  return std::all_of(ports.begin(), ports.end(),
                     [](const CalStep& port) { return port.Done && !port.Failed; });
}

bool Calibration::MeasureIsolation() {
  host_.windows.Show(window::kIsoMethod);
  if (session_.Cal.IsoMethod == IsoMethod::Basic)
    return true;  // the isolation of the load sweep is used
  return MeasureStandard(controller_.rig(), Standard::IsoInsertable, WatchOf(kIso));
}

bool Calibration::MayApply() {
  const auto refuse = [this](const char* text) {
    host_.prompts.ShowMessage("Apply Calibration", text, Icon::Exclamation);
    return false;
  };
  const bool reflection = !Missing(kLoad) && !Missing(kShort) && !Missing(kOpen);
  switch (Kind().Choice) {
    case CalChoice::S11:
      return reflection || refuse("S11 Calibration Not Complete");
    case CalChoice::Insertable:
    case CalChoice::NonInsertable:
    case CalChoice::S11S21:
      return (reflection && !Missing(kThru) && !Missing(kIso)) ||
             refuse("Calibration Not Complete");
    case CalChoice::S21:
      break;
  }
  if (Missing(kThru)) return refuse("Through Cal Not Done");
  return !Missing(kIso) || host_.prompts.Ask({"Apply Calibration", "Isolation Not Done. Continue?",
                                              Icon::Question, Buttons::YesNo}) == Answer::Yes;
}

void Calibration::ApplyCal() {
  if (!MayAct()) return;
  const BusyScope busy(*this, host_.windows);
  if (!MayApply()) return;
  ApplyCalibration(session_, host_, Kind().Choice, steps_[kIso].Done);
  ResetSteps();
  session_.Steps = {};
  FollowCalibration(controller_.quality(), session_);  // a check of the calibration before is gone
  zoWarnPending_ = true;
  applied_ = true;
  TakeActivePlane(session_, host_.windows);  // the planes have been reset
  controller_.graphs().RedrawAll(true);
  ReportLog(session_, host_, LogCalibration(session_, host_.loop));
  host_.windows.SessionChanged();
  RequestFocus("Cls_Cal");  // so that another Enter does not apply again
}

}  // namespace qk
