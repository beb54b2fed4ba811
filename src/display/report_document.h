// SPDX-License-Identifier: MIT
// A report as plain data: the contents of its pages, from top to bottom.
// PictureSurface::WriteReport writes it as a PDF file and is responsible for page breaks and for
// the SHA-256 of a data file.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <variant>
#include <vector>

#include "display/canvas.h"

namespace qk {

struct ReportHeading {
  std::string Text;
};

struct ReportParagraph {
  std::string Text;
};

// PASS in green, FAIL or ERROR in red, in large letters, with an explaining line.
struct ReportVerdict {
  bool Good = false;
  std::string Word;
  std::string Text;
};

// Every row has as many cells as there are Heads. Empty Heads: no header row, and the first column
// is bold. A row is never split over two pages; the header row is repeated on each page.
struct ReportTable {
  std::vector<std::string> Heads;
  std::vector<std::vector<std::string>> Rows;
};

// A vector drawing, as wide as the page.
struct ReportPicture {
  Extent Size;
  std::function<void(Canvas&)> Draw;
};

// A file with the measured values: its name, size and SHA-256 are listed in a table.
struct ReportDataFile {
  std::string Name;
  std::string Bytes;
};

using ReportBlock = std::variant<ReportHeading, ReportParagraph, ReportVerdict, ReportTable,
                                 ReportPicture, ReportDataFile>;

struct ReportDocument {
  std::string Title;
  std::string Address;   // the sender's address line; may be empty
  std::string LogoFile;  // an image file; empty: none
  std::string Footer;    // at the left of each page footer; "Page n of m" is at its right
  std::vector<ReportBlock> Blocks;
};

}  // namespace qk
