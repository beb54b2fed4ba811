// SPDX-License-Identifier: MIT
// What a demonstration adds to the windows: the bench window, which a menu opens again after it has
// been closed, and the playback of a first measurement.
#pragma once

#include <QRect>
#include <QTimer>

#include "app/bench_window.h"
#include "app/player.h"

namespace qk {

class Desktop;
class Program;
class QtHost;

class Demonstration {
 public:
  // The bench window opens at once; once the main window has its place, it moves to where it leaves
  // that clear. If it would cover most of the graphs there, it closes with a notice.
  Demonstration(sim::Instrument& bench, Program& program, QtHost& host, Desktop& desktop);

 private:
  void PlaceBench(Program& program, QtHost& host, const QWidget& main);

  BenchWindow window_;
  QTimer shown_;
  QRect mainPlace_;
  int calm_ = 0;  // looks at the main window since it last changed its place
  Player player_;
};

}  // namespace qk
