// SPDX-License-Identifier: MIT
// The words by which a bench is told what to connect and what to spoil: the same from the console,
// from a window and from the control pipe of qk47-sim. One line a command; a line that is refused
// changes nothing.
#pragma once

#include <span>
#include <string_view>

#include "sim/instrument.h"

namespace qk::sim {

class Arguments;

// A command of the bench language. The help, and what the tests go through, are these rows.
struct BenchVerb {
  std::string_view Word;     // the first word, or that behind "fault"
  std::string_view Usage;    // as the help shows it; empty when the row before shows it too
  std::string_view Example;  // a line that a new bench accepts; empty when it needs a file
  BenchReply (*Run)(Instrument& instrument, Arguments& arguments);
  bool AlsoInSweep = false;  // a fault that may be kept for a sweep: "fault sweep WORD ..."
};
std::span<const BenchVerb> BenchVerbs();
std::span<const BenchVerb> FaultVerbs();

BenchReply RunBenchLine(Instrument& instrument, std::string_view line);

}  // namespace qk::sim
