#include "ui/calibration_window.h"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "ui/layout.h"

namespace qk {

namespace {
constexpr int kStandardHeight = 34;
}

CalibrationWindow::CalibrationWindow(Form& form, QtHost& host, QWidget* mainWindow)
    : DialogWindow(form, host, mainWindow) {
  auto* top = new QHBoxLayout;
  top->addWidget(SweepFrame());
  auto* right = new QVBoxLayout;
  right->addWidget(KindFrame());
  right->addWidget(KitFrame());
  top->addLayout(right, 1);

  auto* standards = new QHBoxLayout;
  standards->addWidget(ReflectionFrame(), 3);
  standards->addWidget(TransmissionFrame(), 2);

  auto* next = GetBinder().Caption("NextStep");
  QFont bold = next->font();
  bold.setBold(true);
  next->setFont(bold);
  next->setWordWrap(true);
  next->setMinimumHeight(2 * next->fontMetrics().height());

  QPushButton* apply = GetBinder().Button("App_Cal");
  apply->setToolTip(tr("Compute the error terms from the measured standards and use them"));
  QPushButton* close = GetBinder().Button("Cls_Cal");

  auto* column = new QVBoxLayout(this);
  column->addLayout(top);
  column->addLayout(standards);
  column->addWidget(GetBinder().Progress("ProgressBar1"));
  column->addWidget(next);
  column->addStretch(1);
  column->addLayout(ButtonRow({apply, close}));
}

QGroupBox* CalibrationWindow::SweepFrame() {
  Binder& bind = GetBinder();
  auto* grid = new QGridLayout;
  const struct {
    const char* Name;
    char Mnemonic;
    const char* ToolTip;
  } fields[] = {{"Text1", 'a', "Start frequency, 3 MHz to 3.08 GHz"},
                {"Text2", 't', "Stop frequency; Apply moves it to the last point of the grid"},
                {"Text3", 0, "Frequency step, as Apply found it: a multiple of 100 Hz"}};
  for (const auto& field : fields) {
    QLineEdit* edit = bind.Text(field.Name);
    edit->setAlignment(Qt::AlignRight);
    edit->setToolTip(tr(field.ToolTip));
    AddFieldRow(*grid, bind.Caption(field.Name, edit), edit,
                UnitLabel(field.Name, field.Mnemonic == 0));
  }
  QComboBox* points = bind.List("PntsCombo");
  points->setToolTip(tr("Points of a sweep; 1024 serve the time domain, 3 MHz to 3072 MHz"));
  AddFieldRow(*grid, bind.Caption("PntsCombo", points), points);
  QComboBox* level = bind.List("LvlCombo");
  level->setToolTip(tr("Test signal level at port 1"));
  AddFieldRow(*grid, bind.Caption("LvlCombo", level), level);

  auto* units = new QHBoxLayout;
  units->addWidget(bind.Option("Option1"));
  units->addWidget(bind.Option("Option2"));
  units->addStretch(1);
  const int row = grid->rowCount();
  grid->addWidget(new QLabel(tr("Unit")), row, 0);
  grid->addLayout(units, row, 1);
  QPushButton* apply = bind.Button("Command1");
  apply->setDefault(true);
  apply->setToolTip(tr("Load this sweep into the instrument"));
  grid->addWidget(apply, row + 1, 1);
  grid->setRowStretch(row + 2, 1);
  return Frame(tr("Set Sweep Frequency"), grid);
}

QLabel* CalibrationWindow::UnitLabel(const char* field, bool computed) {
  auto* label = new QLabel;
  label->setMinimumWidth(label->fontMetrics().horizontalAdvance("MHz") + 2);
  GetBinder().Follow(field,
                     [this, label, computed, shown = std::string()](const Control& c) mutable {
                       if (computed && shown == c.Text && !label->text().isEmpty()) return;
                       shown = c.Text;
                       const Control* megahertz = GetForm().Find("Option1");
                       label->setText(megahertz == nullptr || megahertz->Checked ? "MHz" : "kHz");
                     });
  return label;
}

QGroupBox* CalibrationWindow::KindFrame() {
  Binder& bind = GetBinder();
  auto* grid = new QGridLayout;
  grid->addWidget(bind.Option("Option3"), 0, 0);
  grid->addWidget(bind.Option("Option4"), 1, 0);
  grid->addWidget(bind.Option("Option6"), 2, 0);
  grid->addWidget(new QLabel(tr("All")), 0, 1);
  grid->addWidget(bind.Option("Option5"), 1, 1);
  grid->addWidget(bind.Option("Option7"), 2, 1);
  grid->setColumnMinimumWidth(0, 110);
  grid->setColumnStretch(1, 1);
  return Frame(tr("Calibration"), grid);
}

QGroupBox* CalibrationWindow::KitFrame() {
  Binder& bind = GetBinder();
  auto* grid = new QGridLayout;
  for (const char* name : {"Text4", "Text5"}) {
    QLineEdit* kit = bind.Text(name);
    AddFieldRow(*grid, bind.Caption(name, kit), kit);
  }
  return Frame(tr("Cal Kit Loaded"), grid);
}

QGroupBox* CalibrationWindow::ReflectionFrame() {
  auto* row = new QHBoxLayout;
  const struct {
    const char* Name;
    char Mnemonic;
  } buttons[] = {{"O_Cal", 'O'}, {"S_Cal", 'S'}, {"M_Cal", 'L'}};
  for (const auto& button : buttons) {
    QPushButton* standard = GetBinder().Button(button.Name);
    standard->setMinimumHeight(kStandardHeight);
    standard->setToolTip(tr("Measure this standard; a star marks it as done"));
    row->addWidget(standard);
  }
  return Frame(tr("Reflection"), row);
}

QGroupBox* CalibrationWindow::TransmissionFrame() {
  auto* row = new QHBoxLayout;
  const struct {
    const char* Name;
    char Mnemonic;
  } buttons[] = {{"Thru_Cal", 'h'}, {"Iso_Cal", 'I'}};
  for (const auto& button : buttons) {
    QPushButton* standard = GetBinder().Button(button.Name);
    standard->setMinimumHeight(kStandardHeight);
    standard->setToolTip(tr("Measure this standard; a star marks it as done"));
    row->addWidget(standard);
  }
  return Frame(tr("Transmission"), row);
}

}  // namespace qk
