// SPDX-License-Identifier: MIT
#include "ui/report_pdf.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QByteArray>
#include <QCryptographicHash>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgRenderer>
#include <QTextDocument>
#include <QTextOption>

#include "files/report_settings.h"
#include "files/whole_file.h"
#include "ui/qt_canvas.h"

namespace qk {

namespace {

// All lengths are in points, 1/72 inch, from the top left corner of an A4 page.
constexpr double kPageWidth = 595.276, kPageHeight = 841.89;
constexpr double kLeft = 56.7, kRight = kPageWidth - 42.5;
constexpr double kTop = 48, kFoot = kPageHeight - 48;  // the text's lower end
constexpr double kWidth = kRight - kLeft;
constexpr int kReportDpi = 1200;  // dots per inch
constexpr double kGap = 9;        // between blocks
constexpr double kPad = 3;        // about the text of a cell
constexpr double kLogoWidth = 150, kLogoHeight = 48;
constexpr double kKeptTogether = 250;  // a table up to this height is not split over pages
constexpr double kMostOfPage = 0.45;   // maximum height of a picture, as a fraction of the page
constexpr QRgb kGreen = 0xFF1B6E2B, kRed = 0xFFB00020, kGrey = 0xFF606060, kLine = 0xFFB0B0B0,
               kHead = 0xFFEDEFF2;

QString Q(const std::string& text) {
  return QString::fromStdString(text);
}

// A text broken into lines of a given width, as a separate document. It is laid out ten times
// larger in whole pixels, so that font sizes and line positions are those of the page and not of a
// screen.
class Words {
 public:
  Words(const std::string& text, double points, double width, bool bold = false) {
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(qRound(points * kLarger));
    font.setBold(bold);
    // Any letter spacing disables ligatures: a search then finds "file" as separate letters.
    font.setLetterSpacing(QFont::AbsoluteSpacing, 0.1);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    document_.setDocumentMargin(0);
    document_.setDefaultTextOption(option);
    document_.setUseDesignMetrics(true);
    document_.setDefaultFont(font);
    document_.setPlainText(Q(text));
    document_.setTextWidth(width < 0 ? -1 : width * kLarger);
  }
  double Height() const { return document_.size().height() / kLarger; }
  double IdealWidth() const { return document_.idealWidth() / kLarger; }
  void Draw(QPainter& painter, double x, double y, QRgb colour = 0xFF000000) {
    painter.save();
    painter.translate(x, y);
    painter.scale(1.0 / kLarger, 1.0 / kLarger);
    QAbstractTextDocumentLayout::PaintContext context;
    context.palette.setColor(QPalette::Text, QColor::fromRgb(colour));
    document_.documentLayout()->draw(&painter, context);
    painter.restore();
  }

 private:
  static constexpr int kLarger = 10;
  QTextDocument document_;
};

// The logo: vectors from an SVG file, otherwise pixels.
struct Logo {
  std::unique_ptr<QSvgRenderer> Vector;
  QImage Pixels;

  QSizeF Size() const {
    const QSizeF size = Vector ? QSizeF(Vector->defaultSize()) : QSizeF(Pixels.size());
    return size.scaled(kLogoWidth, kLogoHeight, Qt::KeepAspectRatio);
  }
  void Draw(QPainter& painter, const QRectF& place) const {
    if (Vector)
      Vector->render(&painter, place);
    else
      painter.drawImage(place, Pixels);
  }
};

// A larger one may not fit into the memory that an image reader takes.
constexpr qint64 kMostPixels = 16'000'000;
// 600 to an inch: more would only make each report larger.
constexpr QSize kFinestLogo(1250, 400);

Result<QImage> ReadPixels(const std::string& path, QByteArray data) {
  QBuffer buffer(&data);
  QImageReader reader(&buffer);
  const QSize size = reader.size();
  if (qint64{size.width()} * size.height() > kMostPixels)
    return Failure{"The logo has more than 16 million pixels", path};
  QImage pixels = reader.read();
  if (pixels.isNull()) return Failure{"The logo is not a picture", path};
  const QSize finest = pixels.size().scaled(kFinestLogo, Qt::KeepAspectRatio).expandedTo({1, 1});
  if (finest.width() < pixels.width())
    pixels = pixels.scaled(finest, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  return pixels;
}

Result<std::optional<Logo>> ReadLogo(const std::string& path) {
  if (path.empty()) return std::optional<Logo>();
  const Result<std::string> bytes = LogoBytes(path);
  if (!bytes) return bytes.Why();
  const QByteArray data(bytes->data(), static_cast<qsizetype>(bytes->size()));
  Logo logo;
  if (QFileInfo(Q(path)).suffix().compare("svg", Qt::CaseInsensitive) == 0) {
    logo.Vector = std::make_unique<QSvgRenderer>(data);
    if (!logo.Vector->isValid() || logo.Vector->defaultSize().isEmpty())
      return Failure{"The logo is not a picture", path};
  } else {
    Result<QImage> pixels = ReadPixels(path, data);
    if (!pixels) return pixels.Why();
    logo.Pixels = *pixels;
  }
  return std::optional<Logo>(std::move(logo));
}

// Lays out blocks on pages. Run twice: the first run counts the pages and paints nothing.
class Pages {
 public:
  // painter: may be null; then nothing is painted.
  Pages(const ReportDocument& report, const std::optional<Logo>& logo, QPdfWriter* writer,
        QPainter* painter, int pages)
      : report_(report), logo_(logo), writer_(writer), painter_(painter), pages_(pages) {}

  // Returns the number of pages.
  int Run() {
    BeginPage();
    Head();
    for (std::size_t i = 0; i < report_.Blocks.size(); ++i) {
      keep_ = 0;
      // A heading is kept on the same page as what follows it.
      if (std::holds_alternative<ReportHeading>(report_.Blocks[i]) && i + 1 < report_.Blocks.size())
        keep_ = LeastHeight(report_.Blocks[i + 1]);
      std::visit([this](const auto& block) { Put(block); }, report_.Blocks[i]);
    }
    return page_;
  }

 private:
  void BeginPage() {
    if (page_++ > 0 && writer_ != nullptr) writer_->newPage();
    y_ = kTop;
    if (painter_ == nullptr) return;
    painter_->setPen(QPen(QColor::fromRgb(kLine), 0.5));
    painter_->drawLine(QPointF(kLeft, kFoot + 6), QPointF(kRight, kFoot + 6));
    const std::string number =
        "Page " + std::to_string(page_) + " of " + std::to_string(std::max(pages_, page_));
    Words right(number, 8, kWidth);
    right.Draw(*painter_, kRight - right.IdealWidth(), kFoot + 10, kGrey);
    Words(report_.Footer, 8, kWidth - right.IdealWidth() - 20)
        .Draw(*painter_, kLeft, kFoot + 10, kGrey);
  }

  // Starts a new page if there is not enough room.
  void Need(double height) {
    if (y_ + height > kFoot && y_ > kTop) BeginPage();
  }

  void Head() {
    const double logoWidth = logo_ ? logo_->Size().width() + 20 : 0;
    Words title(report_.Title, 20, kWidth - logoWidth, true);
    double height = title.Height();
    if (painter_ != nullptr) title.Draw(*painter_, kLeft, y_);
    if (!report_.Address.empty()) {
      Words address(report_.Address, 9, kWidth - logoWidth);
      if (painter_ != nullptr) address.Draw(*painter_, kLeft, y_ + height + 3, kGrey);
      height += 3 + address.Height();
    }
    if (logo_) {
      const QSizeF size = logo_->Size();
      if (painter_ != nullptr)
        logo_->Draw(*painter_, QRectF(kRight - size.width(), y_, size.width(), size.height()));
      height = std::max(height, size.height());
    }
    y_ += height + 6;
    Rule(kLine, 1);
    y_ += kGap;
  }

  void Rule(QRgb colour, double width) {
    if (painter_ == nullptr) return;
    painter_->setPen(QPen(QColor::fromRgb(colour), width));
    painter_->drawLine(QPointF(kLeft, y_), QPointF(kRight, y_));
  }

  // The minimum height of a block that must follow its heading on the same page.
  double LeastHeight(const ReportBlock& block) const {
    if (const auto* picture = std::get_if<ReportPicture>(&block))
      return PictureSize(*picture).height();
    if (std::holds_alternative<ReportVerdict>(block)) return 60;
    if (const auto* table = std::get_if<ReportTable>(&block)) {
      const double whole = TableHeight(*table);
      if (whole <= kKeptTogether) return whole;
    }
    return 44;
  }

  double TableHeight(const ReportTable& table) const {
    const std::vector<double> widths = ColumnWidths(table);
    double height = table.Heads.empty() ? 0 : RowHeight(table.Heads, widths, true, true);
    for (const auto& row : table.Rows) height += RowHeight(row, widths, false, table.Heads.empty());
    return height;
  }

  static QSizeF PictureSize(const ReportPicture& picture) {
    const QSizeF size(std::max(1, picture.Size.width), std::max(1, picture.Size.height));
    return size.scaled(kWidth, kMostOfPage * kPageHeight, Qt::KeepAspectRatio);
  }

  void Put(const ReportHeading& heading) {
    Words words(heading.Text, 12.5, kWidth, true);
    Need(words.Height() + 8 + keep_);
    y_ += y_ > kTop ? 4 : 0;
    if (painter_ != nullptr) words.Draw(*painter_, kLeft, y_);
    y_ += words.Height() + 4;
  }

  void Put(const ReportParagraph& paragraph) {
    Words words(paragraph.Text, 9.5, kWidth);
    Need(words.Height());
    if (painter_ != nullptr) words.Draw(*painter_, kLeft, y_);
    y_ += words.Height() + kGap;
  }

  void Put(const ReportVerdict& verdict) {
    const QRgb colour = verdict.Good ? kGreen : kRed;
    Words word(verdict.Word, 26, kWidth, true);
    const double left = word.IdealWidth() + 24;
    Words text(verdict.Text, 9.5, kWidth - left - 12);
    const double height = std::max(word.Height(), text.Height()) + 12;
    Need(height);
    if (painter_ != nullptr) {
      painter_->setPen(QPen(QColor::fromRgb(colour), 1.5));
      painter_->setBrush(Qt::NoBrush);
      painter_->drawRect(QRectF(kLeft, y_, kWidth, height));
      word.Draw(*painter_, kLeft + 12, y_ + (height - word.Height()) / 2, colour);
      text.Draw(*painter_, kLeft + left, y_ + (height - text.Height()) / 2);
    }
    y_ += height + kGap;
  }

  void Put(const ReportPicture& picture) {
    const QSizeF size = PictureSize(picture);
    Need(size.height());
    if (painter_ != nullptr) {
      painter_->save();
      painter_->translate(kLeft + (kWidth - size.width()) / 2, y_);
      const double scale = size.width() / picture.Size.width;
      painter_->scale(scale, scale);
      painter_->setClipRect(0, 0, picture.Size.width, picture.Size.height);
      {
        QtCanvas canvas(*painter_, picture.Size);
        picture.Draw(canvas);
      }
      painter_->restore();
    }
    y_ += size.height() + kGap;
  }

  void Put(const ReportDataFile& file) {
    const QByteArray hash = QCryptographicHash::hash(
        QByteArrayView(file.Bytes.data(), static_cast<qsizetype>(file.Bytes.size())),
        QCryptographicHash::Sha256);
    Put(ReportTable{{},
                    {{"Data file", file.Name},
                     {"Size", std::to_string(file.Bytes.size()) + " bytes"},
                     {"SHA-256", hash.toHex().toStdString()}}});
  }

  // Columns as wide as their longest text; reduced in proportion if that is too wide.
  static std::vector<double> ColumnWidths(const ReportTable& table) {
    const std::size_t columns = table.Heads.empty()
                                    ? (table.Rows.empty() ? 0 : table.Rows.front().size())
                                    : table.Heads.size();
    std::vector<double> widths(columns, 30);
    const auto widen = [&](std::size_t c, const std::string& text, bool bold) {
      widths[c] = std::max(widths[c], Words(text, kCell, -1, bold).IdealWidth() + 2 * kPad + 4);
    };
    for (std::size_t c = 0; c < table.Heads.size(); ++c) widen(c, table.Heads[c], true);
    for (const auto& row : table.Rows)
      for (std::size_t c = 0; c < std::min(columns, row.size()); ++c)
        widen(c, row[c], table.Heads.empty() && c == 0);
    double sum = 0;
    for (const double width : widths) sum += width;
    if (columns == 0 || sum == 0) return widths;
    if (sum <= kWidth) {
      widths.back() += kWidth - sum;
      return widths;
    }
    // Narrow columns keep their width; the wide ones share the rest.
    double kept = 0;
    const double fair = kWidth / static_cast<double>(columns);
    for (const double width : widths) kept += width <= fair ? width : 0;
    const double wide = sum - kept;
    for (double& width : widths)
      if (width > fair) width *= (kWidth - kept) / wide;
    return widths;
  }

  void Put(const ReportTable& table) {
    const std::vector<double> widths = ColumnWidths(table);
    if (widths.empty()) return;
    if (!table.Heads.empty()) {
      // The header row is kept with the first row.
      const double first =
          table.Rows.empty() ? 0 : RowHeight(table.Rows.front(), widths, false, false);
      Need(RowHeight(table.Heads, widths, true, true) + first);
      PutRow(table.Heads, widths, true, true);
    }
    for (const auto& row : table.Rows) {
      const double height = RowHeight(row, widths, false, table.Heads.empty());
      if (y_ + height > kFoot && y_ > kTop) {
        BeginPage();
        if (!table.Heads.empty()) PutRow(table.Heads, widths, true, true);
      }
      PutRow(row, widths, false, table.Heads.empty());
    }
    y_ += kGap;
  }

  double RowHeight(const std::vector<std::string>& cells, const std::vector<double>& widths,
                   bool head, bool firstBold) const {
    double height = 0;
    for (std::size_t c = 0; c < std::min(cells.size(), widths.size()); ++c)
      height = std::max(
          height,
          Words(cells[c], kCell, widths[c] - 2 * kPad, head || (firstBold && c == 0)).Height());
    return height + 2 * kPad;
  }

  void PutRow(const std::vector<std::string>& cells, const std::vector<double>& widths, bool head,
              bool firstBold) {
    const double height = RowHeight(cells, widths, head, firstBold);
    if (painter_ != nullptr) {
      if (head) painter_->fillRect(QRectF(kLeft, y_, kWidth, height), QColor::fromRgb(kHead));
      double x = kLeft;
      for (std::size_t c = 0; c < std::min(cells.size(), widths.size()); ++c) {
        Words(cells[c], kCell, widths[c] - 2 * kPad, head || (firstBold && c == 0))
            .Draw(*painter_, x + kPad, y_ + kPad);
        x += widths[c];
      }
    }
    y_ += height;
    Rule(kLine, 0.4);
  }

  static constexpr double kCell = 8.5;  // font size of a table in points

  const ReportDocument& report_;
  const std::optional<Logo>& logo_;
  QPdfWriter* writer_;
  QPainter* painter_;
  int pages_;
  int page_ = 0;
  double y_ = 0;
  double keep_ = 0;
};

}  // namespace

Result<Done> CheckReportLogo(const std::string& path) {
  if (const auto logo = ReadLogo(path); !logo) return logo.Why();
  return Done{};
}

Result<Done> WriteReportPdf(const ReportDocument& report, const std::string& path) {
  const Result<std::optional<Logo>> logo = ReadLogo(report.LogoFile);
  if (!logo) return logo.Why();
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  {
    QPdfWriter writer(&buffer);
    writer.setResolution(kReportDpi);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins({0, 0, 0, 0});
    writer.setTitle(Q(report.Title));
    QPainter painter;
    if (!painter.begin(&writer)) return Failure{"The report could not be painted", path};
    const double scale = kReportDpi / 72.0;
    painter.scale(scale, scale);
    const int pages = Pages(report, *logo, nullptr, nullptr, 0).Run();
    Pages(report, *logo, &writer, &painter, pages).Run();
    if (!painter.end()) return Failure{"The report could not be painted", path};
  }
  buffer.close();
  return WriteWhole(path, {bytes.constData(), static_cast<std::size_t>(bytes.size())});
}

}  // namespace qk
