// SPDX-License-Identifier: MIT
// Remote control over TCP: accepts connections only from this computer and transfers bytes between
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
  // breathing: returns true while no handler may run.
  RemoteServer(Program& program, std::function<bool()> breathing);
  ~RemoteServer() override;

  scpi::Remote& remote() { return remote_; }

  // Accepts connections on 127.0.0.1 and ::1; 0 selects any free port. The failure contains the
  // port and the reason.
  Result<Done> Listen(int port);
  void Close();
  int Port() const;  // 0: off
  // The process ends: answers waiting clients and sends all replies.
  void End();

  // For a message loop other than the toolkit's: a descriptor that becomes readable when there is
  // work, and the function that does it.
  int WakeDescriptor() const { return wake_.Descriptor(); }
  void RunEvents();

  // Commands have been run: windows must update; may be empty.
  std::function<void()> OnServed;

  // Adds an indicator to the window's status bar, shown while a client is connected.
  void MarkIn(QMainWindow& window);

 private:
  class Connection;
  // Passes on the connections that the system accepts.
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
  QTimer watching_;
  QLabel* mark_ = nullptr;
};

// Accepts connections if the command line requests it, and reports the port on standard error.
// False if the port cannot be used; the reason is on standard error.
bool ListenAsAsked(const Options& options, RemoteServer& server);

}  // namespace qk
