// SPDX-License-Identifier: MIT
// The standard sweeps: every prompt, every byte on the wire, where the ratios go, and what becomes
// of a sweep that fails.
#include "cal/standards.h"
#include "sweep/settings.h"

#include <gtest/gtest.h>

#include <complex>
#include <functional>
#include <map>

#include "support/link_fixture.h"

namespace qk {
namespace {

using namespace test;
using Texts = std::vector<std::string>;
using Cx = std::complex<double>;

constexpr int kPoints = 51;
constexpr Complex kUntouched{-7, -7};

// The bytes of some sweep: sample n (from 0) of point k, as the instrument adds them up.
Bytes SweepBytes(int bytesPerPoint, int averages, int seed = 0) {
  Bytes bytes;
  for (int k = 0; k < kPoints; ++k)
    for (int n = 0; n < bytesPerPoint / 3; ++n) {
      const int counts = averages * (20000 + (k * 131 + n * 4099 + seed * 977) % 30000);
      for (const int shift : {16, 8, 0})
        bytes.push_back(static_cast<std::uint8_t>(counts >> shift));
    }
  return bytes;
}

// The ratios that those bytes encode, by the receiver's own rules.
struct Ratios {
  Cx S11, S21, S12, S22;
};
Ratios RatiosAt(int bytesPerPoint, int k, const ReceiverState& rx, int seed = 0) {
  const auto volts = [&](int n) {
    return (20000 + (k * 131 + n * 4099 + seed * 977) % 30000) / 65535.0 * 4.999924 - 2.5;
  };
  const auto ratio = [&](int refI, int testI, int refQ, int testQ) {
    return Cx(volts(testI) - rx.DcOffsetQ, volts(testQ) - rx.DcOffsetQ) /
           Cx(volts(refI) - rx.DcOffsetI, volts(refQ) - rx.DcOffsetI);
  };
  if (bytesPerPoint == 12) return {ratio(0, 1, 2, 3), ratio(0, 1, 2, 3), 0, 0};
  return {ratio(0, 2, 3, 5), ratio(0, 1, 3, 4), ratio(6, 8, 9, 11), ratio(6, 7, 9, 10)};
}

struct StandardFixture : ScriptedLink {
  ScriptedInstrument instrument{port};
  std::map<std::string, ComplexArray*> arrays;
  // What the instrument streams after its nth trigger (from 0), given the command's bytes a point.
  std::function<void(int sweep, int bytesPerPoint)> Stream = [this](int sweep, int bytesPerPoint) {
    port.Feed(SweepBytes(bytesPerPoint, session->Averaging.Averages, sweep));
  };

  StandardFixture() {
    session->Plan.NumPoints = kPoints;
    session->Flags.SweepLoaded = true;
    session->Averaging.Averages = 16;
    session->Receiver.DcOffsetI = 0.01;
    session->Receiver.DcOffsetQ = -0.02;
    session->Kit1.KitOffset = 0.00526f;
    session->Kit2.KitOffset = 0.0011f;
    StandardsMeasured& m = session->Standards;
    ErrorTerms& t = session->Terms;
    arrays = {{"CalLoad1", &m.CalLoad1},
              {"CalShort1", &m.CalShort1},
              {"CalOpen1", &m.CalOpen1},
              {"CalLoad2", &m.CalLoad2},
              {"CalShort2", &m.CalShort2},
              {"CalOpen2", &m.CalOpen2},
              {"CalThruRefl1", &m.CalThruRefl1},
              {"CalThruRefl2", &m.CalThruRefl2},
              {"CalDutRefl1", &m.CalDutRefl1},
              {"CalDutRefl2", &m.CalDutRefl2},
              {"EX", &t.Forward.EX},
              {"EX'", &t.Reverse.EX},
              {"ETT", &t.Forward.ETT},
              {"ETT'", &t.Reverse.ETT},
              {"IsoFwd1", &t.IsoFwd1},
              {"IsoFwd2", &t.IsoFwd2},
              {"IsoRev1", &t.IsoRev1},
              {"IsoRev2", &t.IsoRev2}};
    for (auto& [name, array] : arrays) array->Fill(kUntouched);
    const auto inner = port.OnWrite;
    port.OnWrite = [this, inner](const Bytes& bytes) {
      const std::size_t before = instrument.Commands.size();
      inner(bytes);
      for (std::size_t i = before; i < instrument.Commands.size(); ++i)
        AfterCommand(instrument.Commands[i]);
    };
  }

  bool Untouched(const std::string& name) const {
    for (int k = 0; k < kMaxPoints; ++k)
      if (!((*arrays.at(name))[k] == kUntouched)) return false;
    return true;
  }
  bool AllUntouched() const {
    for (const auto& [name, array] : arrays)
      if (!Untouched(name)) return false;
    return true;
  }
  void ExpectHolds(const std::string& name, Cx Ratios::*ratio, int bytesPerPoint, int sweep = 0) {
    for (const int k : {0, 1, 25, kPoints - 1}) {
      const Complex z = (*arrays.at(name))[k];
      const Cx truth = RatiosAt(bytesPerPoint, k, session->Receiver, sweep).*ratio;
      EXPECT_LT(std::abs(Cx(z.re, z.im) - truth), 1e-9) << name << " " << k;
    }
    EXPECT_EQ((*arrays.at(name))[kPoints], kUntouched) << name;
  }
  Texts Messages() const { return fake.MessageTexts(); }
  const CalState& Cal() const { return session->Cal; }

 private:
  void AfterCommand(const Bytes& command) {
    const std::string name(command.begin(), command.end());
    const std::map<std::string, int> triggers{{"M", 12}, {"S", 12}, {"YO", 18}, {"A", 36}};
    if (triggers.contains(name)) Stream(sweeps_++, triggers.at(name));
  }
  int sweeps_ = 0;
};

// ---- the table -------------------------------------------------------------------------------

using Stores = std::map<std::string, Cx Ratios::*>;
const auto kS11 = &Ratios::S11;
const auto kS21 = &Ratios::S21;
const auto kS12 = &Ratios::S12;
const auto kS22 = &Ratios::S22;

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
    Bytes bytes = SweepBytes(bytesPerPoint, 16);
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

// ---- the link --------------------------------------------------------------------------------

TEST(StandardLink, ASilentInstrumentIsReportedBeforeAnythingIsConnected) {
  StandardFixture b;
  b.instrument.Silent = true;
  EXPECT_FALSE(MeasureStandard(b.rig, Standard::ShortInsertable));
  EXPECT_EQ(b.Messages(), (Texts{"Short Cal|No Response|critical|ok"}));
  EXPECT_EQ(b.port.Writes, (std::vector<Bytes>{BytesOf("Q")}));
}

TEST(StandardLink, AWrongAnswerIsNoSignOfLife) {
  StandardFixture b;
  b.instrument.Status = "X";
  EXPECT_FALSE(MeasureStandard(b.rig, Standard::ShortS11));
  EXPECT_EQ(b.Messages(), (Texts{"Short Cal|No Response|critical|ok"}));
}

TEST(StandardLink, AClosedPortIsOpened) {
  StandardFixture b;
  b.port.Close();
  EXPECT_TRUE(MeasureStandard(b.rig, Standard::LoadS11));
  EXPECT_EQ(b.port.Opened, (std::vector<int>{1}));
}

TEST(StandardLink, ThePathIsChosenAfterTheUserHasConnectedTheStandard) {
  StandardFixture b;
  b.fake.OnAsk = [&b](const Message&) { EXPECT_EQ(b.instrument.CountOf("Y"), 0u); };
  EXPECT_TRUE(MeasureStandard(b.rig, Standard::LoadInsertable));
}

// The tail of a broken sweep arrives while the user connects the standard.
TEST(StandardLink, StaleBytesAreDroppedBeforeTheTrigger) {
  StandardFixture b;
  b.fake.OnAsk = [&b](const Message&) {
    b.port.Feed(Bytes(100, 0xAA));
    b.clock.AdvanceMs(1000);
  };
  EXPECT_TRUE(MeasureStandard(b.rig, Standard::LoadS11));
  b.ExpectHolds("CalLoad1", kS11, 12);
}

TEST(StandardLink, APortPulledOutDuringTheSweepEndsItAtOnce) {
  StandardFixture b;
  b.Stream = [&b](int, int bytesPerPoint) {
    Bytes bytes = SweepBytes(bytesPerPoint, 16);
    bytes.resize(bytes.size() / 2);
    b.port.Feed(bytes);
    b.fake.OnBreathe = [&b] { b.port.Unplug(); };
  };
  b.StartWatch();
  EXPECT_FALSE(MeasureStandard(b.rig, Standard::ThruInsertable));
  EXPECT_LT(b.ElapsedMs(), 100);
  EXPECT_EQ(b.Messages().back(), "Through Cal|No Response|critical|ok");
  EXPECT_TRUE(b.AllUntouched());
}

TEST(StandardLink, ALostByteIsATimeOut) {
  StandardFixture b;
  b.port.Fault = test::Fault{FaultKind::Cut, 100};
  EXPECT_FALSE(MeasureStandard(b.rig, Standard::LoadS11));
  EXPECT_TRUE(b.session->Flags.ReplyTimedOut);
  EXPECT_EQ(b.Messages().back(), "Load Cal|No Response|critical|ok");
  EXPECT_TRUE(b.AllUntouched());
}

TEST(StandardLink, AByteTooManySpoilsTheStandardWhereverItStands) {
  // Byte 0 answers the link check; the 612 bytes of the sweep follow.
  for (const std::size_t at : {1, 7, 100, 611, 612}) {
    for (const int gapMs : {0, 2}) {
      StandardFixture b;
      b.port.Fault = test::Fault{FaultKind::Double, at};
      b.Stream = [&b, gapMs](int, int bytesPerPoint) {
        b.port.Feed(SweepBytes(bytesPerPoint, 16), 1, gapMs);
      };
      EXPECT_FALSE(MeasureStandard(b.rig, Standard::ShortS11)) << at;
      EXPECT_TRUE(b.AllUntouched()) << at;
      // The prompt alone: nothing stops the user, the window's line says what to measure again.
      EXPECT_EQ(b.Messages(), Texts{"Short Cal|Short Circuit on Port 1 (5.26mm)|information|ok"});
      EXPECT_EQ(b.port.InBufferCount(), 0u) << at;
    }
  }
}

TEST(StandardLink, AByteTooManyShortlyBehindTheLastSpoilsItToo) {
  for (const int lateMs : {1, 10, 19}) {
    StandardFixture b;
    b.Stream = [&b, lateMs](int, int bytesPerPoint) {
      b.port.Feed(SweepBytes(bytesPerPoint, 16));
      b.port.Feed({0x55}, lateMs);
    };
    EXPECT_FALSE(MeasureStandard(b.rig, Standard::ThruInsertable)) << lateMs;
    EXPECT_TRUE(b.AllUntouched()) << lateMs;
    EXPECT_FALSE(b.Cal().CalThruReady);
  }
}

// ---- reception -------------------------------------------------------------------------------

TEST(Reception, IsIdleTimedAtAQuarterSecondAnAverageAnd20msAPoint) {
  StandardFixture b;
  b.Stream = [](int, int) {};
  b.StartWatch();
  EXPECT_FALSE(MeasureStandard(b.rig, Standard::LoadS11));
  const int timeout = 16 * 250 + kPoints * 20;
  EXPECT_GT(b.ElapsedMs(), timeout);
  EXPECT_LT(b.ElapsedMs(), timeout + 20);
}

TEST(Reception, TakesAsLongAsBytesKeepComing) {
  StandardFixture b;
  b.Stream = [&b](int, int bytesPerPoint) {
    b.port.Feed(SweepBytes(bytesPerPoint, 16), 4000, 500);  // far slower than the line
  };
  b.StartWatch();
  EXPECT_TRUE(MeasureStandard(b.rig, Standard::LoadS11));
  EXPECT_GT(b.ElapsedMs(), 300000);
  b.ExpectHolds("CalLoad1", kS11, 12);
}

TEST(Reception, EndsAtASingleGapBeyondTheTimeOut) {
  StandardFixture b;
  b.port.Fault = test::Fault{FaultKind::Late, 300, 5100};
  EXPECT_FALSE(MeasureStandard(b.rig, Standard::LoadS11));
  EXPECT_TRUE(b.AllUntouched());
}

TEST(Reception, MovesTheBarFrom0To100AndNeverBack) {
  StandardFixture b;
  b.Stream = [&b](int, int bytesPerPoint) { b.port.Feed(SweepBytes(bytesPerPoint, 16), 1, 1); };
  std::vector<int> bar;
  EXPECT_TRUE(
      MeasureStandard(b.rig, Standard::LoadS11, Progress([&bar](int p) { bar.push_back(p); })));
  ASSERT_GT(bar.size(), 50u);
  EXPECT_EQ(bar.front(), 0);
  EXPECT_EQ(bar.back(), 100);
  for (std::size_t i = 1; i < bar.size(); ++i) EXPECT_GT(bar[i], bar[i - 1]);
}

// As STOP: between five bytes and two short of the whole an abort goes out, else the sweep runs
// out.
TEST(Cancelling, EndsAStandardAsStopEndsASweep) {
  for (const std::size_t at : {std::size_t{0}, std::size_t{3}, std::size_t{5}, std::size_t{300},
                               std::size_t{kPoints * 12 - 1}}) {
    StandardFixture b;
    b.session->Id.FirmwareVersion = "1.2";
    b.session->Averaging.Averages = b.session->Averaging.AveragesSet = 4;
    b.session->Averaging.AverOn = true;
    std::size_t came = 0;
    b.Stream = [&](int, int bytesPerPoint) { b.port.Feed(SweepBytes(bytesPerPoint, 16), 1, 1); };
    SweepWatch watch;
    watch.Point = [&](int, const RawPoint&) { ++came; };
    watch.Cancelled = [&] { return came * 12 >= at; };
    EXPECT_FALSE(MeasureStandard(b.rig, Standard::LoadS11, watch)) << at;
    EXPECT_TRUE(b.AllUntouched()) << at;
    EXPECT_EQ(b.fake.MessageTexts().size(), 1u) << at << ": the prompt alone";
    EXPECT_EQ(b.session->Averaging.Averages, 4) << at;
    EXPECT_EQ(std::ranges::count(b.instrument.Commands, Bytes{0x4F}), at < 600 ? 1 : 0) << at;
  }
}

TEST(Cancelling, ReportsThePointsAsTheyCome) {
  StandardFixture b;
  std::vector<int> points;
  std::vector<Complex> s11;
  int begun = 0;
  SweepWatch watch;
  watch.Begins = [&](const StandardSweep&) { ++begun; };
  watch.Point = [&](int k, const RawPoint& raw) {
    points.push_back(k);
    s11.push_back(raw.S11);
  };
  EXPECT_TRUE(MeasureStandard(b.rig, Standard::LoadS11, watch));
  EXPECT_EQ(begun, 1);
  ASSERT_EQ(points.size(), static_cast<std::size_t>(kPoints));
  for (int k = 0; k < kPoints; ++k) {
    EXPECT_EQ(points[static_cast<std::size_t>(k)], k);
    EXPECT_EQ(s11[static_cast<std::size_t>(k)], b.session->Standards.CalLoad1[k]);
  }
}

TEST(Reception, RepaintsButLetsNoHandlerAndNoTimerRun) {
  StandardFixture b;
  b.Stream = [&b](int, int bytesPerPoint) { b.port.Feed(SweepBytes(bytesPerPoint, 16), 100, 10); };
  int breaths = 0;
  b.fake.OnBreathe = [&breaths] { ++breaths; };
  b.fake.OnTick = [](TimerId) { ADD_FAILURE() << "a timer ticked inside a reception"; };
  b.fake.SetInterval(TimerId::Timer1, 100);
  b.fake.Enable(TimerId::Timer1, true);
  EXPECT_TRUE(MeasureStandard(b.rig, Standard::LoadS11));
  EXPECT_GT(breaths, 100);
  EXPECT_EQ(b.fake.EventRuns, 0);
}

TEST(Reception, GivesWhatCameWhenItTimesOut) {
  StandardFixture b;
  b.rig.link.EnsurePortOpen();
  b.port.Feed(Bytes(10, 1));
  EXPECT_EQ(ReceiveCalData(b.rig, 36, 100).size(), 10u);
  EXPECT_TRUE(b.session->Flags.ReplyTimedOut);
  b.port.Feed(Bytes(36, 1));
  EXPECT_EQ(ReceiveCalData(b.rig, 36, 100).size(), 36u);
  EXPECT_FALSE(b.session->Flags.ReplyTimedOut);
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
    if (sweep == 0) b.port.Feed(SweepBytes(bytesPerPoint, 16));
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
