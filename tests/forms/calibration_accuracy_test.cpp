// SPDX-License-Identifier: MIT
// How near each kind of calibration comes to the truth, in numbers: what the model of a kind leaves
// uncorrected, and what the receiver's noise adds.
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <vector>

#include "cal/correction.h"
#include "cal/error_terms.h"
#include "sim/front_end.h"
#include "sim/receiver.h"
#include "true_device.h"

namespace qk::test {
namespace {

// The device as it was connected, kept over the prompts.
using Device = std::function<std::array<Phasor, 4>(double)>;
Device DeviceOf(const SimulatedProgram& vna) {
  return [&vna](double f) { return vna.instrument.Truth(f); };
}

// ---- what a model leaves uncorrected ---------------------------------------------------------

// S21 (1 - ES EL) / (1 - ES S11 - EL S22 + ES EL D): no match is corrected.
TEST(ResponseAccuracy, IsTheTransmissionTimesTheMismatchOfThroughAndDevice) {
  SimulatedProgram vna;
  DeviceFile file;
  vna.SetSweep("3", "3080", "201");
  vna.Choose("Option4");
  vna.Press({"Thru_Cal", "Iso_Cal"});
  vna.ApplyAndMeasure("device " + file.Path());
  const Difference model = Compare(vna, vna.session.Data.S21, [device = DeviceOf(vna)](double f) {
    const auto [s11, s21, s12, s22] = device(f);
    const sim::SideTerms t = sim::FrontEndAt(f).Forward;
    const Phasor match = t.SourceMatch * t.LoadMatch;
    return s21 * (1.0 - match) /
           (1.0 - t.SourceMatch * s11 - t.LoadMatch * s22 + match * (s11 * s22 - s12 * s21));
  });
  EXPECT_LT(model.Db, 0.02);
  EXPECT_LT(model.Deg, 0.2);
  const Difference truth = Compare(vna, vna.session.Data.S21, kS21);
  EXPECT_GT(truth.Db, 0.2);
  EXPECT_LT(truth.Db, 0.8);
  EXPECT_LT(truth.Deg, 5);
}

// S11 is the reflection with the uncorrected load after it, Gin; intentional: plus signs in the
// matches of through and device leave S21 (1 - (ES EL)^2) / ((1 - EL S22) (1 - (ES Gin)^2)).
TEST(EnhancedAccuracy, IsTheTransmissionButForTheLoadMatchAndTheSquaresOfItsPlusSigns) {
  SimulatedProgram vna;
  DeviceFile file;
  vna.SetSweep("3", "3080", "201");
  vna.Choose("Option6");
  vna.Press({"O_Cal", "S_Cal", "M_Cal", "Thru_Cal", "Iso_Cal"});
  vna.ApplyAndMeasure("device " + file.Path());
  const auto reflection = [device = DeviceOf(vna)](double f) {
    const auto [s11, s21, s12, s22] = device(f);
    const Phasor el = sim::FrontEndAt(f).Forward.LoadMatch;
    return s11 + s12 * s21 * el / (1.0 - el * s22);
  };
  const Difference s11 = Compare(vna, vna.session.Data.S11, reflection);
  EXPECT_LT(s11.Db, 0.02);
  EXPECT_LT(s11.Deg, 0.2);
  const Difference s21 = Compare(vna, vna.session.Data.S21, [&, device = DeviceOf(vna)](double f) {
    const sim::SideTerms t = sim::FrontEndAt(f).Forward;
    const Phasor through = t.SourceMatch * t.LoadMatch, seen = t.SourceMatch * reflection(f);
    return device(f)[kS21] * (1.0 - through * through) /
           ((1.0 - t.LoadMatch * device(f)[kS22]) * (1.0 - seen * seen));
  });
  EXPECT_LT(s21.Db, 0.02);
  EXPECT_LT(s21.Deg, 0.2);
  const Difference truth = Compare(vna, vna.session.Data.S21, kS21);
  EXPECT_GT(truth.Db, 0.05);
  EXPECT_LT(truth.Db, 0.4);
  EXPECT_LT(truth.Deg, 3);
}

// ---- noise -----------------------------------------------------------------------------------

// The arrays that a calibration and a measurement put raw ratios into: each has noise of its own.
struct RawArray {
  ComplexArray& (*Of)(Session&);
  bool FromPort2;  // which reference channel it was divided by
  bool Standard;   // of the calibration, measured with 16 averages
};
using RawArrays = std::vector<RawArray>;

const RawArrays kOnePortArrays{
    {[](Session& s) -> ComplexArray& { return s.Standards.CalLoad1; }, false, true},
    {[](Session& s) -> ComplexArray& { return s.Standards.CalShort1; }, false, true},
    {[](Session& s) -> ComplexArray& { return s.Standards.CalOpen1; }, false, true},
    {[](Session& s) -> ComplexArray& { return s.Data.RawS11; }, false, false}};

const RawArrays kInsertableArrays = [] {
  RawArrays arrays = kOnePortArrays;
  for (const RawArray& more : RawArrays{
           {[](Session& s) -> ComplexArray& { return s.Standards.CalLoad2; }, true, true},
           {[](Session& s) -> ComplexArray& { return s.Standards.CalShort2; }, true, true},
           {[](Session& s) -> ComplexArray& { return s.Standards.CalOpen2; }, true, true},
           {[](Session& s) -> ComplexArray& { return s.Standards.CalThruRefl1; }, false, true},
           {[](Session& s) -> ComplexArray& { return s.Standards.CalThruRefl2; }, true, true},
           {[](Session& s) -> ComplexArray& { return s.Terms.Forward.ETT; }, false, true},
           {[](Session& s) -> ComplexArray& { return s.Terms.Reverse.ETT; }, true, true},
           {[](Session& s) -> ComplexArray& { return s.Terms.Forward.EX; }, false, true},
           {[](Session& s) -> ComplexArray& { return s.Terms.Reverse.EX; }, true, true},
           {[](Session& s) -> ComplexArray& { return s.Data.RawS21; }, false, false},
           {[](Session& s) -> ComplexArray& { return s.Data.RawS12; }, true, false},
           {[](Session& s) -> ComplexArray& { return s.Data.RawS22; }, true, false}})
    arrays.push_back(more);
  return arrays;
}();

using Corrected = ComplexArray SParamData::*;

// Calibrates and measures with the receiver's noise on, and compares the errors with what the noise
// of every raw ratio makes of the result, to first order.
struct NoisyFixture : SimulatedProgram {
  DeviceFile file;
  std::unique_ptr<Session> measured;  // raw standards and raw device

  explicit NoisyFixture(int seed) {
    fake.OnModal = [this](Form&) { Click("IsoMethod.Command1"); };
    Bench("noise on");
    Bench("seed " + std::to_string(seed));
    SetSweep("3", "3080", "401");
  }
  void CalibrateAndMeasure(const char* option, std::initializer_list<const char*> standards,
                           const std::string& device) {
    Choose(option);
    Press(standards);
    measured = std::make_unique<Session>(session);
    ApplyAndMeasure(device);
    for (auto raw :
         {&SParamData::RawS11, &SParamData::RawS21, &SParamData::RawS12, &SParamData::RawS22})
      measured->Data.*raw = session.Data.*raw;
  }

  // Terms and corrections once more from the raw data, one array of it shifted.
  void Solve(Session& work, const RawArray* shifted, Phasor shift) const {
    work = *measured;
    if (shifted != nullptr)
      for (int i = 0; i < work.Plan.NumPoints; ++i) {
        const Phasor z = PointOf(shifted->Of(work), i) + shift;
        shifted->Of(work).Set(i, {z.real(), z.imag()});
      }
    if (session.Cal.CalS11) {
      ComputeOnePortTerms(work);
      for (int i = 0; i < work.Plan.NumPoints; ++i) CorrectS11Point(work, i);
    } else {
      ComputeInsertableTerms(work);
      ClearIsolationCoefficients(work);
      for (int i = 0; i < work.Plan.NumPoints; ++i) Correct12TermPoint(work, i);
    }
  }

  // Mean square of a raw ratio's noise: that of the conversions, and of the rounding of their sum
  // to whole counts, in both parts of test and reference, over the reference channel's voltage.
  double NoiseOfRaw(const RawArray& array, int i) const {
    constexpr double kVoltsPerCount = 4.999924 / 65535;
    const double readings = array.Standard ? 16 : session.Averaging.Averages;
    const double counts =
        sim::kNoiseCounts * sim::kNoiseCounts / readings + 1.0 / 12 / (readings * readings);
    const sim::FrontEndTerms front = sim::FrontEndAt(session.Plan.Frequency(i));
    const Phasor reference = array.FromPort2 ? front.ReverseReference : front.ForwardReference;
    const double raw = std::norm(PointOf(array.Of(*measured), i));
    return 2 * counts * kVoltsPerCount * kVoltsPerCount * (1 + raw) / std::norm(reference);
  }

  // The mean over the plan of |error|^2 over its expected value; 1 when noise is all there is.
  double ErrorOverExpected(Corrected parameter, std::size_t truth, const RawArrays& arrays) const {
    const auto plain = std::make_unique<Session>(), shifted = std::make_unique<Session>();
    Solve(*plain, nullptr, 0);
    std::vector<double> expected(static_cast<std::size_t>(session.Plan.NumPoints));
    constexpr double kShift = 1e-5;
    for (const RawArray& array : arrays) {
      Solve(*shifted, &array, kShift);
      for (int i = 0; i < session.Plan.NumPoints; ++i) {
        const Phasor slope =
            (PointOf(shifted->Data.*parameter, i) - PointOf(plain->Data.*parameter, i)) / kShift;
        expected[static_cast<std::size_t>(i)] += std::norm(slope) * NoiseOfRaw(array, i);
      }
    }
    double sum = 0;
    for (int i = 0; i < session.Plan.NumPoints; ++i) {
      const Phasor error =
          PointOf(session.Data.*parameter, i) - instrument.Truth(session.Plan.Frequency(i))[truth];
      sum += std::norm(error) / expected[static_cast<std::size_t>(i)];
    }
    return sum / session.Plan.NumPoints;
  }
};

// Over 401 points the ratio scatters by a twentieth.
void ExpectNoiseAlone(double errorOverExpected) {
  EXPECT_GT(errorOverExpected, 0.8);
  EXPECT_LT(errorOverExpected, 1.25);
}

class NoiseAccuracy : public ::testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Seeds, NoiseAccuracy, ::testing::Values(1, 2, 3));

TEST_P(NoiseAccuracy, S11IsTrueWithinTheNoiseOfStandardsAndDevice) {
  NoisyFixture vna(GetParam());
  vna.CalibrateAndMeasure("Option3", {"O_Cal", "S_Cal", "M_Cal"},
                          "port1 device " + vna.file.Path());
  ExpectNoiseAlone(vna.ErrorOverExpected(&SParamData::S11, kS11, kOnePortArrays));
}

TEST_P(NoiseAccuracy, AllFourParametersAreTrueWithinTheNoiseOfStandardsAndDevice) {
  NoisyFixture vna(GetParam());
  vna.CalibrateAndMeasure("Option5", {"O_Cal", "S_Cal", "M_Cal", "Thru_Cal", "Iso_Cal"},
                          "device " + vna.file.Path());
  ExpectNoiseAlone(vna.ErrorOverExpected(&SParamData::S11, kS11, kInsertableArrays));
  ExpectNoiseAlone(vna.ErrorOverExpected(&SParamData::S21, kS21, kInsertableArrays));
  ExpectNoiseAlone(vna.ErrorOverExpected(&SParamData::S12, kS12, kInsertableArrays));
  ExpectNoiseAlone(vna.ErrorOverExpected(&SParamData::S22, kS22, kInsertableArrays));
}

}  // namespace
}  // namespace qk::test
