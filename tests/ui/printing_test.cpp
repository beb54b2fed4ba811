// SPDX-License-Identifier: MIT
#include "ui/printing.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include "display/graphs.h"
#include "display/page.h"
#include "support/full_disk.h"
#include "support/scratch_folder.h"
#include "ui/qt_canvas.h"

namespace qk {
namespace {

// A red rectangle on a yellow picture, printed to PDF and rendered again at 100 dots an inch.
class Printing : public testing::Test {
 protected:
  PageJob Job(const std::string& printer) {
    PageJob job;
    job.Printer = printer;
    job.Title = "Print Graphics";
    job.Size = {1000, 700};
    job.Draw = [](Canvas& canvas) {
      canvas.FillRectangle({0, 0}, {1000, 700}, 0xFFFF00);
      canvas.FillRectangle({250, 350}, {749, 524}, 0xFF0000);
    };
    job.Place = [this](Extent page, Extent drawn) {
      page_ = page;
      return place_ = PlaceOnPage(page, drawn);
    };
    return job;
  }
  QImage Rendered(const std::string& pdf) {
    const QString path = QString::fromStdString(pdf);
    if (QProcess::execute("pdftoppm", {"-r", "100", "-png", "-singlefile", path, path}) != 0)
      return {};
    return QImage(path + ".png");
  }
  // The bounding box of a colour, as parts of an inch from the page's corner.
  static QRectF BoxOf(const QImage& image, QRgb colour) {
    QRect box;
    for (int y = 0; y < image.height(); ++y)
      for (int x = 0; x < image.width(); ++x)
        if ((image.pixel(x, y) & 0xFFFFFF) == (colour & 0xFFFFFF)) box |= QRect(x, y, 1, 1);
    return {box.x() / 100.0, box.y() / 100.0, box.width() / 100.0, box.height() / 100.0};
  }
  static bool CanRender() { return QProcess::execute("pdftoppm", {"-v"}) == 0; }

  test::ScratchFolder folder;
  QtPicture picture{{1000, 700}};
  Extent page_;
  std::optional<Rect> place_;
};

TEST_F(Printing, APathIsAPdfFileInPortraitUnlessLandscapeStandsBeforeIt) {
  EXPECT_EQ(PrinterNamed("no such printer"), nullptr);
  const auto portrait = PrinterNamed("/tmp/page.pdf");
  ASSERT_NE(portrait, nullptr);
  EXPECT_EQ(portrait->outputFormat(), QPrinter::PdfFormat);
  EXPECT_EQ(portrait->pageLayout().orientation(), QPageLayout::Portrait);
  const auto landscape = PrinterNamed("landscape page.pdf");
  ASSERT_NE(landscape, nullptr);
  EXPECT_EQ(landscape->pageLayout().orientation(), QPageLayout::Landscape);
  EXPECT_EQ(landscape->outputFileName(), "page.pdf");
}

TEST_F(Printing, ThePictureStandsOnThePageWhereItsPlaceIs) {
  if (!CanRender()) GTEST_SKIP() << "pdftoppm is not installed";
  for (const std::string orientation : {"portrait ", "landscape "}) {
    const std::string pdf = folder.File(orientation.substr(0, 4) + ".pdf");
    ASSERT_TRUE(picture.Print(Job(orientation + pdf)));
    ASSERT_TRUE(place_.has_value());
    EXPECT_EQ(page_.width > page_.height, orientation == "landscape ");
    const auto printer = PrinterNamed(orientation + pdf);
    const double dots = printer->resolution();
    const QRectF printable = printer->pageLayout().paintRect(QPageLayout::Inch);
    const double scale = (place_->right - place_->left) / 1000.0 / dots;
    const QRectF told(printable.x() + 250 * scale, printable.y() + place_->top / dots + 350 * scale,
                      500 * scale, 175 * scale);
    const QRectF red = BoxOf(Rendered(pdf), 0xFF0000);
    EXPECT_NEAR(red.x(), told.x(), 0.03) << orientation;
    EXPECT_NEAR(red.y(), told.y(), 0.03) << orientation;
    EXPECT_NEAR(red.width(), told.width(), 0.03) << orientation;
    EXPECT_NEAR(red.height(), told.height(), 0.03) << orientation;
  }
}

TEST_F(Printing, LettersAndLinesAreDrawnAnewNotEnlarged) {
  if (!CanRender()) GTEST_SKIP() << "pdftoppm is not installed";
  const auto session = MakeSession();
  Graphs graphs(*session, picture);
  graphs.RedrawAll(true);
  const std::string pdf = folder.File("page.pdf");
  PageJob job = Job(pdf);
  job.Draw = [&](Canvas& canvas) { graphs.Paint(canvas, "Filter seven"); };
  ASSERT_TRUE(picture.Print(job));
  QProcess text;  // letters on the page, not dots
  text.start("pdftotext", {QString::fromStdString(pdf), "-"});
  ASSERT_TRUE(text.waitForFinished());
  const QString words = text.readAllStandardOutput();
  EXPECT_TRUE(words.contains("S11 LogMag")) << words.toStdString();
  EXPECT_TRUE(words.contains("10.0 dB/DIV")) << words.toStdString();
  EXPECT_TRUE(words.contains("Filter seven")) << words.toStdString();
}

TEST_F(Printing, AWindowIsPrintedAsItsImageWhereThereIsOne) {
  if (!CanRender()) GTEST_SKIP() << "pdftoppm is not installed";
  picture.WindowImage = [](const std::string& window) {
    QImage image(200, 100, QImage::Format_RGB32);
    image.fill(window == "P1dBForm" ? Qt::blue : Qt::green);
    return image;
  };
  PageJob job = Job(folder.File("window.pdf"));
  job.Window = "P1dBForm";
  job.Place = FitOnPage;
  ASSERT_TRUE(picture.Print(job));
  const QImage page = Rendered(job.Printer);
  const QRectF blue = BoxOf(page, qRgb(0, 0, 255));
  EXPECT_NEAR(blue.width() / blue.height(), 2, 0.05);
  EXPECT_NEAR(blue.center().x(), page.width() / 200.0, 0.05);
  EXPECT_NEAR(blue.center().y(), page.height() / 200.0, 0.05);
}

TEST_F(Printing, WhatCannotBePrintedSaysWhy) {
  const Result<Done> unknown = picture.Print(Job("no such printer"));
  ASSERT_FALSE(unknown);
  EXPECT_EQ(unknown.Why().Text(), "no such printer: No such printer");
  const Result<Done> unwritable = picture.Print(Job("/no/such/folder/page.pdf"));
  ASSERT_FALSE(unwritable);
  EXPECT_EQ(unwritable.Why().Text(), "/no/such/folder/page.pdf: The printer cannot be started");
}

// What a killed print leaves: nothing is in the folder while the page is drawn.
TEST_F(Printing, APageThatIsDrawnIsInNoFileBeside) {
  PageJob job = Job(folder.File("page.pdf"));
  QStringList during{"not drawn"};
  job.Draw = [&](Canvas&) {
    during = QDir(QString::fromStdString(folder.Text())).entryList(QDir::Files | QDir::Hidden);
  };
  ASSERT_TRUE(picture.Print(job));
  EXPECT_EQ(during, QStringList());
}

TEST_F(Printing, OnAFullDiskTheOldPageStaysAndTheCauseIsReported) {
  const std::string path = folder.File("page.pdf");
  ASSERT_TRUE(picture.Print(Job(path)).Ok());
  const auto size = QFileInfo(QString::fromStdString(path)).size();
  {
    const test::FullDisk disk(500);
    const Result<Done> printed = picture.Print(Job(path));
    ASSERT_FALSE(printed);
    EXPECT_EQ(printed.Why().Text(), path + ": The disk did not take the whole page");
  }
  EXPECT_EQ(QFileInfo(QString::fromStdString(path)).size(), size);
  EXPECT_EQ(QDir(QString::fromStdString(folder.Text())).entryList(QDir::Files | QDir::Hidden),
            QStringList{"page.pdf"});
}

}  // namespace
}  // namespace qk
