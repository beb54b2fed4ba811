#include "ui/form_window.h"

#include <QCloseEvent>

namespace qk {

void FormWindow::Sync() {
  const QString title = QString::fromStdString(form_.Caption());
  if (Widget().windowTitle() != title) Widget().setWindowTitle(title);
  binder_.Sync();
}

DialogWindow::DialogWindow(Form& form, QtHost& host, QWidget* mainWindow)
    : QDialog(mainWindow), FormWindow(form, host) {
  setObjectName(QString::fromStdString(form.Name()));
}

void DialogWindow::closeEvent(QCloseEvent* event) {
  event->ignore();  // the form decides, and the host hides
  host().CloseBox(GetForm());
}

}  // namespace qk
