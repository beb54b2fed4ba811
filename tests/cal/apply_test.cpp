// SPDX-License-Identifier: MIT
// What applying a calibration does to the session, by kind, and what dropping one does.
#include "cal/apply.h"

#include <gtest/gtest.h>

#include "cal/error_terms.h"
#include "error_box.h"
#include "support/fake_host.h"

namespace qk {
namespace {

using namespace test;

struct ApplyCal : testing::Test {
  FakeClock clock;
  FakeHost fake{clock};
  Host host = fake.host();
  std::unique_ptr<Session> session = MakePlan(51);

  void Measured() {
    StandardsMeasured& m = session->Standards;
    for (ComplexArray* a : {&m.CalShort1, &m.CalShort2}) a->Fill({-0.9, 0.1});
    for (ComplexArray* a : {&m.CalOpen1, &m.CalOpen2}) a->Fill({0.9, 0.1});
    for (ComplexArray* a : {&m.CalLoad1, &m.CalLoad2}) a->Fill({0.02, 0.01});
    for (ComplexArray* a : {&m.CalThruRefl1, &m.CalThruRefl2}) a->Fill({0.05, 0.02});
    for (PortTerms* t : {&session->Terms.Forward, &session->Terms.Reverse}) {
      t->ETT.Fill({0.8, 0.3});
      t->EX.Fill({0.001, 0});
    }
  }
  void Apply(CalChoice choice, bool isoDone = true) {
    Measured();
    ApplyCalibration(*session, host, choice, isoDone);
  }
};

TEST_F(ApplyCal, SetsExactlyTheKindThatWasChosen) {
  struct Kind {
    CalChoice Choice;
    const char* Text;
    const char* CalKind;
    bool S11, S21, Both, All;
  };
  for (const Kind& kind :
       {Kind{CalChoice::S11, "S11 Cal", "S11", true, false, false, false},
        Kind{CalChoice::S21, "S21 Cal", "S21", false, true, false, false},
        Kind{CalChoice::S11S21, "S11+S21 Cal", "both", false, false, true, false},
        Kind{CalChoice::Insertable, "12 Term Cal", "All", false, false, false, true},
        Kind{CalChoice::NonInsertable, "12 Term Cal", "All", false, false, false, true}}) {
    session->Cal.CalDataReady = false;
    Apply(kind.Choice);
    const CalState& cal = session->Cal;
    EXPECT_EQ(cal.CalS11, kind.S11) << kind.Text;
    EXPECT_EQ(cal.CalS21, kind.S21) << kind.Text;
    EXPECT_EQ(cal.CalS11S21, kind.Both) << kind.Text;
    EXPECT_EQ(cal.Cal12Term, kind.All) << kind.Text;
    EXPECT_TRUE(cal.CalDataReady) << kind.Text;
    EXPECT_EQ(CalKindName(cal.CalKind), kind.CalKind);
    EXPECT_EQ(session->Panels[3], kind.Text);
    EXPECT_EQ(fake.Panels[3], kind.Text);
  }
}

TEST_F(ApplyCal, EndsADoubtAboutTheOneBefore) {
  session->Cal.CalInterpolated = true;
  session->Plan.Port1Level = -12;
  Apply(CalChoice::S11);
  EXPECT_FALSE(session->Cal.CalInterpolated);
  EXPECT_EQ(session->Plan.CalLevel, -12);
  EXPECT_FALSE(CalDoubtful(*session));
  EXPECT_EQ(session->Panels[3], "S11 Cal");
  EXPECT_EQ(session->Panels[4], "P1 Level: -12dBm");
}

TEST_F(ApplyCal, KeepsWhenHowWarmAndWithWhichKitsItWasMade) {
  session->Receiver.Temperature = 24.1f;
  session->Kit1.KitName = "One";
  session->Kit2.KitName = "Two";
  clock.AdvanceMs(60'000);
  Apply(CalChoice::S11);
  EXPECT_EQ(session->CalMade, (CalRecord{fake.UnixStart + 61, 24.1f, "One", "Two"}));
}

TEST_F(ApplyCal, TakesAllReferencePlanesBackButKeepsTheirUnits) {
  PlaneState& p = session->Planes;
  p = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, PlaneUnit::Ps};
  Apply(CalChoice::S21);
  for (const float value : {p.ActivePlane, p.ActiveDelay, p.PlaneS11, p.DelayS11, p.PlaneS21,
                            p.DelayS21, p.PlaneS12, p.DelayS12, p.PlaneS22, p.DelayS22})
    EXPECT_EQ(value, 0);
  EXPECT_EQ(p.RefPlaneUnits, PlaneUnit::Ps);
}

TEST_F(ApplyCal, MakesTheTermsTheBaseOfLaterInterpolations) {
  session->Plan.SavedPlan = {};
  Apply(CalChoice::Insertable);
  EXPECT_EQ(session->Plan.SavedPlan.NumPoints, 51);
  EXPECT_EQ(session->Plan.SavedPlan.StepFreq, session->Plan.StepFreq);
  EXPECT_EQ(session->SavedTerms.Forward.ETT[9], session->Terms.Forward.ETT[9]);
  EXPECT_EQ(session->SavedTerms.IsoFwd0[9], session->Terms.IsoFwd0[9]);
  EXPECT_NE(session->SavedTerms.Forward.ETT[9], (Complex{0, 0}));
}

// The base holds the tracking after its compute, which comes after the kind is set.
TEST_F(ApplyCal, SavesTheTermsOfAResponseAfterItsCompute) {
  Apply(CalChoice::S21);
  EXPECT_EQ(session->SavedTerms.Forward.ETT[0], (Complex{0.8 - 0.001, 0.3}));
  Apply(CalChoice::S21, false);
  EXPECT_EQ(session->SavedTerms.Forward.ETT[0], (Complex{0.8, 0.3}));
  EXPECT_EQ(session->SavedTerms.Forward.EX[0], (Complex{0, 0}));
}

TEST_F(ApplyCal, ClearsTheIsolationCoefficientsByTheBasicMethodAndForNonInsertableOnly) {
  for (const auto& [choice, method, cleared] :
       {std::tuple{CalChoice::Insertable, 0, true}, std::tuple{CalChoice::Insertable, 1, false},
        std::tuple{CalChoice::Insertable, 2, false},
        std::tuple{CalChoice::NonInsertable, 2, true}}) {
    session->Cal.IsoMethod = static_cast<IsoMethod>(method);
    ErrorTerms& t = session->Terms;
    for (ComplexArray* a : {&t.IsoFwd1, &t.IsoFwd2, &t.IsoRev1, &t.IsoRev2}) a->Fill({0.1, 0.1});
    session->Standards.CalDutRefl1.Fill({0.4, 0});
    session->Standards.CalDutRefl2.Fill({0.4, 0});
    Apply(choice);
    for (const ComplexArray* a : {&t.IsoFwd1, &t.IsoFwd2, &t.IsoRev1, &t.IsoRev2})
      EXPECT_EQ((*a)[50] == (Complex{0, 0}), cleared) << method;
  }
}

TEST_F(ApplyCal, OfS11S21TakesTheEnhancedTermsAfterTheOnePortTerms) {
  Apply(CalChoice::S11S21);
  const auto other = MakePlan(51);
  std::swap(*session, *other);
  Measured();
  ComputeOnePortTerms(*session);
  ComputeEnhancedTerms(*session, true);
  EXPECT_EQ(session->Terms.Forward.ETT[25], other->Terms.Forward.ETT[25]);
  EXPECT_EQ(session->Terms.Forward.ES[25], other->Terms.Forward.ES[25]);
}

TEST_F(ApplyCal, ReportsAKitTableWithEqualFrequenciesOnceAndContinues) {
  session->Kit1.KitHasLoad = true;
  session->Kit1.KitLoadData[0].fill(2e9f);
  Apply(CalChoice::S11);
  EXPECT_EQ(fake.MessageTexts(),
            (std::vector<std::string>{"CS Computation|Cubic Spline Data Error|none|ok"}));
  EXPECT_TRUE(session->Cal.CalS11);
}

TEST_F(ApplyCal, IsSilentOtherwise) {
  Apply(CalChoice::Insertable);
  EXPECT_TRUE(fake.Messages.empty());
}

TEST_F(ApplyCal, DroppedLeavesCalDataReadyAndReportsUnCal) {
  Apply(CalChoice::Insertable);
  DropCal(*session, fake);
  EXPECT_FALSE(session->Cal.AnyKind());
  EXPECT_TRUE(session->Cal.CalDataReady);
  EXPECT_EQ(session->Panels[3], "UnCal");
  EXPECT_EQ(fake.Panels[3], "UnCal");
}

}  // namespace
}  // namespace qk
