// SPDX-License-Identifier: MIT
// "Hints": what the last sweeps show of mistakes at the bench, with what each means and what helps.
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

  Controller& controller_;
  Host& host_;
  Handle list_, explanation_, silence_, manual_, on_;
};

// What a hint means and what to do, in two or three sentences.
std::string_view HintExplanation(HintKind kind);

}  // namespace qk
