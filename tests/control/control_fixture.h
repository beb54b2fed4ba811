// SPDX-License-Identifier: MIT
// The controller with a sweeping instrument, ready to measure: calibrated with error terms that do
// not change the raw ratios, the port open, on a clock that the test controls.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "control/controller.h"
#include "control/points.h"
#include "control/sweeping_port.h"
#include "support/link_fixture.h"
#include "support/recording_canvas.h"
#include "support/scratch_folder.h"

namespace qk::test {

// Facts for the tests about each kind of sweep.
struct KindOfSweep {
  SweepMode Mode;
  bool CalState::*Flag;
  const char* Trigger;
  const char* Path;
  const char* Title;
  const char* StallTitle;
  const char* LinkIcon;
  const char* StallIcon;
};

inline void PrintTo(const KindOfSweep& kind, std::ostream* out) {
  *out << kind.Trigger;
}

inline const std::vector<KindOfSweep>& KindsOfSweep() {
  static const std::vector<KindOfSweep> kinds = {
      {SweepMode::S11, &CalState::CalS11, "M", "YF", "Measure S11", "Measure S11", "exclamation",
       "exclamation"},
      {SweepMode::S21, &CalState::CalS21, "S", "YE", "Measure S21", "Measure S21", "critical",
       "critical"},
      {SweepMode::S11S21, &CalState::CalS11S21, "YO", "YP", "Measure All", "Measure S11+S21",
       "critical", "critical"},
      {SweepMode::All, &CalState::Cal12Term, "A", "YG", "Measure All", "Measure All", "critical",
       "critical"}};
  return kinds;
}

struct SweepingLine {
  FakeClock clock;
  SweepingPort port{clock};
};

struct SweepingControl : LinkFixture<SweepingLine> {
  ScratchFolder folder;
  RecordingSurface surface;
  Graphs graphs;
  Controller control{rig, graphs};

  // picture: drawn on instead of the fixture's own.
  explicit SweepingControl(PictureSurface* picture = nullptr)
      : graphs(*session, picture != nullptr ? *picture : surface) {
    session->InstallFolder = folder.Text();
    fake.OnTick = [this](TimerId timer) { control.Tick(timer); };
    fake.OnEvents = [this] { RunEvents(); };
  }

  // The state of the session after start-up and calibration.
  void MakeReady(const KindOfSweep& kind = KindsOfSweep()[0], int points = kPoints) {
    session->Id = {147, "1.2", 1};
    port.SetPort(1);
    port.Open();
    session->Plan.NumPoints = static_cast<std::int16_t>(points);
    session->Plan.StepFreq = 1e6;
    port.NumPoints = points;
    session->Receiver.DcOffsetValid = true;
    session->Receiver.DcHistory.fill({32768, 32768});
    session->Flags.SweepLoaded = true;
    session->Cal.CalDataReady = session->Cal.CalThruReady = true;
    session->Cal.*kind.Flag = true;
    for (PortTerms* terms : {&session->Terms.Forward, &session->Terms.Reverse}) {
      terms->ERT.Fill({1, 0});
      terms->ETT.Fill({1, 0});
    }
    fake.SetInterval(TimerId::Timer1, 10000);
    fake.Enable(TimerId::Timer1, true);
    fake.SetInterval(TimerId::Timer2, 5000);
    fake.SetInterval(TimerId::Timer3, 2000);
    port.Commands.clear();
  }

  // Runs action once, in the events after the point (from 1) of the sweep (from 1).
  void AtPoint(long sweep, int point, std::function<void()> action) {
    planned_.push_back({sweep, point, std::move(action)});
  }
  void StopAtPoint(long sweep, int point) {
    AtPoint(sweep, point, [this] { control.StopMeasurement(); });
  }
  // Clicks START, and STOP after the last point of sweep number count.
  void Measure(int count = 1) {
    StopAtPoint(port.Triggers + count, session->Plan.NumPoints);
    control.StartMeasurement();
  }

  bool Idle() const { return session->Flags.SweepIdle && !session->Flags.SweepRunning; }
  std::string Messages() {
    std::string all;
    for (const std::string& text : fake.MessageTexts()) all += text + "\n";
    fake.Messages.clear();
    return all;
  }

 private:
  struct Planned {
    long Sweep;
    int Point;
    std::function<void()> Action;
  };
  void RunEvents() {
    if (fake.EventRuns > kMostEvents) {
      ADD_FAILURE() << "the sweep does not end";
      control.CloseAtOnce();
      return;
    }
    for (std::size_t i = 0; i < planned_.size();) {
      const Planned& p = planned_[i];
      if (session->Flags.SweepIdle || port.Triggers != p.Sweep ||
          session->Display.PointCounter != p.Point) {
        ++i;
        continue;
      }
      const auto action = std::move(planned_[i].Action);
      planned_.erase(planned_.begin() + static_cast<std::ptrdiff_t>(i));
      action();
    }
  }

  static constexpr int kMostEvents = 1'000'000;
  std::vector<Planned> planned_;
};

}  // namespace qk::test
