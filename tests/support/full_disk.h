// SPDX-License-Identifier: MIT
// Simulates a full disk while it exists: no file of the process can grow beyond a given number of
// bytes. Any user may set that limit, on any file system; the system's error text for it is "File
// too large". Test output in the meantime is lost if it goes to a file.
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
  // Makes the write fail instead of ending the process.
  void (*handler_)(int) = std::signal(SIGXFSZ, SIG_IGN);
  rlimit before_{};
};

}  // namespace qk::test
