// SPDX-License-Identifier: MIT
// The command set, byte by byte.
#include "sim/command_interpreter.h"

#include <random>

#include "sim/instrument_state.h"
#include "sim/talker.h"

namespace qk::sim::test {
namespace {

const CommandInterpreter& Inside(Talker& talker) {
  return talker.Box.state().Commands;
}

std::string AsText(const Bytes& bytes) {
  return {bytes.begin(), bytes.end()};
}

TEST(CommandInterpreter, AnswersASignOfLife) {
  Talker talker;
  EXPECT_EQ(AsText(talker.Say("Q")), "R");
}

TEST(CommandInterpreter, AnswersSWhileAContinuousWaveIsHeld) {
  Talker talker;
  talker.LoadPlan({1e9});
  talker.Say(Bytes{'Z', 0});
  EXPECT_EQ(AsText(talker.Say("Q")), "S");
  talker.Say("C");
  EXPECT_EQ(AsText(talker.Say("Q")), "R");
}

TEST(CommandInterpreter, ReportsItsModelInTwelveCharacters) {
  Talker talker;
  EXPECT_EQ(AsText(talker.Say("*IDN?")), "QK47-20-09\r\n");
}

TEST(CommandInterpreter, PassesOverAnAsteriskThatIsNoIdentityQuestion) {
  Talker talker;
  EXPECT_EQ(AsText(talker.Say("*IDXQ")), "R");
}

TEST(CommandInterpreter, ReportsItsFirmwareInThreeCharacters) {
  for (const char* version : {"0.9", "1.0", "1.1", "1.2"}) {
    Talker talker(WithFirmware(version));
    EXPECT_EQ(AsText(talker.Say("V")), version);
  }
}

TEST(CommandInterpreter, SendsTheFourCharactersOfFirmware105InOnePiece) {
  Instrument box(WithFirmware("1.05"));
  const std::uint8_t command = 'V';
  box.Receive(&command, 1, 0);
  const auto sent = box.Poll(0);
  ASSERT_EQ(sent.size(), 1u);
  EXPECT_EQ(AsText(sent[0].Bytes), "1.05");
  EXPECT_TRUE(sent[0].Together);
}

TEST(CommandInterpreter, ReadsEepromFromAnAddressWithTheHighByteFirst) {
  Talker talker;
  const Bytes reply = talker.Say(Bytes{'P', 120, 43, 0});
  const auto& eeprom = Inside(talker).EepromBytes();
  EXPECT_EQ(reply, Bytes(eeprom.begin() + 11008, eeprom.begin() + 11128));
}

TEST(CommandInterpreter, GivesTheSerialNumberFromTheSecondIdentityField) {
  Talker talker;
  EXPECT_EQ(AsText(talker.Say(Bytes{'P', 4, 0, 10})), "0147");
}

TEST(CommandInterpreter, ReadsNothingForACountOfZeroAndWrapsAtTheEndOfTheEeprom) {
  Talker talker;
  EXPECT_TRUE(talker.Say(Bytes{'P', 0, 0, 0}).empty());
  const Bytes reply = talker.Say(Bytes{'P', 2, 127, 255});
  const auto& eeprom = Inside(talker).EepromBytes();
  EXPECT_EQ(reply, (Bytes{eeprom[32767], eeprom[0]}));
}

TEST(CommandInterpreter, WritesEepromAndReadsItBack) {
  Talker talker;
  EXPECT_TRUE(talker.Say(Bytes{'E', 'E', 3, 78, 32, 0, 255, 'E'}).empty());
  EXPECT_EQ(talker.Say(Bytes{'P', 3, 78, 32}), (Bytes{0, 255, 'E'}));
}

TEST(CommandInterpreter, TakesItsIdentityFromTheEepromWhenItIsSwitchedOn) {
  Talker talker;
  Bytes write = {'E', 'E', 10, 0, 0};
  for (const char c : std::string("QK47-20-11")) write.push_back(static_cast<std::uint8_t>(c));
  talker.Say(write);
  const auto identity = [&talker] {
    const Bytes reply = talker.Say("*IDN?");
    return std::string(reply.begin(), reply.begin() + 10);
  };
  EXPECT_EQ(identity(), "QK47-20-09");
  talker.Bench("power cycle");
  EXPECT_EQ(identity(), "QK47-20-11");
}

TEST(CommandInterpreter, ForgetsItsSweepWhenItIsSwitchedOffAndKeepsItsEeprom) {
  Talker talker;
  talker.LoadPlan({1e9});
  talker.SetAverages(9);
  talker.Say(Bytes{'Z', 0});
  talker.Bench("eeprom 700 17");
  talker.Bench("power cycle");
  EXPECT_EQ(talker.Box.state().Commands.Points(), 0);
  EXPECT_EQ(talker.Box.state().Commands.Averages(), 1);
  EXPECT_EQ(talker.Say("Q"), Bytes{'R'});
  EXPECT_EQ(talker.Say(Bytes{'P', 1, 2, 188}), Bytes{17});
}

TEST(CommandInterpreter, WritesSweepRam) {
  Talker talker;
  EXPECT_TRUE(talker.Say(Bytes{'W', 2, 0, 0, 1, 145}).empty());
  EXPECT_EQ(Inside(talker).Points(), 401);
  talker.WriteRecord(32738, RecordFor(2e7));
  EXPECT_EQ(Inside(talker).SweepRam()[32738], RecordFor(2e7)[0]);
}

TEST(CommandInterpreter, HoldsNoMorePointsThanFitBelowTheOffsetRecord) {
  Talker talker;
  talker.Say(Bytes{'W', 2, 0, 0, 255, 255});
  EXPECT_EQ(Inside(talker).Points(), 1488);
}

TEST(CommandInterpreter, LoadsALevelCodeAPointAndKeepsTheBandBits) {
  Talker talker;
  talker.LoadPlan({3e6, 1e9, 2e9});
  EXPECT_TRUE(talker.Say(Bytes{'N', 5, 255, 7}).empty());
  EXPECT_EQ(Inside(talker).RecordOf(0)[14], 5);
  EXPECT_EQ(Inside(talker).RecordOf(1)[14], 96 + 31);
  EXPECT_EQ(Inside(talker).RecordOf(2)[14], 32 + 7);
  EXPECT_EQ(AsText(talker.Say("Q")), "R");
}

TEST(CommandInterpreter, CountsPointsFromOneForTheLevelCodeOfOnePoint) {
  Talker talker;
  talker.LoadPlan({3e6, 1e9, 2e9});
  talker.Say(Bytes{'Y', 'K', 0, 2, 11});
  EXPECT_EQ(Inside(talker).RecordOf(0)[14], 27);
  EXPECT_EQ(Inside(talker).RecordOf(1)[14], 96 + 11);
  talker.Say(Bytes{'Y', 'K', 0, 0, 1});  // no such points
  talker.Say(Bytes{'Y', 'K', 0, 4, 1});
  EXPECT_EQ(Inside(talker).RecordOf(0)[14], 27);
  EXPECT_EQ(Inside(talker).RecordOf(2)[14], 32 + 27);
}

TEST(CommandInterpreter, KeepsAveragesDwellAndPath) {
  Talker talker;
  talker.Say(Bytes{'Y', '8', 128, 'D', 1, 'Y', 'G'});
  EXPECT_EQ(Inside(talker).Averages(), 128);
  EXPECT_TRUE(Inside(talker).DwellOn());
  EXPECT_EQ(Inside(talker).Path(), 'G');
  talker.Say(Bytes{'Y', '8', 0, 'D', 0});
  EXPECT_EQ(Inside(talker).Averages(), 1);
  EXPECT_FALSE(Inside(talker).DwellOn());
  for (char path : {'F', 'E', 'P'}) {
    talker.Say(Bytes{'Y', static_cast<std::uint8_t>(path)});
    EXPECT_EQ(Inside(talker).Path(), path);
  }
}

TEST(CommandInterpreter, LosesThePathWithTheOffsetMeasurement) {
  Talker talker;
  talker.Say("YF");
  EXPECT_EQ(talker.Say("C").size(), 6u);
  EXPECT_EQ(Inside(talker).Path(), 0);
}

TEST(CommandInterpreter, SendsTheBytesAPointThatEachTriggerHas) {
  Talker talker;
  talker.LoadPlan({3e6, 1e9, 3e9});
  EXPECT_EQ(talker.Say("M").size(), 36u);
  EXPECT_EQ(talker.Say("S").size(), 36u);
  EXPECT_EQ(talker.Say("YO").size(), 54u);
  EXPECT_EQ(talker.Say("A").size(), 108u);
}

TEST(CommandInterpreter, SendsNothingForASweepWithoutPoints) {
  Talker talker;
  EXPECT_TRUE(talker.Say("A").empty());
  EXPECT_EQ(AsText(talker.Say("Q")), "R");
}

TEST(CommandInterpreter, PutsTheSamplesInTheOrderOfEachTrigger) {
  Talker talker(Quiet());
  talker.Bench("filter");  // reflections and transmissions all differ
  talker.LoadPlan({0.905e9});
  const Bytes m = talker.Say("M"), s = talker.Say("S"), yo = talker.Say("YO"), a = talker.Say("A");
  const auto sample = [](const Bytes& b, std::size_t i) {
    return Bytes(b.begin() + static_cast<std::ptrdiff_t>(3 * i),
                 b.begin() + static_cast<std::ptrdiff_t>(3 * i + 3));
  };
  // Reference I, port 2 I, port 1 I, reference Q, port 2 Q, port 1 Q.
  EXPECT_EQ(Bytes(a.begin(), a.begin() + 18), yo);
  const std::array<std::size_t, 4> ofM = {0, 2, 3, 5}, ofS = {0, 1, 3, 4};
  for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(sample(s, i), sample(yo, ofS[i])) << i;
  EXPECT_NE(sample(m, 1), sample(yo, 2)) << "the S11 path ends the filter in its own termination";
  talker.Bench("port1 short");
  const Bytes shortM = talker.Say("M"), shortYo = talker.Say("YO");
  for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(sample(shortM, i), sample(shortYo, ofM[i])) << i;
  for (std::size_t i = 0; i < 6; ++i)
    for (std::size_t k = i + 1; k < 6; ++k) EXPECT_NE(sample(a, i), sample(a, k));
}

TEST(CommandInterpreter, ReadsTheSelectedPointLikeOnePointOfTheTransmissionSweep) {
  Talker talker(Quiet());
  talker.LoadPlan({3e6, 1e9, 3e9});
  const Bytes sweep = talker.Say("S");
  for (std::uint8_t point = 1; point <= 3; ++point) {
    EXPECT_TRUE(talker.Say(Bytes{'Y', 'I', 0, point}).empty());
    EXPECT_EQ(talker.Say("YJ"),
              Bytes(sweep.begin() + 12 * (point - 1), sweep.begin() + 12 * point));
  }
}

TEST(CommandInterpreter, AnswersAReadingOfAPointThatDoesNotExist) {
  Talker talker;
  talker.LoadPlan({3e6});
  talker.Say(Bytes{'Y', 'I', 0, 0});
  EXPECT_EQ(talker.Say("YJ").size(), 12u);
  talker.Say(Bytes{'Y', 'I', 255, 255});
  EXPECT_EQ(talker.Say("YJ").size(), 12u);
}

TEST(CommandInterpreter, ReportsTheLockOfTheContinuousWave) {
  Talker talker;
  talker.LoadPlan({1e9});
  EXPECT_EQ(talker.Say(Bytes{'Z', 0, 'Y', '9'}), Bytes{1});
  Record broken = RecordFor(1e9);
  broken[8] ^= 0x20;
  talker.WriteRecord(2, broken);
  EXPECT_EQ(talker.Say("Y9"), Bytes{1}) << "the synthesisers stay where they were set";
  EXPECT_EQ(talker.Say(Bytes{'Z', 0, 'Y', '9'}), Bytes{0});
}

TEST(CommandInterpreter, ReadsReferenceAndTestChannelOfTheContinuousWave) {
  Talker talker(Quiet());
  talker.Bench("through");
  talker.LoadPlan({1e9});
  talker.Say(Bytes{'Z', 0});
  const Bytes s = talker.Say("S");
  talker.Say(Bytes{'Z', 0});
  EXPECT_EQ(talker.Say("Y0"), Bytes(s.begin(), s.begin() + 3));
  EXPECT_EQ(talker.Say("Y2"), Bytes(s.begin() + 3, s.begin() + 6));
  EXPECT_EQ(talker.Say("Y1"), Bytes(s.begin() + 6, s.begin() + 9));
  EXPECT_EQ(talker.Say("Y3"), Bytes(s.begin() + 9, s.begin() + 12));
}

TEST(CommandInterpreter, SumsTheReadingsOfTheAveragesAndOf256ForTheOffsets) {
  Talker talker(Quiet());
  talker.Bench("offsets 10 -20");
  talker.LoadPlan({1e9});
  talker.MeasureOffsets();
  EXPECT_NEAR(talker.OffsetI(), 0.010, 1e-6);
  EXPECT_NEAR(talker.OffsetQ(), -0.020, 1e-6);
  const Bytes one = talker.Say("S");
  talker.SetAverages(255);
  const Bytes many = talker.Say("S");
  for (std::size_t i = 0; i < 12; i += 3)
    EXPECT_NEAR(Volts(&one[i], 1), Volts(&many[i], 255), 8e-5);
}

TEST(CommandInterpreter, ReportsTheTemperatureAsATenBitCount) {
  Talker talker;
  talker.Bench("temperature 30");
  const Bytes reply = talker.Say("T");
  ASSERT_EQ(reply.size(), 2u);
  const double volts = (reply[0] * 256 + reply[1]) * 5 / 1024.0;
  EXPECT_NEAR((volts - 2.45) / 0.049, 30, 0.06);
}

TEST(CommandInterpreter, ClosesAnAbortWithXXAboveFirmware10Only) {
  for (const char* version : {"1.05", "1.1", "1.2"}) {
    Talker talker(WithFirmware(version));
    EXPECT_EQ(AsText(talker.Say("O")), "XX") << version;
  }
  for (const char* version : {"0.9", "1.0"}) {
    Talker talker(WithFirmware(version));
    EXPECT_TRUE(talker.Say("O").empty()) << version;
  }
}

TEST(CommandInterpreter, PassesOverBytesThatBeginNoCommand) {
  Talker talker;
  EXPECT_EQ(AsText(talker.Say(Bytes{0, 255, 'x', 'E', 'x', 'Y', '?', 'Q'})), "R");
}

TEST(CommandInterpreter, TakesEveryArgumentSplitOverAnyNumberOfWrites) {
  // One exchange with every command, once in one piece and once byte by byte.
  Bytes script = {'Q', 'V', 'P', 5, 0, 0, 'E', 'E', 2, 100, 0, 'Q', 'Q', 'W', 2, 0, 0, 0, 1};
  script.insert(script.end(), {'W', 22, 0, 2});
  const Record record = RecordFor(1.2e9);
  script.insert(script.end(), record.begin(), record.end());
  for (std::string_view more : {"*IDN?", "N\x05", "D\x01", "YF", "YE", "YG", "YP", "Y8\x03", "M",
                                "S", "YO", "A", "O", "C", "T"})
    script.insert(script.end(), more.begin(), more.end());
  script.insert(script.end(), {'Z', 0,   'Y', '9', 'Y', '0', 'Y', '1', 'Y', '2', 'Y', '3',
                               'Y', 'K', 0,   1,   20,  'Y', 'I', 0,   1,   'Y', 'J', 'Q'});
  Talker whole, split;
  const Bytes expected = whole.Say(script);
  Bytes got;
  for (std::uint8_t byte : script) {
    const Bytes reply = split.Say(Bytes{byte});
    got.insert(got.end(), reply.begin(), reply.end());
  }
  EXPECT_EQ(got, expected);
  EXPECT_GT(expected.size(), 100u);
}

TEST(CommandInterpreter, ForgetsAnUnfinishedCommandAfterFiveSeconds) {
  Talker talker;
  talker.Say(Bytes{'W', 125, 0, 2, 1, 2, 3});
  talker.NowUs += 5'000'001;
  EXPECT_EQ(AsText(talker.Say("Q")), "R");
}

TEST(CommandInterpreter, KeepsAnUnfinishedCommandForFiveSeconds) {
  Talker talker;
  talker.Say(Bytes{'P', 4, 0});
  talker.NowUs += 4'900'000;
  EXPECT_EQ(AsText(talker.Say(Bytes{10})), "0147");
}

TEST(CommandInterpreter, SurvivesRandomBytesAndAnswersAfterwards) {
  std::mt19937 random(11);
  const std::string_view letters = "QVPEWNDYMSAOCTZ*IDN?FEGPO890123KIJ";
  for (int round = 0; round < 200; ++round) {
    Talker talker(WithFirmware(round % 2 == 0 ? "1.2" : "0.9"));
    if (round % 3 == 0) talker.Box.SetPace(Pace::Baud115200);
    for (int i = 0; i < 400; ++i) {
      const bool letter = random() % 2 == 0;
      const auto byte = static_cast<std::uint8_t>(
          letter ? static_cast<unsigned char>(letters[random() % letters.size()]) : random());
      talker.Box.Receive(&byte, 1, talker.NowUs);
      talker.NowUs += random() % 300;
      if (random() % 20 == 0) talker.Heard();
    }
    talker.NowUs += 3'600'000'000;  // whatever was under way has ended
    talker.Heard();
    talker.NowUs += 3'600'000'000;
    const Bytes reply = talker.Say("Q");
    ASSERT_EQ(reply.size(), 1u);
    ASSERT_TRUE(reply[0] == 'R' || reply[0] == 'S');
  }
}

}  // namespace
}  // namespace qk::sim::test
