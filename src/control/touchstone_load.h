// SPDX-License-Identifier: MIT
// Loading a Touchstone file: the file dialog, the parsing, and the messages to the user.
#pragma once

#include <optional>
#include <string>

#include "core/host.h"
#include "core/session.h"

namespace qk {

// The filter of the dialogs that save Touchstone files.
inline constexpr const char* kTouchstoneFiles = "All Files (*.*)|*.*|spara_files(*.s?p)|*.s?p|";

// Shows a file dialog that starts in the install folder. Cancelling shows the same message as a
// file that cannot be read.
std::optional<std::string> ChooseTouchstone(const Session& session, Prompts& prompts);

// Loads the file into the stored traces of the displayed channels, at 50 ohms; the caller replots.
// Returns which channels took it: "a.s2p in memory of CH1, CH2". If the file cannot be read, the
// result is empty, the traces are unchanged, and a message titled "Load Data" shows "Invalid data.
// Check data is in Touchstone format." and the reason.
std::optional<std::string> LoadMemory(Session& session, Prompts& prompts, const std::string& path);

// Shows a file dialog and loads the file as the network of a port (1 or 2), sampled at the current
// sweep points, whatever its reference resistance. Returns the file name. If no file was loaded,
// the result is empty, the network is unchanged, and a message is shown as above. The caller sets
// the flags Port1NetOn and Port2NetOn.
std::optional<std::string> LoadNetwork(Session& session, Prompts& prompts, int port);

}  // namespace qk
