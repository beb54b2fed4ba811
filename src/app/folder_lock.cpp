// SPDX-License-Identifier: MIT
#include "app/folder_lock.h"

#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

#include <QLockFile>
#include <QSysInfo>

#include <sys/stat.h>

#include "core/result.h"

namespace qk {

namespace {
constexpr const char* kLockName = ".qk47-vna.lock";

bool IsOtherThanFile(const std::string& path) {
  struct stat about {};
  return ::lstat(path.c_str(), &about) == 0 && !S_ISREG(about.st_mode);
}
}  // namespace

FolderLock::FolderLock(std::string folder) : folder_(std::move(folder)) {
  std::error_code ignored;
  std::filesystem::create_directories(folder_, ignored);
  const std::string path = (std::filesystem::path(folder_) / kLockName).string();
  // A FIFO or a device is not opened, because that may block forever.
  if (IsOtherThanFile(path)) {
    obstacle_ = Failure{"is not an ordinary file", path}.Text();
    return;
  }
  file_ = std::make_unique<QLockFile>(QString::fromStdString(path));
  file_->setStaleLockTime(0);  // a program may run for weeks: only its end releases the lock
  if (file_->tryLock(0) || file_->error() != QLockFile::LockFailedError) return;
  qint64 process = 0;
  QString host, name;
  if (!file_->getLockInfo(&process, &host, &name)) {
    holder_ = "another process";
    return;
  }
  holder_ = "process " + std::to_string(process);
  if (!host.isEmpty() && host != QSysInfo::machineHostName())
    holder_ += " on " + host.toStdString();
}

FolderLock::~FolderLock() = default;

void FolderLock::Release() {
  if (file_ != nullptr) file_->unlock();
}

std::string FreeFolderBeside(const std::string& folder) {
  std::string stem = folder;
  while (stem.size() > 1 && stem.back() == '/') stem.pop_back();
  for (int n = 2;; ++n) {
    std::string beside = stem + "-" + std::to_string(n);
    std::error_code ignored;
    if (!std::filesystem::exists(beside, ignored)) return beside;
    if (std::filesystem::is_directory(beside, ignored) && !FolderLock(beside).Refused())
      return beside;
  }
}

std::string RefusalText(const FolderLock& lock) {
  if (!lock.Obstacle().empty()) return lock.Obstacle();
  return "the folder \"" + lock.Folder() + "\" is in use by " + lock.Holder() +
         "; give another one, for example --folder \"" + FreeFolderBeside(lock.Folder()) + "\"";
}

bool ReportsRefusal(const FolderLock& lock) {
  if (lock.Refused()) std::fprintf(stderr, "qk47-vna: %s\n", RefusalText(lock).c_str());
  return lock.Refused();
}

}  // namespace qk
