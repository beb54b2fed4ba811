// SPDX-License-Identifier: MIT
// From a point's bytes to raw ratios: order of the samples, offsets, clamp, overload.
#include "sweep/reduction.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "link/instrument_link.h"

namespace qk {
namespace {

// Counts of a sample as its three bytes.
void Put(Bytes& bytes, int counts) {
  bytes.push_back(static_cast<std::uint8_t>(counts >> 16));
  bytes.push_back(static_cast<std::uint8_t>(counts >> 8));
  bytes.push_back(static_cast<std::uint8_t>(counts));
}

Bytes PointOf(const std::vector<int>& counts) {
  Bytes bytes;
  for (const int c : counts) Put(bytes, c);
  return bytes;
}

double Volts(int counts, int averages = 1) {
  return static_cast<double>(counts) / averages / 65535 * 4.999924 - 2.5;
}

ReceiverState Offsets(double i, double q) {
  ReceiverState rx;
  rx.DcOffsetI = i;
  rx.DcOffsetQ = q;
  return rx;
}

void ExpectNear(Complex a, Complex b) {
  EXPECT_NEAR(a.re, b.re, 1e-13);
  EXPECT_NEAR(a.im, b.im, 1e-13);
}

const ReceiverState kRx = Offsets(0.011, -0.023);
const std::vector<int> kTwelve{40000, 35000, 30000, 31000, 45000, 36000,
                               41000, 33000, 29000, 30500, 44000, 38000};

TEST(WireOf, GivesTriggerPathAndBytesOfEachMode) {
  const auto form = [](SweepMode m) {
    const SweepWire f = WireOf(m);
    return std::string(f.Trigger) + " " + std::string(f.Path) + " " +
           std::to_string(f.BytesPerPoint);
  };
  EXPECT_EQ(form(SweepMode::S11), "M YF 12");
  EXPECT_EQ(form(SweepMode::S21), "S YE 12");
  EXPECT_EQ(form(SweepMode::S11S21), "YO YP 18");
  EXPECT_EQ(form(SweepMode::All), "A YG 36");
  EXPECT_EQ(WireOf(SweepMode::All).BytesPerPoint * 1024, 36864);
  EXPECT_EQ(WireOf(SweepMode::S11).BytesPerPoint * 101, 1212);
}

TEST(SweepTimeout, IsAQuarterSecondAnAverageAndSoMuchAPoint) {
  EXPECT_EQ(SweepTimeout(1, 101, 10), 250 + 1010);
  EXPECT_EQ(SweepTimeout(255, 1024, 10), 63750 + 10240);
  EXPECT_EQ(SweepTimeout(3, 51, 20), 750 + 1020);
}

// Intentional: the reference subtracts the I offset in both samples, the test the Q offset.
TEST(ReducePoint, TakesFourSamplesAsReferenceAndTestIThenReferenceAndTestQ) {
  const Bytes bytes = PointOf({40000, 35000, 30000, 31000});
  const Complex reference{Volts(40000) - 0.011, Volts(30000) - 0.011};
  const Complex test{Volts(35000) + 0.023, Volts(31000) + 0.023};
  const Complex ratio = ComplexDivide(test, reference);
  const RawPoint s11 = ReducePoint(SweepMode::S11, bytes.data(), kRx, 1);
  ExpectNear(s11.S11, ratio);
  EXPECT_EQ(s11.S21, Complex{});
  const RawPoint s21 = ReducePoint(SweepMode::S21, bytes.data(), kRx, 1);
  ExpectNear(s21.S21, ratio);
  EXPECT_EQ(s21.S11, Complex{});
}

TEST(ReducePoint, TakesSixSamplesAsReferencePort2Port1OfIAndThenOfQ) {
  const std::vector<int> six(kTwelve.begin(), kTwelve.begin() + 6);
  const RawPoint raw = ReducePoint(SweepMode::S11S21, PointOf(six).data(), kRx, 1);
  const Complex reference{Volts(six[0]) - 0.011, Volts(six[3]) - 0.011};
  ExpectNear(raw.S21, ComplexDivide({Volts(six[1]) + 0.023, Volts(six[4]) + 0.023}, reference));
  ExpectNear(raw.S11, ComplexDivide({Volts(six[2]) + 0.023, Volts(six[5]) + 0.023}, reference));
  EXPECT_EQ(raw.S12, Complex{});
  EXPECT_EQ(raw.S22, Complex{});
}

TEST(ReducePoint, TakesTheSecondSixWithTheSourceOnPort2) {
  const RawPoint raw = ReducePoint(SweepMode::All, PointOf(kTwelve).data(), kRx, 1);
  const RawPoint first = ReducePoint(SweepMode::S11S21, PointOf(kTwelve).data(), kRx, 1);
  EXPECT_EQ(raw.S11, first.S11);
  EXPECT_EQ(raw.S21, first.S21);
  const Complex reference{Volts(kTwelve[6]) - 0.011, Volts(kTwelve[9]) - 0.011};
  ExpectNear(raw.S22,
             ComplexDivide({Volts(kTwelve[7]) + 0.023, Volts(kTwelve[10]) + 0.023}, reference));
  ExpectNear(raw.S12,
             ComplexDivide({Volts(kTwelve[8]) + 0.023, Volts(kTwelve[11]) + 0.023}, reference));
}

TEST(ReducePoint, DividesTheSumOfTheReadingsByTheAverages) {
  std::vector<int> summed;
  for (const int c : kTwelve) summed.push_back(c * 128);
  const RawPoint one = ReducePoint(SweepMode::All, PointOf(kTwelve).data(), kRx, 1);
  const RawPoint many = ReducePoint(SweepMode::All, PointOf(summed).data(), kRx, 128);
  EXPECT_EQ(one.S11, many.S11);
  EXPECT_EQ(one.S12, many.S12);
}

TEST(ReducePoint, StaysFiniteWithoutAnyReference) {
  const ReceiverState rx = Offsets(Volts(32768), Volts(32768));
  const RawPoint raw =
      ReducePoint(SweepMode::S11, PointOf({32768, 40000, 32768, 40000}).data(), rx, 1);
  EXPECT_EQ(raw.S11, (Complex{0, 0}));
  const RawPoint tiny =
      ReducePoint(SweepMode::S11, PointOf({32769, 40000, 32768, 40000}).data(), rx, 1);
  EXPECT_TRUE(std::isfinite(tiny.S11.re));
  EXPECT_GT(std::abs(tiny.S11.re), 1000);
}

// ---- overload ---------------------------------------------------------------------------------

// The least counts whose volts, without offsets, are at or above 2.49.
constexpr int kOverload = 65405;
const ReceiverState kNoOffsets;

std::vector<int> Quiet(std::size_t samples) {
  return std::vector<int>(samples, 32768);
}

TEST(Overload, IsATestValueOf2Point49VoltsOrMore) {
  ASSERT_GE(Volts(kOverload), 2.49);
  ASSERT_LT(Magnitude(Volts(kOverload - 1), Volts(32768)), 2.49);
  for (const SweepMode mode : {SweepMode::S21, SweepMode::S11S21, SweepMode::All}) {
    std::vector<int> counts = Quiet(12);
    counts[1] = kOverload;
    EXPECT_TRUE(ReducePoint(mode, PointOf(counts).data(), kNoOffsets, 1).Port2Overload);
    counts[1] = kOverload - 1;
    const RawPoint below = ReducePoint(mode, PointOf(counts).data(), kNoOffsets, 1);
    EXPECT_FALSE(below.Port2Overload);
    EXPECT_FALSE(below.Port1Overload);
  }
}

TEST(Overload, CountsTheMagnitudeAfterTheOffsets) {
  std::vector<int> counts = Quiet(4);
  counts[1] = counts[3] = 56000;  // 1.77 V each: 2.51 V together
  EXPECT_TRUE(ReducePoint(SweepMode::S21, PointOf(counts).data(), kNoOffsets, 1).Port2Overload);
  EXPECT_FALSE(
      ReducePoint(SweepMode::S21, PointOf(counts).data(), Offsets(0, 0.05), 1).Port2Overload);
}

TEST(Overload, IsNotLookedForInAReflectionSweep) {
  std::vector<int> counts = Quiet(12);
  counts[1] = counts[2] = counts[3] = 65535;
  EXPECT_FALSE(ReducePoint(SweepMode::S11, PointOf(counts).data(), kNoOffsets, 1).Port2Overload);
  EXPECT_FALSE(ReducePoint(SweepMode::S11, PointOf(counts).data(), kNoOffsets, 1).Port1Overload);
}

TEST(Overload, OfPort1IsLookedForInTheSecondHalfOnly) {
  std::vector<int> counts = Quiet(12);
  counts[2] = 65535;  // port 1 receiver, source on port 1
  EXPECT_FALSE(ReducePoint(SweepMode::All, PointOf(counts).data(), kNoOffsets, 1).Port1Overload);
  counts[8] = 65535;
  const RawPoint raw = ReducePoint(SweepMode::All, PointOf(counts).data(), kNoOffsets, 1);
  EXPECT_TRUE(raw.Port1Overload);
  EXPECT_FALSE(raw.Port2Overload);
  counts = Quiet(12);
  counts[7] = 65535;  // port 2 receiver, source on port 2
  EXPECT_FALSE(ReducePoint(SweepMode::All, PointOf(counts).data(), kNoOffsets, 1).Port2Overload);
}

TEST(ReducePoint, GivesFiniteRatiosForAnyBytes) {
  std::mt19937 random(3080);
  for (int n = 0; n < 20000; ++n) {
    Bytes bytes(36);
    for (auto& b : bytes) b = static_cast<std::uint8_t>(random());
    const int averages = 1 + static_cast<int>(random() % 255);
    const RawPoint raw = ReducePoint(SweepMode::All, bytes.data(), kRx, averages);
    for (const Complex z : {raw.S11, raw.S21, raw.S12, raw.S22})
      ASSERT_TRUE(std::isfinite(z.re) && std::isfinite(z.im));
  }
}

}  // namespace
}  // namespace qk
