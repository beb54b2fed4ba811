// SPDX-License-Identifier: MIT
// Ties widgets to a form's controls by name: what the user does goes to the form, what the form
// says comes to the widgets. A window makes its widgets here and only lays them out.
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

// caption for a widget: "&" doubled, and a mnemonic mark before the first letter (either case).
QString MnemonicCaption(std::string_view caption, char letter);
// A letter of each caption that no other one has, the first that is free; an earlier caption gives
// way to a later one that would have none. 0 where there is no letter left.
std::vector<char> LettersFor(const std::vector<std::string>& captions);

class Binder {
 public:
  Binder(Form& form, QtHost& host) : form_(form), host_(host) {}

  // One widget for the control of that name, bound. Captions, mnemonics and tool tips come from the
  // form. A name that the form does not have is an error of the program.
  QPushButton* Button(std::string_view name);
  QCheckBox* Check(std::string_view name);
  QRadioButton* Option(std::string_view name);
  QLineEdit* Text(std::string_view name);
  QComboBox* OfferingText(std::string_view name);  // a text with a list of what it offers
  QPlainTextEdit* Memo(std::string_view name);     // a text of several lines
  QComboBox* List(std::string_view name);
  QProgressBar* Progress(std::string_view name);
  QWidget* Picture(std::string_view name);  // draws what the form draws
  // The caption (and the text, when it has one) of a control beside its field.
  QLabel* Caption(std::string_view name, QWidget* buddy = nullptr);
  QLabel* Unit(std::string_view name);
  QAction* Item(std::string_view name, QObject* owner, char mnemonic = 0);
  // The widget that suits the control's kind; a label for a label.
  QWidget* WidgetFor(const Control& control);
  // A control that the window shows by itself (the picture area).
  void Own(std::string_view name);
  // Something else that depends on a control: show runs whenever the form has changed.
  void Follow(std::string_view name, std::function<void(const Control&)> show);

  // Brings the widgets up to date when the form has changed.
  void Sync();
  // Shows all of it anew: the colours of the desktop have changed, of which some fields keep a
  // copy.
  void ShowAnew();
  // What stands typed in fields and has not gone to the form yet.
  void CommitEdits();

  // Controls of the form that no widget shows.
  std::vector<std::string> Unbound() const;

 private:
  void Bind(std::string_view name, std::function<void(const Control&)> show);
  void BindText(std::string_view name, QLineEdit& field);
  void BindButton(std::string_view name, QAbstractButton& button);
  // Runs what the user did to the control, after what still stands typed.
  void Act(const std::function<void()>& action);

  struct Binding {
    const Control* Of;
    std::function<void(const Control&)> Show;
  };
  // A field in which the user types.
  struct Edit {
    std::string Name;
    std::function<bool()> Modified;
    std::function<std::string()> Take;  // the text, which is not modified from then on
    std::string Shown;                  // the control's text as last brought to the field
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
  QObject connections_;  // last: a widget that outlives the binder no longer reaches the form
};

}  // namespace qk
