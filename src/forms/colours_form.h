// SPDX-License-Identifier: MIT
// "Set Main Display Colours": the seven colours of the picture area, each shown on its button.
#pragma once

#include <array>

#include "control/controller.h"
#include "core/form.h"

namespace qk {

class ColoursForm : public Form {
 public:
  explicit ColoursForm(Controller& controller);

  void OnOpen() override { ShowColours(); }
  void OnSessionChanged() override { ShowColours(); }

 private:
  void ShowColours();
  void ChooseColour(int row);
  void SetColours(const Colours& colours);

  Controller& controller_;
  Session& session_;
  Host& host_;
  std::array<Handle, 7> boxes_;
  Handle printDefaults_;
};

}  // namespace qk
