// SPDX-License-Identifier: MIT
// Which calibration is in force, and the arrays of a calibration by name.
#include "core/sweep_mode.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "core/cal_arrays.h"
#include "core/session.h"

namespace qk {
namespace {

TEST(DeliveredBy, IsWhatASweepOfEachKindMeasures) {
  using enum Parameter;
  const auto delivered = [](SweepMode mode) {
    const auto row = DeliveredBy(mode);
    return std::vector(row.begin(), row.end());
  };
  EXPECT_EQ(delivered(SweepMode::S11), (std::vector{S11}));
  EXPECT_EQ(delivered(SweepMode::S21), (std::vector{S21}));
  EXPECT_EQ(delivered(SweepMode::S11S21), (std::vector{S11, S21}));
  EXPECT_EQ(delivered(SweepMode::All), (std::vector{S21, S12, S11, S22}));
  EXPECT_TRUE(Delivers(SweepMode::S11S21, S21));
  EXPECT_FALSE(Delivers(SweepMode::S11S21, S22));
}

TEST(ModeInForce, IsNoneWithoutACalibration) {
  EXPECT_EQ(ModeInForce(CalState()), std::nullopt);
}

TEST(ModeInForce, IsTheFirstInTheOrderOfStart) {
  CalState cal;
  cal.Cal12Term = true;
  EXPECT_EQ(ModeInForce(cal), SweepMode::All);
  cal.CalS11S21 = true;
  EXPECT_EQ(ModeInForce(cal), SweepMode::S11S21);
  cal.CalS21 = true;
  EXPECT_EQ(ModeInForce(cal), SweepMode::S21);
  cal.CalS11 = true;
  EXPECT_EQ(ModeInForce(cal), SweepMode::S11);
}

TEST(ModeInForce, IsTheOneThatWasPutInForceAndNoOther) {
  CalState cal;
  cal.CalS21 = true;
  for (const SweepMode mode : {SweepMode::S11, SweepMode::S21, SweepMode::S11S21, SweepMode::All}) {
    SetModeInForce(cal, mode);
    EXPECT_EQ(ModeInForce(cal), mode);
    EXPECT_EQ(cal.CalS11 + cal.CalS21 + cal.CalS11S21 + cal.Cal12Term, 1);
    EXPECT_TRUE(InForce(cal, mode));
  }
  SetModeInForce(cal, std::nullopt);
  EXPECT_FALSE(cal.AnyKind());
}

TEST(CalKind, HasItsTextAndAnUnknownTextMeansAll) {
  EXPECT_EQ(CalKindName(SweepMode::S11), "S11");
  EXPECT_EQ(CalKindName(SweepMode::S21), "S21");
  EXPECT_EQ(CalKindName(SweepMode::S11S21), "both");
  EXPECT_EQ(CalKindName(SweepMode::All), "All");
  for (const char* name : {"S11", "S21", "both", "All"})
    EXPECT_EQ(CalKindName(CalKindNamed(name)), name);
  EXPECT_EQ(CalKindNamed("rubbish"), SweepMode::All);
}

TEST(CalArrays, NameEachOfTheEighteenTermsOnceInTheOrderOfTheFile) {
  std::string names;
  for (const CalArray& array : CalArrays()) names += std::string(array.Name) + " ";
  EXPECT_EQ(names,
            "ED ERT ES EX ETT ED' ERT' ES' EX' ETT' EL EL' IsoFwd0 IsoRev0 IsoFwd1 IsoRev1 "
            "IsoFwd2 IsoRev2 ");
}

TEST(CalArrays, CoverEveryTermAndEveryStandardThatTheSessionHolds) {
  const auto session = MakeSession();
  std::set<const ComplexArray*> seen;
  for (const CalArray& array : CalArrays()) seen.insert(&array.In(session->Terms));
  EXPECT_EQ(seen.size() * sizeof(ComplexArray), sizeof(ErrorTerms));
  seen.clear();
  for (const char* standard :
       {"CalLoad1", "CalShort1", "CalOpen1", "CalLoad2", "CalShort2", "CalOpen2", "CalThruRefl1",
        "CalThruRefl2", "CalDutRefl1", "CalDutRefl2"})
    seen.insert(FindCalArray(*session, standard));
  EXPECT_EQ(seen.count(nullptr), 0u);
  EXPECT_EQ(seen.size() * sizeof(ComplexArray), sizeof(StandardsMeasured));
}

TEST(CalArrays, AreFoundByName) {
  const auto session = MakeSession();
  EXPECT_EQ(FindCalArray(*session, "ES"), &session->Terms.Forward.ES);
  EXPECT_EQ(FindCalArray(*session, "ES'"), &session->Terms.Reverse.ES);
  EXPECT_EQ(FindCalArray(*session, "IsoRev2"), &session->Terms.IsoRev2);
  EXPECT_EQ(FindCalArray(*session, "CalOpen2"), &session->Standards.CalOpen2);
  EXPECT_EQ(FindCalArray(*session, "es"), nullptr);
  EXPECT_EQ(FindCalArray(*session, ""), nullptr);
}

}  // namespace
}  // namespace qk
