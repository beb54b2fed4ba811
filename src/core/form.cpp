// SPDX-License-Identifier: MIT
#include "core/form.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace qk {

Form::Form(std::string_view name, std::string caption, WindowStyle style)
    : name_(name), caption_(std::move(caption)), style_(style) {}

const Control* Form::Find(std::string_view name) const {
  for (const Control& c : controls_)
    if (c.Name == name) return &c;
  return nullptr;
}

const Control& Form::At(std::string_view name) const {
  if (const Control* c = Find(name); c != nullptr) return *c;
  throw std::logic_error(name_ + " has no control " + std::string(name));
}

Control& Form::operator[](std::string_view name) {
  Touch();
  return const_cast<Control&>(At(name));
}

namespace {
// Keeps the value in force the first time.
void MarkEdited(Control& control) {
  if (!control.Edited && control.Grouped) control.InForce = control.Value();
  control.Edited = true;
}

// Before the first choice in a group of options: keeps which one is in force.
void KeepChoiceInForce(std::deque<Control>& controls, int group) {
  const auto ofGroup = [group](const Control& c) {
    return c.Kind == ControlKind::OptionButton && c.Group == group;
  };
  if (std::any_of(controls.begin(), controls.end(),
                  [&](const Control& c) { return ofGroup(c) && c.Edited; }))
    return;
  for (Control& c : controls)
    if (ofGroup(c) && c.Grouped) c.InForce = c.Value();
}
}  // namespace

Control* Form::Operated(std::string_view name, ControlKind a, ControlKind b) {
  const Control* c = Find(name);
  if (c == nullptr || !Works(*c) || !c->Shown || (c->Kind != a && c->Kind != b)) return nullptr;
  return &(*this)[name];
}

void Form::Run(const Control& control) const {
  if (!control.Action) return;
  if (AroundAction)
    AroundAction(control.Action);
  else
    control.Action();
}

bool Form::Click(std::string_view name) {
  if (Find(name) != nullptr && Find(name)->Kind == ControlKind::OptionButton)
    return Tick(name, true);
  Control* c = Operated(name, ControlKind::Button, ControlKind::MenuItem);
  if (c == nullptr) return false;
  Run(*c);
  return true;
}

bool Form::Type(std::string_view name, std::string_view text) {
  Control* c = Operated(name, ControlKind::TextField, ControlKind::TextField);
  if (c == nullptr || c->ReadOnly) return false;
  MarkEdited(*c);
  c->Text = text;
  Run(*c);
  return true;
}

bool Form::Tick(std::string_view name, bool on) {
  Control* c = Operated(name, ControlKind::CheckBox, ControlKind::OptionButton);
  if (c == nullptr) return false;
  if (c->Kind == ControlKind::OptionButton) {
    if (!on) return false;  // an option is unchecked only by choosing another
    KeepChoiceInForce(controls_, c->Group);
    Choose(name);  // clears the marks of the group
    c->Edited = true;
  } else {
    MarkEdited(*c);
    c->Checked = on;
  }
  Run(*c);
  return true;
}

bool Form::Select(std::string_view name, int index) {
  Control* c = Operated(name, ControlKind::ListField, ControlKind::ListField);
  if (c == nullptr || index < 0 || index >= static_cast<int>(c->Entries.size())) return false;
  MarkEdited(*c);
  c->Index = index;
  Run(*c);
  return true;
}

bool Form::SelectText(std::string_view name, std::string_view entry) {
  const Control* c = Find(name);
  if (c == nullptr) return false;
  const auto it = std::find(c->Entries.begin(), c->Entries.end(), entry);
  if (it == c->Entries.end()) return false;
  return Select(name, static_cast<int>(it - c->Entries.begin()));
}

void Form::BeginEdit(std::string_view name) {
  MarkEdited(const_cast<Control&>(At(name)));
}

void Form::ChooseAlone(const Control& option) {
  for (Control& c : controls_)
    if (c.Kind == ControlKind::OptionButton && c.Group == option.Group) {
      c.Checked = &c == &option;
      c.Edited = false;
    }
  Touch();
}

void Form::Choose(std::string_view name) {
  ChooseAlone(At(name));
}

void Form::ShowEntry(std::string_view name, std::string_view entry) {
  const auto& entries = At(name).Entries;
  const auto it = std::find(entries.begin(), entries.end(), entry);
  if (it != entries.end()) (*this)[name].Index = static_cast<int>(it - entries.begin());
}

// ---- making ------------------------------------------------------------------------------------

void Form::Section(std::string title, SectionHints hints) {
  sections_.push_back({std::move(title), std::move(hints)});
}

Handle Form::Add(std::string name, ControlKind kind, std::string caption, Action action) {
  if (Find(name) != nullptr) throw std::logic_error(name_ + " has two controls " + name);
  Control& c = controls_.emplace_back();
  c.Name = std::move(name);
  c.Kind = kind;
  c.Caption = std::move(caption);
  c.Action = std::move(action);
  c.Section = static_cast<int>(sections_.size()) - 1;
  return Handle(*this, c);
}

Handle Form::AddLabel(std::string name, std::string caption) {
  return Add(std::move(name), ControlKind::Label, std::move(caption));
}

Handle Form::AddText(std::string name, std::string caption, Action action) {
  return Add(std::move(name), ControlKind::TextField, std::move(caption), std::move(action));
}

Handle Form::AddCheck(std::string name, std::string caption, Action action) {
  return Add(std::move(name), ControlKind::CheckBox, std::move(caption), std::move(action));
}

Handle Form::AddOption(std::string name, std::string caption, int group, Action action) {
  const Handle option =
      Add(std::move(name), ControlKind::OptionButton, std::move(caption), std::move(action));
  option.control_->Group = group;
  return option;
}

OptionGroup Form::AddOptions(std::vector<OptionTexts> options, Action action) {
  ++groups_;
  const Action each = std::move(action);
  std::vector<Handle> handles;
  handles.reserve(options.size());
  for (OptionTexts& option : options)
    handles.push_back(AddOption(std::move(option.Name), std::move(option.Caption), groups_, each));
  return OptionGroup(std::move(handles));
}

Handle Form::AddList(std::string name, std::string caption, std::vector<std::string> entries,
                     Action action) {
  const Handle list =
      Add(std::move(name), ControlKind::ListField, std::move(caption), std::move(action));
  list.control_->Index = entries.empty() ? -1 : 0;
  list.control_->Entries = std::move(entries);
  return list;
}

Handle Form::AddButton(std::string name, std::string caption, Action action) {
  return Add(std::move(name), ControlKind::Button, std::move(caption), std::move(action));
}

Handle Form::AddMenuItem(std::string menu, std::string name, std::string caption, Action action) {
  const Handle item =
      Add(std::move(name), ControlKind::MenuItem, std::move(caption), std::move(action));
  item.control_->Menu = std::move(menu);
  return item;
}

Handle Form::AddProgress(std::string name) {
  return Add(std::move(name), ControlKind::ProgressBar, "");
}

Handle Form::AddPicture(std::string name) {
  return Add(std::move(name), ControlKind::Picture, "");
}

}  // namespace qk
