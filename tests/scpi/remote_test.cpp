// SPDX-License-Identifier: MIT
// What remote clients may do, what they are told, and what becomes of the program under them.
#include "scpi/remote.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "control/report.h"
#include "core/window_names.h"
#include "scpi/commands.h"
#include "scpi/remote_fixture.h"

namespace qk::test {
namespace {

struct RemoteTest : testing::Test, RemoteFixture {};
struct PacedRemoteTest : testing::Test, RemoteFixture {
  PacedRemoteTest() : RemoteFixture(sim::Pace::Baud115200) {}
};

std::string HeaderOf(std::string_view pattern) {
  std::string header;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] == '[' || pattern[i] == ']') continue;
    if (pattern[i] == '#') {
      while (i + 1 < pattern.size() && pattern[i + 1] >= '0' && pattern[i + 1] <= '9') ++i;
      continue;
    }
    header += pattern[i];
  }
  return header;
}

// ---- replies -----------------------------------------------------------------------------------

TEST_F(RemoteTest, EveryKnownQueryAnswersWhateverItsParameters) {
  for (const char* form : {"ASC,0", "REAL,32", "REAL,64"}) {
    Write(std::string("FORM ") + form);
    for (const scpi::Row* row : scpi::CommandTree().Rows()) {
      const std::string header = HeaderOf(row->Pattern) + "?";
      for (const char* rest : {"", " 1", " FOO", " 'x'", " 1,2,3,4,5,6", " #13abc", " 1 2", " '"}) {
        const std::string reply = Ask(header + rest);
        EXPECT_NE(reply, "") << header << rest;
      }
    }
  }
}

TEST_F(RemoteTest, CommandsNeverAnswer) {
  for (const scpi::Row* row : scpi::CommandTree().Rows())
    for (const char* rest : {"", " 1", " FOO", " 'x'"})
      EXPECT_EQ(Ask(HeaderOf(row->Pattern) + rest), "") << row->Pattern << rest;
}

TEST_F(RemoteTest, RepliesOfAMessageAreJoined) {
  EXPECT_EQ(Ask("*OPC?;SENS:BWID?;*OPC?"), "1;1000;1");
  EXPECT_EQ(Ask("*ESE 5;*ESE?;FOO?;*OPC?"), "5;1");
}

TEST_F(RemoteTest, MessagesEndWithLfWhateverStandsBeforeIt) {
  one.Bytes("*OPC?\r\n");
  EXPECT_EQ(one.received, "1\n");
  one.Take();
  one.Bytes("*OP");
  EXPECT_EQ(one.received, "");
  one.Bytes("C?\n*OPC?\n");
  EXPECT_EQ(one.received, "1\n1\n");
}

TEST_F(RemoteTest, ABlockMayHoldLineEndsAndSemicolons) {
  Write("FORM REAL,64;:SENS:SWE:POIN 51");
  std::string bytes(816, '\n');
  bytes[7] = ';';
  const std::string head = "SENS:CORR:COEF ed,1,1,#3816";
  one.Bytes(head + bytes.substr(0, 300));
  one.Bytes(bytes.substr(300) + "\n*OPC?\n");
  EXPECT_EQ(one.received, "1\n");
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(RemoteTest, DataLeavesInTheFormOfTheClient) {
  Calibrate();
  Ask("INIT;*OPC?");
  const std::vector<double> list = Numbers(Ask("CALC:DATA:SDATA?"));
  ASSERT_EQ(list.size(), 102u);
  Write("FORM REAL,64");
  std::string block = Ask("CALC:DATA:SDATA?");
  ASSERT_EQ(block.substr(0, 5), "#3816");
  EXPECT_EQ(scpi::NumbersIn(block.substr(5), scpi::DataForm::Real64, true), list);
  Write("FORM:BORD NORM");
  block = Ask("CALC:DATA:SDATA?");
  EXPECT_EQ(scpi::NumbersIn(block.substr(5), scpi::DataForm::Real64, false), list);
  Write("FORM REAL,32;:FORM:BORD SWAP");
  block = Ask("CALC:DATA:SDATA?");
  ASSERT_EQ(block.substr(0, 5), "#3408");
  const auto halves = scpi::NumbersIn(block.substr(5), scpi::DataForm::Real32, true);
  ASSERT_TRUE(halves);
  for (std::size_t i = 0; i < list.size(); ++i)
    EXPECT_EQ((*halves)[i], static_cast<double>(static_cast<float>(list[i])));
  Write("FORM REAL,16");
  EXPECT_EQ(Error(), "-224,\"Illegal parameter value;32 or 64\"");
}

TEST_F(RemoteTest, FormattedDataAreWhatTheGraphShows) {
  Calibrate();
  Bench("filter");
  Write("CALC:PAR:COUN 1;:CALC:PAR1:DEF S21;:CALC:SMO:APER 10;STAT ON");
  for (const char* form : {"MLOG", "MLIN", "PHAS", "GDEL", "REAL", "IMAG"}) {
    Write(std::string("CALC:TRAC1:FORM ") + form);
    EXPECT_EQ(Ask("CALC:TRAC1:FORM?"), form);
    Ask("INIT;*OPC?");
    const std::vector<double> pairs = Numbers(Ask("CALC:TRAC1:DATA:FDAT?"));
    const ChannelSettings& channel = session.Channel(1);
    const double size = std::string(form) == "GDEL" ? RowOf(channel.Units).Size : 1;
    ASSERT_EQ(pairs.size(), 102u);
    for (std::size_t i = 0; i < 51; ++i) {
      const double shown = static_cast<double>(channel.SmoothValue[i + 1]) * size;
      EXPECT_NEAR(pairs[2 * i], shown, 1e-5 * std::max(size, std::abs(shown))) << form << i;
      EXPECT_EQ(pairs[2 * i + 1], 0);
    }
  }
  EXPECT_EQ(Errors(), kNone);
}

// ---- grammar with the program behind it
// ----------------------------------------------------------

struct Refused {
  const char* Message;
  const char* Error;
};
TEST_F(RemoteTest, RefusesWithTheNumberOfTheFault) {
  for (const auto& [message, error] : std::initializer_list<Refused>{
           {"FOO 1", "-113,\"Undefined header;FOO\""},
           {"SENS:FREQ:FOO 1", "-113,\"Undefined header;SENS:FREQ:FOO\""},
           {"SENS2:FREQ:STAR 1e9", "-114,\"Header suffix out of range;SENS2:FREQ:STAR\""},
           {"CALC:PAR5:DEF S11", "-114,\"Header suffix out of range;CALC:PAR5:DEF\""},
           {"SENS:FREQ:STAR", "-109,\"Missing parameter;SENS:FREQ:STAR\""},
           {"SENS:FREQ:STAR 1e9,2e9", "-108,\"Parameter not allowed;SENS:FREQ:STAR\""},
           {"SENS:FREQ:STAR 1e9 OHM", "-131,\"Invalid suffix;OHM\""},
           {"SENS:FREQ:STAR 'x'", "-104,\"Data type error\""},
           {"SENS:FREQ:STAR LOW", "-141,\"Invalid character data;LOW\""},
           {"SENS:FREQ:STAR 1 MHZ", "-222,\"Data out of range;1\""},
           {"SENS:FREQ:STOP 3.09 GHZ", "-222,\"Data out of range;3.09\""},
           {"SENS:SWE:POIN 1025", "-222,\"Data out of range;1025\""},
           {"SENS:SWE:POIN 0", "-222,\"Data out of range;0\""},
           {"SOUR:POW 1", "-222,\"Data out of range;1\""},
           {"SENS:BWID 30000", "-224,\"Illegal parameter value;the bandwidth is 1000 Hz\""},
           {"SENS:SWE:TYPE LOG", "-224,\"Illegal parameter value;LOG\""},
           {"SENS:AVER MAYBE", "-141,\"Invalid character data;MAYBE\""},
           {"SENS:AVER:COUN 256", "-222,\"Data out of range;256\""},
           {"CALC:PAR1:DEF S33", "-224,\"Illegal parameter value;S33\""},
           {"SENS:CORR:COEF ed,1,1,#0ab", "-161,\"Invalid block data;a block needs its length\""},
           {"MMEM:DEL 'a", "-151,\"Invalid string data;the closing quote is missing\""},
           {"SENS:CORR:COLL OPEN,1", "-221,\"Settings conflict;choose the method first\""},
           {"INIT", "-221,\"Settings conflict;no calibration\""},
           {"*TRG", "-221,\"Settings conflict;no calibration\""},
           {"MMEM:LOAD:STAT 'none.cal'", "-256,\"File name not found;none.cal\""}}) {
    EXPECT_EQ(Ask(message), "") << message;
    EXPECT_EQ(Error(), error) << message;
    EXPECT_EQ(Error(), kNone) << message;
  }
}

TEST_F(RemoteTest, TakesUnitsAndExtremes) {
  Write("SENS:FREQ:STAR 0.5 GHZ;STOP 700000 KHZ");
  EXPECT_EQ(Ask("SENS:FREQ:STAR?;STOP?"), "500000000;700000000");
  // The last 101 points with the smallest step.
  EXPECT_EQ(Ask("SENS:FREQ:STAR? MIN;STAR? MAX;:SENS:SWE:POIN? MAX"), "3000000;3079990000;1024");
  Write("SENS:FREQ:STAR MIN;STOP MAX;:SENS:SWE:POIN MIN;:SOUR:POW -20 DBM");
  EXPECT_EQ(Ask("SENS:FREQ:STAR?;STOP?;:SENS:SWE:POIN?;:SOUR:POW?"), "3000000;3080000000;51;-20");
  Write("SENS:SWE:POIN 50.6");  // rounded first, as whole numbers are
  EXPECT_EQ(Ask("SENS:SWE:POIN?;:SENS:BWID? MAX;:SENS:BAND? MIN;:CALC:MARK1:X? MAX"),
            "51;1000;1000;3000000000");
  EXPECT_EQ(Ask("SENS:SWE:TIME? MIN"), Ask("SENS:SWE:TIME?"));
  EXPECT_EQ(Errors(), kNone);
}

// ---- plan
// ----------------------------------------------------------------------------------------

TEST_F(RemoteTest, APlanIsWantedUntilASweepUsesIt) {
  Calibrate();
  const SweepPlan before = session.Plan;
  Write("SENS:FREQ:STAR 1e9;STOP 1.5e9;:SENS:SWE:POIN 150;:SOUR:POW -5");
  EXPECT_EQ(session.Plan.StartFreq, before.StartFreq);
  EXPECT_EQ(session.Plan.NumPoints, 51);
  EXPECT_EQ(session.Plan.Port1Level, 0);
  const std::string told = Ask("SENS:FREQ:STAR?;STOP?;:SENS:SWE:POIN?;:SOUR:POW?");
  EXPECT_EQ(told, "1000000000;1500000000;201;-5");
  EXPECT_EQ(Ask("INIT;*OPC?"), "1");
  EXPECT_EQ(session.Plan.StartFreq, 1e9);
  EXPECT_EQ(session.Plan.NumPoints, 201);
  EXPECT_EQ(session.Plan.Port1Level, -5);
  EXPECT_EQ(Ask("SENS:FREQ:STAR?;STOP?;:SENS:SWE:POIN?;:SOUR:POW?"), told);
  EXPECT_EQ(session.Panels[3], "12 Term Cal ?");  // interpolated, and another level
  EXPECT_EQ(Ask("SENS:CORR:STAT:INT?"), "INT");
  EXPECT_EQ(Numbers(Ask("CALC:DATA:SDATA?")).size(), 402u);
  EXPECT_EQ(Errors(), kNone);  // "Keep existing Cal" asks nobody, and is no error
}

TEST_F(RemoteTest, AnEndPushesTheOther) {
  Write("SENS:FREQ:STAR 1e9;STOP 2e9;STAR 2.5e9");
  EXPECT_EQ(Ask("SENS:FREQ:STAR?"), "2500000000");
  Write("SENS:FREQ:STOP 1e9");
  EXPECT_EQ(Ask("SENS:FREQ:STOP?").substr(0, 5), "10000");  // and the grid's 100 Hz steps
  EXPECT_EQ(Ask("SENS:FREQ:STAR?"), "1000000000");
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(RemoteTest, CentreAndSpanKeepInsideTheRange) {
  Write("SENS:FREQ:CENT 1e9;SPAN 1e8");
  EXPECT_EQ(Ask("SENS:FREQ:STAR?;STOP?"), "950000000;1050000000");
  Write("SENS:FREQ:SPAN 3.077e9");
  EXPECT_EQ(Ask("SENS:FREQ:STAR?"), "3000000");
  Write("SENS:FREQ:CENT 100e6");
  EXPECT_EQ(Ask("SENS:FREQ:STAR?;STOP?"), "3000000;197000000");
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(RemoteTest, TheLargestNumberOfPointsHasItsOwnGrid) {
  Write("SENS:FREQ:STAR 1e9;STOP 2e9;:SENS:SWE:POIN 802");
  EXPECT_EQ(Ask("SENS:FREQ:STAR?;STOP?;:SENS:SWE:POIN?"), "3000000;3072000000;1024");
  Write("SENS:SWE:POIN 201");
  EXPECT_EQ(Ask("SENS:FREQ:STAR?;STOP?"), "1000000000;2000000000");
}

TEST_F(RemoteTest, APlanOutsideTheCalibrationIsRefusedAndChangesNothing) {
  Calibrate();
  Write("SENS:FREQ:STAR 50 MHZ");
  EXPECT_EQ(Ask("INIT;*OPC?"), "1");
  EXPECT_EQ(Error(), "-221,\"Settings conflict;the plan is outside the calibration\"");
  EXPECT_EQ(session.Plan.StartFreq, 1e8);
  EXPECT_EQ(program.controller().SweepsEnded(), 0);
}

TEST_F(RemoteTest, APlanThatAPersonAppliesPutsTheWishOut) {
  Calibrate();
  Write("SENS:FREQ:STAR 1e9");
  fake.Show(window::kCalibration);
  fake.Answers = {Answer::Yes};
  Type("Calibration.Text1", "200");
  Click("Calibration.Command1");
  EXPECT_EQ(Ask("SENS:FREQ:STAR?"), "200000000");
}

// ---- completion
// ------------------------------------------------------------------------------------

TEST_F(PacedRemoteTest, CompletionIsNeverAnsweredBeforeTheSweepsEnd) {
  Calibrate();
  for (int sweep = 1; sweep <= 200; ++sweep) {
    one.Take();
    one.Write("INIT");
    one.Write("*OPC?");
    bool early = false;
    OnEvents = [&] {
      if (!session.Flags.SweepIdle && !one.received.empty()) early = true;
    };
    EXPECT_EQ(one.received, "");
    Settle();
    OnEvents = {};
    EXPECT_FALSE(early);
    EXPECT_EQ(one.Take(), "1");
    EXPECT_EQ(program.controller().SweepsEnded(), sweep);
  }
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(RemoteTest, ServiceIsRequestedByTheMasksAlone) {
  Write("*CLS;*ESE 32;*SRE 255");
  EXPECT_EQ(Ask("*SRE?;*STB?"), "191;0");
  Write("FOO");
  EXPECT_EQ(Ask("*STB?"), "100");  // errors wait, standard event, service request
  EXPECT_EQ(Error(), "-113,\"Undefined header;FOO\"");
  EXPECT_EQ(Ask("*STB?;*ESR?;*STB?"), "96;32;0");
}

// A byte of noise in the stream: the sweep is no client's, the next one is.
TEST_F(RemoteTest, ADisturbedSweepIsNotAnsweredAsComplete) {
  Calibrate();
  Bench("fault sweep add at 100");
  Write("INIT;*OPC?");
  Settle();
  EXPECT_EQ(one.Take(), "1");
  EXPECT_EQ(program.controller().SweepsEnded(), 2);
  EXPECT_EQ(Errors(), kNone);
  // A line that stays so.
  for (int sweep = 0; sweep < 10; ++sweep)
    Bench("fault sweep add at " + std::to_string(100 + sweep * 51 * 36));
  Write("INIT;*OPC?");
  Settle();
  EXPECT_EQ(one.Take(), "1");
  EXPECT_EQ(program.controller().SweepsEnded(), 7);
  EXPECT_EQ(Errors(), "-240,\"Hardware error;the line to the instrument is disturbed\"");
  EXPECT_EQ(Ask("CALC:DATA:SDATA?"), "9.91E37");
  Bench("fault none");
  Write("INIT;*OPC?");
  Settle();
  EXPECT_EQ(one.Take(), "1");
  EXPECT_EQ(Errors(), "-230,\"Data corrupt or stale;S11\"");
}

TEST_F(RemoteTest, CompletionSetsItsEvent) {
  Calibrate();
  Ask("*CLS;*ESE 1");
  Write("INIT;*OPC");
  EXPECT_EQ(one.Take(), "");
  Write("*ESR?");
  EXPECT_EQ(one.Take(), "0");
  Settle();
  EXPECT_EQ(Ask("*STB?;*ESR?;*ESR?"), "32;1;0");
}

TEST_F(RemoteTest, ClientsWaitEachForThemselves) {
  Calibrate();
  TestClient two(remote, "two");
  Write("INIT;*WAI;*OPC?");
  two.Write("SENS:SWE:POIN?");
  EXPECT_EQ(two.Take(), "51");
  EXPECT_EQ(one.Take(), "");
  Settle();
  EXPECT_EQ(one.Take(), "1");
}

TEST_F(RemoteTest, ASecondInitiateIsIgnored) {
  Calibrate();
  Write("INIT;INIT");
  Settle();
  EXPECT_EQ(Errors(), "-213,\"Init ignored\"");
  EXPECT_EQ(program.controller().SweepsEnded(), 1);
  Write("INIT:CONT 1");
  int runs = 0;
  OnEvents = [&] {
    if (program.controller().SweepsEnded() == 3 && runs++ == 0) {
      Write("INIT");
      EXPECT_EQ(scpi::ErrorText(one.client->Status.Pop()), "-213,\"Init ignored\"");
      Write("INIT:CONT?;:SENS:SWE:MODE?;:TRIG:STAT?");
      EXPECT_EQ(one.Take(), "1;CONT;MEAS");
      Write("INIT:CONT 0;*OPC?");
      EXPECT_EQ(one.Take(), "");  // pending until idle
    }
  };
  Settle();
  OnEvents = {};
  EXPECT_EQ(one.Take(), "1");
  EXPECT_TRUE(session.Flags.Idle());
  EXPECT_EQ(Ask("INIT:CONT?"), "0");
}

TEST_F(RemoteTest, SweepingThatWasStoppedCanGoOn) {
  Calibrate();
  Write("INIT:CONT 1");
  int stage = 0;
  long since = 0;
  OnEvents = [&] {
    const long ended = program.controller().SweepsEnded();
    if (stage == 0 && ended == 2) {
      stage = 1;
      Write("INIT:CONT 0");
      Write("INIT:CONT 1");
      since = ended;
    } else if (stage == 1 && ended >= since + 3) {
      stage = 2;
      Write("SENS:SWE:MODE SING");  // gives way to one sweep
      Write("*OPC?");
    }
  };
  Settle();
  OnEvents = {};
  EXPECT_EQ(stage, 2);
  EXPECT_EQ(one.Take(), "1");
  EXPECT_EQ(Ask("INIT:CONT?;:SENS:SWE:MODE?"), "0;HOLD");
  EXPECT_EQ(Ask("INIT;*OPC?"), "1");
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(RemoteTest, AnInitiateThatIsRefusedLeavesNoContinuousSweeping) {
  Calibrate();
  Write("INIT;INIT:CONT 1");
  session.Cal = CalState();  // a person has dropped it meanwhile
  Settle();
  EXPECT_EQ(Error(), "-221,\"Settings conflict;no calibration\"");
  EXPECT_EQ(Ask("INIT:CONT?"), "0");
}

TEST_F(RemoteTest, ASweepOfBeforeARestartIsNoData) {
  Calibrate();
  Ask("INIT;*OPC?");
  Write("MMEM:STOR:STAT 'here.cal'");
  EXPECT_EQ(Numbers(Ask("CALC:DATA:SDATA?")).size(), 102u);
  Write("MMEM:LOAD:STAT 'here.cal'");
  EXPECT_EQ(Ask("CALC:DATA:SDATA?"), "9.91E37");
  EXPECT_EQ(Errors(), "-230,\"Data corrupt or stale;S11\"");
  EXPECT_EQ(Ask("INIT;*OPC?"), "1");
  EXPECT_EQ(Numbers(Ask("CALC:DATA:SDATA?")).size(), 102u);
}

TEST_F(PacedRemoteTest, AbortEndsTheSweepAndAnswers) {
  Calibrate();
  Write("INIT;*OPC?");
  TestClient two(remote, "two");
  OnEvents = [&] {
    if (session.Display.PointCounter == 20 && session.Flags.SweepRunning) two.Write("ABOR");
  };
  Settle();
  OnEvents = {};
  EXPECT_EQ(one.Take(), "1");
  EXPECT_EQ(Error(), "-200,\"Execution error;another client stopped it\"");
  EXPECT_EQ(Ask(two, "SYST:ERR?"), kNone);
  EXPECT_TRUE(session.Flags.Idle());
}

TEST_F(PacedRemoteTest, AStopByHandEndsItWithAnError) {
  Calibrate();
  Write("INIT;*OPC?");
  OnEvents = [&] {
    if (session.Display.PointCounter == 20 && session.Flags.SweepRunning)
      remote.PersonActs([&] { Click("Form1.StopMeasurement"); });
  };
  Settle();
  OnEvents = {};
  EXPECT_EQ(one.Take(), "1");
  EXPECT_EQ(Error(), "-200,\"Execution error;the sweep was stopped\"");
  EXPECT_EQ(std::stoi(Ask("*ESR?")) & 64, 64);
}

TEST_F(RemoteTest, AStartByHandComesFirst) {
  Calibrate();
  Write("INIT;*OPC?");
  // Between the command and its sweep.
  bool stopped = false;
  posted.push_front([&] {
    OnEvents = [&] {
      if (program.controller().SweepsEnded() == 2 && !stopped) {
        stopped = true;
        Click("Form1.StopMeasurement");
      }
    };
    Click("Form1.StartMeasurement");
  });
  Settle();
  OnEvents = {};
  EXPECT_EQ(one.Take(), "1");
  EXPECT_EQ(Error(), "-213,\"Init ignored;a sweep runs\"");
}

class LostLink : public testing::TestWithParam<const char*>, public RemoteFixture {
 protected:
  LostLink() : RemoteFixture(sim::Pace::Baud115200) {}
};
TEST_P(LostLink, EndsTheOperationWithItsError) {
  Calibrate();
  Write("INIT;*OPC?");
  bool done = false;
  OnEvents = [&] {
    if (session.Display.PointCounter == 20 && !done) {
      done = true;
      Bench(GetParam());
    }
  };
  Settle();
  OnEvents = {};
  EXPECT_EQ(one.Take(), "1");
  EXPECT_EQ(Error(), "-240,\"Hardware error;Measure All: No Response\"");
  EXPECT_EQ(std::stoi(Ask("STAT:QUES:COND?")) & 1024, 1024);
  EXPECT_TRUE(fake.Messages.empty());  // nobody was asked
  EXPECT_TRUE(session.Flags.Idle());
}
// The numbers of the device before look like those of the device that is connected now.
TEST_P(LostLink, LeavesNoNumbersOfTheDeviceBefore) {
  Calibrate();
  Bench("filter");
  EXPECT_EQ(Numbers(Ask("INIT;CALC:DATA? SDATA")).size(), 102u);
  TestClient two(remote, "two");
  Bench(GetParam());
  EXPECT_EQ(Ask("INIT;*OPC?;:CALC:DATA? SDATA"), "1;9.91E37");
  const std::string errors = Errors();
  EXPECT_EQ(errors.substr(0, 5), "-240,");
  EXPECT_TRUE(errors.ends_with(",-230,\"Data corrupt or stale;S11\"")) << errors;
  EXPECT_EQ(Ask("CALC:DATA? FDATA;:SENS:DATA:RAWD? S11;:CALC:DATA:SNP:PORT? '1,2'"),
            "9.91E37;9.91E37;9.91E37");
  Write("MMEM:STOR:SNP 'old.s2p';CSV 'old.csv'");
  EXPECT_FALSE(std::filesystem::exists(folder.Text() + "/remote/old.s2p"));
  EXPECT_FALSE(std::filesystem::exists(folder.Text() + "/remote/old.csv"));
  Errors();
  // Nor does a client who asked for no sweep: another device may be connected since the last whole
  // one.
  EXPECT_EQ(Ask(two, "CALC:DATA? SDATA"), "9.91E37");
  EXPECT_EQ(Ask(two, "SYST:ERR?").substr(0, 4), "-230");
}
// Nor after a START of the user, who may have connected another device.
TEST_P(LostLink, LeavesNoNumbersAfterAStartOfTheUser) {
  Calibrate();
  TestClient two(remote, "two");
  for (const bool inTheMiddle : {false, true}) {
    EXPECT_EQ(Numbers(Ask("INIT;CALC:DATA? SDATA")).size(), 102u);
    EXPECT_EQ(Numbers(Ask(two, "CALC:DATA? SDATA")).size(), 102u);
    EXPECT_NE(Ask("CALC:MARK1:Y?"), "9.91E37");
    if (!inTheMiddle) Bench(GetParam());
    bool acted = false;
    OnEvents = [&] {
      if (!inTheMiddle || session.Display.PointCounter != 20 || std::exchange(acted, true)) return;
      Bench(GetParam());
    };
    remote.PersonActs([&] { Click("Form1.StartMeasurement"); });
    OnEvents = {};
    for (TestClient* client : {&one, &two})
      for (const char* query : {"CALC:DATA? SDATA", "CALC:MARK1:Y?"}) {
        EXPECT_EQ(Ask(*client, query), "9.91E37") << query << inTheMiddle;
        EXPECT_EQ(Ask(*client, "SYST:ERR?").substr(0, 4), "-230");
      }
    Bench(GetParam() == std::string("fault stall") ? "fault none" : "fault replugged");
  }
}
INSTANTIATE_TEST_SUITE_P(Remote, LostLink, testing::Values("fault stall", "fault unplugged"));

TEST_F(RemoteTest, ADataQueryWaitsForItsSweepAlone) {
  Calibrate();
  one.Take();
  Write("INIT;CALC:DATA:SDATA?");
  EXPECT_EQ(one.Take(), "");
  Settle();
  EXPECT_EQ(Numbers(one.Take()).size(), 102u);
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(RemoteTest, DataThatIsNotThereIsAnErrorAndAnAnswer) {
  EXPECT_EQ(Ask("CALC:DATA:SDATA?"), "9.91E37");
  EXPECT_EQ(Error(), "-230,\"Data corrupt or stale;S11\"");
  Write("FORM REAL,32");
  EXPECT_EQ(Ask("CALC:DATA:SDATA?;*OPC?"), "#10;1");
}

TEST_F(PacedRemoteTest, ASweepThatWasStoppedGivesNoEarlierNumbers) {
  Calibrate();
  Ask("INIT;*OPC?");
  Write("INIT;*OPC?;:CALC:DATA:SDATA?");
  OnEvents = [&] {
    if (session.Display.PointCounter == 20 && session.Flags.SweepRunning)
      remote.PersonActs([&] { Click("Form1.StopMeasurement"); });
  };
  one.Take();
  Settle();
  OnEvents = {};
  EXPECT_EQ(one.Take(), "1;9.91E37");
  EXPECT_EQ(Errors(),
            "-200,\"Execution error;the sweep was stopped\",-230,\"Data corrupt or stale;S11\"");
  // The next whole sweep is there to read.
  EXPECT_EQ(Numbers(Ask("INIT;CALC:DATA:SDATA?")).size(), 102u);
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(RemoteTest, AnInitiateThatIsRefusedGivesNoEarlierNumbers) {
  Calibrate();
  Ask("INIT;*OPC?");
  Write("SENS:FREQ:STAR 50 MHZ;:INIT");
  EXPECT_EQ(Error(), "-221,\"Settings conflict;the plan is outside the calibration\"");
  EXPECT_EQ(Ask("CALC:DATA:SDATA?"), "9.91E37");
  EXPECT_EQ(Error(), "-230,\"Data corrupt or stale;S11\"");
  Write("SENS:FREQ:STAR 100 MHZ");
  EXPECT_EQ(Numbers(Ask("INIT;CALC:DATA:SDATA?")).size(), 102u);
  EXPECT_EQ(Errors(), kNone);
}

// ---- people
// ------------------------------------------------------------------------------------------

TEST_F(RemoteTest, WhileAPersonIsAskedQueriesWorkAndCommandsDoNot) {
  Calibrate();
  bool asked = false;
  fake.Answers = {Answer::No};
  fake.OnAsk = [&](const Message& box) {
    asked = true;
    EXPECT_EQ(box.Text, "Close Program and Exit?");
    one.Take();
    Write("*IDN?");
    EXPECT_EQ(one.Take(), "QK47,QK47-20-09,147,0.2.0");
    Write("SENS:FREQ:STAR 1e9");
    Write("SYST:ERR?");
    EXPECT_EQ(one.Take(), "-200,\"Execution error;VNA Control Exit: Close Program and Exit?\"");
    Write("INIT;*OPC?");
    EXPECT_EQ(one.Take(), "1");
  };
  remote.PersonActs([&] { Click("Form1.Exit"); });
  fake.OnAsk = {};
  EXPECT_TRUE(asked);
  EXPECT_EQ(program.controller().SweepsEnded(), 0);
}

TEST_F(RemoteTest, APersonAtWorkInARemoteSweepIsAskedHimself) {
  Calibrate();
  fake.Messages.clear();
  Write("INIT;*OPC?");
  bool acted = false;
  OnEvents = [&] {
    if (acted || session.Display.PointCounter != 20) return;
    acted = true;
    remote.PersonActs([&] { Click("Form1.Diagnostics"); });
  };
  Settle();
  OnEvents = {};
  ASSERT_EQ(fake.Messages.size(), 1u);
  EXPECT_EQ(fake.Messages[0].Text, "Stop Measurement First");
  EXPECT_EQ(one.Take(), "1");
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(PacedRemoteTest, AnExitWhileAClientWaitsAnswersIt) {
  Calibrate();
  Write("INIT;*OPC?");
  bool acted = false;
  fake.Answers = {Answer::Yes};
  OnEvents = [&] {
    if (acted || session.Display.PointCounter != 20) return;
    acted = true;
    remote.PersonActs([&] { Click("Form1.Exit"); });
  };
  Settle();
  OnEvents = {};
  EXPECT_EQ(fake.ExitCode, 0);
  remote.End();
  EXPECT_EQ(one.Take(), "1");
  EXPECT_EQ(scpi::ErrorText(one.client->Status.Pop()),
            "-200,\"Execution error;VNA Control Exit: Close Program and Exit?\"");
}

// The text console's end leaves the sweep as it is: it ends with the process.
TEST_F(PacedRemoteTest, AnEndInTheMiddleOfASweepAnswersWhoWaitsForData) {
  Calibrate();
  TestClient two(remote, "two"), three(remote, "three");
  Write("INIT;:CALC:DATA:SDATA?");
  two.Write("CALC:DATA:SDATA?;*IDN?");
  three.Write("*OPC?;:CALC:MARK1:Y?");
  bool acted = false;
  OnEvents = [&] {
    if (acted || session.Display.PointCounter != 20) return;
    acted = true;
    remote.End();
    Click("Form1.StopMeasurement");
  };
  Settle();
  OnEvents = {};
  ASSERT_TRUE(acted);
  EXPECT_EQ(one.Take(), "9.91E37");
  EXPECT_EQ(two.Take().substr(0, 13), "9.91E37;QK47,");
  EXPECT_EQ(three.Take().substr(0, 2), "1;");
}

// Remote control is switched off: the sweep ends by itself, nobody waits for it.
TEST_F(PacedRemoteTest, AReleaseAnswersWhoWaits) {
  Calibrate();
  TestClient two(remote, "two");
  Write("INIT;:CALC:DATA:SDATA?");
  two.Write("*OPC?");
  bool acted = false;
  OnEvents = [&] {
    if (acted || session.Display.PointCounter != 20) return;
    acted = true;
    remote.Release("remote control was switched off");
    EXPECT_EQ(one.Take(), "9.91E37");
    EXPECT_EQ(two.Take(), "1");
  };
  Settle();
  OnEvents = {};
  ASSERT_TRUE(acted);
  EXPECT_EQ(scpi::ErrorText(one.client->Status.Pop()),
            "-200,\"Execution error;remote control was switched off\"");
  EXPECT_EQ(Ask("INIT;*OPC?"), "1");
}

// The graphs then hold points of two sweeps, perhaps of two devices.
TEST_F(PacedRemoteTest, MarkersReadNoSweepThatWasStopped) {
  Calibrate();
  TestClient two(remote, "two");
  EXPECT_EQ(Ask("INIT;*OPC?;:CALC:MARK1:X 1.2e9"), "1");
  EXPECT_NE(Ask(two, "CALC:MARK1:Y?"), "9.91E37");
  EXPECT_EQ(Numbers(Ask(two, "CALC:DATA:SDATA?")).size(), 102u);
  Write("INIT");
  bool acted = false;
  OnEvents = [&] {
    if (acted || session.Display.PointCounter != 20) return;
    acted = true;
    Click("Form1.StopMeasurement");
  };
  Settle();
  OnEvents = {};
  ASSERT_TRUE(acted);
  for (const char* query : {"CALC:DATA:SDATA?", "CALC:MARK1:Y?", "CALC:MARK1:BWID?"}) {
    EXPECT_EQ(Ask(two, query), "9.91E37") << query;
    EXPECT_EQ(Ask(two, "SYST:ERR?").substr(0, 4), "-230") << query;
  }
  const std::string at = Ask(two, "CALC:MARK1:X?");
  two.Write("CALC:MARK1:FUNC:EXEC MAX");
  EXPECT_EQ(Ask(two, "SYST:ERR?").substr(0, 4), "-230");
  EXPECT_EQ(Ask(two, "CALC:MARK1:X?"), at);
  EXPECT_EQ(Ask("INIT;*OPC?"), "1");
  EXPECT_NE(Ask(two, "CALC:MARK1:Y?"), "9.91E37");
}

TEST_F(PacedRemoteTest, ARestartWhileAClientWaitsAnswersIt) {
  Calibrate();
  Write("INIT;*OPC?;CALC:DATA:SDATA?");
  bool acted = false;
  fake.Answers = {Answer::Yes, Answer::Ok};
  OnEvents = [&] {
    if (acted || session.Display.PointCounter != 20) return;
    acted = true;
    remote.PersonActs([&] { Click("Form1.ReStart"); });
  };
  Settle();
  OnEvents = {};
  EXPECT_EQ(one.Take(), "1;9.91E37");
  EXPECT_EQ(Errors(),
            "-200,\"Execution error;Re-Start Program: This will re-start the program and any Cal "
            "data will be lost. Continue?\",-230,\"Data corrupt or stale;S11\"");
  EXPECT_EQ(session.Panels[1], "SN. 147");
  Write("INIT");
  EXPECT_EQ(Error(), "-221,\"Settings conflict;no calibration\"");
}

TEST_F(RemoteTest, WindowsShowWhatAClientChanges) {
  Calibrate();
  fake.Show(window::kDisplayPara);
  fake.Show(window::kEnhancePara);
  fake.Show(window::kCalibration);
  fake.Show(window::kNewLimitsSet);
  Write(
      "CALC:PAR:COUN 4;:CALC:PAR1:DEF S22;:CALC:TRAC1:FORM PHAS;:SENS:AVER:COUN 16;:CALC:SMO:APER "
      "4;"
      "STAT ON;:CALC:LIM ON");
  EXPECT_EQ(Value("DisplayPara.ListParameters"), "S22");
  EXPECT_EQ(Value("DisplayPara.ListGraphType"), "Phase");
  EXPECT_EQ(Value("DisplayPara.ListUnits"), "deg");
  EXPECT_EQ(Value("EnhancePara.InputAverages"), "16");
  EXPECT_EQ(Value("EnhancePara.InputSmoothing"), "4");
  EXPECT_EQ(Value("Form1.SmoothOn"), "on");
  EXPECT_EQ(Value("NewLimitsSet.Check37"), "on");
  Write("SENS:FREQ:STAR 1e9");
  Ask("INIT;*OPC?");
  EXPECT_EQ(Value("Calibration.Text1"), "1000.0000");
  EXPECT_EQ(Errors(), kNone);
}

// ---- calibration
// ---------------------------------------------------------------------------------------

TEST_F(RemoteTest, ACalibrationFromOutsideAsksNobody) {
  fake.Messages.clear();
  Calibrate("101");
  EXPECT_TRUE(fake.Messages.empty());
  Bench("attenuator 10");
  Ask("INIT;*OPC?");
  const std::vector<double> pairs = Numbers(Ask("CALC:PAR2:DEF S21;SEL;:CALC:DATA:SDATA?"));
  ASSERT_EQ(pairs.size(), 202u);
  EXPECT_NEAR(std::hypot(pairs[0], pairs[1]), std::pow(10, -0.5), 2e-3);
}

TEST_F(RemoteTest, ACalibrationInForceStaysUntilTheNewOneIsThere) {
  Calibrate();
  const double before = session.Terms.Forward.ETT[7].re;
  const SweepPlan plan = session.Plan;
  Write("SENS:FREQ:STAR 50 MHZ;STOP 3.05e9;:SENS:SWE:POIN 101");
  Write("SENS:CORR:COLL:METH S11");
  Bench("port1 open");
  Write("SENS:CORR:COLL OPEN,1");
  EXPECT_EQ(Ask("STAT:OPER:COND?"), "0");
  EXPECT_EQ(Errors(), kNone);
  EXPECT_TRUE(session.Cal.Cal12Term);
  EXPECT_EQ(session.Plan.StartFreq, plan.StartFreq);
  EXPECT_EQ(session.Plan.NumPoints, 51);
  EXPECT_EQ(session.Terms.Forward.ETT[7].re, before);
  Write("SENS:CORR:COLL:SAVE");
  EXPECT_EQ(Error(), "-221,\"Settings conflict;still to measure SHORT,1 LOAD,1\"");
  // The instrument has its old plan again: what is measured is right.
  Bench("filter");
  Write("SENS:FREQ:STAR 100 MHZ;STOP 3 GHZ;:SENS:SWE:POIN 51");
  Ask("INIT;*OPC?");
  const std::vector<double> pairs = Numbers(Ask("CALC:DATA:SDATA?"));
  EXPECT_NEAR(pairs[20], instrument.Truth(session.Plan.Frequency(10))[0].real(), 1e-3);
  EXPECT_FALSE(std::filesystem::exists(folder.Text() + "/BeforeRemote.cal"));

  Write("SENS:FREQ:STAR 50 MHZ;STOP 3.05e9;:SENS:SWE:POIN 101");
  Write("SENS:CORR:COLL:METH S11");
  for (const auto& [bench, standard] :
       {std::pair("port1 open", "OPEN"), {"port1 short", "SHOR"}, {"port1 load", "LOAD"}}) {
    Bench(bench);
    Write(std::string("SENS:CORR:COLL ") + standard + ",1");
    Settle();
  }
  Write("SENS:CORR:COLL:SAVE");
  EXPECT_EQ(Errors(), kNone);
  EXPECT_TRUE(session.Cal.CalS11);
  EXPECT_EQ(session.Plan.StartFreq, 5e7);
  EXPECT_TRUE(std::filesystem::exists(folder.Text() + "/BeforeRemote.cal"));  // a client's own
  Bench("port1 short offset 40 mm");
  Ask("INIT;*OPC?");
  const std::vector<double> s11 = Numbers(Ask("CALC:DATA:SDATA?"));
  EXPECT_NEAR(s11[20], instrument.Truth(session.Plan.Frequency(10))[0].real(), 1e-3);
  EXPECT_EQ(Ask("CALC:PAR2:DEF S21;:CALC:PAR2:SEL;:CALC:DATA:SDATA?"), "9.91E37");
  EXPECT_EQ(Error(), "-230,\"Data corrupt or stale;S21\"");
}

// A person's calibration, told from a client's by its numbers, outlives what any client does.
TEST_F(RemoteTest, NoCommandLosesACalibrationOfAPerson) {
  namespace fs = std::filesystem;
  const auto path = [this](const char* name) { return folder.Text() + "/" + name; };
  const auto persons = [this](double mark) { session.SavedTerms.Forward.ED.Set(7, {mark, 0}); };
  const auto kept = [&](const char* name) {
    const Result<Done> done = program.controller().files().Load(path(name));
    EXPECT_TRUE(done) << name;
    return session.SavedTerms.Forward.ED[7].re;
  };
  Calibrate();
  persons(0.125);
  Calibrate();
  EXPECT_TRUE(fs::exists(path("BeforeRemote.cal")));
  Calibrate("101");  // the one before is a client's
  EXPECT_TRUE(fs::exists(path("BeforeRemote-2.cal")));
  Calibrate("201");  // of those that clients made the last one is kept
  EXPECT_FALSE(fs::exists(path("BeforeRemote-3.cal")));
  persons(0.25);
  Write("MMEM:STOR:STAT 'second.cal';:MMEM:LOAD:STAT 'second.cal'");
  EXPECT_TRUE(fs::exists(path("BeforeRemote-3.cal")));
  Write("MMEM:LOAD:STAT 'second.cal'");  // kept already
  EXPECT_FALSE(fs::exists(path("BeforeRemote-4.cal")));
  fs::remove(path("BeforeRemote-3.cal"));
  Write("MMEM:LOAD:STAT 'second.cal'");  // no longer
  EXPECT_TRUE(fs::exists(path("BeforeRemote-3.cal")));
  EXPECT_EQ(Errors(), kNone);
  EXPECT_EQ(kept("BeforeRemote.cal"), 0.125);
  EXPECT_EQ(kept("BeforeRemote-3.cal"), 0.25);
  kept("BeforeRemote-2.cal");
  EXPECT_EQ(session.Plan.SavedPlan.NumPoints, 101);
}

// What somebody has saved over a client's calibration is not written over by the next client.
TEST_F(RemoteTest, AFileThatAPersonHasWrittenSinceStays) {
  namespace fs = std::filesystem;
  const auto path = [this](const char* name) { return folder.Text() + "/" + name; };
  Calibrate();
  Calibrate("101");
  ASSERT_TRUE(fs::exists(path("BeforeRemote.cal")));
  fs::last_write_time(path("BeforeRemote.cal"),
                      fs::last_write_time(path("BeforeRemote.cal")) + std::chrono::seconds(3));
  Calibrate("201");
  EXPECT_TRUE(fs::exists(path("BeforeRemote-2.cal")));
}

TEST_F(RemoteTest, AMarkerOfATraceThatIsNotOnTheScreenIsRefused) {
  Calibrate();
  EXPECT_EQ(Ask("CALC:PAR4:DEF S22;:CALC:PAR4:SEL;:INIT;*OPC?"), "1");
  for (const char* query : {"CALC:MARK1:Y?", "CALC:MARK1:BWID?"}) {
    EXPECT_EQ(Ask(query), "9.91E37") << query;
    EXPECT_EQ(Error(), "-221,\"Settings conflict;the trace is not on the screen\"");
  }
  Write("CALC:MARK1:FUNC:EXEC MAX");
  EXPECT_EQ(Error().substr(0, 4), "-221");
  EXPECT_EQ(Ask("CALC:PAR:COUN 4;:INIT;*OPC?"), "1");
  EXPECT_NE(Ask("CALC:MARK1:Y?"), "9.91E37");
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(RemoteTest, ASweepLostToAnotherClientsPlanIsNotReplacedByThatClientsSweep) {
  Calibrate();
  TestClient two(remote, "two");
  EXPECT_EQ(Ask("SENS:SWE:POIN 101;:INIT;*OPC?"), "1");
  EXPECT_EQ(Ask(two, "SENS:SWE:POIN 51;:INIT;*OPC?"), "1");
  EXPECT_EQ(Ask("SENS:DATA:RAWD? S11"), "9.91E37");
  EXPECT_EQ(Error().substr(0, 4), "-230");
  EXPECT_EQ(Ask("CALC:DATA:SDATA?"), "9.91E37");
  EXPECT_EQ(Error().substr(0, 4), "-230");
  EXPECT_EQ(Numbers(Ask("CALC:DATA:SDATA?")).size(), 102u);  // a later read: the last whole sweep
  EXPECT_EQ(Numbers(Ask(two, "CALC:DATA:SDATA?")).size(), 102u);
}

class TermsTest : public RemoteTest {
 protected:
  static constexpr const char* kNames[] = {"ed,1,1", "es,1,1", "er,1,1", "et,2,1",
                                           "el,2,1", "ex,2,1", "ed,2,2", "es,2,2",
                                           "er,2,2", "et,1,2", "el,1,2", "ex,1,2"};
  static std::string Term(int index, double value) {
    std::string text = std::string("SENS:CORR:COEF ") + kNames[index];
    for (int i = 0; i < 102; ++i) text += "," + std::to_string(value);
    return text;
  }
  // The real parts of the first point of the twelve terms in force.
  std::vector<double> InForce() {
    std::vector<double> values;
    for (const char* name : kNames)
      values.push_back(Numbers(Ask(std::string("SENS:CORR:COEF? ") + name)).front());
    return values;
  }
};

TEST_F(TermsTest, OfTwoClientsAreTwoSets) {
  Write("SENS:FREQ:STAR 1e9;STOP 2e9;:SENS:SWE:POIN 51");
  TestClient two(remote, "two");
  for (int i = 0; i < 12; ++i) {
    two.Write(Term(i, 0.25));
    if (i < 11) Write(Term(11 - i, 0.5));  // in the other order, at the same time
  }
  Settle();
  EXPECT_EQ(InForce(), std::vector<double>(12, 0.25));
  Write(Term(0, 0.5));
  Settle();
  EXPECT_EQ(InForce(), std::vector<double>(12, 0.5));
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(TermsTest, OfAClientThatIsGoneAreGone) {
  Write("SENS:FREQ:STAR 1e9;STOP 2e9;:SENS:SWE:POIN 51");
  {
    TestClient two(remote, "two");
    for (int i = 9; i < 12; ++i) two.Write(Term(i, 0.125));
  }
  for (int i = 0; i < 9; ++i) Write(Term(i, 0.25));
  Settle();
  EXPECT_EQ(Ask("SENS:CORR:STAT?"), "0");
  Write("*RST");
  for (int i = 9; i < 12; ++i) Write(Term(i, 0.5));
  Settle();
  EXPECT_EQ(Ask("SENS:CORR:STAT?"), "0");
  for (int i = 0; i < 9; ++i) Write(Term(i, 0.5));
  Settle();
  EXPECT_EQ(InForce(), std::vector<double>(12, 0.5));
}

TEST_F(TermsTest, OfAnUploadThatLacksOneDoNotMixWithTheNext) {
  Write("SENS:FREQ:STAR 1e9;STOP 2e9;:SENS:SWE:POIN 51");
  for (int i = 0; i < 12; ++i)
    if (i != 2) Write(Term(i, 0.125));
  Write("SENS:CORR:COEF er,1,1,1");  // refused
  EXPECT_EQ(Error().substr(0, 4), "-109");
  for (int round = 1; round <= 3; ++round) {
    const double value = round * 0.25;
    for (int i = 0; i < 12; ++i) Write(Term(i, value));
    Settle();
    EXPECT_EQ(InForce(), std::vector<double>(12, value));
  }
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(RemoteTest, ALinkLostAtAStandardLeavesTheCalibration) {
  Calibrate();
  Write("SENS:CORR:COLL:METH S11");
  Bench("fault unplugged");
  Write("SENS:CORR:COLL OPEN,1");
  EXPECT_EQ(Ask("*OPC?"), "1");
  EXPECT_NE(Errors().find("-240,"), std::string::npos);
  EXPECT_TRUE(session.Cal.Cal12Term);
  EXPECT_EQ(session.Plan.NumPoints, 51);
  EXPECT_FALSE(session.Steps.Measuring);
}

TEST_F(RemoteTest, IdealTermsLetRawRatiosBeMeasuredAtAnyPlan) {
  Bench("port1 short");
  Write("SENS:FREQ:STAR 1e9;STOP 2e9;:SENS:SWE:POIN 51");
  EXPECT_EQ(Ask("SENS:CORR:COEF:PRES;*OPC?"), "1");
  EXPECT_EQ(Ask("INIT;*OPC?"), "1");
  EXPECT_EQ(Ask("CALC:DATA:SDATA?"), Ask("SENS:DATA:RAWD? S11"));
  Write("SENS:FREQ:STAR 3 MHZ;STOP 3 GHZ;:SENS:SWE:POIN 101");
  EXPECT_EQ(Ask("INIT;*OPC?"), "1");
  EXPECT_EQ(Numbers(Ask("CALC:DATA:SDATA?")).size(), 202u);
  EXPECT_EQ(Errors(), kNone);
  Calibrate();
  Write("SENS:CORR:COEF:PRES");
  EXPECT_EQ(Error(), "-221,\"Settings conflict;a calibration is in force\"");
}

TEST_F(RemoteTest, WindowsAndReportsNameIdealTerms) {
  Write("SENS:FREQ:STAR 1e9;STOP 2e9;:SENS:SWE:POIN 51;:SENS:CORR:COEF:PRES");
  EXPECT_EQ(Ask("INIT;*OPC?"), "1");
  EXPECT_TRUE(session.Panels[3].starts_with("Ideal Terms")) << session.Panels[3];
  program.Tick(TimerId::Timer2);  // after an overload, say
  EXPECT_TRUE(session.Panels[3].starts_with("Ideal Terms")) << session.Panels[3];
  const ReportDocument report = MakeReport(program.controller(), {}, {});
  std::string text;
  for (const ReportBlock& block : report.Blocks)
    if (const auto* table = std::get_if<ReportTable>(&block); table != nullptr)
      for (const auto& row : table->Rows)
        for (const std::string& cell : row) text += cell + "\n";
  EXPECT_NE(text.find("Ideal Terms: no standard was measured"), std::string::npos) << text;
  EXPECT_EQ(text.find("12 Term"), std::string::npos) << text;
  Calibrate();  // expects "12 Term Cal"
}

TEST_F(RemoteTest, IdealTermsAreNoCalibration) {
  const auto doubt = [this] { return std::stoi(Ask("STAT:QUES:COND?")) & 256; };
  const char* kind = "SENS:CORR:STAT?;TYPE?;STAT:INT?";
  Write("SENS:FREQ:STAR 100 MHZ;STOP 3 GHZ;:SENS:SWE:POIN 51");
  EXPECT_EQ(Ask("SENS:CORR:COEF:PRES;*OPC?;:INIT;*OPC?"), "1;1");
  EXPECT_EQ(doubt(), 256);
  EXPECT_EQ(Ask(kind), "0;NONE;NONE");
  Write("MMEM:STOR:SNP 'raw.ts'");
  EXPECT_NE(Ask("MMEM:TRAN? 'raw.ts'").find("! Calibration: none, ideal terms"), std::string::npos);
  EXPECT_EQ(Errors(), kNone);
  // At another plan they are as ideal: nothing was interpolated.
  Ask("SENS:SWE:POIN 101;:INIT;*OPC?");
  Write("MMEM:STOR:SNP 'other.ts'");
  EXPECT_NE(Ask("MMEM:TRAN? 'other.ts'").find("! Interpolated: no"), std::string::npos);
  EXPECT_EQ(Ask("SENS:SWE:POIN 51;:INIT;*OPC?"), "1");
  EXPECT_EQ(Errors(), kNone);
  // One term at one point makes it a calibration.
  session.SavedTerms.Reverse.EL.Set(50, {0.001, 0});
  EXPECT_EQ(Ask(kind).substr(0, 5), "1;ALL");
  Calibrate();
  Ask("INIT;*OPC?");
  EXPECT_EQ(doubt(), 0);
  EXPECT_EQ(Ask(kind), "1;ALL;EXAC");
  Write("MMEM:STOR:SNP 'real.ts'");
  EXPECT_NE(Ask("MMEM:TRAN? 'real.ts'").find("! Calibration: 12 Term"), std::string::npos);
  EXPECT_EQ(Errors(), kNone);
}

// ---- clients and limits
// --------------------------------------------------------------------------------

TEST_F(RemoteTest, ClientsHaveTheirOwnFormAndErrors) {
  TestClient two(remote, "two");
  Write("FORM REAL,32;FOO");
  EXPECT_EQ(Ask(two, "FORM?;:SYST:ERR?"), std::string("ASC,0;") + kNone);
  EXPECT_EQ(Ask("FORM?"), "REAL,32");
}

TEST_F(RemoteTest, TakesFourClients) {
  TestClient two(remote), three(remote), four(remote);
  EXPECT_EQ(remote.Connect(two, "five"), nullptr);
  EXPECT_EQ(Ask(four, "*OPC?"), "1");
}

TEST_F(RemoteTest, AMessageThatIsTooLongIsSkippedToItsEnd) {
  for (int i = 0; i < 40; ++i) one.Bytes(std::string(1 << 15, 'A'));
  one.Bytes("\n*OPC?\n");
  EXPECT_EQ(one.Take(), "1");
  EXPECT_EQ(Errors(), "-363,\"Input buffer overrun\"");
  // A length that nobody sends, of a mistyped or spoilt message, is not waited for.
  one.Bytes("SENS:CORR:COEF ed,1,1,#9999999999xyz\n*OPC?\n");
  EXPECT_EQ(one.Take(), "1");
  EXPECT_EQ(Errors(), "-363,\"Input buffer overrun\"");
  one.Bytes(std::string(1 << 19, ' ') + "*OPC?\n");  // long, but not too long
  EXPECT_EQ(one.Take(), "1");
}

TEST_F(RemoteTest, AClientThatDoesNotReadIsClosed) {
  one.unread = (8 << 20) + 1;
  Write("*IDN?");
  EXPECT_TRUE(one.closed);
  one.unread = 0;
  one.Take();
  Write("*IDN?");
  EXPECT_EQ(one.Take(), "");
}

TEST_F(RemoteTest, ABrowserIsClosed) {
  for (const char* word : {"GET ", "POST ", "PUT ", "HEAD ", "OPTIONS "}) {
    TestClient browser(remote);
    browser.Bytes(std::string(word).substr(0, 2));
    EXPECT_FALSE(browser.closed) << word;
    browser.Bytes(std::string(word).substr(2) + "/ HTTP/1.1\r\nHost: localhost\r\n\r\n");
    EXPECT_TRUE(browser.closed) << word;
    EXPECT_EQ(browser.received, "") << word;
  }
}

TEST_F(RemoteTest, ManyMessagesAtOnceAreAllAnswered) {
  std::string many;
  for (int i = 0; i < 100000; ++i) many += "*OPC?\n";
  one.Bytes(many);
  Settle();
  while (!posted.empty()) RunPosted();
  EXPECT_EQ(one.received.size(), 200000u);
}

TEST_F(RemoteTest, TheWindowShowsClientsExchangesAndErrors) {
  for (int i = 0; i < 250; ++i) Write("*ESE " + std::to_string(i));
  Write("FOO;*ESE?");
  const RemoteView view = remote.View();
  ASSERT_EQ(view.Clients.size(), 1u);
  EXPECT_EQ(view.Clients[0], "1  one  FOO;*ESE?");
  ASSERT_EQ(view.Log.size(), 200u);
  EXPECT_EQ(view.Log.back(), "14:05:30  1  FOO;*ESE?  ->  249");
  EXPECT_EQ(view.Errors.back(), "14:05:30  1  -113,\"Undefined header;FOO\"");
}

// ---- files
// ---------------------------------------------------------------------------------------------

TEST_F(RemoteTest, FilesAreInTheirOwnFolderAlone) {
  Calibrate();
  Ask("INIT;*OPC?");
  Write("MMEM:STOR:SNP 'a.s2p';STAT 'b.cal'");
  EXPECT_EQ(Errors(), kNone);
  EXPECT_TRUE(std::filesystem::exists(folder.Text() + "/remote/a.s2p"));
  const std::string block = Ask("MMEM:TRAN? 'a.s2p'");
  EXPECT_EQ(block.substr(0, 1), "#");
  EXPECT_NE(block.find("# MHZ S MA R 50"), std::string::npos);
  const std::string catalog = Ask("MMEM:CAT?");
  EXPECT_NE(catalog.find("\"a.s2p,,"), std::string::npos);
  EXPECT_LT(catalog.find("a.s2p"), catalog.find("b.cal"));
  Write("MMEM:LOAD:STAT 'b.cal'");
  EXPECT_EQ(Errors(), kNone);
  Write("MMEM:DEL 'a.s2p'");
  EXPECT_FALSE(std::filesystem::exists(folder.Text() + "/remote/a.s2p"));
}

TEST_F(RemoteTest, ANetworkIsStoredInEitherVersionOfTouchstone) {
  Calibrate();
  Ask("INIT;*OPC?");
  const auto text = [this](const std::string& name) { return Ask("MMEM:TRAN? '" + name + "'"); };
  Write("MMEM:STOR:SNP 'one.s2p';SNP 'first.ts',V1;SNP 'two.TS';SNP 'second.s2p',v2");
  EXPECT_EQ(Errors(), kNone);
  for (const char* name : {"one.s2p", "first.ts"}) {
    EXPECT_NE(text(name).find("# MHZ S MA R 50"), std::string::npos) << name;
    EXPECT_EQ(text(name).find("[Version]"), std::string::npos) << name;
  }
  for (const char* name : {"two.TS", "second.s2p"}) {
    EXPECT_NE(text(name).find("[Version] 2.0\r\n# HZ S RI R 50"), std::string::npos) << name;
    EXPECT_NE(text(name).find("! Program: qk47-vna"), std::string::npos) << name;
  }
  Write("MMEM:STOR:SNP 'none.s2p',V3");
  EXPECT_EQ(Errors(), "-224,\"Illegal parameter value;V3\"");
  EXPECT_FALSE(std::filesystem::exists(folder.Text() + "/remote/none.s2p"));
}

constexpr const char* kNotFour =
    "-221,\"Settings conflict;not all four parameters are measured: use a name that ends with "
    ".s1p, "
    "or STOR:CSV\"";

// Readers take an .s1p for a frequency and two numbers a point, whatever stands in its lines.
TEST_F(RemoteTest, AFileOfOnePortHoldsS11Alone) {
  const auto rows = [this](const std::string& name) {
    std::istringstream text(Ask("MMEM:TRAN? '" + name + "'"));
    std::vector<std::vector<double>> found;
    for (std::string line; std::getline(text, line);) {
      if (line.empty() || line.find_first_not_of("0123456789.-+eE \r") != std::string::npos)
        continue;
      std::istringstream fields(line);
      found.emplace_back(std::istream_iterator<double>(fields), std::istream_iterator<double>());
    }
    return found;
  };
  const auto expectS11 = [&](const std::string& name, bool polar) {
    const std::vector<std::vector<double>> found = rows(name);
    ASSERT_EQ(found.size(), 51u) << name;
    for (std::size_t i = 0; i < found.size(); ++i) {
      ASSERT_EQ(found[i].size(), 3u) << name;
      const Complex z = session.Data.S11[static_cast<int>(i)];
      EXPECT_NEAR(found[i][1], polar ? std::hypot(z.re, z.im) : z.re, 1e-4) << name;
    }
  };
  Write("SENS:FREQ:STAR 100 MHZ;STOP 3 GHZ;:SENS:SWE:POIN 51;:SENS:CORR:COLL:METH BOTH");
  Collect("port1 open", "OPEN,1");
  Collect("port1 short", "SHOR,1");
  Collect("port1 load", "LOAD,1");
  Collect("through", "THRU");
  Write("SENS:CORR:COLL ISOL");
  Settle();
  Write("SENS:CORR:COLL:SAVE");
  Settle();
  Bench("filter");
  Ask("INIT;*OPC?");
  ASSERT_TRUE(session.Cal.CalS11S21);
  Write("MMEM:STOR:SNP 'n.s1p';SNP 'N.S1P',V1;SNP 'two.s1p',V2");
  EXPECT_EQ(Errors(), kNone);
  for (const char* name : {"MMEM:STOR:SNP 'no.s2p'", "MMEM:STOR:SNP 'no.S2P',V1",
                           "MMEM:STOR:SNP 'no.txt'", "MMEM:STOR:SNP 'no.ts'"}) {
    Write(name);
    EXPECT_EQ(Errors(), kNotFour) << name;
  }
  expectS11("n.s1p", true);
  expectS11("N.S1P", true);
  expectS11("two.s1p", false);
  Calibrate();
  Bench("filter");
  Ask("INIT;*OPC?");
  Write("MMEM:STOR:SNP 'full.s1p'");
  EXPECT_EQ(Errors(), kNone);
  expectS11("full.s1p", true);
}

TEST_F(RemoteTest, ATableIsStoredWithTheColumnsThatAreNamed) {
  Calibrate();
  Ask("INIT;*OPC?");
  const auto head = [this](const std::string& name) {
    const std::string text = Ask("MMEM:TRAN? '" + name + "'");
    const std::size_t at = text.find("freq_Hz");
    return at == std::string::npos ? text : text.substr(at, text.find('\r', at) - at);
  };
  Write("MMEM:STOR:CSV 'plain.csv';CSV 'some.csv',DB,unwrapped,SWR;CSV 'z.csv',R,X");
  EXPECT_EQ(Errors(), kNone);
  EXPECT_EQ(head("plain.csv"), "freq_Hz,S11_re,S11_im,S21_re,S21_im,S12_re,S12_im,S22_re,S22_im");
  EXPECT_EQ(head("some.csv"),
            "freq_Hz,S11_dB,S11_unwrapped_deg,S11_SWR,S21_dB,S21_unwrapped_deg,S12_dB,"
            "S12_unwrapped_deg,S22_dB,S22_unwrapped_deg,S22_SWR");
  EXPECT_EQ(head("z.csv"), "freq_Hz,S11_R_ohm,S11_X_ohm,S22_R_ohm,S22_X_ohm");
  // Its numbers are those of the sweep.
  const std::string table = Ask("MMEM:TRAN? 'plain.csv'");
  const std::size_t first = table.find("\r\n100000000,") + 2;
  const std::vector<double> row = Numbers(table.substr(first, table.find('\r', first) - first));
  ASSERT_EQ(row.size(), 9u);
  EXPECT_EQ(row[1], session.Data.S11[0].re);
  EXPECT_EQ(row[8], session.Data.S22[0].im);
  for (const auto& [command, error] : std::vector<std::pair<std::string, std::string>>{
           {"MMEM:STOR:CSV 'no.csv',VOLTS", "-224,\"Illegal parameter value;VOLTS\""},
           {"MMEM:STOR:CSV 'no.csv',5", "-104,\"Data type error\""},
           {"MMEM:STOR:CSV '../no.csv'", "-257,\"File name error;../no.csv\""},
           {"MMEM:STOR:CSV", "-109,\"Missing parameter;MMEM:STOR:CSV\""}}) {
    Write(command);
    EXPECT_EQ(Errors(), error) << command;
  }
  EXPECT_FALSE(std::filesystem::exists(folder.Text() + "/remote/no.csv"));
}

TEST_F(RemoteTest, WhatIsNotMeasuredIsNoTable) {
  Write("SENS:FREQ:STAR 100 MHZ;STOP 3 GHZ;:SENS:SWE:POIN 51;:SENS:CORR:COLL:METH S21");
  Collect("through", "THRU");
  Write("SENS:CORR:COLL:SAVE");
  Settle();
  Ask("INIT;*OPC?");
  EXPECT_EQ(Errors(), kNone);
  Write("MMEM:STOR:CSV 'r.csv',R");
  EXPECT_EQ(Errors(), "-221,\"Settings conflict;no reflection is measured\"");
  Write("MMEM:STOR:SNP 'v.ts'");
  EXPECT_EQ(Errors().substr(0, 24), "-221,\"Settings conflict;");
  Write("MMEM:STOR:SNP 'none.s1p'");
  EXPECT_EQ(Errors(), "-221,\"Settings conflict;S11 is not measured\"");
  EXPECT_FALSE(std::filesystem::exists(folder.Text() + "/remote/none.s1p"));
  // Readers expect nine numbers in a line of an .s2p.
  Write("MMEM:STOR:SNP 'two.s2p'");
  EXPECT_EQ(Errors(), kNotFour);
  EXPECT_FALSE(std::filesystem::exists(folder.Text() + "/remote/two.s2p"));
  Write("MMEM:STOR:CSV 's21.csv'");
  EXPECT_EQ(Errors(), kNone);
  EXPECT_NE(Ask("MMEM:TRAN? 's21.csv'").find("freq_Hz,S21_re,S21_im\r"), std::string::npos);
}

TEST_F(RemoteTest, TheRootOfSensingAndSourceMayBeLeftOut) {
  Write("FREQ:STAR 100 MHZ;STOP 3 GHZ;:SWE:POIN 51;:POW -3;:AVER:COUN 2");
  EXPECT_EQ(Errors(), kNone);
  EXPECT_EQ(Ask("SENS:FREQ:STAR?;STOP?;:SENS1:SWE:POIN?;:SOUR:POW?;:SENS:AVER:COUN?"),
            "100000000;3000000000;51;-3;2");
  EXPECT_EQ(Ask("INST?"), "\"NA\"");
  Write("INST 'SA'");
  EXPECT_EQ(Errors(), "-224,\"Illegal parameter value;SA\"");
  Write("CALC:PAR:DEF:EXT 'mine',S21");
  EXPECT_EQ(Ask("SYST:MEAS2:NAME?"), "\"mine\"");
  EXPECT_EQ(Ask("SYST:MEAS3:NAME?"), "\"\"");
  EXPECT_EQ(Errors(), "-114,\"Header suffix out of range;no such measurement\"");
  Write("CALC:PAR2:SEL;:CALC:FORM PHAS");
  EXPECT_EQ(Ask("CALC:FORM?;:CALC:TRAC2:FORM?;:CALC:TRAC1:FORM?"), "PHAS;PHAS;MLOG");
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(RemoteTest, OtherPlacesAreOutOfReach) {
  Calibrate();
  Ask("INIT;*OPC?");
  namespace fs = std::filesystem;
  Write("MMEM:STOR:STAT 'first.cal'");
  std::ofstream(folder.Text() + "/secret.txt") << "secret";
  fs::create_symlink(folder.Text() + "/secret.txt", folder.Text() + "/remote/link.txt");
  fs::create_directory(folder.Text() + "/remote/inner");
  for (const std::string name : {"../x", "/etc/passwd", "a/b", ".hidden", "", "..", "link.txt",
                                 "inner", "a b", "\xc3\xa4.txt"}) {
    const std::string quoted = "'" + name + "'";
    EXPECT_EQ(Ask("MMEM:TRAN? " + quoted), "#10") << name;
    for (const char* command : {"MMEM:STOR:STAT ", "MMEM:STOR:SNP ", "MMEM:STOR:CSV ",
                                "MMEM:STOR:IMAG ", "MMEM:DEL ", "MMEM:LOAD:STAT "})
      Write(command + quoted);
    Settle();
    const std::string errors = Errors();
    std::size_t count = 0;
    for (std::size_t at = errors.find("-257,"); at != std::string::npos;
         at = errors.find("-257,", at + 1))
      ++count;
    EXPECT_EQ(count, 7u) << name << errors;
  }
  std::ifstream secret(folder.Text() + "/secret.txt");
  std::string text;
  secret >> text;
  EXPECT_EQ(text, "secret");
}

TEST_F(RemoteTest, AFolderThatIsALinkIsNotRead) {
  namespace fs = std::filesystem;
  fs::create_directory(folder.Text() + "/elsewhere");
  std::ofstream(folder.Text() + "/elsewhere/private.txt") << "x";
  fs::create_directory_symlink(folder.Text() + "/elsewhere", folder.Text() + "/remote");
  EXPECT_EQ(Ask("MMEM:CAT?"), "\"\"");
  EXPECT_EQ(Errors(), "-257,\"File name error;the folder is a link\"");
  EXPECT_EQ(Ask("MMEM:TRAN? 'private.txt'"), "#10");
  EXPECT_EQ(Errors(), "-257,\"File name error;private.txt\"");
}

TEST_F(RemoteTest, AnUnknownEndingOfAPictureIsAFaultOfItsName) {
  surface.Unavailable = Failure{"Unknown Image Format", "x"};
  Write("MMEM:STOR:IMAG 'graph.xyz'");
  EXPECT_EQ(Errors(), "-257,\"File name error;graph.xyz: Unknown Image Format\"");
  surface.Unavailable = Failure{"No space left on device", "x"};
  Write("MMEM:STOR:IMAG 'graph.png'");
  EXPECT_EQ(Errors(), "-250,\"Mass storage error;No space left on device\"");
}

// ---- markers and limits
// ------------------------------------------------------------------------------------

TEST_F(RemoteTest, MarkersReadTheSelectedTrace) {
  Calibrate();
  Bench("filter");
  Write("CALC:PAR:COUN 1;:CALC:PAR1:DEF S21;SEL;:CALC:TRAC1:FORM MLOG");
  Ask("INIT;*OPC?");
  Write("CALC:MARK1:STAT ON;X 1e9;:CALC:MARK2:FUNC:EXEC MAX");
  EXPECT_EQ(Ask("CALC:MARK1:STAT?;X?"), "1;1028000000");
  const std::vector<double> pairs = Numbers(Ask("CALC:TRAC1:DATA:FDAT?"));
  std::size_t peak = 0;
  for (std::size_t i = 0; i < 51; ++i)
    if (pairs[2 * i] > pairs[2 * peak]) peak = i;
  EXPECT_EQ(std::stod(Ask("CALC:MARK2:X?")), session.Plan.Frequency(static_cast<int>(peak)));
  EXPECT_EQ(Numbers(Ask("CALC:MARK2:Y?")), (std::vector<double>{pairs[2 * peak], 0}));
  EXPECT_GT(std::stod(Ask("CALC:MARK1:BWID?")), 0);
  EXPECT_EQ(Ask("CALC:LIM?"), "0");
  EXPECT_EQ(Errors(), kNone);
}

}  // namespace
}  // namespace qk::test
