// SPDX-License-Identifier: MIT
// Files as other programs write them: one device in many dresses, and its value at every row.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>
#include <stdexcept>
#include <string>
#include <vector>

#include "files/touchstone.h"
#include "files/touchstone_sweep.h"
#include "files/whole_file.h"

namespace qk {
namespace {

// The device of tests/data at 10, 20, 30 and 40 MHz: magnitudes and angles in degrees.
struct Polar {
  double Magnitude, Degrees;
};
using Row = std::array<Polar, 4>;  // S11, S21, S12, S22
constexpr std::array<Row, 4> kDevice{{{{{0.5, -30}, {3.2, 150}, {0.04, 60}, {0.6, -20}}},
                                      {{{0.45, -55}, {2.8, 115}, {0.05, 50}, {0.5, -35}}},
                                      {{{0.4, -80}, {2.4, 80}, {0.06, 40}, {0.4, -50}}},
                                      {{{0.35, -105}, {2.0, 45}, {0.07, 30}, {0.3, -65}}}}};

Complex Truth(int row, std::size_t parameter) {
  const Polar p = kDevice[static_cast<std::size_t>(row)][parameter];
  const double radians = p.Degrees * M_PI / 180;
  return {p.Magnitude * std::cos(radians), p.Magnitude * std::sin(radians)};
}

TouchstoneTable Load(const std::string& name, Reference reference) {
  const auto text = ReadWhole(std::string(QK_TEST_DATA "/") + name, 1 << 20);
  if (!text) throw std::runtime_error(text.Why().Text());
  const auto table = ReadTouchstone(*text, reference);
  if (!table) throw std::runtime_error(name + ": " + table.Why().Text());
  return *table;
}

struct File {
  const char* Name;
  int Parameters;
};

std::string NameOfFile(const testing::TestParamInfo<File>& info) {
  std::string name = info.param.Name;
  for (char& c : name)
    if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
  return name;
}

class TouchstoneFiles : public testing::TestWithParam<File> {};

INSTANTIATE_TEST_SUITE_P(
    AsOthersWriteThem, TouchstoneFiles,
    testing::Values(File{"ma_mhz_comments.s2p", 4}, File{"db_ghz_tabs.s2p", 4},
                    File{"ri_hz_crlf_no_last_line_end.s2p", 4}, File{"ma_khz_lower_case.s2p", 4},
                    File{"db_mhz_byte_order_mark.s2p", 4}, File{"db_mhz_noise_block.s2p", 4},
                    File{"ma_ghz_indented.s2p", 4}, File{"ma_mhz_75_ohms.s2p", 4},
                    File{"ri_mhz_75_ohms.s2p", 4}, File{"ri_hz_one_parameter.s1p", 1},
                    File{"db_mhz_two_parameters.s2p", 2}, File{"ma_khz_three_parameters.s2p", 3}),
    NameOfFile);

TEST_P(TouchstoneFiles, HoldTheDeviceValueByValue) {
  const TouchstoneTable table = Load(GetParam().Name, Reference::ConvertedTo50);
  ASSERT_EQ(table.Rows, 4);
  ASSERT_EQ(table.Columns, 2 * GetParam().Parameters);
  for (int row = 0; row < 4; ++row) {
    const auto at = static_cast<std::size_t>(row + 1);
    EXPECT_FLOAT_EQ(table.FileTable[0][at], 10e6f * static_cast<float>(row + 1));
    for (std::size_t p = 0; p < static_cast<std::size_t>(GetParam().Parameters); ++p) {
      const Complex truth = Truth(row, p);
      EXPECT_NEAR(table.FileTable[2 * p + 1][at], truth.re, 1e-6) << row << " " << p;
      EXPECT_NEAR(table.FileTable[2 * p + 2][at], truth.im, 1e-6) << row << " " << p;
    }
  }
}

TEST_P(TouchstoneFiles, AreANetworkOfTheirParametersAtTheSweepsPoints) {
  const bool at75 = std::string(GetParam().Name).find("75") != std::string::npos;
  const TouchstoneTable table = Load(GetParam().Name, Reference::Ignored);
  PlanGrid grid;
  grid.StartFreq = 10e6;
  grid.StepFreq = 0.5e6;
  grid.NumPoints = 61;  // every 20th point is on a row
  Network network;
  for (auto* array : {&network.S11, &network.S21, &network.S12, &network.S22}) array->Fill({7, 7});
  EXPECT_EQ(ToNetwork(table, grid, network), Interval::Good);
  // Three parameters count as two: a network takes S12 only together with S22.
  const int loaded = GetParam().Parameters == 3 ? 2 : GetParam().Parameters;
  int parameter = 0;
  for (const auto* array : {&network.S11, &network.S21, &network.S12, &network.S22}) {
    for (int row = 0; row < 4; ++row) {
      const Complex z = (*array)[20 * row];
      const Complex truth = Truth(row, static_cast<std::size_t>(parameter));
      if (parameter >= loaded) {
        EXPECT_EQ(z.re, 7) << "left as it was";
      } else if (at75) {
        EXPECT_GT(std::hypot(z.re - truth.re, z.im - truth.im), 1e-3) << "not converted";
      } else {
        EXPECT_NEAR(z.re, truth.re, 1e-6) << row << " " << parameter;
        EXPECT_NEAR(z.im, truth.im, 1e-6) << row << " " << parameter;
      }
    }
    ++parameter;
  }
}

TEST(TouchstoneFiles, OfVersionTwoByOthersAreRead) {
  const auto read = [](const char* name) {
    const auto text = ReadWhole(std::string(QK_TEST_DATA "/") + name, 1 << 20);
    auto table = ReadTouchstone(text.Value(), Reference::Ignored);
    if (!table) throw std::runtime_error(table.Why().Text());
    return std::move(*table);
  };
  const TouchstoneTable lower = read("v2_lower_12_21.ts");
  ASSERT_EQ(lower.Rows, 3);
  EXPECT_EQ(lower.FileTable[0][2], 2e8f);
  for (const std::size_t column : {3, 5}) {
    const double re = static_cast<double>(lower.FileTable[column][2]);
    const double im = static_cast<double>(lower.FileTable[column + 1][2]);
    EXPECT_NEAR(std::hypot(re, im), 0.8, 1e-6);
    EXPECT_NEAR(std::atan2(im, re) * 180 / std::numbers::pi, -40, 1e-4);
  }
  const TouchstoneTable noise = read("v2_information_noise.s2p");
  ASSERT_EQ(noise.Rows, 2);
  EXPECT_NEAR(noise.FileTable[1][1], 0.1, 1e-7);                         // S11 -20 dB
  EXPECT_NEAR(std::hypot(noise.FileTable[5][2], noise.FileTable[6][2]),  // S12 -41 dB
              std::pow(10, -41.0 / 20), 1e-7);
  const TouchstoneTable one = read("v2_one_port.s1p");
  EXPECT_EQ(one.Kind(), FileKind::OneParameter);
  EXPECT_EQ(one.FileTable[0][2], 2e9f);
  EXPECT_NEAR(one.FileTable[2][1], 0.5, 1e-7);
}

}  // namespace
}  // namespace qk
