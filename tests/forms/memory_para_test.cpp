// SPDX-License-Identifier: MIT
#include "forms/memory_para.h"

#include <gtest/gtest.h>

#include "support/program_fixture.h"

namespace qk {
namespace {

using test::ScriptedProgram;
using test::Texts;

struct MemoryFixture : ScriptedProgram {
  MemoryFixture() {
    for (int n = 1; n <= 4; ++n) session.Channel(n).Parameter = static_cast<Parameter>(n - 1);
    session.Data.S11.Fill({0.5, 0});
    session.Data.S21.Fill({0.25, 0});
    Click("Form1.SetMemory");
  }
  const ChannelSettings& Channel(int n) { return session.Channel(n); }
  bool Press(const char* control) { return Click("MemoryPara." + std::string(control)); }
  void Store(const char* choice) {
    Press(choice);
    Press("StoreData");
  }
};

TEST(MemoryPara, OpensAlsoDuringASweepWithItsHoldOff) {
  MemoryFixture vna;
  vna.fake.Hide("MemoryPara");
  vna.PretendSweep();
  vna.session.Display.MemoryHold = MemoryHold::Max;
  vna.Click("Form1.SetMemory");
  EXPECT_TRUE(vna.fake.IsShown("MemoryPara"));
  EXPECT_EQ(vna.Window("MemoryPara").Caption(), "Memory Set Up");
  EXPECT_EQ(vna.Value("MemoryPara.Holdoff"), "on");
  EXPECT_EQ(vna.session.Display.MemoryHold, MemoryHold::Off);
  EXPECT_EQ(vna.At("MemoryPara.Holdmax").Caption, "Max ");
}

TEST(MemoryPara, StoringWithNoChannelChosenIsRefused) {
  MemoryFixture vna;
  vna.Press("StoreData");
  EXPECT_EQ(vna.TakeMessages(), (Texts{"|No Channel Selected.|exclamation|ok"}));
  EXPECT_FALSE(vna.session.Display.MemoryInUse);
}

TEST(MemoryPara, StoresTheChosenChannelAndTakesTheFunctionOfTheButtons) {
  MemoryFixture vna;
  EXPECT_EQ(vna.session.Display.MemoryFunction, MemoryFunction::None);
  vna.Store("MCH2Select");
  EXPECT_TRUE(vna.TakeMessages().empty());
  EXPECT_TRUE(vna.Channel(2).MemoryValid);
  EXPECT_EQ(vna.Channel(2).MemoryRe[101], 0.25);
  EXPECT_FALSE(vna.Channel(1).MemoryValid);
  EXPECT_TRUE(vna.session.Display.MemoryInUse);
  EXPECT_EQ(vna.session.Display.MemoryFunction, MemoryFunction::Plus);
}

TEST(MemoryPara, AllStoresEachChannelsOwnParameter) {
  MemoryFixture vna;
  vna.Store("MAllSelect");
  for (int n = 1; n <= 4; ++n)
    EXPECT_EQ(vna.Channel(n).MemoryParameter, vna.Channel(n).Parameter) << n;
}

TEST(MemoryPara, AMathButtonWorksAtOnceOnTheGraph) {
  MemoryFixture vna;
  vna.Store("MCH1Select");
  vna.Click("Form1.MemoryMath");
  vna.Press("DivideSelect");
  EXPECT_EQ(vna.session.Display.MemoryFunction, MemoryFunction::Divide);
  EXPECT_NEAR(vna.Channel(1).Value[50], 0, 1e-9);
  vna.Press("PlusSelect");
  EXPECT_NEAR(vna.Channel(1).Value[50], 0, 1e-9);  // 0.5 + 0.5
  vna.Press("SubtractSelect");
  EXPECT_NEAR(vna.Channel(1).Value[50], -220, 1e-9);
}

TEST(MemoryPara, TheHoldTakesEffectAtTheNextReplotInDataAndMemory) {
  MemoryFixture vna;
  vna.Store("MCH1Select");
  vna.Click("Form1.DisplayMem_Data");
  vna.Press("Holdmax");
  EXPECT_EQ(vna.session.Display.MemoryHold, MemoryHold::Max);
  vna.session.Data.S11.Fill({0.75, 0});
  EXPECT_EQ(vna.Channel(1).MemoryRe[50], 0.5);
  vna.program.graphs().ReplotAll();
  EXPECT_EQ(vna.Channel(1).MemoryRe[50], 0.75);
}

TEST(MemoryPara, EraseAllForgetsTheTracesAndTheHoldAndKeepsTheMode) {
  MemoryFixture vna;
  vna.Store("MAllSelect");
  vna.Click("Form1.DisplayMem_Data");
  vna.Press("Holdmin");
  vna.Press("Command2");
  EXPECT_FALSE(vna.session.Display.MemoryInUse);
  EXPECT_FALSE(vna.Channel(3).MemoryValid);
  EXPECT_EQ(vna.Value("MemoryPara.Holdoff"), "on");
  EXPECT_EQ(vna.session.Display.DisplayMode, DisplayMode::DataAndMemory);
}

TEST(MemoryPara, ClosesByItsButton) {
  MemoryFixture vna;
  vna.Press("Command1");
  EXPECT_FALSE(vna.fake.IsShown("MemoryPara"));
}

TEST(MemorySwitches, ChooseWhatIsDisplayed) {
  MemoryFixture vna;
  vna.Store("MCH1Select");
  vna.Click("Form1.DisplayMem_Data");
  EXPECT_EQ(vna.session.Display.DisplayMode, DisplayMode::DataAndMemory);
  vna.Click("Form1.MemoryMath");
  EXPECT_EQ(vna.session.Display.DisplayMode, DisplayMode::MemoryMath);
  vna.Click("Form1.DisplayData");
  EXPECT_EQ(vna.session.Display.DisplayMode, DisplayMode::Data);
  EXPECT_EQ(vna.At("Form1.DisplayData").Caption, "Data");
  EXPECT_EQ(vna.At("Form1.DisplayMem_Data").Caption, "Data and Memory");
  EXPECT_EQ(vna.At("Form1.MemoryMath").Caption, "Memory Math");
  EXPECT_EQ(vna.TakeMessages(), Texts{});
}

TEST(MemorySwitches, WithoutATraceTheyRefuseAndReturnToData) {
  struct Row {
    const char* Switch;
    const char* Message;
  };
  for (const Row& row :
       {Row{"Form1.DisplayMem_Data", "Display Memory|No Data in Memory|exclamation|ok"},
        Row{"Form1.MemoryMath", "Memory Math|No Data in Memory|exclamation|ok"}}) {
    MemoryFixture vna;
    vna.Click(row.Switch);
    EXPECT_EQ(vna.TakeMessages(), (Texts{row.Message}));
    EXPECT_EQ(vna.session.Display.DisplayMode, DisplayMode::Data);
    EXPECT_EQ(vna.Value("Form1.DisplayData"), "on");
    EXPECT_EQ(vna.Value(row.Switch), "off");
  }
}

TEST(MemorySwitches, AfterEraseAllVectorMathIsRefused) {
  MemoryFixture vna;
  vna.Store("MCH1Select");
  vna.Click("Form1.MemoryMath");
  vna.Press("Command2");
  vna.Click("Form1.DisplayData");
  vna.Click("Form1.MemoryMath");
  EXPECT_EQ(vna.TakeMessages(), (Texts{"Memory Math|No Data in Memory|exclamation|ok"}));
  EXPECT_EQ(vna.Value("Form1.DisplayData"), "on");
}

TEST(MemorySwitches, DataAndVectorMathTakeTheMarkersBackToTheData) {
  MemoryFixture vna;
  vna.Store("MCH1Select");
  Marker& marker = vna.session.Markers.Of(0, 1);
  marker.Trace = MarkerTrace::Memory;
  vna.Click("Form1.DisplayMem_Data");
  EXPECT_EQ(marker.Trace, MarkerTrace::Memory);
  vna.Click("Form1.MemoryMath");
  EXPECT_EQ(marker.Trace, MarkerTrace::Data);
  marker.Trace = MarkerTrace::Memory;
  vna.Click("Form1.DisplayData");
  EXPECT_EQ(marker.Trace, MarkerTrace::Data);
}

TEST(Memory, ATraceOfAnotherParameterIsStillCombined) {
  MemoryFixture vna;
  vna.Store("MCH2Select");  // S21: 0.25
  vna.session.Channel(2).Parameter = Parameter::S11;
  vna.session.Display.DisplaySet = DisplaySet::OneTwo;
  vna.session.Channel(2).GraphType = GraphType::Real;
  vna.session.Channel(2).Units = Unit::U;
  vna.Click("Form1.MemoryMath");
  EXPECT_NEAR(vna.Channel(2).Value[50], 0.75, 1e-12);
}

TEST(MemoryPara, HasFourMemoriesOfWhichOneIsInUse) {
  MemoryFixture vna;
  vna.Store("MCH1Select");
  vna.Press("Memory3");
  vna.session.Data.S11.Fill({0.125, 0});
  vna.Store("MCH1Select");
  EXPECT_EQ(vna.Channel(1).MemoryRe[5], 0.5);  // the first one is left alone
  const StoredTrace& third = vna.session.MoreMemories[1].OfChannels[0];
  EXPECT_TRUE(third.Valid);
  EXPECT_EQ(third.Of, Parameter::S11);
  EXPECT_EQ(third.Re[5], 0.125);
  EXPECT_EQ(vna.At("MemoryPara.ShowMemory1").Caption, "Show 1: CH1 S11");
  EXPECT_EQ(vna.At("MemoryPara.ShowMemory2").Caption, "Show 2 (empty)");
  EXPECT_EQ(vna.At("MemoryPara.ShowMemory3").Caption, "Show 3: CH1 S11");
}

TEST(MemoryPara, MathTakesTheMemoryInUse) {
  MemoryFixture vna;
  vna.Store("MCH1Select");
  vna.Press("Memory2");
  vna.session.Data.S11.Fill({0.125, 0});
  vna.Store("MCH1Select");
  vna.session.Data.S11.Fill({0.75, 0});
  vna.session.Channel(1).GraphType = GraphType::Real;
  vna.session.Channel(1).Units = Unit::U;
  vna.Press("SubtractSelect");
  vna.Click("Form1.MemoryMath");
  EXPECT_EQ(vna.Channel(1).Value[9], 0.625);
  vna.Press("Memory1");
  EXPECT_EQ(vna.Channel(1).Value[9], 0.25);
  vna.Press("Memory4");  // empty: plain data
  EXPECT_EQ(vna.Channel(1).Value[9], 0.75);
}

TEST(MemoryPara, DrawsTheMemoriesThatAreTickedEachInItsStyle) {
  MemoryFixture vna;
  const auto styles = [&vna] {
    std::vector<PenStyle> drawn;
    for (const auto& item : vna.surface.Background())
      if (item.What == test::Drawn::Kind::Polyline && item.Points.size() > 50 &&
          item.Colour == vna.session.Colour.MemoryColour)
        drawn.push_back(item.Style);
    return drawn;
  };
  for (const char* memory : {"Memory1", "Memory2", "Memory3", "Memory4"}) {
    vna.Press(memory);
    vna.Store("MCH1Select");
  }
  vna.Click("Form1.DisplayMem_Data");
  using enum PenStyle;
  EXPECT_EQ(styles(), (std::vector{Solid, Dashed, Dotted, DashDot}));
  vna.Window("MemoryPara").Tick("ShowMemory3", false);
  EXPECT_EQ(styles(), (std::vector{Solid, Dashed, DashDot}));
}

TEST(MemoryPara, HoldsInTheMemoryInUseAlone) {
  MemoryFixture vna;
  for (const char* memory : {"Memory1", "Memory2"}) {
    vna.Press(memory);
    vna.Store("MCH1Select");
  }
  vna.Click("Form1.DisplayMem_Data");
  vna.Press("Holdmax");
  vna.session.Data.S11.Fill({0.75, 0});
  vna.program.graphs().ReplotAll();
  EXPECT_EQ(vna.Channel(1).MemoryRe[5], 0.5);
  EXPECT_EQ(vna.session.MoreMemories[0].OfChannels[0].Re[5], 0.75);
}

TEST(MemoryPara, EraseAllForgetsEveryMemory) {
  MemoryFixture vna;
  for (const char* memory : {"Memory1", "Memory4"}) {
    vna.Press(memory);
    vna.Store("MAllSelect");
  }
  vna.Press("Command2");
  EXPECT_FALSE(vna.Channel(1).MemoryValid);
  EXPECT_FALSE(vna.session.MoreMemories[2].OfChannels[3].Valid);
  EXPECT_FALSE(vna.session.Display.MemoryInUse);
}

}  // namespace
}  // namespace qk
