// SPDX-License-Identifier: MIT
// The lines of the system log, their print zones and the file they stand in.
#include "control/system_log.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <vector>

#include "support/fake_host.h"
#include "support/full_disk.h"
#include "support/scratch_folder.h"

namespace qk::test {
namespace {

// A host whose clock on the wall stands still.
class AtNoon : public FakeHost {
 public:
  using FakeHost::FakeHost;
  LocalTime Now() override { return {2026, 11, 21, 12, 0, 5}; }
};

struct SystemLog : testing::Test {
  SystemLog() {
    session->InstallFolder = folder.Text();
    session->Id.SerialNumber = 7;
    session->Panels[3] = "S11 Cal";
    session->Panels[5] = "Temp 24.5 degC";
  }
  std::string Read(const char* name = "0007-log.txt") const {
    std::ifstream file(folder.File(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  ScratchFolder folder;
  FakeClock clock;
  AtNoon host{clock};
  std::unique_ptr<Session> session = MakeSession();
};

TEST_F(SystemLog, SerialNumber7GivesTheFileNamedFrom0007) {
  EXPECT_EQ(SystemLogPath(*session), folder.File("0007-log.txt"));
}

TEST_F(SystemLog, TheStartIsALineOfOneBlankAndItsOwn) {
  LogStart(*session, host);
  // 16 + 14 + 3 + 10 columns: the date ends in column 43, the next zone begins at column 56.
  EXPECT_EQ(Read(), " \r\nSystem Started: Temp 24.5 degC.  2026-11-21" + std::string(13, ' ') +
                        "12:00:05\r\n");
}

TEST_F(SystemLog, TheShutDownTellsTheLastTemperature) {
  LogShutDown(*session, host);
  // 11 + 14 + 2 + 10 = 37: up to 42.
  EXPECT_EQ(Read(), "Shut down. Temp 24.5 degC. 2026-11-21     12:00:05\r\n");
}

TEST_F(SystemLog, ACalibrationTellsItsKind) {
  LogCalibration(*session, host);
  // 14 + 7 + 3 + 14 + 2 + 10 = 50: up to 56.
  EXPECT_EQ(Read(), "Cal complete: S11 Cal - Temp 24.5 degC. 2026-11-21      12:00:05\r\n");
}

TEST_F(SystemLog, DiagnosticsAreFollowedByTheirResults) {
  const std::string results[] = {"Synth Range:  OK", "Test Levels:  -"};
  LogDiagnostics(*session, host, results);
  // 27 + 14 + 2 + 10 = 53: up to 56.
  EXPECT_EQ(Read(),
            "Diagnostics Tests Started. Temp 24.5 degC. 2026-11-21   12:00:05\r\n"
            "Synth Range:  OK\r\nTest Levels:  -\r\n");
}

TEST_F(SystemLog, ADateThatFillsItsZoneIsFollowedByAWholeOne) {
  session->Panels[5] = "Temp -24.55 degC123";  // the date ends in column 42
  LogShutDown(*session, host);
  EXPECT_EQ(Read(),
            "Shut down. Temp -24.55 degC123. 2026-11-21" + std::string(14, ' ') + "12:00:05\r\n");
}

TEST_F(SystemLog, IsNeverCleared) {
  LogShutDown(*session, host);
  const std::string first = Read();
  LogCalibration(*session, host);
  EXPECT_EQ(Read().substr(0, first.size()), first);
  EXPECT_GT(Read().size(), first.size());
}

// Meant: the path is built anew at the end, whatever the start did.
TEST_F(SystemLog, WithoutASerialNumberTheStartOpensNoneAndTheEndDoes) {
  session->Id.SerialNumber = 0;
  LogStart(*session, host);
  EXPECT_EQ(Read("0000-log.txt"), "");
  LogShutDown(*session, host);
  EXPECT_EQ(Read("0000-log.txt").substr(0, 10), "Shut down.");
}

TEST_F(SystemLog, AFolderThatCannotBeWrittenIsSwallowed) {
  session->InstallFolder = "/dev/null/no";
  LogStart(*session, host);
  EXPECT_TRUE(host.Messages.empty());
}

TEST_F(SystemLog, OnAFullDiskNoPartOfALineIsWrittenAndNothingIsTold) {
  {
    const FullDisk disk(5);
    LogShutDown(*session, host);
  }
  EXPECT_EQ(Read(), "");
  LogStart(*session, host);
  const std::string old = Read();
  for (const rlim_t room : {0, 5, 20}) {
    const FullDisk disk(old.size() + room);
    LogDiagnostics(*session, host, std::vector<std::string>{"Synth Range: OK"});
    EXPECT_EQ(Read(), old) << room;
  }
  LogShutDown(*session, host);
  EXPECT_EQ(Read().substr(0, old.size() + 10), old + "Shut down.");
  EXPECT_TRUE(host.Messages.empty());
}

}  // namespace
}  // namespace qk::test
