// SPDX-License-Identifier: MIT
#include "forms/new_cal_kit.h"

#include "core/text.h"
#include "core/window_names.h"
#include "forms/kit_dialogs.h"

namespace qk {

NewCalKit::NewCalKit(Rig& rig)
    : Form(window::kNewCalKit, "Cal Kit Editor", {.Modal = true}),
      session_(rig.session),
      host_(rig.host) {
  Section("Kit");
  name_ = AddText("Text1", "Kit name").Key('K');
  offset_ = AddText("Text2", "Offset (mm)")
                .Key('O')
                .Number()
                .Tip("Reference plane offset of open and short");
  sex_ = AddOptions({{"Option2", "Male"}, {"Option1", "Female"}}).Keys("MF");
  Section("Capacitance coefficients (xE-xx format)");
  for (std::size_t i = 0; i < c_.size(); ++i)
    c_[i] = AddText("Text" + std::to_string(i + 4), "C" + std::to_string(i))
                .Key(static_cast<char>('0' + i))
                .Number()
                .Unit(kCoefficientUnits[i]);
  Section("Data");
  load_ = AddCheck("Check1", "Load data available",
                   [this] {
                     if (!load_->Checked) editLoadValid_ = false;
                   })
              .Key('d')
              .Tip("The kit includes matched load data; Save Kit asks for their file");
  thru_ = AddCheck("Check2", "Thru data available",
                   [this] {
                     if (!thru_->Checked) editThruValid_ = false;
                   })
              .Key('T')
              .Tip("The kit includes through standard data; Save Kit asks for their file");
  fault_ = AddLabel("Fault", "").Lines(2).Wide();
  ActionRow();
  AddButton("Command4", "New Kit", [this] { NewKit(); }).Key('N');
  AddButton("Command1", "Load Existing Kit", [this] { LoadExisting(); }).Key('L');
  AddButton("Command2", "Save Kit", [this] { SaveEditedKit(); }).Key('S').Default();
  AddButton("Command3", "Exit", [this] { host_.windows.Hide(Name()); }).Key('x');
}

void NewCalKit::NewKit() {
  const CalKit& from = session_.Kit1;
  kit_ = EditedKit();
  kit_.KitName = "New kit";
  kit_.KitOffset = from.KitOffset;
  ShowKit();
  // From the port 1 kit; in 32 bits the smallest of them would become 0.
  ShowCoefficients({from.KitC0, from.KitC1, from.KitC2, from.KitC3});
}

void NewCalKit::ShowCoefficients(const std::array<double, 4>& c) {
  for (std::size_t i = 0; i < c.size(); ++i) c_[i].Text(CoefficientText(c[i]));
}

void NewCalKit::ShowKit() {
  editLoadValid_ = kit_.KitHasLoad;
  editThruValid_ = kit_.KitHasThru;
  name_.Text(kit_.KitName);
  offset_.Text(OffsetText(kit_.KitOffset));
  sex_.Choose(kit_.KitMale ? 0 : 1);
  ShowCoefficients({static_cast<double>(kit_.KitC0), static_cast<double>(kit_.KitC1),
                    static_cast<double>(kit_.KitC2), static_cast<double>(kit_.KitC3)});
  load_.Checked(kit_.KitHasLoad);
  thru_.Checked(kit_.KitHasThru);
  fault_.Caption("");
}

void NewCalKit::LoadExisting() {
  const auto path =
      host_.prompts.Choose(KitDialog(session_, DialogKind::Open, "Load Existing Kit"));
  if (!path) return;
  if (const Result<Done> read = LoadKit(*path, kit_); !read) {
    host_.prompts.ShowMessage("Cal Kit Editor", read.Why().Text(), Icon::Exclamation);
    return;
  }
  ShowKit();
  ShowContents();
}

void NewCalKit::ShowContents() {
  const char* text = nullptr;
  if (kit_.KitHasLoad && kit_.KitHasThru)
    text =
        "This kit has Load and Thru data. If the new kit is to have different data, uncheck and "
        "then re-check the data boxes, else leave boxes unchecked.";
  else if (kit_.KitHasThru)
    text =
        "This kit has Thru data. If the new kit is to have different data, uncheck and then "
        "re-check the thru data box, else leave box unchecked.";
  else if (kit_.KitHasLoad)
    text =
        "This kit has Load data. If the new kit is to have different data, uncheck and then "
        "re-check the load data box, else leave box unchecked.";
  if (text != nullptr) host_.prompts.ShowMessage("Cal Kit Editor", text, Icon::Information);
}

template <class Table>
bool NewCalKit::ReadData(const TableTexts& texts, const Handle& box, bool& valid, Table& table,
                         Result<Done> (*load)(const std::string&, Table&)) {
  if (!box->Checked || valid) return true;
  Prompts& prompts = host_.prompts;
  if (prompts.Ask({"Save Kit", texts.Select, Icon::None, Buttons::OkCancel}) != Answer::Ok)
    return false;
  const auto path = prompts.Choose(DataDialog(session_, texts.DialogTitle));
  const Result<Done> read = path ? load(*path, table) : Failure{"No file was chosen", ""};
  valid = read.Ok();
  if (valid) return true;
  box.Checked(false);
  fault_.Caption(read.Why().Text());
  return prompts.Ask({"Load data", texts.Error, Icon::Question, Buttons::YesNo}) == Answer::Yes;
}

void NewCalKit::SaveEditedKit() {
  fault_.Caption("");
  if (!ReadData({"Select file holding Match Load data", "Error reading Load data. Continue?",
                 "Match Load data"},
                load_, editLoadValid_, kit_.KitLoadData, &LoadLoadData) ||
      !ReadData({"Select file holding Thru Standard data", "Error reading Thru data. Continue?",
                 "Thru Standard data"},
                thru_, editThruValid_, kit_.KitThruData, &LoadThruData))
    return;
  const std::array<float*, 4> c{&kit_.KitC0, &kit_.KitC1, &kit_.KitC2, &kit_.KitC3};
  for (std::size_t i = 0; i < c.size(); ++i) *c[i] = static_cast<float>(Val(c_[i]->Text));
  kit_.KitOffset = static_cast<float>(Val(offset_->Text) / 1000);
  kit_.KitDelay = static_cast<double>(kit_.KitOffset) / kSpeedOfLight;
  const auto path = host_.prompts.Choose(KitDialog(session_, DialogKind::Save, "Save Kit"));
  if (!path) return;
  kit_.KitName = name_->Text;
  kit_.KitMale = sex_.Chosen() != 1;
  kit_.KitHasLoad = load_->Checked;
  kit_.KitHasThru = thru_->Checked;
  // Intentional: the title of another feature.
  if (const Result<Done> saved = qk::SaveKit(*path, kit_); !saved)
    host_.prompts.ShowMessage("Load Cal", saved.Why().Text(), Icon::Exclamation);
}

}  // namespace qk
