// SPDX-License-Identifier: MIT
#include "forms/form_registry.h"

#include <stdexcept>

namespace qk {

Form* FormRegistry::Find(std::string_view name) const {
  for (Form* form : forms_)
    if (form->Name() == name) return form;
  return nullptr;
}

Form& FormRegistry::At(std::string_view name) const {
  if (Form* form = Find(name); form != nullptr) return *form;
  throw std::logic_error("there is no window " + std::string(name));
}

void RegistryWindows::Show(std::string_view window) {
  Form& form = registry_.At(window);
  if (form.Shown) {
    DoRaise(form);
    return;
  }
  form.Shown = true;
  form.OnOpen();
  DoShow(form);
  if (form.Style().Modal) DoModal(form);
}

void RegistryWindows::Hide(std::string_view window) {
  Form& form = registry_.At(window);
  if (!form.Shown) return;
  form.Shown = false;
  DoHide(form);
  form.OnHidden();
}

void RegistryWindows::HideForRestart() {
  for (const Form* form : registry_.All())
    if (form->Style().ClosesOnRestart) Hide(form->Name());
}

void RegistryWindows::Refresh(std::string_view window) {
  Form& form = registry_.At(window);
  if (form.Shown) DoRefresh(form);
}

void RegistryWindows::SessionChanged() {
  for (Form* form : registry_.All()) form->OnSessionChanged();
}

void RegistryWindows::SweepEnded() {
  for (Form* form : registry_.All()) form->OnSweepEnded();
}

void RegistryWindows::SessionLoaded() {
  for (Form* form : registry_.All()) form->OnSessionLoaded();
  SessionChanged();
}

void RegistryWindows::Progress(std::string_view window, std::string_view bar, int percent) {
  Form& form = registry_.At(window);
  if (form.At(bar).Percent == percent) return;
  form[bar].Percent = percent;
  if (form.Shown) DoRefresh(form);
}

}  // namespace qk
