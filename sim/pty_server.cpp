// SPDX-License-Identifier: MIT
#include "sim/pty_server.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <optional>
#include <utility>

namespace qk::sim {

namespace {

// Without a client the terminal only reports that there is none: it is polled again after this
// time.
constexpr int kNoClientMs = 20;
// Bytes are sent in packets, like those of a USB adaptor.
constexpr std::int64_t kParcelUs = 1000;
constexpr std::size_t kLongestLine = 4096;
constexpr const char* kTerminals = "/dev/pts/";
constexpr int kNamesTried = 100;

std::string Failed(const std::string& what) {
  return what + ": " + std::strerror(errno);
}

std::optional<std::string> LinkTarget(const std::string& path) {
  std::array<char, PATH_MAX> target;
  const ssize_t length = readlink(path.c_str(), target.data(), target.size());
  if (length < 0) return std::nullopt;
  return std::string(target.data(), static_cast<std::size_t>(length));
}

}  // namespace

void Descriptor::Reset(int fd) {
  if (fd_ >= 0) close(fd_);
  fd_ = fd;
}

PtyServer::PtyServer(Instrument& instrument, std::string link, std::string control)
    : instrument_(instrument),
      wire_(instrument),
      clock_(RealClock()),
      link_(std::move(link)),
      control_(std::move(control)),
      unpluggings_(instrument.Unpluggings()) {}

PtyServer::~PtyServer() {
  CloseTerminal();
  if (madeControl_) unlink(control_.c_str());
}

std::string PtyServer::Open() {
  std::string error = OpenControl();
  return error.empty() && !instrument_.Unplugged() ? OpenTerminal() : error;
}

// Checks what exists at the link's path: empty if it may be replaced (nothing, or left over from
// another run), otherwise the reason.
std::string PtyServer::LinkPathTaken() const {
  struct stat there;
  if (lstat(link_.c_str(), &there) != 0) return {};
  const std::optional<std::string> target = LinkTarget(link_);
  if (!target) return link_ + ": exists and is no symbolic link";
  if (target->rfind(kTerminals, 0) == 0) return {};
  return link_ + ": exists and leads to " + *target + ", which is no pseudo-terminal";
}

std::string PtyServer::OpenTerminal() {
  if (std::string taken = LinkPathTaken(); !taken.empty()) return taken;
  master_.Reset(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
  if (!master_.IsOpen() || grantpt(master_.Get()) != 0 || unlockpt(master_.Get()) != 0)
    return Failed("no pseudo-terminal");
  fcntl(master_.Get(), F_SETFL, O_NONBLOCK);
  slaveName_ = ptsname(master_.Get());
  ReadyForClient();
  // A link left by another run is replaced atomically; the temporary name next to it is a free one.
  std::string fresh;
  int made = -1;
  for (int i = 0; made != 0 && i < kNamesTried; ++i) {
    fresh = link_ + ".new" + std::to_string(getpid()) + "-" + std::to_string(i);
    made = symlink(slaveName_.c_str(), fresh.c_str());
    if (made != 0 && errno != EEXIST) break;
  }
  if (made != 0) return Failed(fresh);
  if (rename(fresh.c_str(), link_.c_str()) != 0) {
    std::string error = Failed(link_);
    unlink(fresh.c_str());
    return error;
  }
  return {};
}

void PtyServer::CloseTerminal() {
  if (!master_.IsOpen()) return;
  if (LinkTarget(link_) == slaveName_) unlink(link_.c_str());
  master_.Reset();
  client_ = false;
  wire_.Clear();
  toClient_.clear();
}

std::string PtyServer::OpenControl() {
  if (control_.empty()) return {};
  struct stat there;
  if (stat(control_.c_str(), &there) == 0) {
    if (!S_ISFIFO(there.st_mode)) return control_ + ": exists and is no named pipe";
  } else if (mkfifo(control_.c_str(), 0600) != 0) {
    return Failed(control_);
  } else {
    madeControl_ = true;
  }
  // Open for reading and writing, so that it does not end when a writer closes it.
  pipe_.Reset(open(control_.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
  return pipe_.IsOpen() ? std::string() : Failed(control_);
}

// Sets raw bytes without echo, and discards what the previous client had not read. Opening the
// client's side for a moment is the only way to do this; bytes that the next client may already
// have written are kept.
void PtyServer::ReadyForClient() const {
  const Descriptor slave(open(slaveName_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
  termios settings;
  if (!slave.IsOpen() || tcgetattr(slave.Get(), &settings) != 0) return;
  cfmakeraw(&settings);
  cfsetspeed(&settings, B115200);
  tcsetattr(slave.Get(), TCSANOW, &settings);
  tcflush(slave.Get(), TCIFLUSH);
}

void PtyServer::ClientGone() {
  if (!client_) return;
  client_ = false;
  toClient_.clear();
  ReadyForClient();
}

void PtyServer::ReadTerminal() {
  std::array<std::uint8_t, 4096> buffer;
  for (;;) {
    const ssize_t count = read(master_.Get(), buffer.data(), buffer.size());
    if (count <= 0) return;
    client_ = true;
    wire_.Write({buffer.data(), static_cast<std::size_t>(count)}, clock_.NowUs());
  }
}

void PtyServer::WriteTerminal() {
  wire_.Take(toClient_);
  // No client, or the cable is unplugged: bytes are lost, and a sweep still finishes.
  if (!client_) toClient_.clear();
  if (toClient_.empty()) return;
  const ssize_t count = write(master_.Get(), toClient_.data(), toClient_.size());
  if (count > 0) toClient_.erase(toClient_.begin(), toClient_.begin() + count);
}

void PtyServer::ReadControl() {
  std::array<char, 1024> buffer;
  for (;;) {
    const ssize_t count = read(pipe_.Get(), buffer.data(), buffer.size());
    if (count <= 0) break;
    controlText_.append(buffer.data(), static_cast<std::size_t>(count));
  }
  RunBenchLines();
}

void PtyServer::RunBenchLines() {
  std::size_t end;
  while ((end = controlText_.find('\n')) != std::string::npos) {
    const std::string line = controlText_.substr(0, end);
    controlText_.erase(0, end + 1);
    BenchReply reply = instrument_.Bench(line);
    // The cable first: a client that reads "ok" may open the terminal at once.
    const std::string cable = FollowCable();
    if (!cable.empty()) reply = {false, cable};
    if (!reply.Ok)
      std::printf("error: %s\n", reply.Text.c_str());
    else if (reply.Text.empty())
      std::printf("ok\n");
    else
      std::printf("%s\nok\n", reply.Text.c_str());
    std::fflush(stdout);
  }
  if (controlText_.size() > kLongestLine) controlText_.clear();
}

std::string PtyServer::FollowCable() {
  // Also if it was plugged in again before the last check.
  if (instrument_.Unpluggings() != unpluggings_) CloseTerminal();
  unpluggings_ = instrument_.Unpluggings();
  if (instrument_.Unplugged()) return {};
  return master_.IsOpen() ? std::string() : OpenTerminal();
}

int PtyServer::WaitMs() const {
  const std::int64_t now = clock_.NowUs();
  const std::int64_t next = wire_.NextUs(now);
  if (next == Instrument::kNever) return -1;
  const std::int64_t us = std::max(next - now, kParcelUs);
  return static_cast<int>(std::min<std::int64_t>((us + 999) / 1000, 60'000));
}

std::string PtyServer::Serve(int stopFd) {
  bool hungUp = false;
  for (;;) {
    std::string error = FollowCable();
    if (!error.empty()) return error;
    wire_.Advance(clock_.NowUs());
    WriteTerminal();

    int wait = WaitMs();
    if (hungUp) wait = wait < 0 ? kNoClientMs : std::min(wait, kNoClientMs);
    const auto terminalEvents = static_cast<short>(POLLIN | (toClient_.empty() ? 0 : POLLOUT));
    // A terminal without a client would wake the poll at once, so it is left out.
    std::array<pollfd, 3> fds = {{{stopFd, POLLIN, 0},
                                  {pipe_.Get(), POLLIN, 0},
                                  {hungUp ? -1 : master_.Get(), terminalEvents, 0}}};
    if (poll(fds.data(), fds.size(), wait) < 0 && errno != EINTR) return Failed("poll");
    if (fds[0].revents != 0) return {};
    if (fds[1].revents != 0) ReadControl();
    if (!master_.IsOpen()) {
      hungUp = false;
      continue;
    }
    ReadTerminal();
    pollfd state = {master_.Get(), 0, 0};
    poll(&state, 1, 0);
    hungUp = (state.revents & POLLHUP) != 0;
    if (hungUp)
      ClientGone();
    else
      client_ = true;
  }
}

}  // namespace qk::sim
