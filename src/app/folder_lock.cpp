// SPDX-License-Identifier: MIT
#include "app/folder_lock.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include <QLockFile>
#include <QSysInfo>

namespace qk {

namespace {
constexpr const char* kLockName = ".qk47-vna.lock";
}  // namespace

FolderLock::FolderLock(std::string folder) : folder_(std::move(folder)) {
  std::error_code ignored;
  std::filesystem::create_directories(folder_, ignored);
  file_ = std::make_unique<QLockFile>(
      QString::fromStdString((std::filesystem::path(folder_) / kLockName).string()));
  file_->setStaleLockTime(0);  // a program may run for weeks: only its end frees the lock
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
  file_->unlock();
}

std::string FreeFolderBeside(const std::string& folder) {
  std::string stem = folder;
  while (stem.size() > 1 && stem.back() == '/') stem.pop_back();
  for (int n = 2;; ++n) {
    std::string beside = stem + "-" + std::to_string(n);
    std::error_code ignored;
    if (!std::filesystem::exists(beside, ignored)) return beside;
    if (std::filesystem::is_directory(beside, ignored) && !FolderLock(beside).HeldByOther())
      return beside;
  }
}

std::string InUseText(const FolderLock& lock) {
  return "the folder \"" + lock.Folder() + "\" is in use by " + lock.Holder() +
         "; give another one, for example --folder \"" + FreeFolderBeside(lock.Folder()) + "\"";
}

}  // namespace qk
