// SPDX-License-Identifier: MIT
#include "core/descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace qk {

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  if (this == &other) return *this;
  Close();
  fd_ = other.fd_;
  other.fd_ = -1;
  return *this;
}

void Descriptor::Close() {
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
}

Failure LastError(const std::string& path, const std::string& what) {
  return {what + ": " + std::generic_category().message(errno), path};
}

bool WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

Result<Descriptor> OpenForWriting(const std::string& path, WriteMode mode) {
  const int append = mode == WriteMode::Append ? O_APPEND : 0;
  Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_NONBLOCK | O_CLOEXEC | append, 0666));
  // ENXIO: a FIFO without a reader.
  if (!file.Open() && errno != ENXIO) return LastError(path, "cannot be written");
  struct stat about {};
  if (!file.Open() || ::fstat(file.Get(), &about) != 0 || !S_ISREG(about.st_mode))
    return Failure{"is not an ordinary file", path};
  if (mode == WriteMode::Anew && ::ftruncate(file.Get(), 0) != 0)
    return LastError(path, "cannot be written");
  return file;
}

}  // namespace qk
