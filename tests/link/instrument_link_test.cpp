// SPDX-License-Identifier: MIT
// The scan, the fixed-length reply and the link check, on a scripted port and a clock that the
// tests move.
#include "link/instrument_link.h"

#include <gtest/gtest.h>

#include "link/command_set.h"
#include "support/link_fixture.h"

namespace qk {
namespace {

using test::BytesOf;
using test::Fault;
using test::FaultKind;
using test::ScriptedInstrument;
using test::ScriptedLink;
using Texts = std::vector<std::string>;

const Texts kWrongModel{"Instrument ID|Wrong model instrument|critical|ok"};

struct OpenFixture : ScriptedLink {
  OpenFixture() { port.Open(); }
};

// ---- the scan ---------------------------------------------------------------------------------

TEST(FindInstrument, FindsAnInstrumentOnCom16AndEndsNormally) {
  ScriptedLink b;
  b.port.Coms = {16};
  ScriptedInstrument instrument(b.port);
  EXPECT_EQ(b.link.FindInstrument(), 16);
  EXPECT_EQ(b.port.Opened, std::vector<int>{16});
  EXPECT_TRUE(b.link.IsOpen());
  EXPECT_TRUE(b.fake.Messages.empty());
  EXPECT_EQ(b.port.Writes, (std::vector<Bytes>{BytesOf("Q"), BytesOf("*IDN?")}));
}

TEST(FindInstrument, StopsAtTheFirstInstrument) {
  ScriptedLink b;
  b.port.Coms = {3, 4};
  ScriptedInstrument instrument(b.port);
  EXPECT_EQ(b.link.FindInstrument(), 3);
  EXPECT_EQ(b.port.Opened, std::vector<int>{3});
}

TEST(FindInstrument, UsesTheLineOfTheScanWithTheDriversReceiveBuffer) {
  ScriptedLink b;
  ScriptedInstrument instrument(b.port);
  b.link.FindInstrument();
  const LineSettings& line = b.port.Lines.at(0);
  EXPECT_EQ(line.Baud, 115200);
  EXPECT_EQ(line.Parity, 'N');
  EXPECT_EQ(line.DataBits, 8);
  EXPECT_EQ(line.StopBits, 1);
  EXPECT_TRUE(line.RtsHandshake);
  EXPECT_EQ(line.ReceiveBuffer, 0);
  EXPECT_EQ(line.TransmitBuffer, 1000);
}

TEST(FindInstrument, PassesOverPortsThatAreMissingWithoutAWordOrAWait) {
  ScriptedLink b;
  b.port.Coms = {};
  EXPECT_EQ(b.link.FindInstrument(), 0);
  EXPECT_TRUE(b.fake.Messages.empty());
  EXPECT_TRUE(b.port.Writes.empty());
  EXPECT_EQ(b.ElapsedMs(), 0);
}

TEST(FindInstrument, GivesASilentPort100MsAndGoesOn) {
  ScriptedLink b;
  b.port.Coms = {1, 2, 5};
  b.port.OnWrite = [&b](const Bytes&) {
    if (b.port.Com == 5) b.port.Feed(BytesOf("R"));
  };
  b.link.FindInstrument();
  EXPECT_EQ(b.port.Opened, (std::vector<int>{1, 2, 5}));
  EXPECT_EQ(b.port.Writes,
            (std::vector<Bytes>{BytesOf("Q"), BytesOf("Q"), BytesOf("Q"), BytesOf("*IDN?")}));
}

TEST(FindInstrument, ListensToTheSilentPortsWhenNoneAnswered) {
  ScriptedLink b;
  b.port.Coms = {1, 2, 5};
  EXPECT_EQ(b.link.FindInstrument(), 0);
  EXPECT_EQ(b.port.Opened, (std::vector<int>{1, 2, 5, 1, 2, 5}));
  EXPECT_EQ(b.ElapsedMs(), 3 * 101 + 3 * 500);
  EXPECT_EQ(b.port.CountOf("Q"), 3u);
  EXPECT_EQ(b.port.CountOf("*IDN?"), 0u);
}

TEST(FindInstrument, AcceptsTheOtherSignOfLife) {
  ScriptedLink b;
  ScriptedInstrument instrument(b.port);
  instrument.Status = "S";
  EXPECT_EQ(b.link.FindInstrument(), 1);
}

TEST(FindInstrument, PassesOverAPortThatOnlyEchoes) {
  ScriptedLink b;
  b.port.OnWrite = [&b](const Bytes& bytes) { b.port.Feed(bytes); };
  EXPECT_EQ(b.link.FindInstrument(), 0);
  EXPECT_TRUE(b.fake.Messages.empty());
}

TEST(FindInstrument, ReportsAWrongModelOnceAndTriesNoPortAboveIt) {
  ScriptedLink b;
  b.port.Coms = {2, 3};
  ScriptedInstrument instrument(b.port);
  instrument.Identity = "QK46-20-0901";
  EXPECT_EQ(b.link.FindInstrument(), 0);
  EXPECT_EQ(b.fake.MessageTexts(), kWrongModel);
  EXPECT_EQ(b.port.Opened, std::vector<int>{2});
}

TEST(FindInstrument, ComparesOnlyTheFirstTenCharactersOfTheIdentity) {
  ScriptedLink b;
  ScriptedInstrument instrument(b.port);
  instrument.Identity = "QK47-20-09\xFF?";
  EXPECT_EQ(b.link.FindInstrument(), 1);
  EXPECT_TRUE(b.fake.Messages.empty());
}

TEST(FindInstrument, TakesASilentIdentityForAWrongModelWhenTheLineStaysQuiet) {
  ScriptedLink b;
  b.port.Reply("Q", "R");
  EXPECT_EQ(b.link.FindInstrument(), 0);
  EXPECT_EQ(b.fake.MessageTexts(), kWrongModel);
  EXPECT_EQ(b.ElapsedMs(), 101 + 500);
}

TEST(FindInstrument, AcceptsAnAnswerAt100MsAndNoneAfterIt) {
  for (const int delay : {100, 102}) {
    ScriptedLink b;
    b.port.Reply("Q", "R", delay);
    b.port.Reply("*IDN?", "QK47-20-0901", 100);
    EXPECT_EQ(b.link.FindInstrument(), delay == 100 ? 1 : 0) << delay;
  }
}

TEST(FindInstrument, DoesNotTakeWhatAnotherTalkLeftBehindForAnAnswer) {
  class StalePort : public test::ScriptedPort {
   public:
    using ScriptedPort::ScriptedPort;
    bool Open() override {
      if (!ScriptedPort::Open()) return false;
      Feed(BytesOf("R"));
      return true;
    }
  };
  ScriptedLink b;
  StalePort port(b.clock);
  InstrumentLink link(port, *b.session, b.host);
  EXPECT_EQ(link.FindInstrument(), 0);
  EXPECT_EQ(port.CountOf("*IDN?"), 0u);
  EXPECT_TRUE(b.fake.Messages.empty());
}

// Streams a byte every gapMs until endMs, and is the instrument from there on.
struct TalkingFixture : ScriptedLink {
  ScriptedInstrument instrument{port};
  std::vector<int> waited;
  std::function<void(const Bytes&)> answer = port.OnWrite;

  void Talk(std::uint8_t byte, int gapMs, int endMs) {
    const std::int64_t end = clock.NowMs() + endMs;
    port.OnWrite = [this, end](const Bytes& bytes) {
      if (clock.NowMs() < end && bytes == BytesOf("Q")) {
        EXPECT_EQ(++asked, 1) << "into a stream";
      }
      if (clock.NowMs() >= end) answer(bytes);
    };
    fake.OnBreathe = [this, byte, gapMs, end] {
      if (clock.NowMs() >= end || clock.NowMs() < next) return;
      next = clock.NowMs() + gapMs;
      port.Feed({byte});
    };
  }
  std::int16_t Find() {
    return link.FindInstrument([this](int com) { waited.push_back(com); });
  }

 private:
  int asked = 0;
  std::int64_t next = 0;
};

TEST(FindInstrument, WaitsForALineOnWhichBytesComeUnaskedAndThenAsks) {
  for (const std::uint8_t byte : {std::uint8_t{0x11}, std::uint8_t{'R'}}) {
    for (const int gapMs : {2, 60, 90}) {
      TalkingFixture b;
      b.Talk(byte, gapMs, 5000);
      EXPECT_EQ(b.Find(), 1) << int{byte} << " every " << gapMs;
      EXPECT_EQ(b.waited, std::vector<int>{1});
      EXPECT_GE(b.ElapsedMs(), 5000);
      EXPECT_LT(b.ElapsedMs(), 6000);
      EXPECT_TRUE(b.fake.Messages.empty());
    }
  }
}

TEST(FindInstrument, HearsAStreamThatIsSilentForLongerThanAnAnswerTakes) {
  TalkingFixture b;
  b.Talk(0x11, 300, 5000);
  b.fake.Breathe();  // a byte before the scan: the next comes 300 ms later
  EXPECT_EQ(b.Find(), 1);
  EXPECT_EQ(b.waited, std::vector<int>{1});
  EXPECT_TRUE(b.fake.Messages.empty());
}

TEST(FindInstrument, GivesUpOnALineThatIsNeverQuiet) {
  TalkingFixture b;
  b.Talk(0x11, 10, 1'000'000);
  EXPECT_EQ(b.Find(), 0);
  EXPECT_GT(b.ElapsedMs(), 30'000);
  EXPECT_LT(b.ElapsedMs(), 31'000);
  EXPECT_TRUE(b.fake.Messages.empty());
}

TEST(FindInstrument, FindsTheInstrumentAtTheNextScanAfterTheAdaptorIsPluggedIn) {
  ScriptedLink b;
  b.port.Coms = {};
  ScriptedInstrument instrument(b.port);
  EXPECT_EQ(b.link.FindInstrument(), 0);
  b.port.PlugIn(7);
  EXPECT_EQ(b.link.FindInstrument(), 7);
}

TEST(FindInstrument, ClosesThePortThatIsOpenBeforeItScans) {
  OpenFixture b;
  b.port.Coms = {2};
  ScriptedInstrument instrument(b.port);
  EXPECT_EQ(b.link.FindInstrument(), 2);
  EXPECT_EQ(b.port.Com, 2);
}

TEST(SetUpSessionPort, ClosesThePortAndGivesItTheBuffersOfTheSession) {
  ScriptedLink b;
  b.port.Coms = {9};
  ScriptedInstrument instrument(b.port);
  b.session->Id.PortNumber = b.link.FindInstrument();
  b.link.SetUpSessionPort();
  EXPECT_FALSE(b.link.IsOpen());
  b.link.EnsurePortOpen();
  EXPECT_TRUE(b.link.IsOpen());
  EXPECT_EQ(b.port.Opened, (std::vector<int>{9, 9}));
  const LineSettings& line = b.port.Lines.back();
  EXPECT_EQ(line.ReceiveBuffer, 32512);
  EXPECT_EQ(line.TransmitBuffer, 20000);
  EXPECT_EQ(line.Baud, 115200);
  EXPECT_EQ(line.Parity, 'N');
  EXPECT_EQ(line.DataBits, 8);
  EXPECT_EQ(line.StopBits, 1);
  EXPECT_TRUE(line.RtsHandshake);
}

// ---- replies ----------------------------------------------------------------------------------

TEST(ReadReply, NeverTimesOutOnAStreamThatTricklesWithGapsUnderTheTimeOut) {
  OpenFixture b;
  b.port.Feed(Bytes(64, 0x11), 199, 199);
  EXPECT_EQ(b.link.ReadReply(64, 200).size(), 64u);
  EXPECT_FALSE(b.session->Flags.ReplyTimedOut);
  EXPECT_EQ(b.ElapsedMs(), 64 * 199);
}

TEST(ReadReply, GivesWhatHasComeWhenTheStreamStalls) {
  OpenFixture b;
  b.port.Feed(BytesOf("abc"), 50);
  EXPECT_EQ(b.link.ReadReply(4, 200), BytesOf("abc"));
  EXPECT_TRUE(b.session->Flags.ReplyTimedOut);
  EXPECT_EQ(b.ElapsedMs(), 50 + 201);
}

TEST(ReadReply, TimesOutStrictlyAfterTheDeadline) {
  for (const int delay : {200, 202}) {
    OpenFixture b;
    b.port.Feed(BytesOf("a"), delay);
    b.link.ReadReply(1, 200);
    EXPECT_EQ(b.session->Flags.ReplyTimedOut, delay == 202) << delay;
  }
}

TEST(ReadReply, TakesAllWaitingBytesAlsoBeyondTheCount) {
  OpenFixture b;
  b.port.Feed(BytesOf("abcdef"));
  EXPECT_EQ(b.link.ReadReply(4, 200), BytesOf("abcdef"));
  EXPECT_FALSE(b.session->Flags.ReplyTimedOut);
}

TEST(ReadReply, ClearsTheFlagOfAnEarlierFailure) {
  OpenFixture b;
  b.session->Flags.ReplyTimedOut = true;
  b.port.Feed(BytesOf("a"));
  b.link.ReadReply(1, 100);
  EXPECT_FALSE(b.session->Flags.ReplyTimedOut);
}

TEST(ReadReply, RepaintsWhileItWaitsButRunsNoHandler) {
  OpenFixture b;
  int repaints = 0;
  b.fake.OnBreathe = [&repaints] { ++repaints; };
  b.fake.SetInterval(TimerId::Timer1, 10);
  b.fake.Enable(TimerId::Timer1, true);
  b.fake.OnTick = [](TimerId) { FAIL() << "a timer ticked inside an exchange"; };
  b.link.ReadReply(1, 2000);
  EXPECT_GT(repaints, 100);
  EXPECT_EQ(b.fake.EventRuns, 0);
}

TEST(ReadReply, GivesUpAtOnceOnAClosedPort) {
  ScriptedLink b;
  EXPECT_TRUE(b.link.ReadReply(4, 2000).empty());
  EXPECT_TRUE(b.session->Flags.ReplyTimedOut);
  EXPECT_EQ(b.ElapsedMs(), 0);
}

TEST(ReadReply, TakesAWholeReplyThoughThePortGoesWithItsLastByte) {
  class LastWordPort : public test::ScriptedPort {
   public:
    using ScriptedPort::ScriptedPort;
    std::size_t Input(std::vector<std::uint8_t>& out) override {
      const std::size_t count = ScriptedPort::Input(out);
      if (count > 0) Unplug();
      return count;
    }
  };
  ScriptedLink b;
  LastWordPort port(b.clock);
  InstrumentLink link(port, *b.session, b.host);
  port.SetPort(1);
  link.EnsurePortOpen();
  port.Feed(BytesOf("abc"));
  EXPECT_EQ(link.ReadReply(3, 200), BytesOf("abc"));
  EXPECT_FALSE(b.session->Flags.ReplyTimedOut);
  EXPECT_FALSE(link.IsOpen());
}

TEST(ReadReply, GivesUpAtOnceWhenThePortIsPulledOutMeanwhile) {
  OpenFixture b;
  b.fake.OnBreathe = [&b] {
    if (b.ElapsedMs() >= 300) b.port.Unplug();
  };
  b.link.ReadReply(4, 2000);
  EXPECT_TRUE(b.session->Flags.ReplyTimedOut);
  EXPECT_EQ(b.ElapsedMs(), 300);
}

// ---- the link check ---------------------------------------------------------------------------

TEST(LinkCheck, TakesEitherSignOfLife) {
  for (const char* answer : {"R", "S"}) {
    OpenFixture b;
    b.port.Reply("Q", answer);
    EXPECT_TRUE(b.link.LinkCheck());
    EXPECT_FALSE(b.session->Flags.ReplyTimedOut);
  }
}

TEST(LinkCheck, FailsAtOnceOnAnotherCharacter) {
  OpenFixture b;
  b.port.Reply("Q", "X");
  EXPECT_FALSE(b.link.LinkCheck());
  EXPECT_TRUE(b.session->Flags.ReplyTimedOut);
  EXPECT_EQ(b.ElapsedMs(), 0);
}

TEST(LinkCheck, WaitsTwoSecondsForTheInstrumentToDigestABlock) {
  OpenFixture b;
  b.port.Reply("Q", "R", 2000);
  EXPECT_TRUE(b.link.LinkCheck());
  b.StartWatch();
  EXPECT_FALSE(b.link.LinkCheck());
  EXPECT_TRUE(b.session->Flags.ReplyTimedOut);
  EXPECT_EQ(b.ElapsedMs(), 2001);
}

TEST(LinkCheck, DoesNotTakeALateAnswerToAnEarlierQuestion) {
  OpenFixture b;
  b.port.Reply("Q", "R", 2500);
  EXPECT_FALSE(b.link.LinkCheck());
  b.clock.AdvanceMs(1000);
  b.port.Reply("Q", "X");
  EXPECT_FALSE(b.link.LinkCheck());
}

TEST(LinkCheck, FailsAtOnceOnAClosedPort) {
  ScriptedLink b;
  EXPECT_FALSE(b.link.LinkCheck());
  EXPECT_EQ(b.ElapsedMs(), 0);
}

TEST(SendCommand, SendsEveryByteValueAsItStands) {
  OpenFixture b;
  b.link.SendCommand(Bytes{'W', 2, 0, 0, 255, 0});
  b.link.SendByte(0);
  b.link.SendByte(255);
  EXPECT_EQ(b.port.Writes, (std::vector<Bytes>{{'W', 2, 0, 0, 255, 0}, {0}, {255}}));
}

TEST(Streams, TakeAppendsAndDropForgets) {
  OpenFixture b;
  b.port.Feed(BytesOf("ab"));
  Bytes buffer = BytesOf("x");
  EXPECT_EQ(b.link.TakeInput(buffer), 2u);
  EXPECT_EQ(buffer, BytesOf("xab"));
  b.port.Feed(BytesOf("cd"), 30);
  EXPECT_FALSE(b.link.WaitForInput(20));
  EXPECT_TRUE(b.link.WaitForInput(20));
  EXPECT_EQ(b.ElapsedMs(), 30);
  b.link.DropInput();
  EXPECT_EQ(b.link.TakeInput(buffer), 0u);
}

TEST(VoltsFromCounts, SpansTheRangeOfTheConverter) {
  EXPECT_DOUBLE_EQ(VoltsFromCounts(0, 0, 0, 1), -2.5);
  EXPECT_DOUBLE_EQ(VoltsFromCounts(0, 255, 255, 1), 2.499924);
  EXPECT_DOUBLE_EQ(VoltsFromCounts(127, 255, 128, 128), 2.499924);  // 128 * 65535
}

// ---- faults on the line -----------------------------------------------------------------------

// Bytes of the scan: the status letter, then 12 of identity.
TEST(FaultsInTheScan, EveryCutByteEndsInTheRightMessageWithinTheTimeOuts) {
  for (std::size_t at = 0; at < 13; ++at) {
    ScriptedLink b;
    ScriptedInstrument instrument(b.port);
    b.port.Fault = Fault{FaultKind::Cut, at};
    const std::int16_t found = b.link.FindInstrument();
    const bool modelWhole = at > 10;
    EXPECT_EQ(found, modelWhole ? 1 : 0) << at;
    EXPECT_EQ(b.fake.MessageTexts(), at == 0 || modelWhole ? Texts{} : kWrongModel) << at;
    // A failure is believed when the line has been listened to.
    EXPECT_EQ(b.ElapsedMs(), modelWhole ? 101 : 101 + 500) << at;
  }
}

TEST(FaultsInTheScan, EveryDoubledByteOfTheModelIsAWrongModel) {
  for (std::size_t at = 0; at < 13; ++at) {
    ScriptedLink b;
    ScriptedInstrument instrument(b.port);
    b.port.Fault = Fault{FaultKind::Double, at};
    const bool harmless = at == 0 || at >= 10;  // beside the model's ten characters
    EXPECT_EQ(b.link.FindInstrument(), harmless ? 1 : 0) << at;
    EXPECT_EQ(b.fake.MessageTexts(), harmless ? Texts{} : kWrongModel) << at;
    // A second sign of life answers nothing: the line must go quiet, then it is asked again.
    EXPECT_EQ(b.ElapsedMs(), at == 0 || !harmless ? 500 : 0) << at;
  }
}

TEST(FaultsInTheScan, EveryGarbledByteOfTheModelIsAWrongModel) {
  for (std::size_t at = 0; at < 13; ++at) {
    ScriptedLink b;
    ScriptedInstrument instrument(b.port);
    b.port.Fault = Fault{FaultKind::Garble, at};
    EXPECT_EQ(b.link.FindInstrument(), at > 10 ? 1 : 0) << at;
    EXPECT_EQ(b.fake.MessageTexts(), at == 0 || at > 10 ? Texts{} : kWrongModel) << at;
    // A port that answers nothing sensible is listened to twice.
    EXPECT_EQ(b.ElapsedMs(), at == 0 ? 1000 : at > 10 ? 0 : 500) << at;
  }
}

TEST(FaultsInTheScan, AnAdaptorPulledOutAtAnyByteEndsTheScanWithoutAWait) {
  for (std::size_t at = 0; at < 13; ++at) {
    ScriptedLink b;
    ScriptedInstrument instrument(b.port);
    b.port.Fault = Fault{FaultKind::Unplug, at};
    EXPECT_EQ(b.link.FindInstrument(), 0) << at;
    EXPECT_EQ(b.fake.MessageTexts(), at == 0 ? Texts{} : kWrongModel) << at;
    EXPECT_EQ(b.ElapsedMs(), 0) << at;
  }
}

}  // namespace
}  // namespace qk
