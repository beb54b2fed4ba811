// SPDX-License-Identifier: MIT
#include "core/measured_sweep.h"

namespace qk {

bool SameGrid(const PlanGrid& a, const PlanGrid& b) {
  return a.StartFreq == b.StartFreq && a.StepFreq == b.StepFreq && a.NumPoints == b.NumPoints;
}

void ForgetSweep(Session& session) {
  SParamData& data = session.Data;
  for (ComplexArray* array :
       {&data.RawS11, &data.RawS21, &data.RawS12, &data.RawS22, &data.S21, &data.S12})
    array->Fill({});
  for (ComplexArray* reflection : {&data.S11, &data.S22})
    reflection->Fill({1e-6, 0});  // finite in decibels before the first sweep
  for (ChannelSettings& channel : session.Channels) {
    channel.Value.fill(0);
    channel.Value2.fill(0);
    channel.SmoothValue.fill(0);
    channel.SmoothValue2.fill(0);
  }
  session.Display.SweepCounted = session.Display.SweepDisturbed = false;
  session.Display.SweptUtc.reset();
}

}  // namespace qk
