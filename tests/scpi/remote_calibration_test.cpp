// SPDX-License-Identifier: MIT
// Calibrations by remote clients.
#include "scpi/remote.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "control/report.h"
#include "scpi/remote_fixture.h"

namespace qk::test {
namespace {

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

// A user's calibration, distinguished from a client's by its numbers, outlives what any client
// does.
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

// What a user has saved over a client's calibration is not written over by the next client.
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

}  // namespace
}  // namespace qk::test
