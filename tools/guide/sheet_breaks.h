// SPDX-License-Identifier: MIT
// Where a page breaks into sheets.
#pragma once

class QTextDocument;

namespace qk {

// What belongs together stays on one sheet: an option with its hyphens on a line, a heading with
// two lines of its text, a picture with its name, the last row of a table with the one before. A
// table of more than one sheet repeats its head. The document has its page size.
void KeepTogether(QTextDocument& document);

}  // namespace qk
