// SPDX-License-Identifier: MIT
// The link and the reception of the standard sweeps: what becomes of a sweep that fails.
#include <gtest/gtest.h>

#include "cal/standards_fixture.h"

namespace qk {
namespace {

using namespace test;
using Texts = std::vector<std::string>;

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
    Bytes bytes = StandardBytes(bytesPerPoint, 16);
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
        b.port.Feed(StandardBytes(bytesPerPoint, 16), 1, gapMs);
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
      b.port.Feed(StandardBytes(bytesPerPoint, 16));
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
  const int timeout = 16 * 250 + kStandardPoints * 20;
  EXPECT_GT(b.ElapsedMs(), timeout);
  EXPECT_LT(b.ElapsedMs(), timeout + 20);
}

TEST(Reception, TakesAsLongAsBytesKeepComing) {
  StandardFixture b;
  b.Stream = [&b](int, int bytesPerPoint) {
    b.port.Feed(StandardBytes(bytesPerPoint, 16), 4000, 500);  // far slower than the line
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
  b.Stream = [&b](int, int bytesPerPoint) { b.port.Feed(StandardBytes(bytesPerPoint, 16), 1, 1); };
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
                               std::size_t{kStandardPoints * 12 - 1}}) {
    StandardFixture b;
    b.session->Id.FirmwareVersion = "1.2";
    b.session->Averaging.Averages = b.session->Averaging.AveragesSet = 4;
    b.session->Averaging.AverOn = true;
    std::size_t came = 0;
    b.Stream = [&](int, int bytesPerPoint) { b.port.Feed(StandardBytes(bytesPerPoint, 16), 1, 1); };
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
  ASSERT_EQ(points.size(), static_cast<std::size_t>(kStandardPoints));
  for (int k = 0; k < kStandardPoints; ++k) {
    EXPECT_EQ(points[static_cast<std::size_t>(k)], k);
    EXPECT_EQ(s11[static_cast<std::size_t>(k)], b.session->Standards.CalLoad1[k]);
  }
}

TEST(Reception, RepaintsButLetsNoHandlerAndNoTimerRun) {
  StandardFixture b;
  b.Stream = [&b](int, int bytesPerPoint) {
    b.port.Feed(StandardBytes(bytesPerPoint, 16), 100, 10);
  };
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

}  // namespace
}  // namespace qk
