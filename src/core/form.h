// A window as plain data: named controls with caption, state and value, and the actions behind
// them. A skin shows a form and calls Click, Type, Tick and Select for what the user does; it
// compares Revision() to know when to bring its widgets up to date.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace qk {

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

  std::string Text;                  // TextField; also the value of a Label that has one
  bool ReadOnly = false;             // TextField that shows a computed value
  bool Checked = false;              // CheckBox, OptionButton
  int Group = 0;                     // OptionButton: one of a form's group is checked
  std::vector<std::string> Entries;  // ListField
  int Index = -1;                    // ListField: selected entry, -1 none
  int Percent = 0;                   // ProgressBar
  std::string Menu;                  // MenuItem: title of the menu it stands in ("File")
  std::string ToolTip;

  std::function<void()> Action;  // after a click, a tick, a choice or a typed text; may be empty

  // The value as the console tells it: text, "on"/"off", the selected entry, the percentage.
  std::string Value() const;
};

class Form {
 public:
  Form(std::string name, std::string caption);
  virtual ~Form() = default;
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  const std::string& Name() const { return name_; }
  const std::string& Caption() const { return caption_; }
  void SetCaption(std::string caption);

  const std::deque<Control>& Controls() const { return controls_; }
  const Control* Find(std::string_view name) const;  // nullptr when there is none
  // For the form's own code: a control that is to change. Counts as a change (Revision). The name
  // must exist.
  Control& operator[](std::string_view name);
  const Control& At(std::string_view name) const;

  // What a user does. False, and nothing happens, when the control is missing, disabled, hidden or
  // of another kind, or when the entry is not in the list.
  bool Click(std::string_view name);
  bool Type(std::string_view name, std::string_view text);
  bool Tick(std::string_view name, bool on);  // an option button ticked on clears its group
  bool Select(std::string_view name, int index);
  bool SelectText(std::string_view name, std::string_view entry);

  // Called by the windows layer before the form is shown, and on Windows::Refresh.
  virtual void OnOpen() {}
  virtual void OnRefresh() {}
  // The title bar's close control. True: the window may be hidden (the usual answer).
  virtual bool OnCloseBox() { return true; }
  virtual void OnHidden() {}

  bool Shown = false;  // kept by the windows layer
  bool Modal = false;  // kept by the windows layer
  std::uint64_t Revision() const { return revision_; }
  void Touch() { ++revision_; }

 protected:
  Control& AddLabel(std::string name, std::string caption);
  Control& AddText(std::string name, std::string caption, std::function<void()> action = {});
  Control& AddCheck(std::string name, std::string caption, std::function<void()> action = {});
  Control& AddOption(std::string name, std::string caption, int group,
                     std::function<void()> action = {});
  Control& AddList(std::string name, std::string caption, std::vector<std::string> entries,
                   std::function<void()> action = {});
  Control& AddButton(std::string name, std::string caption, std::function<void()> action);
  Control& AddMenuItem(std::string menu, std::string name, std::string caption,
                       std::function<void()> action);
  Control& AddProgress(std::string name);
  Control& AddPicture(std::string name);
  // Checks one option button and clears the others of its group, without its action.
  void Choose(std::string_view name);
  // Selects the list entry with that text, without its action; nothing when there is none.
  void ShowEntry(std::string_view name, std::string_view entry);

 private:
  Control* Acted(std::string_view name, ControlKind a, ControlKind b);

  std::string name_;
  std::string caption_;
  std::deque<Control> controls_;
  std::uint64_t revision_ = 1;
};

}  // namespace qk
