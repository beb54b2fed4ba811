// SPDX-License-Identifier: MIT
// Where a window opens for the first time: next to the main window if the screen has room,
// otherwise over the graphs, covering as little as possible of what the user looks at or operates.
#pragma once

#include <vector>

#include <QPoint>
#include <QRect>
#include <QSize>

class QWidget;

namespace qk {

// All in screen pixels; windows include their frames.
struct Surface {
  QRect Room;                // the available area of the screen
  QRect Main;                // the main window
  QRect Graphs;              // the picture, without the space for the marker table
  std::vector<QRect> Taken;  // areas to keep visible: other windows, the switches, the marker table
};

// The upper left corner for a window of that size, inside the room if it fits. Of several
// positions, the first that covers the least of the taken areas; of these, the least of the graphs.
QPoint FirstPlace(QSize window, const Surface& surface);

// The largest size of a window inside its frame on its screen.
QSize RoomInside(const QWidget& window);

// The size that the contents prefer, limited by the screen.
QSize SizeOfContents(const QWidget& window);

// The current surface for a window that will open next to or over the main window.
Surface SurfaceFor(const QWidget& window, const QWidget& main);

}  // namespace qk
