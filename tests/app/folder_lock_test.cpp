// SPDX-License-Identifier: MIT
// One program at a time works over a folder.
#include "app/folder_lock.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/scratch_folder.h"

namespace qk::test {
namespace {

namespace fs = std::filesystem;

TEST(FolderLock, TheSecondOverAFolderLearnsWhoHasIt) {
  const ScratchFolder folder;
  FolderLock first(folder.File("made"));
  EXPECT_FALSE(first.HeldByOther());
  EXPECT_TRUE(fs::is_directory(folder.File("made")));
  const FolderLock second(folder.File("made"));
  EXPECT_TRUE(second.HeldByOther());
  EXPECT_EQ(second.Holder(), "process " + std::to_string(getpid()));
  EXPECT_FALSE(FolderLock(folder.File("other")).HeldByOther());
  first.Release();
  EXPECT_FALSE(FolderLock(folder.File("made")).HeldByOther());
}

TEST(FolderLock, LeavesNothingBehind) {
  const ScratchFolder folder;
  { const FolderLock lock(folder.Text()); }
  EXPECT_TRUE(fs::is_empty(folder.Text()));
}

TEST(FolderLock, ThatOfAKilledProcessCountsForNothing) {
  const ScratchFolder folder;
  int ready[2];
  ASSERT_EQ(pipe(ready), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const FolderLock lock(folder.Text());
    [[maybe_unused]] const ssize_t written = write(ready[1], "x", 1);
    for (;;) pause();
  }
  char byte = 0;
  ASSERT_EQ(read(ready[0], &byte, 1), 1);
  EXPECT_EQ(FolderLock(folder.Text()).Holder(), "process " + std::to_string(child));
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  EXPECT_FALSE(fs::is_empty(folder.Text()));
  EXPECT_FALSE(FolderLock(folder.Text()).HeldByOther());
  close(ready[0]);
  close(ready[1]);
}

TEST(FolderLock, AFolderThatCannotBeWrittenIsTakenWithoutOne) {
  EXPECT_FALSE(FolderLock("/dev/null/no/folder").HeldByOther());
}

// Opening a FIFO without a writer would wait for ever.
TEST(FolderLock, AnythingButAnOrdinaryFileInItsPlaceIsRefusedAndLeftAlone) {
  const ScratchFolder folder;
  const fs::path fifo = folder.File("f/.qk47-vna.lock");
  const fs::path sub = folder.File("f-2/.qk47-vna.lock");
  const fs::path link = folder.File("f-3/.qk47-vna.lock");
  fs::create_directories(sub);
  fs::create_directories(fifo.parent_path());
  fs::create_directories(link.parent_path());
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  fs::create_symlink("/dev/null", link);
  for (const fs::path& path : {fifo, sub, link}) {
    FolderLock lock(path.parent_path().string());
    EXPECT_TRUE(lock.Refused());
    EXPECT_FALSE(lock.HeldByOther());
    EXPECT_EQ(RefusalText(lock), path.string() + ": is not an ordinary file");
    lock.Release();
  }
  EXPECT_TRUE(fs::is_fifo(fifo));
  EXPECT_TRUE(fs::is_directory(sub));
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(FreeFolderBeside(folder.File("f")), folder.File("f-4"));
  fs::remove(fifo);
  const FolderLock free(folder.File("f"));
  EXPECT_FALSE(free.Refused());
}

TEST(FolderLock, TheFolderBesideIsTheFirstThatNobodyHas) {
  const ScratchFolder folder;
  const std::string stem = folder.File("f");
  EXPECT_EQ(FreeFolderBeside(stem), stem + "-2");
  EXPECT_FALSE(fs::exists(stem + "-2"));
  const FolderLock second(stem + "-2");
  std::ofstream(stem + "-3") << "a file";
  EXPECT_EQ(FreeFolderBeside(stem + "/"), stem + "-4");
  fs::create_directories(stem + "-4");
  EXPECT_EQ(FreeFolderBeside(stem), stem + "-4");
}

TEST(FolderLock, AProgramWithoutWindowsNamesFolderHolderAndWayOut) {
  const ScratchFolder folder;
  const std::string stem = folder.File("f");
  const FolderLock first(stem), second(stem);
  EXPECT_EQ(RefusalText(second), "the folder \"" + stem + "\" is in use by process " +
                                     std::to_string(getpid()) +
                                     "; give another one, for example --folder \"" + stem + "-2\"");
}

}  // namespace
}  // namespace qk::test
