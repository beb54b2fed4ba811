// SPDX-License-Identifier: MIT
// Sweeps of remote clients: their completion, their end by others, and what is read then.
#include "scpi/remote.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "scpi/remote_fixture.h"

namespace qk::test {
namespace {

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
  EXPECT_TRUE(fake.Messages.empty());  // no prompt
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

}  // namespace
}  // namespace qk::test
