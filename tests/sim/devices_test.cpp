// SPDX-License-Identifier: MIT
#include "sim/devices.h"

#include <gtest/gtest.h>

#include "sim/connection.h"

namespace qk::sim::test {
namespace {

double Db(Complex c) {
  return 20 * std::log10(std::abs(c));
}

TEST(Devices, ThroughAndAttenuatorAreMatched) {
  const TwoPort through = MakeThrough()->At(1e9);
  EXPECT_EQ(through.S21, Complex(1));
  EXPECT_EQ(through.S11, Complex(0));
  const TwoPort pad = MakeAttenuator(20)->At(1e9);
  EXPECT_NEAR(pad.S21.real(), 0.1, 1e-15);
  EXPECT_EQ(pad.S12, pad.S21);
  EXPECT_EQ(pad.S22, Complex(0));
}

TEST(Devices, ALineDelaysByItsLengthAndLosesALittle) {
  // 149.896229 mm are half a wavelength at 1 GHz.
  const TwoPort line = MakeLine(149.896229)->At(1e9);
  EXPECT_NEAR(std::arg(-line.S21), 0, 1e-9);
  EXPECT_LT(Db(line.S21), -0.01);
  EXPECT_GT(Db(line.S21), -0.1);
  EXPECT_LT(Db(MakeLine(149.896229)->At(3e9).S21), Db(line.S21));
}

TEST(Devices, TheFilterPassesItsBandAndStopsTheRest) {
  const DevicePtr filter = MakeFilter();
  EXPECT_GT(Db(filter->At(0.995e9).S21), -3);
  EXPECT_LT(Db(filter->At(0.995e9).S11), -12);
  EXPECT_LT(Db(filter->At(0.7e9).S21), -50);
  EXPECT_LT(Db(filter->At(1.4e9).S21), -50);
  EXPECT_GT(Db(filter->At(0.7e9).S11), -0.5);
}

TEST(Devices, AFilterThatIsNotAlignedHasItsBandElsewhere) {
  const DevicePtr filter = MakeFilter(-100);
  EXPECT_GT(Db(filter->At(0.895e9).S21), -3);
  EXPECT_LT(Db(filter->At(1.09e9).S21), -20);
}

// 38 ohms at resonance: (38 - 50) / (38 + 50); above it an inductance, below it a capacitance.
TEST(Devices, TheAntennaIsASeriesResonator) {
  const DevicePtr antenna = MakeAntenna();
  EXPECT_NEAR(std::abs(antenna->At(868e6).S11 - Complex(-12.0 / 88)), 0, 1e-12);
  EXPECT_GT(antenna->At(900e6).S11.imag(), 0);
  EXPECT_LT(antenna->At(840e6).S11.imag(), 0);
  for (double f = 3e6; f < 3.1e9; f += 7e6) EXPECT_LE(std::abs(antenna->At(f).S11), 1.0) << f;
  EXPECT_FALSE(antenna->HasTwoPorts());
}

TEST(Devices, TheFilterIsReciprocalSymmetricAndPassive) {
  const DevicePtr filter = MakeFilter();
  for (double f = 3e6; f < 3.1e9; f += 7e6) {
    const TwoPort s = filter->At(f);
    EXPECT_LT(std::abs(s.S21 - s.S12), 1e-9) << f;
    EXPECT_LT(std::abs(s.S11 - s.S22), 1e-9) << f;
    EXPECT_LE(std::norm(s.S11) + std::norm(s.S21), 1.0) << f;
  }
}

TEST(Devices, TheAmplifierLosesExactlyOneDecibelAtItsCompressionPoint) {
  const DevicePtr amplifier = MakeAmplifier({14, 5, 2});
  const double inputP1 = 5 + 1 - 14;
  const TwoPort small = amplifier->At(1e9), at1dB = amplifier->Driven(1e9, inputP1);
  EXPECT_NEAR(Db(small.S21), 14, 1e-9);
  EXPECT_NEAR(Db(at1dB.S21), 13, 1e-9);
  EXPECT_NEAR(inputP1 + Db(at1dB.S21), 5, 1e-9) << "output power";
  EXPECT_NEAR(Db(amplifier->Driven(1e9, -60).S21), 14, 1e-3);
  EXPECT_TRUE(amplifier->DependsOnDrive());
}

TEST(Devices, TheAmplifiersOutputNeverFallsWithMoreDrive) {
  const DevicePtr amplifier = MakeAmplifier({10, 3, 2});
  double before = -1000;
  for (double dbm = -40; dbm < 30; dbm += 0.5) {
    const double output = dbm + Db(amplifier->Driven(1e9, dbm).S21);
    EXPECT_GT(output, before);
    before = output;
  }
}

TEST(Devices, TheAmplifiersPhaseMovesByItsAmToPmAtTheCompressionPoint) {
  const DevicePtr amplifier = MakeAmplifier({10, 3, 2.5});
  const double inputP1 = 3 + 1 - 10;
  const Complex below = amplifier->Driven(1e9, inputP1 - 0.01).S21;
  const Complex above = amplifier->Driven(1e9, inputP1 + 0.01).S21;
  EXPECT_NEAR(std::arg(above / below) * 180 / kPi / 0.02, -2.5, 1e-3);
}

TouchstoneData Sampled(const DevicePtr& device, double first, double step, int count) {
  TouchstoneData data;
  data.Ports = 2;
  for (int i = 0; i < count; ++i) {
    data.Hz.push_back(first + step * i);
    data.Points.push_back(device->At(data.Hz.back()));
  }
  return data;
}

TEST(Devices, AttenuatorsStandBeforeAndBehindTheAmplifier) {
  AmplifierSettings settings{.GainDb = 20, .OutputP1Dbm = 8, .Matched = true};
  const DevicePtr alone = MakeAmplifier(settings);
  settings.InputAttenuationDb = 6;
  settings.OutputAttenuationDb = 10;
  const DevicePtr padded = MakeAmplifier(settings);
  const auto gainDb = [](const TwoPort& s) { return 20 * std::log10(std::abs(s.S21)); };
  EXPECT_NEAR(gainDb(padded->At(1e9)), 4, 1e-9);
  EXPECT_NEAR(gainDb(padded->Driven(1e9, -5)), gainDb(alone->Driven(1e9, -11)) - 16, 1e-9);
  EXPECT_EQ(padded->At(1e9).S11, Complex(0));
  EXPECT_EQ(padded->At(1e9).S22, Complex(0));
}

TEST(Devices, AHarderKneeCompressesLaterAndLosesTheSameDecibelAtItsPoint) {
  const auto lossDb = [](double knee, double drive) {
    const DevicePtr amplifier = MakeAmplifier({.GainDb = 10, .OutputP1Dbm = 0, .Knee = knee});
    return 20 * std::log10(std::abs(amplifier->At(1e9).S21 / amplifier->Driven(1e9, drive).S21));
  };
  for (const double knee : {1.0, 2.0, 4.0, 10.0}) EXPECT_NEAR(lossDb(knee, -9), 1, 1e-9) << knee;
  EXPECT_GT(lossDb(1, -14), 10 * lossDb(4, -14));
  EXPECT_LT(lossDb(1, -5), lossDb(4, -5));
}

TEST(Devices, AMeasuredDeviceMeetsItsPointsAndRunsSmoothlyBetweenThem) {
  const DevicePtr filter = MakeFilter();
  const DevicePtr measured = MakeMeasured(Sampled(filter, 0.5e9, 5e6, 201), "filter.s2p");
  EXPECT_LT(std::abs(measured->At(0.9e9).S21 - filter->At(0.9e9).S21), 1e-12);
  for (double f = 0.55e9; f < 1.45e9; f += 1.3e6) {
    const TwoPort got = measured->At(f), want = filter->At(f);
    EXPECT_LT(std::abs(got.S21 - want.S21), 1e-3) << f;
    EXPECT_LT(std::abs(got.S11 - want.S11), 1e-3) << f;
  }
}

TEST(Devices, AMeasuredDeviceHoldsItsEndsOutsideItsRange) {
  const DevicePtr filter = MakeFilter();
  const DevicePtr measured = MakeMeasured(Sampled(filter, 0.9e9, 1e7, 11), "filter.s2p");
  EXPECT_EQ(measured->At(3e6).S21, filter->At(0.9e9).S21);
  EXPECT_EQ(measured->At(3e9).S11, filter->At(1e9).S11);
}

TEST(Devices, AMeasuredDeviceOfOneOrTwoPointsStands) {
  const DevicePtr pad = MakeAttenuator(6);
  EXPECT_EQ(MakeMeasured(Sampled(pad, 1e9, 1, 1), "x")->At(2e9).S21, pad->At(1e9).S21);
  const DevicePtr two = MakeMeasured(Sampled(MakeLine(10), 1e9, 1e9, 2), "x");
  const Complex middle = (two->At(1e9).S21 + two->At(2e9).S21) / 2.0;
  EXPECT_LT(std::abs(two->At(1.5e9).S21 - middle), 1e-12);
}

TEST(Connection, TheOpenFollowsItsCapacitance) {
  // 2.5 fF and a little at 1 GHz: -2 atan(2 pi f C Z0).
  const double c = 2.5e-15 + 2.9e-25 * 1e9 - 1e-35 * 1e18 + 2.4e-46 * 1e27;
  const Complex open = KitOpen(1e9);
  EXPECT_NEAR(std::abs(open), 1, 1e-12);
  EXPECT_NEAR(std::arg(open), -2 * std::atan(2 * kPi * 1e9 * c * 50), 1e-12);
}

TEST(Connection, AnOffsetTurnsShortAndOpenTwiceAndNotTheLoad) {
  Termination t;
  t.OffsetMm = 299792458.0 / 1e9 / 8 * 1000;  // an eighth of the wavelength of 1 GHz
  t.What = Termination::Kind::Short;
  EXPECT_NEAR(std::arg(t.Reflection(1e9) / Complex(0, 1)), 0, 1e-9);
  t.What = Termination::Kind::Open;
  EXPECT_NEAR(std::arg(t.Reflection(1e9) / KitOpen(1e9)), -kPi / 2, 1e-9);
  t.What = Termination::Kind::Load;
  EXPECT_EQ(t.Reflection(1e9), Complex(0));
}

TEST(Connection, ABarePortIsNoKitOpen) {
  Termination t;
  EXPECT_GT(std::abs(t.Reflection(3e9) - KitOpen(3e9)), 0.02);
  EXPECT_GT(std::abs(t.Reflection(3e9)), 0.9);
}

}  // namespace
}  // namespace qk::sim::test
