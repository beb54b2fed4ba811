// The traffic control of the program: start-up and shut-down, START and STOP, the four
// measurement loops, the three timers, and the order in which due changes are served between two
// sweeps. Everything runs on one thread; a sweep runs inside StartMeasurement and lets events run
// after every point, so every other handler may run nested inside it.
#pragma once

#include <functional>

#include "display/graphs.h"
#include "link/instrument_link.h"
#include "sweep/reduction.h"

namespace qk {

class Controller {
 public:
  Controller(Rig& rig, Graphs& graphs);

  // The whole start-up, from the defaults to ready (or to "No Instrument!").
  void StartUp();
  // The Exit command: asks, stops a running sweep, then shuts down.
  void Exit();
  // "Re-Start Program": asks twice, stops, runs StartUp again.
  void ReStart();
  void ShutDown();

  void StartMeasurement();
  void StopMeasurement();
  void Tick(TimerId timer);
  void AverOn();
  void AverOff();
  void SmoothChanged();
  // STOP and START as other windows need them: true when no sweep runs and none is stopping.
  bool Idle() const { return rig_.session.Flags.Idle(); }

  // Panel 3 from the calibration state; ends the limit alarm.
  void UpdateCalStatus();

  // Measurement sweeps ended since the program started (the console waits on it).
  long SweepsEnded() const { return sweepsEnded_; }

  // Called once when START is clicked, before anything else (the demonstration bench puts its
  // device back); may be empty.
  std::function<void()> OnStart;

  Rig& rig() { return rig_; }
  Graphs& graphs() { return graphs_; }

 private:
  void MeasureS11();
  void MeasureS21();
  void MeasureS11S21();
  void MeasureAll();

  Rig& rig_;
  Graphs& graphs_;
  long sweepsEnded_ = 0;
  bool ticking_ = false;
};

}  // namespace qk
