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
  MemoryFixture bench;
  bench.fake.Hide("MemoryPara");
  bench.PretendSweep();
  bench.session.Display.MemoryHold = MemoryHold::Max;
  bench.Click("Form1.SetMemory");
  EXPECT_TRUE(bench.fake.IsShown("MemoryPara"));
  EXPECT_EQ(bench.Window("MemoryPara").Caption(), "Memory Set Up");
  EXPECT_EQ(bench.Value("MemoryPara.Holdoff"), "on");
  EXPECT_EQ(bench.session.Display.MemoryHold, MemoryHold::Off);
  EXPECT_EQ(bench.At("MemoryPara.Holdmax").Caption, "Max ");
}

TEST(MemoryPara, StoringWithNoChannelChosenIsRefused) {
  MemoryFixture bench;
  bench.Press("StoreData");
  EXPECT_EQ(bench.TakeMessages(), (Texts{"|No Channel Selected.|exclamation|ok"}));
  EXPECT_FALSE(bench.session.Display.MemoryInUse);
}

TEST(MemoryPara, StoresTheChosenChannelAndTakesTheFunctionOfTheButtons) {
  MemoryFixture bench;
  EXPECT_EQ(bench.session.Display.MemoryFunction, MemoryFunction::None);
  bench.Store("MCH2Select");
  EXPECT_TRUE(bench.TakeMessages().empty());
  EXPECT_TRUE(bench.Channel(2).MemoryValid);
  EXPECT_EQ(bench.Channel(2).MemoryRe[101], 0.25);
  EXPECT_FALSE(bench.Channel(1).MemoryValid);
  EXPECT_TRUE(bench.session.Display.MemoryInUse);
  EXPECT_EQ(bench.session.Display.MemoryFunction, MemoryFunction::Plus);
}

TEST(MemoryPara, AllStoresEachChannelsOwnParameter) {
  MemoryFixture bench;
  bench.Store("MAllSelect");
  for (int n = 1; n <= 4; ++n)
    EXPECT_EQ(bench.Channel(n).MemoryParameter, bench.Channel(n).Parameter) << n;
}

TEST(MemoryPara, AMathButtonWorksAtOnceOnTheGraph) {
  MemoryFixture bench;
  bench.Store("MCH1Select");
  bench.Click("Form1.MemoryMath");
  bench.Press("DivideSelect");
  EXPECT_EQ(bench.session.Display.MemoryFunction, MemoryFunction::Divide);
  EXPECT_NEAR(bench.Channel(1).Value[50], 0, 1e-9);
  bench.Press("PlusSelect");
  EXPECT_NEAR(bench.Channel(1).Value[50], 0, 1e-9);  // 0.5 + 0.5
  bench.Press("SubtractSelect");
  EXPECT_NEAR(bench.Channel(1).Value[50], -220, 1e-9);
}

TEST(MemoryPara, TheHoldTakesEffectAtTheNextReplotInDataAndMemory) {
  MemoryFixture bench;
  bench.Store("MCH1Select");
  bench.Click("Form1.DisplayMem_Data");
  bench.Press("Holdmax");
  EXPECT_EQ(bench.session.Display.MemoryHold, MemoryHold::Max);
  bench.session.Data.S11.Fill({0.75, 0});
  EXPECT_EQ(bench.Channel(1).MemoryRe[50], 0.5);
  bench.program.graphs().ReplotAll();
  EXPECT_EQ(bench.Channel(1).MemoryRe[50], 0.75);
}

TEST(MemoryPara, EraseAllForgetsTheTracesAndTheHoldAndKeepsTheMode) {
  MemoryFixture bench;
  bench.Store("MAllSelect");
  bench.Click("Form1.DisplayMem_Data");
  bench.Press("Holdmin");
  bench.Press("Command2");
  EXPECT_FALSE(bench.session.Display.MemoryInUse);
  EXPECT_FALSE(bench.Channel(3).MemoryValid);
  EXPECT_EQ(bench.Value("MemoryPara.Holdoff"), "on");
  EXPECT_EQ(bench.session.Display.DisplayMode, DisplayMode::DataAndMemory);
}

TEST(MemoryPara, ClosesByItsButton) {
  MemoryFixture bench;
  bench.Press("Command1");
  EXPECT_FALSE(bench.fake.IsShown("MemoryPara"));
}

TEST(MemorySwitches, ChooseWhatIsDisplayed) {
  MemoryFixture bench;
  bench.Store("MCH1Select");
  bench.Click("Form1.DisplayMem_Data");
  EXPECT_EQ(bench.session.Display.DisplayMode, DisplayMode::DataAndMemory);
  bench.Click("Form1.MemoryMath");
  EXPECT_EQ(bench.session.Display.DisplayMode, DisplayMode::MemoryMath);
  bench.Click("Form1.DisplayData");
  EXPECT_EQ(bench.session.Display.DisplayMode, DisplayMode::Data);
  EXPECT_EQ(bench.At("Form1.DisplayData").Caption, "Data");
  EXPECT_EQ(bench.At("Form1.DisplayMem_Data").Caption, "Data and Memory");
  EXPECT_EQ(bench.At("Form1.MemoryMath").Caption, "Memory Math");
}

TEST(MemorySwitches, WithoutATraceTheyRefuseAndReturnToData) {
  struct Row {
    const char* Switch;
    const char* Message;
  };
  for (const Row& row :
       {Row{"Form1.DisplayMem_Data", "Display Memory|No Data in Memory|exclamation|ok"},
        Row{"Form1.MemoryMath", "Memory Math|No Data in Memory|exclamation|ok"}}) {
    MemoryFixture bench;
    bench.Click(row.Switch);
    EXPECT_EQ(bench.TakeMessages(), (Texts{row.Message}));
    EXPECT_EQ(bench.session.Display.DisplayMode, DisplayMode::Data);
    EXPECT_EQ(bench.Value("Form1.DisplayData"), "on");
    EXPECT_EQ(bench.Value(row.Switch), "off");
  }
}

TEST(MemorySwitches, AfterEraseAllVectorMathIsRefused) {
  MemoryFixture bench;
  bench.Store("MCH1Select");
  bench.Click("Form1.MemoryMath");
  bench.Press("Command2");
  bench.Click("Form1.DisplayData");
  bench.Click("Form1.MemoryMath");
  EXPECT_EQ(bench.TakeMessages(), (Texts{"Memory Math|No Data in Memory|exclamation|ok"}));
  EXPECT_EQ(bench.Value("Form1.DisplayData"), "on");
}

TEST(MemorySwitches, DataAndVectorMathTakeTheMarkersBackToTheData) {
  MemoryFixture bench;
  bench.Store("MCH1Select");
  Marker& marker = bench.session.Markers.Of(0, 1);
  marker.Trace = MarkerTrace::Memory;
  bench.Click("Form1.DisplayMem_Data");
  EXPECT_EQ(marker.Trace, MarkerTrace::Memory);
  bench.Click("Form1.MemoryMath");
  EXPECT_EQ(marker.Trace, MarkerTrace::Data);
  marker.Trace = MarkerTrace::Memory;
  bench.Click("Form1.DisplayData");
  EXPECT_EQ(marker.Trace, MarkerTrace::Data);
}

TEST(Memory, ATraceOfAnotherParameterIsStillCombined) {
  MemoryFixture bench;
  bench.Store("MCH2Select");  // S21: 0.25
  bench.session.Channel(2).Parameter = Parameter::S11;
  bench.session.Display.DisplaySet = DisplaySet::OneTwo;
  bench.session.Channel(2).GraphType = GraphType::Real;
  bench.session.Channel(2).Units = Unit::U;
  bench.Click("Form1.MemoryMath");
  EXPECT_NEAR(bench.Channel(2).Value[50], 0.75, 1e-12);
}

}  // namespace
}  // namespace qk
