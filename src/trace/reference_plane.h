// SPDX-License-Identifier: MIT
// The reference plane of a parameter: its place in the session, and the phase rotation that moves a
// point to it.
#pragma once

#include <array>

#include "core/session.h"

namespace qk {

// The members for the plane (metres) and the delay (seconds) of a parameter, used as
// planes.*PlaneOf(parameter).Plane.
struct PlaneMembers {
  float PlaneState::*Plane;
  float PlaneState::*Delay;
};
inline const PlaneMembers& PlaneOf(Parameter parameter) {
  static constexpr std::array<PlaneMembers, 4> kOfParameters{
      {{&PlaneState::PlaneS11, &PlaneState::DelayS11},
       {&PlaneState::PlaneS21, &PlaneState::DelayS21},
       {&PlaneState::PlaneS12, &PlaneState::DelayS12},
       {&PlaneState::PlaneS22, &PlaneState::DelayS22}}};
  return kOfParameters[static_cast<std::size_t>(parameter)];
}

// Applies the reference plane of a parameter to point pointIndex (from 1) if it is not 0.
Complex ApplyReferencePlane(const Session& session, Complex z, int pointIndex, Parameter parameter);

// Rotates the phase of z by a delay in seconds at the frequency of point n (from 1) of the grid:
// keeps the magnitude, computes the phase in 32-bit steps, rebuilds by quadrant with k =
// 0.01745329. A positive delay subtracts phase.
Complex RotateByDelay(const PlanGrid& grid, Complex z, double delaySeconds, int n);

}  // namespace qk
