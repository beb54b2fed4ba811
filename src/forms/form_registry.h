// SPDX-License-Identifier: MIT
// All windows of the program by name, and the part of window handling that is common to all skins.
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
  Form* Find(std::string_view name) const;  // nullptr if there is none: for names the user typed
  Form& At(std::string_view name) const;    // throws std::logic_error if there is none
  const std::vector<Form*>& All() const { return forms_; }

 private:
  std::vector<Form*> forms_;
};

// Windows on top of a registry: maintains Form::Shown, calls OnOpen, OnHidden and the session
// change handlers, moves progress bars. A skin implements the toolkit part in the Do functions.
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
  // Called to show a window that is already open: it may be behind another or off-screen.
  virtual void DoRaise(Form&) {}
  // Returns when the form is no longer shown.
  virtual void DoModal(Form& form) = 0;
  // Updates the form's widgets and repaints them at once.
  virtual void DoRefresh(Form& form) = 0;

 private:
  FormRegistry& registry_;
};

}  // namespace qk
