#include "ui/port_cal_windows.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/layout.h"

namespace qk {

namespace {

// Text above, the measuring buttons in a row, "Exit" at the right below.
void LayOut(QDialog& window, QLabel* text, std::initializer_list<QPushButton*> measure,
            QPushButton* exit) {
  auto* row = new QHBoxLayout;
  for (QPushButton* button : measure) {
    button->setMinimumSize(150, 38);
    button->setToolTip(QDialog::tr("Measure; a star marks it as done"));
    row->addWidget(button);
  }
  auto* column = new QVBoxLayout(&window);
  column->addWidget(text);
  column->addLayout(row);
  column->addSpacing(8);
  column->addLayout(ButtonRow({exit}));
}

}  // namespace

PortCalWindow::PortCalWindow(Form& form, QtHost& host, QWidget* mainWindow)
    : DialogWindow(form, host, mainWindow) {
  Binder& bind = GetBinder();
  QPushButton* first = bind.Button("Command1");
  QPushButton* second = bind.Button("Command2");
  LayOut(*this, bind.Caption("Label1"), {first, second}, bind.Button("Command3"));
}

ThruCalWindow::ThruCalWindow(Form& form, QtHost& host, QWidget* mainWindow)
    : DialogWindow(form, host, mainWindow) {
  Binder& bind = GetBinder();
  QPushButton* measure = bind.Button("Command1");
  LayOut(*this, bind.Caption("Label1"), {measure}, bind.Button("Command2"));
}

}  // namespace qk
