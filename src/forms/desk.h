// The desk: all windows of the program by name, and the part of showing them that is the same
// under every skin.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/form.h"
#include "core/host.h"

namespace qk {

class Desk {
 public:
  void Add(Form& form) { forms_.push_back(&form); }
  Form* Find(std::string_view name) const;  // nullptr when there is none: for names of users
  Form& At(std::string_view name) const;    // std::logic_error when there is none
  const std::vector<Form*>& All() const { return forms_; }

 private:
  std::vector<Form*> forms_;
};

// Windows over a desk: keeps Form::Shown, calls OnOpen, OnRefresh and OnHidden,
// moves progress bars. A skin gives the toolkit's part in the Do functions.
class DeskWindows : public Windows {
 public:
  explicit DeskWindows(Desk& desk) : desk_(desk) {}

  void Show(std::string_view window) override;
  void Hide(std::string_view window) override;
  void HideForRestart() override;
  void Refresh(std::string_view window) override;
  void SessionChanged() override;
  void Progress(std::string_view window, std::string_view bar, int percent) override;

 protected:
  Desk& desk() { return desk_; }
  virtual void DoShow(Form& form) = 0;
  virtual void DoHide(Form& form) = 0;
  // Asked for while it is up: it may lie behind another or be out of sight.
  virtual void DoRaise(Form&) {}
  // Returns when the form is no longer shown.
  virtual void DoModal(Form& form) = 0;
  // Brings the form's widgets up to date and repaints them now.
  virtual void DoRefresh(Form& form) = 0;

 private:
  Desk& desk_;
};

}  // namespace qk
