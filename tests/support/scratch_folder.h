// SPDX-License-Identifier: MIT
// A temporary folder for one test, deleted with it, so that tests running at the same time share no
// files.
#pragma once

#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <system_error>

namespace qk::test {

class ScratchFolder {
 public:
  explicit ScratchFolder(const std::filesystem::path& in = std::filesystem::temp_directory_path()) {
    static std::atomic<int> number = 0;
    path_ = in / ("qk-test-" + std::to_string(getpid()) + "-" + std::to_string(++number));
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

// A folder in memory if there is one: for tests that write hundreds of files, which would otherwise
// wait for the disk.
inline std::filesystem::path InMemory() {
  const std::filesystem::path memory = "/dev/shm";
  return access(memory.c_str(), W_OK) == 0 ? memory : std::filesystem::temp_directory_path();
}

}  // namespace qk::test
