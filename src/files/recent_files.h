// SPDX-License-Identifier: MIT
// The recently used files, newest first: sessions and measurements that the user opened or saved.
// The list is a text file in the install folder, "RecentFiles.txt", with one absolute path per
// line. It is read again before each change, so that two programs do not lose each other's entries.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qk {

// How to open a file, by its extension in any case: ".cal" is a session, anything else is
// S-parameters for the memory.
enum class FileUse : std::uint8_t { Session, Measurement };
FileUse UseOfFile(std::string_view path);

class RecentFiles {
 public:
  static constexpr std::size_t kMost = 10;

  // The list of that folder; empty without a folder or a file, or if it cannot be read.
  explicit RecentFiles(std::string folder);

  // Absolute paths, newest first. The files may no longer exist.
  const std::vector<std::string>& Paths() const { return paths_; }
  // Moves or inserts the file at the front. Of eleven, the oldest is dropped of the kind (sessions,
  // measurements) that has more than five: many files of one kind do not drive out the other. If
  // the list cannot be saved, it is valid for this run only. A path with a line break is ignored.
  void Note(const std::string& path);
  // Removes a file from the list; no effect if it is not there.
  void Forget(const std::string& path);

 private:
  void ReadAgain();
  void Save() const;

  std::string folder_;
  std::vector<std::string> paths_;
};

}  // namespace qk
