// SPDX-License-Identifier: MIT
// The list of the files used last.
#include "files/recent_files.h"

#include <gtest/gtest.h>

#include "bytes.h"
#include "support/scratch_folder.h"

namespace qk {
namespace {

using test::Get;
using test::Put;
using test::ScratchFolder;
using Paths = std::vector<std::string>;

TEST(RecentFiles, TheNewestComesFirstAndTheEleventhFallsOff) {
  const ScratchFolder scratch;
  RecentFiles recent(scratch.Text());
  for (int n = 1; n <= 11; ++n) recent.Note("/a/" + std::to_string(n) + ".s2p");
  ASSERT_EQ(recent.Paths().size(), 10u);
  EXPECT_EQ(recent.Paths().front(), "/a/11.s2p");
  EXPECT_EQ(recent.Paths().back(), "/a/2.s2p");
}

TEST(RecentFiles, ManyFilesOfOneKindDoNotDriveOutTheOther) {
  const ScratchFolder scratch;
  RecentFiles recent(scratch.Text());
  for (int n = 1; n <= 7; ++n) recent.Note("/a/" + std::to_string(n) + ".CAL");
  for (int n = 1; n <= 20; ++n) recent.Note("/a/" + std::to_string(n) + ".s2p");
  EXPECT_EQ(recent.Paths(), (Paths{"/a/20.s2p", "/a/19.s2p", "/a/18.s2p", "/a/17.s2p", "/a/16.s2p",
                                   "/a/7.CAL", "/a/6.CAL", "/a/5.CAL", "/a/4.CAL", "/a/3.CAL"}));
  for (int n = 21; n <= 40; ++n) recent.Note("/a/" + std::to_string(n) + ".cal");
  EXPECT_EQ(recent.Paths().back(), "/a/16.s2p");
  EXPECT_EQ(recent.Paths().front(), "/a/40.cal");
  EXPECT_EQ(recent.Paths().size(), 10u);
}

TEST(RecentFiles, AFileThatIsUsedAgainMovesToTheFront) {
  const ScratchFolder scratch;
  RecentFiles recent(scratch.Text());
  for (const char* path : {"/a", "/b", "/c", "/x/../a"}) recent.Note(path);
  EXPECT_EQ(recent.Paths(), (Paths{"/a", "/c", "/b"}));
}

TEST(RecentFiles, ComeBackWithTheNextStart) {
  const ScratchFolder scratch;
  RecentFiles(scratch.Text()).Note("/a b/\xC3\xA4.cal");
  EXPECT_EQ(RecentFiles(scratch.Text()).Paths(), Paths{"/a b/\xC3\xA4.cal"});
  EXPECT_EQ(Get(scratch.File("RecentFiles.txt")), "/a b/\xC3\xA4.cal\n");
}

TEST(RecentFiles, TwoProgramsKeepEachOthersFiles) {
  const ScratchFolder scratch;
  RecentFiles one(scratch.Text()), other(scratch.Text());
  one.Note("/one");
  other.Note("/other");
  EXPECT_EQ(other.Paths(), (Paths{"/other", "/one"}));
}

TEST(RecentFiles, ARelativePathIsKeptAbsolute) {
  const ScratchFolder scratch;
  RecentFiles recent(scratch.Text());
  recent.Note("a.s2p");
  EXPECT_EQ(recent.Paths().front(), (std::filesystem::current_path() / "a.s2p").string());
}

TEST(RecentFiles, AFileIsForgotten) {
  const ScratchFolder scratch;
  RecentFiles recent(scratch.Text());
  recent.Note("/a");
  recent.Note("/b");
  recent.Forget("/b");
  recent.Forget("/c");
  EXPECT_EQ(RecentFiles(scratch.Text()).Paths(), Paths{"/a"});
}

// The file may have been edited, or cut.
TEST(RecentFiles, OfAListByOthersTheUsableLinesCount) {
  const ScratchFolder scratch;
  std::string text = "\r\n/a\r\n/a\n\n/b";
  Put(scratch.File("RecentFiles.txt"), text);
  EXPECT_EQ(RecentFiles(scratch.Text()).Paths(), (Paths{"/a", "/b"}));
  Put(scratch.File("RecentFiles.txt"), std::string(1 << 17, 'x'));
  EXPECT_TRUE(RecentFiles(scratch.Text()).Paths().empty());
  EXPECT_TRUE(RecentFiles("").Paths().empty());
}

TEST(RecentFiles, APathThatNoLineCanHoldIsLeftOut) {
  const ScratchFolder scratch;
  RecentFiles recent(scratch.Text());
  recent.Note("/a\n/b");
  recent.Note("");
  EXPECT_TRUE(recent.Paths().empty());
}

TEST(RecentFiles, AListThatCannotBeSavedHoldsForThisRun) {
  RecentFiles recent("/nowhere/at/all");
  recent.Note("/a");
  EXPECT_EQ(recent.Paths(), Paths{"/a"});
}

TEST(RecentFiles, OnlySessionFilesAreSessions) {
  EXPECT_EQ(UseOfFile("/a/Filter.CAL"), FileUse::Session);
  EXPECT_EQ(UseOfFile("/a/b.cal"), FileUse::Session);
  EXPECT_EQ(UseOfFile("/a.cal/b.s2p"), FileUse::Measurement);
  EXPECT_EQ(UseOfFile("cal"), FileUse::Measurement);
}

}  // namespace
}  // namespace qk
