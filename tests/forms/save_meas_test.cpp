// SPDX-License-Identifier: MIT
// "Save Measurements" as a user works it.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/window_names.h"
#include "support/full_disk.h"
#include "support/program_fixture.h"

namespace qk::test {
namespace {

struct SaveMeasWindow : testing::Test, ScriptedProgram {
  SaveMeasWindow() {
    session.Plan.NumPoints = 51;
    Click("Form1.SaveMeasurements");
  }
  bool Save(const std::string& name) {
    fake.Choices.emplace_back(folder.File(name));
    return Click("SaveMeas.Command1");
  }
  std::string Text(const std::string& name) {
    std::ostringstream bytes;
    bytes << std::ifstream(folder.File(name), std::ios::binary).rdbuf();
    return bytes.str();
  }
  // The first line of a saved file.
  std::string Head(const std::string& name) {
    return Text(name).substr(0, Text(name).find("\r\n"));
  }
};

TEST_F(SaveMeasWindow, OpensFromTheMenuAlsoInASweep) {
  EXPECT_TRUE(fake.IsShown("SaveMeas"));
  EXPECT_EQ(Window("SaveMeas").Caption(), "Save Measurements");
  Click("SaveMeas.Command2");
  EXPECT_FALSE(fake.IsShown("SaveMeas"));
  PretendSweep();
  Click("Form1.SaveMeasurements");
  EXPECT_TRUE(fake.IsShown("SaveMeas"));
  EXPECT_TRUE(fake.Messages.empty());
}

TEST_F(SaveMeasWindow, HasItsControlsUnderTheirNames) {
  const std::vector<std::pair<const char*, const char*>> captions{
      {"Option3", "Touchstone"},
      {"Option1", "Mag + Phase"},
      {"Option2", "Real + Imag"},
      {"Option4", "LogMag+Phase"},
      {"Check1", "S11"},
      {"Check2", "S21"},
      {"Check3", "S12"},
      {"Check4", "S22"},
      {"Check5", "Apply Memory Math"},
      {"Tcomment", "Touchstone  comment"},
      {"Command1", "Save "},
      {"Command2", "Exit"}};
  for (const auto& [name, caption] : captions)
    EXPECT_EQ(Window("SaveMeas").At(name).Caption, caption) << name;
}

TEST_F(SaveMeasWindow, BeginsWithTouchstoneAndS11AndFiveEmptyComments) {
  EXPECT_TRUE(At("SaveMeas.Option3").Checked);
  EXPECT_TRUE(At("SaveMeas.Check1").Checked);
  for (const char* box : {"SaveMeas.Check2", "SaveMeas.Check3", "SaveMeas.Check4"})
    EXPECT_FALSE(At(box).Checked) << box;
  EXPECT_EQ(At("SaveMeas.Tcomment").Entries, Texts(5, " "));
}

TEST_F(SaveMeasWindow, AsksForAPathFromTheInstallFolderWithTheFormsFilter) {
  fake.Choices.resize(2);
  Click("SaveMeas.Command1");
  Click("SaveMeas.Option2");
  Click("SaveMeas.Command1");
  ASSERT_EQ(fake.Dialogs.size(), 2u);
  EXPECT_EQ(fake.Dialogs[0].Kind, DialogKind::Save);
  EXPECT_EQ(fake.Dialogs[0].Folder, folder.Text());
  EXPECT_EQ(fake.Dialogs[0].Filter, "All Files (*.*)|*.*|spara_files(*.s?p)|*.s?p|");
  EXPECT_EQ(fake.Dialogs[1].Filter, "All Files (*.*)|*.*|data_files(*.dat)|*.dat|");
  EXPECT_EQ(fake.Dialogs[1].FilterIndex, 2);
}

TEST_F(SaveMeasWindow, WritesTheChosenFormAndParameters) {
  session.Data.S11.Fill({0.5, 0});
  session.Data.S22.Fill({0.25, 0});
  Window("SaveMeas").Tick("Check4", true);
  Window("SaveMeas").Type("Tcomment", "filter 7");
  EXPECT_TRUE(Save("a.s2p"));
  EXPECT_EQ(Head("a.s2p"), "! filter 7  2026-03-09  14:05:30");
  EXPECT_NE(
      Text("a.s2p").find("\r\n3.0000        0.50          0.00          0.25          0.00   "),
      std::string::npos);
  Click("SaveMeas.Option4");
  EXPECT_TRUE(Save("a.dat"));
  EXPECT_EQ(Head("a.dat"),
            " 3            -6.0206       0.00          -12.0412      0.00           ");
  EXPECT_TRUE(fake.Messages.empty());
}

TEST_F(SaveMeasWindow, ATouchstoneFileWithoutAnEndingGetsThatOfItsParameters) {
  ASSERT_TRUE(Save("one"));
  EXPECT_EQ(fake.Dialogs.back().Ending, "s1p");
  EXPECT_NE(Text("one.s1p"), "");
  Window("SaveMeas").Tick("Check2", true);
  ASSERT_TRUE(Save("two"));
  EXPECT_EQ(fake.Dialogs.back().Ending, "s2p");
  EXPECT_NE(Text("two.s2p"), "");
  EXPECT_EQ(Text("two"), "");
  ASSERT_TRUE(Save("three.txt"));
  EXPECT_NE(Text("three.txt"), "");
  std::filesystem::create_directory(folder.File("v1.2"));
  ASSERT_TRUE(Save("v1.2/four"));
  EXPECT_NE(Text("v1.2/four.s2p"), "");
  Window("SaveMeas").Tick("Option1", true);
  ASSERT_TRUE(Save("plain"));
  EXPECT_EQ(fake.Dialogs.back().Ending, "");
  EXPECT_NE(Text("plain"), "");
}

TEST_F(SaveMeasWindow, ReplacesAnEarlierFile) {
  std::ofstream(folder.File("a.s1p")) << std::string(100000, 'x');
  Save("a.s1p");
  EXPECT_EQ(Head("a.s1p").substr(0, 2), "! ");
  EXPECT_EQ(Text("a.s1p").find('x'), std::string::npos);
}

TEST_F(SaveMeasWindow, CancelledWritesNothingAndKeepsTheComments) {
  Window("SaveMeas").Type("Tcomment", "mine");
  fake.Choices.emplace_back(std::nullopt);
  Click("SaveMeas.Command1");
  EXPECT_TRUE(fake.Messages.empty());
  EXPECT_EQ(At("SaveMeas.Tcomment").Entries, Texts(5, " "));
  EXPECT_EQ(Value("SaveMeas.Tcomment"), "mine");
}

TEST_F(SaveMeasWindow, ReportsAFileThatCannotBeWritten) {
  const std::string path = folder.File("none/a.s1p");
  fake.Choices.emplace_back(path);
  Click("SaveMeas.Command1");
  EXPECT_EQ(TakeMessages(), Texts{"Save Measurements|" + path +
                                  ": cannot be written: No such file or directory|exclamation|ok"});
  EXPECT_EQ(At("SaveMeas.Tcomment").Entries, Texts(5, " "));
}

TEST_F(SaveMeasWindow, OnAFullDiskTheOldFileStaysAndTheCauseIsReported) {
  std::ofstream(folder.File("a.s1p")) << "former";
  {
    const FullDisk disk(100);
    fake.Choices.emplace_back(folder.File("a.s1p"));
    Click("SaveMeas.Command1");
  }
  EXPECT_EQ(TakeMessages(), Texts{"Save Measurements|" + folder.File("a.s1p") +
                                  ": cannot be written: File too large|exclamation|ok"});
  EXPECT_EQ(Text("a.s1p"), "former");
  EXPECT_EQ(At("SaveMeas.Tcomment").Entries, Texts(5, " "));
}

TEST_F(SaveMeasWindow, KeepsTheLastFiveCommentsWhileItIsOpen) {
  for (const char* comment : {"a", "b", "c", "b"}) {
    Window("SaveMeas").Type("Tcomment", comment);
    Save("a.s1p");
  }
  EXPECT_EQ(At("SaveMeas.Tcomment").Entries, (Texts{"b", "c", "a", " ", " "}));
  EXPECT_EQ(At("SaveMeas.Tcomment").Index, 0);
  EXPECT_EQ(Value("SaveMeas.Tcomment"), "b");
  Click("SaveMeas.Command2");
  Click("Form1.SaveMeasurements");
  EXPECT_EQ(At("SaveMeas.Tcomment").Entries, Texts(5, " "));
}

TEST_F(SaveMeasWindow, PlainColumnsHaveNoCommentToKeep) {
  Click("SaveMeas.Option1");
  Window("SaveMeas").Type("Tcomment", "a");
  Save("a.dat");
  EXPECT_EQ(At("SaveMeas.Tcomment").Entries, Texts(5, " "));
}

TEST_F(SaveMeasWindow, OffersMemoryMathOnlyInItsDisplayMode) {
  EXPECT_FALSE(At("SaveMeas.Check5").Enabled);
  session.Display.DisplayMode = DisplayMode::MemoryMath;
  fake.SessionChanged();
  EXPECT_TRUE(At("SaveMeas.Check5").Enabled);
  session.Display.DisplayMode = DisplayMode::DataAndMemory;
  fake.SessionChanged();
  EXPECT_FALSE(At("SaveMeas.Check5").Enabled);
}

TEST_F(SaveMeasWindow, AppliesMemoryMathWhereItIsTickedAndOffered) {
  session.Data.S11.Fill({2, 0});
  session.Channel(1).MemoryValid = true;
  session.Channel(1).MemoryRe.fill(1);
  session.Display.MemoryFunction = MemoryFunction::Plus;
  session.Display.DisplayMode = DisplayMode::MemoryMath;
  fake.SessionChanged();
  Click("SaveMeas.Option1");
  Save("plain.dat");
  Window("SaveMeas").Tick("Check5", true);
  Save("math.dat");
  session.Display.DisplayMode = DisplayMode::Data;
  fake.SessionChanged();
  Save("off.dat");
  EXPECT_EQ(Text("plain.dat").substr(14, 5), "2.00 ");
  EXPECT_EQ(Text("math.dat").substr(14, 5), "3.00 ");
  EXPECT_EQ(Text("off.dat").substr(14, 5), "2.00 ");
}

}  // namespace
}  // namespace qk::test
