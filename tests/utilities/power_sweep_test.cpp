// SPDX-License-Identifier: MIT
// The reading loop on the wire, byte for byte.
#include "utilities/power_sweep.h"

#include <gtest/gtest.h>

#include "support/link_fixture.h"
#include "utilities/power_fixture.h"

namespace qk::test {
namespace {

constexpr Complaint kComplaint{"P1dB Test", Icon::Critical};
constexpr int kPoint = 300;

// A plan of 401 points whose level codes are 27 plus the level in dBm; a reading of half scale.
struct Levels : ScriptedLink {
  Levels() {
    SweepPlan& plan = session->Plan;
    plan.NumPoints = 401;
    plan.Port1Level = -4;
    session->Flags.SweepLoaded = true;
    session->Id.PortNumber = 1;
    for (std::size_t code = 0; code < 32; ++code)
      session->Levels.Port1LevelTable[code].fill(static_cast<std::int8_t>(code) - 27);
    session->Terms.Forward.ETT.Set(kPoint, {0, 2});
    session->Terms.Forward.EX.Set(kPoint, {0.25, 0});
    port.Open();
    const auto take = port.OnWrite;
    port.OnWrite = [this, take](const Bytes& bytes) {
      if (bytes == BytesOf("YJ") && !mute) port.Feed(reading);
      if (take) take(bytes);
    };
  }
  ScriptedInstrument instrument{port};
  // Reference 1 volt in phase, test 1 volt in quadrature, over 4.999924 volts of 65535 counts.
  Bytes reading{0x00, 0xB3, 0x33, 0x00, 0x80, 0x00, 0x00, 0x80, 0x00, 0x00, 0xB3, 0x33};
  bool mute = false;

  static void Append(std::vector<Bytes>& writes, int code) {
    for (const Bytes& bytes :
         {BytesOf("Q"), BytesOf("YK"), Bytes{1}, Bytes{45}, Bytes{static_cast<std::uint8_t>(code)},
          BytesOf("Q"), BytesOf("YI"), Bytes{1}, Bytes{45}})
      writes.push_back(bytes);
  }
};

TEST(PowerSweep, SaysThisOnTheWire) {
  Levels wire;
  const auto sweep = MeasurePowerSweep(wire.rig, kComplaint, kPoint);
  ASSERT_TRUE(sweep.has_value());
  std::vector<Bytes> expected = {BytesOf("T")};
  for (int level = 0; level >= -20; --level) {
    // Point 301 as the instrument counts: 1, 45.
    Levels::Append(expected, 27 + level);
    // The point is in force when the instrument answers again.
    expected.push_back(BytesOf("Q"));
    expected.push_back(BytesOf("YJ"));
  }
  Levels::Append(expected, 23);
  EXPECT_EQ(wire.port.Writes, expected);
  EXPECT_EQ(wire.session->Plan.Port1Level, -4);
  EXPECT_FALSE(wire.session->Flags.LevelChangeDue);
}

TEST(PowerSweep, CorrectsByIsolationAndTransmissionTracking) {
  Levels wire;
  const auto sweep = MeasurePowerSweep(wire.rig, kComplaint, kPoint);
  ASSERT_TRUE(sweep.has_value());
  // j over 1, less 0.25, over 2j.
  EXPECT_NEAR(sweep->Levels[8].Corrected.re, 0.5, 1e-4);
  EXPECT_NEAR(sweep->Levels[8].Corrected.im, 0.125, 1e-4);
  EXPECT_NEAR(sweep->Levels[8].TestVolts, 1, 1e-4);
  EXPECT_NEAR(static_cast<double>(sweep->Temperature), (742 * 5 / 1024.0 - 2.45) / 0.049, 1e-4);
}

TEST(PowerSweep, TakesTheOffsetsOffReferenceAndTest) {
  Levels wire;
  wire.session->Receiver.DcOffsetI = 0.5;
  wire.session->Receiver.DcOffsetQ = -0.25;
  const auto sweep = MeasurePowerSweep(wire.rig, kComplaint, kPoint);
  ASSERT_TRUE(sweep.has_value());
  EXPECT_NEAR(sweep->Levels[0].TestVolts, std::hypot(0.25, 1.25), 1e-4);
}

TEST(PowerSweep, EndsTwoSecondsAfterAReadingThatDoesNotCome) {
  Levels wire;
  wire.mute = true;
  wire.StartWatch();
  EXPECT_FALSE(MeasurePowerSweep(wire.rig, kComplaint, kPoint).has_value());
  EXPECT_NEAR(static_cast<double>(wire.ElapsedMs()), 2000, 20);
  EXPECT_EQ(wire.fake.MessageTexts(),
            std::vector<std::string>{"P1dB Test|No Response|critical|ok"});
  EXPECT_EQ(wire.session->Plan.Port1Level, -4);
  EXPECT_FALSE(wire.link.Holds().Level.Is(-4)) << "the point may hold another";
}

// 0.3 volts at 0 dBm, less 30 dB; a count is 76 microvolts, the middle is that of 2.5 volts.
TEST(PowerSweep, AReferenceOfNextToNothingIsNoReadingAndLosesTrack) {
  for (const int counts : {0, 40, 123, 126, 200}) {
    Levels wire;
    wire.link.Holds().Averages.Set(7);
    const int i = 0x8000 + counts;
    wire.reading[1] = static_cast<std::uint8_t>(i >> 8);
    wire.reading[2] = static_cast<std::uint8_t>(i);
    const bool drives = counts > 125;
    EXPECT_EQ(MeasurePowerSweep(wire.rig, kComplaint, kPoint).has_value(), drives) << counts;
    EXPECT_EQ(wire.fake.MessageTexts(),
              drives ? std::vector<std::string>{}
                     : std::vector<std::string>{"P1dB Test|No Response|critical|ok"});
    EXPECT_EQ(wire.link.Holds().Averages.Is(7), drives) << counts;
    EXPECT_EQ(wire.session->Plan.Port1Level, -4);
  }
}

TEST(PowerSweep, AReadingOfAnotherLengthIsNone) {
  for (const int length : {11, 13}) {
    Levels wire;
    wire.reading.resize(static_cast<std::size_t>(length));
    EXPECT_FALSE(MeasurePowerSweep(wire.rig, kComplaint, kPoint).has_value()) << length;
  }
}

TEST(PowerSweep, WithoutAPlanInTheInstrumentItEndsAtTheFirstLevel) {
  Levels wire;
  wire.session->Flags.SweepLoaded = false;
  EXPECT_FALSE(MeasurePowerSweep(wire.rig, kComplaint, kPoint).has_value());
  EXPECT_EQ(wire.fake.MessageTexts(),
            std::vector<std::string>{"Port1 Level Set|Sweep Not Set|exclamation|ok"});
}

TEST(PowerSweep, ReportsAnOverloadAt2Point49Volts) {
  Levels wire;
  wire.reading = {0x00, 0xB3, 0x33, 0x00, 0xFF, 0xFF, 0x00, 0x80, 0x00, 0x00, 0x80, 0x00};
  wire.session->Receiver.DcOffsetQ = 2.499924 - 2.4899;
  EXPECT_TRUE(MeasurePowerSweep(wire.rig, kComplaint, kPoint).has_value());
  EXPECT_NE(wire.session->Panels[3], "Port 2 Overload!");
  wire.session->Receiver.DcOffsetQ = 2.499924 - 2.4901;
  EXPECT_TRUE(MeasurePowerSweep(wire.rig, kComplaint, kPoint).has_value());
  EXPECT_EQ(wire.session->Panels[3], "Port 2 Overload!");
  EXPECT_EQ(wire.fake.Beeps, 1) << "21 readings, one beep";
  EXPECT_TRUE(wire.fake.Enabled(TimerId::Timer2));
}

// It answers as before, but holds no plan and sums one reading.
TEST(PowerSweep, AnInstrumentThatWasSwitchedOffAndOnIsReportedAndTheNextStartIsRight) {
  for (const int averages : {1, 2, 16}) {
    PowerFixture wire;
    wire.Bench("through");
    ASSERT_TRUE(PutAveragesInForce(wire.rig, static_cast<std::int16_t>(averages)));
    const auto take = [&wire](int point) -> std::optional<PowerSweep> {
      if (!SelectTestPoint(wire.rig, kTestComplaint, point)) return std::nullopt;
      return MeasurePowerSweep(wire.rig, kTestComplaint, point);
    };
    for (const int point : {0, 25, 50}) {
      const auto good = take(point);
      ASSERT_TRUE(good.has_value()) << wire.fake.MessageTexts().back();
      wire.fake.Messages.clear();
      wire.Bench("power cycle");
      EXPECT_FALSE(take(point).has_value()) << averages << " averages, point " << point;
      EXPECT_EQ(wire.fake.MessageTexts(),
                std::vector<std::string>{"P1dB Test|No Response|critical|ok"});
      const auto again = take(point);
      ASSERT_TRUE(again.has_value());
      for (std::size_t i = 0; i < kPowerLevels; ++i) {
        EXPECT_NEAR(again->Levels[i].TestVolts / good->Levels[i].TestVolts, 1, 0.02);
        const Complex off = again->Levels[i].Corrected - good->Levels[i].Corrected;
        EXPECT_LT(Magnitude(off.re, off.im), 0.02);
      }
    }
  }
}

// Between any two bytes of the 21 levels.
TEST(PowerSweep, AnInstrumentThatIsSwitchedOffAndOnInTheMiddleGivesNoWrongLevel) {
  constexpr int kPointInTheMiddle = 25;
  int refused = 0, whole = 0;
  for (int at = 0; whole == 0 && at < 4000; at += 1 + at / 8) {
    PowerFixture wire(sim::Pace::Baud115200);
    wire.Bench("through");
    ASSERT_TRUE(PutAveragesInForce(wire.rig, 2));
    ASSERT_TRUE(SelectTestPoint(wire.rig, kTestComplaint, kPointInTheMiddle));
    const auto good = MeasurePowerSweep(wire.rig, kTestComplaint, kPointInTheMiddle);
    ASSERT_TRUE(good.has_value());
    int sleeps = 0;
    wire.OnSleep = [&] {
      if (sleeps++ == at) wire.Bench("power cycle");
    };
    const auto levels = MeasurePowerSweep(wire.rig, kTestComplaint, kPointInTheMiddle);
    wire.OnSleep = {};
    if (!levels) {
      ++refused;
      EXPECT_NE(wire.fake.MessageTexts().back().find("No Response"), std::string::npos) << at;
      continue;
    }
    whole += sleeps <= at ? 1 : 0;
    for (std::size_t i = 0; i < kPowerLevels; ++i) {
      EXPECT_NEAR(levels->Levels[i].TestVolts / good->Levels[i].TestVolts, 1, 0.02) << at;
      const Complex off = levels->Levels[i].Corrected - good->Levels[i].Corrected;
      EXPECT_LT(Magnitude(off.re, off.im), 0.02) << at << ", level " << i;
    }
  }
  EXPECT_GT(refused, 10);
  EXPECT_EQ(whole, 1) << "the last one is behind the end";
}

TEST(SelectTestPoint, ChecksTheLinkAndNamesThePointFrom1) {
  Levels wire;
  EXPECT_TRUE(SelectTestPoint(wire.rig, kComplaint, kPoint));
  EXPECT_EQ(wire.port.Writes,
            (std::vector<Bytes>{BytesOf("Q"), BytesOf("YI"), Bytes{1}, Bytes{45}}));
  wire.instrument.Silent = true;
  EXPECT_FALSE(SelectTestPoint(wire.rig, kComplaint, kPoint));
  EXPECT_EQ(wire.fake.MessageTexts().back(), "P1dB Test|No Response|critical|ok");
}

}  // namespace
}  // namespace qk::test
