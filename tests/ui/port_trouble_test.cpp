// SPDX-License-Identifier: MIT
// Why a port did not open: each reason in its words, on folders that look like the system's.
#include "ui/port_trouble.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/scratch_folder.h"

namespace qk::test {
namespace {

namespace fs = std::filesystem;

struct System {
  System() {
    for (const char* folder : {"locks", "proc", "dev"}) fs::create_directory(root + "/" + folder);
    std::ofstream(device) << "";
  }
  void AddProcess(const std::string& number, const std::string& name) {
    fs::create_directories(root + "/proc/" + number + "/fd");
    std::ofstream(root + "/proc/" + number + "/comm") << name << "\n";
  }
  // The lock of the device, as serial programs write it.
  std::string AddLock(const std::string& text) {
    std::string name = device;
    for (char& c : name)
      if (c == '/') c = '_';
    const std::string lock = root + "/locks/LCK.." + name;
    std::ofstream(lock) << text;
    return lock;
  }
  std::string Why() { return WhyNotOpened(device, "busy", {root + "/locks", root + "/proc"}); }

  ScratchFolder scratch;
  std::string root = scratch.Text();
  std::string device = root + "/dev/ttyUSB0";
  std::string user = getpwuid(getuid())->pw_name;
};

// The superuser may read everything: while this object exists, user "nobody" asks in its place.
class NotTheSuperuser {
 public:
  NotTheSuperuser() { Be(65534); }
  ~NotTheSuperuser() { Be(0); }

 private:
  static void Be(uid_t real) {
    if (geteuid() != 0) return;
    EXPECT_EQ(setresuid(real, 0, 0), 0);
  }
};

TEST(PortTrouble, AMissingDeviceIsReportedAsMissing) {
  System system;
  fs::remove(system.device);
  EXPECT_EQ(system.Why(), system.device + ": there is no such device");
}

TEST(PortTrouble, WithoutPermissionTheGroupThatHasItIsNamed) {
  System system;
  ASSERT_EQ(chmod(system.device.c_str(), 0020), 0);
  fs::permissions(system.root, fs::perms(0755));
  const std::string group = getgrgid(getgid())->gr_name;
  const NotTheSuperuser nobody;
  EXPECT_EQ(system.Why(), system.device + ": no permission; members of the group " + group +
                              " have it (sudo usermod -aG " + group + " " +
                              getpwuid(getuid())->pw_name + ", then log in again)");
}

TEST(PortTrouble, TheProcessThatHoldsItIsNamedWithItsUser) {
  System system;
  system.AddProcess("4321", "minicom");
  fs::create_symlink(system.device, system.root + "/proc/4321/fd/3");
  EXPECT_EQ(system.Why(),
            system.device + ": held by minicom (process 4321 of user " + system.user + ")");
}

TEST(PortTrouble, TheProcessOfALockFileIsNamed) {
  System system;
  system.AddProcess("77", "cu");
  system.AddLock("        77\n");
  EXPECT_EQ(system.Why(), system.device + ": held by cu (process 77 of user " + system.user + ")");
}

TEST(PortTrouble, AStaleLockIsReportedWithItsUserItsProcessAndWhatToDo) {
  System system;
  const std::string lock = system.AddLock("77\nqk47-vna\nbench\n");
  EXPECT_EQ(system.Why(), system.device + ": locked by " + lock + " of user " + system.user +
                              " for process 77, no longer running: remove that file");
}

TEST(PortTrouble, ALockThatNamesNobodyIsReportedByItsFile) {
  System system;
  const std::string lock = system.AddLock("");
  EXPECT_EQ(system.Why(), system.device + ": locked by " + lock + " of user " + system.user);
}

TEST(PortTrouble, AnythingElseIsReportedInTheSystemsWords) {
  System system;
  EXPECT_EQ(system.Why(), system.device + ": busy");
}

}  // namespace
}  // namespace qk::test
