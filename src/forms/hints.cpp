// SPDX-License-Identifier: MIT
#include "forms/hints.h"

#include <array>

#include "control/quality_verbs.h"
#include "core/window_names.h"

namespace qk {

namespace {
constexpr std::array<std::string_view, kHintKinds> kExplanations{
    // Overload
    "The receiver's converter clips at more than 1 % of the points. The values shown there are too "
    "small. Lower the level of port 1 in Enhancement, or put an attenuator before the port.",
    // GivesPower
    "Without an amplifier between the ports no device can give out more power than it takes in. "
    "The calibration no longer fits: a cable was moved or changed, or a standard was measured "
    "wrongly. Check Calibration shows which term is off.",
    // ReflectionAboveOne
    "A passive device cannot reflect more power than it receives. Check the connector at port 1, "
    "and measure a "
    "standard: if it is wrong too, calibrate again.",
    // NothingConnected
    "Port 1 reflects nearly everything and nothing arrives at port 2.",
    // Unsteady
    "From one sweep to the next the device changes ten times as much as usual. Tighten the "
    "connectors; do not move the cables while a sweep runs.",
    // NotReciprocal
    "A passive device without magnets transmits the same in both directions. Port match or a "
    "cable has changed since the calibration, or a through was measured wrongly.",
    // PhaseTooFast
    "Between two points the phase turns by nearly half a turn or more, so that group delay, "
    "unwrapped phase and time domain are wrong. Take more points or less span.",
    // FoldsBack
    "The time response repeats after 1 / step of the sweep. A later echo appears too early in the "
    "picture. Take a smaller step of the sweep.",
    // NearNoise
    "Where a marker or a lower limit reads the trace, the signal is less than 6 dB above the "
    "noise. "
    "More averages lower the noise; a higher level raises the signal.",
    // Stale
    "The test set drifts with time and temperature. Check Calibration shows within a minute "
    "whether the calibration is still valid.",
    // Interpolated
    "The points of the sweep are not those of the calibration; the error terms are interpolated. "
    "With a "
    "span "
    "or a step much wider than the calibration's, calibrate again."};
}  // namespace

std::string_view HintExplanation(HintKind kind) {
  return kExplanations[static_cast<std::size_t>(kind)];
}

HintsForm::HintsForm(Controller& controller)
    : Form(window::kHints, "Hints"), controller_(controller), host_(controller.rig().host) {
  Section("Seen in the last sweeps");
  list_ = AddList("List", "Hint", {"No hint"}, [this] { ShowExplanation(); }).Key('H').Wide();
  explanation_ = AddText("Explanation", "").ReadOnly().Lines(5).Chars(56).Wide();
  on_ = AddCheck("On", "Show hints under the graphs", [this] { Switch(); }).Key('u');
  ActionRow();
  silence_ = AddButton("Silence", "Silence", [this] { Silence(); })
                 .Key('S')
                 .Tip("Not shown again until the program ends");
  manual_ = AddButton("Manual", "Manual", [this] { Explain(); })
                .Key('M')
                .Tip("Opens the manual at this hint");
  AddButton("Listen", "Show All Again", [this] { Listen(); }).Key('A');
  AddButton("Exit", "Exit", [this] { host_.windows.Hide(Name()); }).Key('x').Default();
}

void HintsForm::OnSessionChanged() {
  const std::vector<Hint> hints = controller_.quality().Hints.Active();
  std::vector<std::string> texts;
  texts.reserve(hints.size() + 1);
  for (const Hint& hint : hints) texts.push_back(hint.Text);
  if (texts.empty()) texts.emplace_back("No hint");
  list_.Entries(texts);
  if (list_->Index < 0) list_.Index(0);
  on_.Checked(controller_.quality().Hints.On());
  ShowExplanation();
}

void HintsForm::ShowExplanation() {
  const auto kind = Chosen();
  explanation_.Text(kind ? std::string(HintExplanation(*kind)) : WhyNoHint());
  silence_.Enabled(kind.has_value());
  manual_.Enabled(kind.has_value());
}

std::string HintsForm::WhyNoHint() const {
  const HintWatch& hints = controller_.quality().Hints;
  if (!hints.On()) return "Hints are switched off.";
  if (hints.Seen() == 0) return "Nothing has been measured yet: hints need two whole sweeps.";
  if (hints.Seen() < HintWatch::kCounted)
    return "One sweep has been measured so far: hints need two whole sweeps.";
  if (const int silenced = hints.Silenced(); silenced > 0)
    return "The last sweeps show nothing else unusual. Silenced hints: " +
           std::to_string(silenced) + " (Show All Again).";
  return "The last sweeps show nothing unusual.";
}

std::optional<HintKind> HintsForm::Chosen() const {
  const std::vector<Hint> hints = controller_.quality().Hints.Active();
  const auto chosen = static_cast<std::size_t>(list_->Index);
  if (list_->Index < 0 || chosen >= hints.size()) return std::nullopt;
  return hints[chosen].Kind;
}

void HintsForm::Silence() {
  if (const auto kind = Chosen()) SilenceHint(controller_, *kind);
}

void HintsForm::Explain() {
  if (const auto kind = Chosen()) ExplainHint(controller_, *kind);
}

void HintsForm::Listen() {
  ListenToHints(controller_);
}

void HintsForm::Switch() {
  SwitchHints(controller_, on_->Checked);
}

}  // namespace qk
