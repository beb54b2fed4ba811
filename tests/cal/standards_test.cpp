// SPDX-License-Identifier: MIT
// The standard sweeps: every prompt, every byte on the wire, where the ratios go, averages, flags
// and isolation.
#include "cal/standards.h"

#include <gtest/gtest.h>

#include "cal/standards_fixture.h"
#include "sweep/settings.h"

namespace qk {
namespace {

using namespace test;
using Texts = std::vector<std::string>;

// ---- the table -------------------------------------------------------------------------------

using Stores = std::map<std::string, StandardCx StandardRatios::*>;

struct Row {
  Standard Which;
  const char* Title;
  const char* Prompt;
  const char* Path;
  const char* Trigger;
  int BytesPerPoint;
  Stores Stored;
};

class StandardTable : public testing::TestWithParam<Row> {};

const Row kTable[] = {
    {Standard::LoadS11, "Load Cal", "Matched Load on Port 1", "YF", "M", 12, {{"CalLoad1", kS11}}},
    {Standard::ShortS11,
     "Short Cal",
     "Short Circuit on Port 1 (5.26mm)",
     "YF",
     "M",
     12,
     {{"CalShort1", kS11}}},
    {Standard::OpenS11,
     "Open Cal",
     "Open Circuit on Port 1 (5.26mm)",
     "YF",
     "M",
     12,
     {{"CalOpen1", kS11}}},
    {Standard::LoadBoth,
     "Load Cal",
     "Matched Load on Port 1",
     "YP",
     "YO",
     18,
     {{"CalLoad1", kS11}}},
    {Standard::ShortBoth,
     "Short Cal",
     "Short Circuit on Port 1 (5.26mm)",
     "YP",
     "YO",
     18,
     {{"CalShort1", kS11}}},
    {Standard::OpenBoth,
     "Open Cal",
     "Open Circuit on Port 1 (5.26mm)",
     "YP",
     "YO",
     18,
     {{"CalOpen1", kS11}}},
    {Standard::LoadInsertable,
     "Load Cal",
     "Matched Load on Ports 1 & 2",
     "YG",
     "A",
     36,
     {{"CalLoad1", kS11}, {"CalLoad2", kS22}, {"EX", kS21}, {"EX'", kS12}}},
    {Standard::ShortInsertable,
     "Short Cal",
     "Short Circuit on Ports 1 and 2 (5.26 / 1.10mm)",
     "YG",
     "A",
     36,
     {{"CalShort1", kS11}, {"CalShort2", kS22}}},
    {Standard::OpenInsertable,
     "Open Cal",
     "Open Circuit on Ports 1 and 2 (5.26 / 1.10mm)",
     "YG",
     "A",
     36,
     {{"CalOpen1", kS11}, {"CalOpen2", kS22}}},
    {Standard::LoadPort1,
     "Load Cal",
     "Matched Load on Port 1",
     "YG",
     "A",
     36,
     {{"CalLoad1", kS11}, {"EX", kS21}}},
    {Standard::LoadPort2,
     "Load Cal",
     "Matched Load on Port 2",
     "YG",
     "A",
     36,
     {{"CalLoad2", kS22}, {"EX'", kS12}}},
    // One kit serves both ports: its offset is named at both.
    {Standard::ShortPort1,
     "Short Cal",
     "Short Circuit on Port 1 (5.26)",
     "YG",
     "A",
     36,
     {{"CalShort1", kS11}}},
    {Standard::ShortPort2,
     "Short Cal",
     "Short Circuit on Port 2 (5.26)",
     "YG",
     "A",
     36,
     {{"CalShort2", kS22}}},
    // Intentional: two blanks before the offset of an open.
    {Standard::OpenPort1,
     "Open Cal",
     "Open Circuit on Port 1  (5.26)",
     "YG",
     "A",
     36,
     {{"CalOpen1", kS11}}},
    {Standard::OpenPort2,
     "Open Cal",
     "Open Circuit on Port 2  (5.26)",
     "YG",
     "A",
     36,
     {{"CalOpen2", kS22}}},
    {Standard::ThruS21, "Through Cal", "Connect Through", "YE", "S", 12, {{"ETT", kS21}}},
    {Standard::ThruBoth,
     "Through Cal",
     "Connect Through",
     "YP",
     "YO",
     18,
     {{"ETT", kS21}, {"CalThruRefl1", kS11}}},
    {Standard::ThruInsertable,
     "Through Cal",
     "Connect Through (0.00 mm)",
     "YG",
     "A",
     36,
     {{"ETT", kS21}, {"ETT'", kS12}, {"CalThruRefl1", kS11}, {"CalThruRefl2", kS22}}},
    {Standard::ThruNonInsertable,
     "Through Cal",
     "Connect through using Through Standard",
     "YG",
     "A",
     36,
     {{"ETT", kS21}, {"ETT'", kS12}, {"CalThruRefl1", kS11}, {"CalThruRefl2", kS22}}},
    {Standard::IsoS21, "Iso Cal", "Terminate Ports 1 & 2", "YE", "S", 12, {{"EX", kS21}}},
    {Standard::IsoBoth, "Iso Cal", "Terminate Ports 1 & 2", "YP", "YO", 18, {{"EX", kS21}}},
};
INSTANTIATE_TEST_SUITE_P(All, StandardTable, testing::ValuesIn(kTable));

TEST_P(StandardTable, AsksSendsAndStoresWhatItsRowSays) {
  const Row& row = GetParam();
  StandardFixture b;
  EXPECT_TRUE(MeasureStandard(b.rig, row.Which));
  EXPECT_EQ(b.Messages(), (Texts{std::string(row.Title) + "|" + row.Prompt + "|information|ok"}));
  EXPECT_EQ(b.port.Writes,
            (std::vector<Bytes>{BytesOf("Q"), BytesOf(row.Path), BytesOf(row.Trigger)}));
  for (const auto& [name, array] : b.arrays) {
    if (row.Stored.contains(name)) {
      b.ExpectHolds(name, row.Stored.at(name), row.BytesPerPoint);
    } else {
      EXPECT_TRUE(b.Untouched(name)) << name;
    }
  }
  EXPECT_FALSE(b.session->Flags.ReplyTimedOut);
}

TEST_P(StandardTable, WithoutALoadedSweepReportsThatUnderItsTitleAndSendsNothing) {
  const Row& row = GetParam();
  StandardFixture b;
  b.session->Flags.SweepLoaded = false;
  EXPECT_FALSE(MeasureStandard(b.rig, row.Which));
  EXPECT_EQ(b.Messages(), (Texts{std::string(row.Title) + "|Sweep Not Set|exclamation|ok"}));
  EXPECT_TRUE(b.port.Writes.empty());
  EXPECT_TRUE(b.AllUntouched());
}

TEST_P(StandardTable, ThatIsCutOffLeavesArraysAndFlagsAsTheyWere) {
  const Row& row = GetParam();
  StandardFixture b;
  b.session->Cal.IsoSweepDone = true;
  b.Stream = [&b](int, int bytesPerPoint) {
    Bytes bytes = StandardBytes(bytesPerPoint, 16);
    bytes.pop_back();
    b.port.Feed(bytes);
  };
  EXPECT_FALSE(MeasureStandard(b.rig, row.Which));
  EXPECT_EQ(b.Messages(), (Texts{std::string(row.Title) + "|" + row.Prompt + "|information|ok",
                                 std::string(row.Title) + "|No Response|critical|ok"}));
  EXPECT_TRUE(b.AllUntouched());
  EXPECT_TRUE(b.session->Flags.ReplyTimedOut);
  EXPECT_TRUE(b.Cal().IsoSweepDone);
  EXPECT_FALSE(b.Cal().CalThruReady);
}

// ---- averages --------------------------------------------------------------------------------

TEST(StandardAverages, Of4AreRaisedTo16AndSentBackAs4) {
  StandardFixture b;
  b.session->Averaging.Averages = 4;
  EXPECT_TRUE(MeasureStandard(b.rig, Standard::LoadS11));
  EXPECT_EQ(b.port.Writes, (std::vector<Bytes>{BytesOf("Q"),
                                               {'Y', '8', 16},
                                               BytesOf("Q"),
                                               BytesOf("YF"),
                                               BytesOf("M"),
                                               BytesOf("Q"),
                                               {'Y', '8', 4}}));
  EXPECT_EQ(b.session->Averaging.Averages, 4);
  b.ExpectHolds("CalLoad1", kS11, 12);  // reduced by the 16 that were measured
}

TEST(StandardAverages, Of16AndMoreStay) {
  for (const int averages : {16, 32, 255}) {
    StandardFixture b;
    b.session->Averaging.Averages = static_cast<std::int16_t>(averages);
    EXPECT_TRUE(MeasureStandard(b.rig, Standard::LoadS11));
    EXPECT_EQ(b.instrument.CountOf("Y8"), 0u);
    EXPECT_EQ(b.session->Averaging.Averages, averages);
    b.ExpectHolds("CalLoad1", kS11, 12);
  }
}

TEST(StandardAverages, AreSentBackAfterASweepThatFailed) {
  StandardFixture b;
  b.session->Averaging.Averages = 1;
  b.Stream = [](int, int) {};
  EXPECT_FALSE(MeasureStandard(b.rig, Standard::OpenS11));
  EXPECT_EQ(b.port.Writes.back(), (Bytes{'Y', '8', 1}));
  EXPECT_EQ(b.session->Averaging.Averages, 1);
}

// The instrument never took the 16: its own count stays the one that samples are divided by.
TEST(StandardAverages, ThatCouldNotBeSentAreNotCountedOn) {
  StandardFixture b;
  b.session->Averaging.Averages = 4;
  b.instrument.Silent = true;
  EXPECT_FALSE(MeasureStandard(b.rig, Standard::LoadS11));
  EXPECT_EQ(b.Messages(),
            (Texts{"Set Averages|No Response|exclamation|ok", "Load Cal|No Response|critical|ok"}));
  EXPECT_EQ(b.session->Averaging.Averages, 4);
  EXPECT_EQ(b.instrument.CountOf("Y8"), 0u);
}

// Intentional: an instrument that took the 16 and then falls silent keeps them, and so does the
// session: samples are divided by what was added up.
TEST(StandardAverages, StayAt16WhereTheLinkFailsBetweenThemAndTheSweep) {
  StandardFixture b;
  b.session->Averaging.Averages = 4;
  const auto inner = b.port.OnWrite;
  b.port.OnWrite = [&b, inner](const Bytes& bytes) {
    inner(bytes);
    if (b.instrument.CountOf("Y8") == 1) b.instrument.Silent = true;
  };
  EXPECT_FALSE(MeasureStandard(b.rig, Standard::LoadS11));
  EXPECT_EQ(b.Messages(), (Texts{"Load Cal|No Response|critical|ok"}));
  EXPECT_EQ(b.instrument.CountOf("Y8"), 1u);
  EXPECT_EQ(b.session->Averaging.Averages, 16);
  EXPECT_TRUE(b.AllUntouched());
}

TEST(StandardAverages, StayAt16WhereTheyCannotBeSentBack) {
  StandardFixture b;
  b.session->Averaging.Averages = 4;
  b.Stream = [&b](int, int) { b.instrument.Silent = true; };
  EXPECT_FALSE(MeasureStandard(b.rig, Standard::LoadS11));
  EXPECT_EQ(b.session->Averaging.Averages, 16);
  EXPECT_EQ(b.instrument.CountOf("Y8"), 1u);
  // The next START sends the chosen count first.
  EXPECT_TRUE(b.session->Flags.AveragesChangeDue);
  EXPECT_TRUE(b.session->Flags.AveragesOffDue);
  EXPECT_EQ(WantedAverages(*b.session), 1);
}

TEST(StandardAverages, ThatCannotBeSentBackStayDueAsTheyWereChosen) {
  StandardFixture b;
  b.session->Averaging.Averages = 4;
  b.session->Averaging.AveragesSet = 4;
  b.session->Averaging.AverOn = true;
  b.Stream = [&b](int, int) { b.instrument.Silent = true; };
  EXPECT_FALSE(MeasureStandard(b.rig, Standard::LoadS11));
  EXPECT_EQ(b.session->Averaging.Averages, 16);
  EXPECT_TRUE(b.session->Flags.AveragesChangeDue);
  EXPECT_FALSE(b.session->Flags.AveragesOffDue);
  EXPECT_EQ(WantedAverages(*b.session), 4);
}

// ---- flags -----------------------------------------------------------------------------------

TEST(StandardFlags, EveryThroughMakesTheThroughReadyAndTakesTheIsolationBack) {
  for (const Standard through : {Standard::ThruS21, Standard::ThruBoth, Standard::ThruInsertable,
                                 Standard::ThruNonInsertable}) {
    StandardFixture b;
    b.session->Cal.IsoSweepDone = true;
    EXPECT_TRUE(MeasureStandard(b.rig, through));
    EXPECT_TRUE(b.Cal().CalThruReady);
    EXPECT_FALSE(b.Cal().IsoSweepDone);
  }
}

TEST(StandardFlags, EveryIsolationSweepIsRemembered) {
  for (const Standard isolation : {Standard::IsoS21, Standard::IsoBoth, Standard::IsoInsertable}) {
    StandardFixture b;
    b.session->Cal.IsoMethod = IsoMethod::OneSweep;
    EXPECT_TRUE(MeasureStandard(b.rig, isolation));
    EXPECT_TRUE(b.Cal().IsoSweepDone);
    EXPECT_FALSE(b.Cal().CalThruReady);
  }
}

TEST(StandardFlags, AReflectionChangesNone) {
  StandardFixture b;
  EXPECT_TRUE(MeasureStandard(b.rig, Standard::LoadInsertable));
  EXPECT_FALSE(b.Cal().IsoSweepDone);
  EXPECT_FALSE(b.Cal().CalThruReady);
  EXPECT_FALSE(b.Cal().CalDataReady);
}

// ---- isolation of an insertable device -------------------------------------------------------

TEST(IsoInsertable, ByTheBasicMethodMeasuresNothing) {
  StandardFixture b;
  EXPECT_TRUE(MeasureStandard(b.rig, Standard::IsoInsertable));
  EXPECT_TRUE(b.Messages().empty());
  EXPECT_TRUE(b.port.Writes.empty());
  EXPECT_TRUE(b.AllUntouched());
}

TEST(IsoInsertable, ByMethod1TakesOneSweepWithTheDeviceOnBothPorts) {
  StandardFixture b;
  b.session->Cal.IsoMethod = IsoMethod::OneSweep;
  EXPECT_TRUE(MeasureStandard(b.rig, Standard::IsoInsertable));
  EXPECT_EQ(b.Messages(), (Texts{"Iso Cal|DUT on Port 1, DUT on Port 2 |information|ok"}));
  EXPECT_EQ(b.instrument.Names(), (Texts{"YG", "A"}));
  b.ExpectHolds("CalDutRefl1", kS11, 36);
  b.ExpectHolds("IsoFwd1", kS21, 36);
  b.ExpectHolds("CalDutRefl2", kS22, 36);
  b.ExpectHolds("IsoRev1", kS12, 36);
  for (const char* name : {"IsoFwd2", "IsoRev2", "EX", "EX'"}) EXPECT_TRUE(b.Untouched(name));
}

TEST(IsoInsertable, ByMethod2TakesTwoSweepsWithALoadOnTheOtherPort) {
  StandardFixture b;
  b.session->Cal.IsoMethod = IsoMethod::TwoSweeps;
  b.session->Averaging.Averages = 4;
  EXPECT_TRUE(MeasureStandard(b.rig, Standard::IsoInsertable));
  EXPECT_EQ(b.Messages(), (Texts{"Iso Cal|DUT on Port 1, Matched load on Port 2 |information|ok",
                                 "Iso Cal|Matched load on Port 1, DUT on Port 2 |information|ok"}));
  EXPECT_EQ(b.instrument.Names(), (Texts{"Y8\x10", "YG", "A", "YG", "A", "Y8\x04"}));
  b.ExpectHolds("CalDutRefl1", kS11, 36, 0);
  b.ExpectHolds("IsoFwd1", kS21, 36, 0);
  b.ExpectHolds("IsoRev1", kS12, 36, 0);
  b.ExpectHolds("IsoFwd2", kS21, 36, 1);
  b.ExpectHolds("IsoRev2", kS12, 36, 1);
  b.ExpectHolds("CalDutRefl2", kS22, 36, 1);  // the load's of the first sweep is overwritten
}

TEST(IsoInsertable, AsksForNoSecondSweepAfterAFirstThatFailed) {
  StandardFixture b;
  b.session->Cal.IsoMethod = IsoMethod::TwoSweeps;
  b.Stream = [](int, int) {};
  EXPECT_FALSE(MeasureStandard(b.rig, Standard::IsoInsertable));
  EXPECT_EQ(b.Messages(), (Texts{"Iso Cal|DUT on Port 1, Matched load on Port 2 |information|ok",
                                 "Iso Cal|No Response|critical|ok"}));
  EXPECT_TRUE(b.AllUntouched());
  EXPECT_FALSE(b.Cal().IsoSweepDone);
}

TEST(IsoInsertable, KeepsTheFirstSweepWhenTheSecondFails) {
  StandardFixture b;
  b.session->Cal.IsoMethod = IsoMethod::TwoSweeps;
  b.Stream = [&b](int sweep, int bytesPerPoint) {
    if (sweep == 0) b.port.Feed(StandardBytes(bytesPerPoint, 16));
  };
  EXPECT_FALSE(MeasureStandard(b.rig, Standard::IsoInsertable));
  b.ExpectHolds("IsoFwd1", kS21, 36);
  EXPECT_TRUE(b.Untouched("IsoFwd2"));
  EXPECT_FALSE(b.Cal().IsoSweepDone);
}

TEST(IsoInsertable, ReportsAMissingSweepUnderItsTitle) {
  StandardFixture b;
  b.session->Cal.IsoMethod = IsoMethod::OneSweep;
  b.session->Flags.SweepLoaded = false;
  EXPECT_FALSE(MeasureStandard(b.rig, Standard::IsoInsertable));
  EXPECT_EQ(b.Messages(), (Texts{"Iso Cal|Sweep Not Set|exclamation|ok"}));
}

// ---- plans of all sizes ----------------------------------------------------------------------

TEST(StandardSize, AFullSweepOfAllFourAt1024PointsGoesThrough) {
  StandardFixture b;
  b.session->Plan.NumPoints = 1024;
  b.Stream = [&b](int, int bytesPerPoint) {
    b.port.Feed(Bytes(static_cast<std::size_t>(1024 * bytesPerPoint), 0x0A));
  };
  EXPECT_TRUE(MeasureStandard(b.rig, Standard::LoadInsertable));
  EXPECT_FALSE(b.session->Standards.CalLoad2[1023] == kUntouched);
}

}  // namespace
}  // namespace qk
