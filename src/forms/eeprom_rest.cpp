// SPDX-License-Identifier: MIT
#include "forms/eeprom_rest.h"

#include "core/scopes.h"
#include "core/status.h"
#include "core/window_names.h"
#include "files/eeprom_text.h"
#include "files/whole_file.h"
#include "forms/lists.h"

namespace qk {

namespace {
constexpr const char* kRestoreTitle = "Restore EEPROM";
constexpr Complaint kRestoreComplaint{kRestoreTitle, Icon::Critical};
constexpr const char* kPartWritten =
    "The EEPROM is written in part only. Run the restore again before the instrument is switched "
    "off.";
}  // namespace

EepromRest::EepromRest(Rig& rig)
    : Form(window::kEepromRest, kRestoreTitle, {.Modal = true}), rig_(rig) {
  AddLabel("Label1", "Writes a file of factory data back into the instrument.").Wide();
  progress_ = AddProgress("ProgressBar1").Wide();
  state_ = AddLabel("State", "").Lines(3).Wide().Bold();
  ActionRow();
  start_ = AddButton("Command1", "Start", [this] { Restore(); })
               .Key('S')
               .Tip("Writes a back-up into the instrument's EEPROM");
  AddButton("Command2", "Exit / Abort", [this] {
    if (OnCloseBox()) rig_.host.windows.Hide(Name());
  }).Key('x');
}

bool EepromRest::OnCloseBox() {
  if (!writing_) return true;
  rig_.host.prompts.Ask({.Title = kRestoreTitle,
                         .Text = "Writing to EEPROM. Cannot Interrupt",
                         .MessageIcon = Icon::Exclamation,
                         .BackgroundWork = [this] { return work_->Next(); }});
  return false;
}

void EepromRest::Restore() {
  const auto agreed = [this](const char* text) {
    return rig_.host.prompts.Ask({.Title = kRestoreTitle,
                                  .Text = text,
                                  .MessageIcon = Icon::Question,
                                  .Choice = Buttons::YesNo,
                                  .NoByDefault = true}) == Answer::Yes;
  };
  if (!agreed("This will restore the EEPROM data in your VNA from data in your hard disk. "
              "Continue?"))
    return;
  const auto path = rig_.host.prompts.Choose({.Kind = DialogKind::Open,
                                              .Title = Caption(),
                                              .Folder = rig_.session.InstallFolder,
                                              .Filter = kBackUpFiles,
                                              .FilterIndex = 2});
  if (!path) return;
  const Result<std::string> text = ReadWhole(*path, kLargestEepromText);
  const Result<EepromImage> image = text ? ParseEepromText(*text) : Result<EepromImage>(text.Why());
  if (!image || !ChecksumHolds(*image)) {
    rig_.host.prompts.ShowMessage(kRestoreTitle, "Invalid data or file. Aborting.", Icon::Critical);
    return;
  }
  if (agreed("Data appears valid. Writing to EEPROM will take several minutes. Are you sure you "
             "want to continue?"))
    Write(*image);
}

void EepromRest::Write(const EepromImage& image) {
  const Timer1Pause pause(rig_.host.loop);
  start_.Enabled(false);
  work_.emplace(rig_, kRestoreComplaint, image, [this](int percent) {
    rig_.host.windows.Progress(Name(), "ProgressBar1", percent);
  });
  {
    const FlagScope writing(writing_);
    while (work_->Next()) rig_.host.loop.LetEventsRun();
  }
  const EepromWritten written = work_->Written();
  work_.reset();
  start_.Enabled(true);
  if (written.Whole) {
    state_.Text("");
    rig_.host.windows.Hide(Name());
    // The level tables and receiver data in use are still those read at start-up.
    ShowBriefly(rig_.session, rig_.host, "EEPROM restored. Re-Start Program to use it");
  } else if (written.Blocks > 0) {
    state_.Text(kPartWritten);
  }
}

}  // namespace qk
