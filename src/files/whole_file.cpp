// SPDX-License-Identifier: MIT
#include "files/whole_file.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "core/descriptor.h"

namespace qk {

namespace {
namespace fs = std::filesystem;

std::string SizeText(std::size_t bytes) {
  return std::to_string(bytes) + " bytes";
}

// The target of a path: that of a symbolic link, otherwise the path itself.
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

// Flushes the rename to disk. Not every file system supports this; the file is complete in any
// case.
void SyncFolder(const fs::path& folder) {
  const Descriptor opened(
      ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (opened.Open()) ::fsync(opened.Get());
}

// Checks that an existing file may be replaced.
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

constexpr std::size_t kLongestName = 255;  // in bytes, on common file systems
constexpr std::string_view kSaving = ".saving";

// ".NAME.saving"; if the name is too long for that, its beginning and a hash that distinguishes it
// from names with the same beginning.
std::string NameBeside(const std::string& name) {
  if (1 + name.size() + kSaving.size() <= kLongestName) return "." + name + std::string(kSaving);
  std::uint32_t hash = 2166136261u;  // FNV-1a
  for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
  const std::string number = std::to_string(hash);
  std::size_t kept = kLongestName - 2 - number.size() - kSaving.size();
  while (kept > 0 && (name[kept] & 0xC0) == 0x80) --kept;  // not inside a UTF-8 character
  return "." + name.substr(0, kept) + "." + number + std::string(kSaving);
}

std::string UserName(uid_t user) {
  const passwd* entry = ::getpwuid(user);
  return entry != nullptr ? entry->pw_name : std::to_string(user);
}

// Removes the temporary file of a killed save, or a link or FIFO with its name. Only the name is
// removed: it may be a second link to another file, and a symbolic link is never followed. A locked
// file is being written now.
Result<Done> ClearBeside(const std::string& path, const fs::path& beside) {
  struct stat left {};
  if (::lstat(beside.c_str(), &left) != 0) return Done{};  // gone in the meantime
  if (S_ISDIR(left.st_mode))
    return Failure{
        "cannot be written, a folder named " + beside.filename().string() + " is in the way", path};
  if (S_ISREG(left.st_mode)) {
    const Descriptor file(::open(beside.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (file.Open() && ::flock(file.Get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
      return Failure{"is being saved by another program", path};
  }
  if (::unlink(beside.c_str()) == 0 || errno == ENOENT) return Done{};
  const int why = errno;
  const std::string owner = UserName(left.st_uid);
  errno = why;
  return LastError(path, "cannot be written, " + beside.filename().string() + " of user " + owner +
                             " is in the way");
}

// Removes from a folder what killed saves have left under other names: files of this user that no
// program is writing, at least a minute older than the file that was saved now.
void RemoveLeftovers(const fs::path& folder, const struct stat& now) {
  constexpr time_t kOldSeconds = 60;
  std::error_code error;
  for (fs::directory_iterator at(folder.empty() ? "." : folder, error), end; !error && at != end;
       at.increment(error)) {
    const std::string name = at->path().filename().string();
    if (!name.starts_with('.') || !name.ends_with(kSaving)) continue;
    struct stat left {};
    if (::lstat(at->path().c_str(), &left) != 0 || !S_ISREG(left.st_mode) ||
        left.st_uid != ::geteuid() || now.st_mtime - left.st_mtime < kOldSeconds)
      continue;
    const Descriptor file(
        ::open(at->path().c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (file.Open() && ::flock(file.Get(), LOCK_EX | LOCK_NB) == 0 &&
        SameFile(file.Get(), at->path()))
      ::unlink(at->path().c_str());
  }
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

  // One byte more than the size, to detect the end.
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
  mode_t mode = 0;  // 0: a new file, with default permissions
  if (Result<Done> may = MayReplace(path, target, mode); !may) return may;

  const fs::path beside = target.parent_path() / NameBeside(target.filename().string());
  constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
  Descriptor file(::open(beside.c_str(), kFlags, 0666));
  if (!file.Open() && errno == EEXIST) {
    if (Result<Done> cleared = ClearBeside(path, beside); !cleared) return cleared;
    file = Descriptor(::open(beside.c_str(), kFlags, 0666));
  }
  if (!file.Open()) return LastError(path, "cannot be written");
  // One writer at a time: an unlocked temporary file is considered abandoned.
  const bool locked = ::flock(file.Get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
  if (!locked || !SameFile(file.Get(), beside))
    return Failure{"is being saved by another program", path};

  const auto failed = [&] {
    Failure why = LastError(path, "cannot be written");
    ::unlink(beside.c_str());
    return why;
  };
  if (!WriteAll(file.Get(), bytes)) return failed();
  if (mode != 0 && ::fchmod(file.Get(), mode) != 0) return failed();
  if (::fsync(file.Get()) != 0) return failed();
  struct stat saved {};
  const bool dated = ::fstat(file.Get(), &saved) == 0;
  if (std::rename(beside.c_str(), target.c_str()) != 0) return failed();
  SyncFolder(target.parent_path());
  if (dated) RemoveLeftovers(target.parent_path(), saved);
  return Done{};
}

}  // namespace qk
