// SPDX-License-Identifier: MIT
// The whole program on the simulated bench, calibrated, with Check Calibration open.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "simulated_program.h"

namespace qk::test {

struct CheckWindow : testing::Test {
  SimulatedProgram vna;
  std::string loadInstead;                     // what stands for the load of the calibration
  std::map<std::string, std::string> instead;  // a bench line for another standard, by its prompt

  CheckWindow() {
    vna.Bench("noise off");
    vna.fake.OnAsk = [this](const Message& message) {
      vna.instrument.FollowPrompt(message.Text);
      if (!loadInstead.empty() && message.Text == "Matched Load on Port 1") vna.Bench(loadInstead);
      if (const auto other = instead.find(message.Text); other != instead.end())
        vna.Bench(other->second);
    };
  }
  void CalibrateS11(const char* points = "201") {
    vna.SetSweep("3", "3000", points);
    vna.Choose("Option3");
    vna.Press({"O_Cal", "S_Cal", "M_Cal"});
    vna.Click("Calibration.App_Cal");
    loadInstead.clear();
    instead.clear();
    vna.fake.Messages.clear();
    vna.Click("Form1.CheckCal");
  }
  void CalibrateAll(const char* points = "101") {
    vna.SetSweep("3", "3000", points);
    vna.Choose("Option5");
    vna.Press({"O_Cal", "S_Cal", "M_Cal", "Iso_Cal", "Thru_Cal"});
    vna.Click("Calibration.App_Cal");
    vna.fake.Messages.clear();
    vna.Click("Form1.CheckCal");
  }
  void CalibrateS21() {
    vna.SetSweep("3", "3000", "101");
    vna.Choose("Option4");
    vna.Press({"Thru_Cal", "Iso_Cal"});
    vna.Click("Calibration.App_Cal");
    vna.fake.Messages.clear();
    vna.Click("Form1.CheckCal");
  }
  void Check(const char* method) {
    vna.Window("CheckCal").Tick(method, true);
    EXPECT_TRUE(vna.Click("CheckCal.Check"));
  }
  const CalCheck& Found() { return vna.program.controller().quality().Check; }
  double SizeAt(CheckTerm term, int k) { return *Found().At(term, vna.session.Plan.Frequency(k)); }
};

// Calibrated in all four parameters, with noise.
struct Trust : CheckWindow {
  Trust() {
    CalibrateAll();
    vna.Bench("noise on");
  }
  void Sweeps(int count) {
    for (int n = 0; n < count; ++n) vna.Measure();
  }
  Texts Hints() {
    Texts texts;
    for (const Hint& hint : vna.program.controller().quality().Hints.Active())
      texts.push_back(hint.Text);
    return texts;
  }
};

}  // namespace qk::test
