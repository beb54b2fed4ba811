// SPDX-License-Identifier: MIT
// The sweep entry of the calibration window, and its two questions.
#pragma once

#include "cal/error_terms.h"
#include "support/program_fixture.h"

namespace qk::test {

inline const char* const kStepQuestion =
    "Test Signals|The freq step required is too small. Click YES to increase the span or NO to "
    "reduce number of sweep points.|question|yes/no";
inline const char* const kKeepQuestion =
    "Test Signals|Keep existing Cal (interpolate new points)?|question|yes/no";

struct SweepFixture : ScriptedProgram {
  SweepFixture() { OpenCalibration(); }

  void Enter(const char* start, const char* stop, const char* points) {
    Type("Calibration.Text1", start);
    Type("Calibration.Text2", stop);
    Pick("Calibration.PntsCombo", points);
    Click("Calibration.Command1");
  }
  // Activates a calibration for the current plan.
  void Calibrated() {
    session.Cal.CalS11 = true;
    session.Cal.CalDataReady = true;
    session.Plan.CalLevel = session.Plan.Port1Level;
    for (int i = 0; i < kMaxPoints; ++i) session.Terms.Forward.ED.Set(i, {0.01 * i, -0.02 * i});
    SaveCalForInterpolation(session);
  }
  void CalibratedFrom100To200MHz() {
    session.Plan.StartFreq = 100e6;
    session.Plan.StopFreq = 200e6;
    session.Plan.StepFreq = 1e6;
    Calibrated();
  }
  Texts Fields() {
    return {Value("Calibration.Text1"), Value("Calibration.Text2"), Value("Calibration.Text3"),
            Value("Calibration.PntsCombo")};
  }
};

}  // namespace qk::test
