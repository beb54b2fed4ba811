// SPDX-License-Identifier: MIT
// Synthesiser records against bytes worked out in exact fractions, and against two decoders that
// share no arithmetic with the builder.
#include "sweep/frequency_plan.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <random>
#include <sstream>

#include "sim/synthesiser.h"

namespace qk {
namespace {

// ---- level codes ------------------------------------------------------------------------------

struct LevelFixture {
  std::unique_ptr<Session> session = MakeSession();
  LevelTables& levels = session->Levels;

  LevelFixture() {
    InitSession(*session);
    // Nothing near in either table.
    for (auto* table : {&levels.Port1LevelTable, &levels.Port2LevelTable})
      for (auto& row : *table) row.fill(-128);
  }
  LevelCodes At(double F) const { return LookupLevelCodes(*session, F); }
};

TEST(LevelCodes, ComeFromTheCodeWhoseValueIsNearest) {
  LevelFixture b;
  b.session->Plan.Port1Level = -7;
  b.levels.Port1LevelTable[4][0] = -9;
  b.levels.Port1LevelTable[9][0] = -6;
  b.levels.Port1LevelTable[20][0] = -12;
  b.levels.Port2LevelTable[11][0] = 15;
  b.levels.Port2LevelTable[12][0] = 10;
  EXPECT_EQ(b.At(3e6).Code1, 9);
  EXPECT_EQ(b.At(3e6).Code2, 11);
}

TEST(LevelCodes, AreTheLowerOnEqualDistance) {
  LevelFixture b;
  b.levels.Port1LevelTable[6][0] = 3;
  b.levels.Port1LevelTable[3][0] = -3;
  b.levels.Port2LevelTable[30][0] = 12;
  b.levels.Port2LevelTable[29][0] = 14;
  EXPECT_EQ(b.At(3e6).Code1, 3);
  EXPECT_EQ(b.At(3e6).Code2, 29);
}

TEST(LevelCodes, Are27And31WhereNothingIsWithinTheSquareRootOf1000) {
  LevelFixture b;
  EXPECT_EQ(b.At(3e6).Code1, 27);
  EXPECT_EQ(b.At(3e6).Code2, 31);
  b.levels.Port1LevelTable[2][0] = 32;  // 32 * 32 = 1024
  b.levels.Port2LevelTable[5][0] = 13 - 32;
  EXPECT_EQ(b.At(3e6).Code1, 27);
  EXPECT_EQ(b.At(3e6).Code2, 31);
  b.levels.Port1LevelTable[2][0] = 31;  // 31 * 31 = 961
  b.levels.Port2LevelTable[5][0] = 13 - 31;
  EXPECT_EQ(b.At(3e6).Code1, 2);
  EXPECT_EQ(b.At(3e6).Code2, 5);
}

TEST(LevelCodes, TakeAColumnFor20MHzFrom3MHzUpAndTheLastOneAbove) {
  LevelFixture b;
  const auto column = [&b](double F) {
    for (std::size_t f = 0; f < 149; ++f) {
      b.levels.Port1LevelTable[0][f] = 0;
      const bool hit = b.At(F).Code1 == 0;
      b.levels.Port1LevelTable[0][f] = -128;
      if (hit) return static_cast<int>(f) + 1;
    }
    return 0;
  };
  EXPECT_EQ(column(3e6), 1);
  EXPECT_EQ(column(22.9999e6), 1);
  EXPECT_EQ(column(23e6), 2);
  EXPECT_EQ(column(2962.9999e6), 148);
  EXPECT_EQ(column(2963e6), 149);
  EXPECT_EQ(column(3.08e9), 149);
  EXPECT_EQ(column(0), 1);  // below the table: its first column
}

// ---- records ----------------------------------------------------------------------------------

struct RecordFixture {
  std::unique_ptr<Session> session = MakeSession();
  RecordFixture() { InitSession(*session); }

  // All-zero tables: at a level of -100 nothing is near, and codes 27 and 31 are kept.
  std::string Hex(double F, int i = 0) {
    session->Plan.Port1Level = -100;
    session->Plan.Port2LevelTarget = 100;
    BuildPointRecord(*session, F, i);
    std::string text;
    char digits[4];
    for (int j = 0; j < 22; ++j) {
      std::snprintf(digits, sizeof digits, "%02X ", At(i, j));
      text += digits;
    }
    text.pop_back();
    return text;
  }
  std::uint8_t At(int i, int j) const {
    return session->FreqTable[static_cast<std::size_t>(22 * i + 3 + j)];
  }
};

// Worked out in exact fractions, apart from the program.
struct Known {
  double F;
  const char* Record;
};

class KnownRecord : public testing::TestWithParam<Known> {};

TEST_P(KnownRecord, HasTheseBytes) {
  RecordFixture b;
  EXPECT_EQ(b.Hex(GetParam().F), GetParam().Record);
}

INSTANTIATE_TEST_SUITE_P(
    BandEdges, KnownRecord,
    testing::Values(
        Known{3e6, "2C CC CC CD 2F 30 78 26 01 80 31 01 80 61 1B 21 80 29 01 80 65 1F"},
        Known{799.9999e6, "2C CC CC 6F 2C CF A9 C0 01 6A 41 21 CE 41 1B 01 6A 39 21 CE 45 1F"},
        // 800 MHz: the direct band, bits 96.
        Known{800e6, "2C CC CC CD 2C CC 15 87 00 C8 01 21 CE 41 7B 00 C8 21 21 CE 41 7F"},
        Known{1599.9999e6, "2C CC CC 9E 2C CC 70 EC 21 90 01 21 CE 41 7B 21 90 21 21 CE 41 7F"},
        // 1.6 GHz: bits 32, the source no longer at twice the output.
        Known{1600e6, "2C CC CC CD 2C CC 71 1B 00 C8 01 21 CE 41 3B 00 C8 11 21 CE 41 3F"},
        Known{3080e6, "2C CC CC CD 2C CC 9D 27 01 81 01 21 CE 41 3B 01 81 11 21 CE 41 3F"}));

INSTANTIATE_TEST_SUITE_P(OffsetPoint, KnownRecord,
                         testing::Values(Known{
                             20e6,
                             "2C CC CC CD 2D 3B 57 B8 01 80 31 01 82 71 1B 21 80 29 01 82 75 1F"}));

// Where twice the output and the intermediate frequency come nearer than 50 kHz to 3.7 GHz the
// fixed leg moves to 3.6.
INSTANTIATE_TEST_SUITE_P(
    AlternateLeg, KnownRecord,
    testing::Values(
        Known{1849.5e6, "2C CC CC CD 2C CC 7D 78 00 E7 19 21 CE 41 3B 00 E7 29 21 CE 41 3F"},
        Known{1849.5001e6, "2C CC CC F5 2C CC 7D A1 00 E7 19 21 C1 7D 3B 00 E7 29 21 C2 01 3F"},
        Known{1849.5499e6, "2C CD 1C 04 2C CC CC A4 00 E7 19 21 C1 7D 3B 00 E7 29 21 C2 01 3F"},
        Known{1849.55e6, "2C CD 1C 2C 2C CC CC CD 00 E7 19 21 CE 3D 3B 00 E7 29 21 CE 41 3F"}));

// 625 MHz is where the ceiling of loop A's frequency begins to hold.
INSTANTIATE_TEST_SUITE_P(
    LowBandCeiling, KnownRecord,
    testing::Values(
        Known{624.9999e6, "2C CC CC 55 2C D0 76 BB 01 80 31 21 CE 41 1B 01 80 29 21 CE 45 1F"},
        Known{625.0001e6, "2C CC CD 45 2C D0 77 AB 01 80 31 21 CE 41 1B 01 80 29 21 CE 45 1F"}));

// Loops B, D, A and C at exactly their limits have low gain; one step above, high.
INSTANTIATE_TEST_SUITE_P(
    GainLimits, KnownRecord,
    testing::Values(
        Known{275e6, "2C CC CC CD 2C D5 1E 46 01 80 31 01 A2 61 1B 01 80 29 21 A2 65 1F"},
        Known{275.0001e6, "2C CC CD DE 2C D5 1F 57 01 80 31 21 A2 61 1B 01 80 29 21 A2 65 1F"},
        Known{274.55e6, "2C CE E3 98 2C CC CC CD 01 80 31 21 A2 59 1B 01 80 29 01 A2 61 1F"},
        Known{274.5501e6, "2C CE E4 AA 2C CC CD DE 01 80 31 21 A2 59 1B 01 80 29 21 A2 61 1F"},
        Known{1550e6, "2C CC CC CD 2C CC 6E 27 01 83 41 21 CE 41 7B 21 83 61 21 CE 41 7F"},
        Known{1550.0001e6, "2C CC CC FD 2C CC 6E 57 21 83 41 21 CE 3D 7B 21 83 61 21 CE 41 7F"},
        Known{1549.05e6, "2C CD 2B 92 2C CC CC CD 01 83 21 21 CE 3D 7B 01 83 41 21 CE 41 7F"},
        Known{1549.0501e6, "2C CD 2B C3 2C CC CC FD 01 83 21 21 CE 3D 7B 21 83 41 21 CE 3D 7F"}));

// Intentional: a last byte of 256 is sent as 255, without a carry; in either tuning word.
INSTANTIATE_TEST_SUITE_P(
    NoCarry, KnownRecord,
    testing::Values(
        Known{154.2529e6, "2C CD 03 FF 2C DB D0 23 01 80 31 01 93 55 1B 01 80 29 01 93 59 1F"},
        Known{455.9668e6, "2C CB F7 0A 2C D0 FC FF 01 80 31 21 B9 31 1B 01 80 29 21 B9 35 1F"}));

TEST(BuildPointRecord, StandsAtItsPlaceInTheTableAndTouchesNothingElse) {
  RecordFixture b;
  b.session->FreqTable.fill(0xA5);
  const std::string hex = b.Hex(3e6, 1023);
  EXPECT_EQ(hex, b.Hex(3e6, 0));
  EXPECT_EQ(b.session->FreqTable[2], 0xA5);
  EXPECT_EQ(b.session->FreqTable[3], 0x2C);
  EXPECT_EQ(b.session->FreqTable[25], 0xA5);
  EXPECT_EQ(b.session->FreqTable[22 * 1023 + 2], 0xA5);
  EXPECT_EQ(b.session->FreqTable[22 * 1023 + 3], 0x2C);
  EXPECT_EQ(b.session->FreqTable[22 * 1023 + 24], 31);
  EXPECT_EQ(b.session->FreqTable[22 * 1023 + 25], 0xA5);
}

TEST(BuildPointRecord, AddsTheLevelCodesToTheBandBits) {
  RecordFixture b;
  b.session->Levels.Port1LevelTable[5].fill(-10);
  b.session->Levels.Port2LevelTable[17].fill(13);
  b.session->Plan.Port1Level = -10;
  for (const auto& [F, bits] : {std::pair{799e6, 0}, std::pair{800e6, 96}, std::pair{1600e6, 32}}) {
    BuildPointRecord(*b.session, F, 0);
    EXPECT_EQ(b.At(0, 14), 5 + bits);
    EXPECT_EQ(b.At(0, 21), 17 + bits);
  }
}

// ---- what the record makes the hardware do ----------------------------------------------------

// The hardware in integers: N = 32 B + A, a loop locks at N times its reference over 280.
struct Locked {
  double Output = 0, Lo = 0;  // Hz
  double Tolerance = 0;       // Hz, from the rounding of the tuning words
};

std::int64_t Number(const std::uint8_t* b, int count) {
  std::int64_t n = 0;
  for (int i = 0; i < count; ++i) n = n * 256 + b[i];
  return n;
}

std::int64_t Divider(const std::uint8_t* b) {
  const std::int64_t word = Number(b, 3);
  EXPECT_EQ(word & 3, 1);
  EXPECT_EQ(word >> 22, 0);
  return ((word >> 8) & 0x1FFF) * 32 + ((word >> 2) & 0x3F);
}

Locked Decode(const std::uint8_t* r) {
  const double step = 4e8 / 4294967296.0;
  const double ref1 = static_cast<double>(Number(r, 4)) * step;
  const double ref2 = static_cast<double>(Number(r + 4, 4)) * step;
  const int band = r[14] & 0x60;
  EXPECT_EQ(r[21] & 0x60, band);
  std::int64_t source = Divider(r + 8), lo = Divider(r + 15);
  if (band == 0) {
    source = Divider(r + 11) - source;
    lo = Divider(r + 18) - lo;
  }
  const double half = band == 0x60 ? 2 : 1;
  // Half a step of the tuning word; a whole one where the missing carry shows as FF.
  const bool carry = r[3] == 255 || r[7] == 255;
  const double loosest = static_cast<double>(std::max(source, lo)) / 280 / half;
  return {static_cast<double>(source) * ref1 / 280 / half,
          static_cast<double>(lo) * ref2 / 280 / half, loosest * step * (carry ? 1.0 : 0.5) + 1e-5};
}

void ExpectRightRecord(Session& session, double F) {
  BuildPointRecord(session, F, 0);
  const std::uint8_t* record = session.FreqTable.data() + 3;
  const Locked locked = Decode(record);
  ASSERT_NEAR(locked.Output, F, locked.Tolerance) << F;
  ASSERT_NEAR(locked.Lo, F + 950000, locked.Tolerance) << F;
  ASSERT_LT(locked.Tolerance, 4.3) << F;
  const sim::Decoded decoded = sim::DecodeRecord(record);
  ASSERT_TRUE(decoded.Locked) << F << ": " << decoded.Fault;
  ASSERT_NEAR(decoded.SourceHz, F, locked.Tolerance) << F;
  ASSERT_NEAR(decoded.LoHz, F + 950000, locked.Tolerance) << F;
}

TEST(RecordsDecode, ToTheFrequencyAskedForAtEveryBandEdge) {
  RecordFixture b;
  for (const double edge : {3e6, 20e6, 275e6, 550e6, 625e6, 800e6, 1.55e9, 1.6e9, 1.8495e9, 3.08e9})
    for (int step = -2000; step <= 2000; ++step) {
      const double F = edge + 100.0 * step;
      if (F < 3e6 || F > 3.08e9) continue;
      ASSERT_NO_FATAL_FAILURE(ExpectRightRecord(*b.session, F));
    }
}

TEST(RecordsDecode, ToTheFrequencyAskedForAtAHundredThousandRandomFrequencies) {
  RecordFixture b;
  std::mt19937_64 random(47209);
  std::uniform_int_distribution<int> steps(30000, 30800000);
  for (int n = 0; n < 100000; ++n)
    ASSERT_NO_FATAL_FAILURE(ExpectRightRecord(*b.session, 100.0 * steps(random)));
}

}  // namespace
}  // namespace qk
