// SPDX-License-Identifier: MIT
// A file that was used before is opened again.
#include "forms/open_file.h"

#include <gtest/gtest.h>

#include <fstream>

#include "support/program_fixture.h"

namespace qk::test {
namespace {

struct OpenRecent : testing::Test, ScriptedProgram {
  std::string File(const std::string& name, const std::string& text) {
    std::ofstream(folder.File(name), std::ios::binary) << text;
    return folder.File(name);
  }
  Texts Recent() { return program.controller().recent().Paths(); }
  static constexpr const char* kGood =
      "# MHZ S RI R 50\n0 0.5 0.25 0 0 0 0 0 0\n3000 0.5 0.25 0 0 0 0 0 0\n";
};

TEST_F(OpenRecent, AMeasurementGoesToTheMemory) {
  EXPECT_TRUE(OpenFile(program.controller(), File("a.s2p", kGood), "Open Recent"));
  EXPECT_TRUE(session.Channel(1).MemoryValid);
  EXPECT_EQ(Recent(), Texts{folder.File("a.s2p")});
  session.Impedance.ZoConvertOn = true;
  EXPECT_FALSE(OpenFile(program.controller(), folder.File("a.s2p"), "Open Recent"));
  EXPECT_EQ(TakeMessages().size(), 1u);
}

TEST_F(OpenRecent, ASessionIsLoadedAsFromTheMenu) {
  session.Averaging.SmoothingPercent = 7;
  fake.Choices.emplace_back(folder.File("b.cal"));
  Click("Form1.SaveCal");
  EXPECT_EQ(Recent(), Texts{folder.File("b.cal")});
  session.Averaging.SmoothingPercent = 1;
  EXPECT_TRUE(OpenFile(program.controller(), folder.File("b.cal"), "Open Recent"));
  EXPECT_EQ(session.Averaging.SmoothingPercent, 7);
  PretendSweep();
  EXPECT_FALSE(OpenFile(program.controller(), folder.File("b.cal"), "Open Recent"));
  EXPECT_EQ(TakeMessages(), Texts{"Load Cal|Stop sweep first|exclamation|ok"});
}

TEST_F(OpenRecent, AFileThatIsGoneLeavesTheList) {
  const std::string path = File("a.s2p", kGood);
  OpenFile(program.controller(), path, "Open Recent");
  std::filesystem::remove(path);
  EXPECT_FALSE(OpenFile(program.controller(), path, "Open Recent"));
  EXPECT_EQ(TakeMessages(),
            Texts{"Open Recent|" + path + ": the file is no longer there|exclamation|ok"});
  EXPECT_TRUE(Recent().empty());
}

// One that is there but refused may be mended: it stays.
TEST_F(OpenRecent, AFileThatIsRefusedStaysOnTheList) {
  const std::string path = File("a.s2p", kGood);
  OpenFile(program.controller(), path, "Open Recent");
  File("a.s2p", "nothing");
  EXPECT_FALSE(OpenFile(program.controller(), path, "Open Recent"));
  EXPECT_EQ(Recent(), Texts{path});
}

TEST_F(OpenRecent, ASavedTouchstoneFileIsNotedAndPlainColumnsAreNot) {
  Click("Form1.SaveMeasurements");
  fake.Choices.emplace_back(folder.File("m.s1p"));
  Click("SaveMeas.Command1");
  Window("SaveMeas").Tick("Option1", true);
  fake.Choices.emplace_back(folder.File("m.dat"));
  Click("SaveMeas.Command1");
  EXPECT_EQ(Recent(), Texts{folder.File("m.s1p")});
}

TEST_F(OpenRecent, ADroppedSessionIsLoadedAndNotReadAsAMeasurement) {
  session.Averaging.SmoothingPercent = 7;
  fake.Choices.emplace_back(folder.File("b.cal"));
  Click("Form1.SaveCal");
  session.Averaging.SmoothingPercent = 1;
  program.Drop(folder.File("b.cal"));
  EXPECT_EQ(TakeMessages(), Texts{});
  EXPECT_EQ(session.Averaging.SmoothingPercent, 7);
  program.Drop(folder.File("none.cal"));
  EXPECT_EQ(TakeMessages(), Texts{"Open File|" + folder.File("none.cal") +
                                  ": the file is no longer there|exclamation|ok"});
}

TEST_F(OpenRecent, ADroppedFileIsNoted) {
  program.Drop(File("a.s2p", kGood));
  EXPECT_EQ(Recent(), Texts{folder.File("a.s2p")});
}

}  // namespace
}  // namespace qk::test
