// SPDX-License-Identifier: MIT
// Random messages, made of words that the tree knows and of unknown ones: every one of them is
// survived, no known query stays silent, and the program works behind them.
#include <gtest/gtest.h>

#include <random>

#include "scpi/commands.h"
#include "scpi/remote_fixture.h"

namespace qk::test {
namespace {

class Messages {
 public:
  explicit Messages(unsigned seed) : random_(seed) {}

  std::string Next() {
    std::string message;
    const int units = 1 + Below(3);
    for (int i = 0; i < units; ++i) {
      if (i > 0) message += Below(20) == 0 ? ";;" : ";";
      message += Unit();
    }
    for (int i = Below(4) == 0 ? 1 + Below(4) : 0; i > 0 && !message.empty(); --i) Spoil(message);
    return message;
  }
  int Below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }

 private:
  template <class List>
  const auto& Of(const List& list) {
    return list[static_cast<std::size_t>(Below(static_cast<int>(std::size(list))))];
  }

  std::string Unit() {
    const std::vector<const scpi::Row*>& rows = scpi::CommandTree().Rows();
    const scpi::Row& row = *Of(rows);
    std::string header = Below(3) == 0 ? "" : ":";
    if (row.Pattern.starts_with('*')) header.clear();
    const bool whole = Below(2) == 0;
    bool inside = false;
    for (std::size_t i = 0; i < row.Pattern.size(); ++i) {
      const char c = row.Pattern[i];
      if (c == '[') inside = Below(2) == 0;
      if (c == '[') continue;
      if (c == ']') {
        inside = false;
        continue;
      }
      if (inside) continue;
      if (c == '#') {
        while (i + 1 < row.Pattern.size() && std::isdigit(row.Pattern[i + 1]) != 0) ++i;
        if (Below(2) == 0) header += std::to_string(Below(6));
        continue;
      }
      if (whole || !(c >= 'a' && c <= 'z')) header += c;
    }
    if (Below(2) == 0) header += '?';
    std::string parameters;
    for (int i = Below(4); i > 0; --i) parameters += (parameters.empty() ? " " : ",") + Parameter();
    return header + parameters;
  }

  std::string Parameter() {
    static const std::vector<std::string> words = {
        "ON",     "OFF",  "MIN",         "MAX",     "DEF",         "S11",        "S21",   "MLOG",
        "SMIT",   "POL",  "UPH",         "GDEL",    "REAL",        "ASC",        "SING",  "GRO",
        "HOLD",   "IMM",  "MAN",         "D1",      "D12_34",      "INS",        "BOTH",  "OPEN",
        "THRU",   "ed",   "et",          "'a.s2p'", "'../x'",      "'1,2'",      "1e9",   "100 MHZ",
        "51",     "1024", "-20",         "0",       "1",           "2",          "1E999", "#H1F",
        "#13abc", "#0",   "#9999999999", "SDATA",   "'CH1_S11_1'", "\"x\"\"y\"", "",      "1.5 DBM",
        "SWAP",   "64",   "32",          "RI",      "nan",         "-1e300",     "3.08e9"};
    return Below(10) == 0 ? std::to_string(static_cast<int>(random_())) : Of(words);
  }

  void Spoil(std::string& message) {
    const auto at = static_cast<std::size_t>(Below(static_cast<int>(message.size())));
    switch (Below(3)) {
      case 0:
        message.erase(at, 1);
        break;
      case 1:
        message[at] = static_cast<char>(random_());
        break;
      default:
        message.insert(at, 1, static_cast<char>(random_()));
    }
  }

  std::mt19937 random_;
};

struct RandomMessages : testing::Test, RemoteFixture {};

TEST_F(RandomMessages, AreSurvivedAHundredThousandTimes) {
  Write("SENS:FREQ:STAR 1e9;STOP 2e9;:SENS:SWE:POIN 51;:SENS:CORR:COEF:PRES");
  Settle();
  Messages messages(47);
  TestClient two(remote, "two");
  std::size_t sweeps = 0, replies = 0;
  for (int i = 0; i < 100000; ++i) {
    TestClient& client = messages.Below(8) == 0 ? two : one;
    client.Write(messages.Next());
    // A sweep without an end is ended before it can begin, most of the time.
    if (messages.Below(50) == 0) {
      one.Write(";:ABOR;:SENS:SWE:POIN 51;:SENS:SWE:GRO:COUN 1");
      long before = program.controller().SweepsEnded();
      OnEvents = [&] {
        if (program.controller().SweepsEnded() - before > 2) program.controller().StopMeasurement();
      };
      Settle();
      OnEvents = {};
      sweeps += static_cast<std::size_t>(program.controller().SweepsEnded() - before);
    }
    replies += client.received.size();
    client.received.clear();
    ASSERT_LE(client.client->Status.Errors(), 32u);
    ASSERT_FALSE(client.closed);
  }
  EXPECT_GT(replies, 100000u);
  // A message that was cut within a block may still wait for its bytes.
  one.Bytes(std::string(1 << 20, ' ') + "\n\n");
  two.Bytes(std::string(1 << 20, ' ') + "\n\n");
  one.Write("ABOR");
  Settle();
  one.received.clear();
  one.Write("*CLS");
  EXPECT_EQ(Ask("*IDN?"), "QK47,QK47-20-09,147,0.2.0");
  EXPECT_TRUE(session.Flags.Idle());
  EXPECT_TRUE(fake.Messages.empty());
}

}  // namespace
}  // namespace qk::test
