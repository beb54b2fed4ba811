#include "ui/main_window.h"

#include <map>
#include <vector>

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QShortcut>
#include <QStatusBar>
#include <QStyle>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>

#include "ui/layout.h"
#include "ui/picture_view.h"

namespace qk {

namespace {

// The first letter of caption that is not taken yet; 0 when all are.
char FreeLetter(const std::string& caption, std::string& taken) {
  for (const char c : caption) {
    const char lower = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (lower < 'a' || lower > 'z' || taken.find(lower) != std::string::npos) continue;
    taken += lower;
    return lower;
  }
  return 0;
}

// The design is 1024 by 768; on a larger screen the window is larger in proportion, and on a
// smaller one it stays.
QSize FirstSize(const QScreen* screen) {
  const QSize least(1024, 720);
  if (screen == nullptr) return least;
  const QSize room = screen->availableSize() - QSize(8, 40);  // the window system's frame
  return QSize(room.width() * 4 / 5, room.height() * 4 / 5).expandedTo(least).boundedTo(room);
}

struct PanelLook {
  const char* Widest;  // what the panel must hold
  const char* ToolTip;
};
constexpr std::array<PanelLook, 7> kPanels{
    {{"SN. 00000", "Serial number of the instrument"},
     {" 16, 115.2 Kb/s ", "Serial port and speed"},
     {"S11+S21 Cal ? Port 2 Overload!", "Calibration in force, overload and limit messages"},
     {"P1 Level: -20dBm", "Test signal level at port 1"},
     {"Temp -00.0 degC", "Temperature of the receiver"},
     {"SWEEP ON ", "Sweep"},
     {"0000.0000 MHz", "Frequency step of the sweep"}}};

}  // namespace

MainWindow::MainWindow(Form& form, QtHost& host, QtPicture& picture)
    : FormWindow(form, host), picture_(new PictureView(picture, host)) {
  setObjectName(QString::fromStdString(form.Name()));
  GetBinder().Own("PicGraph");
  AddMenus();
  auto* centre = new QWidget;
  auto* row = new QHBoxLayout(centre);
  row->setContentsMargins(6, 6, 6, 6);
  row->addWidget(picture_, 1);
  row->addWidget(Strip());
  setCentralWidget(centre);
  AddStatusBar();
  setAcceptDrops(true);
  resize(FirstSize(screen()));
}

void MainWindow::AddMenus() {
  std::map<std::string, QMenu*> menus;
  std::map<std::string, std::string> taken;
  std::string takenTitles;
  for (const Control& control : GetForm().Controls()) {
    if (control.Kind != ControlKind::MenuItem) continue;
    QMenu*& menu = menus[control.Menu];
    if (menu == nullptr)
      menu =
          menuBar()->addMenu(MnemonicCaption(control.Menu, FreeLetter(control.Menu, takenTitles)));
    menu->addAction(
        GetBinder().Item(control.Name, menu, FreeLetter(control.Caption, taken[control.Menu])));
  }
}

QWidget* MainWindow::Strip() {
  auto* strip = new QWidget;
  auto* column = new QVBoxLayout(strip);
  column->setContentsMargins(0, 0, 0, 0);
  AddMeasurement(*column);

  auto* setUp = new QVBoxLayout;
  QPushButton* calibration = GetBinder().Button("SetCal");
  calibration->setToolTip(tr("Set the sweep, measure the standards, apply the calibration"));
  QPushButton* memory = GetBinder().Button("SetMemory");
  memory->setToolTip(tr("Store traces, combine them with the data, hold extremes"));
  QPushButton* enhancement = GetBinder().Button("SetEnhancement");
  enhancement->setToolTip(
      tr("Averages, smoothing, dwell, level, reference plane, de-embedding, system Zo"));
  QPushButton* display = GetBinder().Button("SetDisplay");
  display->setToolTip(tr("Parameter, graph type and scale of each channel"));
  for (QPushButton* button : {calibration, memory, enhancement, display}) setUp->addWidget(button);
  column->addWidget(Frame(tr("Set Up"), setUp));

  auto* parameters = new QVBoxLayout;
  QPushButton* timeDomain = GetBinder().Button("SetDomain");
  timeDomain->setToolTip(tr("Axis, window and dc term of the time domain"));
  parameters->addWidget(timeDomain);
  column->addWidget(Frame(tr("Set Parameters"), parameters));

  auto* displayed = new QVBoxLayout;
  for (const char* option : {"DisplayData", "DisplayMem_Data", "MemoryMath"})
    displayed->addWidget(GetBinder().Option(option));
  column->addWidget(Frame(tr("Display"), displayed));

  AddSwitch(*column, tr("Averaging"), "AverOff", "AverOn");
  AddSwitch(*column, tr("Smoothing"), "SmoothOff", "SmoothOn");
  column->addStretch(1);
  strip->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
  return strip;
}

void MainWindow::AddMeasurement(QVBoxLayout& strip) {
  QPushButton* start = GetBinder().Button("StartMeasurement");
  QPushButton* stop = GetBinder().Button("StopMeasurement");
  start->setIcon(style()->standardIcon(QStyle::SP_MediaPlay));
  start->setToolTip(tr("Measure, sweep after sweep (F5)"));
  stop->setIcon(style()->standardIcon(QStyle::SP_MediaStop));
  stop->setToolTip(tr("Stop the sweep (Esc)"));
  for (QPushButton* button : {start, stop}) {
    QFont font = button->font();
    font.setBold(true);
    button->setFont(font);
    button->setMinimumHeight(38);
  }
  auto* box = new QVBoxLayout;
  box->addWidget(start);
  box->addWidget(stop);
  strip.addWidget(Frame(tr("Measurement"), box));
  connect(new QShortcut(QKeySequence(Qt::Key_F5), this), &QShortcut::activated, start,
          &QPushButton::click);
  connect(new QShortcut(QKeySequence(Qt::Key_Escape), this), &QShortcut::activated, stop,
          &QPushButton::click);
}

void MainWindow::AddSwitch(QVBoxLayout& strip, const QString& title, const char* off,
                           const char* on) {
  auto* row = new QHBoxLayout;
  row->addWidget(GetBinder().Option(off));
  row->addWidget(GetBinder().Option(on));
  strip.addWidget(Frame(title, row));
}

void MainWindow::AddStatusBar() {
  statusBar()->setSizeGripEnabled(true);
  for (std::size_t i = 0; i < kPanels.size(); ++i) {
    auto* label = new QLabel;
    label->setObjectName("Panel" + QString::number(i + 1));
    label->setTextFormat(Qt::PlainText);
    label->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    label->setMargin(2);
    label->setMinimumWidth(label->fontMetrics().horizontalAdvance(kPanels[i].Widest) + 12);
    label->setToolTip(tr(kPanels[i].ToolTip));
    panels_[i] = label;
    statusBar()->addWidget(label, i == 2 ? 1 : 0);
  }
}

void MainWindow::ShowPanel(int n, const std::string& text) {
  panels_[static_cast<std::size_t>(n - 1)]->setText(QString::fromStdString(text));
}

namespace {
// The one local file that is dragged; empty for anything else.
QString DraggedFile(const QDropEvent& event) {
  const QList<QUrl> urls = event.mimeData()->urls();
  return urls.size() == 1 && urls.front().isLocalFile() ? urls.front().toLocalFile() : QString();
}
}  // namespace

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (DraggedFile(*event).isEmpty() || QApplication::activeModalWidget() != nullptr) return;
  event->setDropAction(Qt::CopyAction);
  event->accept();
}

void MainWindow::dropEvent(QDropEvent* event) {
  const std::string path = DraggedFile(*event).toStdString();
  if (path.empty() || QApplication::activeModalWidget() != nullptr || !OnDrop) return;
  event->setDropAction(Qt::CopyAction);
  event->accept();
  // The program that gave the file waits until this returns: what the load has to say comes later.
  QTimer::singleShot(0, this, [this, path] { host().Act([&] { OnDrop(path); }); });
}

void MainWindow::closeEvent(QCloseEvent* event) {
  event->ignore();  // the process ends without closing
  host().CloseBox(GetForm());
}

}  // namespace qk
