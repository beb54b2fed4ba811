// SPDX-License-Identifier: MIT
// How a form changes its controls: every setter counts as a change, and user entries are kept where
// required.
#include <algorithm>
#include <utility>

#include "core/form.h"

namespace qk {

// ---- Handle ------------------------------------------------------------------------------------

template <class T>
const Handle& Handle::Set(T Control::*field, T value) const {
  if (control_->*field == value) return *this;
  control_->*field = std::move(value);
  form_->Touch();
  return *this;
}

template <class T>
const Handle& Handle::Put(T Control::*field, T value) const {
  Set(&Control::Edited, false);
  return Set(field, std::move(value));
}

namespace {
int IndexOf(const Control& list, std::string_view entry) {
  const auto it = std::find(list.Entries.begin(), list.Entries.end(), entry);
  return it == list.Entries.end() ? -1 : static_cast<int>(it - list.Entries.begin());
}
}  // namespace

const Handle& Handle::Text(std::string text) const {
  return Put(&Control::Text, std::move(text));
}

const Handle& Handle::EnterText(std::string text) const {
  form_->BeginEdit(control_->Name);
  return Set(&Control::Text, std::move(text));
}

const Handle& Handle::Index(int index) const {
  return Put(&Control::Index, index);
}

const Handle& Handle::ShowEntry(std::string_view entry) const {
  const int index = IndexOf(*control_, entry);
  return index < 0 ? *this : Index(index);
}

const Handle& Handle::Checked(bool on) const {
  if (control_->Kind == ControlKind::OptionButton && on) form_->ChooseAlone(*control_);
  return Put(&Control::Checked, on);
}

const Handle& Handle::Percent(int percent) const {
  return Set(&Control::Percent, percent);
}

const Handle& Handle::Entries(std::vector<std::string> entries) const {
  const std::string selected = control_->Value();
  Set(&Control::Entries, std::move(entries));
  const int index = IndexOf(*control_, selected);
  return Set(&Control::Index, index < 0 && !control_->Entries.empty() ? 0 : index);
}

const Handle& Handle::Offers(std::vector<std::string> texts) const {
  return Set(&Control::Entries, std::move(texts));
}

const Handle& Handle::Swatch(std::uint32_t rgb) const {
  return Set(&Control::Swatch, std::optional<std::uint32_t>(rgb));
}

const Handle& Handle::FollowText(std::string text) const {
  if (!control_->Edited) return Text(std::move(text));
  return Set(&Control::InForce, std::move(text));
}

const Handle& Handle::FollowIndex(int index) const {
  if (!control_->Edited) return Index(index);
  const bool entry = index >= 0 && index < static_cast<int>(control_->Entries.size());
  return Set(&Control::InForce,
             entry ? control_->Entries[static_cast<std::size_t>(index)] : std::string());
}

const Handle& Handle::FollowChecked(bool on) const {
  return control_->Edited ? InForce(on) : Checked(on);
}

const Handle& Handle::InForce(bool on) const {
  return Set(&Control::InForce, std::string(on ? "on" : "off"));
}

const Handle& Handle::Accept() const {
  return Set(&Control::Edited, false);
}

const Handle& Handle::Caption(std::string caption) const {
  return Set(&Control::Caption, std::move(caption));
}

const Handle& Handle::Enabled(bool on) const {
  return Set(&Control::Enabled, on);
}

const Handle& Handle::Shown(bool on) const {
  return Set(&Control::Shown, on);
}

const Handle& Handle::ReadOnly(bool on) const {
  return Set(&Control::ReadOnly, on);
}

const Handle& Handle::Tip(std::string tip) const {
  return Set(&Control::ToolTip, std::move(tip));
}

const Handle& Handle::Key(char letter) const {
  return Set(&Control::Key, letter);
}

const Handle& Handle::Unit(std::string unit) const {
  return Set(&Control::Unit, std::move(unit));
}

const Handle& Handle::Heading(std::string text) const {
  return Set(&Control::Heading, std::move(text));
}

const Handle& Handle::Ticks() const {
  return Set(&Control::Ticks, true);
}

const Handle& Handle::Default() const {
  return Set(&Control::Default, true);
}

const Handle& Handle::Returns(const Handle& button) const {
  return Set(&Control::Returns, button->Name);
}

const Handle& Handle::SameRow() const {
  return Set(&Control::SameRow, true);
}

const Handle& Handle::Wide() const {
  return Set(&Control::Wide, true);
}

const Handle& Handle::Bold() const {
  return Set(&Control::Bold, true);
}

const Handle& Handle::WhileBusy() const {
  return Set(&Control::WhileBusy, true);
}

const Handle& Handle::Number() const {
  return Set(&Control::Numeric, true);
}

const Handle& Handle::Lines(int lines) const {
  return Set(&Control::Lines, lines);
}

const Handle& Handle::Chars(int chars) const {
  return Set(&Control::Chars, chars);
}

const Handle& Handle::Gap(int cells) const {
  return Set(&Control::Gap, cells);
}

const Handle& Handle::Picture(int width, int height, std::function<void(Canvas&)> draw) const {
  control_->PictureWidth = width;
  control_->PictureHeight = height;
  control_->Draw = std::move(draw);
  return Redraw();
}

const Handle& Handle::Redraw() const {
  form_->Touch();
  return *this;
}

// ---- EntryGroup --------------------------------------------------------------------------------

EntryGroup::EntryGroup(std::initializer_list<Handle> controls) {
  for (const Handle& control : controls) Add(control);
}

EntryGroup& EntryGroup::Add(const Handle& control) {
  control.Set(&Control::Grouped, true);
  controls_.push_back(control);
  return *this;
}

EntryGroup& EntryGroup::Add(const OptionGroup& options) {
  for (int i = 0; i < options.Count(); ++i) Add(options[i]);
  return *this;
}

bool EntryGroup::Edited() const {
  return std::any_of(controls_.begin(), controls_.end(),
                     [](const Handle& control) { return control->Edited; });
}

void EntryGroup::Accept() const {
  for (const Handle& control : controls_) control.Accept();
}

// ---- OptionGroup -------------------------------------------------------------------------------

int OptionGroup::Chosen() const {
  for (int i = 0; i < Count(); ++i)
    if ((*this)[i]->Checked) return i;
  return -1;
}

void OptionGroup::Choose(int index) const {
  for (int i = 0; i < Count(); ++i) (*this)[i].Checked(i == index);
}

void OptionGroup::Follow(int index) const {
  const auto edited = [](const Handle& option) { return option->Edited; };
  if (std::none_of(options_.begin(), options_.end(), edited)) return Choose(index);
  for (int i = 0; i < Count(); ++i) (*this)[i].InForce(i == index);
}

void OptionGroup::Enabled(bool on) const {
  for (const Handle& option : options_) option.Enabled(on);
}

const OptionGroup& OptionGroup::Heading(std::string text) const {
  options_.front().Heading(std::move(text));
  return *this;
}

const OptionGroup& OptionGroup::Keys(std::string_view letters) const {
  for (int i = 0; i < Count() && i < static_cast<int>(letters.size()); ++i)
    if (const char letter = letters[static_cast<std::size_t>(i)]; letter != ' ')
      (*this)[i].Key(letter);
  return *this;
}

const OptionGroup& OptionGroup::Tip(const std::string& tip) const {
  for (const Handle& option : options_) option.Tip(tip);
  return *this;
}

}  // namespace qk
