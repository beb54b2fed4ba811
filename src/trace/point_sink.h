// SPDX-License-Identifier: MIT
// Receives formatted points: the graphs, or a test.
#pragma once

namespace qk {

class PointSink {
 public:
  virtual ~PointSink() = default;
  // channel 1 to 4, pointIndex from 1.
  virtual void PlotPoint(int channel, int pointIndex, double value, double value2) = 0;
  // A time response is being computed (on), or is complete.
  virtual void ComputingTimeDomain(bool /*on*/) {}
  // The spline of a time response had two knots at the same time.
  virtual void SplineDataError() {}
};

}  // namespace qk
