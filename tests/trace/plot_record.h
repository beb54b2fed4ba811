// SPDX-License-Identifier: MIT
// A sink that remembers what was plotted, in order.
#pragma once

#include <string>
#include <vector>

#include "trace/point_sink.h"

namespace qk::test {

struct Plotted {
  int Channel = 0;
  int Point = 0;
  double Value = 0;
  double Value2 = 0;
};

class PlotRecord : public PointSink {
 public:
  void PlotPoint(int channel, int pointIndex, double value, double value2) override {
    Points.push_back({channel, pointIndex, value, value2});
  }
  void ComputingTimeDomain(bool on) override { Told.push_back(on ? "computing" : "computed"); }
  void SplineDataError() override { Told.push_back("spline data error"); }
  std::vector<int> PointNumbers() const {
    std::vector<int> numbers;
    for (const Plotted& p : Points) numbers.push_back(p.Point);
    return numbers;
  }
  std::vector<int> Channels() const {
    std::vector<int> channels;
    for (const Plotted& p : Points) channels.push_back(p.Channel);
    return channels;
  }
  // What the graph would show at a point: the last value plotted there.
  double Shown(int point) const {
    double value = 0;
    for (const Plotted& p : Points)
      if (p.Point == point) value = p.Value;
    return value;
  }

  std::vector<Plotted> Points;
  std::vector<std::string> Told;
};

}  // namespace qk::test
