// SPDX-License-Identifier: MIT
// A locale for one test, set in the environment and built from a few lines in the format of
// localedef.
#pragma once

#include <clocale>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "support/scratch_folder.h"

// Part of the leak checker, if it is linked in.
extern "C" {
void __lsan_disable() __attribute__((weak));
void __lsan_enable() __attribute__((weak));
}

namespace qk::test {

class OwnLocale {
 public:
  // source: the sections of a locale definition, such as LC_TIME.
  explicit OwnLocale(const std::string& source) {
    std::ofstream(folder_.File("source")) << "escape_char /\ncomment_char %\n" << source;
    const std::string command = "localedef -c -i " + folder_.File("source") + " " +
                                folder_.File("xx_XX") + " >/dev/null 2>&1";
    // It exits with 1 to warn about missing sections.
    [[maybe_unused]] const int warned = std::system(command.c_str());
    made_ = std::filesystem::exists(folder_.File("xx_XX/LC_TIME"));
    // The C library keeps a list of LOCPATH's folders for each locale that it opens.
    if (__lsan_disable != nullptr) __lsan_disable();
    Set("LOCPATH", folder_.Text());
    Set("LC_ALL", "xx_XX");
  }
  ~OwnLocale() {
    for (const auto& [name, value] : before_)
      if (value)
        ::setenv(name.c_str(), value->c_str(), 1);
      else
        ::unsetenv(name.c_str());
    std::setlocale(LC_ALL, locale_.c_str());
    if (__lsan_enable != nullptr) __lsan_enable();
  }
  OwnLocale(const OwnLocale&) = delete;
  OwnLocale& operator=(const OwnLocale&) = delete;

  // False if the system has no localedef.
  bool Made() const { return made_; }

 private:
  void Set(const std::string& name, const std::string& value) {
    const char* old = std::getenv(name.c_str());
    before_.emplace_back(name, old == nullptr ? std::nullopt : std::optional<std::string>(old));
    ::setenv(name.c_str(), value.c_str(), 1);
  }

  ScratchFolder folder_;
  std::string locale_ = std::setlocale(LC_ALL, nullptr);
  std::vector<std::pair<std::string, std::optional<std::string>>> before_;
  bool made_ = false;
};

}  // namespace qk::test
