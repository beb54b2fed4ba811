#include "ui/display_para_window.h"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "ui/layout.h"

namespace qk {

DisplayParaWindow::DisplayParaWindow(Form& form, QtHost& host, QWidget* mainWindow)
    : DialogWindow(form, host, mainWindow) {
  auto* top = new QHBoxLayout;
  top->addWidget(ChannelFrame());
  top->addWidget(AxisFrame());
  QPushButton* apply = GetBinder().Button("ApplyDisplay");
  apply->setDefault(true);
  auto* column = new QVBoxLayout(this);
  column->addLayout(top);
  column->addWidget(DisplayFrame());
  column->addLayout(ButtonRow({apply, GetBinder().Button("CloseDisplayPara")}));
}

QGroupBox* DisplayParaWindow::ChannelFrame() {
  Binder& bind = GetBinder();
  auto* grid = new QGridLayout;
  auto* channels = new QHBoxLayout;
  for (const char* name : {"CH1Select", "CH2Select", "CH3Select", "CH4Select"})
    channels->addWidget(bind.Option(name));
  grid->addLayout(channels, 0, 0, 1, 2);
  const struct {
    const char* Name;
    char Mnemonic;
  } lists[] = {{"ListParameters", 'P'}, {"ListGraphType", 'G'}, {"ListUnits", 'U'}};
  for (const auto& list : lists) {
    QComboBox* box = bind.List(list.Name);
    AddFieldRow(*grid, bind.Caption(list.Name, box), box);
  }
  grid->setRowStretch(grid->rowCount(), 1);
  return Frame(tr("Channel"), grid);
}

QGroupBox* DisplayParaWindow::AxisFrame() {
  Binder& bind = GetBinder();
  auto* grid = new QGridLayout;
  QLineEdit* scale = bind.Text("SensInput");
  QLineEdit* reference = bind.Text("REFinput");
  for (QLineEdit* edit : {scale, reference}) edit->setAlignment(Qt::AlignRight);
  scale->setToolTip(tr("Units for each of the eight divisions"));
  reference->setToolTip(tr("Value at the reference line, in the units chosen"));
  AddFieldRow(*grid, bind.Caption("SensInput", scale), scale, UnitsLabel());
  AddFieldRow(*grid, bind.Caption("REFinput", reference), reference, UnitsLabel());
  QComboBox* position = bind.List("ListRefPos");
  position->setToolTip(tr("Place of the reference line: 1 is the top edge, 9 the bottom"));
  AddFieldRow(*grid, bind.Caption("ListRefPos", position), position);
  QPushButton* autoscale = bind.Button("SelectAutoscale");
  autoscale->setToolTip(tr("Fill in scale and reference from the last sweep; Apply uses them"));
  grid->addWidget(autoscale, grid->rowCount(), 1);
  grid->setRowStretch(grid->rowCount(), 1);
  return Frame(tr("Vertical Axis"), grid);
}

QLabel* DisplayParaWindow::UnitsLabel() {
  auto* label = new QLabel;
  label->setMinimumWidth(label->fontMetrics().horizontalAdvance("deg") + 2);
  GetBinder().Follow("ListUnits", [label](const Control& units) {
    label->setText(QString::fromStdString(units.Value()));
  });
  return label;
}

QGroupBox* DisplayParaWindow::DisplayFrame() {
  Binder& bind = GetBinder();
  auto* row = new QHBoxLayout;
  for (const char* name : {"Option2", "Option3", "Option4", "Option1"})
    row->addWidget(bind.Option(name));
  row->addStretch(1);
  QComboBox* active = bind.List("ActChSel");
  active->setToolTip(tr("The channel whose markers and reference plane are in charge"));
  row->addWidget(bind.Caption("ActChSel", active));
  row->addWidget(active);
  return Frame(tr("Displayed Channels"), row);
}

}  // namespace qk
