// SPDX-License-Identifier: MIT
// The controller with the simulated instrument, on a clock that the test controls.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "control/controller.h"
#include "control/points.h"
#include "support/blank_surface.h"
#include "support/link_fixture.h"
#include "support/scratch_folder.h"
#include "sweep/frequency_plan.h"

namespace qk::test {

struct SimulatedControl : SimulatedLink {
  ScratchFolder folder;

  explicit SimulatedControl(sim::Pace pace = sim::Pace::Baud115200) : SimulatedLink(pace) {
    session->InstallFolder = folder.Text();
    fake.OnTick = [this](TimerId timer) { control.Tick(timer); };
    control.OnStart = [this] { ended_ = kBeforeTheFirst; };
    fake.OnEvents = [this] {
      if (session->Flags.SweepIdle) return;
      // The first events after START, and after the end of a sweep, precede a trigger.
      const bool inSweep = ended_ == control.SweepsEnded();
      ended_ = control.SweepsEnded();
      if (OnPoint && inSweep) OnPoint(session->Display.PointCounter);
    };
  }

  // Started up, with a plan in the instrument and a calibration of the given kind that does not
  // change the raw ratios.
  void MakeReady(bool CalState::*kind, int points = kPoints) {
    control.StartUp();
    session->Plan.NumPoints = static_cast<std::int16_t>(points);
    session->Plan.StartFreq = 1e9;
    session->Plan.StepFreq = 1e6;
    ASSERT_TRUE(LoadFreqSweep(rig));
    session->Cal.CalDataReady = session->Cal.CalThruReady = true;
    session->Cal.*kind = true;
    for (PortTerms* terms : {&session->Terms.Forward, &session->Terms.Reverse}) {
      terms->ERT.Fill({1, 0});
      terms->ETT.Fill({1, 0});
    }
    port.TakeWritten();
  }
  std::string Written() {
    const auto bytes = port.TakeWritten();
    return {bytes.begin(), bytes.end()};
  }
  void StopAfter(int sweeps) {
    const long last = control.SweepsEnded() + sweeps - 1;
    OnPoint = [this, last](int counter) {
      if (control.SweepsEnded() == last && counter == session->Plan.NumPoints)
        control.StopMeasurement();
    };
  }

  BlankSurface surface;
  Graphs graphs{*session, surface};
  Controller control{rig, graphs};
  // The events of a sweep; counter is the number of points reduced so far.
  std::function<void(int counter)> OnPoint;

 private:
  static constexpr long kBeforeTheFirst = -1;
  long ended_ = kBeforeTheFirst;
};

}  // namespace qk::test
