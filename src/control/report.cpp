// SPDX-License-Identifier: MIT
#include "control/report.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "control/check_calibration.h"
#include "control/output_verbs.h"
#include "core/cal_arrays.h"
#include "core/local_time.h"
#include "core/quantity_text.h"
#include "core/sweep_mode.h"
#include "core/text.h"
#include "display/layout.h"
#include "display/marker_table.h"
#include "display/remarks.h"
#include "files/provenance.h"
#include "files/whole_file.h"

namespace qk {

namespace {
namespace fs = std::filesystem;

// The width in pixels of a report's graphs, which fill the width of a page: one point on paper is
// 1.45 pixels, and the smallest text is 7.3 points high on paper.
constexpr int kGraphsWidth = 720;
constexpr int kLeastHeight = 430, kMostHeight = 550;  // limits for legibility, and for the page
constexpr int kLettersOfReport = 8;                   // points of 4/3 pixels

// The aspect ratio of the picture area, within the limits for legibility.
Extent SizeOfGraphs(Extent screen) {
  const double height =
      kGraphsWidth * static_cast<double>(screen.height) / std::max(1, screen.width);
  return {kGraphsWidth, std::clamp(WholePixel(height), kLeastHeight, kMostHeight)};
}

// Draws the graphs in the colours for paper.
void DrawGraphs(Controller& controller, Canvas& canvas) {
  Session& session = controller.rig().session;
  const Colours saved = session.Colour;
  if (session.Print.PrintDefaultColours) session.Colour = {};
  controller.graphs().PaintPage(canvas, session.Label.Show ? session.Label.Composed : std::string(),
                                kLettersOfReport);
  session.Colour = saved;
}

std::string VerdictText(const std::vector<LimitMargin>& margins, const ReportSubject& subject,
                        const Session& session) {
  if (!subject.Note.empty()) return subject.Note;
  std::string text;
  for (const LimitMargin& margin : margins) {
    if (margin.Point == 0) continue;
    text += (text.empty() ? "" : "\n") + OutcomeText(margin, session);
  }
  if (const std::string untested = UntestedText(margins); !untested.empty())
    text += (text.empty() ? "" : "\n") + untested;
  return text;
}

void AddVerdict(ReportDocument& report, const Session& session, const ReportSubject& subject,
                const std::vector<LimitMargin>& margins) {
  const bool tested =
      std::ranges::any_of(margins, [](const LimitMargin& margin) { return margin.Point != 0; });
  if (!subject.Outcome && !tested) {
    report.Blocks.push_back(ReportParagraph{"No limits are set: this report gives no verdict."});
    return;
  }
  const Verdict verdict = subject.Outcome.value_or(OutcomeOf(margins));
  report.Blocks.push_back(ReportVerdict{IsPass(verdict), std::string(WordOf(verdict)),
                                        VerdictText(margins, subject, session)});
}

// The points of the sweep at which a segment is tested, on the channel's axis: "448.0000 MHz to
// 1028.0000 MHz", or in ns or m. Apply moves a typed frequency to a point, and a segment may extend
// outside the present sweep.
std::string TestedText(const Session& session, int channel, const LimitSegment& segment) {
  constexpr double kSlack = 100;  // hertz; segments are texts with four decimals of a megahertz
  const ChannelSettings& settings = session.Channel(channel);
  const double start = Val(segment.Start) * 1e6, stop = Val(segment.Stop) * 1e6;
  int first = 0, last = 0;
  for (int i = 1; i <= session.Plan.NumPoints; ++i) {
    const double hertz = session.Plan.Frequency(i - 1);
    if (hertz < start - kSlack || hertz > stop + kSlack || NoLimits(settings, i)) continue;
    if (first == 0) first = i;
    last = i;
  }
  if (first == 0) return "no point";
  return PointText(session, settings, first) + " to " + PointText(session, settings, last);
}

void AddLimits(ReportDocument& report, const Session& session,
               const std::vector<LimitMargin>& margins) {
  ReportTable results{{"Channel", "Parameter", "Result", "Worst margin", "At", "Failure mark"}, {}};
  ReportTable lines{{"Channel", "From", "To", "Lower limit", "Upper limit", "Tested"}, {}};
  bool marked = false;
  for (const LimitMargin& margin : margins) {
    if (margin.Point == 0) continue;
    const std::string channel = "CH" + std::to_string(margin.Channel);
    const Verdict verdict = Judged(!margin.Failed, !margin.Untested.empty());
    const ChannelSettings& settings = session.Channel(margin.Channel);
    const ChannelLimits& limits = session.Limits.Of(margin.Channel);
    marked = marked || limits.Failed;
    results.Rows.push_back(
        {channel,
         std::string(NameOf(margin.Parameter)) + " " + std::string(NameOf(settings.GraphType)),
         std::string(WordOf(verdict)), MarginText(margin),
         PointText(session, settings, margin.Point),
         limits.Failed ? PointText(session, settings, limits.FailPoint) : "-"});
    const std::string unit = " " + std::string(NameOf(margin.Units));
    for (const LimitSegment& segment : limits.Segments) {
      if (segment.Stop.empty()) continue;
      lines.Rows.push_back(
          {channel, PlainNumber(Val(segment.StartAsEntered())) + " MHz",
           PlainNumber(Val(segment.StopAsEntered())) + " MHz",
           Val(segment.Lower) <= static_cast<double>(kNoLowerLimit) ? "none" : segment.Lower + unit,
           Val(segment.Upper) >= static_cast<double>(kNoUpperLimit) ? "none" : segment.Upper + unit,
           TestedText(session, margin.Channel, segment)});
    }
  }
  if (results.Rows.empty()) return;
  report.Blocks.push_back(ReportHeading{"Limits"});
  report.Blocks.push_back(std::move(results));
  if (marked)
    report.Blocks.push_back(ReportParagraph{
        "The worst margin is at the point that fails most. The red mark in a graph is at the last "
        "point that fails."});
  report.Blocks.push_back(std::move(lines));
}

void AddMarkers(ReportDocument& report, Controller& controller) {
  ReportTable table{{"Channel", "Marker", "Position", "Value"}, MarkerLines(controller)};
  if (table.Rows.empty()) return;
  report.Blocks.push_back(ReportHeading{"Markers"});
  report.Blocks.push_back(std::move(table));
}

ReportTable TableOfFacts(const std::vector<Fact>& facts) {
  ReportTable table;
  for (const Fact& fact : facts) table.Rows.push_back({fact.Name, fact.Value});
  return table;
}

// A time in readable form: "2026-03-09 14:05:30 UTC".
std::string MomentText(std::int64_t unixSeconds) {
  std::string text = UtcText(unixSeconds);
  text.pop_back();
  std::ranges::replace(text, 'T', ' ');
  return text + " UTC";
}

std::vector<Fact> CalibrationFacts(const Session& s) {
  const CalRecord& made = s.CalMade;
  if (TermsAreIdeal(s))
    return {{"Kind", CalInForceText(s) + ": no standard was measured, the values are raw ratios"}};
  std::vector<Fact> facts{{"Kind", CalStatusText(s.Cal)}};
  if (!s.Cal.AnyKind()) return facts;
  facts.push_back({"Made", made.MadeUtc ? MomentText(*made.MadeUtc) : "unknown"});
  facts.push_back(
      {"Temperature then",
       made.DegC ? FormatNumber(static_cast<double>(*made.DegC), "#0.0") + " degC" : "unknown"});
  if (s.Receiver.Temperature)
    facts.push_back({"Temperature now",
                     FormatNumber(static_cast<double>(*s.Receiver.Temperature), "#0.0") + " degC"});
  facts.push_back({"Kit of port 1", made.Kit1.empty() ? s.Kit1.KitName : made.Kit1});
  facts.push_back({"Kit of port 2", made.Kit2.empty() ? s.Kit2.KitName : made.Kit2});
  facts.push_back({"Level", std::to_string(s.Plan.CalLevel) + " dBm"});
  facts.push_back({"Points", std::to_string(s.Plan.SavedPlan.NumPoints) + " from " +
                                 MegahertzText(s.Plan.SavedPlan.StartFreq) + " to " +
                                 MegahertzText(s.Plan.SavedPlan.StopFreq)});
  facts.push_back({"Interpolated", s.Cal.CalInterpolated ? "yes" : "no"});
  return facts;
}

std::string ByText(const TermChecked& checked) {
  return std::string(MethodName(checked.By)) + (checked.SameKit ? " (same kit)" : "");
}

// What the checks have found of the calibration in force, and what the uncertainties rest on.
void AddChecks(ReportDocument& report, const Session& session, const QualityState& quality,
               bool uncertainty) {
  if (!session.Cal.AnyKind()) return;
  const LastChecks last = LastChecksOf(session, quality);
  ReportTable table{{"Term", "Worst", "At", "Verdict", "By", "Checked"}, {}};
  for (std::size_t i = 0; i < kCheckTerms; ++i) {
    if (!last[i]) continue;
    const auto term = static_cast<CheckTerm>(i);
    const WorstTerm& worst = last[i]->Worst;
    const bool judged = RowOf(term).LimitDb && Corrects(ModeInForce(session.Cal), term);
    const char* verdict = !judged ? "-" : IsTooLarge(term, worst.Db) ? "too large" : "good";
    table.Rows.push_back({std::string(RowOf(term).Name), TermDbText(term, worst.Db),
                          MegahertzText(worst.Hz), verdict, ByText(*last[i]),
                          MomentText(last[i]->Utc)});
  }
  report.Blocks.push_back(ReportHeading{"Last check of the calibration"});
  if (table.Rows.empty())
    report.Blocks.push_back(ReportParagraph{"This calibration has not been checked."});
  else
    report.Blocks.push_back(std::move(table));
  if (!uncertainty) return;
  for (const Parameter parameter : {Parameter::S11, Parameter::S21})
    report.Blocks.push_back(ReportParagraph{"Uncertainty of " + std::string(NameOf(parameter)) +
                                            ": " + UncertaintyBasis(quality, session, parameter)});
}

void AddSetUp(ReportDocument& report, Controller& controller, std::int64_t unixSeconds) {
  const Session& session = controller.rig().session;
  std::vector<Fact> setUp, versions;
  for (const Fact& fact : ProvenanceOf(session, unixSeconds)) {
    if (fact.Name == "Calibration" || fact.Name == "Kits" || fact.Name == "Interpolated") continue;
    if (fact.Name == "Written" || fact.Name == "Measured") continue;  // already included above
    (fact.Name == "Program" || fact.Name == "Instrument" ? versions : setUp).push_back(fact);
  }
  if (session.Averaging.SmoothOn)
    for (Fact& fact : setUp)
      if (fact.Name == "Smoothing")
        fact.Value = std::to_string(session.Averaging.SmoothingPercent) + " %";
  report.Blocks.push_back(ReportHeading{"Set-up"});
  report.Blocks.push_back(TableOfFacts(setUp));
  report.Blocks.push_back(ReportHeading{"Calibration"});
  report.Blocks.push_back(TableOfFacts(CalibrationFacts(session)));
  AddChecks(report, session, controller.quality(), controller.graphs().View.Uncertainty);
  report.Blocks.push_back(ReportHeading{"Instrument and program"});
  report.Blocks.push_back(TableOfFacts(versions));
}

}  // namespace

std::vector<LimitMargin> MarginsNow(Controller& controller) {
  const Session& session = controller.rig().session;
  const std::optional<SweepMode> mode = ModeInForce(session.Cal);
  if (!mode) return {};
  std::vector<LimitMargin> margins = LimitMargins(session, DeliveredBy(*mode));
  for (LimitMargin& margin : margins)
    margin.Untested = controller.kept().UntestedLimits(session, margin.Channel);
  return margins;
}

std::vector<std::vector<std::string>> MarkerLines(Controller& controller) {
  Graphs& graphs = controller.graphs();
  const Session& session = controller.rig().session;
  graphs.CatchUp();  // drawing updates the marker values
  std::vector<std::vector<std::string>> lines;
  const DisplaySetRow& shown = RowOf(session.Display.DisplaySet);
  for (int n = shown.First; n <= shown.Last; ++n)
    for (int m = 0; m < kMarkers; ++m) {
      const Marker& marker = session.Markers.Of(n - 1, m);
      if (marker.State == MarkerState::Off) continue;
      const GraphRecord& graph = graphs.Graph(n - 1);
      const auto zo = static_cast<double>(session.Impedance.SystemZo);
      lines.push_back(
          {"CH" + std::to_string(n) + " " + std::string(NameOf(session.Channel(n).Parameter)),
           "Marker " + std::to_string(m + 1), MarkerPositionText(graph, marker),
           graphs.HoldsData(n - 1)
               ? graphs.ValueText(n - 1, marker, zo) + (graph.IsSmith ? " ohm" : "") +
                     (graphs.IsMeasured(n - 1) ? "" : ", not measured by this calibration")
               : "---"});
    }
  return lines;
}

ReportDocument MakeReport(Controller& controller, const ReportSettings& settings,
                          const ReportSubject& subject) {
  const Session& session = controller.rig().session;
  const std::int64_t now = controller.rig().host.loop.UnixSeconds();
  ReportDocument report{settings.Title, settings.Address, settings.Logo, {}, {}};
  report.Footer =
      subject.Serial.empty() ? MomentText(now) : subject.Serial + "   " + MomentText(now);

  std::vector<Fact> about;
  if (!subject.Serial.empty()) about.push_back({"Serial", subject.Serial});
  if (subject.Run > 1) about.push_back({"Run", std::to_string(subject.Run)});
  if (subject.Measured && session.Display.SweptUtc)
    about.push_back({"Measured", MomentText(*session.Display.SweptUtc)});
  about.push_back({"Written", MomentText(now)});
  if (!subject.Operator.empty()) about.push_back({"Operator", subject.Operator});
  if (!subject.Remark.empty()) about.push_back({"Remark", subject.Remark});
  report.Blocks.push_back(TableOfFacts(about));

  const std::vector<LimitMargin> margins =
      subject.Measured ? MarginsNow(controller) : std::vector<LimitMargin>();
  AddVerdict(report, session, subject, margins);
  if (subject.Measured) {
    report.Blocks.push_back(
        ReportPicture{SizeOfGraphs(controller.graphs().Surface().Picture().Size()),
                      [&controller](Canvas& canvas) { DrawGraphs(controller, canvas); }});
    AddLimits(report, session, margins);
    AddMarkers(report, controller);
  }
  AddSetUp(report, controller, now);
  if (!subject.DataName.empty()) {
    report.Blocks.push_back(ReportHeading{"Data"});
    report.Blocks.push_back(ReportDataFile{subject.DataName, subject.DataBytes});
  }
  return report;
}

std::array<bool, 4> MeasuredParameters(const Session& session) {
  std::array<bool, 4> parameters{};
  if (const std::optional<SweepMode> mode = ModeInForce(session.Cal); mode)
    for (const Parameter parameter : DeliveredBy(*mode))
      parameters[static_cast<std::size_t>(parameter)] = true;
  return parameters;
}

namespace {
const char* EndingOf(const std::array<bool, 4>& parameters) {
  const auto count = std::ranges::count(parameters, true);
  if (count == 4) return ".s2p";
  return count == 1 && (parameters[0] || parameters[3]) ? ".s1p" : ".csv";
}
}  // namespace

Result<DataFile> MakeDataFile(Controller& controller, const std::array<bool, 4>& parameters,
                              const std::string& comment) {
  const Rig& rig = controller.rig();
  if (Result<Done> measured = AreMeasured(rig.session, parameters); !measured)
    return measured.Why();
  DataFile file{EndingOf(parameters), {}};
  if (file.Ending == ".csv") {
    CsvChoice choice;
    choice.Parameters = parameters;
    choice.With(CsvColumn::Re).With(CsvColumn::Im);
    const Result<std::string> text =
        CsvText(rig.session, choice, ProvenanceOf(rig.session, rig.host.loop.UnixSeconds()));
    if (!text) return text.Why();
    file.Bytes = *text;
    return file;
  }
  MeasurementChoice choice;
  choice.Parameters = parameters;
  const LocalTime now = rig.host.loop.Now();
  file.Bytes = MeasurementText(rig.session, choice, {comment, DateText(now), TimeText(now)});
  return file;
}

std::string DataPathOf(const Session& session, const std::string& reportPath) {
  return fs::path(reportPath).replace_extension(EndingOf(MeasuredParameters(session))).string();
}

Result<Done> WriteReport(Controller& controller, const ReportDocument& report,
                         const std::string& path, const std::string& dataPath,
                         const std::string& dataBytes) {
  constexpr std::size_t kLargestData = std::size_t{64} << 20;
  PictureSurface& surface = controller.graphs().Surface();
  if (dataPath.empty()) return surface.WriteReport(report, path);
  std::error_code ignored;
  std::optional<std::string> before;
  if (fs::exists(dataPath, ignored)) {
    Result<std::string> bytes = ReadWhole(dataPath, kLargestData);
    if (!bytes) return bytes.Why();
    before = std::move(*bytes);
  }
  if (Result<Done> written = WriteWhole(dataPath, dataBytes); !written) return written;
  Result<Done> written = surface.WriteReport(report, path);
  if (written) return written;
  if (!before)
    fs::remove(dataPath, ignored);
  else if (const Result<Done> restored = WriteWhole(dataPath, *before); !restored)
    return Failure{written.Why().Text() + "; " + restored.Why().Message, dataPath};
  return written;
}

Result<Done> SaveReport(Controller& controller, const std::string& path,
                        const ReportSettings& settings, ReportSubject subject) {
  const Session& session = controller.rig().session;
  if (Result<Done> values = HaveValues(session); !values) return values;
  const Result<DataFile> data = MakeDataFile(controller, MeasuredParameters(session),
                                             subject.Serial.empty() ? kNoComment : subject.Serial);
  if (!data) return data.Why();
  const std::string dataPath = DataPathOf(session, path);
  subject.DataName = fs::path(dataPath).filename().string();
  subject.DataBytes = data->Bytes;
  return WriteReport(controller, MakeReport(controller, settings, subject), path, dataPath,
                     data->Bytes);
}

}  // namespace qk
