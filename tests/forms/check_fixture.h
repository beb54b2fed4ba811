// SPDX-License-Identifier: MIT
// The whole program on the simulated bench, calibrated, with Check Calibration open.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <sstream>
#include <string>

#include "sim/front_end.h"
#include "simulated_program.h"
#include "true_device.h"

namespace qk::test {

inline double Db(double size) {
  return 20 * std::log10(size);
}

// What the program's one-port terms leave of the bench's, at point k: both are bilinear maps of the
// reflection, and so is what remains.
// changeDb: what the test set has changed by since.
inline Residual Left(const SimulatedProgram& vna, int k, double changeDb = 0, int port = 1) {
  const auto value = [k](const ComplexArray& a) { return Phasor(a[k].re, a[k].im); };
  const PortTerms& terms = port == 1 ? vna.session.Terms.Forward : vna.session.Terms.Reverse;
  const Phasor ed = value(terms.ED), es = value(terms.ES), ert = value(terms.ERT);
  const sim::FrontEndTerms bench = sim::FrontEndAt(vna.session.Plan.Frequency(k));
  sim::SideTerms truth = port == 1 ? bench.Forward : bench.Reverse;
  truth.Directivity *= std::pow(10, changeDb / 20);
  truth.ReflectionTracking *= std::pow(10, changeDb / 20);
  const Phasor off = truth.Directivity - ed;
  const Phasor slope = truth.ReflectionTracking - off * truth.SourceMatch;
  const Phasor base = es * off + ert;
  Residual left;
  left.Directivity = off / base;
  left.SourceMatch = -(es * slope - ert * truth.SourceMatch) / base;
  left.Tracking = slope / base + left.Directivity * left.SourceMatch - 1.0;
  return left;
}

struct CheckWindow : testing::Test {
  SimulatedProgram vna;
  std::string loadInstead;                     // what replaces the load of the calibration
  std::map<std::string, std::string> instead;  // bench lines for another standard, by its prompt

  CheckWindow() {
    vna.Bench("noise off");
    vna.fake.OnAsk = [this](const Message& message) {
      vna.instrument.FollowPrompt(message.Text);
      if (!loadInstead.empty() && message.Text == "Matched Load on Port 1") vna.Bench(loadInstead);
      if (const auto other = instead.find(message.Text); other != instead.end()) {
        std::istringstream lines(other->second);
        for (std::string line; std::getline(lines, line, ';');) vna.Bench(line);
      }
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
