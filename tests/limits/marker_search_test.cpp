// SPDX-License-Identifier: MIT
#include "limits/marker_search.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>

namespace qk {
namespace {

class Search : public testing::Test {
 protected:
  ChannelSettings& Channel() { return session->Channel(1); }
  void Values(const std::vector<double>& values) {
    session->Plan.NumPoints = static_cast<std::int16_t>(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) Channel().Value[i + 1] = values[i];
  }
  int Points() const { return session->Plan.NumPoints; }
  MarkerSettings& Settings(int m) { return session->Markers.Set(m); }

  std::unique_ptr<Session> session = MakeSession();
};

TEST_F(Search, TheFirstOfEqualPeaksWins) {
  Values({1, 5, 2, 5, 5, 0});
  EXPECT_EQ(FindExtreme(Channel(), Points(), Extreme::Peak), 2);
}

TEST_F(Search, TheFirstOfEqualMinimaWins) {
  Values({1, 0, 2, 0, 0, 3});
  EXPECT_EQ(FindExtreme(Channel(), Points(), Extreme::Minimum), 2);
}

TEST_F(Search, AFlatTraceHasItsPeakAtItsFirstPoint) {
  Values({4, 4, 4, 4});
  EXPECT_EQ(FindExtreme(Channel(), Points(), Extreme::Peak), 1);
  EXPECT_EQ(FindExtreme(Channel(), Points(), Extreme::Minimum), 1);
}

TEST_F(Search, ASmithChartIsSearchedByMagnitude) {
  Values({0.5, -0.9, 0.1});
  Channel().Value2[1] = 0.1;
  Channel().Value2[2] = -0.2;
  Channel().Value2[3] = 0.0;
  Channel().GraphType = GraphType::Smith;
  EXPECT_EQ(FindExtreme(Channel(), Points(), Extreme::Peak), 2);
  EXPECT_EQ(FindExtreme(Channel(), Points(), Extreme::Minimum), 3);
}

TEST_F(Search, TheEdgesAreTheNearestToTheBand) {
  Values({-9, -6, -3.5, -2.5, -1, 0, -1, -2, -3.25, -6, -9});
  const BandEdges band = FindBand(Channel(), Points(), 6, Extreme::Peak, -3);
  EXPECT_EQ(band.Lower, 4);  // -3.5 and -2.5 are as near; the first met stays
  EXPECT_EQ(band.Upper, 9);
}

TEST_F(Search, BehindTheFirstPointHalfAsFarAgainOffNothingIsLookedAt) {
  Values({-3, -5, -1, 0, -1, -5, -3});
  const BandEdges band = FindBand(Channel(), Points(), 4, Extreme::Peak, -3);
  EXPECT_EQ(band.Lower, 3);
  EXPECT_EQ(band.Upper, 5);
}

TEST_F(Search, APeakAtTheFirstPointHasItsLowerEdgeThere) {
  Values({0, -1, -3, -6});
  const BandEdges band = FindBand(Channel(), Points(), 1, Extreme::Peak, -3);
  EXPECT_EQ(band.Lower, 1);
  EXPECT_EQ(band.Upper, 3);
}

TEST_F(Search, APeakAtTheLastPointHasItsUpperEdgeWhereTheLowerIs) {
  Values({-6, -3, -1, 0});
  const BandEdges band = FindBand(Channel(), Points(), 4, Extreme::Peak, -3);
  EXPECT_EQ(band.Lower, 2);
  EXPECT_EQ(band.Upper, 2);
}

TEST_F(Search, ACandidateBesideAPeakLiesBelowItBesideAMinimumAnyPointIsOne) {
  Values({7, 7, 7});
  EXPECT_EQ(FindBand(Channel(), Points(), 2, Extreme::Peak, -3).Lower, 2);
  EXPECT_EQ(FindBand(Channel(), Points(), 2, Extreme::Minimum, 3).Lower, 1);
  EXPECT_EQ(FindBand(Channel(), Points(), 2, Extreme::Minimum, 3).Upper, 3);
}

TEST_F(Search, LinearMagnitudesAreComparedAsRatios) {
  Channel().GraphType = GraphType::LinMag;
  Values({0.2, 0.5, 0.72, 0.9, 1, 0.9, 0.70, 0.45});
  const BandEdges half = FindBand(Channel(), Points(), 5, Extreme::Peak, -3);  // 0.7079
  EXPECT_EQ(half.Lower, 3);
  EXPECT_EQ(half.Upper, 7);
  const BandEdges quarter = FindBand(Channel(), Points(), 5, Extreme::Peak, -6);  // 0.5012
  EXPECT_EQ(quarter.Lower, 2);
  EXPECT_EQ(quarter.Upper, 8);
}

TEST_F(Search, AZeroPeakInLinearMagnitudeDividesByTheFloor) {
  Channel().GraphType = GraphType::LinMag;
  Values({0, 0, 0});
  const BandEdges band = FindBand(Channel(), Points(), 1, Extreme::Minimum, 3);
  EXPECT_EQ(band.Lower, 1);
  EXPECT_EQ(band.Upper, 2);
}

TEST_F(Search, WithoutABandTheChosenMarkerGoesToThePeakAndTheOthersStay) {
  Values({1, 5, 2});
  session->Markers.Of(0, 0).Point = 3;
  EXPECT_TRUE(SearchMarkers(*session, Extreme::Peak, {}, 1));
  EXPECT_TRUE(session->Display.MarkersOn);
  EXPECT_TRUE(Settings(1).Shown);
  EXPECT_TRUE(Settings(1).IsActive);
  EXPECT_EQ(Settings(1).Point, 2);
  EXPECT_EQ(Settings(0).Point, 3);
  EXPECT_FALSE(Settings(0).Shown);
}

TEST_F(Search, ABandTakesMarkersOneToThree) {
  Values({-6, -3, 0, -3, -6});
  Settings(3).Shown = Settings(3).IsRef = true;
  EXPECT_TRUE(SearchMarkers(*session, Extreme::Peak, -3, 0));
  for (int m = 0; m < 4; ++m) {
    EXPECT_EQ(Settings(m).Shown, m < 3);
    EXPECT_EQ(Settings(m).IsRef, m == 1);
    EXPECT_EQ(Settings(m).IsActive, m == 2);
  }
  EXPECT_EQ(Settings(0).Point, 3);
  EXPECT_EQ(Settings(1).Point, 2);
  EXPECT_EQ(Settings(2).Point, 4);
}

TEST_F(Search, ABandNeedsAMagnitudeAndIsRefusedElsewhere) {
  Values({1, 5, 2});
  for (const GraphType type : {GraphType::Phase, GraphType::Smith, GraphType::Swr,
                               GraphType::GroupDelay, GraphType::Real, GraphType::Td}) {
    Channel().GraphType = type;
    session->Markers = {};
    EXPECT_FALSE(SearchMarkers(*session, Extreme::Peak, -3, 0));
    EXPECT_EQ(Settings(0).Point, 2);
    EXPECT_TRUE(Settings(0).Shown);
    EXPECT_FALSE(Settings(1).Shown);
    EXPECT_FALSE(Settings(2).Shown);
  }
}

TEST_F(Search, LooksAtTheActiveChannelAlone) {
  Values({1, 5, 2});
  session->Display.ActiveChannel = 3;
  session->Channel(3).Value[3] = 9;
  SearchMarkers(*session, Extreme::Peak, {}, 0);
  EXPECT_EQ(Settings(0).Point, 3);
}

// ---- the same, read a second time --------------------------------------------------------------

struct Told {
  int Best, Lower, Upper;
};

// Word by word, without a common routine for the two sides or the two extremes.
Told Oracle(const std::vector<double>& v, bool linear, bool peak, double n) {
  const int count = static_cast<int>(v.size()) - 1;  // v[0] is unused
  const auto at = [&](int i) { return v[static_cast<std::size_t>(i)]; };
  int best = 1;
  for (int i = 2; i <= count; ++i)
    if (peak ? at(best) < at(i) : at(best) > at(i)) best = i;
  const double top = at(best);
  const double divisor = top > 1e-11 ? top : 1e-11;
  int edge = best;
  double d = 1e9;
  for (int i = best - 1; i >= 1; --i) {
    const double e =
        linear ? std::fabs(at(i) / divisor - std::pow(10, n / 20)) : std::fabs((at(i) - top) - n);
    if (e < d && (!peak || at(i) < top)) {
      d = e;
      edge = i;
    }
    if (peak && !linear && top + 1.5 * n > at(i)) break;
    if (peak && linear && std::pow(10, 1.5 * n / 20) > at(i) / divisor) break;
    if (!peak && !linear && top + 1.5 * n < at(i)) break;
    if (!peak && linear && std::pow(10, 1.5 * n / 20) < at(i) / divisor) break;
  }
  const int lower = edge;
  d = 1e9;
  for (int i = best + 1; i <= count; ++i) {
    const double e =
        linear ? std::fabs(at(i) / divisor - std::pow(10, n / 20)) : std::fabs((at(i) - top) - n);
    if (e < d && (!peak || at(i) < top)) {
      d = e;
      edge = i;
    }
    if (peak && !linear && top + 1.5 * n > at(i)) break;
    if (peak && linear && std::pow(10, 1.5 * n / 20) > at(i) / divisor) break;
    if (!peak && !linear && top + 1.5 * n < at(i)) break;
    if (!peak && linear && std::pow(10, 1.5 * n / 20) < at(i) / divisor) break;
  }
  return {best, lower, edge};
}

TEST_F(Search, AgreesWithAPlainReadingOnRandomTraces) {
  std::mt19937 random(47);
  const auto uniform = [&](double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
  };
  int bandsAtAnEnd = 0, oneSided = 0, flatTops = 0;
  for (int run = 0; run < 20000; ++run) {
    const int count = std::uniform_int_distribution<int>(2, 60)(random);
    const bool linear = random() % 2 == 0, peak = random() % 2 == 0, wide = random() % 2 == 0;
    const bool coarse = random() % 2 == 0;  // whole numbers: flat tops and equal peaks
    std::vector<double> values;
    double walk = uniform(-20, 20);
    for (int i = 0; i < count; ++i) {
      walk += uniform(-4, 4);
      double value = linear ? std::pow(10, walk / 20) : walk;
      if (coarse) value = std::round(value);
      values.push_back(value);
    }
    const double n = (peak ? -1 : 1) * (wide ? 6 : 3);
    Values(values);
    Channel().GraphType = linear ? GraphType::LinMag : GraphType::LogMag;
    values.insert(values.begin(), 0);
    const Told told = Oracle(values, linear, peak, n);
    const Extreme which = peak ? Extreme::Peak : Extreme::Minimum;
    ASSERT_EQ(FindExtreme(Channel(), Points(), which), told.Best) << "run " << run;
    const BandEdges band = FindBand(Channel(), Points(), told.Best, which, n);
    ASSERT_EQ(band.Lower, told.Lower) << "run " << run;
    ASSERT_EQ(band.Upper, told.Upper) << "run " << run;
    bandsAtAnEnd += told.Best == 1 || told.Best == count;
    oneSided += told.Lower == told.Upper;
    for (int i = 1; i < count; ++i)
      if (i != told.Best &&
          values[static_cast<std::size_t>(i)] == values[static_cast<std::size_t>(told.Best)]) {
        ++flatTops;
        break;
      }
  }
  // The runs hold what they are made for.
  EXPECT_GT(bandsAtAnEnd, 1000);
  EXPECT_GT(oneSided, 500);
  EXPECT_GT(flatTops, 500);
}

}  // namespace
}  // namespace qk
