// SPDX-License-Identifier: MIT
#include "trace/memory.h"

#include <cmath>

#include "core/instrument_limits.h"
#include "trace/formatting.h"

namespace qk {

namespace {
template <class View, class AnySession>
View ViewOf(AnySession& session, int channel, int number) {
  if (number <= 1) {
    auto& first = session.Channel(channel);
    return {first.MemoryRe, first.MemoryIm, first.MemoryValid, first.MemoryParameter};
  }
  auto& bank = session.MoreMemories[static_cast<std::size_t>(number - 2)];
  auto& trace = bank.OfChannels[static_cast<std::size_t>(channel - 1)];
  return {trace.Re, trace.Im, trace.Valid, trace.Of};
}
}  // namespace

StoredMemory MemoryOf(Session& session, int channel, int number) {
  return ViewOf<StoredMemory>(session, channel, number);
}

ConstStoredMemory MemoryOf(const Session& session, int channel, int number) {
  return ViewOf<ConstStoredMemory>(session, channel, number);
}

Network& MemoryZoSetOf(Session& session, int number) {
  return number <= 1 ? session.MemoryZoSet
                     : session.MoreMemories[static_cast<std::size_t>(number - 2)].ZoSet;
}

Complex ApplyMemoryMath(const Session& session, int channel, Complex z, int pointIndex) {
  const DisplayState& display = session.Display;
  if (display.DisplayMode != DisplayMode::MemoryMath) return z;
  const ConstStoredMemory memory = MemoryOf(session, channel, display.MemoryNumber);
  if (!memory.Valid) return z;
  const Complex stored = memory.At(pointIndex);
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
    const StoredMemory memory = MemoryOf(session, n, session.Display.MemoryNumber);
    const Parameter parameter = session.Channel(n).Parameter;
    memory.Valid = true;
    memory.Of = parameter;
    const ComplexArray& data = ArrayOf(session.Data, parameter);
    for (int i = 1; i <= session.Plan.NumPoints; ++i) memory.Set(i, data[i - 1]);
  }
  session.Display.MemoryInUse = true;
}

void EraseMemory(Session& session) {
  ForgetMemories(session);
  session.Display.MemoryInUse = false;
  session.Display.MemoryHold = MemoryHold::Off;
}

void ForgetMemories(Session& session) {
  for (int n = 1; n <= kChannels; ++n)
    for (int number = 1; number <= kMemories; ++number) MemoryOf(session, n, number).Valid = false;
}

bool HoldWins(MemoryHold hold, GraphType graphType, Complex live, Complex stored) {
  const Quantity held = RowOf(graphType).Held;
  if (held == nullptr) return false;
  return hold == MemoryHold::Max ? held(live) >= held(stored) : held(live) < held(stored);
}

bool HoldWins(const Session& session, const ChannelSettings& channel, Complex live, Complex stored,
              int pointIndex) {
  const MemoryHold hold = session.Display.MemoryHold;
  if (RowOf(channel.GraphType).Form != PointForm::Component)
    return HoldWins(hold, channel.GraphType, live, stored);
  const double now = ComponentOf(session, channel, live, pointIndex);
  const double before = ComponentOf(session, channel, stored, pointIndex);
  if (std::isnan(now) || std::isnan(before)) return std::isnan(before) && !std::isnan(now);
  return hold == MemoryHold::Max ? now >= before : now < before;
}

}  // namespace qk
