// A day of sweeps, with the offsets measured in between, on the moved clock: not one byte out of
// place.
#include <gtest/gtest.h>

#include "control/control_bench.h"

namespace qk::test {
namespace {

constexpr std::int64_t kDayMs = 24 * 3600 * 1000;

TEST(ADayOfSweeps, KeepsEveryByteInItsPlace) {
  ControlBench b;
  const KindOfSweep& kind = KindsOfSweep()[3];
  b.MakeReady(kind);
  // Ten seconds a sweep; the samples tell sweep and point apart.
  b.port.PointUs = 200'000;
  b.port.OversleepsToTheNextByte = true;
  const auto level = [&b](int p) {
    return 0.2 + 0.001 * p + 0.0001 * static_cast<double>(b.port.Triggers % 1000);
  };
  b.port.Volts = [&](int p, int samples) {
    std::vector<double> volts(static_cast<std::size_t>(samples), level(p));
    volts[0] = volts[6] = 1;
    volts[3] = volts[9] = 0;
    return volts;
  };
  long ticks = 0, served = 0, misplaced = 0, wrong = 0;
  b.fake.OnTick = [&](TimerId timer) {
    ++ticks;
    b.control.Tick(timer);
  };
  // The grammar of the line: triggers, and now and then the exchange of the offsets whole.
  const std::string exchange[] = {"Q", "C", "YG", "Q", "Q", "T"};
  std::size_t inExchange = 0;
  bool first = true;
  b.port.OnCommand = [&](const std::string& command) {
    if (first) {
      first = false;
      misplaced += command != "Q";
    } else if (inExchange == 0 && command == "A") {
      b.port.Commands.clear();
    } else {
      misplaced += command != exchange[inExchange];
      inExchange = (inExchange + 1) % std::size(exchange);
      served += inExchange == 0;
    }
  };
  const auto start = b.clock.NowMs();
  b.fake.OnEvents = [&] {
    const int counter = b.session.Display.PointCounter;
    if (counter > 0) {
      const double volts = level(counter - 1) - b.session.Receiver.DcOffsetQ;
      wrong += std::abs(b.session.Data.RawS21[counter - 1].re - volts) > 2e-3 * (1 + volts);
    }
    if (b.clock.NowMs() - start > kDayMs && counter == 51) b.control.StopMeasurement();
  };
  b.control.StartMeasurement();

  EXPECT_EQ(b.Messages(), "");
  EXPECT_EQ(misplaced, 0);
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(b.port.Intrusions.size(), 0u);
  EXPECT_GT(b.port.Triggers, 8000);
  EXPECT_EQ(b.port.WholeSweeps, b.port.Triggers);
  EXPECT_EQ(b.control.SweepsEnded(), b.port.Triggers);
  EXPECT_EQ(b.port.BytesStreamed, static_cast<std::size_t>(b.port.Triggers) * 51 * 36);
  EXPECT_GT(ticks, 24 * 60 - 10);
  // Ticks that came in one sweep are served once: only in the first ten minutes can that be.
  EXPECT_LE(served, ticks);
  EXPECT_GE(served, ticks - 60);
  EXPECT_EQ(b.port.BytesWritten,
            1 + static_cast<std::size_t>(b.port.Triggers) + 7 * static_cast<std::size_t>(served));
  EXPECT_EQ(b.port.InBufferCount(), 0u);
  EXPECT_TRUE(b.Idle());
}

}  // namespace
}  // namespace qk::test
