// SPDX-License-Identifier: MIT
// Process-level functions: standard descriptors, termination signals, the script.
#pragma once

#include <array>
#include <string>

#include "core/result.h"

namespace qk {

// Opens /dev/null for any closed standard input, output or error, so that a file opened later does
// not get one of their descriptors.
void FillStandardDescriptors();

// Makes a write beyond the limit of the shell's ulimit -f fail like a full disk; otherwise the
// system would end the process.
void IgnoreFileSizeSignal();

// Opens a script for the console; the descriptor stays open. A folder, or a device other than a
// terminal, is refused.
Result<int> OpenScript(const std::string& path);

// Catches SIGINT, SIGTERM and SIGHUP during its lifetime. An ignored signal stays ignored; the
// second signal ends the process at once.
class EndSignals {
 public:
  EndSignals();
  ~EndSignals();
  EndSignals(const EndSignals&) = delete;
  EndSignals& operator=(const EndSignals&) = delete;

  // Becomes readable when a signal has arrived.
  int Descriptor() const { return ends_[0]; }
  bool Came() const;

 private:
  std::array<int, 2> ends_{-1, -1};
};

// A set of descriptors to wait for together: Descriptor() is readable when there is new input on
// any of them, until Drain. A closed descriptor is removed by itself.
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
