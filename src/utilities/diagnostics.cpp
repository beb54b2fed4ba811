// SPDX-License-Identifier: MIT
#include "utilities/diagnostics.h"

#include <array>
#include <cmath>
#include <initializer_list>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

#include "core/status.h"
#include "core/text.h"
#include "link/command_set.h"
#include "sweep/receiver.h"
#include "sweep/up_to_date.h"
#include "utilities/continuous_wave.h"
#include "utilities/port_level.h"

namespace qk {

namespace {

constexpr const char* kOk = " OK";
constexpr const char* kTitle = "Diagnostics";
constexpr Complaint kSynthComplaint{"Synth Test"};
constexpr int kAverages = 128;
constexpr double kOffsetLimit = 0.035;  // volts
// The level used if the link check failed.
constexpr double kNoLevel = 1;
constexpr const char* kNoResponse = "No Response";
// After this many consecutive link checks without an answer the line is considered dead; a single
// one may have lost its byte.
constexpr int kDeadAfter = 2;

constexpr std::array<double, 3> kSynthesiserTests{3e6, 1.5e9, 3e9};  // Hz

// Receiver levels at 0 dBm in dB relative to 1 volt, and the highest crosstalk, at three
// frequencies.
struct ReceiverRow {
  double F;
  const char* Name;
  double Expected;
  double HighestCrosstalk;
};
constexpr std::array<ReceiverRow, 3> kReceiverRows{
    {{3e6, "3MHz", 0, -70}, {1e9, "1GHz", -2.3, -67}, {3e9, "3GHz", -6.5, -65}}};
constexpr double kTestTolerance = 4, kReferenceTolerance = 12;  // dB

constexpr int kFirstLevel = -20, kLastLevel = -2, kLevelStep = 3;  // dBm
constexpr double kStepTolerance = 2;                               // dB

// Shows each information message only once: a dead link fails dozens of exchanges.
class EachOnce : public Prompts {
 public:
  explicit EachOnce(Prompts& prompts) : prompts_(prompts) {}
  Answer Ask(const Message& message) override {
    if (message.Choice == Buttons::Ok && !shown_.insert({message.Title, message.Text}).second)
      return Answer::Ok;
    return prompts_.Ask(message);
  }
  std::optional<std::string> Choose(const Dialog& dialog) override {
    return prompts_.Choose(dialog);
  }

 private:
  Prompts& prompts_;
  std::set<std::pair<std::string, std::string>> shown_;
};

// One reading of a receiver channel.
struct Level {
  double Db = kNoLevel;  // relative to 1 volt
  bool Read = false;
  bool Judged = true;  // false if a byte was lost: the reading is then not evaluated
};

class SelfTest {
 public:
  SelfTest(Rig& rig, const VerdictsShown& shown, const MayContinue& mayContinue)
      : rig_(rig), shown_(shown), mayGoOn_(mayContinue) {}

  DiagnosticVerdicts Run() {
    shown_(verdicts_);
    // A failure is shown; the sequence continues.
    if (!BringUpToDate(rig_, kSynthComplaint) && rig_.session.Flags.ReplyTimedOut) ++unanswered_;
    BeginStep();
    TestSynthesisers();
    AskToConnect("Connect Port1 to Port2 with Low Loss Cable");
    BeginStep();
    TestLevelSteps();
    BeginStep();
    TestReceiverLevels();
    AskToConnect("Remove Connection from Port1 to Port2");
    BeginStep();
    TestCrosstalk();
    TestOffsets();
    return verdicts_;
  }

 private:
  // False once the user has ended the test: nothing more is sent, asked or evaluated.
  bool GoesOn() {
    ended_ = ended_ || !mayGoOn_();
    return !ended_;
  }

  // A dead line is checked once per step, so that an instrument that is back is tested again; the
  // rest of the step fails without another wait.
  void BeginStep() {
    if (unanswered_ >= kDeadAfter) unanswered_ = kDeadAfter - 1;
  }
  bool LineIsDead() const { return unanswered_ >= kDeadAfter; }
  bool Answered(bool answered) {
    unanswered_ = answered ? 0 : unanswered_ + 1;
    return answered;
  }

  void AskToConnect(const char* text) {
    if (!GoesOn()) return;
    rig_.host.windows.Beep();
    rig_.host.prompts.AskToConnect(kTitle, text);
  }

  void Show(std::string DiagnosticVerdicts::*verdict, std::string text) {
    if (ended_) return;
    verdicts_.*verdict = std::move(text);
    shown_(verdicts_);
  }

  // Does not replace a failure that was found.
  void ShowNoResponse(std::string DiagnosticVerdicts::*verdict) {
    const std::string& shown = verdicts_.*verdict;
    if (shown == kOk || shown == DiagnosticVerdicts().*verdict) Show(verdict, kNoResponse);
  }

  // All checks of a verdict are through, unless the user has ended the test: what was taken for
  // good before is then untested.
  void EndChecks(std::string DiagnosticVerdicts::*verdict) {
    if (!ended_ || verdicts_.*verdict != kOk) return;
    verdicts_.*verdict = DiagnosticVerdicts().*verdict;
    shown_(verdicts_);
  }

  // The lock byte at a frequency; nothing when the instrument does not answer. Its wave is held on.
  std::optional<int> TestSynth(double F) {
    if (!GoesOn()) return std::nullopt;
    if (LineIsDead()) {
      rig_.host.prompts.ShowMessage(kSynthComplaint.Title, kSynthComplaint.NoAnswer,
                                    kSynthComplaint.Mark);
      return std::nullopt;
    }
    std::optional<int> lock;
    held_ = Answered(HoldContinuousWave(rig_, kSynthComplaint, F));
    if (held_) {
      const auto reply =
          Exchange(rig_, kSynthComplaint, command::kLockStatus, 1, command::kReadingTimeout);
      if (reply) lock = reply->front();
    }
    // A failure has been shown; the next exchange shows it again if it persists.
    if (!LineIsDead()) Answered(RestoreFirstPoint(rig_, kSynthComplaint));
    return lock;
  }

  // A channel, from two samples of 128 averages.
  Level ReadChannel(std::string_view inPhase, std::string_view quadrature) {
    if (!GoesOn()) return {};
    rig_.link.EnsurePortOpen();
    if (LineIsDead()) return {};
    if (!Answered(rig_.link.LinkCheck())) return {.Judged = LineIsDead()};
    SendAverages(kAverages);
    const auto i = ReadSample(inPhase);
    const auto q = ReadSample(quadrature);
    SendAverages(rig_.session.Averaging.Averages);
    if (!i || !q) rig_.link.ForgetState();  // the instrument may still sum 128 readings
    if (!i || !q || !levelled_ || !held_) return {.Judged = false};
    return {20 * Log10Floored(Magnitude(*i, *q)), true};
  }

  void SendAverages(int count) {
    rig_.link.SendCommand(command::SetAverages(count));
    rig_.link.Holds().Averages.Set(count);
  }

  std::optional<double> ReadSample(std::string_view sample) {
    const auto b = SendAndRead(rig_, sample, command::kSampleLength, command::kSampleTimeout);
    if (!b) return std::nullopt;
    // Intentional: the Q offset is subtracted from both samples, for the reference channel too.
    return VoltsFromCounts((*b)[0], (*b)[1], (*b)[2], kAverages) - rig_.session.Receiver.DcOffsetQ;
  }

  Level Noted(const Level& level) {
    if (!level.Read) Show(&DiagnosticVerdicts::Crosstalk, kNoResponse);
    return level;
  }
  Level TestLevel() { return Noted(ReadChannel(command::kTestI, command::kTestQ)); }
  Level TestReference() { return Noted(ReadChannel(command::kReferenceI, command::kReferenceQ)); }

  // The verdict on readings of which some may be missing. The level used after a failed link check
  // may fail a test but never passes one.
  void Judge(std::string DiagnosticVerdicts::*verdict, std::initializer_list<Level> levels,
             bool fails, std::string failure) {
    bool read = true, judged = true;
    for (const Level& level : levels) {
      read = read && level.Read;
      judged = judged && level.Judged;
    }
    if (fails && judged)
      Show(verdict, std::move(failure));
    else if (!read)
      ShowNoResponse(verdict);
  }

  // Sets the level of all points, and of the output at point 0.
  void PutLevelInForce() {
    if (!GoesOn() || LineIsDead()) return;
    // A failure has been shown; the next sweep sends it again.
    levelled_ = held_ = Answered(SendLevelTable(rig_));
    if (!levelled_) return;
    Answered(rig_.link.LinkCheck());
    rig_.link.SendCommand(command::ContinuousWave());
  }

  void TestSynthesisers() {
    for (const double F : kSynthesiserTests) {
      const std::optional<int> lock = TestSynth(F);
      if (!lock)
        ShowNoResponse(&DiagnosticVerdicts::Synthesisers);
      else if (*lock == 0)
        Show(&DiagnosticVerdicts::Synthesisers, "Lock Failure");
      else if (F == kSynthesiserTests.front())
        Show(&DiagnosticVerdicts::Synthesisers, kOk);
    }
    EndChecks(&DiagnosticVerdicts::Synthesisers);
  }

  void TestLevelSteps() {
    SweepPlan& plan = rig_.session.Plan;
    {
      const Port1LevelKept kept(plan);
      plan.Port1Level = kFirstLevel;
      PutLevelInForce();
      Level previous = TestLevel();
      Show(&DiagnosticVerdicts::TestLevels, kOk);
      for (int level = kFirstLevel + kLevelStep; level <= kLastLevel; level += kLevelStep) {
        plan.Port1Level = static_cast<std::int16_t>(level);
        PutLevelInForce();
        const Level value = TestLevel();
        Judge(&DiagnosticVerdicts::TestLevels, {value, previous},
              !LevelStepHolds(value.Db, previous.Db),
              "> Limit (" + FormatNumber(level, "#0") + ")");
        previous = value;
      }
      EndChecks(&DiagnosticVerdicts::TestLevels);
    }
    PutLevelInForce();
  }

  void TestReceiverLevels() {
    SweepPlan& plan = rig_.session.Plan;
    {
      const Port1LevelKept kept(plan);
      plan.Port1Level = 0;
      PutLevelInForce();
      Show(&DiagnosticVerdicts::ReceiverLevels, kOk);
      for (const ReceiverRow& row : kReceiverRows) {
        TestSynth(row.F);  // its lock has already been evaluated
        const std::string name = row.Name;
        const Level test = TestLevel();
        Judge(&DiagnosticVerdicts::ReceiverLevels, {test},
              std::abs(test.Db - row.Expected) > kTestTolerance, "> Limit (" + name + ")");
        const Level reference = TestReference();
        Judge(&DiagnosticVerdicts::ReceiverLevels, {reference},
              std::abs(reference.Db - row.Expected) > kReferenceTolerance,
              "> Limit (REF, " + name + ")");
      }
      EndChecks(&DiagnosticVerdicts::ReceiverLevels);
    }
    PutLevelInForce();
  }

  void TestCrosstalk() {
    if (!levelled_) PutLevelInForce();
    for (const ReceiverRow& row : kReceiverRows) {
      TestSynth(row.F);
      const Level level = ReadChannel(command::kTestI, command::kTestQ);
      if (!level.Read)
        Show(&DiagnosticVerdicts::Crosstalk, kNoResponse);
      else if (level.Db > row.HighestCrosstalk)
        Show(&DiagnosticVerdicts::Crosstalk, "> Limit (" + std::string(row.Name) + ")");
      else if (row.F == kReceiverRows.front().F)
        Show(&DiagnosticVerdicts::Crosstalk, kOk);
    }
    EndChecks(&DiagnosticVerdicts::Crosstalk);
  }

  void TestOffsets() {
    Show(&DiagnosticVerdicts::DcOffset, kOk);
    const ReceiverState& receiver = rig_.session.Receiver;
    for (const double offset : {receiver.DcOffsetI, receiver.DcOffsetQ})
      if (std::abs(offset) > kOffsetLimit) Show(&DiagnosticVerdicts::DcOffset, "Exceeds Limit");
  }

  Rig& rig_;
  const VerdictsShown& shown_;
  const MayContinue& mayGoOn_;
  bool ended_ = false;
  int unanswered_ = 0;                  // consecutive link checks without an answer
  bool levelled_ = true, held_ = true;  // level and output of the reading were sent
  DiagnosticVerdicts verdicts_;
};

}  // namespace

bool LevelStepHolds(double valueDb, double previousDb) {
  return !(std::abs(valueDb - previousDb - kLevelStep) > kStepTolerance);
}

DiagnosticVerdicts RunDiagnostics(Rig& rig, const VerdictsShown& shown,
                                  const MayContinue& mayContinue) {
  EndGeneratorWave(rig.session, rig.host.windows);
  EachOnce once(rig.host.prompts);
  Host host{once, rig.host.windows, rig.host.loop};
  Rig quiet{rig.session, host, rig.link};
  return SelfTest(quiet, shown, mayContinue).Run();
}

}  // namespace qk
