// SPDX-License-Identifier: MIT
// The central coordination of the program: start-up and shut-down, START and STOP, the three
// timers, and the switches that can be used during a sweep. Everything runs on one thread. A sweep
// runs inside StartMeasurement and handles events after every point, so any other handler may run
// nested inside it. A handler that would need the link meanwhile sets a ...Due flag instead, and
// the sweep loop serves it between two sweeps: only one routine uses the line at any time.
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

  // The whole start-up, from setting the defaults to ready (or to "No Instrument!"). START, Exit
  // and "Re-Start Program" are ignored while it runs.
  void StartUp();
  bool StartingUp() const { return startingUp_; }
  // The Exit command: asks, stops a running sweep, then shuts down. If a sweep is on the call
  // stack, shut-down waits until it has ended.
  void Exit();
  // The same without a question, for an end that cannot be refused: a signal, or the end of the
  // desktop session. During start-up there is nothing to save yet, and the process ends at once.
  void Leave();
  // "Re-Start Program": asks twice, stops, then runs StartUp again. If a sweep is on the call
  // stack, start-up waits until it has ended, so that it never sends into a running stream.
  void ReStart();
  void ShutDown();
  // The main window was closed by its title bar: the process ends at once, saves nothing and sends
  // nothing more. A running sweep is abandoned.
  void CloseAtOnce();

  void StartMeasurement();
  void StopMeasurement();
  // One whole sweep, like START followed by STOP; no effect while one runs.
  void SingleSweep();
  // A tick of Timer1 does nothing while an earlier tick is still being handled (its message box is
  // open).
  void Tick(TimerId timer);
  void AverOn();
  void AverOff();
  void SmoothChanged();
  // START and STOP state for other windows: true when no sweep is running or stopping.
  bool Idle() const { return rig_.session.Flags.Idle(); }

  // Number of measurement sweeps since the program started, complete or aborted (the console waits
  // on it).
  long SweepsEnded() const { return measurement_.SweepsEnded(); }
  // Number of measured points with a receiver overload since the program started.
  long Overloads() const { return measurement_.Overloads(); }

  // Ask the confirmation questions that scripts do not expect: set when a user operates a window.
  bool AsksFirst = false;
  // Asks before an action, which the title names, takes the through of the kit from standards that
  // were measured with one kit, which drops them. Set by the window of the calibration.
  std::function<bool(std::string_view title)> ConfirmNoThrough;

  // Empty for a short sweep, and when none is running.
  std::optional<SweepProgress> Progress() const { return measurement_.Progress(); }

  // Called first when START is clicked and no sweep is running (the demonstration bench restores
  // its device here); may be empty.
  std::function<void()> OnStart;
  // Called at the end of each measurement sweep, after the due changes are served; complete is
  // false for an aborted sweep, and for one with surplus bytes (SweepFlags::SweepRunning is then
  // still set). Return false to end the measurement like STOP. May be empty.
  std::function<bool(bool complete)> OnSweepEnded;
  // Called when the measurement loop has ended for any reason, before a pending exit or re-start.
  // May be empty.
  std::function<void()> OnMeasurementEnded;

  Rig& rig() { return rig_; }
  Graphs& graphs() { return graphs_; }
  SessionFiles& files() { return files_; }
  KeptFrequencies& kept() { return kept_; }
  // Code that opens or saves a session or a measurement records the file here.
  RecentFiles& recent() { return recent_; }
  QualityState& quality() { return quality_; }
  // The content of RXCal.dat as read from the instrument at this start, even if the file could not
  // be written. Incomplete if loading failed.
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
  Result<Done> receiverFile_ = Done{};  // whether start-up could write RXCal.dat
  std::string receiverTable_;
  KeptFrequencies kept_;
  UndoHistory undo_;
  PassingLine notice_;
  bool startingUp_ = false;
  bool restartPending_ = false;
  bool ticking_ = false;
  bool ended_ = false;
  bool mayStay_ = false;  // the pending exit was requested by the user, who may still cancel it
};

}  // namespace qk
