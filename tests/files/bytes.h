// SPDX-License-Identifier: MIT
// The bytes of a file, for tests.
#pragma once

#include <fstream>
#include <sstream>
#include <string>

namespace qk::test {

inline void Put(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

inline std::string Get(const std::string& path) {
  std::ostringstream bytes;
  bytes << std::ifstream(path, std::ios::binary).rdbuf();
  return bytes.str();
}

}  // namespace qk::test
