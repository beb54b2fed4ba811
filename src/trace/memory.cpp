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

void StoreMemory(Session& session, int first, int last) {
  for (int n = first; n <= last; ++n) {
    ChannelSettings& channel = session.Channel(n);
    channel.MemoryValid = true;
    channel.MemoryParameter = channel.Parameter;
    const ComplexArray& data = ArrayOf(session.Data, channel.Parameter);
    for (int i = 1; i <= session.Plan.NumPoints; ++i) {
      channel.MemoryRe[static_cast<std::size_t>(i)] = data[i - 1].re;
      channel.MemoryIm[static_cast<std::size_t>(i)] = data[i - 1].im;
    }
  }
  session.Display.MemoryInUse = true;
}

void EraseMemory(Session& session) {
  for (ChannelSettings& channel : session.Channels) channel.MemoryValid = false;
  session.Display.MemoryInUse = false;
  session.Display.MemoryHold = MemoryHold::Off;
}

bool HoldWins(MemoryHold hold, GraphType graphType, Complex live, Complex stored) {
  const Quantity held = RowOf(graphType).Held;
  if (held == nullptr) return false;
  return hold == MemoryHold::Max ? held(live) >= held(stored) : held(live) < held(stored);
}

}  // namespace qk
