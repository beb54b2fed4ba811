// SPDX-License-Identifier: MIT
// Start-up, re-start, exit and shut-down.
#include <optional>
#include <string>
#include <tuple>

#include "control/controller.h"
#include "control/system_log.h"
#include "control/verbs.h"
#include "core/scopes.h"
#include "core/status.h"
#include "core/text.h"
#include "core/window_names.h"
#include "link/eeprom.h"
#include "utilities/receiver_scale.h"

namespace qk {

namespace {
constexpr int kFirstOffsetIntervalMs = 10000;
constexpr int kAlarmIntervalMs = 2000;
constexpr const char* kNoInstrument = "No Instrument!";
}  // namespace

void Controller::StartUp() {
  const FlagScope startingUp(startingUp_);
  RunStartUp();
}

void Controller::RunStartUp() {
  Session& session = rig_.session;
  Windows& windows = rig_.host.windows;
  ForgetSession();
  if (!FindInstrument()) {
    ShowMainWindow();
    SetPanel(session, windows, Panel::Port, kNoInstrument);
    return;
  }
  LoadInstrument();
  if (ended_) return;
  if (session.Id.SerialNumber == 0) {
    rig_.host.prompts.ShowMessage("VNA Initialisation", "Instrument Failed to Respond",
                                  Icon::Critical);
    SetPanel(session, windows, Panel::Port, kNoInstrument);
    session.Id.PortNumber = 0;
    return;
  }
  SetPanel(session, windows, Panel::SerialNumber, "SN." + WholeNumberText(session.Id.SerialNumber));
  const Result<Done> logged = LogStart(session, rig_.host.loop);
  AverOff();  // an instrument that stayed on may still average
  session.SweepStatusText = "Sweep Off";
  SetPanel(session, windows, Panel::Sweep, session.SweepStatusText);
  session.Cal.CalDataReady = false;
  SetModeInForce(session.Cal, std::nullopt);
  session.Display.MemoryInUse = false;
  ShowCalStatus(session, windows);
  files_.LoadDefaultCal();
  undo_.Forget();
  graphs_.RedrawAll(true);  // keeps the markers of the file, as after Load Cal
  ReportLog(session, rig_.host, logged);
  // The power tests read that file: an old one would give wrong levels.
  if (!receiverFile_)
    rig_.host.prompts.ShowMessage("VNA Initialisation", receiverFile_.Why().Text(),
                                  Icon::Exclamation);
}

// Sets the defaults and clears what an earlier run shows.
void Controller::ForgetSession() {
  Session& session = rig_.session;
  const auto panels = session.Panels;
  InitSession(session);
  files_.Forget();
  undo_.Forget();
  graphs_.Reset();
  for (std::size_t n = 1; n < panels.size(); ++n)
    if (!panels[n].empty()) SetPanel(session, rig_.host.windows, static_cast<Panel>(n), "");
}

bool Controller::FindInstrument() {
  std::int16_t& port = rig_.session.Id.PortNumber;
  for (;;) {
    rig_.host.loop.LetEventsRun();
    port = rig_.link.FindInstrument([this](int com) {
      // The rest of a sweep may take a while: the window shows why the program waits.
      ShowMainWindow();
      SetPanel(rig_.session, rig_.host.windows, Panel::Port,
               "COM " + std::to_string(com) + " busy, waiting");
    });
    if (port > 0) return true;
    const Answer answer = rig_.host.prompts.Ask(
        {"VNA Control",
         "No instrument detected. Check instrument connection and power. If using a USB adaptor "
         "ensure a valid COM port has been assigned (1 to 16)",
         Icon::None, Buttons::RetryCancel});
    if (answer != Answer::Retry || ended_) return false;
  }
}

// Loads the data of the instrument: tables, offsets, temperature, identity.
void Controller::LoadInstrument() {
  Session& session = rig_.session;
  Windows& windows = rig_.host.windows;
  EventLoop& loop = rig_.host.loop;
  rig_.link.SetUpSessionPort();
  SetPanel(session, windows, Panel::Port, WholeNumberText(session.Id.PortNumber) + ", 115.2 Kb/s");
  ShowMainWindow();
  windows.Show(window::kEEPROMdata);
  loop.LetEventsRun();
  if (ended_) return;
  ReceiverScaleFile scale(session.InstallFolder);
  LoadEepromData(rig_, scale, [&windows](int percent) {
    windows.Progress(window::kEEPROMdata, "ProgressBar1", percent);
  });
  receiverFile_ = scale.Written();
  receiverTable_ = scale.Text();
  windows.Hide(window::kEEPROMdata);
  Tick(TimerId::Timer1);
  loop.SetInterval(TimerId::Timer1, kFirstOffsetIntervalMs);
  loop.Enable(TimerId::Timer1, true);
  loop.SetInterval(TimerId::Timer2, kPassingMs);
  loop.Enable(TimerId::Timer2, false);
  loop.SetInterval(TimerId::Timer3, kAlarmIntervalMs);
  loop.Enable(TimerId::Timer3, false);
  ReadIdentity(rig_);
}

void Controller::ShowMainWindow() {
  Windows& windows = rig_.host.windows;
  windows.Show(window::kForm1);
  windows.HideForRestart();  // their contents belong to the old session
  windows.SessionChanged();
  windows.Refresh(window::kForm1);
  graphs_.RedrawAll(false);
}

void Controller::Exit() {
  if (startingUp_ || ended_) return;
  rig_.host.loop.Enable(TimerId::Timer1, false);
  const Answer answer = rig_.host.prompts.Ask(
      {"VNA Control Exit", "Close Program and Exit?", Icon::None, Buttons::YesNo});
  if (answer != Answer::Yes) {
    ResumeTimer1(rig_);
    return;
  }
  mayStay_ = true;
  End();
}

void Controller::Leave() {
  mayStay_ = false;
  End();
}

void Controller::End() {
  if (ended_) return;
  if (startingUp_) {
    CloseAtOnce();
    return;
  }
  SweepFlags& flags = rig_.session.Flags;
  Windows& windows = rig_.host.windows;
  rig_.host.loop.Enable(TimerId::Timer1, false);
  StopMeasurement();
  flags.ExitPending = true;
  windows.Hide(window::kUpdating);
  windows.Show(window::kShuttingDown);
  windows.Refresh(window::kShuttingDown);
  if (flags.SweepIdle) ShutDown();
}

void Controller::ReStart() {
  if (startingUp_ || ended_) return;
  constexpr const char* kTitle = "Re-Start Program";
  Prompts& prompts = rig_.host.prompts;
  EventLoop& loop = rig_.host.loop;
  if (prompts.Ask({kTitle,
                   "This will re-start the program and any Cal data will be lost. Continue?",
                   Icon::None, Buttons::YesNo}) != Answer::Yes)
    return;
  loop.Enable(TimerId::Timer1, false);
  loop.Enable(TimerId::Timer2, false);
  if (prompts.Ask({kTitle, "Reset VNA (press red button on rear panel). Click OK when Ready",
                   Icon::None, Buttons::OkCancel}) != Answer::Ok) {
    ResumeTimer1(rig_);
    loop.Enable(TimerId::Timer2, true);
    return;
  }
  StopMeasurement();
  if (rig_.session.Flags.SweepIdle)
    StartAnew();
  else
    restartPending_ = true;
}

void Controller::StartAnew() {
  restartPending_ = false;
  rig_.link.DropInput();
  rig_.link.DropInput();
  StartUp();
}

void Controller::ShutDown() {
  rig_.session.SweepStatusText = "Sweep Off";
  if (const Result<Done> saved = files_.SaveDefaultCal(); !saved && StaysFor(saved.Why())) return;
  if (ended_) return;  // a signal, or the title bar, while the question was open
  // The window closes: nothing is left to show a failure, and the log holds no settings.
  std::ignore = LogShutDown(rig_.session, rig_.host.loop);
  CloseAtOnce();
}

// The session would be lost: the program continues so that it can be saved elsewhere, unless the
// user declines. Yes, the default for Enter, loses nothing.
bool Controller::StaysFor(const Failure& why) {
  if (!mayStay_) return false;
  const Answer answer =
      rig_.host.prompts.Ask({.Title = "VNA Control Exit",
                             .Text = "The session could not be saved for the next start.\n" +
                                     why.Text() + "\nGo back to work, to save it elsewhere?",
                             .MessageIcon = Icon::Exclamation,
                             .Choice = Buttons::YesNo,
                             .NoActs = true});
  if (answer == Answer::No || ended_) return false;
  rig_.session.Flags.ExitPending = false;
  rig_.host.windows.Hide(window::kShuttingDown);
  ResumeTimer1(rig_);
  return true;
}

void Controller::CloseAtOnce() {
  ended_ = true;
  measurement_.Abandon();
  rig_.host.windows.EndProcess(0);
}

}  // namespace qk
