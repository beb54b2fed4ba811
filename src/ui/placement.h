// SPDX-License-Identifier: MIT
// Where a window opens for the first time: beside the main window where the screen has room, else
// over the graphs, and there as little as can be over what the user looks at or works.
#pragma once

#include <vector>

#include <QPoint>
#include <QRect>
#include <QSize>

class QWidget;

namespace qk {

// All in the pixels of the screen, windows with their frames.
struct Surface {
  QRect Room;                // of the screen
  QRect Main;                // the main window
  QRect Graphs;              // of the picture, what the graphs keep when the marker table stands
  std::vector<QRect> Taken;  // other windows, the switches, the marker table: not to be covered
};

// The upper left corner for a window of that size, which lies inside the room where it fits. Of
// several places the first that covers least of what is taken.
QPoint FirstPlace(QSize window, const Surface& surface);

// How large a window can be inside its frame on its screen.
QSize RoomInside(const QWidget& window);

// As large as its contents want and its screen has room.
QSize SizeOfContents(const QWidget& window);

// What a window finds that is about to stand beside or over the main window, as things are now.
Surface SurfaceFor(const QWidget& window, const QWidget& main);

}  // namespace qk
