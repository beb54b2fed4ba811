// SPDX-License-Identifier: MIT
#include "page_style.h"

#include <algorithm>

#include <QImage>
#include <QStringList>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextList>
#include <QTextTable>
#include <QUrl>

namespace qk {

namespace {
constexpr const char* kCode = "DejaVu Sans Mono";

void StyleTables(QTextFrame& frame) {
  for (QTextFrame* child : frame.childFrames()) {
    StyleTables(*child);
    auto* table = qobject_cast<QTextTable*>(child);
    if (table == nullptr) continue;
    QTextTableFormat format = table->format();
    format.setBorder(0);
    format.setBorderCollapse(true);
    format.setCellPadding(3.5);
    format.setCellSpacing(0);
    format.setTopMargin(4);
    format.setBottomMargin(8);
    format.setWidth(QTextLength(QTextLength::PercentageLength, 100));
    table->setFormat(format);
    for (int row = 0; row < table->rows(); ++row)
      for (int column = 0; column < table->columns(); ++column) {
        QTextTableCell cell = table->cellAt(row, column);
        QTextTableCellFormat look = cell.format().toTableCellFormat();
        if (row == 0) look.setBackground(kShade);
        look.setBottomBorder(0.5);
        look.setBottomBorderBrush(kRule);
        look.setBottomBorderStyle(QTextFrameFormat::BorderStyle_Solid);
        cell.setFormat(look);
      }
  }
}

void StyleHeading(QTextCursor cursor, int level) {
  static constexpr double kSizes[] = {20, 13.5, 11.5, 10.5};
  QTextBlockFormat block = cursor.blockFormat();
  block.setTopMargin(level == 1 ? 0 : 14);
  block.setBottomMargin(level == 1 ? 12 : 5);
  cursor.setBlockFormat(block);
  cursor.select(QTextCursor::BlockUnderCursor);
  QTextCharFormat letters;
  letters.setFontPointSize(kSizes[std::min(level, 4) - 1]);
  letters.setFontWeight(QFont::Bold);
  letters.setForeground(kAccent);
  cursor.setCharFormat(letters);
}

bool IsCode(const QTextBlock& block) {
  const QTextBlockFormat format = block.blockFormat();
  return format.hasProperty(QTextFormat::BlockCodeFence) ||
         format.hasProperty(QTextFormat::BlockCodeLanguage) || format.nonBreakableLines();
}

void StyleCode(QTextCursor cursor) {
  QTextBlockFormat block = cursor.blockFormat();
  block.setBackground(kShade);
  block.setLeftMargin(6);
  block.setNonBreakableLines(false);
  if (!IsCode(cursor.block().next())) block.setBottomMargin(8);
  cursor.setBlockFormat(block);
  QTextCharFormat letters;
  letters.setFontFamilies({kCode});
  letters.setFontPointSize(8);
  cursor.mergeBlockCharFormat(letters);
  cursor.select(QTextCursor::BlockUnderCursor);
  cursor.mergeCharFormat(letters);
}

// Code within a line, and links, which lead nowhere on paper.
void StyleWords(QTextDocument& document) {
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
    for (auto it = block.begin(); !it.atEnd(); ++it) {
      QTextCharFormat format = it.fragment().charFormat();
      const bool code =
          format.fontFixedPitch() && !block.blockFormat().hasProperty(QTextFormat::BlockCodeFence);
      if (!code && !format.isAnchor()) continue;
      QTextCursor cursor(&document);
      cursor.setPosition(it.fragment().position());
      cursor.setPosition(it.fragment().position() + it.fragment().length(),
                         QTextCursor::KeepAnchor);
      QTextCharFormat letters;
      if (code) {
        letters.setFontFamilies({kCode});
        letters.setFontPointSize(kBaseSize * 0.88);
      } else {
        letters.setForeground(kInk);
        letters.setFontUnderline(false);
      }
      cursor.mergeCharFormat(letters);
    }
}
}  // namespace

QString FenceIndentedCode(const QString& markdown) {
  QStringList out;
  bool fenced = false, code = false, list = false, afterBlank = true;
  for (const QString& line : markdown.split('\n')) {
    const bool blank = line.trimmed().isEmpty();
    if (line.startsWith("```")) fenced = !fenced;
    if (!blank && !line.startsWith(' '))
      list = line.startsWith("- ") || line.startsWith("* ") || line[0].isDigit();
    const bool indented = line.startsWith("    ") && !list && !fenced;
    if (indented && !code && afterBlank) {
      out << "```";
      code = true;
    } else if (code && !indented && !blank) {
      while (out.last().isEmpty()) out.removeLast();
      out << "```"
          << "";
      code = false;
    }
    out << (code && !blank ? line.mid(4) : line);
    afterBlank = blank;
  }
  if (code) out << "```";
  return out.join('\n');
}

QString StylePage(QTextDocument& document) {
  QString heading;
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
    const int level = block.blockFormat().headingLevel();
    if (level == 1 && heading.isEmpty()) heading = block.text();
    if (level > 0) {
      StyleHeading(QTextCursor(block), level);
    } else if (IsCode(block)) {
      StyleCode(QTextCursor(block));
    } else if (QTextCursor(block).currentTable() == nullptr) {
      QTextBlockFormat format = block.blockFormat();
      format.setLineHeight(118, QTextBlockFormat::ProportionalHeight);
      format.setBottomMargin(block.textList() != nullptr ? 2 : 6);
      QTextCursor(block).setBlockFormat(format);
    }
  }
  StyleWords(document);
  StyleTables(*document.rootFrame());
  return heading;
}

void FitPictures(QTextDocument& document, double width) {
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
    if (block.begin().atEnd()) continue;
    const QTextFragment fragment = block.begin().fragment();
    if (!fragment.charFormat().isImageFormat()) continue;
    QTextImageFormat picture = fragment.charFormat().toImageFormat();
    const QImage image =
        document.resource(QTextDocument::ImageResource, QUrl(picture.name())).value<QImage>();
    if (image.isNull()) continue;
    const double shown = std::min(width, image.width() * 72.0 / 125);
    // The toolkit takes a picture's size in pixels of 1/96 inch.
    picture.setWidth(shown * 96 / 72);
    picture.setHeight(shown * 96 / 72 * image.height() / image.width());
    QTextCursor cursor(&document);
    cursor.setPosition(fragment.position());
    cursor.setPosition(fragment.position() + fragment.length(), QTextCursor::KeepAnchor);
    cursor.setCharFormat(picture);
    QTextBlockFormat lines = block.blockFormat();
    lines.setLineHeight(0, QTextBlockFormat::SingleHeight);
    lines.setBottomMargin(9);
    cursor.setBlockFormat(lines);
    const QString name = picture.stringProperty(QTextFormat::ImageAltText);
    if (name.isEmpty()) continue;
    QTextCharFormat letters;
    letters.setFontPointSize(8);
    letters.setForeground(kPale);
    cursor.setPosition(block.position() + block.length() - 1);
    cursor.insertText(QString(QChar::LineSeparator) + name, letters);
  }
}

}  // namespace qk
