// SPDX-License-Identifier: MIT
// The context menu of a graph as plain data: a skin shows it, the console lists it and selects from
// it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "control/controller.h"

namespace qk {

struct MenuEntry {
  std::string Word;     // name in the console: "type.Smith"
  std::string Caption;  // empty: a separator
  bool Enabled = true;
  bool Checked = false;
  std::function<void()> Run;       // empty for a submenu, and for a line that is only read
  std::vector<MenuEntry> Entries;  // for a submenu
};

// Menu actions that need a window or a dialog.
struct GraphMenuActions {
  std::function<void(int channel)> SetUpScale, SetUpLimits;
  std::function<void()> CopyPicture, SavePicture;
};

// The menu of a graph (0 to 3) at a point (from 1) of its trace. It may be used later: each entry
// acts on the channel in its state at that time.
std::vector<MenuEntry> GraphMenu(Controller& controller, const GraphMenuActions& actions, int graph,
                                 int point);

// The entry with that word, including submenus; nullptr if there is none.
const MenuEntry* FindEntry(const std::vector<MenuEntry>& menu, std::string_view word);

}  // namespace qk
