// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cmath>

#include "trace/reference_plane.h"

namespace qk {
namespace {

constexpr double kPlane = 0.1;  // metres

class ReferencePlane : public testing::Test {
 protected:
  ReferencePlane() {
    session->Plan.StartFreq = 1e9 - 5e6;
    session->Plan.StepFreq = 1e6;
  }
  // Degrees by which point 6 (1 GHz) of the parameter rises with its plane set.
  double Rise(Parameter p) {
    const Complex before{0.6, 0.3};
    const Complex after = ApplyReferencePlane(*session, before, 6, p);
    EXPECT_NEAR(Magnitude(after.re, after.im), Magnitude(before.re, before.im), 1e-6);
    const double d = static_cast<double>(PhaseDeg(after.re, after.im)) -
                     static_cast<double>(PhaseDeg(before.re, before.im));
    return d < 0 ? d + 360 : d;
  }
  static void Set(float& plane, float& delay) {
    plane = static_cast<float>(kPlane);
    delay = static_cast<float>(kPlane / kSpeedOfLight);
  }

  std::unique_ptr<Session> session = MakeSession();
  const double degrees = 360 * 1e9 * kPlane / kSpeedOfLight;  // 120.08
};

TEST_F(ReferencePlane, OfTransmissionsRaisesThePhaseByItsLength) {
  Set(session->Planes.PlaneS21, session->Planes.DelayS21);
  EXPECT_NEAR(Rise(Parameter::S21), degrees, 1e-3);
  EXPECT_EQ(Rise(Parameter::S12), 0);
  Set(session->Planes.PlaneS12, session->Planes.DelayS12);
  EXPECT_NEAR(Rise(Parameter::S12), degrees, 1e-3);
}

TEST_F(ReferencePlane, OfReflectionsRaisesThePhaseByTwiceItsLength) {
  Set(session->Planes.PlaneS11, session->Planes.DelayS11);
  EXPECT_NEAR(Rise(Parameter::S11), 2 * degrees, 1e-3);
  EXPECT_EQ(Rise(Parameter::S22), 0);
  Set(session->Planes.PlaneS22, session->Planes.DelayS22);
  EXPECT_NEAR(Rise(Parameter::S22), 2 * degrees, 1e-3);
}

TEST_F(ReferencePlane, IsSwitchedByThePlaneNotByTheDelay) {
  session->Planes.DelayS21 = 1e-9f;
  const Complex z{0.6, 0.3};
  EXPECT_EQ(ApplyReferencePlane(*session, z, 6, Parameter::S21), z);
  session->Planes.DelayS21 = 0;
  session->Planes.PlaneS21 = -0.01f;  // a turn by nothing still goes through the 32-bit phase
  const Complex turned = ApplyReferencePlane(*session, z, 6, Parameter::S21);
  EXPECT_NEAR(turned.re, z.re, 1e-6);
  EXPECT_NEAR(turned.im, z.im, 1e-6);
}

TEST_F(ReferencePlane, OfANegativeLengthLowersThePhase) {
  session->Planes.PlaneS21 = static_cast<float>(-kPlane);
  session->Planes.DelayS21 = static_cast<float>(-kPlane / kSpeedOfLight);
  EXPECT_NEAR(Rise(Parameter::S21), 360 - degrees, 1e-3);
}

TEST_F(ReferencePlane, APositiveDelaySubtractsPhase) {
  const PlanGrid grid{1e8, 2e8, 1e6, 101};
  // A quarter turn at 100 MHz, point 1, takes 2.5 ns: 1 becomes -j.
  const Complex z = RotateByDelay(grid, {1, 0}, 2.5e-9, 1);
  EXPECT_NEAR(z.re, 0, 1e-4);
  EXPECT_NEAR(z.im, -1, 1e-6);
}

TEST_F(ReferencePlane, PointNumbersCountFromOne) {
  const PlanGrid grid{0, 1e8, 1e8, 2};
  const Complex first = RotateByDelay(grid, {1, 0}, 2.5e-9, 1);  // at 0 Hz nothing turns
  EXPECT_NEAR(first.re, 1, 1e-9);
  const Complex second = RotateByDelay(grid, {1, 0}, 2.5e-9, 2);
  EXPECT_NEAR(second.im, -1, 1e-6);
}

TEST_F(ReferencePlane, ManyTurnsKeepMagnitudeAndAngle) {
  const PlanGrid grid{3e9, 3e9, 1e6, 101};
  for (double delay = -2e-7; delay <= 2e-7; delay += 1.37e-9) {
    const Complex z = RotateByDelay(grid, {0.3, -0.4}, delay, 1);
    const double angle = std::atan2(-0.4, 0.3) - 2 * 3.14159265358979 * 3e9 * delay;
    EXPECT_NEAR(z.re, 0.5 * std::cos(angle), 1e-4) << delay;
    EXPECT_NEAR(z.im, 0.5 * std::sin(angle), 1e-4) << delay;
  }
}

}  // namespace
}  // namespace qk
