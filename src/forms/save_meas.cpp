// SPDX-License-Identifier: MIT
#include "forms/save_meas.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "control/output_verbs.h"
#include "control/proposed_name.h"
#include "control/touchstone_load.h"
#include "core/window_names.h"
#include "forms/lists.h"
#include "trace/gate.h"

namespace qk {

namespace {
// In the order of the window's options.
constexpr std::array<MeasurementForm, 4> kForms{
    MeasurementForm::Touchstone, MeasurementForm::MagPhase, MeasurementForm::RealImag,
    MeasurementForm::LogMagPhase};

constexpr int kTouchstone2 = 4, kCsv = 5;  // the options after those
constexpr const char* kCsvFiles = "All Files (*.*)|*.*|csv_files(*.csv)|*.csv|";

// A Touchstone file has one port for one parameter and two for more; plain columns have a fixed
// extension.
std::string EndingOf(int option, const MeasurementChoice& choice) {
  if (option == kCsv) return "csv";
  if (option != kTouchstone2 && choice.Form != MeasurementForm::Touchstone) return {};
  return std::ranges::count(choice.Parameters, true) > 1 ? "s2p" : "s1p";
}

// Appends the extension to a name without one, if the dialog has not done so.
std::string WithEnding(const std::string& path, const std::string& ending) {
  const bool none = path.find('.', path.find_last_of('/') + 1) == std::string::npos;
  return none && !ending.empty() ? path + "." + ending : path;
}

const char* FilterOf(MeasurementForm form) {
  return form == MeasurementForm::Touchstone ? kTouchstoneFiles : kDataFiles;
}
}  // namespace

SaveMeas::SaveMeas(Controller& controller)
    : Form(window::kSaveMeas, "Save Measurements"),
      session_(controller.rig().session),
      host_(controller.rig().host),
      controller_(controller) {
  Section("Format", {.How = Arrange::Grid, .Columns = 1});
  form_ = AddOptions({{"Option3", "Touchstone"},
                      {"Option1", "Mag + Phase"},
                      {"Option2", "Real + Imag"},
                      {"Option4", "LogMag+Phase"},
                      {"Option5", "Touchstone 2"},
                      {"Option6", "CSV"}},
                     [this] { ShowColumns(); });
  form_.Keys("tmrlhv");
  form_[0].Tip("Magnitude and angle with a header, which other programs read as S-parameters");
  form_[1].Tip("Plain columns: frequency in MHz, magnitude, degrees");
  form_[2].Tip("Plain columns: frequency in MHz, real part, imaginary part");
  form_[3].Tip("Plain columns: frequency in MHz, dB, degrees");
  form_[4].Tip(
      "Version 2: hertz, real and imaginary part with all digits, and how they were measured");
  form_[5].Tip("A table with the columns below, for spreadsheets and scripts");

  Section("Parameters", {.How = Arrange::Grid, .Where = Position::Beside, .Columns = 1});
  parameters_ = {AddCheck("Check1", "S11"), AddCheck("Check2", "S21"), AddCheck("Check3", "S12"),
                 AddCheck("Check4", "S22")};
  constexpr std::array kDigits{'1', '2', '3', '4'};
  for (std::size_t i = 0; i < parameters_.size(); ++i) parameters_[i].Key(kDigits[i]);

  Section("");
  math_ =
      AddCheck("Check5", "Apply Memory Math")
          .Key('a')
          .Tip("Saves the values after memory math, in the mode Memory Math of the main window");
  gate_ = AddCheck("Check6", "Apply Gate")
              .Key('g')
              .SameRow()
              .Tip("Saves the values after the time domain gate; otherwise as measured");
  comment_ = AddText("Tcomment", "Touchstone  comment")
                 .Key('c')
                 .Wide()
                 .Offers({history_.Entries().begin(), history_.Entries().end()})
                 .Tip("First line of a Touchstone file, before date and time");

  Section("CSV columns", {.How = Arrange::Grid, .Columns = 8});
  for (std::size_t c = 0; c < columns_.size(); ++c)
    columns_[c] =
        AddCheck("Csv_" + std::string(kCsvColumns[c].Word), std::string(kCsvColumns[c].Word))
            .Tip(kCsvColumns[c].ReflectionOnly ? "Of S11 and S22"
                 : static_cast<CsvColumn>(c) == CsvColumn::Uncertainty
                     ? "Expanded uncertainty (k = 2) of S11 and S21, from Check Calibration"
                     : "");

  ActionRow();
  AddButton("Command1", "Save ", [this] { SaveData(); }).Key('s').Default();
  AddButton("Command2", "Exit", [this] { host_.windows.Hide(Name()); }).Key('x');
}

void SaveMeas::OnOpen() {
  form_.Choose(0);
  for (const Handle& parameter : parameters_) parameter.Checked(false);
  parameters_[0].Checked();
  math_.Checked(false);
  gate_.Checked(false);
  for (std::size_t c = 0; c < columns_.size(); ++c)
    columns_[c].Checked(c <= static_cast<std::size_t>(CsvColumn::Im));
  history_ = {};
  ShowColumns();
  ShowHistory();
  ShowMath();
}

void SaveMeas::ShowMath() {
  math_.Enabled(session_.Display.DisplayMode == DisplayMode::MemoryMath);
  gate_.Enabled(MayGate(session_));
}

void SaveMeas::ShowHistory() {
  comment_.Offers({history_.Entries().begin(), history_.Entries().end()});
  comment_.Text(history_.Entries().front()).Index(0);
}

void SaveMeas::ShowColumns() {
  for (const Handle& column : columns_) column.Enabled(form_.Chosen() == kCsv);
}

MeasurementChoice SaveMeas::Choice() const {
  MeasurementChoice choice;
  if (form_.Chosen() < kTouchstone2) choice.Form = kForms[static_cast<std::size_t>(form_.Chosen())];
  for (std::size_t i = 0; i < parameters_.size(); ++i)
    choice.Parameters[i] = parameters_[i]->Checked;
  choice.ApplyMemoryMath = math_->Checked && math_->Enabled;
  choice.ApplyGate = gate_->Checked && gate_->Enabled;
  return choice;
}

void SaveMeas::SaveData() {
  // Uses the current settings, even if they change while the dialog is open.
  const int form = form_.Chosen();
  const MeasurementChoice choice = Choice();
  CsvChoice csv{choice.Parameters, {}, choice.ApplyMemoryMath, choice.ApplyGate, {}};
  for (std::size_t c = 0; c < columns_.size(); ++c) csv.Columns[c] = columns_[c]->Checked;
  const std::string comment = comment_->Text;
  const std::string ending = EndingOf(form, choice);
  const std::optional<std::string> chosen = host_.prompts.Choose(
      {DialogKind::Save, "Save Measurements", session_.InstallFolder,
       form == kCsv           ? kCsvFiles
       : form == kTouchstone2 ? kTouchstoneFiles
                              : FilterOf(choice.Form),
       2, ending, ProposedName(session_, host_.loop.Now(), session_.InstallFolder, "." + ending)});
  if (!chosen) return;
  const std::string path = WithEnding(*chosen, ending);
  const Result<Done> written = form == kCsv ? SaveCsv(controller_, path, csv)
                               : form == kTouchstone2
                                   ? SaveTouchstone2(controller_, path, choice, comment)
                                   : SaveMeasurement(controller_, path, choice, comment);
  if (!written) {
    host_.prompts.ShowMessage("Save Measurements", written.Why().Text(), Icon::Exclamation);
    return;
  }
  controller_.notice().ShowSaved(path);
  if (form != kTouchstone2 && (form == kCsv || choice.Form != MeasurementForm::Touchstone)) return;
  history_.Use(comment);
  ShowHistory();
}

}  // namespace qk
