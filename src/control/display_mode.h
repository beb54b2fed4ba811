// SPDX-License-Identifier: MIT
// The three switches "Data", "Data and Memory" and "Memory Math" of the main window.
#pragma once

#include "core/host.h"
#include "core/session.h"
#include "display/graphs.h"

namespace qk {

// Chooses what is displayed and replots. With no trace stored, the modes that need one are refused
// with a message, and data alone are displayed. Data alone, and vector math, take all markers back
// to the data.
void SwitchDisplayMode(Session& session, Host& host, Graphs& graphs, DisplayMode mode);

}  // namespace qk
