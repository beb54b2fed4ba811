// The nine graph types by name. Channels hold the name, as windows and session files do; this
// turns it into something to switch on, cheaply enough to be done for every point.
#pragma once

#include <string_view>

namespace qk {

enum class GraphKind { LogMag, Phase, Smith, Swr, GroupDelay, LinMag, Real, Imag, Td, Unknown };

// Exact, case included; anything else is Unknown.
GraphKind GraphKindOf(std::string_view graphType);

}  // namespace qk
