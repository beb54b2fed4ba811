// SPDX-License-Identifier: MIT
#include "scpi/remote.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/cal_arrays.h"
#include "core/local_time.h"
#include "core/measured_sweep.h"
#include "core/window_names.h"
#include "scpi/commands.h"
#include "sweep/frequency_plan.h"

namespace qk::scpi {

namespace {
constexpr std::size_t kLogLength = 200;
constexpr std::size_t kErrorsShown = 50;
constexpr int kPatienceMs = 1000;  // with a notice or a modal window that halts a sweep

void Keep(std::deque<std::string>& lines, std::string line, std::size_t most) {
  lines.push_back(std::move(line));
  if (lines.size() > most) lines.pop_front();
}
}  // namespace

Remote::Remote(Program& program, Post post)
    : program_(program),
      gate_(program.gate()),
      post_(std::move(post)),
      tree_(CommandTree()),
      wanted_(program.session()),
      calibration_(*this) {
  Controller& control = controller();
  control.OnSweepEnded = [this](bool complete) { return SweepEnded(complete); };
  control.OnMeasurementEnded = [this] { MeasurementEnded(); };
  onStartBefore_ = control.OnStart;
  control.OnStart = [this] {
    if (onStartBefore_) onStartBefore_();
    if (!session().Display.SweepCounted) ForgetSweeps();
    sweepBeganMs_ = host().loop.NowMs();
    wholeSinceStart_ = false;
    if (!instrumentInDoubt_ || !session().Cal.AnyKind()) return;
    // A failure is reported; the measurement then gets no answer either.
    if (LoadFreqSweep(rig())) instrumentInDoubt_ = false;
  };
  gate_.OnUserAsked = [this](bool question) { UserAsked(question); };
  const DisplayState& display = session().Display;
  const std::optional<SweepMode> mode = ModeInForce(session().Cal);
  if (mode && session().Flags.Idle() && display.SweepCounted &&
      display.PointCounter >= session().Plan.NumPoints)
    whole_ = KeepSweep(session(), *mode);
  graphsWhole_ = whole_ != nullptr;
}

Remote::~Remote() {
  *alive_ = false;
  Controller& control = controller();
  control.OnSweepEnded = {};
  control.OnMeasurementEnded = {};
  control.OnStart = onStartBefore_;
  gate_.OnUserAsked = {};
}

// ---- clients -----------------------------------------------------------------------------------

Client* Remote::Connect(Transport& transport, std::string address) {
  if (ended_ || Clients() >= kMostClients) return nullptr;
  clients_.push_back(
      {std::make_unique<Client>(*this, transport, std::move(address), ++clientNumbers_), false});
  Client& client = *clients_.back().Who;
  client.Status.Operation.SetCondition(OperationCondition());
  client.Status.Questionable.SetCondition(QuestionableCondition());
  Changed();
  return &client;
}

void Remote::Disconnect(Client& client) {
  for (Slot& slot : clients_)
    if (slot.Who.get() == &client) {
      slot.Gone = true;
      slot.Who->Forget();
      calibration_.Forget(client.Number());
    }
  RemoveGone();
  Changed();
}

void Remote::ConnectionLost(const Client& client) {
  if (operation_.At == Stage::None || operation_.Work || operation_.By != client.Number()) return;
  if (operation_.At == Stage::Posted) {
    operation_ = {};
    ServeSoon();
  } else {
    operation_.Left = std::min(operation_.Left, 1);
  }
}

void Remote::RemoveGone() {
  std::erase_if(clients_, [](const Slot& slot) { return slot.Gone && !slot.Who->Running(); });
}

std::size_t Remote::Clients() const {
  return static_cast<std::size_t>(std::ranges::count(clients_, false, &Slot::Gone));
}

Client* Remote::ByNumber(int number) const {
  for (const Slot& slot : clients_)
    if (!slot.Gone && slot.Who->Number() == number) return slot.Who.get();
  return nullptr;
}

void Remote::Serve(Client& client) {
  if (client.Run()) ServeSoon();
  RemoveGone();
}

void Remote::ServeSoon() {
  if (std::exchange(servingSoon_, true)) return;
  post_([this, alive = alive_] {
    if (!*alive) return;
    servingSoon_ = false;
    ServeAll();
  });
}

void Remote::ServeAll() {
  NoteCompletion();
  bool again = false;
  // A command may connect or disconnect a client.
  for (std::size_t i = 0; i < clients_.size(); ++i)
    if (!clients_[i].Gone) again = clients_[i].Who->Run() || again;
  RemoveGone();
  if (again) ServeSoon();
}

void Remote::NoteCompletion() {
  if (Pending()) return;
  for (const Slot& slot : clients_)
    if (std::exchange(slot.Who->CompletionAsked, false))
      slot.Who->Status.Raise(Event::OperationComplete);
}

void Remote::End() {
  if (std::exchange(ended_, true)) return;
  if (operation_.At != Stage::None && !operation_.Reported)
    ReportError(operation_.By, {kExecution, "the program ended"});
  operation_ = {};
  stopping_ = continue_ = false;
  givenUp_ = true;  // a sweep that still runs belongs to no client
  AnswerAll();
}

void Remote::Release(const std::string& why) {
  GiveUp(why);
  AnswerAll();
}

// What clients have sent runs now, as far as it goes.
void Remote::AnswerAll() {
  constexpr int kMostTurns = 100;
  for (int turn = 0; turn < kMostTurns; ++turn) {
    bool again = false;
    for (std::size_t i = 0; i < clients_.size(); ++i)
      if (!clients_[i].Gone) again = clients_[i].Who->Run() || again;
    if (!again) break;
  }
  NoteCompletion();
}

// ---- what the user sees -----------------------------------------------------------------------

void Remote::PersonActs(const std::function<void()>& act, bool noted) {
  if (noted)
    for (const Slot& slot : clients_) slot.Who->Status.Raise(Event::UserRequest);
  const PromptGate::Attended attended(gate_);
  act();
}

RemoteView Remote::View() const {
  RemoteView view;
  for (const Slot& slot : clients_)
    if (!slot.Gone)
      view.Clients.push_back(std::to_string(slot.Who->Number()) + "  " + slot.Who->Address() +
                             "  " + slot.Who->LastCommand());
  view.Log.assign(log_.begin(), log_.end());
  view.Errors.assign(errors_.begin(), errors_.end());
  return view;
}

void Remote::NoteExchange(const Client& client, const std::string& sent, const std::string& reply) {
  std::string line =
      TimeText(host().loop.Now()) + "  " + std::to_string(client.Number()) + "  " + sent;
  if (!reply.empty()) line += "  ->  " + reply;
  Keep(log_, std::move(line), kLogLength);
  Changed();
}

void Remote::NoteError(const Client& client, const Error& error) {
  Keep(errors_,
       TimeText(host().loop.Now()) + "  " + std::to_string(client.Number()) + "  " +
           ErrorText(error),
       kErrorsShown);
  Changed();
}

// ---- boxes and obstacles -----------------------------------------------------------------------

void Remote::ReportError(int client, const Error& error) {
  if (Client* who = ByNumber(client); who != nullptr) who->Push(error);
}

void Remote::ReportBox(int client, const Message& message) {
  // A missing reply from the line has its own error.
  const bool lost = session().Flags.ReplyTimedOut || session().Id.PortNumber == 0;
  if (operation_.By == client) operation_.Reported = true;
  ReportError(client, {lost ? kHardware : kExecution, BoxText(message.Title, message.Text)});
}

void Remote::RunFor(Client& client, const std::function<void()>& command) {
  const PromptGate::Unattended unattended(
      gate_, [this, number = client.Number()](const Message& box) { ReportBox(number, box); });
  UpdateConditions();
  command();
}

bool Remote::StartsUp() const {
  return !ended_ && program_.controller().StartingUp() && gate_.Waiting().empty();
}

std::string Remote::Obstacle() const {
  if (ended_) return "the program ends";
  if (!gate_.Waiting().empty()) return gate_.Waiting();
  if (program_.controller().StartingUp()) return "the program starts up";
  if (program_.session().Flags.ExitPending) return "the program ends";
  for (const Form* form : program_.registry().All())
    if (form->Busy()) return form->Caption() + " is at work";
  return ModalWindow();
}

// A box halts the sweep in which it was opened until the user answers it. A question is thought
// about; a notice is usually closed at once.
void Remote::UserAsked(bool question) {
  if (question) GiveUp(gate_.Waiting());
}

void Remote::Watch() {
  const std::string halt = gate_.Waiting().empty() ? ModalWindow() : gate_.Waiting();
  if (halt.empty())
    haltedMs_.reset();
  else if (!haltedMs_)
    haltedMs_ = host().loop.NowMs();
  else if (host().loop.NowMs() - *haltedMs_ >= kPatienceMs)
    GiveUp(halt);
}

// "CAPTION is open", of the modal window that is; empty if none is.
std::string Remote::ModalWindow() const {
  for (const Form* form : program_.registry().All())
    if (form->Shown && form->Style().Modal) return form->Caption() + " is open";
  return {};
}

// Answers waiting clients now. The operation may still end by itself; its result is then discarded.
void Remote::GiveUp(const std::string& why) {
  if (givenUp_ || (!Occupied() && !Sweeping())) return;
  givenUp_ = true;
  if (operation_.At != Stage::None) {
    continue_ = false;
    if (!std::exchange(operation_.Reported, true)) ReportError(operation_.By, {kExecution, why});
  }
  ServeSoon();
}

// ---- data --------------------------------------------------------------------------------------

bool Remote::HoldsPlan(const SweepData& sweep) const {
  const Session& s = program_.session();
  return s.Display.SweepCounted && SameGrid(sweep.Grid, s.Plan);
}

// The session no longer has a sweep: it was reset or loaded, or its plan has changed.
void Remote::ForgetSweeps() {
  whole_ = nullptr;
  // Fresh stays: the first read after a client's INITiate gives no other client's sweep.
  for (const Slot& slot : clients_) slot.Who->Own = nullptr;
}

bool Remote::AwaitsSweep() const {
  if (Pending()) return true;
  if (givenUp_) return false;
  if (continue_ && program_.controller().Idle())
    return true;  // about to start, with a new plan perhaps
  return program_.session().Flags.SweepRunning && (whole_ == nullptr || !HoldsPlan(*whole_));
}

KeptSweep Remote::ReadSweep(Client& client, std::span<const Parameter> parameters) {
  if (client.AwaitsOwn) return nullptr;
  unsigned bits = 0;
  for (const Parameter parameter : parameters) bits |= 1u << static_cast<unsigned>(parameter);
  KeptSweep sweep = (client.Fresh & bits) != 0 ? client.Own : whole_;
  client.Fresh &= ~bits;
  if (sweep == nullptr || !HoldsPlan(*sweep)) return nullptr;
  for (const Parameter parameter : parameters)
    if (!sweep->Holds(parameter)) return nullptr;
  return sweep;
}

Remote::ComputedRead Remote::ReadComputed(Client& client, Parameter parameter, int kind,
                                          bool first) {
  const std::uint32_t bit = std::uint32_t{1} << (static_cast<unsigned>(kind) * kParameters.size() +
                                                 static_cast<unsigned>(parameter));
  const bool fresh = (client.FreshComputed & bit) != 0;
  if (first) client.FreshComputed &= ~bit;
  if (!fresh || client.AwaitsOwn) return {};
  const KeptSweep& own = client.Own;
  if (own == nullptr || !HoldsPlan(*own) || !own->Holds(parameter)) return {true, nullptr};
  const bool onScreen = own == whole_ && graphsWhole_ && !Sweeping();
  return {false, onScreen ? nullptr : own};
}

// A sweep that was stopped leaves points of two sweeps on the graphs; while sweeps run, each point
// is the latest one.
bool Remote::GraphsStand(const Client& client) const {
  if (client.AwaitsOwn || whole_ == nullptr || !HoldsPlan(*whole_)) return false;
  const Session& s = program_.session();
  return Sweeping() || (graphsWhole_ && s.Display.PointCounter >= s.Plan.NumPoints);
}

KeptSweep Remote::RawSweep(Client& client, Parameter parameter) const {
  if (client.AwaitsOwn || (client.Own == nullptr && client.Fresh != 0)) return nullptr;
  KeptSweep sweep = client.Own != nullptr && HoldsPlan(*client.Own) ? client.Own : whole_;
  if (sweep == nullptr || !HoldsPlan(*sweep) || !sweep->Holds(parameter)) return nullptr;
  return sweep;
}

double Remote::SweepSeconds() const {
  const Session& s = program_.session();
  const PlanGrid grid = wanted_.Grid();
  if (lastSeconds_ > 0 && SameGrid(lastGrid_, grid) && lastAverages_ == s.Averaging.Averages)
    return lastSeconds_;
  // The bytes on the line at 115200 baud, the dwell, and the averaged readings.
  const SweepWire wire = WireOf(ModeInForce(s.Cal).value_or(SweepMode::All));
  const double perPoint = wire.BytesPerPoint / 11520.0 + (s.Flags.DwellOn ? 2.5e-3 : 0.5e-3) +
                          s.Averaging.Averages * 0.25e-3;
  return grid.NumPoints * perPoint;
}

// ---- conditions --------------------------------------------------------------------------------

int Remote::OperationCondition() const {
  const Session& s = program_.session();
  int bits = 0;
  if (s.Steps.Measuring) bits |= kCalibrating;
  if (!s.Flags.SweepIdle) bits |= kSweeping;
  for (const std::string_view test : {window::kP1dBForm, window::kAMtoPM})
    if (const Form* form = program_.registry().Find(test); form != nullptr && form->Busy())
      bits |= kPowerTest;
  return bits;
}

int Remote::QuestionableCondition() const {
  const Session& s = program_.session();
  constexpr float kDrift = 3;  // degC
  int bits = 0;
  if (s.TextOf(Panel::Calibration).ends_with("Overload!")) bits |= kOverload;
  const std::optional<float> now = s.Receiver.Temperature, then = s.CalMade.DegC;
  if (now && then && std::abs(*now - *then) > kDrift) bits |= kTemperature;
  if (!s.Cal.AnyKind() || TermsAreIdeal(s) || CalDoubtful(s)) bits |= kCalibration;
  if (s.Limits.LimitFailed) bits |= kLimitsFailed;
  if (s.Id.PortNumber == 0 || s.Flags.ReplyTimedOut || !program_.controller().rig().link.IsOpen())
    bits |= kLinkLost;
  return bits;
}

void Remote::UpdateConditions() {
  const int operation = OperationCondition(), questionable = QuestionableCondition();
  for (const Slot& slot : clients_) {
    slot.Who->Status.Operation.SetCondition(operation);
    slot.Who->Status.Questionable.SetCondition(questionable);
  }
}

}  // namespace qk::scpi
