// SPDX-License-Identifier: MIT
// "Load Touchstone Data" as a user works it, and a file dropped onto the main window.
#include <gtest/gtest.h>

#include <fstream>

#include "support/program_fixture.h"

namespace qk::test {
namespace {

struct LoadMeasWindow : testing::Test, ScriptedProgram {
  std::string File(const std::string& text) {
    std::ofstream(folder.File("a.s2p"), std::ios::binary) << text;
    return folder.File("a.s2p");
  }
  static constexpr const char* kGood =
      "# MHZ S RI R 50\n0 0.5 0.25 0 0 0 0 0 0\n3000 0.5 0.25 0 0 0 0 0 0\n";
  static constexpr const char* kSwitchOff =
      "Load Data|Switch off System Zo Conversion (Enhancement) before loading data."
      "|information|ok";
};

TEST_F(LoadMeasWindow, OpensFromTheMenu) {
  EXPECT_TRUE(Click("Form1.LoadMeasFile"));
  EXPECT_TRUE(fake.IsShown("LoadMeas"));
  EXPECT_EQ(Window("LoadMeas").Caption(), "Load Touchstone Data");
  EXPECT_EQ(At("LoadMeas.Command1").Caption, "Select Data File");
  EXPECT_EQ(At("LoadMeas.Command2").Caption, "Close");
  EXPECT_EQ(Window("LoadMeas").Sections()[1].Title, "Load Data to Memory ");
  Click("LoadMeas.Command2");
  EXPECT_FALSE(fake.IsShown("LoadMeas"));
}

TEST_F(LoadMeasWindow, StaysShutWhileTheImpedanceIsConverted) {
  session.Impedance.ZoConvertOn = true;
  Click("Form1.LoadMeasFile");
  EXPECT_FALSE(fake.IsShown("LoadMeas"));
  EXPECT_EQ(TakeMessages(), Texts{kSwitchOff});
}

// The window stays open beside the others, and the conversion may begin meanwhile.
TEST_F(LoadMeasWindow, LoadsNothingOnceTheImpedanceIsConverted) {
  Click("Form1.LoadMeasFile");
  session.Impedance.ZoConvertOn = true;
  fake.Choices.emplace_back(File(kGood));
  Click("LoadMeas.Command1");
  EXPECT_EQ(TakeMessages(), Texts{kSwitchOff});
  EXPECT_TRUE(fake.Dialogs.empty());
  EXPECT_FALSE(session.Channel(1).MemoryValid);
}

TEST_F(LoadMeasWindow, LoadsTheChosenFileIntoTheTracesAndDrawsThem) {
  session.Display.DisplayMode = DisplayMode::DataAndMemory;
  Click("Form1.LoadMeasFile");
  fake.Choices.emplace_back(File(kGood));
  Click("LoadMeas.Command1");
  EXPECT_TRUE(TakeMessages().empty());
  EXPECT_TRUE(session.Channel(1).MemoryValid);
  EXPECT_TRUE(session.Display.MemoryInUse);
  EXPECT_NEAR(session.Channel(1).MemoryRe[1], 0.5, 1e-7);
  EXPECT_NEAR(session.Channel(1).MemoryIm[101], 0.25, 1e-7);
  EXPECT_TRUE(fake.IsShown("LoadMeas"));  // stays for the next file
}

TEST_F(LoadMeasWindow, ReportsACancelledDialog) {
  Click("Form1.LoadMeasFile");
  fake.Choices.emplace_back(std::nullopt);
  Click("LoadMeas.Command1");
  EXPECT_EQ(TakeMessages(), Texts{"Load Data|Invalid data. Check data is in Touchstone format.\n"
                                  "Cancel was selected.|exclamation|ok"});
  EXPECT_FALSE(session.Display.MemoryInUse);
}

TEST_F(LoadMeasWindow, LeavesTheTracesOfAFileThatFails) {
  session.Channel(1).MemoryValid = true;
  session.Channel(1).MemoryRe.fill(0.125);
  Click("Form1.LoadMeasFile");
  fake.Choices.emplace_back(File("# MHZ S RI R 50\n1 0.5 0\n2 0.5\tx\n"));
  Click("LoadMeas.Command1");
  EXPECT_EQ(TakeMessages(), Texts{"Load Data|Invalid data. Check data is in Touchstone format.\n"
                                  "line 3: \"x\" is not a number|exclamation|ok"});
  EXPECT_EQ(session.Channel(1).MemoryRe[1], 0.125);
}

TEST_F(LoadMeasWindow, LoadsInTheMiddleOfASweep) {
  PretendSweep();
  Click("Form1.LoadMeasFile");
  fake.Choices.emplace_back(File(kGood));
  Click("LoadMeas.Command1");
  EXPECT_TRUE(TakeMessages().empty());
  EXPECT_TRUE(session.Channel(1).MemoryValid);
  EXPECT_TRUE(session.Flags.SweepRunning);
}

TEST_F(LoadMeasWindow, WhoHasTakenTheFileIsReportedInTheWindowAndForAWhileInPanel3) {
  session.Display.DisplaySet = DisplaySet::OneTwo;
  Click("Form1.LoadMeasFile");
  const std::string hint = At("LoadMeas.Hint").Caption;
  fake.Choices.emplace_back(File(kGood));
  Click("LoadMeas.Command1");
  EXPECT_EQ(At("LoadMeas.Hint").Caption, "a.s2p in memory of CH1, CH2");
  EXPECT_EQ(session.Panels[3], "a.s2p in memory of CH1, CH2");
  EXPECT_TRUE(fake.Enabled(TimerId::Timer2));
  fake.Choices.emplace_back(std::nullopt);
  Click("LoadMeas.Command1");
  EXPECT_EQ(At("LoadMeas.Hint").Caption, hint) << "an earlier success says nothing of this one";
}

TEST_F(LoadMeasWindow, WhoHasTakenItIsReportedForAWhileWithoutAnInstrumentToo) {
  session.Id.PortNumber = 0;
  program.Drop(File(kGood));
  EXPECT_EQ(session.Panels[3], "a.s2p in memory of CH1");
  fake.RunFor(4990);
  EXPECT_EQ(session.Panels[3], "a.s2p in memory of CH1");
  fake.RunFor(20);
  EXPECT_EQ(session.Panels[3], "UNCAL");
}

TEST_F(LoadMeasWindow, AFileThatNoChannelTakesIsReportedInPanel3) {
  session.Channel(1).Parameter = Parameter::S21;
  program.Drop(File("# MHZ S RI R 50\n1 0.5 0\n3000 0.5 0\n"));
  EXPECT_EQ(session.Panels[3], "a.s2p: no channel on display shows its parameters");
  program.Drop(File("# MHZ S RI R 50\n1 x 0\n"));
  EXPECT_EQ(session.Panels[3], "a.s2p: no channel on display shows its parameters");
  TakeMessages();
}

TEST_F(LoadMeasWindow, AFileDroppedOntoTheMainWindowIsLoadedAtOnce) {
  program.Drop(File(kGood));
  EXPECT_TRUE(TakeMessages().empty());
  EXPECT_TRUE(fake.Dialogs.empty());
  EXPECT_FALSE(fake.IsShown("LoadMeas"));
  EXPECT_TRUE(session.Channel(1).MemoryValid);
}

TEST_F(LoadMeasWindow, AFileDroppedWhileTheImpedanceIsConvertedIsNotLoaded) {
  session.Impedance.ZoConvertOn = true;
  program.Drop(File(kGood));
  EXPECT_EQ(TakeMessages(), Texts{kSwitchOff});
  EXPECT_FALSE(session.Channel(1).MemoryValid);
}

}  // namespace
}  // namespace qk::test
