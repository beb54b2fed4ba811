// SPDX-License-Identifier: MIT
// The common part of every window: its form, the binding to it, and the close button of the title
// bar, which calls the form.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <QDialog>
#include <QKeySequence>
#include <QPointer>

#include "ui/binder.h"
#include "ui/qt_host.h"

namespace qk {

class Docks;

class FormWindow {
 public:
  FormWindow(Form& form, QtHost& host) : form_(form), host_(host), binder_(form, host) {}
  virtual ~FormWindow() = default;
  FormWindow(const FormWindow&) = delete;
  FormWindow& operator=(const FormWindow&) = delete;

  virtual QWidget& Widget() = 0;
  Form& GetForm() { return form_; }
  Binder& GetBinder() { return binder_; }
  // Updates title and widgets from the form. While the form is busy with the instrument, all its
  // widgets are disabled and lose the keyboard focus; it is restored afterwards. If the form has
  // disabled the widget with the focus, the focus moves to the first field whose Enter presses a
  // button.
  void Sync();
  // Show the window, hide it, and raise it with the keyboard focus.
  virtual void ShowUp();
  virtual void HideAway() { Widget().hide(); }
  virtual void ToFront();

 protected:
  // Moves the keyboard focus to the control that the form requests, on that control's page.
  void GiveFocus(const std::string& control);
  // The widget of a control; nullptr if it has none.
  QWidget* WidgetNamed(const std::string& control);
  // The window is being closed. The next time the keyboard begins at its first field, not at the
  // button that closed it.
  void ForgetFocus();
  // The widgets have been updated after a change of the form.
  virtual void Changed() {}
  QtHost& host() { return host_; }

 private:
  QWidget* FieldOfEnter();

  Form& form_;
  QtHost& host_;
  Binder binder_;
  QPointer<QWidget> worked_;  // had the focus when the form became busy
  bool busy_ = false;
};

// A window that stays above the main window. Escape acts as the close button if the form allows it.
class DialogWindow : public QDialog, public FormWindow {
 public:
  DialogWindow(Form& form, QtHost& host, QWidget* mainWindow);

  QWidget& Widget() override { return *this; }
  void ShowUp() override;
  void HideAway() override;
  void ToFront() override;
  // Called for Escape.
  void reject() override;

  // The panel in which the window may be docked; nullptr: it floats.
  void MayDock(Docks* panel) { panel_ = panel; }
  // The panel has docked the window or released it; a released window is hidden.
  void SetDocked(bool on);
  void ShowDocked();
  // The margin around its controls. It has none in the panel, to save width.
  void ShowEdge(bool on);
  // The width that the window needs in the panel.
  int DockedWidth() const;
  // In the panel the window takes no more width than this; its content scrolls.
  void LimitWidth(int width);
  // Gives the focus to the first control that accepts it, unless one of them already has it.
  void TakeKeyboard();
  // The mnemonics of its controls that can be used now, as capitals.
  std::string Letters() const;

  // Opens next to the graph the first time, if the screen has room; later at its last position.
  void setVisible(bool visible) override;

 protected:
  void Changed() override;
  // A focused button takes Enter; otherwise the default button does, if there is one.
  void keyPressEvent(QKeyEvent* event) override;
  // A docked window shares the main window's keys: it handles Escape and its own mnemonics.
  bool event(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  // The desktop may change between dark and light while the program runs.
  void changeEvent(QEvent* event) override;

 private:
  void GrowToContents();
  QPoint OpeningPlace() const;
  struct Mnemonic {
    QKeySequence Keys;
    QWidget* Of = nullptr;  // the button, or the field of the label
  };
  // Those of the controls that can be used now: buttons first, then labels.
  std::vector<Mnemonic> Mnemonics() const;
  // The button or the field whose mnemonic is Alt with this key; otherwise nullptr.
  QWidget* WidgetOfLetter(const QKeyEvent& key) const;

  Docks* panel_ = nullptr;
  bool docked_ = false;
  std::optional<QPoint> place_;
};

}  // namespace qk
