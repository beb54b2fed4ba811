// SPDX-License-Identifier: MIT
// A disk that is full, for as long as this stands: no file of the process grows beyond so many
// bytes. Any user may set that limit, on any file system; the system's words for it are "File too
// large". What tests print meanwhile is lost when it goes to a file.
#pragma once

#include <sys/resource.h>

#include <csignal>

namespace qk::test {

class FullDisk {
 public:
  explicit FullDisk(rlim_t largestFile = 0) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    rlimit limit = before_;
    limit.rlim_cur = largestFile;
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FullDisk() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  // The write fails instead of the process.
  void (*handler_)(int) = std::signal(SIGXFSZ, SIG_IGN);
  rlimit before_{};
};

}  // namespace qk::test
