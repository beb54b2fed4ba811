// What a stored trace does to live data: vector arithmetic, and the hold of extremes.
#pragma once

#include "core/session.h"

namespace qk {

// z combined with the channel's stored trace at pointIndex (from 1) by the session's
// MemoryFunction. Plain z unless the display mode is "Memory+" and the channel has a stored trace.
// The stored trace's parameter is not compared: math combines whatever the trace holds.
Complex ApplyMemoryMath(const DisplayState& display, const ChannelSettings& channel, Complex z,
                        int pointIndex);

// Stores what the data hold of the channels' parameters, first to last (from 1), as their memory.
// After reference plane, de-embedding and Zo conversion, before any memory math. In the middle of a
// sweep that is a mix of two sweeps.
void StoreMemory(Session& session, int first, int last);
// No channel has a memory any more, and none is held. The arrays are left as they are.
void EraseMemory(Session& session);

// True when the live point is to replace the stored one: hold "Max" when the live quantity is
// greater or equal, any other hold when it is less. The quantity is what the graph type plots, in
// dB, degrees (32-bit) or plain; "SWR", "Group Delay" and "TD" never replace.
bool HoldWins(MemoryHold hold, GraphType graphType, Complex live, Complex stored);

}  // namespace qk
