// SPDX-License-Identifier: MIT
// What every window of the program has: its form, the ties to it, and the title bar's close
// control, which asks the form.
#pragma once

#include <optional>

#include <QDialog>
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
  // Title and widgets from the form. While that works with the instrument all its widgets are off,
  // which takes the keyboard from them; the one that had it gets it back. From a widget that the
  // form has switched off the keyboard goes to the first field whose Enter presses a button.
  void Sync();
  // On the screen, out of sight, and from behind others to the top with the keyboard.
  virtual void ShowUp();
  virtual void HideAway() { Widget().hide(); }
  virtual void ToFront();

 protected:
  // The keyboard goes where the form wants it, on the page that it stands on.
  void GiveFocus(const std::string& control);
  QtHost& host() { return host_; }

 private:
  QWidget* FieldOfEnter();

  Form& form_;
  QtHost& host_;
  Binder binder_;
  QPointer<QWidget> worked_;  // had the keyboard when the form went to work with the instrument
  bool busy_ = false;
};

// A window beside the main window, over which it stays. Escape does what the close control does,
// where the form has it so.
class DialogWindow : public QDialog, public FormWindow {
 public:
  DialogWindow(Form& form, QtHost& host, QWidget* mainWindow);

  QWidget& Widget() override { return *this; }
  void ShowUp() override;
  void HideAway() override;
  void ToFront() override;
  // Escape.
  void reject() override;

  // The panel in which the window may stand; nullptr: it floats.
  void MayDock(Docks* panel) { panel_ = panel; }
  // The panel has taken it in, or let it go: then it is hidden.
  void SetDocked(bool on);
  void ShowDocked();
  // The edge around its controls. In the panel it has none: there is no width to spare.
  void ShowEdge(bool on);
  // As wide as it has to be in the panel.
  int DockedWidth() const;
  // The first of its controls that takes the keyboard has it, unless one of them does already.
  void TakeKeyboard();

  // The first time beside the graph, where the screen has room; from then on where it stood.
  void setVisible(bool visible) override;

 protected:
  // A focused button takes Enter; from elsewhere it goes to the default button, if there is one.
  void keyPressEvent(QKeyEvent* event) override;
  // Docked, it shares its window with the main window's keys: Escape and its own letters are its.
  bool event(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  // The desktop may turn dark or light while the program runs.
  void changeEvent(QEvent* event) override;

 private:
  void GrowToContents();
  QPoint OpeningPlace() const;
  // The button, or the label of a field, that Alt with this key is the mnemonic of; else nullptr.
  QWidget* WidgetOfLetter(const QKeyEvent& key) const;

  Docks* panel_ = nullptr;
  bool docked_ = false;
  std::optional<QPoint> place_;
};

}  // namespace qk
