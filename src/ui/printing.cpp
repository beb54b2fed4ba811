// SPDX-License-Identifier: MIT
#include "ui/printing.h"

#include <sys/mman.h>

#include <QDialog>
#include <QDir>
#include <QFileInfo>
#include <QPageLayout>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinterInfo>

#include "core/descriptor.h"
#include "files/whole_file.h"
#include "ui/qt_canvas.h"

namespace qk {

namespace {
constexpr const char* kNotStarted = "The printer cannot be started";

Extent PageOf(const QPrinter& printer) {
  const QRect page = printer.pageLayout().paintRectPixels(printer.resolution());
  return {page.width(), page.height()};
}

// Maps the pixels of a picture to its place on the page.
QTransform Onto(const Rect& place, Extent picture) {
  QTransform transform;
  transform.translate(place.left, place.top);
  transform.scale(static_cast<double>(place.right - place.left) / picture.width,
                  static_cast<double>(place.bottom - place.top) / picture.height);
  return transform;
}

bool TakePrefix(QString& text, const char* prefix) {
  const QString word = QString::fromLatin1(prefix) + ' ';
  if (!text.startsWith(word)) return false;
  text.remove(0, word.size());
  return true;
}

std::string NameOf(const QPrinter& printer) {
  const QString file = printer.outputFileName();
  return (file.isEmpty() ? printer.printerName() : file).toStdString();
}

}  // namespace

std::optional<std::string> ChoosePrinter(QWidget* owner, const Dialog& dialog,
                                         std::unique_ptr<QPrinter>& chosen) {
  auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
  QPrintDialog box(printer.get(), owner);
  if (!dialog.Title.empty()) box.setWindowTitle(QString::fromStdString(dialog.Title));
  if (box.exec() != QDialog::Accepted) return std::nullopt;
  chosen = std::move(printer);
  return NameOf(*chosen);
}

std::unique_ptr<QPrinter> PrinterNamed(const std::string& choice) {
  QString name = QString::fromStdString(choice).trimmed();
  const bool landscape = TakePrefix(name, "landscape");
  if (!landscape) TakePrefix(name, "portrait");
  auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
  if (QPrinterInfo::availablePrinterNames().contains(name)) {
    printer->setPrinterName(name);
  } else if (name.contains('/') || name.endsWith(".pdf", Qt::CaseInsensitive)) {
    printer->setOutputFormat(QPrinter::PdfFormat);
    printer->setOutputFileName(name);
  } else {
    return nullptr;
  }
  printer->setPageOrientation(landscape ? QPageLayout::Landscape : QPageLayout::Portrait);
  return printer;
}

namespace {
constexpr std::size_t kLargestPage = std::size_t{256} << 20;

Result<Done> Paint(QPrinter& printer, const PageJob& job, const QImage& window,
                   const std::string& name) {
  const Extent size = window.isNull() ? job.Size
                                      : Extent{window.deviceIndependentSize().toSize().width(),
                                               window.deviceIndependentSize().toSize().height()};
  const std::optional<Rect> place = job.Place(PageOf(printer), size);
  QPainter painter;
  if (!painter.begin(&printer)) return Failure{kNotStarted, name};
  if (!place) return Done{};  // an empty page
  painter.setRenderHint(QPainter::LosslessImageRendering);
  if (!window.isNull()) {
    painter.drawImage(
        QRect(place->left, place->top, place->right - place->left, place->bottom - place->top),
        window);
  } else {
    painter.setTransform(Onto(*place, size));
    painter.setClipRect(0, 0, size.width, size.height);
    QtCanvas canvas(painter, size);
    job.Draw(canvas);
  }
  return painter.end() ? Result<Done>(Done{}) : Failure{"The page could not be printed", name};
}

// A PDF is first written to memory: Qt overwrites the old file directly and does not report a full
// disk, and a temporary file would remain if the process is killed.
Result<Done> PaintFile(QPrinter& printer, const PageJob& job, const QImage& window,
                       const std::string& path) {
  const QFileInfo target(QString::fromStdString(path));
  const Descriptor memory(::memfd_create("page.pdf", MFD_CLOEXEC));
  if (!memory.Open() || !target.absoluteDir().exists()) return Failure{kNotStarted, path};
  const std::string name = "/proc/self/fd/" + std::to_string(memory.Get());
  printer.setOutputFileName(QString::fromStdString(name));
  printer.setOutputFormat(QPrinter::PdfFormat);
  Result<Done> painted = Paint(printer, job, window, path);
  printer.setOutputFileName(target.filePath());
  if (!painted) return painted;
  const Result<std::string> page = ReadWhole(name, kLargestPage);
  if (!page || !page->ends_with("%%EOF\n"))
    return Failure{"The disk did not take the whole page", path};
  return WriteWhole(path, *page);
}

}  // namespace

Result<Done> PrintOn(QPrinter& printer, const PageJob& job, const QImage& window) {
  printer.setDocName(QString::fromStdString(job.Title));
  const std::string name = NameOf(printer);
  return printer.outputFileName().isEmpty() ? Paint(printer, job, window, name)
                                            : PaintFile(printer, job, window, name);
}

}  // namespace qk
