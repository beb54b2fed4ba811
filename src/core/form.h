// SPDX-License-Identifier: MIT
// A window as plain data: named controls with caption, state and value, the actions behind them,
// and what a skin needs to lay them out. A skin shows a form and calls Click, Type, Tick and Select
// for what the user does; it compares Revision() to know when to bring its widgets up to date.
//
// A form says everything about its window in its own file. Controls are made by the Add functions
// in the order of the keyboard, each standing in the section last begun:
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
// Sections stand in bands from top to bottom: Below begins a new band, Beside stands at the right
// of the section before it, Under beneath it in the same column. Sections of one Tab share a page.
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

// How the controls of a section stand.
enum class Arrange {
  Fields,  // a row each: caption, field, unit; options of a group share a row
  Grid,    // cells, so many to a row; fields without their captions, which stand as labels
  Row,     // from left to right
  Actions  // buttons of one size at the right
};

enum class Position { Below, Beside, Under };

struct SectionHints {
  Arrange How = Arrange::Fields;
  Position Where = Position::Below;
  int Columns = 2;       // Grid
  std::string Tab = {};  // title of the page it stands on
};

struct FormSection {
  std::string Title;  // that of its frame; without one there is no frame
  SectionHints Hints;
};

// How a window behaves.
struct WindowStyle {
  bool Modal = false;           // the others are out of reach while it is up
  bool ClosesOnRestart = true;  // goes when the program starts anew
  bool Closable = true;         // has a close control
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
      std::string_view name) const;  // nullptr when there is none: for names of users
  // A name that the form does not have is an error of the program: std::logic_error.
  const Control& At(std::string_view name) const;
  // ... for a control that is to change; counts as a change.
  Control& operator[](std::string_view name);

  // What a user does. False, and nothing happens, when the control is missing, disabled, hidden or
  // of another kind, when the entry is not in the list, or while the form is busy.
  bool Click(std::string_view name);
  bool Type(std::string_view name, std::string_view text);
  bool Tick(std::string_view name, bool on);  // an option button ticked on clears its group
  bool Select(std::string_view name, int index);
  bool SelectText(std::string_view name, std::string_view entry);
  // The user has begun to type in a field: what stands there is his now (Handle::FollowText).
  void BeginEdit(std::string_view name);

  // Called by the windows layer: before the form is shown; when anything that windows show has
  // changed in the session (Windows::SessionChanged), whether it is up or not; and before that when
  // a session file has been loaded (Windows::SessionLoaded), for what must not stay as entered.
  virtual void OnOpen() {}
  virtual void OnSessionChanged() {}
  virtual void OnSessionLoaded() {}
  // A sweep of START has ended, whole or not: what shows measured values reads them again.
  virtual void OnSweepEnded() {}
  // The title bar's close control. True: the window may be hidden (the usual answer).
  virtual bool OnCloseBox() { return true; }
  // Whether Escape is taken for the close control.
  virtual bool EscapeCloses() const { return style_.EscapeCloses; }
  virtual void OnHidden() {}
  // False while it works on what half done would leave the instrument spoilt: the program then ends
  // behind that work.
  virtual bool MayBeCutOff() const { return true; }

  // The keyboard is to go to the control: the window takes the wish when it is next brought up to
  // date. Empty: none.
  void AskFocus(std::string_view name) {
    focusWish_ = At(name).Name;
    Touch();
  }
  std::string TakeFocusWish() { return std::exchange(focusWish_, {}); }

  bool Shown = false;  // kept by the windows layer
  // At work with the instrument (see BusyScope): no control can be worked.
  bool Busy() const { return busy_ > 0; }
  // The control can be worked now.
  bool Works(const Control& control) const {
    return control.Enabled && (!Busy() || control.WhileBusy);
  }
  // Runs each action of a control, so that something can stand around it; may be empty.
  std::function<void(const std::function<void()>& action)> AroundAction;

  std::uint64_t Revision() const { return revision_; }
  void Touch() { ++revision_; }
  // Clears the other options of its group.
  void ChooseAlone(const Control& option);

 protected:
  // Begins a section, in which the controls that follow stand.
  void Section(std::string title, SectionHints hints = {});
  // The row of buttons at the foot of a window.
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
  // Checks one option button and clears the others of its group, without its action.
  void Choose(std::string_view name);
  // Selects the list entry with that text, without its action; nothing when there is none.
  void ShowEntry(std::string_view name, std::string_view entry);

 private:
  friend class BusyScope;
  Control* Acted(std::string_view name, ControlKind a, ControlKind b);
  void Run(const Control& control) const;
  Handle Add(std::string name, ControlKind kind, std::string caption, Action action = {});

  std::string name_;
  std::string caption_;
  WindowStyle style_;
  std::deque<Control> controls_;
  std::vector<FormSection> sections_{1};
  int groups_ = 1000;  // the last group number given by AddOptions
  int busy_ = 0;
  std::uint64_t revision_ = 1;
  std::string focusWish_;
};

}  // namespace qk
