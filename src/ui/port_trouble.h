// SPDX-License-Identifier: MIT
// Why a serial device could not be opened, worded so that the user knows what to do.
#pragma once

#include <string>

namespace qk {

// System folders to inspect; the tests use folders of their own.
struct PortPlaces {
  std::string Locks = "/var/lock";
  std::string Processes = "/proc";
};

// "DEVICE: " and the reason: the device does not exist; no permission, and the group that has it;
// the lock file or the process that uses it, with its user. If none of these applies, the text
// `otherwise`.
std::string WhyNotOpened(const std::string& device, const std::string& otherwise,
                         const PortPlaces& places = {});

}  // namespace qk
