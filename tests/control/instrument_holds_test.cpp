// SPDX-License-Identifier: MIT
// What the instrument holds after an exchange that failed at one of its bytes: START on a recovered
// line measures over the session's plan, point for point, or refuses with a message. The simulated
// instrument is asked what it holds.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <utility>

#include "cal/standards.h"
#include "control/control_fixture.h"
#include "control/faulty_port.h"
#include "control/inside.h"
#include "control/simulated_control.h"
#include "control/verbs.h"
#include "files/session_file.h"
#include "sweep/receiver.h"
#include "sweep/settings.h"
#include "sweep/up_to_date.h"
#include "utilities/continuous_wave.h"
#include "utilities/diagnostics.h"
#include "utilities/power_sweep.h"

namespace qk::test {
namespace {

// ---- a program and an instrument ---------------------------------------------------------------

// Few points, so that each byte of each exchange can fail.
constexpr int kHeldPoints = 2;
constexpr double kHeldStarts[] = {1e9, 5e8};  // Hz

struct HeldBench : SimulatedLine {
  explicit HeldBench(int points = kHeldPoints) {
    session->InstallFolder = folder.Text();
    fake.OnTick = [this](TimerId timer) { control.Tick(timer); };
    fake.OnEvents = [this] {
      if (session->Flags.SweepIdle || !session->Display.SweepCounted) return;
      if (InMidSweep && session->Display.PointCounter == 1) std::exchange(InMidSweep, {})();
      if (session->Display.PointCounter == session->Plan.NumPoints) control.StopMeasurement();
    };
    control.StartUp();
    session->Cal.CalDataReady = session->Cal.CalThruReady = true;
    session->Cal.Cal12Term = true;
    RawTerms();
    SweepPlan& plan = session->Plan;
    plan.NumPoints = static_cast<std::int16_t>(points);
    plan.StepFreq = 1e6;
    for (const double start : {kHeldStarts[1], kHeldStarts[0]}) {
      plan.StartFreq = start;
      plan.StopFreq = plan.Frequency(points - 1);
      EXPECT_TRUE(LoadFreqSweep(rig));
      EXPECT_TRUE(Start());
      Good[start] = Readings();
    }
    if (points == kPoints) {
      EXPECT_TRUE(SaveSession(SessionPath(), *session).Ok());
    }
  }

  // Error terms that leave the raw ratios as they are; a standard writes into them.
  void RawTerms() {
    for (PortTerms* terms : {&session->Terms.Forward, &session->Terms.Reverse}) {
      terms->ERT.Fill({1, 0});
      terms->ETT.Fill({1, 0});
      terms->EX.Fill({0, 0});
    }
  }
  // One sweep; false when it was refused.
  bool Start() {
    const long ended = control.SweepsEnded();
    session->Display.PointCounter = 0;
    session->Display.SweepCounted = false;
    control.StartMeasurement();
    return control.SweepsEnded() == ended + 1;
  }
  std::string SessionPath() const { return folder.File("held.cal"); }
  // What was measured last, as raw ratios.
  std::vector<Complex> Readings() const {
    std::vector<Complex> readings;
    for (const auto* trace : {&session->Data.RawS11, &session->Data.RawS21, &session->Data.RawS12,
                              &session->Data.RawS22})
      for (int i = 0; i < session->Plan.NumPoints; ++i) readings.push_back((*trace)[i]);
    return readings;
  }
  // The largest difference from the same sweep on a line where nothing fails.
  double Error() {
    const std::vector<Complex>& good = Good[session->Plan.StartFreq];
    const std::vector<Complex> now = Readings();
    double worst = 0;
    for (std::size_t i = 0; i < good.size(); ++i) {
      const Complex off = now[i] - good[i];
      const double size = Magnitude(off.re, off.im);
      worst = size > worst || std::isnan(size) ? size : worst;
    }
    return worst;
  }

  ScratchFolder folder;
  FakeHost fake{clock};
  std::unique_ptr<Session> session = MakeSession();
  Host host = fake.host();
  FaultyPort line{port, clock};
  InstrumentLink link{line, *session, host};
  Rig rig{*session, host, link};
  BlankSurface surface;
  Graphs graphs{*session, surface};
  Controller control{rig, graphs};
  std::function<void()> InMidSweep;  // once, in the events behind the first point
  std::map<double, std::vector<Complex>> Good;
};

// ---- what writes to the instrument -------------------------------------------------------------

// Every exchange that changes what the instrument holds, and some that only borrow it.
struct Writer {
  const char* Name;
  void (*Do)(HeldBench& b);
  int Points = kHeldPoints;
};

void OtherLevel(HeldBench& b) {
  const int level = b.session->Plan.Port1Level - 3;
  SetPort1Level(b.rig, static_cast<std::int16_t>(level < -20 ? 0 : level));
}

void OtherAverages(HeldBench& b) {
  b.session->Averaging.AveragesSet = b.session->Averaging.Averages == 3 ? 5 : 3;
  b.control.AverOn();
}

const std::vector<Writer>& Writers() {
  static const std::vector<Writer> writers = {
      {"averages on", OtherAverages},
      {"averages off", [](HeldBench& b) { b.control.AverOff(); }},
      {"dwell",
       [](HeldBench& b) {
         b.session->Flags.DwellOn = !b.session->Flags.DwellOn;
         std::ignore = SendDwell(b.rig);
       }},
      {"level", OtherLevel},
      {"plan",
       [](HeldBench& b) {
         double& start = b.session->Plan.StartFreq;
         start = start == kHeldStarts[0] ? kHeldStarts[1] : kHeldStarts[0];
         std::ignore = LoadFreqSweep(b.rig);
       }},
      {"session",
       [](HeldBench& b) {
         const Result<Done> loaded = b.control.files().Load(b.SessionPath());
         EXPECT_TRUE(loaded.Ok()) << loaded.Why().Text();
       },
       kPoints},
      {"offsets", [](HeldBench& b) { b.control.Tick(TimerId::Timer1); }},
      {"generator",
       [](HeldBench& b) {
         const Complaint complaint{"Signal Gen", Icon::Critical};
         if (HoldContinuousWave(b.rig, complaint, 2e9))
           std::ignore = RestoreFirstPoint(b.rig, complaint);
       }},
      // The user ends it soon after the line has failed: it would go on for a minute and a half.
      {"self-test",
       [](HeldBench& b) {
         int more = 3;
         RunDiagnostics(
             b.rig, [](const DiagnosticVerdicts&) {}, [&] { return !b.line.Struck || more-- > 0; });
       }},
      {"power",
       [](HeldBench& b) {
         const Complaint complaint{"P1dB Test", Icon::Critical};
         if (SelectTestPoint(b.rig, complaint, 1))
           std::ignore = MeasurePowerSweep(b.rig, complaint, 1);
       }},
      {"load",
       [](HeldBench& b) { std::ignore = MeasureStandard(b.rig, Standard::LoadInsertable); }},
      {"through", [](HeldBench& b) { std::ignore = MeasureStandard(b.rig, Standard::ThruS21); }},
      {"isolation",
       [](HeldBench& b) {
         b.session->Cal.IsoMethod = IsoMethod::TwoSweeps;
         std::ignore = MeasureStandard(b.rig, Standard::IsoInsertable);
       }},
      {"sweep", [](HeldBench& b) { b.Start(); }},
      {"changes in mid-sweep", [](HeldBench& b) {
         b.InMidSweep = [&b] {
           OtherAverages(b);
           OtherLevel(b);
           b.session->Flags.DwellOn = !b.session->Flags.DwellOn;
           b.session->Flags.DwellChangeDue = true;
         };
         b.Start();
         b.InMidSweep = {};
       }}};
  return writers;
}

// Whether a failure was shown; a prompt to connect something is none.
bool ShowedAFailure(const HeldBench& b) {
  return std::ranges::any_of(b.fake.Messages, [](const Message& message) {
    return message.MessageIcon != Icon::Information;
  });
}

// What a run came across, so that it can be seen that it came across everything.
struct Outcomes {
  int Measured = 0, Refused = 0, Told = 0;
};

// The line is well again. START, once or twice: what is measured is right. A second click must
// measure: nothing is stuck.
void StartsRight(HeldBench& b, Outcomes& tally) {
  b.line.Mend();
  tally.Told += ShowedAFailure(b) ? 1 : 0;
  for (int click = 0; click < 3; ++click) {
    b.fake.Messages.clear();
    b.fake.Events.clear();
    b.fake.Progresses.clear();
    const bool measured = b.Start();
    ASSERT_TRUE(b.session->Flags.Idle());
    if (measured) {
      ++tally.Measured;
      ASSERT_EQ(WhatIsWrongInside(b), "");
      ASSERT_LT(b.Error(), 0.05);
      ASSERT_FALSE(b.session->Flags.AveragesChangeDue);
      return;
    }
    ++tally.Refused;
    ASSERT_TRUE(ShowedAFailure(b)) << "refused without a word";
    // Half a command is forgotten after five seconds; a sweep that a garbled command has started,
    // over an unknown plan, runs to its end.
    b.clock.AdvanceMs(b.instrument.state().Commands.Sweeping() ? 120'000 : 6000);
  }
  FAIL() << "START does not get going again: " << b.fake.MessageTexts().front();
}

// The bytes at which an exchange of so many is made to fail: each of a short one. A long one
// repeats itself (a level, a block): each of its first and last, and some between that meet every
// place of what is repeated.
std::vector<std::size_t> Places(std::size_t count) {
  constexpr std::size_t kEnds = 40;
  const std::size_t step = count > 500 ? 37 : count > 200 ? 13 : 7;
  std::vector<std::size_t> places;
  for (std::size_t at = 0; at < count; ++at)
    if (at < kEnds || at + kEnds >= count || at % step == 0) places.push_back(at);
  return places;
}

// What an earlier case has left behind, so that each sends the same: a standard that failed keeps
// its averages.
void BeginAnew(HeldBench& b) {
  b.control.AverOff();
  b.fake.Messages.clear();
}

// ---- the tests ---------------------------------------------------------------------------------

TEST(InstrumentHolds, RepliesCutLateAndSilentAtEachByteThenStartMeasuresRight) {
  std::mt19937 random(1);
  Outcomes tally;
  HeldBench few, many(kPoints);
  for (const Writer& writer : Writers()) {
    HeldBench& b = writer.Points == kPoints ? many : few;
    BeginAnew(b);
    const std::size_t before = b.line.Replied;
    writer.Do(b);
    const std::size_t replies = b.line.Replied - before;
    ASSERT_GT(replies, 0u) << writer.Name;
    for (const std::size_t at : Places(replies))
      for (const Strike strike : kStrikes) {
        if (strike == (at % 2 == 0 ? Strike::Drop : Strike::Unplug)) continue;
        SCOPED_TRACE(std::string(writer.Name) + " " +
                     kStrikeNames[static_cast<std::size_t>(strike)] + " at " + std::to_string(at));
        BeginAnew(b);
        b.line.Fault = {strike, b.line.Replied + at, 101 + static_cast<int>(random() % 2400)};
        writer.Do(b);
        StartsRight(b, tally);
        if (HasFatalFailure()) return;
      }
  }
  EXPECT_GT(tally.Measured, 1400);
  EXPECT_GT(tally.Told, 1000);
}

// The samples have no checksum: what cannot be noticed stays small.
TEST(InstrumentHolds, AGarbledByteInTheOffsetsLeavesNoWrongSweep) {
  Outcomes tally;
  HeldBench b;
  for (std::size_t at = 0; at < 7; ++at)  // the status letter, six bytes
    for (int bits = 1; bits < 256; bits += at % 3 == 0 ? 14 : 6) {
      SCOPED_TRACE("byte " + std::to_string(at) + " turned by " + std::to_string(bits));
      BeginAnew(b);
      b.line.Garbles = std::pair{b.line.Replied + at, bits};
      b.control.Tick(TimerId::Timer1);
      b.line.Garbles.reset();
      EXPECT_LT(std::abs(b.session->Receiver.DcOffsetI - 0.0121), 0.008);
      EXPECT_LT(std::abs(b.session->Receiver.DcOffsetQ + 0.0184), 0.008);
      StartsRight(b, tally);
      if (HasFatalFailure()) return;
      for (int tick = 0; tick < 6; ++tick) b.control.Tick(TimerId::Timer1);
    }
  EXPECT_GT(tally.Measured, 200);
}

// A reply that is still on its way when the next exchange gives up spoils that one too, and no
// further one.
TEST(InstrumentHolds, AReplyThatIsLaterThanTwoLimitsFailsTheExchangeBehindItOnceWithItsMessage) {
  HeldBench b;
  const auto ask = [&b] {
    b.fake.Messages.clear();
    const bool read = ReadTemperature(b.rig);
    EXPECT_EQ(ShowedAFailure(b), !read);
    return read;
  };
  for (const int lateMs : {2500, 4500}) {
    EXPECT_TRUE(ask());
    b.line.Fault = {Strike::Late, b.line.Replied + 1, lateMs};  // behind the link check
    EXPECT_FALSE(ask());
    b.line.Mend();
    EXPECT_EQ(ask(), lateMs < 4000) << lateMs;
    EXPECT_TRUE(ask());
    EXPECT_TRUE(b.Start());
    EXPECT_LT(b.Error(), 0.05);
  }
}

TEST(InstrumentHolds, CommandsCutAtEachByteThenStartMeasuresRight) {
  Outcomes tally;
  HeldBench few, many(kPoints);
  for (const Writer& writer : Writers()) {
    HeldBench& b = writer.Points == kPoints ? many : few;
    BeginAnew(b);
    const std::size_t before = b.line.Written;
    writer.Do(b);
    const std::size_t written = b.line.Written - before;
    ASSERT_GT(written, 0u) << writer.Name;
    for (const std::size_t at : Places(written)) {
      SCOPED_TRACE(std::string(writer.Name) + " loses its bytes from " + std::to_string(at));
      BeginAnew(b);
      b.line.ClosesAt = b.line.Written + at;
      writer.Do(b);
      // A command without a reply whose bytes are all lost leaves no trace; the next exchange does.
      if (!ShowedAFailure(b)) {
        EXPECT_FALSE(b.Start());
      }
      StartsRight(b, tally);
      if (HasFatalFailure()) return;
    }
  }
  EXPECT_GT(tally.Measured, 500);
  EXPECT_GT(tally.Refused, 300);
}

TEST(InstrumentHolds, AveragesThatCouldNotBeSentStayDue) {
  HeldBench b;
  b.session->Averaging.AveragesSet = 2;
  b.control.AverOn();
  b.line.Fault = {Strike::Silence, b.line.Replied};
  ChooseAverages(b.rig, 6);
  EXPECT_EQ(b.session->Averaging.Averages, 2) << "samples are divided by what the instrument sums";
  EXPECT_TRUE(b.session->Flags.AveragesChangeDue);
  EXPECT_FALSE(b.session->Flags.AveragesOffDue);
  b.line.Fault.reset();
  EXPECT_TRUE(b.Start());
  EXPECT_EQ(b.session->Averaging.Averages, 6);
  EXPECT_EQ(WhatIsWrongInside(b), "");
}

TEST(InstrumentHolds, AnInstrumentThatWasSwitchedOffGetsAllOfItBackBehindTheFirstFailure) {
  HeldBench b;
  b.session->Averaging.AveragesSet = 6;
  b.control.AverOn();
  b.session->Flags.DwellOn = true;
  ASSERT_TRUE(SendDwell(b.rig));
  SetPort1Level(b.rig, -9);
  b.instrument.state().Commands.SwitchOffAndOn();
  EXPECT_FALSE(b.Start()) << "it holds no plan, and streams nothing";
  EXPECT_EQ(b.fake.MessageTexts(), std::vector<std::string>{"Measure All|No Response|critical|ok"});
  EXPECT_TRUE(b.Start());
  EXPECT_EQ(WhatIsWrongInside(b), "");
}

// Exchanges in random order, each with a fault at a random byte, START now and then.
TEST(InstrumentHolds, SeededFaultsInSeriesNeverLeaveAWrongSweep) {
  HeldBench b;
  std::mt19937 random(7);
  const auto below = [&random](std::size_t n) { return random() % n; };
  Outcomes tally;
  std::map<std::string, int> seen;
  std::array<int, std::size(kStrikes)> struck{};
  int lostOnes = 0;
  constexpr int kCases = 4000;
  for (int i = 0; i < kCases; ++i) {
    const Writer& writer = Writers()[below(Writers().size())];
    if (writer.Points != kHeldPoints) continue;
    ++seen[writer.Name];
    const auto kind = below(std::size(kStrikes) + 2);
    const std::size_t at = below(below(3) == 0 ? 400 : 12);
    SCOPED_TRACE(std::to_string(i) + ": " + writer.Name + ", fault " + std::to_string(kind) +
                 " at " + std::to_string(at));
    b.fake.Messages.clear();
    if (kind < std::size(kStrikes))
      b.line.Fault = {kStrikes[kind], b.line.Replied + at, static_cast<int>(below(5000))};
    else if (kind == std::size(kStrikes))
      b.line.LosesAt = b.line.Written + below(4);
    writer.Do(b);
    const bool lost = b.line.LosesAt && b.line.Struck;
    if (kind < std::size(kStrikes)) struck[kind] += b.line.Struck ? 1 : 0;
    lostOnes += lost ? 1 : 0;
    // A letter lost of a command without a reply cannot be seen; the user then sets it anew.
    if (lost && !ShowedAFailure(b)) b.link.ForgetState();
    if (below(2) == 0 && !b.line.LosesAt) continue;
    StartsRight(b, tally);
    if (HasFatalFailure()) return;
  }
  EXPECT_EQ(seen.size(), Writers().size() - 1) << "all but that of a file";
  for (const int times : struck) EXPECT_GT(times, kCases / 50);
  EXPECT_GT(lostOnes, kCases / 50);
  EXPECT_GT(tally.Measured, kCases / 3);
  EXPECT_GT(tally.Told, kCases / 6);
}

// ---- what triggers beside START ----------------------------------------------------------------

// What it measured, or nothing when it was refused.
using Taken = std::optional<std::vector<Complex>>;
struct OtherTrigger {
  const char* Name;
  Taken (*Do)(HeldBench& b);
};

constexpr OtherTrigger kOtherTriggers[] = {
    {"standard",
     [](HeldBench& b) -> Taken {
       if (!MeasureStandard(b.rig, Standard::LoadInsertable)) return std::nullopt;
       std::vector<Complex> taken;
       for (int i = 0; i < kHeldPoints; ++i) {
         taken.push_back(b.session->Standards.CalLoad1[i]);
         taken.push_back(b.session->Standards.CalLoad2[i]);
       }
       return taken;
     }},
    {"power test",
     [](HeldBench& b) -> Taken {
       const Complaint complaint{"P1dB Test", Icon::Critical};
       if (!SelectTestPoint(b.rig, complaint, 1)) return std::nullopt;
       const auto sweep = MeasurePowerSweep(b.rig, complaint, 1);
       if (!sweep) return std::nullopt;
       std::vector<Complex> taken;
       for (const PowerReading& reading : sweep->Levels) {
         taken.push_back(reading.Corrected);
         taken.push_back({reading.TestVolts, 0});
       }
       return taken;
     }},
    {"generator", [](HeldBench& b) -> Taken {
       const Complaint complaint{"Signal Gen", Icon::Critical};
       if (!BringUpToDate(b.rig, complaint) || !HoldContinuousWave(b.rig, complaint, 2e9))
         return std::nullopt;
       std::vector<Complex> taken;
       for (const std::uint8_t byte : b.instrument.state().Commands.RecordOf(0))
         taken.push_back({static_cast<double>(byte), 0});
       return taken;
     }}};

// Each exchange, silent from a byte on; then a standard, a power test or the generator on a
// recovered line.
TEST(InstrumentHolds, AStandardAPowerTestAndTheGeneratorMeasureRightAsWellOrAreRefused) {
  HeldBench b;
  const auto settle = [&b] {  // so that each case measures the same
    BeginAnew(b);
    b.session->Flags.DwellOn = b.session->Flags.DwellChangeDue = false;
    b.session->Plan.StartFreq = kHeldStarts[0];
    b.session->Plan.Port1Level = 0;
    b.RawTerms();
    EXPECT_TRUE(b.Start());
    b.fake.Messages.clear();
  };
  settle();
  std::map<std::string, std::vector<Complex>> good;
  for (const OtherTrigger& trigger : kOtherTriggers) {
    good[trigger.Name] = trigger.Do(b).value();
    settle();
  }
  std::map<std::string, int> taken;
  for (const Writer& writer : Writers()) {
    if (writer.Points != kHeldPoints) continue;
    for (const std::size_t at : {0, 1, 2, 3, 5, 8, 13, 21, 34})
      for (const OtherTrigger& trigger : kOtherTriggers) {
        SCOPED_TRACE(std::string(writer.Name) + " silent at " + std::to_string(at) + ", " +
                     trigger.Name);
        b.line.Fault = {Strike::Silence, b.line.Replied + at};
        writer.Do(b);
        b.line.Mend();
        b.session->Plan.StartFreq = kHeldStarts[0];
        b.session->Plan.Port1Level = 0;
        b.session->Flags.DwellOn = false;
        b.RawTerms();
        for (int click = 0; click < 3; ++click) {
          b.fake.Messages.clear();
          const Taken now = trigger.Do(b);
          if (!now) {
            ASSERT_TRUE(ShowedAFailure(b)) << "refused without a word";
            b.clock.AdvanceMs(b.instrument.state().Commands.Sweeping() ? 120'000 : 6000);
            continue;
          }
          ++taken[trigger.Name];
          const std::vector<Complex>& right = good[trigger.Name];
          ASSERT_EQ(now->size(), right.size());
          for (std::size_t i = 0; i < right.size(); ++i) {
            ASSERT_NEAR((*now)[i].re, right[i].re, 0.05) << i;
            ASSERT_NEAR((*now)[i].im, right[i].im, 0.05) << i;
          }
          break;
        }
        settle();
        if (HasFatalFailure()) return;
      }
  }
  for (const OtherTrigger& trigger : kOtherTriggers)
    EXPECT_EQ(taken[trigger.Name], 9 * static_cast<int>(Writers().size() - 1)) << trigger.Name;
}

// Where nothing failed nothing is sent again: between the exchanges of an undisturbed day and each
// trigger there is the link check alone.
TEST(InstrumentHolds, AnUndisturbedLineSaysNothingMore) {
  HeldBench b;
  b.port.TakeWritten();
  for (const Writer& writer : Writers()) {
    if (writer.Points != kHeldPoints) continue;
    writer.Do(b);
    b.port.TakeWritten();
    EXPECT_TRUE(b.Start()) << writer.Name;
    const auto bytes = b.port.TakeWritten();
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "QA") << writer.Name;
    EXPECT_EQ(WhatIsWrongInside(b), "") << writer.Name;
  }
}

}  // namespace
}  // namespace qk::test
