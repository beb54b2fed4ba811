// SPDX-License-Identifier: MIT
// The traffic control of the program: start-up and shut-down, START and STOP, the three timers,
// the switches that act during a sweep. Everything runs on one thread; a sweep runs inside
// StartMeasurement and lets events run after every point, so every other handler may run nested
// inside it. Whoever would need the link meanwhile sets a ...Due flag instead, and the sweep loop
// serves those between two sweeps: there is one talker on the line at any time.
#pragma once

#include <functional>
#include <optional>

#include "control/kept_frequencies.h"
#include "control/measurement.h"
#include "control/passing_line.h"
#include "control/quality_bands.h"
#include "control/session_files.h"
#include "control/undo_history.h"
#include "display/graphs.h"
#include "files/recent_files.h"
#include "link/instrument_link.h"
#include "quality/quality_state.h"

namespace qk {

class Controller {
 public:
  Controller(Rig& rig, Graphs& graphs);

  // The whole start-up, from the defaults to ready (or to "No Instrument!"). START, Exit and
  // "Re-Start Program" are deaf while it runs.
  void StartUp();
  bool StartingUp() const { return startingUp_; }
  // The Exit command: asks, stops a running sweep, then shuts down. With a sweep on the stack the
  // shut-down waits until that has ended.
  void Exit();
  // The same without asking, for an end that is decided: a signal, the end of the desktop session.
  // During start-up nothing stands yet that could be saved, and the process ends.
  void Leave();
  // "Re-Start Program": asks twice, stops, runs StartUp again. With a sweep on the stack the
  // start-up waits until that has ended, so that it never talks into a stream.
  void ReStart();
  void ShutDown();
  // The main window was closed by its title bar: the process ends at once, nothing is saved and
  // nothing more is sent. A running sweep is left where it stands.
  void CloseAtOnce();

  void StartMeasurement();
  void StopMeasurement();
  // One whole sweep, as a START and a STOP behind it; nothing while one runs.
  void SingleSweep();
  // A tick of Timer1 that finds an earlier one still at work (its message box is up) does nothing.
  void Tick(TimerId timer);
  void AverOn();
  void AverOff();
  void SmoothChanged();
  // STOP and START as other windows need them: true when no sweep runs and none is stopping.
  bool Idle() const { return rig_.session.Flags.Idle(); }

  // Measurement sweeps ended since the program started, complete or aborted (the console waits on
  // it).
  long SweepsEnded() const { return measurement_.SweepsEnded(); }
  // Measured points at which a receiver was overloaded, since the program started.
  long Overloads() const { return measurement_.Overloads(); }

  // Questions that scripts do not expect are asked: as in a window.
  bool AsksFirst = false;

  // Nothing for a short sweep, and when none runs.
  std::optional<SweepProgress> Progress() const { return measurement_.Progress(); }

  // Called when START is clicked and no sweep runs, before anything else (the demonstration bench
  // puts its device back); may be empty.
  std::function<void()> OnStart;
  // Called at the end of each measurement sweep, after the due changes are served; complete is
  // false for an aborted sweep, and for one with bytes too many (then SweepFlags::SweepRunning is
  // still set). False ends the measurement as STOP does. May be empty.
  std::function<bool(bool complete)> OnSweepEnded;
  // Called when the measurement loop has ended, for whatever reason, before an exit or re-start
  // that waited for it. May be empty.
  std::function<void()> OnMeasurementEnded;

  Rig& rig() { return rig_; }
  Graphs& graphs() { return graphs_; }
  SessionFiles& files() { return files_; }
  KeptFrequencies& kept() { return kept_; }
  // Whoever opens or saves a session or a measurement notes it here.
  RecentFiles& recent() { return recent_; }
  QualityState& quality() { return quality_; }
  // RXCal.dat as this start read it from the instrument, whether or not it could be written; a part
  // of it when the load broke.
  const std::string& ReceiverTable() const { return receiverTable_; }
  UndoHistory& undo() { return undo_; }
  PassingLine& notice() { return notice_; }

 private:
  void ForgetSession();
  bool FindInstrument();
  void LoadInstrument();
  void RunStartUp();
  void ShowMainWindow();
  void StartAnew();
  void End();
  bool StaysFor(const Failure& why);

  void AnnounceUpdate();

  void OffsetTick();
  void RestoreStatusTick();
  void AlarmTick();

  Rig& rig_;
  Graphs& graphs_;
  Measurement measurement_;
  RecentFiles recent_;
  SessionFiles files_;
  QualityState quality_;
  QualityBands bands_;
  Result<Done> receiverFile_ = Done{};  // whether the start could write RXCal.dat
  std::string receiverTable_;
  KeptFrequencies kept_;
  UndoHistory undo_;
  PassingLine notice_;
  bool startingUp_ = false;
  bool restartPending_ = false;
  bool ticking_ = false;
  bool ended_ = false;
  bool mayStay_ = false;  // the end that is under way was asked for, so it may be thought over
};

}  // namespace qk
