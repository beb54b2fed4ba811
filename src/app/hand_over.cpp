// SPDX-License-Identifier: MIT
#include "app/hand_over.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QLocalSocket>

namespace qk {

namespace {
namespace fs = std::filesystem;

constexpr std::size_t kLongestSocketPath = 100;  // of 108 bytes; the toolkit needs some for itself
constexpr qint64 kLongestMessage = 64 * 1024;
constexpr int kConnectMs = 2000;
// The running program replies between two points of a sweep, but not while it waits for the
// instrument, which takes seconds if the instrument does not answer.
constexpr int kReplyMs = 20000;

// Reads up to a zero byte; false until it has arrived.
bool Complete(QLocalSocket& socket, QByteArray& message) {
  message += socket.read(kLongestMessage + 1 - message.size());
  return message.endsWith('\0');
}

}  // namespace

std::vector<std::string> SocketsOf(const std::string& folder) {
  std::error_code error;
  fs::path whole = fs::weakly_canonical(folder, error);
  if (error) whole = fs::absolute(folder, error);
  std::vector<std::string> sockets;
  const auto add = [&sockets](const fs::path& path) {
    if (path.string().size() <= kLongestSocketPath) sockets.push_back(path.string());
  };
  const char* runtime = std::getenv("XDG_RUNTIME_DIR");
  if (runtime != nullptr && fs::is_directory(runtime, error)) {
    const QByteArray hash = QCryptographicHash::hash(QByteArray::fromStdString(whole.string()),
                                                     QCryptographicHash::Sha256);
    add(fs::path(runtime) / ("qk47-vna-" + hash.toHex().left(16).toStdString() + ".socket"));
  }
  add(whole / ".qk47-vna.socket");
  return sockets;
}

Result<Done> HandOver(const std::string& folder, const std::string& file) {
  std::error_code error;
  const std::string path = fs::absolute(file, error).string();
  QLocalSocket socket;
  for (const std::string& place : SocketsOf(folder)) {
    socket.connectToServer(QString::fromStdString(place));
    if (socket.waitForConnected(kConnectMs)) break;
    socket.abort();
  }
  if (socket.state() != QLocalSocket::ConnectedState)
    return Failure{"the program that runs there does not accept files", {}};
  const auto refused = [&file](const std::string& why) { return Failure{why, file}; };
  socket.write(path.c_str(), static_cast<qint64>(path.size()) + 1);
  QByteArray reply;
  const QDeadlineTimer deadline(kReplyMs);
  while (!Complete(socket, reply)) {
    if (reply.size() > kLongestMessage) return refused("the running program does not answer");
    if (socket.bytesAvailable() == 0 &&
        !socket.waitForReadyRead(static_cast<int>(deadline.remainingTime())))
      return refused("the running program does not answer");
  }
  reply.chop(1);
  if (!reply.isEmpty()) return refused(reply.toStdString());
  return Done{};
}

bool FileReceiver::Listen(const std::string& folder) {
  server_.setSocketOptions(QLocalServer::UserAccessOption);
  connect(&server_, &QLocalServer::newConnection, this, &FileReceiver::Accept,
          Qt::UniqueConnection);
  for (const std::string& place : SocketsOf(folder)) {
    const QString name = QString::fromStdString(place);
    QLocalServer::removeServer(name);
    if (server_.listen(name)) return true;
  }
  return false;
}

void FileReceiver::Close() {
  server_.close();
}

void FileReceiver::Accept() {
  while (QLocalSocket* socket = server_.nextPendingConnection()) {
    connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    const auto read = [this, socket, message = QByteArray()]() mutable {
      if (!Complete(*socket, message)) {
        if (message.size() > kLongestMessage) socket->abort();
        return;
      }
      message.chop(1);
      const std::string why = OnFile ? OnFile(message.toStdString()) : "it does not accept files";
      socket->write(why.c_str(), static_cast<qint64>(why.size()) + 1);
      socket->disconnectFromServer();  // after the reply has been written
    };
    connect(socket, &QLocalSocket::readyRead, socket, read);
    if (socket->bytesAvailable() > 0) emit socket->readyRead();
  }
}

}  // namespace qk
