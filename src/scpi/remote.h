// SPDX-License-Identifier: MIT
// Remote control of the program: its clients, the operation that is pending, and what clients see
// of sweep, plan and status. Everything runs on the program's thread, from its message loop.
//
// One operation at a time is pending: sweeps asked for by a client, a standard, a calibration that
// comes into force. Completion ("*OPC?", "*WAI") means that none is. Continuous sweeping is none.
#pragma once

#include <array>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "forms/program.h"
#include "forms/remote_control.h"
#include "scpi/client.h"
#include "scpi/prompt_gate.h"
#include "scpi/remote_calibration.h"
#include "scpi/sweep_data.h"
#include "scpi/tree.h"
#include "scpi/wanted_plan.h"

namespace qk::scpi {

// Who may start a sweep from outside: as TRIGger:SOURce says.
enum class TriggerSource { Immediate, Internal, Manual };

class Remote {
 public:
  static constexpr std::size_t kMostClients = 4;
  // Runs a function soon from the message loop, when a handler may run.
  using Post = std::function<void(std::function<void()>)>;

  // Takes the program's hooks. The gate must be the one that the program asks through.
  Remote(Program& program, PromptGate& gate, Post post);
  ~Remote();

  // ---- for transports ------------------------------------------------------------------------
  // nullptr: four clients are there already. The transport must outlive the client.
  Client* Connect(Transport& transport, std::string address);
  void Disconnect(Client& client);
  // Runs what a client has sent.
  void Serve(Client& client);
  std::size_t Clients() const;
  // The process is about to end: nothing is pending any more, and whoever waits is answered.
  void End();
  // All clients are about to be disconnected: whoever waits is answered, with this reason.
  void Release(const std::string& why);

  // ---- for the program's surroundings --------------------------------------------------------
  // Runs what a person does: boxes go to him, and clients learn of it (standard event bit 6).
  void PersonActs(const std::function<void()>& act, bool noted = true);
  // What the window shows; the port and the switch are the transport's.
  RemoteView View() const;
  // A client came or went, or something was exchanged; may be empty.
  std::function<void()> OnChange;

  // ---- for clients ---------------------------------------------------------------------------
  const Tree& tree() const { return tree_; }
  void NoteExchange(const Client& client, const std::string& sent, const std::string& reply);
  void NoteError(const Client& client, const Error& error);
  // Runs a command of a client: boxes are answered and told to it.
  void RunFor(Client& client, const std::function<void()>& command);
  // The program starts up and asks the user nothing: messages wait until it is ready.
  bool StartsUp() const;
  // Why no command may change anything now; empty when one may.
  std::string Obstacle() const;
  bool Pending() const { return Occupied() && !givenUp_; }
  // Pending, or given up and not at its end yet.
  bool Occupied() const { return operation_.At != Stage::None || stopping_; }
  // Something other than sweeps is pending.
  bool AtWork() const { return operation_.At != Stage::None && operation_.Work != nullptr; }

  // ---- for commands --------------------------------------------------------------------------
  Program& program() { return program_; }
  Session& session() { return program_.session(); }
  Controller& controller() { return program_.controller(); }
  Rig& rig() { return program_.controller().rig(); }
  Host& host() { return program_.host(); }
  WantedPlan& wanted() { return wanted_; }
  RemoteCalibration& calibration() { return calibration_; }

  // Why no sweep with the wanted plan can begin; nothing when one can.
  std::optional<Error> SweepObstacle();
  // The client asked for a sweep: until there is a whole one it reads no earlier one.
  static void ExpectSweep(Client& by);
  // So many whole sweeps, then idle. The caller has made sure that none is pending.
  void StartSweeps(Client& by, int sweeps);
  // Sweeps without an end, behind the operation that is pending.
  void StartContinuous(Client& by);
  // Ends whatever sweeps; pending until it has.
  void Stop(Client& by);
  bool Continuous() const;
  bool Sweeping() const { return !program_.session().Flags.SweepIdle; }
  bool Stopping() const { return stopping_; }
  int SweepsAsked() const { return operation_.At == Stage::None ? 0 : operation_.Asked; }
  // Something else that takes the instrument for a while, as an operation; it tells its errors.
  void StartWork(Client& by, std::function<void(Client*)> work);
  // The wanted plan into the instrument, the calibration kept. False: it failed and was told.
  bool LoadWanted();
  // The instrument may hold another plan than the session's: the next sweep loads it again.
  void DoubtInstrument() { instrumentInDoubt_ = true; }
  void TrustInstrument() { instrumentInDoubt_ = false; }

  // An operation is pending, or sweeps run of which none is whole yet.
  bool AwaitsSweep() const;
  // The sweep that a read of these parameters gives: the first after the client's INITiate that
  // one, later ones the last whole sweep. nullptr: there is none that holds them at the plan in
  // force, or none since an INITiate that failed.
  KeptSweep ReadSweep(Client& client, std::span<const Parameter> parameters);
  KeptSweep ReadSweep(Client& client, Parameter parameter) {
    return ReadSweep(client, std::span(&parameter, 1));
  }
  // The graphs, and what is computed from them, show a sweep that this client may take for its own.
  bool GraphsStand(const Client& client) const;
  // The same of raw ratios: always the client's own INITiate's, if it made one.
  KeptSweep RawSweep(Client& client, Parameter parameter) const;
  // Seconds of a sweep with the wanted plan.
  double SweepSeconds() const;

  int OperationCondition() const;
  int QuestionableCondition() const;
  void UpdateConditions();

  TriggerSource Source = TriggerSource::Immediate;
  int GroupCount = 1;
  // The form of a trace that its graph cannot show, as long as the graph stays what it was.
  struct OwnForm {
    TraceForm Form;
    GraphType Shown;
  };
  std::array<std::optional<OwnForm>, 4> OwnForms;
  // How many traces were asked for, as long as the screen shows them; and the split of the screen.
  struct TraceCount {
    int Count = 0;
    DisplaySet Set = DisplaySet::One;
  };
  TraceCount Traces;
  int Split = -1;
  bool ContinuousArmed = false;  // INITiate:CONTinuous 1 with a manual trigger

 private:
  enum class Stage { None, Posted, Running, Ending };
  struct Operation {
    Stage At = Stage::None;
    int Serial = 0;
    int By = 0;     // the client's number: it may be gone
    int Asked = 0;  // sweeps
    int Left = 0;
    int Disturbed = 0;  // sweeps in a row with bytes too many
    bool Told = false;  // an error of it has been queued
    std::function<void(Client*)> Work;
  };

  Client* ByNumber(int number) const;
  void Tell(int client, const Error& error);
  void TellBox(int client, const Message& message);
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
  void UserAsked(const Message& box);
  void GiveUp(const std::string& why);
  void AnswerAll();
  void Changed() {
    if (OnChange) OnChange();
  }

  Program& program_;
  PromptGate& gate_;
  Post post_;
  const Tree& tree_;
  WantedPlan wanted_;
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
  bool continue_ = false;  // sweeping goes on behind the operation
  int continueFor_ = 0;    // the client that asked for it, by number
  bool stopping_ = false;  // a stop of ours, until idle
  bool givenUp_ = false;   // no client waits for what runs
  int measurementsEnded_ = 0;
  bool ended_ = false;
  bool instrumentInDoubt_ = false;
  KeptSweep whole_;  // the last whole sweep
  std::int64_t sweepBeganMs_ = 0;
  double lastSeconds_ = 0;  // of the last whole sweep, with the plan and averages below
  PlanGrid lastGrid_;
  int lastAverages_ = 0;
  std::function<void()> onStartBefore_;

  std::deque<std::string> log_, errors_;
};

}  // namespace qk::scpi
