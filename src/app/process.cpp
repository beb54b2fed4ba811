// SPDX-License-Identifier: MIT
#include "app/process.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qk {

namespace {

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};

// A signal handler has no argument, so its descriptor is global.
std::atomic<int> signalPipe = -1;
std::atomic<int> signalsSeen = 0;

void ForwardSignal(int signal) {
  if (signalsSeen.fetch_add(1) > 0) _exit(128 + signal);
  const int before = errno;
  const char byte = 1;
  [[maybe_unused]] const ssize_t written = write(signalPipe, &byte, 1);
  errno = before;
}

}  // namespace

void FillStandardDescriptors() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(descriptor, F_GETFD) != -1 || errno != EBADF) continue;
    // open uses the lowest free number, which is this one, because those below are open.
    open("/dev/null", descriptor == STDIN_FILENO ? O_RDONLY : O_WRONLY);
  }
}

void IgnoreFileSizeSignal() {
  std::signal(SIGXFSZ, SIG_IGN);
}

Result<int> OpenScript(const std::string& path) {
  const auto refused = [&path](const std::string& why) {
    return Failure{"cannot read the script \"" + path + "\": " + why, {}};
  };
  const int script = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  struct stat kind;
  if (script < 0 || fstat(script, &kind) != 0) return refused(std::strerror(errno));
  const bool lines = S_ISREG(kind.st_mode) || S_ISFIFO(kind.st_mode) || isatty(script) == 1;
  if (lines) return script;
  close(script);
  return refused(S_ISDIR(kind.st_mode) ? "it is a folder" : "it is not a file of commands");
}

EndSignals::EndSignals() {
  if (pipe2(ends_.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
  signalPipe = ends_[1];
  signalsSeen = 0;
  for (const int signal : kSignals) {
    struct sigaction before {};
    sigaction(signal, nullptr, &before);
    if (before.sa_handler == SIG_IGN) continue;
    struct sigaction action {};
    action.sa_handler = ForwardSignal;
    action.sa_flags = SA_RESTART;
    sigaction(signal, &action, nullptr);
  }
}

EndSignals::~EndSignals() {
  for (const int signal : kSignals) {
    struct sigaction now {};
    sigaction(signal, nullptr, &now);
    if (now.sa_handler == ForwardSignal) std::signal(signal, SIG_DFL);
  }
  signalPipe = -1;
  for (const int end : ends_)
    if (end >= 0) close(end);
}

WakeSet::WakeSet() : set_(epoll_create1(EPOLL_CLOEXEC)) {}

WakeSet::~WakeSet() {
  if (set_ >= 0) close(set_);
}

void WakeSet::Add(int descriptor) const {
  // Edge-triggered: input that has not been read yet must not wake the waiting loop again.
  epoll_event event{};
  event.events = EPOLLIN | EPOLLRDHUP | EPOLLOUT | EPOLLET;
  epoll_ctl(set_, EPOLL_CTL_ADD, descriptor, &event);
}

void WakeSet::Drain() const {
  std::array<epoll_event, 16> events;
  while (epoll_wait(set_, events.data(), static_cast<int>(events.size()), 0) ==
         static_cast<int>(events.size())) {
  }
}

bool EndSignals::Came() const {
  pollfd entry{ends_[0], POLLIN, 0};
  return poll(&entry, 1, 0) > 0;
}

}  // namespace qk
