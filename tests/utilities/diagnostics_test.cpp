// SPDX-License-Identifier: MIT
// Each verdict of the self-test made to fail alone, on the simulated instrument.
#include "utilities/diagnostics.h"

#include "sim/instrument_state.h"
#include "utilities/power_fixture.h"

namespace qk::test {
namespace {

constexpr const char* kConnect =
    "Diagnostics|Connect Port1 to Port2 with Low Loss Cable|information|ok";
constexpr const char* kRemove = "Diagnostics|Remove Connection from Port1 to Port2|information|ok";

struct SelfTest : PowerFixture {
  SelfTest() {
    session->Plan.Port1Level = -5;
    fake.OnAsk = [this](const Message& message) { instrument.FollowPrompt(message.Text); };
    port.TakeWritten();
  }
  DiagnosticVerdicts Run() {
    shown.clear();
    return RunDiagnostics(rig, [this](const DiagnosticVerdicts& now) { shown.push_back(now); });
  }
  std::vector<DiagnosticVerdicts> shown;
};

std::vector<std::string> Texts(const DiagnosticVerdicts& v) {
  return {v.Synthesisers, v.TestLevels, v.ReceiverLevels, v.Crosstalk, v.DcOffset};
}

TEST(Diagnostics, FindAHealthyInstrumentHealthy) {
  SelfTest wire;
  EXPECT_EQ(Texts(wire.Run()), std::vector<std::string>(5, " OK"));
  EXPECT_EQ(wire.fake.MessageTexts(), (std::vector<std::string>{kConnect, kRemove}));
  EXPECT_EQ(wire.fake.Beeps, 2);
  EXPECT_EQ(Texts(wire.shown.front()), std::vector<std::string>(5, " -"));
}

TEST(Diagnostics, LeaveLevelAveragesAndPlanAsTheyWere) {
  SelfTest wire;
  EXPECT_TRUE(PutAveragesInForce(wire.rig, 7));
  const auto& inside = wire.instrument.state().Commands;
  const auto before = inside.SweepRam();
  EXPECT_TRUE(SendLevelTable(wire.rig));
  const auto levelled = inside.SweepRam();
  wire.Run();
  EXPECT_EQ(inside.SweepRam(), levelled);
  EXPECT_NE(before, levelled) << "the test's plan was loaded at 0 dBm";
  EXPECT_EQ(inside.Averages(), 7);
  EXPECT_EQ(wire.session->Averaging.Averages, 7);
  EXPECT_EQ(wire.session->Plan.Port1Level, -5);
  EXPECT_FALSE(wire.session->Flags.LevelChangeDue);
}

// What a self-test says on the wire, from the plan of the bench at -5 dBm.
struct WireOfSelfTest {
  SelfTest& Bench;
  Bytes Sent;

  void Text(std::string_view text) { Sent.insert(Sent.end(), text.begin(), text.end()); }
  void Add(int byte) { Sent.push_back(static_cast<std::uint8_t>(byte)); }
  // 22 bytes into the record of point 0, behind the count of points.
  void Record(double f, int level) {
    Bench.session->Plan.Port1Level = static_cast<std::int16_t>(level);
    BuildPointRecord(*Bench.session, f, 0);
    Text("QW");
    for (const int byte : {22, 0, 2}) Add(byte);
    for (std::size_t j = 0; j < 22; ++j) Add(Bench.session->FreqTable[3 + j]);
  }
  void Wave() {
    Text("QZ");
    Add(0);
  }
  void Synth(double f, int level) {
    Record(f, level);
    Wave();
    Text("QY9");
    Record(Bench.session->Plan.StartFreq, level);
  }
  void LevelInForce(int level) {
    Bench.session->Plan.Port1Level = static_cast<std::int16_t>(level);
    Text("QN");
    for (int i = 0; i < 51; ++i)
      Add(LookupLevelCodes(*Bench.session, Bench.session->Plan.Frequency(i)).Code1);
    Wave();
  }
  void Channel(std::string_view i, std::string_view q) {
    Text("QY8");
    Add(128);
    Text(i);
    Text(q);
    Text("Y8");
    Add(7);
  }
  void Test() { Channel("Y2", "Y3"); }
};

TEST(Diagnostics, SayThisOnTheWire) {
  SelfTest wire;
  EXPECT_TRUE(PutAveragesInForce(wire.rig, 7));
  EXPECT_TRUE(SendLevelTable(wire.rig));
  WireOfSelfTest expected{wire, {}};
  for (const double f : {3e6, 1.5e9, 3e9}) expected.Synth(f, -5);
  for (int level = -20; level <= -2; level += 3) {
    expected.LevelInForce(level);
    expected.Test();
  }
  expected.LevelInForce(-5);
  expected.LevelInForce(0);
  for (const double f : {3e6, 1e9, 3e9}) {
    expected.Synth(f, 0);
    expected.Test();
    expected.Channel("Y0", "Y1");
  }
  expected.LevelInForce(-5);
  for (const double f : {3e6, 1e9, 3e9}) {
    expected.Synth(f, -5);
    expected.Test();
  }
  wire.port.TakeWritten();
  wire.Run();
  EXPECT_EQ(wire.port.TakeWritten(), expected.Sent);
}

TEST(Diagnostics, AStepOfExactlyOneOrFiveDecibelsPasses) {
  EXPECT_TRUE(LevelStepHolds(-15, -20));
  EXPECT_TRUE(LevelStepHolds(-19, -20));
  EXPECT_FALSE(LevelStepHolds(-14.9999, -20));
  EXPECT_FALSE(LevelStepHolds(-19.0001, -20));
}

struct Case {
  const char* Fault;
  int Verdict;  // the one that fails
  const char* Text;
};

class DiagnosticsVerdict : public ::testing::TestWithParam<Case> {};

TEST_P(DiagnosticsVerdict, FailsAlone) {
  SelfTest wire;
  wire.Bench(GetParam().Fault);
  std::vector<std::string> expected(5, " OK");
  expected[static_cast<std::size_t>(GetParam().Verdict)] = GetParam().Text;
  EXPECT_EQ(Texts(wire.Run()), expected) << GetParam().Fault;
}

// A level's code at the plan's start of 100 MHz is 26 higher by 1 than the level: code 15 is -11
// dBm. A code off by 4 dB spoils the step to it and the one from it; the later is reported.
INSTANTIATE_TEST_SUITE_P(
    Each, DiagnosticsVerdict,
    ::testing::Values(Case{"fault nolock at 1.5e9", 0, "Lock Failure"},
                      Case{"fault reference -14 at 3e6", 2, "> Limit (REF, 3MHz)"},
                      Case{"fault reference -14 at 1e9", 2, "> Limit (REF, 1GHz)"},
                      Case{"fault reference -14 at 3e9", 2, "> Limit (REF, 3GHz)"},
                      Case{"fault test -5 at 3e6", 2, "> Limit (3MHz)"},
                      Case{"fault test -5 at 1e9", 2, "> Limit (1GHz)"},
                      Case{"fault test -5 at 3e9", 2, "> Limit (3GHz)"},
                      Case{"fault crosstalk -55 at 3e6", 3, "> Limit (3MHz)"},
                      Case{"fault crosstalk -55 at 1e9", 3, "> Limit (1GHz)"},
                      Case{"fault crosstalk -50 at 3e9", 3, "> Limit (3GHz)"}));

// Without a lock there is no signal either.
TEST(Diagnostics, ALockThatFailsWhereLevelsAreReadSpoilsTheseToo) {
  SelfTest wire;
  wire.Bench("fault nolock at 3e9");
  const DiagnosticVerdicts verdicts = wire.Run();
  EXPECT_EQ(verdicts.Synthesisers, "Lock Failure");
  EXPECT_EQ(verdicts.TestLevels, " OK");
  EXPECT_EQ(verdicts.ReceiverLevels, "> Limit (REF, 3GHz)");
}

TEST(Diagnostics, ALevelStepThatIsOffIsReported) {
  SelfTest wire;
  wire.session->Plan.Port1Level = -11;
  const int code = LookupLevelCodes(*wire.session, wire.session->Plan.StartFreq).Code1;
  wire.session->Plan.Port1Level = -5;
  wire.Bench("fault level " + std::to_string(code) + " 4");
  EXPECT_EQ(Texts(wire.Run()),
            (std::vector<std::string>{" OK", "> Limit (-8)", " OK", " OK", " OK"}));
  std::vector<std::string> levels;
  for (const DiagnosticVerdicts& v : wire.shown)
    if (levels.empty() || levels.back() != v.TestLevels) levels.push_back(v.TestLevels);
  EXPECT_EQ(levels, (std::vector<std::string>{" -", " OK", "> Limit (-11)", "> Limit (-8)"}))
      << "the later failure takes the place of the earlier one";
}

TEST(Diagnostics, ADcOffsetBeyond35MillivoltsIsReportedAndTheRunGoesOn) {
  for (const bool quadrature : {false, true}) {
    SelfTest wire;
    (quadrature ? wire.session->Receiver.DcOffsetQ : wire.session->Receiver.DcOffsetI) = 0.04;
    const DiagnosticVerdicts verdicts = wire.Run();
    EXPECT_EQ(verdicts.DcOffset, "Exceeds Limit");
    EXPECT_EQ(verdicts.Synthesisers, " OK");
  }
  SelfTest wire;
  wire.session->Receiver.DcOffsetI = -0.035;
  EXPECT_EQ(wire.Run().DcOffset, " OK") << "the limit itself passes";
  wire.Bench("offsets 38 -3");
  EXPECT_TRUE(MeasureOffsets(wire.rig));
  EXPECT_TRUE(MeasureOffsets(wire.rig));
  EXPECT_EQ(wire.Run().DcOffset, " OK") << "the filter has not followed yet";
}

TEST(Diagnostics, AMissingCableFailsTheLevels) {
  SelfTest wire;
  wire.Bench("follow off");
  wire.Bench("port1 nothing");
  const DiagnosticVerdicts verdicts = wire.Run();
  EXPECT_EQ(verdicts.ReceiverLevels, "> Limit (3GHz)");
  EXPECT_EQ(verdicts.Crosstalk, " OK");
}

// Dozens of exchanges fail: each message comes once, the sequence runs to its end, and what the
// line left unsure goes out again later.
TEST(Diagnostics, ALostLinkIsReportedOnceAndTheRestStillRuns) {
  SelfTest wire;
  wire.fake.OnAsk = [&](const Message& message) {
    if (message.Text.starts_with("Connect")) wire.Bench("fault unplugged");
  };
  const DiagnosticVerdicts verdicts = wire.Run();
  EXPECT_EQ(wire.fake.MessageTexts(),
            (std::vector<std::string>{kConnect, "Port 1 Level Set|No Response|exclamation|ok",
                                      "Synth Test|No Response|exclamation|ok", kRemove}));
  EXPECT_EQ(verdicts.Synthesisers, " OK");
  EXPECT_EQ(verdicts.Crosstalk, "No Response");
  EXPECT_EQ(verdicts.DcOffset, " OK");
  EXPECT_EQ(wire.session->Plan.Port1Level, -5);
  EXPECT_FALSE(wire.link.Holds().Level.Is(-5)) << "not known any more";
}

// The level of 1 of a failed link check fails a test and never passes one.
TEST(Diagnostics, OnADeadInstrumentEachPartWaitsOnceAndNothingPasses) {
  SelfTest wire;
  wire.Bench("fault silence");
  wire.StartWatch();
  const DiagnosticVerdicts verdicts = wire.Run();
  EXPECT_LT(wire.ElapsedMs(), 13'000);
  EXPECT_EQ(Texts(verdicts), (std::vector<std::string>{"No Response", "> Limit (-2)",
                                                       "> Limit (3GHz)", "No Response", " OK"}));
  EXPECT_EQ(wire.fake.MessageTexts(),
            (std::vector<std::string>{"Port 1 Level Set|No Response|exclamation|ok",
                                      "Synth Test|No Response|exclamation|ok", kConnect, kRemove}));
  for (const DiagnosticVerdicts& now : wire.shown) {
    EXPECT_NE(now.Synthesisers, " OK");
    EXPECT_NE(now.Crosstalk, " OK");
  }
}

TEST(Diagnostics, AnInstrumentThatIsBackIsTestedFromTheNextPartOn) {
  SelfTest wire;
  wire.Bench("fault silence");
  wire.fake.OnAsk = [&](const Message& message) {
    wire.instrument.FollowPrompt(message.Text);
    if (message.Text.starts_with("Remove")) wire.Bench("fault none");
  };
  EXPECT_EQ(wire.Run().Crosstalk, " OK");
}

TEST(Diagnostics, AnUnansweredLockQuestionIsNoLockFailureAndEndsAfterTwoSeconds) {
  SelfTest wire;
  // "Q", "Q" and "Q" of the first test are answered, the lock byte is not.
  wire.Bench("fault cut after 3");
  EXPECT_EQ(wire.Run().Synthesisers, "No Response");
  EXPECT_EQ(wire.fake.MessageTexts()[0], "Synth Test|No Response|exclamation|ok");
}

// A verdict is good from its beginning until a check fails: the rest was not tested.
TEST(Diagnostics, EndedInTheMiddleOfItsChecksAVerdictIsNotGood) {
  int turns = 0;
  {
    SelfTest wire;
    RunDiagnostics(
        wire.rig, [](const DiagnosticVerdicts&) {}, [&] { return ++turns > 0; });
  }
  std::vector<std::string> good;
  for (int end = 1; end <= turns; ++end) {
    SelfTest wire;
    int left = end;
    const DiagnosticVerdicts verdicts = RunDiagnostics(
        wire.rig, [&](const DiagnosticVerdicts& now) { wire.shown.push_back(now); },
        [&] { return --left > 0; });
    EXPECT_EQ(Texts(wire.shown.back()), Texts(verdicts));
    std::string signs;
    for (const std::string& verdict : Texts(verdicts)) signs += verdict == " OK" ? '+' : '-';
    if (good.empty() || good.back() != signs) good.push_back(signs);
  }
  EXPECT_EQ(good, (std::vector<std::string>{"-----", "+----", "++---", "+++--"}));
}

// Each reply in turn lacks a byte, on a healthy instrument.
TEST(Diagnostics, AByteThatIsLostIsNoVerdictOnTheHardware) {
  constexpr int kReplies = 177;  // the bytes of a run
  int unseen = 0;
  for (int at = 0; at < kReplies; ++at) {
    SelfTest wire;
    wire.Bench("fault drop at " + std::to_string(at));
    bool told = false;
    for (const std::string& verdict : Texts(wire.Run())) {
      EXPECT_TRUE(verdict == " OK" || verdict == "No Response") << verdict << ", byte " << at;
      told = told || verdict == "No Response";
    }
    for (const std::string& message : wire.fake.MessageTexts())
      told = told || message.find("No Response") != std::string::npos;
    unseen += told ? 0 : 1;
  }
  EXPECT_LT(unseen, 12) << "replies that only pace";
}

TEST(Diagnostics, AfterASampleThatDoesNotComeTheAveragesAreNotKnownToBeHeld) {
  SelfTest wire;
  wire.fake.OnAsk = [&](const Message& message) {
    wire.instrument.FollowPrompt(message.Text);
    // Level table, link check, averages' check: three signs of life, then silence.
    if (message.Text.starts_with("Connect")) wire.Bench("fault cut after 3");
  };
  wire.Run();
  EXPECT_FALSE(wire.link.Holds().Averages.Is(wire.session->Averaging.Averages));
}

}  // namespace
}  // namespace qk::test
