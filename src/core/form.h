// SPDX-License-Identifier: MIT
// A window as plain data: named controls with caption, state and value, their actions, and layout
// hints for a skin. A skin shows a form and calls Click, Type, Tick and Select for user input. It
// compares Revision() to know when to update its widgets.
//
// A form describes its whole window in one file. The Add functions create controls in tab order;
// each control belongs to the most recent section:
//
//   Form(window::kSaveMeas, "Save Measurements", {.Modal = true})
//   Section("Range");
//   start_ = AddText("Text1", "Start").Unit("MHz").Key('a').Number().Tip("First frequency");
//   Section("Format", {.Where = Position::Beside});
//   format_ = AddOptions({{"Option1", "MHz"}, {"Option2", "kHz"}}).Keys("mk");
//   ActionRow();
//   AddButton("Command1", "Save", [this] { Save(); }).Key('S').Default();
//   AddButton("Command2", "Exit", [this] { host_.windows.Hide(Name()); }).Key('x');
//
// Sections are placed in horizontal bands from top to bottom: Below starts a new band, Beside is to
// the right of the previous section, Under is below it in the same column. Sections with the same
// Tab share a page.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/control.h"

namespace qk {

// How the controls of a section are arranged.
enum class Arrange {
  Fields,  // one row each: caption, field, unit; the options of a group share a row
  Grid,    // cells, Columns per row; fields without captions, which are separate labels
  Row,     // from left to right
  Actions  // buttons of equal size, right-aligned
};

enum class Position { Below, Beside, Under };

struct SectionHints {
  Arrange How = Arrange::Fields;
  Position Where = Position::Below;
  int Columns = 2;       // Grid
  std::string Tab = {};  // title of its page
};

struct FormSection {
  std::string Title;  // frame title; without one there is no frame
  SectionHints Hints;
};

// Window behaviour.
struct WindowStyle {
  bool Modal = false;           // blocks the other windows while it is open
  bool ClosesOnRestart = true;  // is hidden when the program restarts
  bool Closable = true;         // has a close button
  bool EscapeCloses = true;
};

class Form {
 public:
  Form(std::string_view name, std::string caption, WindowStyle style = {});
  virtual ~Form() = default;
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  const std::string& Name() const { return name_; }
  const std::string& Caption() const { return caption_; }
  const WindowStyle& Style() const { return style_; }

  const std::deque<Control>& Controls() const { return controls_; }
  const std::vector<FormSection>& Sections() const { return sections_; }
  const Control* Find(
      std::string_view name) const;  // nullptr if there is none: for names the user typed
  // An unknown name is a programming error: throws std::logic_error.
  const Control& At(std::string_view name) const;
  // The same for a control that will be changed; counts as a change of the form.
  Control& operator[](std::string_view name);

  // User actions. They return false and do nothing if the control is missing, disabled, hidden or
  // of another kind, if the entry is not in the list, or while the form is busy.
  bool Click(std::string_view name);
  bool Type(std::string_view name, std::string_view text);
  bool Tick(std::string_view name, bool on);  // checking an option button unchecks its group
  bool Select(std::string_view name, int index);
  bool SelectText(std::string_view name, std::string_view entry);
  // The user has started to type in a field: its text now belongs to the user (Handle::FollowText).
  void BeginEdit(std::string_view name);

  // Called by the windows layer. OnOpen: before the form is shown. OnSessionChanged: when session
  // data that windows show has changed (Windows::SessionChanged), whether or not the form is open.
  // OnSessionLoaded: before that, when a session file has been loaded (Windows::SessionLoaded), to
  // reset entries that must not be kept.
  virtual void OnOpen() {}
  virtual void OnSessionChanged() {}
  virtual void OnSessionLoaded() {}
  // A START sweep has ended, complete or not: forms that show measured values read them again.
  virtual void OnSweepEnded() {}
  // The close button of the title bar. True (the default): the window may be hidden.
  virtual bool OnCloseBox() { return true; }
  // Whether Escape acts as the close button.
  virtual bool EscapeCloses() const { return style_.EscapeCloses; }
  virtual void OnHidden() {}
  // False during an operation that must not be interrupted because it would leave the instrument in
  // a bad state: the program then waits for it before it ends.
  virtual bool MayBeCutOff() const { return true; }

  // Requests keyboard focus for the control. The window applies the request at its next update.
  // Empty: no request.
  void RequestFocus(std::string_view name) {
    focusRequest_ = At(name).Name;
    Touch();
  }
  std::string TakeFocusRequest() { return std::exchange(focusRequest_, {}); }

  bool Shown = false;  // maintained by the windows layer
  // Busy with the instrument (see BusyScope): the controls are disabled.
  bool Busy() const { return busy_ > 0; }
  // The control accepts input now.
  bool Works(const Control& control) const {
    return control.Enabled && (!Busy() || control.WhileBusy);
  }
  // Wraps every control action, so that code can run before and after it; may be empty.
  std::function<void(const std::function<void()>& action)> AroundAction;

  std::uint64_t Revision() const { return revision_; }
  void Touch() { ++revision_; }
  // Unchecks the other options of its group.
  void ChooseAlone(const Control& option);

 protected:
  // Starts a section; the controls that follow belong to it.
  void Section(std::string title, SectionHints hints = {});
  // The row of buttons at the bottom of a window.
  void ActionRow() { Section("", {.How = Arrange::Actions}); }

  using Action = std::function<void()>;
  Handle AddLabel(std::string name, std::string caption);
  Handle AddText(std::string name, std::string caption, Action action = {});
  Handle AddCheck(std::string name, std::string caption, Action action = {});
  Handle AddOption(std::string name, std::string caption, int group, Action action = {});
  struct OptionTexts {
    std::string Name, Caption;
  };
  // A group of options; the action runs after a choice.
  OptionGroup AddOptions(std::vector<OptionTexts> options, Action action = {});
  Handle AddList(std::string name, std::string caption, std::vector<std::string> entries,
                 Action action = {});
  Handle AddButton(std::string name, std::string caption, Action action);
  Handle AddMenuItem(std::string menu, std::string name, std::string caption, Action action);
  Handle AddProgress(std::string name);
  Handle AddPicture(std::string name);
  // Checks one option button and unchecks the others of its group. Does not run its action.
  void Choose(std::string_view name);
  // Selects the list entry with that text. Does not run its action. No effect if there is none.
  void ShowEntry(std::string_view name, std::string_view entry);

 private:
  friend class BusyScope;
  Control* Operated(std::string_view name, ControlKind a, ControlKind b);
  void Run(const Control& control) const;
  Handle Add(std::string name, ControlKind kind, std::string caption, Action action = {});

  std::string name_;
  std::string caption_;
  WindowStyle style_;
  std::deque<Control> controls_;
  std::vector<FormSection> sections_{1};
  int groups_ = 1000;  // the last group number that AddOptions assigned
  int busy_ = 0;
  std::uint64_t revision_ = 1;
  std::string focusRequest_;
};

}  // namespace qk
