// SPDX-License-Identifier: MIT
// A table carried onto the points of a sweep.
#include "files/touchstone_sweep.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace qk {
namespace {

TouchstoneTable SweepIn(const std::string& text) {
  const auto table = ReadTouchstone(text, Reference::ConvertedTo50);
  if (!table) throw std::runtime_error(table.Why().Text());
  return *table;
}

PlanGrid Grid(double start, double step, std::int16_t points) {
  PlanGrid grid;
  grid.StartFreq = start;
  grid.StepFreq = step;
  grid.StopFreq = start + step * (points - 1);
  grid.NumPoints = points;
  return grid;
}

// S11 of the table on the grid, point by point.
struct Curve {
  std::vector<double> Re, Im;
  Interval Met;
};
Curve OnGrid(const TouchstoneTable& table, const PlanGrid& grid) {
  Curve curve;
  curve.Re.resize(static_cast<std::size_t>(grid.NumPoints));
  curve.Im = curve.Re;
  curve.Met = ToGrid(table, Parameter::S11, grid, curve.Re, curve.Im);
  return curve;
}

TEST(TouchstoneOnSweep, IsTheFilesValueAtItsOwnFrequencies) {
  const auto table = SweepIn("# MHZ S RI R 50\n10 0.5 -1\n20 0.25 2\n30 0.75 -3\n");
  const Curve curve = OnGrid(table, Grid(10e6, 10e6, 3));
  EXPECT_NEAR(curve.Re[0], 0.5, 1e-12);
  EXPECT_NEAR(curve.Re[1], 0.25, 1e-12);
  EXPECT_NEAR(curve.Re[2], 0.75, 1e-12);
  EXPECT_NEAR(curve.Im[2], -3, 1e-12);
}

TEST(TouchstoneOnSweep, FollowsASmoothCurveBetweenTheRows) {
  std::string text = "# MHZ S RI R 50\n";
  const auto truth = [](double mhz) { return std::sin(mhz / 40); };
  for (int mhz = 10; mhz <= 500; mhz += 10)
    text += std::to_string(mhz) + " " + std::to_string(truth(mhz)) + " 0\n";
  const Curve curve = OnGrid(SweepIn(text), Grid(103e6, 1e6, 301));
  for (int i = 0; i < 301; ++i)
    EXPECT_NEAR(curve.Re[static_cast<std::size_t>(i)], truth(103 + i), 2e-5) << i;
}

TEST(TouchstoneOnSweep, IsHeldBelowTheFirstRowByTheKnotAtZero) {
  // Two knots, 0 at 0 Hz and 1 at 10 MHz: a straight line.
  const Curve curve = OnGrid(SweepIn("# MHZ S RI R 50\n10 1 -2\n"), Grid(3e6, 1e6, 8));
  EXPECT_NEAR(curve.Re[0], 0.3, 1e-7);
  EXPECT_NEAR(curve.Im[0], -0.6, 1e-7);
  EXPECT_NEAR(curve.Re[7], 1, 1e-7);
}

TEST(TouchstoneOnSweep, TakesAFirstRowAtZeroForTheKnot) {
  const Curve curve = OnGrid(SweepIn("# MHZ S RI R 50\n0 1 1\n10 1 1\n20 1 1\n"), Grid(0, 1e6, 21));
  EXPECT_EQ(curve.Met, Interval::Good);
  for (const double re : curve.Re) EXPECT_NEAR(re, 1, 1e-12);
}

TEST(TouchstoneOnSweep, GoesOnAboveTheLastRow) {
  const Curve curve = OnGrid(SweepIn("# MHZ S RI R 50\n10 1 0\n20 2 0\n"), Grid(30e6, 1e6, 51));
  EXPECT_NEAR(curve.Re[0], 3, 1e-6);
}

TEST(TouchstoneOnSweep, ReportsAnEmptyIntervalWhereAValueIsAskedOfIt) {
  const auto table = SweepIn("# MHZ S RI R 50\n10 1 0\n20 2 0\n20 3 0\n");
  EXPECT_EQ(OnGrid(table, Grid(3e6, 1e6, 10)).Met, Interval::Good);
  const Curve beyond = OnGrid(table, Grid(15e6, 1e6, 10));
  EXPECT_EQ(beyond.Met, Interval::Empty);
  EXPECT_EQ(beyond.Re[9], 3);  // the later row, and the load goes on
}

TEST(TouchstoneOnSweep, OfAThousandRowsReachesTheLast) {
  std::string text = "# MHZ S RI R 50\n";
  for (int i = 1; i <= 1000; ++i)
    text += std::to_string(i) + " " + std::to_string(i % 2 == 0 ? 0.5 : 0.25) + " 0\n";
  const Curve curve = OnGrid(SweepIn(text), Grid(200e6, 1e6, 801));
  for (int i = 0; i < 801; ++i)
    EXPECT_NEAR(curve.Re[static_cast<std::size_t>(i)], i % 2 == 0 ? 0.5 : 0.25, 1e-6);
}

TEST(TouchstoneKind, SaysWhichParametersAFileHas) {
  using enum Parameter;
  for (const auto p : {S11, S21, S12, S22}) {
    EXPECT_EQ(HasParameter(FileKind::None, p), p == S11);
    EXPECT_EQ(HasParameter(FileKind::OneParameter, p), p == S11);
    EXPECT_EQ(HasParameter(FileKind::WithS21, p), p == S11 || p == S21);
    EXPECT_TRUE(HasParameter(FileKind::AllFour, p));
  }
}

// ---- into the traces
// -----------------------------------------------------------------------------

struct InMemory : testing::Test {
  InMemory() {
    using enum Parameter;
    int n = 0;
    for (const auto p : {S11, S21, S12, S22}) session->Channel(++n).Parameter = p;
    session->Display.DisplaySet = DisplaySet::All;
    static_cast<PlanGrid&>(session->Plan) = Grid(3e6, 1e6, 51);
  }
  // 0.1 to 0.8 in the columns, at every frequency.
  static TouchstoneTable Columns(int count) {
    std::string row;
    for (int i = 1; i <= count; ++i) row += " 0." + std::to_string(i);
    return SweepIn("# MHZ S RI R 50\n0" + row + "\n1000" + row + "\n");
  }
  bool Loaded(int n) { return session->Channel(n).MemoryValid; }

  std::unique_ptr<Session> session = MakeSession();
};

TEST_F(InMemory, EveryDisplayedChannelTakesItsParameter) {
  EXPECT_EQ(ToMemory(Columns(8), *session), Interval::Good);
  for (int n = 1; n <= 4; ++n) {
    const ChannelSettings& channel = session->Channel(n);
    EXPECT_TRUE(channel.MemoryValid);
    EXPECT_EQ(channel.MemoryParameter, channel.Parameter);
    for (std::size_t i : {1u, 51u}) {
      EXPECT_NEAR(channel.MemoryRe[i], 0.2 * n - 0.1, 1e-6) << n;
      EXPECT_NEAR(channel.MemoryIm[i], 0.2 * n, 1e-6) << n;
    }
    EXPECT_EQ(channel.MemoryRe[0], 0);
    EXPECT_EQ(channel.MemoryRe[52], 0);
  }
  EXPECT_TRUE(session->Display.MemoryInUse);
}

TEST_F(InMemory, AChannelWhoseParameterIsNotInTheFileKeepsItsTrace) {
  session->Channel(3).MemoryRe.fill(9);
  session->Channel(3).MemoryParameter = Parameter::S21;
  (void)ToMemory(Columns(4), *session);
  EXPECT_TRUE(Loaded(1));
  EXPECT_TRUE(Loaded(2));
  EXPECT_FALSE(Loaded(3));
  EXPECT_FALSE(Loaded(4));
  EXPECT_EQ(session->Channel(3).MemoryRe[1], 9);
  EXPECT_EQ(session->Channel(3).MemoryParameter, Parameter::S21);
}

TEST_F(InMemory, AOnePortFileLeavesAChannelOfS21Alone) {
  session->Channel(1).Parameter = Parameter::S21;
  session->Display.DisplaySet = DisplaySet::One;
  (void)ToMemory(Columns(2), *session);
  EXPECT_FALSE(Loaded(1));
  EXPECT_TRUE(session->Display.MemoryInUse);
}

TEST_F(InMemory, ThreeParametersLoadS11AndS21Only) {
  (void)ToMemory(Columns(6), *session);
  EXPECT_TRUE(Loaded(1) && Loaded(2));
  EXPECT_FALSE(Loaded(3) || Loaded(4));
}

TEST_F(InMemory, OnlyDisplayedChannelsAreLoaded) {
  const std::vector<std::pair<DisplaySet, std::vector<bool>>> sets{
      {DisplaySet::One, {true, false, false, false}},
      {DisplaySet::OneTwo, {true, true, false, false}},
      {DisplaySet::ThreeFour, {false, false, true, true}}};
  for (const auto& [set, loaded] : sets) {
    for (ChannelSettings& channel : session->Channels) channel.MemoryValid = false;
    session->Display.DisplaySet = set;
    (void)ToMemory(Columns(8), *session);
    for (int n = 1; n <= 4; ++n)
      EXPECT_EQ(Loaded(n), loaded[static_cast<std::size_t>(n - 1)]) << NameOf(set) << n;
  }
}

}  // namespace
}  // namespace qk
