// SPDX-License-Identifier: MIT
// Faults on request: each at its byte, or behind the converters.
#include <cmath>

#include "sim/eeprom_image.h"
#include "sim/talker.h"

namespace qk::sim::test {
namespace {

struct Faulty : Talker {
  Faulty() {
    Bench("noise off");
    LoadPlan({3e6, 1e9, 3e9});
    Whole = Say("M");
  }
  Bytes Whole;  // 36 bytes
};

TEST(Faults, SilenceBeginsAtOnceAndEndsWithNone) {
  Faulty box;
  box.Bench("fault silence");
  EXPECT_TRUE(box.Say("Q").empty());
  EXPECT_TRUE(box.Say("M").empty());
  box.Bench("fault none");
  EXPECT_EQ(box.Say("Q").size(), 1u);
}

TEST(Faults, ACutFallsAfterEveryNumberOfBytesCountedFromWhenItWasSet) {
  for (std::size_t n = 0; n <= 36; ++n) {
    Faulty box;
    box.Bench("fault cut after " + std::to_string(n));
    const Bytes got = box.Say("M");
    EXPECT_EQ(got, Bytes(box.Whole.begin(), box.Whole.begin() + static_cast<std::ptrdiff_t>(n)));
    EXPECT_TRUE(box.Say("Q").empty()) << "the line stays dead";
  }
}

TEST(Faults, ACutSpansSeveralReplies) {
  Faulty box;
  box.Bench("fault cut after 2");
  EXPECT_EQ(box.Say("Q").size(), 1u);
  EXPECT_EQ(box.Say("Q").size(), 1u);
  EXPECT_EQ(box.Say("Q").size(), 0u);
}

TEST(Faults, ADroppedAddedDoubledOrGarbledByteStandsAtItsPosition) {
  for (std::size_t n : {0u, 1u, 11u, 12u, 35u}) {
    const auto at = static_cast<std::ptrdiff_t>(n);
    const std::string position = std::to_string(n);
    Faulty box;
    Bytes want = box.Whole;
    want.erase(want.begin() + at);
    box.Bench("fault drop at " + position);
    EXPECT_EQ(box.Say("M"), want);
    EXPECT_EQ(box.Say("M"), box.Whole) << "only once";

    box.Bench("fault none");
    want = box.Whole;
    want.insert(want.begin() + at, 0xA5);
    box.Bench("fault add at " + position);
    EXPECT_EQ(box.Say("M"), want);

    box.Bench("fault none");
    want = box.Whole;
    want.insert(want.begin() + at, box.Whole[n]);
    box.Bench("fault double at " + position);
    EXPECT_EQ(box.Say("M"), want);

    box.Bench("fault none");
    want = box.Whole;
    want[n] ^= 0x5A;
    box.Bench("fault garble at " + position);
    EXPECT_EQ(box.Say("M"), want);
  }
}

TEST(Faults, ARunOfBytesGoesWrongByItsCount) {
  Faulty box;
  box.Bench("fault drop at 4 count 7");
  Bytes want = box.Whole;
  want.erase(want.begin() + 4, want.begin() + 11);
  EXPECT_EQ(box.Say("M"), want);
}

TEST(Faults, InASweepOnlyTheSweepsBytesCount) {
  Faulty box;
  box.Bench("fault sweep drop at 5");
  EXPECT_EQ(box.Say("*IDN?").size(), 12u);
  Bytes want = box.Whole;
  want.erase(want.begin() + 5);
  EXPECT_EQ(box.Say("M"), want);
}

TEST(Faults, SeveralFaultsStandTogether) {
  Faulty box;
  box.Bench("fault drop at 0");
  box.Bench("fault garble at 1");
  Bytes want = box.Whole;
  want[1] ^= 0x5A;
  want.erase(want.begin());
  EXPECT_EQ(box.Say("M"), want);
}

TEST(Faults, AStallStopsEverySweepAndNothingElse) {
  Faulty box;
  box.Bench("fault stall after 13");
  EXPECT_EQ(box.Say("M").size(), 13u);
  EXPECT_EQ(box.Say("Q").size(), 1u);
  EXPECT_EQ(box.Say("M").size(), 13u);
  box.Bench("fault none");
  EXPECT_EQ(box.Say("M"), box.Whole);
}

TEST(Faults, AStallWithoutANumberFallsAfter100Bytes) {
  Faulty box;
  box.Bench("fault stall");
  EXPECT_EQ(box.Say("A").size(), 100u);
}

TEST(Faults, LateRepliesComeByTheirMillisecondsLater) {
  Instrument box;
  ASSERT_TRUE(box.Bench("fault late 150").Ok);
  const std::uint8_t command = 'Q';
  box.Receive(&command, 1, 1000);
  const auto sent = box.Poll(1000);
  ASSERT_EQ(sent.size(), 1u);
  EXPECT_EQ(sent[0].NotBeforeUs, 151'000);
}

TEST(Faults, EepromRepliesFallShort) {
  Faulty box;
  box.Bench("fault short");
  EXPECT_EQ(box.Say(Bytes{'P', 64, 4, 0}).size(), 63u);
  box.Bench("fault short 200");
  EXPECT_EQ(box.Say(Bytes{'P', 64, 4, 0}).size(), 0u);
  EXPECT_EQ(box.Say("Q").size(), 1u);
}

TEST(Faults, AnotherModelAnswers) {
  Faulty box;
  box.Bench("fault model");
  Bytes reply = box.Say("*IDN?");
  EXPECT_EQ(std::string(reply.begin(), reply.end()), "QK47-20-08\r\n");
  box.Bench("fault model X1");
  reply = box.Say("*IDN?");
  EXPECT_EQ(std::string(reply.begin(), reply.end()), "X1        \r\n");
}

TEST(Faults, TheSerialNumberIsNoNumberAndTheChecksumStillHolds) {
  Faulty box;
  box.Bench("fault serial ab12");
  const Bytes serial = box.Say(Bytes{'P', 4, 0, 10});
  EXPECT_EQ(std::string(serial.begin(), serial.end()), "ab12");
  Eeprom image;
  for (std::size_t at = 0; at < image.size(); at += 128) {
    const Bytes block = box.Say(
        Bytes{'P', 128, static_cast<std::uint8_t>(at / 256), static_cast<std::uint8_t>(at % 256)});
    std::copy(block.begin(), block.end(), image.begin() + static_cast<std::ptrdiff_t>(at));
  }
  EXPECT_EQ(image[32767], Checksum(image));
  box.Bench("fault none");
  EXPECT_EQ(box.Say(Bytes{'P', 1, 0, 10}), Bytes{'0'});
}

TEST(Faults, NoLockGivesALockByteOfZero) {
  Faulty box;
  box.Say(Bytes{'Z', 0});
  EXPECT_EQ(box.Say("Y9"), Bytes{1});
  box.Bench("fault nolock");
  EXPECT_EQ(box.Say("Y9"), Bytes{0});
  box.Bench("fault none");
  EXPECT_EQ(box.Say("Y9"), Bytes{1});
}

// Decibels over 1 volt that the channel of two commands ("Y2", "Y3") reads of the continuous wave.
double ReadingDb(Talker& talker, const char* inPhase, const char* quadrature, double offset) {
  const double i = Volts(talker.Say(inPhase).data(), 1) - offset;
  const double q = Volts(talker.Say(quadrature).data(), 1) - offset;
  return 20 * std::log10(std::hypot(i, q));
}

// A through between the ports, quiet, with the offsets known; point 0 at 1 GHz.
struct Wave : Talker {
  Wave() {
    Bench("noise off");
    Bench("through");
    Bench("offsets 0 0");
    LoadPlan({1e9, 2e9});
    Say(Bytes{'Z', 0});
  }
  double Test() { return ReadingDb(*this, "Y2", "Y3", 0); }
  double Reference() { return ReadingDb(*this, "Y0", "Y1", 0); }
  void Retune(double hz, int level = 27) {
    WriteRecord(2, RecordFor(hz, level));
    Say(Bytes{'Z', 0});
  }
};

TEST(Faults, NoLockAtAFrequencyLeavesTheOthersAlone) {
  Wave wave;
  wave.Bench("fault nolock at 1.5e9");
  EXPECT_EQ(wave.Say("Y9"), Bytes{1});
  wave.Retune(1.5e9);
  EXPECT_EQ(wave.Say("Y9"), Bytes{0});
  wave.Retune(3e9);
  EXPECT_EQ(wave.Say("Y9"), Bytes{1});
}

TEST(Faults, ALevelCodeGivesSoMuchMoreAndTheNextOneDoesNot) {
  Wave wave;
  wave.Retune(1e9, 16);
  const double before = wave.Test();
  wave.Retune(1e9, 17);
  EXPECT_NEAR(wave.Test() - before, 1, 0.01);
  wave.Bench("fault level 16 4 dB");
  EXPECT_NEAR(wave.Test() - before, 1, 0.01);
  wave.Retune(1e9, 16);
  EXPECT_NEAR(wave.Test() - before, 4, 0.01);
}

TEST(Faults, ReferenceAndTestChannelsWeakenByThemselves) {
  Wave wave;
  const double test = wave.Test(), reference = wave.Reference();
  wave.Bench("fault reference -14");
  EXPECT_NEAR(wave.Reference() - reference, -14, 0.01);
  EXPECT_NEAR(wave.Test(), test, 0.01);
  wave.Bench("fault none");
  wave.Bench("fault test -6 at 1e9");
  EXPECT_NEAR(wave.Reference(), reference, 0.01);
  EXPECT_NEAR(wave.Test() - test, -6, 0.01);
  wave.Retune(2e9);
  EXPECT_GT(wave.Test(), -5);
}

TEST(Faults, CrosstalkIsHeardWithNothingConnected) {
  Wave wave;
  const double through = wave.Test();
  wave.Bench("port1 nothing");
  wave.Bench("port2 nothing");
  EXPECT_LT(wave.Test(), -70);
  wave.Bench("fault crosstalk -50");
  EXPECT_NEAR(wave.Test() - through, -50, 0.1);
}

TEST(Faults, CountsTheBytesSent) {
  Talker talker;
  EXPECT_EQ(talker.Box.BytesSent(), 0u);
  talker.Say("Q*IDN?");
  EXPECT_EQ(talker.Box.BytesSent(), 13u);
}

}  // namespace
}  // namespace qk::sim::test
