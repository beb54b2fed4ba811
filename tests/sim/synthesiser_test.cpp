// SPDX-License-Identifier: MIT
#include "sim/synthesiser.h"

#include <random>

#include "sim/talker.h"

namespace qk::sim::test {
namespace {

// 20 MHz, worked out by hand. Loop A: 3.075 GHz / 0.25 MHz = 12300 = 32 * 384 + 12; loop B: 12380 =
// 32 * 386 + 28, 80 above it, so the reference is 280 * 20 MHz / 80 = 70 MHz = 751619277 in the
// DDS. Loop C: 3.0744 GHz / 0.25 MHz = 12297.6, 12298 = 32 * 384 + 10; loop D: 3.09535 GHz gives
// 12381.4, 12381 = 32 * 386 + 29, 83 above C: reference 280 * 20.95 MHz / 83 = 70.6746988 MHz =
// 758863800 in the DDS. Loop C is at 3104.1 MHz and so has its gain bit set, the others are
// below.
constexpr Record kTwentyMegahertz = {0x2C, 0xCC, 0xCC, 0xCD, 0x2D, 0x3B, 0x57, 0xB8,
                                     0x01, 0x80, 0x31, 0x01, 0x82, 0x71, 27,   0x21,
                                     0x80, 0x29, 0x01, 0x82, 0x75, 24};

TEST(Synthesiser, DecodesTheHandWorkedRecordOfTwentyMegahertz) {
  const Decoded d = DecodeRecord(kTwentyMegahertz.data());
  EXPECT_EQ(d.Fault, "");
  ASSERT_TRUE(d.Locked);
  EXPECT_EQ(d.A.N, 12300);
  EXPECT_EQ(d.B.N, 12380);
  EXPECT_EQ(d.C.N, 12298);
  EXPECT_EQ(d.D.N, 12381);
  EXPECT_NEAR(d.Reference1Hz, 70e6, 0.1);
  EXPECT_NEAR(d.SourceHz, 20e6, 1);
  EXPECT_NEAR(d.LoHz, 20.95e6, 1);
  EXPECT_EQ(d.LevelCode, 27);
  EXPECT_EQ(d.ReceiverCode, 24);
}

// 1 GHz, worked out by hand. The source runs at 2 GHz: loop A 8000 = 32 * 250, reference 70 MHz.
// The local oscillator at 2.0019 GHz: loop C 8007.6, 8008 = 32 * 250 + 8, reference 280 * 2001.9
// MHz / 8008 = 69.9965035 MHz. The fixed legs at 3.7 GHz: 14800 = 32 * 462 + 16 on both references,
// high gain.
constexpr Record kOneGigahertz = {0x2C, 0xCC, 0xCC, 0xCD, 0x2C, 0xCC,   0x3A,    0x25,
                                  0x00, 0xFA, 0x01, 0x21, 0xCE, 0x41,   96 + 26, 0x00,
                                  0xFA, 0x21, 0x21, 0xCE, 0x41, 96 + 23};

TEST(Synthesiser, DecodesTheHandWorkedRecordOfOneGigahertz) {
  const Decoded d = DecodeRecord(kOneGigahertz.data());
  ASSERT_TRUE(d.Locked) << d.Fault;
  EXPECT_EQ(d.A.N, 8000);
  EXPECT_EQ(d.B.N, 14800);
  EXPECT_EQ(d.C.N, 8008);
  EXPECT_EQ(d.D.N, 14800);
  EXPECT_NEAR(d.SourceHz, 1e9, 2);
  EXPECT_NEAR(d.LoHz, 1.00095e9, 2);
  EXPECT_EQ(d.LevelCode, 26);
  EXPECT_EQ(d.ReceiverCode, 23);
}

TEST(Synthesiser, DecodesEveryFrequencyOfTheRangeBackToItself) {
  for (double f = 3e6; f <= 3.08e9; f += 1'237'700) {
    const Record record = RecordFor(f);
    const Decoded d = DecodeRecord(record.data());
    ASSERT_TRUE(d.Locked) << f << " " << d.Fault;
    ASSERT_NEAR(d.SourceHz, f, 5) << f;
    ASSERT_NEAR(d.LoHz, f + 950e3, 10) << f;
  }
}

TEST(Synthesiser, LocksAtTheEdgesOfTheBands) {
  for (double f : {3e6, 799.9999e6, 8e8, 1.5999999e9, 1.6e9, 3.08e9}) {
    const Record record = RecordFor(f);
    EXPECT_TRUE(DecodeRecord(record.data()).Locked) << f;
  }
}

std::string FaultOf(const Record& record) {
  return std::string(DecodeRecord(record.data()).Fault);
}

TEST(Synthesiser, ReportsTheBandsByTheirBits) {
  EXPECT_EQ(RecordFor(799e6)[14] & 0xE0, 0);
  EXPECT_EQ(RecordFor(8e8)[14] & 0xE0, 96);
  EXPECT_EQ(RecordFor(1.6e9)[14] & 0xE0, 32);
  for (double f : {799e6, 8e8, 1.6e9}) {
    for (int wrong : {0, 32, 64, 96, 128}) {
      Record record = RecordFor(f);
      if (wrong == (record[14] & 0xE0)) continue;
      record[14] = record[21] = static_cast<std::uint8_t>(wrong + 20);
      EXPECT_NE(FaultOf(record), "") << f << " with band bits " << wrong;
    }
  }
}

TEST(Synthesiser, AsksForTheSameBandInBothControlBytes) {
  Record record = RecordFor(1e9);
  record[21] = 32 + 24;
  EXPECT_EQ(FaultOf(record), "band bits differ");
}

TEST(Synthesiser, RefusesALatchWordWithAWrongAddressStrayBitsOrAWideSwallowCounter) {
  for (std::size_t at : {8u, 11u, 15u, 18u}) {
    Record wrongAddress = RecordFor(2e7);
    wrongAddress[at + 2] ^= 2;
    EXPECT_EQ(FaultOf(wrongAddress), "malformed latch word");
    Record strayBit = RecordFor(2e7);
    strayBit[at] |= 0x40;
    EXPECT_EQ(FaultOf(strayBit), "malformed latch word");
    Record wideCounter = RecordFor(2e7);
    wideCounter[at + 2] |= 0x80;
    EXPECT_EQ(FaultOf(wideCounter), "malformed latch word");
  }
}

TEST(Synthesiser, RefusesAGainBitThatDoesNotFitItsLoop) {
  for (double f : {3e6, 2e7, 7e8, 9e8, 2e9, 3e9})
    for (std::size_t at : {8u, 11u, 15u, 18u}) {
      Record record = RecordFor(f);
      record[at] ^= 0x20;
      EXPECT_EQ(FaultOf(record), "wrong gain bit") << f << " byte " << at;
    }
}

// intentional: the table gives loop D the gain bit of loop B's frequency there; both are above 3350
// MHz
TEST(Synthesiser, TakesLoopDsGainBitFromLoopBInTheDirectBand) {
  const Record record = RecordFor(2e9);
  const Decoded d = DecodeRecord(record.data());
  ASSERT_TRUE(d.Locked);
  EXPECT_TRUE(d.B.HighGain);
  EXPECT_EQ(d.D.HighGain, d.B.HighGain);
}

TEST(Synthesiser, JudgesTheGainBitAtItsThresholdOf3100Megahertz) {
  // At 3 MHz loop A runs at 12300 * 70 MHz / 280 = 3075 MHz: low gain. At 3.1 MHz the divider of
  // the beat stays 12, the reference rises to 72.33 MHz and takes loop A to 3177.5 MHz: high gain.
  const Record below = RecordFor(3e6), above = RecordFor(3.1e6);
  EXPECT_FALSE(DecodeRecord(below.data()).A.HighGain);
  const Decoded d = DecodeRecord(above.data());
  EXPECT_TRUE(d.Locked);
  EXPECT_TRUE(d.A.HighGain);
  EXPECT_NEAR(d.A.Hz, 3177.5e6, 1e3);
}

TEST(Synthesiser, RefusesAReferenceThatTheFiltersDoNotPass) {
  Record record = RecordFor(1e9);
  record[0] = 0x3F;
  EXPECT_EQ(FaultOf(record), "reference out of range");
  EXPECT_EQ(FaultOf(Record{}), "reference out of range");
}

TEST(Synthesiser, RefusesALocalOscillatorThatIsNot950KilohertzAbove) {
  Record record = RecordFor(1e9);
  record[6] ^= 0x10;
  EXPECT_EQ(FaultOf(record), "local oscillator not 950 kHz above the source");
}

TEST(Synthesiser, RefusesAFixedLegThatIsNotParked) {
  Record record = RecordFor(1e9);
  PutLatch(&record[11], DecodeRecord(record.data()).B.N + 40, true);
  EXPECT_EQ(FaultOf(record), "loop B or D not parked");
}

TEST(Synthesiser, AcceptsTheAlternateLegOf3600MegahertzNear1849) {
  const Record record = RecordFor(1.849525e9);
  const Decoded d = DecodeRecord(record.data());
  ASSERT_TRUE(d.Locked) << d.Fault;
  EXPECT_NEAR(d.B.Hz, 3.6e9, 0.3e6);
}

TEST(Synthesiser, NeverTakesRandomBytesForAPairOutsideTheRange) {
  std::mt19937 random(7);
  for (int i = 0; i < 100000; ++i) {
    Record record;
    for (auto& byte : record) byte = static_cast<std::uint8_t>(random());
    const Decoded d = DecodeRecord(record.data());
    if (!d.Locked) continue;
    EXPECT_GE(d.SourceHz, 2.9e6);
    EXPECT_LE(d.SourceHz, 3.1e9);
  }
}

}  // namespace
}  // namespace qk::sim::test
