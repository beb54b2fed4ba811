// SPDX-License-Identifier: MIT
// qk47-guide: makes a PDF of Markdown pages. Each page begins a chapter on a sheet of its own; a
// title and a list of the chapters with their sheets stand before the first.
//
//   qk47-guide OUT.pdf TITLE PAGE.md...
#include <cstdio>
#include <string>
#include <vector>

#include <QGuiApplication>

#include "guide.h"

int main(int argc, char** argv) {
  if (argc < 4) {
    std::fprintf(stderr, "usage: qk47-guide OUT.pdf TITLE PAGE.md...\n");
    return 2;
  }
  // Letters need the toolkit, but no screen.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  const std::vector<std::string> pages(argv + 3, argv + argc);
  const std::string error = qk::WriteGuide(argv[1], argv[2], pages);
  if (error.empty()) return 0;
  std::fprintf(stderr, "qk47-guide: %s\n", error.c_str());
  return 1;
}
