// SPDX-License-Identifier: MIT
// An open file by its descriptor, and files that are opened for writing without ever waiting.
#pragma once

#include <string>
#include <string_view>

#include "core/result.h"

namespace qk {

// An open file; closed at the end of its scope.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() { Close(); }
  Descriptor(Descriptor&& other) noexcept : fd_(other.fd_) { other.fd_ = -1; }
  Descriptor& operator=(Descriptor&& other) noexcept;
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  bool Open() const { return fd_ >= 0; }
  int Get() const { return fd_; }
  void Close();

 private:
  int fd_ = -1;
};

// "WHAT: the system's words for the last error", with the path as the place.
Failure LastError(const std::string& path, const std::string& what);

// All bytes, or false with the cause in errno.
bool WriteAll(int fd, std::string_view bytes);

enum class WriteMode { Anew, Append };

// Opens an ordinary file for writing, which is made when it is missing. FIFOs, devices and folders
// are refused; nothing waits for a reader.
Result<Descriptor> OpenForWriting(const std::string& path, WriteMode mode);

}  // namespace qk
