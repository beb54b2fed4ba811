// SPDX-License-Identifier: MIT
#include "app/remote_server.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QHostAddress>
#include <QLabel>
#include <QMainWindow>
#include <QPointer>
#include <QSocketNotifier>
#include <QStatusBar>

#include "core/window_names.h"

namespace qk {

namespace {

constexpr int kReadAgainMs = 10;
constexpr int kShowMs = 200;
constexpr int kWatchMs = 1000;
constexpr int kLastWordsMs = 1000;
constexpr std::size_t kReadAhead = 1 << 16;

void SetOption(int socket, int option) {
  const int on = 1;
  setsockopt(socket, IPPROTO_TCP, option, &on, sizeof on);
}

// Otherwise the reply to a command without a response waits for a delayed acknowledgement of 40 ms.
// The system resets the option by itself, so it is set after every read.
void AcknowledgeAtOnce(int socket) {
  SetOption(socket, TCP_QUICKACK);
}

// An idle client whose cable was pulled is found out by these probes after 20 s. A client that has
// ended its input waits for an answer, or its process has ended: its system says so, at the latest
// about a minute after the end of the process.
void FindOutIfGone(int socket) {
  constexpr int kIdleSeconds = 5, kBetweenSeconds = 5, kProbes = 3;
  const int on = 1;
  setsockopt(socket, SOL_SOCKET, SO_KEEPALIVE, &on, sizeof on);
  setsockopt(socket, IPPROTO_TCP, TCP_KEEPIDLE, &kIdleSeconds, sizeof kIdleSeconds);
  setsockopt(socket, IPPROTO_TCP, TCP_KEEPINTVL, &kBetweenSeconds, sizeof kBetweenSeconds);
  setsockopt(socket, IPPROTO_TCP, TCP_KEEPCNT, &kProbes, sizeof kProbes);
}

struct Peer {
  QHostAddress Address;
  int Port = 0;
};
Peer PeerOf(int socket) {
  sockaddr_storage storage{};
  socklen_t size = sizeof storage;
  auto* const address = reinterpret_cast<sockaddr*>(&storage);
  if (getpeername(socket, address, &size) != 0) return {};
  const in_port_t port = storage.ss_family == AF_INET6
                             ? reinterpret_cast<const sockaddr_in6*>(&storage)->sin6_port
                             : reinterpret_cast<const sockaddr_in*>(&storage)->sin_port;
  return {QHostAddress(address), ntohs(port)};
}

bool TryAgain() {
  return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

}  // namespace

// One client's socket, without QTcpSocket, which closes a connection as soon as the other side
// stops sending. A client may shut down its sending half and wait for the reply.
class RemoteServer::Connection : public QObject, public scpi::Transport {
 public:
  Connection(RemoteServer& server, int socket, const Peer& peer)
      : server_(server),
        socket_(socket),
        reading_(socket, QSocketNotifier::Read),
        writing_(socket, QSocketNotifier::Write),
        breaking_(socket, QSocketNotifier::Exception) {
    writing_.setEnabled(false);
    fcntl(socket_, F_SETFL, fcntl(socket_, F_GETFL) | O_NONBLOCK);
    SetOption(socket_, TCP_NODELAY);
    AcknowledgeAtOnce(socket_);
    FindOutIfGone(socket_);
    client_ = server.remote_.Connect(
        *this, (peer.Address.toString() + ":" + QString::number(peer.Port)).toStdString());
    server.wake_.Add(socket_);
    connect(&reading_, &QSocketNotifier::activated, this, [this] { Read(); });
    connect(&writing_, &QSocketNotifier::activated, this, [this] { Flush(); });
    connect(&breaking_, &QSocketNotifier::activated, this, [this] { NoteBreak(); });
  }
  ~Connection() override {
    reading_.setEnabled(false);
    writing_.setEnabled(false);
    breaking_.setEnabled(false);
    if (client_ != nullptr) server_.remote_.Disconnect(*client_);
    close(socket_);
  }

  // The other side has stopped sending and waits for a reply, or has gone.
  bool InputEnded() const { return client_ == nullptr || client_->InputEnded(); }

  void Send(std::string_view bytes) override {
    unsent_ += bytes;
    Flush();
  }
  std::size_t Unsent() const override { return unsent_.size() - sent_; }
  // Called from the client's own functions, so it is deferred until they have returned.
  void Close() override {
    QTimer::singleShot(0, this, [this] { Leave(); });
  }
  void RequestInput() override {
    QTimer::singleShot(0, this, [this] { Read(); });
  }
  void AllAnswered() override {
    answered_ = true;
    if (Unsent() == 0) Close();
  }

  // Sends what is left, however long that takes, unless the other side takes nothing for so many
  // milliseconds.
  void SendLast(int patienceMs) {
    while (Unsent() > 0 && !broken_) {
      pollfd entry{socket_, POLLOUT, 0};
      if (poll(&entry, 1, patienceMs) <= 0) break;
      Flush();
    }
    shutdown(socket_, SHUT_WR);
    // With unread input the system would reset the connection and discard the replies.
    while (recv(socket_, block_.data(), block_.size(), 0) > 0) {
    }
  }

 private:
  void Read() {
    // The line is in use: the bytes stay in the system's buffer.
    if (server_.breathing_()) {
      reading_.setEnabled(false);
      QTimer::singleShot(kReadAgainMs, this, [this] { Read(); });
      return;
    }
    // A command may cause remote control to be switched off.
    const QPointer<Connection> here(this);
    while (client_ != nullptr && !client_->InputEnded() && client_->WantsInput()) {
      const ssize_t count = recv(socket_, block_.data(), block_.size(), 0);
      if (count < 0 && TryAgain()) break;
      AcknowledgeAtOnce(socket_);
      if (count < 0) {
        Break();
      } else {
        if (count == 0)
          client_->EndInput();
        else
          client_->Receive({block_.data(), static_cast<std::size_t>(count)});
        server_.remote_.Serve(*client_);
      }
      if (here.isNull()) return;
    }
    reading_.setEnabled(client_ != nullptr && !client_->InputEnded() && client_->WantsInput());
    if (server_.OnServed) server_.OnServed();
  }
  void Flush() {
    while (Unsent() > 0) {
      const ssize_t count = send(socket_, unsent_.data() + sent_, Unsent(), MSG_NOSIGNAL);
      if (count < 0 && TryAgain()) break;
      if (count < 0) {
        broken_ = true;
        writing_.setEnabled(false);
        if (client_ != nullptr) server_.remote_.ConnectionLost(*client_);
        return Close();
      }
      sent_ += static_cast<std::size_t>(count);
    }
    if (Unsent() == 0 || sent_ > kMoveAt) {
      unsent_.erase(0, sent_);
      sent_ = 0;
    }
    writing_.setEnabled(Unsent() > 0);
    if (answered_ && Unsent() == 0) Close();
  }
  // The system reports an error of the connection: the other side is gone, not only silent.
  void NoteBreak() {
    int error = 0;
    socklen_t size = sizeof error;
    pollfd entry{socket_, 0, 0};
    const bool gone = poll(&entry, 1, 0) > 0 && (entry.revents & (POLLERR | POLLHUP)) != 0;
    if (getsockopt(socket_, SOL_SOCKET, SO_ERROR, &error, &size) == 0 && error == 0 && !gone)
      return;
    Break();
  }
  void Break() {
    broken_ = true;
    if (client_ != nullptr) server_.remote_.ConnectionLost(*client_);
    Leave();
  }
  void Leave() {
    if (std::exchange(left_, true)) return;
    reading_.setEnabled(false);
    writing_.setEnabled(false);
    breaking_.setEnabled(false);
    if (client_ != nullptr) server_.remote_.Disconnect(*std::exchange(client_, nullptr));
    QTimer::singleShot(0, &server_, [this, &server = server_] { server.Remove(this); });
  }

  static constexpr std::size_t kMoveAt = 1 << 20;

  RemoteServer& server_;
  int socket_;
  QSocketNotifier reading_, writing_, breaking_;
  scpi::Client* client_ = nullptr;
  std::array<char, kReadAhead> block_;
  std::string unsent_;
  std::size_t sent_ = 0;  // of unsent_
  bool answered_ = false;
  bool broken_ = false;
  bool left_ = false;
};

void RemoteServer::Listener::incomingConnection(qintptr descriptor) {
  if (OnConnection) OnConnection(static_cast<int>(descriptor));
}

RemoteServer::RemoteServer(Program& program, std::function<bool()> breathing)
    : program_(program),
      breathing_(std::move(breathing)),
      remote_(program, [this](std::function<void()> act) { Post(std::move(act)); }) {
  posting_.setSingleShot(true);
  connect(&posting_, &QTimer::timeout, this, [this] { RunPosted(); });
  for (Listener* listener : {&server_, &sixth_})
    listener->OnConnection = [this](int socket) { Accept(socket); };
  // The window is updated a few times per second, however fast a client is.
  showing_.setSingleShot(true);
  showing_.setInterval(kShowMs);
  connect(&showing_, &QTimer::timeout, this, [this] { ShowChange(); });
  watching_.setInterval(kWatchMs);
  connect(&watching_, &QTimer::timeout, this, [this] {
    if (!breathing_()) remote_.Watch();
    if (connections_.empty()) watching_.stop();
  });
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
  if (!connections_.empty()) remote_.Release("remote control was switched off");
  for (const auto& connection : connections_) connection->SendLast(0);
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

void RemoteServer::Accept(int socket) {
  const Peer peer = PeerOf(socket);
  // A client that has ended its input may be gone: it is removed to make room.
  if (remote_.Clients() >= scpi::Remote::kMostClients)
    if (const auto ended = std::ranges::find_if(connections_, &Connection::InputEnded);
        ended != connections_.end())
      connections_.erase(ended);
  if (!peer.Address.isLoopback() || remote_.Clients() >= scpi::Remote::kMostClients) {
    close(socket);
    return;
  }
  connections_.push_back(std::make_unique<Connection>(*this, socket, peer));
  watching_.start();
}

void RemoteServer::Post(std::function<void()> act) {
  posted_.push_back(std::move(act));
  if (!posting_.isActive()) posting_.start(0);
}

void RemoteServer::RunPosted() {
  if (breathing_()) {
    posting_.start(kReadAgainMs);
    return;
  }
  // Functions posted meanwhile wait; an action may run a whole sweep, and this function inside it.
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
  QCoreApplication::processEvents();  // events deferred by the first call
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
  for (const auto& connection : connections_) connection->SendLast(kLastWordsMs);
}

void RemoteServer::MarkIn(QMainWindow& window) {
  mark_ = new QLabel(&window);
  mark_->setObjectName("RemoteMark");
  mark_->setFrameStyle(QFrame::Panel | QFrame::Sunken);
  mark_->setToolTip("A remote client controls this program: see Tools, Remote Control");
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
