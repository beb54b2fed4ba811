// SPDX-License-Identifier: MIT
// The uncertainty formulas against simulated pieces: devices measured through error terms of known
// size and unknown phase, with noise.
#include "quality/uncertainty.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <limits>
#include <random>

namespace qk {
namespace {

using Cplx = std::complex<double>;

struct Device {
  Cplx S11, S21, S12, S22;
  DeviceSizes Sizes() const { return {std::abs(S11), std::abs(S21), std::abs(S12), std::abs(S22)}; }
};

// One forward measurement by the six-term model with what a calibration left: directivity, source
// match, reflection tracking 1 + T, isolation, load match, transmission tracking 1 + T21.
struct Left {
  Cplx D, M, T, X, L, T21;
};
struct Pair {
  Cplx S11, S21;
};
Pair Measured(const Left& e, const Device& s) {
  const Cplx det = s.S11 * s.S22 - s.S12 * s.S21;
  const Cplx loops = 1.0 - e.M * s.S11 - e.L * s.S22 + e.M * e.L * det;
  return {e.D + (1.0 + e.T) * (s.S11 - e.L * det) / loops, e.X + (1.0 + e.T21) * s.S21 / loops};
}

struct Tally {
  double Squares = 0;
  int Inside = 0, Count = 0;
  void Take(double error, double u) {
    Squares += error * error / (u * u);
    Inside += std::abs(error) <= kCoverage * u ? 1 : 0;
    ++Count;
  }
  double Ratio() const { return std::sqrt(Squares / Count); }
  double Share() const { return static_cast<double>(Inside) / Count; }
};

class Devices {
 public:
  explicit Devices(unsigned seed) : random_(seed) {}
  Cplx Turned(double size) { return std::polar(size, phase_(random_)); }
  Cplx Noise(double s) {
    std::normal_distribution<double> part(0, 1 / std::sqrt(2.0));
    return s * Cplx{part(random_), part(random_)};
  }
  double Between(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random_);
  }

 private:
  std::mt19937 random_;
  std::uniform_real_distribution<double> phase_{-M_PI, M_PI};
};

constexpr ResidualSizes kSizes{0.01, 0.02, 0.006, 0.02, 0.008, 3e-5};

// The errors of the two magnitudes of many pieces, over u.
void Simulate(int count, double s, Tally& reflection, Tally& transmission, unsigned seed) {
  Devices pieces(seed);
  for (int i = 0; i < count; ++i) {
    const double r = pieces.Between(0.05, 0.9);
    const double t = std::sqrt(1 - r * r) * pieces.Between(0.1, 0.99);
    Device device;
    device.S11 = pieces.Turned(r);
    device.S22 = pieces.Turned(r);
    device.S21 = device.S12 = pieces.Turned(t);
    const Left left{pieces.Turned(kSizes.Directivity), pieces.Turned(kSizes.SourceMatch),
                    pieces.Turned(kSizes.Tracking),    pieces.Turned(kSizes.Isolation),
                    pieces.Turned(kSizes.LoadMatch),   pieces.Turned(kSizes.TransmissionTracking)};
    Pair m = Measured(left, device);
    m.S11 += pieces.Noise(s);
    m.S21 += pieces.Noise(s);
    const DeviceSizes sizes = device.Sizes();
    reflection.Take(std::abs(m.S11) - sizes.S11, UncertaintyOfReflection(kSizes, sizes, {s, 1}));
    transmission.Take(std::abs(m.S21) - sizes.S21,
                      UncertaintyOfTransmission(kSizes, sizes, {s, 1}));
  }
}

TEST(Uncertainty, CoversTheErrorsOf4000SimulatedPieces) {
  for (const double s : {0.0, 0.003}) {
    Tally reflection, transmission;
    Simulate(4000, s, reflection, transmission, 11);
    EXPECT_GT(reflection.Ratio(), 0.95) << s;
    EXPECT_LT(reflection.Ratio(), 1.05) << s;
    EXPECT_GT(transmission.Ratio(), 0.95) << s;
    EXPECT_LT(transmission.Ratio(), 1.05) << s;
    EXPECT_GE(reflection.Share(), 0.93) << s;
    EXPECT_GE(transmission.Share(), 0.93) << s;
  }
}

TEST(Uncertainty, OfReflectionAddsEachTermInItsPlace) {
  const DeviceSizes device{0.5, 0.8, 0.4, 0.3};
  const auto u = [&](const ResidualSizes& r, Spread s = {}) {
    return UncertaintyOfReflection(r, device, s);
  };
  EXPECT_DOUBLE_EQ(u({.Directivity = 0.02}), 0.02 / std::sqrt(2));
  EXPECT_DOUBLE_EQ(u({.Tracking = 0.02}), 0.02 * 0.5 / std::sqrt(2));
  EXPECT_DOUBLE_EQ(u({.SourceMatch = 0.02}), 0.02 * 0.25 / std::sqrt(2));
  EXPECT_DOUBLE_EQ(u({.LoadMatch = 0.02}), 0.02 * 0.32 / std::sqrt(2));
  EXPECT_DOUBLE_EQ(u({.TransmissionTracking = 0.02, .Isolation = 0.1}), 0);
  EXPECT_DOUBLE_EQ(u({}, {0.02, 1}), 0.02 / std::sqrt(2));
  EXPECT_DOUBLE_EQ(u({}, {0.02, 8}), 0.02 / 4);
}

TEST(Uncertainty, OfTransmissionAddsEachTermInItsPlace) {
  const DeviceSizes device{0.5, 0.8, 0.4, 0.3};
  const auto u = [&](const ResidualSizes& r, Spread s = {}) {
    return UncertaintyOfTransmission(r, device, s);
  };
  EXPECT_DOUBLE_EQ(u({.TransmissionTracking = 0.02}), 0.8 * 0.02 / std::sqrt(2));
  EXPECT_DOUBLE_EQ(u({.SourceMatch = 0.02}), 0.8 * 0.02 * 0.5 / std::sqrt(2));
  EXPECT_DOUBLE_EQ(u({.LoadMatch = 0.02}), 0.8 * 0.02 * 0.3 / std::sqrt(2));
  EXPECT_DOUBLE_EQ(u({.Isolation = 0.001}), 0.001 / std::sqrt(2));
  EXPECT_DOUBLE_EQ(u({.Directivity = 0.02, .Tracking = 0.1}), 0);
  EXPECT_DOUBLE_EQ(u({}, {0.02, 8}), 0.02 / 4);
  EXPECT_NEAR(u({.SourceMatch = 0.1, .LoadMatch = 0.2}),
              0.8 * std::sqrt((0.05 * 0.05 + 0.06 * 0.06) / 2), 1e-15);
  EXPECT_NEAR(u({.SourceMatch = 0.1, .RawLoadMatch = 0.2}),
              0.8 * std::sqrt((0.05 * 0.05 + 0.02 * 0.02 + 0.0064 * 0.0064) / 2), 1e-15);
}

// The terms of port 2 act through the load matches of the test set.
TEST(Uncertainty, OfReflectionTakesPort2ThroughTheLoadMatch) {
  const DeviceSizes device{0.5, 0.8, 0.4, 0.3};
  const auto u = [&](const ResidualSizes& r) { return UncertaintyOfReflection(r, device, {}); };
  EXPECT_DOUBLE_EQ(u({.Directivity2 = 0.02, .SourceMatch2 = 0.02, .Tracking2 = 0.02}), 0);
  const double path = 0.1 * 0.32 / std::sqrt(2);
  EXPECT_DOUBLE_EQ(u({.RawLoadMatch = 0.1, .Directivity2 = 0.02}), path * 0.02 * 0.5);
  EXPECT_DOUBLE_EQ(u({.RawLoadMatch = 0.1, .SourceMatch2 = 0.02}), path * 0.02 * 0.3);
  EXPECT_DOUBLE_EQ(u({.RawLoadMatch = 0.1, .Tracking2 = 0.02}), 0);
  EXPECT_DOUBLE_EQ(u({.RawLoadMatch = 0.1, .Tracking2 = 0.02, .RawLoadMatch2 = 0.2}),
                   path * 0.02 * 0.5 * 0.2);
  EXPECT_NEAR(u({.RawLoadMatch = 0.1, .SourceMatch2 = 0.02, .RawLoadMatch2 = 0.2}),
              path * 0.02 * std::sqrt(0.3 * 0.3 + 0.2 * 0.2 * (1 + 0.32 * 0.32)), 1e-15);
}

TEST(Uncertainty, OfTransmissionTakesPort2ThroughTheLoadMatch) {
  const DeviceSizes device{0.5, 0.8, 0.4, 0.3};
  const auto u = [&](const ResidualSizes& r) { return UncertaintyOfTransmission(r, device, {}); };
  EXPECT_DOUBLE_EQ(u({.Directivity2 = 0.02, .SourceMatch2 = 0.02, .Tracking2 = 0.02}), 0);
  const double path = 0.8 * 0.1 / std::sqrt(2);
  EXPECT_NEAR(u({.RawLoadMatch = 0.1, .Directivity2 = 0.02}),
              path * 0.02 * std::sqrt(1 + 0.32 * 0.32), 1e-15);
  EXPECT_NEAR(u({.RawLoadMatch = 0.1, .SourceMatch2 = 0.02}), path * 0.02 * 0.09, 1e-15);
  EXPECT_NEAR(u({.RawLoadMatch = 0.1, .Tracking2 = 0.02}), path * 0.02 * 0.3, 1e-15);
  EXPECT_NEAR(u({.RawLoadMatch = 0.1, .Tracking2 = 0.02, .RawLoadMatch2 = 0.9}), path * 0.02 * 0.3,
              1e-15);
}

// JCGM 100:2008, table G.2, the column of 95.45 %.
TEST(Uncertainty, HasTheFactorsOfStudentsDistribution) {
  struct Row {
    double Freedom, Factor;
  };
  for (const Row& row : {Row{2, 4.53}, Row{3, 3.31}, Row{4, 2.87}, Row{5, 2.65}, Row{6, 2.52},
                         Row{7, 2.43}, Row{8, 2.37}, Row{10, 2.28}, Row{20, 2.13}, Row{50, 2.05}})
    EXPECT_NEAR(StudentFactor(row.Freedom), row.Factor, row.Freedom < 3 ? 0.05 : 0.008)
        << row.Freedom;
  EXPECT_EQ(StudentFactor(std::numeric_limits<double>::infinity()), 2);
  EXPECT_EQ(StudentFactor(0.5), StudentFactor(2));
}

TEST(Uncertainty, IsWidenedByThePartThatIsKnownFromFewSweeps) {
  const Spread spread{0.02, 1, 6};  // its part of u is 0.02 / sqrt(2)
  const double alone = 0.02 / std::sqrt(2);
  EXPECT_NEAR(EffectiveFreedom(alone, spread), 6, 1e-9);
  EXPECT_NEAR(CoveringUncertainty(alone, spread) / alone, 2.52 / 2, 0.005);
  EXPECT_NEAR(EffectiveFreedom(2 * alone, spread), 96, 1e-9);
  EXPECT_NEAR(CoveringUncertainty(2 * alone, spread) / (2 * alone), 1.013, 0.001);
  EXPECT_EQ(CoveringUncertainty(0.01, {}), 0.01);
  EXPECT_EQ(CoveringUncertainty(0.01, {0.02, 1}), 0.01) << "a spread that is known well";
}

}  // namespace
}  // namespace qk
