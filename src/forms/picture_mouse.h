// SPDX-License-Identifier: MIT
// The mouse on the picture area: the left button drags markers and chooses the active channel, the
// right one opens "Trace Markers". Beside that the mark of the reference line is dragged, the wheel
// steps the scale, and a double click inside a graph autoscales it.
#pragma once

#include <optional>

#include "control/controller.h"

namespace qk {

class PictureMouse {
 public:
  explicit PictureMouse(Controller& controller);

  // Pixels of the picture area.
  void LeftDown(int x, int y);
  void LeftMove(int x, int y);
  void RightDown(int x, int y);
  void Up() {
    grabbed_.reset();
    reference_.reset();
  }
  // Steps of the wheel away from the hand: a finer scale, or the reference so many divisions up.
  void Wheel(int x, int y, int steps, bool reference);
  // What the hand can do at a place.
  enum class Grip { None, Marker, ReferenceMark, SetUp, Badge };
  Grip GripAt(int x, int y) const;
  // A right click there opens "Trace Markers".
  bool OnMarker(int x, int y) const;

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
  void DragReference(int y);

  Controller& controller_;
  Session& session_;
  Host& host_;
  std::optional<Grab> grabbed_;
  std::optional<int> reference_;  // the graph whose reference mark is held, from 0
};

}  // namespace qk
