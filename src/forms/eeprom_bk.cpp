// SPDX-License-Identifier: MIT
#include "forms/eeprom_bk.h"

#include <filesystem>

#include "core/scopes.h"
#include "core/status.h"
#include "core/text.h"
#include "core/window_names.h"
#include "files/eeprom_text.h"
#include "files/whole_file.h"
#include "forms/lists.h"
#include "utilities/eeprom_copy.h"

namespace qk {

namespace {
constexpr const char* kBackupTitle = "Eeprom Backup";
constexpr Complaint kBackupComplaint{kBackupTitle, "No Response", "Link Error. Re-start Program.",
                                     Icon::Critical};
}  // namespace

EepromBk::EepromBk(Rig& rig)
    : Form(window::kEepromBk, "EEPROM Back Up", {.Modal = true}), rig_(rig) {
  AddLabel("Label1", "Copies the instrument's factory data to a file.").Wide();
  progress_ = AddProgress("ProgressBar1").Wide();
  ActionRow();
  start_ = AddButton("Command1", "Back Up", [this] { BackUp(); })
               .Key('B')
               .Default()
               .Tip("Copies the instrument's EEPROM into a file");
  AddButton("Command2", "Exit / Abort", [this] {
    if (OnCloseBox()) rig_.host.windows.Hide(Name());
  }).Key('x');
}

bool EepromBk::OnCloseBox() {
  ended_ = true;
  return true;
}

void EepromBk::BackUp() {
  Prompts& prompts = rig_.host.prompts;
  if (prompts.Ask({.Title = kBackupTitle,
                   .Text = "This will create a copy of EEPROM data to your hard disk. Continue?",
                   .MessageIcon = Icon::Question,
                   .Choice = Buttons::YesNo}) != Answer::Yes)
    return;
  const auto path = prompts.Choose({.Kind = DialogKind::Save,
                                    .Title = Caption(),
                                    .Folder = rig_.session.InstallFolder,
                                    .Filter = kBackUpFiles,
                                    .FilterIndex = 2});
  if (!path) return;
  rig_.host.windows.Refresh(Name());
  ended_ = false;
  start_.Enabled(false);
  ReadAndWrite(*path);
  start_.Enabled(true);
}

void EepromBk::ReadAndWrite(const std::string& path) {
  Prompts& prompts = rig_.host.prompts;
  const Timer1Pause pause(rig_.host.loop);
  const auto image = ReadEepromImage(
      rig_, kBackupComplaint,
      [this](int percent) { rig_.host.windows.Progress(Name(), "ProgressBar1", percent); },
      [this] {
        rig_.host.loop.LetEventsRun();
        return !ended_;
      });
  if (!image) return;
  if (!ChecksumHolds(*image)) {
    prompts.ShowMessage(
        kBackupTitle,
        "Incorrect CheckSum. Cannot Continue." + FormatNumber(EepromChecksum(*image), "##0"),
        Icon::Critical);
    return;
  }
  const Result<Done> written = WriteWhole(path, EepromText(*image));
  if (!written) {
    prompts.ShowMessage(kBackupTitle, written.Why().Text(), Icon::Critical);
    return;
  }
  rig_.host.windows.Hide(Name());
  ShowBriefly(rig_.session, rig_.host,
              "EEPROM saved in " + std::filesystem::path(path).filename().string());
}

}  // namespace qk
