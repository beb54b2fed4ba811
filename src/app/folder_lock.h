// SPDX-License-Identifier: MIT
// Ensures that only one program at a time uses a folder, because two would mix their session, log
// and receiver files. A lock file in the folder identifies the process; a lock file of a dead
// process is ignored.
#pragma once

#include <memory>
#include <string>

class QLockFile;

namespace qk {

class FolderLock {
 public:
  // Creates the folder if it is missing and locks it if it is free. A read-only folder is used
  // without a lock, because no other program can write there either.
  explicit FolderLock(std::string folder);
  ~FolderLock();
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

  const std::string& Folder() const { return folder_; }
  bool HeldByOther() const { return !holder_.empty(); }
  // "process 1234", with " on HOST" if that is another computer; empty if no other process has the
  // lock.
  const std::string& Holder() const { return holder_; }
  // "PATH: is not an ordinary file" if a FIFO, a device, a link or a folder has the name of the
  // lock file; otherwise empty.
  const std::string& Obstacle() const { return obstacle_; }
  // The folder is not locked: another process has it, or there is an obstacle.
  bool Refused() const { return HeldByOther() || !obstacle_.empty(); }
  // Releases the folder before the destructor does.
  void Release();

 private:
  std::string folder_;
  std::unique_ptr<QLockFile> file_;
  std::string holder_, obstacle_;
};

// The first of FOLDER-2, FOLDER-3, ... that no program uses. Creates nothing.
std::string FreeFolderBeside(const std::string& folder);

// The message of a program without windows: the folder, who has it, and another one to use; or the
// obstacle.
std::string RefusalText(const FolderLock& lock);

// Writes that message to standard error if the folder is not locked; returns true then.
bool ReportsRefusal(const FolderLock& lock);

}  // namespace qk
