// "Display Set Up": per channel parameter, graph type, units, scale and reference; which channels
// are displayed and which one is active.
#pragma once

#include "control/controller.h"
#include "core/form.h"
#include "forms/enhance_para.h"

namespace qk {

class DisplayPara : public Form {
 public:
  DisplayPara(Controller& controller, EnhancePara& enhance);

  void OnOpen() override;
  // Gives Timer1 back, which the Display button took.
  void OnHidden() override;

 private:
  int ChosenChannel() const;
  void ShowChannel();
  void TakeNaturalUnit();
  void SelectAutoscale();
  void ApplyDisplay();
  // The rest of ApplyDisplay once the fields have stood every test.
  void TakeFields();
  // False, after its message, when the fields cannot be applied.
  bool FieldsValid();

  Controller& controller_;
  Session& session_;
  Host& host_;
  EnhancePara& enhance_;
};

}  // namespace qk
