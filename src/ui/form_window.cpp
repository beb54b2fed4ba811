#include "ui/form_window.h"

#include <algorithm>

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPushButton>
#include <QScreen>

namespace qk {

void FormWindow::Sync() {
  const QString title = QString::fromStdString(form_.Caption());
  if (Widget().windowTitle() != title) Widget().setWindowTitle(title);
  binder_.Sync();
}

DialogWindow::DialogWindow(Form& form, QtHost& host, QWidget* mainWindow)
    : QDialog(mainWindow), FormWindow(form, host) {
  setObjectName(QString::fromStdString(form.Name()));
  if (form.Style().Closable) return;
  setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint);
  setAttribute(Qt::WA_ShowWithoutActivating);
}

void DialogWindow::keyPressEvent(QKeyEvent* event) {
  const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (auto* button = qobject_cast<QPushButton*>(focusWidget()); enter && button != nullptr) {
    if (!event->isAutoRepeat()) button->click();
    return;
  }
  QDialog::keyPressEvent(event);
}

void DialogWindow::setVisible(bool visible) {
  if (visible == isVisible()) return;
  if (!visible) {
    place_ = pos();
  } else if (place_) {
    move(*place_);  // the toolkit alone would count the frame in again each time
  } else if (parentWidget() != nullptr && GetForm().Style().Closable && !GetForm().Style().Modal) {
    adjustSize();
    move(FirstPlace());
  }
  QDialog::setVisible(visible);
}

// At the right of the main window, else at its left; where neither has room, in its lower right
// corner, which leaves START and STOP in reach.
QPoint DialogWindow::FirstPlace() const {
  constexpr int kFrame = 8;  // about what the window system draws around
  const QRect main = parentWidget()->frameGeometry();
  const QRect room = parentWidget()->screen()->availableGeometry();
  const int wide = width() + 2 * kFrame;
  if (main.right() + wide <= room.right()) return {main.right() + kFrame, main.top()};
  if (main.left() - wide >= room.left()) return {main.left() - wide, main.top()};
  const int high = height() + 5 * kFrame;
  const int x = std::min(main.right(), room.right()) - wide;
  const int y = std::min(main.bottom(), room.bottom()) - high;
  return {std::max(x, room.left()), std::max(y, room.top())};
}

void DialogWindow::reject() {
  if (GetForm().EscapeCloses()) host().CloseBox(GetForm());
}

void DialogWindow::closeEvent(QCloseEvent* event) {
  event->ignore();  // the form decides, and the host hides
  host().CloseBox(GetForm());
}

}  // namespace qk
