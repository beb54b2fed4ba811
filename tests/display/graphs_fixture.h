// SPDX-License-Identifier: MIT
// Graphs with a session and a recording picture area of 1000 by 600 pixels.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "display/graphs.h"
#include "support/recording_canvas.h"

namespace qk::test {

class GraphsFixture : public testing::Test {
 protected:
  static constexpr std::uint32_t kData = 0xD0, kMemory = 0xE0, kLimit = 0xF0;

  GraphsFixture() {
    session->Colour.DataColour = kData;
    session->Colour.MemoryColour = kMemory;
    session->Colour.LimitColour = kLimit;
    Channel(1).Parameter = Parameter::S11;
    Channel(2).Parameter = Parameter::S21;
    Channel(3).Parameter = Parameter::S12;
    Channel(4).Parameter = Parameter::S22;
  }
  ChannelSettings& Channel(int n) { return session->Channel(n); }

  // Fills channel n's stored trace with one value and makes it valid.
  void StoreMemory(int n, Complex z) {
    Channel(n).MemoryRe.fill(z.re);
    Channel(n).MemoryIm.fill(z.im);
    Channel(n).MemoryValid = true;
    Channel(n).MemoryParameter = Channel(n).Parameter;
  }
  // A sweep that delivers the value at every point.
  void Sweep(int n, double value) {
    for (int i = 1; i <= session->Plan.NumPoints; ++i) graphs.PlotPoint(n, i, value, 0);
  }
  // The traces (long polylines) of a colour in a layer.
  static std::vector<Drawn> Traces(const std::vector<Drawn>& items, std::uint32_t colour) {
    std::vector<Drawn> traces;
    for (const Drawn& item : items)
      if (item.What == Drawn::Kind::Polyline && item.Points.size() > 4 && item.Colour == colour)
        traces.push_back(item);
    return traces;
  }
  // The height of a flat trace in pixels; -1 if it is not flat.
  static int FlatAt(const Drawn& trace) {
    for (const CanvasPoint p : trace.Points)
      if (p.y != trace.Points[0].y) return -1;
    return trace.Points[0].y;
  }

  std::unique_ptr<Session> session = MakeSession();
  RecordingSurface surface;
  Graphs graphs{*session, surface};
};

}  // namespace qk::test
