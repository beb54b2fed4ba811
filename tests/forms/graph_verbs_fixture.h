// SPDX-License-Identifier: MIT
// The program with four channels of 101 points, for actions on its graphs.
#pragma once

#include <cmath>
#include <functional>

#include <gtest/gtest.h>

#include "support/program_fixture.h"

namespace qk::test {

struct GraphVerbs : ::testing::Test, ScriptedProgram {
  GraphVerbs() {
    session.Plan.StartFreq = 3e6;
    session.Plan.StopFreq = 103e6;
    session.Plan.StepFreq = 1e6;
    session.Plan.NumPoints = 101;
    session.Display.DisplaySet = DisplaySet::All;
    for (int n = 1; n <= 4; ++n) session.Channel(n).Parameter = kParameter[n - 1];
    program.graphs().RedrawAll(true);
  }
  static constexpr Parameter kParameter[] = {Parameter::S11, Parameter::S21, Parameter::S12,
                                             Parameter::S22};
  ChannelSettings& Channel(int n) { return session.Channel(n); }
  Controller& controller() { return program.controller(); }
  // A sweep that delivers values to a channel.
  void Measure(int n, const std::function<double(int)>& value) {
    for (int i = 1; i <= 101; ++i) {
      const auto k = static_cast<std::size_t>(i);
      Channel(n).Value[k] = value(i);
      program.graphs().PlotPoint(n, i, value(i), 0);
      ArrayOf(session.Data, Channel(n).Parameter).Set(i - 1, {std::pow(10, value(i) / 20), 0});
    }
  }
  const GraphRecord& Graph(int graph) { return program.graphs().Graph(graph); }
  CanvasPoint Middle(int graph) {
    return {(Graph(graph).Left + Graph(graph).Right) / 2,
            (Graph(graph).Top + Graph(graph).Bottom) / 2};
  }
  CanvasPoint TextAt(const char* text) {
    const Drawn* drawn = FindText(surface.Background(), text);
    EXPECT_NE(drawn, nullptr) << text;
    return drawn == nullptr ? CanvasPoint{-1, -1} : drawn->Points[0];
  }
};

}  // namespace qk::test
