// SPDX-License-Identifier: MIT
// The window of remote control: the port, the switch, and what it shows.
#include "forms/remote_control.h"

#include <gtest/gtest.h>

#include "support/program_fixture.h"

namespace qk::test {
namespace {

struct RemoteControlTest : testing::Test, ScriptedProgram {
  RemoteControlTest() {
    program.remoteWindow().Connect({.View = [this] { return view; },
                                    .On = [this](int wanted) -> Result<Done> {
                                      asked.push_back(wanted);
                                      if (wanted == 1)
                                        return Failure{"Permission denied", "port 1"};
                                      view.Port = wanted == 0 ? 40000 : wanted;
                                      return Done{};
                                    },
                                    .Off = [this] { view.Port = 0; }});
    Click("Form1.Remote");
  }
  RemoteView view;
  std::vector<int> asked;
};

TEST_F(RemoteControlTest, IsOffAtFirst) {
  EXPECT_EQ(Value("RemoteControl.State"), "Off");
  EXPECT_EQ(Value("RemoteControl.Port"), "5025");
  EXPECT_TRUE(At("RemoteControl.On").Enabled);
  EXPECT_FALSE(At("RemoteControl.Off").Enabled);
}

TEST_F(RemoteControlTest, SwitchesOnAndOff) {
  Click("RemoteControl.On");
  EXPECT_EQ(asked, std::vector<int>{5025});
  EXPECT_EQ(Value("RemoteControl.State"), "On, 127.0.0.1:5025, no client");
  EXPECT_FALSE(At("RemoteControl.Port").Enabled);
  EXPECT_FALSE(At("RemoteControl.On").Enabled);
  Click("RemoteControl.Off");
  EXPECT_EQ(Value("RemoteControl.State"), "Off");
  Type("RemoteControl.Port", "0");
  Click("RemoteControl.On");
  EXPECT_EQ(Value("RemoteControl.Port"), "40000");
}

TEST_F(RemoteControlTest, RefusesWhatIsNoPort) {
  for (const char* bad : {"", "x", "-1", "65536", "80.5", "1e9"}) {
    Type("RemoteControl.Port", bad);
    Click("RemoteControl.On");
    EXPECT_EQ(TakeMessages(), (Texts{"Remote Control|Port must be a whole number from 0 to "
                                     "65535|exclamation|ok"}))
        << bad;
  }
  EXPECT_TRUE(asked.empty());
}

TEST_F(RemoteControlTest, ReportsAPortThatCannotBeUsed) {
  Type("RemoteControl.Port", "1");
  Click("RemoteControl.On");
  EXPECT_EQ(TakeMessages(), (Texts{"Remote Control|port 1: Permission denied|exclamation|ok"}));
  EXPECT_EQ(Value("RemoteControl.State"), "Off");
}

TEST_F(RemoteControlTest, ShowsTheNewestFirst) {
  view = {5025, {"1  here  *IDN?"}, {"first", "second"}, {"old", "new"}};
  program.remoteWindow().ServerChanged();
  EXPECT_EQ(Value("RemoteControl.State"), "On, 127.0.0.1:5025, 1 client");
  EXPECT_EQ(Value("RemoteControl.Clients"), "1  here  *IDN?");
  EXPECT_EQ(Value("RemoteControl.Log"), "second\nfirst");
  EXPECT_EQ(Value("RemoteControl.Errors"), "new\nold");
}

TEST_F(RemoteControlTest, WithoutAServerSaysSo) {
  program.remoteWindow().Connect({});
  Click("RemoteControl.On");
  EXPECT_EQ(TakeMessages(),
            (Texts{"Remote Control|This run of the program has no remote control|exclamation|ok"}));
}

}  // namespace
}  // namespace qk::test
