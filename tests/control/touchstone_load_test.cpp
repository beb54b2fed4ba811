// SPDX-License-Identifier: MIT
// Loading a file: the questions, the messages, and that a failure changes nothing.
#include "control/touchstone_load.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "files/bytes.h"
#include "support/fake_host.h"
#include "support/scratch_folder.h"

namespace qk {
namespace {

using test::FakeClock;
using test::FakeHost;
using test::Put;
using test::ScratchFolder;
using Texts = std::vector<std::string>;

constexpr const char* kGood =
    "# MHZ S RI R 75\n0 0.5 0 0.25 0 0.25 0 0.5 0\n3000 0.5 0 0.25 0 0.25 0 0.5 0\n";
constexpr const char* kBad = "# MHZ S RI R 50\n1 0.5 0\n2 zero 0\n";

struct TouchstoneLoad : testing::Test {
  TouchstoneLoad() {
    session->InstallFolder = folder.Text();
    session->Channel(1).MemoryRe.fill(0.125);
    for (int port : {1, 2}) session->Networks.OfPort(port).S21.Fill({0.125, 0});
  }
  std::string File(const std::string& bytes) {
    Put(folder.File("a.s2p"), bytes);
    return folder.File("a.s2p");
  }
  bool Network(int port, const std::string& path) {
    fake.Choices.emplace_back(path);
    return LoadNetwork(*session, fake, port).has_value();
  }

  FakeClock clock;
  FakeHost fake{clock};
  ScratchFolder folder;
  std::unique_ptr<Session> session = MakeSession();
};

TEST_F(TouchstoneLoad, AsksForAFileFromTheInstallFolderOn) {
  fake.Choices.emplace_back("/somewhere/x.s2p");
  EXPECT_EQ(ChooseTouchstone(*session, fake), "/somewhere/x.s2p");
  ASSERT_EQ(fake.Dialogs.size(), 1u);
  EXPECT_EQ(fake.Dialogs[0].Kind, DialogKind::Open);
  EXPECT_EQ(fake.Dialogs[0].Folder, folder.Text());
  EXPECT_EQ(fake.Dialogs[0].Filter,
            "All Files (*.*)|*.*|spara_files(*.s?p)|*.s?p|"
            "touchstone_files(*.s1p;*.s2p;*.ts)|*.s1p;*.s2p;*.ts|");
  EXPECT_EQ(fake.Dialogs[0].FilterIndex, 2);
}

TEST_F(TouchstoneLoad, ReportsACancelledDialogLikeAFailure) {
  fake.Choices.emplace_back(std::nullopt);
  EXPECT_FALSE(LoadNetwork(*session, fake, 1));
  EXPECT_EQ(fake.MessageTexts(),
            Texts{"Load Data|Invalid data. Check data is in Touchstone format.\n"
                  "Cancel was selected.|exclamation|ok"});
}

TEST_F(TouchstoneLoad, ReportsABadNumberWithItsLineAndChangesNothing) {
  EXPECT_FALSE(LoadMemory(*session, fake, File(kBad)));
  EXPECT_FALSE(Network(2, File(kBad)));
  const std::string told =
      "Load Data|Invalid data. Check data is in Touchstone format.\n"
      "line 3: \"zero\" is not a number|exclamation|ok";
  EXPECT_EQ(fake.MessageTexts(), (Texts{told, told}));
  EXPECT_EQ(session->Channel(1).MemoryRe[1], 0.125);
  EXPECT_FALSE(session->Channel(1).MemoryValid);
  EXPECT_FALSE(session->Display.MemoryInUse);
  EXPECT_EQ(session->Networks.Port2Net.S21[0].re, 0.125);
}

TEST_F(TouchstoneLoad, ReportsAFileThatCannotBeOpened) {
  const std::string missing = folder.File("missing.s2p");
  EXPECT_FALSE(LoadMemory(*session, fake, missing));
  EXPECT_EQ(fake.MessageTexts(),
            Texts{"Load Data|Invalid data. Check data is in Touchstone format.\n" + missing +
                  ": cannot be opened: No such file or directory|exclamation|ok"});
}

TEST_F(TouchstoneLoad, RefusesAGigabyteWithoutReadingIt) {
  const std::string path = File(kGood);
  std::filesystem::resize_file(path, 1'000'000'000);  // sparse
  EXPECT_FALSE(LoadMemory(*session, fake, path));
  EXPECT_EQ(fake.MessageTexts(),
            Texts{"Load Data|Invalid data. Check data is in Touchstone format.\n" + path +
                  ": is larger than 16777216 bytes|exclamation|ok"});
}

TEST_F(TouchstoneLoad, FillsTheTraceAt50Ohms) {
  EXPECT_TRUE(LoadMemory(*session, fake, File(kGood)));
  EXPECT_TRUE(fake.Messages.empty());
  EXPECT_TRUE(session->Channel(1).MemoryValid);
  EXPECT_GT(session->Channel(1).MemoryRe[1], 0.5);
}

TEST_F(TouchstoneLoad, FillsTheNetworkOfItsPortWhateverTheResistance) {
  EXPECT_TRUE(Network(2, File(kGood)));
  EXPECT_TRUE(fake.Messages.empty());
  EXPECT_NEAR(session->Networks.Port2Net.S21[0].re, 0.25, 1e-7);
  EXPECT_EQ(session->Networks.Port1Net.S21[0].re, 0.125);
  EXPECT_TRUE(Network(1, File(kGood)));
  EXPECT_NEAR(session->Networks.Port1Net.S21[100].re, 0.25, 1e-7);
}

TEST_F(TouchstoneLoad, ReportsAnEmptyIntervalOnceAndGoesOn) {
  const std::string path = File("# MHZ S RI R 50\n1 0.5 0\n2 0.25 0\n2 0.75 0\n");
  EXPECT_TRUE(LoadMemory(*session, fake, path));
  EXPECT_TRUE(Network(1, path));
  EXPECT_EQ(fake.MessageTexts(),
            (Texts{"CS Computation|Cubic Spline Data Error|none|ok",
                   "Load Measurements|Cubic Spline data error|exclamation|ok"}));
  EXPECT_EQ(session->Channel(1).MemoryRe[1], 0.75);
  EXPECT_EQ(session->Networks.Port1Net.S11[0].re, 0.75);
}

}  // namespace
}  // namespace qk
