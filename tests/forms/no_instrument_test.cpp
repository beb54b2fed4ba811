// SPDX-License-Identifier: MIT
// Without an instrument nothing goes out, whatever is clicked and typed: what is on the port
// may be another device, which was refused.
#include <gtest/gtest.h>

#include <set>

#include "support/program_fixture.h"

namespace qk::test {
namespace {

// Works each control of each window once: typed into, ticked, chosen from, clicked.
class EveryControl {
 public:
  explicit EveryControl(ScriptedProgram& vna) : vna_(vna) {
    vna_.fake.OnModal = [this](Form& form) { Work(form); };
  }
  int Worked() const { return worked_; }

  void WorkAll() {
    for (Form* form : vna_.fake.registry().All()) {
      begun_.clear();
      vna_.fake.Answers.assign(20, Answer::Yes);
      vna_.fake.Show(form->Name());
      Work(*form);
      vna_.fake.Hide(form->Name());
    }
  }

 private:
  // By index: a click may add to nothing, but change what can be worked.
  void Work(Form& form) {
    if (!begun_.insert(form.Name()).second) return;
    for (std::size_t i = 0; i < form.Controls().size(); ++i) {
      const Control& control = form.Controls()[i];
      if (control.Name == "Exit" || control.Name == "ReStart") continue;
      if (!form.Shown) vna_.fake.Show(form.Name());  // the one before closed it
      worked_ += WorkOne(form, control);
    }
  }
  bool WorkOne(Form& form, const Control& control) {
    switch (control.Kind) {
      case ControlKind::TextField:
        return form.Type(control.Name, "100");
      case ControlKind::ListField:
        return form.Select(control.Name, static_cast<int>(control.Entries.size()) - 1);
      case ControlKind::CheckBox:
        return form.Tick(control.Name, !control.Checked);
      default:
        return form.Click(control.Name);
    }
  }

  ScriptedProgram& vna_;
  std::set<std::string> begun_;
  int worked_ = 0;
};

TEST(NoInstrument, NothingIsSentWhateverIsClickedInWhicheverWindow) {
  for (bool CalState::*kind :
       {&CalState::CalS11, &CalState::CalS21, &CalState::CalS11S21, &CalState::Cal12Term}) {
    ScriptedProgram vna;
    vna.session.Id.PortNumber = 0;
    ASSERT_TRUE(vna.port.Open());  // as the scan left it
    // All that a window could ask for before it talks.
    vna.session.Flags.SweepLoaded = true;
    EveryControl user(vna);
    for (int round = 0; round < 2; ++round) {
      vna.session.Cal = {};
      vna.session.Cal.*kind = vna.session.Cal.CalDataReady = vna.session.Cal.CalThruReady = true;
      vna.Click("Form1.StartMeasurement");
      user.WorkAll();
      EXPECT_TRUE(vna.program.controller().Idle());
    }
    for (const TimerId timer : {TimerId::Timer1, TimerId::Timer2, TimerId::Timer3})
      vna.program.Tick(timer);
    EXPECT_EQ(vna.port.Writes, std::vector<Bytes>{});
    EXPECT_GT(user.Worked(), 400);
  }
}

}  // namespace
}  // namespace qk::test
