// SPDX-License-Identifier: MIT
// Drawings as vector files: SVG and PDF, by their extension.
#pragma once

#include <functional>
#include <string>

#include "display/canvas.h"

namespace qk {

// True if the path ends in ".svg" or ".pdf", in any case.
bool IsVectorPath(const std::string& path);

// Runs draw on a canvas of that size, at 96 pixels per inch, and writes the result. Lines and text
// are vectors. The file is replaced completely or not at all.
Result<Done> WriteVectorFile(const std::string& path, Extent size,
                             const std::function<void(Canvas&)>& draw);

}  // namespace qk
