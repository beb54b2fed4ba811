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

// A filter "Name (*.ext)|*.ext|Name|*.ext|" as the toolkit's list: "Name (*.ext)", one an entry.
QStringList NameFilters(const std::string& filter);

// Shows the box over owner and returns its answer. Closing it is the answer that changes least; a
// Yes/No question and a prompt to connect something are answered by their buttons alone.
Answer AskBox(QWidget* owner, const Message& message);

// The folders that stand in the side bar of a file dialog, a click away: the one it starts in,
// those of the files chosen last in this run of the program, and the user's own.
class Places {
 public:
  // A file was chosen: its folder comes first from now on.
  void Chosen(const std::string& path);
  // Each folder once, and only what is there.
  QList<QUrl> SideBar(const std::string& start) const;

 private:
  QStringList recent_;
};

// The chosen path or colour "#rrggbb"; nothing when cancelled. Printers have their own dialog
// (ui/printing.h).
std::optional<std::string> ChooseDialog(QWidget* owner, const Dialog& dialog, Places& places);

}  // namespace qk
