// SPDX-License-Identifier: MIT
// Paper: the printer dialog, printers by name, and one printed page.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include <QImage>
#include <QPrinter>

#include "core/host.h"
#include "core/result.h"
#include "display/canvas.h"

class QWidget;

namespace qk {

// Shows the dialog over owner. Gives the printer, with all that was set in the dialog, and its name
// or the file that it prints to; nothing when cancelled.
std::optional<std::string> ChoosePrinter(QWidget* owner, const Dialog& dialog,
                                         std::unique_ptr<QPrinter>& chosen);

// A printer of the system by its name, or a PDF file by its path (it holds a folder or ends in
// ".pdf"), with "landscape " or "portrait " (the default) before it. nullptr when it is neither.
std::unique_ptr<QPrinter> PrinterNamed(const std::string& choice);

// Prints the job's page: the window's image if there is one, else what the job draws, at the
// printer's resolution: lines and letters are drawn anew, not enlarged. A PDF file is replaced
// whole or not at all.
Result<Done> PrintOn(QPrinter& printer, const PageJob& job, const QImage& window);

}  // namespace qk
