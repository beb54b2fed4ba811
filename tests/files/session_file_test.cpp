// SPDX-License-Identifier: MIT
// Session files: what is written reads back, and files of the earlier steps.
#include "files/session_file.h"

#include <gtest/gtest.h>

#include "bytes.h"
#include "random_session.h"
#include "session_text.h"
#include "support/scratch_folder.h"

namespace qk {
namespace {

using namespace test;

// A calibrated session of 51 points, small and in order.
std::unique_ptr<Session> Calibrated() {
  auto session = AnySession(11);
  Session& s = *session;
  const PlanGrid grid{10e6, 60e6, 1e6, 51};
  static_cast<PlanGrid&>(s.Plan) = grid;
  s.Plan.SavedPlan = grid;
  s.Cal.CalDataReady = s.Cal.Cal12Term = true;
  s.Cal.CalS11 = s.Cal.CalS21 = s.Cal.CalS11S21 = false;
  return session;
}

TEST(SessionFile, ReadsBackEveryFieldBitForBit) {
  for (unsigned seed = 1; seed <= 60; ++seed) {
    const auto written = AnySession(seed);
    const auto read = MakeSession();
    const Result<Done> result = ReadSession(SessionBytes(*written), *read);
    ASSERT_TRUE(result.Ok()) << result.Why().Text();
    ExpectSame(*written, *read);
    if (HasFailure()) FAIL() << "seed " << seed;
  }
}

TEST(SessionFile, SavedLoadedAndSavedAgainHasTheSameBytes) {
  for (unsigned seed = 100; seed < 110; ++seed) {
    const std::string first = SessionBytes(*AnySession(seed));
    const auto read = MakeSession();
    ASSERT_TRUE(ReadSession(first, *read).Ok());
    ASSERT_EQ(SessionBytes(*read), first) << seed;
  }
}

TEST(SessionFile, TheDefaultsReadBackToo) {
  const auto session = MakeSession();
  const auto read = AnySession(3);
  ASSERT_TRUE(ReadSession(SessionBytes(*session), *read).Ok());
  EXPECT_EQ(SessionBytes(*read), SessionBytes(*session));
}

// Whatever a session has come to hold, the file that it leaves can be read: nothing is lost.
TEST(SessionFile, OfASessionOutOfItsBoundsReadsBackInsideThem) {
  const auto session = Calibrated();
  Session& s = *session;
  s.Terms.Forward.ED.Set(3, {std::nan(""), HUGE_VAL});
  s.Channel(1).Value[5] = -HUGE_VAL;
  s.Channel(2).RefPosition = 77;
  s.Averaging.AveragesSet = 3000;
  s.Impedance.SystemZo = std::nanf("");
  s.Plan.Port1Level = -99;
  s.Display.PlotRefreshPoints = 0;
  s.Kit1.KitName = std::string(5000, 'k') + "\r\n";
  s.Kit2.KitLoadData[0][3] = HUGE_VALF;
  const auto read = MakeSession();
  const Result<Done> result = ReadSession(SessionBytes(s), *read);
  ASSERT_TRUE(result.Ok()) << result.Why().Text();
  EXPECT_EQ(read->Terms.Forward.ED[3].re, 0);
  EXPECT_EQ(read->Terms.Forward.ED[3].im, std::numeric_limits<double>::max());
  EXPECT_EQ(read->Channel(2).RefPosition, 8);
  EXPECT_EQ(read->Averaging.AveragesSet, 255);
  EXPECT_EQ(read->Impedance.SystemZo, 10);
  EXPECT_EQ(read->Plan.Port1Level, -20);
  EXPECT_EQ(read->Kit1.KitName.size(), 1000u);
}

TEST(SessionFile, BeginsWithItsVersionAndEndsWithEofInQuotes) {
  const std::string text = SessionBytes(*Calibrated());
  EXPECT_EQ(text.rfind("\"calfile02\"\r\n51,", 0), 0u);
  EXPECT_EQ(text.substr(text.size() - 9), "\r\n\"EOF\"\r\n");
}

TEST(SessionFile, Of51PointsHas51OfThemPerArrayAndAlways101InTheKitTables) {
  const Rows rows(51, 51);
  EXPECT_EQ(LinesOf(SessionBytes(*Calibrated())), rows.Last());
  const Rows uneven(51, 1024);
  const auto session = Calibrated();
  session->Plan.SavedPlan = {3e6, 3072e6, 3e6, 1024};
  EXPECT_EQ(LinesOf(SessionBytes(*session)), uneven.Last());
}

TEST(SessionFile, ColoursAreWrittenWithRedInTheLowByte) {
  const auto session = Calibrated();
  session->Colour = Colours();
  session->Colour.DataColour = 0x112233;
  const std::string line = Line(SessionBytes(*session), Rows(51, 51).Colours());
  EXPECT_EQ(line, "16777215,8421504,3351057,32896,0,0,128");
}

TEST(SessionFile, AnyHeaderButTheVersionIsRefusedWithItsMessageAlone) {
  const auto session = AnySession(5);
  const std::string before = SessionBytes(*session);
  for (const char* text : {"", "EOF", "\"calfile01\"\r\n", "\"calfile02 \"\r\n",
                           "\x7F"
                           "ELF\x02",
                           "\"Default\"\r\n#TRUE#\r\n", "\"calfile02"}) {
    const Result<Done> read = ReadSession(text, *session);
    ASSERT_FALSE(read.Ok());
    EXPECT_EQ(read.Why().Text(), "Not a Valid Cal File (invalid header)") << text;
  }
  EXPECT_EQ(SessionBytes(*session), before);
}

TEST(SessionFile, OfTheFirstStepTakesItsTermsAsTheSavedBase) {
  const auto written = Calibrated();
  written->Cal.CalInterpolated = true;
  const Rows rows(51, 51);
  const std::string whole = SessionBytes(*written);
  for (const char* end : {"\"EOF\"\r\n", "EOF", ""}) {
    const auto read = AnySession(7);
    const CalKit former = read->Kit1;
    const auto zoSet = read->MemoryZoSet;
    const Result<Done> result =
        ReadSession(FirstLines(whole, rows.Interpolated() - 1) + end, *read);
    ASSERT_TRUE(result.Ok()) << result.Why().Text();
    EXPECT_FALSE(read->Cal.CalInterpolated);
    ExpectSameGrid(read->Plan.SavedPlan, written->Plan);
    for (const CalArray& array : CalArrays())
      for (const int k : {0, 25, 50})
        EXPECT_EQ(array.In(read->SavedTerms)[k], array.In(written->Terms)[k]) << array.Name;
    EXPECT_EQ(read->Kit1.KitHasThru, former.KitHasThru);
    ExpectBits(read->Kit1.KitThruData, former.KitThruData, "through data of the kit in memory");
    ExpectBits(read->MemoryZoSet, zoSet, "MemoryZoSet");
  }
}

TEST(SessionFile, OfTheSecondStepLeavesTheThroughOfTheKitInMemory) {
  const auto written = Calibrated();
  const Rows rows(51, 51);
  const std::string whole = SessionBytes(*written);
  for (const bool hasThru : {false, true})
    for (const char* end : {"\"EOF\"\r\n", "EOF\r\n", ""}) {
      const auto read = AnySession(7);
      read->Kit1.KitHasThru = hasThru;
      const auto thru = read->Kit1.KitThruData;
      ASSERT_TRUE(ReadSession(FirstLines(whole, rows.HasThru() - 1) + end, *read).Ok());
      EXPECT_EQ(read->Kit1.KitHasThru, hasThru);
      ExpectBits(read->Kit1.KitThruData, thru, "through data");
      EXPECT_EQ(read->Cal.CalInterpolated, written->Cal.CalInterpolated);
      ExpectSameGrid(read->Plan.SavedPlan, written->Plan.SavedPlan);
    }
}

// A file that ends inside a later step has no use for the part of it.
TEST(SessionFile, ThatEndsInsideALaterStepCountsAsWithoutIt) {
  const auto written = Calibrated();
  written->Cal.CalInterpolated = true;
  const Rows rows(51, 51);
  const std::string whole = SessionBytes(*written);
  const auto read = AnySession(7);
  const std::string cut = FirstLines(whole, rows.HasThru() - 3);
  ASSERT_TRUE(ReadSession(cut.substr(0, cut.size() - 4), *read).Ok());
  EXPECT_TRUE(read->Cal.CalInterpolated);  // the doubt stays shown
  EXPECT_EQ(read->SavedTerms.IsoRev2[50], written->Terms.IsoRev2[50]);

  const auto thru = read->Kit1.KitThruData;
  ASSERT_TRUE(ReadSession(FirstLines(whole, rows.HasThru() + 60), *read).Ok());
  ExpectBits(read->Kit1.KitThruData, thru, "through data");
  EXPECT_EQ(read->SavedTerms.IsoRev2[50], written->SavedTerms.IsoRev2[50]);
}

TEST(SessionFile, TheActiveFlagsFollowTheActiveChannelWhateverTheyAreInTheFile) {
  const auto written = Calibrated();
  written->Display.ActiveChannel = 3;
  for (int n = 1; n <= 4; ++n) written->Channel(n).Active = n == 2;
  const auto read = MakeSession();
  ASSERT_TRUE(ReadSession(SessionBytes(*written), *read).Ok());
  for (int n = 1; n <= 4; ++n) EXPECT_EQ(read->Channel(n).Active, n == 3) << n;
}

TEST(SessionFile, ThatEndsInsideTheTracesAtTheSystemImpedanceLeavesThoseOfTheSession) {
  const Rows rows(51, 51);
  const auto written = Calibrated();
  for (const auto trace : {&written->MemoryZoSet.S11, &written->MemoryZoSet.S22})
    trace->Fill({0.5, 0.25});
  const auto read = AnySession(7);
  const auto former = read->MemoryZoSet;
  ASSERT_TRUE(ReadSession(FirstLines(SessionBytes(*written), rows.ZoSet() + 100), *read).Ok());
  ExpectBits(read->MemoryZoSet, former, "MemoryZoSet");
}

TEST(SessionFile, ALoadedCalibrationHasItsThroughReadyForAnyKindButS11) {
  for (int kind = 0; kind < 4; ++kind) {
    const auto written = Calibrated();
    CalState& cal = written->Cal;
    cal.Cal12Term = kind == 0;
    cal.CalS11S21 = kind == 1;
    cal.CalS21 = kind == 2;
    cal.CalS11 = kind == 3;
    const auto read = MakeSession();
    read->Cal.CalThruReady = kind == 3;
    ASSERT_TRUE(ReadSession(SessionBytes(*written), *read).Ok());
    EXPECT_EQ(read->Cal.CalThruReady, kind != 3);
    cal.CalDataReady = false;
    read->Cal.CalThruReady = kind == 3;
    ASSERT_TRUE(ReadSession(SessionBytes(*written), *read).Ok());
    EXPECT_EQ(read->Cal.CalThruReady, kind == 3);
  }
}

TEST(SessionFile, IsReportedWithItsPathLineAndCause) {
  const ScratchFolder scratch;
  std::string text = SessionBytes(*Calibrated());
  text.replace(text.find("51,"), 2, "52");
  Put(scratch.File("a.cal"), text);
  const auto session = MakeSession();
  EXPECT_EQ(LoadSession(scratch.File("a.cal"), *session).Why().Text(),
            scratch.File("a.cal") + ": line 2: NumPoints is not one of its choices");
  EXPECT_EQ(LoadSession(scratch.File("none.cal"), *session).Why().Text(),
            scratch.File("none.cal") + ": cannot be opened: No such file or directory");
  Put(scratch.File("b.cal"), "something else");
  EXPECT_EQ(LoadSession(scratch.File("b.cal"), *session).Why().Text(),
            "Not a Valid Cal File (invalid header)");
  EXPECT_EQ(SaveSession(scratch.Text(), *session).Why().Text(), scratch.Text() + ": is a folder");
}

// ---- The fourth step ---------------------------------------------------------------------------

TEST(SessionFile, WithAFourthStepReadsBackEveryFieldBitForBit) {
  for (unsigned seed = 1; seed <= 10; ++seed) {
    const auto written = AnySession(seed);
    Extend(*written, seed);
    const auto read = MakeSession();
    const std::string bytes = SessionBytes(*written);
    const Result<Done> result = ReadSession(bytes, *read);
    ASSERT_TRUE(result.Ok()) << result.Why().Text();
    ExpectSame(*written, *read);
    EXPECT_EQ(SessionBytes(*read), bytes);
    if (HasFailure()) FAIL() << "seed " << seed;
  }
}

TEST(SessionFile, WithoutAFourthStepTakesAwayWhatItWouldHold) {
  const auto written = Calibrated();
  const auto read = Calibrated();
  Extend(*read, 5);
  ASSERT_TRUE(ReadSession(SessionBytes(*written), *read).Ok());
  EXPECT_EQ(SessionBytes(*read), SessionBytes(*written));
  EXPECT_EQ(read->Display.MemoryNumber, 1);
  EXPECT_FALSE(read->MoreMemories[0].OfChannels[0].Valid);
}

// Each of these alone makes an earlier program refuse the file, with the line and the reason.
TEST(SessionFile, ThatUsesSomethingNewSaysWhereTheKindOfCalibrationStoodThatItNeedsThisVersion) {
  constexpr void (*kUses[])(Session&) = {
      [](Session& s) { s.Channel(2).GraphType = GraphType::Inductance; },
      [](Session& s) { s.Channel(3).Units = Unit::Kilohm; },
      [](Session& s) { s.Channel(1).Element = Element::Shunt; },
      [](Session& s) { s.Channel(4).Grid = ChartGrid::Both; },
      [](Session& s) { s.Channel(4).Gated = true; },
      [](Session& s) { s.Display.MemoryNumber = 3; },
      [](Session& s) { s.Display.MemoryShown[1] = false; },
      [](Session& s) { s.MoreMemories[2].OfChannels[1].Valid = true; },
      [](Session& s) { s.TimeDomain.Axis = TimeAxis::Distance; },
      [](Session& s) { s.TimeDomain.Cable = Cable::Own; },
      [](Session& s) { s.TimeDomain.VelocityFactor = 0.7; },
      [](Session& s) { s.TimeDomain.Gate = GateKind::Notch; },
      [](Session& s) { s.TimeDomain.GateStart = 1; },
      [](Session& s) { s.TimeDomain.GateStop = 6; },
  };
  const std::string plain = SessionBytes(*Calibrated());
  for (const auto& use : kUses) {
    const auto session = Calibrated();
    use(*session);
    const std::string bytes = SessionBytes(*session);
    EXPECT_EQ(Line(bytes, 10), "\"needs version 0.2 or later\"");
    EXPECT_EQ(Line(bytes, 11), Line(plain, 10));
    const auto read = MakeSession();
    ASSERT_TRUE(ReadSession(bytes, *read).Ok());
    EXPECT_EQ(SessionBytes(*read), bytes);
  }
}

TEST(SessionFile, OfALaterVersionIsRefusedWithItsLine) {
  const auto session = Calibrated();
  session->Channel(1).Gated = true;
  std::string bytes = SessionBytes(*session);
  bytes.replace(bytes.find("0.2 or later"), 3, "0.9");
  const auto read = MakeSession();
  EXPECT_EQ(ReadSession(bytes, *read).Why().Message,
            "line 10: 'needs version 0.9 or later' is not one of the words allowed here");
}

// It says that it needs its fourth step: without it the file is damaged, not an earlier one.
TEST(SessionFile, CutAnywhereBehindItsNeedIsRefusedAndChangesNothing) {
  const auto session = Calibrated();
  session->MoreMemories[0].OfChannels[2].Valid = true;
  session->TimeDomain.Gate = GateKind::Gate;
  const std::string whole = SessionBytes(*session);
  const std::string end = "\"EOF\"\r\n";
  const int lines = LinesOf(whole);
  const auto read = AnySession(7);
  const std::string before = SessionBytes(*read);
  const Rows rows(51, 51);
  const int shift = 1;  // of the line that says it
  for (const int kept : {rows.Interpolated() + shift - 1, rows.HasThru() + shift - 1,
                         rows.Last() + shift - 1, rows.Last() + shift + 20, lines - 2})
    for (const std::string& tail : {std::string(), end}) {
      EXPECT_FALSE(ReadSession(FirstLines(whole, kept) + tail, *read).Ok()) << kept << tail;
      EXPECT_TRUE(SessionBytes(*read) == before) << kept;
    }
  EXPECT_TRUE(ReadSession(whole, *read).Ok());
}

}  // namespace
}  // namespace qk
