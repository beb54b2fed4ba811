// SPDX-License-Identifier: MIT
// What the instrument holds after an exchange that failed at one of its bytes: START on a recovered
// line measures over the session's plan, point for point, or refuses with a message. The simulated
// instrument is asked what it holds.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>

#include "cal/standards.h"
#include "control/control_fixture.h"
#include "control/inside.h"
#include "control/simulated_control.h"
#include "control/verbs.h"
#include "sweep/receiver.h"
#include "sweep/settings.h"
#include "utilities/continuous_wave.h"
#include "utilities/diagnostics.h"
#include "utilities/power_sweep.h"

namespace qk::test {
namespace {

// ---- lines that lose what the program writes ---------------------------------------------------

// Passes bytes to the instrument until the gate closes; the port stays open meanwhile, as when a
// cable without handshake comes loose.
class GatedPort : public SerialPort {
 public:
  explicit GatedPort(SerialPort& to) : to_(to) {}

  std::size_t Written = 0;
  std::optional<std::size_t> ClosesAt;  // loses every byte from this count of written ones on
  std::optional<std::size_t> LosesAt;   // loses this byte alone

  void SetPort(int com) override { to_.SetPort(com); }
  void SetLine(const LineSettings& settings) override { to_.SetLine(settings); }
  bool Open() override { return to_.Open(); }
  void Close() override { to_.Close(); }
  bool IsOpen() const override { return to_.IsOpen(); }
  void Write(std::span<const std::uint8_t> bytes) override {
    for (const std::uint8_t byte : bytes) {
      const std::size_t at = Written++;
      if ((ClosesAt && at >= *ClosesAt) || LosesAt == at) continue;
      to_.Write({&byte, 1});
    }
  }
  std::size_t InBufferCount() override { return to_.InBufferCount(); }
  std::size_t Input(std::vector<std::uint8_t>& out) override { return to_.Input(out); }
  bool WaitForInput(int ms) override { return to_.WaitForInput(ms); }

 private:
  SerialPort& to_;
};

// ---- a program and an instrument ---------------------------------------------------------------

struct HeldBench : SimulatedLine {
  HeldBench() {
    session->InstallFolder = folder.Text();
    fake.OnTick = [this](TimerId timer) { control.Tick(timer); };
    fake.OnEvents = [this] {
      if (session->Flags.SweepIdle) return;
      if (session->Display.SweepCounted && session->Display.PointCounter == kPoints)
        control.StopMeasurement();
    };
    control.StartUp();
    SweepPlan& plan = session->Plan;
    plan.NumPoints = kPoints;
    plan.StartFreq = 1e9;
    plan.StepFreq = 1e6;
    EXPECT_TRUE(LoadFreqSweep(rig));
    session->Cal.CalDataReady = session->Cal.CalThruReady = true;
    session->Cal.Cal12Term = true;
    for (PortTerms* terms : {&session->Terms.Forward, &session->Terms.Reverse}) {
      terms->ERT.Fill({1, 0});
      terms->ETT.Fill({1, 0});
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

  ScratchFolder folder;
  FakeHost fake{clock};
  std::unique_ptr<Session> session = MakeSession();
  Host host = fake.host();
  GatedPort gate{port};
  InstrumentLink link{gate, *session, host};
  Rig rig{*session, host, link};
  BlankSurface surface;
  Graphs graphs{*session, surface};
  Controller control{rig, graphs};
};

// ---- what writes to the instrument -------------------------------------------------------------

// Every exchange that changes what the instrument holds, and some that only borrow it.
struct Writer {
  const char* Name;
  void (*Do)(HeldBench& b);
};

void Measured(HeldBench& b, double startHz) {
  b.session->Plan.StartFreq = startHz;
  std::ignore = LoadFreqSweep(b.rig);
}

const std::vector<Writer>& Writers() {
  static const std::vector<Writer> writers = {
      {"averages on",
       [](HeldBench& b) {
         b.session->Averaging.AveragesSet = b.session->Averaging.Averages == 3 ? 5 : 3;
         b.control.AverOn();
       }},
      {"averages off", [](HeldBench& b) { b.control.AverOff(); }},
      {"dwell",
       [](HeldBench& b) {
         b.session->Flags.DwellOn = !b.session->Flags.DwellOn;
         std::ignore = SendDwell(b.rig);
       }},
      {"level",
       [](HeldBench& b) {
         const int level = b.session->Plan.Port1Level - 3;
         SetPort1Level(b.rig, static_cast<std::int16_t>(level < -20 ? 0 : level));
       }},
      {"plan", [](HeldBench& b) { Measured(b, b.session->Plan.StartFreq == 1e9 ? 5e8 : 1e9); }},
      {"offsets", [](HeldBench& b) { b.control.Tick(TimerId::Timer1); }},
      {"generator",
       [](HeldBench& b) {
         const Complaint complaint{"Signal Gen", Icon::Critical};
         if (HoldContinuousWave(b.rig, complaint, 2e9))
           std::ignore = RestoreFirstPoint(b.rig, complaint);
       }},
      {"self-test", [](HeldBench& b) { RunDiagnostics(b.rig, [](const DiagnosticVerdicts&) {}); }},
      {"power",
       [](HeldBench& b) {
         const Complaint complaint{"P1dB Test", Icon::Critical};
         if (SelectTestPoint(b.rig, complaint, 17))
           std::ignore = MeasurePowerSweep(b.rig, complaint, 17);
       }},
      {"standard",
       [](HeldBench& b) { std::ignore = MeasureStandard(b.rig, Standard::LoadInsertable); }},
      {"sweep", [](HeldBench& b) { b.Start(); }}};
  return writers;
}

// What a run came across, so that it can be seen that it came across everything.
struct Outcomes {
  int Measured = 0, Refused = 0, Told = 0;
};

// The line is well again. START, once or twice: what is measured is right. A second click must
// measure: nothing is stuck.
void StartsRight(HeldBench& b, Outcomes& tally) {
  b.Bench("fault none");
  b.gate.ClosesAt.reset();
  b.gate.LosesAt.reset();
  tally.Told += b.fake.Messages.empty() ? 0 : 1;
  for (int click = 0; click < 3; ++click) {
    b.fake.Messages.clear();
    const bool measured = b.Start();
    ASSERT_TRUE(b.session->Flags.Idle());
    if (measured) {
      ++tally.Measured;
      ASSERT_EQ(WhatIsWrongInside(b), "");
      ASSERT_FALSE(b.session->Flags.AveragesChangeDue);
      return;
    }
    ++tally.Refused;
    ASSERT_FALSE(b.fake.Messages.empty()) << "refused without a word";
    // Half a command is forgotten after five seconds; a sweep that a garbled command has started,
    // over a plan of nobody's, is let run out.
    b.clock.AdvanceMs(b.instrument.state().Commands.Sweeping() ? 120'000 : 6000);
  }
  FAIL() << "START does not get going again: " << b.fake.MessageTexts().front();
}

std::uint64_t SentBy(HeldBench& b, const Writer& writer) {
  const std::uint64_t before = b.instrument.BytesSent();
  writer.Do(b);
  return b.instrument.BytesSent() - before;
}

// Bytes to try of so many: all of a short exchange, every so manieth of a long one, from a seed.
std::vector<std::size_t> Places(std::size_t count, std::mt19937& random) {
  constexpr std::size_t kMost = 12;
  std::vector<std::size_t> places;
  const std::size_t step = count / kMost + 1;
  for (std::size_t at = step > 1 ? random() % step : 0; at < count; at += step)
    places.push_back(at);
  return places;
}

// ---- the tests ---------------------------------------------------------------------------------

TEST(InstrumentHolds, RepliesCutLateAndSilentAtEachByteThenStartMeasuresRight) {
  std::mt19937 random(1);
  Outcomes tally;
  for (const Writer& writer : Writers()) {
    HeldBench b;
    const std::uint64_t replies = SentBy(b, writer);
    for (const std::size_t at : Places(static_cast<std::size_t>(replies) + 1, random)) {
      for (const char* fault : {"cut", "garble", "unplugged", "late"}) {
        SCOPED_TRACE(std::string(writer.Name) + " " + fault + " at " + std::to_string(at));
        const std::string n = std::to_string(at);
        const std::string line =
            fault == std::string("cut")      ? "fault cut after " + n
            : fault == std::string("garble") ? "fault drop at " + n + " count 1"
            : fault == std::string("late")   ? "fault late " + std::to_string(2001 + random() % 400)
                                             : "";
        const std::uint64_t from = b.instrument.BytesSent();
        if (!line.empty()) b.Bench(line);
        b.OnSleep = [&] {
          if (line.empty() && b.instrument.BytesSent() >= from + at && !b.instrument.Unplugged())
            b.Bench("fault unplugged");
        };
        writer.Do(b);
        b.OnSleep = {};
        StartsRight(b, tally);
        if (HasFatalFailure()) return;
      }
    }
  }
  EXPECT_GT(tally.Measured, 250);
  EXPECT_GT(tally.Told, 150);
}

TEST(InstrumentHolds, CommandsCutAtEachByteThenStartMeasuresRight) {
  std::mt19937 random(2);
  Outcomes tally;
  for (const Writer& writer : Writers()) {
    HeldBench b;
    const std::size_t before = b.gate.Written;
    writer.Do(b);
    for (const std::size_t at : Places(b.gate.Written - before, random)) {
      SCOPED_TRACE(std::string(writer.Name) + " loses its bytes from " + std::to_string(at));
      b.fake.Messages.clear();
      b.gate.ClosesAt = b.gate.Written + at;
      writer.Do(b);
      // A command without a reply whose bytes are all lost leaves no trace; the next exchange does.
      if (b.fake.Messages.empty()) {
        EXPECT_FALSE(b.Start());
      }
      StartsRight(b, tally);
      if (HasFatalFailure()) return;
    }
  }
  EXPECT_GT(tally.Measured, 80);
  EXPECT_GT(tally.Refused, 10);
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

// Exchanges in random order, each with a fault at a random byte, START now and
// then.
TEST(InstrumentHolds, SeededFaultsInSeriesNeverLeaveAWrongSweep) {
  HeldBench b;
  std::mt19937 random(7);
  const auto below = [&random](std::size_t n) { return random() % n; };
  Outcomes tally;
  std::map<std::string, int> seen;
  constexpr int kCases = 800;
  for (int i = 0; i < kCases; ++i) {
    SCOPED_TRACE(i);
    const Writer& writer = Writers()[below(Writers().size())];
    ++seen[writer.Name];
    const std::string at = std::to_string(below(below(3) == 0 ? 400 : 12));
    switch (below(6)) {
      case 0:
        b.Bench("fault cut after " + at);
        break;
      case 1:
        b.Bench("fault drop at " + at + " count 1");
        break;
      case 2:
        b.Bench("fault late " + std::to_string(below(5000)));
        break;
      case 3:
        b.gate.LosesAt = b.gate.Written + below(4);
        break;
      case 4: {
        const std::uint64_t from = b.instrument.BytesSent() + below(12);
        b.OnSleep = [&b, from] {
          if (b.instrument.BytesSent() < from) return;
          b.OnSleep = {};
          b.Bench("fault unplugged");
        };
        break;
      }
      default:
        break;
    }
    const bool lost = b.gate.LosesAt.has_value();
    b.fake.Messages.clear();
    writer.Do(b);
    b.OnSleep = {};
    // A letter lost of a command without a reply cannot be seen; the user then sets it anew.
    if (lost && b.fake.Messages.empty()) b.link.LoseTrack();
    if (below(2) == 0 && !lost) continue;
    StartsRight(b, tally);
    if (HasFatalFailure()) return;
  }
  EXPECT_EQ(seen.size(), Writers().size());
  EXPECT_GT(tally.Measured, 250);
  EXPECT_GT(tally.Told, 60);
}

// Where nothing failed nothing is sent again: between the exchanges of an undisturbed day and each
// trigger there is the link check alone.
TEST(InstrumentHolds, AnUndisturbedLineSaysNothingMore) {
  HeldBench b;
  b.port.TakeWritten();
  for (const Writer& writer : Writers()) {
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
