// SPDX-License-Identifier: MIT
// "Display Set Up": parameter, graph type, units, scale and reference per channel; which channels
// are displayed and which one is active.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "control/controller.h"
#include "core/form.h"

namespace qk {

class DisplayPara : public Form {
 public:
  explicit DisplayPara(Controller& controller);

  void OnOpen() override;
  void OnSessionChanged() override;
  // Resumes Timer1, which the Display button paused.
  void OnHidden() override;

  // Opens for a channel (1 to 4) whose graph was clicked, with the keyboard focus in a field. The
  // set of displayed channels is preset to the current one, so that Apply hides no graph.
  void SetUp(int channel, std::string_view field);

 private:
  void AddChannel();
  void AddAxis();
  void AddDisplay();
  int ChosenChannel() const { return channels_.Chosen() + 1; }
  void ShowChannel();
  // Another channel was chosen: keeps what was typed but not applied for the previous one.
  void ChannelChosen();
  void KeepDraft();
  void ShowDraft();
  // True if the fields contain the chosen channel's values, in any valid notation.
  bool ShowsChannel() const;
  void TypeChosen();
  // Updates the units next to the fields, and disables the fields that a Smith chart does not use.
  void ShowUnits();
  void ParameterChosen();
  void ShowDisplayed();
  std::string ChangesText() const;
  void SelectAutoscale();
  void ApplyDisplay();
  // The rest of ApplyDisplay after the fields have been validated.
  void TakeFields();
  // False, after a message, if the fields cannot be applied.
  bool FieldsValid();

  Controller& controller_;
  Session& session_;
  Host& host_;
  // Values typed for a channel but not applied.
  struct Draft {
    int Parameter, Type, Units, Position, Element, Grid;
    std::string Scale, Reference;
  };
  OptionGroup channels_, displays_;
  int shownChannel_ = 1;
  std::array<std::optional<Draft>, 4> drafts_;
  Handle parameter_, type_, units_, scale_, reference_, position_, active_, displayed_, element_,
      grid_;
  EntryGroup channel_;  // the fields that Apply writes to the chosen channel
};

}  // namespace qk
