// The words by which a bench is told what to connect and what to spoil: the same from the console,
// from a window and from the control pipe of qk47-sim. One line a command; a line that is refused
// changes nothing.
#pragma once

#include <string_view>

#include "sim/instrument.h"

namespace qk::sim {

BenchReply RunBenchLine(Instrument& instrument, std::string_view line);

}  // namespace qk::sim
