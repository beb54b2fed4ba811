// SPDX-License-Identifier: MIT
#include "forms/freq_gen.h"

#include <string>
#include <tuple>

#include "control/verbs.h"
#include "core/busy.h"
#include "core/quantity_text.h"
#include "core/text.h"
#include "core/window_names.h"
#include "forms/lists.h"
#include "link/command_set.h"
#include "sweep/frequency_plan.h"
#include "sweep/up_to_date.h"
#include "utilities/continuous_wave.h"
#include "utilities/port_level.h"
#include "utilities/power_sweep.h"

namespace qk {

namespace {
constexpr const char* kGeneratorTitle = "Signal Gen";
constexpr Complaint kGeneratorComplaint{kGeneratorTitle, Icon::Critical};
constexpr const char* kNotApplied = "Not applied";
}  // namespace

FreqGen::FreqGen(Rig& rig) : Form(window::kFreqGen, "Signal Generator Mode"), rig_(rig) {
  Section("Source on Port 1");
  frequency_ = AddText("Text1", "Freq (MHz)")
                   .Key('F')
                   .Number()
                   .Text("1000.0000")
                   .Chars(24)
                   .Tip("3 to 3080 MHz, rounded to 100 Hz");
  level_ = AddList("Combo1", "Level (dBm)", LevelEntries()).Key('L').Index(0);
  state_ = AddLabel("State", "").Text(kNotApplied).Wide().Bold();
  ActionRow();
  const Handle apply = AddButton("Command1", "Apply", [this] { Apply(); }).Key('A').Default();
  frequency_.Returns(apply);
  AddButton("Command2", "Exit", [this] { Exit(); }).Key('x');
}

void FreqGen::OnOpen() {
  rig_.session.Flags.SigGenActive = true;
}

void FreqGen::OnSessionChanged() {
  if (!rig_.session.Flags.SigGenWave) state_.Text(kNotApplied);
}

bool FreqGen::OnCloseBox() {
  if (!Busy()) Exit();
  return false;  // Exit has already hidden it
}

void FreqGen::Apply() {
  SweepFlags& flags = rig_.session.Flags;
  // START may have been clicked while this window was open.
  if (!flags.Idle()) {
    rig_.host.prompts.ShowMessage("Signal Generator", "Stop Sweep First", Icon::Exclamation);
    return;
  }
  const BusyScope busy(*this, rig_.host.windows);
  rig_.host.loop.Enable(TimerId::Timer1, false);  // until Exit
  flags.SigGenActive = true;
  const GeneratorFrequency chosen = RoundToGenerator(Val(frequency_->Text));
  if (chosen.Reason != nullptr)
    rig_.host.prompts.ShowMessage(kGeneratorTitle, chosen.Reason, Icon::Exclamation);
  const double F = static_cast<double>(chosen.F);
  frequency_.Text(MegahertzNumber(F));
  state_.Text(kNotApplied);
  if (!BringUpToDate(rig_, kGeneratorComplaint)) {
    flags.SigGenWave = false;
    return;
  }
  {
    const Port1LevelKept kept(rig_.session.Plan);
    rig_.session.Plan.Port1Level = static_cast<std::int16_t>(-level_->Index);
    flags.SigGenWave = HoldContinuousWave(rig_, kGeneratorComplaint, F);
    if (!flags.SigGenWave) return;
  }
  state_.Text("Applied: " + MegahertzNumber(F) + " MHz at " + std::to_string(-level_->Index) +
              " dBm");
  // A failure is shown; the record is sent again at Exit, or before the next sweep.
  std::ignore = RestoreFirstPoint(rig_, kGeneratorComplaint);
}

void FreqGen::Exit() {
  Rig& rig = rig_;
  // Restores the record that a broken line left in sweep RAM, if the instrument answers now.
  const double start = rig.session.Plan.StartFreq;
  if (!rig.link.Holds().FirstHz.Is(start) && rig.session.Flags.Idle() && rig.link.LinkCheck()) {
    BuildPointRecord(rig.session, start, 0);
    SendPointRecord(rig, command::kFirstRecordAddress);
  }
  rig.session.Flags.SigGenActive = rig.session.Flags.SigGenWave = false;
  state_.Text(kNotApplied);
  ResumeTimer1(rig);
  rig.host.windows.Hide(Name());
}

}  // namespace qk
