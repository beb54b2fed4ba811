// SPDX-License-Identifier: MIT
// A second start with a file to open hands the file to the program that runs over the same folder,
// through a local socket that only the same user can reach. The client sends the absolute path and
// a zero byte; the reply is empty when the file was taken, else the reason, and a zero byte.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <QLocalServer>
#include <QObject>

#include "core/result.h"

namespace qk {

// Where the program over a folder may listen, the better place first: the runtime folder of the
// user (XDG_RUNTIME_DIR), then the folder itself where its path is short enough for a socket.
std::vector<std::string> SocketsOf(const std::string& folder);

// Hands a file over. The failure says why it was not taken; its Place is empty when no program
// listens, else the file.
Result<Done> HandOver(const std::string& folder, const std::string& file);

class FileReceiver : public QObject {
 public:
  ~FileReceiver() override { Close(); }

  // Is given each file; returns the reason when it cannot be taken now, else nothing.
  std::function<std::string(const std::string& file)> OnFile;

  // Listens for the folder, which must be locked by this process: the socket of a program that was
  // killed is replaced. False when neither place can have a socket.
  bool Listen(const std::string& folder);
  void Close();

 private:
  void Accept();

  QLocalServer server_;
};

}  // namespace qk
