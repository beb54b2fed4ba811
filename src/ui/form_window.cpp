#include "ui/form_window.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPushButton>

#include "ui/placement.h"

namespace qk {

void FormWindow::Sync() {
  const QString title = QString::fromStdString(form_.Caption());
  if (Widget().windowTitle() != title) Widget().setWindowTitle(title);
  const bool ends = busy_ && !form_.Busy();
  if (form_.Busy() && !busy_) worked_ = Widget().focusWidget();
  busy_ = form_.Busy();
  binder_.Sync();
  if (ends && worked_ != nullptr && worked_->isEnabled()) worked_->setFocus();
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
    button->click();
    return;
  }
  if (enter && event->isAutoRepeat()) return;  // held, over a list or a switch
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
    move(OpeningPlace());
  }
  QDialog::setVisible(visible);
}

// Beside the main window, else over the graphs, where the marker table, the switches and START and
// STOP stay in sight.
QPoint DialogWindow::OpeningPlace() const {
  const Surface surface = SurfaceFor(*this, *parentWidget());
  const QSize frame = surface.Main.size() - parentWidget()->size();  // of the window system
  return FirstPlace(size() + frame, surface);
}

void DialogWindow::reject() {
  if (GetForm().EscapeCloses()) host().CloseBox(GetForm());
}

void DialogWindow::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) GetBinder().ShowAnew();
}

void DialogWindow::closeEvent(QCloseEvent* event) {
  event->ignore();  // the form decides, and the host hides
  host().CloseBox(GetForm());
}

}  // namespace qk
