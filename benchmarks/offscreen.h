// SPDX-License-Identifier: MIT
// The toolkit for benchmarks that draw: fonts, and no screen.
#pragma once

#include <QGuiApplication>

namespace qk::benchmarks {

// Created by the first call; exists until the process ends.
inline void NeedFonts() {
  static int argc = 1;
  static char name[] = "bench";
  static char* argv[] = {name};
  qputenv("QT_QPA_PLATFORM", "offscreen");
  static const QGuiApplication application(argc, argv);
}

}  // namespace qk::benchmarks
