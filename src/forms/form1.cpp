// SPDX-License-Identifier: MIT
#include "forms/form1.h"

#include <filesystem>
#include <system_error>
#include <tuple>

#include "control/display_mode.h"
#include "control/quality_verbs.h"
#include "control/system_log.h"
#include "core/text.h"
#include "core/window_names.h"
#include "forms/load_meas.h"
#include "forms/open_file.h"
#include "trace/reference_plane.h"
#include "trace/smoothing.h"

namespace qk {

namespace {
constexpr const char* kFile = "File";
constexpr const char* kTools = "Tools";
constexpr const char* kUtilities = "Utilities";
constexpr const char* kHelp = "Help";
constexpr const char* kView = "View";

// Conditions in addition to an idle instrument.
enum class Needs { Nothing, SweepSet, TransmissionCal, NoImpedanceConversion };
enum class When { Always, Idle, SweepIdle };
}  // namespace

// A menu item or button that opens a window, and the checks before it.
struct Form1::Opener {
  const char* Name;
  const char* Caption;
  std::string_view Window;
  When Allowed = When::Always;
  const char* Refusal = "";  // shown if the instrument is not idle
  const char* Title = "";    // of all its messages
  Needs Condition = Needs::Nothing;
};

Form1::Form1(Controller& controller, FileActions files, std::string version)
    : Form(window::kForm1, "QK47-20-09 VNA Control", {.ClosesOnRestart = false}),
      controller_(controller),
      session_(controller.rig().session),
      host_(controller.rig().host),
      version_(std::move(version)) {
  AddFileMenu(std::move(files));
  AddToolsMenu();
  AddUtilitiesAndHelp();
  AddViewMenu();
  AddMeasurement();
  AddSetUp();
  AddSwitches();
  Section("");
  AddPicture("PicGraph");
  hint_ = AddButton("Hint", "", [this] { OnWorstHint(ExplainHint); })
              .Tip("Opens the manual: what the hint means and what to do")
              .Shown(false);
  silenceHint_ = AddButton("SilenceHint", "Silence", [this] { OnWorstHint(SilenceHint); })
                     .Tip("Not shown again until the program ends (Utilities, Hints)")
                     .Shown(false);
  notice_ = AddLabel("Notice", "");
  OnSessionChanged();
}

void Form1::AddFileMenu(FileActions files) {
  const auto add = [this](const char* name, const char* caption, Action action) {
    AddMenuItem(kFile, name, caption, std::move(action));
  };
  add("LoadCal", "Load Cal", std::move(files.LoadCal));
  add("SaveCal", "Save Cal", std::move(files.SaveCal));
  add("Printgraphics", "Print Graphics", std::move(files.PrintGraphics));
  add("SaveGraphics", "Save Graphics", std::move(files.SaveGraphics));
  AddOpener(kFile, {"UserLabel", "Print / Save Graphics Label", window::kLabelGraphics});
  AddOpener(kFile, {"SaveMeasurements", "Save Measurements", window::kSaveMeas});
  AddOpener(kFile, {"LoadMeasFile", "Load Measurements", window::kLoadMeas, When::Always, "",
                    "Load Data", Needs::NoImpedanceConversion});
  AddMenuItem(kFile, "Exit", "Exit", [this] { controller_.Exit(); });
  AddOpener(kFile, {"Report", "Report", window::kReport});
  AddOpener(kFile, {"CompareSessions", "Compare Sessions", window::kCompare});
  add("CopyPicture", "Copy Picture", std::move(files.CopyPicture));
  for (std::size_t i = 0; i < recent_.size(); ++i) {
    const std::string number = std::to_string(i + 1);
    recent_[i] = AddMenuItem(kFile, "Recent" + number, number, [this, i] {
                   const std::vector<std::string> paths = controller_.recent().Paths();
                   if (i < paths.size()) OpenFile(controller_, paths[i], "Open Recent");
                 }).Key(number.back());
  }
}

void Form1::AddToolsMenu() {
  constexpr const char* kStop = "Stop Sweep First";
  AddOpener(kTools, {"CalKit", "Calibration Kit", window::kCalKitForm});
  AddOpener(kTools, {"SetColour", "Colour Scheme", window::kColours});
  AddOpener(kTools, {"HardwareID", "Hardware ID", window::kHardwareInfo, When::SweepIdle, kStop,
                     "VNA Hardware Info"});
  AddOpener(kTools, {"Diagnostics", "Diagnostic Tests", window::kDiagnosticsTests, When::Idle,
                     "Stop Measurement First", "Diagnostic Tests", Needs::SweepSet});
  AddOpener(kTools, {"SaveEEPROM", "Back Up EEPROM", window::kEepromBk, When::Idle, kStop,
                     "BackUp EEPROM"});
  AddOpener(kTools, {"RestoreEEPROM", "Restore EEPROM", window::kEepromRest, When::Idle, kStop,
                     "Restore EEPROM"});
  AddMenuItem(kTools, "ReStart", "Re-Start Program", [this] { controller_.ReStart(); });
  AddMenuItem(kTools, "ViewLog", "View Log", [this] { ViewLog(); });
  AddOpener(kTools, {"Remote", "Remote Control", window::kRemoteControl});
}

void Form1::AddUtilitiesAndHelp() {
  constexpr const char* kStop = "Stop Sweep First";
  AddOpener(kUtilities, {"SigGen", "Signal Generator", window::kFreqGen, When::Idle, kStop,
                         "Signal Generator"});
  AddOpener(kUtilities, {"P1dB", "Gain Compression", window::kP1dBForm, When::Idle, kStop,
                         "P1dB Test", Needs::TransmissionCal});
  AddOpener(kUtilities, {"AMtoPMConversion", "AM to PM", window::kAMtoPM, When::Idle, kStop,
                         "AM to PM Test", Needs::TransmissionCal});
  AddOpener(kUtilities, {"CheckCal", "Check Calibration", window::kCheckCal, When::Idle, kStop,
                         "Check Calibration"});
  AddOpener(kUtilities, {"SweepStats", "Sweep Statistics", window::kSweepStats});
  AddOpener(kUtilities, {"Hints", "Hints", window::kHints});
  AddOpener(kUtilities, {"Batch", "Batch", window::kBatch});
  AddMenuItem(kHelp, "UsersGuide", "Users Guide",
              [this] { host_.windows.OpenDocument(session_.InstallFolder + "/UsersManual.pdf"); });
  AddMenuItem(kHelp, "About", "About", [this] { About(); });
}

// The mouse operations on a graph, applied to the active channel; and what all graphs show.
void Form1::AddViewMenu() {
  const auto add = [this](const char* name, const char* caption, Action action) {
    return AddMenuItem(kView, name, caption, std::move(action));
  };
  const auto active = [this] { return int{session_.Display.ActiveChannel}; };
  axisNumbers_ = add("AxisNumbers", "Axis Numbers", [this] {
                   ShowAxisNumbers(controller_, !controller_.graphs().View.AxisNumbers);
                 }).Ticks();
  remarks_ = add("Remarks", "Remarks and Verdicts", [this] {
               ShowRemarks(controller_, !controller_.graphs().View.Remarks);
             }).Ticks();
  uncertainty_ = add("UncertaintyBand", "Uncertainty Band", [this] {
                   ShowUncertainty(controller_, !controller_.graphs().View.Uncertainty);
                 }).Ticks();
  spread_ = add("StatisticsBand", "Statistics Band", [this] {
              ShowSpread(controller_, !controller_.graphs().View.Spread);
            }).Ticks();
  hintsOn_ = add("ShowHints", "Hints", [this] {
               SwitchHints(controller_, !controller_.quality().Hints.On());
             }).Ticks();
  add("AutoscaleActive", "Autoscale", [this, active] { AutoscaleGraph(controller_, active()); });
  add("AutoscaleAll", "Autoscale All", [this] { AutoscaleAll(controller_); });
  add("ScaleCoarser", "Coarser Scale", [this, active] { StepScale(controller_, active(), 1); });
  add("ScaleFiner", "Finer Scale", [this, active] { StepScale(controller_, active(), -1); });
  add("ReferenceUp", "Reference Up", [this, active] { ShiftReference(controller_, active(), 1); });
  add("ReferenceDown", "Reference Down",
      [this, active] { ShiftReference(controller_, active(), -1); });
  AddOpener(kView, {"MarkerTable", "Marker Table", window::kMarkerTable});
  add("MarkerLeft", "Marker Left", [this] { StepMarker(controller_, -1); });
  add("MarkerRight", "Marker Right", [this] { StepMarker(controller_, 1); });
  AddPreset("PresetAll", "All Four Parameters", DisplayPreset::AllParameters);
  AddPreset("PresetFilter", "Filter", DisplayPreset::Filter);
  AddPreset("PresetAntenna", "Antenna", DisplayPreset::Antenna);
  AddPreset("PresetTime", "Time Domain", DisplayPreset::TimeDomain);
  undo_ = add("UndoLast", "Undo", [this] { std::ignore = UndoLast(controller_); });
}

void Form1::AddPreset(const char* name, const char* caption, DisplayPreset preset) {
  AddMenuItem(kView, name, caption, [this, preset] {
    if (const Result<Done> done = ApplyPreset(controller_, preset); !done)
      host_.prompts.ShowMessage("Display Set Up", done.Why().Message, Icon::Exclamation);
  });
}

void Form1::AddMeasurement() {
  Section("Measurement", {.How = Arrange::Grid, .Columns = 1});
  start_ = AddButton("StartMeasurement", "START", [this] { controller_.StartMeasurement(); })
               .Key('S')
               .Bold()
               .Tip("Measure continuously (F5)");
  AddButton("StopMeasurement", "STOP", [this] { controller_.StopMeasurement(); })
      .Key('P')
      .Bold()
      .Tip("Stop the sweep (Esc)");
  single_ = AddButton("SingleSweep", "SINGLE", [this] { controller_.SingleSweep(); })
                .Key('G')
                .Tip("One sweep (F6)");
  progress_ = AddProgress("SweepProgress").Shown(false);
  left_ = AddLabel("SweepLeft", "");
}

void Form1::AddSetUp() {
  const auto add = [this](const Opener& opener, char key, const char* tip) {
    return AddButton(opener.Name, opener.Caption, [this, opener] { Open(opener); })
        .Key(key)
        .Tip(tip);
  };
  Section("Set Up", {.How = Arrange::Grid, .Columns = 1});
  add({"SetCal", "Calibration", window::kCalibration, When::Idle, "Stop Measurement First",
       "Calibration"},
      'C', "Set the sweep, measure the standards, apply the calibration");
  add({"SetMemory", "Memory", window::kMemoryPara}, 'M', "Stored traces, memory math and hold");
  enhancement_ = add({"SetEnhancement", "Enhancement", window::kEnhancePara}, 'E', "");
  AddButton("SetDisplay", "Display", [this] { OpenDisplay(); })
      .Key('D')
      .Tip("Parameter, graph type and scale of each channel");
  Section("Set Parameters", {.How = Arrange::Grid, .Columns = 1});
  add({"Cursors", "Markers", window::kMarkersSet}, 'k',
      "Markers, and the search for a peak or a minimum");
  add({"LimiLines", "Limit Lines", window::kNewLimitsSet}, 'L', "Limit lines and the limit test");
  add({"SetDomain", "TD Options", window::kTDR_Opts}, 'O', "The time domain response");
}

void Form1::AddSwitches() {
  Section("Display", {.How = Arrange::Grid, .Columns = 1});
  display_ = AddOptions({{"DisplayData", "Data"},
                         {"DisplayMem_Data", "Data and Memory"},
                         {"MemoryMath", "Memory Math"}},
                        [this] { SwitchDisplay(); });
  display_.Keys("anr");
  Section("Averaging");
  averaging_ = AddOptions({{"AverOff", "Off"}, {"AverOn", "On"}}, [this] { SwitchAveraging(); });
  Section("Smoothing");
  smoothing_ =
      AddOptions({{"SmoothOff", "Off"}, {"SmoothOn", "On"}}, [this] { SwitchSmoothing(); });
}

void Form1::AddOpener(const char* menu, const Opener& opener) {
  AddMenuItem(menu, opener.Name, opener.Caption, [this, opener] { Open(opener); });
}

void Form1::Open(const Opener& opener) {
  if (MayOpen(opener)) host_.windows.Show(opener.Window);
}

bool Form1::MayOpen(const Opener& opener) {
  const auto refuse = [&](const char* text) {
    host_.prompts.ShowMessage(opener.Title, text, Icon::Exclamation);
    return false;
  };
  if (opener.Allowed == When::Idle && !controller_.Idle()) return refuse(opener.Refusal);
  if (opener.Allowed == When::SweepIdle && !session_.Flags.SweepIdle) return refuse(opener.Refusal);
  const CalState& cal = session_.Cal;
  switch (opener.Condition) {
    case Needs::SweepSet:
      return session_.Flags.SweepLoaded || refuse("Set Sweep First");
    case Needs::TransmissionCal:
      return cal.CalS21 || cal.Cal12Term || cal.CalS11S21 || refuse("No S21 Calibration");
    case Needs::NoImpedanceConversion:
      return MayLoadMeasurements(session_, host_.prompts);
    case Needs::Nothing:
      break;
  }
  return true;
}

void Form1::OnSessionChanged() {
  display_.Choose(static_cast<int>(session_.Display.DisplayMode));
  smoothing_.Choose(session_.Averaging.SmoothOn ? 1 : 0);
  averaging_.Choose(session_.Averaging.AverOn ? 1 : 0);
  start_.Enabled(!session_.Steps.Measuring);
  const std::vector<qk::Hint> hints = controller_.quality().Hints.Active();
  hint_.Caption(hints.empty() ? "" : hints.front().Text).Shown(!hints.empty());
  silenceHint_.Shown(!hints.empty());
  single_.Enabled(!session_.Steps.Measuring);
  ShowView();
  ShowProgress();
  ShowRecent();
  ShowUndo();
  ShowTips();
}

void Form1::OnWorstHint(void (*verb)(Controller&, HintKind)) {
  const std::vector<qk::Hint> hints = controller_.quality().Hints.Active();
  if (!hints.empty()) verb(controller_, hints.front().Kind);
}

void Form1::ShowUndo() {
  const std::string next = controller_.undo().Next();
  undo_.Tip(next.empty() ? "Nothing to undo" : "Take back the last change: " + next);
  notice_.Caption(controller_.notice().Text());
}

// "1 filter.cal": the recently used files, below the fixed items.
void Form1::ShowRecent() {
  const std::vector<std::string>& paths = controller_.recent().Paths();
  for (std::size_t i = 0; i < recent_.size(); ++i) {
    recent_[i].Shown(i < paths.size());
    if (i < paths.size())
      recent_[i]
          .Caption(std::to_string(i + 1) + " " +
                   std::filesystem::path(paths[i]).filename().string())
          .Tip(paths[i]);
  }
}

void Form1::ShowView() {
  axisNumbers_.Checked(controller_.graphs().View.AxisNumbers);
  remarks_.Checked(controller_.graphs().View.Remarks);
  uncertainty_.Checked(controller_.graphs().View.Uncertainty);
  spread_.Checked(controller_.graphs().View.Spread);
  hintsOn_.Checked(controller_.quality().Hints.On());
}

void Form1::ShowProgress() {
  const std::optional<SweepProgress> progress = controller_.Progress();
  progress_.Shown(progress.has_value());
  if (progress) progress_.Percent(progress->Percent);
  left_.Caption(progress ? std::to_string(progress->SecondsLeft) + " s left" : "");
}

void Form1::ShowTips() {
  const AveragingState& averaging = session_.Averaging;
  averaging_[1].Tip("Each point is the mean of " +
                    std::to_string(averaging.AverOn ? averaging.Averages : averaging.AveragesSet) +
                    " readings");
  const int aperture = SmoothingAperture(averaging.SmoothingPercent, session_.Plan.NumPoints);
  smoothing_[1].Tip("Aperture of " + std::to_string(averaging.SmoothingPercent) + " %, " +
                    std::to_string(aperture) + (aperture == 1 ? " point" : " points"));
  enhancement_.Tip("Averages, smoothing, dwell, level and reference plane" + PlanesTip());
}

// The non-zero planes, one per line.
std::string Form1::PlanesTip() const {
  std::string tip;
  for (const Parameter parameter :
       {Parameter::S11, Parameter::S21, Parameter::S12, Parameter::S22}) {
    const auto plane = static_cast<double>(session_.Planes.*PlaneOf(parameter).Plane);
    if (plane == 0) continue;
    tip += "\nReference plane " + std::string(NameOf(parameter)) + ": " +
           FormatNumber(plane * 1000, "###0.000") + " mm";
  }
  return tip;
}

bool Form1::OnCloseBox() {
  controller_.CloseAtOnce();
  return true;
}

void Form1::OpenDisplay() {
  host_.loop.Enable(TimerId::Timer1, false);  // DisplayPara resumes it when it closes
  host_.windows.Show(window::kDisplayPara);
}

void Form1::SwitchDisplay() {
  SwitchDisplayMode(session_, host_, controller_.graphs(),
                    static_cast<DisplayMode>(display_.Chosen()));
}

void Form1::SwitchSmoothing() {
  session_.Averaging.SmoothOn = smoothing_.Chosen() == 1;
  controller_.SmoothChanged();
  host_.windows.SessionChanged();
}

void Form1::SwitchAveraging() {
  if (averaging_.Chosen() == 1)
    controller_.AverOn();
  else
    controller_.AverOff();
  host_.windows.SessionChanged();
}

void Form1::ViewLog() {
  // Without a log there is nothing to show; no message.
  std::error_code ignored;
  if (const std::string path = SystemLogPath(session_); std::filesystem::exists(path, ignored))
    host_.windows.OpenDocument(path);
}

void Form1::About() {
  const std::string below = version_.empty() ? std::string() : "\n" + version_;
  host_.prompts.ShowMessage("VNA Control", Caption() + "\nV1.62 Mar 09" + below, Icon::Information);
}

}  // namespace qk
