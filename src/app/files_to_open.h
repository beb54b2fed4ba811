// SPDX-License-Identifier: MIT
// Files that the running desktop program must open: from its command line, and from later starts of
// the program.
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

  // Accepts files from later starts with the same folder. Accepts none if there is no place for its
  // socket.
  void ListenFor(const std::string& folder) { receiver_.Listen(folder); }
  void Close() { receiver_.Close(); }
  // Opens a file as soon as a handler may run; files that arrive before Started wait for it.
  // Returns the reason if the file cannot be accepted now: a box or a modal window is open, or a
  // window is busy with the instrument.
  std::string Take(const std::string& file);
  // The program has started: opens the files received so far.
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
