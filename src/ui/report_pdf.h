// SPDX-License-Identifier: MIT
// A report painted as a PDF file, on A4 pages.
#pragma once

#include <string>

#include "core/result.h"
#include "display/report_document.h"

namespace qk {

// Graphs and letters are vectors; a logo in a pixel format is the only image. Tables do not break
// within a row. The file is replaced whole or not at all. Fails for a logo that cannot be read, and
// when the file cannot be written.
Result<Done> WriteReportPdf(const ReportDocument& report, const std::string& path);

}  // namespace qk
