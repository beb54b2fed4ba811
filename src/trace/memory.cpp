#include "trace/memory.h"

namespace qk {

Complex ApplyMemoryMath(const DisplayState& display, const ChannelSettings& channel, Complex z,
                        int pointIndex) {
  if (!channel.MemoryValid || display.DisplayMode != DisplayMode::MemoryMath) return z;
  const auto i = static_cast<std::size_t>(pointIndex);
  const Complex stored{channel.MemoryRe[i], channel.MemoryIm[i]};
  switch (display.MemoryFunction) {
    case MemoryFunction::Plus:
      return z + stored;
    case MemoryFunction::Subtract:
      return z - stored;
    case MemoryFunction::Divide:
      return ComplexDivide(z, stored);
    case MemoryFunction::None:
      break;
  }
  return z;
}

bool HoldWins(MemoryHold hold, GraphType graphType, Complex live, Complex stored) {
  const Quantity held = RowOf(graphType).Held;
  if (held == nullptr) return false;
  return hold == MemoryHold::Max ? held(live) >= held(stored) : held(live) < held(stored);
}

}  // namespace qk
