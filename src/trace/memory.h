// SPDX-License-Identifier: MIT
// Operations with a stored trace on live data: vector arithmetic, and max/min hold.
#pragma once

#include "core/session.h"

namespace qk {

// A view of a stored trace of a channel, in either of its storage places. Points count from 1.
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

// The memory with this number (1 to 4) of a channel (1 to 4).
StoredMemory MemoryOf(Session& session, int channel, int number);
ConstStoredMemory MemoryOf(const Session& session, int channel, int number);
// The four parameters at SystemZo for the traces of memory number (1 to 4).
Network& MemoryZoSetOf(Session& session, int number);

// Combines z with the channel's stored trace of the selected memory (Display.MemoryNumber) at
// pointIndex (from 1) by the session's MemoryFunction. Returns z unless the display mode is
// "Memory+" and the channel has that trace. The parameter of the trace is not checked: math
// combines whatever it contains.
Complex ApplyMemoryMath(const Session& session, int channel, Complex z, int pointIndex);

// Stores the current data of the channels' parameters, first to last (from 1), in the selected
// memory: after reference plane, de-embedding and Zo conversion, before memory math. In the middle
// of a sweep this is a mix of two sweeps.
void StoreMemory(Session& session, int first, int last);
// Discards the stored traces of all channels in all memories, and the held extremes. The arrays are
// not cleared.
void EraseMemory(Session& session);
// The same without resetting the switches: the stored traces belong to another sweep.
void ForgetMemories(Session& session);

// True if the live point replaces the stored one: with hold "Max" if the live quantity is greater
// or equal, with any other hold if it is less. The quantity is what the graph type plots, in dB,
// degrees (32-bit) or plain; "SWR", "Group Delay" and "TD" never replace.
bool HoldWins(MemoryHold hold, GraphType graphType, Complex live, Complex stored);
// The same for point pointIndex of a channel of any type. An impedance type compares the value that
// it shows; a point without a value never replaces another, and any value replaces it.
bool HoldWins(const Session& session, const ChannelSettings& channel, Complex live, Complex stored,
              int pointIndex);

}  // namespace qk
