// SPDX-License-Identifier: MIT
// Whole files: refused ones, and saves that cannot be.
#include "files/whole_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

#include "bytes.h"
#include "support/full_disk.h"
#include "support/scratch_folder.h"

namespace qk {
namespace {

namespace fs = std::filesystem;
using test::Get;
using test::Put;
using test::ScratchFolder;

std::string Why(const Result<Done>& result) {
  return result.Ok() ? "" : result.Why().Message;
}
std::string Why(const Result<std::string>& result) {
  return result.Ok() ? "" : result.Why().Message;
}

int EntriesIn(const std::string& folder) {
  return static_cast<int>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

TEST(ReadWhole, GivesEveryByte) {
  const ScratchFolder scratch;
  const std::string bytes("a\0b\r\n\xff", 6);
  Put(scratch.File("x"), bytes);
  EXPECT_EQ(ReadWhole(scratch.File("x"), 6).Value(), bytes);
  Put(scratch.File("empty"), "");
  EXPECT_EQ(ReadWhole(scratch.File("empty"), 0).Value(), "");
}

TEST(ReadWhole, RefusesAFileOverTheLimit) {
  const ScratchFolder scratch;
  Put(scratch.File("x"), "1234567");
  const Result<std::string> read = ReadWhole(scratch.File("x"), 6);
  ASSERT_FALSE(read.Ok());
  EXPECT_EQ(read.Why().Text(), scratch.File("x") + ": is larger than 6 bytes");
}

TEST(ReadWhole, RefusesWhatIsNoOrdinaryFileWithoutWaiting) {
  const ScratchFolder scratch;
  EXPECT_EQ(Why(ReadWhole(scratch.Text(), 100)), "is a folder");
  ASSERT_EQ(::mkfifo(scratch.File("fifo").c_str(), 0600), 0);
  EXPECT_EQ(Why(ReadWhole(scratch.File("fifo"), 100)), "is not an ordinary file");
  EXPECT_EQ(Why(ReadWhole("/dev/zero", 100)), "is not an ordinary file");
  EXPECT_EQ(Why(ReadWhole(scratch.File("none"), 100)),
            "cannot be opened: No such file or directory");
}

// Files of the system: 4 bytes in a page that says 4096, nothing said of 5, no byte at address 0.
TEST(ReadWhole, RefusesAFileThatIsNotAsLongAsItSaidOrCannotBeRead) {
  const std::string shorter = "/sys/devices/system/cpu/online";
  if (fs::exists(shorter)) {
    EXPECT_EQ(Why(ReadWhole(shorter, 10000)), "changed its length while it was read");
  }
  EXPECT_EQ(Why(ReadWhole("/proc/self/mem", 100)), "cannot be read: Input/output error");
  EXPECT_EQ(Why(ReadWhole("/proc/self/comm", 100)), "changed its length while it was read");
}

// A writer that cuts and fills a file without pause: half of it is never taken for the whole.
TEST(ReadWhole, NeverTakesAFileThatIsWrittenMeanwhileForTheWhole) {
  const ScratchFolder scratch;
  const std::string whole(1 << 20, 'w');
  Put(scratch.File("x"), whole);
  const pid_t child = ::fork();
  if (child == 0) {
    for (;;)
      if (::truncate(scratch.File("x").c_str(), 1000) != 0 ||
          ::truncate(scratch.File("x").c_str(), 1 << 20) != 0)
        ::_exit(1);
  }
  for (int i = 0; i < 2000; ++i) {
    const Result<std::string> read = ReadWhole(scratch.File("x"), 1 << 20);
    if (!read) {
      ASSERT_EQ(read.Why().Message, "changed its length while it was read");
    } else {
      ASSERT_TRUE(read->size() == 1000 || read->size() == whole.size()) << read->size();
    }
  }
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
}

TEST(WriteWhole, MakesAndReplacesAndLeavesNothingBeside) {
  const ScratchFolder scratch;
  EXPECT_TRUE(WriteWhole(scratch.File("x"), "one").Ok());
  EXPECT_EQ(Get(scratch.File("x")), "one");
  EXPECT_TRUE(WriteWhole(scratch.File("x"), "").Ok());
  EXPECT_EQ(Get(scratch.File("x")), "");
  EXPECT_EQ(EntriesIn(scratch.Text()), 1);
}

TEST(WriteWhole, KeepsTheOldFilesPermissionsAndFollowsALink) {
  const ScratchFolder scratch;
  Put(scratch.File("real"), "old");
  fs::permissions(scratch.File("real"), fs::perms(0640));
  fs::create_symlink(scratch.File("real"), scratch.File("link"));
  EXPECT_TRUE(WriteWhole(scratch.File("link"), "new").Ok());
  EXPECT_TRUE(fs::is_symlink(scratch.File("link")));
  EXPECT_EQ(Get(scratch.File("real")), "new");
  EXPECT_EQ(fs::status(scratch.File("real")).permissions(), fs::perms(0640));
}

TEST(WriteWhole, RefusesNamesThatCannotBe) {
  const ScratchFolder scratch;
  EXPECT_EQ(Why(WriteWhole(scratch.Text(), "x")), "is a folder");
  EXPECT_EQ(Why(WriteWhole(scratch.Text() + "/", "x")), "is not the name of a file");
  EXPECT_EQ(Why(WriteWhole("", "x")), "is not the name of a file");
  EXPECT_EQ(Why(WriteWhole(scratch.File("no/such/x"), "x")),
            "cannot be written: No such file or directory");
  Put(scratch.File("file"), "old");
  EXPECT_EQ(Why(WriteWhole(scratch.File("file/x"), "x")), "cannot be written: Not a directory");
  EXPECT_EQ(Why(WriteWhole(scratch.File(std::string(300, 'n')), "x")),
            "cannot be written: File name too long");
  EXPECT_EQ(Why(WriteWhole("/dev/null", "x")), "is not an ordinary file");
  EXPECT_EQ(Get(scratch.File("file")), "old");
}

// What a save is refused with in a process of its own, after prepare.
std::string WhyInChild(const std::string& path, const std::function<void()>& prepare) {
  int ends[2];
  if (::pipe(ends) != 0) return "no pipe";
  const pid_t child = ::fork();
  if (child == 0) {
    prepare();
    const std::string why = Why(WriteWhole(path, std::string(5000, 'n')));
    if (::write(ends[1], why.data(), why.size()) < 0) ::_exit(1);
    ::_exit(0);
  }
  ::close(ends[1]);
  std::string why(200, '\0');
  why.resize(static_cast<std::size_t>(std::max<ssize_t>(::read(ends[0], why.data(), 200), 0)));
  ::close(ends[0]);
  ::waitpid(child, nullptr, 0);
  return why;
}

// The superuser may write everywhere, so another user must try.
void BeNobody() {
  if (::geteuid() == 0 && ::setuid(65534) != 0) ::_exit(1);
}

TEST(WriteWhole, ReportsThatAFolderOrAFileMayNotBeWritten) {
  const ScratchFolder scratch;
  Put(scratch.File("x"), "old");
  fs::permissions(scratch.Text(), fs::perms(0555));
  EXPECT_EQ(WhyInChild(scratch.File("x"), BeNobody), "cannot be written: Permission denied");
  EXPECT_EQ(WhyInChild(scratch.File("y"), BeNobody), "cannot be written: Permission denied");
  fs::permissions(scratch.Text(), fs::perms(0777));
  fs::permissions(scratch.File("x"), fs::perms(0444));
  EXPECT_EQ(WhyInChild(scratch.File("x"), BeNobody), "cannot be written: Permission denied");
  EXPECT_EQ(Get(scratch.File("x")), "old");
  EXPECT_EQ(EntriesIn(scratch.Text()), 1);
}

TEST(WriteWhole, LeavesTheOldFileWhenTheDiskTakesNoMore) {
  const ScratchFolder scratch;
  Put(scratch.File("x"), "old");
  {
    const test::FullDisk disk(1000);
    EXPECT_EQ(Why(WriteWhole(scratch.File("x"), std::string(5000, 'n'))),
              "cannot be written: File too large");
    EXPECT_EQ(Why(WriteWhole(scratch.File("y"), std::string(5000, 'n'))),
              "cannot be written: File too large");
  }
  EXPECT_EQ(Get(scratch.File("x")), "old");
  EXPECT_EQ(EntriesIn(scratch.Text()), 1);
}

TEST(WriteWhole, UsesWhatAKilledSaveLeftBeside) {
  const ScratchFolder scratch;
  Put(scratch.File(".x.saving"), std::string(10000, 'h'));
  EXPECT_TRUE(WriteWhole(scratch.File("x"), "whole").Ok());
  EXPECT_EQ(Get(scratch.File("x")), "whole");
  EXPECT_EQ(EntriesIn(scratch.Text()), 1);
}

TEST(WriteWhole, RemovesWhatKilledSavesLeftUnderOtherNames) {
  const ScratchFolder scratch;
  const auto make = [&scratch](const char* name, std::chrono::seconds age) {
    Put(scratch.File(name), "half");
    fs::last_write_time(scratch.File(name), fs::file_time_type::clock::now() - age);
  };
  make(".old.saving", std::chrono::seconds(100));
  make(".in use.saving", std::chrono::seconds(100));
  make(".young.saving", std::chrono::seconds(10));
  make("old.saving", std::chrono::seconds(100));  // a name of the user's
  make(".old", std::chrono::seconds(100));
  fs::create_symlink(scratch.File("old.saving"), scratch.File(".link.saving"));
  fs::create_directory(scratch.File(".folder.saving"));
  const int used = ::open(scratch.File(".in use.saving").c_str(), O_RDONLY);
  ASSERT_EQ(::flock(used, LOCK_EX), 0);
  EXPECT_TRUE(WriteWhole(scratch.File("x"), "whole").Ok());
  EXPECT_FALSE(fs::exists(scratch.File(".old.saving")));
  EXPECT_EQ(EntriesIn(scratch.Text()), 7);  // all others, and x
  ::close(used);
  EXPECT_TRUE(WriteWhole(scratch.File("x"), "whole").Ok());
  EXPECT_FALSE(fs::exists(scratch.File(".in use.saving")));
  EXPECT_EQ(EntriesIn(scratch.Text()), 6);
}

TEST(WriteWhole, TakesASecondNameOfAnotherFileAwayAndLeavesThatFile) {
  const ScratchFolder scratch;
  Put(scratch.File("precious"), "kept");
  fs::create_hard_link(scratch.File("precious"), scratch.File(".x.saving"));
  EXPECT_TRUE(WriteWhole(scratch.File("x"), "new").Ok());
  EXPECT_EQ(Get(scratch.File("precious")), "kept");
  EXPECT_EQ(Get(scratch.File("x")), "new");
  EXPECT_EQ(fs::hard_link_count(scratch.File("precious")), 1u);
  EXPECT_EQ(EntriesIn(scratch.Text()), 2);
}

// What is left is the superuser's, in a folder where everybody may remove his own files alone.
TEST(WriteWhole, ReportsALeftoverOfAnotherUserThatIsInTheWay) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs a second user";
  const ScratchFolder scratch;
  Put(scratch.File(".x.saving"), "left");
  fs::permissions(scratch.File(".x.saving"), fs::perms(0600));
  fs::permissions(scratch.Text(), fs::perms(01777));
  EXPECT_EQ(WhyInChild(scratch.File("x"), BeNobody),
            "cannot be written, .x.saving of user root is in the way: Operation not permitted");
  // In a folder of one's own it goes.
  fs::permissions(scratch.Text(), fs::perms(0777));
  EXPECT_EQ(WhyInChild(scratch.File("x"), BeNobody), "");
  EXPECT_EQ(EntriesIn(scratch.Text()), 1);
}

TEST(WriteWhole, TakesNamesOfUpTo255Bytes) {
  const ScratchFolder scratch;
  for (const std::size_t length : {247u, 248u, 249u, 254u, 255u}) {
    const std::string name(length, 'n');
    EXPECT_EQ(Why(WriteWhole(scratch.File(name), "one")), "") << length;
    EXPECT_EQ(Why(WriteWhole(scratch.File(name), "two")), "") << length;
    EXPECT_EQ(Get(scratch.File(name)), "two");
  }
  std::string letters;
  while (letters.size() < 254) letters += "\xC3\xA4";  // of two bytes each
  EXPECT_EQ(Why(WriteWhole(scratch.File(letters), "one")), "");
  EXPECT_EQ(Get(scratch.File(letters)), "one");
  EXPECT_EQ(EntriesIn(scratch.Text()), 6);
  EXPECT_EQ(Why(WriteWhole(scratch.File(std::string(256, 'n')), "x")),
            "cannot be written: File name too long");
}

// Names that begin alike are no reason to wait for each other.
TEST(WriteWhole, KeepsLongNamesThatBeginAlikeApart) {
  const ScratchFolder scratch;
  const std::string begin(250, 'n');
  const pid_t child = ::fork();
  if (child == 0) {
    for (int i = 0; i < 200; ++i)
      if (!WriteWhole(scratch.File(begin + "a"), "a")) ::_exit(1);
    ::_exit(0);
  }
  for (int i = 0; i < 200; ++i) EXPECT_EQ(Why(WriteWhole(scratch.File(begin + "b"), "b")), "");
  int status = -1;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
}

TEST(WriteWhole, RefusesASecondWriterOfTheSameFile) {
  const ScratchFolder scratch;
  const int other = ::open(scratch.File(".x.saving").c_str(), O_WRONLY | O_CREAT, 0600);
  ASSERT_EQ(::flock(other, LOCK_EX), 0);
  EXPECT_EQ(Why(WriteWhole(scratch.File("x"), "mine")), "is being saved by another program");
  ::close(other);
  EXPECT_TRUE(WriteWhole(scratch.File("x"), "mine").Ok());
}

TEST(WriteWhole, ReplacesALinkThatStandsBesideAndNeverFollowsIt) {
  const ScratchFolder scratch;
  Put(scratch.File("precious"), "kept");
  for (const char* target : {"precious", "nowhere", ".x.saving"}) {
    fs::create_symlink(scratch.File(target), scratch.File(".x.saving"));
    EXPECT_EQ(Why(WriteWhole(scratch.File("x"), target)), "");
    EXPECT_EQ(Get(scratch.File("x")), target);
    EXPECT_FALSE(fs::is_symlink(scratch.File("x")));
    EXPECT_FALSE(fs::exists(fs::symlink_status(scratch.File(".x.saving"))));
    EXPECT_EQ(Get(scratch.File("precious")), "kept");
    EXPECT_FALSE(fs::exists(scratch.File("nowhere")));
  }
}

TEST(WriteWhole, ReplacesAFifoBesideAndNamesAFolderThatIsInTheWay) {
  const ScratchFolder scratch;
  ASSERT_EQ(::mkfifo(scratch.File(".x.saving").c_str(), 0600), 0);
  EXPECT_EQ(Why(WriteWhole(scratch.File("x"), "new")), "");
  EXPECT_EQ(Get(scratch.File("x")), "new");
  fs::create_directory(scratch.File(".x.saving"));
  EXPECT_EQ(Why(WriteWhole(scratch.File("x"), "newer")),
            "cannot be written, a folder named .x.saving is in the way");
  EXPECT_EQ(Get(scratch.File("x")), "new");
}

}  // namespace
}  // namespace qk
