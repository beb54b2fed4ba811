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

// The last row of a table takes the one before along to the next sheet. The toolkit knows no sheet
// that begins within a table: the row above them is made to reach to the foot of its sheet.
void KeepRowsTogether(QTextFrame& frame) {
  for (QTextFrame* child : frame.childFrames()) {
    KeepRowsTogether(*child);
    auto* table = qobject_cast<QTextTable*>(child);
    if (table == nullptr || table->rows() < 4) continue;
    const auto first = [table](int row) {
      return table->cellAt(row, 0).firstCursorPosition().block();
    };
    const int last = table->rows() - 1, sheet = SheetOf(first(last - 1));
    if (SheetOf(first(last)) == sheet || SheetOf(first(last - 2)) != sheet) continue;
    const QTextDocument& document = *table->document();
    const double foot = (sheet + 1) * document.pageSize().height();
    QTextTableCell above = table->cellAt(last - 2, 0);
    QTextTableCellFormat look = above.format().toTableCellFormat();
    look.setBottomPadding(foot - 2 -
                          document.documentLayout()->blockBoundingRect(first(last - 1)).top());
    above.setFormat(look);
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
  RepeatHeads(*document.rootFrame());
  KeepRowsTogether(*document.rootFrame());
  KeepHeadingsAndPictures(document);
}

}  // namespace qk
