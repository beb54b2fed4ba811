// SPDX-License-Identifier: MIT
// Clients that wait, and what must not keep them waiting: a user who is asked, an end of input, a
// block that is too large. And what is read when the awaited sweep has not come.
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "scpi/remote.h"
#include "scpi/remote_fixture.h"
#include "trace/memory.h"

namespace qk::test {
namespace {

struct WaitingTest : testing::Test, RemoteFixture {};
struct PacedWaitingTest : testing::Test, RemoteFixture {
  PacedWaitingTest() : RemoteFixture(sim::Pace::Baud115200) {}
};

// ---- a user who is asked -----------------------------------------------------------------------

// A box halts the sweep, and the user may take long to answer: waiting clients are answered at
// once.
struct ReStartRequest : PacedWaitingTest {
  // Re-Start in the middle of what a client has begun, with this answer to the request for a reset.
  void ReStartWith(Answer answer, const std::function<void()>& whileAsked) {
    bool acted = false;
    fake.Answers = {Answer::Yes, answer};
    int asked = 0;
    fake.OnAsk = [&, whileAsked](const Message& box) {
      if (++asked != 1) return;
      EXPECT_TRUE(box.Text.starts_with("This will re-start")) << box.Text;
      RunPosted();
      whileAsked();
    };
    OnEvents = [&] {
      if (acted || session.Display.PointCounter != 20) return;
      acted = true;
      remote.PersonActs([&] { Click("Form1.ReStart"); });
    };
    Settle();
    OnEvents = {};
    fake.OnAsk = {};
    EXPECT_EQ(asked, 2);
  }
  static constexpr const char* kReStarted =
      "-200,\"Execution error;Re-Start Program: This will re-start the program and any Cal data "
      "will be lost. Continue?\"";
};

TEST_F(ReStartRequest, IsNotWaitedFor) {
  Calibrate();
  TestClient two(remote, "two");
  two.Write("*WAI;*OPC?");
  Write("INIT;*OPC?;CALC:DATA:SDATA?");
  ReStartWith(Answer::Cancel, [&] {
    EXPECT_EQ(one.Take(), "1;9.91E37");
    EXPECT_EQ(two.Take(), "1");
    Write("SYST:ERR?;ERR?");
    EXPECT_EQ(one.Take(), std::string(kReStarted) + ";-230,\"Data corrupt or stale;S11\"");
    Write("INIT;SYST:ERR?;:SENS:SWE:MODE SING;:SYST:ERR?");
    EXPECT_EQ(one.Take(), std::string(kReStarted) + ";" + kReStarted);
  });
  // It was cancelled: the sweep has gone on to its end, and ends there.
  EXPECT_TRUE(session.Flags.Idle());
  EXPECT_EQ(Errors(), kNone);
  EXPECT_EQ(Ask("INIT;*OPC?"), "1");
  EXPECT_EQ(Numbers(Ask("CALC:DATA:SDATA?")).size(), 102u);
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(ReStartRequest, LeavesTheSweepItHasGivenUpToItself) {
  Calibrate();
  Write("INIT;*OPC?");
  ReStartWith(Answer::Cancel, [&] {
    posted.push_back([&] {  // when the box has gone
      EXPECT_FALSE(session.Flags.SweepIdle);
      one.Take();
      Write("*CLS;:INIT;:SYST:ERR?;*TRG;:SYST:ERR?;:SENS:SWE:MODE SING;:SYST:ERR?");
      EXPECT_EQ(one.Take(), "-213,\"Init ignored\";-213,\"Init ignored\";-213,\"Init ignored\"");
      Write("ABOR;*OPC?");
      EXPECT_EQ(one.Take(), "");  // pending until idle
    });
  });
  EXPECT_EQ(one.Take(), "1");
  EXPECT_TRUE(session.Flags.Idle());
}

TEST_F(ReStartRequest, OfAPersonsOwnSweepHoldsNoDataBack) {
  Calibrate();
  posted.push_back([&] { Click("Form1.StartMeasurement"); });
  bool answered = false;
  TestClient two(remote, "two");
  const auto ask = [&] { two.Write("CALC:DATA:SDATA?"); };
  posted.push_back(ask);
  ReStartWith(Answer::Ok, [&] { answered = two.Take() == "9.91E37"; });
  EXPECT_TRUE(answered);
}

TEST_F(ReStartRequest, AnswersWhoWaitsForAStandardThatHasNotBegun) {
  Write("SENS:FREQ:STAR 100 MHZ;STOP 3 GHZ;:SENS:SWE:POIN 51;:SENS:CORR:COLL:METH S11");
  Write("SENS:CORR:COLL OPEN,1;*OPC?");
  fake.Answers = {Answer::Yes, Answer::Cancel};
  int asked = 0;
  fake.OnAsk = [&](const Message&) {
    if (++asked != 1) return;
    one.Take();
    Settle();
    EXPECT_EQ(one.Take(), "1");
  };
  posted.push_front([&] { remote.PersonActs([&] { Click("Form1.ReStart"); }); });
  Settle();
  fake.OnAsk = {};
  EXPECT_EQ(asked, 2);
  EXPECT_EQ(Errors(), kReStarted);
  // Cancelled: the standard is measured when it is asked for again.
  Bench("port1 open");
  EXPECT_EQ(Ask("SENS:CORR:COLL OPEN,1;*OPC?"), "1");
  EXPECT_EQ(Errors(), kNone);
}

// Nothing else is sent until the answer has come: a client that waits for its reply sends nothing.
TEST_F(PacedWaitingTest, ContinuousSweepsAnswerAtTheEndOfTheFirst) {
  Calibrate();
  for (const bool byHand : {true, false}) {
    if (!byHand) Write("SENS:FREQ:STAR 300 MHZ");
    const long before = program.controller().SweepsEnded();
    if (byHand)
      posted.push_back([&] { remote.PersonActs([&] { Click("Form1.StartMeasurement"); }); });
    else
      Write("INIT:CONT 1");
    bool asked = false, early = false;
    std::string reply;
    OnEvents = [&] {
      const long ended = program.controller().SweepsEnded() - before;
      if (!asked && ended == 0 && session.Display.PointCounter >= 20) {
        asked = true;
        Write("CALC:DATA:SDATA?");
      }
      if (ended == 0) early = early || !one.received.empty();
      const int point = session.Display.PointCounter;
      if (ended == 1 && point >= 20 && point < 51 && session.Flags.SweepRunning) {
        reply = one.Take();
        program.controller().StopMeasurement();
      }
    };
    Settle();
    OnEvents = {};
    EXPECT_TRUE(asked) << byHand;
    EXPECT_FALSE(early) << byHand;
    EXPECT_EQ(Numbers(reply).size(), 102u) << byHand;
  }
}

TEST_F(PacedWaitingTest, AReadBehindContinuousIsOfTheSweepThatItStarts) {
  Calibrate();
  ASSERT_EQ(Ask("INIT;*OPC?"), "1");
  Write("SENS:SWE:POIN 201;:INIT:CONT 1;:CALC:DATA:SDATA?");
  EXPECT_EQ(one.Take(), "") << "the sweep before it has 51 points";
  OnEvents = [&] {
    if (program.controller().SweepsEnded() == 2 && session.Display.PointCounter >= 20 &&
        session.Flags.SweepRunning)
      program.controller().StopMeasurement();
  };
  Settle();
  OnEvents = {};
  EXPECT_EQ(Numbers(one.Take()).size(), 402u);
  EXPECT_EQ(Errors(), kNone);
  // Where nothing starts, nothing is waited for.
  Write("INIT:CONT 1;:CALC:DATA:SDATA?");
  EXPECT_EQ(one.Take(), "");
  session.Cal = CalState();
  Settle();
  EXPECT_NE(one.Take(), "");
  EXPECT_EQ(Errors(), "-200,\"Execution error;Start Measurement: No Calibration\"");
}

TEST_F(PacedWaitingTest, ContinuousSweepingThatEndsAtOnceLeavesTheSweepBeforeIt) {
  Calibrate();
  ASSERT_EQ(Ask("INIT;*OPC?"), "1");
  Write("INIT:CONT 1");
  OnEvents = [&] {
    const int point = session.Display.PointCounter;
    if (point >= 20 && point < 51 && session.Flags.SweepRunning) Write("INIT:CONT 0");
  };
  Settle();
  OnEvents = {};
  EXPECT_EQ(program.controller().SweepsEnded(), 2) << "the second one was cut";
  EXPECT_EQ(Numbers(Ask("CALC:DATA:SDATA?")).size(), 102u);
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(PacedWaitingTest, ContinuousSweepsOnADisturbedLineAnswerWithAnErrorInTheEnd) {
  Calibrate();
  for (int sweep = 0; sweep < 10; ++sweep)
    Bench("fault sweep add at " + std::to_string(100 + sweep * 51 * 36));
  const long before = program.controller().SweepsEnded();
  Write("INIT:CONT 1");
  Write("CALC:DATA:SDATA?");
  long answered = 0;
  std::string reply;
  OnEvents = [&] {
    const long ended = program.controller().SweepsEnded() - before;
    if (answered == 0 && !one.received.empty()) {
      answered = ended;
      reply = one.Take();
    }
    if (ended == 7) program.controller().StopMeasurement();
  };
  Settle();
  OnEvents = {};
  EXPECT_EQ(answered, 5);
  EXPECT_EQ(reply, "9.91E37");
  EXPECT_EQ(Errors(), "-230,\"Data corrupt or stale;S11\"");
}

TEST_F(PacedWaitingTest, AQuestionInASweepAnswersWhoWaits) {
  Calibrate();
  TestClient two(remote, "two"), three(remote, "three");
  Write("INIT;*WAI;:CALC:DATA:SDATA?");
  two.Write("*OPC?;:CALC:MARK1:Y?");
  three.Write("*OPC;*ESR?");
  bool acted = false;
  OnEvents = [&] {
    if (session.Display.PointCounter != 20 || std::exchange(acted, true)) return;
    fake.Answers = {Answer::No};
    fake.OnAsk = [&](const Message&) {
      RunPosted();
      EXPECT_EQ(one.Take(), "9.91E37");
      EXPECT_EQ(two.Take(), "1;9.91E37");
      three.Take();
      three.Write("*ESR?");
      EXPECT_EQ(std::stoi(three.Take()) & 1, 1);
    };
    remote.PersonActs([&] { Click("Form1.Exit"); });
    fake.OnAsk = {};
  };
  Settle();
  OnEvents = {};
  ASSERT_TRUE(acted);
  EXPECT_EQ(
      Errors(),
      "-200,\"Execution error;VNA Control Exit: Close Program and Exit?\",-230,\"Data corrupt "
      "or stale;S11\"");
  // The sweep went on to its end, and the next one is the client's again.
  EXPECT_TRUE(session.Flags.Idle());
  EXPECT_EQ(Numbers(Ask("CALC:DATA:SDATA?")).size(), 102u);
  EXPECT_EQ(Numbers(Ask("INIT;CALC:DATA:SDATA?")).size(), 102u);
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(PacedWaitingTest, ADialogInASweepAnswersWhoWaits) {
  Calibrate();
  Write("INIT;*OPC?");
  bool acted = false;
  OnEvents = [&] {
    if (session.Display.PointCounter != 20 || std::exchange(acted, true)) return;
    remote.PersonActs([&] { program.gate().Choose({DialogKind::Open, "Open", "", "", 1}); });
    RunPosted();
    EXPECT_FALSE(session.Flags.SweepIdle);
    EXPECT_EQ(one.Take(), "1");
  };
  Settle();
  OnEvents = {};
  ASSERT_TRUE(acted);
  EXPECT_EQ(Errors(), "-200,\"Execution error;Open: a dialog is open\"");
}

// One that is closed soon ends nothing.
TEST_F(PacedWaitingTest, ANoticeThatStaysOpenInASweepAnswersWhoWaits) {
  Calibrate();
  Write("INIT;*OPC?");
  bool acted = false;
  OnEvents = [&] {
    if (session.Display.PointCounter != 20 || std::exchange(acted, true)) return;
    fake.OnAsk = [&](const Message&) {
      clock.AdvanceMs(1000);
      remote.Watch();
      RunPosted();
      EXPECT_EQ(one.Take(), "");
      clock.AdvanceMs(1000);
      remote.Watch();
      RunPosted();
      EXPECT_EQ(one.Take(), "1");
    };
    remote.PersonActs([&] { Click("Form1.Diagnostics"); });
    fake.OnAsk = {};
    clock.AdvanceMs(5000);
    remote.Watch();
  };
  Settle();
  OnEvents = {};
  ASSERT_TRUE(acted);
  EXPECT_EQ(Errors().substr(0, 23), "-200,\"Execution error;D");
  EXPECT_EQ(Ask("INIT;*OPC?"), "1");
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(PacedWaitingTest, AModalWindowInASweepAnswersWhoWaits) {
  Calibrate();
  Write("INIT;*OPC?");
  bool acted = false;
  OnEvents = [&] {
    if (session.Display.PointCounter != 20 || std::exchange(acted, true)) return;
    fake.OnModal = [&](Form& form) {
      remote.Watch();
      RunPosted();
      EXPECT_EQ(one.Take(), "");
      clock.AdvanceMs(1000);
      remote.Watch();
      RunPosted();
      EXPECT_EQ(one.Take(), "1");
      fake.Hide(form.Name());
    };
    remote.PersonActs([&] { fake.Show("SaveKit"); });
  };
  Settle();
  OnEvents = {};
  ASSERT_TRUE(acted);
  EXPECT_EQ(Errors(), "-200,\"Execution error;" + Window("SaveKit").Caption() + " is open\"");
  EXPECT_EQ(Ask("INIT;*OPC?"), "1");
  EXPECT_EQ(Errors(), kNone);
}

// The user's own sweep finds no instrument, and the message stays open.
TEST_F(PacedWaitingTest, AMessageAboutTheUsersSweepAnswersWhoWaits) {
  Calibrate();
  ASSERT_EQ(Ask("*RST;*OPC?"), "1");
  TestClient two(remote, "two");
  bool told = false;
  fake.OnAsk = [&](const Message& box) {
    EXPECT_EQ(box.Text, "No Response");
    two.Take();
    two.Write("CALC:DATA:SDATA?");
    remote.Watch();
    clock.AdvanceMs(1000);
    remote.Watch();
    RunPosted();
    EXPECT_EQ(two.Take(), "9.91E37");
    told = true;
  };
  bool acted = false;
  OnEvents = [&] {
    if (session.Display.PointCounter != 20 || std::exchange(acted, true)) return;
    Bench("fault stall");
  };
  remote.PersonActs([&] { Click("Form1.StartMeasurement"); });
  OnEvents = {};
  fake.OnAsk = {};
  EXPECT_TRUE(told);
  EXPECT_EQ(Ask(two, "SYST:ERR?"), "-230,\"Data corrupt or stale;S11\"");
}

TEST_F(WaitingTest, ASweepThatAUsersBoxRefusesGivesNoEarlierNumbers) {
  Calibrate();
  TestClient two(remote, "two");
  for (const std::string sweep : {"INIT", "*TRG", "SENS:SWE:MODE SING", "SENS:SWE:MODE GRO"}) {
    EXPECT_EQ(Numbers(Ask("INIT;CALC:DATA:SDATA?")).size(), 102u);
    fake.Answers = {Answer::No};
    fake.OnAsk = [&](const Message&) {
      one.Take();
      Write("SENS:SWE:MODE HOLD;:CALC:DATA:SDATA?");
      EXPECT_EQ(Numbers(one.Take()).size(), 102u);  // nothing was asked for
      Write(sweep + ";:CALC:DATA:SDATA?;:CALC:MARK1:Y?");
      EXPECT_EQ(one.Take(), "9.91E37;9.91E37") << sweep;
      two.Write("CALC:DATA:SDATA?");
      EXPECT_EQ(Numbers(two.Take()).size(), 102u);
    };
    remote.PersonActs([&] { Click("Form1.Exit"); });
    fake.OnAsk = {};
    EXPECT_EQ(Errors().substr(0, 5), "-200,");
  }
}

// A client that connects as soon as the port is open loses nothing.
TEST_F(PacedWaitingTest, MessagesOfAStartUpWaitForItsEnd) {
  TestClient two(remote, "two"), three(remote, "three");
  bool written = false;
  OnEvents = [&] {
    if (!program.controller().StartingUp() || std::exchange(written, true)) return;
    one.Take();
    Write("*TST?;*IDN?;:SENS:FREQ:STAR 1e9;STOP 2e9;:SENS:SWE:POIN 51;:SENS:CORR:COEF:PRES");
    Write("INIT;*OPC?");
    two.Write("*OPC?");
    three.Bytes("*IDN?\n");
    three.client->EndInput();
    remote.Serve(*three.client);
    EXPECT_EQ(one.received + two.received + three.received, "");
    EXPECT_FALSE(three.answered);
  };
  program.StartUp();
  EXPECT_TRUE(written);
  EXPECT_EQ(one.received, "");
  Settle();
  OnEvents = {};
  EXPECT_EQ(one.Take(), "0;QK47,QK47-20-09,147,0.2.0\n1");
  EXPECT_EQ(two.Take(), "1");
  EXPECT_EQ(three.Take(), "QK47,QK47-20-09,147,0.2.0");
  EXPECT_TRUE(three.answered);
  EXPECT_EQ(Errors(), kNone);
  EXPECT_EQ(session.Plan.StartFreq, 1e9);
}

TEST_F(WaitingTest, AStartUpThatAsksTheUserHoldsNobody) {
  Bench("fault unplugged");
  fake.Answers = {Answer::Cancel};
  bool asked = false;
  fake.OnAsk = [&](const Message& box) {
    asked = true;
    EXPECT_TRUE(box.Text.starts_with("No instrument detected")) << box.Text;
    one.Take();
    Write("*OPC?;:SENS:FREQ:STAR 1e9;:SYST:ERR?");
    EXPECT_TRUE(one.Take().starts_with(
        "1;-200,\"Execution error;VNA Control: No instrument detected. Check instrument"));
  };
  program.StartUp();
  fake.OnAsk = {};
  EXPECT_TRUE(asked);
}

// One talker on the line.
TEST_F(WaitingTest, TheSelfTestKeepsOffALineThatMayBeInUse) {
  EXPECT_EQ(Ask("*TST?"), "0");
  fake.Answers = {Answer::No};
  fake.OnAsk = [&](const Message&) {
    one.Take();
    Write("*TST?");
    EXPECT_EQ(one.Take(), "9.91E37");
  };
  remote.PersonActs([&] { Click("Form1.Exit"); });
  fake.OnAsk = {};
  EXPECT_EQ(Error(), "-200,\"Execution error;VNA Control Exit: Close Program and Exit?\"");
  EXPECT_EQ(Ask("*TST?"), "0");
}

// ---- markers -----------------------------------------------------------------------------------

TEST_F(WaitingTest, AnInitiateThatIsRefusedGivesNoEarlierMarkers) {
  Calibrate();
  Bench("filter");
  Write("CALC:PAR1:DEF S21;SEL;:CALC:TRAC1:FORM MLOG");
  ApplyLimits("10", "-200");
  Write("CALC:LIM ON;:INIT;:CALC:MARK1:FUNC:EXEC MAX");
  Settle();  // the search waits for its sweep
  const std::string queries = "CALC:MARK1:Y?;BWID?;:CALC:LIM:FAIL?";
  EXPECT_EQ(Ask(queries).find("9.91E37"), std::string::npos);
  EXPECT_EQ(Errors(), kNone);
  TestClient two(remote, "two");
  Write("SENS:FREQ:STAR 50 MHZ;:INIT");
  EXPECT_EQ(Error(), "-221,\"Settings conflict;the plan is outside the calibration\"");
  EXPECT_EQ(Ask(queries), "9.91E37;9.91E37;9.91E37");
  EXPECT_EQ(Errors(),
            "-230,\"Data corrupt or stale\",-230,\"Data corrupt or stale\",-230,\"Data "
            "corrupt or stale\"");
  Write("CALC:MARK2:FUNC:EXEC MIN;:CALC:TRAC1:MATH:MEM");
  EXPECT_EQ(Errors(), "-230,\"Data corrupt or stale\",-230,\"Data corrupt or stale\"");
  EXPECT_FALSE(MemoryOf(session, 1, 1).Valid);
  Write("MMEM:STOR:IMAG 'old.png'");
  EXPECT_EQ(Errors(), "-230,\"Data corrupt or stale\"");
  EXPECT_TRUE(surface.SavedFiles.empty());
  // Who asked for no sweep reads what the graphs show.
  EXPECT_EQ(Ask(two, queries).find("9.91E37"), std::string::npos);
  Write("SENS:FREQ:STAR 100 MHZ;:INIT");
  EXPECT_EQ(Ask(queries).find("9.91E37"), std::string::npos);
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(PacedWaitingTest, MarkersAreReadWhenTheSweepHasEnded) {
  Calibrate();
  Write("CALC:PAR1:DEF S21;SEL;:INIT;:CALC:MARK1:Y?;BWID?;:CALC:LIM:FAIL?");
  EXPECT_EQ(one.Take(), "");
  Settle();
  EXPECT_NE(one.Take(), "");
  EXPECT_EQ(program.controller().SweepsEnded(), 1);
  EXPECT_EQ(Errors(), kUntested);
}

// ---- bytes -------------------------------------------------------------------------------------

// No byte of a block is taken for a command, however long it is and however it comes.
TEST_F(WaitingTest, ABlockThatIsTooLongIsSkippedWhole) {
  const auto block = [](std::size_t length, const std::string& inside) {
    std::string bytes;
    while (bytes.size() < length) bytes += inside;
    bytes.resize(length);
    const std::string digits = std::to_string(length);
    return "#" + std::to_string(digits.size()) + digits + bytes;
  };
  const std::string commands = "\n*ESE 77\n*OPC?\n'";
  const std::string longest = block((1 << 20) + 1, commands);
  const std::string sum = block((1 << 20) - 100, commands);  // too long with what is before it
  const std::string head = "SENS:CORR:COEF ed,1,1,";
  for (const std::string& message :
       {head + longest, head + longest + ";COEF es,1,1," + block(1000, commands),
        head + std::string(200, ' ') + sum, head + block(1000, commands) + "," + longest}) {
    for (const std::size_t piece : {message.size(), std::size_t{65536}, std::size_t{4099}}) {
      for (std::size_t at = 0; at < message.size(); at += piece)
        one.Bytes(message.substr(at, piece));
      EXPECT_EQ(one.Take(), "");
      one.Bytes("\n*ESE?\n");
      EXPECT_EQ(one.Take(), "0");
      EXPECT_EQ(Errors(), "-363,\"Input buffer overrun\"");
    }
  }
  // The connection goes in the middle of one.
  auto two = std::make_unique<TestClient>(remote, "two");
  two->Bytes(head + longest.substr(0, 500000));
  two.reset();
  EXPECT_EQ(remote.Clients(), 1u);
  EXPECT_EQ(Ask("*ESE?"), "0");
}

// What a client is answered does not depend on how its bytes are split on their way.
TEST_F(WaitingTest, MessagesAreTheSameHoweverTheirBytesAreSplit) {
  std::mt19937 random(11);
  const auto below = [&random](std::size_t n) { return static_cast<std::size_t>(random() % n); };
  const std::vector<std::string> pieces = {"*ESE 77",   "*ESE?", "*OPC?", "FORM REAL,32", "FORM?",
                                           "SYST:ERR?", "FOO",   ";",     "\n",           "\n",
                                           "\r\n",      " ",     "'",     "\"",           "#",
                                           "#0",        "#15",   "\x81",  "*ESE #H1F"};
  std::size_t answered = 0;
  for (int round = 0; round < 500; ++round) {
    std::string stream;
    for (std::size_t n = 5 + below(30); n > 0; --n) {
      if (below(4) != 0) {
        stream += pieces[below(pieces.size())] + (below(3) == 0 ? "\n" : ";");
        continue;
      }
      std::string bytes(below(400), 'x');
      for (char& c : bytes) c = "\n;'\"#*ESE 1?"[below(13)];
      const std::string length = std::to_string(bytes.size());
      stream += "SENS:CORR:COEF ed,1,1,#" + std::to_string(length.size()) + length + bytes + "\n";
    }
    stream += std::string(1000, ' ') + "\nSYST:ERR:ALL?\n";  // whatever a block still waits for
    TestClient whole(remote), split(remote);
    whole.Bytes(stream);
    for (std::size_t at = 0; at < stream.size();) {
      const std::size_t count = below(5) == 0 ? 1 : 1 + below(100);
      split.Bytes(stream.substr(at, count));
      at += count;
    }
    Settle();
    ASSERT_EQ(split.received, whole.received) << stream;
    answered += whole.received.size();
  }
  EXPECT_GT(answered, 50000u);
}

TEST_F(WaitingTest, AClientThatSendsNoMoreStillGetsItsAnswer) {
  Calibrate();
  TestClient two(remote, "two"), three(remote, "three");
  two.Bytes("INIT;*OPC?\nCALC:DATA:SDATA?\n*ESE 77");  // the last may be cut short
  two.client->EndInput();
  remote.Serve(*two.client);
  EXPECT_FALSE(two.answered);
  Settle();
  EXPECT_EQ(two.received.substr(0, 2), "1\n");
  EXPECT_EQ(Numbers(two.received.substr(2)).size(), 102u);
  EXPECT_TRUE(two.answered);
  EXPECT_EQ(two.client->Status.EventEnable, 0);
  // A block of which the length has come and the bytes have not.
  three.Bytes("*OPC?\nSENS:CORR:COEF ed,1,1,#3816\n*ESE 77\n");
  three.client->EndInput();
  remote.Serve(*three.client);
  EXPECT_EQ(three.received, "1\n");
  EXPECT_TRUE(three.answered);
  EXPECT_EQ(three.client->Status.EventEnable, 0);
}

}  // namespace
}  // namespace qk::test
