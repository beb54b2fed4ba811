// SPDX-License-Identifier: MIT
#include "ui/docks.h"

#include <algorithm>

#include <QApplication>
#include <QCloseEvent>
#include <QEvent>
#include <QIconEngine>
#include <QPainter>
#include <QPixmap>
#include <QPolygonF>
#include <QProxyStyle>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QStyle>
#include <QStyleOption>
#include <QTabBar>
#include <QTabWidget>

#include "ui/form_window.h"
#include "ui/main_window.h"
#include "ui/picture_view.h"
#include "ui/placement.h"

namespace qk {

namespace {

constexpr int kSettleMs = 50;  // time for a pending layout
constexpr int kKeepMs = 500;   // positions are written when the window has stopped moving
constexpr const char* kEnabled = "Docked";
constexpr const char* kMain = "Main";
constexpr const char* kWidthKey = "PanelWidth";

QString Key(const DialogWindow& window) {
  return "TornOff/" + window.objectName();
}

// A sign of a title bar in the colour of the present palette: the toolkit's own are dark on a dark
// desktop.
class TitleSign : public QIconEngine {
 public:
  explicit TitleSign(bool cross) : cross_(cross) {}
  QIconEngine* clone() const override { return new TitleSign(cross_); }
  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
    const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->translate(rect.topLeft());
    painter->scale(rect.width() / kGrid, rect.height() / kGrid);
    painter->setPen(QPen(QApplication::palette().color(group, QPalette::WindowText), 1.3));
    if (cross_) {
      painter->drawLine(QPointF(3.5, 3.5), QPointF(8.5, 8.5));
      painter->drawLine(QPointF(3.5, 8.5), QPointF(8.5, 3.5));
    } else {
      painter->drawRect(QRectF(2.5, 4.5, 5, 5));
      painter->drawPolyline(QPolygonF({{4.5, 2.5}, {9.5, 2.5}, {9.5, 7.5}}));
    }
    painter->restore();
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, QRect(QPoint(), size), mode, state);
    return pixmap;
  }

 private:
  static constexpr double kGrid = 12;  // the sides of the sign in units of its drawing
  bool cross_;
};

class TitleSigns : public QProxyStyle {
 public:
  QIcon standardIcon(StandardPixmap sign, const QStyleOption* option,
                     const QWidget* widget) const override {
    switch (sign) {
      case SP_TitleBarCloseButton:
      case SP_DockWidgetCloseButton:
        return QIcon(new TitleSign(true));
      case SP_TitleBarNormalButton:
        return QIcon(new TitleSign(false));
      default:
        return QProxyStyle::standardIcon(sign, option, widget);
    }
  }
};

// Its close button asks the form. The toolkit shows the row of tabs, below the page, from the
// second page on; a page alone has a row with its own tab, so that nothing in it moves when another
// one opens or closes.
class FormDock : public QDockWidget {
 public:
  FormDock(DialogWindow& window, QtHost& host, QWidget* main)
      : QDockWidget(window.windowTitle(), main), window_(window), host_(host) {
    setObjectName(window.objectName() + "Dock");
    setAllowedAreas(Qt::RightDockWidgetArea);
    auto* signs = new TitleSigns;
    signs->setParent(this);
    setStyle(signs);
    // Only new features make the toolkit take the signs from the style.
    const DockWidgetFeatures all = features();
    setFeatures(NoDockWidgetFeatures);
    setFeatures(all);
    QObject::connect(&window, &QWidget::windowTitleChanged, this, &QWidget::setWindowTitle);
    tab_->setObjectName("OwnTab");
    tab_->setFocusPolicy(Qt::NoFocus);
    tab_->setElideMode(Qt::ElideNone);
    tab_->setShape(QTabBar::RoundedSouth);
    tab_->setExpanding(false);
    tab_->addTab(windowTitle());
    QObject::connect(this, &QWidget::windowTitleChanged, tab_,
                     [this](const QString& title) { tab_->setTabText(0, title); });
    ShowOwnTab(false);
  }
  void ShowOwnTab(bool on) {
    tab_->setVisible(on);
    window_.setContentsMargins(0, 0, 0, on ? tab_->sizeHint().height() : 0);
    if (on) tab_->raise();
  }

 protected:
  void resizeEvent(QResizeEvent* event) override {
    QDockWidget::resizeEvent(event);
    const int row = tab_->sizeHint().height();
    tab_->setGeometry(0, height() - row, width(), row);
  }
  void closeEvent(QCloseEvent* event) override {
    event->ignore();
    host_.CloseBox(window_.GetForm());
  }

 private:
  DialogWindow& window_;
  QtHost& host_;
  QTabBar* tab_ = new QTabBar(this);
};

}  // namespace

Docks::Docks(MainWindow& main, QtHost& host, const std::string& file) : main_(main), host_(host) {
  if (!file.empty())
    file_ = std::make_unique<QSettings>(QString::fromStdString(file), QSettings::IniFormat);
  main_.setDockOptions(QMainWindow::AllowTabbedDocks | QMainWindow::ForceTabbedDocks);
  main_.setTabPosition(Qt::RightDockWidgetArea, QTabWidget::South);
  if (file_ != nullptr) {
    enabled_ = file_->value(kEnabled, true).toBool();
    main_.restoreGeometry(file_->value(kMain).toByteArray());
  }
  check_.setSingleShot(true);
  check_.setInterval(kSettleMs);
  connect(&check_, &QTimer::timeout, this, [this] { FloatExcess(); });
  keep_.setSingleShot(true);
  keep_.setInterval(kKeepMs);
  connect(&keep_, &QTimer::timeout, this, [this] { KeepMain(); });
  main_.installEventFilter(this);
  connect(qApp, &QApplication::focusChanged, this, [this] { ShowLetters(); });
  AddTurnKeys();
}

void Docks::AddTurnKeys() {
  struct TurnKey {
    QKeySequence Keys;
    int Step;
  };
  for (const TurnKey& key : {TurnKey{QKeySequence(Qt::CTRL | Qt::Key_PageDown), 1},
                             TurnKey{QKeySequence(Qt::CTRL | Qt::Key_Tab), 1},
                             TurnKey{QKeySequence(Qt::CTRL | Qt::Key_PageUp), -1},
                             TurnKey{QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Tab), -1}})
    connect(new QShortcut(key.Keys, &main_), &QShortcut::activated, this,
            [this, step = key.Step] { Turn(step); });
}

void Docks::ShowLetters() {
  const QWidget* keyboard = QApplication::focusWidget();
  for (const DialogWindow* page : InPanel())
    if (page->isAncestorOf(keyboard)) return main_.HideLetters(page->Letters());
  main_.HideLetters({});
}

void Docks::Turn(int step) {
  const std::vector<DialogWindow*> pages = InPanel();
  if (pages.size() == 1) return ToFront(*pages.front());
  for (QTabBar* tabs : main_.findChildren<QTabBar*>(Qt::FindDirectChildrenOnly)) {
    if (!tabs->isVisible() || tabs->count() == 0) continue;
    const int next = (tabs->currentIndex() + step + tabs->count()) % tabs->count();
    for (DialogWindow* page : pages)
      if (DockOf(*page)->windowTitle() == tabs->tabText(next)) return ToFront(*page);
  }
}

Docks::~Docks() {
  Keep();
  for (const auto& [window, dock] : docks_) dock->disconnect(this);
}

bool Docks::eventFilter(QObject* watched, QEvent* event) {
  if (watched == &main_ && (event->type() == QEvent::Resize || event->type() == QEvent::Move)) {
    if (event->type() == QEvent::Resize) {
      LimitWidths();
      check_.start();
    }
    keep_.start();
  }
  return false;
}

QDockWidget* Docks::DockOf(const DialogWindow& window) const {
  const auto it = docks_.find(&window);
  return it == docks_.end() ? nullptr : it->second;
}

std::vector<DialogWindow*> Docks::InPanel() const {
  std::vector<DialogWindow*> windows;
  for (const auto& [window, dock] : docks_)
    if (!dock->isHidden() && !dock->isFloating())
      windows.push_back(static_cast<DialogWindow*>(dock->widget()));
  return windows;
}

int Docks::PanelWidth() const {
  int width = 0;
  for (const DialogWindow* window : InPanel()) width = std::max(width, DockOf(*window)->width());
  return width;
}

int Docks::RoomForPanel() const {
  const int separator = main_.style()->pixelMetric(QStyle::PM_DockWidgetSeparatorExtent);
  // Uses the total width, because the graphs may not have been laid out since a page was closed.
  const int beside = main_.centralWidget()->width() - main_.Picture().width();
  return main_.width() - beside - separator - kLeastGraphs.width();
}

bool Docks::HasRoomFor(const DialogWindow& window) const {
  return main_.isVisible() && std::max(PanelWidth(), window.DockedWidth()) <= RoomForPanel() &&
         main_.Picture().height() >= kLeastGraphs.height();
}

void Docks::LimitWidths() {
  const int room = RoomForPanel();
  for (const auto& [window, dock] : docks_)
    static_cast<DialogWindow*>(dock->widget())->LimitWidth(std::max(room, widths_[window]));
}

bool Docks::TornOff(const DialogWindow& window) const {
  return file_ != nullptr && file_->contains(Key(window));
}

QDockWidget& Docks::MakeDock(DialogWindow& window) {
  auto* dock = new FormDock(window, host_, &main_);
  const std::vector<DialogWindow*> there = InPanel();
  const int width =
      std::max(window.DockedWidth(),
               there.empty() && file_ != nullptr ? file_->value(kWidthKey, 0).toInt() : 0);
  docks_[&window] = dock;
  widths_[&window] = window.DockedWidth();
  connect(dock, &QDockWidget::visibilityChanged, this, [this, &window](bool visible) {
    if (visible) seen_[&window] = ++looks_;
    ShowOwnTabs();
  });
  main_.addDockWidget(Qt::RightDockWidgetArea, dock);
  if (!there.empty()) main_.tabifyDockWidget(DockOf(*there.back()), dock);
  dock->setWidget(&window);
  window.SetDocked(true);
  LimitWidths();
  if (there.empty() && HasRoomFor(window))
    main_.resizeDocks({dock}, {std::min(width, RoomForPanel())}, Qt::Horizontal);
  connect(dock, &QDockWidget::topLevelChanged, this, [this, &window, dock](bool floating) {
    window.ShowEdge(floating);
    ShowOwnTabs();
    if (floating)
      TakeFloatingSize(window, *dock);
    else  // its edge made it wider than the panel needs to be
      main_.resizeDocks({dock}, {std::min(dock->width(), RoomForPanel())}, Qt::Horizontal);
    if (file_ == nullptr) return;
    if (floating)
      file_->setValue(Key(window), dock->saveGeometry());
    else
      file_->remove(Key(window));
  });
  return *dock;
}

bool Docks::Open(DialogWindow& window) {
  QDockWidget* dock = DockOf(window);
  const bool torn = TornOff(window);
  if (!enabled_ || !main_.isVisible() || (!torn && !HasRoomFor(window))) {
    if (dock != nullptr) Release(window);
    return false;
  }
  if (dock == nullptr) dock = &MakeDock(window);
  if (torn && !dock->isFloating()) {
    const QByteArray place = file_->value(Key(window)).toByteArray();
    dock->setFloating(true);
    dock->restoreGeometry(place);
  }
  const bool wasHidden = dock->isHidden();
  dock->show();
  if (wasHidden) JoinTabs(window);
  window.ShowDocked();
  ToFront(window);
  QTimer::singleShot(0, this, [this] { StyleTabs(); });
  return true;
}

// A page that is shown again is a tab of those that are there: the toolkit would put it above or
// below a page that was made while this one was hidden.
void Docks::JoinTabs(DialogWindow& window) {
  QDockWidget* dock = DockOf(window);
  if (dock->isFloating()) return;
  for (DialogWindow* page : InPanel()) {
    QDockWidget* other = DockOf(*page);
    if (other == dock || other->isFloating()) continue;
    if (!main_.tabifiedDockWidgets(other).contains(dock)) main_.tabifyDockWidget(other, dock);
    return;
  }
}

void Docks::ShowOwnTabs() {
  const bool alone = InPanel().size() == 1;
  for (const auto& [window, dock] : docks_)
    static_cast<FormDock*>(dock)->ShowOwnTab(alone && !dock->isHidden() && !dock->isFloating());
}

// Titles are shown whole; buttons scroll to those that have no room.
void Docks::StyleTabs() {
  for (QTabBar* tabs : main_.findChildren<QTabBar*>(Qt::FindDirectChildrenOnly)) {
    tabs->setElideMode(Qt::ElideNone);
    tabs->setUsesScrollButtons(true);
  }
}

void Docks::TakeFloatingSize(DialogWindow& window, QDockWidget& dock) {
  QSize size = window.sizeHint();
  // In the panel the body asks for little height, because it scrolls.
  if (const auto* body = window.findChild<QScrollArea*>("Body"); body != nullptr)
    size.rheight() += body->widget()->sizeHint().height() - body->sizeHint().height();
  size.rheight() += dock.height() - window.height();  // its title
  const QSize frame = main_.frameSize() - main_.size();
  dock.resize(size.boundedTo(main_.screen()->availableSize() - frame));
  // While the title is dragged, the place is that of the mouse.
  if (QGuiApplication::mouseButtons() != Qt::NoButton) return;
  dock.move(FirstPlace(dock.size() + frame, SurfaceFor(dock, main_)));
}

void Docks::Close(DialogWindow& window) {
  QDockWidget* dock = DockOf(window);
  if (dock == nullptr) return;
  const bool hadKeyboard = window.isAncestorOf(QApplication::focusWidget());
  Keep();
  // The page shown before this one; otherwise any that is there.
  DialogWindow* next = nullptr;
  if (hadKeyboard && !dock->isFloating())
    for (DialogWindow* page : InPanel())
      if (page != &window && (next == nullptr || seen_[page] > seen_[next])) next = page;
  dock->hide();
  if (next != nullptr) {
    ToFront(*next);
  } else if (hadKeyboard || dock->isFloating()) {
    main_.activateWindow();
    main_.Picture().setFocus(Qt::OtherFocusReason);
  }
}

void Docks::ToFront(DialogWindow& window) {
  QDockWidget* dock = DockOf(window);
  if (dock == nullptr) return;
  dock->raise();
  dock->activateWindow();
  window.TakeKeyboard();
}

void Docks::Release(DialogWindow& window) {
  QDockWidget* dock = DockOf(window);
  docks_.erase(&window);
  widths_.erase(&window);
  window.LimitWidth(QWIDGETSIZE_MAX);
  static_cast<FormDock*>(dock)->ShowOwnTab(false);
  dock->disconnect(this);
  dock->hide();
  window.setParent(&main_);
  window.SetDocked(false);
  main_.removeDockWidget(dock);
  dock->deleteLater();
  ShowOwnTabs();
}

void Docks::FloatExcess() {
  const QSize graphs = main_.Picture().size();
  if (!main_.isVisible() ||
      (graphs.width() >= kLeastGraphs.width() && graphs.height() >= kLeastGraphs.height()))
    return;
  for (DialogWindow* window : InPanel()) {
    Release(*window);
    window->ShowUp();
  }
}

void Docks::Enable(bool on) {
  if (enabled_ == on) return;
  enabled_ = on;
  if (file_ != nullptr) file_->setValue(kEnabled, on);
  std::vector<DialogWindow*> shown;
  for (const auto& [window, dock] : docks_)
    if (!dock->isHidden()) shown.push_back(static_cast<DialogWindow*>(dock->widget()));
  if (on) return;  // each is docked when it is opened next
  for (DialogWindow* window : shown) {
    Release(*window);
    window->ShowUp();
  }
}

void Docks::ReturnAll() {
  if (file_ != nullptr) file_->remove("TornOff");
  for (const auto& [window, dock] : docks_)
    if (dock->isFloating() && HasRoomFor(*window)) {
      dock->setFloating(false);
      if (!dock->isHidden()) JoinTabs(*static_cast<DialogWindow*>(dock->widget()));
    }
}

void Docks::KeepMain() {
  if (file_ != nullptr && main_.isVisible()) file_->setValue(kMain, main_.saveGeometry());
}

void Docks::Keep() {
  if (file_ == nullptr) return;
  KeepMain();
  for (const auto& [window, dock] : docks_)
    if (dock->isFloating()) file_->setValue(Key(*window), dock->saveGeometry());
  if (const int width = PanelWidth(); width > 0) file_->setValue(kWidthKey, width);
  file_->sync();
}

}  // namespace qk
