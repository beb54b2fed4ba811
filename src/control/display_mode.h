// SPDX-License-Identifier: MIT
// The three switches "Data", "Data and Memory" and "Memory Math" of the main window.
#pragma once

#include "core/host.h"
#include "core/session.h"
#include "display/graphs.h"

namespace qk {

// Selects what is displayed and replots. Without a stored trace, the modes that need one show a
// message and fall back to "Data". "Data" and vector math move all markers back to the data trace.
void SwitchDisplayMode(Session& session, Host& host, Graphs& graphs, DisplayMode mode);

}  // namespace qk
