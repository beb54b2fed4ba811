// SPDX-License-Identifier: MIT
// The manual's table of commands is the table that the parser uses.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "scpi/commands.h"

namespace qk::scpi {
namespace {

TEST(Manual, HoldsTheTableThatTheParserUses) {
  std::ifstream file(QK_REMOTE_PAGE);
  std::stringstream page;
  page << file.rdbuf();
  EXPECT_NE(page.str().find(ManualTable(CommandTree())), std::string::npos)
      << "make it anew: tools/remote/table.py build/qk47-remote-table";
}

TEST(Manual, SaysOfEveryCommandWhatItDoes) {
  for (const Row* row : CommandTree().Rows()) {
    EXPECT_TRUE(row->Help.ends_with('.')) << row->Pattern;
    EXPECT_TRUE(row->Set != nullptr || row->Query != nullptr) << row->Pattern;
  }
}

}  // namespace
}  // namespace qk::scpi
