#include "forms/display_para.h"

#include <gtest/gtest.h>

#include <cmath>

#include "control/verbs.h"
#include "support/program_fixture.h"

namespace qk::test {
namespace {

struct DisplayFixture : ScriptedProgram {
  DisplayFixture() { OpenDisplay(); }

  void Set(const char* parameter, const char* type, const char* units) {
    Pick("DisplayPara.ListParameters", parameter);
    Pick("DisplayPara.ListGraphType", type);
    Pick("DisplayPara.ListUnits", units);
  }
  Texts Apply() {
    Click("DisplayPara.ApplyDisplay");
    return TakeMessages();
  }
  Texts Refused(const char* text) { return {std::string("|") + text + "|none|ok"}; }
};

TEST(DisplayPara, OffersItsListsInOrder) {
  DisplayFixture bench;
  EXPECT_EQ(bench.Window("DisplayPara").Caption(), "Display Set Up");
  EXPECT_EQ(bench.At("DisplayPara.ListParameters").Entries, (Texts{"S11", "S21", "S12", "S22"}));
  EXPECT_EQ(
      bench.At("DisplayPara.ListGraphType").Entries,
      (Texts{"LogMag", "Phase", "Smith", "SWR", "Group Delay", "LinMag", "Real", "Imag", "TD"}));
  EXPECT_EQ(bench.At("DisplayPara.ListUnits").Entries,
            (Texts{"ps", "ns", "us", "U", "mU", "dB", "deg"}));
  EXPECT_EQ(bench.At("DisplayPara.ListRefPos").Entries,
            (Texts{"1", "2", "3", "4", "5", "6", "7", "8", "9"}));
  EXPECT_EQ(bench.At("DisplayPara.ActChSel").Entries, (Texts{"1", "2", "3", "4"}));
}

TEST(DisplayPara, OpensWithChannel1AndCH1Alone) {
  ScriptedProgram bench;
  bench.session.Display.DisplaySet = DisplaySet::All;
  bench.session.Channel(1).Scale = 0.005;
  bench.session.Channel(1).Reference = -12.25;
  bench.session.Channel(1).RefPosition = 7;
  bench.OpenDisplay();
  EXPECT_EQ(bench.Value("DisplayPara.Option2"), "on");
  EXPECT_EQ(bench.Value("DisplayPara.CH1Select"), "on");
  EXPECT_EQ(bench.Value("DisplayPara.ListParameters"), "S11");
  EXPECT_EQ(bench.Value("DisplayPara.ListGraphType"), "LogMag");
  EXPECT_EQ(bench.Value("DisplayPara.ListUnits"), "dB");
  EXPECT_EQ(bench.Value("DisplayPara.REFinput"), "-12.25");
  EXPECT_EQ(bench.Value("DisplayPara.ListRefPos"), "8");
  EXPECT_EQ(bench.Value("DisplayPara.SensInput"), "0.005");
  EXPECT_EQ(bench.Value("DisplayPara.ActChSel"), "1");
}

TEST(DisplayPara, ChoosingAChannelShowsWhatItHolds) {
  DisplayFixture bench;
  ChannelSettings& channel = bench.session.Channel(3);
  channel.Parameter = Parameter::S21;
  channel.GraphType = GraphType::GroupDelay;
  channel.Units = Unit::Ps;
  channel.Reference = 1.5;
  channel.RefPosition = 0;
  channel.Scale = 2;
  bench.Click("DisplayPara.CH3Select");
  EXPECT_EQ(bench.Value("DisplayPara.ListParameters"), "S21");
  EXPECT_EQ(bench.Value("DisplayPara.ListGraphType"), "Group Delay");
  EXPECT_EQ(bench.Value("DisplayPara.ListUnits"), "ps");
  EXPECT_EQ(bench.Value("DisplayPara.REFinput"), "1.5");
  EXPECT_EQ(bench.Value("DisplayPara.ListRefPos"), "1");
  EXPECT_EQ(bench.Value("DisplayPara.SensInput"), "2");
}

TEST(DisplayPara, AGraphTypeBringsItsNaturalUnit) {
  DisplayFixture bench;
  const auto unitOf = [&](const char* type) {
    bench.Pick("DisplayPara.ListGraphType", type);
    return bench.Value("DisplayPara.ListUnits");
  };
  EXPECT_EQ(unitOf("Phase"), "deg");
  EXPECT_EQ(unitOf("Smith"), "deg");  // stays as it is
  EXPECT_EQ(unitOf("LogMag"), "dB");
  EXPECT_EQ(unitOf("Group Delay"), "ns");
  for (const char* type : {"SWR", "LinMag", "Real", "Imag", "TD"}) {
    bench.Pick("DisplayPara.ListUnits", "dB");
    EXPECT_EQ(unitOf(type), "U") << type;
  }
}

TEST(DisplayPara, ApplyTakesEveryFieldIntoTheChosenChannel) {
  DisplayFixture bench;
  bench.session.Planes.PlaneS21 = 0.25f;
  bench.session.Planes.DelayS21 = 8e-10f;
  bench.Click("DisplayPara.CH2Select");
  bench.Set("S21", "Phase", "deg");
  bench.Type("DisplayPara.REFinput", "-45.5");
  bench.Pick("DisplayPara.ListRefPos", "2");
  bench.Type("DisplayPara.SensInput", "22.5");
  bench.Click("DisplayPara.Option3");
  bench.Pick("DisplayPara.ActChSel", "2");
  const int presented = bench.surface.Presented;
  EXPECT_TRUE(bench.Apply().empty());
  const ChannelSettings& channel = bench.session.Channel(2);
  EXPECT_EQ(channel.Parameter, Parameter::S21);
  EXPECT_EQ(channel.GraphType, GraphType::Phase);
  EXPECT_EQ(channel.Units, Unit::Deg);
  EXPECT_EQ(channel.Reference, -45.5);
  EXPECT_EQ(channel.RefPosition, 1);
  EXPECT_EQ(channel.Scale, 22.5);
  EXPECT_EQ(bench.session.Display.DisplaySet, DisplaySet::OneTwo);
  EXPECT_EQ(bench.session.Display.ActiveChannel, 2);
  EXPECT_FALSE(bench.session.Channel(1).Active);
  EXPECT_TRUE(channel.Active);
  EXPECT_EQ(bench.session.Channel(1).GraphType, GraphType::LogMag);
  // The plane fields follow to the active channel's parameter.
  EXPECT_EQ(bench.session.Planes.ActivePlane, 0.25f);
  EXPECT_EQ(bench.session.Planes.ActiveDelay, 8e-10f);
  EXPECT_EQ(bench.Value("EnhancePara.TimeInput"), "250.000");
  EXPECT_EQ(bench.At("EnhancePara.ListRefPlaneInput").Index, 1);
  EXPECT_GT(bench.surface.Presented, presented);
}

TEST(DisplayPara, DisplayChoicesNameTheirChannelsAndRefreshIntervals) {
  struct {
    const char* Option;
    const char* Active;
    const char* Set;
    int Refresh;
  } rows[] = {{"Option1", "4", "all", 4},
              {"Option2", "1", "one", 2},
              {"Option3", "2", "one-two", 2},
              {"Option4", "3", "three-four", 2}};
  for (const auto& row : rows) {
    DisplayFixture bench;
    bench.Click(std::string("DisplayPara.") + row.Option);
    bench.Pick("DisplayPara.ActChSel", row.Active);
    EXPECT_TRUE(bench.Apply().empty());
    EXPECT_EQ(NameOf(bench.session.Display.DisplaySet), row.Set);
    EXPECT_EQ(bench.session.Display.PlotRefreshPoints, row.Refresh);
  }
}

TEST(DisplayPara, SmithOnATransmissionParameterIsRefusedAndChangesNothing) {
  DisplayFixture bench;
  bench.Set("S21", "Smith", "dB");
  EXPECT_EQ(bench.Apply(), bench.Refused("Smith only available with Reflection Parameter"));
  EXPECT_EQ(bench.session.Channel(1).Parameter, Parameter::S11);
  EXPECT_EQ(bench.session.Channel(1).GraphType, GraphType::LogMag);
}

TEST(DisplayPara, SwrOnATransmissionParameterIsRefused) {
  DisplayFixture bench;
  bench.Set("S12", "SWR", "U");
  EXPECT_EQ(bench.Apply(), bench.Refused("SWR only available with Reflection Parameter"));
}

TEST(DisplayPara, TheTimeDomainIsOfOneChannelEvenWhenTheOtherIsNotDisplayed) {
  DisplayFixture bench;
  bench.session.Plan.NumPoints = 1024;
  bench.session.Channel(3).GraphType = GraphType::Td;
  bench.Click("DisplayPara.CH2Select");
  bench.Set("S11", "TD", "U");
  EXPECT_EQ(bench.Apply(), bench.Refused("TD only allowed on one channel"));
  EXPECT_EQ(bench.session.Channel(2).GraphType, GraphType::LogMag);
}

TEST(DisplayPara, TheTimeDomainNeeds1024Points) {
  DisplayFixture bench;
  bench.session.Plan.NumPoints = 801;
  bench.Set("S11", "TD", "U");
  EXPECT_EQ(bench.Apply(), bench.Refused("Warning: TD Only with 1024 Sweep points"));
  bench.session.Plan.NumPoints = 1024;
  EXPECT_TRUE(bench.Apply().empty());
  EXPECT_EQ(bench.session.Channel(1).GraphType, GraphType::Td);
  EXPECT_TRUE(bench.Apply().empty());  // the channel's own "TD" is no other
}

class BadScale : public ::testing::TestWithParam<const char*> {};
TEST_P(BadScale, IsRefused) {
  DisplayFixture bench;
  bench.Type("DisplayPara.SensInput", GetParam());
  EXPECT_EQ(bench.Apply(), bench.Refused("Invalid Y-axis Scale"));
  EXPECT_EQ(bench.session.Channel(1).Scale, 10);
}
// The last two are no 32-bit numbers, in which the graphs hold a scale.
INSTANTIATE_TEST_SUITE_P(Every, BadScale,
                         ::testing::Values("0", "-1", "", "abc", "1e300", "1e-300"));

TEST(DisplayPara, ASmithChartNeedsNoScale) {
  DisplayFixture bench;
  bench.Set("S22", "Smith", "dB");
  bench.Type("DisplayPara.SensInput", "0");
  EXPECT_TRUE(bench.Apply().empty());
  EXPECT_EQ(bench.session.Channel(1).GraphType, GraphType::Smith);
}

TEST(DisplayPara, UnitsThatDoNotSuitAreRefused) {
  struct {
    const char* Type;
    const char* Units;
  } rows[] = {{"LogMag", "deg"}, {"Phase", "dB"},   {"Group Delay", "U"}, {"Real", "dB"},
              {"Imag", "ns"},    {"LinMag", "deg"}, {"SWR", "dB"},        {"TD", "ns"}};
  for (const auto& row : rows) {
    DisplayFixture bench;
    bench.session.Plan.NumPoints = 1024;
    bench.Set("S11", row.Type, row.Units);
    EXPECT_EQ(bench.Apply(), bench.Refused("Invalid Units Selection")) << row.Type;
  }
}

TEST(DisplayPara, SmithGreysUnitsScaleAndReferenceAndTakesThemAsTheyStand) {
  DisplayFixture bench;
  bench.Pick("DisplayPara.ListUnits", "ns");
  bench.Pick("DisplayPara.ListGraphType", "Smith");
  for (const char* field : {"ListUnits", "SensInput", "REFinput", "ListRefPos"})
    EXPECT_FALSE(bench.At(std::string("DisplayPara.") + field).Enabled) << field;
  EXPECT_TRUE(bench.Apply().empty());
  EXPECT_EQ(bench.session.Channel(1).Units, Unit::Ns);
  bench.Pick("DisplayPara.ListGraphType", "LogMag");
  EXPECT_TRUE(bench.At("DisplayPara.SensInput").Enabled);
  EXPECT_EQ(bench.At("DisplayPara.SensInput").Unit, "dB");
}

TEST(DisplayPara, UnitsThatSuitAreTaken) {
  struct {
    const char* Type;
    const char* Units;
  } rows[] = {{"Group Delay", "ps"}, {"Group Delay", "us"}, {"Real", "mU"},
              {"Imag", "U"},         {"LinMag", "mU"},      {"SWR", "mU"}};
  for (const auto& row : rows) {
    DisplayFixture bench;
    bench.Set("S11", row.Type, row.Units);
    EXPECT_TRUE(bench.Apply().empty()) << row.Type;
    EXPECT_EQ(bench.session.Channel(1).Units, *Named<Unit>(row.Units));
  }
}

TEST(DisplayPara, TheActiveChannelMustBeDisplayed) {
  struct {
    const char* Option;
    const char* Active;
  } rows[] = {{"Option2", "2"}, {"Option3", "3"}, {"Option4", "2"}};
  for (const auto& row : rows) {
    DisplayFixture bench;
    bench.Click(std::string("DisplayPara.") + row.Option);
    bench.Pick("DisplayPara.ActChSel", row.Active);
    EXPECT_EQ(bench.Apply(), bench.Refused("Active channel must be Displayed"));
    EXPECT_EQ(bench.session.Display.ActiveChannel, 1);
  }
}

TEST(DisplayPara, AParameterWithoutItsStoredTraceIsWarnedOfAndTaken) {
  DisplayFixture bench;
  bench.session.Display.DisplayMode = DisplayMode::DataAndMemory;
  bench.session.Channel(1).MemoryValid = true;
  bench.session.Channel(1).MemoryParameter = Parameter::S11;
  bench.Set("S21", "LogMag", "dB");
  EXPECT_EQ(bench.Apply(),
            bench.Refused("Warning: Parameter changed, memory trace cannot be displayed."));
  EXPECT_EQ(bench.session.Channel(1).Parameter, Parameter::S21);
}

TEST(DisplayPara, ValidationsRunInTheirOrder) {
  DisplayFixture bench;
  bench.session.Display.DisplayMode = DisplayMode::DataAndMemory;
  bench.session.Channel(1).MemoryValid = true;
  bench.session.Channel(1).MemoryParameter = Parameter::S11;
  bench.Type("DisplayPara.SensInput", "0");
  bench.Pick("DisplayPara.ActChSel", "3");
  bench.session.Channel(2).GraphType = GraphType::Td;
  bench.Set("S21", "Smith", "dB");
  EXPECT_EQ(bench.Apply(), bench.Refused("Smith only available with Reflection Parameter"));
  bench.Set("S21", "SWR", "dB");
  EXPECT_EQ(bench.Apply(),
            (Texts{"|Warning: Parameter changed, memory trace cannot be displayed.|none|ok",
                   "|SWR only available with Reflection Parameter|none|ok"}));
  bench.Set("S11", "TD", "dB");
  EXPECT_EQ(bench.Apply(), bench.Refused("TD only allowed on one channel"));
  bench.session.Channel(2).GraphType = GraphType::LogMag;
  EXPECT_EQ(bench.Apply(), bench.Refused("Warning: TD Only with 1024 Sweep points"));
  bench.session.Plan.NumPoints = 1024;
  EXPECT_EQ(bench.Apply(), bench.Refused("Invalid Y-axis Scale"));
  bench.Type("DisplayPara.SensInput", "1");
  EXPECT_EQ(bench.Apply(), bench.Refused("Invalid Units Selection"));
  bench.Pick("DisplayPara.ListUnits", "U");
  EXPECT_EQ(bench.Apply(), bench.Refused("Active channel must be Displayed"));
}

TEST(DisplayPara, AReferenceThatIsNoNumberIsZeroAndACommaEndsIt) {
  DisplayFixture bench;
  bench.session.Channel(1).Reference = 3;
  bench.Type("DisplayPara.REFinput", "");
  EXPECT_TRUE(bench.Apply().empty());
  EXPECT_EQ(bench.session.Channel(1).Reference, 0);
  bench.Type("DisplayPara.REFinput", "-3,5");
  bench.Apply();
  EXPECT_EQ(bench.session.Channel(1).Reference, -3);
}

TEST(DisplayPara, AnEndlessReferenceDrawsAllTheSame) {
  DisplayFixture bench;
  bench.Type("DisplayPara.REFinput", "1e308");
  bench.Type("DisplayPara.SensInput", "1e-30");
  EXPECT_TRUE(bench.Apply().empty());
  EXPECT_TRUE(std::isfinite(bench.session.Channel(1).Reference));
}

TEST(DisplayPara, AppliesDuringASweep) {
  DisplayFixture bench;
  bench.PretendSweep();
  bench.Set("S22", "Real", "U");
  EXPECT_TRUE(bench.Apply().empty());
  EXPECT_EQ(bench.session.Channel(1).GraphType, GraphType::Real);
  EXPECT_TRUE(bench.port.Writes.empty());
}

TEST(DisplayPara, AutoscaleFillsTheFieldsAndWritesOnlyTheReferencePosition) {
  DisplayFixture bench;
  ChannelSettings& channel = bench.session.Channel(1);
  channel.RefPosition = 0;
  bench.session.Plan.NumPoints = 51;
  for (std::size_t i = 1; i <= 51; ++i) channel.Value[i] = i == 7 ? -48 : -8;
  bench.Click("DisplayPara.SelectAutoscale");
  EXPECT_EQ(bench.Value("DisplayPara.SensInput"), "5.25");
  EXPECT_EQ(bench.Value("DisplayPara.REFinput"), "-28.00");
  EXPECT_EQ(bench.Value("DisplayPara.ListRefPos"), "5");
  EXPECT_EQ(channel.RefPosition, 4);
  EXPECT_EQ(channel.Scale, 10);
  EXPECT_EQ(channel.Reference, 0);
  bench.Apply();
  EXPECT_EQ(channel.Scale, 5.25);
}

TEST(DisplayPara, AutoscaleOfAThousandthOfANanosecondInMicrosecondsEndsInPicoseconds) {
  DisplayFixture bench;
  ChannelSettings& channel = bench.session.Channel(1);
  channel.GraphType = GraphType::GroupDelay;
  channel.Units = Unit::Us;
  bench.Click("DisplayPara.CH1Select");
  for (std::size_t i = 1; i <= 101; ++i) channel.Value[i] = i == 7 ? 1e-6 : 0;
  bench.Click("DisplayPara.SelectAutoscale");
  EXPECT_EQ(bench.Value("DisplayPara.ListUnits"), "ps");
  EXPECT_EQ(channel.Units, Unit::Us);
}

TEST(DisplayPara, AutoscaleOfAFlatTraceKeepsTheFields) {
  DisplayFixture bench;
  ChannelSettings& channel = bench.session.Channel(1);
  channel.RefPosition = 0;
  channel.Value.fill(-3);
  bench.Type("DisplayPara.SensInput", "7");
  bench.Click("DisplayPara.SelectAutoscale");
  EXPECT_EQ(bench.Value("DisplayPara.SensInput"), "7");
  EXPECT_EQ(channel.RefPosition, 0);
}

TEST(DisplayPara, WhatAutoscaleFilledInWaitsForApplyThroughOtherChanges) {
  DisplayFixture bench;
  bench.session.Plan.NumPoints = 51;
  for (std::size_t i = 1; i <= 51; ++i) bench.session.Channel(1).Value[i] = i == 7 ? -48 : -8;
  bench.Click("DisplayPara.SelectAutoscale");
  bench.Click("Form1.SetMemory");
  bench.Click("MemoryPara.MAllSelect");
  bench.Click("MemoryPara.StoreData");
  EXPECT_EQ(bench.Value("DisplayPara.SensInput"), "5.25");
  EXPECT_EQ(bench.Value("DisplayPara.REFinput"), "-28.00");
}

TEST(DisplayPara, AutoscaleLeavesTheUnitOfATypeThatIsNotApplied) {
  DisplayFixture bench;
  bench.session.Plan.NumPoints = 51;
  for (std::size_t i = 1; i <= 51; ++i) bench.session.Channel(1).Value[i] = i == 7 ? -48 : -8;
  bench.Pick("DisplayPara.ListGraphType", "Phase");
  bench.Click("DisplayPara.SelectAutoscale");
  EXPECT_EQ(bench.Value("DisplayPara.ListUnits"), "deg");
  EXPECT_EQ(bench.Value("DisplayPara.SensInput"), "5.25");
}

TEST(DisplayPara, AutoscaleNamesTheUnitOfItsNumbers) {
  DisplayFixture bench;
  ChannelSettings& channel = bench.session.Channel(1);
  channel.GraphType = GraphType::GroupDelay;
  channel.Units = Unit::Ns;
  bench.Click("DisplayPara.CH1Select");
  for (std::size_t i = 1; i <= 101; ++i) channel.Value[i] = i == 7 ? 80 : 0;
  bench.Pick("DisplayPara.ListUnits", "us");  // not applied: the values are nanoseconds
  bench.Click("DisplayPara.SelectAutoscale");
  EXPECT_EQ(bench.Value("DisplayPara.ListUnits"), "ns");
  EXPECT_EQ(bench.Value("DisplayPara.SensInput"), "10.50");
}

TEST(DisplayPara, WhatWasAppliedStaysAsTypedUntilTheSessionHoldsOtherValues) {
  DisplayFixture bench;
  bench.Type("DisplayPara.SensInput", "5.0");
  bench.Type("DisplayPara.REFinput", "-28.00");
  EXPECT_TRUE(bench.Apply().empty());
  EXPECT_EQ(bench.Value("DisplayPara.SensInput"), "5.0");
  EXPECT_EQ(bench.Value("DisplayPara.REFinput"), "-28.00");
  bench.session.Channel(1).Scale = 2;  // as a loaded session does
  bench.fake.host().windows.SessionChanged();
  EXPECT_EQ(bench.Value("DisplayPara.SensInput"), "2");
  EXPECT_EQ(bench.Value("DisplayPara.REFinput"), "-28");
}

TEST(DisplayPara, AnAppliedActiveChannelFollowsTheOneChosenElsewhere) {
  DisplayFixture bench;
  bench.Click("DisplayPara.Option1");
  bench.Pick("DisplayPara.ActChSel", "3");
  EXPECT_TRUE(bench.Apply().empty());
  SelectActiveChannel(bench.session, bench.fake.host().windows, 2);  // as a click on its graph does
  EXPECT_EQ(bench.Value("DisplayPara.ActChSel"), "2");
}

TEST(DisplayPara, ClosingAppliesNothing) {
  DisplayFixture bench;
  bench.Set("S22", "Real", "U");
  bench.Click("DisplayPara.CloseDisplayPara");
  EXPECT_FALSE(bench.fake.IsShown("DisplayPara"));
  EXPECT_EQ(bench.session.Channel(1).Parameter, Parameter::S11);
  EXPECT_TRUE(bench.Window("DisplayPara").OnCloseBox());
}

}  // namespace
}  // namespace qk::test
