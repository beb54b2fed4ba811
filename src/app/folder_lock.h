// SPDX-License-Identifier: MIT
// One program at a time works over a folder: its session, log and receiver files would mix
// otherwise. A lock file in the folder names the process; that of a process that has died counts
// for nothing.
#pragma once

#include <memory>
#include <string>

class QLockFile;

namespace qk {

class FolderLock {
 public:
  // Makes the folder where it is missing, and takes it when it is free. A folder that no file can
  // be made in is taken without a lock, since nobody else can write there either.
  explicit FolderLock(std::string folder);
  ~FolderLock();
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

  const std::string& Folder() const { return folder_; }
  bool HeldByOther() const { return !holder_.empty(); }
  // "process 1234", with " on HOST" when that is another computer; empty when no other holds it.
  const std::string& Holder() const { return holder_; }
  // "PATH: is not an ordinary file" when a FIFO, a device, a link or a folder has the name of the
  // lock file; else empty.
  const std::string& Obstacle() const { return obstacle_; }
  // The folder is not taken: another holds it, or there is an obstacle.
  bool Refused() const { return HeldByOther() || !obstacle_.empty(); }
  // Gives the folder free before the destructor does.
  void Release();

 private:
  std::string folder_;
  std::unique_ptr<QLockFile> file_;
  std::string holder_, obstacle_;
};

// The first of FOLDER-2, FOLDER-3, ... that no program works over. Makes nothing.
std::string FreeFolderBeside(const std::string& folder);

// What a program without windows says: the folder, who holds it, and another one to use; or the
// obstacle.
std::string RefusalText(const FolderLock& lock);

}  // namespace qk
