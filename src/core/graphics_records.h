// SPDX-License-Identifier: MIT
// Output of the picture area: the label printed on it, and its colours on paper.
#pragma once

#include <array>
#include <string>

namespace qk {

struct LabelState {
  std::array<std::string, 5> GraphicsLabels{" ", " ", " ", " ", " "};  // most recent first
  bool Date = false, Status = false;                                   // extra items in the label
  bool Show = false;     // print the label, and include it in saved pictures
  std::string Composed;  // the label text as printed
};

struct PrintState {
  bool PrintDefaultColours = false;
};

}  // namespace qk
