// SPDX-License-Identifier: MIT
// The texts of the status panels.
#include "core/status.h"

#include <gtest/gtest.h>

#include <vector>

namespace qk {
namespace {

class PanelRecorder : public Windows {
 public:
  std::vector<std::string> Changes;

  void Show(std::string_view) override {}
  void Hide(std::string_view) override {}
  void Refresh(std::string_view) override {}
  void Progress(std::string_view, std::string_view, int) override {}
  void PanelChanged(Panel panel, const std::string& text) override {
    Changes.push_back(std::to_string(static_cast<int>(panel)) + ":" + text);
  }
  void SessionChanged() override {}
  void SessionLoaded() override {}
  void SweepEnded() override {}
  void HideForRestart() override {}
  void OpenDocument(const std::string&) override {}
  void Beep() override {}
  void EndProcess(int) override {}
};

struct Status : testing::Test {
  std::unique_ptr<Session> session = MakeSession();
  PanelRecorder windows;

  std::string Last() const { return windows.Changes.empty() ? "" : windows.Changes.back(); }
};

TEST_F(Status, APanelStandsInTheSessionAndIsReportedEvenWhenTheSame) {
  SetPanel(*session, windows, Panel::Sweep, "SWEEP ON");
  SetPanel(*session, windows, Panel::Sweep, "SWEEP ON");
  EXPECT_EQ(session->Panels[6], "SWEEP ON");
  EXPECT_EQ(windows.Changes, (std::vector<std::string>{"6:SWEEP ON", "6:SWEEP ON"}));
}

TEST_F(Status, ADoubtfulCalibrationBearsAQuestionMark) {
  session->Cal.Cal12Term = true;
  ShowCalStatus(*session, windows);
  EXPECT_EQ(Last(), "3:12 Term Cal");
  session->Cal.CalInterpolated = true;
  ShowCalStatus(*session, windows);
  EXPECT_EQ(Last(), "3:12 Term Cal ?");
  ShowCalStatus(*session, windows, "?");
  EXPECT_EQ(Last(), "3:12 Term Cal?");
}

TEST_F(Status, TheLevelIsReportedInWholeDecibels) {
  ShowLevel(*session, windows);
  EXPECT_EQ(Last(), "4:P1 Level: 0dBm");
  session->Plan.Port1Level = -20;
  ShowLevel(*session, windows);
  EXPECT_EQ(Last(), "4:P1 Level: -20dBm");
}

TEST_F(Status, TheStepIsReportedInMegahertzFrom100KilohertzUpward) {
  session->Plan.StepFreq = 2.997e9 / 100;
  ShowStep(*session, windows);
  EXPECT_EQ(Last(), "7:29.9700 MHz");
  session->Plan.StepFreq = 1e5;
  ShowStep(*session, windows);
  EXPECT_EQ(Last(), "7:0.1000 MHz");
  session->Plan.StepFreq = 99999.9;
  ShowStep(*session, windows);
  EXPECT_EQ(Last(), "7:99.9999 kHz");
  session->Plan.StepFreq = 100;
  ShowStep(*session, windows);
  EXPECT_EQ(Last(), "7:0.1000 kHz");
}

}  // namespace
}  // namespace qk
