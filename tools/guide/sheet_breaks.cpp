// SPDX-License-Identifier: MIT
#include "sheet_breaks.h"

#include <algorithm>

#include <QAbstractTextDocumentLayout>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextTable>

namespace qk {

namespace {

constexpr int kLastLine = 1 << 20;

// The sheet, from 0, on which a line of a block stands; its last one where it has fewer.
int SheetOf(const QTextBlock& block, int number = 0) {
  const QTextDocument& document = *block.document();
  double y = document.documentLayout()->blockBoundingRect(block).top();
  if (const int lines = block.layout()->lineCount(); lines > 0) {
    const QTextLine line = block.layout()->lineAt(std::min(number, lines - 1));
    y += line.y() + line.height() / 2;
  }
  return static_cast<int>(y / document.pageSize().height());
}

void BeginSheetAt(const QTextBlock& block) {
  QTextBlockFormat format = block.blockFormat();
  format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
  QTextCursor(block).setBlockFormat(format);
}

// No heading stands at the foot of a sheet with less than two lines of its text, and no picture
// without the line beneath it.
void KeepHeadingsAndPictures(QTextDocument& document) {
  for (QTextBlock block = document.begin(); block.next().isValid(); block = block.next()) {
    const bool heading = block.blockFormat().headingLevel() > 0;
    const bool picture =
        !block.begin().atEnd() && block.begin().fragment().charFormat().isImageFormat();
    if ((heading && SheetOf(block) != SheetOf(block.next(), 1)) ||
        (picture && SheetOf(block) != SheetOf(block, 1)))
      BeginSheetAt(block);
  }
}

// A head that is repeated would stand on the sheet behind a table that ends at a sheet's foot, over
// the text there: it is for tables of more than one sheet alone.
void RepeatHeads(QTextFrame& frame) {
  for (QTextFrame* child : frame.childFrames()) {
    RepeatHeads(*child);
    auto* table = qobject_cast<QTextTable*>(child);
    if (table == nullptr) continue;
    const int last = SheetOf(table->cellAt(table->rows() - 1, 0).firstCursorPosition().block());
    if (SheetOf(table->firstCursorPosition().block()) == last) continue;
    QTextTableFormat format = table->format();
    format.setHeaderRowCount(1);
    table->setFormat(format);
  }
}

QTextBlock FirstBlock(const QTextTable& table, int row, int column) {
  return table.cellAt(row, column).firstCursorPosition().block();
}

QTextBlock LastBlock(const QTextTable& table, int row, int column) {
  return table.cellAt(row, column).lastCursorPosition().block();
}

bool Splits(const QTextTable& table, int row) {
  const int sheet = SheetOf(FirstBlock(table, row, 0));
  for (int column = 0; column < table.columns(); ++column)
    if (SheetOf(LastBlock(table, row, column), kLastLine) != sheet) return true;
  return false;
}

// The toolkit knows no sheet that begins within a table: the row above is made to reach to the foot
// of its sheet.
void BeginSheetAtRow(const QTextTable& table, int row) {
  const QTextDocument& document = *table.document();
  const QTextBlock above = LastBlock(table, row - 1, 0);
  const double foot = (SheetOf(above) + 1) * document.pageSize().height();
  QTextTableCell cell = table.cellAt(row - 1, 0);
  QTextTableCellFormat look = cell.format().toTableCellFormat();
  look.setBottomPadding(foot - 2 - document.documentLayout()->blockBoundingRect(above).bottom());
  cell.setFormat(look);
}

// A row stands on one sheet, and the last row takes the one before along to the next.
void KeepRowsTogether(QTextFrame& frame) {
  for (QTextFrame* child : frame.childFrames()) {
    KeepRowsTogether(*child);
    auto* table = qobject_cast<QTextTable*>(child);
    if (table == nullptr) continue;
    const auto sheetOf = [table](int row) { return SheetOf(FirstBlock(*table, row, 0)); };
    const int last = table->rows() - 1;
    for (int row = 2; row <= last; ++row) {
      const bool leads = row == last - 1 && sheetOf(row) != sheetOf(last);
      if (sheetOf(row - 1) == sheetOf(row) && (leads || Splits(*table, row)))
        BeginSheetAtRow(*table, row);
    }
  }
}

// An option like --com goes to the next line whole, not without its hyphens.
void KeepOptionsWhole(QTextDocument& document) {
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
    for (int i = 0; i + 1 < block.layout()->lineCount(); ++i) {
      const QTextLine line = block.layout()->lineAt(i);
      const QString text = block.text();
      const int end = line.textStart() + line.textLength();
      if (text[end - 1] != '-' || text[end].isSpace()) continue;
      const int word = static_cast<int>(text.lastIndexOf(' ', end - 1)) + 1;
      if (word <= line.textStart() || !text.mid(word).startsWith("--")) continue;
      QTextCursor cursor(&document);
      cursor.setPosition(block.position() + word);
      cursor.insertText(QString(QChar::LineSeparator));
    }
}
}  // namespace

void KeepTogether(QTextDocument& document) {
  KeepOptionsWhole(document);
  KeepRowsTogether(*document.rootFrame());
  RepeatHeads(*document.rootFrame());
  KeepRowsTogether(*document.rootFrame());  // heads take room
  KeepHeadingsAndPictures(document);
}

}  // namespace qk
