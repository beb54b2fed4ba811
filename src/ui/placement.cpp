// SPDX-License-Identifier: MIT
#include "ui/placement.h"

#include <algorithm>
#include <optional>
#include <utility>

#include <QApplication>
#include <QLayout>
#include <QScreen>
#include <QWidget>

#include "display/marker_table.h"

namespace qk {

namespace {

constexpr int kGapBetween = 8;  // between adjacent windows

qint64 Common(const QRect& a, const QRect& b) {
  const QRect common = a & b;
  return qint64{common.width()} * common.height();
}

// Possible positions in order of preference; those next to the main window only if the room
// contains them.
std::vector<QPoint> PlacesBeside(QSize window, const Surface& surface) {
  const auto& [room, main, graphs, taken] = surface;
  const int bottom = std::min(main.bottom(), room.bottom()) - window.height();
  std::vector<QPoint> places;
  for (const int x : {main.right() + kGapBetween, main.left() - kGapBetween - window.width()})
    for (const int y : {main.top(), bottom})
      if (room.contains(QRect({x, std::max(y, room.top())}, window)))
        places.push_back({x, std::max(y, room.top())});
  for (const int y : {main.bottom() + kGapBetween, main.top() - kGapBetween - window.height()})
    for (const int x : {main.right() + 1 - window.width(), main.left()})
      if (room.contains(QRect({x, y}, window))) places.push_back({x, y});
  for (const int y : {graphs.bottom() + 1 - window.height(), graphs.top()})
    for (const int x : {graphs.right() + 1 - window.width(), graphs.left()})
      places.push_back(
          {std::clamp(x, room.left(), std::max(room.left(), room.right() + 1 - window.width())),
           std::clamp(y, room.top(), std::max(room.top(), room.bottom() + 1 - window.height()))});
  return places;
}

}  // namespace

QPoint FirstPlace(QSize window, const Surface& surface) {
  using Covered = std::pair<qint64, qint64>;  // of the taken areas, and of the graphs
  std::optional<Covered> least;
  QPoint best;
  for (const QPoint& place : PlacesBeside(window, surface)) {
    const QRect there(place, window);
    Covered covered{0, Common(surface.Graphs, there)};
    for (const QRect& taken : surface.Taken) covered.first += Common(taken, there);
    if (least && covered >= *least) continue;
    least = covered;
    best = place;
  }
  return best;
}

QSize RoomInside(const QWidget& window) {
  // The window system's frame, taken from the main window; an estimate until that is shown.
  QSize frame(8, window.fontMetrics().height() + 12);
  if (const QWidget* main = window.parentWidget(); main != nullptr && main->isVisible())
    frame = frame.expandedTo(main->frameSize() - main->size());
  return window.screen()->availableSize() - frame;
}

QSize SizeOfContents(const QWidget& window) {
  QSize size = window.sizeHint();
  if (const QLayout* layout = window.layout(); layout != nullptr && layout->hasHeightForWidth())
    size.setHeight(layout->totalHeightForWidth(size.width()));
  return size.boundedTo(RoomInside(window)).expandedTo(window.minimumSize());
}

Surface SurfaceFor(const QWidget& window, const QWidget& main) {
  Surface surface{
      main.screen()->availableGeometry(), main.frameGeometry(), main.frameGeometry(), {}};
  if (const auto* picture = main.findChild<QWidget*>("PicGraph"); picture != nullptr) {
    const QRect area(picture->mapToGlobal(QPoint(0, 0)), picture->size());
    const int table = MarkerTableBox({area.width(), area.height()}).left;
    surface.Graphs = QRect(area.topLeft(), QSize(table, area.height()));
    surface.Taken.emplace_back(area.topLeft() + QPoint(table, 0),
                               QPoint(surface.Main.right(), area.bottom()));
  }
  for (const QWidget* other : QApplication::topLevelWidgets())
    if (other != &window && other != &main && other->isVisible())
      surface.Taken.push_back(other->frameGeometry());
  return surface;
}

}  // namespace qk
