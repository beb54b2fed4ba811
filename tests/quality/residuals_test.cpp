// SPDX-License-Identifier: MIT
// Residual terms out of known devices: exact with three standards, by least squares with a shorted
// air line, by the ripple with a mismatch behind one.
#include "quality/residuals.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <random>

namespace qk {
namespace {

double Db(double magnitude) {
  return 20 * std::log10(magnitude);
}

struct Grid {
  std::vector<double> F;
  explicit Grid(int points, double start = 3e6, double stop = 3e9) {
    for (int k = 0; k < points; ++k) F.push_back(start + (stop - start) * k / (points - 1));
  }
};

// Terms of the sizes that a fair calibration leaves, turning slowly over frequency.
Residual TrueResidual(double f, double d, double m, double t) {
  const auto turned = [f](double size, double ns, double at) {
    return std::polar(size, at - 2 * M_PI * f * ns * 1e-9);
  };
  return {turned(d, 0.12, 0.4), turned(m, 0.09, 2.1), turned(t, 0.05, -1.0)};
}

std::vector<Cplx> ThroughModel(const Grid& grid, double d, double m, double t, double noise,
                               const std::function<Cplx(double)>& device, unsigned seed = 7) {
  std::mt19937 random(seed);
  std::normal_distribution<double> normal(0, 1 / std::sqrt(2.0));
  std::vector<Cplx> measured;
  for (const double f : grid.F)
    measured.push_back(MeasuredWith(TrueResidual(f, d, m, t), device(f)) +
                       noise * Cplx(normal(random), normal(random)));
  return measured;
}

TEST(ResidualFromThree, FindsExactlyWhatTheModelPutIn) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> part(-0.1, 0.1), phase(-M_PI, M_PI);
  for (int i = 0; i < 1000; ++i) {
    const Residual truth{
        {part(random), part(random)}, {part(random), part(random)}, {part(random), part(random)}};
    const double a = phase(random);
    const std::array<Cplx, 3> g{std::polar(1.0, a), std::polar(0.98, a + 2.5), Cplx(0.02, -0.01)};
    std::array<Cplx, 3> m;
    for (std::size_t k = 0; k < 3; ++k) m[k] = MeasuredWith(truth, g[k]);
    const auto found = ResidualFromThree(g, m);
    ASSERT_TRUE(found);
    EXPECT_LT(std::abs(found->Directivity - truth.Directivity), 1e-12);
    EXPECT_LT(std::abs(found->SourceMatch - truth.SourceMatch), 1e-12);
    EXPECT_LT(std::abs(found->Tracking - truth.Tracking), 1e-12);
  }
}

TEST(ResidualFromThree, OfAPerfectCalibrationIsZero) {
  const std::array<Cplx, 3> g{-1.0, 1.0, 0.0};
  const auto found = ResidualFromThree(g, g);
  ASSERT_TRUE(found);
  EXPECT_LT(std::abs(found->Directivity), 1e-15);
  EXPECT_LT(std::abs(found->SourceMatch), 1e-15);
  EXPECT_LT(std::abs(found->Tracking), 1e-15);
}

TEST(ResidualFromThree, NeedsThreeDifferentStandards) {
  EXPECT_FALSE(ResidualFromThree({-1.0, -1.0, 0.0}, {-1.0, -1.0, 0.0}));
}

TEST(ShortedLine, GivesItsLengthAndLoss) {
  const Grid grid(401);
  const AirLine line{0.3004, 0.05};
  const auto m =
      ThroughModel(grid, 0.01, 0.03, 0.005, 1e-4, [&](double f) { return line.ShortBehind(f); });
  std::string why;
  const ResidualSweep found = ResidualFromShortedLine(grid.F, m, 0.3, &why);
  EXPECT_EQ(why, "");
  EXPECT_NEAR(found.Line.Metres, 0.3004, 2e-4);
  EXPECT_NEAR(found.Line.LossDbAt1GHz, 0.05, 0.02);
}

// Worst deviations in dB over the points that are known.
struct Worst {
  double D = 0, M = 0;
};
Worst WorstOf(const Grid& grid, const ResidualSweep& found, double d, double m) {
  Worst worst;
  for (int k = found.First; k <= found.Last; ++k) {
    const auto at = static_cast<std::size_t>(k);
    const Residual truth = TrueResidual(grid.F[at], d, m, 0);
    const Residual& r = found.Points[at];
    worst.D =
        std::max(worst.D, std::abs(Db(std::abs(r.Directivity) / std::abs(truth.Directivity))));
    worst.M =
        std::max(worst.M, std::abs(Db(std::abs(r.SourceMatch) / std::abs(truth.SourceMatch))));
  }
  return worst;
}

TEST(ShortedLine, Of300MillimetresKnowsDirectivityWithin3DbAndMatchWithin1_5) {
  const Grid grid(401);
  const AirLine line{0.3, 0.03};
  for (unsigned seed = 1; seed <= 20; ++seed) {
    const auto m = ThroughModel(
        grid, 0.01, 0.03, 0.005, 1e-4, [&](double f) { return line.ShortBehind(f); }, seed);
    const ResidualSweep found = ResidualFromShortedLine(grid.F, m, 0.3);
    ASSERT_FALSE(found.Empty());
    EXPECT_LT(grid.F[static_cast<std::size_t>(found.First)], 270e6);
    EXPECT_GT(grid.F[static_cast<std::size_t>(found.Last)], 2730e6);
    const Worst worst = WorstOf(grid, found, 0.01, 0.03);
    EXPECT_LT(worst.D, 3) << seed;
    EXPECT_LT(worst.M, 1.5) << seed;
  }
}

// Of calibrations whose tracking is off, and of some that are also bad otherwise: every term within
// 4 dB of the truth, which the loss and the length of the line must not swallow.
TEST(ShortedLine, KnowsTheTrackingBesideLossAndLength) {
  const Grid grid(401);
  struct Wrong {
    Cplx D, M, T;
  };
  const std::array<Wrong, 7> kinds{{{0.01, 0.03, 0.0116},    // + 0.1 dB
                                    {0.01, 0.03, -0.0114},   // - 0.1 dB
                                    {0.001, 0.001, 0.0351},  // + 0.3 dB
                                    {0.025, 0.03, -0.0339},  // - 0.3 dB
                                    {0.01, 0.05, 0.0116},
                                    {0.01, 0.03, {0, 0.0116}},
                                    {{0, 0.01}, {0, -0.03}, {0.008, -0.008}}}};
  for (const double loss : {0.0, 0.03, 0.3})
    for (const double metres : {0.3, 0.3006, 0.2994})
      for (const Wrong& wrong : kinds) {
        const AirLine line{metres, loss};
        std::mt19937 random(11);
        std::normal_distribution<double> normal(0, 1e-4 / std::sqrt(2.0));
        std::vector<Cplx> m;
        for (const double f : grid.F) {
          const Cplx turn = std::polar(1.0, -2 * M_PI * f * 0.1e-9);
          m.push_back(MeasuredWith({wrong.D * turn, wrong.M * turn, wrong.T}, line.ShortBehind(f)) +
                      Cplx(normal(random), normal(random)));
        }
        std::string why;
        const ResidualSweep found = ResidualFromShortedLine(grid.F, m, 0.3, &why);
        ASSERT_FALSE(found.Empty()) << why;
        EXPECT_NEAR(found.Line.Metres, metres, 3e-5);
        EXPECT_NEAR(found.Line.LossDbAt1GHz, loss, 0.01);
        for (int k = found.First; k <= found.Last; ++k) {
          const Residual& r = found.Points[static_cast<std::size_t>(k)];
          EXPECT_NEAR(Db(std::abs(r.Tracking)), Db(std::abs(wrong.T)), 4) << k << " " << wrong.T;
          EXPECT_NEAR(Db(std::abs(r.Directivity)), Db(std::abs(wrong.D)), 4) << k << " " << wrong.D;
          EXPECT_NEAR(Db(std::abs(r.SourceMatch)), Db(std::abs(wrong.M)), 4) << k << " " << wrong.M;
        }
      }
}

TEST(ShortedLine, SaysWhatIsMissing) {
  std::string why;
  const AirLine line{0.3, 0};
  const auto device = [&](double f) { return line.ShortBehind(f); };
  const Grid narrow(401, 1e9, 1.3e9);
  EXPECT_TRUE(
      ResidualFromShortedLine(narrow.F, ThroughModel(narrow, 0.01, 0.03, 0, 0, device), 0.3, &why)
          .Empty());
  EXPECT_EQ(why, "A longer line or a wider span is needed: the span must exceed 500 MHz.");
  const Grid coarse(51);
  EXPECT_TRUE(
      ResidualFromShortedLine(coarse.F, ThroughModel(coarse, 0.01, 0.03, 0, 0, device), 0.3, &why)
          .Empty());
  EXPECT_EQ(why, "More points are needed: at least 12 in 500 MHz.");
  EXPECT_TRUE(
      ResidualFromShortedLine(coarse.F, ThroughModel(coarse, 0.01, 0.03, 0, 0, device), 0, &why)
          .Empty());
  EXPECT_EQ(why, "The length of the line is not known.");
}

TEST(ShortedLine, RefusesWhatIsNoShortBehindALineOfThisLength) {
  const Grid grid(401);
  const AirLine line{0.3, 0.03};
  const auto why = [&](double nominal, const std::function<Cplx(double)>& device) {
    std::string text;
    const auto m = ThroughModel(grid, 0.01, 0.03, 0.005, 1e-4, device);
    EXPECT_TRUE(ResidualFromShortedLine(grid.F, m, nominal, &text).Empty());
    return text;
  };
  const auto shorted = [&](double f) { return line.ShortBehind(f); };
  EXPECT_EQ(why(0.3, [&](double f) { return -0.1 * line.ShortBehind(f); }).substr(0, 27),
            "What was measured reflects ");
  EXPECT_NE(why(0.3, [&](double f) { return 0.1 * line.ShortBehind(f); })
                .find(" dB: it is not a short behind a line."),
            std::string::npos);
  EXPECT_NE(why(0.3, [](double) { return Cplx(0.05, 0); }).find(" dB: it is not a short"),
            std::string::npos);
  EXPECT_EQ(why(0.3, [&](double f) { return -line.ShortBehind(f); }),
            "What was measured is not a short behind a line of this length.")
      << "an open";
  for (const double typed : {0.1, 0.2, 0.25, 0.28, 0.32, 0.6}) {
    const std::string text = why(typed, shorted);
    EXPECT_TRUE(text.starts_with("The phase is that of a line of 30") ||
                text.starts_with("The phase is that of a line of 29"))
        << typed << ": " << text;
    EXPECT_TRUE(text.ends_with(" mm: the length, the short or the calibration is wrong.")) << text;
  }
  EXPECT_TRUE(
      why(0.3, [](double) { return Cplx(-1, 0); }).starts_with("The phase is that of a line of "));
}

TEST(HalfRippleOf, AMismatchBehindALineIsTheDirectivity) {
  const Grid grid(401);
  const AirLine line{0.3, 0};
  const auto m = ThroughModel(grid, 0.01, 0.03, 0.0, 0, [&](double f) {
    return 0.1 * line.ShortBehind(f);  // a mismatch of 20 dB return loss
  });
  int first = 0, last = 0;
  const std::vector<double> ripple = HalfRipple(grid.F, m, line, first, last);
  ASSERT_LT(first, last);
  for (int k = first; k <= last; ++k)
    EXPECT_NEAR(Db(ripple[static_cast<std::size_t>(k)]), -40, 0.6) << k;
}

TEST(HalfRippleOf, AShortBehindALineLiesBetweenDifferenceAndSumOfMatchAndDirectivity) {
  const Grid grid(801);
  const AirLine line{0.3, 0};
  const auto m =
      ThroughModel(grid, 0.01, 0.03, 0.0, 0, [&](double f) { return line.ShortBehind(f); });
  int first = 0, last = 0;
  const std::vector<double> ripple = HalfRipple(grid.F, m, line, first, last);
  ASSERT_LT(first, last);
  for (int k = first; k <= last; ++k) {
    EXPECT_GT(ripple[static_cast<std::size_t>(k)], 0.02 * 0.97) << k;
    EXPECT_LT(ripple[static_cast<std::size_t>(k)], 0.04 * 1.03) << k;
  }
}

}  // namespace
}  // namespace qk
