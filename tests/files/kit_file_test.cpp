// SPDX-License-Identifier: MIT
// Kit files and the data files of the kit editor.
#include "files/kit_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "bytes.h"
#include "support/scratch_folder.h"

namespace qk {
namespace {

using test::Put;
using test::ScratchFolder;

constexpr const char* kPlain = "\"Std N\"\r\n#FALSE#\r\n0.005,2e-11,1e-15,2e-25,-3e-35,4e-46\r\n";

// n lines of a table, frequencies 3, 6, ... MHz, the columns distinguishable.
std::string Lines(int n, int columns) {
  std::string text;
  for (int i = 0; i < n; ++i) {
    text += std::to_string(3 * (i + 1));
    for (int c = 1; c < columns; ++c) text += ",0." + std::to_string(c) + std::to_string(100 + i);
    text += "\r\n";
  }
  return text;
}

std::string Full() {
  return std::string(kPlain) + "#TRUE#\r\n" + Lines(101, 3) + "#TRUE#\r\n" + Lines(101, 9) +
         "EOF\r\n";
}

bool Same(const CalKit& a, const CalKit& b) {
  return a.KitName == b.KitName && a.KitMale == b.KitMale && a.KitOffset == b.KitOffset &&
         a.KitDelay == b.KitDelay && a.KitC0 == b.KitC0 && a.KitC1 == b.KitC1 &&
         a.KitC2 == b.KitC2 && a.KitC3 == b.KitC3 && a.KitHasLoad == b.KitHasLoad &&
         a.KitLoadInUse == b.KitLoadInUse && a.KitLoadData == b.KitLoadData &&
         a.KitHasThru == b.KitHasThru && a.KitThruData == b.KitThruData;
}

// A kit before it is read over.
CalKit Former() {
  CalKit kit;
  kit.KitName = "Former";
  kit.KitHasLoad = kit.KitLoadInUse = kit.KitHasThru = true;
  kit.KitLoadData[1][5] = 0.25f;
  kit.KitThruData[8][5] = 0.75f;
  return kit;
}

TEST(KitFile, AKitWithoutDataIsSixLines) {
  CalKit kit;
  EXPECT_EQ(KitBytes(kit, KitPort::Port1),
            "\"Default\"\r\n#TRUE#\r\n0,0,2.5e-15,2.9e-25,-1e-35,2.4e-46\r\n#FALSE#\r\n#FALSE#\r\n"
            "EOF\r\n");
}

TEST(KitFile, WithBothFlagsFalseIsCompleteWithEofBehindThem) {
  CalKit kit = Former();
  ASSERT_TRUE(
      ReadKitBytes(std::string(kPlain) + "#FALSE#\r\n#FALSE#\r\nEOF\r\n", KitPort::Port1, kit)
          .Ok());
  EXPECT_EQ(kit.KitName, "Std N");
  EXPECT_FALSE(kit.KitMale);
  EXPECT_EQ(kit.KitOffset, 0.005f);
  EXPECT_EQ(kit.KitC0, 1e-15);
  EXPECT_EQ(kit.KitC1, 2e-25);
  EXPECT_EQ(kit.KitC2, -3e-35);
  EXPECT_EQ(kit.KitC3, 4e-46);
  EXPECT_FALSE(kit.KitHasLoad);
  EXPECT_FALSE(kit.KitLoadInUse);
  EXPECT_FALSE(kit.KitHasThru);
  EXPECT_EQ(kit.KitLoadData[1][5], 0.25f);  // a table that the file does not hold stays
}

TEST(KitFile, TakesTheDelayAsItStandsThoughItDisagreesWithTheOffset) {
  CalKit kit;
  ASSERT_TRUE(
      ReadKitBytes(std::string(kPlain) + "#FALSE#\r\n#FALSE#\r\n", KitPort::Port1, kit).Ok());
  EXPECT_EQ(kit.KitDelay, 2e-11f);
}

TEST(KitFile, ReadsBothTablesWithFrequenciesInHertzBy32BitProducts) {
  CalKit kit;
  ASSERT_TRUE(ReadKitBytes(Full(), KitPort::Port1, kit).Ok());
  EXPECT_TRUE(kit.KitHasLoad);
  EXPECT_TRUE(kit.KitLoadInUse);
  EXPECT_TRUE(kit.KitHasThru);
  EXPECT_EQ(kit.KitLoadData[0][100], 303e6f);
  EXPECT_EQ(kit.KitLoadData[1][0], 0.1100f);
  EXPECT_EQ(kit.KitLoadData[2][100], 0.2200f);
  EXPECT_EQ(kit.KitThruData[0][1], 6e6f);
  EXPECT_EQ(kit.KitThruData[8][100], 0.8200f);

  // Frequencies at which other ways to the same number end in another bit.
  std::string odd;
  std::vector<float> megahertz;
  for (int i = 0; i < 101; ++i) {
    const std::string text = std::to_string(3 + 30 * i) + "." + std::to_string(10 + 89 * i % 90);
    megahertz.push_back(std::strtof(text.c_str(), nullptr));
    odd += text + ",0.1,0.2\r\n";
  }
  ASSERT_TRUE(ReadKitBytes(std::string(kPlain) + "#TRUE#\r\n" + odd, KitPort::Port1, kit).Ok());
  int byDivision = 0, by64Bits = 0;
  for (std::size_t i = 0; i < 101; ++i) {
    EXPECT_EQ(kit.KitLoadData[0][i], megahertz[i] * 1e6f) << i;
    byDivision += megahertz[i] / 1e-6f != megahertz[i] * 1e6f ? 1 : 0;
    const double exact = std::round(static_cast<double>(megahertz[i]) * 100) / 100 * 1e6;
    by64Bits += static_cast<float>(exact) != megahertz[i] * 1e6f ? 1 : 0;
  }
  EXPECT_GT(byDivision, 0);
  EXPECT_GT(by64Bits, 10);
}

TEST(KitFile, WhatIsWrittenReadsBackTheSame) {
  CalKit kit, back;
  ASSERT_TRUE(ReadKitBytes(Full(), KitPort::Port1, kit).Ok());
  ASSERT_TRUE(ReadKitBytes(KitBytes(kit, KitPort::Port1), KitPort::Port1, back).Ok());
  EXPECT_TRUE(Same(kit, back));
  EXPECT_EQ(KitBytes(back, KitPort::Port1), KitBytes(kit, KitPort::Port1));
}

// The division and the product with the reciprocal differ in the last digit of some frequencies.
TEST(KitFile, FrequenciesAreWrittenByADivisionIn64Bits) {
  CalKit kit;
  kit.KitHasLoad = true;
  int differ = 0;
  for (std::size_t i = 0; i < 101; ++i) {
    kit.KitLoadData[0][i] = 3e6f + 32.97e6f * static_cast<float>(i);
    const auto hertz = static_cast<double>(kit.KitLoadData[0][i]);
    differ += hertz / 1e6 != hertz * 1e-6;
  }
  ASSERT_GT(differ, 10);
  const std::string text = KitBytes(kit, KitPort::Port1);
  std::size_t at = text.find("#TRUE#\r\n", 30) + 8;
  for (std::size_t i = 0; i < 101; ++i) {
    EXPECT_EQ(std::stod(text.substr(at)), static_cast<double>(kit.KitLoadData[0][i]) / 1e6) << i;
    at = text.find('\n', at) + 1;
  }
}

TEST(KitFile, WithAByteOrderMarkIsReadAndSoIsADataFile) {
  CalKit kit, plain;
  ASSERT_TRUE(ReadKitBytes(Full(), KitPort::Port1, plain).Ok());
  for (const KitPort port : {KitPort::Port1, KitPort::Port2})
    ASSERT_TRUE(ReadKitBytes("\xEF\xBB\xBF" + Full(), port, kit).Ok());
  EXPECT_EQ(kit.KitName, "Std N");
  ASSERT_TRUE(ReadKitBytes("\xEF\xBB\xBF" + Full(), KitPort::Port1, kit).Ok());
  EXPECT_TRUE(Same(kit, plain));
  const ScratchFolder scratch;
  Put(scratch.File("load.dat"), "\xEF\xBB\xBF" + Lines(101, 3));
  KitLoadTable table{};
  ASSERT_TRUE(LoadLoadData(scratch.File("load.dat"), table).Ok());
  EXPECT_EQ(table, plain.KitLoadData);
  EXPECT_FALSE(ReadKitBytes("\xEF\xBB" + Full(), KitPort::Port1, kit).Ok());
}

TEST(KitFile, APort2ReadStopsBehindTheLoadDataWithoutComplaint) {
  CalKit kit = Former();
  std::string text = Full();
  text.resize(text.size() - 40);  // the through data would be cut
  ASSERT_TRUE(ReadKitBytes(text, KitPort::Port2, kit).Ok());
  EXPECT_TRUE(kit.KitHasLoad);
  EXPECT_FALSE(kit.KitHasThru);
  EXPECT_EQ(kit.KitThruData[8][5], 0.75f);
}

TEST(KitFile, APort2KitIsWrittenWithoutThroughData) {
  CalKit kit;
  kit.KitHasThru = true;
  EXPECT_EQ(KitBytes(kit, KitPort::Port2), KitBytes(CalKit(), KitPort::Port1));
}

TEST(KitFile, TheThroughFlagIsExactlyTrueOrHashTrue) {
  const std::string before = std::string(kPlain) + "#FALSE#\r\n";
  for (const char* flag : {"True", "#TRUE#", "\"True\""}) {
    CalKit kit;
    ASSERT_TRUE(ReadKitBytes(before + flag + "\r\n" + Lines(101, 9), KitPort::Port1, kit).Ok());
    EXPECT_TRUE(kit.KitHasThru) << flag;
  }
  for (const char* flag : {"true", "#FALSE#", "EOF", "1", "anything else"}) {
    CalKit kit = Former();
    ASSERT_TRUE(ReadKitBytes(before + flag + "\r\n", KitPort::Port1, kit).Ok());
    EXPECT_FALSE(kit.KitHasThru) << flag;
  }
}

TEST(KitFile, AnEarlierKitThatEndsBehindTheLoadDataHasNoThrough) {
  CalKit kit = Former();
  ASSERT_TRUE(
      ReadKitBytes(std::string(kPlain) + "#TRUE#\r\n" + Lines(101, 3), KitPort::Port1, kit).Ok());
  EXPECT_TRUE(kit.KitHasLoad);
  EXPECT_FALSE(kit.KitHasThru);
}

TEST(KitFile, CutAtAnyByteItIsRefusedOrStillAKitAndNeverAPartOfOne) {
  const std::string full = Full();
  const std::size_t loadEnds = full.find("#TRUE#\r\n3,0.1100,0.2100,0.3100");
  const std::size_t thruEnds = full.find("EOF");
  CalKit whole;
  ASSERT_TRUE(ReadKitBytes(full, KitPort::Port1, whole).Ok());
  for (std::size_t size = 0; size < full.size(); ++size) {
    CalKit kit = Former();
    const Result<Done> read = ReadKitBytes(full.substr(0, size), KitPort::Port1, kit);
    if (!read) {
      ASSERT_TRUE(Same(kit, Former())) << size;
      continue;
    }
    // The flag of the through data is cut, or all of them are there.
    ASSERT_TRUE((size + 1 >= loadEnds && size < loadEnds + 6) || size + 1 >= thruEnds) << size;
    ASSERT_EQ(kit.KitLoadData, whole.KitLoadData) << size;
  }
}

TEST(KitFile, WithAnyItemSpoiltIsRefusedByLineAndLeavesTheKit) {
  const std::string full = Full();
  int refused = 0;
  for (std::size_t at = 0; at < full.size();) {
    const std::size_t end = full.find_first_of(",\r\n", at);
    if (end > at) {
      std::string spoilt = full;
      spoilt.replace(at, end - at, "~");
      CalKit kit = Former();
      const Result<Done> read = ReadKitBytes(spoilt, KitPort::Port1, kit);
      if (!read) {
        ++refused;
        ASSERT_EQ(read.Why().Message.rfind("line ", 0), 0u);
        ASSERT_TRUE(Same(kit, Former()));
      }
    }
    at = end + 1;
  }
  // All but the through flag, which only means that there is none, and the last line.
  EXPECT_EQ(refused, 1 + 1 + 6 + 1 + 303 + 909);
}

// In MHz it is a number of 32 bits, in hertz it is none.
TEST(KitFile, AFrequencyThatIsTooLargeInHertzIsRefused) {
  CalKit kit;
  const Result<Done> read = ReadKitBytes(
      "\"K\"\r\n#TRUE#\r\n0,0,0,0,0,0\r\n#TRUE#\r\n3,0,0\r\n2e33,0,0\r\n", KitPort::Port1, kit);
  ASSERT_FALSE(read.Ok());
  EXPECT_EQ(read.Why().Message, "line 6: a frequency is out of range");
  EXPECT_FALSE(kit.KitHasLoad);
}

TEST(KitFile, AFileIsReportedWithItsPathLineAndCause) {
  const ScratchFolder scratch;
  Put(scratch.File("k.kit"), "\"Kit\"\r\n#FALSE#\r\n1,2,abc,4,5,6\r\n");
  CalKit kit;
  const Result<Done> read = LoadKit(scratch.File("k.kit"), KitPort::Port1, kit);
  ASSERT_FALSE(read.Ok());
  EXPECT_EQ(read.Why().Text(), scratch.File("k.kit") + ": line 3: a number is expected, not 'abc'");
  Put(scratch.File("big.kit"), std::string((1 << 20) + 1, '1'));
  EXPECT_EQ(LoadKit(scratch.File("big.kit"), KitPort::Port1, kit).Why().Text(),
            scratch.File("big.kit") + ": is larger than 1048576 bytes");
}

TEST(KitFile, AnEditedKitShowsTheDigitsOfItsOwnNumbers) {
  EditedKit kit;
  kit.KitName = "Mine";
  kit.KitOffset = 0.01234f;
  kit.KitDelay = 0.01234 / kSpeedOfLight;
  kit.KitC0 = 2.5e-15f;
  const std::string text = KitBytes(kit);
  EXPECT_NE(text.find("\r\n0.01234,4.116180934745196e-11,2.5e-15,0,0,0\r\n"), std::string::npos)
      << text;
  EditedKit back;
  ASSERT_TRUE(ReadKitBytes(text, back).Ok());
  EXPECT_EQ(back.KitDelay, kit.KitDelay);
  EXPECT_EQ(back.KitC0, kit.KitC0);
}

TEST(KitFile, SavedAndLoadedThroughAFile) {
  const ScratchFolder scratch;
  CalKit kit, back;
  ASSERT_TRUE(ReadKitBytes(Full(), KitPort::Port1, kit).Ok());
  ASSERT_TRUE(SaveKit(scratch.File("k.kit"), kit, KitPort::Port1).Ok());
  ASSERT_TRUE(LoadKit(scratch.File("k.kit"), KitPort::Port1, back).Ok());
  EXPECT_TRUE(Same(kit, back));
}

TEST(KitData, ReadsExactly101LinesCommaOrBlankSeparated) {
  const ScratchFolder scratch;
  KitLoadTable table{};
  std::string blanks = Lines(101, 3);
  for (char& c : blanks)
    if (c == ',') c = ' ';
  blanks.resize(blanks.size() - 2);  // the last line may end with the file
  Put(scratch.File("a.dat"), blanks);
  ASSERT_TRUE(LoadLoadData(scratch.File("a.dat"), table).Ok());
  EXPECT_EQ(table[0][100], 303e6f);
  EXPECT_EQ(table[2][100], 0.2200f);
  Put(scratch.File("b.dat"), Lines(102, 3) + "more\r\n");
  EXPECT_TRUE(LoadLoadData(scratch.File("b.dat"), table).Ok());
}

TEST(KitData, A100LineFileIsAnErrorThatLeavesTheLinesReadSoFar) {
  const ScratchFolder scratch;
  Put(scratch.File("a.dat"), Lines(100, 9));
  KitThruTable table{};
  table[8][100] = 7;
  const Result<Done> read = LoadThruData(scratch.File("a.dat"), table);
  ASSERT_FALSE(read.Ok());
  EXPECT_EQ(read.Why().Text(), scratch.File("a.dat") + ": line 100: the file ends too soon");
  EXPECT_EQ(table[0][99], 300e6f);
  EXPECT_EQ(table[8][100], 7);
}

}  // namespace
}  // namespace qk
