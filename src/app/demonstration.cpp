// SPDX-License-Identifier: MIT
#include "app/demonstration.h"

#include <QAction>
#include <QMenuBar>
#include <QWindow>

#include "app/kit_through.h"
#include "forms/program.h"
#include "ui/desktop.h"

namespace qk {

namespace {
// The window manager places and frames a window after it is shown; until then nothing says where it
// will be.
constexpr int kPlaceLookMs = 20;
constexpr int kCalmLooks = 10;
}  // namespace

Demonstration::Demonstration(sim::Instrument& bench, Program& program, QtHost& host,
                             Desktop& desktop)
    : window_(bench), player_(host, program.session()) {
  bench.Bench("follow on");
  host.OnPrompt = [&bench, &session = program.session()](const Message& message) {
    FollowPrompt(message, session, bench);
  };
  window_.MayPlay = [this] { return player_.MayPlay(); };
  program.controller().OnStart = [&bench] { bench.BackToDevice(); };
  player_.OnStep = [this](const std::string& step) { window_.ShowStep(step); };
  window_.OnPlay = [this] { player_.Playing() ? player_.Stop() : player_.Play(); };
  window_.MakeRoom(desktop.Main());
  window_.PlaceBeside(desktop.Main());
  window_.show();  // before the main window, which then leaves room for it
  // Placed again when the main window is shown: a window can only be kept above a visible one.
  // Windows shown briefly during start-up are ignored.
  QObject::connect(
      &shown_, &QTimer::timeout, &window_,
      [this, &program, &host, &main = desktop.Main()] { PlaceBench(program, host, main); });
  shown_.start(kPlaceLookMs);
  QAction* item = desktop.Main().menuBar()->addAction("&Bench");
  QObject::connect(item, &QAction::triggered, &window_, [this] { window_.ToFront(); });
}

void Demonstration::PlaceBench(Program& program, QtHost& host, const QWidget& main) {
  if (!main.isVisible() || !main.windowHandle()->isExposed()) return;
  if (program.controller().StartingUp()) return;
  if (main.frameGeometry() != mainPlace_) calm_ = 0;
  mainPlace_ = main.frameGeometry();
  if (++calm_ < kCalmLooks) return;
  shown_.stop();
  const bool room = window_.LeaveClear(main);
  window_.hide();
  if (room)
    window_.show();
  else
    host.Act([&program] {
      program.controller().notice().Say("Bench is closed to leave the graphs free: Alt+B");
    });
}

}  // namespace qk
