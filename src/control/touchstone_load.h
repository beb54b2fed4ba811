// SPDX-License-Identifier: MIT
// Loading a Touchstone file: the choice of the file, the reading, and what the user is told.
#pragma once

#include <optional>
#include <string>

#include "core/host.h"
#include "core/session.h"

namespace qk {

// The filter of the dialogs that save Touchstone files.
inline constexpr const char* kTouchstoneFiles = "All Files (*.*)|*.*|spara_files(*.s?p)|*.s?p|";

// Asks for a file, from the install folder on. Cancelled, it is told like a file that cannot be
// read.
std::optional<std::string> ChooseTouchstone(const Session& session, Prompts& prompts);

// The file into the stored traces of the displayed channels, at 50 ohms; the caller replots. Gives
// in words who has taken it: "a.s2p in memory of CH1, CH2". Nothing, with traces as they were, when
// the file cannot be read, which is told: "Invalid data. Check data is in Touchstone format." and
// why, titled "Load Data".
std::optional<std::string> LoadMemory(Session& session, Prompts& prompts, const std::string& path);

// Asks for a file and loads it as the network of a port (1 or 2), at the points of the sweep in
// force and whatever its reference resistance. Gives the file's name; nothing, with the network as
// it was, when there was no file to load, which is told as above. The flags Port1NetOn and
// Port2NetOn are the caller's.
std::optional<std::string> LoadNetwork(Session& session, Prompts& prompts, int port);

}  // namespace qk
