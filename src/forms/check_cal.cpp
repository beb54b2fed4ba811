// SPDX-License-Identifier: MIT
#include "forms/check_cal.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "cal/standard_sweeps.h"
#include "core/busy.h"
#include "core/local_time.h"
#include "core/scopes.h"
#include "core/text.h"
#include "core/window_names.h"
#include "files/check_trend.h"

namespace qk {

namespace {
constexpr const char* kCheckCalTitle = "Check Calibration";
constexpr int kWidth = 460, kHeight = 180;
constexpr double kShortestMm = 10, kLongestMm = 5000;
constexpr std::size_t kTrendChecks = 20;
constexpr double kLeastTrendAxis = 5;

constexpr std::array<std::uint32_t, kCheckTerms> kColours{
    0x0060C0, 0xC04000, 0x208020, 0x8020A0, 0xA08000, 0x606060, 0x40A0E0, 0xE08040, 0x60B060};

// Tracking errors are fractions of a decibel; the plot shows them as 20 log10 of their size, like
// the other terms.
double PlotDb(double size) {
  return std::max(-120.0, 20 * std::log10(std::max(size, 1e-6)));
}

// The size of a term from its decibels in the trend file.
double SizeOf(const CheckTermRow& row, double db) {
  const double factor = std::pow(10, db / 20);
  return row.AsGain ? factor - 1 : factor;
}

// A range in whole tens of decibels that contains all curves.
PlotRange RangeOf(const std::vector<PlotCurve>& curves, double xMin, double xMax) {
  double low = -60, high = -40;
  for (const PlotCurve& curve : curves)
    for (const double y : curve.Y) {
      low = std::min(low, y);
      high = std::max(high, y);
    }
  return {xMin, xMax > xMin ? xMax : xMin + 1, 10 * std::floor(low / 10),
          10 * std::ceil(high / 10)};
}
}  // namespace

CheckCal::CheckCal(Controller& controller)
    : Form(window::kCheckCal, kCheckCalTitle), controller_(controller), rig_(controller.rig()) {
  Section("Measure on the calibration in force", {.How = Arrange::Grid, .Columns = 1});
  methods_ = AddOptions({{"Standards", "Three standards of the kit"},
                         {"ShortedLine", "Short behind an air line"},
                         {"MismatchedLine", "Mismatch behind an air line"},
                         {"Through", "Through"},
                         {"Isolation", "Isolation (both ports terminated)"},
                         {"PortMatch", "Match of the ports (calibration of S21)"},
                         {"Standards2", "Three standards of the kit at port 2"}},
                        [this] { ShowMethod(); });
  methods_.Keys("3hM Tp2");
  Section("Air line", {.Where = Position::Under});
  length_ = AddText("LineLength", "Length")
                .Unit("mm")
                .Key('L')
                .Number()
                .Text("300")
                .Tip("Mechanical length of the line; the check with a short refines it");
  Section("Found", {.Where = Position::Beside});
  verdict_ = AddLabel("Verdict", "").Bold().Lines(4).Wide();
  note_ = AddLabel("Note", "").Lines(5).Wide();
  basis_ = AddLabel("Basis", "").Lines(4).Wide();
  bar_ = AddProgress("ProgressBar1").Shown(false);
  // As wide as the window, so that they can be read beside the graphs too.
  Section("Residual terms");
  residualPicture_ = AddPicture("Residuals").Picture(kWidth, kHeight, [this](Canvas& canvas) {
    DrawPowerPlot(canvas, residuals_);
  });
  Section("Trend");
  trendPicture_ = AddPicture("Trend").Picture(
      kWidth, kHeight, [this](Canvas& canvas) { DrawPowerPlot(canvas, trend_); });
  ActionRow();
  AddButton("Check", "Check", [this] { Check(); })
      .Key('C')
      .Default()
      .Tip("Asks for each device, measures it and adds a line to CalChecks.csv");
  cancel_ = AddButton("CancelCheck", "Cancel", [this] { cancelled_ = true; })
                .Key('n')
                .WhileBusy()
                .Enabled(false)
                .Tip("Stop this sweep; earlier results are kept (Esc)");
  AddButton("Exit", "Exit", [this] { rig_.host.windows.Hide(Name()); }).Key('x');
}

void CheckCal::OnOpen() {
  methods_.Choose(methods_.Chosen() < 0 ? 0 : methods_.Chosen());
  ShowMethod();
}

void CheckCal::OnSessionChanged() {
  ShowBasis();
  ShowFound();
}

// The noise becomes known, or what the sweep left of the checks has changed.
void CheckCal::OnSweepEnded() {
  if (Shown) ShowBasis();
}

// Why there can be no check or no trend; otherwise what the uncertainties are based on.
void CheckCal::ShowBasis() {
  std::string text = WhyNoCheck(rig_.session, Method()).value_or(whyNoTrend_);
  if (text.empty() && controller_.quality().Check.Any())
    for (const Parameter parameter : {Parameter::S11, Parameter::S21}) {
      std::string words;
      for (const std::string& word :
           UncertaintyWords(controller_.quality(), rig_.session, parameter))
        words += (words.empty() ? ": " : "; ") + word;
      text += (text.empty() ? "" : "\n") + std::string(NameOf(parameter)) + words;
    }
  basis_.Text(text);
}

void CheckCal::ShowMethod() {
  const CheckMethod method = Method();
  length_.Enabled(method == CheckMethod::ShortedLine || method == CheckMethod::MismatchedLine);
  ShowTrend();
  OnSessionChanged();
}

void CheckCal::Check() {
  // Nothing of an earlier check remains beside a refusal.
  verdict_.Text("");
  note_.Text("");
  if (!controller_.Idle() || controller_.StartingUp()) {
    rig_.host.prompts.ShowMessage(kCheckCalTitle, "Stop Sweep First", Icon::Exclamation);
    return;
  }
  CheckRequest request{Method()};
  double mm = 0;
  if (length_->Enabled) {
    if (!ParseNumber(length_->Text, mm) || mm < kShortestMm || mm > kLongestMm) {
      rig_.host.prompts.ShowMessage(kCheckCalTitle, "The length of the line is 10 to 5000 mm.",
                                    Icon::Exclamation);
      return;
    }
    request.LineMm = mm;
  }
  const BusyScope busy(*this, rig_.host.windows);
  bar_.Percent(0).Shown();
  cancelled_ = false;
  const auto report = CheckCalibration(rig_, controller_.quality(), request, Watch());
  bar_.Shown(false);
  cancel_.Enabled(false);
  controller_.graphs().LiveChanged();  // the uncertainty band
  if (!report) {
    if (cancelled_) note_.Text("Cancelled: earlier results are kept.");
    return;
  }
  std::string lines;
  for (const std::string& line : report->Verdict.Lines) lines += (lines.empty() ? "" : "\n") + line;
  verdict_.Text(lines);
  note_.Text(report->Note);
  ShowTrend();
  OnSessionChanged();
}

SweepWatch CheckCal::Watch() {
  SweepWatch watch([this](int percent) {
    cancel_.Enabled();
    rig_.host.windows.Progress(Name(), "ProgressBar1", percent);
  });
  watch.Connected = [this](const StandardSweep& sweep) {
    const Answer answer = rig_.host.prompts.Ask({.Title = std::string(sweep.Title),
                                                 .Text = sweep.Prompt,
                                                 .MessageIcon = Icon::Information,
                                                 .Choice = Buttons::OkCancel,
                                                 .AsksToConnect = true});
    cancelled_ = answer != Answer::Ok;
    return !cancelled_;
  };
  watch.Breathe = [this] { rig_.host.loop.BreatheBut(Name(), cancel_->Name); };
  watch.Cancelled = [this] { return cancelled_; };
  return watch;
}

void CheckCal::ShowFound() {
  const CalCheck& check = controller_.quality().Check;
  residuals_ = {"Residual terms", "MHz", "dB", {}, {}};
  double from = rig_.session.Plan.StartFreq, to = rig_.session.Plan.StopFreq;
  for (std::size_t i = 0; i < kCheckTerms; ++i) {
    const auto term = static_cast<CheckTerm>(i);
    const TermFound& found = check.Of(term);
    if (!found.Known) continue;
    from = std::min(from, found.Grid.StartFreq);
    to = std::max(to, found.Grid.StopFreq);
    PlotCurve curve{std::string(RowOf(term).Name), kColours[i], {}, {}};
    curve.Marks = false;  // because there are hundreds of points
    for (int k = found.First; k <= found.Last; ++k)
      curve.Add(found.Grid.Frequency(k) / 1e6,
                PlotDb(static_cast<double>(found.Size[static_cast<std::size_t>(k)])));
    residuals_.Curves.push_back(std::move(curve));
  }
  if (residuals_.Curves.empty()) {  // the verdict was of a calibration that is gone
    verdict_.Text("");
    note_.Text("");
  }
  residuals_.Range = RangeOf(residuals_.Curves, from / 1e6, to / 1e6);
  residualPicture_.Redraw();
}

// The worst values of the last checks with this method, by check number: those that are comparable
// with the last of them.
void CheckCal::ShowTrend() {
  const std::string method(MethodName(Method()));
  trend_ = {"The last checks: " + method, "Check", "dB", {}, {}};
  const auto checks = ReadCheckTrend(CheckTrendPath(rig_.session));
  whyNoTrend_ = checks ? std::string() : checks.Why().Text();
  if (checks) {
    std::vector<const CheckSummary*> last;
    const CheckSummary* newest = nullptr;
    for (const CheckSummary& check : *checks)
      if (check.Serial == rig_.session.Id.SerialNumber && check.Method == Method()) newest = &check;
    for (const CheckSummary& check : *checks)
      if (newest != nullptr && IsSameKind(check, *newest)) last.push_back(&check);
    if (newest != nullptr && !newest->Standard.empty()) trend_.Title += ", " + newest->Standard;
    if (last.size() > kTrendChecks)
      last.erase(last.begin(), last.end() - static_cast<std::ptrdiff_t>(kTrendChecks));
    for (std::size_t i = 0; i < kCheckTerms; ++i) {
      const CheckTermRow& row = RowOf(static_cast<CheckTerm>(i));
      PlotCurve curve{std::string(row.Name), kColours[i], {}, {}};
      for (std::size_t n = 0; n < last.size(); ++n)
        if (last[n]->Terms[i])
          curve.Add(static_cast<double>(n) + 1, PlotDb(SizeOf(row, last[n]->Terms[i]->Db)));
      if (!curve.X.empty()) trend_.Curves.push_back(std::move(curve));
    }
    // Whole numbers on the axis, even for the first checks.
    trend_.Range =
        RangeOf(trend_.Curves, 0, std::max(kLeastTrendAxis, static_cast<double>(last.size()) + 1));
  }
  if (trend_.Curves.empty()) trend_.Range = RangeOf({}, 0, kLeastTrendAxis);
  trendPicture_.Redraw();
}

}  // namespace qk
