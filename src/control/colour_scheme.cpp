// SPDX-License-Identifier: MIT
#include "control/colour_scheme.h"

#include <algorithm>
#include <array>

namespace qk {

Colours DarkColours() {
  Colours dark;
  dark.BackColour = 0x15191E;
  dark.GridColour = 0x66707A;
  dark.DataColour = 0xFFD75F;
  dark.MemoryColour = 0x5FD7FF;
  dark.TextColour = 0xE4E8EC;
  dark.OutlineColour = 0xA8B0B8;
  dark.LimitColour = 0xFF7A70;
  return dark;
}

bool SameColours(const Colours& a, const Colours& b) {
  constexpr std::array kAll{&Colours::BackColour,   &Colours::GridColour, &Colours::DataColour,
                            &Colours::MemoryColour, &Colours::TextColour, &Colours::OutlineColour,
                            &Colours::LimitColour};
  return std::ranges::all_of(kAll, [&](auto colour) { return a.*colour == b.*colour; });
}

bool MatchDarkDesktop(Session& session) {
  if (!SameColours(session.Colour, Colours{})) return false;
  session.Colour = DarkColours();
  return true;
}

}  // namespace qk
