// SPDX-License-Identifier: MIT
#include "forms/save_kit.h"

#include "core/window_names.h"
#include "forms/kit_dialogs.h"

namespace qk {

namespace {
constexpr const char* kSaveKitTitle = "Save cal kit";
}

SaveKitForm::SaveKitForm(Rig& rig)
    : Form(window::kSaveKit, kSaveKitTitle, {.Modal = true}),
      session_(rig.session),
      host_(rig.host) {
  Section("Select kit to save");
  port_ = AddOptions({{"Option1", "Port 1 kit"}, {"Option2", "Port 2 kit"}}).Keys("12");
  ActionRow();
  AddButton("Command1", "Continue", [this] { Continue(); }).Key('C').Default();
  AddButton("Command2", "Cancel", [this] { host_.windows.Hide(Name()); }).Key('l');
}

void SaveKitForm::Continue() {
  if (port_.Chosen() < 0) {
    host_.prompts.ShowMessage(kSaveKitTitle, "Please select a kit", Icon::Exclamation);
    return;
  }
  host_.windows.Hide(Name());
  SaveSessionKit(port_.Chosen() == 0 ? KitPort::Port1 : KitPort::Port2);
}

void SaveKitForm::SaveSessionKit(KitPort port) {
  const auto path = host_.prompts.Choose(KitDialog(session_, DialogKind::Save, kSaveKitTitle));
  if (!path) return;
  const CalKit& kit = port == KitPort::Port1 ? session_.Kit1 : session_.Kit2;
  if (const Result<Done> saved = SaveKit(*path, kit, port); !saved)
    host_.prompts.ShowMessage(kSaveKitTitle, saved.Why().Text(), Icon::Exclamation);
}

}  // namespace qk
