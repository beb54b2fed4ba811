// SPDX-License-Identifier: MIT
// Markers under a hand that drags them anywhere: a plain reading of what a drag does, written here
// a second time, says on which point each marker is; the program must read that point and no
// other. Then the same hand in the middle of sweeps.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>

#include "core/text.h"
#include "simulated_program.h"

namespace qk::test {
namespace {

using Action = Program::MouseAction;

class Dice {
 public:
  explicit Dice(std::uint32_t seed) : random_(seed) {}
  int Any(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }
  double Real(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random_);
  }

 private:
  std::mt19937 random_;
};

// Where a hand has put the markers, and what it holds.
class Hand {
 public:
  Hand(Session& session, Graphs& graphs) : session_(session), graphs_(graphs) {}

  // Takes the present state: a search, a frequency or another sweep may have moved markers.
  void LookAnew() {
    for (int g = 0; g < 4; ++g)
      for (int m = 0; m < kMarkers; ++m) At(g, m) = session_.Markers.Of(g, m).Point;
  }
  void Down(int x, int y) {
    held_ = false;
    for (int g = 0; g < 4; ++g)
      for (int m = 0; m < kMarkers; ++m) {
        const Marker& marker = session_.Markers.Of(g, m);
        const int state = static_cast<int>(marker.State);
        if (!graphs_.Graph(g).Enabled || state < 1 || state > 3) continue;
        if (std::abs(y - marker.LabelY) >= 10 || std::abs(x - marker.X) >= 10) continue;
        held_ = true;
        graph_ = g;
        marker_ = m;
        place_ = At(g, m);
        lastX_ = x;
      }
  }
  void Move(int x) {
    if (!held_) return;
    const GraphRecord& graph = graphs_.Graph(graph_);
    const double n = graph.NumPoints;
    if (graph.IsSmith)
      place_ += (x - lastX_) * (n - 1) / (graph.Bottom - graph.Top);
    else
      place_ = (x - graph.Left) * (n - 1) / (graph.Right - graph.Left) + 1;
    place_ = std::min(std::max(place_, 1.0), n);
    lastX_ = x;
    for (int g = 0; g < 4; ++g) At(g, marker_) = static_cast<int>(std::lround(place_));
  }
  void Up() { held_ = false; }
  bool Holds() const { return held_; }
  int& At(int graph, int marker) { return points_[static_cast<std::size_t>(4 * graph + marker)]; }

 private:
  Session& session_;
  Graphs& graphs_;
  std::array<int, 16> points_{};
  bool held_ = false;
  int graph_ = 0, marker_ = 0, lastX_ = 0;
  double place_ = 0;
};

// What the table must say of a marker, from its point alone.
std::string PositionOf(const Session& session, const GraphRecord& graph, int point) {
  return graph.IsTime
             ? FormatNumber((point - 1) * static_cast<double>(graph.TimeStep) +
                                static_cast<double>(graph.TimeStart),
                            "###0.0000") +
                   " ns"
             : FormatNumber((session.Plan.StartFreq + (point - 1) * session.Plan.StepFreq) / 1e6,
                            "###0.0000") +
                   " MHz";
}

struct DraggedMarkers : ScriptedProgram {
  Dice dice;
  Graphs& graphs = program.graphs();
  Hand hand{session, graphs};

  explicit DraggedMarkers(std::uint32_t seed) : dice(seed) {
    session.Plan.StartFreq = 3e6;
    session.TimeDomain.TdT1 = -2;
    session.TimeDomain.TdStep = 0.02;
  }
  // Another number of points, other graphs, other markers, other traces.
  void SetUp() {
    constexpr std::int16_t kCounts[] = {51, 101, 201, 401, 801, 1024};
    constexpr GraphType kTypes[] = {GraphType::LogMag, GraphType::Smith, GraphType::Phase,
                                    GraphType::LinMag, GraphType::Td};
    session.Plan.NumPoints = kCounts[dice.Any(0, 5)];
    session.Plan.StepFreq = 1e6;
    session.Display.DisplaySet = static_cast<DisplaySet>(dice.Any(0, 3));
    session.Display.MarkersOn = dice.Any(0, 9) != 0;
    for (int n = 1; n <= 4; ++n)
      session.Channel(n).GraphType =
          kTypes[dice.Any(0, session.Plan.NumPoints == kMaxPoints ? 4 : 3)];
    const int reference = dice.Any(-1, 3), active = dice.Any(0, 3);
    for (int m = 0; m < kMarkers; ++m)
      session.Markers.Set(m) = {dice.Any(0, 3) != 0, m == reference, m == active,
                                static_cast<std::int16_t>(dice.Any(0, session.Plan.NumPoints))};
    graphs.RedrawAll(false);
    for (int n = 1; n <= 4; ++n)
      for (int i = 1; i <= session.Plan.NumPoints; ++i)
        graphs.PlotPoint(n, i, dice.Real(-1, 1), dice.Real(-1, 1));
    graphs.RedrawOverlay();
    hand.LookAnew();
  }
  void Expect() {
    for (int g = 0; g < 4; ++g)
      for (int m = 0; m < kMarkers; ++m) {
        const Marker& marker = session.Markers.Of(g, m);
        if (!graphs.Graph(g).Enabled || marker.State == MarkerState::Off) continue;
        const auto point = static_cast<std::size_t>(hand.At(g, m));
        ASSERT_EQ(marker.Point, hand.At(g, m)) << "graph " << g << " marker " << m;
        ASSERT_EQ(marker.Value, graphs.Trace(g, kDataTrace).Value[point]);
        ASSERT_EQ(marker.X, graphs.Trace(g, kDataTrace).Pixel[point].x);
        if (!graphs.Graph(g).IsActive) continue;
        const std::string position = PositionOf(session, graphs.Graph(g), marker.Point);
        ASSERT_NE(FindText(surface.Overlay(), position), nullptr) << position;
      }
  }
  // A drag of any marker to any places; true when something was held.
  bool Drag() {
    const Marker marker = session.Markers.Of(dice.Any(0, 3), dice.Any(0, 3));
    const int x = marker.X + dice.Any(-12, 12), y = marker.LabelY + dice.Any(-12, 12);
    hand.Down(x, y);
    const bool held = hand.Holds();
    program.Mouse(Action::Down, true, x, y);
    for (int k = dice.Any(1, 8); k > 0; --k) {
      const int to = dice.Any(0, 1) == 0 ? dice.Any(-50, 1050) : x + dice.Any(-5, 5);
      hand.Move(to);
      program.Mouse(Action::Move, true, to, dice.Any(-50, 650));
      Expect();
      if (HasFatalFailure()) return held;
    }
    if (dice.Any(0, 3) == 0) return held;  // lost outside the window: the next one begins anew
    hand.Up();
    program.Mouse(Action::Up, true, 0, 0);
    return held;
  }
  static bool HasFatalFailure() { return testing::Test::HasFatalFailure(); }
};

class MarkerDrag : public testing::TestWithParam<std::uint32_t> {};

TEST_P(MarkerDrag, ReadsNoOtherPointThanAPlainReadingSays) {
  DraggedMarkers at(GetParam());
  int held = 0, charts = 0, times = 0;
  for (int set = 0; set < 40; ++set) {
    at.SetUp();
    for (int g = 0; g < 4; ++g) {
      charts += at.graphs.Graph(g).Enabled && at.graphs.Graph(g).IsSmith;
      times += at.graphs.Graph(g).Enabled && at.graphs.Graph(g).IsTime;
    }
    for (int drag = 0; drag < 25; ++drag) {
      held += at.Drag();
      if (HasFatalFailure()) FAIL() << "set-up " << set << " drag " << drag;
    }
  }
  // The runs do what they are for.
  EXPECT_GT(held, 150);
  EXPECT_GT(charts, 5);
  EXPECT_GT(times, 0);
}

INSTANTIATE_TEST_SUITE_P(Seeds, MarkerDrag, testing::Range(1u, 6u));

// ---- in the middle of sweeps -------------------------------------------------------------------

// A hand at every point of running sweeps, markers, limits and alarm on.
class SweepingHand {
 public:
  SweepingHand(SimulatedProgram& at, std::uint32_t seed) : program_(at), dice_(seed) {}

  void Act() {
    if (busy_ || HasFatalFailure() || !program_.session.Flags.SweepRunning) return;
    busy_ = true;
    ++Acts;
    const auto markers = [this](const char* control) {
      program_.Click(std::string("MarkersSet.") + control);
    };
    switch (dice_.Any(0, 9)) {
      case 0:
        markers(dice_.Any(0, 4) == 0 ? "Option2" : "Option1");
        program_.Window("MarkersSet").Tick("Check" + std::to_string(dice_.Any(1, 8)), true);
        markers("Command2");
        break;
      case 1:
        program_.Window("MarkersSet").Tick("Check" + std::to_string(dice_.Any(9, 12)), true);
        markers(dice_.Any(0, 1) == 0 ? "Command3" : "Command4");
        break;
      case 2:
        program_.Click("AdjMarkers.FixMk" + std::to_string(dice_.Any(1, 4)));
        break;
      case 3:
        SetLimits();
        break;
      default:
        Drag();
    }
    Expect();
    busy_ = false;
  }
  int Acts = 0, Held = 0;

 private:
  static bool HasFatalFailure() { return testing::Test::HasFatalFailure(); }

  void SetLimits() {
    program_.Type("NewLimitsSet.Text1", "100");
    program_.Type("NewLimitsSet.Text2", "2000");
    program_.Type("NewLimitsSet.Text3", std::to_string(dice_.Any(-45, 0)));
    program_.Type("NewLimitsSet.Text4", "-50");
    program_.Click("NewLimitsSet.Command2");
    for (const char* tick : {"Check1", "Check37", "Check38"})
      program_.Window("NewLimitsSet").Tick(tick, dice_.Any(0, 9) != 0);
    program_.Click("NewLimitsSet.Command1");
    program_.fake.Show("NewLimitsSet");
  }
  void Drag() {
    const Marker marker = program_.session.Markers.Of(dice_.Any(0, 3), dice_.Any(0, 3));
    const int before = marker.Point;
    program_.program.Mouse(Action::Down, dice_.Any(0, 5) != 0, marker.X, marker.LabelY);
    for (int k = dice_.Any(0, 2); k >= 0; --k)
      program_.program.Mouse(Action::Move, true, dice_.Any(-50, 1050), dice_.Any(0, 600));
    if (dice_.Any(0, 3) != 0) program_.program.Mouse(Action::Up, true, 0, 0);
    Held += program_.session.Markers.Of(0, marker.Number - 1).Point != before;
  }
  void Expect() {
    Session& session = program_.session;
    Graphs& graphs = program_.program.graphs();
    graphs.RedrawOverlay();  // markers read their traces as they are drawn
    for (int g = 0; g < 4; ++g)
      for (int m = 0; m < kMarkers; ++m) {
        const Marker& marker = session.Markers.Of(g, m);
        if (!graphs.Graph(g).Enabled || marker.State == MarkerState::Off) continue;
        ASSERT_GE(marker.Point, 1);
        ASSERT_LE(marker.Point, session.Plan.NumPoints);
        if (marker.State == MarkerState::Fixed) continue;
        const TraceRecord& trace = graphs.Trace(g, kDataTrace);
        const auto point = static_cast<std::size_t>(marker.Point);
        ASSERT_EQ(marker.Value, trace.Value[point]) << "graph " << g << " marker " << m;
        ASSERT_EQ(marker.X, trace.Pixel[point].x);
        ASSERT_EQ(marker.Y, trace.Pixel[point].y);
      }
  }
  SimulatedProgram& program_;
  Dice dice_;
  bool busy_ = false;
};

// What the sweeps run with: points, and the types of the four channels.
struct Shown {
  const char* Points;
  std::array<GraphType, 4> Types;
};

TEST(MarkerDragInSweeps, LeavesEveryMarkerOnItsTraceAtEveryPointInEveryDisplaySet) {
  SimulatedProgram at;
  at.fake.OnAsk = [&](const Message& message) { at.instrument.FollowPrompt(message.Text); };
  const Shown shown[] = {
      {"51", {GraphType::LogMag, GraphType::Smith, GraphType::Phase, GraphType::LinMag}},
      {"1024 (TD)", {GraphType::Td, GraphType::LogMag, GraphType::Swr, GraphType::Smith}}};
  int acts = 0, held = 0, failures = 0;
  for (const Shown& now : shown) {
    at.SetSweep("3", "3000", now.Points);
    at.Choose("Option5");
    at.Press({"O_Cal", "S_Cal", "M_Cal", "Thru_Cal", "Iso_Cal"});
    at.Click("Calibration.App_Cal");
    at.fake.Messages.clear();
    for (const char* window : {"MarkersSet", "AdjMarkers", "NewLimitsSet"}) at.fake.Show(window);
    for (int set = 0; set < 4; ++set) {
      at.session.Display.DisplaySet = static_cast<DisplaySet>(set);
      for (int n = 1; n <= 4; ++n)
        at.session.Channel(n).GraphType = now.Types[static_cast<std::size_t>(n - 1)];
      at.program.graphs().ReplotAll();
      at.surface.PutsOff = set % 2 == 1;
      SweepingHand hand(at, static_cast<std::uint32_t>(7 + set));
      const long target = at.program.controller().SweepsEnded() + 2;
      at.fake.OnEvents = [&] {
        hand.Act();
        failures += at.session.Limits.LimitFailed;
        if (at.program.controller().SweepsEnded() >= target) at.Click("Form1.StopMeasurement");
      };
      at.Click("Form1.StartMeasurement");
      at.fake.OnEvents = nullptr;
      if (HasFatalFailure()) FAIL() << now.Points << " points, display set " << set;
      EXPECT_TRUE(at.program.controller().Idle());
      EXPECT_EQ(at.fake.MessageTexts(), Texts{});
      acts += hand.Acts;
      held += hand.Held;
    }
  }
  // The runs do what they are for.
  EXPECT_GT(acts, 4000);
  EXPECT_GT(held, 300);
  EXPECT_GT(failures, 100);
}

}  // namespace
}  // namespace qk::test
