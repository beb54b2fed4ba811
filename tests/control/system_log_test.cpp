// SPDX-License-Identifier: MIT
// The lines of the system log, their print zones and their file.
#include "control/system_log.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "support/fake_host.h"
#include "support/full_disk.h"
#include "support/scratch_folder.h"

namespace qk::test {
namespace {

// A host whose wall clock does not move.
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
  EXPECT_TRUE(LogStart(*session, host).Ok());
  // 16 + 14 + 3 + 10 columns: the date ends in column 43, the next zone begins at column 56.
  EXPECT_EQ(Read(), " \r\nSystem Started: Temp 24.5 degC.  2026-11-21" + std::string(13, ' ') +
                        "12:00:05\r\n");
}

TEST_F(SystemLog, TheShutDownReportsTheLastTemperature) {
  EXPECT_TRUE(LogShutDown(*session, host).Ok());
  // 11 + 14 + 2 + 10 = 37: up to 42.
  EXPECT_EQ(Read(), "Shut down. Temp 24.5 degC. 2026-11-21     12:00:05\r\n");
}

TEST_F(SystemLog, ACalibrationReportsItsKind) {
  EXPECT_TRUE(LogCalibration(*session, host).Ok());
  // 14 + 7 + 3 + 14 + 2 + 10 = 50: up to 56.
  EXPECT_EQ(Read(), "Cal complete: S11 Cal - Temp 24.5 degC. 2026-11-21      12:00:05\r\n");
}

TEST_F(SystemLog, DiagnosticsAreFollowedByTheirResults) {
  const std::string results[] = {"Synth Range:  OK", "Test Levels:  -"};
  EXPECT_TRUE(LogDiagnostics(*session, host, results).Ok());
  // 27 + 14 + 2 + 10 = 53: up to 56.
  EXPECT_EQ(Read(),
            "Diagnostics Tests Started. Temp 24.5 degC. 2026-11-21   12:00:05\r\n"
            "Synth Range:  OK\r\nTest Levels:  -\r\n");
}

TEST_F(SystemLog, ADateThatFillsItsZoneIsFollowedByAWholeOne) {
  session->Panels[5] = "Temp -24.55 degC123";  // the date ends in column 42
  EXPECT_TRUE(LogShutDown(*session, host).Ok());
  EXPECT_EQ(Read(),
            "Shut down. Temp -24.55 degC123. 2026-11-21" + std::string(14, ' ') + "12:00:05\r\n");
}

TEST_F(SystemLog, IsNeverCleared) {
  EXPECT_TRUE(LogShutDown(*session, host).Ok());
  const std::string first = Read();
  EXPECT_TRUE(LogCalibration(*session, host).Ok());
  EXPECT_EQ(Read().substr(0, first.size()), first);
  EXPECT_GT(Read().size(), first.size());
}

// Intentional: the path is built anew at the end, whatever the start did.
TEST_F(SystemLog, WithoutASerialNumberTheStartOpensNoneAndTheEndDoes) {
  session->Id.SerialNumber = 0;
  EXPECT_TRUE(LogStart(*session, host).Ok());
  EXPECT_EQ(Read("0000-log.txt"), "");
  EXPECT_TRUE(LogShutDown(*session, host).Ok());
  EXPECT_EQ(Read("0000-log.txt").substr(0, 10), "Shut down.");
}

TEST_F(SystemLog, AFolderThatCannotBeWrittenIsShownInPanel3WithoutABox) {
  session->InstallFolder = "/dev/null/no";
  Host all = host.host();
  ReportLog(*session, all, LogStart(*session, host));
  EXPECT_TRUE(host.Messages.empty());
  EXPECT_EQ(session->Panels[3], "Log: cannot be written: Not a directory");
  EXPECT_TRUE(host.Enabled(TimerId::Timer2)) << "it passes";
}

TEST_F(SystemLog, AFifoOrADeviceInItsPlaceIsRefusedWithoutWaiting) {
  ASSERT_EQ(::mkfifo(SystemLogPath(*session).c_str(), 0600), 0);
  EXPECT_EQ(LogStart(*session, host).Why().Message, "is not an ordinary file");
  const int reader = ::open(SystemLogPath(*session).c_str(), O_RDONLY | O_NONBLOCK);
  EXPECT_EQ(LogShutDown(*session, host).Why().Message, "is not an ordinary file");
  ::close(reader);
  std::filesystem::remove(SystemLogPath(*session));
  std::filesystem::create_symlink("/dev/tty", SystemLogPath(*session));
  EXPECT_FALSE(LogShutDown(*session, host).Ok());
}

TEST_F(SystemLog, OnAFullDiskNoPartOfALineIsWrittenAndNothingIsReported) {
  {
    const FullDisk disk(5);
    EXPECT_FALSE(LogShutDown(*session, host).Ok());
  }
  EXPECT_EQ(Read(), "");
  EXPECT_TRUE(LogStart(*session, host).Ok());
  const std::string old = Read();
  for (const rlim_t room : {0, 5, 20}) {
    const FullDisk disk(old.size() + room);
    EXPECT_FALSE(LogDiagnostics(*session, host, std::vector<std::string>{"Synth Range: OK"}).Ok());
    EXPECT_EQ(Read(), old) << room;
  }
  EXPECT_TRUE(LogShutDown(*session, host).Ok());
  EXPECT_EQ(Read().substr(0, old.size() + 10), old + "Shut down.");
  EXPECT_TRUE(host.Messages.empty());
}

}  // namespace
}  // namespace qk::test
