// Where formatted points go: the graphs, or a test.
#pragma once

namespace qk {

class PointSink {
 public:
  virtual ~PointSink() = default;
  // channel 1 to 4, pointIndex from 1.
  virtual void PlotPoint(int channel, int pointIndex, double value, double value2) = 0;
};

}  // namespace qk
