// SPDX-License-Identifier: MIT
#include "trace/zo.h"

#include <gtest/gtest.h>

#include <array>
#include <complex>
#include <numbers>
#include <random>

#include "numeric/two_port.h"

namespace qk {
namespace {

constexpr std::array kAll{Parameter::S11, Parameter::S21, Parameter::S12, Parameter::S22};
constexpr std::array kS11{Parameter::S11};
constexpr std::array kS21{Parameter::S21};

class Zo : public testing::Test {
 protected:
  Zo() {
    std::mt19937 random(20);
    std::uniform_real_distribution<double> part(-0.6, 0.6);
    for (const Parameter p : kAll)
      for (int i = 0; i < session->Plan.NumPoints; ++i)
        ArrayOf(session->Data, p).Set(i, {part(random), part(random)});
  }
  void Store(int n, Parameter parameter, Complex factor) {
    ChannelSettings& channel = session->Channel(n);
    channel.MemoryValid = true;
    channel.MemoryParameter = parameter;
    for (int i = 0; i < session->Plan.NumPoints; ++i) {
      const Complex z = ComplexMultiply(factor, ArrayOf(session->Data, parameter)[i]);
      channel.MemoryRe[static_cast<std::size_t>(i) + 1] = z.re;
      channel.MemoryIm[static_cast<std::size_t>(i) + 1] = z.im;
    }
  }
  void ExpectNear(Complex is, Complex z, double tolerance) {
    EXPECT_NEAR(is.re, z.re, tolerance);
    EXPECT_NEAR(is.im, z.im, tolerance);
  }
  Complex Memory(int n, int i) const {
    const auto k = static_cast<std::size_t>(i) + 1;
    return {session->Channel(n).MemoryRe[k], session->Channel(n).MemoryIm[k]};
  }

  std::unique_ptr<Session> session = MakeSession();
};

TEST_F(Zo, AnLSectionAgreesWithItsChainMatrixAt75OhmsAndReturns) {
  // Series 40 nH, then 8 pF to ground: S-parameters from A, B, C, D, at either impedance.
  using C = std::complex<double>;
  const auto section = [](double hertz, double zo) {
    const double w = 2 * std::numbers::pi * hertz;
    const C z{0, w * 40e-9}, y{0, w * 8e-12};
    const C a = 1.0 + z * y, b = z, c = y, d = 1;
    const C sum = a + b / zo + c * zo + d;
    const auto plain = [](C x) { return Complex{x.real(), x.imag()}; };
    return TwoPort{plain((a + b / zo - c * zo - d) / sum), plain(2.0 / sum), plain(2.0 / sum),
                   plain((-a + b / zo - c * zo + d) / sum)};
  };
  session->Impedance.SystemZo = 75;
  SParamData& data = session->Data;
  const auto load = [&](int i, const TwoPort& s) {
    data.S11.Set(i, s.p11);
    data.S12.Set(i, s.p12);
    data.S21.Set(i, s.p21);
    data.S22.Set(i, s.p22);
  };
  const auto expect = [&](int i, const TwoPort& s) {
    ExpectNear(data.S11[i], s.p11, 1e-9);
    ExpectNear(data.S12[i], s.p12, 1e-9);
    ExpectNear(data.S21[i], s.p21, 1e-9);
    ExpectNear(data.S22[i], s.p22, 1e-9);
  };
  const auto hertz = [&](int i) { return session->Plan.Frequency(i); };
  for (int i = 0; i < 101; ++i) {
    load(i, section(hertz(i), 50));
    ConvertPointZo(*session, i, kAll);
    expect(i, section(hertz(i), 75));
  }
  ReconvertZo(*session, 75, 50, kAll);
  for (int i = 0; i < 101; ++i) expect(i, section(hertz(i), 50));
}

TEST_F(Zo, AReflectionAloneIsThatOfItsImpedance) {
  session->Impedance.SystemZo = 100;
  session->Data.S11.Set(5, {0, 0});  // 50 ohms
  ConvertPointZo(*session, 5, kS11);
  ExpectNear(session->Data.S11[5], {-1.0 / 3, 0}, 1e-9);
}

TEST_F(Zo, WhatIsNotDeliveredGoesInAsAMillionthAndComesOutConverted) {
  session->Impedance.SystemZo = 75;
  const Complex s21 = session->Data.S21[7];
  ConvertPointZo(*session, 7, kS21);
  const TwoPort converted = ConvertZo(50, 75, {{1e-6, 0}, {1e-6, 0}, s21, {1e-6, 0}});
  EXPECT_EQ(session->Data.S11[7], converted.p11);
  EXPECT_EQ(session->Data.S21[7], converted.p21);
  EXPECT_EQ(session->Data.S12[7], converted.p12);
  EXPECT_EQ(session->Data.S22[7], converted.p22);
  EXPECT_NEAR(session->Data.S11[7].re, -0.2, 1e-5);  // 50 ohms seen from 75
}

TEST_F(Zo, TheSweepAndTheStoredTracesGoThereAndBack) {
  Store(1, Parameter::S11, {0.5, 0.2});
  Store(2, Parameter::S21, {0.9, 0});
  Store(3, Parameter::S11, {0.1, -0.4});  // a second trace of the same parameter
  const SParamData before = session->Data;
  std::array<Complex, 3> stored{Memory(1, 40), Memory(2, 40), Memory(3, 40)};
  ReconvertZo(*session, 50, 75, kAll);
  EXPECT_GT(std::fabs(session->Data.S11[40].re - before.S11[40].re), 1e-3);
  EXPECT_GT(std::fabs(Memory(1, 40).re - stored[0].re), 1e-3);
  ReconvertZo(*session, 75, 50, kAll);
  for (const Parameter p : kAll)
    for (int i = 0; i < 101; ++i)
      ExpectNear(ArrayOf(session->Data, p)[i], ArrayOf(before, p)[i], 1e-8);
  for (int n = 1; n <= 2; ++n)
    ExpectNear(Memory(n, 40), stored[static_cast<std::size_t>(n - 1)], 1e-8);
  ExpectNear(Memory(3, 40), stored[2], 1e-8);
}

TEST_F(Zo, AStoredTraceIsConvertedWithWhatTheOthersStore) {
  Store(1, Parameter::S11, {1, 0});
  Store(2, Parameter::S21, {1, 0});
  const Complex s11 = Memory(1, 9), s21 = Memory(2, 9);
  ReconvertZo(*session, 50, 75, kAll);
  const TwoPort converted = ConvertZo(50, 75, {s11, kNotMeasured, s21, kNotMeasured});
  EXPECT_EQ(Memory(1, 9), converted.p11);
  EXPECT_EQ(Memory(2, 9), converted.p21);
  EXPECT_EQ(session->MemoryZoSet.S11[9], converted.p11);
  EXPECT_EQ(session->MemoryZoSet.S22[9], converted.p22);
}

TEST_F(Zo, ATraceStoredUnderConversionComesBackAsItself) {
  ReconvertZo(*session, 50, 75, kAll);
  Store(1, Parameter::S11, {1, 0});
  const Complex at75 = Memory(1, 3);
  ReconvertZo(*session, 75, 50, kAll);
  // A reflection that shares the set with next to no transmission is that of its impedance.
  const Complex ohms = ComplexDivide(75.0 * OnePlus(at75), OnePlus(-at75));
  const Complex at50 = ComplexDivide(ohms - Complex{50, 0}, ohms + Complex{50, 0});
  ExpectNear(Memory(1, 3), at50, 1e-6);
}

TEST_F(Zo, ChannelsWithoutATraceStayAsTheyAre) {
  session->Channel(4).MemoryRe.fill(0.25);
  ReconvertZo(*session, 50, 75, kAll);
  EXPECT_EQ(session->Channel(4).MemoryRe[50], 0.25);
}

TEST_F(Zo, TheStoredSetStartsAtAMillionth) {
  EXPECT_EQ(session->MemoryZoSet.S21[0], kNotMeasured);
  EXPECT_EQ(session->MemoryZoSet.S22[1023], kNotMeasured);
}

}  // namespace
}  // namespace qk
