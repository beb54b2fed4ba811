#include "forms/desk.h"

#include <stdexcept>

namespace qk {

Form* Desk::Find(std::string_view name) const {
  for (Form* form : forms_)
    if (form->Name() == name) return form;
  return nullptr;
}

Form& Desk::At(std::string_view name) const {
  if (Form* form = Find(name); form != nullptr) return *form;
  throw std::logic_error("there is no window " + std::string(name));
}

void DeskWindows::Show(std::string_view window) {
  Form& form = desk_.At(window);
  if (form.Shown) {
    DoRaise(form);
    return;
  }
  form.Shown = true;
  form.OnOpen();
  DoShow(form);
  if (form.Style().Modal) DoModal(form);
}

void DeskWindows::Hide(std::string_view window) {
  Form& form = desk_.At(window);
  if (!form.Shown) return;
  form.Shown = false;
  DoHide(form);
  form.OnHidden();
}

void DeskWindows::HideForRestart() {
  for (const Form* form : desk_.All())
    if (form->Style().ClosesOnRestart) Hide(form->Name());
}

void DeskWindows::Refresh(std::string_view window) {
  Form& form = desk_.At(window);
  form.OnRefresh();
  if (form.Shown) DoRefresh(form);
}

void DeskWindows::SessionChanged() {
  for (Form* form : desk_.All()) form->OnSessionChanged();
}

void DeskWindows::Progress(std::string_view window, std::string_view bar, int percent) {
  Form& form = desk_.At(window);
  if (form.At(bar).Percent == percent) return;
  form[bar].Percent = percent;
  if (form.Shown) DoRefresh(form);
}

}  // namespace qk
