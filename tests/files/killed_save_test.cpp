// SPDX-License-Identifier: MIT
// Saves that are killed at any moment leave the old file or the new one, whole.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <random>

#include "bytes.h"
#include "files/session_file.h"
#include "files/whole_file.h"
#include "random_session.h"
#include "support/scratch_folder.h"

namespace qk {
namespace {

// A process that saves other and one in turn, without end, killed after microseconds.
void SaveAndKill(const std::string& path, const std::string& other, const std::string& one,
                 useconds_t microseconds) {
  const pid_t child = ::fork();
  if (child == 0)
    for (;;)
      if (!WriteWhole(path, other) || !WriteWhole(path, one)) ::_exit(1);
  ::usleep(microseconds);
  ::kill(child, SIGKILL);
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status)) << "a save failed";
}

TEST(KilledSave, LeavesTheOldFileOrTheNewOneWholeAThousandTimes) {
  const test::ScratchFolder scratch;
  const std::string path = scratch.File("DefCal.cal");
  const auto session = test::AnySession(31);
  static_cast<PlanGrid&>(session->Plan) = {10e6, 60e6, 1e6, 51};
  session->Plan.SavedPlan = session->Plan;
  const std::string first = SessionBytes(*session);
  session->Kit1.KitName = "Another kit";
  const std::string second = SessionBytes(*session);
  ASSERT_TRUE(SaveSession(path, *session).Ok());

  std::mt19937 dice(8);
  int changed = 0, cutBeside = 0;
  for (int i = 0; i < 1000; ++i) {
    const bool isFirst = test::Get(path) == first;
    SaveAndKill(path, isFirst ? second : first, isFirst ? first : second,
                static_cast<useconds_t>(dice() % 3000));
    const std::string left = test::Get(path);
    ASSERT_TRUE(left == first || left == second) << "kill " << i << ", " << left.size() << " bytes";
    changed += (left == first) != isFirst;
    const std::string beside = test::Get(scratch.File(".DefCal.cal.saving"));
    cutBeside += !beside.empty() && beside != first && beside != second;
  }
  EXPECT_GT(changed, 0) << "no save was through in time";
  EXPECT_LT(changed, 1000) << "no save was too late";
  EXPECT_GT(cutBeside, 0) << "no kill met a file half written";
  ASSERT_TRUE(WriteWhole(path, first).Ok());
  EXPECT_EQ(test::Get(path), first);
}

}  // namespace
}  // namespace qk
