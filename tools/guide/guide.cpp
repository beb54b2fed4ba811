// SPDX-License-Identifier: MIT
#include "guide.h"

#include <memory>

#include <QAbstractTextDocumentLayout>
#include <QFile>
#include <QFileInfo>
#include <QPainter>
#include <QPdfWriter>
#include <QTextDocument>
#include <QUrl>

#include "page_style.h"
#include "sheet_breaks.h"

namespace qk {

namespace {

// Layout is in points of 1/72 inch.
constexpr double kMillimetre = 72 / 25.4;

struct Chapter {
  QString Heading;
  std::unique_ptr<QTextDocument> Document;
  int FirstSheet = 0;  // from 1
};

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
    chapter.Heading = StylePage(document);
    if (chapter.Heading.isEmpty()) return page + ": no heading of the first rank";
    FitPictures(document, text_.width());
    document.setPageSize(text_.size());
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
    // A picture at the head of the next sheet begins a little above it.
    context.clip = QRectF(0, page * text_.height(), text_.width(), text_.height() - 1);
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
