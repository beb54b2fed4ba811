// SPDX-License-Identifier: MIT
// Where formatted points go: the graphs, or a test.
#pragma once

namespace qk {

class PointSink {
 public:
  virtual ~PointSink() = default;
  // channel 1 to 4, pointIndex from 1.
  virtual void PlotPoint(int channel, int pointIndex, double value, double value2) = 0;
  // A time response is being computed, or has been.
  virtual void ComputingTimeDomain(bool /*on*/) {}
  // The spline of a time response met two knots at one time.
  virtual void SplineDataError() {}
};

}  // namespace qk
