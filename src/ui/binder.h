// SPDX-License-Identifier: MIT
// Connects widgets to a form's controls by name: user input goes to the form, changes of the form
// go to the widgets. A window creates its widgets here and only does the layout.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <QObject>
#include <QString>

#include "core/form.h"

class QAction;
class QAbstractButton;
class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QWidget;

namespace qk {

class QtHost;

// The caption for a widget: "&" doubled, and a mnemonic mark before the first occurrence of the
// letter (either case).
QString MnemonicCaption(std::string_view caption, char letter);
// Assigns a unique letter to each caption, the first free one. An earlier caption changes its
// letter if a later one would otherwise have none. 0 if no letter is left.
std::vector<char> LettersFor(const std::vector<std::string>& captions);

class Binder {
 public:
  Binder(Form& form, QtHost& host) : form_(form), host_(host) {}

  // These create and bind one widget for the control with that name. Captions, mnemonics and tool
  // tips come from the form. An unknown name is a programming error.
  QPushButton* Button(std::string_view name);
  QCheckBox* Check(std::string_view name);
  QRadioButton* Option(std::string_view name);
  QLineEdit* Text(std::string_view name);
  QComboBox* OfferingText(std::string_view name);  // a text with a list of suggestions
  QPlainTextEdit* Memo(std::string_view name);     // a multi-line text
  QComboBox* List(std::string_view name);
  QProgressBar* Progress(std::string_view name);
  QWidget* Picture(std::string_view name);  // shows what the form draws
  // The caption (and the text, if it has one) of a control next to its field.
  QLabel* Caption(std::string_view name, QWidget* buddy = nullptr);
  QLabel* Unit(std::string_view name);
  QAction* Item(std::string_view name, QObject* owner, char mnemonic = 0);
  // The widget for the control's kind; a label for a label.
  QWidget* WidgetFor(const Control& control);
  // Marks a control that the window shows itself (the picture area).
  void Own(std::string_view name);
  // For anything else that depends on a control: show runs whenever the form has changed.
  void Follow(std::string_view name, std::function<void(const Control&)> show);

  // Updates the widgets if the form has changed; false if it has not.
  bool Sync();
  // Updates everything after the desktop colours have changed, because some fields keep a copy of
  // them.
  void ShowAgain();
  // Captions with one of these letters (capital) show no mnemonic and have none: another part of
  // the window uses them at the moment.
  void HideLetters(const std::string& letters);
  // Sends text typed in fields to the form if that has not happened yet.
  void CommitEdits();

  // Controls of the form without a widget.
  std::vector<std::string> Unbound() const;

 private:
  void Bind(std::string_view name, std::function<void(const Control&)> show);
  // The control's mnemonic; 0 if it has none or if it is hidden.
  char LetterOf(const Control& control) const;
  void BindText(std::string_view name, QLineEdit& field);
  void BindButton(std::string_view name, QAbstractButton& button);
  // Runs the user's action on the control, after sending text that is still being typed.
  void Act(const std::function<void()>& action);

  struct Binding {
    const Control* Of;
    std::function<void(const Control&)> Show;
  };
  // A field that the user can type in.
  struct Edit {
    std::string Name;
    std::function<bool()> Modified;
    std::function<std::string()> Take;  // the text, marked as unmodified
    std::string Shown;                  // the control's text when last shown in the field
  };
  void CommitEdit(const Edit& edit);
  void ShowText(Edit& edit, const Control& control, const std::function<void(QString)>& write);

  Form& form_;
  QtHost& host_;
  std::vector<Binding> bindings_;
  std::vector<std::unique_ptr<Edit>> edits_;
  std::map<int, QButtonGroup*> groups_;
  std::set<std::string, std::less<>> bound_;
  std::uint64_t revision_ = 0;
  std::string hiddenLetters_;
  QObject connections_;  // last: a widget that outlives the binder must not call the form
};

}  // namespace qk
