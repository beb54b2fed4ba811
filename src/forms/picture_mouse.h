// SPDX-License-Identifier: MIT
// Mouse input on the picture area. The left button drags markers and selects the active channel;
// the right button opens "Trace Markers". The reference line mark can be dragged, the wheel changes
// the scale, and a double click inside a graph autoscales it.
#pragma once

#include <optional>

#include "control/controller.h"

namespace qk {

class PictureMouse {
 public:
  explicit PictureMouse(Controller& controller);

  // Coordinates in pixels of the picture area.
  void LeftDown(int x, int y);
  void LeftMove(int x, int y);
  void RightDown(int x, int y);
  void Up() {
    grabbed_.reset();
    reference_.reset();
  }
  // steps: wheel steps away from the user. Selects a finer scale, or with reference moves the
  // reference up by that many divisions.
  void Wheel(int x, int y, int steps, bool reference);
  // What the mouse can operate at a position.
  enum class Grip { None, Marker, ReferenceMark, SetUp, Badge };
  Grip GripAt(int x, int y) const;
  // True if a right click there opens "Trace Markers".
  bool OnMarker(int x, int y) const;

 private:
  struct Hit {
    int Graph, Marker;  // from 0
  };
  // A marker being dragged, between LeftDown and Up.
  struct Grab : Hit {
    double Point;  // fractional on a Smith chart, so that small movements add up
    int LastX;
  };

  // The last marker, in a state up to highest, whose number is within 10 pixels of the position.
  std::optional<Hit> HitAt(int x, int y, MarkerState highest) const;
  bool Holds(const Grab& grab) const;
  void DragReference(int y);

  Controller& controller_;
  Session& session_;
  Host& host_;
  std::optional<Grab> grabbed_;
  std::optional<int> reference_;  // the graph whose reference mark is being dragged, from 0
};

}  // namespace qk
