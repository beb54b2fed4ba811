// SPDX-License-Identifier: MIT
// The guides come into the install folder.
#include "app/guides.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>

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
  BringGuides(from.Text(), to.Text());
  EXPECT_EQ(Read(to.File("UsersManual.pdf")), "new");
  EXPECT_EQ(Read(to.File("ZoConversion.pdf")), "new");
}

TEST(Guides, ANewerOneStays) {
  const ScratchFolder from, to;
  Write(from.File("UsersManual.pdf"), "built");
  Write(to.File("UsersManual.pdf"), "the user's own");
  fs::last_write_time(to.File("UsersManual.pdf"),
                      fs::file_time_type::clock::now() + std::chrono::hours(1));
  BringGuides(from.Text(), to.Text());
  EXPECT_EQ(Read(to.File("UsersManual.pdf")), "the user's own");
}

TEST(Guides, WithoutAnyOrAnywhereToPutThemNothingHappens) {
  const ScratchFolder folder;
  BringGuides(folder.Text(), folder.Text());
  Write(folder.File("UsersManual.pdf"), "x");
  BringGuides(folder.Text(), "/no/such/folder");
  EXPECT_TRUE(fs::exists(folder.File("UsersManual.pdf")));
}

}  // namespace
}  // namespace qk::test
