// SPDX-License-Identifier: MIT
// Remote control of the program: its clients, the pending operation, and the clients' view of
// sweep, plan and status. Everything runs on the program's thread, from its message loop.
//
// At most one operation is pending: sweeps requested by a client, a standard, the activation of a
// calibration. Completion ("*OPC?", "*WAI") means that none is pending. Continuous sweeping does
// not count as an operation.
#pragma once

#include <array>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "control/prompt_gate.h"
#include "forms/program.h"
#include "forms/remote_control.h"
#include "scpi/client.h"
#include "scpi/pending_plan.h"
#include "scpi/remote_calibration.h"
#include "scpi/sweep_data.h"
#include "scpi/tree.h"

namespace qk::scpi {

// What may start a sweep remotely, as set by TRIGger:SOURce.
enum class TriggerSource { Immediate, Internal, Manual };

class Remote {
 public:
  static constexpr std::size_t kMostClients = 4;
  // Schedules a function to run from the message loop as soon as a handler may run.
  using Post = std::function<void(std::function<void()>)>;

  // Installs itself in the program's hooks.
  Remote(Program& program, Post post);
  ~Remote();

  // ---- for transports ------------------------------------------------------------------------
  // nullptr: there are already four clients. The transport must outlive the client.
  Client* Connect(Transport& transport, std::string address);
  void Disconnect(Client& client);
  // The connection has broken: the client will not read the rest of its sweeps. The running one
  // is completed, then the operation ends.
  void ConnectionLost(const Client& client);
  // Runs the commands that a client has sent.
  void Serve(Client& client);
  std::size_t Clients() const;
  // The process is about to end: cancels the pending operation and answers waiting clients.
  void End();
  // All clients are about to be disconnected: those that wait are answered, with this reason.
  void Release(const std::string& why);

  // Call about once per second while clients are connected: a client does not wait for a user who
  // leaves a box or a modal window open, which halts the sweep.
  void Watch();

  // ---- for the program's surroundings --------------------------------------------------------
  // Runs a user action: boxes go to the user, and clients are notified (standard event bit 6).
  void PersonActs(const std::function<void()>& act, bool noted = true);
  // The content of the window, except port and switch, which belong to the transport.
  RemoteView View() const;
  // A client connected or disconnected, or there was an exchange; may be empty.
  std::function<void()> OnChange;

  // ---- for clients ---------------------------------------------------------------------------
  const Tree& tree() const { return tree_; }
  void NoteExchange(const Client& client, const std::string& sent, const std::string& reply);
  void NoteError(const Client& client, const Error& error);
  // Runs a command of a client: boxes are answered and reported to the client.
  void RunFor(Client& client, const std::function<void()>& command);
  // The program starts up and asks the user nothing: messages wait until it is ready.
  bool StartsUp() const;
  // Why no command may change anything now; empty when one may.
  std::string Obstacle() const;
  bool Pending() const { return Occupied() && !givenUp_; }
  // Pending, or abandoned but not yet ended.
  bool Occupied() const { return operation_.At != Stage::None || stopping_; }
  // An operation other than sweeps is pending.
  bool AtWork() const { return operation_.At != Stage::None && operation_.Work != nullptr; }

  // ---- for commands --------------------------------------------------------------------------
  Program& program() { return program_; }
  Session& session() { return program_.session(); }
  Controller& controller() { return program_.controller(); }
  Rig& rig() { return program_.controller().rig(); }
  Host& host() { return program_.host(); }
  PendingPlan& wanted() { return wanted_; }
  RemoteCalibration& calibration() { return calibration_; }

  // Why a sweep with the wanted plan cannot start; empty if it can.
  std::optional<Error> SweepObstacle();
  // The client requested a sweep: until it is complete, the client cannot read an earlier one.
  static void ExpectSweep(Client& by);
  // Starts this number of complete sweeps, then idle. The caller ensures that nothing is pending.
  void StartSweeps(Client& by, int sweeps);
  // Starts continuous sweeping after the pending operation.
  void StartContinuous(Client& by);
  // With a manual trigger: continuous sweeping waits for triggers, after the pending operation.
  void ArmContinuous(Client& by);
  // Stops any sweeping; pending until it has stopped.
  void Stop(Client& by);
  bool Continuous() const;
  bool Sweeping() const { return !program_.session().Flags.SweepIdle; }
  bool Stopping() const { return stopping_; }
  int SweepsAsked() const { return operation_.At == Stage::None ? 0 : operation_.Asked; }
  // Starts another operation that uses the instrument for a while; it reports its own errors.
  void StartWork(Client& by, std::function<void(Client*)> work);
  // Loads the wanted plan into the instrument and keeps the calibration. False after a failure,
  // which was reported.
  bool LoadWanted();
  // The instrument may have another plan than the session: the next sweep loads it again.
  void DoubtInstrument() { instrumentInDoubt_ = true; }
  void ClearInstrumentDoubt() { instrumentInDoubt_ = false; }

  // An operation is pending, or sweeps are running and none is complete yet.
  bool AwaitsSweep() const;
  // The sweep for a read of these parameters: the first read after the client's INITiate gets that
  // sweep, later reads the last complete one. nullptr: no sweep contains them for the current plan,
  // or there was none since an INITiate that failed.
  KeptSweep ReadSweep(Client& client, std::span<const Parameter> parameters);
  KeptSweep ReadSweep(Client& client, Parameter parameter) {
    return ReadSweep(client, std::span(&parameter, 1));
  }
  // The same for values that are computed from a sweep, as by a marker: the first read of each kind
  // after the client's INITiate gives that sweep.
  struct ComputedRead {
    bool Stale = false;  // that sweep is gone: nothing can be read
    KeptSweep Own;       // nullptr: read what the graphs show
  };
  ComputedRead ReadComputed(Client& client, Parameter parameter, int kind, bool first);
  // True if the graphs, and values computed from them, show a sweep that this client may treat as
  // its own.
  bool GraphsStand(const Client& client) const;
  // The same for raw ratios: always the sweep of the client's own INITiate, if there was one.
  KeptSweep RawSweep(Client& client, Parameter parameter) const;
  // Duration in seconds of a sweep with the wanted plan.
  double SweepSeconds() const;

  int OperationCondition() const;
  int QuestionableCondition() const;
  void UpdateConditions();

  TriggerSource Source = TriggerSource::Immediate;
  int GroupCount = 1;
  // A trace format that the graph cannot show, valid while the graph is unchanged.
  struct OwnForm {
    TraceForm Form;
    GraphType Shown;
  };
  std::array<std::optional<OwnForm>, 4> OwnForms;
  // The format of a trace (from 1): its own one, or that of its graph.
  TraceForm FormOfTrace(int trace);
  int Split = -1;  // the requested layout of the screen, valid while the screen has it
  bool ContinuousArmed = false;  // INITiate:CONTinuous 1 with a manual trigger

 private:
  enum class Stage { None, Posted, Running, Ending };
  struct Operation {
    Stage At = Stage::None;
    int Serial = 0;
    int By = 0;     // client number, because the client may have gone
    int Asked = 0;  // number of sweeps
    int Left = 0;
    bool Reported = false;  // one of its errors has been queued
    std::function<void(Client*)> Work;
  };

  Client* ByNumber(int number) const;
  void ReportError(int client, const Error& error);
  void ReportBox(int client, const Message& message);
  void ServeSoon();
  void ServeAll();
  void NoteCompletion();
  void RemoveGone();
  void PostBegin();
  void PostContinuous();
  void Begin();
  void BeginSweeps();
  void Finish();
  bool SweepEnded(bool complete);
  void MeasurementEnded();
  bool HoldsPlan(const SweepData& sweep) const;
  void ForgetSweeps();
  void UserAsked(bool question);
  std::string ModalWindow() const;
  void GiveUp(const std::string& why);
  void AnswerAll();
  void Changed() {
    if (OnChange) OnChange();
  }

  Program& program_;
  PromptGate& gate_;
  Post post_;
  const Tree& tree_;
  PendingPlan wanted_;
  RemoteCalibration calibration_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);

  struct Slot {
    std::unique_ptr<Client> Who;
    bool Gone = false;
  };
  std::vector<Slot> clients_;
  int clientNumbers_ = 0;
  bool servingSoon_ = false;

  Operation operation_;
  int serials_ = 0;
  bool continue_ = false;  // continue sweeping after the operation
  int continueFor_ = 0;    // number of the client that requested it
  bool stopping_ = false;  // a stop requested here, until idle
  bool givenUp_ = false;   // no client waits for the running operation
  int measurementsEnded_ = 0;
  bool wholeSinceStart_ = false;  // the present measurement has completed a sweep
  // When Watch first saw the box or the window that is open; empty: none is.
  std::optional<std::int64_t> haltedMs_;
  bool ended_ = false;
  bool instrumentInDoubt_ = false;
  KeptSweep whole_;           // the last complete sweep
  int disturbed_ = 0;         // consecutive sweeps with surplus bytes
  bool graphsWhole_ = false;  // the graphs show one whole sweep, unless sweeps run
  std::int64_t sweepBeganMs_ = 0;
  double lastSeconds_ = 0;  // of the last complete sweep, with the plan and averages below
  PlanGrid lastGrid_;
  int lastAverages_ = 0;
  std::function<void()> onStartBefore_;

  std::deque<std::string> log_, errors_;
};

}  // namespace qk::scpi
