// SPDX-License-Identifier: MIT
// A calibration kept over a change of the plan.
#include <gtest/gtest.h>

#include <vector>

#include "cal/error_terms.h"
#include "error_box.h"

namespace qk {
namespace {

using namespace test;

std::vector<ComplexArray*> EighteenArrays(ErrorTerms& t) {
  std::vector<ComplexArray*> arrays;
  for (PortTerms* p : {&t.Forward, &t.Reverse})
    for (ComplexArray* a : {&p->ED, &p->ERT, &p->ES, &p->EX, &p->ETT, &p->EL}) arrays.push_back(a);
  for (ComplexArray* a : {&t.IsoFwd0, &t.IsoFwd1, &t.IsoFwd2, &t.IsoRev0, &t.IsoRev1, &t.IsoRev2})
    arrays.push_back(a);
  return arrays;
}

// Eighteen different smooth arrays over a plan, saved.
struct Interpolation : testing::Test {
  std::unique_ptr<Session> session = MakePlan(201);
  std::vector<Smooth> truths;

  Interpolation() {
    Dice dice(77);
    for (ComplexArray* array : EighteenArrays(session->Terms)) {
      truths.push_back(dice.About(0.6, 0.4e-9));
      for (int k = 0; k < 201; ++k) array->Set(k, To(truths.back()(session->Plan.Frequency(k))));
    }
    SaveCalForInterpolation(*session);
  }
  void NewPlan(double start, double step, int numPoints) {
    PlanGrid& grid = session->Plan;
    grid = {start, start + step * (numPoints - 1), step, static_cast<std::int16_t>(numPoints)};
  }
  // The largest difference of any term at any point from the smooth truth.
  double Worst() {
    double worst = 0;
    const auto arrays = EighteenArrays(session->Terms);
    for (std::size_t i = 0; i < arrays.size(); ++i)
      for (int k = 0; k < session->Plan.NumPoints; ++k)
        worst =
            std::max(worst, std::abs(Of((*arrays[i])[k]) - truths[i](session->Plan.Frequency(k))));
    return worst;
  }
};

TEST_F(Interpolation, SavesPlanAndAllEighteenArrays) {
  const PlanGrid& saved = session->Plan.SavedPlan;
  EXPECT_EQ(saved.StartFreq, session->Plan.StartFreq);
  EXPECT_EQ(saved.StopFreq, session->Plan.StopFreq);
  EXPECT_EQ(saved.StepFreq, session->Plan.StepFreq);
  EXPECT_EQ(saved.NumPoints, 201);
  const auto from = EighteenArrays(session->Terms), to = EighteenArrays(session->SavedTerms);
  for (std::size_t i = 0; i < from.size(); ++i)
    for (const int k : {0, 100, 200}) EXPECT_EQ((*to[i])[k], (*from[i])[k]);
}

TEST_F(Interpolation, GivesTheSavedValuesAtTheSavedFrequenciesToWithinRounding) {
  NewPlan(session->Plan.SavedPlan.Frequency(40), session->Plan.SavedPlan.StepFreq, 101);
  InterpolateCal(*session);
  const auto terms = EighteenArrays(session->Terms), saved = EighteenArrays(session->SavedTerms);
  for (std::size_t i = 0; i < terms.size(); ++i)
    for (int k = 0; k < 101; ++k)
      EXPECT_LT(std::abs(Of((*terms[i])[k]) - Of((*saved[i])[k + 40])), 3e-6) << i << " " << k;
}

TEST_F(Interpolation, FollowsSmoothTermsBetweenTheSavedFrequencies) {
  NewPlan(500e6, 1.1e6, 1024);
  InterpolateCal(*session);
  EXPECT_LT(Worst(), 2e-5);
}

TEST_F(Interpolation, IsOnRealAndImaginaryPartsEachByItself) {
  ComplexArray& ed = session->SavedTerms.Forward.ED;
  for (int k = 0; k < 201; ++k) ed.Set(k, {k % 2 == 0 ? 1.0 : -1.0, 0.25});
  NewPlan(session->Plan.SavedPlan.Frequency(50), session->Plan.SavedPlan.StepFreq / 2, 51);
  InterpolateCal(*session);
  EXPECT_NEAR(session->Terms.Forward.ED[21].re, 0, 1e-4);  // a magnitude would stay near 1
  EXPECT_NEAR(session->Terms.Forward.ED[21].im, 0.25, 1e-7);
}

TEST_F(Interpolation, StartsAgainFromTheCalibrationEachTimeSoThatErrorsDoNotAddUp) {
  NewPlan(500e6, 1.7e6, 801);
  InterpolateCal(*session);
  const Complex once = session->Terms.Reverse.ETT[400];
  NewPlan(3e6, 40e6, 51);
  InterpolateCal(*session);
  NewPlan(500e6, 1.7e6, 801);
  InterpolateCal(*session);
  EXPECT_EQ(session->Terms.Reverse.ETT[400], once);
}

// The table of the spline is 32-bit: counted from 0 Hz, points 100 Hz apart above 1 GHz would fall
// together.
TEST_F(Interpolation, KeepsKnots100HzApartAbove1GHzApart) {
  NewPlan(2.9e9, 100, 51);
  ComplexArray& ed = session->Terms.Forward.ED;
  for (int k = 0; k < 51; ++k) ed.Set(k, {k * 0.01, 1 - k * 0.01});
  SaveCalForInterpolation(*session);
  NewPlan(2.9e9 + 1000, 50, 51);
  InterpolateCal(*session);
  for (int k = 0; k < 51; ++k) {
    EXPECT_NEAR(ed[k].re, 0.1 + k * 0.005, 1e-6);
    EXPECT_NEAR(ed[k].im, 0.9 - k * 0.005, 1e-6);
  }
}

TEST_F(Interpolation, RestoreBringsPlanAndTermsBackAsTheyWereCalibrated) {
  const Complex ed = session->Terms.Forward.ED[150], iso = session->Terms.IsoRev2[0];
  session->Plan.Port1Level = -7;
  NewPlan(500e6, 1e6, 401);
  InterpolateCal(*session);
  RestoreCal(*session);
  EXPECT_EQ(session->Plan.StartFreq, 3e6);
  EXPECT_EQ(session->Plan.NumPoints, 201);
  EXPECT_EQ(session->Plan.StepFreq, session->Plan.SavedPlan.StepFreq);
  EXPECT_EQ(session->Plan.StopFreq, session->Plan.SavedPlan.StopFreq);
  EXPECT_EQ(session->Plan.Port1Level, -7);  // no part of the plan's grid
  EXPECT_EQ(session->Terms.Forward.ED[150], ed);
  EXPECT_EQ(session->Terms.IsoRev2[0], iso);
}

TEST_F(Interpolation, LeavesWhatWasSavedAsItIs) {
  const Complex saved = session->SavedTerms.Forward.ES[33];
  NewPlan(500e6, 1e6, 401);
  InterpolateCal(*session);
  EXPECT_EQ(session->SavedTerms.Forward.ES[33], saved);
  EXPECT_EQ(session->Plan.SavedPlan.NumPoints, 201);
}

TEST_F(Interpolation, WorksOnAFullPlanOf1024Points) {
  NewPlan(3e6, 2.9e6, 1024);
  const auto arrays = EighteenArrays(session->Terms);
  for (std::size_t i = 0; i < arrays.size(); ++i)
    for (int k = 0; k < 1024; ++k) arrays[i]->Set(k, To(truths[i](session->Plan.Frequency(k))));
  SaveCalForInterpolation(*session);
  NewPlan(10e6, 2.7e6, 1024);
  InterpolateCal(*session);
  EXPECT_LT(Worst(), 3e-6);
}

}  // namespace
}  // namespace qk
