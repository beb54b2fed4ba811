// SPDX-License-Identifier: MIT
// The instrument behind the program's port interface, on a clock that only sleeping moves.
#include "sim/simulated_port.h"

#include "sim/talker.h"

namespace qk::sim::test {
namespace {

constexpr double kBytesASecond = 11520;

struct OnPort {
  explicit OnPort(Pace pace, InstrumentOptions options = {}, int com = 1)
      : Box(options), Port(Box, Clock.Port(), pace, com) {
    Port.SetPort(com);
  }

  MovedClock Clock;
  Instrument Box;
  SimulatedPort Port;

  void Write(const Bytes& bytes) { Port.Write(bytes); }
  void Write(std::string_view text) { Write(Bytes(text.begin(), text.end())); }
  // Reads until count bytes have come or nothing has for idleMs.
  Bytes Read(std::size_t count, int idleMs = 1000) {
    Bytes got;
    while (got.size() < count && Port.WaitForInput(idleMs)) Port.Input(got);
    return got;
  }
  std::string ReadText(std::size_t count) {
    const Bytes got = Read(count);
    return {got.begin(), got.end()};
  }
  void LoadPoints(int n) {
    Write({'W', 2, 0, 0, static_cast<std::uint8_t>(n / 256), static_cast<std::uint8_t>(n % 256)});
    Write("Q");
    ASSERT_EQ(Read(1).size(), 1u);
  }
  double SecondsFor(std::string_view trigger, std::size_t count) {
    const std::int64_t before = Clock.Us;
    Write(trigger);
    EXPECT_EQ(Read(count).size(), count);
    return static_cast<double>(Clock.Us - before) * 1e-6;
  }
};

TEST(SimulatedPort, OpensOnItsOwnNumberOnly) {
  OnPort p(Pace::Unpaced, {}, 16);
  for (int com = 1; com <= 15; ++com) {
    p.Port.SetPort(com);
    EXPECT_FALSE(p.Port.Open()) << com;
    EXPECT_FALSE(p.Port.IsOpen());
  }
  p.Port.SetPort(16);
  EXPECT_TRUE(p.Port.Open());
  EXPECT_TRUE(p.Port.Open()) << "opening an open port is harmless";
  EXPECT_TRUE(p.Port.IsOpen());
  p.Port.SetPort(3);  // only while closed
  EXPECT_TRUE(p.Port.IsOpen());
  p.Port.Close();
  EXPECT_FALSE(p.Port.IsOpen());
  EXPECT_TRUE(p.Port.Open());
}

TEST(SimulatedPort, KeepsTheLineSettings) {
  OnPort p(Pace::Unpaced);
  LineSettings settings;
  settings.ReceiveBuffer = 32512;
  p.Port.SetLine(settings);
  EXPECT_EQ(p.Port.Line().ReceiveBuffer, 32512);
}

TEST(SimulatedPort, ExchangesAtOnceWithoutPace) {
  OnPort p(Pace::Unpaced);
  ASSERT_TRUE(p.Port.Open());
  const std::int64_t before = p.Clock.Us;
  p.Write("*IDN?");
  EXPECT_EQ(p.Port.InBufferCount(), 12u);
  EXPECT_EQ(p.ReadText(12).substr(0, 10), "QK47-20-09");
  EXPECT_EQ(p.Port.InBufferCount(), 0u);
  EXPECT_EQ(p.Clock.Us, before);
}

TEST(SimulatedPort, SleepsTheWholeWaitWhenNothingComes) {
  for (Pace pace : {Pace::Unpaced, Pace::Baud115200}) {
    OnPort p(pace);
    ASSERT_TRUE(p.Port.Open());
    const std::int64_t before = p.Clock.Us;
    EXPECT_FALSE(p.Port.WaitForInput(250));
    EXPECT_EQ(p.Clock.Us - before, 250'000);
    p.Port.Close();
    EXPECT_FALSE(p.Port.WaitForInput(10)) << "on a closed port too";
    EXPECT_EQ(p.Clock.Us - before, 260'000);
  }
}

TEST(SimulatedPort, WakesWithTheFirstByte) {
  OnPort p(Pace::Baud115200);
  ASSERT_TRUE(p.Port.Open());
  const std::int64_t before = p.Clock.Us;
  p.Write("Q");
  EXPECT_TRUE(p.Port.WaitForInput(2000));
  const double bytes = static_cast<double>(p.Clock.Us - before) * 1e-6 * kBytesASecond;
  EXPECT_GE(bytes, 2);  // one there, one back
  EXPECT_LT(bytes, 3);
}

TEST(SimulatedPort, RecordsAllThatWasWrittenOnceItHasBeenAskedFor) {
  OnPort p(Pace::Unpaced);
  ASSERT_TRUE(p.Port.Open());
  p.Write("kept by nobody: a program in use never asks");
  EXPECT_TRUE(p.Port.TakeWritten().empty());
  p.Port.Close();
  p.Write("lost: the port is closed");
  ASSERT_TRUE(p.Port.Open());
  p.Write("Q");
  p.Write({'W', 1, 0});
  EXPECT_EQ(p.Port.TakeWritten(), (Bytes{'Q', 'W', 1, 0}));
  EXPECT_TRUE(p.Port.TakeWritten().empty());
}

TEST(SimulatedPort, LosesWhatComesWhileItIsClosed) {
  OnPort p(Pace::Baud115200);
  ASSERT_TRUE(p.Port.Open());
  p.Write("*IDN?");
  p.Port.Close();
  p.Clock.Us += 100'000;
  ASSERT_TRUE(p.Port.Open());
  EXPECT_EQ(p.Port.InBufferCount(), 0u);
  p.Write("Q");
  EXPECT_EQ(p.ReadText(1), "R");
}

TEST(SimulatedPort, BytesLostWithTheCableDoNotHoldUpTheNextOnes) {
  OnPort p(Pace::Baud115200);
  ASSERT_TRUE(p.Port.Open());
  p.Write(Bytes(5000, 'D'));  // 430 ms on the line
  p.Box.Bench("fault unplugged");
  EXPECT_FALSE(p.Port.IsOpen());
  p.Box.Bench("fault replugged");
  ASSERT_TRUE(p.Port.Open());
  EXPECT_LT(p.SecondsFor("Q", 1), 0.01);
}

TEST(SimulatedPort, FallsToNotOpenWhenUnplugged) {
  OnPort p(Pace::Baud115200);
  ASSERT_TRUE(p.Port.Open());
  p.LoadPoints(51);
  p.Write("M");
  p.Clock.Us += 20'000;
  ASSERT_TRUE(p.Box.Bench("fault unplugged").Ok);
  EXPECT_FALSE(p.Port.IsOpen());
  EXPECT_FALSE(p.Port.Open());
  EXPECT_EQ(p.Port.InBufferCount(), 0u);
  EXPECT_FALSE(p.Port.WaitForInput(5));
  ASSERT_TRUE(p.Box.Bench("fault replugged").Ok);
  EXPECT_FALSE(p.Port.IsOpen()) << "plugging it in does not open it";
  EXPECT_TRUE(p.Port.Open());
  p.Clock.Us += 1'000'000;
  p.Port.Close();
  ASSERT_TRUE(p.Port.Open());
  p.Write("Q");
  EXPECT_EQ(p.ReadText(1), "R");
}

TEST(SimulatedPort, NoticesACableThatWasOutForAMomentOnly) {
  OnPort p(Pace::Unpaced);
  ASSERT_TRUE(p.Port.Open());
  p.Box.Bench("fault unplugged");
  p.Box.Bench("fault none");
  EXPECT_FALSE(p.Port.IsOpen());
  EXPECT_TRUE(p.Port.Open());
}

struct Timed {
  const char* Trigger;
  std::size_t BytesAPoint;
};

TEST(SimulatedPort, ASweepOfOneAverageIsLimitedByTheWireAlone) {
  for (const Timed& t : {Timed{"M", 12}, Timed{"S", 12}, Timed{"YO", 18}, Timed{"A", 36}}) {
    OnPort p(Pace::Baud115200);
    ASSERT_TRUE(p.Port.Open());
    p.LoadPoints(401);
    const std::size_t count = 401 * t.BytesAPoint;
    const double wire = static_cast<double>(count) / kBytesASecond;
    const double ratio = wire / p.SecondsFor(t.Trigger, count);
    EXPECT_GE(ratio, 0.99) << t.Trigger;
    EXPECT_LE(ratio, 1.0) << t.Trigger;
  }
}

TEST(SimulatedPort, DwellAndAveragesTakeTheHardwaresTime) {
  OnPort p(Pace::Baud115200);
  ASSERT_TRUE(p.Port.Open());
  p.LoadPoints(101);
  p.Write({'D', 1});
  EXPECT_NEAR(p.SecondsFor("M", 1212), 101 * 0.0026, 0.003);
  p.Write({'D', 0, 'Y', '8', 100});
  EXPECT_NEAR(p.SecondsFor("M", 1212), 101 * 0.0105, 0.003);
  EXPECT_NEAR(p.SecondsFor("A", 3636), 101 * 0.0210, 0.005) << "both drive sides";
}

TEST(SimulatedPort, ACommandTakesTheTimeOfItsBytesOnTheWire) {
  OnPort p(Pace::Baud115200);
  ASSERT_TRUE(p.Port.Open());
  Bytes block(129 * 12, 0);
  block[0] = 'W';
  block[1] = 125;
  const std::int64_t before = p.Clock.Us;
  p.Write(Bytes(block.begin(), block.begin() + 129));
  p.Write("Q");
  EXPECT_EQ(p.ReadText(1), "R");
  EXPECT_NEAR(static_cast<double>(p.Clock.Us - before) * 1e-6, 131 / kBytesASecond, 2e-4);
}

TEST(SimulatedPort, AnEepromBlockIsDigestedWithinThePacingOfTheLinkCheck) {
  OnPort p(Pace::Baud115200);
  ASSERT_TRUE(p.Port.Open());
  Bytes block(5 + 128, 0);
  block[0] = block[1] = 'E';
  block[2] = 128;
  const std::int64_t before = p.Clock.Us;
  p.Write(block);
  p.Write("Q");
  EXPECT_EQ(p.ReadText(1), "R");
  const double seconds = static_cast<double>(p.Clock.Us - before) * 1e-6;
  EXPECT_GT(seconds, 0.5);
  EXPECT_LT(seconds, 2.0);
}

Bytes StopAfter(OnPort& p, std::size_t count) {
  p.Write("A");
  Bytes got = p.Read(count);
  p.Write("O");
  const Bytes rest = p.Read(100'000, 1000);
  got.insert(got.end(), rest.begin(), rest.end());
  return got;
}

TEST(SimulatedPort, AnAbortEndsTheSweepWithXXAndNothingBehind) {
  for (const char* version : {"1.05", "1.1", "1.2"}) {
    OnPort p(Pace::Baud115200, WithFirmware(version));
    ASSERT_TRUE(p.Port.Open());
    p.LoadPoints(401);
    const Bytes got = StopAfter(p, 3600);
    ASSERT_GE(got.size(), 3602u);
    EXPECT_EQ(got[got.size() - 2], 'X');
    EXPECT_EQ(got[got.size() - 1], 'X');
    EXPECT_EQ((got.size() - 2) % 36, 0u) << "whole points were on their way";
    EXPECT_LT(got.size(), 3600u + 4 * 36u) << "the rest was not measured";
    p.Write("Q");
    EXPECT_EQ(p.ReadText(1), "R");
  }
}

TEST(SimulatedPort, OlderFirmwareLetsTheSweepRunOut) {
  for (const char* version : {"0.9", "1.0"}) {
    OnPort p(Pace::Baud115200, WithFirmware(version));
    ASSERT_TRUE(p.Port.Open());
    p.LoadPoints(51);
    EXPECT_EQ(StopAfter(p, 100).size(), 51u * 36u) << version;
    p.Write("Q");
    EXPECT_EQ(p.ReadText(1), "R");
  }
}

TEST(SimulatedPort, AnAbortAtAnyByteOfTheStreamLeavesACleanLine) {
  for (std::size_t count = 1; count <= 5 * 36; count += 7) {
    OnPort p(Pace::Baud115200);
    ASSERT_TRUE(p.Port.Open());
    p.LoadPoints(5);
    const Bytes got = StopAfter(p, count);
    ASSERT_GE(got.size(), count);
    EXPECT_EQ(std::string(got.end() - 2, got.end()), "XX") << count;
    p.Write("Q");
    EXPECT_EQ(p.ReadText(1), "R") << count;
  }
}

TEST(SimulatedPort, AnswersWhatWasAskedDuringASweepAfterIt) {
  OnPort p(Pace::Baud115200);
  ASSERT_TRUE(p.Port.Open());
  p.LoadPoints(51);
  p.Write("M");
  EXPECT_EQ(p.Read(100).size(), 100u);
  p.Write("Q");
  const Bytes rest = p.Read(513, 500);
  ASSERT_EQ(rest.size(), 513u);
  EXPECT_EQ(rest.back(), 'R');
}

TEST(SimulatedPort, GivesTheFourCharactersOfFirmware105ToAReaderOfThree) {
  OnPort p(Pace::Baud115200, WithFirmware("1.05"));
  ASSERT_TRUE(p.Port.Open());
  p.Write("V");
  EXPECT_EQ(p.ReadText(3), "1.05");
}

TEST(SimulatedPort, AStalledSweepGoesSilentAndTheNextExchangeWorks) {
  OnPort p(Pace::Baud115200);
  ASSERT_TRUE(p.Port.Open());
  p.LoadPoints(51);
  p.Box.Bench("fault stall after 99");
  p.Write("M");
  EXPECT_EQ(p.Read(612, 800).size(), 99u);
  p.Write("Q");
  EXPECT_EQ(p.ReadText(1), "R");
}

TEST(SimulatedPort, LateRepliesComeAfterTheirTime) {
  for (Pace pace : {Pace::Unpaced, Pace::Baud115200}) {
    OnPort p(pace);
    ASSERT_TRUE(p.Port.Open());
    p.Box.Bench("fault late 150");
    p.Write("Q");
    EXPECT_FALSE(p.Port.WaitForInput(100));
    EXPECT_TRUE(p.Port.WaitForInput(100));
    EXPECT_EQ(p.ReadText(1), "R");
  }
}

TEST(SimulatedPort, ADaysSweepsKeepTheirPace) {
  OnPort p(Pace::Baud115200);
  ASSERT_TRUE(p.Port.Open());
  p.LoadPoints(51);
  p.Clock.Us += 86'400'000'000;
  const double wire = 612 / kBytesASecond;
  EXPECT_NEAR(p.SecondsFor("M", 612), wire, 0.001);
}

}  // namespace
}  // namespace qk::sim::test
