// SPDX-License-Identifier: MIT
// The table of the standard sweeps: the prompt to connect a standard, how it is measured, and where
// its raw ratios are stored.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "cal/standards.h"
#include "sweep/reduction.h"

namespace qk {

// A raw ratio of each point, and the array that stores it.
struct Store {
  Complex RawPoint::*From = nullptr;  // nullptr: none
  ComplexArray& (*To)(Session&) = nullptr;
};

struct StandardSweep {
  std::string_view Title;
  std::string Prompt;  // with the kit's offsets inserted
  SweepMode Mode;
  std::array<Store, 4> Stores;
};

// The sweep of a standard, with the offsets of the session's kits; for IsoInsertable the first of
// its sweeps.
StandardSweep SweepOf(const Session& session, Standard standard);

// The prompt for a standard of port 2 (ShortPort2, OpenPort2, LoadPort2) with the offset of the kit
// of port 2; that of SweepOf names the kit of port 1, which a calibration with one kit uses at both
// ports.
std::string PromptAtPort2(const Session& session, Standard standard);
// The second sweep of IsoInsertable with method 2.
StandardSweep SecondIsoSweep(const Session& session);

}  // namespace qk
