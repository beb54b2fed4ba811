// SPDX-License-Identifier: MIT
#include "trace/reference_plane.h"

#include "numeric/rotation.h"

namespace qk {

Complex ApplyReferencePlane(const Session& session, Complex z, int pointIndex,
                            Parameter parameter) {
  const PlaneMembers& of = PlaneOf(parameter);
  if (session.Planes.*of.Plane == 0) return z;
  const double passages = RowOf(parameter).Reflection ? 2 : 1;  // of the signal on the extra path
  const auto delay = static_cast<double>(session.Planes.*of.Delay);
  return RotateByDelay(session.Plan, z, -passages * delay, pointIndex);
}

Complex RotateByDelay(const PlanGrid& grid, Complex z, double delaySeconds, int n) {
  return Rotate(z, delaySeconds, grid.Frequency(n - 1));
}

}  // namespace qk
