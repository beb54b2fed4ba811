// SPDX-License-Identifier: MIT
#include "utilities/diagnostics.h"

#include <array>
#include <cmath>
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
// What a level reads as when the instrument did not answer.
constexpr double kNoLevel = 1;

constexpr std::array<double, 3> kSynthesiserTests{3e6, 1.5e9, 3e9};  // Hz

// Receiver levels at 0 dBm in dB over 1 volt, and the highest crosstalk, at three frequencies.
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

// Lets each message that only informs through once: a dead link fails dozens of exchanges.
class EachOnce : public Prompts {
 public:
  explicit EachOnce(Prompts& prompts) : prompts_(prompts) {}
  Answer Ask(const Message& message) override {
    if (message.Choice == Buttons::Ok && !told_.insert({message.Title, message.Text}).second)
      return Answer::Ok;
    return prompts_.Ask(message);
  }
  std::optional<std::string> Choose(const Dialog& dialog) override {
    return prompts_.Choose(dialog);
  }

 private:
  Prompts& prompts_;
  std::set<std::pair<std::string, std::string>> told_;
};

class SelfTest {
 public:
  SelfTest(Rig& rig, const VerdictsShown& shown, const MayGoOn& mayGoOn)
      : rig_(rig), shown_(shown), mayGoOn_(mayGoOn) {}

  DiagnosticVerdicts Run() {
    shown_(verdicts_);
    std::ignore = BringUpToDate(rig_, kSynthComplaint);  // told; the sequence runs on all the same
    TestSynthesisers();
    AskToConnect("Connect Port1 to Port2 with Low Loss Cable");
    TestLevelSteps();
    TestReceiverLevels();
    AskToConnect("Remove Connection from Port1 to Port2");
    TestCrosstalk();
    TestOffsets();
    return verdicts_;
  }

 private:
  // False once the user has ended the test: nothing more is sent, asked or judged.
  bool GoesOn() {
    ended_ = ended_ || !mayGoOn_();
    return !ended_;
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

  // The lock byte at a frequency, 0 when the instrument does not answer. Its wave is held on.
  int TestSynth(double F) {
    int lock = 0;
    if (!GoesOn()) return lock;
    if (HoldContinuousWave(rig_, kSynthComplaint, F)) {
      const auto reply =
          Exchange(rig_, kSynthComplaint, command::kLockStatus, 1, command::kReadingTimeout);
      if (reply) lock = reply->front();
    }
    // A failure has been told; the next exchange tells it again if it stands.
    std::ignore = RestoreFirstPoint(rig_, kSynthComplaint);
    return lock;
  }

  // Level of a channel in dB over 1 volt, by two samples of 128 averages.
  std::optional<double> ReadChannel(std::string_view inPhase, std::string_view quadrature) {
    if (!GoesOn()) return std::nullopt;
    rig_.link.EnsurePortOpen();
    if (!rig_.link.LinkCheck()) return std::nullopt;
    SendAverages(kAverages);
    const auto i = ReadSample(inPhase);
    const auto q = ReadSample(quadrature);
    SendAverages(rig_.session.Averaging.Averages);
    if (i && q) return 20 * Log10Floored(Magnitude(*i, *q));
    rig_.link.LoseTrack();  // the instrument may still add up 128
    return std::nullopt;
  }

  void SendAverages(int count) {
    rig_.link.SendCommand(command::SetAverages(count));
    rig_.link.Holds().Averages.Set(count);
  }

  std::optional<double> ReadSample(std::string_view sample) {
    const auto b = SendAndRead(rig_, sample, command::kSampleLength, command::kSampleTimeout);
    if (!b) return std::nullopt;
    // Meant: the Q offset comes off both samples, the reference channel's too.
    return VoltsFromCounts((*b)[0], (*b)[1], (*b)[2], kAverages) - rig_.session.Receiver.DcOffsetQ;
  }

  double OrNoResponse(std::optional<double> level) {
    if (!level) Show(&DiagnosticVerdicts::Crosstalk, "No Response");
    return level.value_or(kNoLevel);
  }
  double TestLevel() { return OrNoResponse(ReadChannel(command::kTestI, command::kTestQ)); }
  double TestReference() {
    return OrNoResponse(ReadChannel(command::kReferenceI, command::kReferenceQ));
  }

  // The level of all points, and the wave of point 0 at it.
  void PutLevelInForce() {
    if (!GoesOn()) return;
    std::ignore = SendLevelTable(rig_);  // told; the next sweep sends it again
    std::ignore = rig_.link.LinkCheck();
    rig_.link.SendCommand(command::ContinuousWave());
  }

  void TestSynthesisers() {
    for (const double F : kSynthesiserTests) {
      if (TestSynth(F) == 0)
        Show(&DiagnosticVerdicts::Synthesisers, "Lock Failure");
      else if (F == kSynthesiserTests.front())
        Show(&DiagnosticVerdicts::Synthesisers, kOk);
    }
  }

  void TestLevelSteps() {
    SweepPlan& plan = rig_.session.Plan;
    {
      const Port1LevelKept kept(plan);
      plan.Port1Level = kFirstLevel;
      PutLevelInForce();
      double previous = TestLevel();
      Show(&DiagnosticVerdicts::TestLevels, kOk);
      for (int level = kFirstLevel + kLevelStep; level <= kLastLevel; level += kLevelStep) {
        plan.Port1Level = static_cast<std::int16_t>(level);
        PutLevelInForce();
        const double value = TestLevel();
        if (!LevelStepHolds(value, previous))
          Show(&DiagnosticVerdicts::TestLevels, "> Limit (" + FormatNumber(level, "#0") + ")");
        previous = value;
      }
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
        TestSynth(row.F);  // its lock has been judged
        const std::string name = row.Name;
        if (std::abs(TestLevel() - row.Expected) > kTestTolerance)
          Show(&DiagnosticVerdicts::ReceiverLevels, "> Limit (" + name + ")");
        if (std::abs(TestReference() - row.Expected) > kReferenceTolerance)
          Show(&DiagnosticVerdicts::ReceiverLevels, "> Limit (REF, " + name + ")");
      }
    }
    PutLevelInForce();
  }

  void TestCrosstalk() {
    for (const ReceiverRow& row : kReceiverRows) {
      TestSynth(row.F);
      const auto level = ReadChannel(command::kTestI, command::kTestQ);
      if (!level)
        Show(&DiagnosticVerdicts::Crosstalk, "No Response");
      else if (*level > row.HighestCrosstalk)
        Show(&DiagnosticVerdicts::Crosstalk, "> Limit (" + std::string(row.Name) + ")");
      else if (row.F == kReceiverRows.front().F)
        Show(&DiagnosticVerdicts::Crosstalk, kOk);
    }
  }

  void TestOffsets() {
    Show(&DiagnosticVerdicts::DcOffset, kOk);
    const ReceiverState& receiver = rig_.session.Receiver;
    for (const double offset : {receiver.DcOffsetI, receiver.DcOffsetQ})
      if (std::abs(offset) > kOffsetLimit) Show(&DiagnosticVerdicts::DcOffset, "Exceeds Limit");
  }

  Rig& rig_;
  const VerdictsShown& shown_;
  const MayGoOn& mayGoOn_;
  bool ended_ = false;
  DiagnosticVerdicts verdicts_;
};

}  // namespace

bool LevelStepHolds(double valueDb, double previousDb) {
  return !(std::abs(valueDb - previousDb - kLevelStep) > kStepTolerance);
}

DiagnosticVerdicts RunDiagnostics(Rig& rig, const VerdictsShown& shown, const MayGoOn& mayGoOn) {
  EndGeneratorWave(rig.session, rig.host.windows);
  EachOnce once(rig.host.prompts);
  Host host{once, rig.host.windows, rig.host.loop};
  Rig quiet{rig.session, host, rig.link};
  return SelfTest(quiet, shown, mayGoOn).Run();
}

}  // namespace qk
