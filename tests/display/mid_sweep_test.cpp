// SPDX-License-Identifier: MIT
// The display changed between two points of a running sweep: from there on every trace is what it
// would be had the display been so from the sweep's start.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "graphs_fixture.h"
#include "trace/formatting.h"

namespace qk {
namespace {

struct Format {
  const char* GraphType;
  const char* Units;
};
constexpr Format kFormats[] = {{"LogMag", "dB"}, {"Phase", "deg"},     {"Smith", "dB"},
                               {"SWR", "U"},     {"LinMag", "mU"},     {"Real", "U"},
                               {"Imag", "U"},    {"Group Delay", "ns"}};
// In the order in which a sweep delivers them.
constexpr Parameter kDelivered[] = {Parameter::S21, Parameter::S12, Parameter::S11, Parameter::S22};

// What the four parameters come to in sweep 1 and in sweep 2.
Complex Datum(int sweep, int point, Parameter parameter) {
  static const std::vector<Complex> data = [] {
    std::mt19937 random(20479);
    std::uniform_real_distribution<double> part(-1, 1);
    std::vector<Complex> values(2 * 101 * 4);
    for (Complex& z : values) z = {part(random), part(random)};
    return values;
  }();
  const int index = ((sweep - 1) * 101 + point - 1) * 4 + static_cast<int>(parameter);
  return data[static_cast<std::size_t>(index)];
}

// Graphs under a 12-term sweep of 101 points.
class Sweeping {
 public:
  explicit Sweeping(int smoothing = 0) {
    session->Cal.Cal12Term = true;
    session->Flags.SweepIdle = false;
    session->Display.SweepCounted = true;
    session->Display.DisplaySet = DisplaySet::OneTwo;
    session->Averaging.SmoothOn = smoothing > 0;
    session->Averaging.SmoothingPercent = static_cast<std::int16_t>(smoothing);
    for (int n = 1; n <= 4; ++n) session->Channel(n).Parameter = kParameters[n - 1];
    Set(2, {"Group Delay", "ns"});
    graphs.RedrawAll(true);
  }
  void Set(int n, const Format& format) {
    session->Channel(n).GraphType = *Named<GraphType>(format.GraphType);
    session->Channel(n).Units = *Named<Unit>(format.Units);
  }
  void Points(int sweep, int first, int last) {
    for (int i = first; i <= last; ++i) {
      for (const Parameter parameter : kDelivered) {
        const Complex z = Datum(sweep, i, parameter);
        ArrayOf(session->Data, parameter).Set(i - 1, z);
        DispatchPoint(*session, graphs, z, i, parameter);
      }
      session->Display.PointCounter = i;
    }
  }
  static constexpr int kLast = 101;

  std::unique_ptr<Session> session = MakeSession();
  test::RecordingSurface surface;
  Graphs graphs{*session, surface};

 private:
  static constexpr Parameter kParameters[] = {Parameter::S11, Parameter::S21, Parameter::S12,
                                              Parameter::S22};
};

void ExpectSameTraces(const Sweeping& a, const Sweeping& b, const std::string& what) {
  for (int graph = 0; graph < 4; ++graph) {
    ASSERT_EQ(a.graphs.Graph(graph).Enabled, b.graphs.Graph(graph).Enabled);
    if (!a.graphs.Graph(graph).Enabled) continue;
    const TraceRecord& x = a.graphs.Trace(graph, kDataTrace);
    const TraceRecord& y = b.graphs.Trace(graph, kDataTrace);
    for (std::size_t i = 1; i <= std::size_t{Sweeping::kLast}; ++i) {
      ASSERT_EQ(x.Value[i], y.Value[i]) << what << ", graph " << graph << ", point " << i;
      ASSERT_EQ(x.Pixel[i].x, y.Pixel[i].x) << what;
      ASSERT_EQ(x.Pixel[i].y, y.Pixel[i].y) << what;
      if (!a.graphs.Graph(graph).IsSmith) continue;
      ASSERT_EQ(x.Value2[i], y.Value2[i]) << what << ", point " << i;
    }
  }
}

TEST(MidSweep, AnyGraphTypeCanTakeThePlaceOfAnyOther) {
  for (const int smoothing : {0, 5})
    for (const Format& to : kFormats) {
      Sweeping whole(smoothing);
      whole.Set(1, to);
      whole.graphs.ReplotAll();
      whole.Points(1, 1, Sweeping::kLast);
      whole.Points(2, 1, Sweeping::kLast);
      for (const Format& from : kFormats)
        for (const int at : {1, 2, 6, 50, 100}) {
          Sweeping changed(smoothing);
          changed.Set(1, from);
          changed.graphs.ReplotAll();
          changed.Points(1, 1, Sweeping::kLast);
          changed.Points(2, 1, at);
          changed.Set(1, to);
          changed.graphs.ReplotAll();
          changed.Points(2, at + 1, Sweeping::kLast);
          ExpectSameTraces(whole, changed,
                           std::string(from.GraphType) + " to " + to.GraphType + " at " +
                               std::to_string(at) + ", smoothing " + std::to_string(smoothing));
        }
    }
}

TEST(MidSweep, ChannelsCanJoinAndLeave) {
  const char* sets[] = {"one", "one-two", "three-four", "all"};
  for (const char* to : sets) {
    Sweeping whole;
    whole.session->Display.DisplaySet = *Named<DisplaySet>(to);
    whole.graphs.ReplotAll();
    whole.Points(1, 1, Sweeping::kLast);
    whole.Points(2, 1, Sweeping::kLast);
    for (const char* from : sets) {
      Sweeping changed;
      changed.session->Display.DisplaySet = *Named<DisplaySet>(from);
      changed.graphs.ReplotAll();
      changed.Points(1, 1, Sweeping::kLast);
      changed.Points(2, 1, 40);
      changed.session->Display.DisplaySet = *Named<DisplaySet>(to);
      changed.graphs.ReplotAll();
      changed.Points(2, 41, Sweeping::kLast);
      ExpectSameTraces(whole, changed, std::string(from) + " to " + to);
    }
  }
}

TEST(MidSweep, SmoothingCanBeChanged) {
  for (const int to : {0, 3, 10}) {
    Sweeping whole(to);
    whole.Points(1, 1, Sweeping::kLast);
    whole.Points(2, 1, Sweeping::kLast);
    for (const int from : {0, 1, 10}) {
      Sweeping changed(from);
      changed.Points(1, 1, Sweeping::kLast);
      changed.Points(2, 1, 40);
      changed.session->Averaging.SmoothOn = to > 0;
      changed.session->Averaging.SmoothingPercent = static_cast<std::int16_t>(to);
      changed.graphs.ReplotAll();
      changed.Points(2, 41, Sweeping::kLast);
      ExpectSameTraces(whole, changed, std::to_string(from) + " % to " + std::to_string(to));
    }
  }
}

TEST(MidSweep, AReplotLeavesThePhasesOfTheLastPointReducedBehind) {
  Sweeping sweep;
  sweep.Set(1, {"Group Delay", "ns"});
  sweep.graphs.ReplotAll();
  sweep.Points(1, 1, 40);
  const DisplayState& display = sweep.session->Display;
  const float reflection = display.PrevPhaseReflection;
  const float transmission = display.PrevPhaseTransmission;
  sweep.graphs.ReplotAll();
  EXPECT_EQ(display.PrevPhaseReflection, reflection);
  EXPECT_EQ(display.PrevPhaseTransmission, transmission);
}

}  // namespace
}  // namespace qk
