// SPDX-License-Identifier: MIT
#include "forms/diagnostics_tests.h"

#include <array>
#include <string>

#include "control/system_log.h"
#include "control/verbs.h"
#include "core/window_names.h"
#include "files/whole_file.h"
#include "forms/lists.h"
#include "utilities/cal_terms_text.h"

namespace qk {

namespace {
constexpr const char* kCalTermsTitle = "Save Cal terms";
}  // namespace

DiagnosticsTests::DiagnosticsTests(Rig& rig)
    : Form(window::kDiagnosticsTests, "Hardware Diagnostics", {.Modal = true}), rig_(rig) {
  Section("Results");
  const auto verdict = [this](const char* name, const char* caption) {
    return AddText(name, caption).ReadOnly().Chars(22);
  };
  synthesisers_ = verdict("Text1", "Synthesiser Range");
  testLevels_ = verdict("Text3", "Test Signal Levels");
  receiverLevels_ = verdict("Text4", "Receiver Levels");
  crosstalk_ = verdict("Text5", "Receiver Crosstalk");
  dcOffset_ = verdict("Text6", "Receiver DC Offset");
  ActionRow();
  start_ = AddButton("Command1", "Start Tests", [this] { StartTests(); }).Key('S').Default();
  calTerms_ = AddButton("Command3", "Cal Terms", [this] { SaveCalTerms(); })
                  .Key('C')
                  .Tip("Saves the calibration terms as text");
  AddButton("Command2", "Exit",
            [this] {
              if (OnCloseBox()) rig_.host.windows.Hide(Name());
            })
      .Key('x')
      .Tip("Closes the window and ends a running test");
  Show({});
}

void DiagnosticsTests::OnOpen() {
  rig_.host.loop.Enable(TimerId::Timer1, false);
  Show({});
}

bool DiagnosticsTests::OnCloseBox() {
  ended_ = true;
  return true;
}

void DiagnosticsTests::OnHidden() {
  ResumeTimer1(rig_);
}

void DiagnosticsTests::Show(const DiagnosticVerdicts& verdicts) {
  synthesisers_.Text(verdicts.Synthesisers);
  testLevels_.Text(verdicts.TestLevels);
  receiverLevels_.Text(verdicts.ReceiverLevels);
  crosstalk_.Text(verdicts.Crosstalk);
  dcOffset_.Text(verdicts.DcOffset);
}

void DiagnosticsTests::StartTests() {
  ended_ = false;
  MayStart(false);
  const DiagnosticVerdicts verdicts = RunDiagnostics(
      rig_, [this](const DiagnosticVerdicts& now) { Show(now); },
      [this] {
        rig_.host.loop.LetEventsRun();
        return !ended_;
      });
  MayStart(true);
  const std::array<std::string, 5> lines = {
      "Synth Range: " + verdicts.Synthesisers, "Test Levels: " + verdicts.TestLevels,
      "RX Levels: " + verdicts.ReceiverLevels, "RX xTalk: " + verdicts.Crosstalk,
      "dc Offset: " + verdicts.DcOffset};
  ReportLog(rig_.session, rig_.host, LogDiagnostics(rig_.session, rig_.host.loop, lines));
}

void DiagnosticsTests::MayStart(bool may) {
  start_.Enabled(may);
  calTerms_.Enabled(may);
}

void DiagnosticsTests::SaveCalTerms() {
  Prompts& prompts = rig_.host.prompts;
  if (!rig_.session.Cal.AnyKind()) {
    prompts.ShowMessage(kCalTermsTitle, "No calibration!", Icon::Exclamation);
    return;
  }
  if (prompts.Ask({.Title = kCalTermsTitle,
                   .Text = "This will save a copy of the current calibration terms to your hard "
                           "disk. Continue?",
                   .MessageIcon = Icon::Question,
                   .Choice = Buttons::YesNo}) != Answer::Yes)
    return;
  const auto path = prompts.Choose({.Kind = DialogKind::Save,
                                    .Title = kCalTermsTitle,
                                    .Folder = rig_.session.InstallFolder,
                                    .Filter = kDataFiles});
  if (!path) return;
  const Result<Done> written =
      WriteWhole(*path, CalTermsText(rig_.session.Terms, rig_.session.Plan.NumPoints));
  if (!written) prompts.ShowMessage(kCalTermsTitle, written.Why().Text(), Icon::Exclamation);
}

}  // namespace qk
