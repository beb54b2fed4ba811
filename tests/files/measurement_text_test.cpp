// SPDX-License-Identifier: MIT
// The four forms of a saved measurement, letter for letter.
#include "files/measurement_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace qk {
namespace {

struct Measurement : testing::Test {
  Measurement() {
    session->Plan.StartFreq = 3e6;
    session->Plan.StepFreq = 12.5e6;
    session->Plan.NumPoints = 2;
    session->Data.S11.Set(0, {0.5, 0});
    session->Data.S11.Set(1, {0, -0.123456789});
    session->Data.S21.Set(0, {-1, 0});
    session->Data.S21.Set(1, {3, 4});
    session->Data.S12.Set(0, {0.001, 0});
    session->Data.S12.Set(1, {0.0123456, 0.0123456});
    session->Data.S22.Set(0, {0, 0});
    session->Data.S22.Set(1, {1e-6, 0});
  }
  std::string Text(MeasurementForm form, std::array<bool, 4> parameters, bool math = false) const {
    return MeasurementText(*session, {form, parameters, math},
                           {"my amplifier", "2026-11-21", "11:03:00"});
  }

  static constexpr std::array<bool, 4> kS11{true, false, false, false};
  static constexpr std::array<bool, 4> kAll{true, true, true, true};
  std::unique_ptr<Session> session = MakeSession();
};

TEST_F(Measurement, AsTouchstoneHasFourHeaderLinesAndMagnitudeWithPhase) {
  EXPECT_EQ(Text(MeasurementForm::Touchstone, kS11),
            "! my amplifier  2026-11-21  11:03:00\r\n"
            "! Ref Plane: 0.000 mm\r\n"
            "# MHZ S MA R 50\r\n"
            "!\r\n"
            //        1         2         3         4
            // 2345678901234567890123456789012345678901234
            "3.0000        0.50          0.00           \r\n"
            "15.5000       0.12346       -90.00         \r\n");
}

TEST_F(Measurement, HasItsParametersInTheOrderS11S21S12S22) {
  EXPECT_EQ(Text(MeasurementForm::MagPhase, kAll),
            " 3            0.50          0.00          1.00          180.00        "
            "0.001         0.00          0.00          0.00           \r\n"
            " 15.5         0.12346       -90.00        5.00          53.13         "
            "0.01746       45.00         0.00          0.00           \r\n");
}

TEST_F(Measurement, AsRealAndImaginaryIsInExponentForm) {
  EXPECT_EQ(Text(MeasurementForm::RealImag, {true, true, false, false}),
            " 3            5.0000E-01    0.0000E00     -1.0000E00    0.0000E00      \r\n"
            " 15.5         0.0000E00     -1.2346E-01   3.0000E00     4.0000E00      \r\n");
}

TEST_F(Measurement, InDecibelsHasOneDecimalLessForS12) {
  session->Data.S21.Set(1, {0.0123456, 0.0123456});  // as S12
  EXPECT_EQ(Text(MeasurementForm::LogMagPhase, {false, true, true, false}),
            " 3            0.00          180.00        -60.00        0.00           \r\n"
            " 15.5         -35.15946     45.00         -35.1595      45.00          \r\n");
}

TEST_F(Measurement, OfNoParameterIsFrequencyAndClosingBlank) {
  EXPECT_EQ(Text(MeasurementForm::RealImag, {}), " 3             \r\n 15.5          \r\n");
}

TEST_F(Measurement, MovesTheNextFieldAZoneFurtherBehindALongOne) {
  const auto behind = [&](double hertz) {
    session->Plan.StartFreq = hertz;
    return Text(MeasurementForm::MagPhase, kS11);
  };
  EXPECT_EQ(behind(3.00000025e6).substr(0, 18), " 3.00000025   0.50");   // 12 characters
  EXPECT_EQ(behind(3.000000125e6).substr(0, 18), " 3.000000125  0.50");  // 13
  EXPECT_EQ(behind(3.0000000625e6).substr(0, 14), " 3.0000000625 ");     // 14
  EXPECT_EQ(behind(3.0000000625e6).substr(14, 18), "              0.50");
}

TEST_F(Measurement, DeclaresTheSystemsImpedanceAndPlane) {
  session->Impedance.SystemZo = 75;
  session->Planes.ActivePlane = 0.0123456f;
  const std::string text = Text(MeasurementForm::Touchstone, kS11);
  EXPECT_NE(text.find("\r\n# MHZ S MA R 75\r\n"), std::string::npos);
  EXPECT_NE(text.find("\r\n! Ref Plane: 12.346 mm\r\n"), std::string::npos);
}

TEST_F(Measurement, HasAPointAMeasuredNumberEvenOf1024) {
  session->Plan.NumPoints = 1024;
  const std::string text = Text(MeasurementForm::RealImag, kAll);
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1024);
}

TEST_F(Measurement, KeepsACommentOnItsLine) {
  const std::string text = MeasurementText(*session, {MeasurementForm::Touchstone, kS11, false},
                                           {"two\r\nlines\t", "D", "T"});
  EXPECT_EQ(text.substr(0, text.find("\r\n")), "! two  lines   D  T");
}

TEST_F(Measurement, ComesFromTheSParametersNotFromTheSmoothedTrace) {
  session->Averaging.SmoothOn = true;
  session->Averaging.SmoothingPercent = 10;
  session->Channel(1).SmoothValue.fill(99);
  session->Channel(1).Value.fill(98);
  EXPECT_EQ(Text(MeasurementForm::MagPhase, kS11).substr(14, 4), "0.50");
}

// ---- memory math -------------------------------------------------------------------------------

struct SavedPoints : Measurement {
  SavedPoints() {
    session->Display.DisplayMode = DisplayMode::MemoryMath;
    session->Display.MemoryFunction = MemoryFunction::Plus;
    Store(1, Parameter::S11, 10);
  }
  void Store(int n, Parameter parameter, double re) {
    ChannelSettings& channel = session->Channel(n);
    channel.Parameter = parameter;
    channel.MemoryValid = true;
    channel.MemoryRe.fill(re);
  }
  double Saved(bool apply, Parameter parameter = Parameter::S11) const {
    return SavedPoint(*session, apply, parameter, 1, {2, 0}).re;
  }
};

TEST_F(SavedPoints, TakeTheStoredTraceInWhenAskedTo) {
  EXPECT_EQ(Saved(true), 12);
  session->Display.MemoryFunction = MemoryFunction::Subtract;
  EXPECT_EQ(Saved(true), -8);
  session->Display.MemoryFunction = MemoryFunction::Divide;
  EXPECT_EQ(Saved(true), 0.2);
  EXPECT_EQ(Saved(false), 2);
}

TEST_F(SavedPoints, ArePlainOutsideMemoryMath) {
  session->Display.DisplayMode = DisplayMode::Data;
  EXPECT_EQ(Saved(true), 2);
  session->Display.DisplayMode = DisplayMode::DataAndMemory;
  EXPECT_EQ(Saved(true), 2);
}

TEST_F(SavedPoints, ArePlainForAParameterWithoutAStoredTrace) {
  EXPECT_EQ(Saved(true, Parameter::S21), 2);
  session->Channel(1).MemoryValid = false;
  EXPECT_EQ(Saved(true), 2);
}

TEST_F(SavedPoints, UseTheLastOfSeveralChannelsOnThePlainValue) {
  Store(3, Parameter::S11, 100);
  EXPECT_EQ(Saved(true), 102);
  session->Channel(3).MemoryValid = false;
  EXPECT_EQ(Saved(true), 12);
}

TEST_F(SavedPoints, AreGatedOnlyWhenAskedTo) {
  session->Plan.NumPoints = 1024;
  session->Plan.StartFreq = session->Plan.StepFreq = 3e6;
  session->Display.DisplayMode = DisplayMode::Data;
  session->TimeDomain.Gate = GateKind::Gate;
  session->TimeDomain.GateStart = 20;
  session->TimeDomain.GateStop = 40;
  session->Channel(1).Gated = true;
  session->Data.S11.Fill({0.5, 0});  // all of it at time zero
  GateArrays::Points written;
  qk::SavedPoints(*session, {.ApplyGate = false}, Parameter::S11, written);
  EXPECT_EQ(written[500].re, 0.5);
  qk::SavedPoints(*session, {.ApplyGate = true}, Parameter::S11, written);
  EXPECT_NEAR(written[500].re, 0, 0.01);
}

TEST_F(SavedPoints, StandInTheFile) {
  session->Plan.NumPoints = 1;
  EXPECT_EQ(Text(MeasurementForm::MagPhase, kS11, true).substr(14, 5), "10.50");
}

// ---- comments ----------------------------------------------------------------------------------

using Entries = std::array<std::string, 5>;

TEST(CommentHistory, BeginsWithFiveBlanks) {
  EXPECT_EQ(CommentHistory().Entries(), (Entries{" ", " ", " ", " ", " "}));
}

TEST(CommentHistory, MovesAllDownForANewCommentAndTheLastFallsOut) {
  CommentHistory history;
  for (const char* comment : {"a", "b", "c", "d", "e"}) history.Use(comment);
  EXPECT_EQ(history.Entries(), (Entries{"e", "d", "c", "b", "a"}));
  history.Use("f");
  EXPECT_EQ(history.Entries(), (Entries{"f", "e", "d", "c", "b"}));
}

TEST(CommentHistory, MovesAKnownCommentUpOverThoseAboveIt) {
  CommentHistory history;
  for (const char* comment : {"a", "b", "c", "d", "e"}) history.Use(comment);
  history.Use("c");
  EXPECT_EQ(history.Entries(), (Entries{"c", "e", "d", "b", "a"}));
  history.Use("c");
  EXPECT_EQ(history.Entries(), (Entries{"c", "e", "d", "b", "a"}));
}

}  // namespace
}  // namespace qk
