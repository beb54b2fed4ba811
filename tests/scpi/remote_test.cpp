// SPDX-License-Identifier: MIT
// What remote clients may do, the replies, and the state of the program afterwards.
#include "scpi/remote.h"

#include <gtest/gtest.h>

#include "core/window_names.h"
#include "scpi/commands.h"
#include "scpi/remote_fixture.h"

namespace qk::test {
namespace {

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
  EXPECT_EQ(Errors(), kNone);  // "Keep existing Cal" is not asked, and is no error
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
  // An impossible length, of a mistyped or garbled message, is not waited for.
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
