// SPDX-License-Identifier: MIT
// Markers and limits at another sweep: at the same frequencies, or waiting.
#include <gtest/gtest.h>

#include <random>

#include "display/markers.h"
#include "limits/limit_segments.h"
#include "support/program_fixture.h"

namespace qk::test {
namespace {

struct KeptFixture : ScriptedProgram {
  KeptFixture() { OpenCalibration(); }
  // A sweep by the window; without an instrument nothing has to answer.
  void Sweep(const char* start, const char* stop, const char* points = "101") {
    session.Id.PortNumber = 0;
    Type("Calibration.Text1", start);
    Type("Calibration.Text2", stop);
    Pick("Calibration.PntsCombo", points);
    Click("Calibration.Command1");
    fake.Messages.clear();
  }
  void PutMarkers() {
    session.Display.MarkersOn = true;
    session.Markers.Set(0) = {true, false, true, 31};  // 130 MHz
    session.Markers.Set(1) = {true, true, false, 81};  // 180 MHz
    session.Markers.Set(2) = {false, false, false, 51};
    program.graphs().RedrawAll(false);
  }
  double MarkerHertz(int m) { return session.Plan.Frequency(session.Markers.Of(0, m).Point - 1); }
  void Limit(const char* start, const char* stop, const char* upper, const char* lower, int s = 0) {
    session.Limits.Of(1).Segments[static_cast<std::size_t>(s)] = {start, stop, upper, lower};
    ASSERT_TRUE(ApplyLimits(session, 1));
  }
  // The frequencies, in whole MHz, of the points with limits.
  std::pair<double, double> Limited() {
    double first = 0, last = 0;
    for (int i = 1; i <= session.Plan.NumPoints; ++i)
      if (session.Channel(1).UpperLimit[static_cast<std::size_t>(i)] < kNoUpperLimit) {
        last = session.Plan.Frequency(i - 1) / 1e6;
        if (first == 0) first = last;
      }
    return {first, last};
  }
};

TEST(KeptFrequencies, MarkersStandAtTheSameMegahertzAgain) {
  KeptFixture vna;
  vna.Sweep("100", "200");
  vna.PutMarkers();
  vna.Sweep("120", "220", "201");
  EXPECT_NEAR(vna.MarkerHertz(0), 130e6, 0.25e6);
  EXPECT_NEAR(vna.MarkerHertz(1), 180e6, 0.25e6);
  EXPECT_EQ(vna.session.Markers.Set(0).Point, vna.session.Markers.Of(0, 0).Point);
  for (int graph = 0; graph < 4; ++graph)
    EXPECT_EQ(vna.session.Markers.Of(graph, 0).Point, vna.session.Markers.Of(0, 0).Point);
  // A coarse sweep in between does not wear them off.
  vna.Sweep("10", "3000", "51");
  vna.Sweep("100", "200");
  EXPECT_NEAR(vna.MarkerHertz(0), 130e6, 1);
  EXPECT_NEAR(vna.MarkerHertz(1), 180e6, 1);
}

TEST(KeptFrequencies, AMarkerOutsideWaitsAndComesBack) {
  KeptFixture vna;
  vna.Sweep("100", "200");
  vna.PutMarkers();
  vna.fake.Show("MarkersSet");
  EXPECT_FALSE(vna.At("MarkersSet.Waiting").Shown);
  vna.Sweep("150", "250");
  EXPECT_FALSE(vna.session.Markers.Set(0).Shown);
  EXPECT_TRUE(vna.session.Markers.Set(1).Shown);
  EXPECT_EQ(vna.At("MarkersSet.Waiting").Caption, "Marker 1 waits at 130.0000 MHz");
  vna.fake.Show("MarkersSet");
  EXPECT_EQ(vna.Value("MarkersSet.Text1"), "130.0000") << "no frequency that nobody set";
  vna.program.graphs().RedrawAll(true);
  vna.fake.Show("MarkerTable");
  EXPECT_EQ(vna.At("MarkerTable.Value11").Caption, "waits at 130.0 MHz");
  EXPECT_FALSE(vna.At("MarkerTable.Position11").Enabled);
  vna.Sweep("160", "260");
  EXPECT_FALSE(vna.session.Markers.Set(0).Shown) << "another sweep without it";
  vna.Sweep("1000", "2000", "51");
  vna.program.graphs().RedrawAll(true);  // a marker beyond the points goes to the middle
  vna.Sweep("100", "200");
  EXPECT_TRUE(vna.session.Markers.Set(0).Shown);
  EXPECT_NEAR(vna.MarkerHertz(0), 130e6, 1);
  EXPECT_FALSE(vna.At("MarkersSet.Waiting").Shown);
}

TEST(KeptFrequencies, AMarkerTakenInHandWaitsNoLonger) {
  KeptFixture vna;
  vna.Sweep("100", "200");
  vna.PutMarkers();
  vna.Sweep("150", "250");
  vna.session.Markers.Set(0).Shown = true;
  MoveMarker(vna.session, 0, 11);  // 160 MHz
  vna.program.graphs().RedrawAll(true);
  vna.Sweep("100", "200");
  EXPECT_NEAR(vna.MarkerHertz(0), 160e6, 1);
}

// The frequency that it had waited at is over, also where it is shown at the point that it had.
TEST(KeptFrequencies, AMarkerShownWhereItStoodDoesNotWaitAgain) {
  KeptFixture vna;
  vna.Sweep("100", "200");
  vna.PutMarkers();
  vna.Sweep("150", "250");
  EXPECT_EQ(vna.program.controller().kept().WaitingMarkers(vna.session),
            "Marker 1 waits at 130.0000 MHz");
  vna.session.Markers.Set(0).Shown = true;
  vna.program.graphs().RedrawAll(true);
  EXPECT_EQ(vna.program.controller().kept().WaitingMarkers(vna.session), "");
  const double shownAt = vna.MarkerHertz(0);
  EXPECT_GE(shownAt, 150e6);
  vna.Sweep("160", "260");
  vna.Sweep("150", "250");
  EXPECT_NEAR(vna.MarkerHertz(0), shownAt, 1);
  EXPECT_TRUE(vna.session.Markers.Set(0).Shown);
}

TEST(KeptFrequencies, LimitsStandAtTheirFrequenciesAndNowhereElse) {
  KeptFixture vna;
  vna.Sweep("100", "200");
  vna.Limit("120", "150", "5", "-5");
  EXPECT_EQ(vna.Limited(), std::make_pair(120.0, 150.0));
  vna.Sweep("110", "160");
  EXPECT_GE(vna.Limited().first, 120);
  EXPECT_LT(vna.Limited().first, 120.5);
  EXPECT_LE(vna.Limited().second, 150);
  EXPECT_GT(vna.Limited().second, 149.5);
  vna.Sweep("1000", "2000");
  EXPECT_EQ(vna.Limited().first, 0) << "no verdict where nobody typed a limit";
  vna.Sweep("100", "200");
  EXPECT_EQ(vna.Limited(), std::make_pair(120.0, 150.0));
}

TEST(KeptFrequencies, LimitsThatReachOutOfTheSweepAreReportedInTheirWindow) {
  KeptFixture vna;
  vna.Sweep("100", "200");
  vna.Limit("120", "150", "5", "-5");
  vna.fake.Show("NewLimitsSet");
  EXPECT_FALSE(vna.At("NewLimitsSet.Waiting").Shown);
  vna.Sweep("140", "240");
  EXPECT_EQ(vna.At("NewLimitsSet.Waiting").Caption,
            "CH1: limits from 120.0000 MHz to 150.0000 MHz extend outside the sweep");
  vna.Limit("150", "160", "7", "-7");
  vna.fake.SessionChanged();
  EXPECT_FALSE(vna.At("NewLimitsSet.Waiting").Shown) << "others have taken their place";
  vna.Sweep("100", "200");
  EXPECT_EQ(vna.Limited(), std::make_pair(150.0, 160.0));
}

TEST(KeptFrequencies, ThePartOfTheLimitsThatASweepDoesNotTestIsKnown) {
  KeptFixture vna;
  const auto untested = [&vna] { return vna.program.graphs().UntestedText(0); };
  vna.Sweep("100", "200");
  vna.Limit("120", "150", "5", "-5");
  vna.Limit("120", "150", "5", "-5");
  EXPECT_EQ(untested(), "");
  vna.Sweep("140", "240");
  EXPECT_EQ(untested(), "120.0000 to 140.0000 MHz");
  vna.Sweep("130", "140");
  EXPECT_EQ(untested(), "120.0000 to 130.0000 MHz, 140.0000 to 150.0000 MHz");
  vna.Sweep("200", "300");
  EXPECT_EQ(untested(), "120.0000 to 150.0000 MHz");
  EXPECT_EQ(vna.program.graphs().UntestedText(1), "");
  vna.Sweep("100", "200");
  EXPECT_EQ(untested(), "");
  vna.Sweep("140", "240");
  vna.Limit("150", "160", "7", "-7");
  EXPECT_EQ(untested(), "") << "others have taken their place";
}

TEST(KeptFrequencies, LimitsOnATimeAxisAreReportedInTheirWindow) {
  KeptFixture vna;
  vna.Sweep("100", "200");
  vna.Limit("120", "150", "5", "-5");
  vna.session.TimeDomain.TdT1 = -5;
  vna.session.TimeDomain.TdStep = 0.5;
  vna.fake.Show("NewLimitsSet");
  EXPECT_FALSE(vna.At("NewLimitsSet.Waiting").Shown);
  vna.session.Channel(1).GraphType = GraphType::Td;
  vna.fake.SessionChanged();
  EXPECT_EQ(vna.At("NewLimitsSet.Waiting").Caption,
            "CH1 shows time: limits from 120.0000 MHz to 150.0000 MHz apply from 5.0000 ns to "
            "20.0000 ns");
  EXPECT_TRUE(vna.At("NewLimitsSet.Waiting").Shown);
  vna.session.Channel(1).GraphType = GraphType::LogMag;
  vna.fake.SessionChanged();
  EXPECT_FALSE(vna.At("NewLimitsSet.Waiting").Shown);
}

TEST(KeptFrequencies, LimitsThatSixSegmentsDoNotHoldAreReportedInTheirWindow) {
  KeptFixture vna;
  vna.Sweep("140", "240");
  vna.fake.Show("NewLimitsSet");
  EXPECT_FALSE(vna.At("NewLimitsSet.Waiting").Shown);
  for (std::size_t i = 1; i <= 7; ++i) vna.session.Channel(2).UpperLimit[i] = static_cast<float>(i);
  vna.fake.SessionChanged();
  EXPECT_TRUE(vna.At("NewLimitsSet.Waiting").Shown);
  EXPECT_EQ(vna.At("NewLimitsSet.Waiting").Caption,
            "CH2: more limits than six segments can hold; Apply after a change removes the others");
}

TEST(KeptFrequencies, AFailMarkDoesNotOutliveItsSweep) {
  KeptFixture vna;
  vna.Sweep("100", "200");
  vna.session.Limits.LimitFailed = vna.session.Limits.Of(1).Failed = true;
  vna.fake.Enable(TimerId::Timer3, true);
  vna.Sweep("100", "200");
  EXPECT_TRUE(vna.session.Limits.LimitFailed) << "the same sweep";
  vna.Sweep("100", "210");
  EXPECT_FALSE(vna.session.Limits.LimitFailed);
  EXPECT_FALSE(vna.fake.Enabled(TimerId::Timer3));
}

// Any sweeps, one after the other: no point outside what was typed has a limit, each inside has it,
// and the first sweep finds all as it was.
TEST(KeptFrequencies, ThroughAnySweepsLimitsStayWhereTheyWereTyped) {
  KeptFixture vna;
  std::mt19937 dice(5);
  vna.Sweep("100", "500", "401");
  vna.Limit("150", "200", "3", "-3", 0);
  vna.Limit("300", "301", "2", "-2", 1);
  const ChannelSettings before = vna.session.Channel(1);
  for (int round = 0; round < 40; ++round) {
    const auto start = 50 + dice() % 400;
    const auto span = 20 + dice() % 500;
    const char* points[] = {"51", "101", "201", "401", "801"};
    vna.Sweep(std::to_string(start).c_str(), std::to_string(start + span).c_str(),
              points[dice() % 5]);
    for (int i = 1; i <= vna.session.Plan.NumPoints; ++i) {
      const double mhz = vna.session.Plan.Frequency(i - 1) / 1e6;
      const bool inside = (mhz >= 150 && mhz <= 200) || (mhz >= 300 && mhz <= 301);
      EXPECT_EQ(vna.session.Channel(1).UpperLimit[static_cast<std::size_t>(i)] < kNoUpperLimit,
                inside)
          << mhz;
    }
  }
  vna.Sweep("100", "500", "401");
  EXPECT_EQ(vna.session.Channel(1).UpperLimit, before.UpperLimit);
  EXPECT_EQ(vna.session.Channel(1).LowerLimit, before.LowerLimit);
}

}  // namespace
}  // namespace qk::test
