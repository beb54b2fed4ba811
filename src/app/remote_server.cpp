// SPDX-License-Identifier: MIT
#include "app/remote_server.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include <QCoreApplication>
#include <QHostAddress>
#include <QLabel>
#include <QMainWindow>
#include <QStatusBar>
#include <QTcpSocket>

#ifdef __linux__
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#endif

#include "core/window_names.h"

namespace qk {

namespace {

constexpr int kAgainMs = 10;
constexpr int kShowMs = 200;
constexpr int kLastWordsMs = 1000;
constexpr qint64 kReadAhead = 1 << 16;

// Without it the answer to a command without a reply waits for a delayed acknowledgement of 40 ms.
// The system takes the option back by itself, so it is set after every read.
void AcknowledgeAtOnce([[maybe_unused]] const QTcpSocket& socket) {
#ifdef __linux__
  const int on = 1;
  setsockopt(static_cast<int>(socket.socketDescriptor()), IPPROTO_TCP, TCP_QUICKACK, &on,
             sizeof on);
#endif
}

std::string AddressOf(const QTcpSocket& socket) {
  return (socket.peerAddress().toString() + ":" + QString::number(socket.peerPort())).toStdString();
}

}  // namespace

// One client's socket.
class RemoteServer::Connection : public QObject, public scpi::Transport {
 public:
  Connection(RemoteServer& server, QTcpSocket* socket) : server_(server), socket_(socket) {
    socket_->setParent(this);
    socket_->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    socket_->setReadBufferSize(kReadAhead);
    AcknowledgeAtOnce(*socket_);
    client_ = server.remote_.Connect(*this, AddressOf(*socket_));
    server.wake_.Add(static_cast<int>(socket_->socketDescriptor()));
    connect(socket_, &QTcpSocket::readyRead, this, [this] { Read(); });
    connect(socket_, &QTcpSocket::disconnected, this, [this] { Leave(); });
  }
  ~Connection() override {
    socket_->disconnect(this);
    if (client_ != nullptr) server_.remote_.Disconnect(*client_);
  }

  QTcpSocket& Socket() { return *socket_; }

  void Send(std::string_view bytes) override {
    socket_->write(bytes.data(), static_cast<qint64>(bytes.size()));
    socket_->flush();
  }
  std::size_t Unsent() const override { return static_cast<std::size_t>(socket_->bytesToWrite()); }
  // Asked for by the client's own functions: it goes when they have returned.
  void Close() override {
    QTimer::singleShot(0, this, [this] {
      socket_->abort();
      Leave();
    });
  }
  void WantInput() override {
    QTimer::singleShot(0, this, [this] { Read(); });
  }

 private:
  void Read() {
    // The line is somebody's: the bytes wait with the system.
    if (server_.breathing_()) {
      QTimer::singleShot(kAgainMs, this, [this] { Read(); });
      return;
    }
    while (client_ != nullptr && client_->WantsInput() && socket_->bytesAvailable() > 0) {
      const QByteArray bytes = socket_->read(kReadAhead);
      AcknowledgeAtOnce(*socket_);
      client_->Receive({bytes.constData(), static_cast<std::size_t>(bytes.size())});
      server_.remote_.Serve(*client_);
    }
    if (server_.OnServed) server_.OnServed();
  }
  void Leave() {
    if (std::exchange(left_, true)) return;
    if (client_ != nullptr) server_.remote_.Disconnect(*std::exchange(client_, nullptr));
    QTimer::singleShot(0, &server_, [this, &server = server_] { server.Remove(this); });
  }

  RemoteServer& server_;
  QTcpSocket* socket_;
  scpi::Client* client_;
  bool left_ = false;
};

RemoteServer::RemoteServer(Program& program, scpi::PromptGate& gate,
                           std::function<bool()> breathing)
    : program_(program),
      breathing_(std::move(breathing)),
      remote_(program, gate, [this](std::function<void()> act) { Post(std::move(act)); }) {
  posting_.setSingleShot(true);
  connect(&posting_, &QTimer::timeout, this, [this] { RunPosted(); });
  for (QTcpServer* server : {&server_, &sixth_})
    connect(server, &QTcpServer::newConnection, this, [this, server] { Accept(*server); });
  // The window follows a few times a second, however fast a client is.
  showing_.setSingleShot(true);
  showing_.setInterval(kShowMs);
  connect(&showing_, &QTimer::timeout, this, [this] { ShowChange(); });
  remote_.OnChange = [this] {
    if (!showing_.isActive()) showing_.start();
  };
  program_.remoteWindow().Connect({.View =
                                       [this] {
                                         RemoteView view = remote_.View();
                                         view.Port = Port();
                                         return view;
                                       },
                                   .On = [this](int port) { return Listen(port); },
                                   .Off = [this] { Close(); }});
}

RemoteServer::~RemoteServer() {
  program_.remoteWindow().Connect({});
  connections_.clear();
}

Result<Done> RemoteServer::Listen(int port) {
  Close();
  if (!server_.listen(QHostAddress::LocalHost, static_cast<quint16>(port)))
    return Failure{server_.errorString().toStdString(), "127.0.0.1:" + std::to_string(port)};
  // On a system without IPv6 only IPv4 is used.
  sixth_.listen(QHostAddress::LocalHostIPv6, server_.serverPort());
  for (const QTcpServer* server : {&server_, &sixth_})
    if (server->isListening()) wake_.Add(static_cast<int>(server->socketDescriptor()));
  ShowChange();
  return Done{};
}

void RemoteServer::Close() {
  server_.close();
  sixth_.close();
  connections_.clear();
  ShowChange();
}

int RemoteServer::Port() const {
  return server_.isListening() ? server_.serverPort() : 0;
}

bool ListenAsAsked(const Options& options, RemoteServer& server) {
  if (!options.ScpiPort) return true;
  const Result<Done> on = server.Listen(*options.ScpiPort);
  if (on)
    std::fprintf(stderr, "scpi: 127.0.0.1:%d\n", server.Port());
  else
    std::fprintf(stderr, "qk47-vna: %s\n", on.Why().Text().c_str());
  return on.Ok();
}

void RemoteServer::Accept(QTcpServer& server) {
  while (QTcpSocket* socket = server.nextPendingConnection()) {
    if (!socket->peerAddress().isLoopback() || remote_.Clients() >= scpi::Remote::kMostClients) {
      socket->abort();
      socket->deleteLater();
      continue;
    }
    connections_.push_back(std::make_unique<Connection>(*this, socket));
  }
}

void RemoteServer::Post(std::function<void()> act) {
  posted_.push_back(std::move(act));
  if (!posting_.isActive()) posting_.start(0);
}

void RemoteServer::RunPosted() {
  if (breathing_()) {
    posting_.start(kAgainMs);
    return;
  }
  // What is posted meanwhile waits; an act may run a whole sweep, and this function inside it.
  for (std::size_t n = posted_.size(); n > 0 && !posted_.empty(); --n) {
    const std::function<void()> act = std::move(posted_.front());
    posted_.pop_front();
    act();
  }
  if (OnServed) OnServed();
  if (!posted_.empty() && !posting_.isActive()) posting_.start(0);
}

void RemoteServer::RunEvents() {
  constexpr int kRounds = 8;
  wake_.Drain();
  QCoreApplication::processEvents();
  QCoreApplication::processEvents();  // what the first call deferred
  for (int round = 0; round < kRounds && !posted_.empty(); ++round) {
    RunPosted();
    QCoreApplication::processEvents();
  }
}

void RemoteServer::Remove(Connection* connection) {
  std::erase_if(connections_, [connection](const auto& one) { return one.get() == connection; });
}

void RemoteServer::End() {
  remote_.End();
  server_.close();
  sixth_.close();
  for (const auto& connection : connections_) {
    QTcpSocket& socket = connection->Socket();
    while (socket.bytesToWrite() > 0 && socket.waitForBytesWritten(kLastWordsMs)) {
    }
    socket.disconnectFromHost();
  }
}

void RemoteServer::MarkIn(QMainWindow& window) {
  mark_ = new QLabel(&window);
  mark_->setObjectName("RemoteMark");
  mark_->setFrameStyle(QFrame::Panel | QFrame::Sunken);
  mark_->setToolTip("A program controls this one: Tools, Remote Control shows it");
  mark_->hide();
  window.statusBar()->addPermanentWidget(mark_);
  mark_->hide();
}

void RemoteServer::ShowChange() {
  const std::size_t clients = remote_.Clients();
  if (mark_ != nullptr) {
    mark_->setText(clients > 1 ? QString("Remote %1").arg(clients) : QString("Remote"));
    mark_->setVisible(clients > 0);
  }
  program_.remoteWindow().ServerChanged();
  if (program_.remoteWindow().Shown) program_.host().windows.Refresh(window::kRemoteControl);
}

}  // namespace qk
