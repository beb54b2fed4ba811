// SPDX-License-Identifier: MIT
// One control of a window as plain data, and the handle through which its form changes it.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qk {

class OptionGroup;
class Canvas;  // display/canvas.h: the surface that a picture control draws on
class Form;

enum class ControlKind {
  Label,
  TextField,
  CheckBox,
  OptionButton,
  ListField,
  Button,
  MenuItem,
  ProgressBar,
  Picture
};

struct Control {
  std::string Name;
  ControlKind Kind = ControlKind::Label;
  std::string Caption;
  bool Enabled = true;
  bool Shown = true;

  std::string Text;                     // TextField; also the value of a Label that shows one
  bool ReadOnly = false;                // TextField that shows a computed value
  bool Checked = false;                 // CheckBox, OptionButton; MenuItem with a tick
  bool Ticks = false;                   // MenuItem that can be on or off
  int Group = 0;                        // OptionButton: only one of each group is checked
  std::vector<std::string> Entries;     // ListField; for a TextField: the suggestions
  int Index = -1;                       // ListField: selected entry, -1 none
  int Percent = 0;                      // ProgressBar
  std::string Menu;                     // MenuItem: title of the menu it belongs to ("File")
  std::optional<std::uint32_t> Swatch;  // Button that shows a colour, 0xRRGGBB

  // Layout hints for a skin; see Handle for their meaning.
  std::string ToolTip;
  std::string Unit;
  std::string Heading;
  std::string Returns;
  char Key = 0;
  bool Default = false;
  bool SameRow = false;
  bool Wide = false;
  bool Bold = false;
  bool WhileBusy = false;
  bool Numeric = false;
  int Lines = 1;
  int Chars = 0;
  int Gap = 0;
  int Section = 0;                          // index of Form::Sections()
  std::function<void(Canvas&)> Draw;        // Picture
  int PictureWidth = 0, PictureHeight = 0;  // preferred size, in pixels

  bool Edited = false;   // the user has changed the value since the form last wrote it
  bool Grouped = false;  // member of an EntryGroup: a button applies the value
  std::string InForce;   // Grouped and Edited: the value that the entry replaced

  std::function<void()> Action;  // runs after a click, a tick, a choice or typed text; may be empty

  // The user has entered another value than the one in force, and has not applied it yet.
  bool Pending() const { return Grouped && Edited && Value() != InForce; }

  // The value as the console prints it: text, "on"/"off", the selected entry, or the percentage.
  std::string Value() const;
};

// A form's handle to one of its controls. Read through it directly (start_->Text). Every setter
// counts as a change of the form (Form::Revision), so that skins update. Every setter returns the
// handle, so that a control is described in one line:
//   start_ = AddText("Text1", "Start").Unit("MHz").Key('a').Tip("Start frequency").Number();
class Handle {
 public:
  Handle() = default;
  const Control* operator->() const { return control_; }
  const Control& operator*() const { return *control_; }

  // ---- the value ------------------------------------------------------------------------------
  // Each of these overwrites what the user has entered.
  const Handle& Text(std::string text) const;
  const Handle& Index(int index) const;
  const Handle& ShowEntry(std::string_view entry) const;  // no effect if there is no such entry
  const Handle& Checked(bool on = true) const;            // checking an option unchecks its group
  const Handle& Percent(int percent) const;
  const Handle& Entries(std::vector<std::string> entries) const;  // keeps the selection by its text
  const Handle& Swatch(std::uint32_t rgb) const;
  // TextField: suggestions, shown in a list beside it. The field keeps its text.
  const Handle& Offers(std::vector<std::string> texts) const;
  // Text that follows from another entry, and is applied with it.
  const Handle& EnterText(std::string text) const;
  // The same for OnSessionChanged: keeps what the user has entered but not yet applied.
  const Handle& FollowText(std::string text) const;
  const Handle& FollowIndex(int index) const;
  const Handle& FollowChecked(bool on) const;
  // The state that an entry which was not applied has replaced.
  const Handle& InForce(bool on) const;
  // The user's entry has been applied: the control follows the session again.
  const Handle& Accept() const;

  const Handle& Caption(std::string caption) const;
  const Handle& Enabled(bool on = true) const;
  const Handle& Shown(bool on = true) const;
  const Handle& ReadOnly(bool on = true) const;

  // ---- layout ---------------------------------------------------------------------------------
  const Handle& Tip(std::string tip) const;       // tool tip
  const Handle& Key(char letter) const;           // mnemonic: Alt and this letter of the caption
  const Handle& Unit(std::string unit) const;     // shown after the field
  const Handle& Heading(std::string text) const;  // label before a control that shows its caption
  const Handle& Default() const;                  // Button: Enter in the window presses it
  const Handle& Returns(const Handle& button) const;  // TextField: Enter in it presses the button
  const Handle& SameRow() const;           // placed in the same row as the previous control
  const Handle& Wide() const;              // takes the full width of its section
  const Handle& Bold() const;              // Label, Button
  const Handle& WhileBusy() const;         // Button: enabled while the form is busy
  const Handle& Ticks() const;             // MenuItem: can be on or off (Checked)
  const Handle& Number() const;            // TextField: right-aligned
  const Handle& Lines(int lines) const;    // TextField with several lines: number of visible lines
  const Handle& Chars(int chars) const;    // TextField: number of visible characters
  const Handle& Gap(int cells = 1) const;  // in a grid: number of empty cells before it
  // Picture: its draw function and its preferred size. Redraw draws it again.
  const Handle& Picture(int width, int height, std::function<void(Canvas&)> draw) const;
  const Handle& Redraw() const;

 private:
  friend class Form;
  friend class EntryGroup;
  Handle(Form& form, Control& control) : form_(&form), control_(&control) {}
  template <class T>
  const Handle& Set(T Control::*field, T value) const;
  // Writes a value from the form: discards what the user has entered.
  template <class T>
  const Handle& Put(T Control::*field, T value) const;

  Form* form_ = nullptr;
  Control* control_ = nullptr;
};

// A group of controls that the user fills in and applies together.
class EntryGroup {
 public:
  EntryGroup() = default;
  EntryGroup(std::initializer_list<Handle> controls);
  EntryGroup& Add(const Handle& control);
  EntryGroup& Add(const OptionGroup& options);

  // The user has changed one of them since the values were last applied or overwritten.
  bool Edited() const;
  // Marks the entered values as applied.
  void Accept() const;

 private:
  std::vector<Handle> controls_;
};

// A group of option buttons of which one is chosen. The index is the position in the group.
class OptionGroup {
 public:
  OptionGroup() = default;
  explicit OptionGroup(std::vector<Handle> options) : options_(std::move(options)) {}
  int Chosen() const;            // -1 none
  void Choose(int index) const;  // does not run the action; -1 clears the group
  void Follow(int index) const;  // the same, but keeps a choice not yet applied
  void Enabled(bool on) const;
  const OptionGroup& Heading(std::string text) const;  // shown before the first
  // Mnemonics, one letter per option; a blank means none.
  const OptionGroup& Keys(std::string_view letters) const;
  const OptionGroup& Tip(const std::string& tip) const;
  const Handle& operator[](int index) const { return options_[static_cast<std::size_t>(index)]; }
  int Count() const { return static_cast<int>(options_.size()); }

 private:
  std::vector<Handle> options_;
};

}  // namespace qk
