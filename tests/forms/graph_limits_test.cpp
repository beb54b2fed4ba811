// SPDX-License-Identifier: MIT
// Which limits are tested after a verb has given a channel another type, unit or parameter.
#include <gtest/gtest.h>

#include "control/graph_verbs.h"
#include "control/verbs.h"
#include "core/window_names.h"
#include "forms/graph_verbs_fixture.h"
#include "limits/limit_segments.h"
#include "limits/limit_test.h"

namespace qk {
namespace {

using test::GraphVerbs;
using test::Texts;

// Limits in dB say nothing about a standing wave ratio.
TEST_F(GraphVerbs, APresetDoesNotTestLimitsOfAnotherUnit) {
  const auto limits = [&](int n, const char* upper, const char* lower) {
    session.Limits.Of(n).Segments[0] = {"10", "90", upper, lower};
    ASSERT_TRUE(ApplyLimits(session, n).Ok());
    session.Limits.Enabled = session.Limits.Alarm = session.Limits.Of(n).Show = true;
    Host host = fake.host();
    ShowLimitsAsSwitched(session, host);
  };
  const auto on = [&](int n) { return Channel(n).LimitsOn && session.Limits.Of(n).Show; };
  const auto notice = [&] { return At("Form1.Notice").Caption; };
  for (int n = 1; n <= 4; ++n) limits(n, "-1", "-3");
  Click("Form1.PresetAntenna");
  EXPECT_FALSE(on(1));
  EXPECT_TRUE(on(2)) << "a Smith chart is not tested, and keeps the unit";
  EXPECT_EQ(notice(), "CH1: limits for S11 LogMag in dB switched off");
  Click("Form1.LimiLines");
  Click("NewLimitsSet.Command1");  // shows limits as switched
  EXPECT_FALSE(on(1));
  EXPECT_TRUE(on(4));
  Click("Form1.UndoLast");
  EXPECT_TRUE(on(1));
  EXPECT_EQ(Channel(1).Units, Unit::Db);
  EXPECT_EQ(Channel(1).UpperLimit[30], -1);
  Click("Form1.PresetFilter");
  EXPECT_FALSE(on(1)) << "S21 in the same unit";
  EXPECT_FALSE(on(4));
  EXPECT_EQ(notice(),
            "CH1: limits for S11 LogMag in dB, CH2: limits for S21 LogMag in dB, CH4: limits for "
            "S22 LogMag in dB switched off");
  Click("Form1.PresetAll");
  EXPECT_FALSE(on(4)) << "the user switches them on";
  Click("Form1.UndoLast");
  Click("Form1.UndoLast");
  EXPECT_TRUE(on(4));
  // A magnitude and a standing wave ratio have the same unit.
  Channel(1).GraphType = GraphType::LinMag;
  Channel(1).Units = Unit::U;
  limits(1, "0.5", "0.1");
  Click("Form1.PresetAntenna");
  EXPECT_FALSE(on(1));
  EXPECT_EQ(notice(), "CH1: limits for S11 LinMag in U switched off");
  // Applied limits that are not shown for now are not shown again later.
  limits(1, "2", "1");
  session.Limits.Enabled = false;
  Click("NewLimitsSet.Command1");
  Channel(1).LimitsOn = false;
  Click("Form1.PresetAll");
  EXPECT_FALSE(session.Limits.Of(1).Show);
}

// The same rule for every verb that gives a channel another type or unit.
TEST_F(GraphVerbs, AnotherGraphTypeOrUnitDoesNotTestLimitsOfTheOneBefore) {
  const auto limits = [&](GraphType type, Unit unit) {
    Channel(1).Parameter = Parameter::S11;
    Channel(1).GraphType = type;
    Channel(1).Units = unit;
    session.Limits.Of(1).Segments[0] = {"10", "90", "5", "1"};
    ASSERT_TRUE(ApplyLimits(session, 1).Ok());
    session.Limits.Enabled = session.Limits.Of(1).Show = true;
    Host host = fake.host();
    ShowLimitsAsSwitched(session, host);
    controller().notice().Say({});
  };
  const auto on = [&] { return Channel(1).LimitsOn && session.Limits.Of(1).Show; };
  const auto notice = [&] { return At("Form1.Notice").Caption; };
  limits(GraphType::LogMag, Unit::Db);
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::LogMag));
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::Smith));
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::LogMag));
  EXPECT_TRUE(on()) << "the chart between tests nothing, and only LogMag has dB";
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::Swr));
  EXPECT_FALSE(on());
  EXPECT_EQ(notice(), "CH1: limits for S11 LogMag in dB switched off");
  limits(GraphType::ImpedanceMagnitude, Unit::Ohm);
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::Resistance));
  EXPECT_FALSE(on()) << "the same unit of another quantity";
  limits(GraphType::LinMag, Unit::U);
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::Smith));
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::Swr));
  EXPECT_FALSE(on());
  limits(GraphType::Swr, Unit::U);
  ASSERT_TRUE(ShowParameter(controller(), 1, Parameter::S11));
  EXPECT_TRUE(on()) << "the same parameter";
  ASSERT_TRUE(ShowParameter(controller(), 1, Parameter::S22));
  EXPECT_FALSE(on()) << "another parameter of the same type";
  EXPECT_EQ(notice(), "CH1: limits for S11 SWR in U switched off");
  limits(GraphType::Swr, Unit::U);
  ASSERT_TRUE(ShowParameter(controller(), 1, Parameter::S21));
  EXPECT_FALSE(on()) << "a transmission has no standing wave ratio";
  EXPECT_EQ(notice(), "CH1: limits for S11 SWR in U switched off");
  limits(GraphType::Inductance, Unit::NanoHenry);
  Measure(1, [](int i) { return 400.0 * i; });
  AutoscaleGraph(controller(), 1);
  EXPECT_EQ(Channel(1).Units, Unit::MicroHenry);
  EXPECT_FALSE(on()) << "5 nH is not 5 uH";
  EXPECT_EQ(notice(), "CH1: limits for S11 L in nH switched off");
  limits(GraphType::Inductance, Unit::MicroHenry);
  Measure(1, [](int i) { return 1.0 * i; });
  AutoscaleAll(controller());
  EXPECT_EQ(Channel(1).Units, Unit::MicroHenry);
  EXPECT_TRUE(on());
  // The user wants the limits of S11 for S22 too.
  ASSERT_TRUE(ShowParameter(controller(), 1, Parameter::S22));
  session.Limits.Of(1).Show = true;
  Host host = fake.host();
  ShowLimitsAsSwitched(session, host);
  Measure(1, [](int i) { return 2.0 * i; });
  AutoscaleGraph(controller(), 1);
  EXPECT_TRUE(on()) << "the same unit";
  ASSERT_TRUE(ApplyLimits(session, 1).Ok());
  session.Limits.Of(1).Show = true;
  ShowLimitsAsSwitched(session, host);
  ASSERT_TRUE(ShowParameter(controller(), 1, Parameter::S22));
  EXPECT_TRUE(on()) << "applied for S22 now";
}

// Limits of another parameter come back with it.
TEST_F(GraphVerbs, UndoOfAnotherParameterSwitchesItsLimitsOn) {
  Channel(1).Parameter = Parameter::S11;
  session.Limits.Of(1).Segments[0] = {"10", "90", "5", "1"};
  ASSERT_TRUE(ApplyLimits(session, 1).Ok());
  session.Limits.Enabled = session.Limits.Of(1).Show = true;
  Host host = fake.host();
  ShowLimitsAsSwitched(session, host);
  controller().undo().Forget();
  controller().undo().Around([&] { EXPECT_TRUE(ShowParameter(controller(), 1, Parameter::S22)); },
                             {});
  EXPECT_FALSE(Channel(1).LimitsOn);
  Click("Form1.UndoLast");
  EXPECT_EQ(Channel(1).Parameter, Parameter::S11);
  EXPECT_TRUE(Channel(1).LimitsOn);
  EXPECT_TRUE(session.Limits.Of(1).Show);
}

// Limits belong to what the channel showed when they were applied, however it came to show
// something else.
TEST_F(GraphVerbs, LimitsKnowTheTypeThatTheyAreFor) {
  const auto apply = [&](GraphType type) {
    Channel(1).Parameter = Parameter::S11;
    ASSERT_TRUE(ShowGraphType(controller(), 1, type));
    session.Limits.Of(1).Segments[0] = {"10", "90", "5", "1"};
    ASSERT_TRUE(ApplyLimits(session, 1).Ok());
    session.Limits.Enabled = session.Limits.Of(1).Show = true;
    Host host = fake.host();
    ShowLimitsAsSwitched(session, host);
    controller().notice().Say({});
  };
  const auto notice = [&] { return At("Form1.Notice").Caption; };
  apply(GraphType::LogMag);
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::Smith));
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::Swr));
  EXPECT_FALSE(Channel(1).LimitsOn);
  EXPECT_EQ(notice(), "CH1: limits for S11 LogMag in dB switched off");
  apply(GraphType::LinMag);
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::Smith));
  ASSERT_TRUE(ShowGraphType(controller(), 1, GraphType::LinMag));
  EXPECT_TRUE(Channel(1).LimitsOn) << "the graph that they are for";
  EXPECT_EQ(notice(), "");
}

TEST_F(GraphVerbs, UndoDoesNotSwitchLimitsOnThatWereAppliedForAnotherType) {
  const auto apply = [&] {
    session.Limits.Of(1).Segments[0] = {"10", "90", "5", "1"};
    ASSERT_TRUE(ApplyLimits(session, 1).Ok());
    session.Limits.Enabled = session.Limits.Of(1).Show = true;
    Host host = fake.host();
    ShowLimitsAsSwitched(session, host);
  };
  const auto showSwr = [&] {
    controller().undo().Around([&] { EXPECT_TRUE(ShowGraphType(controller(), 1, GraphType::Swr)); },
                               {});
  };
  Channel(1).Parameter = Parameter::S11;
  apply();
  controller().undo().Forget();
  showSwr();
  EXPECT_FALSE(Channel(1).LimitsOn);
  Click("Form1.UndoLast");
  EXPECT_EQ(Channel(1).GraphType, GraphType::LogMag);
  EXPECT_TRUE(Channel(1).LimitsOn) << "those that it had";
  showSwr();
  apply();
  Click("Form1.UndoLast");
  EXPECT_EQ(Channel(1).GraphType, GraphType::LogMag);
  EXPECT_FALSE(Channel(1).LimitsOn);
  EXPECT_FALSE(session.Limits.Of(1).Show);
  EXPECT_NE(At("Form1.Notice").Caption.find("limits of CH1 (applied since"), std::string::npos)
      << At("Form1.Notice").Caption;
}

}  // namespace
}  // namespace qk
