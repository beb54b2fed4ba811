// SPDX-License-Identifier: MIT
// What belongs to a client or to a frequency: markers at another plan, values of one's own sweep,
// half-written terms, the sweeps of a client that is gone; and the extremes of the plan.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "scpi/remote_fixture.h"

namespace qk::test {
namespace {

class OwnValues : public testing::Test, protected RemoteFixture {
 protected:
  // Ideal terms, channel 1 as S21 in dB, the bench with this attenuator.
  void MeasureRaw(const std::string& points = "51") {
    Bench("attenuator 10");
    Ask("SENS:FREQ:STAR 100 MHZ;STOP 3 GHZ;:SENS:SWE:POIN " + points +
        ";:SENS:CORR:COEF:PRES;*OPC?");
    Write("CALC:PAR:COUN 1;:CALC:PAR1:DEF S21;SEL;:CALC:TRAC1:FORM MLOG");
    ASSERT_EQ(Ask("INIT;*OPC?"), "1");
    ASSERT_EQ(Errors(), kNone);
  }
  double MarkerValue(TestClient& client, const std::string& marker = "1") {
    const std::string reply = Ask(client, "CALC:MARK" + marker + ":Y?");
    return Numbers(reply).front();
  }
  static std::string TermText(const char* name, double value, int points) {
    std::string text = std::string("SENS:CORR:COEF ") + name;
    for (int i = 0; i < points; ++i) text += "," + std::to_string(value) + ",0";
    return text;
  }
};

// ---- time responses ----------------------------------------------------------------------------

TEST_F(OwnValues, ATimeResponseIsOfTheClientsOwnSweep) {
  MeasureRaw("1024");
  Write("CALC:TRAC1:FORM TDR");
  ASSERT_EQ(Errors(), kNone);
  Ask("INIT;*OPC?");
  const auto most = [&](const std::string& reply) {
    double size = 0;
    const std::vector<double> pairs = Numbers(reply);
    for (std::size_t i = 0; i < pairs.size(); i += 2) size = std::max(size, std::abs(pairs[i]));
    return size;
  };
  const double before = most(Ask("CALC:TRAC1:DATA:FDAT?"));
  ASSERT_GT(before, 0);
  Ask("INIT;*OPC?");
  TestClient two(remote, "two");
  Bench("attenuator 30");
  Ask(two, "INIT;*OPC?");
  EXPECT_NEAR(most(Ask("CALC:TRAC1:DATA:FDAT?")) / before, 1, 0.05) << "its own sweep";
  EXPECT_NEAR(most(Ask(two, "CALC:TRAC1:DATA:FDAT?")) / before, 0.1, 0.01);
  EXPECT_EQ(Errors(), kNone);
  Write("CALC:PAR:DEF:EXT 'other',S11;:CALC:PAR:SEL 'other'");
  ASSERT_EQ(Errors(), kNone);
  EXPECT_EQ(Ask("INIT;*OPC?;:CALC:DATA? FDATA"), "1;9.91E37");
  EXPECT_EQ(Error(),
            "-221,\"Settings conflict;the trace shows the response of another parameter\"");
}

// ---- markers -----------------------------------------------------------------------------------

TEST_F(OwnValues, AMarkerSetBeforeTheFirstSweepKeepsItsFrequency) {
  Write("CALC:MARK1:X 300 MHZ;:SENS:FREQ:STAR 100 MHZ;STOP 1.5 GHZ;:SENS:SWE:POIN 201");
  Ask("SENS:CORR:COEF:PRES;*OPC?");
  EXPECT_EQ(Ask("CALC:MARK1:X?"), "303000000");
  Write("SENS:FREQ:STAR 200 MHZ;:SENS:SWE:POIN 801");
  EXPECT_EQ(Ask("INIT;*OPC?;:CALC:MARK1:X?"), "1;300750000")
      << "the point nearest to 300 MHz, not to where it was moved before";
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(OwnValues, AMarkerKeepsItsFrequencyThroughACalibration) {
  Calibrate();
  Write("CALC:MARK2:X 1.5 GHZ;:SENS:FREQ:STAR 1 GHZ;STOP 2 GHZ;:SENS:SWE:POIN 101");
  Write("SENS:CORR:COLL:METH S21");
  Collect("through", "THRU");
  Write("SENS:CORR:COLL:SAVE");
  Settle();
  EXPECT_EQ(Ask("CALC:MARK2:STAT?;X?"), "1;1500000000");
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(OwnValues, AMarkerOfThePendingPlanWaitsForIt) {
  Ask("SENS:FREQ:STAR 1 GHZ;STOP 2 GHZ;:SENS:SWE:POIN 101;:SENS:CORR:COEF:PRES;*OPC?");
  Ask("INIT;*OPC?");
  Write("CALC:MARK1:X 500 MHZ");
  EXPECT_EQ(Error(), "-222,\"Data out of range;500\"");
  Write("SENS:FREQ:STAR 0.4 GHZ;STOP 1.4 GHZ;:CALC:MARK1:X 500 MHZ");
  EXPECT_EQ(Ask("CALC:MARK1:STAT?;X?"), "0;500000000");
  EXPECT_EQ(Ask("CALC:MARK1:Y?"), "9.91E37");
  EXPECT_EQ(Error(), "-221,\"Settings conflict;the marker is outside the sweep\"");
  Write("CALC:MARK1 ON");
  EXPECT_EQ(Error(), "-221,\"Settings conflict;the marker is outside the sweep\"");
  Ask("INIT;*OPC?");
  EXPECT_EQ(Ask("CALC:MARK1:STAT?;X?"), "1;500000000");
  // It leaves the sweep again; switched off meanwhile, it does not come back.
  Ask("SENS:FREQ:STAR 1 GHZ;STOP 2 GHZ;:INIT;*OPC?");
  EXPECT_EQ(Ask("CALC:MARK1:STAT?;X?"), "0;500000000");
  Write("CALC:MARK1 OFF");
  Ask("SENS:FREQ:STAR 0.4 GHZ;:INIT;*OPC?");
  EXPECT_EQ(Ask("CALC:MARK1:STAT?"), "0");
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(OwnValues, AMarkerReadsTheClientsOwnSweepFirst) {
  MeasureRaw();
  Write("CALC:MARK1:X 1 GHZ;:CALC:MARK2:X 2 GHZ");
  Ask("INIT;*OPC?");
  const double one10 = Numbers(Ask("CALC:TRAC1:DATA:FDAT?"))[2 * 16];
  TestClient two(remote, "two");
  Bench("attenuator 20");
  EXPECT_EQ(Ask(two, "INIT;*OPC?"), "1");
  const double two20 = MarkerValue(two);
  EXPECT_NEAR(one10 - two20, 10, 0.2);
  // Nothing on the screen changes, and each marker's first read is of that sweep.
  const double shown = session.Channel(1).Value[17];
  EXPECT_EQ(MarkerValue(one), one10);
  EXPECT_NEAR(MarkerValue(one, "2"), one10, 3);
  EXPECT_EQ(session.Channel(1).Value[17], shown);
  EXPECT_EQ(MarkerValue(one), two20) << "later reads give the last sweep";
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(OwnValues, SearchesAndWidthsAreOfTheClientsOwnSweepToo) {
  MeasureRaw("201");
  Bench("filter");
  Ask("INIT;*OPC?");
  TestClient two(remote, "two");
  const double width = std::stod(Ask("CALC:MARK1:BWID?"));
  Ask("INIT;*OPC?");
  Bench("attenuator 3");
  Ask(two, "INIT;*OPC?");
  EXPECT_EQ(std::stod(Ask("CALC:MARK1:BWID?")), width);
  Write("CALC:MARK1:FUNC:EXEC MIN");
  Settle();
  EXPECT_LT(MarkerValue(one), -20) << "the filter's stop band, not the attenuator";
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(OwnValues, TheVerdictIsOfTheClientsOwnSweep) {
  MeasureRaw();
  ChannelSettings& channel = session.Channel(1);
  channel.LimitsOn = true;
  channel.UpperLimit.fill(-15);
  channel.LowerLimit.fill(kNoLowerLimit);
  session.Limits.Enabled = session.Limits.Alarm = session.Display.LimitAlarmOn = true;
  session.Display.ShowLimits = true;
  Ask("INIT;*OPC?");
  EXPECT_EQ(Ask("CALC:LIM:FAIL?"), "1");
  Ask("INIT;*OPC?");
  TestClient two(remote, "two");
  Bench("attenuator 30");
  EXPECT_EQ(Ask(two, "INIT;*OPC?;:CALC:LIM:FAIL?"), "1;0");
  EXPECT_EQ(Ask("CALC:LIM:FAIL?"), "1") << "its own sweep failed";
  EXPECT_EQ(Ask("CALC:LIM:FAIL?"), "0") << "the last one passed";
}

TEST_F(OwnValues, AMarkerReadsWhatIsDisplayed) {
  Bench("filter");
  Ask("SENS:FREQ:STAR 100 MHZ;STOP 3 GHZ;:SENS:SWE:POIN 201;:SENS:CORR:COEF:PRES;*OPC?");
  Write("CALC:PAR:COUN 1;:CALC:PAR1:DEF S21;SEL;:CALC:TRAC1:FORM MLOG;:CALC:SMO:APER 10;STAT ON");
  Ask("INIT;*OPC?");
  Write("CALC:MARK1:FUNC:EXEC MAX");
  Settle();
  const auto point = static_cast<std::size_t>(session.Markers.Of(0, 0).Point);
  const double smoothed = Numbers(Ask("CALC:TRAC1:DATA:FDAT?"))[2 * (point - 1)];
  EXPECT_NEAR(MarkerValue(one), smoothed, 1e-5);
  EXPECT_GT(std::abs(session.Channel(1).Value[point] - smoothed), 1e-3);
}

// ---- terms -------------------------------------------------------------------------------------

TEST_F(OwnValues, TermsOfAnotherPlanAreReportedAsDropped) {
  constexpr const char* kTerms[] = {"ed,1,1", "es,1,1", "er,1,1", "et,2,1", "el,2,1", "ex,2,1",
                                    "ed,2,2", "es,2,2", "er,2,2", "et,1,2", "el,1,2", "ex,1,2"};
  Write("SENS:FREQ:STAR 1e9;STOP 2e9;:SENS:SWE:POIN 51");
  for (int i = 0; i < 5; ++i) Write(TermText(kTerms[i], 0.5, 51));
  EXPECT_EQ(Errors(), kNone);
  Write("SENS:SWE:POIN 101");
  Write(TermText(kTerms[0], 0.25, 101));
  EXPECT_EQ(Errors(),
            "-221,\"Settings conflict;5 terms of another plan are dropped; a new set begins\"");
  for (int i = 1; i < 12; ++i) Write(TermText(kTerms[i], 0.25, 101));
  EXPECT_EQ(Errors(), kNone);
  EXPECT_EQ(Ask("SENS:CORR:STAT?"), "1");
}

TEST_F(OwnValues, ATrackingTermOfZeroIsRefused) {
  Write("SENS:FREQ:STAR 1e9;STOP 2e9;:SENS:SWE:POIN 51");
  for (const char* term : {"er,1,1", "et,2,1", "er,2,2", "et,1,2"}) {
    Write(TermText(term, 0, 51));
    EXPECT_EQ(Errors(), "-222,\"Data out of range;a tracking term must not be 0\"") << term;
  }
  for (const char* term : {"ed,1,1", "el,2,1", "ex,1,2"}) Write(TermText(term, 0, 51));
  EXPECT_EQ(Errors(), kNone);
}

// ---- plan --------------------------------------------------------------------------------------

TEST_F(OwnValues, AnExtremeThatIsAskedIsTheOneThatIsSet) {
  for (const char* points : {"51", "201", "801", "1024"})
    for (const std::string what : {"STAR", "STOP", "CENT", "SPAN"})
      for (const std::string word : {"MIN", "MAX", "DEF"}) {
        Write(std::string("SENS:FREQ:STAR 1 GHZ;STOP 2 GHZ;:SENS:SWE:POIN ") + points);
        const std::string asked = Ask("SENS:FREQ:" + what + "? " + word);
        EXPECT_EQ(Ask("SENS:FREQ:STAR?"), points == std::string("1024") ? "3000000" : "1000000000")
            << "a question changes nothing";
        Write("SENS:FREQ:" + what + " " + word);
        EXPECT_EQ(Ask("SENS:FREQ:" + what + "?"), asked) << what << " " << word << " " << points;
      }
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(OwnValues, TheCentreStaysWhenTheSpanIsRounded) {
  Write("SENS:FREQ:STAR 100e6;STOP 1e9;:SENS:SWE:POIN 201;:SENS:FREQ:SPAN MIN");
  EXPECT_EQ(Ask("SENS:FREQ:CENT?;SPAN?;STAR?"), "550000000;20000;549990000");
  Write("SENS:SWE:POIN 401");  // the order of the settings makes no difference
  EXPECT_EQ(Ask("SENS:FREQ:CENT?;SPAN?"), "550000000;40000");
  Write("SENS:FREQ:SPAN 1003 KHZ");
  EXPECT_EQ(Ask("SENS:FREQ:CENT?"), "550000000");
  Write("SENS:FREQ:STAR 100e6");
  EXPECT_EQ(Ask("SENS:FREQ:STAR?"), "100000000");
}

// ---- measurements ------------------------------------------------------------------------------

TEST_F(OwnValues, NamesThatACatalogCannotHoldAreRefused) {
  for (const char* name : {"'a,b'", "'a\"b'", "''", "\"a'b\""}) {
    Write(std::string("CALC:PAR:EXT ") + name + ",S21");
    EXPECT_EQ(Error().substr(0, 4), "-224") << name;
  }
  Write("CALC:PAR:EXT 'a b',S21");
  EXPECT_EQ(Ask("CALC:PAR:CAT:EXT?"), "\"CH1_S11_1,S11,a b,S21\"");
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(OwnValues, TheSelectedMeasurementHasItsNameHoweverItWasSelected) {
  EXPECT_EQ(Ask("CALC:PAR:SEL?"), "\"CH1_S11_1\"");
  Write("CALC:PAR:EXT 'thru',S21;:CALC:PAR2:DEF S21;SEL");
  EXPECT_EQ(Ask("CALC:PAR:SEL?"), "\"thru\"");
  Write("CALC:PAR2:DEF S22");
  EXPECT_EQ(Ask("CALC:PAR:SEL?"), "\"\"") << "no measurement of S22";
}

TEST_F(OwnValues, ThreeTracesAreFourOnTheScreen) {
  Write("CALC:PAR:COUN 3");
  EXPECT_EQ(session.Display.DisplaySet, DisplaySet::All);
  EXPECT_EQ(Ask("CALC:PAR:COUN?"), "4");
  EXPECT_EQ(Errors(), kNone);
}

// ---- formats, limits, triggers, methods --------------------------------------------------------

TEST_F(OwnValues, AMarkerReadsInTheFormOfTheTrace) {
  MeasureRaw();
  Write("CALC:MARK1:X 1 GHZ");
  const auto point = static_cast<std::size_t>(session.Markers.Of(0, 0).Point);
  const auto formatted = [&](const std::string& form) {
    Write("CALC:TRAC1:FORM " + form);
    const std::vector<double> pairs = Numbers(Ask("CALC:TRAC1:DATA:FDAT?"));
    return std::vector<double>{pairs[2 * (point - 1)], pairs[2 * (point - 1) + 1]};
  };
  const std::vector<double> polar = formatted("POL");
  EXPECT_EQ(Numbers(Ask("CALC:MARK1:Y?")), polar);
  EXPECT_NE(polar[1], 0);
  const std::vector<double> unwrapped = formatted("UPH");
  EXPECT_EQ(session.Channel(1).GraphType, GraphType::UnwrappedPhase);
  EXPECT_NEAR(Numbers(Ask("CALC:MARK1:Y?"))[0], unwrapped[0], 1e-9);
  EXPECT_EQ(Ask("CALC:TRAC1:FORM?"), "UPH");
  const std::vector<double> delay = formatted("GDEL");
  const double unit = session.Channel(1).Units == Unit::Ps ? 1e12 : 1e9;
  EXPECT_NEAR(Numbers(Ask("CALC:MARK1:Y?"))[0], delay[0] * unit, 1e-3);
  Write("CALC:SMO:APER 10;STAT ON");
  EXPECT_NEAR(Numbers(Ask("CALC:MARK1:Y?"))[0], formatted("GDEL")[0] * unit, 1e-3);
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(OwnValues, LimitsThatAreAppliedAreTestedOnceTheyAreSwitchedOn) {
  MeasureRaw();
  ApplyLimits("-15", "-60");
  Ask("INIT;*OPC?");
  EXPECT_EQ(Ask("CALC:LIM?;LIM:FAIL?"), "0;9.91E37");
  EXPECT_EQ(Errors(), kUntested) << "what is not tested has not passed";
  Write("CALC:LIM ON");
  EXPECT_EQ(Ask("CALC:LIM:FAIL?"), "1") << "of the sweep before";
  EXPECT_EQ(Ask("INIT;*OPC?;:CALC:LIM?;LIM:FAIL?;:STAT:QUES:COND?"), "1;1;1;768");
  Bench("attenuator 20");
  EXPECT_EQ(Ask("INIT;*OPC?;:CALC:LIM:FAIL?;:STAT:QUES:COND?"), "1;0;256");
  Bench("attenuator 10");
  Write("CALC:LIM OFF");
  EXPECT_EQ(Ask("INIT;*OPC?;:CALC:LIM?;LIM:FAIL?;:STAT:QUES:COND?"), "1;0;9.91E37;256");
  EXPECT_EQ(Errors(), kUntested);
}

TEST_F(OwnValues, LimitsForAnotherFormAreSwitchedOffAndStayOff) {
  MeasureRaw();
  ApplyLimits("-15", "-60");
  Write("CALC:LIM ON");
  EXPECT_EQ(Ask("INIT;*OPC?;:CALC:LIM:FAIL?"), "1;1");
  Write("CALC:TRAC1:FORM MLIN");
  EXPECT_EQ(Ask("INIT;*OPC?;:CALC:LIM:FAIL?"), "1;9.91E37") << "decibels test no ratio";
  EXPECT_EQ(Errors(), kUntested);
  Write("CALC:LIM ON");
  EXPECT_EQ(Ask("INIT;*OPC?;:CALC:LIM:FAIL?"), "1;9.91E37");
  EXPECT_EQ(Errors(), kUntested);
  Write("CALC:TRAC1:FORM MLOG;:CALC:LIM ON");
  EXPECT_EQ(Ask("INIT;*OPC?;:CALC:LIM:FAIL?"), "1;1") << "the graph that they are for";
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(OwnValues, NoTraceHasPassedThatHasNoTest) {
  MeasureRaw();
  Write("CALC:LIM ON");  // no limits are applied
  EXPECT_EQ(Ask("INIT;*OPC?;:CALC:LIM:FAIL?"), "1;9.91E37");
  EXPECT_EQ(Errors(), kUntested);
  ApplyLimits("-15", "-60");
  Write("CALC:LIM ON");
  EXPECT_EQ(Ask("INIT;*OPC?;:CALC:LIM:FAIL?"), "1;1");
  Write("CALC:PAR1:DEF S11;:CALC:LIM ON");  // ideal terms measure it
  EXPECT_EQ(Ask("INIT;*OPC?;:CALC:LIM:FAIL?"), "1;9.91E37") << "limits of S21";
  EXPECT_EQ(Errors(), kUntested);
  ApplyLimits("-15", "-60");
  Write("CALC:LIM ON");
  EXPECT_EQ(Ask("INIT;*OPC?;:CALC:LIM:FAIL?"), "1;0");
  Write("CALC:TRAC1:FORM SMIT");
  EXPECT_EQ(Ask("INIT;*OPC?;:CALC:LIM:FAIL?"), "1;9.91E37");
  EXPECT_EQ(Errors(), kUntested);
  Write("CALC:PAR2:SEL");  // not on the screen
  EXPECT_EQ(Ask("CALC:LIM:FAIL?"), "9.91E37");
  EXPECT_EQ(Error().substr(0, 4), "-221");
}

TEST_F(OwnValues, ATransmissionMakesASmithChartAndSwrLogMag) {
  for (const std::string form : {"SMIT", "SWR"}) {
    Write("CALC:PAR1:DEF S11;:CALC:TRAC1:FORM " + form);
    EXPECT_EQ(Ask("CALC:TRAC1:FORM?"), form);
    Write("CALC:PAR1:DEF S21");
    EXPECT_EQ(Ask("CALC:TRAC1:FORM?"), "MLOG");
  }
  EXPECT_EQ(Errors(), kNone);
}

// A number becomes the nearest whole one where a whole one is taken, half-way ones the larger.
TEST_F(OwnValues, WholeNumbersAreRounded) {
  Write("SENS:SWE:POIN 51.4");
  EXPECT_EQ(Ask("SENS:SWE:POIN?"), "51");
  Write("SENS:SWE:POIN 51.5");  // 52, and so the next larger sweep
  EXPECT_EQ(Ask("SENS:SWE:POIN?"), "101");
  Write("SENS:SWE:POIN 1024.4");
  EXPECT_EQ(Ask("SENS:SWE:POIN?"), "1024");
  Write("SENS:AVER:COUN 7.5;:SENS:SWE:GRO:COUN 2.49;*ESE 3.5;*SRE 32.2");
  EXPECT_EQ(Ask("SENS:AVER:COUN?;:SENS:SWE:GRO:COUN?;*ESE?;*SRE?"), "8;2;4;32");
  EXPECT_EQ(Errors(), kNone);
  Write("SENS:SWE:POIN 1024.5;:SENS:AVER:COUN 0.4");
  EXPECT_EQ(Errors(), "-222,\"Data out of range;1024.5\",-222,\"Data out of range;0.4\"");
}

TEST_F(OwnValues, ContinuousSweepingFollowsTheTriggerSource) {
  MeasureRaw();
  Write("TRIG:SOUR MAN;:INIT:CONT 1");
  Settle();
  const auto before = program.controller().SweepsEnded();
  EXPECT_EQ(Ask("TRIG:STAT?;:INIT:CONT?;:SENS:SWE:MODE?"), "WTRG;1;CONT");
  EXPECT_EQ(program.controller().SweepsEnded(), before);
  EXPECT_EQ(Ask("*TRG;*OPC?;:TRIG:STAT?"), "1;WTRG");
  EXPECT_EQ(program.controller().SweepsEnded(), before + 1);
  Write("INIT");
  EXPECT_EQ(Error(), "-213,\"Init ignored\"");
  Write("INIT:CONT 0");
  EXPECT_EQ(Ask("*OPC?;:TRIG:STAT?;:INIT:CONT?"), "1;HOLD;0");
  // A trigger without continuous sweeping is one sweep.
  EXPECT_EQ(Ask("*TRG;*OPC?;:TRIG:STAT?"), "1;HOLD");
  EXPECT_EQ(program.controller().SweepsEnded(), before + 2);
  // Armed, then freed: it sweeps. Sweeping, then manual: it waits.
  Write("INIT:CONT 1");
  Settle();
  int calls = 0;
  std::string states;
  OnEvents = [&] {
    if (++calls == 20) states += Ask("TRIG:STAT?;SOUR MAN;SOUR?;STAT?") + "|";
  };
  one.Take();
  Write("TRIG:SOUR IMM;STAT?");
  EXPECT_EQ(one.Take(), "MEAS");
  Settle();
  OnEvents = {};
  EXPECT_EQ(states, "MEAS;MAN;MEAS|") << "the sweep that is stopped still runs";
  EXPECT_EQ(Ask("*OPC?;:TRIG:STAT?;:INIT:CONT?"), "1;WTRG;1");
  EXPECT_EQ(Ask("*TRG;*OPC?;:TRIG:STAT?"), "1;WTRG");
  Write("ABOR");
  EXPECT_EQ(Ask("*OPC?;:TRIG:STAT?;:INIT:CONT?"), "1;HOLD;0");
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(OwnValues, AGroupIsItsNumberOfSweeps) {
  MeasureRaw();
  const auto before = program.controller().SweepsEnded();
  EXPECT_EQ(Ask("SENS:SWE:GRO:COUN 3;:SENS:SWE:MODE GRO;MODE?;*OPC?"), "GRO;1");
  EXPECT_EQ(program.controller().SweepsEnded() - before, 3);
  EXPECT_EQ(Ask("SENS:SWE:MODE?;GRO:COUN?"), "HOLD;3");
  EXPECT_EQ(Numbers(Ask("CALC:DATA:SDAT?")).size(), 102u);
  Write("SENS:SWE:GRO:COUN 0");
  EXPECT_EQ(Error(), "-222,\"Data out of range;0\"");
}

TEST_F(OwnValues, ANonInsertableCalibrationCorrectsTheDevice) {
  Write("SENS:CORR:COLL:METH NON");
  EXPECT_EQ(Error(),
            "-221,\"Settings conflict;Cal kit (Port 1/2) does not have calibrated Thru "
            "Standard.\"");
  EXPECT_EQ(Ask("SENS:CORR:COLL:METH?"), "NONE");
  // A through of no length and no loss, as the bench's is.
  auto& kit = session.Kit1;
  kit.KitHasThru = true;
  for (std::size_t i = 0; i < kit.KitThruData[0].size(); ++i) {
    kit.KitThruData[0][i] = static_cast<float>(30.8e6 * static_cast<double>(i));
    for (std::size_t row = 1; row < kit.KitThruData.size(); ++row) kit.KitThruData[row][i] = 0;
    kit.KitThruData[3][i] = kit.KitThruData[5][i] = 1;
  }
  Write("SENS:FREQ:STAR 100 MHZ;STOP 3 GHZ;:SENS:SWE:POIN 51;:SENS:CORR:COLL:METH NON");
  EXPECT_EQ(Ask("SENS:CORR:COLL:METH?"), "NON");
  for (const std::string n : {"1", "2"}) {
    Collect("port" + n + " open", "OPEN," + n);
    Collect("port" + n + " short", "SHOR," + n);
    Collect("port" + n + " load", "LOAD," + n);
  }
  Write("SENS:CORR:COLL:SAVE");
  EXPECT_EQ(Error(), "-221,\"Settings conflict;still to measure THRU\"");
  Collect("through", "THRU");
  Write("SENS:CORR:COLL ISOL");
  Settle();
  Write("SENS:CORR:COLL:SAVE");
  Settle();
  EXPECT_EQ(Errors(), kNone);
  EXPECT_EQ(Ask("SENS:CORR:TYPE?;STAT?"), "ALL;1");
  Bench("attenuator 10");
  Ask("INIT;*OPC?");
  Write("CALC:PAR2:DEF S21;SEL;:CALC:TRAC2:FORM MLOG");
  const std::vector<double> pairs = Numbers(Ask("CALC:TRAC2:DATA:FDAT?"));
  for (std::size_t i = 0; i < 51; ++i) EXPECT_NEAR(pairs[2 * i], -10, 0.2) << i;
  EXPECT_EQ(Errors(), kNone);
}

// ---- clients -----------------------------------------------------------------------------------

TEST_F(OwnValues, SweepsOfAClientWhoseConnectionBreaksEndWithTheRunningOne) {
  MeasureRaw();
  TestClient two(remote, "two");
  one.Write("SENS:SWE:GRO:COUN 100;:SENS:SWE:MODE GRO");
  int sweeps = 0;
  const auto before = program.controller().SweepsEnded();
  OnEvents = [&] {
    if (++sweeps == 3) remote.ConnectionLost(*one.client);
  };
  EXPECT_EQ(Ask(two, "*OPC?"), "1");
  OnEvents = {};
  EXPECT_LE(program.controller().SweepsEnded() - before, 2);
  EXPECT_EQ(Ask(two, "INIT;*OPC?;:SYST:ERR?"), std::string("1;") + kNone);
  // Before it has begun it is dropped.
  one.Write("INIT");
  remote.ConnectionLost(*one.client);
  const auto then = program.controller().SweepsEnded();
  EXPECT_EQ(Ask(two, "*OPC?"), "1");
  EXPECT_EQ(program.controller().SweepsEnded(), then);
}

}  // namespace
}  // namespace qk::test
