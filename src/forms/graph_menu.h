// SPDX-License-Identifier: MIT
// The menu of a graph, as plain data: a skin shows it, the console lists it and picks from it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "control/controller.h"

namespace qk {

struct MenuEntry {
  std::string Word;     // for the console: "type.Smith"
  std::string Caption;  // empty: a line between two groups
  bool Enabled = true;
  bool Checked = false;
  std::function<void()> Run;       // empty for a submenu
  std::vector<MenuEntry> Entries;  // of a submenu
};

// What of the menu needs a window or a dialog.
struct GraphMenuActions {
  std::function<void(int channel)> SetUpScale, SetUpLimits;
  std::function<void()> CopyPicture, SavePicture;
};

// Of a graph (0 to 3), at a point (from 1) of its trace. The menu may be used later: each entry
// works on the channel as it stands then.
std::vector<MenuEntry> GraphMenu(Controller& controller, const GraphMenuActions& actions, int graph,
                                 int point);

// The entry of that word, submenus included; nullptr when there is none.
const MenuEntry* FindEntry(const std::vector<MenuEntry>& menu, std::string_view word);

}  // namespace qk
