// SPDX-License-Identifier: MIT
#include "forms/cal_kit_form.h"

#include <memory>

#include "core/text.h"
#include "core/window_names.h"
#include "forms/kit_dialogs.h"

namespace qk {

CalKitForm::CalKitForm(Controller& controller)
    : Form(window::kCalKitForm, "Calibration Kit Parameters"),
      controller_(controller),
      session_(controller.rig().session),
      host_(controller.rig().host) {
  port1_ = AddKit("Port 1",
                  {"Text1",
                   "Text2",
                   "Option2",
                   "Option1",
                   {"Text4", "Text5", "Text6", "Text7"},
                   "Check1",
                   {'K', 'O', 'd'}},
                  Position::Below);
  thru_ = AddCheck("Check3", "Thru data available")
              .Key('T')
              .Tip("Checked if Thru data is available. Use Kit Editor to change.");
  port2_ = AddKit("Port 2",
                  {"Text3",
                   "Text8",
                   "Option4",
                   "Option3",
                   {"Text9", "Text10", "Text11", "Text12"},
                   "Check2",
                   {'n', 'f', 'v'}},
                  Position::Beside);
  ActionRow();
  AddButton("Command1", "Load P1 Kit", [this] { LoadKitFile(KitPort::Port1); }).Key('1');
  AddButton("Command5", "Load P2 Kit", [this] { LoadKitFile(KitPort::Port2); }).Key('2');
  AddButton("Command6", "Save Kit", [this] { host_.windows.Show(window::kSaveKit); })
      .Key('S')
      .Tip("Save the kit of port 1 or port 2 to a file");
  AddButton("Command2", "Cal Kit Editor", [this] { host_.windows.Show(window::kNewCalKit); })
      .Key('E')
      .Tip("Make or change a kit on disk; the kits in use stay as they are");
  AddButton("Command4", "Apply", [this] { Apply(); })
      .Key('A')
      .Default()
      .Tip("Use these values. Error terms that have been computed do not change");
  AddButton("Command3", "Exit", [this] { host_.windows.Hide(Name()); }).Key('x');
}

CalKitForm::Fields CalKitForm::AddKit(const char* section, const FieldNames& names,
                                      Position where) {
  Fields fields;
  Section(section, {.Where = where});
  fields.Name = AddText(names.Name, "Kit name").Key(names.Keys[0]);
  fields.Offset = AddText(names.Offset, "Offset (mm)")
                      .Key(names.Keys[1])
                      .Number()
                      .Tip("Reference plane offset of open and short");
  fields.Sex = AddOptions({{names.Male, "Male"}, {names.Female, "Female"}});
  fields.Sex.Tip("Connector sex of the standards; no equation depends on it");
  Section("Capacitance coefficients (xE-xx format)", {.Where = Position::Under});
  for (std::size_t i = 0; i < fields.C.size(); ++i)
    fields.C[i] = AddText(names.C[i], "C" + std::to_string(i)).Number().Unit(kCoefficientUnits[i]);
  fields.Load = AddCheck(names.Load, "Load data available")
                    .Key(names.Keys[2])
                    .Tip("Checked if matched load data is available. Use Kit Editor to change.");
  return fields;
}

void CalKitForm::OnOpen() {
  ShowPort(KitPort::Port1);
  ShowPort(KitPort::Port2);
  thru_.Enabled(session_.Kit1.KitHasThru && !thruOfFile_);
}

void CalKitForm::ShowPort(KitPort port) {
  if (port == KitPort::Port1) {
    ShowKit(port1_, session_.Kit1);
    thru_.Checked(session_.Kit1.KitHasThru);
    shown1_ = session_.Kit1;
  } else {
    ShowKit(port2_, session_.Kit2);
    shown2_ = session_.Kit2;
  }
}

// A session file contains its own kits; other changes keep what is being typed.
void CalKitForm::OnSessionChanged() {
  if (!SameKit(session_.Kit1, shown1_)) thruOfFile_ = false;
  if (!SameKit(session_.Kit1, shown1_) || !SameKit(session_.Kit2, shown2_)) OnOpen();
}

void CalKitForm::ShowKit(const Fields& fields, const CalKit& kit) {
  fields.Name.Text(kit.KitName);
  fields.Offset.Text(OffsetText(kit.KitOffset));
  fields.Sex.Choose(kit.KitMale ? 0 : 1);
  const std::array<double, 4> c{kit.KitC0, kit.KitC1, kit.KitC2, kit.KitC3};
  for (std::size_t i = 0; i < c.size(); ++i) fields.C[i].Text(CoefficientText(c[i]));
  fields.Load.Checked(kit.KitHasLoad && kit.KitLoadInUse).Enabled(kit.KitHasLoad);
}

void CalKitForm::LoadKitFile(KitPort port) {
  const auto path = host_.prompts.Choose(KitDialog(session_, DialogKind::Open, "Load Kit"));
  if (!path) return;
  CalKit& kit = port == KitPort::Port1 ? session_.Kit1 : session_.Kit2;
  const auto loaded = std::make_unique<CalKit>(kit);
  if (const Result<Done> read = LoadKit(*path, port, *loaded); !read) {
    host_.prompts.ShowMessage("Load Kit", read.Why().Text(), Icon::Exclamation);
    return;
  }
  if (port == KitPort::Port1 && !MayHaveThrough(loaded->KitHasThru, "Load Kit")) return;
  kit = *loaded;
  ShowPort(port);  // keeps what was typed for the other port
  if (port == KitPort::Port1) {
    thruOfFile_ = true;
    thru_.Enabled(false);
  }
  host_.windows.SessionChanged();
}

void CalKitForm::TakeKit(const Fields& fields, CalKit& kit) {
  kit.KitName = fields.Name->Text;
  kit.KitOffset = static_cast<float>(Val(fields.Offset->Text) / 1000);
  kit.KitDelay = static_cast<float>(static_cast<double>(kit.KitOffset) / kSpeedOfLight);
  kit.KitMale = fields.Sex.Chosen() == 0;
  // Intentional: the displayed values are used, with two digits per coefficient.
  const std::array<double*, 4> c{&kit.KitC0, &kit.KitC1, &kit.KitC2, &kit.KitC3};
  for (std::size_t i = 0; i < c.size(); ++i) *c[i] = Val(fields.C[i]->Text);
  kit.KitHasLoad = kit.KitLoadInUse = fields.Load->Checked;
}

bool CalKitForm::MayHaveThrough(bool through, std::string_view title) {
  return through || !session_.Kit1.KitHasThru || !controller_.ConfirmNoThrough ||
         controller_.ConfirmNoThrough(title);
}

void CalKitForm::Apply() {
  if (!MayHaveThrough(thru_->Checked, Caption())) return;
  TakeKit(port1_, session_.Kit1);
  TakeKit(port2_, session_.Kit2);
  if (!thru_->Checked) session_.Kit1.KitHasThru = false;
  if (!session_.Kit1.KitHasThru) thru_.Enabled(false);  // a tick would not restore the data
  shown1_ = session_.Kit1;
  shown2_ = session_.Kit2;
  host_.windows.SessionChanged();
}

}  // namespace qk
