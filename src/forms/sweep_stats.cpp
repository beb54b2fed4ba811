// SPDX-License-Identifier: MIT
#include "forms/sweep_stats.h"

#include <algorithm>
#include <cmath>

#include "control/quality_verbs.h"
#include "control/quality_watch.h"
#include "core/text.h"
#include "core/window_names.h"
#include "trace/band.h"

namespace qk {

namespace {
constexpr const char* kStatisticsTitle = "Sweep Statistics";

double SizeOf(Complex z) {
  return Magnitude(z.re, z.im);
}

// A mean and its spread: "-20.13 ± 0.01 dB"; if the spread reaches zero magnitude, "-63.1 dB, at
// most -57.2"; for a magnitude of zero "no dB".
std::string DecibelText(double size, double s) {
  if (!(size > kDivisionFloor)) return "no dB";
  const double db = 20 * std::log10(size);
  const double low = s < size ? 20 * std::log10(size - s) : -HUGE_VAL;
  return BandReadOut(db, {low, 20 * std::log10(size + s)}, Unit::Db);
}
}  // namespace

SweepStats::SweepStats(Controller& controller)
    : Form(window::kSweepStats, kStatisticsTitle),
      controller_(controller),
      host_(controller.rig().host) {
  Section("Repeated sweeps");
  sweeps_ = AddText("Sweeps", "Sweeps")
                .Key('w')
                .Number()
                .Text("20")
                .Tip("2 to 200 whole sweeps of the connected device");
  state_ = AddLabel("State", "").Bold().Wide();
  Section("Result");
  spread_ = AddLabel("Spread", "").Lines(8).Wide();
  outliers_ = AddLabel("Outliers", "").Lines(2).Wide();
  ActionRow();
  const Handle start = AddButton("Start", "Start", [this] { Start(); }).Key('S').Default();
  sweeps_.Returns(start);
  leaveOut_ = AddButton("LeaveOut", "Leave Out Outliers", [this] { LeaveOut(); }).Key('O');
  save_ = AddButton("Save", "Save CSV", [this] { Save(); }).Key('v');
  AddButton("Exit", "Exit", [this] { host_.windows.Hide(Name()); }).Key('x');
}

void SweepStats::Start() {
  double wanted = 0;
  if (!ParseNumber(sweeps_->Text, wanted) || wanted != std::floor(wanted) ||
      wanted < SweepRun::kLeastSweeps || wanted > SweepRun::kMostSweeps) {
    host_.prompts.ShowMessage(kStatisticsTitle, "The number of sweeps is 2 to 200.",
                              Icon::Exclamation);
    return;
  }
  FollowCalibration(controller_.quality(), controller_.rig().session);
  controller_.quality().Run.Start(static_cast<int>(wanted));
  stopAtEnd_ = controller_.Idle();
  OnSessionChanged();
  if (!stopAtEnd_) return;
  controller_.StartMeasurement();
  // No calibration, no answer, or STOP: no more sweeps will come.
  stopAtEnd_ = false;
  controller_.quality().Run.Stop();
  host_.windows.SessionChanged();
}

void SweepStats::OnSessionChanged() {
  const SweepRun& run = controller_.quality().Run;
  if (stopAtEnd_ && !run.Running()) {  // all sweeps were taken, or the plan has changed
    stopAtEnd_ = false;
    controller_.StopMeasurement();
  }
  state_.Text(StateText());
  spread_.Text(SpreadText());
  outliers_.Text(OutlierText());
  const bool enough = run.Taken() >= SweepRun::kLeastSweeps;
  leaveOut_.Enabled(enough && !run.Running() && !run.Outliers().empty());
  save_.Enabled(enough);
}

std::string SweepStats::StateText() const {
  const SweepRun& run = controller_.quality().Run;
  if (run.Wanted() == 0) return "No sweeps taken";
  std::string text =
      std::to_string(run.Taken()) + " of " + std::to_string(run.Wanted()) + " sweeps";
  if (!run.LeftOut().empty()) text += ", " + std::to_string(run.LeftOut().size()) + " left out";
  return text;
}

// During the run each sweep would be compared with only a few others.
std::string SweepStats::OutlierText() const {
  const SweepRun& run = controller_.quality().Run;
  if (run.Running() || run.Taken() < SweepRun::kLeastSweeps) return "";
  const std::vector<int> outliers = run.Outliers();
  const std::string drift =
      run.Drifts() ? "; the sweeps drift: their mean depends on when it is taken" : "";
  if (outliers.empty()) return "No outlier" + drift;
  std::string text = outliers.size() == 1 ? "Outlier: sweep " : "Outliers: sweeps ";
  for (std::size_t i = 0; i < outliers.size(); ++i)
    text += (i == 0 ? "" : ", ") + std::to_string(outliers[i]);
  return text + drift;
}

// The spread s of one sweep and s/√N of the mean at the point with the largest s, and the resulting
// range of the mean in decibels: both ends, or only one if the other has no value.
std::string SweepStats::SpreadText() const {
  const SweepRun& run = controller_.quality().Run;
  std::string text;
  for (const Parameter parameter : run.Delivered()) {
    const PointStatistics* statistics = run.Of(parameter);
    if (statistics == nullptr) continue;
    int worst = 0;
    for (int k = 1; k < run.Grid().NumPoints; ++k)
      if (statistics->Deviation(k) > statistics->Deviation(worst)) worst = k;
    const double s = statistics->Deviation(worst), size = SizeOf(statistics->Mean(worst));
    text += (text.empty() ? "" : "\n") + std::string(NameOf(parameter)) + " at " +
            FormatNumber(run.Grid().Frequency(worst) / 1e6, "#0.00") + " MHz: spread s " +
            FormatNumber(s, "0.00E+00") + " at most, of the mean s/√" +
            std::to_string(statistics->Sweeps()) + " " +
            FormatNumber(statistics->DeviationOfMean(worst), "0.00E+00") +
            "\n      mean with s: " + DecibelText(size, s);
  }
  return text;
}

void SweepStats::LeaveOut() {
  SweepRun& run = controller_.quality().Run;
  run.LeaveOut(run.Outliers());
  host_.windows.SessionChanged();
}

void SweepStats::Save() {
  const auto path = host_.prompts.Choose({.Kind = DialogKind::Save,
                                          .Title = "Save Statistics",
                                          .Folder = controller_.rig().session.InstallFolder,
                                          .Filter = "All Files (*.*)|*.*|CSV (*.csv)|*.csv|",
                                          .Ending = "csv"});
  if (!path) return;
  const Result<Done> written = SaveStatistics(controller_, *path);
  if (!written)
    host_.prompts.ShowMessage(kStatisticsTitle, written.Why().Text(), Icon::Exclamation);
}

}  // namespace qk
