// SPDX-License-Identifier: MIT
// The report of a measurement, by the window's controls and by the verbs; and the comparison of
// sessions.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "control/output_verbs.h"
#include "core/local_time.h"
#include "forms/batch_fixture.h"

namespace qk::test {
namespace {

namespace fs = std::filesystem;

TEST_F(Production, AReportStatesWhatIsOnDisplayAndItsDataFile) {
  Measure();
  Click("Form1.Report");
  Type("Report.Serial", "F-17");
  Type("Report.Title", "Acceptance test");
  Type("Report.Address", "Example Ltd, 1 High Street");
  fake.Choices.emplace_back(folder.File("r.pdf"));
  Click("Report.Save");
  EXPECT_TRUE(TakeMessages().empty());
  EXPECT_EQ(At("Form1.Notice").Caption, "saved r.pdf");
  EXPECT_EQ(fake.Dialogs.back().Name, "F-17-2026-03-09");
  ASSERT_EQ(surface.Reports.size(), 1u);
  EXPECT_TRUE(fs::exists(folder.File("r.s2p")));
  const std::string said = Said(surface.Reports[0].Report);
  for (const char* part :
       {"Acceptance test\nExample Ltd, 1 High Street\n", "Serial | F-17 | ",
        "PASS: CH1 S21 passes by", "CH1 | S21 LogMag | PASS | ",
        "CH1 | 100 MHz | 3000 MHz | -3 dB | -1 dB | 100.0000 MHz to 3000.0000 MHz | ",
        "Calibration\nKind | 12 Term Cal | \nMade | 2026-03-09 ", " UTC | \nTemperature then | ",
        "Kit of port 1 | Default | ", "Interpolated | no | ", "Averages | 1 | ",
        "Program | qk47-vna ", "r.s2p "})
    EXPECT_NE(said.find(part), std::string::npos) << part << "\n" << said;
  // The letterhead is there at the next opening.
  Click("Report.Exit");
  Type("Report.Title", "x");
  Click("Form1.Report");
  EXPECT_EQ(Value("Report.Title"), "Acceptance test");
}

// What was typed, though the limits are at points of the sweep, 58 MHz apart.
TEST_F(Production, AReportStatesLimitsAsTheyWereTypedAlsoOfALoadedSession) {
  Measure();
  Click("Form1.LimiLines");
  const auto limit = [&](const char* start, const char* stop) {
    Type("NewLimitsSet.Text1", start);
    Type("NewLimitsSet.Text2", stop);
    Click("NewLimitsSet.Command2");
    Click("NewLimitsSet.Command1");
    Click("Form1.LimiLines");
  };
  const auto said = [&] {
    ReportDocument report = MakeReport(program.controller(), {}, {});
    return Said(report);
  };
  limit("500", "1080.5");
  EXPECT_EQ(Value("NewLimitsSet.Text1"), "448.0000");
  Click("NewLimitsSet.Command2");  // again, as shown
  Click("NewLimitsSet.Command1");
  const char* limits = "CH1 | 500 MHz | 1080.5 MHz | -3 dB | -1 dB | ";
  EXPECT_NE(said().find(limits + std::string("448.0000 MHz to 1028.0000 MHz | ")),
            std::string::npos)
      << said();
  fake.Choices.emplace_back(folder.File("a.cal"));
  Click("Form1.SaveCal");
  limit("448", "1080.5");  // the point itself
  EXPECT_NE(said().find("CH1 | 448 MHz | 1080.5 MHz | "), std::string::npos) << said();
  limit("700", "900");
  fake.Choices.emplace_back(folder.File("a.cal"));
  Click("Form1.LoadCal");
  EXPECT_EQ(Value("NewLimitsSet.Text1"), "448.0000");
  Measure();
  EXPECT_NE(said().find(limits + std::string("448.0000 MHz to 1028.0000 MHz | ")),
            std::string::npos)
      << said();
  // A sweep that contains a part of them.
  fake.Answers = {Answer::Yes};  // "Keep existing Cal (interpolate new points)?"
  SetSweep("700", "1700", "51");
  Measure();
  EXPECT_NE(said().find(limits + std::string("700.0000 MHz to 1020.0000 MHz | ")),
            std::string::npos)
      << said();
  // So it is tested in part, as the badge of the graph says.
  for (const char* part :
       {"PASS (part): CH1 S21 passes by ", "not tested: CH1 448.0000 to 700.0000 MHz",
        "CH1 | S21 LogMag | PASS (part) | "})
    EXPECT_NE(said().find(part), std::string::npos) << part << "\n" << said();
}

TEST_F(Production, AReportAndACsvFileStateWhenTheSweepWasAndWhenTheyWereWritten) {
  Measure();
  const std::string swept = UtcText(fake.UnixSeconds());
  clock.AdvanceMs(3'600'000);
  const std::string written = UtcText(fake.UnixSeconds());
  ASSERT_NE(swept, written);
  const std::string said = Said(MakeReport(program.controller(), {}, {}));
  const auto moment = [](const std::string& utc) {
    return utc.substr(0, 10) + " " + utc.substr(11, 8) + " UTC";
  };
  EXPECT_NE(said.find("Measured | " + moment(swept)), std::string::npos) << said;
  EXPECT_NE(said.find("Written | " + moment(written)), std::string::npos) << said;
  CsvChoice choice;
  choice.Parameters = {true, false, false, false};
  choice.With(CsvColumn::Re);
  ASSERT_TRUE(SaveCsv(program.controller(), folder.File("a.csv"), choice).Ok());
  std::ostringstream csv;
  csv << std::ifstream(folder.File("a.csv")).rdbuf();
  EXPECT_NE(csv.str().find("# Measured: " + swept), std::string::npos) << csv.str();
  EXPECT_NE(csv.str().find("# Written: " + written), std::string::npos) << csv.str();
}

TEST_F(Production, AReportDoesNotReplaceADataFileUnasked) {
  Measure();
  std::ofstream(folder.File("r.s2p")) << "mine";
  Click("Form1.Report");
  fake.Choices.emplace_back(folder.File("r.pdf"));
  fake.Answers = {Answer::No};
  Click("Report.Save");
  EXPECT_EQ(TakeMessages().size(), 1u);
  EXPECT_TRUE(surface.Reports.empty());
}

TEST_F(Production, WithoutAMeasurementThereIsNoReport) {
  session.Display.SweepCounted = false;
  Click("Form1.Report");
  Click("Report.Save");
  EXPECT_EQ(TakeMessages(), Texts{"Report|nothing has been measured yet (START)|exclamation|ok"});
  EXPECT_TRUE(fake.Dialogs.empty());
}

// The traces of its file are on display, and are no measurement.
TEST_F(Production, OfALoadedSessionThereIsNoReport) {
  Measure();
  fake.Choices.emplace_back(folder.File("a.cal"));
  Click("Form1.SaveCal");
  fake.Choices.emplace_back(folder.File("a.cal"));
  Click("Form1.LoadCal");
  TakeMessages();
  Click("Form1.Report");
  Click("Report.Save");
  EXPECT_EQ(TakeMessages(),
            Texts{"Report|the traces are those of the loaded session: measure first (START)|"
                  "exclamation|ok"});
  fake.Answers = {Answer::No};  // "Keep existing Cal (interpolate new points)?"
  SetSweep("100", "3000", "101");
  Click("Report.Save");
  EXPECT_EQ(TakeMessages().back(), "Report|nothing has been measured yet (START)|exclamation|ok");
}

TEST_F(Production, SessionsAreComparedInTheirWindow) {
  fake.Choices.emplace_back(folder.File("a.cal"));
  Click("Form1.SaveCal");
  session.Averaging.AveragesSet = 16;
  Click("Form1.CompareSessions");
  Type("CompareSessions.First", folder.File("a.cal"));
  Click("CompareSessions.Compare");
  EXPECT_EQ(Value("CompareSessions.Text"),
            "--- " + folder.File("a.cal") + "\n+++ (session in force)\nAverages\n- 1\n+ 16\n");
  Type("CompareSessions.Second", folder.File("none.cal"));
  Click("CompareSessions.Compare");
  EXPECT_EQ(TakeMessages().size(), 1u);
}

TEST_F(Production, AReportOfATimeAxisSaysInTimeWhereLimitsAreTested) {
  Measure();
  session.Channel(1).GraphType = GraphType::Td;
  session.TimeDomain.TdT1 = 1;
  session.TimeDomain.TdStep = 0.5;
  ReportDocument report = MakeReport(program.controller(), {}, {});
  EXPECT_NE(
      Said(report).find("CH1 | 100 MHz | 3000 MHz | -3 dB | -1 dB | 1.0000 ns to 26.0000 ns | "),
      std::string::npos)
      << Said(report);
}

// All points fail, the worst one in the middle.
TEST_F(Production, AReportDistinguishesTheWorstPointFromTheMarkedOne) {
  session.Limits.Alarm = true;
  LowerLimit("-3");
  Bench("attenuator 4");
  Measure();
  session.Channel(1).Value[10] = -9;
  ReportDocument report = MakeReport(program.controller(), {}, {});
  const std::string said = Said(report);
  EXPECT_NE(said.find("CH1 | S21 LogMag | FAIL | -6.000 dB | 622.0000 MHz | 3000.0000 MHz | "),
            std::string::npos)
      << said;
  EXPECT_NE(said.find("The red mark in a graph is at the last point that fails."),
            std::string::npos);
  Bench("attenuator 2");
  Measure();
  report = MakeReport(program.controller(), {}, {});
  EXPECT_EQ(Said(report).find("red mark"), std::string::npos);
  // Without the alarm there is no mark.
  session.Limits.Alarm = false;
  LowerLimit("-3");
  Bench("attenuator 4");
  Measure();
  report = MakeReport(program.controller(), {}, {});
  EXPECT_NE(Said(report).find("CH1 | S21 LogMag | FAIL | -"), std::string::npos);
  EXPECT_EQ(Said(report).find("red mark"), std::string::npos);
}

TEST_F(Production, AReportReportsAMarkerOnAnEarlierSweepAndOnNothing) {
  Measure();
  const std::string now = Said(MakeReport(program.controller(), {}, {}));
  EXPECT_NE(now.find("CH1 S21 | Marker 1 | "), std::string::npos) << now;
  EXPECT_EQ(now.find("not measured by this calibration"), std::string::npos) << now;
  session.Cal.Cal12Term = false;
  session.Cal.CalS11 = true;
  Measure();
  const std::string earlier = Said(MakeReport(program.controller(), {}, {}));
  EXPECT_NE(earlier.find(" dB, not measured by this calibration | "), std::string::npos) << earlier;
  program.graphs().Reset();
  const std::string never = Said(MakeReport(program.controller(), {}, {}));
  const std::size_t at = never.find("CH1 S21 | Marker 1 | ");
  ASSERT_NE(at, std::string::npos) << never;
  EXPECT_NE(never.find(" | --- | ", at), std::string::npos) << never;
}

}  // namespace
}  // namespace qk::test
