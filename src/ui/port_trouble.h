// SPDX-License-Identifier: MIT
// Why a serial device did not open, in words that say what to do about it.
#pragma once

#include <string>

namespace qk {

// Where the system keeps what is looked at; the tests give folders of their own.
struct PortPlaces {
  std::string Locks = "/var/lock";
  std::string Processes = "/proc";
};

// "DEVICE: " and the reason: there is no such device; no permission, and the group that has it;
// the lock file or the process that holds it, with its user; else otherwise.
std::string WhyNotOpened(const std::string& device, const std::string& otherwise,
                         const PortPlaces& places = {});

}  // namespace qk
