// SPDX-License-Identifier: MIT
// What both power tests have alike: the overload under the plot, printing, a run that nothing
// disturbs, and a file that cannot be saved.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/text.h"
#include "power_test_fixture.h"
#include "support/full_disk.h"

namespace qk::test {
namespace {

struct Which {
  const char* Window;
  const char* Title;  // of the messages while it measures
  const char* Save;
};

void PrintTo(const Which& which, std::ostream* out) {
  *out << which.Window;
}

class PowerTests : public testing::TestWithParam<Which> {
 protected:
  std::string TitledMessage(const std::string& text) const {
    return GetParam().Title + ("|" + text) + "|exclamation|ok";
  }
  PowerTestFixture vna{GetParam().Window};
};

INSTANTIATE_TEST_SUITE_P(Windows, PowerTests,
                         testing::Values(Which{"P1dBForm", "P1dB Test", "Command4"},
                                         Which{"AMtoPM", "AM to PM Test", "Command2"}),
                         [](const auto& which) { return std::string(which.param.Window); });

TEST_P(PowerTests, AnOverloadOfPort2IsReportedUnderThePlotUntilTheNextMeasurement) {
  vna.Bench("amplifier gain 20 p1db 20 matched");
  vna.Work([&] {
    vna.Type(vna.Named("Text1"), "100");
    vna.Calibrate();
    vna.instrument.BackToDevice();
    vna.Start();
    EXPECT_EQ(vna.Of("Note"),
              "Port 2 was overloaded: clipped values read too low. Put an attenuator between the "
              "device and port 2.");
    vna.Bench("amplifier gain 10 p1db 5 matched");
    vna.Start();
    EXPECT_EQ(vna.Of("Note"), "");
  });
}

const std::string kForeign =
    "RXCal.dat is not the table read from the instrument at the start of the program: powers may "
    "be wrong. Make sure that the file can be written and that no other program uses the folder, "
    "then choose Re-Start Program.";

std::string TextOfFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// The table in which each level is so many dBm higher.
std::string HigherBy(double decibels, const std::string& table) {
  std::istringstream lines(table);
  std::string text;
  int n = 0;
  for (std::string line; std::getline(lines, line); ++n) {
    const bool level = n % 2 == 1 && n < 2 * 3070;
    text +=
        (level ? std::to_string(Val(line) + decibels) : line.substr(0, line.size() - 1)) + "\r\n";
  }
  return text;
}

std::vector<std::string> SavedRows(PowerTestFixture& vna, const char* save) {
  const std::string path = vna.folder.File("rows.dat");
  vna.fake.Choices = {std::optional<std::string>(path)};
  vna.Push(save);
  std::istringstream lines(TextOfFile(path));
  std::vector<std::string> rows;
  for (std::string line; std::getline(lines, line);) rows.push_back(line);
  return rows;
}

// Another program, or a hand, puts another instrument's table there: the file is used as it is, and
// everything that rests on it says so.
TEST_P(PowerTests, AnotherInstrumentsReceiverTableIsReportedAndMarksTheResults) {
  vna.Bench("amplifier gain 12 p1db 3 matched");
  const std::string path = vna.folder.File("RXCal.dat"), own = TextOfFile(path);
  vna.Work([&] {
    vna.Calibrate();
    vna.instrument.BackToDevice();
    vna.Start();
    EXPECT_EQ(vna.Of("Note"), "");
    EXPECT_EQ(vna.Of("Text4").find('?'), std::string::npos);
    for (const bool doubtful : vna.session.PowerRun.Doubtful) EXPECT_FALSE(doubtful);
    const double pin = vna.session.PowerRun.Pin[0];

    std::ofstream(path, std::ios::binary) << HigherBy(2, own);
    vna.Start();
    EXPECT_EQ(vna.Of("Note"), kForeign);
    EXPECT_TRUE(vna.Of("Text4").ends_with(" ?")) << vna.Of("Text4");
    EXPECT_NEAR(vna.session.PowerRun.Pin[0], pin + 2, 0.1) << "the file is used as it is";
    for (const bool doubtful : vna.session.PowerRun.Doubtful) EXPECT_TRUE(doubtful);
    const auto rows = SavedRows(vna, GetParam().Save);
    ASSERT_EQ(rows.size(), 28u);
    EXPECT_NE(rows[4].find(" ?"), std::string::npos);
    for (std::size_t i = 7; i < rows.size(); ++i) EXPECT_TRUE(rows[i].ends_with(" ?\r")) << rows[i];

    // Its own numbers, whatever ends the lines.
    std::string numbers = own;
    std::erase(numbers, '\r');
    std::ofstream(path, std::ios::binary) << numbers;
    vna.Start();
    EXPECT_EQ(vna.Of("Note"), "");
    EXPECT_EQ(vna.Of("Text4").find('?'), std::string::npos);
    EXPECT_EQ(SavedRows(vna, GetParam().Save)[7].find('?'), std::string::npos);
  });
}

TEST_P(PowerTests, AnOverloadIsReportedBesideAnotherInstrumentsTable) {
  vna.Bench("amplifier gain 20 p1db 20 matched");
  const std::string path = vna.folder.File("RXCal.dat"), own = TextOfFile(path);
  std::ofstream(path, std::ios::binary) << HigherBy(1, own);
  vna.Work([&] {
    vna.Type(vna.Named("Text1"), "100");
    vna.Calibrate();
    vna.instrument.BackToDevice();
    vna.Start();
    EXPECT_TRUE(vna.Of("Note").starts_with(kForeign + " Port 2 was overloaded")) << vna.Of("Note");
  });
}

// A file in memory that no user can change.
class SealedFile {
 public:
  explicit SealedFile(const std::string& text) : fd_(::memfd_create("sealed", MFD_ALLOW_SEALING)) {
    EXPECT_EQ(::write(fd_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    EXPECT_EQ(::fcntl(fd_, F_ADD_SEALS, F_SEAL_WRITE | F_SEAL_SHRINK | F_SEAL_GROW), 0);
  }
  ~SealedFile() { ::close(fd_); }
  SealedFile(const SealedFile&) = delete;
  SealedFile& operator=(const SealedFile&) = delete;
  std::string Path() const { return "/proc/self/fd/" + std::to_string(fd_); }

 private:
  int fd_;
};

TEST_P(PowerTests, AReceiverTableThatCouldNotBeWrittenAtTheStartIsReportedAtEachMeasurement) {
  const std::string path = vna.folder.File("RXCal.dat");
  const SealedFile old(HigherBy(3, TextOfFile(path)));
  const auto restart = [&] {
    vna.fake.Messages.clear();
    vna.fake.Answers = {Answer::Yes, Answer::Ok};
    vna.Click("Form1.ReStart");
    const Texts told = vna.TakeMessages();
    vna.Click("Form1.SetCal");
    vna.SetSweep("100", "3000", "51");
    vna.Choose("Option4");
    vna.Press({"Thru_Cal", "Iso_Cal", "App_Cal"});
    vna.instrument.BackToDevice();
    return told;
  };
  const auto measure = [&] {
    vna.Calibrate();
    vna.instrument.BackToDevice();
    vna.Start();
  };
  std::filesystem::remove(path);
  std::filesystem::create_symlink(old.Path(), path);
  vna.Bench("amplifier gain 12 p1db 3 matched");
  EXPECT_EQ(restart().back(), "VNA Initialisation|" + path +
                                  ": cannot be written: Operation not permitted|exclamation|ok");
  vna.Work([&] {
    measure();
    EXPECT_EQ(vna.Of("Note"), kForeign);
    EXPECT_TRUE(vna.Of("Text4").ends_with(" ?")) << vna.Of("Text4");
  });
  // What helps: the file can be written, and the program starts anew.
  std::filesystem::remove(path);
  EXPECT_EQ(restart().size(), 2u) << "its own questions";
  vna.Work([&] {
    measure();
    EXPECT_EQ(vna.Of("Note"), "");
    EXPECT_EQ(vna.Of("Text4").find('?'), std::string::npos) << vna.Of("Text4");
  });
}

TEST_P(PowerTests, ACancelledPrinterDialogIsQuietAndAPrinterThatFailsIsReported) {
  vna.Work([&] {
    vna.fake.Choices = {std::nullopt, std::optional<std::string>("Laser")};
    vna.Print();
    EXPECT_EQ(vna.TakeMessages(), Texts{});
    vna.surface.Unavailable = Failure{"out of paper", "Laser"};
    vna.Print();
    EXPECT_EQ(vna.TakeMessages(),
              Texts{TitledMessage("Error 482 selecting printer.\nLaser: out of paper")});
  });
}

TEST_P(PowerTests, NothingCanBePressedAndItCannotBeClosedInMidRun) {
  vna.Work([&] {
    int boxes = 0;
    vna.fake.OnAsk = [&](const Message& message) {
      vna.instrument.FollowPrompt(message.Text);
      if (!message.Text.starts_with("Connect")) return;
      ++boxes;
      for (const char* button : {"Command1", "Command5", "Command2", "Command3", "Command4"})
        EXPECT_FALSE(vna.Click(vna.Named(button))) << button;
      EXPECT_FALSE(vna.Window(GetParam().Window).OnCloseBox());
    };
    vna.Calibrate();
    vna.Start();
    EXPECT_EQ(boxes, 2);
    EXPECT_TRUE(vna.Window(GetParam().Window).OnCloseBox());
  });
}

TEST_P(PowerTests, ACancelledSaveIsQuietAndOneThatFailsIsReported) {
  vna.Work([&] {
    vna.Push(GetParam().Save);
    EXPECT_EQ(vna.TakeMessages(), Texts{});
    const std::string path = vna.folder.File("none/there.dat");
    vna.fake.Choices = {std::optional<std::string>(path)};
    vna.Push(GetParam().Save);
    EXPECT_EQ(vna.TakeMessages(),
              Texts{TitledMessage(path + ": cannot be written: No such file or directory")});
  });
}

TEST_P(PowerTests, OnAFullDiskTheOldFileStaysAndTheCauseIsReported) {
  vna.Work([&] {
    const std::string path = vna.folder.File("a.dat");
    std::ofstream(path) << "former";
    vna.fake.Choices = {std::optional<std::string>(path)};
    {
      const FullDisk disk;
      vna.Push(GetParam().Save);
    }
    EXPECT_EQ(vna.TakeMessages(),
              Texts{TitledMessage(path + ": cannot be written: File too large")});
    std::string now;
    std::ifstream(path) >> now;
    EXPECT_EQ(now, "former");
  });
}

}  // namespace
}  // namespace qk::test
