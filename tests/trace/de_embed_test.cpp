// SPDX-License-Identifier: MIT
#include "trace/de_embed.h"

#include <gtest/gtest.h>

#include <random>

#include "numeric/two_port.h"

namespace qk {
namespace {

constexpr int kPoint = 37;

class DeEmbed : public testing::Test {
 protected:
  static TwoPort RandomTwoPort(std::mt19937& random) {
    std::uniform_real_distribution<double> part(-0.5, 0.5);
    const auto value = [&] { return Complex{part(random), part(random)}; };
    return {value(), {0.6, part(random)}, {0.7, part(random)}, value()};
  }
  void Load(int port, const TwoPort& s) {
    Network& network = session->Networks.OfPort(port);
    network.S11.Set(kPoint, s.p11);
    network.S12.Set(kPoint, s.p12);
    network.S21.Set(kPoint, s.p21);
    network.S22.Set(kPoint, s.p22);
    (port == 1 ? session->Networks.Port1NetOn : session->Networks.Port2NetOn) = true;
  }
  void Measure(const TwoPort& s) {
    session->Data.S11.Set(kPoint, s.p11);
    session->Data.S12.Set(kPoint, s.p12);
    session->Data.S21.Set(kPoint, s.p21);
    session->Data.S22.Set(kPoint, s.p22);
  }
  void Expect(Parameter parameter, Complex z, double tolerance = 1e-9) const {
    const Complex is = ArrayOf(session->Data, parameter)[kPoint];
    EXPECT_NEAR(is.re, z.re, tolerance) << NameOf(parameter);
    EXPECT_NEAR(is.im, z.im, tolerance) << NameOf(parameter);
  }
  void ExpectAll(const TwoPort& s, double tolerance = 1e-9) const {
    Expect(Parameter::S11, s.p11, tolerance);
    Expect(Parameter::S12, s.p12, tolerance);
    Expect(Parameter::S21, s.p21, tolerance);
    Expect(Parameter::S22, s.p22, tolerance);
  }

  std::unique_ptr<Session> session = MakeSession();
};

const TwoPort kThrough{{0, 0}, {1, 0}, {1, 0}, {0, 0}};

TEST_F(DeEmbed, ADeviceBetweenTwoNetworksComesBack) {
  std::mt19937 random(5);
  for (int run = 0; run < 200; ++run) {
    const TwoPort first = RandomTwoPort(random), device = RandomTwoPort(random),
                  second = RandomTwoPort(random);
    Load(1, first);
    Load(2, second);
    Measure(TToS(MultiplyT(MultiplyT(SToT(first), SToT(device)), SToT(second))));
    DeEmbedPointAll(*session, kPoint);
    ExpectAll(device);
  }
}

TEST_F(DeEmbed, OneNetworkAloneIsTakenOffItsOwnPort) {
  std::mt19937 random(6);
  const TwoPort network = RandomTwoPort(random), device = RandomTwoPort(random);
  Load(1, network);
  Measure(TToS(MultiplyT(SToT(network), SToT(device))));
  DeEmbedPointAll(*session, kPoint);
  ExpectAll(device);
  session->Networks.Port1NetOn = false;
  Load(2, network);
  Measure(TToS(MultiplyT(SToT(device), SToT(network))));
  DeEmbedPointAll(*session, kPoint);
  ExpectAll(device);
}

TEST_F(DeEmbed, AThroughChangesNoPointInAnyMode) {
  Load(1, kThrough);
  Load(2, kThrough);
  std::mt19937 random(7);
  const TwoPort measured = RandomTwoPort(random);
  for (const auto mode : {DeEmbedPointS11, DeEmbedPointS21, DeEmbedPointS11S21, DeEmbedPointAll}) {
    Measure(measured);
    mode(*session, kPoint);
    ExpectAll(measured);
  }
}

TEST_F(DeEmbed, ReflectionAloneUsesPort1sNetworkAndAFullTransmission) {
  // A line of half transmission before the reflection: it returns a quarter.
  Load(1, {{0, 0}, {0.5, 0}, {0.5, 0}, {0, 0}});
  Load(2, {{0.3, 0}, {0.2, 0}, {0.1, 0}, {0.4, 0}});
  Measure({{0.2, 0.1}, {9, 0}, {9, 0}, {9, 0}});
  DeEmbedPointS11(*session, kPoint);
  ExpectAll({{0.8, 0.4}, {9, 0}, {9, 0}, {9, 0}});
}

TEST_F(DeEmbed, TransmissionAloneIsDividedByTheNetworksTransmissions) {
  Load(1, {{0, 0}, {0.5, 0}, {0.5, 0}, {0, 0}});
  Load(2, {{0, 0}, {0.25, 0}, {0, 0.25}, {0, 0}});
  Measure({{9, 0}, {9, 0}, {0.1, 0}, {9, 0}});
  DeEmbedPointS21(*session, kPoint);
  ExpectAll({{9, 0}, {9, 0}, {0, -0.8}, {9, 0}});
}

TEST_F(DeEmbed, ReflectionAndTransmissionAreBothWrittenAndNothingElse) {
  const TwoPort network{{0, 0}, {0.5, 0}, {0.5, 0}, {0, 0}};
  Load(1, network);
  Measure({{0.2, 0}, {9, 0}, {0.1, 0}, {9, 0}});
  DeEmbedPointS11S21(*session, kPoint);
  ExpectAll({{0.8, 0}, {9, 0}, {0.2, 0}, {9, 0}});
}

TEST_F(DeEmbed, ANetworkWithoutTransmissionGivesNoFault) {
  Load(1, {{0.5, 0}, {0, 0}, {0, 0}, {0.5, 0}});
  Measure({{0.2, 0}, {0.3, 0}, {0.3, 0}, {0.1, 0}});
  DeEmbedPointAll(*session, kPoint);
  for (const Parameter p : {Parameter::S11, Parameter::S21, Parameter::S12, Parameter::S22}) {
    const Complex z = ArrayOf(session->Data, p)[kPoint];
    EXPECT_TRUE(std::isfinite(z.re) && std::isfinite(z.im)) << NameOf(p);
  }
}

}  // namespace
}  // namespace qk
