// SPDX-License-Identifier: MIT
#include "ui/picture_view.h"

#include <algorithm>

#include <QAction>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QWheelEvent>

#include "ui/binder.h"
#include "ui/qt_host.h"

namespace qk {

namespace {
constexpr int kFrameMs = 16;
// Drawing and painting use at most this fraction of the time: if a frame takes long, frames are
// skipped and the measurement continues.
constexpr int kPartOfTime = 4;
// While the window is being resized, the picture follows at this interval.
constexpr int kResizeMs = 30;
}  // namespace

PictureView::PictureView(QtPicture& picture, QtHost& host) : picture_(picture), host_(host) {
  setObjectName("PicGraph");
  setAttribute(Qt::WA_OpaquePaintEvent);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  repaint_.setSingleShot(true);
  resize_.setSingleShot(true);
  QObject::connect(&repaint_, &QTimer::timeout, this, [this] {
    sinceRepaint_.start();
    picture_.Image();  // updates the live layer
    frameMs_ = sinceRepaint_.elapsed();
    update(picture_.TakeChanged());
  });
  QObject::connect(&resize_, &QTimer::timeout, this, [this] { TakeSize(); });
  sinceRepaint_.start();
  picture_.OnPresent = [this] { Invalidate(); };
}

PictureView::~PictureView() {
  picture_.OnPresent = nullptr;
}

void PictureView::Invalidate() {
  if (repaint_.isActive()) return;
  const qint64 pause = std::max<qint64>(kFrameMs, kPartOfTime * frameMs_);
  repaint_.start(static_cast<int>(std::clamp<qint64>(pause - sinceRepaint_.elapsed(), 0, pause)));
}

void PictureView::TakeSize() {
  const Extent now = picture_.Size();
  const double ratio = devicePixelRatioF();
  if (now.width == width() && now.height == height() && picture_.PixelRatio() == ratio) return;
  picture_.Resize({width(), height()}, ratio);
  if (OnResized) OnResized();
  update();
}

void PictureView::paintEvent(QPaintEvent* event) {
  QElapsedTimer clock;
  clock.start();
  QPainter painter(this);
  const QImage& image = picture_.Image();
  const double ratio = image.devicePixelRatio();
  // Device pixels equal the picture's pixels: copied, never scaled.
  const QImage pixels(image.constBits(), image.width(), image.height(), image.bytesPerLine(),
                      image.format());
  painter.scale(1 / ratio, 1 / ratio);
  for (const QRect& part : event->region()) {
    const QRect at =
        QRectF(part.x() * ratio, part.y() * ratio, part.width() * ratio, part.height() * ratio)
            .toAlignedRect();
    painter.drawImage(at.topLeft(), pixels, at);
  }
  painter.resetTransform();
  // Until the picture has been resized to the window, the area outside it is plain.
  const QSize drawn = image.deviceIndependentSize().toSize();
  const QColor beyond = image.pixelColor(0, 0);
  if (drawn.width() < width())
    painter.fillRect(drawn.width(), 0, width() - drawn.width(), height(), beyond);
  if (drawn.height() < height())
    painter.fillRect(0, drawn.height(), width(), height() - drawn.height(), beyond);
  frameMs_ += clock.elapsed();
}

// Drawing does no I/O, so a new size is applied at once, even while the program waits for the
// instrument. The first size is applied before anything is shown.
void PictureView::resizeEvent(QResizeEvent*) {
  if (!sized_)
    TakeSize();
  else if (!resize_.isActive())
    resize_.start(kResizeMs);
  sized_ = true;
}

void PictureView::ForwardMouse(Program::MouseAction action, const QMouseEvent& event,
                               Qt::MouseButton button) {
  if (!OnMouse || (button != Qt::LeftButton && button != Qt::RightButton)) return;
  const QPoint at = event.position().toPoint();
  host_.Act(
      [this, action, button, at] { OnMouse(action, button == Qt::LeftButton, at.x(), at.y()); });
}

// A double click starts like a click, which may grab a marker; this is its second press.
void PictureView::mouseDoubleClickEvent(QMouseEvent* event) {
  const QPoint at = event->position().toPoint();
  if (event->button() == Qt::LeftButton && OnDoubleClick)
    host_.Act([this, at] { OnDoubleClick(at.x(), at.y()); });
}

void PictureView::wheelEvent(QWheelEvent* event) {
  const QPoint at = event->position().toPoint();
  const bool shift = event->modifiers().testFlag(Qt::ShiftModifier);
  // Some systems report a wheel turn with Shift as horizontal.
  const QPoint turn = event->angleDelta();
  turned_ += turn.y() != 0 ? turn.y() : turn.x();
  const int steps = turned_ / QWheelEvent::DefaultDeltasPerStep;
  turned_ -= steps * QWheelEvent::DefaultDeltasPerStep;
  event->accept();
  if (steps != 0 && OnWheel)
    host_.Act([this, at, steps, shift] { OnWheel(at.x(), at.y(), steps, shift); });
}

void PictureView::contextMenuEvent(QContextMenuEvent* event) {
  event->accept();
  if (MenuAt) ShowMenu(MenuAt(event->pos().x(), event->pos().y()), event->pos());
}

void PictureView::Fill(QMenu& menu, const std::vector<MenuEntry>& entries) {
  std::vector<std::string> captions;
  captions.reserve(entries.size());
  for (const MenuEntry& entry :
       entries)  // a line that is only read takes no letter from the others
    captions.push_back(entry.Run || !entry.Entries.empty() ? entry.Caption : std::string());
  const std::vector<char> letters = LettersFor(captions);
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const MenuEntry& entry = entries[i];
    if (entry.Caption.empty()) {
      menu.addSeparator();
      continue;
    }
    const QString caption = MnemonicCaption(entry.Caption, letters[i]);
    if (!entry.Entries.empty()) {
      Fill(*menu.addMenu(caption), entry.Entries);
      continue;
    }
    QAction* action = menu.addAction(caption);
    action->setObjectName(QString::fromStdString(entry.Word));
    action->setEnabled(entry.Enabled);
    action->setCheckable(entry.Checked);
    action->setChecked(entry.Checked);
    QObject::connect(action, &QAction::triggered, this,
                     [this, run = entry.Run] { host_.Act(run); });
  }
}

// Does not run its own message loop: a sweep continues below it.
void PictureView::ShowMenu(const std::vector<MenuEntry>& entries, QPoint at) {
  if (entries.empty()) return;
  auto* menu = new QMenu(this);
  menu->setObjectName("GraphMenu");
  menu->setAttribute(Qt::WA_DeleteOnClose);
  Fill(*menu, entries);
  menu->popup(mapToGlobal(at));
}

void PictureView::mousePressEvent(QMouseEvent* event) {
  ForwardMouse(Program::MouseAction::Down, *event, event->button());
}

void PictureView::mouseMoveEvent(QMouseEvent* event) {
  const bool right = event->buttons().testFlag(Qt::RightButton);
  ForwardMouse(Program::MouseAction::Move, *event, right ? Qt::RightButton : Qt::LeftButton);
}

void PictureView::mouseReleaseEvent(QMouseEvent* event) {
  ForwardMouse(Program::MouseAction::Up, *event, event->button());
}

}  // namespace qk
