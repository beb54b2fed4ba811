// SPDX-License-Identifier: MIT
// Message boxes and the file, colour and printer dialogs.
#pragma once

#include <optional>
#include <string>

#include <QList>
#include <QStringList>
#include <QUrl>

#include "core/host.h"

class QWidget;

namespace qk {

// Converts a filter "Name (*.ext)|*.ext|Name|*.ext|" to the toolkit's list: one "Name (*.ext)" per
// entry.
QStringList NameFilters(const std::string& filter);

// Shows the box over owner and returns its answer. Closing it gives the answer that changes least.
// A question whose No changes something and a prompt to connect something can only be answered by
// their buttons.
Answer AskBox(QWidget* owner, const Message& message);

// The folders in the side bar of a file dialog: its initial folder, the folders of the files chosen
// recently in this run of the program, and the user's home folder.
class Places {
 public:
  // A file was chosen: moves its folder to the front.
  void Chosen(const std::string& path);
  // Each existing folder once.
  QList<QUrl> SideBar(const std::string& start) const;

 private:
  QStringList recent_;
};

// The chosen path or colour "#rrggbb"; empty if cancelled. Printers have their own dialog
// (ui/printing.h).
std::optional<std::string> ChooseDialog(QWidget* owner, const Dialog& dialog, Places& places);

}  // namespace qk
