// SPDX-License-Identifier: MIT
// Remote control over TCP: takes connections from this computer alone and carries bytes between
// them and the clients.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <QObject>
#include <QTcpServer>
#include <QTimer>

#include "app/options.h"
#include "app/process.h"
#include "core/result.h"
#include "forms/program.h"
#include "forms/remote_control.h"
#include "scpi/remote.h"

class QLabel;
class QMainWindow;

namespace qk {

class RemoteServer : public QObject {
 public:
  // breathing: no handler may run now.
  RemoteServer(Program& program, scpi::PromptGate& gate, std::function<bool()> breathing);
  ~RemoteServer() override;

  scpi::Remote& remote() { return remote_; }

  // Takes connections on 127.0.0.1 and ::1; 0 takes any free port. The failure names the port and
  // says why.
  Result<Done> Listen(int port);
  void Close();
  int Port() const;  // 0: off
  // The process ends: waiting clients are answered, and all answers are sent.
  void End();

  // For a message loop that is not the toolkit's: a descriptor that can be read when something has
  // come, and what is to be done then.
  int WakeDescriptor() const { return wake_.Descriptor(); }
  void RunEvents();

  // Commands have been run: windows take over what they changed; may be empty.
  std::function<void()> OnServed;

  // A mark in the window's status bar while a client is connected.
  void MarkIn(QMainWindow& window);

 private:
  class Connection;
  // Gives away what the system accepts.
  class Listener : public QTcpServer {
   public:
    std::function<void(int socket)> OnConnection;

   protected:
    void incomingConnection(qintptr descriptor) override;
  };

  void Accept(int socket);
  void Remove(Connection* connection);
  void ShowChange();
  void Post(std::function<void()> act);
  void RunPosted();

  Program& program_;
  std::function<bool()> breathing_;
  std::deque<std::function<void()>> posted_;
  QTimer posting_;
  WakeSet wake_;
  scpi::Remote remote_;
  Listener server_, sixth_;  // IPv4 and IPv6
  std::vector<std::unique_ptr<Connection>> connections_;
  QTimer showing_;
  QLabel* mark_ = nullptr;
};

// Takes connections where the command line asks for it, and says on standard error where. False,
// with its reason there, when the port cannot be used.
bool ListenAsAsked(const Options& options, RemoteServer& server);

}  // namespace qk
