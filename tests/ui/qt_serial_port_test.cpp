// SPDX-License-Identifier: MIT
// The serial port over pseudo-terminals, and the order of devices.
#include "ui/qt_serial_port.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <thread>

#include <QElapsedTimer>

#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include "ui/serial_devices.h"
#include "ui_fixture.h"

namespace qk::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

// The far end of a line.
struct Terminal {
  Terminal() : master(posix_openpt(O_RDWR | O_NOCTTY)) {
    EXPECT_EQ(grantpt(master), 0);
    EXPECT_EQ(unlockpt(master), 0);
    device = ptsname(master);
    // The line discipline of a fresh terminal would echo before anyone has opened it.
    termios raw{};
    tcgetattr(master, &raw);
    cfmakeraw(&raw);
    tcsetattr(master, TCSANOW, &raw);
  }
  ~Terminal() { HangUp(); }
  void HangUp() {
    if (master >= 0) close(master);
    master = -1;
  }
  void Send(const Bytes& bytes) {
    EXPECT_EQ(write(master, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }
  Bytes Receive(std::size_t count) {
    Bytes bytes(count);
    std::size_t got = 0;
    while (got < count) {
      const ssize_t n = read(master, bytes.data() + got, count - got);
      if (n <= 0) break;
      got += static_cast<std::size_t>(n);
    }
    bytes.resize(got);
    return bytes;
  }
  int master;
  std::string device;
};

LineSettings SessionLine() {
  LineSettings line;
  line.ReceiveBuffer = 32512;
  line.TransmitBuffer = 20000;
  return line;
}

struct SerialFixture {
  SerialFixture() {
    port.SetPort(1);
    port.SetLine(SessionLine());
  }
  Terminal far;
  QtSerialPort port{[this](int com) { return com == 1 ? far.device : std::string(); }};
};

TEST(QtSerialPort, OpensAPseudoTerminalAtTheSessionsSettings) {
  SerialFixture fixture;
  ASSERT_TRUE(fixture.port.Open());
  EXPECT_TRUE(fixture.port.IsOpen());
  EXPECT_TRUE(fixture.port.Open());  // harmless
  termios line{};
  ASSERT_EQ(tcgetattr(fixture.far.master, &line), 0);
  EXPECT_EQ(cfgetospeed(&line), static_cast<speed_t>(B115200));
  EXPECT_EQ(line.c_cflag & CSIZE, static_cast<tcflag_t>(CS8));
  EXPECT_FALSE(line.c_cflag & PARENB);
  EXPECT_FALSE(line.c_cflag & CSTOPB);
  EXPECT_TRUE(line.c_cflag & CRTSCTS);
  EXPECT_FALSE(line.c_lflag & (ICANON | ECHO));
}

TEST(QtSerialPort, EveryByteValueTravelsBothWays) {
  SerialFixture fixture;
  ASSERT_TRUE(fixture.port.Open());
  Bytes all(256);
  for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<std::uint8_t>(i);
  fixture.port.Write(all);
  EXPECT_EQ(fixture.far.Receive(256), all);
  fixture.far.Send(all);
  Bytes got;
  while (got.size() < 256 && fixture.port.WaitForInput(2000)) fixture.port.Input(got);
  EXPECT_EQ(got, all);
}

// As the scan leaves its port if nothing answered: the other device sends on, and nothing reads.
TEST(QtSerialPort, ABufferWithoutASizeDoesNotGrowWithoutLimit) {
  SerialFixture fixture;
  fixture.port.SetLine(LineSettings{});
  ASSERT_TRUE(fixture.port.Open());
  std::size_t most = 0;
  for (int i = 0; i < 40; ++i) {
    if (i < 20) fixture.far.Send(Bytes(1000, 0x55));
    most = std::max(most, fixture.port.InBufferCount());
  }
  EXPECT_GE(most, 1000u);
  EXPECT_LE(most, 4096u);
  // A later reader can go on.
  Bytes got;
  while (fixture.port.WaitForInput(50)) fixture.port.Input(got);
  EXPECT_GT(got.size(), 4096u);
}

TEST(QtSerialPort, InputAppendsAndTakesAllThatIsWaiting) {
  SerialFixture fixture;
  ASSERT_TRUE(fixture.port.Open());
  fixture.far.Send({1, 2, 3});
  ASSERT_TRUE(fixture.port.WaitForInput(2000));
  EXPECT_EQ(fixture.port.InBufferCount(), 3u);
  Bytes got{9};
  EXPECT_EQ(fixture.port.Input(got), 3u);
  EXPECT_EQ(got, (Bytes{9, 1, 2, 3}));
  EXPECT_EQ(fixture.port.InBufferCount(), 0u);
  EXPECT_EQ(fixture.port.Input(got), 0u);
}

TEST(QtSerialPort, WaitingEndsWithTheFirstByteOrTheTime) {
  SerialFixture fixture;
  ASSERT_TRUE(fixture.port.Open());
  QElapsedTimer timer;
  timer.start();
  EXPECT_FALSE(fixture.port.WaitForInput(40));
  EXPECT_GE(timer.elapsed(), 35);
  std::thread sender([&] { fixture.far.Send({7}); });
  timer.start();
  EXPECT_TRUE(fixture.port.WaitForInput(5000));
  EXPECT_LT(timer.elapsed(), 4000);
  sender.join();
}

TEST(QtSerialPort, AClosedPortSleepsAndHasNothing) {
  SerialFixture fixture;
  QElapsedTimer timer;
  timer.start();
  EXPECT_FALSE(fixture.port.WaitForInput(30));
  EXPECT_GE(timer.elapsed(), 25);
  EXPECT_EQ(fixture.port.InBufferCount(), 0u);
  fixture.port.Write(Bytes{1});
  EXPECT_FALSE(fixture.port.IsOpen());
}

TEST(QtSerialPort, ALineThatHangsUpFallsToNotOpenByItself) {
  SerialFixture fixture;
  ASSERT_TRUE(fixture.port.Open());
  fixture.far.HangUp();
  EXPECT_TRUE(RunUntil([&] { return !fixture.port.IsOpen(); }, 3000));
  EXPECT_FALSE(fixture.port.Open());  // the device is gone
}

TEST(QtSerialPort, ALineThatHangsUpIsSeenByAWaitWithoutAMessageLoop) {
  SerialFixture fixture;
  ASSERT_TRUE(fixture.port.Open());
  fixture.far.HangUp();
  const QDeadlineTimer limit(3000);
  while (fixture.port.IsOpen() && !limit.hasExpired()) fixture.port.WaitForInput(5);
  EXPECT_FALSE(fixture.port.IsOpen());
  QElapsedTimer timer;
  timer.start();
  EXPECT_FALSE(fixture.port.WaitForInput(30));
  EXPECT_GE(timer.elapsed(), 25);  // does not spin
}

TEST(QtSerialPort, WritingToALineThatHungUpIsHarmless) {
  SerialFixture fixture;
  ASSERT_TRUE(fixture.port.Open());
  fixture.far.HangUp();
  for (int i = 0; i < 10; ++i) fixture.port.Write(Bytes(100, 1));
  RunUntil([&] { return !fixture.port.IsOpen(); }, 3000);
  EXPECT_FALSE(fixture.port.IsOpen());
}

TEST(QtSerialPort, WritingNeverWaitsForAFarEndThatDoesNotRead) {
  SerialFixture fixture;
  ASSERT_TRUE(fixture.port.Open());
  QElapsedTimer timer;
  timer.start();
  fixture.port.Write(Bytes(60000, 0x55));
  EXPECT_LT(timer.elapsed(), 1000);
  EXPECT_TRUE(fixture.port.IsOpen());
}

TEST(QtSerialPort, APortThatIsTakenFailsFast) {
  SerialFixture fixture;
  ASSERT_TRUE(fixture.port.Open());
  QtSerialPort second([&](int) { return fixture.far.device; });
  second.SetPort(1);
  QElapsedTimer timer;
  timer.start();
  EXPECT_FALSE(second.Open());
  EXPECT_LT(timer.elapsed(), 1000);
  fixture.port.Close();
  EXPECT_TRUE(second.Open());
}

TEST(QtSerialPort, WithoutADeviceItDoesNotOpen) {
  SerialFixture fixture;
  fixture.port.SetPort(2);
  EXPECT_FALSE(fixture.port.Open());
  QtSerialPort absent([](int) { return "/dev/qk-not-there"; });
  absent.SetPort(1);
  EXPECT_FALSE(absent.Open());
  QtSerialPort file([](int) { return "/etc/hostname"; });
  file.SetPort(1);
  EXPECT_FALSE(file.Open());
  EXPECT_FALSE(file.IsOpen());
}

TEST(QtSerialPort, ADeviceThatDoesNotOpenIsReportedWithTheReason) {
  std::vector<std::string> told;
  QtSerialPort absent([](int com) { return com == 1 ? "/dev/qk-not-there" : ""; });
  absent.OnRefused = [&](const std::string& why) { told.push_back(why); };
  absent.SetPort(1);
  EXPECT_FALSE(absent.Open());
  absent.SetPort(2);
  EXPECT_FALSE(absent.Open());
  EXPECT_EQ(told, std::vector<std::string>{"/dev/qk-not-there: there is no such device"})
      << "a number without a device is no refusal";
}

TEST(QtSerialPort, SettingsChangedWhileOpenTakeForceAtOnce) {
  SerialFixture fixture;
  ASSERT_TRUE(fixture.port.Open());
  LineSettings line = SessionLine();
  line.RtsHandshake = false;
  fixture.port.SetLine(line);
  termios now{};
  ASSERT_EQ(tcgetattr(fixture.far.master, &now), 0);
  EXPECT_FALSE(now.c_cflag & CRTSCTS);
}

// ---- devices
// -------------------------------------------------------------------------------------

std::vector<std::string> Ordered(std::vector<SerialDevice> devices) {
  std::vector<std::string> names;
  for (const SerialDevice& device : OrderSerialDevices(std::move(devices)))
    names.push_back(device.Location);
  return names;
}

TEST(SerialDevices, UsbAdaptorsComeFirst) {
  EXPECT_EQ(Ordered({{"/dev/ttyS0", false},
                     {"/dev/ttyUSB0", true},
                     {"/dev/ttyS1", false},
                     {"/dev/ttyACM0", true}}),
            (std::vector<std::string>{"/dev/ttyACM0", "/dev/ttyUSB0", "/dev/ttyS0", "/dev/ttyS1"}));
}

TEST(SerialDevices, NumbersInNamesCountByTheirValue) {
  EXPECT_EQ(Ordered({{"/dev/ttyUSB10", true}, {"/dev/ttyUSB2", true}, {"/dev/ttyUSB1", true}}),
            (std::vector<std::string>{"/dev/ttyUSB1", "/dev/ttyUSB2", "/dev/ttyUSB10"}));
  EXPECT_EQ(Ordered({{"tty10a2", true}, {"tty9b", true}, {"tty", true}, {"tty10a1", true}}),
            (std::vector<std::string>{"tty", "tty9b", "tty10a1", "tty10a2"}));
}

TEST(SerialDevices, AComNumberIsTheGivenDeviceElseTheOneOfTheList) {
  const std::vector<SerialDevice> listed = {{"/dev/ttyUSB0", true}, {"/dev/ttyS0", false}};
  const std::map<int, std::string> given = {{1, "/dev/pts/4"}, {5, "/tmp/vna"}};
  EXPECT_EQ(DeviceOfCom(1, given, listed), "/dev/pts/4");
  EXPECT_EQ(DeviceOfCom(2, given, listed), "/dev/ttyS0");
  EXPECT_EQ(DeviceOfCom(3, given, listed), "");
  EXPECT_EQ(DeviceOfCom(5, given, listed), "/tmp/vna");
  EXPECT_EQ(DeviceOfCom(1, {}, listed), "/dev/ttyUSB0");
  EXPECT_EQ(DeviceOfCom(16, {}, {}), "");
}

TEST(SerialDevices, APathWithAFolderCountsFromTheWorkingFolderAndANameIsOneOfDev) {
  const std::string here = std::filesystem::current_path().string();
  EXPECT_EQ(LocationOfDevice("sub/vna"), here + "/sub/vna");
  EXPECT_EQ(LocationOfDevice("./vna"), here + "/./vna");
  EXPECT_EQ(LocationOfDevice("/tmp/vna"), "/tmp/vna");
  EXPECT_EQ(LocationOfDevice("ttyUSB0"), "/dev/ttyUSB0");
  EXPECT_EQ(LocationOfDevice(""), "");
}

TEST(QtSerialPort, ADeviceGivenByARelativePathIsReported) {
  std::string told;
  QtSerialPort absent([](int) { return "sub/qk-not-there"; });
  absent.OnRefused = [&](const std::string& why) { told = why; };
  absent.SetPort(1);
  EXPECT_FALSE(absent.Open());
  EXPECT_EQ(told, std::filesystem::current_path().string() +
                      "/sub/qk-not-there: there is no such device");
}

TEST(ComNumbers, AskTheSystemForItsDevicesOnceAScan) {
  int lists = 0;
  std::vector<SerialDevice> present{{"/dev/ttyUSB0", true}, {"/dev/ttyUSB1", true}};
  ComNumbers numbers({{1, "/dev/pts/4"}}, [&] {
    ++lists;
    return present;
  });
  EXPECT_EQ(numbers.DeviceOf(1), "/dev/pts/4");
  EXPECT_EQ(lists, 0);  // the given one needs no list
  EXPECT_EQ(numbers.DeviceOf(2), "/dev/ttyUSB1");
  present.clear();  // pulled out in mid-scan
  for (int com = 3; com <= 16; ++com) EXPECT_EQ(numbers.DeviceOf(com), "");
  EXPECT_EQ(lists, 1);
  EXPECT_EQ(numbers.DeviceOf(1), "/dev/pts/4");
  EXPECT_EQ(numbers.DeviceOf(2), "");
  EXPECT_EQ(lists, 2);
  EXPECT_EQ(numbers.DeviceOf(2), "");  // found there and opened anew: as it is now
  EXPECT_EQ(lists, 3);
}

TEST(ComNumbers, AreNoneWhereNothingIsGivenOrListed) {
  ComNumbers empty({}, [] { return std::vector<SerialDevice>{}; });
  EXPECT_EQ(empty.DeviceOf(1), "");
  EXPECT_TRUE(empty.None());
  ComNumbers one({}, [] { return std::vector<SerialDevice>{{"/dev/ttyS0", false}}; });
  EXPECT_EQ(one.DeviceOf(1), "/dev/ttyS0");
  EXPECT_FALSE(one.None());
  ComNumbers given({{3, "/dev/pts/4"}}, [] { return std::vector<SerialDevice>{}; });
  EXPECT_EQ(given.DeviceOf(1), "");
  EXPECT_FALSE(given.None());
}

}  // namespace
}  // namespace qk::test
