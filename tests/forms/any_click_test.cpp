// SPDX-License-Identifier: MIT
// A person who clicks anywhere and types anything, also in the middle of a sweep: the line must
// never be disturbed, the plan stay legal, and the program come back to idle.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "files/session_file.h"
#include "simulated_program.h"

namespace qk::test {
namespace {

// The program may be asked to end at any moment, and then keeps its session for the next start.
void ExpectKeepable(const SimulatedProgram& vna, const std::string& when) {
  const auto back = MakeSession();
  const std::string kept = SessionBytes(vna.session);
  const Result<Done> read = ReadSession(kept, *back);
  ASSERT_TRUE(read.Ok()) << when << ": " << read.Why().Text();
  ASSERT_EQ(SessionBytes(*back), kept) << when;
}

class AnyUser {
 public:
  AnyUser(SimulatedProgram& vna, std::uint32_t seed) : vna_(vna), random_(seed) {
    vna_.fake.OnAsk = [this](const Message& message) {
      if (++asked_ % 8 == 0) ExpectKeepable(vna_, message.Text);
      vna_.instrument.FollowPrompt(message.Text);
      vna_.fake.RunFor(Below(3) * 6000);  // people take their time; timers tick meanwhile
      vna_.fake.Answers = {Below(2) == 0 ? Answer::Yes : Answer::No};
    };
    vna_.fake.OnModal = [this](Form& form) {
      Form* before = std::exchange(modal_, &form);
      for (int i = Below(6); i > 0 && form.Shown; --i) Act();
      modal_ = before;
    };
    vna_.fake.OnEvents = [this] { MeddleInSweep(); };
  }

  // One random action on one random window that can be reached.
  void Act() {
    Form& form = modal_ != nullptr ? *modal_ : *Any(vna_.fake.registry().All());
    if (!form.Shown || form.Controls().empty()) return;
    const Control& control =
        form.Controls()[static_cast<std::size_t>(Below(static_cast<int>(form.Controls().size())))];
    if (control.Name == "Exit" || control.Name == "ReStart") return;
    switch (control.Kind) {
      case ControlKind::TextField:
        form.Type(control.Name, Any(kTexts));
        break;
      case ControlKind::ListField:
        form.Select(control.Name, Below(static_cast<int>(control.Entries.size())));
        break;
      case ControlKind::CheckBox:
        form.Tick(control.Name, Below(2) == 0);
        break;
      default:
        form.Click(control.Name);
    }
  }

 private:
  int Below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(random_); }
  template <class T>
  T Any(const std::vector<T>& from) {
    return from[static_cast<std::size_t>(Below(static_cast<int>(from.size())))];
  }

  void MeddleInSweep() {
    if (!vna_.session.Flags.SweepRunning || depth_ > 2) return;
    ++depth_;
    if (Below(8) == 0) Act();
    if (Below(40) == 0) vna_.Click("Form1.StopMeasurement");
    --depth_;
  }

  inline static const std::vector<const char*> kTexts{
      "",  "0",  "-1",   "3",     "3,5",  "10",    "100",   "100.0023", "999", "3080", "1e300",
      "x", "51", "1e-9", "-1e99", "3000", "49.99", "1e999", "2 3",      ".",   "-",    "0.0001"};

  SimulatedProgram& vna_;
  std::mt19937 random_;
  Form* modal_ = nullptr;
  int depth_ = 0;
  int asked_ = 0;
};

// The calibration is lost time and again to a plan that drops it.
void Calibrate(SimulatedProgram& vna) {
  if (vna.session.Cal.AnyKind()) return;
  vna.Choose("Option6");
  vna.Press({"O_Cal", "S_Cal", "M_Cal", "Thru_Cal", "Iso_Cal"});
  vna.Click("Calibration.App_Cal");
}

void ExpectSound(SimulatedProgram& vna) {
  const SweepPlan& plan = vna.session.Plan;
  ASSERT_TRUE(vna.program.controller().Idle());
  ASSERT_TRUE(vna.At("Form1.StartMeasurement").Enabled);
  ASSERT_GE(plan.StartFreq, 3e6);
  ASSERT_GE(plan.StepFreq, 100);
  ASSERT_LE(plan.StopFreq, 3.0801e9);
  ASSERT_GE(plan.Port1Level, -20);
  ASSERT_LE(plan.Port1Level, 0);
  ASSERT_GE(vna.session.Averaging.Averages, 1);
  ASSERT_LE(vna.session.Averaging.Averages, 255);
  for (const ChannelSettings& channel : vna.session.Channels) {
    ASSERT_TRUE(std::isfinite(channel.Scale) && std::isfinite(channel.Reference));
    ASSERT_TRUE(channel.GraphType == GraphType::Smith || channel.Scale > 0);
  }
}

class AnyClick : public ::testing::TestWithParam<std::uint32_t> {};

TEST_P(AnyClick, LeavesTheLineUndisturbedAndTheProgramReady) {
  SimulatedProgram vna;
  vna.SetSweep("3", "3000", "51");
  const CalKit kits[] = {vna.session.Kit1, vna.session.Kit2};
  AnyUser user(vna, GetParam());
  for (int i = 0; i < 1000; ++i) {
    if (i % 50 == 0) {
      for (const char* window : {"Calibration", "DisplayPara", "EnhancePara"})
        vna.fake.Show(window);
      Calibrate(vna);
      ASSERT_NO_FATAL_FAILURE(ExpectKeepable(vna, "after an action"));
    }
    if (i % 10 == 0) vna.Click("Form1.StartMeasurement");
    user.Act();
    vna.fake.RunFor(300);
    ASSERT_NO_FATAL_FAILURE(ExpectSound(vna)) << "after action " << i;
  }
  EXPECT_GT(vna.program.controller().SweepsEnded(), 30);
  // No exchange was interrupted by another: the healthy instrument always answered.
  for (const Message& message : vna.fake.Messages)
    ASSERT_NE(message.Text, "No Response") << message.Title;

  // And a plain calibration with the kit that is there still measures true.
  vna.session.Kit1 = kits[0];
  vna.session.Kit2 = kits[1];
  vna.session.Planes = {};
  vna.session.Impedance = {};
  vna.fake.OnEvents = nullptr;
  vna.fake.OnModal = nullptr;
  vna.fake.OnAsk = [&](const Message& message) { vna.instrument.FollowPrompt(message.Text); };
  vna.fake.Answers = {Answer::No};
  vna.fake.Show("Calibration");
  vna.Click("Calibration.Option1");
  vna.Pick("Calibration.LvlCombo", "0");
  vna.SetSweep("3", "3000", "51");
  vna.Choose("Option3");
  vna.Press({"O_Cal", "S_Cal", "M_Cal"});
  vna.ApplyAndMeasure("port1 short");
  const Complex s11 = vna.session.Data.S11[20];
  EXPECT_NEAR(s11.re, -1, 3e-3);
  EXPECT_NEAR(s11.im, 0, 3e-3);
}

INSTANTIATE_TEST_SUITE_P(Seeds, AnyClick, ::testing::Range(1u, 13u));

}  // namespace
}  // namespace qk::test
