// SPDX-License-Identifier: MIT
// Faults and handlers in random order, seeded, on the moved clock: the program never hangs, never
// shows a wrong state, never talks into a stream, and measures right at the first START after the
// fault is gone.
#include <gtest/gtest.h>

#include <random>

#include "control/control_fixture.h"

namespace qk::test {
namespace {

std::vector<double> Level(int p, int samples) {
  std::vector<double> volts(static_cast<std::size_t>(samples), 1.0);
  volts[1] = 0.5 + 0.005 * p;
  return volts;
}

// What the runs came across, so that it can be seen that they came across everything.
struct Tally {
  int Stalls = 0, SilentChecks = 0, FailedServices = 0, Aborts = 0, ReStarts = 0, WholeSweeps = 0;
};

// One run: a program in use, with what goes wrong around it.
class FaultRun {
 public:
  FaultRun(std::uint32_t seed, const KindOfSweep& kind, Tally& tally)
      : random_(seed), kind_(kind), tally_(tally) {
    b_.MakeReady(kind);
    b_.port.Volts = Level;
    b_.port.PointUs = Pick({200, 1500, 7000, 30'000});
    b_.session->Id.FirmwareVersion = Pick<const char*>({"0.9", "1.0", "1.05", "1.1", "1.2"});
    b_.session->Averaging.AveragesSet = Pick<std::int16_t>({0, 1, 2, 5});
    b_.port.OnCommand = [this](const std::string& command) { WatchTheLine(command); };
    b_.fake.OnEvents = [this] { Events(); };
    b_.fake.OnAsk = [this](const Message& message) { Asked(message); };
  }

  void Go() {
    for (int round = 0; round < 3; ++round) {
      left_ = 1 + static_cast<int>(random_() % 3);
      events_ = 0;
      Fault();
      const long ended = b_.control.SweepsEnded();
      b_.control.StartMeasurement();
      inSweep_ = false;
      tally_.WholeSweeps += static_cast<int>(b_.control.SweepsEnded() - ended);
      CheckIdle();
      if (b_.fake.ExitCode) return;
      if (!b_.session->Cal.AnyKind()) {
        ++tally_.ReStarts;
        b_.MakeReady(kind_);
        // A re-start that found no instrument has not set its count.
        b_.session->Averaging.Averages = static_cast<std::int16_t>(b_.port.Averages);
      }
    }
    Mended();
  }

 private:
  template <class T>
  T Pick(std::initializer_list<T> values) {
    return *(values.begin() + static_cast<std::ptrdiff_t>(random_() % values.size()));
  }

  void Fault() {
    SweepingPort& port = b_.port;
    switch (random_() % 9) {
      case 0:
        port.PointsInStream = static_cast<int>(random_() % kPoints);
        break;
      case 1:
        port.DropByteAt = random_() % 600;
        break;
      case 2:
        port.Surplus.assign(1 + random_() % 700, static_cast<std::uint8_t>(random_()));
        break;
      case 3:
        port.Silent = !port.Silent;
        break;
      case 4:
        port.Status = Pick<const char*>({"R", "S", "X", "RR", "\n"});
        break;
      case 5:
        if (port.Plugged)
          port.Unplug();
        else
          port.Plugged = true;
        break;
      case 6:
        port.EndMark = false;
        break;
      case 7:
        port.AbortTail.assign(random_() % 200, 'X');
        break;
      default:
        port.SendUnasked({static_cast<std::uint8_t>(random_()), 'R', 'X', 'X'});
        break;
    }
  }

  void Handler() {
    Controller& control = b_.control;
    SweepFlags& flags = b_.session->Flags;
    switch (random_() % 13) {
      case 0:
        return control.Tick(Pick({TimerId::Timer1, TimerId::Timer2, TimerId::Timer3}));
      case 1:
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
        return control.StartMeasurement();
      case 6:
        b_.session->Averaging.SmoothOn = !b_.session->Averaging.SmoothOn;
        return control.SmoothChanged();
      case 7:
        b_.fake.Answers = {Answer::No};
        return control.Exit();
      case 8:
        b_.fake.Answers = {Answer::Yes, Answer::Cancel};
        return control.ReStart();
      case 9:
        b_.session->Averaging.AveragesSet = Pick<std::int16_t>({0, 1, 2, 5});
        return;
      case 10:
        return control.StopMeasurement();
      case 11:
        if (random_() % 4 != 0) return;
        b_.fake.Answers = {Answer::Yes, Answer::Ok};
        resets_ = true;
        control.ReStart();
        resets_ = false;
        return;
      default:
        return Fault();
    }
  }

  void Events() {
    b_.clock.AdvanceUs(static_cast<std::int64_t>(random_() % 50));
    NoteSweepsEnd();
    if (b_.session->Flags.SweepIdle || nested_) return;
    if (++events_ > 200'000) {
      ADD_FAILURE() << "the sweep does not end";
      b_.control.CloseAtOnce();
      return;
    }
    nested_ = true;
    const std::size_t written = b_.port.BytesWritten;
    if (random_() % 40 == 0) Handler();
    if (random_() % 60 == 0 && left_ > 0 && --left_ == 0) b_.control.StopMeasurement();
    if (events_ > 5000) b_.control.StopMeasurement();
    if (inSweep_) {
      EXPECT_EQ(b_.port.BytesWritten, written) << "a second talker";
    }
    nested_ = false;
  }

  void NoteSweepsEnd() {
    if (b_.session->Display.PointCounter >= kPoints ||
        (kind_.Mode == SweepMode::S21 && b_.session->Flags.ReplyTimedOut))
      inSweep_ = false;
  }

  void Asked(const Message& message) {
    if (message.Title == kind_.StallTitle) inSweep_ = false;
    if (message.Text == "No Response") {
      const bool sweeps = message.Title == kind_.Title || message.Title == kind_.StallTitle;
      ++(!sweeps                          ? tally_.FailedServices
         : b_.session->Flags.SweepRunning ? tally_.Stalls
                                          : tally_.SilentChecks);
    }
    if (resets_ && message.Choice == Buttons::OkCancel) b_.port.Reset();
    if (random_() % 4 == 0) b_.clock.AdvanceMs(static_cast<std::int64_t>(random_() % 5000));
  }

  // Between a trigger and the end of its stream nothing may go out but an abort.
  void WatchTheLine(const std::string& command) {
    EXPECT_TRUE(!inSweep_ || command == "O") << command << " into a sweep";
    tally_.Aborts += command == "O";
    inSweep_ = command == kind_.Trigger;
  }

  void CheckIdle() {
    const SweepFlags& flags = b_.session->Flags;
    ASSERT_TRUE(flags.SweepIdle);
    ASSERT_FALSE(flags.SweepRunning);
    ASSERT_FALSE(b_.fake.IsShown("SweepStopping"));
    ASSERT_TRUE(b_.session->Panels[6].empty() || b_.session->Panels[6] == "Sweep Off");
    // Only failures of the link are shown.
    for (const Message& message : b_.fake.Messages)
      ASSERT_TRUE(message.Choice != Buttons::Ok || message.Text.starts_with("No Response") ||
                  message.Text == "Link Error. Re-start Program." ||
                  message.Text == "Instrument Failed to Respond" ||
                  message.Text == "Wrong model instrument" ||
                  message.Text == "Averages currently set to 1")
          << message.Text;
    b_.fake.Messages.clear();
  }

  // The fault is gone: the next click measures, with the right numbers.
  void Mended() {
    b_.port.Mend();
    b_.fake.OnEvents = [this] {
      ++events_;
      NoteSweepsEnd();
      const bool last = b_.session->Display.PointCounter == kPoints;
      if (!b_.session->Flags.SweepIdle && (last || events_ > 100'000)) b_.control.StopMeasurement();
    };
    events_ = 0;
    const long ended = b_.control.SweepsEnded();
    b_.session->Display.PointCounter = 0;  // not of the sweep before
    b_.control.StartMeasurement();
    ASSERT_EQ(b_.control.SweepsEnded(), ended + 1);
    ASSERT_TRUE(b_.fake.Messages.empty()) << b_.fake.MessageTexts().front();
    const SweepFlags& flags = b_.session->Flags;
    ASSERT_FALSE(flags.AveragesChangeDue || flags.OffsetUpdateDue || flags.DwellChangeDue ||
                 flags.LevelChangeDue);
    ASSERT_EQ(b_.session->Averaging.Averages, static_cast<int>(b_.port.Averages));
    const SParamData& data = b_.session->Data;
    for (int p : {0, 17, kPoints - 1}) {
      const double ratio = (kind_.Mode == SweepMode::S11 ? data.RawS11 : data.RawS21)[p].re;
      ASSERT_NEAR(ratio, Expected(p), 1e-3) << p;
    }
  }

  // Real part of (test I + j test Q) over (reference I + j reference Q), dc offsets off.
  double Expected(int p) const {
    const ReceiverState& rx = b_.session->Receiver;
    const double i = 0.5 + 0.005 * p - rx.DcOffsetQ, q = 1 - rx.DcOffsetQ;
    const double refI = 1 - rx.DcOffsetI, refQ = 1 - rx.DcOffsetI;
    return (i * refI + q * refQ) / (refI * refI + refQ * refQ);
  }

  SweepingControl b_;
  std::mt19937 random_;
  const KindOfSweep& kind_;
  Tally& tally_;
  int left_ = 1;
  int events_ = 0;
  bool nested_ = false;
  bool inSweep_ = false;
  bool resets_ = false;
};

class FaultRuns : public ::testing::TestWithParam<KindOfSweep> {};

INSTANTIATE_TEST_SUITE_P(Sweeps, FaultRuns, ::testing::ValuesIn(KindsOfSweep()),
                         [](const auto& kind) { return std::string("kind") + kind.param.Trigger; });

TEST_P(FaultRuns, NeverHangNorTalkTwiceNorStayWedged) {
  Tally tally;
  const auto first = 10'000 * static_cast<std::uint32_t>(GetParam().Mode);
  for (std::uint32_t seed = first; seed < first + 600; ++seed) {
    SCOPED_TRACE(seed);
    FaultRun(seed, GetParam(), tally).Go();
    if (HasFatalFailure() || HasNonfatalFailure()) break;
  }
  EXPECT_GT(tally.Stalls, 30);
  EXPECT_GT(tally.SilentChecks, 30);
  EXPECT_GT(tally.FailedServices, 30);
  EXPECT_GT(tally.Aborts, 30);
  EXPECT_GT(tally.ReStarts, 5);
  EXPECT_GT(tally.WholeSweeps, 300);
}

}  // namespace
}  // namespace qk::test
