// SPDX-License-Identifier: MIT
// The order in which a corrected point is moved to its plane, freed of networks and seen at another
// impedance, in each kind of sweep.
#include <gtest/gtest.h>

#include "control/control_fixture.h"
#include "control/known_samples.h"
#include "control/sweep_traits.h"
#include "trace/formatting.h"
#include "trace/zo.h"

namespace qk {
namespace {

using namespace test;

constexpr int kPoint = 40;

class Pipeline : public SweepingControl, public testing::TestWithParam<KindOfSweep> {
 protected:
  Pipeline() {
    MakeReady(GetParam());
    port.Volts = KnownVolts;
    session->Plan.StepFreq = 1e7;
    PlaneState& planes = session->Planes;
    planes.PlaneS11 = planes.PlaneS21 = planes.PlaneS12 = planes.PlaneS22 = 0.1f;
    planes.DelayS11 = planes.DelayS21 = planes.DelayS12 = planes.DelayS22 = 3e-10f;
    for (const int n : {1, 2}) {
      Network& network = session->Networks.OfPort(n);
      network.S11.Fill({0.1, -0.1 * n});
      network.S21.Fill({0.8, 0.1 * n});
      network.S12.Fill({0.7, 0});
      network.S22.Fill({-0.2, 0.1});
    }
    session->Networks.Port1NetOn = session->Networks.Port2NetOn = true;
    session->Impedance.SystemZo = 75;
  }
  std::span<const Parameter> Delivered() const { return DeliveredBy(GetParam().Mode); }
  // What a sweep with the steps asked for leaves of one point.
  SParamData Sweep(bool deEmbed, bool zo) {
    session->Impedance.DeEmbedOn = deEmbed;
    session->Impedance.ZoConvertOn = zo;
    Measure();
    return session->Data;
  }
  void Expect(const SParamData& is, const SParamData& data) {
    for (const Parameter p : {Parameter::S11, Parameter::S21, Parameter::S12, Parameter::S22})
      ExpectNear(ArrayOf(is, p)[kPoint], ArrayOf(data, p)[kPoint], NameOf(p).data(), kPoint);
  }
};

TEST_P(Pipeline, NetworksComeOffAtThePlanes) {
  session->Data = Sweep(false, false);
  TraitsOf(GetParam().Mode).DeEmbed(*session, kPoint);
  const SParamData expected = session->Data;
  EXPECT_FALSE(expected.RawS11[kPoint] == expected.S11[kPoint]);
  Expect(Sweep(true, false), expected);
}

TEST_P(Pipeline, TheImpedanceIsConvertedLast) {
  session->Data = Sweep(true, false);
  ConvertPointZo(*session, kPoint, Delivered());
  Expect(Sweep(true, true), session->Data);
}

TEST_P(Pipeline, WithAnExternalMatchNothingIsConverted) {
  const SParamData expected = Sweep(true, false);
  session->Impedance.ExternalZoMatch = true;
  Expect(Sweep(true, true), expected);
}

TEST_P(Pipeline, AReplotDoesNotApplyTheStepsAgain) {
  const SParamData expected = Sweep(true, true);
  graphs.ReplotAll();
  Expect(session->Data, expected);
}

INSTANTIATE_TEST_SUITE_P(Kinds, Pipeline, testing::ValuesIn(KindsOfSweep()));

TEST(TimeDomainSweep, ReportsInPanel6ThatItComputes) {
  SweepingControl b;
  b.MakeReady(KindsOfSweep()[0], 1024);
  b.session->Channel(1).GraphType = GraphType::Td;
  b.session->Channel(1).Units = Unit::U;
  b.fake.Events.clear();
  b.Measure();
  std::vector<std::string> panels;
  for (const std::string& line : b.fake.Events)
    if (line.starts_with("panel 6")) panels.push_back(line);
  EXPECT_EQ(panels, (std::vector<std::string>{"panel 6 SWEEP ON", "panel 6 Computing TD",
                                              "panel 6 SWEEP ON", "panel 6 Sweep Off"}));
  EXPECT_NE(b.session->Channel(1).Value[500], 0);
}

}  // namespace
}  // namespace qk
