// SPDX-License-Identifier: MIT
#include "control/session_files.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <tuple>

#include "control/proposed_name.h"
#include "control/verbs.h"
#include "core/instrument_limits.h"
#include "core/local_time.h"
#include "core/scopes.h"
#include "core/status.h"
#include "core/window_names.h"
#include "display/label.h"
#include "files/session_file.h"
#include "limits/limit_segments.h"
#include "limits/limit_test.h"
#include "sweep/frequency_plan.h"
#include "sweep/settings.h"

namespace qk {

namespace {
namespace fs = std::filesystem;

constexpr const char* kLoadCal = "Load Cal";

Dialog CalDialog(const Session& session, DialogKind kind, const char* title) {
  return {kind, title, session.InstallFolder, "All Files (*.*)|*.*|cal_files(*.cal)|*.cal|", 2};
}

// stem + ".cal", or with "-2.cal", "-3.cal" ... if files already exist.
fs::path FreeName(const fs::path& stem) {
  std::error_code ignored;
  for (int n = 1;; ++n) {
    fs::path path = stem;
    path += (n == 1 ? std::string() : "-" + std::to_string(n)) + ".cal";
    if (!fs::exists(path, ignored)) return path;
  }
}
}  // namespace

void SessionFiles::LoadCalDialog() {
  if (!MayLoad(kLoadCal)) return;
  const auto path = rig_.host.prompts.Choose(CalDialog(rig_.session, DialogKind::Open, kLoadCal));
  if (path) LoadChosen(*path);
}

bool SessionFiles::LoadCal(const std::string& path, std::string_view title) {
  return MayLoad(title) && LoadChosen(path);
}

bool SessionFiles::MayLoad(std::string_view title) {
  if (rig_.session.Flags.Idle()) return !ConfirmDiscard || ConfirmDiscard(title);
  rig_.host.prompts.ShowMessage(kLoadCal, "Stop sweep first", Icon::Exclamation);
  return false;
}

bool SessionFiles::LoadChosen(const std::string& path) {
  if (const Result<Done> loaded = Load(path); !loaded) {
    rig_.host.prompts.ShowMessage(kLoadCal, loaded.Why().Text(), Icon::Exclamation);
    return false;
  }
  recent_.Note(path);
  return true;
}

void SessionFiles::SaveCalDialog() {
  constexpr const char* kTitle = "Save Cal";
  Prompts& prompts = rig_.host.prompts;
  Dialog dialog = CalDialog(rig_.session, DialogKind::Save, kTitle);
  dialog.Name = ProposedName(rig_.session, rig_.host.loop.Now(), dialog.Folder, ".cal");
  const auto path = prompts.Choose(dialog);
  if (!path) return;
  if (const Result<Done> saved = SaveSession(*path, rig_.session); !saved) {
    prompts.ShowMessage(kTitle, saved.Why().Text(), Icon::Exclamation);
    return;
  }
  recent_.Note(*path);
  if (OnSaved) OnSaved(*path);
}

// A calibration is identified by its moment. The files are read when the question arises, so that a
// file that was deleted or that an earlier run of the program wrote counts as it is.
bool SessionFiles::CalibrationUnsaved() const {
  const std::optional<std::int64_t>& made = rig_.session.CalMade.MadeUtc;
  if (!rig_.session.Cal.AnyKind() || !made) return false;
  return std::ranges::none_of(recent_.Paths(), [&made](const std::string& path) {
    return UseOfFile(path) == FileUse::Session && CalRecordIn(path).MadeUtc == made;
  });
}

void SessionFiles::LoadDefaultCal() {
  ours_ = true;
  std::error_code unseen;  // error of an unreadable folder: its file does not count as missing
  if (!fs::exists(DefaultPath(), unseen) && !unseen) return;
  const Result<Done> loaded = Load(DefaultPath());
  refused_ = !loaded;
  if (refused_)
    rig_.host.prompts.ShowMessage("VNA Initialisation", loaded.Why().Text(), Icon::Exclamation);
}

Result<Done> SessionFiles::SaveDefaultCal() {
  std::error_code ignored;
  const fs::path path = DefaultPath();
  if (!ours_ && fs::exists(path, ignored)) return Done{};
  if (refused_) fs::rename(path, FreeName(path.parent_path() / "DefCal-refused"), ignored);
  return SaveSession(path.string(), rig_.session);
}

std::string SessionFiles::DefaultPath() const {
  return (fs::path(rig_.session.InstallFolder) / "DefCal.cal").string();
}

Result<Done> SessionFiles::Load(const std::string& path) {
  Session& session = rig_.session;
  Windows& windows = rig_.host.windows;
  const std::int16_t averages = session.Averaging.Averages;
  const bool dwell = session.Flags.DwellOn;
  if (Result<Done> read = LoadSession(path, session); !read) return read;
  ours_ = true;
  session.Steps = CalSteps();
  session.Display.SweepCounted = session.Display.SweepDisturbed = false;
  session.Display.SweptUtc.reset();
  graphs_.TakeChannels();  // the old traces belong to another sweep
  graphs_.RedrawAll(true);
  // Files do not contain gaps; they are recomputed from the data.
  if (std::ranges::any_of(session.Channels, [](const ChannelSettings& channel) {
        return RowOf(channel.GraphType).HasGaps();
      }))
    graphs_.ReplotAll();
  const bool swept = session.Flags.SweepLoaded;
  if (session.Id.PortNumber != 0) SendToInstrument(averages, dwell);
  if (swept) ShowStep(session, windows);
  ShowLevel(session, windows);
  ClearLimitFailure(session, rig_.host);  // of the old limits
  RebuildSegments(session, rig_.host);
  ShowCalStatus(session, windows);
  LabelState& label = session.Label;
  if (label.GraphicsLabels[0] != LabelState().GraphicsLabels[0])
    label.Composed = ComposeLabel(session, label.GraphicsLabels[0], DateText(rig_.host.loop.Now()));
  windows.SessionLoaded();
  if (OnLoaded) OnLoaded();
  graphs_.RedrawAll(true);
  return Done{};
}

// Sends the settings of the session: averages, dwell, and the plan if one was loaded. Stops at the
// first failure, which has been shown; what is missing is sent before the next trigger.
void SessionFiles::SendToInstrument(std::int16_t averagesInForce, bool dwellInForce) {
  Session& session = rig_.session;
  const Timer1Pause pause(rig_.host.loop);
  AveragingState& averaging = session.Averaging;
  const auto averages = averaging.AverOn ? averaging.Averages : std::int16_t{1};
  const bool swept = session.Flags.SweepLoaded;
  averaging.Averages = averagesInForce;
  InstrumentHolds& holds = rig_.link.Holds();
  if (!swept) holds.Grid.Unset();  // its plan belongs to another session
  SetAveragesWhileIdle(rig_, std::clamp<std::int16_t>(averages, 1, kMostAverages));
  if (session.Flags.AveragesChangeDue) return;
  if (session.Flags.DwellOn != dwellInForce && !SendDwell(rig_)) return;
  if (swept)  // a failure is shown; the grid is then unknown, and the next START sends it
    std::ignore = LoadFreqSweep(rig_, [this](int percent) {
      rig_.host.windows.Progress(window::kCalibration, "ProgressBar1", percent);
    });
}

}  // namespace qk
