// SPDX-License-Identifier: MIT
#include "app/bench_window.h"

#include <algorithm>
#include <span>
#include <string_view>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include "ui/mnemonics_are_no_text.h"
#include "ui/placement.h"

namespace qk {

namespace {
constexpr int kRefreshMs = 300;  // delay until a followed prompt is shown
constexpr int kGap = 8;          // between the main window and the bench window next to it
constexpr int kFrame = 8;        // approximate size of the window system's frame around both
constexpr int kLeastMain = 1024;
constexpr int kAxisNumbers = 40;  // below the graphs: their height with a margin

struct Choice {
  const char* Caption;
  const char* Line;       // nullptr: asks for a file
  const char* Described;  // how the bench describes it, or the beginning of that
};
constexpr Choice kDevices[] = {{"Band-pass filter", "filter", "band-pass filter"},
                               {"Through", "through", "through"},
                               {"Attenuator 10 dB", "attenuator 10", "attenuator 10 dB"},
                               {"Line 100 mm", "line 100", "line 100 mm"},
                               {"Amplifier", "amplifier", "amplifier"},
                               {"Filter, not aligned", "filter off -25", "band-pass filter 875"},
                               {"Filter, nearly aligned", "filter off -22", "band-pass filter 878"},
                               {"Touchstone file...", nullptr, "device "}};
constexpr Choice kStandards[] = {
    {"Nothing", "nothing", "nothing"},
    {"Open", "open", "open"},
    {"Short", "short", "short"},
    {"Load", "load", "load"},
    {"Antenna", "antenna", "antenna"},
    {"Broken cable", "open male line 5000 loss 1", "open male offset 0 mm behind"},
    {"Short in a fixture", "short male line 100 loss 0.03", "short male offset 0 mm behind"}};

// A list that connects something. The text is shown while nothing is chosen, in a colour of the
// present palette: the toolkit's own is made for light ones.
void Invite(QComboBox& list, const QString& text) {
  list.setPlaceholderText(text);
  new MnemonicsAreNoText(list);
  QPalette palette = list.palette();
  QColor faint = palette.color(QPalette::ButtonText);
  faint.setAlpha(160);
  palette.setColor(QPalette::PlaceholderText, faint);
  list.setPalette(palette);
}
}  // namespace

BenchWindow::BenchWindow(sim::Instrument& bench)
    : bench_(bench),
      connected_(new QLabel),
      refused_(new QLabel),
      play_(new QPushButton),
      step_(new QLabel) {
  setObjectName("Bench");
  setWindowTitle("Bench");
  setAttribute(Qt::WA_ShowWithoutActivating);
  setWindowFlags(Qt::Tool);

  QFont bold = connected_->font();
  bold.setBold(true);
  connected_->setObjectName("Connected");
  connected_->setFont(bold);
  connected_->setWordWrap(true);
  connected_->setMinimumHeight(3 * connected_->fontMetrics().height());
  connected_->setAlignment(Qt::AlignTop);
  refused_->setWordWrap(true);
  refused_->hide();

  auto* form = new QFormLayout;
  lists_ = {DeviceList(), StandardList("Port1", "port1"), StandardList("Port2", "port2")};
  // No mnemonics of the main window: a key intended for that must do nothing here.
  form->addRow("Device (&0)", lists_[0]);
  form->addRow("Port &1", lists_[1]);
  form->addRow("Port &2", lists_[2]);
  auto* follow = new QCheckBox("Connect what the prompts ask for");
  follow->setObjectName("Follow");
  follow->setChecked(true);
  follow->setToolTip("START connects the device again");
  connect(follow, &QCheckBox::toggled, this,
          [this](bool on) { Run(on ? "follow on" : "follow off"); });

  play_->setObjectName("Play");
  play_->setToolTip("Performs a first measurement in the windows, step by step");
  connect(play_, &QPushButton::clicked, this, [this] {
    if (OnPlay) OnPlay();
  });
  step_->setObjectName("Step");
  step_->setWordWrap(true);
  step_->setMinimumHeight(2 * step_->fontMetrics().height());
  step_->setAlignment(Qt::AlignTop);
  ShowStep({});

  auto* column = new QVBoxLayout(this);
  column->addWidget(connected_);
  column->addLayout(form);
  column->addWidget(follow);
  column->addWidget(refused_);
  column->addWidget(play_);
  column->addWidget(step_);
  column->addStretch(1);
  setMinimumWidth(std::max(280, minimumSizeHint().width()));

  connect(&refresh_, &QTimer::timeout, this, [this] { ShowConnected(); });
  refresh_.start(kRefreshMs);
  ShowConnected();
}

void BenchWindow::MakeRoom(QWidget& main) {
  if (main.testAttribute(Qt::WA_Moved)) return;
  const int own = sizeHint().expandedTo(minimumSize()).width();
  const int left = main.screen()->availableGeometry().width() - own - kGap - kFrame;
  if (left >= kLeastMain && left < main.width()) main.resize(left, main.height());
}

void BenchWindow::PlaceBeside(const QWidget& window) {
  const QRect room = window.screen()->availableGeometry();
  const QRect beside = window.frameGeometry();
  const QSize size = sizeHint().expandedTo(minimumSize());
  const int x = std::min(beside.right() + kGap, room.right() - size.width());
  const int y = std::min(beside.bottom(), room.bottom()) - size.height() - 48;
  move(x, std::max(y, room.top()));
  // Both need native windows before one can be kept above the other.
  winId();
  window.window()->winId();
  over_ = window.window()->windowHandle();
}

bool BenchWindow::LeaveClear(const QWidget& main) {
  Surface surface = SurfaceFor(*this, main);
  surface.Graphs.setBottom(surface.Graphs.bottom() - kAxisNumbers);
  // Before the window system has framed this window, its frame is that of the main window.
  const QSize frame = main.frameSize() - main.size();
  const QRect here(pos(), frameSize().expandedTo(size() + frame));
  if (here.intersects(surface.Main) || !surface.Room.contains(here))
    move(FirstPlace(here.size(), surface));
  const QSize graphs = surface.Graphs.size();
  const QSize covered = (frameGeometry() & surface.Graphs).size();
  return 2 * covered.width() * covered.height() <= graphs.width() * graphs.height();
}

void BenchWindow::setVisible(bool visible) {
  QWindow* own = windowHandle();
  // The transient parent is set when the window is shown. It is the main window only, because
  // windows that are opened later must not be covered.
  if (visible && own != nullptr) own->setTransientParent(over_);
  QWidget::setVisible(visible);
  // The toolkit would also block what belongs to a blocked window.
  if (visible && own != nullptr) own->setTransientParent(nullptr);
}

void BenchWindow::ToFront() {
  show();
  raise();
  activateWindow();
  lists_[0]->setFocus(Qt::TabFocusReason);
}

void BenchWindow::keyPressEvent(QKeyEvent* event) {
  if (!event->matches(QKeySequence::Cancel)) return QWidget::keyPressEvent(event);
  close();
  if (over_ != nullptr) over_->requestActivate();
}

QComboBox* BenchWindow::DeviceList() {
  auto* list = new QComboBox;
  list->setObjectName("Device");
  Invite(*list, "Connect a device between the ports");
  for (const Choice& choice : kDevices) list->addItem(choice.Caption);
  list->setCurrentIndex(-1);
  connect(list, &QComboBox::activated, this, [this](int index) {
    const char* line = kDevices[index].Line;
    if (line != nullptr)
      Run(line);
    else
      RunFile();
  });
  return list;
}

QComboBox* BenchWindow::StandardList(const QString& name, const char* port) {
  auto* list = new QComboBox;
  list->setObjectName(name);
  Invite(*list, "Connect a standard to this port");
  for (const Choice& choice : kStandards) list->addItem(choice.Caption);
  list->setCurrentIndex(-1);
  connect(list, &QComboBox::activated, this,
          [this, port](int index) { Run(std::string(port) + " " + kStandards[index].Line); });
  return list;
}

void BenchWindow::RunFile() {
  const QString path = QFileDialog::getOpenFileName(this, "Device", {}, "Touchstone (*.s1p *.s2p)");
  if (!path.isEmpty())
    Run("device " + path.toStdString());
  else
    ShowInLists();
}

void BenchWindow::Run(const std::string& line) {
  const sim::BenchReply reply = bench_.Bench(line);
  if (!reply.Ok) ShowInLists();  // the choice could not be connected
  refused_->setText(QString::fromStdString(reply.Text));
  refused_->setVisible(!reply.Ok);
  ShowConnected();
}

void BenchWindow::ShowStep(const std::string& step) {
  play_->setText(step.empty() ? "Cal&ibrate and measure for me" : "Stop");
  step_->setText(QString::fromStdString(step));
}

void BenchWindow::ShowConnected() {
  // An open box or modal window has priority; the prompts of the playback itself leave Stop
  // enabled.
  play_->setEnabled(!step_->text().isEmpty() ||
                    (QApplication::activeModalWidget() == nullptr && (!MayPlay || MayPlay())));
  const QString text = "Connected: " + QString::fromStdString(bench_.Describe());
  if (connected_->text() == text) return;
  connected_->setText(text);
  ShowInLists();
}

// The lists show what is actually connected, however it was connected: a device, or a standard at
// each port.
void BenchWindow::ShowInLists() {
  const std::string connected = bench_.Describe();
  const auto show = [this](std::size_t list, std::span<const Choice> choices, std::string_view is) {
    int shown = -1;
    for (std::size_t i = 0; i < choices.size() && !is.empty(); ++i)
      if (is.starts_with(choices[i].Described)) shown = static_cast<int>(i);
    lists_[list]->setCurrentIndex(shown);
  };
  constexpr std::string_view kFirst = "port 1: ", kSecond = "; port 2: ";
  const std::size_t second = connected.find(kSecond);
  if (!connected.starts_with(kFirst) || second == std::string::npos) {
    show(0, kDevices, connected);
    for (const std::size_t port : {1u, 2u}) show(port, kStandards, {});
    return;
  }
  const std::string_view all = connected;
  show(0, kDevices, {});
  show(1, kStandards, all.substr(kFirst.size(), second - kFirst.size()));
  show(2, kStandards, all.substr(second + kSecond.size()));
}

}  // namespace qk
