#include "guide.h"

#include <cmath>
#include <memory>

#include <QAbstractTextDocumentLayout>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QPdfWriter>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextTable>
#include <QUrl>

namespace qk {

namespace {

// Layout is in points of 1/72 inch.
constexpr double kMillimetre = 72 / 25.4;
constexpr double kBaseSize = 10;
constexpr const char* kText = "DejaVu Sans";
constexpr const char* kCode = "DejaVu Sans Mono";
const QColor kInk(32, 32, 40), kAccent(0, 70, 130), kRule(190, 198, 206), kShade(240, 243, 246),
    kPale(110, 116, 124);

struct Chapter {
  QString Heading;
  std::unique_ptr<QTextDocument> Document;
  int FirstSheet = 0;  // from 1
};

// A picture as wide as the text allows, and never larger than it is on the screen at 110 pixels an
// inch. What the page calls it stands beneath.
void FitPictures(QTextDocument& document, double width) {
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
    if (block.begin().atEnd()) continue;
    const QTextFragment fragment = block.begin().fragment();
    if (!fragment.charFormat().isImageFormat()) continue;
    QTextImageFormat picture = fragment.charFormat().toImageFormat();
    const QImage image =
        document.resource(QTextDocument::ImageResource, QUrl(picture.name())).value<QImage>();
    if (image.isNull()) continue;
    const double shown = std::min(width, image.width() * 72.0 / 110);
    // The toolkit takes a picture's size in pixels of 1/96 inch.
    picture.setWidth(shown * 96 / 72);
    picture.setHeight(shown * 96 / 72 * image.height() / image.width());
    QTextCursor cursor(&document);
    cursor.setPosition(fragment.position());
    cursor.setPosition(fragment.position() + fragment.length(), QTextCursor::KeepAnchor);
    cursor.setCharFormat(picture);
    QTextBlockFormat lines = block.blockFormat();
    lines.setLineHeight(0, QTextBlockFormat::SingleHeight);
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
    format.setHeaderRowCount(1);
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

void StyleInlineCode(QTextDocument& document) {
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
    for (auto it = block.begin(); !it.atEnd(); ++it) {
      QTextCharFormat format = it.fragment().charFormat();
      if (!format.fontFixedPitch() || block.blockFormat().hasProperty(QTextFormat::BlockCodeFence))
        continue;
      QTextCursor cursor(&document);
      cursor.setPosition(it.fragment().position());
      cursor.setPosition(it.fragment().position() + it.fragment().length(),
                         QTextCursor::KeepAnchor);
      QTextCharFormat letters;
      letters.setFontFamilies({kCode});
      letters.setFontPointSize(kBaseSize * 0.88);
      cursor.mergeCharFormat(letters);
    }
}

// The heading of the first rank.
QString Style(QTextDocument& document) {
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
  StyleInlineCode(document);
  StyleTables(*document.rootFrame());
  return heading;
}

// The sheet, from 0, on which a line of a block stands.
int SheetOf(const QTextBlock& block, bool last = false) {
  const QTextDocument& document = *block.document();
  double y = document.documentLayout()->blockBoundingRect(block).top();
  if (const int lines = block.layout()->lineCount(); lines > 0) {
    const QTextLine line = block.layout()->lineAt(last ? lines - 1 : 0);
    y += line.y() + line.height() / 2;
  }
  return static_cast<int>(y / document.pageSize().height());
}

void BeginSheetAt(const QTextBlock& block) {
  QTextBlockFormat format = block.blockFormat();
  format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
  QTextCursor(block).setBlockFormat(format);
}

// No heading stands at the foot of a sheet with its text on the next one, and no picture without
// the line beneath it.
void KeepTogether(QTextDocument& document) {
  for (QTextBlock block = document.begin(); block.next().isValid(); block = block.next()) {
    const bool heading = block.blockFormat().headingLevel() > 0;
    const bool picture =
        !block.begin().atEnd() && block.begin().fragment().charFormat().isImageFormat();
    if ((heading && SheetOf(block) != SheetOf(block.next())) ||
        (picture && SheetOf(block) != SheetOf(block, true)))
      BeginSheetAt(block);
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

// The toolkit loses the lines of code that is only indented: it is given fences.
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

class Guide {
 public:
  Guide(const std::string& path, const std::string& title)
      : title_(QString::fromStdString(title)), writer_(QString::fromStdString(path)) {
    writer_.setResolution(72);
    writer_.setPageSize(QPageSize(QPageSize::A4));
    writer_.setPageMargins(QMarginsF(0, 0, 0, 0));
    writer_.setTitle(title_);
    writer_.setCreator("qk47-guide");
    const QRectF sheet(0, 0, 210 * kMillimetre, 297 * kMillimetre);
    // In whole points, as the layout counts: a line at the border belongs to one sheet.
    text_ = sheet.adjusted(22 * kMillimetre, 24 * kMillimetre, -22 * kMillimetre, -22 * kMillimetre)
                .toRect();
    sheet_ = sheet;
  }

  std::string Add(const std::string& page) {
    QFile file(QString::fromStdString(page));
    if (!file.open(QIODevice::ReadOnly)) return page + ": cannot be read";
    Chapter chapter;
    chapter.Document = std::make_unique<QTextDocument>();
    QTextDocument& document = *chapter.Document;
    document.setDocumentMargin(0);
    document.setIndentWidth(24);
    QFont font(kText);
    font.setPointSizeF(kBaseSize);
    document.setDefaultFont(font);
    document.setMetaInformation(
        QTextDocument::DocumentUrl,
        QUrl::fromLocalFile(QFileInfo(file).absolutePath() + "/").toString());
    document.setBaseUrl(QUrl::fromLocalFile(QFileInfo(file).absolutePath() + "/"));
    document.setMarkdown(FenceIndentedCode(QString::fromUtf8(file.readAll())));
    document.documentLayout()->setPaintDevice(&writer_);
    chapter.Heading = Style(document);
    if (chapter.Heading.isEmpty()) return page + ": no heading of the first rank";
    FitPictures(document, text_.width());
    document.setPageSize(text_.size());
    KeepOptionsWhole(document);
    KeepRowsTogether(*document.rootFrame());
    KeepTogether(document);
    chapters_.push_back(std::move(chapter));
    return {};
  }

  std::string Write() {
    // One chapter needs no list of chapters.
    const bool titled = chapters_.size() > 1;
    int sheet = titled ? 2 : 1;
    for (Chapter& chapter : chapters_) {
      chapter.FirstSheet = sheet;
      sheet += chapter.Document->pageCount();
    }
    QPainter painter;
    if (!painter.begin(&writer_)) return "the PDF cannot be written";
    painter.setRenderHint(QPainter::LosslessImageRendering);
    if (titled) DrawTitle(painter);
    for (const Chapter& chapter : chapters_)
      for (int page = 0; page < chapter.Document->pageCount(); ++page) {
        if (titled || page > 0) writer_.newPage();
        DrawSheet(painter, chapter, page);
      }
    return painter.end() ? std::string() : std::string("the PDF cannot be written");
  }

 private:
  static QFont Letters(double size, bool bold = false) {
    QFont font(kText);
    font.setPointSizeF(size);
    font.setBold(bold);
    return font;
  }

  void DrawTitle(QPainter& painter) {
    painter.setPen(kAccent);
    painter.setFont(Letters(26, true));
    painter.drawText(QRectF(text_.left(), text_.top() + 40, text_.width(), 80),
                     Qt::AlignLeft | Qt::TextWordWrap, QString(title_).replace(": ", "\n"));
    painter.fillRect(QRectF(text_.left(), text_.top() + 122, text_.width(), 1.5), kAccent);
    double y = text_.top() + 150;
    painter.setFont(Letters(11));
    for (const Chapter& chapter : chapters_) {
      painter.setPen(kInk);
      const QRectF line(text_.left(), y, text_.width(), 18);
      painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter, chapter.Heading);
      painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter,
                       QString::number(chapter.FirstSheet));
      painter.setPen(QPen(kRule, 0.5));
      painter.drawLine(line.bottomLeft(), line.bottomRight());
      y += 20;
    }
  }

  void DrawSheet(QPainter& painter, const Chapter& chapter, int page) {
    painter.setPen(kPale);
    painter.setFont(Letters(8));
    const QRectF head(text_.left(), text_.top() - 30, text_.width(), 14);
    painter.drawText(head, Qt::AlignLeft, title_);
    painter.drawText(head, Qt::AlignRight, chapter.Heading);
    painter.drawText(QRectF(text_.left(), sheet_.bottom() - 40, text_.width(), 14), Qt::AlignRight,
                     QString::number(chapter.FirstSheet + page));
    painter.save();
    painter.translate(text_.left(), text_.top() - page * text_.height());
    QAbstractTextDocumentLayout::PaintContext context;
    context.palette.setColor(QPalette::Text, kInk);
    context.clip = QRectF(0, page * text_.height(), text_.width(), text_.height());
    painter.setClipRect(context.clip);
    chapter.Document->documentLayout()->draw(&painter, context);
    painter.restore();
  }

  QString title_;
  QPdfWriter writer_;
  QRectF text_, sheet_;
  std::vector<Chapter> chapters_;
};

}  // namespace

std::string WriteGuide(const std::string& path, const std::string& title,
                       const std::vector<std::string>& pages) {
  Guide guide(path, title);
  for (const std::string& page : pages)
    if (std::string error = guide.Add(page); !error.empty()) return error;
  return guide.Write();
}

}  // namespace qk
