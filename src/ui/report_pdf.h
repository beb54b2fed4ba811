// SPDX-License-Identifier: MIT
// Writes a report as a PDF file with A4 pages.
#pragma once

#include <string>

#include "core/result.h"
#include "display/report_document.h"

namespace qk {

// Fails if the file cannot be read, is no picture or has too many pixels. An empty path is no logo.
Result<Done> CheckReportLogo(const std::string& path);

// Graphs and text are vectors; a logo in a pixel format is the only image. Table rows are not split
// over pages. The file is replaced completely or not at all. Fails if a logo cannot be read or the
// file cannot be written.
Result<Done> WriteReportPdf(const ReportDocument& report, const std::string& path);

}  // namespace qk
