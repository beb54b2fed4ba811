// SPDX-License-Identifier: MIT
// A folder of a test's own, gone with the test: tests that run at the same time share no file.
#pragma once

#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <system_error>

namespace qk::test {

class ScratchFolder {
 public:
  ScratchFolder() {
    static std::atomic<int> number = 0;
    path_ = std::filesystem::temp_directory_path() /
            ("qk-test-" + std::to_string(getpid()) + "-" + std::to_string(++number));
    std::filesystem::create_directories(path_);
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  std::string Text() const { return path_.string(); }
  std::string File(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

}  // namespace qk::test
