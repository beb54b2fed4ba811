// Reference planes: the second step of a point's road, and the rotation that it shares with the
// offsets of calibration kits.
#include "numeric/rotation.h"
#include "trace/formatting.h"

namespace qk {

Complex ApplyReferencePlane(const Session& session, Complex z, int pointIndex,
                            Parameter parameter) {
  const PlaneState& planes = session.Planes;
  const auto turn = [&](float plane, float delay, double factor) {
    if (plane == 0) return z;
    return RotateByDelay(session.Plan, z, factor * static_cast<double>(delay), pointIndex);
  };
  switch (parameter) {  // a reflected signal runs the extra path twice
    case Parameter::S21:
      return turn(planes.PlaneS21, planes.DelayS21, -1);
    case Parameter::S12:
      return turn(planes.PlaneS12, planes.DelayS12, -1);
    case Parameter::S11:
      return turn(planes.PlaneS11, planes.DelayS11, -2);
    case Parameter::S22:
      return turn(planes.PlaneS22, planes.DelayS22, -2);
  }
  return z;
}

Complex RotateByDelay(const PlanGrid& grid, Complex z, double delaySeconds, int n) {
  return Rotate(z, delaySeconds, grid.Frequency(n - 1));
}

}  // namespace qk
