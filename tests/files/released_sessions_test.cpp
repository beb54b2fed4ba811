// Sessions that an earlier release wrote read, and are written again, byte for byte.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "files/session_file.h"
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
    EXPECT_TRUE(SessionBytes(*session) == *bytes) << path;
  }
}

}  // namespace
}  // namespace qk
