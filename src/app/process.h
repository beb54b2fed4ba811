// SPDX-License-Identifier: MIT
// What the process has from its system: standard descriptors, signals that end it, the script.
#pragma once

#include <array>
#include <string>

#include "core/result.h"

namespace qk {

// Standard input, output and error that were closed become /dev/null, so that nothing that is
// opened later passes for one of them.
void FillStandardDescriptors();

// A file that meets the limit of the shell's ulimit -f is refused like one on a full disk;
// otherwise the system would end the process.
void LetLargeFilesFail();

// A script for the console: its descriptor, which stays open. A folder or a device that is no
// terminal is refused.
Result<int> OpenScript(const std::string& path);

// SIGINT, SIGTERM and SIGHUP while it lives. A signal that was ignored stays so; the second one
// ends the process at once.
class EndSignals {
 public:
  EndSignals();
  ~EndSignals();
  EndSignals(const EndSignals&) = delete;
  EndSignals& operator=(const EndSignals&) = delete;

  // Can be read once a signal has come.
  int Descriptor() const { return ends_[0]; }
  bool Came() const;

 private:
  std::array<int, 2> ends_{-1, -1};
};

// Descriptors that are waited for together: Descriptor() can be read when something new has come at
// any of them, until Drain. One that is closed drops out by itself.
class WakeSet {
 public:
  WakeSet();
  ~WakeSet();
  WakeSet(const WakeSet&) = delete;
  WakeSet& operator=(const WakeSet&) = delete;

  void Add(int descriptor) const;
  int Descriptor() const { return set_; }
  void Drain() const;

 private:
  int set_ = -1;
};

}  // namespace qk
