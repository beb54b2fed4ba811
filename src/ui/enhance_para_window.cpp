#include "ui/enhance_para_window.h"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/layout.h"

namespace qk {

EnhanceParaWindow::EnhanceParaWindow(Form& form, QtHost& host, QWidget* mainWindow)
    : DialogWindow(form, host, mainWindow) {
  auto* top = new QHBoxLayout;
  top->addWidget(ValuesFrame());
  top->addWidget(PlaneFrame());
  QPushButton* apply = GetBinder().Button("ApplyEnhance");
  apply->setDefault(true);
  apply->setToolTip(tr("Use these values; during a sweep the instrument takes them at its end"));
  auto* column = new QVBoxLayout(this);
  column->addLayout(top);
  column->addStretch(1);
  column->addLayout(ButtonRow({apply, GetBinder().Button("CloseEnhance")}));
}

QGroupBox* EnhanceParaWindow::ValuesFrame() {
  Binder& bind = GetBinder();
  auto* grid = new QGridLayout;
  const struct {
    const char* Name;
    char Mnemonic;
    const char* ToolTip;
  } fields[] = {{"InputAverages", 'v', "Readings added up for each point while averaging is on"},
                {"InputSmoothing", 'S', "Aperture of the smoothing, in percent of the sweep"},
                {"SmoothAper", 0, "The aperture in points, as Apply found it"}};
  for (const auto& field : fields) {
    QLineEdit* edit = bind.Text(field.Name);
    edit->setAlignment(Qt::AlignRight);
    edit->setToolTip(tr(field.ToolTip));
    AddFieldRow(*grid, bind.Caption(field.Name, edit), edit);
  }
  QComboBox* dwell = bind.List("ListDwell");
  dwell->setToolTip(tr("Time at each point before it is measured"));
  AddFieldRow(*grid, bind.Caption("ListDwell", dwell), dwell);
  QComboBox* level = bind.List("ListLevel");
  level->setToolTip(tr("Test signal level at port 1"));
  AddFieldRow(*grid, bind.Caption("ListLevel", level), level);
  grid->setRowStretch(grid->rowCount(), 1);
  return Frame(tr("Set Values"), grid);
}

QGroupBox* EnhanceParaWindow::PlaneFrame() {
  Binder& bind = GetBinder();
  auto* grid = new QGridLayout;
  grid->addWidget(bind.Caption("Label4"), 0, 0, 1, 2);
  QLineEdit* value = bind.Text("TimeInput");
  value->setAlignment(Qt::AlignRight);
  value->setToolTip(tr("Reference plane: a length, or the time light needs for it"));
  AddFieldRow(*grid, bind.Caption("TimeInput", value), value);
  QComboBox* units = bind.List("ListRefPlaneInput");
  AddFieldRow(*grid, bind.Caption("ListRefPlaneInput", units), units);
  QPushButton* find = bind.Button("Command1");
  find->setToolTip(tr("Find the plane from the mean group delay of the last sweep"));
  grid->addWidget(find, grid->rowCount(), 1);
  grid->setRowStretch(grid->rowCount(), 1);
  return Frame(tr("Ref Plane"), grid);
}

}  // namespace qk
