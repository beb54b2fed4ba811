// SPDX-License-Identifier: MIT
// Autoscale in the window Display Set Up.
#include <gtest/gtest.h>

#include <cmath>

#include "control/verbs.h"
#include "forms/display_fixture.h"

namespace qk::test {
namespace {

TEST(DisplayPara, AutoscaleFillsTheFieldsAndWritesOnlyTheReferencePosition) {
  DisplayFixture vna;
  ChannelSettings& channel = vna.session.Channel(1);
  channel.RefPosition = 0;
  vna.session.Plan.NumPoints = 51;
  for (std::size_t i = 1; i <= 51; ++i) channel.Value[i] = i == 7 ? -48 : -8;
  vna.Click("DisplayPara.SelectAutoscale");
  EXPECT_EQ(vna.Value("DisplayPara.SensInput"), "5.25");
  EXPECT_EQ(vna.Value("DisplayPara.REFinput"), "-28.00");
  EXPECT_EQ(vna.Value("DisplayPara.ListRefPos"), "5");
  EXPECT_EQ(channel.RefPosition, 4);
  EXPECT_EQ(channel.Scale, 10);
  EXPECT_EQ(channel.Reference, 0);
  vna.Apply();
  EXPECT_EQ(channel.Scale, 5.25);
}

TEST(DisplayPara, AutoscaleOfAThousandthOfANanosecondInMicrosecondsEndsInPicoseconds) {
  DisplayFixture vna;
  ChannelSettings& channel = vna.session.Channel(1);
  channel.GraphType = GraphType::GroupDelay;
  channel.Units = Unit::Us;
  vna.Click("DisplayPara.CH1Select");
  for (std::size_t i = 1; i <= 101; ++i) channel.Value[i] = i == 7 ? 1e-6 : 0;
  vna.Click("DisplayPara.SelectAutoscale");
  EXPECT_EQ(vna.Value("DisplayPara.ListUnits"), "ps");
  EXPECT_EQ(channel.Units, Unit::Us);
}

TEST(DisplayPara, AutoscaleOfAFlatTraceKeepsTheFields) {
  DisplayFixture vna;
  ChannelSettings& channel = vna.session.Channel(1);
  channel.RefPosition = 0;
  channel.Value.fill(-3);
  vna.Type("DisplayPara.SensInput", "7");
  vna.Click("DisplayPara.SelectAutoscale");
  EXPECT_EQ(vna.Value("DisplayPara.SensInput"), "7");
  EXPECT_EQ(channel.RefPosition, 0);
}

TEST(DisplayPara, WhatAutoscaleFilledInWaitsForApplyThroughOtherChanges) {
  DisplayFixture vna;
  vna.session.Plan.NumPoints = 51;
  for (std::size_t i = 1; i <= 51; ++i) vna.session.Channel(1).Value[i] = i == 7 ? -48 : -8;
  vna.Click("DisplayPara.SelectAutoscale");
  vna.Click("Form1.SetMemory");
  vna.Click("MemoryPara.MAllSelect");
  vna.Click("MemoryPara.StoreData");
  EXPECT_EQ(vna.Value("DisplayPara.SensInput"), "5.25");
  EXPECT_EQ(vna.Value("DisplayPara.REFinput"), "-28.00");
}

TEST(DisplayPara, AutoscaleLeavesTheUnitOfATypeThatIsNotApplied) {
  DisplayFixture vna;
  vna.session.Plan.NumPoints = 51;
  for (std::size_t i = 1; i <= 51; ++i) vna.session.Channel(1).Value[i] = i == 7 ? -48 : -8;
  vna.Pick("DisplayPara.ListGraphType", "Phase");
  vna.Click("DisplayPara.SelectAutoscale");
  EXPECT_EQ(vna.Value("DisplayPara.ListUnits"), "deg");
  EXPECT_EQ(vna.Value("DisplayPara.SensInput"), "5.25");
}

TEST(DisplayPara, AutoscaleNamesTheUnitOfItsNumbers) {
  DisplayFixture vna;
  ChannelSettings& channel = vna.session.Channel(1);
  channel.GraphType = GraphType::GroupDelay;
  channel.Units = Unit::Ns;
  vna.Click("DisplayPara.CH1Select");
  for (std::size_t i = 1; i <= 101; ++i) channel.Value[i] = i == 7 ? 80 : 0;
  vna.Pick("DisplayPara.ListUnits", "us");  // not applied: the values are nanoseconds
  vna.Click("DisplayPara.SelectAutoscale");
  EXPECT_EQ(vna.Value("DisplayPara.ListUnits"), "ns");
  EXPECT_EQ(vna.Value("DisplayPara.SensInput"), "10.50");
}

}  // namespace
}  // namespace qk::test
