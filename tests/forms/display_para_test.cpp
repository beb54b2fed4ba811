// SPDX-License-Identifier: MIT
#include "forms/display_para.h"

#include <gtest/gtest.h>

#include <cmath>

#include "control/verbs.h"
#include "forms/display_fixture.h"

namespace qk::test {
namespace {

TEST(DisplayPara, OffersItsListsInOrder) {
  DisplayFixture vna;
  EXPECT_EQ(vna.Window("DisplayPara").Caption(), "Display Set Up");
  EXPECT_EQ(vna.At("DisplayPara.ListParameters").Entries, (Texts{"S11", "S21", "S12", "S22"}));
  EXPECT_EQ(vna.At("DisplayPara.ListGraphType").Entries,
            (Texts{"LogMag", "Phase", "Smith", "SWR", "Group Delay", "LinMag", "Real", "Imag", "TD",
                   "|Z|", "R", "X", "L", "C", "Q", "Unwrapped Phase", "TD Z"}));
  EXPECT_EQ(vna.At("DisplayPara.ListUnits").Entries,
            (Texts{"ps", "ns", "us", "U", "mU", "dB", "deg", "mohm", "ohm", "kohm", "Mohm", "nH",
                   "uH", "mH", "pF", "nF", "uF"}));
  EXPECT_EQ(vna.At("DisplayPara.ListElement").Entries, (Texts{"Reflection", "Series", "Shunt"}));
  EXPECT_EQ(vna.At("DisplayPara.ListGrid").Entries, (Texts{"Impedance", "Admittance", "Both"}));
  EXPECT_EQ(vna.At("DisplayPara.ListRefPos").Entries,
            (Texts{"1", "2", "3", "4", "5", "6", "7", "8", "9"}));
  EXPECT_EQ(vna.At("DisplayPara.ActChSel").Entries, (Texts{"1", "2", "3", "4"}));
}

TEST(DisplayPara, OpensWithChannel1AndCH1Alone) {
  ScriptedProgram vna;
  vna.session.Display.DisplaySet = DisplaySet::All;
  vna.session.Channel(1).Scale = 0.005;
  vna.session.Channel(1).Reference = -12.25;
  vna.session.Channel(1).RefPosition = 7;
  vna.OpenDisplay();
  EXPECT_EQ(vna.Value("DisplayPara.Option2"), "on");
  EXPECT_EQ(vna.Value("DisplayPara.CH1Select"), "on");
  EXPECT_EQ(vna.Value("DisplayPara.ListParameters"), "S11");
  EXPECT_EQ(vna.Value("DisplayPara.ListGraphType"), "LogMag");
  EXPECT_EQ(vna.Value("DisplayPara.ListUnits"), "dB");
  EXPECT_EQ(vna.Value("DisplayPara.REFinput"), "-12.25");
  EXPECT_EQ(vna.Value("DisplayPara.ListRefPos"), "8");
  EXPECT_EQ(vna.Value("DisplayPara.SensInput"), "0.005");
  EXPECT_EQ(vna.Value("DisplayPara.ActChSel"), "1");
}

TEST(DisplayPara, WhatIsTypedForAChannelIsKeptWhileAnotherIsLookedAt) {
  DisplayFixture vna;
  vna.Type("DisplayPara.SensInput", "3");
  vna.Pick("DisplayPara.ListRefPos", "2");
  vna.Window("DisplayPara").Tick("CH2Select", true);
  EXPECT_EQ(vna.Value("DisplayPara.SensInput"), "10");
  EXPECT_EQ(vna.Value("DisplayPara.Displayed"),
            "Displayed now: CH1; active CH1; not applied yet: CH1");
  vna.Type("DisplayPara.REFinput", "-7");
  vna.Window("DisplayPara").Tick("CH1Select", true);
  EXPECT_EQ(vna.Value("DisplayPara.SensInput"), "3");
  EXPECT_EQ(vna.Value("DisplayPara.ListRefPos"), "2");
  EXPECT_EQ(vna.Value("DisplayPara.REFinput"), "0");
  EXPECT_EQ(vna.Value("DisplayPara.Displayed"),
            "Displayed now: CH1; active CH1; Apply will change CH1; not applied yet: CH2");
  SelectActiveChannel(vna.session, vna.fake.host().windows, 1);
  EXPECT_EQ(vna.Value("DisplayPara.SensInput"), "3") << "typed, so it is the user's";
  EXPECT_EQ(vna.Apply(), Texts{});
  EXPECT_EQ(vna.session.Channel(1).Scale, 3);
  EXPECT_EQ(vna.session.Channel(2).Reference, 0);
  vna.Window("DisplayPara").Tick("CH2Select", true);
  EXPECT_EQ(vna.Value("DisplayPara.REFinput"), "-7");
  vna.Click("DisplayPara.CloseDisplayPara");
  vna.OpenDisplay();
  vna.Window("DisplayPara").Tick("CH2Select", true);
  EXPECT_EQ(vna.Value("DisplayPara.REFinput"), "0") << "closed without Apply";
}

// So that changing the scale of one graph does not remove three others.
TEST(DisplayPara, ReportsInALineWhatIsDisplayedNowAsTheChoiceOpensOnCH1Alone) {
  ScriptedProgram vna;
  vna.session.Display.DisplaySet = DisplaySet::All;
  vna.session.Display.ActiveChannel = 3;
  vna.OpenDisplay();
  EXPECT_EQ(vna.Value("DisplayPara.Displayed"),
            "Displayed now: CH1, CH2, CH3, CH4; active CH3; "
            "Apply will display CH1 only");
  vna.Pick("DisplayPara.ActChSel", "1");
  EXPECT_EQ(vna.Value("DisplayPara.Displayed"),
            "Displayed now: CH1, CH2, CH3, CH4; active CH3; "
            "Apply will display CH1 only, make CH1 active");
  vna.Click("DisplayPara.ApplyDisplay");
  EXPECT_EQ(vna.Value("DisplayPara.Displayed"), "Displayed now: CH1; active CH1");
  vna.Click("DisplayPara.Option4");
  EXPECT_EQ(vna.Value("DisplayPara.Displayed"),
            "Displayed now: CH1; active CH1; Apply will display CH3, CH4");
  vna.Pick("DisplayPara.ActChSel", "4");
  vna.Click("DisplayPara.ApplyDisplay");
  EXPECT_EQ(vna.Value("DisplayPara.Displayed"), "Displayed now: CH3, CH4; active CH4");
}

TEST(DisplayPara, SaysInItsLineThatApplyWillChangeTheChannel) {
  DisplayFixture vna;
  const std::string now = "Displayed now: CH1; active CH1";
  EXPECT_EQ(vna.Value("DisplayPara.Displayed"), now);
  vna.Type("DisplayPara.SensInput", "3");
  EXPECT_EQ(vna.Value("DisplayPara.Displayed"), now + "; Apply will change CH1");
  vna.Type("DisplayPara.SensInput", "10");
  EXPECT_EQ(vna.Value("DisplayPara.Displayed"), now) << "as it was";
  vna.Pick("DisplayPara.ListRefPos", "2");
  EXPECT_EQ(vna.Value("DisplayPara.Displayed"), now + "; Apply will change CH1");
  EXPECT_EQ(vna.Apply(), Texts{});
  EXPECT_EQ(vna.Value("DisplayPara.Displayed"), now);
  vna.Pick("DisplayPara.ListGraphType", "Phase");
  EXPECT_EQ(vna.Value("DisplayPara.Displayed"), now + "; Apply will change CH1");
  vna.Window("DisplayPara").Tick("CH2Select", true);
  EXPECT_EQ(vna.Value("DisplayPara.Displayed"), now + "; not applied yet: CH1");
}

TEST(DisplayPara, ChoosingAChannelShowsWhatItHolds) {
  DisplayFixture vna;
  ChannelSettings& channel = vna.session.Channel(3);
  channel.Parameter = Parameter::S21;
  channel.GraphType = GraphType::GroupDelay;
  channel.Units = Unit::Ps;
  channel.Reference = 1.5;
  channel.RefPosition = 0;
  channel.Scale = 2;
  vna.Click("DisplayPara.CH3Select");
  EXPECT_EQ(vna.Value("DisplayPara.ListParameters"), "S21");
  EXPECT_EQ(vna.Value("DisplayPara.ListGraphType"), "Group Delay");
  EXPECT_EQ(vna.Value("DisplayPara.ListUnits"), "ps");
  EXPECT_EQ(vna.Value("DisplayPara.REFinput"), "1.5");
  EXPECT_EQ(vna.Value("DisplayPara.ListRefPos"), "1");
  EXPECT_EQ(vna.Value("DisplayPara.SensInput"), "2");
}

TEST(DisplayPara, AGraphTypeBringsItsNaturalUnit) {
  DisplayFixture vna;
  const auto unitOf = [&](const char* type) {
    vna.Pick("DisplayPara.ListGraphType", type);
    return vna.Value("DisplayPara.ListUnits");
  };
  EXPECT_EQ(unitOf("Phase"), "deg");
  EXPECT_EQ(unitOf("Smith"), "deg");  // stays as it is
  EXPECT_EQ(unitOf("LogMag"), "dB");
  EXPECT_EQ(unitOf("Group Delay"), "ns");
  for (const char* type : {"SWR", "LinMag", "Real", "Imag", "TD"}) {
    vna.Pick("DisplayPara.ListUnits", "dB");
    EXPECT_EQ(unitOf(type), "U") << type;
  }
}

TEST(DisplayPara, ApplyTakesEveryFieldIntoTheChosenChannel) {
  DisplayFixture vna;
  vna.session.Planes.PlaneS21 = 0.25f;
  vna.session.Planes.DelayS21 = 8e-10f;
  vna.Click("DisplayPara.CH2Select");
  vna.Set("S21", "Phase", "deg");
  vna.Type("DisplayPara.REFinput", "-45.5");
  vna.Pick("DisplayPara.ListRefPos", "2");
  vna.Type("DisplayPara.SensInput", "22.5");
  vna.Click("DisplayPara.Option3");
  vna.Pick("DisplayPara.ActChSel", "2");
  const int presented = vna.surface.Presented;
  EXPECT_TRUE(vna.Apply().empty());
  const ChannelSettings& channel = vna.session.Channel(2);
  EXPECT_EQ(channel.Parameter, Parameter::S21);
  EXPECT_EQ(channel.GraphType, GraphType::Phase);
  EXPECT_EQ(channel.Units, Unit::Deg);
  EXPECT_EQ(channel.Reference, -45.5);
  EXPECT_EQ(channel.RefPosition, 1);
  EXPECT_EQ(channel.Scale, 22.5);
  EXPECT_EQ(vna.session.Display.DisplaySet, DisplaySet::OneTwo);
  EXPECT_EQ(vna.session.Display.ActiveChannel, 2);
  EXPECT_FALSE(vna.session.Channel(1).Active);
  EXPECT_TRUE(channel.Active);
  EXPECT_EQ(vna.session.Channel(1).GraphType, GraphType::LogMag);
  // The plane fields follow to the active channel's parameter.
  EXPECT_EQ(vna.session.Planes.ActivePlane, 0.25f);
  EXPECT_EQ(vna.session.Planes.ActiveDelay, 8e-10f);
  EXPECT_EQ(vna.Value("EnhancePara.TimeInput"), "250.000");
  EXPECT_EQ(vna.At("EnhancePara.ListRefPlaneInput").Index, 1);
  EXPECT_GT(vna.surface.Presented, presented);
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
    DisplayFixture vna;
    vna.Click(std::string("DisplayPara.") + row.Option);
    vna.Pick("DisplayPara.ActChSel", row.Active);
    EXPECT_TRUE(vna.Apply().empty());
    EXPECT_EQ(NameOf(vna.session.Display.DisplaySet), row.Set);
    EXPECT_EQ(vna.session.Display.PlotRefreshPoints, row.Refresh);
  }
}

TEST(DisplayPara, SmithOnATransmissionParameterIsRefusedAndChangesNothing) {
  DisplayFixture vna;
  vna.Set("S21", "Smith", "dB");
  EXPECT_EQ(vna.Apply(), vna.Refused("Smith only available with Reflection Parameter"));
  EXPECT_EQ(vna.session.Channel(1).Parameter, Parameter::S11);
  EXPECT_EQ(vna.session.Channel(1).GraphType, GraphType::LogMag);
}

TEST(DisplayPara, SwrOnATransmissionParameterIsRefused) {
  DisplayFixture vna;
  vna.Set("S12", "SWR", "U");
  EXPECT_EQ(vna.Apply(), vna.Refused("SWR only available with Reflection Parameter"));
}

TEST(DisplayPara, TheTimeDomainIsOfOneChannelEvenWhenTheOtherIsNotDisplayed) {
  DisplayFixture vna;
  vna.session.Plan.NumPoints = 1024;
  vna.session.Channel(3).GraphType = GraphType::Td;
  vna.Click("DisplayPara.CH2Select");
  vna.Set("S11", "TD", "U");
  EXPECT_EQ(vna.Apply(), vna.Refused("TD only allowed on one channel"));
  EXPECT_EQ(vna.session.Channel(2).GraphType, GraphType::LogMag);
}

TEST(DisplayPara, TheTimeDomainNeeds1024Points) {
  DisplayFixture vna;
  vna.session.Plan.NumPoints = 801;
  vna.Set("S11", "TD", "U");
  EXPECT_EQ(vna.Apply(), vna.Refused("Warning: TD Only with 1024 Sweep points"));
  vna.session.Plan.NumPoints = 1024;
  EXPECT_TRUE(vna.Apply().empty());
  EXPECT_EQ(vna.session.Channel(1).GraphType, GraphType::Td);
  EXPECT_TRUE(vna.Apply().empty());  // the channel's own "TD" is no other
}

class BadScale : public ::testing::TestWithParam<const char*> {};
TEST_P(BadScale, IsRefused) {
  DisplayFixture vna;
  vna.Type("DisplayPara.SensInput", GetParam());
  EXPECT_EQ(vna.Apply(), vna.Refused("Invalid Y-axis Scale"));
  EXPECT_EQ(vna.session.Channel(1).Scale, 10);
}
// The last two are no 32-bit numbers, in which the graphs hold a scale.
INSTANTIATE_TEST_SUITE_P(Every, BadScale,
                         ::testing::Values("0", "-1", "", "abc", "1e300", "1e-300"));

TEST(DisplayPara, ASmithChartNeedsNoScale) {
  DisplayFixture vna;
  vna.Set("S22", "Smith", "dB");
  vna.Type("DisplayPara.SensInput", "0");
  EXPECT_TRUE(vna.Apply().empty());
  EXPECT_EQ(vna.session.Channel(1).GraphType, GraphType::Smith);
}

TEST(DisplayPara, UnitsThatDoNotSuitAreRefused) {
  struct {
    const char* Type;
    const char* Units;
  } rows[] = {{"LogMag", "deg"}, {"Phase", "dB"},   {"Group Delay", "U"}, {"Real", "dB"},
              {"Imag", "ns"},    {"LinMag", "deg"}, {"SWR", "dB"},        {"TD", "ns"}};
  for (const auto& row : rows) {
    DisplayFixture vna;
    vna.session.Plan.NumPoints = 1024;
    vna.Set("S11", row.Type, row.Units);
    EXPECT_EQ(vna.Apply(), vna.Refused("Invalid Units Selection")) << row.Type;
  }
}

TEST(DisplayPara, SmithGreysUnitsScaleAndReferenceAndTakesThemAsTheyStand) {
  DisplayFixture vna;
  vna.Pick("DisplayPara.ListUnits", "ns");
  vna.Pick("DisplayPara.ListGraphType", "Smith");
  for (const char* field : {"ListUnits", "SensInput", "REFinput", "ListRefPos"})
    EXPECT_FALSE(vna.At(std::string("DisplayPara.") + field).Enabled) << field;
  EXPECT_TRUE(vna.Apply().empty());
  EXPECT_EQ(vna.session.Channel(1).Units, Unit::Ns);
  vna.Pick("DisplayPara.ListGraphType", "LogMag");
  EXPECT_TRUE(vna.At("DisplayPara.SensInput").Enabled);
  EXPECT_EQ(vna.At("DisplayPara.SensInput").Unit, "dB");
}

TEST(DisplayPara, UnitsThatSuitAreTaken) {
  struct {
    const char* Type;
    const char* Units;
  } rows[] = {{"Group Delay", "ps"}, {"Group Delay", "us"}, {"Real", "mU"},
              {"Imag", "U"},         {"LinMag", "mU"},      {"SWR", "mU"}};
  for (const auto& row : rows) {
    DisplayFixture vna;
    vna.Set("S11", row.Type, row.Units);
    EXPECT_TRUE(vna.Apply().empty()) << row.Type;
    EXPECT_EQ(vna.session.Channel(1).Units, *Named<Unit>(row.Units));
  }
}

TEST(DisplayPara, TheActiveChannelMustBeDisplayed) {
  struct {
    const char* Option;
    const char* Active;
  } rows[] = {{"Option2", "2"}, {"Option3", "3"}, {"Option4", "2"}};
  for (const auto& row : rows) {
    DisplayFixture vna;
    vna.Click(std::string("DisplayPara.") + row.Option);
    vna.Pick("DisplayPara.ActChSel", row.Active);
    EXPECT_EQ(vna.Apply(), vna.Refused("Active channel must be Displayed"));
    EXPECT_EQ(vna.session.Display.ActiveChannel, 1);
  }
}

TEST(DisplayPara, AParameterWithoutItsStoredTraceIsWarnedOfAndTaken) {
  DisplayFixture vna;
  vna.session.Display.DisplayMode = DisplayMode::DataAndMemory;
  vna.session.Channel(1).MemoryValid = true;
  vna.session.Channel(1).MemoryParameter = Parameter::S11;
  vna.Set("S21", "LogMag", "dB");
  EXPECT_EQ(vna.Apply(),
            vna.Refused("Warning: Parameter changed, memory trace cannot be displayed."));
  EXPECT_EQ(vna.session.Channel(1).Parameter, Parameter::S21);
}

TEST(DisplayPara, ValidationsRunInTheirOrder) {
  DisplayFixture vna;
  vna.session.Display.DisplayMode = DisplayMode::DataAndMemory;
  vna.session.Channel(1).MemoryValid = true;
  vna.session.Channel(1).MemoryParameter = Parameter::S11;
  vna.Type("DisplayPara.SensInput", "0");
  vna.Pick("DisplayPara.ActChSel", "3");
  vna.session.Channel(2).GraphType = GraphType::Td;
  vna.Set("S21", "Smith", "dB");
  EXPECT_EQ(vna.Apply(), vna.Refused("Smith only available with Reflection Parameter"));
  vna.Set("S21", "SWR", "dB");
  EXPECT_EQ(vna.Apply(),
            (Texts{"|Warning: Parameter changed, memory trace cannot be displayed.|none|ok",
                   "|SWR only available with Reflection Parameter|none|ok"}));
  vna.Set("S11", "TD", "dB");
  EXPECT_EQ(vna.Apply(), vna.Refused("TD only allowed on one channel"));
  vna.session.Channel(2).GraphType = GraphType::LogMag;
  EXPECT_EQ(vna.Apply(), vna.Refused("Warning: TD Only with 1024 Sweep points"));
  vna.session.Plan.NumPoints = 1024;
  EXPECT_EQ(vna.Apply(), vna.Refused("Invalid Y-axis Scale"));
  vna.Type("DisplayPara.SensInput", "1");
  EXPECT_EQ(vna.Apply(), vna.Refused("Invalid Units Selection"));
  vna.Pick("DisplayPara.ListUnits", "U");
  EXPECT_EQ(vna.Apply(), vna.Refused("Active channel must be Displayed"));
}

TEST(DisplayPara, AReferenceThatIsNoNumberIsZeroAndACommaEndsIt) {
  DisplayFixture vna;
  vna.session.Channel(1).Reference = 3;
  vna.Type("DisplayPara.REFinput", "");
  EXPECT_TRUE(vna.Apply().empty());
  EXPECT_EQ(vna.session.Channel(1).Reference, 0);
  vna.Type("DisplayPara.REFinput", "-3,5");
  vna.Apply();
  EXPECT_EQ(vna.session.Channel(1).Reference, -3);
}

TEST(DisplayPara, AnEndlessReferenceDrawsAllTheSame) {
  DisplayFixture vna;
  vna.Type("DisplayPara.REFinput", "1e308");
  vna.Type("DisplayPara.SensInput", "1e-30");
  EXPECT_TRUE(vna.Apply().empty());
  EXPECT_TRUE(std::isfinite(vna.session.Channel(1).Reference));
}

TEST(DisplayPara, AppliesDuringASweep) {
  DisplayFixture vna;
  vna.PretendSweep();
  vna.Set("S22", "Real", "U");
  EXPECT_TRUE(vna.Apply().empty());
  EXPECT_EQ(vna.session.Channel(1).GraphType, GraphType::Real);
  EXPECT_TRUE(vna.port.Writes.empty());
}

TEST(DisplayPara, WhatWasAppliedStaysAsTypedUntilTheSessionHoldsOtherValues) {
  DisplayFixture vna;
  vna.Type("DisplayPara.SensInput", "5.0");
  vna.Type("DisplayPara.REFinput", "-28.00");
  EXPECT_TRUE(vna.Apply().empty());
  EXPECT_EQ(vna.Value("DisplayPara.SensInput"), "5.0");
  EXPECT_EQ(vna.Value("DisplayPara.REFinput"), "-28.00");
  vna.session.Channel(1).Scale = 2;  // as a loaded session does
  vna.fake.host().windows.SessionChanged();
  EXPECT_EQ(vna.Value("DisplayPara.SensInput"), "2");
  EXPECT_EQ(vna.Value("DisplayPara.REFinput"), "-28");
}

TEST(DisplayPara, AnAppliedActiveChannelFollowsTheOneChosenElsewhere) {
  DisplayFixture vna;
  vna.Click("DisplayPara.Option1");
  vna.Pick("DisplayPara.ActChSel", "3");
  EXPECT_TRUE(vna.Apply().empty());
  SelectActiveChannel(vna.session, vna.fake.host().windows, 2);  // as a click on its graph does
  EXPECT_EQ(vna.Value("DisplayPara.ActChSel"), "2");
}

TEST(DisplayPara, ClosingAppliesNothing) {
  DisplayFixture vna;
  vna.Set("S22", "Real", "U");
  vna.Click("DisplayPara.CloseDisplayPara");
  EXPECT_FALSE(vna.fake.IsShown("DisplayPara"));
  EXPECT_EQ(vna.session.Channel(1).Parameter, Parameter::S11);
  EXPECT_TRUE(vna.Window("DisplayPara").OnCloseBox());
}

// ---- Impedances --------------------------------------------------------------------------------

TEST(DisplayPara, AnImpedanceTypeBringsItsUnitAndTakesTypedPrefixes) {
  DisplayFixture vna;
  vna.Pick("DisplayPara.ListGraphType", "L");
  EXPECT_EQ(vna.Value("DisplayPara.ListUnits"), "nH");
  vna.Type("DisplayPara.SensInput", "1 uH");
  vna.Type("DisplayPara.REFinput", "4.7u");
  EXPECT_EQ(vna.Apply(), Texts());
  EXPECT_EQ(vna.session.Channel(1).GraphType, GraphType::Inductance);
  EXPECT_NEAR(vna.session.Channel(1).Scale, 1000, 1e-9);
  EXPECT_NEAR(vna.session.Channel(1).Reference, 4700, 1e-9);
  EXPECT_NEAR(std::stod(vna.Value("DisplayPara.SensInput")), 1000, 1e-9);
}

TEST(DisplayPara, QualityFactorAndUnwrappedPhaseTakeNoPrefix) {
  DisplayFixture vna;
  for (const auto& [type, unit] : {std::pair("Q", "U"), {"Unwrapped Phase", "deg"}}) {
    vna.Pick("DisplayPara.ListGraphType", type);
    for (const char* wrong : {"200 mU", "5 k", "10 ohm", "abc", "nan"}) {
      vna.Type("DisplayPara.SensInput", wrong);
      vna.Type("DisplayPara.REFinput", "0");
      EXPECT_EQ(vna.Apply(), vna.Refused("Invalid Y-axis Scale")) << type << " " << wrong;
      vna.Type("DisplayPara.SensInput", "5");
      vna.Type("DisplayPara.REFinput", wrong);
      EXPECT_EQ(vna.Apply(), vna.Refused("Invalid Reference")) << type << " " << wrong;
    }
    vna.Type("DisplayPara.SensInput", std::string("20 ") + unit);
    vna.Type("DisplayPara.REFinput", " -3.5 ");
    EXPECT_EQ(vna.Apply(), Texts()) << type;
    EXPECT_EQ(vna.session.Channel(1).Scale, 20);
    EXPECT_EQ(vna.session.Channel(1).Reference, -3.5);
  }
}

TEST(DisplayPara, ATypedUnitOfAnotherKindIsRefused) {
  DisplayFixture vna;
  vna.Pick("DisplayPara.ListGraphType", "C");
  vna.Type("DisplayPara.SensInput", "1 nH");
  EXPECT_EQ(vna.Apply(), vna.Refused("Invalid Y-axis Scale"));
  vna.Type("DisplayPara.SensInput", "1 pF");
  vna.Type("DisplayPara.REFinput", "10 ohm");
  EXPECT_EQ(vna.Apply(), vna.Refused("Invalid Reference"));
  vna.Set("S11", "C", "kohm");
  vna.Type("DisplayPara.REFinput", "10 ohm");
  vna.Type("DisplayPara.SensInput", "1");
  EXPECT_EQ(vna.Apply(), vna.Refused("Invalid Units Selection"));
  EXPECT_EQ(vna.session.Channel(1).GraphType, GraphType::LogMag);
}

TEST(DisplayPara, AnElementIsChosenForATransmissionAlone) {
  DisplayFixture vna;
  EXPECT_FALSE(vna.At("DisplayPara.ListElement").Enabled);
  vna.Pick("DisplayPara.ListGraphType", "|Z|");
  EXPECT_FALSE(vna.At("DisplayPara.ListElement").Enabled);
  EXPECT_EQ(vna.Value("DisplayPara.ListElement"), "Reflection");
  vna.Pick("DisplayPara.ListParameters", "S21");
  EXPECT_TRUE(vna.At("DisplayPara.ListElement").Enabled);
  EXPECT_EQ(vna.Value("DisplayPara.ListElement"), "Series");
  vna.Pick("DisplayPara.ListElement", "Reflection");
  EXPECT_EQ(vna.Apply(), vna.Refused("Measured As must be Series or Shunt with S21 and S12"));
  vna.Pick("DisplayPara.ListElement", "Shunt");
  EXPECT_EQ(vna.Apply(), Texts());
  EXPECT_EQ(vna.session.Channel(1).Element, Element::Shunt);
  vna.Pick("DisplayPara.ListParameters", "S11");
  EXPECT_EQ(vna.Value("DisplayPara.ListElement"), "Reflection");
}

TEST(DisplayPara, WhatIsNotUsedIsNoSetting) {
  DisplayFixture vna;
  vna.Pick("DisplayPara.ListParameters", "S21");  // the element follows to Series
  EXPECT_EQ(vna.Apply(), Texts());
  EXPECT_EQ(vna.session.Channel(1).Element, Element::Reflection);
}

TEST(DisplayPara, TheGridIsOfASmithChart) {
  DisplayFixture vna;
  EXPECT_FALSE(vna.At("DisplayPara.ListGrid").Enabled);
  vna.Pick("DisplayPara.ListGraphType", "Smith");
  vna.Pick("DisplayPara.ListGrid", "Both");
  EXPECT_EQ(vna.Apply(), Texts());
  EXPECT_EQ(vna.session.Channel(1).Grid, ChartGrid::Both);
}

TEST(DisplayPara, AnImpedanceOverTimeCountsAsTheOneTimeTrace) {
  DisplayFixture vna;
  vna.session.Plan.NumPoints = 1024;
  vna.session.Channel(2).GraphType = GraphType::Td;
  vna.Pick("DisplayPara.ListGraphType", "TD Z");
  EXPECT_EQ(vna.Value("DisplayPara.ListUnits"), "ohm");
  EXPECT_EQ(vna.Apply(), vna.Refused("TD only allowed on one channel"));
  vna.session.Channel(2).GraphType = GraphType::LogMag;
  vna.Pick("DisplayPara.ListParameters", "S21");
  EXPECT_EQ(vna.Apply(), vna.Refused("TD Z only available with Reflection Parameter"));
  vna.Pick("DisplayPara.ListParameters", "S22");
  EXPECT_EQ(vna.Apply(), Texts());
  vna.session.Plan.NumPoints = 801;
  EXPECT_EQ(vna.Apply(), vna.Refused("Warning: TD Only with 1024 Sweep points"));
}

}  // namespace
}  // namespace qk::test
