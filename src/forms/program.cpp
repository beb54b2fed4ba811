// SPDX-License-Identifier: MIT
#include "forms/program.h"

#include <array>
#include <filesystem>
#include <system_error>
#include <utility>

#include "control/graph_verbs.h"
#include "core/window_names.h"
#include "display/markers.h"
#include "display/read_out.h"
#include "display/remarks.h"
#include "forms/adj_markers.h"
#include "forms/am_to_pm_form.h"
#include "forms/batch_form.h"
#include "forms/cal_kit_form.h"
#include "forms/calibration.h"
#include "forms/check_cal.h"
#include "forms/colours_form.h"
#include "forms/compare_form.h"
#include "forms/diagnostics_tests.h"
#include "forms/display_para.h"
#include "forms/eeprom_bk.h"
#include "forms/eeprom_rest.h"
#include "forms/enhance_para.h"
#include "forms/form1.h"
#include "forms/freq_gen.h"
#include "forms/hardware_info.h"
#include "forms/hints.h"
#include "forms/informing.h"
#include "forms/iso_method.h"
#include "forms/label_graphics.h"
#include "forms/load_meas.h"
#include "forms/marker_table_form.h"
#include "forms/markers_set.h"
#include "forms/memory_para.h"
#include "forms/new_cal_kit.h"
#include "forms/new_limits_set.h"
#include "forms/open_file.h"
#include "forms/p1db_form.h"
#include "forms/picture_output.h"
#include "forms/port_cal.h"
#include "forms/remote_control.h"
#include "forms/report_form.h"
#include "forms/save_kit.h"
#include "forms/save_meas.h"
#include "forms/sweep_stats.h"
#include "forms/tdr_opts.h"

namespace qk {

template <class T, class... Args>
T& Program::Add(Args&&... args) {
  auto form = std::make_unique<T>(std::forward<Args>(args)...);
  T& placed = *form;
  forms_.push_back(std::move(form));
  registry_.Add(placed);
  placed.AroundAction = [this](const std::function<void()>& action) {
    controller_->undo().Around(action);
  };
  return placed;
}

Program::Program(FormRegistry& registry, Host host, SerialPort& port, PictureSurface& surface,
                 const ProgramOptions& options)
    : registry_(registry),
      gate_(host.prompts),
      host_{gate_, host.windows, host.loop},
      session_(MakeSession()) {
  session_->InstallFolder = options.InstallFolder;
  // Without the folder the program can still measure; files are reported as missing.
  std::error_code ignored;
  std::filesystem::create_directories(options.InstallFolder, ignored);

  link_ = std::make_unique<InstrumentLink>(port, *session_, host_);
  rig_ = std::make_unique<Rig>(Rig{*session_, host_, *link_});
  graphs_ = std::make_unique<Graphs>(*session_, surface, options.ScreenScale);
  graphs_->View = {.AxisNumbers = options.FullView, .Remarks = options.FullView};
  controller_ = std::make_unique<Controller>(*rig_, *graphs_);
  controller_->AsksFirst = options.FullView;
  batch_ = std::make_unique<Batch>(*controller_, gate_);

  mouse_ = std::make_unique<PictureMouse>(*controller_);
  live_ = std::make_unique<LiveStandard>(host_);
  PlaceForms(options.Version);
}

// Creates all windows of the program, one per line.
void Program::PlaceForms(const std::string& version) {
  CalSteps& steps = session_->Steps;
  Form1::FileActions files;
  files.LoadCal = [this] { controller_->files().LoadCalDialog(); };
  files.SaveCal = [this] { controller_->files().SaveCalDialog(); };
  files.PrintGraphics = [this] { PrintGraphics(*controller_); };
  files.SaveGraphics = [this] { SaveGraphics(*controller_); };
  files.CopyPicture = [this] { CopyGraphics(*controller_); };
  Add<Form1>(*controller_, std::move(files), version);
  Add<EnhancePara>(*controller_);
  display_ = &Add<DisplayPara>(*controller_);
  Add<MemoryPara>(*controller_);
  Add<TdrOpts>(*session_, host_, *graphs_);
  Add<MarkersSet>(*controller_);
  Add<AdjMarkers>(*controller_);
  Add<MarkerTableForm>(*controller_);
  Add<NewLimitsSet>(*controller_);
  Add<ColoursForm>(*controller_);
  Add<LabelGraphics>(*controller_);
  Add<Calibration>(*controller_, *live_);
  Add<IsoMethodForm>(*rig_);
  Add<PortCalForm>(*rig_, *live_, OpenCal(steps));
  Add<PortCalForm>(*rig_, *live_, ShortCal(steps));
  Add<PortCalForm>(*rig_, *live_, MatchCal(steps));
  Add<PortCalForm>(*rig_, *live_, ThruCal(steps));
  Add<CalKitForm>(*controller_);
  Add<NewCalKit>(*rig_);
  Add<SaveKitForm>(*rig_);
  Add<HardwareInfo>(*rig_);
  Add<DiagnosticsTests>(*rig_);
  Add<EepromBk>(*rig_);
  Add<EepromRest>(*rig_);
  Add<FreqGen>(*rig_);
  Add<P1dBForm>(*controller_);
  Add<AMtoPM>(*controller_);
  Add<CheckCal>(*controller_);
  Add<SweepStats>(*controller_);
  Add<HintsForm>(*controller_);
  Add<SaveMeas>(*controller_);
  Add<LoadMeas>(*controller_);
  remoteWindow_ = &Add<RemoteControl>(host_);
  Add<ReportForm>(*controller_);
  Add<CompareForm>(*rig_);
  Add<BatchForm>(*controller_, *batch_);
  Add<EepromDataForm>();
  Add<InformingForm>(window::kUpdating, "Enhancement Update", "Updating at end of sweep");
  Add<InformingForm>(window::kSweepStopping, "Stop Measurement",
                     "Stopping the current sweep - please wait");
  Add<InformingForm>(window::kShuttingDown, "Closing", "Shutting Down. Please Wait.");
}

Program::~Program() = default;

void Program::PictureResized() {
  graphs_->RedrawAll(true);
}

void Program::Drop(const std::string& path) {
  OpenFile(*controller_, path, "Open File");
}

void Program::Wheel(int x, int y, int steps, bool shift) {
  // One undo step while the wheel turns on the same graph.
  const std::string kind =
      "wheel " + std::to_string(graphs_->SpotAt({x, y}).Graph) + (shift ? " shift" : "");
  controller_->undo().Around([&] { mouse_->Wheel(x, y, steps, shift); }, kind);
}

void Program::DoubleClick(int x, int y) {
  const Graphs::Spot spot = graphs_->SpotAt({x, y});
  switch (spot.Kind) {
    case Graphs::SpotKind::Title:
      return SetUpDisplay(spot.Graph + 1, "ListParameters");
    case Graphs::SpotKind::Scale:
      return SetUpDisplay(spot.Graph + 1, "SensInput");
    case Graphs::SpotKind::Reference:
      return SetUpDisplay(spot.Graph + 1, "REFinput");
    case Graphs::SpotKind::Inside:
      if (graphs_->Graph(spot.Graph).IsSmith) return SetUpDisplay(spot.Graph + 1, "ListGrid");
      return controller_->undo().Around([&] { AutoscaleGraph(*controller_, spot.Graph + 1); });
    default:
      return;
  }
}

void Program::SetUpDisplay(int channel, std::string_view field) {
  registry_.At(window::kForm1).Click("SetDisplay");
  if (display_->Shown) display_->SetUp(channel, field);
}

void Program::SetUpLimits(int channel) {
  registry_.At(window::kForm1).Click("LimiLines");
  Form& form = registry_.At(window::kNewLimitsSet);
  constexpr std::array<std::string_view, 4> kFirstFields{"Text1", "Text33", "Text65", "Text97"};
  if (form.Shown) form.RequestFocus(kFirstFields[static_cast<std::size_t>(channel - 1)]);
}

GraphMenuActions Program::MenuActions() {
  return {[this](int channel) { SetUpDisplay(channel, "SensInput"); },
          [this](int channel) { SetUpLimits(channel); }, [this] { CopyGraphics(*controller_); },
          [this] { SaveGraphics(*controller_); }};
}

std::vector<MenuEntry> Program::Undoable(std::vector<MenuEntry> menu) {
  for (MenuEntry& entry : menu) {
    entry.Entries = Undoable(std::move(entry.Entries));
    if (!entry.Run) continue;
    entry.Run = [this, run = std::move(entry.Run)] { controller_->undo().Around(run); };
  }
  return menu;
}

std::vector<MenuEntry> Program::MenuAt(int x, int y) {
  if (mouse_->OnMarker(x, y)) return {};
  const Graphs::Spot spot = graphs_->SpotAt({x, y});
  if (spot.Graph < 0) return {};
  // On a trace the point of the read-out there, elsewhere the nearest on the axis.
  const std::optional<TracePoint> read = TracePointAt(*graphs_, {x, y});
  const int point =
      read && read->Graph == spot.Graph ? read->Point : graphs_->PointAt(spot.Graph, {x, y});
  return Undoable(GraphMenu(*controller_, MenuActions(), spot.Graph, point));
}

int Program::ChannelOfMenu() const {
  const DisplaySetRow& shown = RowOf(session_->Display.DisplaySet);
  int n = session_->Display.ActiveChannel;
  if (n < shown.First || n > shown.Last) n = shown.First;
  return n;
}

std::vector<MenuEntry> Program::MenuOf(int n) {
  int point = session_->Plan.NumPoints / 2 + 1;
  if (const int active = ActiveOf(session_->Markers, n - 1); active >= 0)
    point = session_->Markers.Of(n - 1, active).Point;
  return Undoable(GraphMenu(*controller_, MenuActions(), n - 1, point));
}

std::optional<std::string> Program::ReadOut(int x, int y) {
  const Graphs::Spot spot = graphs_->SpotAt({x, y});
  if (spot.Kind == Graphs::SpotKind::Badge)
    return VerdictText(*session_, spot.Graph + 1, graphs_->Verdict(spot.Graph),
                       graphs_->UntestedText(spot.Graph));
  return ReadOutAt(*graphs_, static_cast<double>(session_->Impedance.SystemZo), {x, y});
}

void Program::Mouse(MouseAction action, bool leftButton, int x, int y) {
  switch (action) {
    case MouseAction::Down:
      controller_->undo().BeginGesture();
      if (leftButton)
        mouse_->LeftDown(x, y);
      else
        mouse_->RightDown(x, y);
      break;
    case MouseAction::Move:
      if (leftButton) mouse_->LeftMove(x, y);
      break;
    case MouseAction::Up:
      mouse_->Up();
      controller_->undo().EndGesture();
      break;
  }
}

}  // namespace qk
