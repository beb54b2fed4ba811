// SPDX-License-Identifier: MIT
#include "sim/eeprom_image.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "sim/source_levels.h"

namespace qk::sim::test {
namespace {

const Eeprom kFactory = FactoryEeprom("QK47-20-09", "0147", "1.2");

int TableLevel(std::size_t table, int code, int column) {
  return kFactory[table + static_cast<std::size_t>(32 * column + code)] - 128;
}

TEST(EepromImage, CarriesItsChecksumInTheLastByte) {
  unsigned sum = 0;
  for (std::size_t i = 0; i < 32767; ++i) sum += kFactory[i];
  EXPECT_EQ(kFactory[32767], sum & 0xFF);
}

TEST(EepromImage, HoldsTwelveIdentityFieldsOfTenCharacters) {
  EXPECT_EQ(std::string(kFactory.begin(), kFactory.begin() + 10), "QK47-20-09");
  EXPECT_EQ(std::string(kFactory.begin() + 10, kFactory.begin() + 20), "0147      ");
  for (int i = 0; i < 120; ++i) {
    EXPECT_GE(kFactory[static_cast<std::size_t>(i)], ' ');
    EXPECT_LE(kFactory[static_cast<std::size_t>(i)], '~');
  }
}

TEST(EepromImage, CutsAFieldThatIsTooLong) {
  Eeprom eeprom = kFactory;
  SetIdentityField(eeprom, 12, "A text of many characters");
  EXPECT_EQ(std::string(eeprom.begin() + 110, eeprom.begin() + 120), "A text of ");
  EXPECT_EQ(eeprom[120], kFactory[120]);
}

TEST(EepromImage, FindsALevelWithinHalfADecibelForEveryWholeDbmOfPort1) {
  for (int column = 0; column < 149; ++column)
    for (int wanted = -20; wanted <= 0; ++wanted) {
      int best = 1000;
      for (int code = 0; code < 32; ++code)
        best = std::min(best, std::abs(TableLevel(1024, code, column) - wanted));
      EXPECT_EQ(best, 0) << "column " << column << " level " << wanted;
    }
}

TEST(EepromImage, FindsTheDriveOf13InTheSecondTable) {
  for (int column = 0; column < 149; ++column) {
    int best = 1000;
    for (int code = 0; code < 32; ++code)
      best = std::min(best, std::abs(TableLevel(5888, code, column) - 13));
    EXPECT_EQ(best, 0) << column;
  }
}

TEST(EepromImage, ReportsTheLevelsThatTheSourceGives) {
  for (int column = 0; column < 149; ++column) {
    const double f = 3e6 + 2e7 * column + 1e7;
    for (int code = 0; code < 32; ++code)
      EXPECT_NEAR(TableLevel(1024, code, column), SourceLevelDbm(code, f), 0.51);
  }
}

TEST(EepromImage, LeavesTheColumnThatDoesNotExistErased) {
  for (std::size_t i = 1024 + 149 * 32; i < 1024 + 4800; ++i) EXPECT_EQ(kFactory[i], 0xFF);
}

TEST(EepromImage, CalibratesThePowerAtPort2ForEveryMegahertz) {
  for (std::size_t i = 0; i < 3070; ++i) {
    const std::uint8_t* b = &kFactory[11008 + 3 * i];
    const double millivolts = (b[0] * 256 + b[1]) / 10.0;
    const double dbm = b[2] * 4 / 255.0 - 18;
    const double f = 3e6 + 1e6 * static_cast<double>(i);
    // A wave of 0 dBm gives the receiver's gain over 1 volt.
    EXPECT_NEAR(20 * std::log10(millivolts / 1000) - dbm, ReceiverGainDb(f), 0.01);
  }
  EXPECT_NEAR(kFactory[20218] / 10.0 + 15, kReceiverCalDegC, 1e-9);
}

}  // namespace
}  // namespace qk::sim::test
