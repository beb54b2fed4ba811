// SPDX-License-Identifier: MIT
// How the picture area leaves the program: the label printed on it, and its colours on paper.
#pragma once

#include <array>
#include <string>

namespace qk {

struct LabelState {
  std::array<std::string, 5> GraphicsLabels{" ", " ", " ", " ", " "};  // most recent first
  bool Date = false, Status = false;  // what the label carries besides its text
  bool Show = false;                  // the label stands on prints and saved pictures
  std::string Composed;               // the label as it is printed
};

struct PrintState {
  bool PrintDefaultColours = false;
};

}  // namespace qk
