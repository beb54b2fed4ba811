// SPDX-License-Identifier: MIT
// Standards that cannot be what they were measured as.
#include "cal/standard_doubts.h"

#include <gtest/gtest.h>

#include <cmath>

namespace qk {
namespace {

using Texts = std::vector<std::string>;

// Good standards behind a front end of 3 dB loss, some directivity, and a line before the plane.
struct Doubts : ::testing::Test {
  Doubts() {
    for (int k = 0; k < session->Plan.NumPoints; ++k) {
      for (ComplexArray* open : {&raw.CalOpen1, &raw.CalOpen2}) open->Set(k, Raw({1, 0}, k));
      for (ComplexArray* other : {&raw.CalShort1, &raw.CalShort2}) other->Set(k, Raw({-1, 0}, k));
      for (ComplexArray* load : {&raw.CalLoad1, &raw.CalLoad2}) load->Set(k, Raw({0, 0}, k));
    }
  }
  static Complex Raw(Complex gamma, int k) {
    const Complex turned =
        ComplexMultiply(gamma, {0.7 * std::cos(0.3 * k), -0.7 * std::sin(0.3 * k)});
    return turned + Complex{0.1, 0.05};
  }
  void Fill(ComplexArray& array, double size, int from = 0) {
    for (int k = from; k < session->Plan.NumPoints; ++k) array.Set(k, {0, size});
  }
  Texts Found(ReflectionsMeasured measured = {true, true, true, true}) {
    return StandardDoubts(*session, measured);
  }
  std::unique_ptr<Session> session = MakeSession();
  StandardsMeasured& raw = session->Standards;
};

TEST_F(Doubts, AreNoneOfGoodStandards) {
  EXPECT_EQ(Found(), Texts{});
}

TEST_F(Doubts, NameAnOpenOrShortThatHardlyReflects) {
  raw.CalOpen1 = raw.CalLoad1;
  raw.CalShort2 = raw.CalLoad2;
  EXPECT_EQ(Found(), (Texts{"Open on port 1 hardly reflects", "Short on port 2 hardly reflects"}));
}

TEST_F(Doubts, NameAnOpenOrShortThatReflectsMoreThanAll) {
  Fill(raw.CalShort1, 16, 80);  // spoilt from somewhere on
  EXPECT_EQ(Found(), Texts{"Short on port 1 reflects more than all"});
}

TEST_F(Doubts, NameNotANumber) {
  Fill(raw.CalOpen2, std::nan(""), 50);
  EXPECT_EQ(Found(), Texts{"Open on port 2 reflects more than all"});
}

TEST_F(Doubts, NameALoadThatReflectsLikeAShort) {
  Fill(raw.CalLoad2, 0.71);
  EXPECT_EQ(Found(), Texts{"Load on port 2 reflects like a short"});
  Fill(raw.CalLoad2, 0.69);
  EXPECT_EQ(Found(), Texts{});
}

TEST_F(Doubts, NameAnOpenAndAShortThatAreTheSame) {
  raw.CalShort1 = raw.CalOpen1;
  EXPECT_EQ(Found(), Texts{"Open and short on port 1 are the same"});
}

TEST_F(Doubts, AreOfWhatHasBeenMeasuredOnly) {
  for (ComplexArray* array :
       {&raw.CalLoad1, &raw.CalShort1, &raw.CalOpen1, &raw.CalLoad2, &raw.CalShort2, &raw.CalOpen2})
    Fill(*array, 20);
  EXPECT_EQ(Found({}), Texts{});
  EXPECT_EQ(Found({.Load = true}), Texts{"Load on port 1 reflects like a short"});
  EXPECT_EQ(Found({.Open = true}), Texts{"Open on port 1 reflects more than all"});
  EXPECT_EQ(
      Found({.Short = true, .BothPorts = true}),
      (Texts{"Short on port 1 reflects more than all", "Short on port 2 reflects more than all"}));
}

}  // namespace
}  // namespace qk
