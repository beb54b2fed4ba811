#include "trace/memory.h"

#include "trace/graph_type.h"

namespace qk {

Complex ApplyMemoryMath(const DisplayState& display, const ChannelSettings& channel, Complex z,
                        int pointIndex) {
  if (!channel.MemoryValid || display.DisplayMode != "Memory+") return z;
  const auto i = static_cast<std::size_t>(pointIndex);
  const Complex stored{channel.MemoryRe[i], channel.MemoryIm[i]};
  if (display.MemoryFunction == "Plus") return z + stored;
  if (display.MemoryFunction == "Subtract") return z - stored;
  if (display.MemoryFunction == "Divide") return ComplexDivide(z, stored);
  return z;
}

bool HoldWins(std::string_view hold, std::string_view graphType, Complex live, Complex stored) {
  double a = 0, b = 0;
  switch (GraphKindOf(graphType)) {
    case GraphKind::LogMag:
      a = MagnitudeDb(live.re, live.im);
      b = MagnitudeDb(stored.re, stored.im);
      break;
    case GraphKind::LinMag:
    case GraphKind::Smith:
      a = Magnitude(live.re, live.im);
      b = Magnitude(stored.re, stored.im);
      break;
    case GraphKind::Real:
      a = live.re;
      b = stored.re;
      break;
    case GraphKind::Imag:
      a = live.im;
      b = stored.im;
      break;
    case GraphKind::Phase:
      a = static_cast<double>(PhaseDeg(live.re, live.im));
      b = static_cast<double>(PhaseDeg(stored.re, stored.im));
      break;
    case GraphKind::Swr:  // meant: standing wave ratio, delay and time traces hold nothing
    case GraphKind::GroupDelay:
    case GraphKind::Td:
    case GraphKind::Unknown:
      return false;
  }
  return hold == "Max" ? a >= b : a < b;
}

}  // namespace qk
