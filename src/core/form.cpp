#include "core/form.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace qk {

std::string Control::Value() const {
  switch (Kind) {
    case ControlKind::CheckBox:
    case ControlKind::OptionButton:
      return Checked ? "on" : "off";
    case ControlKind::ListField:
      return Index >= 0 && Index < static_cast<int>(Entries.size())
                 ? Entries[static_cast<std::size_t>(Index)]
                 : std::string();
    case ControlKind::ProgressBar:
      return std::to_string(Percent);
    case ControlKind::Label:
    case ControlKind::TextField:
    case ControlKind::Button:
    case ControlKind::MenuItem:
    case ControlKind::Picture:
      break;
  }
  return Text;
}

Form::Form(std::string name, std::string caption)
    : name_(std::move(name)), caption_(std::move(caption)) {}

void Form::SetCaption(std::string caption) {
  caption_ = std::move(caption);
  Touch();
}

const Control* Form::Find(std::string_view name) const {
  for (const Control& c : controls_)
    if (c.Name == name) return &c;
  return nullptr;
}

const Control& Form::At(std::string_view name) const {
  const Control* c = Find(name);
  assert(c != nullptr);
  return *c;
}

Control& Form::operator[](std::string_view name) {
  Touch();
  return const_cast<Control&>(At(name));
}

Control* Form::Acted(std::string_view name, ControlKind a, ControlKind b) {
  const Control* c = Find(name);
  if (c == nullptr || !c->Enabled || !c->Shown || (c->Kind != a && c->Kind != b)) return nullptr;
  return &(*this)[name];
}

bool Form::Click(std::string_view name) {
  if (Find(name) != nullptr && Find(name)->Kind == ControlKind::OptionButton)
    return Tick(name, true);
  Control* c = Acted(name, ControlKind::Button, ControlKind::MenuItem);
  if (c == nullptr) return false;
  if (c->Action) c->Action();
  return true;
}

bool Form::Type(std::string_view name, std::string_view text) {
  Control* c = Acted(name, ControlKind::TextField, ControlKind::TextField);
  if (c == nullptr || c->ReadOnly) return false;
  c->Text = text;
  if (c->Action) c->Action();
  return true;
}

bool Form::Tick(std::string_view name, bool on) {
  Control* c = Acted(name, ControlKind::CheckBox, ControlKind::OptionButton);
  if (c == nullptr) return false;
  if (c->Kind == ControlKind::OptionButton) {
    if (!on) return false;  // an option is left by choosing another
    Choose(name);
  } else {
    c->Checked = on;
  }
  if (c->Action) c->Action();
  return true;
}

bool Form::Select(std::string_view name, int index) {
  Control* c = Acted(name, ControlKind::ListField, ControlKind::ListField);
  if (c == nullptr || index < 0 || index >= static_cast<int>(c->Entries.size())) return false;
  c->Index = index;
  if (c->Action) c->Action();
  return true;
}

bool Form::SelectText(std::string_view name, std::string_view entry) {
  const Control* c = Find(name);
  if (c == nullptr) return false;
  const auto it = std::find(c->Entries.begin(), c->Entries.end(), entry);
  if (it == c->Entries.end()) return false;
  return Select(name, static_cast<int>(it - c->Entries.begin()));
}

void Form::Choose(std::string_view name) {
  const int group = At(name).Group;
  for (Control& c : controls_)
    if (c.Kind == ControlKind::OptionButton && c.Group == group) c.Checked = c.Name == name;
  Touch();
}

void Form::ShowEntry(std::string_view name, std::string_view entry) {
  const auto& entries = At(name).Entries;
  const auto it = std::find(entries.begin(), entries.end(), entry);
  if (it != entries.end()) (*this)[name].Index = static_cast<int>(it - entries.begin());
}

namespace {
Control Make(std::string name, ControlKind kind, std::string caption,
             std::function<void()> action = {}) {
  Control c;
  c.Name = std::move(name);
  c.Kind = kind;
  c.Caption = std::move(caption);
  c.Action = std::move(action);
  return c;
}
}  // namespace

Control& Form::AddLabel(std::string name, std::string caption) {
  return controls_.emplace_back(Make(std::move(name), ControlKind::Label, std::move(caption)));
}

Control& Form::AddText(std::string name, std::string caption, std::function<void()> action) {
  return controls_.emplace_back(
      Make(std::move(name), ControlKind::TextField, std::move(caption), std::move(action)));
}

Control& Form::AddCheck(std::string name, std::string caption, std::function<void()> action) {
  return controls_.emplace_back(
      Make(std::move(name), ControlKind::CheckBox, std::move(caption), std::move(action)));
}

Control& Form::AddOption(std::string name, std::string caption, int group,
                         std::function<void()> action) {
  Control& c = controls_.emplace_back(
      Make(std::move(name), ControlKind::OptionButton, std::move(caption), std::move(action)));
  c.Group = group;
  return c;
}

Control& Form::AddList(std::string name, std::string caption, std::vector<std::string> entries,
                       std::function<void()> action) {
  Control& c = controls_.emplace_back(
      Make(std::move(name), ControlKind::ListField, std::move(caption), std::move(action)));
  c.Entries = std::move(entries);
  c.Index = c.Entries.empty() ? -1 : 0;
  return c;
}

Control& Form::AddButton(std::string name, std::string caption, std::function<void()> action) {
  return controls_.emplace_back(
      Make(std::move(name), ControlKind::Button, std::move(caption), std::move(action)));
}

Control& Form::AddMenuItem(std::string menu, std::string name, std::string caption,
                           std::function<void()> action) {
  Control& c = controls_.emplace_back(
      Make(std::move(name), ControlKind::MenuItem, std::move(caption), std::move(action)));
  c.Menu = std::move(menu);
  return c;
}

Control& Form::AddProgress(std::string name) {
  return controls_.emplace_back(Make(std::move(name), ControlKind::ProgressBar, ""));
}

Control& Form::AddPicture(std::string name) {
  return controls_.emplace_back(Make(std::move(name), ControlKind::Picture, ""));
}

}  // namespace qk
