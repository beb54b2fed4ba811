// SPDX-License-Identifier: MIT
#include "forms/save_meas.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "control/touchstone_load.h"
#include "core/local_time.h"
#include "core/window_names.h"
#include "files/whole_file.h"
#include "forms/lists.h"
#include "trace/gate.h"

namespace qk {

namespace {
// In the order of the window's options.
constexpr std::array<MeasurementForm, 4> kForms{
    MeasurementForm::Touchstone, MeasurementForm::MagPhase, MeasurementForm::RealImag,
    MeasurementForm::LogMagPhase};

// Of a Touchstone file: one port for one parameter, two for more.
std::string EndingOf(const MeasurementChoice& choice) {
  if (choice.Form != MeasurementForm::Touchstone) return {};
  return std::ranges::count(choice.Parameters, true) > 1 ? "s2p" : "s1p";
}

// A name without an ending gets one, also where no dialog has seen to it.
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
      recent_(controller.recent()) {
  Section("Format", {.How = Arrange::Grid, .Columns = 1});
  form_ = AddOptions({{"Option3", "Touchstone"},
                      {"Option1", "Mag + Phase"},
                      {"Option2", "Real + Imag"},
                      {"Option4", "LogMag+Phase"}});
  form_.Keys("tmrl");
  form_[0].Tip("Magnitude and angle with a header, which other programs read as S-parameters");
  form_[1].Tip("Plain columns: frequency in MHz, magnitude, degrees");
  form_[2].Tip("Plain columns: frequency in MHz, real part, imaginary part");
  form_[3].Tip("Plain columns: frequency in MHz, dB, degrees");

  Section("Parameters", {.How = Arrange::Grid, .Where = Position::Beside, .Columns = 1});
  parameters_ = {AddCheck("Check1", "S11"), AddCheck("Check2", "S21"), AddCheck("Check3", "S12"),
                 AddCheck("Check4", "S22")};
  constexpr std::array kDigits{'1', '2', '3', '4'};
  for (std::size_t i = 0; i < parameters_.size(); ++i) parameters_[i].Key(kDigits[i]);

  Section("");
  math_ = AddCheck("Check5", "Apply Memory Math")
              .Key('a')
              .Tip("The values as the memory math shows them, in the display mode Memory Math");
  gate_ = AddCheck("Check6", "Apply Gate")
              .Key('g')
              .SameRow()
              .Tip("The values as the gate of the time domain leaves them; else as measured");
  comment_ = AddText("Tcomment", "Touchstone  comment")
                 .Key('c')
                 .Wide()
                 .Offers({history_.Entries().begin(), history_.Entries().end()})
                 .Tip("First line of a Touchstone file, before date and time");

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
  history_ = {};
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

MeasurementChoice SaveMeas::Choice() const {
  MeasurementChoice choice;
  choice.Form = kForms[static_cast<std::size_t>(form_.Chosen())];
  for (std::size_t i = 0; i < parameters_.size(); ++i)
    choice.Parameters[i] = parameters_[i]->Checked;
  choice.ApplyMemoryMath = math_->Checked && math_->Enabled;
  choice.ApplyGate = gate_->Checked && gate_->Enabled;
  return choice;
}

void SaveMeas::SaveData() {
  // What the window says now counts, whatever is done to it while the dialog is up.
  const MeasurementChoice choice = Choice();
  const std::string comment = comment_->Text;
  const std::string ending = EndingOf(choice);
  const std::optional<std::string> chosen =
      host_.prompts.Choose({DialogKind::Save, "Save Measurements", session_.InstallFolder,
                            FilterOf(choice.Form), 2, ending});
  if (!chosen) return;
  const std::string path = WithEnding(*chosen, ending);
  const LocalTime now = host_.loop.Now();
  const std::string text =
      MeasurementText(session_, choice, {comment, DateText(now), TimeText(now)});
  if (const Result<Done> written = WriteWhole(path, text); !written) {
    host_.prompts.Tell("Save Measurements", written.Why().Text(), Icon::Exclamation);
    return;
  }
  if (choice.Form != MeasurementForm::Touchstone) return;
  recent_.Note(path);  // the other forms are not read again
  history_.Use(comment);
  ShowHistory();
}

}  // namespace qk
