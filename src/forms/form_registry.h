// SPDX-License-Identifier: MIT
// All windows of the program by name, and the part of showing them that is the same under every
// skin.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/form.h"
#include "core/host.h"

namespace qk {

class FormRegistry {
 public:
  void Add(Form& form) { forms_.push_back(&form); }
  Form* Find(std::string_view name) const;  // nullptr when there is none: for names the user typed
  Form& At(std::string_view name) const;    // std::logic_error when there is none
  const std::vector<Form*>& All() const { return forms_; }

 private:
  std::vector<Form*> forms_;
};

// Windows over a registry: keeps Form::Shown, calls OnOpen, OnHidden and what
// changes in the session brings, moves progress bars. A skin gives the toolkit's part in the Do
// functions.
class RegistryWindows : public Windows {
 public:
  explicit RegistryWindows(FormRegistry& registry) : registry_(registry) {}

  void Show(std::string_view window) override;
  void Hide(std::string_view window) override;
  void HideForRestart() override;
  void Refresh(std::string_view window) override;
  void SessionChanged() override;
  void SessionLoaded() override;
  void SweepEnded() override;
  void Progress(std::string_view window, std::string_view bar, int percent) override;

 protected:
  FormRegistry& registry() { return registry_; }
  virtual void DoShow(Form& form) = 0;
  virtual void DoHide(Form& form) = 0;
  // Asked for while it is up: it may lie behind another or be out of sight.
  virtual void DoRaise(Form&) {}
  // Returns when the form is no longer shown.
  virtual void DoModal(Form& form) = 0;
  // Brings the form's widgets up to date and repaints them now.
  virtual void DoRefresh(Form& form) = 0;

 private:
  FormRegistry& registry_;
};

}  // namespace qk
