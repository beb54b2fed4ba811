// Ties widgets to a form's controls by name: what the user does goes to the form, what the form
// says comes to the widgets. A window makes its widgets here and only lays them out.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <QString>

#include "core/form.h"

class QAction;
class QAbstractButton;
class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QObject;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QWidget;

namespace qk {

class QtHost;

// caption for a widget: "&" doubled, and a mnemonic mark before the first letter (either case).
QString MnemonicCaption(std::string_view caption, char letter);

class Binder {
 public:
  Binder(Form& form, QtHost& host) : form_(form), host_(host) {}

  // One widget for the control of that name, bound. Captions come from the form; mnemonic is the
  // letter to underline, 0 for none. A name that the form does not have gives a disabled widget
  // and is told by Missing.
  QPushButton* Button(std::string_view name, char mnemonic = 0);
  QCheckBox* Check(std::string_view name, char mnemonic = 0);
  QRadioButton* Option(std::string_view name, char mnemonic = 0);
  QLineEdit* Text(std::string_view name);
  QComboBox* List(std::string_view name);
  QProgressBar* Progress(std::string_view name);
  // The caption (and the text, when it has one) of a control beside its field.
  QLabel* Caption(std::string_view name, QWidget* buddy = nullptr, char mnemonic = 0);
  QAction* Item(std::string_view name, QObject* owner, char mnemonic = 0);
  // A control that the window shows by itself (the picture area).
  void Own(std::string_view name);
  // Something else that depends on a control: show runs whenever the form has changed.
  void Follow(std::string_view name, std::function<void(const Control&)> show);

  // Brings the widgets up to date when the form has changed.
  void Sync();
  // What stands typed in fields and has not gone to the form yet.
  void CommitEdits();

  const std::vector<std::string>& Missing() const { return missing_; }
  // Controls of the form that no widget shows.
  std::vector<std::string> Unbound() const;

 private:
  const Control* Want(std::string_view name);
  void Bind(std::string_view name, std::function<void(const Control&)> show);
  void CommitEdit(const std::string& name, QLineEdit& edit);
  void BindButton(std::string_view name, QAbstractButton& button, char mnemonic);

  struct Binding {
    std::string Name;
    std::function<void(const Control&)> Show;
  };
  struct Edit {
    std::string Name;
    QLineEdit* Field;
    std::string Shown;  // the control's text as last brought to the field
  };

  Form& form_;
  QtHost& host_;
  std::vector<Binding> bindings_;
  std::vector<Edit> edits_;
  std::map<int, QButtonGroup*> groups_;
  std::set<std::string, std::less<>> bound_;
  std::vector<std::string> missing_;
  std::uint64_t revision_ = 0;
};

}  // namespace qk
