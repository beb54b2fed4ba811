#include "ui/form_window.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPushButton>

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

void DialogWindow::reject() {
  if (GetForm().EscapeCloses()) host().CloseBox(GetForm());
}

void DialogWindow::closeEvent(QCloseEvent* event) {
  event->ignore();  // the form decides, and the host hides
  host().CloseBox(GetForm());
}

}  // namespace qk
