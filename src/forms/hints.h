// SPDX-License-Identifier: MIT
// "Hints": likely mistakes at the bench that the last sweeps show, with their meaning and remedy.
#pragma once

#include "control/controller.h"
#include "core/form.h"

namespace qk {

class HintsForm : public Form {
 public:
  explicit HintsForm(Controller& controller);

  void OnOpen() override { OnSessionChanged(); }
  void OnSessionChanged() override;

 private:
  std::optional<HintKind> Chosen() const;
  void Silence();
  void Explain();
  void Listen();
  void Switch();
  void ShowExplanation();
  std::string WhyNoHint() const;  // the explanation of an empty list

  Controller& controller_;
  Host& host_;
  Handle list_, explanation_, silence_, manual_, on_;
};

// What a hint means and how to fix it, in two or three sentences.
std::string_view HintExplanation(HintKind kind);

}  // namespace qk
