// SPDX-License-Identifier: MIT
#include "ui/form_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>
#include <QTabWidget>

#include "ui/docks.h"
#include "ui/placement.h"
#include "ui/scroll_body.h"

namespace qk {

void FormWindow::Sync() {
  const QPointer<QWidget> before = Widget().focusWidget();
  const QString title = QString::fromStdString(form_.Caption());
  if (Widget().windowTitle() != title) Widget().setWindowTitle(title);
  const bool ends = busy_ && !form_.Busy();
  if (form_.Busy() && !busy_) worked_ = Widget().focusWidget();
  busy_ = form_.Busy();
  if (binder_.Sync()) Changed();
  if (ends && worked_ != nullptr && worked_->isEnabled()) worked_->setFocus();
  // A focus request made while the form is busy waits for the end: a disabled widget cannot take
  // the focus.
  if (!busy_)
    if (const std::string wish = form_.TakeFocusRequest(); !wish.empty()) GiveFocus(wish);
  if (!busy_ && !ends && before != nullptr && !before->isEnabled())
    if (QWidget* field = FieldOfEnter(); field != nullptr) field->setFocus();
}

QWidget* FormWindow::WidgetNamed(const std::string& control) {
  return Widget().findChild<QWidget*>(QString::fromStdString(control));
}

void FormWindow::ForgetFocus() {
  if (QWidget* last = Widget().focusWidget(); last != nullptr) last->clearFocus();
}

QWidget* FormWindow::FieldOfEnter() {
  for (const Control& control : form_.Controls())
    if (control.Kind == ControlKind::TextField && !control.Returns.empty() && control.Shown &&
        form_.Works(control))
      return WidgetNamed(control.Name);
  return nullptr;
}

void FormWindow::GiveFocus(const std::string& control) {
  QWidget* field = WidgetNamed(control);
  if (field == nullptr) return;
  for (QWidget* page = field; page != nullptr; page = page->parentWidget())
    if (auto* tabs = qobject_cast<QTabWidget*>(page); tabs != nullptr)
      for (int i = 0; i < tabs->count(); ++i)
        if (tabs->widget(i)->isAncestorOf(field)) tabs->setCurrentIndex(i);
  field->setFocus();
  if (auto* text = qobject_cast<QLineEdit*>(field); text != nullptr) text->selectAll();
  Widget().window()->activateWindow();
}

void FormWindow::ShowUp() {
  Widget().show();
  Widget().raise();
}

void FormWindow::ToFront() {
  QWidget& widget = Widget();
  widget.setWindowState(widget.windowState() & ~Qt::WindowMinimized);
  widget.raise();
  widget.activateWindow();
}

DialogWindow::DialogWindow(Form& form, QtHost& host, QWidget* mainWindow)
    : QDialog(mainWindow), FormWindow(form, host) {
  setObjectName(QString::fromStdString(form.Name()));
  if (form.Style().Closable) return;
  setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint);
  setAttribute(Qt::WA_ShowWithoutActivating);
}

void DialogWindow::ShowUp() {
  if (panel_ == nullptr || !panel_->Open(*this)) FormWindow::ShowUp();
}

void DialogWindow::Changed() {
  if (docked_) panel_->ShowLetters();
}

void DialogWindow::HideAway() {
  if (docked_)
    panel_->Close(*this);
  else
    FormWindow::HideAway();
  ForgetFocus();
}

void DialogWindow::ToFront() {
  if (docked_)
    panel_->ToFront(*this);
  else
    FormWindow::ToFront();
}

void DialogWindow::SetDocked(bool on) {
  docked_ = on;
  // As a subwindow it handles Tab and its mnemonics itself.
  setWindowFlags(on ? Qt::SubWindow : Qt::Dialog);
  ShowEdge(!on);
}

void DialogWindow::ShowEdge(bool on) {
  if (on)
    layout()->unsetContentsMargins();
  else
    layout()->setContentsMargins(0, 0, 0, 0);
}

void DialogWindow::ShowDocked() {
  setAttribute(Qt::WA_Moved);  // the panel sets the position, not the toolkit
  QDialog::setVisible(true);
}

int DialogWindow::DockedWidth() const {
  const QMargins margins = layout()->contentsMargins();  // none in the panel; torn off it has them
  const int width = layout()->minimumSize().width() - margins.left() - margins.right();
  return docked_ ? width : width + style()->pixelMetric(QStyle::PM_ScrollBarExtent);
}

void DialogWindow::LimitWidth(int width) {
  if (auto* body = findChild<ScrollBody*>("Body"); body != nullptr) body->LimitWidth(width);
}

void DialogWindow::TakeKeyboard() {
  if (isAncestorOf(QApplication::focusWidget())) return;
  for (const Control& control : GetForm().Controls()) {
    QWidget* widget = WidgetNamed(control.Name);
    if (widget == nullptr || !widget->isEnabled() || !widget->isVisible() ||
        (widget->focusPolicy() & Qt::TabFocus) == 0)
      continue;
    widget->setFocus(Qt::TabFocusReason);
    return;
  }
}

std::vector<DialogWindow::Mnemonic> DialogWindow::Mnemonics() const {
  std::vector<Mnemonic> mnemonics;
  const auto add = [&mnemonics](const QString& text, QWidget* widget) {
    if (const QKeySequence keys = QKeySequence::mnemonic(text); !keys.isEmpty())
      mnemonics.push_back({keys, widget});
  };
  for (QAbstractButton* button : findChildren<QAbstractButton*>())
    if (button->isVisible() && button->isEnabled()) add(button->text(), button);
  for (QLabel* label : findChildren<QLabel*>())
    if (label->isVisible() && label->buddy() != nullptr && label->buddy()->isEnabled())
      add(label->text(), label->buddy());
  return mnemonics;
}

QWidget* DialogWindow::WidgetOfLetter(const QKeyEvent& key) const {
  if (key.modifiers() != Qt::AltModifier) return nullptr;
  const QKeySequence pressed(QKeyCombination(Qt::AltModifier, static_cast<Qt::Key>(key.key())));
  for (const Mnemonic& mnemonic : Mnemonics())
    if (mnemonic.Keys == pressed) return mnemonic.Of;
  return nullptr;
}

std::string DialogWindow::Letters() const {
  std::string letters;
  for (const Mnemonic& mnemonic : Mnemonics()) letters += static_cast<char>(mnemonic.Keys[0].key());
  return letters;
}

bool DialogWindow::event(QEvent* event) {
  if (docked_ && event->type() == QEvent::ShortcutOverride) {
    const auto& key = static_cast<const QKeyEvent&>(*event);
    if (key.matches(QKeySequence::Cancel) || WidgetOfLetter(key) != nullptr) {
      event->accept();
      return true;
    }
  }
  return QDialog::event(event);
}

void DialogWindow::keyPressEvent(QKeyEvent* event) {
  if (QWidget* widget = docked_ ? WidgetOfLetter(*event) : nullptr; widget != nullptr) {
    if (event->isAutoRepeat()) return;
    widget->setFocus(Qt::ShortcutFocusReason);
    if (auto* button = qobject_cast<QAbstractButton*>(widget)) button->animateClick();
    return;
  }
  const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (auto* button = qobject_cast<QPushButton*>(focusWidget()); enter && button != nullptr) {
    button->click();
    return;
  }
  if (enter && event->isAutoRepeat()) return;  // key repeat, in a list or a check box
  QDialog::keyPressEvent(event);
}

void DialogWindow::setVisible(bool visible) {
  if (docked_) {
    QDialog::setVisible(visible);
    return;
  }
  if (visible == isVisible()) return;
  const bool first = visible && !place_ && parentWidget() != nullptr &&
                     GetForm().Style().Closable && !GetForm().Style().Modal;
  if (!visible) {
    place_ = pos();
    ForgetFocus();
  } else {
    adjustSize();
    GrowToContents();
    if (place_)
      move(*place_);  // otherwise the toolkit would add the frame each time
    else if (first)
      move(OpeningPlace());
  }
  QDialog::setVisible(visible);
  if (!visible) return;
  const QSize hidden = size();
  GrowToContents();  // some widgets know their size only when shown
  if (first && size() != hidden) move(OpeningPlace());
  if (focusWidget() == nullptr && GetForm().Style().Closable) TakeKeyboard();
}

// The toolkit limits the initial size to two thirds of the screen.
void DialogWindow::GrowToContents() {
  const QSize whole = SizeOfContents(*this).expandedTo(size());
  if (whole != size()) resize(whole);
}

// Next to the main window, otherwise over the graphs, with the marker table, the switches and START
// and STOP visible.
QPoint DialogWindow::OpeningPlace() const {
  const Surface surface = SurfaceFor(*this, *parentWidget());
  const QSize frame = surface.Main.size() - parentWidget()->size();  // frame of the window system
  return FirstPlace(size() + frame, surface);
}

void DialogWindow::reject() {
  if (GetForm().EscapeCloses()) host().CloseBox(GetForm());
}

void DialogWindow::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) GetBinder().ShowAgain();
}

void DialogWindow::closeEvent(QCloseEvent* event) {
  event->ignore();  // the form decides, and the host hides the window
  host().CloseBox(GetForm());
}

}  // namespace qk
