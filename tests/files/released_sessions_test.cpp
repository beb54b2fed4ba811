// SPDX-License-Identifier: MIT
// Sessions that an earlier release wrote are read and written again, byte for byte but for row 55,
// which that release wrote on four lines.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "files/session_file.h"
#include "files/session_text.h"
#include "files/whole_file.h"

namespace qk {
namespace {

std::vector<std::filesystem::path> ReleasedSessions() {
  std::vector<std::filesystem::path> paths;
  for (const auto& entry : std::filesystem::directory_iterator(QK_TEST_DATA "/sessions"))
    if (entry.path().extension() == ".cal") paths.push_back(entry.path());
  std::ranges::sort(paths);
  return paths;
}

std::string WithRow55OnOneLine(std::string bytes, const Session& session) {
  const test::Rows rows(session.Plan.NumPoints, session.Plan.SavedPlan.NumPoints);
  for (int ends = 0; ends < 3; ++ends) {
    const std::size_t end = bytes.find("\r\n", test::BeginOf(bytes, rows.Label()));
    bytes.replace(end, 2, ",");
  }
  return bytes;
}

TEST(ReleasedSessions, AreWrittenAgainByteForByte) {
  const auto paths = ReleasedSessions();
  EXPECT_EQ(paths.size(), 20u);
  // One session for all: what a file leaves alone would show in the next one.
  const auto session = MakeSession();
  for (const auto& path : paths) {
    const Result<std::string> bytes = ReadWhole(path.string(), std::size_t{1} << 20);
    ASSERT_TRUE(bytes.Ok()) << bytes.Why().Text();
    const Result<Done> read = ReadSession(*bytes, *session);
    ASSERT_TRUE(read.Ok()) << path << ": " << read.Why().Text();
    EXPECT_TRUE(SessionBytes(*session) == WithRow55OnOneLine(*bytes, *session)) << path;
  }
}

}  // namespace
}  // namespace qk
