// SPDX-License-Identifier: MIT
// What both power tests have alike: the overload under the plot, printing, a run that nothing
// disturbs, and a file that cannot be saved.
#include <gtest/gtest.h>

#include <fstream>

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
  std::string Told(const std::string& text) const {
    return GetParam().Title + ("|" + text) + "|exclamation|ok";
  }
  PowerTestFixture vna{GetParam().Window};
};

INSTANTIATE_TEST_SUITE_P(Windows, PowerTests,
                         testing::Values(Which{"P1dBForm", "P1dB Test", "Command4"},
                                         Which{"AMtoPM", "AM to PM Test", "Command2"}),
                         [](const auto& which) { return std::string(which.param.Window); });

TEST_P(PowerTests, AnOverloadOfPort2IsToldUnderThePlotUntilTheNextMeasurement) {
  vna.Bench("amplifier gain 20 p1db 20 matched");
  vna.Work([&] {
    vna.Type(vna.Named("Text1"), "100");
    vna.Calibrate();
    vna.instrument.BackToDevice();
    vna.Start();
    EXPECT_EQ(vna.Of("Note"),
              "Port 2 was overloaded: what it clips reads too low. Put attenuation "
              "behind the device.");
    vna.Bench("amplifier gain 10 p1db 5 matched");
    vna.Start();
    EXPECT_EQ(vna.Of("Note"), "");
  });
}

TEST_P(PowerTests, ACancelledPrinterDialogIsQuietAndAPrinterThatFailsIsTold) {
  vna.Work([&] {
    vna.fake.Choices = {std::nullopt, std::optional<std::string>("Laser")};
    vna.Print();
    EXPECT_EQ(vna.TakeMessages(), Texts{});
    vna.surface.Unavailable = Failure{"out of paper", "Laser"};
    vna.Print();
    EXPECT_EQ(vna.TakeMessages(), Texts{Told("Error 482 selecting printer.\nLaser: out of paper")});
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

TEST_P(PowerTests, ACancelledSaveIsQuietAndOneThatFailsIsTold) {
  vna.Work([&] {
    vna.Push(GetParam().Save);
    EXPECT_EQ(vna.TakeMessages(), Texts{});
    const std::string path = vna.folder.File("none/there.dat");
    vna.fake.Choices = {std::optional<std::string>(path)};
    vna.Push(GetParam().Save);
    EXPECT_EQ(vna.TakeMessages(),
              Texts{Told(path + ": cannot be written: No such file or directory")});
  });
}

TEST_P(PowerTests, OnAFullDiskTheOldFileStaysAndTheCauseIsTold) {
  vna.Work([&] {
    const std::string path = vna.folder.File("a.dat");
    std::ofstream(path) << "former";
    vna.fake.Choices = {std::optional<std::string>(path)};
    {
      const FullDisk disk;
      vna.Push(GetParam().Save);
    }
    EXPECT_EQ(vna.TakeMessages(), Texts{Told(path + ": cannot be written: File too large")});
    std::string now;
    std::ifstream(path) >> now;
    EXPECT_EQ(now, "former");
  });
}

}  // namespace
}  // namespace qk::test
