// SPDX-License-Identifier: MIT
// A day of sweeps, with the offsets measured in between, on the moved clock: not one byte out of
// place, and no memory taken for good.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "control/allocations.h"
#include "control/control_fixture.h"
#include "control/simulated_control.h"
#include "support/blank_surface.h"

namespace qk::test {
namespace {

constexpr std::int64_t kHourMs = 3600 * 1000;
constexpr std::int64_t kDayMs = 24 * kHourMs;
// What a queue of the test's own may hold more or less from one moment to the next.
constexpr long kBreathing = 16;

TEST(ADayOfSweeps, KeepsEveryByteInItsPlaceAndTheMemoryFlat) {
  BlankSurface surface;
  SweepingControl b{&surface};
  const KindOfSweep& kind = KindsOfSweep()[3];
  b.MakeReady(kind);
  // Twenty seconds a sweep; the samples identify sweep and point.
  b.port.PointUs = 400'000;
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
  long afterAnHour = 0, living = 0;
  b.fake.OnEvents = [&] {
    const int counter = b.session->Display.PointCounter;
    if (counter > 0) {
      const double volts = level(counter - 1) - b.session->Receiver.DcOffsetQ;
      wrong += std::abs(b.session->Data.RawS21[counter - 1].re - volts) > 2e-3 * (1 + volts);
    }
    if (counter != kPoints) return;
    b.fake.Events.clear();
    living = AllocationsSoFar().Living;
    if (afterAnHour == 0 && b.clock.NowMs() - start > kHourMs) afterAnHour = living;
    if (b.clock.NowMs() - start > kDayMs) b.control.StopMeasurement();
  };
  b.control.StartMeasurement();

  EXPECT_EQ(b.Messages(), "");
  EXPECT_EQ(misplaced, 0);
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(b.port.Intrusions.size(), 0u);
  EXPECT_GT(b.port.Triggers, 4200);
  EXPECT_EQ(b.port.WholeSweeps, b.port.Triggers);
  EXPECT_EQ(b.control.SweepsEnded(), b.port.Triggers);
  EXPECT_EQ(b.port.BytesStreamed, static_cast<std::size_t>(b.port.Triggers) * kPoints * 36);
  EXPECT_GT(ticks, 24 * 60 - 10);
  // Ticks that came in one sweep are served once: only in the first ten minutes can that be.
  EXPECT_LE(served, ticks);
  EXPECT_GE(served, ticks - 60);
  EXPECT_EQ(b.port.BytesWritten,
            1 + static_cast<std::size_t>(b.port.Triggers) + 7 * static_cast<std::size_t>(served));
  EXPECT_EQ(b.port.InBufferCount(), 0u);
  EXPECT_TRUE(b.Idle());
  EXPECT_GT(afterAnHour, 0);
  EXPECT_NEAR(static_cast<double>(living), static_cast<double>(afterAnHour), kBreathing);
}

// The instrument warms up and its offsets drift meanwhile; half a minute a sweep.
TEST(ADayOfSweeps, OnTheSimulatedInstrumentKeepsEveryByteAndNumber) {
  SimulatedControl b(sim::Pace::Unpaced);
  b.MakeReady(&CalState::Cal12Term);
  long ticks = 0, sweeps = 0, served = 0, misplaced = 0, afterAnHour = 0, living = 0;
  double worst = 0;
  ComplexArray first;
  b.fake.OnTick = [&](TimerId timer) {
    ++ticks;
    b.control.Tick(timer);
  };
  const std::uint64_t sentBefore = b.instrument.BytesSent();
  const auto start = b.clock.NowMs();
  b.OnPoint = [&](int counter) {
    if (counter == 1) {
      const std::string written = b.Written();
      const bool offsets = written == "QCYGQQTA";
      served += offsets;
      misplaced += !offsets && written != (sweeps == 0 ? "QA" : "A");
      ++sweeps;
    }
    const Complex s21 = b.session->Data.RawS21[counter - 1];
    if (sweeps == 1) first.Set(counter - 1, s21);
    const Complex was = first[counter - 1];
    worst = std::max(worst, std::hypot(s21.re - was.re, s21.im - was.im));
    b.clock.AdvanceMs(600);
    if (counter != kPoints) return;
    b.fake.Events.clear();
    living = AllocationsSoFar().Living;
    if (afterAnHour == 0 && b.clock.NowMs() - start > kHourMs) afterAnHour = living;
    if (b.clock.NowMs() - start > kDayMs) b.control.StopMeasurement();
  };
  b.control.StartMeasurement();
  served += b.Written() == "QCYGQQT";  // a tick in the last sweep

  EXPECT_EQ(b.fake.MessageTexts(), std::vector<std::string>{});
  EXPECT_EQ(misplaced, 0);
  EXPECT_GT(sweeps, 2800);
  EXPECT_EQ(b.control.SweepsEnded(), sweeps);
  EXPECT_GT(ticks, 24 * 60 - 10);
  EXPECT_LE(served, ticks);
  EXPECT_GE(served, ticks - 60);  // two that came in one sweep are served once
  // "C" brings 6 bytes, "T" 2, and each of the three "Q" one, as does that of START.
  EXPECT_EQ(b.instrument.BytesSent() - sentBefore,
            1 + static_cast<std::uint64_t>(sweeps) * kPoints * 36 +
                static_cast<std::uint64_t>(served) * 11);
  EXPECT_LT(worst, 2e-3);
  EXPECT_EQ(b.port.InBufferCount(), 0u);
  EXPECT_TRUE(b.control.Idle());
  EXPECT_GT(afterAnHour, 0);
  EXPECT_NEAR(static_cast<double>(living), static_cast<double>(afterAnHour), kBreathing);
}

}  // namespace
}  // namespace qk::test
