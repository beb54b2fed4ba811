// SPDX-License-Identifier: MIT
// The files that fuzzing starts from are good ones: sessions of each step of the format and kits.
#include <gtest/gtest.h>

#include <filesystem>

#include "bytes.h"
#include "files/kit_file.h"
#include "files/session_file.h"

namespace qk {
namespace {

TEST(FuzzCorpus, SessionsOfEachStepLoad) {
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(QK_FUZZ_CORPUS "/session")) {
    const auto session = MakeSession();
    const Result<Done> read = LoadSession(entry.path().string(), *session);
    EXPECT_TRUE(read.Ok()) << read.Why().Text();
    EXPECT_EQ(session->Plan.NumPoints, 51);
    ++files;
  }
  EXPECT_GE(files, 3);
}

TEST(FuzzCorpus, KitsLoad) {
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(QK_FUZZ_CORPUS "/kit")) {
    CalKit kit;
    const Result<Done> read = LoadKit(entry.path().string(), KitPort::Port1, kit);
    EXPECT_TRUE(read.Ok()) << read.Why().Text();
    EXPECT_EQ(kit.KitName, "Std N");
    ++files;
  }
  EXPECT_GE(files, 4);
}

}  // namespace
}  // namespace qk
