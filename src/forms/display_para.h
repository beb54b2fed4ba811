// SPDX-License-Identifier: MIT
// "Display Set Up": per channel parameter, graph type, units, scale and reference; which channels
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
  // Gives Timer1 back, which the Display button took.
  void OnHidden() override;

  // Open for a channel (1 to 4) whose graph was pointed at, with the keyboard in a field. The
  // channels to be displayed are then those that are, so that Apply hides no graph.
  void SetUp(int channel, std::string_view field);

 private:
  void AddChannel();
  void AddAxis();
  void AddDisplay();
  int ChosenChannel() const { return channels_.Chosen() + 1; }
  void ShowChannel();
  // Another channel is chosen: what is typed and not applied for the one before is kept for it.
  void ChannelChosen();
  void KeepDraft();
  void ShowDraft();
  // The fields hold the chosen channel's values, written as they may be.
  bool ShowsChannel() const;
  void TypeChosen();
  // The units beside the fields, and the fields that a Smith chart does not use.
  void ShowUnits();
  void ParameterChosen();
  void ShowDisplayed();
  void SelectAutoscale();
  void ApplyDisplay();
  // The rest of ApplyDisplay once the fields have stood every test.
  void TakeFields();
  // False, after its message, when the fields cannot be applied.
  bool FieldsValid();

  Controller& controller_;
  Session& session_;
  Host& host_;
  // What was typed for a channel and not applied.
  struct Draft {
    int Parameter, Type, Units, Position, Element, Grid;
    std::string Scale, Reference;
  };
  OptionGroup channels_, displays_;
  int shownChannel_ = 1;
  std::array<std::optional<Draft>, 4> drafts_;
  Handle parameter_, type_, units_, scale_, reference_, position_, active_, displayed_, element_,
      grid_;
  EntryGroup channel_;  // what Apply gives to the chosen channel
};

}  // namespace qk
