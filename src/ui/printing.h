// SPDX-License-Identifier: MIT
// Printing: the printer dialog, printers by name, and printing one page.
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

// Shows the dialog over owner. Sets chosen to the printer with all settings of the dialog and
// returns its name, or the file that it prints to; empty if cancelled.
std::optional<std::string> ChoosePrinter(QWidget* owner, const Dialog& dialog,
                                         std::unique_ptr<QPrinter>& chosen);

// A system printer by its name, or a PDF file by its path (contains a folder or ends in ".pdf"),
// with an optional prefix "landscape " or "portrait " (the default). nullptr if it is neither.
std::unique_ptr<QPrinter> PrinterNamed(const std::string& choice);

// Prints the job's page at the printer's resolution: the window's image if there is one, otherwise
// the job's drawing, whose lines and text are drawn again instead of enlarged. A PDF file is
// replaced completely or not at all.
Result<Done> PrintOn(QPrinter& printer, const PageJob& job, const QImage& window);

}  // namespace qk
