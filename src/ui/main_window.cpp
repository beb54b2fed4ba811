// SPDX-License-Identifier: MIT
#include "ui/main_window.h"

#include <algorithm>
#include <map>
#include <set>
#include <vector>

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPainter>
#include <QPolygonF>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QStatusBar>
#include <QStyle>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>

#include "control/passing_line.h"
#include "core/text.h"
#include "ui/panel_row.h"
#include "ui/picture_view.h"
#include "ui/section_layout.h"

namespace qk {

namespace {

// Menu items that follow a separator.
bool BeginsGroup(const std::string& item) {
  static const std::set<std::string, std::less<>> kFirst{
      "Printgraphics",   "SaveMeasurements", "Exit",        "Report",    "CopyPicture", "Recent1",
      "AutoscaleActive", "ScaleCoarser",     "MarkerTable", "PresetAll", "UndoLast"};
  return kFirst.contains(item);
}

struct FileKey {
  const char* Item;
  QKeySequence Keys;
};

// The design is 1024 by 768; on a larger screen the window is larger in proportion, and wide enough
// for a set-up window beside the graphs where the screen is.
QSize FirstSize(const QScreen* screen) {
  const QSize least(1280, 720);
  if (screen == nullptr) return least;
  const QSize room = screen->availableSize() - QSize(8, 40);  // frame of the window system
  return QSize(room.width() * 4 / 5, room.height() * 4 / 5).expandedTo(least).boundedTo(room);
}

// Icons with fixed colours that are visible on light and dark palettes.
QIcon DrawnIcon(const QColor& colour, const QPolygonF& shape) {
  QPixmap pixmap(64, 64);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(colour);
  painter.drawPolygon(shape);
  return QIcon(pixmap);
}

QIcon StartIcon() {
  return DrawnIcon(QColor(0x2E, 0xA0, 0x43), QPolygonF({{14, 8}, {56, 32}, {14, 56}}));
}

QIcon StopIcon() {
  return DrawnIcon(QColor(0xD0, 0x3A, 0x3A), QPolygonF({{12, 12}, {52, 12}, {52, 52}, {12, 52}}));
}

// The strip next to the picture. It scrolls if the screen is too low: with large fonts, or on a
// small screen with a scale factor.
class StripArea : public QScrollArea {
 public:
  explicit StripArea(QWidget* strip) {
    setObjectName("Strip");
    setWidget(strip);
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    setFixedWidth(strip->minimumWidth());  // its height is not known yet
  }

 protected:
  void resizeEvent(QResizeEvent* event) override {
    QScrollArea::resizeEvent(event);
    TakeWidth();
  }

 private:
  void TakeWidth() {
    const bool low = height() < widget()->minimumSizeHint().height();
    setFixedWidth(widget()->minimumWidth() + (low ? verticalScrollBar()->sizeHint().width() : 0));
  }
};

}  // namespace

MainWindow::MainWindow(Form& form, QtHost& host, QtPicture& picture)
    : FormWindow(form, host), picture_(new PictureView(picture, host)) {
  setObjectName(QString::fromStdString(form.Name()));
  GetBinder().Own("PicGraph");
  AddMenus();
  AddFileKeys();
  auto* centre = new QWidget;
  auto* row = new QHBoxLayout(centre);
  row->setContentsMargins(6, 6, 6, 6);
  auto* graphs = new QVBoxLayout;
  graphs->addWidget(picture_, 1);
  graphs->addLayout(HintLine());
  row->addLayout(graphs, 1);
  row->addWidget(Strip());
  setCentralWidget(centre);
  AddStatusBar();
  AddNotice();
  AddGraphKeys();
  setAcceptDrops(true);
  resize(FirstSize(screen()));
}

void MainWindow::AddMenus() {
  // By title, in the order of the form.
  std::vector<std::string> titles;
  std::map<std::string, std::vector<const Control*>> items;
  for (const Control& control : GetForm().Controls()) {
    if (control.Kind != ControlKind::MenuItem) continue;
    if (!items.contains(control.Menu)) titles.push_back(control.Menu);
    items[control.Menu].push_back(&control);
  }
  const std::vector<char> titleLetters = LettersFor(titles);
  for (std::size_t t = 0; t < titles.size(); ++t) {
    QMenu* menu = menuBar()->addMenu(MnemonicCaption(titles[t], titleLetters[t]));
    // The menu's list may have changed since it was last shown.
    connect(menu, &QMenu::aboutToShow, this, [this] {
      GetForm().OnSessionChanged();
      GetBinder().Sync();
    });
    std::vector<std::string> captions;
    for (const Control* item : items[titles[t]]) captions.push_back(item->Caption);
    const std::vector<char> letters = LettersFor(captions);
    for (std::size_t i = 0; i < letters.size(); ++i) {
      const Control& item = *items[titles[t]][i];
      if (BeginsGroup(item.Name)) menu->addSeparator();
      menu->addAction(GetBinder().Item(item.Name, menu, letters[i]));
    }
  }
}

// The standard file shortcuts.
void MainWindow::AddFileKeys() {
  for (const FileKey& key : {FileKey{"LoadCal", QKeySequence(Qt::CTRL | Qt::Key_O)},
                             FileKey{"SaveCal", QKeySequence(Qt::CTRL | Qt::Key_S)},
                             FileKey{"Printgraphics", QKeySequence(Qt::CTRL | Qt::Key_P)},
                             FileKey{"CopyPicture", QKeySequence(Qt::CTRL | Qt::Key_C)},
                             FileKey{"UndoLast", QKeySequence(Qt::CTRL | Qt::Key_Z)}}) {
    auto* item = findChild<QAction*>(key.Item);
    item->setShortcut(key.Keys);
    item->setAutoRepeat(false);
  }
  // Also from the other windows; a text field with the focus uses its own.
  findChild<QAction*>("UndoLast")->setShortcutContext(Qt::ApplicationShortcut);
}

// The frames of the form, from top to bottom.
QWidget* MainWindow::Strip() {
  auto* strip = new QWidget;
  auto* column = new QVBoxLayout(strip);
  column->setContentsMargins(0, 0, 0, 0);
  const int sections = static_cast<int>(GetForm().Sections().size());
  const int picture = GetForm().At("PicGraph").Section;
  for (int section = 0; section < sections; ++section) {
    if (section == picture) continue;
    if (QWidget* frame = LaidOutSection(GetBinder(), GetForm(), section); frame != nullptr)
      column->addWidget(frame);
  }
  column->addStretch(1);
  GetBinder().Sync();
  StyleMeasurement(*strip);
  strip->setFixedWidth(strip->sizeHint().width() + 12);
  return new StripArea(strip);
}

void MainWindow::StyleMeasurement(QWidget& strip) {
  auto* start = strip.findChild<QPushButton*>("StartMeasurement");
  auto* stop = strip.findChild<QPushButton*>("StopMeasurement");
  start->setIcon(StartIcon());
  stop->setIcon(StopIcon());
  for (QPushButton* button : {start, stop}) button->setMinimumHeight(38);
  // START works from every non-blocked window of the program. STOP works only here, because in
  // other windows Escape closes them.
  auto* f5 = new QShortcut(QKeySequence(Qt::Key_F5), this);
  f5->setContext(Qt::ApplicationShortcut);
  f5->setAutoRepeat(false);
  connect(f5, &QShortcut::activated, this, [start] {
    if (QApplication::activeModalWidget() == nullptr) start->click();
  });
  // An Escape that closed a window or a box does not stop a sweep, however long it is held, nor
  // does a second one immediately after it.
  auto* escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
  escape->setAutoRepeat(false);
  qApp->installEventFilter(this);
  connect(escape, &QShortcut::activated, this, [this, stop] {
    if (!escapeElsewhere_.isValid() ||
        escapeElsewhere_.hasExpired(QApplication::doubleClickInterval()))
      stop->click();
  });
  // A single sweep from every window, like START.
  auto* f6 = new QShortcut(QKeySequence(Qt::Key_F6), this);
  f6->setContext(Qt::ApplicationShortcut);
  f6->setAutoRepeat(false);
  auto* single = strip.findChild<QPushButton*>("SingleSweep");
  connect(f6, &QShortcut::activated, this, [single] {
    if (QApplication::activeModalWidget() == nullptr) single->click();
  });
}

namespace {
struct ItemKey {
  const char* Item;
  const char* Keys;
};
constexpr ItemKey kItemKeys[] = {{"AutoscaleActive", "Ctrl+A"}, {"AutoscaleAll", "Ctrl+Shift+A"},
                                 {"ScaleCoarser", "Ctrl+-"},    {"ScaleFiner", "Ctrl++"},
                                 {"ReferenceUp", "Ctrl+Up"},    {"ReferenceDown", "Ctrl+Down"},
                                 {"MarkerLeft", "Ctrl+Left"},   {"MarkerRight", "Ctrl+Right"}};
}  // namespace

// Keyboard shortcuts for the mouse operations on a graph.
void MainWindow::AddGraphKeys() {
  for (const ItemKey& key : kItemKeys)
    if (auto* item = findChild<QAction*>(key.Item); item != nullptr)
      item->setShortcut(QKeySequence(QString::fromLatin1(key.Keys)));
  for (const QKeySequence& keys :
       {QKeySequence(Qt::Key_Menu), QKeySequence(Qt::SHIFT | Qt::Key_F10)})
    connect(new QShortcut(keys, this), &QShortcut::activated, this, [this] {
      if (OnGraphMenu) OnGraphMenu();
    });
}

// A line below the graphs, shown while there is a hint.
QLayout* MainWindow::HintLine() {
  QPushButton* line = GetBinder().Button("Hint");
  line->setFlat(true);
  line->setFocusPolicy(Qt::TabFocus);
  line->setStyleSheet("text-align: left; padding: 2px 6px;");
  line->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  line->setIcon(style()->standardIcon(QStyle::SP_MessageBoxWarning));
  QPushButton* silence = GetBinder().Button("SilenceHint");
  silence->setFlat(true);
  silence->setFocusPolicy(Qt::TabFocus);
  silence->setStyleSheet("padding: 2px 6px;");
  auto* row = new QHBoxLayout;  // takes no space while both are hidden
  row->addWidget(line, 1);
  row->addWidget(silence);
  return row;
}

// The passing line, to the right of the menus, where it covers nothing.
void MainWindow::AddNotice() {
  notice_ = new QLabel;
  notice_->setObjectName("Notice");
  notice_->setTextFormat(Qt::PlainText);
  notice_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  notice_->setContentsMargins(0, 0, 8, 0);
  menuBar()->setCornerWidget(notice_, Qt::TopRightCorner);
  auto* passed = new QTimer(this);
  passed->setSingleShot(true);
  passed->setTimerType(Qt::PreciseTimer);  // if early, the line would not yet have expired
  passed->setInterval(PassingLine::kStaysMs + 50);
  connect(passed, &QTimer::timeout, this, [this] {
    GetForm().OnSessionChanged();
    GetBinder().Sync();
  });
  GetBinder().Follow("Notice", [this, passed](const Control& c) {
    if (notice_->toolTip() == QString::fromStdString(c.Caption)) return;
    notice_->setToolTip(QString::fromStdString(c.Caption));
    FitNotice();
    if (!c.Caption.empty()) passed->start();
  });
}

// Shortens the text to the space beside the menus; the tool tip shows all of it.
void MainWindow::FitNotice() {
  int menus = 0;
  for (QAction* action : menuBar()->actions())
    menus += menuBar()->fontMetrics().horizontalAdvance(action->text()) + 24;
  const int room = std::max(0, width() - menus);
  notice_->setMaximumWidth(room);
  notice_->setText(
      notice_->fontMetrics().elidedText(notice_->toolTip(), Qt::ElideRight, room - 12));
  // A menu bar places its corner by the text of that moment, and again only when it is set.
  menuBar()->setCornerWidget(notice_, Qt::TopRightCorner);
}

void MainWindow::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  if (notice_ != nullptr) FitNotice();
}

void MainWindow::AddStatusBar() {
  statusBar()->setSizeGripEnabled(true);
  panels_ = new PanelRow;
  statusBar()->addWidget(panels_, 1);
}

void MainWindow::HideLetters(const std::string& letters) {
  GetBinder().HideLetters(letters);
  for (QAction* menu : menuBar()->actions()) {
    // The title with its mnemonic, kept while another is shown.
    if (!menu->data().isValid()) menu->setData(menu->text());
    const QString title = menu->data().toString();
    const QKeySequence keys = QKeySequence::mnemonic(title);
    const bool hidden =
        !keys.isEmpty() && letters.find(static_cast<char>(keys[0].key())) != std::string::npos;
    const QString shown = hidden ? QString(title).remove('&') : title;
    if (menu->text() != shown) menu->setText(shown);
  }
}

void MainWindow::ShowPanel(Panel panel, const std::string& text) {
  panels_->Show(panel, QString::fromStdString(text));
}

void MainWindow::RemarkOn(Panel panel, const std::string& remark) {
  panels_->Remark(panel, QString::fromStdString(remark));
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress &&
      static_cast<const QKeyEvent*>(event)->key() == Qt::Key_Escape) {
    const QWidget* at = QApplication::focusWidget();
    while (at != nullptr && qobject_cast<const QDialog*>(at) == nullptr) at = at->parentWidget();
    if (at != nullptr || QApplication::activeWindow() != this) escapeElsewhere_.start();
  }
  return QMainWindow::eventFilter(watched, event);
}

namespace {
// The dragged file, if it is exactly one local file; otherwise empty.
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
  // The source program waits until this returns, so the load and its messages run later.
  QTimer::singleShot(0, this, [this, path] { host().Act([this, path] { OnDrop(path); }); });
}

void MainWindow::closeEvent(QCloseEvent* event) {
  event->ignore();  // the process ends without closing the window
  host().CloseBox(GetForm());
}

}  // namespace qk
