// SPDX-License-Identifier: MIT
// How traces are read, by remote control: impedance types, memories, distance, gates; hints and the
// uncertainty.
#include <cmath>

#include "control/check_calibration.h"
#include "control/graph_verbs.h"
#include "core/measured_sweep.h"
#include "remote_fixture.h"

namespace qk::test {
namespace {

struct TraceWords : RemoteFixture, testing::Test {
  const QualityState& Quality() { return program.controller().quality(); }
};

TEST_F(TraceWords, GraphTypesOfImpedanceAreFormsInPlainUnits) {
  Calibrate();
  Bench("port1 mismatch 10");
  Write("CALC:PAR:COUN 1;:CALC:PAR1:DEF S11");
  struct Form {
    const char* Word;
    GraphType Type;
  };
  for (const Form& form :
       {Form{"ZMAG", GraphType::ImpedanceMagnitude}, Form{"RES", GraphType::Resistance},
        Form{"REAC", GraphType::Reactance}, Form{"IND", GraphType::Inductance},
        Form{"CAP", GraphType::Capacitance}, Form{"QFAC", GraphType::Quality}}) {
    Write(std::string("CALC:TRAC1:FORM ") + form.Word);
    EXPECT_EQ(Ask("CALC:TRAC1:FORM?"), form.Word);
    EXPECT_EQ(session.Channel(1).GraphType, form.Type);
    Ask("INIT;*OPC?");
    const std::vector<double> pairs = Numbers(Ask("CALC:TRAC1:DATA:FDAT?"));
    const ChannelSettings& channel = session.Channel(1);
    ASSERT_EQ(pairs.size(), 102u);
    for (std::size_t i = 0; i < 51; ++i) {
      const double shown = channel.Value[i + 1];
      if (std::isnan(shown))
        EXPECT_EQ(pairs[2 * i], 9.91e37) << form.Word << i;
      else
        EXPECT_NEAR(pairs[2 * i] / (shown * RowOf(channel.Units).Size), 1, 1e-9) << form.Word << i;
    }
  }
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(TraceWords, ATransmissionNeedsToKnowHowThePartIsConnected) {
  Write("CALC:PAR2:DEF S21;:CALC:TRAC2:FORM RES");
  EXPECT_EQ(Error(),
            "-221,\"Settings conflict;CALC:TRAC:ELEM must be SER or SHUN with a transmission\"");
  Write("CALC:TRAC2:ELEM SHUN;FORM RES");
  EXPECT_EQ(Errors(), kNone);
  EXPECT_EQ(Ask("CALC:TRAC2:ELEM?;FORM?"), "SHUN;RES");
  Write("CALC:TRAC2:ELEM REFL");
  EXPECT_EQ(Error(), "-221,\"Settings conflict;series or shunt with a transmission\"");
  EXPECT_EQ(Ask("CALC:TRAC1:ELEM?"), "REFL");
}

TEST_F(TraceWords, TimeResponsesAreFormsWithTheirConditions) {
  Write("CALC:TRAC1:FORM TDR");
  EXPECT_EQ(Error(), "-221,\"Settings conflict;Warning: TD Only with 1024 Sweep points\"");
  session.Plan.NumPoints = kMaxPoints;
  Write("CALC:TRAC1:FORM TDIM");
  EXPECT_EQ(Ask("CALC:TRAC1:FORM?"), "TDIM");
  Write("CALC:TRAC2:FORM TDR");
  EXPECT_EQ(Error(), "-221,\"Settings conflict;TD only allowed on one channel\"");
}

TEST_F(TraceWords, ChartsHaveTheirGrid) {
  EXPECT_EQ(Ask("DISP:WIND:TRAC1:GRID?"), "IMP");
  Write("DISP:WIND:TRAC1:GRID BOTH");
  EXPECT_EQ(Ask("DISP:WIND:TRAC1:GRID?"), "BOTH");
  EXPECT_EQ(session.Channel(1).Grid, ChartGrid::Both);
  EXPECT_EQ(session.Channel(2).Grid, ChartGrid::Impedance);
  Write("DISP:WIND:TRAC1:GRID POLAR");
  EXPECT_EQ(Error().substr(0, 4), "-224");
}

TEST_F(TraceWords, MemoriesAreStoredAndCombined) {
  Write("CALC:MATH:FUNC DIV");
  EXPECT_EQ(Error(), "-221,\"Settings conflict;no trace is stored\"");
  Write("CALC:TRAC1:MATH:MEM");
  EXPECT_EQ(Error().substr(0, 4), "-230");
  Calibrate();
  Bench("attenuator 10");
  Write("CALC:PAR:COUN 1;:CALC:PAR1:DEF S21");
  Ask("INIT;*OPC?");
  Write("CALC:MATH:MEM 3;:CALC:TRAC1:MATH:MEM;:CALC:MATH:FUNC DIV");
  EXPECT_EQ(Errors(), kNone);
  EXPECT_EQ(Ask("CALC:MATH:MEM?;FUNC?"), "3;DIV");
  EXPECT_EQ(Ask("CALC:MATH:MEM? MAX"), "4");
  EXPECT_TRUE(session.MoreMemories[1].OfChannels[0].Valid);
  EXPECT_EQ(session.Display.DisplayMode, DisplayMode::MemoryMath);
  EXPECT_NEAR(session.Channel(1).Value[20], 0, 0.05) << "the trace over itself, in dB";
  Write("CALC:MATH:FUNC NORM");
  EXPECT_EQ(Ask("CALC:MATH:FUNC?"), "NORM");
  EXPECT_NEAR(session.Channel(1).Value[20], -10, 0.5);
  Write("CALC:MATH:MEM 5");
  EXPECT_EQ(Error().substr(0, 4), "-222");
}

TEST_F(TraceWords, DistanceHasItsVelocityFactor) {
  EXPECT_EQ(Ask("CALC:TRAN:AXIS?;VFAC?"), "TIME;1");
  Write("CALC:TRAN:AXIS DIST;VFAC 0.695");
  EXPECT_EQ(Ask("CALC:TRAN:AXIS?;VFAC?"), "DIST;0.695");
  EXPECT_EQ(session.TimeDomain.Cable, Cable::Own);
  Write("CALC:TRAN:VFAC 1.1");
  EXPECT_EQ(Error().substr(0, 4), "-222");
  EXPECT_EQ(Ask("CALC:TRAN:VFAC?"), "0.695");
}

TEST_F(TraceWords, GatesArePutOnChannelsOf1024Points) {
  Write("CALC:GATE:TYPE BPAS");
  EXPECT_EQ(Error(), "-221,\"Settings conflict;Choose a channel for the gate\"");
  Write("CALC:TRAC1:GATE ON;:CALC:GATE:STAR 8NS;STOP 12 NS");
  EXPECT_EQ(Ask("CALC:GATE:STAR?;STOP?"), "8E-09;1.2E-08");
  Write("CALC:GATE:TYPE NOTC");
  EXPECT_EQ(Error(), "-221,\"Settings conflict;Warning: Gate Only with 1024 Sweep points\"");
  session.Plan.NumPoints = kMaxPoints;
  Write("CALC:GATE:TYPE NOTC");
  EXPECT_EQ(Ask("CALC:GATE:TYPE?;:CALC:TRAC1:GATE?;:CALC:TRAC2:GATE?"), "NOTC;1;0");
  Write("CALC:GATE:STOP 2NS");
  EXPECT_NEAR(session.TimeDomain.GateStart, 1.9, 1e-9) << "pushed";
  Write("CALC:GATE:STAR 20NS");
  EXPECT_NEAR(session.TimeDomain.GateStop, 20.1, 1e-9);
  Write("CALC:TRAC1:GATE OFF");
  EXPECT_EQ(Ask("CALC:GATE:TYPE?"), "OFF") << "no channel is left";
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(TraceWords, HintsAreListedTheWorstFirst) {
  EXPECT_EQ(Ask("STAT:HINT?"), "\"\"");
  Calibrate();
  Bench("port1 nothing");
  Bench("port2 nothing");
  for (int n = 0; n < 3; ++n) Ask("INIT;*OPC?");
  EXPECT_EQ(Ask("STAT:HINT?"), "\"nothing-connected\",\"Nothing seems connected\"");
  Write("STAT:HINT:STAT OFF");
  EXPECT_EQ(Ask("STAT:HINT?;:STAT:HINT:STAT?"), "\"\";0");
  EXPECT_FALSE(Quality().Hints.On());
}

TEST_F(TraceWords, AMarkerHasNoValueThatTheCalibrationDoesNotMeasure) {
  Calibrate();
  Bench("attenuator 20");
  Ask("INIT;*OPC?");
  session.Channel(1).Parameter = Parameter::S12;
  program.graphs().ReplotAll();
  Write("CALC:PAR1:SEL;:CALC:MARK1 ON");
  EXPECT_NE(Ask("CALC:MARK1:Y?"), "9.91E37");
  EXPECT_NE(Ask("CALC:MARK1:Y?"), "9.91E37") << "as it is on the screen";
  EXPECT_EQ(Errors(), kNone);
  session.Cal = {};
  session.Cal.CalS11 = true;
  EXPECT_EQ(Ask("CALC:MARK1:Y?"), "9.91E37");
  EXPECT_EQ(Error(), "-230,\"Data corrupt or stale\"");
  session.Channel(1).Parameter = Parameter::S11;
  EXPECT_NE(Ask("CALC:MARK1:Y?"), "9.91E37");
}

TEST_F(TraceWords, ACheckIsReadByTerm) {
  Calibrate();
  EXPECT_EQ(Ask("SENS:CORR:CHEC? load_match"), "9.91E37");
  EXPECT_EQ(Error(), "-230,\"Data corrupt or stale;not checked\"");
  Bench("through");
  ASSERT_TRUE(CheckCalibration(program.controller().rig(), program.controller().quality(),
                               {CheckMethod::Through}));
  const TermFound& found = Quality().Check.Of(CheckTerm::LoadMatch);
  ASSERT_TRUE(found.Known);
  const std::vector<double> pairs = Numbers(Ask("SENS:CORR:CHEC? LOAD_MATCH"));
  ASSERT_EQ(pairs.size(), 2U * static_cast<std::size_t>(found.Last - found.First + 1));
  for (std::size_t i = 0; i < pairs.size() / 2; ++i) {
    const int k = found.First + static_cast<int>(i);
    EXPECT_DOUBLE_EQ(pairs[2 * i], found.Grid.Frequency(k));
    EXPECT_NEAR(pairs[2 * i + 1], found.Size[static_cast<std::size_t>(k)], 1e-9);
  }
  EXPECT_EQ(Ask("SENS:CORR:CHEC? 'load_match'"), Ask("SENS:CORR:CHEC? load_match"));
  Ask("SENS:CORR:CHEC? match");
  EXPECT_EQ(Error(), "-224,\"Illegal parameter value;no such term\"");
  EXPECT_EQ(Ask("SENS:CORR:CHEC? directivity"), "9.91E37");
  EXPECT_EQ(Error(), "-230,\"Data corrupt or stale;not checked\"");
}

TEST_F(TraceWords, TheUncertaintySaysWhatIsMissingAndThenItsValues) {
  Calibrate();
  Bench("attenuator 20");
  Ask("INIT;*OPC?");
  EXPECT_EQ(Ask("CALC:UNC:DATA? S11"), "9.91E37");
  EXPECT_EQ(Error(), "-230,\"Data corrupt or stale;not checked: directivity\"");
  EXPECT_EQ(Ask("CALC:UNC:BAS? S12"), "\"checks look at S11 and S21, not at S12\"");
  Bench("through");
  ASSERT_TRUE(CheckCalibration(program.controller().rig(), program.controller().quality(),
                               {CheckMethod::Through}));
  Bench("attenuator 20");
  for (int n = 2; n <= 4; ++n) {
    Ask("INIT;*OPC?");
    EXPECT_EQ(Ask("CALC:UNC:BAS? S21")
                      .find("Left out: noise (too few sweeps so far), linearity of the receiver") !=
                  std::string::npos,
              n < 4)
        << n;
    if (n == 4) break;
    EXPECT_EQ(Ask("CALC:UNC:DATA? S21"), "9.91E37") << n;
    EXPECT_EQ(Error(),
              "-230,\"Data corrupt or stale;noise not known: four sweeps of the device are "
              "needed\"");
  }
  const std::vector<double> expanded = Numbers(Ask("CALC:UNC:DATA? S21"));
  ASSERT_EQ(expanded.size(), 51u);
  for (int k = 0; k < 51; ++k)
    EXPECT_NEAR(expanded[static_cast<std::size_t>(k)],
                kCoverage * UncertaintyAt(Quality(), session, Parameter::S21, k).value_or(-1),
                1e-12);
  EXPECT_NE(Ask("CALC:UNC:BAS? S21").find("Left out: linearity of the receiver"),
            std::string::npos);
  Write("DISP:UNC ON;:DISP:STAT ON");
  EXPECT_EQ(Ask("DISP:UNC?;:DISP:STAT?"), "1;1");
  EXPECT_TRUE(program.graphs().View.Uncertainty);
}

}  // namespace
}  // namespace qk::test
