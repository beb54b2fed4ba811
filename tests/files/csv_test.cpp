// SPDX-License-Identifier: MIT
// Measured values as CSV, and the head of the files.
#include "files/csv.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <sstream>

namespace qk {
namespace {

struct Csv : testing::Test {
  std::unique_ptr<Session> session = MakeSession();
  CsvChoice choice;

  Csv() {
    session->Plan.NumPoints = 51;
    session->Plan.StartFreq = 1e9;
    session->Plan.StepFreq = 1e6;
    choice.Parameters = {true, false, false, false};
  }
  // The value of a column, S11 being z at every point.
  double Value(CsvColumn column, Complex z) {
    for (int i = 0; i < 51; ++i) session->Data.S11.Set(i, z);
    choice.Columns = {};
    choice.With(column);
    const Result<std::string> text = CsvText(*session, choice, {});
    const std::string line = LinesOf(*text)[1];
    return std::stod(line.substr(line.find(',') + 1));
  }
  static std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
      EXPECT_EQ(line.back(), '\r');
      lines.push_back(line.substr(0, line.size() - 1));
    }
    return lines;
  }
};

TEST_F(Csv, HasRemarksThenNamesThenALineAPoint) {
  choice.Parameters = {true, true, false, false};
  choice.With(CsvColumn::Re).With(CsvColumn::Im).With(CsvColumn::Swr);
  session->Data.S11.Set(0, {0.5, -0.25});
  session->Data.S21.Set(0, {1.0 / 3, 0});
  const auto text = CsvText(*session, choice, {{"Averages", "16"}});
  ASSERT_TRUE(text.Ok());
  const auto lines = LinesOf(*text);
  ASSERT_EQ(lines.size(), 53u);
  EXPECT_EQ(lines[0], "# Averages: 16");
  EXPECT_EQ(lines[1], "freq_Hz,S11_re,S11_im,S11_SWR,S21_re,S21_im");  // no SWR of a transmission
  EXPECT_EQ(lines[2].substr(0, 21), "1000000000,0.5,-0.25,");
  EXPECT_NE(lines[2].find(",0.3333333333333333,0"), std::string::npos);
  EXPECT_EQ(lines[52].substr(0, 10), "1050000000");
}

TEST_F(Csv, EachColumnIsItsFormula) {
  const Complex z{0.6, 0.3};
  const double w = 2 * std::numbers::pi * 1e9;
  // Z = 50 (1 + S) / (1 - S) = 50 (0.55 + 0.6 j) / 0.25
  EXPECT_NEAR(Value(CsvColumn::R, z), 110, 1e-9);
  EXPECT_NEAR(Value(CsvColumn::X, z), 120, 1e-9);
  EXPECT_NEAR(Value(CsvColumn::Z, z), std::hypot(110, 120), 1e-9);
  EXPECT_NEAR(Value(CsvColumn::L, z), 120 / w, 1e-18);
  EXPECT_NEAR(Value(CsvColumn::C, z), -1 / (w * 120), 1e-21);
  EXPECT_NEAR(Value(CsvColumn::Q, {0.6, -0.3}), 120.0 / 110, 1e-12);
  const double m = std::sqrt(0.45);
  EXPECT_NEAR(Value(CsvColumn::Mag, z), m, 1e-15);
  EXPECT_NEAR(Value(CsvColumn::Db, z), 20 * std::log10(m), 1e-12);
  EXPECT_NEAR(Value(CsvColumn::Deg, z), std::atan2(0.3, 0.6) * 180 / std::numbers::pi, 1e-12);
  EXPECT_NEAR(Value(CsvColumn::Swr, z), (1 + m) / (1 - m), 1e-12);
}

TEST_F(Csv, WhatHasNoFiniteValueIsWrittenAsSuch) {
  EXPECT_TRUE(std::isinf(Value(CsvColumn::Db, {0, 0})));
  EXPECT_TRUE(std::isinf(Value(CsvColumn::Swr, {0.8, 0.7})));
  EXPECT_TRUE(std::isinf(Value(CsvColumn::R, {1, 0})));
}

// A line of 20 ns turns the phase 7.2 degrees a step of 1 MHz.
TEST_F(Csv, UnwrappedPhaseAndDelayGoOverTheJumps) {
  for (int i = 0; i < 51; ++i) {
    const double a = -2 * std::numbers::pi * 20e-9 * session->Plan.Frequency(i);
    session->Data.S11.Set(i, {std::cos(a), std::sin(a)});
  }
  choice.With(CsvColumn::Unwrapped).With(CsvColumn::Delay);
  const auto lines = LinesOf(*CsvText(*session, choice, {}));
  double before = 0;
  for (std::size_t i = 1; i < lines.size(); ++i) {
    const std::size_t comma = lines[i].find(',');
    const double phase = std::stod(lines[i].substr(comma + 1));
    const double delay = std::stod(lines[i].substr(lines[i].rfind(',') + 1));
    if (i > 1) {
      EXPECT_NEAR(phase - before, -7.2, 1e-6);
    }
    EXPECT_NEAR(delay, 20e-9, 1e-14);
    before = phase;
  }
}

TEST_F(Csv, RefusesWhatWouldBeEmpty) {
  EXPECT_EQ(CsvText(*session, choice, {}).Why().Text(), "no column is chosen that S11 has");
  choice.With(CsvColumn::Swr).Parameters = {false, true, false, false};
  EXPECT_EQ(CsvText(*session, choice, {}).Why().Text(), "no column is chosen that S21 has");
  choice.Parameters = {};
  EXPECT_EQ(CsvText(*session, choice, {}).Why().Text(), "no parameter is chosen");
}

TEST_F(Csv, ColumnsAreChosenByTheirWordInAnyCase) {
  EXPECT_EQ(CsvColumnOf("DB"), CsvColumn::Db);
  EXPECT_EQ(CsvColumnOf("unwrapped"), CsvColumn::Unwrapped);
  EXPECT_FALSE(CsvColumnOf("volts"));
}

// ---- provenance
// ----------------------------------------------------------------------------------

std::string ValueOf(const std::vector<Fact>& facts, std::string_view name) {
  for (const Fact& fact : facts)
    if (fact.Name == name) return fact.Value;
  return "absent";
}

TEST_F(Csv, TheHeadSaysWhereTheValuesComeFrom) {
  session->Id.SerialNumber = 147;
  session->Id.FirmwareVersion = "1.2";
  session->Plan = {};
  session->Plan.Port1Level = -10;
  session->Plan.CalLevel = -5;
  session->Averaging.Averages = 16;
  session->Averaging.SmoothOn = true;
  session->Averaging.SmoothingPercent = 4;
  session->Cal.Cal12Term = session->Cal.CalInterpolated = true;
  session->CalMade = {1773065130, 24.06f, "Kit\nA", "Kit B"};
  session->Planes.PlaneS21 = 0.0125f;
  session->Impedance.DeEmbedOn = session->Networks.Port2NetOn = true;
  session->Impedance.SystemZo = 75;
  session->Impedance.ZoConvertOn = true;
  const auto facts = ProvenanceOf(*session, 1773065131);
  EXPECT_TRUE(ValueOf(facts, "Program").starts_with("qk47-vna "));
  EXPECT_EQ(ValueOf(facts, "Instrument"), "QK47-20-09 SN 147, firmware 1.2");
  EXPECT_EQ(ValueOf(facts, "Written"), "2026-03-09T14:05:31Z");
  EXPECT_EQ(ValueOf(facts, "Sweep"), "3 MHz to 3000 MHz, 101 points");
  EXPECT_EQ(ValueOf(facts, "Level"), "-10 dBm at port 1");
  EXPECT_EQ(ValueOf(facts, "Averages"), "16");
  EXPECT_EQ(ValueOf(facts, "Smoothing"), "4 % on graphs, none in saved values");
  EXPECT_EQ(ValueOf(facts, "Calibration"),
            "12 Term Cal, made 2026-03-09T14:05:30Z at 24.1 degC, level -5 dBm");
  EXPECT_EQ(ValueOf(facts, "Interpolated"), "yes");
  EXPECT_EQ(ValueOf(facts, "Kits"), "port 1 Kit A, port 2 Kit B");
  EXPECT_EQ(ValueOf(facts, "Reference planes"),
            "S11 0.000 mm, S21 12.500 mm, S12 0.000 mm, S22 0.000 mm");
  EXPECT_EQ(ValueOf(facts, "De-embedding"), "network at port 2 taken off");
  EXPECT_EQ(ValueOf(facts, "System impedance"), "75 ohm, converted from 50 ohm");
}

}  // namespace
}  // namespace qk
