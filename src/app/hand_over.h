// SPDX-License-Identifier: MIT
// Passes a file from a second start to the program that already uses the same folder, through a
// local socket that only the same user can access. The client sends the absolute path and a zero
// byte. The reply is empty if the file was accepted, otherwise the reason; then a zero byte.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <QLocalServer>
#include <QObject>

#include "core/result.h"

namespace qk {

// The possible sockets of the program that uses a folder, preferred first: in the user's runtime
// folder (XDG_RUNTIME_DIR), then in the folder itself if its path is short enough for a socket.
std::vector<std::string> SocketsOf(const std::string& folder);

// Passes a file on. The failure contains the reason; its Place is empty if no program is listening,
// otherwise the file.
Result<Done> HandOver(const std::string& folder, const std::string& file);

class FileReceiver : public QObject {
 public:
  ~FileReceiver() override { Close(); }

  // Called with each file; returns the reason if it cannot be accepted now, otherwise empty.
  std::function<std::string(const std::string& file)> OnFile;

  // Listens for the folder, which must be locked by this process: replaces the socket of a program
  // that was killed. False if neither place can have a socket.
  bool Listen(const std::string& folder);
  void Close();

 private:
  void Accept();

  QLocalServer server_;
};

}  // namespace qk
