// SPDX-License-Identifier: MIT
// What a stored trace does to live data: vector arithmetic, and the hold of extremes.
#pragma once

#include "core/session.h"

namespace qk {

// A stored trace of a channel, wherever it is kept. Points count from 1.
template <class Numbers, class Flag, class Word>
struct MemoryView {
  Numbers& Re;
  Numbers& Im;
  Flag& Valid;
  Word& Of;

  Complex At(int pointIndex) const {
    const auto i = static_cast<std::size_t>(pointIndex);
    return {Re[i], Im[i]};
  }
  void Set(int pointIndex, Complex z) const {
    const auto i = static_cast<std::size_t>(pointIndex);
    Re[i] = z.re;
    Im[i] = z.im;
  }
};
using StoredMemory = MemoryView<ChannelSettings::PerPoint<double>, bool, std::optional<Parameter>>;
using ConstStoredMemory =
    MemoryView<const ChannelSettings::PerPoint<double>, const bool, const std::optional<Parameter>>;

// The memory number (1 to 4) of a channel (1 to 4).
StoredMemory MemoryOf(Session& session, int channel, int number);
ConstStoredMemory MemoryOf(const Session& session, int channel, int number);
// The four parameters at SystemZo of the traces of memory number (1 to 4).
Network& MemoryZoSetOf(Session& session, int number);

// z combined with the channel's stored trace of the memory in use (Display.MemoryNumber) at
// pointIndex (from 1) by the session's MemoryFunction. Plain z unless the display mode is "Memory+"
// and the channel has that trace. Its parameter is not compared: math combines whatever the trace
// holds.
Complex ApplyMemoryMath(const Session& session, int channel, Complex z, int pointIndex);

// Stores what the data hold of the channels' parameters, first to last (from 1), in the memory in
// use. After reference plane, de-embedding and Zo conversion, before any memory math. In the middle
// of a sweep that is a mix of two sweeps.
void StoreMemory(Session& session, int first, int last);
// No channel has a stored trace any more, in any memory; no extremes are held. The arrays are left
// as they are.
void EraseMemory(Session& session);
// The same without the switches: the stored traces are of another sweep.
void ForgetMemories(Session& session);

// True when the live point is to replace the stored one: hold "Max" when the live quantity is
// greater or equal, any other hold when it is less. The quantity is what the graph type plots, in
// dB, degrees (32-bit) or plain; "SWR", "Group Delay" and "TD" never replace.
bool HoldWins(MemoryHold hold, GraphType graphType, Complex live, Complex stored);
// The same for point pointIndex of a channel of any type. An impedance type compares what it shows;
// a point without a value never replaces one, and any value replaces it.
bool HoldWins(const Session& session, const ChannelSettings& channel, Complex live, Complex stored,
              int pointIndex);

}  // namespace qk
