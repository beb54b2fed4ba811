// SPDX-License-Identifier: MIT
#include "control/batch.h"

#include <cmath>
#include <filesystem>
#include <system_error>
#include <utility>

#include "control/output_verbs.h"
#include "core/local_time.h"
#include "core/scopes.h"
#include "core/sweep_mode.h"
#include "core/text.h"
#include "files/cal_info.h"
#include "files/report_settings.h"
#include "files/serial_pattern.h"
#include "files/session_file.h"
#include "files/whole_file.h"

namespace qk {

namespace {
namespace fs = std::filesystem;

// After this many consecutive sweeps with surplus bytes, the device is abandoned.
constexpr int kMostDisturbed = 5;

// The measured values of a session, all 0, and the pace of its drawing. Exchanges them with those
// of the session during its lifetime.
class WithoutValues {
 public:
  explicit WithoutValues(Session& session) : session_(session) { Exchange(); }
  ~WithoutValues() { Exchange(); }
  WithoutValues(const WithoutValues&) = delete;
  WithoutValues& operator=(const WithoutValues&) = delete;

 private:
  struct Values {
    ChannelSettings::PerPoint<double> Value{}, Value2{};
    ChannelSettings::PerPoint<float> SmoothValue{}, SmoothValue2{}, SmoothWork{};
  };
  struct All {
    SParamData Data;
    std::array<Values, kChannels> Channels;
    std::int16_t PlotRefreshPoints = 1;  // follows the speed of the sweeps
  };
  void Exchange() {
    std::swap(all_->Data, session_.Data);
    std::swap(all_->PlotRefreshPoints, session_.Display.PlotRefreshPoints);
    for (std::size_t c = 0; c < session_.Channels.size(); ++c) {
      Values& ours = all_->Channels[c];
      ChannelSettings& channel = session_.Channels[c];
      std::swap(ours.Value, channel.Value);
      std::swap(ours.Value2, channel.Value2);
      std::swap(ours.SmoothValue, channel.SmoothValue);
      std::swap(ours.SmoothValue2, channel.SmoothValue2);
      std::swap(ours.SmoothWork, channel.SmoothWork);
    }
  }

  Session& session_;
  std::unique_ptr<All> all_ = std::make_unique<All>();
};

// The settings, the calibration and the memories of batch.cal, and the record next to it.
std::string SettingsOf(Session& session) {
  const WithoutValues without(session);
  std::string bytes = SessionBytes(session);
  bytes += CalInfoBytes(session.CalMade, bytes, TypedLimitsOf(session.Limits));
  return bytes;
}

// One line about the worst channel, and about the limits that were not tested.
std::string WorstText(const Session& session, const std::vector<LimitMargin>& margins) {
  const LimitMargin* worst = nullptr;
  for (const LimitMargin& margin : margins)
    if (margin.Point != 0 && (worst == nullptr || margin.Margin < worst->Margin)) worst = &margin;
  std::string untested = UntestedText(margins);
  if (worst == nullptr) return untested;
  return OutcomeText(*worst, session) + (untested.empty() ? "" : "; " + untested);
}

}  // namespace

// The outcome of measuring one device.
struct Batch::Run {
  int Sweeps = 0;        // complete sweeps, including the discarded one
  int Disturbed = 0;     // consecutive sweeps with surplus bytes
  long Overloads = 0;    // seen before the first counted sweep
  bool Whole = false;    // everything required has been measured
  bool Stopped = false;  // by the user
  std::string Broken;    // reason for ERROR; empty: the margins decide
  std::vector<LimitMargin> Margins;
};

Batch::Batch(Controller& controller, PromptGate& gate) : controller_(controller), gate_(gate) {
  gate_.HandlesNotice = [this](const Message& box) {
    return Running() && OnNotice && OnNotice(BoxText(box.Title, box.Text));
  };
}

Batch::~Batch() {
  gate_.HandlesNotice = {};
}

std::string Batch::PlaceOf(const std::string& folder) const {
  // A relative folder is below the install folder, whatever the working folder is.
  std::error_code error;
  const fs::path install = fs::absolute(controller_.rig().session.InstallFolder, error);
  return (install / folder).lexically_normal().string();
}

bool Batch::IsIn(const std::string& folder) const {
  const std::string place = PlaceOf(folder);
  std::error_code ignored;
  return fs::exists(BatchPath(place, "batch.txt"), ignored) &&
         fs::exists(BatchPath(place, "batch.cal"), ignored);
}

Result<Done> Batch::Start(const std::string& folder, const BatchDefinition& definition,
                          bool withItsSession) {
  Session& session = controller_.rig().session;
  if (Running()) return Failure{"a batch is running", {}};
  if (!controller_.Idle()) return Failure{"Stop sweep first", {}};
  if (folder.empty()) return Failure{"no folder is given", {}};
  if (definition.Sweeps < 1 || definition.Sweeps > 100)
    return Failure{"the sweeps of a piece are 1 to 100", {}};
  if (definition.Prefix.find_first_of("/\\") != std::string::npos)
    return Failure{"the prefix cannot be part of a file name", {}};
  const std::string place = PlaceOf(folder);
  std::unique_ptr<BatchLog> log;
  const auto openLog = [&]() -> Result<Done> {
    std::error_code error;
    fs::create_directories(place, error);
    if (error) return Failure{"cannot be made: " + error.message(), place};
    Result<std::unique_ptr<BatchLog>> opened = BatchLog::Open(place);
    if (!opened) return opened.Why();
    log = std::move(*opened);
    return Done{};
  };
  const std::string cal = BatchPath(place, "batch.cal");
  if (withItsSession) {
    if (Result<Done> opened = openLog(); !opened) return opened;
    if (!controller_.files().LoadCal(cal, "Batch"))
      return Failure{"the session of the batch was not loaded", cal};
  }
  if (Result<Done> measured = AreMeasured(session, definition.Parameters); !measured)
    return measured;
  if (!AnyLimits(session, DeliveredBy(*ModeInForce(session.Cal))))
    return Failure{"no displayed channel has limits that are shown (Limit Lines)", {}};
  // Otherwise each piece would be measured and its report refused.
  if (Result<Done> logo =
          controller_.graphs().Surface().CheckLogo(LoadReportSettings(session.InstallFolder).Logo);
      !logo)
    return logo;
  if (!withItsSession) {
    if (Result<Done> opened = openLog(); !opened) return opened;
    if (Result<Done> saved = SaveSession(cal, session); !saved) return saved;
  }
  if (Result<Done> saved = SaveBatch(place, definition); !saved) return saved;
  folder_ = place;
  definition_ = definition;
  kept_ = SettingsOf(session);
  log_ = std::move(log);
  return Done{};
}

// The folder stores the limits and the calibration that its last device was judged by. Measured
// values alone are no reason to save it again.
Result<Done> Batch::KeepSession() {
  Session& session = controller_.rig().session;
  std::string now = SettingsOf(session);
  if (now == kept_) return Done{};
  if (Result<Done> saved = SaveSession(BatchPath(folder_, "batch.cal"), session); !saved)
    return saved;
  kept_ = std::move(now);
  return Done{};
}

void Batch::End() {
  if (measuring_) controller_.StopMeasurement();
  log_.reset();
}

const BatchLog::Entry* Batch::Known(const std::string& serial) const {
  return log_ ? log_->LastOf(serial) : nullptr;
}

const std::vector<BatchLog::Entry>& Batch::Entries() const {
  static const std::vector<BatchLog::Entry> kNone;
  return log_ ? log_->Entries() : kNone;
}

std::string Batch::LastSerial() const {
  return log_ && !log_->Entries().empty() ? log_->Entries().back().Serial : std::string();
}

std::optional<std::string> Batch::Next() const {
  if (!log_) return std::nullopt;
  // Starts from the last serial and skips those that were already measured.
  std::string last;
  for (const BatchLog::Entry& entry : log_->Entries())
    if (entry.Run == 1 && FitsPattern(entry.Serial, definition_.Pattern)) last = entry.Serial;
  std::optional<std::string> next = NextSerial(definition_.Pattern, last);
  while (next && log_->LastOf(*next) != nullptr) next = NextSerial(definition_.Pattern, *next);
  return next;
}

// Called at the end of each sweep; false ends the measurement.
bool Batch::TakeSweep(Run& run, bool complete) {
  const Session& session = controller_.rig().session;
  const bool endedByItself = complete || session.Flags.SweepRunning;
  if (endedByItself && session.Flags.ReplyTimedOut) return false;  // the sweep is incomplete
  // Bytes too many: nothing is judged by it, and it is swept again.
  if (!complete && session.Flags.SweepRunning && Running()) return ++run.Disturbed < kMostDisturbed;
  run.Disturbed = 0;
  if (!complete || !session.Flags.SweepRunning || !Running()) {
    run.Stopped = true;
    return false;
  }
  const int of = definition_.Sweeps + 1;
  if (OnSweep) OnSweep(run.Sweeps + 1, of);
  if (++run.Sweeps == 1) {
    run.Overloads = controller_.Overloads();
    return true;
  }
  run.Margins = MarginsNow(controller_);
  run.Whole = AnyFailed(run.Margins) || run.Sweeps == of;
  return !run.Whole;
}

Result<Batch::Device> Batch::Measure(const std::string& typed, bool again) {
  const std::string serial(Trimmed(typed));
  if (!Running()) return Failure{"no batch is running", {}};
  if (measuring_) return Failure{current_ + " is being measured: wait for its verdict", {}};
  if (!controller_.Idle()) return Failure{"Stop sweep first", {}};
  if (Result<Done> fits = CheckSerial(serial, definition_.Pattern); !fits) return fits.Why();
  if (const BatchLog::Entry* known = Known(serial); known != nullptr && !again)
    return Failure{serial + " was measured: " + std::string(WordOf(known->Outcome)), {}};
  if (again && Known(serial) == nullptr)
    return Failure{serial + " has not been measured in this batch", {}};
  Session& session = controller_.rig().session;
  if (Result<Done> measured = AreMeasured(session, definition_.Parameters); !measured)
    return measured.Why();
  if (MarginsNow(controller_).empty()) return Failure{"the limits are no longer shown", {}};
  if (Result<Done> saved = KeepSession(); !saved) return saved.Why();

  Run run;
  const FlagScope measuring(measuring_);
  current_ = serial;
  auto before = controller_.OnSweepEnded;  // other listeners are called for these sweeps too
  controller_.OnSweepEnded = [&](bool complete) {
    const bool goesOn = !before || before(complete);
    return TakeSweep(run, complete) && goesOn;
  };
  session.Flags.ReplyTimedOut = false;
  std::string notice;
  {
    const PromptGate::Unattended unattended(gate_, [&notice](const Message& box) {
      if (notice.empty()) notice = BoxText(box.Title, box.Text);
    });
    controller_.StartMeasurement();
  }
  controller_.OnSweepEnded = std::move(before);
  if (!Running()) return Failure{"the batch was ended", {}};
  if (!run.Whole) {
    const bool lost = !run.Stopped && session.Flags.ReplyTimedOut;
    const bool disturbed = run.Disturbed == kMostDisturbed;
    if (!lost && !disturbed)
      return Failure{(notice.empty() ? "stopped" : notice) + ": " + serial + " was not measured",
                     {}};
    run.Broken = disturbed ? "The line to the instrument is disturbed."
                           : "The link to the instrument was lost.";
  } else if (session.Cal.CalInterpolated) {
    run.Broken = "The calibration is interpolated to another sweep.";
  } else if (controller_.Overloads() != run.Overloads) {
    run.Broken = "A receiver was overloaded.";
  } else if (run.Margins.empty()) {
    run.Broken = "The limits were switched off while the piece was measured.";
  }
  if (run.Broken.empty() && !notice.empty() && !(OnNotice && OnNotice(notice)))
    controller_.rig().host.prompts.ShowMessage("Batch", notice, Icon::Exclamation);
  return Record(serial, run);
}

// Writes the files first, then the row.
Result<Batch::Device> Batch::Record(const std::string& serial, const Run& run) {
  const Session& session = controller_.rig().session;
  const BatchLog::Entry* known = Known(serial);
  Device piece{serial, known == nullptr ? 1 : known->Run + 1, Verdict::Error, run.Broken};
  if (run.Broken.empty()) {
    piece.Outcome = OutcomeOf(run.Margins);
    piece.Text = WorstText(session, run.Margins);
  }

  BatchRow row;
  row.Utc = UtcText(controller_.rig().host.loop.UnixSeconds());
  row.Serial = serial;
  row.Run = piece.Run;
  row.Outcome = piece.Outcome;
  row.Note = run.Broken.empty() ? UntestedText(run.Margins) : run.Broken;
  row.File = log_->NextFile(definition_.Prefix, serial);
  row.Instrument = "QK47-20-09 SN " + std::to_string(session.Id.SerialNumber);
  if (session.Receiver.Temperature)
    row.Temperature = FormatNumber(static_cast<double>(*session.Receiver.Temperature), "#0.0");
  if (session.CalMade.MadeUtc) row.Calibrated = UtcText(*session.CalMade.MadeUtc);
  row.Operator = definition_.Operator;

  ReportSubject subject{.Serial = serial,
                        .Operator = definition_.Operator,
                        .Remark = {},
                        .Outcome = piece.Outcome,
                        .Note = run.Broken,
                        .Run = piece.Run,
                        .Measured = run.Whole,
                        .DataName = {},
                        .DataBytes = {}};
  const fs::path stem = fs::path(folder_) / row.File;
  std::string dataPath;
  if (run.Whole) {
    for (const LimitMargin& margin : run.Margins) {
      if (margin.Point == 0) continue;
      BatchMargin& cell = row.Channels[static_cast<std::size_t>(margin.Channel - 1)];
      cell.Parameter = NameOf(margin.Parameter);
      cell.Margin = std::isfinite(margin.Margin) ? PlainNumber(margin.Margin) : "no number";
      cell.Unit = NameOf(margin.Units);
      // A time response has no frequency there.
      if (RowOf(session.Channel(margin.Channel).GraphType).Form != PointForm::Spectrum)
        cell.Hertz = PlainNumber(session.Plan.Frequency(margin.Point - 1));
    }
    for (const auto& marker : MarkerLines(controller_))
      row.Markers += (row.Markers.empty() ? "" : "; ") + marker[0] + " " + marker[1] + " " +
                     marker[2] + " " + marker[3];
    const Result<DataFile> data = MakeDataFile(controller_, definition_.Parameters, serial);
    if (!data) return data.Why();
    subject.DataName = row.File + data->Ending;
    subject.DataBytes = data->Bytes;
    dataPath = stem.string() + data->Ending;
  }
  const ReportDocument report =
      MakeReport(controller_, LoadReportSettings(session.InstallFolder), subject);
  if (Result<Done> written =
          WriteReport(controller_, report, stem.string() + ".pdf", dataPath, subject.DataBytes);
      !written)
    return written.Why();
  if (Result<Done> appended = log_->Append(row); !appended) return appended.Why();
  return piece;
}

}  // namespace qk
