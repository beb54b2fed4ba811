// SPDX-License-Identifier: MIT
// Check Calibration of port 2, by the isolation and by three standards, and what the window says of
// the uncertainties.
#include "check_fixture.h"
#include "control/check_calibration.h"
#include "files/check_trend.h"

namespace qk::test {
namespace {

// At port 1 the calibration is good: standards and through show nothing.
TEST_F(CheckWindow, ByIsolationFindsAWrongLoadOfPort2) {
  instead["Matched Load on Ports 1 & 2"] = "port2 mismatch 26";
  CalibrateAll();
  instead.clear();
  for (const char* method : {"Standards", "Through"}) {
    Check(method);
    EXPECT_EQ(vna.Value("CheckCal.Verdict"), "Good") << method;
  }
  const auto basis = [this] {
    return UncertaintyBasis(vna.program.controller().quality(), vna.session, Parameter::S21);
  };
  EXPECT_TRUE(basis().ends_with(", connectors, errors of port 2.")) << basis();
  EXPECT_EQ(vna.Value("CheckCal.Note").find("port 2"), std::string::npos) << "said once";
  Check("Isolation");
  EXPECT_EQ(vna.Troubles(), Texts{});
  const std::string verdict = vna.Value("CheckCal.Verdict");
  EXPECT_TRUE(verdict.starts_with("Directivity of port 2 -26.0 dB at ")) << verdict;
  EXPECT_TRUE(verdict.ends_with(" MHz: above -40 dB")) << verdict;
  EXPECT_NE(basis().find(" Above the limit: directivity of port 2 -26.0 dB."), std::string::npos)
      << basis();
  EXPECT_TRUE(basis().ends_with(", connectors, short and open of port 2.")) << basis();
  EXPECT_NE(basis().find(": isolation. Isolation (same kit) 20"), std::string::npos) << basis();
  EXPECT_NE(vna.Value("CheckCal.Basis").find("too large: directivity of port 2 -26.0 dB"),
            std::string::npos)
      << vna.Value("CheckCal.Basis");
  const std::string words = vna.Value("CheckCal.Basis");
  const std::size_t second = words.find("S21: ");
  const std::size_t isolation = words.find("; Isolation 20", second);
  EXPECT_NE(isolation, std::string::npos) << words;
  EXPECT_EQ(words.find("; Isolation 20", isolation + 1), std::string::npos) << "said once";
  EXPECT_NEAR(ReadCheckTrend(CheckTrendPath(vna.session))->back().Terms[6]->Db, -26, 0.1);
  const LastChecks now = LastChecksOf(vna.session, vna.program.controller().quality());
  ASSERT_TRUE(now[6]);
  EXPECT_TRUE(now[6]->SameKit);
  EXPECT_FALSE(now[5]->SameKit);
  vna.program.controller().quality().Check.Forget();  // as after a new start of the program
  const LastChecks later = LastChecksOf(vna.session, vna.program.controller().quality());
  ASSERT_TRUE(later[6]);
  EXPECT_TRUE(later[6]->SameKit);
  EXPECT_FALSE(later[5]->SameKit);
  EXPECT_EQ(later[6]->By, CheckMethod::Isolation);
}

TEST_F(CheckWindow, ByIsolationCallsAGoodLoadOfPort2Good) {
  CalibrateAll();
  Check("Isolation");
  const std::string verdict = vna.Value("CheckCal.Verdict");
  EXPECT_TRUE(verdict.starts_with("Isolation -")) << verdict;
  EXPECT_NE(verdict.find(" MHz: no limit\nDirectivity of port 2 -"), std::string::npos) << verdict;
  EXPECT_TRUE(verdict.ends_with(" MHz: good")) << verdict;
  EXPECT_EQ(vna.Value("CheckCal.Note"), "Three standards at port 2 check its short and open.");
}

// A kit at port 2 whose open is wrong: three standards find what it left, by the exact solve.
TEST_F(CheckWindow, ByThreeStandardsAtPort2FindsAWrongOpenThere) {
  instead["Open Circuit on Ports 1 and 2 (0.00 / 0.00mm)"] = "port2 open line 2";
  CalibrateAll();
  instead.clear();
  Check("Standards");
  EXPECT_EQ(vna.Value("CheckCal.Verdict"), "Good") << "port 1";
  Check("Standards2");
  EXPECT_EQ(vna.Troubles(), Texts{});
  EXPECT_NE(vna.Value("CheckCal.Verdict").find("Source match of port 2 -"), std::string::npos)
      << vna.Value("CheckCal.Verdict");
  EXPECT_EQ(vna.Value("CheckCal.Note"),
            "The kit used for the calibration shows drift and repeatability only; another kit "
            "shows the residuals.");
  for (int k = 0; k < vna.session.Plan.NumPoints; ++k) {
    const Residual left = Left(vna, k, 0, 2);
    EXPECT_NEAR(SizeAt(CheckTerm::Directivity2, k), std::abs(left.Directivity), 2e-4) << k;
    EXPECT_NEAR(SizeAt(CheckTerm::SourceMatch2, k), std::abs(left.SourceMatch), 2e-3) << k;
    EXPECT_NEAR(SizeAt(CheckTerm::Tracking2, k), std::abs(left.Tracking), 2e-3) << k;
  }
  EXPECT_GT(SizeAt(CheckTerm::SourceMatch2, 100), 0.05);
  const std::string basis =
      UncertaintyBasis(vna.program.controller().quality(), vna.session, Parameter::S11);
  EXPECT_NE(basis.find(" Three standards at port 2 (same kit) 20"), std::string::npos) << basis;
  EXPECT_TRUE(
      basis.ends_with(" Left out: noise (too few sweeps so far), linearity of the "
                      "receiver, cables, connectors."))
      << basis;
  EXPECT_EQ(ReadCheckTrend(CheckTrendPath(vna.session))->back().Method, CheckMethod::Standards2);
  vna.session.Kit2.KitName = "Other";
  Check("Standards2");
  EXPECT_FALSE(Found().Of(CheckTerm::Directivity2).SameKit);
  EXPECT_TRUE(Found().Of(CheckTerm::Directivity).SameKit);
  EXPECT_EQ(ReadCheckTrend(CheckTrendPath(vna.session))->back().Standard, "Other");
}

// The prompt names what the check computes with: the kit of port 2, with its own offset.
TEST_F(CheckWindow, OfPort2AsksForTheStandardsOfTheKitOfPort2) {
  vna.session.Kit2.KitOffset = 0.002F;
  CalibrateAll();
  Texts asked;
  const auto follow = vna.fake.OnAsk;
  vna.fake.OnAsk = [&](const Message& message) {
    asked.push_back(message.Text);
    follow(message);
  };
  Check("Standards2");
  EXPECT_EQ(asked, (Texts{"Short Circuit on Port 2 (2.00mm)", "Open Circuit on Port 2 (2.00mm)",
                          "Matched Load on Port 2"}));
  EXPECT_EQ(vna.Value("CheckCal.Verdict"), "Good");
}

TEST_F(CheckWindow, OfAnotherCalibrationIsGoneWhenThatOneIsApplied) {
  CalibrateAll();
  Check("Standards");
  ASSERT_TRUE(Found().Any());
  CalibrateS11();
  EXPECT_FALSE(Found().Any());
  EXPECT_EQ(vna.Value("CheckCal.Verdict"), "");
  EXPECT_EQ(vna.Value("CheckCal.Basis"), "");
}

TEST_F(CheckWindow, OfPort2NeedsACalibrationOfBothDirections) {
  CalibrateS11();
  Check("Standards2");
  EXPECT_EQ(vna.Troubles(),
            Texts{"Check Calibration: Only a calibration of both directions corrects port 2."});
  EXPECT_EQ(vna.Value("CheckCal.Basis"), "Only a calibration of both directions corrects port 2.");
}

// The line of the basis: nothing before a check, then what the bands are based on; it stays over a
// change of the session and of the method.
TEST_F(CheckWindow, ShowsWhatTheUncertaintiesAreBasedOn) {
  CalibrateAll();
  EXPECT_EQ(vna.Value("CheckCal.Basis"), "");
  Check("Standards");
  const auto basis = [this] { return vna.Value("CheckCal.Basis"); };
  const std::string once = basis();
  EXPECT_TRUE(
      once.starts_with("S11: \xC2\xB1U k=2; same kit; without load match, noise, linearity, "
                       "cables, port 2; Three standards 20"))
      << once;
  EXPECT_NE(once.find("\nS21: no \xC2\xB1U: not checked: transmission tracking"), std::string::npos)
      << once;
  vna.fake.SessionChanged();
  EXPECT_EQ(basis(), once);
  vna.Window("CheckCal").Tick("PortMatch", true);
  EXPECT_EQ(basis(), "Only a calibration of S21 alone leaves both matches uncorrected.");
  vna.Window("CheckCal").Tick("Through", true);
  EXPECT_EQ(basis(), once);
  for (int n = 0; n < 5; ++n) vna.Measure();
  EXPECT_TRUE(basis().starts_with("S11: \xC2\xB1U k=2; same kit; without load match, linearity, "))
      << "the noise is known now: " << basis();
}

}  // namespace
}  // namespace qk::test
