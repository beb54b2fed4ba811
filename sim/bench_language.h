// SPDX-License-Identifier: MIT
// The bench commands, which connect devices and inject faults. They are the same for the console,
// the bench window and the control pipe of qk47-sim. One command per line; a refused line changes
// nothing.
#pragma once

#include <span>
#include <string_view>

#include "sim/instrument.h"

namespace qk::sim {

class Arguments;

// A command of the bench language. The help and the tests use these rows.
struct BenchVerb {
  std::string_view Word;     // the first word, or the word after "fault"
  std::string_view Usage;    // as the help shows it; empty if covered by the previous row
  std::string_view Example;  // a line that a new bench accepts; empty if it needs a file
  BenchReply (*Run)(Instrument& instrument, Arguments& arguments);
  bool AlsoInSweep = false;  // a fault that can be deferred to a sweep: "fault sweep WORD ..."
};
std::span<const BenchVerb> BenchVerbs();
std::span<const BenchVerb> FaultVerbs();

BenchReply RunBenchLine(Instrument& instrument, std::string_view line);

}  // namespace qk::sim
