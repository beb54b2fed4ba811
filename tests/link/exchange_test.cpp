// SPDX-License-Identifier: MIT
// One exchange from the closed port to the reported failure.
#include "link/exchange.h"

#include <gtest/gtest.h>

#include "core/scopes.h"
#include "link/command_set.h"
#include "support/link_fixture.h"

namespace qk {
namespace {

using test::BytesOf;
using Texts = std::vector<std::string>;

struct ExchangeFixture : test::ScriptedLink {
  std::optional<Bytes> Temperature(const Complaint& complaint = "RX Temp Check") {
    return Exchange(rig, complaint, command::kTemperature, 2, 200);
  }
};

TEST(Exchange, OpensThePortAsksSendsAndReads) {
  ExchangeFixture b;
  b.port.Reply("Q", "R");
  b.port.Reply("T", Bytes{0x02, 0xE6});
  EXPECT_EQ(b.Temperature(), (Bytes{0x02, 0xE6}));
  EXPECT_EQ(b.port.Opened, std::vector<int>{1});
  EXPECT_EQ(b.port.Writes, (std::vector<Bytes>{BytesOf("Q"), BytesOf("T")}));
  EXPECT_TRUE(b.fake.Messages.empty());
}

TEST(Exchange, SendsNoCommandToAnInstrumentThatDoesNotAnswer) {
  ExchangeFixture b;
  EXPECT_FALSE(b.Temperature());
  EXPECT_EQ(b.port.Writes, std::vector<Bytes>{BytesOf("Q")});
  EXPECT_EQ(b.fake.MessageTexts(), Texts{"RX Temp Check|No Response|exclamation|ok"});
  EXPECT_TRUE(b.session->Flags.ReplyTimedOut);
}

TEST(Exchange, ReportsAReplyThatIsCutOrTooLong) {
  for (const Bytes& reply : {Bytes{2}, Bytes{2, 0xE6, 0}}) {
    ExchangeFixture b;
    b.port.Reply("Q", "R");
    b.port.Reply("T", reply);
    EXPECT_FALSE(b.Temperature(Complaint("P1dB Test", Icon::Critical)));
    EXPECT_EQ(b.fake.MessageTexts(), Texts{"P1dB Test|No Response|critical|ok"});
    EXPECT_EQ(b.session->Flags.ReplyTimedOut, reply.size() < 2);
  }
}

TEST(Exchange, HasAWordOfItsOwnForABadReplyWhereTheFeatureHas) {
  ExchangeFixture b;
  b.port.Reply("Q", "R");
  EXPECT_FALSE(b.Temperature(
      Complaint("Eeprom Backup", "No Response", "Link Error. Re-start Program.", Icon::Critical)));
  EXPECT_EQ(b.fake.MessageTexts(),
            Texts{"Eeprom Backup|Link Error. Re-start Program.|critical|ok"});
}

TEST(Exchange, SendsNothingWithoutAnInstrumentAndReportsNoResponse) {
  ExchangeFixture b;
  b.session->Id.PortNumber = 0;
  b.port.Open();  // as a scan leaves it that met another model
  EXPECT_FALSE(b.Temperature());
  EXPECT_FALSE(Send(b.rig, "Set Averages", command::SetAverages(4)));
  EXPECT_TRUE(b.port.Writes.empty());
  EXPECT_EQ(b.fake.MessageTexts(), (Texts{"RX Temp Check|No Response|exclamation|ok",
                                          "Set Averages|No Response|exclamation|ok"}));
  EXPECT_TRUE(b.session->Flags.ReplyTimedOut);
}

TEST(Exchange, OpensNoPortWithoutAnInstrument) {
  ExchangeFixture b;
  b.session->Id.PortNumber = 0;
  b.link.EnsurePortOpen();
  EXPECT_FALSE(b.link.IsOpen());
}

TEST(Send, PutsTheCommandBehindTheCheck) {
  ExchangeFixture b;
  b.port.Reply("Q", "S");
  EXPECT_TRUE(Send(b.rig, "Dwell Time Set", command::Dwell(true)));
  EXPECT_EQ(b.port.Writes, (std::vector<Bytes>{BytesOf("Q"), {'D', 1}}));
}

TEST(SendAndRead, AsksNothingBeforeAndReportsNothing) {
  ExchangeFixture b;
  b.port.Open();
  EXPECT_FALSE(SendAndRead(b.rig, command::kLockStatus, 1, 50));
  EXPECT_EQ(b.port.Writes, std::vector<Bytes>{BytesOf("Y9")});
  EXPECT_TRUE(b.fake.Messages.empty());
}

TEST(Timer1Pause, PutsTheTimerBackAsItWasOnEveryWayOut) {
  ExchangeFixture b;
  for (const bool before : {true, false}) {
    b.fake.Enable(TimerId::Timer1, before);
    {
      const Timer1Pause outer(b.fake);
      EXPECT_FALSE(b.fake.Enabled(TimerId::Timer1));
      { const Timer1Pause inner(b.fake); }
      EXPECT_FALSE(b.fake.Enabled(TimerId::Timer1));
    }
    EXPECT_EQ(b.fake.Enabled(TimerId::Timer1), before);
  }
}

}  // namespace
}  // namespace qk
