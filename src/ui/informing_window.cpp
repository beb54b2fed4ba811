#include "ui/informing_window.h"

#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

namespace qk {

InformingWindow::InformingWindow(Form& form, QtHost& host, QWidget* mainWindow)
    : DialogWindow(form, host, mainWindow) {
  setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint);
  setAttribute(Qt::WA_ShowWithoutActivating);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(24, 20, 24, 20);
  column->setSpacing(12);
  QLabel* text = GetBinder().Caption("Label1");
  text->setAlignment(Qt::AlignCenter);
  column->addWidget(text);
  if (form.Find("ProgressBar1") != nullptr) column->addWidget(GetBinder().Progress("ProgressBar1"));
  setMinimumWidth(300);
}

}  // namespace qk
