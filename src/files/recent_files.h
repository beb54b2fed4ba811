// SPDX-License-Identifier: MIT
// The files that were used last, newest first: sessions and measurements that a user opened or
// saved. The list is a text file in the install folder, "RecentFiles.txt", one absolute path a
// line, and is read before each change, so that two programs do not lose each other's files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qk {

// What opening a file means, by its extension in any case: ".cal" a session, anything else
// S-parameters for the memory.
enum class FileUse : std::uint8_t { Session, Measurement };
FileUse UseOfFile(std::string_view path);

class RecentFiles {
 public:
  static constexpr std::size_t kMost = 10;

  // The list of that folder; an empty one without a folder or a file, or when it cannot be read.
  explicit RecentFiles(std::string folder);

  // Absolute paths, newest first. The files may have gone since.
  const std::vector<std::string>& Paths() const { return paths_; }
  // The file becomes the first; the eleventh falls off. A list that cannot be saved holds for this
  // run. A path with a line break in it is left out.
  void Note(const std::string& path);
  // Takes a file off the list; no effect when it is not there.
  void Forget(const std::string& path);

 private:
  void ReadAgain();
  void Save() const;

  std::string folder_;
  std::vector<std::string> paths_;
};

}  // namespace qk
