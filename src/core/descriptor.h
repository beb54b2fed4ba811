// SPDX-License-Identifier: MIT
// RAII for an open file descriptor, and opening files for writing without blocking.
#pragma once

#include <string>
#include <string_view>

#include "core/result.h"

namespace qk {

// An open file descriptor; closed at the end of its scope.
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

// A failure with the message "WHAT: text of errno" and the path as its place.
Failure LastError(const std::string& path, const std::string& what);

// Writes all bytes. On failure returns false with the cause in errno.
bool WriteAll(int fd, std::string_view bytes);

enum class WriteMode { Anew, Append };

// Opens a regular file for writing and creates it if it is missing. FIFOs, devices and folders are
// refused. Never blocks waiting for a reader.
Result<Descriptor> OpenForWriting(const std::string& path, WriteMode mode);

}  // namespace qk
