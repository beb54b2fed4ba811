// SPDX-License-Identifier: MIT
// The command line of qk47-vna.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "sim/instrument.h"

namespace qk {

struct Options {
  bool Console = false;
  std::string Script;  // empty: standard input
  std::string Batch;   // the batch.txt of a batch without windows; empty: none
  bool Demo = false;
  sim::Pace DemoPace = sim::Pace::Baud115200;
  std::map<int, std::string> Com;  // devices assigned to COM numbers
  std::string Folder;              // empty: the default install folder
  std::optional<int> ScpiPort;     // enable remote control at start; 0: any free port
  bool ScpiStandard = false;       // remote control on standard input and output, no windows
  std::string File;                // a session or Touchstone file to open; empty: none
  bool Help = false;
  bool Version = false;
  std::string Error;  // empty if the command line is valid
};

Options ParseOptions(const std::vector<std::string>& arguments);
const char* UsageText();
std::string VersionText();

// The default folder of session, log and receiver files.
std::string DefaultFolder();

}  // namespace qk
