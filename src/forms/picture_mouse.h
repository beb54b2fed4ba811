// SPDX-License-Identifier: MIT
// The mouse on the picture area: the left button drags markers and chooses the active channel, the
// right one opens "Trace Markers".
#pragma once

#include <optional>

#include "control/controller.h"

namespace qk {

class PictureMouse {
 public:
  explicit PictureMouse(Controller& controller);

  // Pixels of the picture area.
  void LeftDown(int x, int y);
  void LeftMove(int x);
  void RightDown(int x, int y);
  void Up() { grabbed_.reset(); }

 private:
  struct Hit {
    int Graph, Marker;  // from 0
  };
  // A marker between LeftDown and Up.
  struct Grab : Hit {
    double Point;  // with the parts of a point that small movements add up to, on a Smith chart
    int LastX;
  };

  // The last marker, in one of the states, whose number stands within 10 pixels of the place.
  std::optional<Hit> HitAt(int x, int y, MarkerState highest) const;
  bool Holds(const Grab& grab) const;

  Controller& controller_;
  Session& session_;
  Host& host_;
  std::optional<Grab> grabbed_;
};

}  // namespace qk
