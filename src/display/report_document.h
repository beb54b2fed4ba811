// SPDX-License-Identifier: MIT
// A report as plain data: what stands on its pages, from top to bottom. A PictureSurface paints it
// as a PDF file (PictureSurface::WriteReport): pages are its matter, and so is the SHA-256 of a
// data file.
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

// PASS in green, FAIL or ERROR in red, in large letters, with a line about it.
struct ReportVerdict {
  bool Good = false;
  std::string Word;
  std::string Text;
};

// Every row has as many cells as there are heads. Empty heads: no head row, the first column bold.
// A row is never broken over two pages; the head row stands on each page.
struct ReportTable {
  std::vector<std::string> Heads;
  std::vector<std::vector<std::string>> Rows;
};

// A drawing, as vectors, as wide as the page.
struct ReportPicture {
  Extent Size;
  std::function<void(Canvas&)> Draw;
};

// A file with the measured values: its name, size and SHA-256 become rows of a table.
struct ReportDataFile {
  std::string Name;
  std::string Bytes;
};

using ReportBlock = std::variant<ReportHeading, ReportParagraph, ReportVerdict, ReportTable,
                                 ReportPicture, ReportDataFile>;

struct ReportDocument {
  std::string Title;
  std::string Address;   // the sender's own line; may be empty
  std::string LogoFile;  // an image file; empty: none
  std::string Footer;    // at the left of each page's foot; "Page n of m" is at its right
  std::vector<ReportBlock> Blocks;
};

}  // namespace qk
