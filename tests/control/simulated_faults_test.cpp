// SPDX-License-Identifier: MIT
// The faults of the simulated instrument at random places of random use, seeded, on the moved
// clock: never a hang, a wrong state or a second talker on the line, and after the fault is gone
// the next START measures the right numbers.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "control/control_fixture.h"
#include "control/inside.h"
#include "control/simulated_control.h"

namespace qk::test {
namespace {

constexpr int kRuns = 750;  // of each kind of sweep
// Marks the end of a stream in the record of the wire; no command contains it.
constexpr char kStreamEnd = '|';
// Ratios that are the same but for the rounding of a single reading to whole counts.
constexpr double kSame = 2e-3;

// What the runs came across, so that it can be seen that they came across everything.
struct LineTally {
  int Stalls = 0, SilentChecks = 0, FailedServices = 0, Aborts = 0, WholeSweeps = 0, Pulled = 0;
};

// One program and one instrument, used on and on while faults come and go.
class FaultyLine {
 public:
  FaultyLine(const KindOfSweep& kind, LineTally& tally) : kind_(kind), tally_(tally) {
    b_.MakeReady(kind.Flag);
    Bench("temperature 25");
    Bench("offsets 1 -2");
    // A sleep lasts a few milliseconds longer than asked: bytes come in lumps.
    b_.OnSleep = [this] { b_.clock.AdvanceUs(lumpUs_); };
    b_.fake.OnAsk = [this](const Message& message) { Asked(message); };
    b_.fake.OnEvents = [this] { Events(); };
    Mended();
    truth_ = Raw();
  }

  void Run(std::uint32_t seed) {
    random_.seed(seed);
    b_.session->Id.FirmwareVersion = Pick<const char*>({"1.0", "1.05", "1.2"});
    lumpUs_ = Pick<std::int64_t>({0, 1000, 4000, 30'000});
    calm_ = false;
    left_ = 1 + Below(2);
    Fault();
    if (Below(3) == 0) Handler();
    Start();
    CheckIdle();
    if (Below(3) == 0) {
      Start();  // the fault still there
      CheckIdle();
    }
    Mended();
    const SParamData now = Raw();
    for (int p : {0, 17, kPoints - 1}) {
      EXPECT_LT(Distance(now, truth_, p), kSame) << "point " << p;
    }
  }

 private:
  int Below(int n) { return static_cast<int>(random_() % static_cast<std::uint32_t>(n)); }
  template <class T>
  T Pick(std::initializer_list<T> values) {
    return *(values.begin() + Below(static_cast<int>(values.size())));
  }
  void Bench(const std::string& line) { ASSERT_TRUE(b_.instrument.Bench(line).Ok) << line; }

  void Fault() {
    const std::string n = std::to_string(Below(Below(2) ? 40 : 2500));
    const char* sweep = Below(2) ? "fault sweep " : "fault ";
    switch (Below(10)) {
      case 0:
        return Bench("fault silence");
      case 1:
        return Bench("fault cut after " + n);
      case 2:
        return Bench("fault late " + std::to_string(Below(3000)));
      case 3:
        return Bench("fault stall after " + n);
      case 4:
        return Bench("fault nolock");
      case 5:
        ++tally_.Pulled;
        return Bench("fault unplugged");
      case 6:
        return Bench("fault none");  // it comes and goes
      case 7:
        return Bench("fault replugged");
      default:
        return Bench(sweep + std::string(Pick({"drop", "add", "double", "garble"})) + " at " + n +
                     " count " + std::to_string(1 + Below(Below(2) ? 3 : 300)));
    }
  }

  void Handler() {
    Controller& control = b_.control;
    SweepFlags& flags = b_.session->Flags;
    switch (Below(12)) {
      case 0:
        return control.Tick(Pick({TimerId::Timer1, TimerId::Timer2, TimerId::Timer3}));
      case 1:
        b_.session->Averaging.AveragesSet = Pick<std::int16_t>({1, 2, 5});
        return control.AverOn();
      case 2:
        return control.AverOff();
      case 3:
        flags.DwellOn = !flags.DwellOn;
        flags.DwellChangeDue = true;
        return;
      case 4:
        flags.LevelChangeDue = true;
        return;
      case 5:
        if (!flags.SweepIdle) control.StartMeasurement();
        return;
      case 6:
        return control.SmoothChanged();
      case 7:
        b_.fake.Answers = {Answer::No};
        return control.Exit();
      case 8:
        b_.fake.Answers = {Answer::Yes, Answer::Cancel};
        return control.ReStart();
      case 9:
        return control.StopMeasurement();
      default:
        return Fault();
    }
  }

  void Start() {
    events_ = 0;
    const long ended = b_.control.SweepsEnded();
    b_.control.StartMeasurement();
    Note();
    tally_.WholeSweeps += static_cast<int>(b_.control.SweepsEnded() - ended);
  }

  // Takes over what has been written, and marks where the stream of a sweep is over.
  void Note() {
    wire_ += b_.Written();
    const bool over = b_.session->Display.PointCounter >= kPoints || b_.session->Flags.SweepIdle ||
                      (kind_.Mode == SweepMode::S21 && b_.session->Flags.ReplyTimedOut);
    if (over) MarkStreamEnd();
  }

  void MarkStreamEnd() {
    if (!wire_.empty() && wire_.back() != kStreamEnd) wire_ += kStreamEnd;
  }

  void Events() {
    Note();
    if (nested_ || b_.session->Flags.SweepIdle) return;
    if (++events_ > 100'000) {
      ADD_FAILURE() << "the sweep does not end";
      b_.control.CloseAtOnce();
      return;
    }
    nested_ = true;
    if (calm_) {
      if (b_.session->Display.PointCounter == kPoints) b_.control.StopMeasurement();
    } else {
      if (Below(30) == 0) Handler();
      if (Below(60) == 0 && left_ > 0 && --left_ == 0) b_.control.StopMeasurement();
      if (events_ > 2000) b_.control.StopMeasurement();
    }
    EXPECT_EQ(b_.Written(), "") << "a second talker";
    nested_ = false;
  }

  void Asked(const Message& message) {
    if (message.Text != "No Response") return;
    const bool sweeps = message.Title == kind_.Title || message.Title == kind_.StallTitle;
    ++(!sweeps                          ? tally_.FailedServices
       : b_.session->Flags.SweepRunning ? tally_.Stalls
                                        : tally_.SilentChecks);
    Note();
    if (sweeps) MarkStreamEnd();
    if (Below(4) == 0) b_.clock.AdvanceMs(Below(5000));
  }

  // Bytes of the command there, data and all: a record may hold the letter of a trigger.
  std::size_t CommandAt(std::size_t at) const {
    const auto byte = [&](std::size_t i) {
      return i < wire_.size() ? static_cast<unsigned char>(wire_[i]) : std::size_t{0};
    };
    switch (wire_[at]) {
      case 'W':
        return 4 + byte(at + 1);
      case 'N':
        return 1 + static_cast<std::size_t>(kPoints);
      case '*':
        return 5;
      case 'D':
        return 2;
      case 'Y':
        return byte(at + 1) == '8' ? 3 : 2;
      default:
        return 1;
    }
  }

  void CheckIdle() {
    const SweepFlags& flags = b_.session->Flags;
    ASSERT_TRUE(flags.SweepIdle);
    ASSERT_FALSE(flags.SweepRunning);
    ASSERT_FALSE(b_.fake.IsShown("SweepStopping"));
    ASSERT_EQ(b_.session->Panels[6], "Sweep Off");
    for (const Message& message : b_.fake.Messages)
      ASSERT_TRUE(message.Choice != Buttons::Ok || message.Text == "No Response" ||
                  message.Text == "Averages currently set to 1")
          << message.Text;
    b_.fake.Messages.clear();
    b_.fake.Events.clear();
    // Behind a trigger comes the abort, or nothing until its stream is over.
    for (std::size_t at = 0; at < wire_.size();) {
      const std::size_t length = CommandAt(at);
      const bool trigger = wire_.substr(at, length) == kind_.Trigger;
      at += length;
      if (!trigger) continue;
      const char next = at < wire_.size() ? wire_[at] : kStreamEnd;
      ASSERT_TRUE(next == 'O' || next == kStreamEnd) << wire_;
      tally_.Aborts += next == 'O';
    }
    wire_.clear();
  }

  // The fault is gone, and half a command that the instrument had is forgotten. Six ticks push out
  // an offset that a garbled byte has made; it cannot be distinguished from a good one. Then one
  // sweep, at the first click, with all of the session's settings in the instrument.
  void Mended() {
    Bench("fault none");
    lumpUs_ = 4000;
    b_.clock.AdvanceMs(10'000);
    b_.fake.Messages.clear();
    calm_ = true;
    for (int i = 0; i < 6; ++i) b_.control.Tick(TimerId::Timer1);
    wire_.clear();
    b_.Written();
    const long ended = b_.control.SweepsEnded();
    b_.session->Display.PointCounter = 0;  // not of the sweep before
    Start();
    ASSERT_EQ(b_.control.SweepsEnded(), ended + 1);
    ASSERT_TRUE(b_.fake.Messages.empty()) << b_.fake.MessageTexts().front();
    ASSERT_EQ(wire_.front(), 'Q');
    ASSERT_EQ(wire_.substr(wire_.rfind(kind_.Trigger)), std::string(kind_.Trigger) + kStreamEnd);
    const SweepFlags& flags = b_.session->Flags;
    ASSERT_FALSE(flags.AveragesChangeDue || flags.OffsetUpdateDue || flags.DwellChangeDue ||
                 flags.LevelChangeDue);
    ASSERT_EQ(WhatIsWrongInside(b_), "");
    wire_.clear();
    CheckIdle();
  }

  SParamData Raw() const { return b_.session->Data; }
  static double Distance(const SParamData& a, const SParamData& b, int p) {
    const auto apart = [p](const ComplexArray& x, const ComplexArray& y) {
      return std::hypot(x[p].re - y[p].re, x[p].im - y[p].im);
    };
    return apart(a.RawS11, b.RawS11) + apart(a.RawS21, b.RawS21) + apart(a.RawS12, b.RawS12) +
           apart(a.RawS22, b.RawS22);
  }

  SimulatedControl b_;
  std::mt19937 random_;
  const KindOfSweep& kind_;
  LineTally& tally_;
  SParamData truth_;
  std::string wire_;
  std::int64_t lumpUs_ = 0;
  int left_ = 0;
  int events_ = 0;
  bool calm_ = true;
  bool nested_ = false;
};

class SimulatedFaults : public ::testing::TestWithParam<KindOfSweep> {};

INSTANTIATE_TEST_SUITE_P(Sweeps, SimulatedFaults, ::testing::ValuesIn(KindsOfSweep()),
                         [](const auto& kind) { return std::string("kind") + kind.param.Trigger; });

TEST_P(SimulatedFaults, NeverHangNorTalkTwiceAndStartMeasuresRightWhenTheyAreGone) {
  LineTally tally;
  FaultyLine line(GetParam(), tally);
  const auto first = 10'000 * static_cast<std::uint32_t>(GetParam().Mode);
  for (std::uint32_t seed = first; seed < first + kRuns; ++seed) {
    SCOPED_TRACE(seed);
    line.Run(seed);
    if (HasFailure()) break;
  }
  EXPECT_GT(tally.Stalls, 30);
  EXPECT_GT(tally.SilentChecks, 30);
  EXPECT_GT(tally.FailedServices, 30);
  EXPECT_GT(tally.Aborts, 30);
  EXPECT_GT(tally.Pulled, 30);
  EXPECT_GT(tally.WholeSweeps, 300);
}

}  // namespace
}  // namespace qk::test
