// SPDX-License-Identifier: MIT
// One control of a window as plain data, and the handle by which its form works it.
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
class Canvas;  // display/canvas.h: what a picture control draws itself on
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

  std::string Text;                     // TextField; also the value of a Label that has one
  bool ReadOnly = false;                // TextField that shows a computed value
  bool Checked = false;                 // CheckBox, OptionButton; MenuItem that ticks
  bool Ticks = false;                   // MenuItem that is on or off
  int Group = 0;                        // OptionButton: one of a form's group is checked
  std::vector<std::string> Entries;     // ListField; of a TextField: what it offers
  int Index = -1;                       // ListField: selected entry, -1 none
  int Percent = 0;                      // ProgressBar
  std::string Menu;                     // MenuItem: title of the menu it stands in ("File")
  std::optional<std::uint32_t> Swatch;  // Button that shows a colour, 0xRRGGBB

  // What a skin needs to lay it out; see Handle for what each means.
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
  int PictureWidth = 0, PictureHeight = 0;  // the size at which a picture is at its best, in pixels

  bool Edited = false;  // the user has typed or chosen since the form last wrote the value

  std::function<void()> Action;  // after a click, a tick, a choice or a typed text; may be empty

  // The value as the console tells it: text, "on"/"off", the selected entry, the percentage.
  std::string Value() const;
};

// A form's own hold on one of its controls. Reading is plain (start_->Text); what changes anything
// counts as a change of the form (Form::Revision), so that skins follow. Every setter gives the
// handle back, so that a control is told in one line:
//   start_ = AddText("Text1", "Start").Unit("MHz").Key('a').Tip("Start frequency").Number();
class Handle {
 public:
  Handle() = default;
  const Control* operator->() const { return control_; }
  const Control& operator*() const { return *control_; }

  // ---- the value ------------------------------------------------------------------------------
  // Each writes over what the user has entered.
  const Handle& Text(std::string text) const;
  const Handle& Index(int index) const;
  const Handle& ShowEntry(std::string_view entry) const;  // nothing when there is no such entry
  const Handle& Checked(bool on = true) const;  // an option takes the check from its group
  const Handle& Percent(int percent) const;
  const Handle& Entries(std::vector<std::string> entries) const;  // the selection stays by its text
  const Handle& Swatch(std::uint32_t rgb) const;
  // TextField: texts that a list beside it offers. The field keeps its own.
  const Handle& Offers(std::vector<std::string> texts) const;
  // The same for OnSessionChanged: what the user has entered and not applied yet stays.
  const Handle& FollowText(std::string text) const;
  const Handle& FollowIndex(int index) const;
  const Handle& FollowChecked(bool on) const;
  // What the user has entered is in force: the control follows the session again.
  const Handle& Accept() const;

  const Handle& Caption(std::string caption) const;
  const Handle& Enabled(bool on = true) const;
  const Handle& Shown(bool on = true) const;
  const Handle& ReadOnly(bool on = true) const;

  // ---- how it stands in its window ------------------------------------------------------------
  const Handle& Tip(std::string tip) const;       // tool tip
  const Handle& Key(char letter) const;           // mnemonic: Alt and this letter of the caption
  const Handle& Unit(std::string unit) const;     // stands behind the field
  const Handle& Heading(std::string text) const;  // before it, where the caption is part of it
  const Handle& Default() const;                  // Button: Enter in the window presses it
  const Handle& Returns(const Handle& button) const;  // TextField: Enter in it presses the button
  const Handle& SameRow() const;                      // stands in the row of the control before it
  const Handle& Wide() const;                         // takes the whole width of its section
  const Handle& Bold() const;                         // Label, Button
  const Handle& WhileBusy() const;                    // Button: works while the form is busy
  const Handle& Ticks() const;                        // MenuItem: it is on or off (Checked)
  const Handle& Number() const;                       // TextField: aligned at its right
  const Handle& Lines(int lines) const;    // TextField of several lines, so many to be seen
  const Handle& Chars(int chars) const;    // TextField: so many characters to be seen
  const Handle& Gap(int cells = 1) const;  // in a grid: cells left free before it
  // Picture: its drawing, and the size at which it is at its best. Redraw has it drawn anew.
  const Handle& Picture(int width, int height, std::function<void(Canvas&)> draw) const;
  const Handle& Redraw() const;

 private:
  friend class Form;
  Handle(Form& form, Control& control) : form_(&form), control_(&control) {}
  template <class T>
  const Handle& Set(T Control::*field, T value) const;
  // Writes a value of the form's own: what the user has entered is gone.
  template <class T>
  const Handle& Put(T Control::*field, T value) const;

  Form* form_ = nullptr;
  Control* control_ = nullptr;
};

// Controls that the user fills in and applies together.
class EntryGroup {
 public:
  EntryGroup() = default;
  EntryGroup(std::initializer_list<Handle> controls) : controls_(controls) {}
  EntryGroup& Add(const Handle& control);
  EntryGroup& Add(const OptionGroup& options);

  // The user has changed one of them, and that is neither in force nor written over.
  bool Edited() const;
  // What is entered is in force.
  void Accept() const;

 private:
  std::vector<Handle> controls_;
};

// Option buttons of which one is chosen, by their place in the group.
class OptionGroup {
 public:
  OptionGroup() = default;
  explicit OptionGroup(std::vector<Handle> options) : options_(std::move(options)) {}
  int Chosen() const;            // -1 none
  void Choose(int index) const;  // without its action; -1 clears the group
  void Follow(int index) const;  // ... unless the user has chosen otherwise and not applied yet
  void Enabled(bool on) const;
  const OptionGroup& Heading(std::string text) const;  // before the first
  // Mnemonics, a letter an option; a blank gives none.
  const OptionGroup& Keys(std::string_view letters) const;
  const OptionGroup& Tip(const std::string& tip) const;
  const Handle& operator[](int index) const { return options_[static_cast<std::size_t>(index)]; }
  int Count() const { return static_cast<int>(options_.size()); }

 private:
  std::vector<Handle> options_;
};

}  // namespace qk
