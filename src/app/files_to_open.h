// SPDX-License-Identifier: MIT
// Files that come from outside while the program is on the desktop: from its command line, and from
// later starts of the program.
#pragma once

#include <string>
#include <vector>

#include <QObject>
#include <QPointer>
#include <QWidget>

#include "app/hand_over.h"
#include "forms/program.h"
#include "ui/qt_host.h"

namespace qk {

class FilesToOpen : public QObject {
 public:
  FilesToOpen(Program& program, QtHost& host, QWidget& main);

  // Takes files from later starts over the folder. Without a place for its socket it takes none.
  void ListenFor(const std::string& folder) { receiver_.Listen(folder); }
  void Close() { receiver_.Close(); }
  // A file to open as soon as a handler may run; files before Started wait for that. Gives the
  // reason when it cannot be taken now: a box or a window that blocks the others is up, or a window
  // is at work with the instrument.
  std::string Take(const std::string& file);
  // The program has started: opens what has come until now.
  void Started();

 private:
  bool MayOpen() const;
  void Open(const std::string& file);

  Program& program_;
  QtHost& host_;
  QWidget& main_;
  FileReceiver receiver_;
  std::vector<std::string> waiting_;
  bool started_ = false;
};

}  // namespace qk
