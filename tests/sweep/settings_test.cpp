// SPDX-License-Identifier: MIT
// Averages and dwell on the wire.
#include "sweep/settings.h"

#include <gtest/gtest.h>

#include "support/link_fixture.h"

namespace qk {
namespace {

using test::BytesOf;
using test::ScriptedInstrument;
using Texts = std::vector<std::string>;

struct SettingsFixture : test::ScriptedLink {
  ScriptedInstrument instrument{port};

  // Timer1 is on before, off at every write, on after.
  void WatchTimer1() {
    fake.Enable(TimerId::Timer1, true);
    const auto inner = port.OnWrite;
    port.OnWrite = [this, inner](const Bytes& bytes) {
      EXPECT_FALSE(fake.Enabled(TimerId::Timer1));
      inner(bytes);
    };
  }
};

TEST(SetAverages, SendsTheCountAndClearsTheDueFlag) {
  SettingsFixture b;
  b.WatchTimer1();
  b.session->Averaging.Averages = 16;
  b.session->Flags.AveragesChangeDue = true;
  EXPECT_TRUE(SetAverages(b.rig));
  EXPECT_EQ(b.port.Writes, (std::vector<Bytes>{BytesOf("Q"), {'Y', '8', 16}}));
  EXPECT_FALSE(b.session->Flags.AveragesChangeDue);
  EXPECT_TRUE(b.fake.Enabled(TimerId::Timer1));
}

TEST(SetAverages, RaisesACountBelowOne) {
  for (const int count : {0, -5}) {
    SettingsFixture b;
    b.session->Averaging.Averages = static_cast<std::int16_t>(count);
    EXPECT_TRUE(SetAverages(b.rig));
    EXPECT_EQ(b.session->Averaging.Averages, 1);
    EXPECT_EQ(b.port.Writes.back(), (Bytes{'Y', '8', 1}));
  }
}

TEST(SetAverages, SendsNoMoreThanTheByteHolds) {
  SettingsFixture b;
  b.session->Averaging.Averages = 300;
  EXPECT_TRUE(SetAverages(b.rig));
  EXPECT_EQ(b.session->Averaging.Averages, 255);
  EXPECT_EQ(b.port.Writes.back(), (Bytes{'Y', '8', 255}));
}

TEST(SetAverages, ReportsASilentInstrumentAndKeepsTheChangeDue) {
  SettingsFixture b;
  b.WatchTimer1();
  b.instrument.Silent = true;
  b.session->Flags.AveragesChangeDue = true;
  EXPECT_FALSE(SetAverages(b.rig));
  EXPECT_EQ(b.fake.MessageTexts(), (Texts{"Set Averages|No Response|exclamation|ok"}));
  EXPECT_EQ(b.port.Writes, (std::vector<Bytes>{BytesOf("Q")}));
  EXPECT_TRUE(b.session->Flags.AveragesChangeDue);
  EXPECT_TRUE(b.fake.Enabled(TimerId::Timer1));
}

TEST(SendDwell, SendsOneForOnAndZeroForOff) {
  for (const bool on : {true, false}) {
    SettingsFixture b;
    b.WatchTimer1();
    b.session->Flags.DwellOn = on;
    EXPECT_TRUE(SendDwell(b.rig));
    EXPECT_EQ(b.port.Writes,
              (std::vector<Bytes>{BytesOf("Q"), {'D', static_cast<std::uint8_t>(on)}}));
    EXPECT_TRUE(b.fake.Enabled(TimerId::Timer1));
  }
}

TEST(SendDwell, ReportsASilentInstrument) {
  SettingsFixture b;
  b.WatchTimer1();
  b.instrument.Silent = true;
  EXPECT_FALSE(SendDwell(b.rig));
  EXPECT_EQ(b.fake.MessageTexts(), (Texts{"Dwell Time Set|No Response|exclamation|ok"}));
  EXPECT_EQ(b.port.Writes, (std::vector<Bytes>{BytesOf("Q")}));
  EXPECT_TRUE(b.fake.Enabled(TimerId::Timer1));
}

}  // namespace
}  // namespace qk
