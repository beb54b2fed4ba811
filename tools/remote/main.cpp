// SPDX-License-Identifier: MIT
// Prints the manual's table of remote commands, from the table that the parser uses.
#include <cstdio>

#include "scpi/commands.h"

int main() {
  std::fputs(qk::scpi::ManualTable(qk::scpi::CommandTree()).c_str(), stdout);
  return 0;
}
