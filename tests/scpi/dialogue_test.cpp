// SPDX-License-Identifier: MIT
// The dialogues of clients that exist for other analysers, message by message with their replies.
#include "scpi/remote.h"

#include <gtest/gtest.h>

#include <complex>

#include "scpi/remote_fixture.h"

namespace qk::test {
namespace {

// One message and the reply that it must get; nullptr: none.
struct Turn {
  std::string Message;
  const char* Reply;
};

struct Dialogue : testing::Test, RemoteFixture {
  void Play(const std::vector<Turn>& turns) {
    for (const Turn& turn : turns) {
      one.Take();
      one.Write(turn.Message);
      Settle();
      const std::string reply = one.Take();
      if (turn.Reply == nullptr)
        EXPECT_EQ(reply, "") << turn.Message;
      else
        EXPECT_EQ(reply, turn.Reply) << turn.Message;
    }
    EXPECT_EQ(Errors(), kNone);
  }
  // re,im pairs of a reply against the device's own parameter.
  void ExpectTruth(const std::string& reply, std::size_t parameter, double tolerance = 1e-3) {
    const std::vector<double> numbers = Numbers(reply);
    const int points = session.Plan.NumPoints;
    ASSERT_EQ(numbers.size(), static_cast<std::size_t>(2 * points));
    for (int i = 0; i < points; ++i) {
      const std::complex<double> truth = instrument.Truth(session.Plan.Frequency(i))[parameter];
      const auto k = static_cast<std::size_t>(2 * i);
      EXPECT_NEAR(numbers[k], truth.real(), tolerance) << i;
      EXPECT_NEAR(numbers[k + 1], truth.imag(), tolerance) << i;
    }
  }
};

// A handheld analyser's class: every property is followed by *OPC?, and the sweep is made with
// continuous sweeping switched off before and on behind it.
TEST_F(Dialogue, OfAHandheldAnalysersClass) {
  Calibrate();
  Bench("filter");
  Play({{"*CLS", nullptr},
        {"*IDN?", "QK47,QK47-20-09,147,0.2.0"},
        {"*OPC?", "1"},
        {"*OPT?", "0"},
        {"*STB?", "0"},
        {"SENS:FREQ:STAR 100000000", nullptr},
        {"*OPC?", "1"},
        {"SENS:FREQ:STAR?", "100000000"},
        {"SENS:FREQ:STOP 3000000000", nullptr},
        {"*OPC?", "1"},
        {"SENS:FREQ:STOP?", "3000000000"},
        {"SENS:FREQ:CENT 1550000000", nullptr},
        {"*OPC?", "1"},
        {"SENS:FREQ:CENT?", "1550000000"},
        {"SENS:FREQ:SPAN 2900000000", nullptr},
        {"*OPC?", "1"},
        {"SENS:FREQ:SPAN?", "2900000000"},
        {"SENS:SWE:POIN 51", nullptr},
        {"*OPC?", "1"},
        {"SENS:SWE:POIN?", "51"},
        {"SENS:SWE:TIME 1.0", nullptr},
        {"*OPC?", "1"},
        {"SENS:BWID 1000", nullptr},
        {"*OPC?", "1"},
        {"SENS:BWID?", "1000"},
        {"DISP:WIND:SPL D12_34", nullptr},
        {"*OPC?", "1"},
        {"DISP:WIND:SPL?", "D12_34"},
        {"FORM?", "ASC,0"},
        {"FORM REAL,64", nullptr},
        {"FORM?", "REAL,64"},
        {"FORM REAL,32", nullptr},
        {"FORM?", "REAL,32"},
        {"FORM ASC,0", nullptr},
        {"SYST:ERR?", "0,\"No error\""},
        {"CALC:PAR:COUN 4", nullptr},
        {"*OPC?", "1"},
        {"CALC:PAR:COUN?", "4"},
        {"CALC:PAR1:DEF S11", nullptr},
        {"*OPC?", "1"},
        {"CALC:PAR2:DEF S21", nullptr},
        {"*OPC?", "1"},
        {"CALC:PAR3:DEF S12", nullptr},
        {"*OPC?", "1"},
        {"CALC:PAR4:DEF S22", nullptr},
        {"*OPC?", "1"},
        {"CALC:PAR2:DEF?", "S21"},
        {"INIT:CONT?", "0"},
        {"INIT:CONT 0", nullptr},
        {"*OPC?", "1"}});
  // The sweep goes on behind the one that INIT made; the four reads belong to that one.
  one.Write("INIT");
  one.Write("INIT:CONT 1");
  one.Write("*OPC?");
  int reads = 0;
  std::vector<std::string> replies;
  bool answered = false;
  OnEvents = [&] {
    if (!answered && one.received == "1\n") {
      answered = true;
      one.Take();
      EXPECT_EQ(program.controller().SweepsEnded(), 1);
      Bench("port1 short");
    }
    if (!answered || program.controller().SweepsEnded() < 3 || reads == 4) return;
    one.Write("CALC:PAR" + std::to_string(++reads) + ":SEL");
    one.Write("*OPC?");
    EXPECT_EQ(one.Take(), "1");
    one.Write("CALC:DATA:SDATA?");
    replies.push_back(one.Take());
    if (reads == 4) one.Write("INIT:CONT 0");
  };
  Settle();
  OnEvents = {};
  ASSERT_EQ(replies.size(), 4u);
  Bench("filter");
  ExpectTruth(replies[0], 0);
  ExpectTruth(replies[1], 1);
  ExpectTruth(replies[2], 2);
  ExpectTruth(replies[3], 3);
  EXPECT_EQ(Errors(), kNone);
  EXPECT_TRUE(session.Flags.Idle());
}

TEST_F(Dialogue, OfAHandheldAnalysersCalibration) {
  Write("SENS:FREQ:STAR 1e9;STOP 1.5e9;:SENS:SWE:POIN 51");
  const auto term = [](double re, double im) {
    std::string numbers;
    for (int i = 0; i < 51; ++i) {
      char text[64];
      std::snprintf(text, sizeof text, "%s%f,%f", i == 0 ? "" : ",", re, im);
      numbers += text;
    }
    return numbers;
  };
  const std::vector<std::pair<std::string, double>> terms = {
      {"ed,1,1", 0.01}, {"es,1,1", 0.02}, {"er,1,1", 0.9},  {"et,2,1", 0.8},
      {"el,2,1", 0.03}, {"ex,2,1", 1e-5}, {"ed,2,2", 0.04}, {"es,2,2", 0.05},
      {"er,2,2", 0.7},  {"et,1,2", 0.6},  {"el,1,2", 0.06}, {"ex,1,2", 2e-5}};
  for (const auto& [name, value] : terms) {
    EXPECT_EQ(Ask("SENS:CORR:STAT?"), "0");
    Write("SENS:CORR:COEF " + name + "," + term(value, 0.001));
    EXPECT_EQ(Ask("*OPC?"), "1");
  }
  EXPECT_EQ(Errors(), kNone);
  EXPECT_EQ(Ask("SENS:CORR:STAT?;TYPE?;STAT:INT?"), "1;ALL;EXAC");
  EXPECT_EQ(session.Plan.StartFreq, 1e9);
  for (const auto& [name, value] : terms) {
    const std::vector<double> numbers = Numbers(Ask("SENS:CORR:COEF? " + name));
    ASSERT_EQ(numbers.size(), 102u);
    EXPECT_NEAR(numbers[0], value, 5e-7) << name;
    EXPECT_EQ(numbers[101], 0.001) << name;
  }
  EXPECT_EQ(Ask("INIT;*OPC?"), "1");
  EXPECT_EQ(Errors(), kNone);
}

// A bench analyser's class: named measurements, groups of sweeps, the four parameters in one block.
TEST_F(Dialogue, OfABenchAnalysersClass) {
  Calibrate();
  Bench("filter");
  Play({{"*CLS", nullptr},
        {"*IDN?", "QK47,QK47-20-09,147,0.2.0"},
        {"*OPT?", "0"},
        {"*STB?", "0"},
        {"SYST:ERR?", "0,\"No error\""},
        {"SYST:CHAN:CAT?", "\"1\""},
        {"SYST:ACT:CHAN?", "1"},
        {"SYST:ACT:MEAS?", "\"CH1_S11_1\""},
        {"SYST:CAP:HARD:PORT:COUN?", "2"},
        {"SYST:ERR:COUN?", "0"},
        {"FORM:BORD?", "SWAP"},
        {"FORM:BORD NORM", nullptr},
        {"FORM:BORD?", "NORM"},
        {"FORM:BORD SWAP", nullptr},
        {"SENS1:FREQ:STAR 100000000", nullptr},
        {"*OPC?", "1"},
        {"SENS1:FREQ:STOP 3000000000", nullptr},
        {"*OPC?", "1"},
        {"SENS1:SWE:POIN 51", nullptr},
        {"*OPC?", "1"},
        {"SENS1:SWE:TYPE?", "LIN"},
        {"SENS1:SWE:TYPE LIN", nullptr},
        {"SENS1:BWID?", "1000"},
        {"SENS1:BWID 1000", nullptr},
        {"*OPC?", "1"},
        {"SENS1:FREQ:CENT?", "1550000000"},
        {"SENS1:FREQ:SPAN?", "2900000000"},
        {"SENS1:AVER:STATE?", "0"},
        {"SENS1:AVER:STATE 0", nullptr},
        {"SENS1:AVER:COUN?", "1"},
        {"SENS1:AVER:COUN 4", nullptr},
        {"SENS1:AVER:COUN?", "4"},
        {"SENS1:AVER:MODE?", "POIN"},
        {"SENS1:AVER:MODE POIN", nullptr},
        {"SENS1:AVER:CLE", nullptr},
        {"SENS1:SWE:MODE?", "HOLD"},
        {"SENS1:SWE:GRO:COUN?", "1"},
        {"DISP:WIND:CAT?", "\"1\""},
        {"CALC1:PAR:CAT:EXT?", "\"CH1_S11_1,S11\""},
        {"SYST:MEAS:CAT? 1", "\"1\""},
        {"CALC1:PAR:EXT 'CH1_SKRF_S11',S11", nullptr},
        {"DISP:WIND:TRAC2:FEED 'CH1_SKRF_S11'", nullptr},
        {"CALC1:PAR:CAT:EXT?", "\"CH1_S11_1,S11,CH1_SKRF_S11,S11\""},
        {"SYST:MEAS:CAT? 1", "\"1,2\""},
        {"CALC1:PAR:EXT 'CH1_SKRF_S21',S21", nullptr},
        {"CALC1:PAR:EXT \"CH1_SKRF_S12\",\"S12\"", nullptr},
        {"CALC1:PAR:EXT 'CH1_SKRF_S22',S22", nullptr},
        {"CALC1:PAR:SEL 'CH1_SKRF_S21',fast", nullptr},
        {"CALC1:PAR:SEL?", "\"CH1_SKRF_S21\""},
        {"SYST:ACT:MEAS?", "\"CH1_SKRF_S21\""},
        {"CALC1:PAR:MNUM 2", nullptr},
        {"CALC1:PAR:SEL?", "\"CH1_SKRF_S11\""},
        {"MMEM:STOR:TRACE:FORM:SNP?", "RI"},
        {"MMEM:STOR:TRACE:FORM:SNP RI", nullptr},
        {"TRIG:SOUR IMM", nullptr},
        {"TRIG:SOUR?", "IMM"},
        {"SENS1:SWE:GRO:COUN 3", nullptr},
        {"SENS1:SWE:MODE GRO", nullptr},
        {"*OPC?", "1"},
        {"SENS1:SWE:MODE SING", nullptr},
        {"*OPC?", "1"}});
  EXPECT_EQ(program.controller().SweepsEnded(), 4);
  // The time of a sweep is sent back as it was read.
  const std::string seconds = Ask("SENS1:SWE:TIME?");
  Write("SENS1:SWE:TIME " + seconds);
  EXPECT_EQ(Ask("*OPC?"), "1");

  Write("CALC1:PAR:SEL 'CH1_SKRF_S21'");
  ExpectTruth(Ask("CALC1:DATA? SDATA"), 1);
  Write("FORM REAL,64");
  const std::string block = Ask("CALC1:DATA:SNP:PORTS? '1,2'");
  ASSERT_EQ(block.substr(0, 6), "#43672");  // 9 rows of 51 numbers of 8 bytes
  const auto rows = scpi::NumbersIn(block.substr(6), scpi::DataForm::Real64, true);
  ASSERT_TRUE(rows);
  ASSERT_EQ(rows->size(), 9u * 51u);
  constexpr std::array<std::size_t, 4> kOrder{0, 2, 1, 3};  // S11, S12, S21, S22 of the truth
  for (int i = 0; i < 51; ++i) {
    const double hertz = (*rows)[static_cast<std::size_t>(i)];
    EXPECT_EQ(hertz, session.Plan.Frequency(i));
    for (std::size_t p = 0; p < 4; ++p) {
      const std::complex<double> truth = instrument.Truth(hertz)[kOrder[p]];
      EXPECT_NEAR((*rows)[(1 + 2 * p) * 51 + static_cast<std::size_t>(i)], truth.real(), 1e-3);
      EXPECT_NEAR((*rows)[(2 + 2 * p) * 51 + static_cast<std::size_t>(i)], truth.imag(), 1e-3);
    }
  }
  Play({{"CALC1:PAR:DEL 'CH1_SKRF_S11'", nullptr},
        {"CALC1:PAR:DEL 'CH1_SKRF_S21'", nullptr},
        {"CALC1:PAR:DEL 'CH1_SKRF_S12'", nullptr},
        {"CALC1:PAR:DEL 'CH1_SKRF_S22'", nullptr},
        {"CALC1:PAR:DEL 'CH1_S11_1'", nullptr},
        {"DISP:WIND:CAT?", "\"EMPTY\""},
        {"FORM ASC,0", nullptr}});
  Write("SYST:CHAN:DEL 2");
  EXPECT_EQ(Error(), "-114,\"Header suffix out of range;the one channel stays\"");
}

// A driver of a scope program: traces by number, formatted pairs of a polar form.
TEST_F(Dialogue, OfADriverThatReadsTraces) {
  Calibrate();
  Bench("filter");
  Play({{"*IDN?", "QK47,QK47-20-09,147,0.2.0"},
        {"SERV:PORT:COUN?", "2"},
        {"SERV:SWE:FREQ:MIN?", "3000000"},
        {"SERV:SWE:FREQ:MAX?", "3080000000"},
        {"SENS:FREQ:STAR 100000000", nullptr},
        {"SENS:FREQ:STOP 3000000000", nullptr},
        {"SENS:SWE:POIN 51", nullptr},
        {"SENS:BWID 1000", nullptr},
        {"SENS:BWID?", "1000"},
        {"OUTP ON", nullptr},
        {"CALC:PAR:COUN 4", nullptr},
        {"CALC:PAR1:DEF S11", nullptr},
        {"CALC:PAR2:DEF S21", nullptr},
        {"CALC:TRAC1:FORM POL", nullptr},
        {"CALC:TRAC2:FORM POL", nullptr},
        {"CALC:TRAC2:FORM?", "POL"},
        {"FORM:DATA ASC", nullptr},
        {"TRIG:SOUR INT", nullptr},
        {"TRIG:SOUR?", "INT"},
        {"INIT:CONT OFF", nullptr},
        {"TRIG:STAT?", "HOLD"},
        {"ABOR", nullptr},
        {"INIT:IMM", nullptr},
        {"TRIG:STAT?", "HOLD"},
        {"SENS:FREQ:STAR?", "100000000"},
        {"SENS:SWE:POIN?", "51"}});
  ExpectTruth(Ask("CALC:TRAC1:DATA:FDAT?"), 0);
  ExpectTruth(Ask("CALC:TRAC2:DATA:FDAT?"), 1);
  Write("TRIG:SOUR MAN;:INIT:CONT ON");
  EXPECT_EQ(Ask("TRIG:STAT?"), "WTRG");
  const long before = program.controller().SweepsEnded();
  Write("*TRG");
  EXPECT_EQ(Ask("*OPC?"), "1");
  EXPECT_EQ(program.controller().SweepsEnded(), before + 1);
  EXPECT_EQ(Ask("TRIG:STAT?"), "WTRG");
  Write("OUTP OFF");
  EXPECT_EQ(Ask("TRIG:STAT?;:INIT:CONT?"), "HOLD;0");
  EXPECT_EQ(Errors(), kNone);
}

}  // namespace
}  // namespace qk::test
