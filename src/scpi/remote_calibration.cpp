// SPDX-License-Identifier: MIT
#include "scpi/remote_calibration.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <filesystem>
#include <functional>
#include <system_error>
#include <tuple>
#include <utility>

#include "cal/error_terms.h"
#include "control/system_log.h"
#include "control/verbs.h"
#include "core/cal_arrays.h"
#include "core/instrument_limits.h"
#include "core/measured_sweep.h"
#include "core/scopes.h"
#include "core/status.h"
#include "files/session_file.h"
#include "forms/cal_progress.h"
#include "forms/plan_entry.h"
#include "forms/sweep_load.h"
#include "scpi/client.h"
#include "scpi/remote.h"
#include "sweep/frequency_plan.h"

namespace qk::scpi {

namespace {

// The steps of a calibration: a standard at a port.
enum Step : std::size_t { kOpen1, kShort1, kLoad1, kOpen2, kShort2, kLoad2, kThru, kIso, kSteps };
constexpr std::array<std::string_view, kSteps> kStepNames{
    "OPEN,1", "SHORT,1", "LOAD,1", "OPEN,2", "SHORT,2", "LOAD,2", "THRU", "ISOLATION"};

// Sets another plan in session and instrument temporarily. Restores the previous one unless Keep is
// called.
class PlanBorrowed {
 public:
  PlanBorrowed(Remote& remote, const SweepPlan& plan)
      : remote_(remote), before_(remote.session().Plan) {
    Session& session = remote.session();
    other_ = !SameGrid(plan, session.Plan) || plan.Port1Level != session.Plan.Port1Level ||
             !session.Flags.SweepLoaded;
    if (!other_) return;
    static_cast<PlanGrid&>(session.Plan) = plan;
    session.Plan.Port1Level = plan.Port1Level;
    remote_.DoubtInstrument();
    loaded_ = Load();
  }
  ~PlanBorrowed() {
    if (!other_) return;
    if (kept_) {
      remote_.ClearInstrumentDoubt();
      return;
    }
    remote_.session().Plan = before_;
    if (Load()) remote_.ClearInstrumentDoubt();
  }
  PlanBorrowed(const PlanBorrowed&) = delete;
  PlanBorrowed& operator=(const PlanBorrowed&) = delete;

  bool Loaded() const { return loaded_; }
  // Keeps the plan; data measured and stored with another plan are discarded, markers and limits
  // stay at their frequencies.
  void Keep() {
    kept_ = true;
    if (SameGrid(before_, remote_.session().Plan)) return;
    remote_.controller().kept().Follow(remote_.session(), remote_.host(), before_);
    ForgetMeasured(remote_.controller());
  }

 private:
  bool Load() {
    const Timer1Pause pause(remote_.host().loop);
    return LoadFreqSweep(remote_.rig(), Bar(remote_.host()));
  }

  Remote& remote_;
  SweepPlan before_;
  bool other_ = false;
  bool loaded_ = true;
  bool kept_ = false;
};

std::array<Complex, 2> IdealAt(std::string_view name) {
  const bool tracking = name == "er" || name == "et";
  return {Complex{tracking ? 1.0 : 0.0, 0}, Complex{}};
}

constexpr std::array<RemoteCalibration::TermName, 12> kTerms{{{"ed", 1, 1, 0},
                                                              {"es", 1, 1, 1},
                                                              {"er", 1, 1, 2},
                                                              {"et", 2, 1, 3},
                                                              {"el", 2, 1, 4},
                                                              {"ex", 2, 1, 5},
                                                              {"ed", 2, 2, 6},
                                                              {"es", 2, 2, 7},
                                                              {"er", 2, 2, 8},
                                                              {"et", 1, 2, 9},
                                                              {"el", 1, 2, 10},
                                                              {"ex", 1, 2, 11}}};

bool IsTracking(const RemoteCalibration::TermName& term) {
  return term.Name == "er" || term.Name == "et";
}
// True if one of the complex numbers is 0, or so small that a division by it overflows.
bool HasZero(std::span<const double> pairs) {
  constexpr double kSmallest = 1e-30;
  for (std::size_t i = 0; i + 1 < pairs.size(); i += 2)
    if (std::hypot(pairs[i], pairs[i + 1]) < kSmallest) return true;
  return false;
}

// The array of a term. The isolation among the twelve terms is the part that does not depend on the
// device.
template <class Terms>
auto& ArrayOfTerm(Terms& terms, std::size_t index) {
  auto& port = index < 6 ? terms.Forward : terms.Reverse;
  switch (index % 6) {
    case 0:
      return port.ED;
    case 1:
      return port.ES;
    case 2:
      return port.ERT;
    case 3:
      return port.ETT;
    case 4:
      return port.EL;
    default:
      return index < 6 ? terms.IsoFwd0 : terms.IsoRev0;
  }
}

// True if a kind of calibration has the term.
bool KindHas(SweepMode mode, std::size_t index) {
  switch (mode) {
    case SweepMode::All:
      return true;
    case SweepMode::S11:
      return index <= 2;
    case SweepMode::S21:
      return index == 3 || index == 5;
    case SweepMode::S11S21:
      return index <= 3 || index == 5;
  }
  return false;
}

}  // namespace

// Standards measured remotely. They are separate from the session, whose terms stay active.
struct RemoteCalibration::Collected {
  SweepPlan Plan;
  ErrorTerms Terms;
  StandardsMeasured Standards;
  std::array<bool, kSteps> Done{};
};

// The terms that a client has written so far, for one plan.
struct RemoteCalibration::Written {
  SweepPlan Plan;
  ErrorTerms Terms;
  std::array<bool, 12> Have{};
};

RemoteCalibration::RemoteCalibration(Remote& remote) : remote_(remote) {}
RemoteCalibration::~RemoteCalibration() = default;

const RemoteCalibration::TermName* RemoteCalibration::FindTerm(std::string_view name, int receiver,
                                                               int source) {
  for (const TermName& term : kTerms)
    if (SameWord(term.Name, name) && term.Receiver == receiver && term.Source == source)
      return &term;
  return nullptr;
}

// ---- standards ---------------------------------------------------------------------------------

std::optional<Error> RemoteCalibration::ChooseMethod(CalChoice choice) {
  if (choice == CalChoice::NonInsertable && !remote_.session().Kit1.KitHasThru)
    return Error{kSettingsConflict, "Cal kit (Port 1/2) does not have calibrated Thru Standard."};
  method_ = choice;
  collected_ = std::make_unique<Collected>();
  collected_->Plan = remote_.wanted().Plan();
  return std::nullopt;
}

namespace {

struct Sweep {
  Standard Measured;
  std::size_t At;  // Step
};

std::optional<Sweep> SweepFor(CalChoice choice, CalStandard standard, int port) {
  const bool twoPorts = choice == CalChoice::Insertable || choice == CalChoice::NonInsertable;
  if (standard == CalStandard::Thru) {
    switch (choice) {
      case CalChoice::S11:
        return std::nullopt;
      case CalChoice::S21:
        return Sweep{Standard::ThruS21, kThru};
      case CalChoice::S11S21:
        return Sweep{Standard::ThruBoth, kThru};
      case CalChoice::Insertable:
        return Sweep{Standard::ThruInsertable, kThru};
      case CalChoice::NonInsertable:
        return Sweep{Standard::ThruNonInsertable, kThru};
    }
  }
  if (standard == CalStandard::Isolation) {
    if (choice == CalChoice::S21) return Sweep{Standard::IsoS21, kIso};
    if (choice == CalChoice::S11S21) return Sweep{Standard::IsoBoth, kIso};
    if (choice == CalChoice::S11) return std::nullopt;
    return Sweep{Standard::IsoInsertable, kIso};  // measures nothing: uses that of the loads
  }
  if (choice == CalChoice::S21 || port < 1 || port > (twoPorts ? 2 : 1)) return std::nullopt;
  const bool both = choice == CalChoice::S11S21;
  const bool second = port == 2;
  switch (standard) {
    case CalStandard::Open:
      if (twoPorts)
        return second ? Sweep{Standard::OpenPort2, kOpen2} : Sweep{Standard::OpenPort1, kOpen1};
      return Sweep{both ? Standard::OpenBoth : Standard::OpenS11, kOpen1};
    case CalStandard::Short:
      if (twoPorts)
        return second ? Sweep{Standard::ShortPort2, kShort2} : Sweep{Standard::ShortPort1, kShort1};
      return Sweep{both ? Standard::ShortBoth : Standard::ShortS11, kShort1};
    default:
      if (twoPorts)
        return second ? Sweep{Standard::LoadPort2, kLoad2} : Sweep{Standard::LoadPort1, kLoad1};
      return Sweep{both ? Standard::LoadBoth : Standard::LoadS11, kLoad1};
  }
}

}  // namespace

std::optional<Error> RemoteCalibration::Collect(Client& by, CalStandard standard, int port) {
  if (!method_) return Error{kSettingsConflict, "choose the method first"};
  const std::optional<Sweep> sweep = SweepFor(*method_, standard, port);
  if (!sweep) return Error{kIllegalValue, "not a standard of this method"};
  if (remote_.session().Id.PortNumber == 0) return Error{kHardware, "no instrument"};
  if (remote_.Sweeping()) return Error{kSettingsConflict, "a sweep runs"};
  remote_.StartWork(
      by, [this, sweep = *sweep](Client* client) { Measure(client, sweep.Measured, sweep.At); });
  return std::nullopt;
}

void RemoteCalibration::Measure(Client* by, Standard standard, std::size_t step) {
  Session& session = remote_.session();
  const SweepPlan plan = remote_.wanted().Plan();
  if (collected_ == nullptr || !SameGrid(plan, collected_->Plan) ||
      plan.Port1Level != collected_->Plan.Port1Level) {
    // Standards measured with different plans cannot be combined.
    collected_ = std::make_unique<Collected>();
    collected_->Plan = plan;
  }
  // Without an active calibration the plan changes permanently, as with Apply.
  if (!session.Cal.AnyKind() && (remote_.wanted().OtherGrid() || !session.Flags.SweepLoaded ||
                                 plan.Port1Level != session.Plan.Port1Level)) {
    if (!PutPlanInForce(remote_.controller(), plan, {})) return;
    remote_.ClearInstrumentDoubt();
  }
  const bool nothingToMeasure = standard == Standard::IsoInsertable;
  bool good = nothingToMeasure;
  if (!nothingToMeasure) {
    PlanBorrowed borrowed(remote_, plan);
    if (!borrowed.Loaded()) return;
    const CalState before = session.Cal;
    std::swap(session.Terms, collected_->Terms);
    std::swap(session.Standards, collected_->Standards);
    session.Steps.Measuring = true;
    remote_.UpdateConditions();
    remote_.host().windows.SessionChanged();
    good = MeasureStandard(remote_.rig(), standard, Bar(remote_.host()));
    session.Steps.Measuring = false;
    std::swap(session.Terms, collected_->Terms);
    std::swap(session.Standards, collected_->Standards);
    session.Cal = before;
  }
  collected_->Done[step] = good;
  if (!good && by != nullptr && !session.Flags.ReplyTimedOut)
    by->Push({kHardware, "the standard was not measured whole"});
  ShowCalibration();
}

std::optional<std::string> RemoteCalibration::MissingText() const {
  std::vector<std::size_t> needed;
  switch (*method_) {
    case CalChoice::S11:
      needed = {kOpen1, kShort1, kLoad1};
      break;
    case CalChoice::S21:
      needed = {kThru};
      break;
    case CalChoice::S11S21:
      needed = {kOpen1, kShort1, kLoad1, kThru, kIso};
      break;
    case CalChoice::Insertable:
    case CalChoice::NonInsertable:
      needed = {kOpen1, kShort1, kLoad1, kOpen2, kShort2, kLoad2, kThru};
      break;
  }
  std::string missing;
  for (const std::size_t step : needed)
    if (collected_ == nullptr || !collected_->Done[step])
      missing += (missing.empty() ? "still to measure " : " ") + std::string(kStepNames[step]);
  if (missing.empty()) return std::nullopt;
  return missing;
}

std::optional<Error> RemoteCalibration::Save(Client& by) {
  if (!method_) return Error{kSettingsConflict, "choose the method first"};
  if (std::optional<std::string> missing = MissingText(); missing)
    return Error{kSettingsConflict, *missing};
  if (remote_.Sweeping()) return Error{kSettingsConflict, "a sweep runs"};
  remote_.StartWork(by, [this](Client* client) { Apply(client); });
  return std::nullopt;
}

namespace {

// FNV-1a of kind, plan, level and terms of the active calibration, as calibrated.
std::uint64_t Fingerprint(const Session& session) {
  std::uint64_t print = 0xcbf29ce484222325;
  const auto add = [&print](double number) {
    print = (print ^ std::bit_cast<std::uint64_t>(number)) * 0x100000001b3;
    print ^= print >> 32;  // mixes high bits into the low ones
  };
  const PlanGrid& plan = session.Plan.SavedPlan;
  const int count = std::min<int>(plan.NumPoints, kMaxPoints);
  const std::optional<SweepMode> mode = ModeInForce(session.Cal);
  add(mode ? static_cast<double>(*mode) : -1);
  add(plan.StartFreq);
  add(plan.StepFreq);
  add(count);
  add(session.Plan.CalLevel);
  for (const CalArray& array : CalArrays())
    for (int i = 0; i < count; ++i) {
      const Complex term = array.In(session.SavedTerms)[i];
      add(term.re);
      add(term.im);
    }
  return print;
}

}  // namespace

std::optional<Error> RemoteCalibration::KeepOld() {
  namespace fs = std::filesystem;
  const Session& session = remote_.session();
  if (!session.Cal.AnyKind() || TermsAreIdeal(session)) return std::nullopt;
  std::error_code ignored;
  const std::uint64_t print = Fingerprint(session);
  if (const auto at = known_.find(print); at != known_.end() && fs::exists(at->second, ignored))
    return std::nullopt;
  const bool own = own_.contains(print);
  const fs::path folder = session.InstallFolder;
  fs::path path = folder / "BeforeRemote.cal";
  // A file that another program has written since is kept.
  if (own && !ownFile_.empty() && fs::last_write_time(ownFile_, ignored) == ownTime_)
    path = ownFile_;
  else
    for (int n = 2; fs::exists(path, ignored); ++n)
      path = folder / ("BeforeRemote-" + std::to_string(n) + ".cal");
  if (const Result<Done> saved = SaveSession(path.string(), session); !saved)
    return Error{kMassStorage, saved.Why().Text()};
  std::erase_if(known_, [&path](const auto& kept) { return kept.second == path; });
  known_[print] = path.string();
  if (own) {
    ownFile_ = path.string();
    ownTime_ = fs::last_write_time(path, ignored);
  }
  return std::nullopt;
}

// The calibration in force is a client's.
void RemoteCalibration::NoteOwn() {
  own_.insert(Fingerprint(remote_.session()));
}

void RemoteCalibration::Apply(Client* by) {
  Session& session = remote_.session();
  const auto refuse = [by](const Error& error) {
    if (by != nullptr) by->Push(error);
  };
  if (std::optional<Error> kept = KeepOld(); kept) return refuse(*kept);
  PlanBorrowed borrowed(remote_, collected_->Plan);
  if (!borrowed.Loaded()) return;
  borrowed.Keep();
  session.Terms = collected_->Terms;
  session.Standards = collected_->Standards;
  session.Cal.IsoMethod = IsoMethod::Basic;
  if (*method_ != CalChoice::S11) session.Cal.CalThruReady = true;
  session.Cal.IsoSweepDone = collected_->Done[kIso];
  ApplyCalibration(session, remote_.host(), *method_, collected_->Done[kIso]);
  NoteOwn();
  session.Steps = {};
  collected_ = nullptr;  // consumed
  method_.reset();
  ShowCalibration();
  ReportLog(session, remote_.host(), LogCalibration(session, remote_.host().loop));
}

// Updates all windows and the picture for the new calibration.
void RemoteCalibration::ShowCalibration() {
  Session& session = remote_.session();
  ShowStep(session, remote_.host().windows);
  TakeActivePlane(session, remote_.host().windows);
  remote_.controller().graphs().RedrawAll(true);
}

// ---- terms -------------------------------------------------------------------------------------

std::optional<std::vector<double>> RemoteCalibration::Read(const TermName& term) const {
  const Session& session = remote_.session();
  const std::optional<SweepMode> mode = ModeInForce(session.Cal);
  if (!mode) return std::nullopt;
  const int count = session.Plan.NumPoints;
  if (KindHas(*mode, term.Index)) {
    // The kinds that correct only one direction store their isolation where it is subtracted.
    const bool plain = *mode != SweepMode::All && term.Name == "ex";
    return Pairs(plain ? session.Terms.Forward.EX : ArrayOfTerm(session.Terms, term.Index), count);
  }
  std::vector<double> pairs(static_cast<std::size_t>(2 * count), 0.0);
  for (std::size_t i = 0; i < pairs.size(); i += 2) pairs[i] = IdealAt(term.Name)[0].re;
  return pairs;
}

std::optional<Error> RemoteCalibration::Write(Client& by, const TermName& term,
                                              std::span<const double> pairs) {
  if (remote_.Sweeping()) return Error{kSettingsConflict, "a sweep runs"};
  const SweepPlan plan = remote_.wanted().Plan();
  const auto wanted = static_cast<std::size_t>(2 * plan.NumPoints);
  if (pairs.size() < wanted) return Error{kMissingParameter, "two numbers for each point"};
  if (pairs.size() > wanted) return Error{kTooManyParameters, "two numbers for each point"};
  constexpr double kLargest = 1e30;
  if (std::ranges::any_of(pairs, [](double x) { return !(std::abs(x) <= kLargest); }))
    return Error{kOutOfRange, "a term is not a finite number"};
  if (IsTracking(term) && HasZero(pairs))
    return Error{kOutOfRange, "a tracking term must not be 0"};
  std::shared_ptr<Written>& written = written_[by.Number()];
  const bool otherPlan = written != nullptr && (!SameGrid(plan, written->Plan) ||
                                                plan.Port1Level != written->Plan.Port1Level);
  std::optional<Error> dropped;
  if (otherPlan)
    dropped = {kSettingsConflict, std::to_string(std::ranges::count(written->Have, true)) +
                                      " terms of another plan are dropped; a new set begins"};
  if (written == nullptr || otherPlan || written->Have[term.Index]) {
    written = std::make_shared<Written>();
    written->Plan = plan;
  }
  ComplexArray& array = ArrayOfTerm(written->Terms, term.Index);
  for (int i = 0; i < plan.NumPoints; ++i) {
    const auto k = static_cast<std::size_t>(2 * i);
    array.Set(i, {pairs[k], pairs[k + 1]});
  }
  written->Have[term.Index] = true;
  if (!std::ranges::all_of(written->Have, std::identity())) return dropped;
  remote_.StartWork(
      by, [this, whole = std::move(written)](Client* client) { PutWritten(client, *whole); });
  written_.erase(by.Number());
  return std::nullopt;
}

void RemoteCalibration::PutWritten(Client* by, const Written& written) {
  Session& session = remote_.session();
  if (std::optional<Error> kept = KeepOld(); kept) {
    if (by != nullptr) by->Push(*kept);
    return;
  }
  PlanBorrowed borrowed(remote_, written.Plan);
  if (!borrowed.Loaded()) return;
  borrowed.Keep();
  session.Terms = written.Terms;
  session.Terms.Forward.EX = session.Terms.IsoFwd0;
  session.Terms.Reverse.EX = session.Terms.IsoRev0;
  session.Cal.CalThruReady = true;
  session.Cal.IsoMethod = IsoMethod::Basic;
  PutTermsInForce(session, remote_.host(), SweepMode::All);
  session.CalMade = {};  // made elsewhere, time unknown
  ShowCalStatus(session, remote_.host().windows);
  NoteOwn();
  ShowCalibration();
  ReportLog(session, remote_.host(), LogCalibration(session, remote_.host().loop));
}

std::optional<Error> RemoteCalibration::Preset(Client& by) {
  if (remote_.session().Cal.AnyKind() && !TermsAreIdeal(remote_.session()))
    return Error{kSettingsConflict, "a calibration is in force"};
  if (remote_.session().Id.PortNumber == 0) return Error{kHardware, "no instrument"};
  if (remote_.Sweeping()) return Error{kSettingsConflict, "a sweep runs"};
  remote_.StartWork(by, [this](Client* client) { PutIdeal(client); });
  return std::nullopt;
}

void RemoteCalibration::PutIdeal(Client*) {
  Session& session = remote_.session();
  PlanBorrowed borrowed(remote_, remote_.wanted().Plan());
  if (!borrowed.Loaded()) return;
  borrowed.Keep();
  session.Terms = {};
  for (PortTerms* port : {&session.Terms.Forward, &session.Terms.Reverse}) {
    port->ERT.Fill({1, 0});
    port->ETT.Fill({1, 0});
  }
  session.Cal.CalThruReady = true;
  session.Cal.IsoMethod = IsoMethod::Basic;
  PutTermsInForce(session, remote_.host(), SweepMode::All);
  session.CalMade = {};  // made elsewhere, time unknown
  // They are equal at every frequency, so any plan of the instrument is inside their range.
  PlanGrid& base = session.Plan.SavedPlan;
  base.StartFreq = kLowestFreq;
  base.StopFreq = kHighestFreq;
  base.NumPoints = kPointCounts.front();
  base.StepFreq = (kHighestFreq - kLowestFreq) / (base.NumPoints - 1);
  ShowCalStatus(session, remote_.host().windows);
  ShowCalibration();
}

}  // namespace qk::scpi
