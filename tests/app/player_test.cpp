// SPDX-License-Identifier: MIT
// The play of a first measurement: on the real windows and the simulated instrument it ends with a
// calibration in force and a sweep that runs.
#include "app/player.h"

#include <gtest/gtest.h>

#include <QTest>

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
  // Lets the play run to its end, and stops the sweep that it leaves running.
  bool PlayedToTheEnd() {
    const Session& session = vna.program.session();
    // The sweep runs inside the click on START, so it is watched from the message loop.
    bool swept = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &watch, [&] {
      if (!session.Flags.SweepRunning || player.Playing()) return;
      swept = true;
      vna.Click("Form1", "StopMeasurement");
    });
    watch.start(20);
    return RunUntil([&] { return !player.Playing() && session.Flags.Idle(); }, 60000) && swept;
  }
  UiFixture vna;
  Player player{vna.host, vna.program.session()};
  std::vector<std::string> told;
};

TEST(Player, CalibratesAndMeasuresByWhatAPersonWouldClick) {
  Stage stage;
  const Session& session = stage.vna.program.session();
  stage.player.Play();
  ASSERT_TRUE(stage.PlayedToTheEnd());
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

// Exit asks; the demonstration must not answer Yes for the user.
TEST(Player, EndsAtABoxThatIsNotItsOwnAndLeavesItUnanswered) {
  Stage stage;
  stage.player.Play();
  ASSERT_TRUE(RunUntil([&] { return stage.told.size() >= 2; }));
  bool answered = false;
  QMessageBox other(QMessageBox::Question, "Exit", "Exit Program?",
                    QMessageBox::Yes | QMessageBox::No);
  QObject::connect(&other, &QMessageBox::finished, [&answered] { answered = true; });
  other.open();
  EXPECT_TRUE(RunUntil([&] { return !stage.player.Playing(); }));
  QTest::qWait(400);
  EXPECT_FALSE(answered);
  EXPECT_TRUE(other.isVisible());
}

TEST(Player, AsksBeforeItReplacesACalibrationAndKeepsItAtNo) {
  Stage stage;
  Session& session = stage.vna.program.session();
  session.Cal.Cal12Term = session.Cal.CalDataReady = true;
  for (const auto answer : {QMessageBox::No, QMessageBox::Yes}) {
    bool asked = false;
    WhenUp<QMessageBox>(stage.vna.host, [&](QMessageBox& box) {
      EXPECT_EQ(box.windowTitle(), "Calibrate and measure for me");
      EXPECT_EQ(box.text(), "The calibration in force will be replaced. Continue?");
      asked = true;
      box.button(answer)->click();
    });
    stage.player.Play();
    EXPECT_TRUE(asked);
    EXPECT_TRUE(session.Cal.Cal12Term);
    EXPECT_EQ(stage.player.Playing(), answer == QMessageBox::Yes);
  }
  // It goes through: the question of Apply is the play's own, and it keeps nothing.
  ASSERT_TRUE(stage.PlayedToTheEnd());
  EXPECT_TRUE(session.Cal.CalS11);
  EXPECT_FALSE(session.Cal.Cal12Term);
  EXPECT_FALSE(session.Cal.CalInterpolated);
}

TEST(Player, DropsACalibrationThatItsSweepExceedsAsWasAgreed) {
  Stage stage;
  Session& session = stage.vna.program.session();
  session.Cal.Cal12Term = session.Cal.CalDataReady = true;
  session.Plan.SavedPlan = {400e6, 1600e6, 6e6, 201};
  WhenUp<QMessageBox>(stage.vna.host, [&](QMessageBox& box) {
    EXPECT_EQ(box.windowTitle(), "Calibrate and measure for me");
    box.button(QMessageBox::Yes)->click();
  });
  stage.player.Play();
  ASSERT_TRUE(stage.PlayedToTheEnd());
  EXPECT_TRUE(session.Cal.CalS11);
  EXPECT_FALSE(session.Cal.Cal12Term);
}

TEST(Player, DoesNotBeginWhileAStandardIsMeasured) {
  Stage stage;
  stage.vna.program.session().Steps.Measuring = true;
  EXPECT_FALSE(stage.player.MayPlay());
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
