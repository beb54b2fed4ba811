// SPDX-License-Identifier: MIT
#include "forms/colours_form.h"

#include <charconv>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "control/colour_scheme.h"
#include "core/window_names.h"

namespace qk {

namespace {

struct Row {
  const char* Caption;
  std::uint32_t Colours::*Colour;
};
constexpr std::array<Row, 7> kRows{{{"Background", &Colours::BackColour},
                                    {"Grid lines", &Colours::GridColour},
                                    {"Data trace / mkr readout", &Colours::DataColour},
                                    {"Memory trace", &Colours::MemoryColour},
                                    {"General text", &Colours::TextColour},
                                    {"Outlines", &Colours::OutlineColour},
                                    {"Limit lines", &Colours::LimitColour}}};

// "#RRGGBB", the colour format of dialogs.
std::string ColourText(std::uint32_t rgb) {
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), "#%06X", static_cast<unsigned>(rgb & 0xFFFFFF));
  return text.data();
}

std::optional<std::uint32_t> ColourNamed(std::string_view text) {
  std::uint32_t rgb = 0;
  if (text.size() != 7 || text[0] != '#') return std::nullopt;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data() + 1, end, rgb, 16);
  if (error != std::errc() || stop != end) return std::nullopt;
  return rgb;
}

}  // namespace

ColoursForm::ColoursForm(Controller& controller)
    : Form(window::kColours, "Set Main Display Colours"),
      controller_(controller),
      session_(controller.rig().session),
      host_(controller.rig().host) {
  Section("", {.How = Arrange::Grid, .Columns = 2});
  for (int row = 0; row < static_cast<int>(kRows.size()); ++row) {
    const auto i = static_cast<std::size_t>(row);
    const std::string number = std::to_string(row + 1);
    AddLabel("Label" + number, kRows[i].Caption);
    boxes_[i] = AddButton("Picture" + number, "", [this, row] {
                  ChooseColour(row);
                }).Tip(std::string("Chooses another colour: ") + kRows[i].Caption);
  }
  Section("");
  printDefaults_ = AddCheck("Check1", "Print using default colours", [this] {
                     session_.Print.PrintDefaultColours = printDefaults_->Checked;
                   }).Key('P');
  AddButton("DarkColours", "Dark colours", [this] { SetColours(DarkColours()); })
      .Key('k')
      .Tip(
          "Light lines on a dark background, for a dark desktop; prints can keep the default "
          "colours");
  ActionRow();
  AddButton("Command1", "Set defaults", [this] { SetColours({}); }).Key('d');
  AddButton("Command2", "Exit", [this] { host_.windows.Hide(Name()); }).Key('x');
  ShowColours();
}

void ColoursForm::ShowColours() {
  for (std::size_t i = 0; i < kRows.size(); ++i) boxes_[i].Swatch(session_.Colour.*kRows[i].Colour);
  printDefaults_.Checked(session_.Print.PrintDefaultColours);
}

void ColoursForm::ChooseColour(int row) {
  std::uint32_t& colour = session_.Colour.*kRows[static_cast<std::size_t>(row)].Colour;
  // The dialog opens with the current colour.
  const auto chosen = host_.prompts.Choose({DialogKind::Colour, "", ColourText(colour), "", 1});
  if (!chosen) return;
  const std::optional<std::uint32_t> rgb = ColourNamed(*chosen);
  if (!rgb) {
    host_.prompts.ShowMessage("Error", "Error 13 selecting color.\nType mismatch", Icon::None);
    return;
  }
  colour = *rgb;
  ShowColours();
  controller_.graphs().RedrawAll(true);
}

void ColoursForm::SetColours(const Colours& colours) {
  session_.Colour = colours;
  ShowColours();
  controller_.graphs().RedrawAll(true);
}

}  // namespace qk
