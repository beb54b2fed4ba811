// SPDX-License-Identifier: MIT
#include "forms/port_cal.h"

#include <algorithm>
#include <utility>

#include "core/busy.h"
#include "core/window_names.h"
#include "forms/cal_progress.h"

namespace qk {

PortCal OpenCal(CalSteps& steps) {
  return {window::kOpenCal,
          "Open Cal",
          {{"Port 1 Open", '1', Standard::OpenPort1}, {"Port 2 Open", '2', Standard::OpenPort2}},
          steps.Open,
          StandardKind::Open};
}

PortCal ShortCal(CalSteps& steps) {
  return {
      window::kShortCal,
      "Short Cal",
      {{"Port 1 Short", '1', Standard::ShortPort1}, {"Port 2 Short", '2', Standard::ShortPort2}},
      steps.Short,
      StandardKind::Short};
}

PortCal MatchCal(CalSteps& steps) {
  return {window::kMatchCal,
          "Load Cal",
          {{"Port 1 Load", '1', Standard::LoadPort1}, {"Port 2 Load", '2', Standard::LoadPort2}},
          steps.Load,
          StandardKind::Load};
}

PortCal ThruCal(CalSteps& steps) {
  return {
      window::kThruCalForm, "Through Cal",         {{"Measure", 'M', Standard::ThruNonInsertable}},
      steps.Thru,           StandardKind::Through, false};
}

PortCalForm::PortCalForm(Rig& rig, LiveStandard& live, PortCal what)
    : Form(what.Name, what.Title, {.Modal = true}), rig_(rig), live_(live), what_(std::move(what)) {
  AddLabel("Label1", "Click to Measure");
  Section("", {.How = Arrange::Row});
  int number = 0;
  for (const PortCal::Sweep& sweep : what_.Sweeps) {
    const auto at = static_cast<std::size_t>(number++);
    buttons_.push_back(
        AddButton("Command" + std::to_string(number), sweep.Caption, [this, at] { Measure(at); })
            .Key(sweep.Key)
            .Tip("Measure; a star marks it as done"));
  }
  ActionRow();
  cancel_ = AddButton("CancelStandard", "Cancel", [this] { live_.Cancel(); })
                .Key('n')
                .WhileBusy()
                .Enabled(false)
                .Tip("Stop this sweep; values measured before are kept (Esc)");
  AddButton("Command" + std::to_string(number + 1), "Exit", [this] {
    if (MayLeave()) rig_.host.windows.Hide(Name());
  }).Key('x');
}

void PortCalForm::OnOpen() {
  std::fill(what_.Steps.begin(), what_.Steps.end(), CalStep());
  OnSessionChanged();
}

void PortCalForm::OnSessionChanged() {
  for (std::size_t i = 0; i < buttons_.size(); ++i)
    buttons_[i].Caption(what_.Sweeps[i].Caption + (what_.Steps[i].Done ? " *" : ""));
}

void PortCalForm::Measure(std::size_t sweep) {
  const BusyScope busy(*this, rig_.host.windows);
  const auto bar = [this, bar = Bar(rig_.host)](int percent) {
    cancel_.Enabled();
    bar(percent);
  };
  const SweepWatch watch =
      live_.Watch(what_.Kind, rig_.session.Plan.NumPoints, bar, Name(), cancel_->Name);
  const bool whole = MeasureStandard(rig_, what_.Sweeps[sweep].Measured, watch);
  live_.Ended();
  cancel_.Enabled(false);
  if (whole || !live_.Cancelled()) what_.Steps[sweep] = {true, !whole};
  rig_.host.windows.SessionChanged();
}

bool PortCalForm::MayLeave() {
  const auto done = [](const CalStep& step) { return step.Done; };
  if (!what_.AsksToLeave || std::all_of(what_.Steps.begin(), what_.Steps.end(), done)) return true;
  // Intentional: the text says "Open" in all three windows; the title identifies the standard.
  return rig_.host.prompts.Ask({what_.Title, "Open cal not complete. Exit anyway?", Icon::Question,
                                Buttons::YesNo}) == Answer::Yes;
}

}  // namespace qk
