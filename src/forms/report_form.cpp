// SPDX-License-Identifier: MIT
#include "forms/report_form.h"

#include <filesystem>
#include <system_error>

#include "control/output_verbs.h"
#include "control/proposed_name.h"
#include "core/window_names.h"

namespace qk {

namespace {
constexpr const char* kReportTitle = "Report";
}

ReportForm::ReportForm(Controller& controller)
    : Form(window::kReport, kReportTitle), controller_(controller), host_(controller.rig().host) {
  Section("", {.Tab = "Report"});
  serial_ = AddText("Serial", "Device or serial").Key('D').Chars(32);
  operator_ = AddText("Operator", "Operator").Key('O').Chars(32);
  remark_ = AddText("Remark", "Remark").Key('R').Chars(48).Wide();
  Section("", {.Tab = "Letterhead"});
  title_ = AddText("Title", "Title").Key('T').Chars(40);
  address_ = AddText("Address", "Address line")
                 .Key('A')
                 .Chars(48)
                 .Tip("Your own line below the title: firm, address, telephone");
  logo_ = AddText("Logo", "Logo file")
              .Key('L')
              .Chars(40)
              .Tip("An SVG, PNG or JPEG file; empty: no logo");
  AddButton("ChooseLogo", "Choose...", [this] { ChooseLogo(); }).Key('C').SameRow();
  ActionRow();
  AddButton("Save", "Save Report...", [this] { Save(); }).Key('S').Default();
  AddButton("Exit", "Exit", [this] {
    if (KeepSettings()) host_.windows.Hide(Name());
  }).Key('x');
}

void ReportForm::OnOpen() {
  kept_ = LoadReportSettings(controller_.rig().session.InstallFolder);
  title_.Text(kept_.Title);
  address_.Text(kept_.Address);
  logo_.Text(kept_.Logo);
}

ReportSettings ReportForm::Settings() const {
  return {title_->Text, address_->Text, logo_->Text};
}

bool ReportForm::KeepSettings() {
  const ReportSettings settings = Settings();
  if (settings == kept_) return true;
  const Result<Done> saved = SaveReportSettings(controller_.rig().session.InstallFolder, settings);
  if (saved) kept_ = settings;
  if (!saved) host_.prompts.ShowMessage(kReportTitle, saved.Why().Text(), Icon::Exclamation);
  return saved.Ok();
}

void ReportForm::ChooseLogo() {
  const auto path =
      host_.prompts.Choose({DialogKind::Open, kReportTitle, controller_.rig().session.InstallFolder,
                            "Pictures|*.svg;*.png;*.jpg|All Files (*.*)|*.*|", 1});
  if (path) logo_.Text(*path);
}

void ReportForm::Save() {
  const Session& session = controller_.rig().session;
  if (const Result<Done> values = HaveValues(session); !values) {
    host_.prompts.ShowMessage(kReportTitle, values.Why().Text(), Icon::Exclamation);
    return;
  }
  if (!KeepSettings()) return;
  // Uses the current settings, even if they change while the dialog is open.
  ReportSubject subject;
  subject.Serial = serial_->Text;
  subject.Operator = operator_->Text;
  subject.Remark = remark_->Text;
  const std::string folder = session.InstallFolder;
  const LocalTime now = host_.loop.Now();
  const std::string name = subject.Serial.empty()
                               ? ProposedName(session, now, folder, ".pdf")
                               : ProposedName(subject.Serial, now, folder, ".pdf");
  const auto path = host_.prompts.Choose(
      {DialogKind::Save, kReportTitle, folder, "PDF_files(*.pdf)|*.pdf|", 1, {}, name});
  if (!path) return;
  const std::string data = DataPathOf(session, *path);
  std::error_code ignored;
  if (std::filesystem::exists(data, ignored) &&
      host_.prompts.Ask({kReportTitle,
                         data + " is there already. Replace it by the values of this report?",
                         Icon::Question, Buttons::YesNo}) != Answer::Yes)
    return;
  const Result<Done> saved = SaveReport(controller_, *path, kept_, subject);
  if (saved)
    controller_.notice().ShowSaved(*path);
  else
    host_.prompts.ShowMessage(kReportTitle, saved.Why().Text(), Icon::Exclamation);
}

}  // namespace qk
