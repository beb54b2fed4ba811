// Control before its start-up, with an install folder of its own.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "control/control_bench.h"

namespace qk::test {

class StartUp : public ::testing::Test, public ControlBench {
 protected:
  StartUp() {
    folder_ = std::filesystem::temp_directory_path() /
              ("qk-start-up-" + std::to_string(reinterpret_cast<std::uintptr_t>(this)));
    std::filesystem::create_directories(folder_);
    session.InstallFolder = folder_.string();
  }
  ~StartUp() override { std::filesystem::remove_all(folder_); }

  // Windows, boxes' answers and panels as they came, without progress.
  std::vector<std::string> Events() {
    std::vector<std::string> events;
    events.swap(fake.Events);
    return events;
  }

  std::filesystem::path folder_;
};

}  // namespace qk::test
