// Message boxes and the file, colour and printer dialogs.
#pragma once

#include <optional>
#include <string>

#include <QStringList>

#include "core/host.h"

class QWidget;

namespace qk {

// A filter "Name (*.ext)|*.ext|Name|*.ext|" as the toolkit's list: "Name (*.ext)", one an entry.
QStringList NameFilters(const std::string& filter);

// Shows the box over owner and returns its answer. Closing it is the answer that changes least; a
// Yes/No question and a prompt to connect something are answered by their buttons alone.
Answer AskBox(QWidget* owner, const Message& message);

// The chosen path, colour "#rrggbb" or printer name; nothing when cancelled.
std::optional<std::string> ChooseDialog(QWidget* owner, const Dialog& dialog);

}  // namespace qk
