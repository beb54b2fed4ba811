// SPDX-License-Identifier: MIT
#include "files/whole_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace qk {

namespace {
namespace fs = std::filesystem;

// An open file; closed at the end of its scope.
class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  bool Open() const { return fd_ >= 0; }
  int Get() const { return fd_; }

 private:
  int fd_;
};

// "WHAT: the system's words for the last error".
Failure LastError(const std::string& path, const std::string& what) {
  return {what + ": " + std::generic_category().message(errno), path};
}

std::string SizeText(std::size_t bytes) {
  return std::to_string(bytes) + " bytes";
}

// Where a path leads: the target of a symbolic link, else the path itself.
fs::path Target(const std::string& path) {
  std::error_code error;
  if (!fs::is_symlink(path, error)) return path;
  const fs::path target = fs::weakly_canonical(path, error);
  return error ? fs::path(path) : target;
}

bool SameFile(int fd, const fs::path& path) {
  struct stat opened {};
  struct stat named {};
  return ::fstat(fd, &opened) == 0 && ::lstat(path.c_str(), &named) == 0 &&
         opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
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

// The rename itself on the disk. Not every file system can; the file is whole all the same.
void SyncFolder(const fs::path& folder) {
  const Descriptor opened(
      ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (opened.Open()) ::fsync(opened.Get());
}

// The old file, when there is one, must be one that may be replaced.
Result<Done> MayReplace(const std::string& path, const fs::path& target, mode_t& mode) {
  struct stat old {};
  if (::stat(target.c_str(), &old) != 0) {
    if (errno == ENOENT) return Done{};
    return LastError(path, "cannot be written");
  }
  if (S_ISDIR(old.st_mode)) return Failure{"is a folder", path};
  if (!S_ISREG(old.st_mode)) return Failure{"is not an ordinary file", path};
  if (::access(target.c_str(), W_OK) != 0) return LastError(path, "cannot be written");
  mode = old.st_mode & 07777;
  return Done{};
}
}  // namespace

Result<std::string> ReadWhole(const std::string& path, std::size_t limit) {
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (!file.Open()) return LastError(path, "cannot be opened");
  struct stat about {};
  if (::fstat(file.Get(), &about) != 0) return LastError(path, "cannot be read");
  if (S_ISDIR(about.st_mode)) return Failure{"is a folder", path};
  if (!S_ISREG(about.st_mode)) return Failure{"is not an ordinary file", path};
  const auto size = static_cast<std::size_t>(about.st_size);
  if (size > limit) return Failure{"is larger than " + SizeText(limit), path};

  // A byte of room beyond the size, so that the end is seen.
  std::string bytes(size + 1, '\0');
  std::size_t have = 0;
  while (have < bytes.size()) {
    const ssize_t got = ::read(file.Get(), bytes.data() + have, bytes.size() - have);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return LastError(path, "cannot be read");
    if (got == 0) break;
    have += static_cast<std::size_t>(got);
  }
  if (have != size) return Failure{"changed its length while it was read", path};
  bytes.resize(have);
  return bytes;
}

Result<Done> WriteWhole(const std::string& path, std::string_view bytes) {
  const fs::path target = Target(path);
  if (target.filename().empty()) return Failure{"is not the name of a file", path};
  mode_t mode = 0;  // 0: a new file, with the permissions that the user's mask leaves
  if (Result<Done> may = MayReplace(path, target, mode); !may) return may;

  const fs::path beside = target.parent_path() / ("." + target.filename().string() + ".saving");
  const Descriptor file(
      ::open(beside.c_str(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0666));
  if (!file.Open()) return LastError(path, "cannot be written");
  // One writer at a time: a second one that opened the file beside before it was renamed would
  // write into the finished file.
  const bool locked = ::flock(file.Get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
  if (!locked || !SameFile(file.Get(), beside))
    return Failure{"is being saved by another program", path};

  const auto failed = [&] {
    Failure why = LastError(path, "cannot be written");
    ::unlink(beside.c_str());
    return why;
  };
  if (::ftruncate(file.Get(), 0) != 0 || !WriteAll(file.Get(), bytes)) return failed();
  if (mode != 0 && ::fchmod(file.Get(), mode) != 0) return failed();
  if (::fsync(file.Get()) != 0) return failed();
  if (std::rename(beside.c_str(), target.c_str()) != 0) return failed();
  SyncFolder(target.parent_path());
  return Done{};
}

}  // namespace qk
