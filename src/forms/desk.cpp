#include "forms/desk.h"

namespace qk {

Form* Desk::Find(std::string_view name) const {
  for (Form* form : forms_)
    if (form->Name() == name) return form;
  return nullptr;
}

void DeskWindows::Show(std::string_view window) {
  Form* form = desk_.Find(window);
  if (form == nullptr || form->Shown) return;
  form->Modal = false;
  form->Shown = true;
  form->OnOpen();
  DoShow(*form);
}

void DeskWindows::ShowModal(std::string_view window) {
  Form* form = desk_.Find(window);
  if (form == nullptr || form->Shown) return;
  form->Modal = true;
  form->Shown = true;
  form->OnOpen();
  DoShow(*form);
  DoModal(*form);
}

void DeskWindows::Hide(std::string_view window) {
  Form* form = desk_.Find(window);
  if (form == nullptr || !form->Shown) return;
  form->Shown = false;
  DoHide(*form);
  form->OnHidden();
}

void DeskWindows::Refresh(std::string_view window) {
  Form* form = desk_.Find(window);
  if (form == nullptr) return;
  form->OnRefresh();
  if (form->Shown) DoRefresh(*form);
}

void DeskWindows::Progress(std::string_view window, std::string_view bar, int percent) {
  Form* form = desk_.Find(window);
  if (form == nullptr || form->Find(bar) == nullptr) return;
  if (form->At(bar).Percent == percent) return;
  (*form)[bar].Percent = percent;
  if (form->Shown) DoRefresh(*form);
}

}  // namespace qk
