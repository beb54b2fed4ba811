// SPDX-License-Identifier: MIT
// The guides come into the install folder.
#include "app/guides.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "support/full_disk.h"
#include "support/scratch_folder.h"

namespace qk::test {
namespace {

namespace fs = std::filesystem;

void Write(const std::string& path, const char* text) {
  std::ofstream(path) << text;
}
std::string Read(const std::string& path) {
  std::ifstream in(path);
  return {std::istreambuf_iterator<char>(in), {}};
}

TEST(Guides, AreBroughtWhereTheyAreMissingOrOlder) {
  const ScratchFolder from, to;
  Write(from.File("UsersManual.pdf"), "new");
  Write(from.File("ZoConversion.pdf"), "new");
  Write(to.File("UsersManual.pdf"), "old");
  fs::last_write_time(to.File("UsersManual.pdf"),
                      fs::file_time_type::clock::now() - std::chrono::hours(1));
  CopyGuides(from.Text(), to.Text());
  EXPECT_EQ(Read(to.File("UsersManual.pdf")), "new");
  EXPECT_EQ(Read(to.File("ZoConversion.pdf")), "new");
}

TEST(Guides, ANewerOneStays) {
  const ScratchFolder from, to;
  Write(from.File("UsersManual.pdf"), "built");
  Write(to.File("UsersManual.pdf"), "the user's own");
  fs::last_write_time(to.File("UsersManual.pdf"),
                      fs::file_time_type::clock::now() + std::chrono::hours(1));
  CopyGuides(from.Text(), to.Text());
  EXPECT_EQ(Read(to.File("UsersManual.pdf")), "the user's own");
}

TEST(Guides, AreFoundBesideTheProgramOrWhereItIsInstalled) {
  const ScratchFolder root;
  const std::string programs = root.File("bin");
  fs::create_directories(programs);
  EXPECT_EQ(GuideFolder(programs), programs);
  fs::create_directories(root.File("share/qk47-vna"));
  Write(root.File("share/qk47-vna/UsersManual.pdf"), "installed");
  EXPECT_EQ(Read(GuideFolder(programs) + "/UsersManual.pdf"), "installed");
  Write(programs + "/UsersManual.pdf", "built");
  EXPECT_EQ(GuideFolder(programs), programs);
}

TEST(Guides, OnAFullDiskNothingOfAGuideIsLeftAndTheOldOneStays) {
  const ScratchFolder from, to;
  Write(from.File("UsersManual.pdf"), "a new guide");
  Write(from.File("ZoConversion.pdf"), "a new guide");
  Write(to.File("UsersManual.pdf"), "old");
  fs::last_write_time(to.File("UsersManual.pdf"),
                      fs::file_time_type::clock::now() - std::chrono::hours(1));
  {
    const FullDisk full(5);
    CopyGuides(from.Text(), to.Text(), 0);
  }
  EXPECT_EQ(Read(to.File("UsersManual.pdf")), "old");
  EXPECT_EQ(std::distance(fs::directory_iterator(to.Text()), {}), 1);
  CopyGuides(from.Text(), to.Text(), 0);
  EXPECT_EQ(Read(to.File("UsersManual.pdf")), "a new guide");
}

TEST(Guides, LeaveSessionAndLogTheirRoom) {
  const ScratchFolder from, to;
  Write(from.File("UsersManual.pdf"), "guide");
  const std::uintmax_t available = fs::space(to.Text()).available;
  CopyGuides(from.Text(), to.Text(), available + (1u << 30));
  EXPECT_FALSE(fs::exists(to.File("UsersManual.pdf")));
  CopyGuides(from.Text(), to.Text(), available / 2);
  EXPECT_TRUE(fs::exists(to.File("UsersManual.pdf")));
}

TEST(Guides, ACopyThatWasCutIsReplacedHoweverNewItIs) {
  const ScratchFolder from, to;
  Write(from.File("UsersManual.pdf"), "the whole guide");
  for (const char* cut : {"", "the who"}) {
    Write(to.File("UsersManual.pdf"), cut);
    fs::last_write_time(to.File("UsersManual.pdf"),
                        fs::file_time_type::clock::now() + std::chrono::hours(1));
    CopyGuides(from.Text(), to.Text());
    EXPECT_EQ(Read(to.File("UsersManual.pdf")), "the whole guide");
  }
}

TEST(Guides, WithoutAnyOrAnywhereToPutThemNothingHappens) {
  const ScratchFolder folder;
  CopyGuides(folder.Text(), folder.Text());
  Write(folder.File("UsersManual.pdf"), "x");
  CopyGuides(folder.Text(), "/no/such/folder");
  EXPECT_TRUE(fs::exists(folder.File("UsersManual.pdf")));
}

}  // namespace
}  // namespace qk::test
