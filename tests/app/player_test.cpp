// The play of a first measurement: on the real windows and the simulated instrument it ends with a
// calibration in force and a sweep that runs.
#include "app/player.h"

#include <gtest/gtest.h>

#include "ui/ui_fixture.h"

namespace qk::test {
namespace {

struct Stage {
  Stage() {
    vna.StartUp();
    vna.host.Show("Form1");
    player.SetPace(1);
    player.OnStep = [this](const std::string& step) { told.push_back(step); };
  }
  UiFixture vna;
  Player player{vna.host};
  std::vector<std::string> told;
};

TEST(Player, CalibratesAndMeasuresByWhatAPersonWouldClick) {
  Stage stage;
  const Session& session = stage.vna.program.session();
  // The sweep runs inside the click on START, so who watches it does so from the message loop.
  bool swept = false;
  QTimer watch;
  QObject::connect(&watch, &QTimer::timeout, &watch, [&] {
    if (!session.Flags.SweepRunning || stage.player.Playing()) return;
    swept = true;
    stage.vna.Click("Form1", "StopMeasurement");
  });
  watch.start(20);
  stage.player.Play();
  ASSERT_TRUE(RunUntil([&] { return !stage.player.Playing() && session.Flags.Idle(); }, 60000));
  EXPECT_TRUE(swept);
  EXPECT_TRUE(session.Cal.CalS11);
  EXPECT_EQ(session.Plan.NumPoints, 201);
  EXPECT_GT(stage.told.size(), 10u);
}

TEST(Player, StopsWhenItIsToldTo) {
  Stage stage;
  stage.player.Play();
  ASSERT_TRUE(RunUntil([&] { return stage.told.size() >= 3; }));
  stage.player.Stop();
  EXPECT_FALSE(stage.player.Playing());
  EXPECT_EQ(stage.told.back(), "");
}

TEST(Player, DoesNotBeginBeneathAModalWindow) {
  Stage stage;
  QDialog prompt;
  prompt.setModal(true);
  prompt.show();
  stage.player.Play();
  EXPECT_FALSE(stage.player.Playing());
}

TEST(Player, StopsWhereAWindowIsNotAsItWants) {
  Stage stage;
  stage.player.Play();
  ASSERT_TRUE(RunUntil([&] { return stage.vna.registry.Find("Calibration")->Shown; }));
  stage.vna.host.Hide("Calibration");
  EXPECT_TRUE(RunUntil([&] { return !stage.player.Playing(); }));
}

}  // namespace
}  // namespace qk::test
