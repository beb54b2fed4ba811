// SPDX-License-Identifier: MIT
// The simulated instrument ready for the power tests: plan loaded, EEPROM read, offsets measured,
// and an S21 calibration with the exact terms of its front end.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "sim/front_end.h"
#include "support/link_fixture.h"
#include "support/load_eeprom.h"
#include "support/scratch_folder.h"
#include "sweep/frequency_plan.h"
#include "sweep/receiver.h"
#include "sweep/settings.h"
#include "utilities/am_to_pm.h"
#include "utilities/compression.h"

namespace qk::test {

inline constexpr Complaint kTestComplaint{"P1dB Test", Icon::Critical};

struct PowerFixture : SimulatedLink {
  explicit PowerFixture(sim::Pace pace = sim::Pace::Unpaced) : SimulatedLink(pace) {
    session->InstallFolder = folder.Text();
    Bench("offsets 4 -3");
    Bench("temperature 31");
    Connect();
    SweepPlan& plan = session->Plan;
    plan.StartFreq = 100e6;
    plan.StopFreq = 3e9;
    plan.NumPoints = 51;
    plan.StepFreq = (plan.StopFreq - plan.StartFreq) / 50;
    test::LoadEeprom(rig);
    EXPECT_TRUE(MeasureOffsets(rig));
    EXPECT_TRUE(LoadFreqSweep(rig));
    for (int i = 0; i < plan.NumPoints; ++i) {
      const sim::SideTerms terms = sim::FrontEndAt(plan.Frequency(i)).Forward;
      const sim::Complex tracking =
          terms.TransmissionTracking / (1.0 - terms.SourceMatch * terms.LoadMatch);
      session->Terms.Forward.EX.Set(i, {terms.Isolation.real(), terms.Isolation.imag()});
      session->Terms.Forward.ETT.Set(i, {tracking.real(), tracking.imag()});
    }
  }

  ScratchFolder folder;

  PowerSweep Sweep(int point) {
    auto sweep = MeasurePowerSweep(rig, kTestComplaint, point);
    EXPECT_TRUE(sweep.has_value());
    return sweep.value_or(PowerSweep{});
  }
  PowerMeter Meter(int point, float temperature) {
    const auto scale = ReadReceiverScale(folder.Text());
    EXPECT_TRUE(scale.Ok());
    return MeterFor(*scale, session->Plan, point, temperature);
  }
};

}  // namespace qk::test
