#include "forms/calibration.h"

#include <optional>

#include "forms/cal_progress.h"
#include "forms/lists.h"

namespace qk {

namespace {
enum Group { kUnit = 1, kKind };
}

const std::array<Calibration::StepTexts, Calibration::kSteps> Calibration::kStepTexts{
    {{"M_Cal", "Load", "Load Cal"},
     {"S_Cal", "Short", "Short Cal"},
     {"O_Cal", "Open", "Open Cal"},
     {"Iso_Cal", "Isolation", "Isolation Cal"},
     {"Thru_Cal", "Through", "Through Cal"}}};

// One kind of calibration: its option, what it needs, and the sweep of each standard; none where
// a window of its own measures, or where the kind has no such standard.
struct Calibration::KindRow {
  const char* Option;
  CalChoice Choice;
  bool Reflection, Through, Isolation, SecondKit;
  std::array<std::optional<Standard>, kSteps> Sweeps;  // by StepIndex
};

const std::array<Calibration::KindRow, 5> Calibration::kKinds{
    {{"Option3",
      CalChoice::S11,
      true,
      false,
      false,
      false,
      {Standard::LoadS11, Standard::ShortS11, Standard::OpenS11, std::nullopt, std::nullopt}},
     {"Option4",
      CalChoice::S21,
      false,
      true,
      true,
      false,
      {std::nullopt, std::nullopt, std::nullopt, Standard::IsoS21, Standard::ThruS21}},
     {"Option5",
      CalChoice::Insertable,
      true,
      true,
      true,
      true,
      {Standard::LoadInsertable, Standard::ShortInsertable, Standard::OpenInsertable,
       Standard::IsoInsertable, Standard::ThruInsertable}},
     {"Option6",
      CalChoice::S11S21,
      true,
      true,
      true,
      false,
      {Standard::LoadBoth, Standard::ShortBoth, Standard::OpenBoth, Standard::IsoBoth,
       Standard::ThruBoth}},
     {"Option7", CalChoice::NonInsertable, true, true, false, false, {}}}};

Calibration::Calibration(Controller& controller, Form& mainWindow, EnhancePara& enhance,
                         Windows windows)
    : Form("Calibration", "Calibration"),
      controller_(controller),
      session_(controller.rig().session),
      host_(controller.rig().host),
      mainWindow_(mainWindow),
      enhance_(enhance),
      windows_(windows) {
  AddSweepEntry();
  AddKinds();
  AddStandards();
}

void Calibration::AddSweepEntry() {
  AddText("Text1", "Start");
  AddText("Text2", "Stop");
  AddText("Text3", "Step").ReadOnly();
  AddList("PntsCombo", "Points", {"51", "101", "201", "401", "801", "1024 (TD)"});
  AddList("LvlCombo", "Level (dBm)", LevelEntries());
  AddOption("Option1", "MHz", kUnit);
  AddOption("Option2", "kHz", kUnit);
  AddButton("Command1", "Apply", [this] { ApplySweep(); });
}

void Calibration::AddKinds() {
  AddOption("Option3", "S11", kKind, [this] { KindClicked(0); });
  AddOption("Option4", "S21", kKind, [this] { KindClicked(1); });
  AddOption("Option6", "S11 + S21", kKind, [this] { KindClicked(3); });
  AddOption("Option5", "Insertable DUT(2 cal kits)", kKind, [this] { KindClicked(2); });
  AddOption("Option7", "Non-insertable DUT (1 cal kit)", kKind, [this] { KindClicked(4); });
  AddText("Text4", "Port 1 / Port 2").ReadOnly();
  AddText("Text5", "Port 2").ReadOnly();
}

void Calibration::AddStandards() {
  AddButton("O_Cal", "Open", [this] { PressStandard(kOpen); });
  AddButton("S_Cal", "Short", [this] { PressStandard(kShort); });
  AddButton("M_Cal", "Load", [this] { PressStandard(kLoad); });
  AddButton("Thru_Cal", "Through", [this] { PressStandard(kThru); });
  AddButton("Iso_Cal", "Isolation", [this] { PressStandard(kIso); });
  AddProgress("ProgressBar1");
  AddLabel("NextStep", "Next step");
  AddButton("App_Cal", "Apply Cal", [this] { ApplyCal(); });
  AddButton("Cls_Cal", "Close Window", [this] {
    if (!busy_) host_.windows.Hide(Name());
  });
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
  (*this)["ProgressBar1"].Percent = 0;
  (*this)["LvlCombo"].Index = -session_.Plan.Port1Level;
  ShowPlan();
  ChooseKind(kKinds[kind]);
  OnRefresh();
}

void Calibration::OnRefresh() {
  (*this)["Text4"].Text = session_.Kit1.KitName;
  (*this)["Text5"].Text = session_.Kit2.KitName;
  ShowNextStep();
}

const Calibration::KindRow& Calibration::Kind() const {
  return kKinds[kind_];
}

CalChoice Calibration::Choice() const {
  return Kind().Choice;
}

void Calibration::KindClicked(std::size_t index) {
  if (busy_) {  // a standard of the present kind is being measured
    Choose(Kind().Option);
    return;
  }
  if (kKinds[index].Choice == CalChoice::NonInsertable && !session_.Kit1.KitHasThru) {
    host_.prompts.Tell("Calibration", "Cal kit (Port 1/2) does not have calibrated Thru Standard.",
                       Icon::None);
    index = 2;
  }
  ChooseKind(kKinds[index]);
}

void Calibration::ChooseKind(const KindRow& kind) {
  kind_ = static_cast<std::size_t>(&kind - kKinds.data());
  Choose(kind.Option);
  for (const char* reflection : {"O_Cal", "S_Cal", "M_Cal"})
    (*this)[reflection].Enabled = kind.Reflection;
  (*this)["Thru_Cal"].Enabled = kind.Through;
  (*this)["Iso_Cal"].Enabled = kind.Isolation;
  (*this)["Text5"].Enabled = kind.SecondKit;
  ResetSteps();
  zoWarnPending_ = true;
}

void Calibration::ResetSteps() {
  steps_ = {};
  applied_ = false;
  for (const StepTexts& step : kStepTexts) (*this)[step.Button].Caption = step.Plain;
  ShowNextStep();
}

bool Calibration::MayAct() {
  if (busy_ || controller_.StartingUp()) return false;
  if (controller_.Idle()) return true;
  host_.prompts.Tell("Calibration", "Stop Measurement First", Icon::Exclamation);
  return false;
}

void Calibration::PressStandard(StepIndex step) {
  if (!MayAct()) return;
  const StepTexts& texts = kStepTexts[step];
  if (!session_.Flags.SweepLoaded) {
    host_.prompts.Tell(texts.Title, "Set Freq Sweep First", Icon::Exclamation);
    return;
  }
  busy_ = true;
  WarnOfImpedance();
  EnableStart(false);
  applied_ = false;
  const bool good = MeasureStep(step);
  (*this)[texts.Button].Caption = std::string(texts.Plain) + " *";
  // Meant: the step counts as done whatever became of the sweep.
  steps_[step] = {true, !good};
  EnableStart(true);
  busy_ = false;
  ShowNextStep();
}

void Calibration::EnableStart(bool on) {
  mainWindow_["StartMeasurement"].Enabled = on;
  host_.windows.Refresh(mainWindow_.Name());
}

void Calibration::WarnOfImpedance() {
  if (!zoWarnPending_ || session_.Impedance.SystemZo == 50.0f) return;
  host_.prompts.Tell(
      "Calibration",
      "System impedance not set to 50 ohms. Ensure your cal kit suits the value chosen.",
      Icon::Information);
  zoWarnPending_ = false;
}

bool Calibration::MeasureStep(StepIndex step) {
  const KindRow& kind = Kind();
  if (kind.Choice == CalChoice::NonInsertable) {
    if (step == kThru) {
      host_.windows.ShowModal(windows_.Thru.Name());
      return !windows_.Thru.Incomplete();
    }
    PortCalForm& window = step == kLoad    ? windows_.MatchCal
                          : step == kShort ? windows_.ShortCal
                                           : windows_.OpenCal;
    host_.windows.ShowModal(window.Name());
    if (step == kLoad) steps_[kIso].Done = true;  // the load sweeps give the isolation
    return !window.Incomplete();
  }
  if (kind.Choice == CalChoice::Insertable && step == kIso) return MeasureIsolation();
  return kind.Sweeps[step] && MeasureStandard(controller_.rig(), *kind.Sweeps[step], Bar(host_));
}

bool Calibration::MeasureIsolation() {
  host_.windows.ShowModal("IsoMethod");
  if (session_.Cal.IsoMethod == 0) return true;  // the isolation of the load sweep stands
  return MeasureStandard(controller_.rig(), Standard::IsoInsertable, Bar(host_));
}

bool Calibration::MayApply() {
  const auto refuse = [this](const char* text) {
    host_.prompts.Tell("Apply Calibration", text, Icon::Exclamation);
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
  busy_ = true;
  if (MayApply()) {
    ApplyCalibration(session_, host_, Kind().Choice, steps_[kIso].Done);
    ResetSteps();
    for (PortCalForm* window : {&windows_.OpenCal, &windows_.ShortCal, &windows_.MatchCal})
      window->PlainCaptions();
    windows_.Thru.PlainCaptions();
    zoWarnPending_ = true;
    applied_ = true;
    enhance_.FollowActiveChannel();
    controller_.graphs().RedrawAll(true);
  }
  busy_ = false;
  ShowNextStep();
}

}  // namespace qk
