// SPDX-License-Identifier: MIT
// Reports and vector pictures as files, and the window of a batch under a scanner's keys.
#include "ui/report_pdf.h"

#include <algorithm>
#include <fstream>

#include <QProcess>
#include <QRegularExpression>

#include "control/report.h"
#include "limits/limit_segments.h"
#include "sweep/frequency_plan.h"
#include "ui/ui_fixture.h"
#include "ui/vector_file.h"

namespace qk::test {
namespace {

struct ReportPdf : testing::Test {
  ScratchFolder scratch;
  std::string path = scratch.File("r.pdf");
  ReportDocument report{"A title", "An address", "", "The foot", {}};

  // The text of each page.
  QStringList Pages() {
    QProcess text;
    text.start("pdftotext", {"-layout", QString::fromStdString(path), "-"});
    if (!text.waitForFinished()) return {};
    QStringList pages = QString::fromUtf8(text.readAllStandardOutput()).split('\f');
    pages.removeLast();
    return pages;
  }
  // The first page, a pixel for each point.
  QImage FirstPage() const {
    QProcess image;
    image.start("pdftoppm",
                {"-png", "-r", "72", "-f", "1", "-l", "1", QString::fromStdString(path)});
    if (!image.waitForFinished()) return {};
    return QImage::fromData(image.readAllStandardOutput(), "PNG");
  }
};

// Above the middle of the title's line there is no text.
TEST_F(ReportPdf, TheLogoIsAtTheRightAboveTheLineAndTheLinesAreGrey) {
  report.LogoFile = scratch.File("logo.png");
  QImage logo(100, 100, QImage::Format_RGB32);
  logo.fill(Qt::red);
  ASSERT_TRUE(logo.save(QString::fromStdString(report.LogoFile)));
  ASSERT_TRUE(WriteReportPdf(report, path).Ok());
  const QImage page = FirstPage();
  if (page.isNull()) GTEST_SKIP() << "pdftoppm is not there";
  constexpr int kTop = 48, kRight = 553, kSide = 48, kMiddle = 300;
  for (const QPoint& at :
       {QPoint(kRight - kSide + 2, kTop + 2), QPoint(kRight - 3, kTop + kSide - 3)}) {
    EXPECT_GT(page.pixelColor(at).red(), 240) << at.x();
    EXPECT_LT(page.pixelColor(at).green(), 20) << at.x();
  }
  std::vector<int> lines;
  for (int y = 0; y < page.height(); ++y)
    if (qGray(page.pixel(kMiddle, y)) < 250) lines.push_back(y);
  ASSERT_GE(lines.size(), 2u);
  EXPECT_NEAR(lines.front(), kTop + kSide + 6, 1)
      << "below the logo, which is higher than the text";
  EXPECT_NEAR(lines.back(), 800, 1) << "above the number of the page";
  for (const int y : lines) EXPECT_NEAR(qGray(page.pixel(kMiddle, y)), 0xB0, 20) << y;
}

TEST_F(ReportPdf, ARowIsNeverBrokenOverTwoPagesAndTheHeadStandsOnEach) {
  ReportTable table{{"Number", "Text"}, {}};
  for (int n = 100; n < 190; ++n)
    table.Rows.push_back(
        {std::to_string(n), "first" + std::to_string(n) + "\nmiddle\nlast" + std::to_string(n)});
  report.Blocks.push_back(table);
  ASSERT_TRUE(WriteReportPdf(report, path).Ok());
  const QStringList pages = Pages();
  if (pages.isEmpty()) GTEST_SKIP() << "pdftotext is not there";
  ASSERT_GE(pages.size(), 4);
  int rows = 0;
  for (qsizetype p = 0; p < pages.size(); ++p) {
    EXPECT_TRUE(pages[p].contains("Number")) << p;
    EXPECT_TRUE(pages[p].contains("The foot")) << p;
    EXPECT_TRUE(pages[p].contains(QString("Page %1 of %2").arg(p + 1).arg(pages.size()))) << p;
    for (int n = 100; n < 190; ++n) {
      const bool first = pages[p].contains("first" + QString::number(n));
      EXPECT_EQ(first, pages[p].contains("last" + QString::number(n))) << n;
      rows += first;
    }
  }
  EXPECT_EQ(rows, 90);
}

TEST_F(ReportPdf, AHeadingIsNotLeftAtTheFootOfAPage) {
  for (int n = 0; n < 40; ++n) {
    report.Blocks.push_back(ReportHeading{"Heading" + std::to_string(n) + "x"});
    report.Blocks.push_back(ReportTable{{}, {{"name", "value" + std::to_string(n) + "x"}}});
  }
  ASSERT_TRUE(WriteReportPdf(report, path).Ok());
  const QStringList pages = Pages();
  if (pages.isEmpty()) GTEST_SKIP() << "pdftotext is not there";
  ASSERT_GE(pages.size(), 2);
  for (const QString& page : pages)
    for (int n = 0; n < 40; ++n)
      EXPECT_EQ(page.contains(QString("Heading%1x").arg(n)),
                page.contains(QString("value%1x").arg(n)))
          << n;
}

TEST_F(ReportPdf, AColumnIsAsWideAsItsLongestTextWhereThereIsRoom) {
  report.Blocks.push_back(ReportTable{
      {"Name", "Value"}, {{"short", "1"}, {"an entry of the first column in one line", "2"}}});
  ASSERT_TRUE(WriteReportPdf(report, path).Ok());
  const QStringList pages = Pages();
  if (pages.isEmpty()) GTEST_SKIP() << "pdftotext is not there";
  EXPECT_TRUE(pages[0].contains("an entry of the first column in one line"))
      << pages[0].toStdString();
}

TEST_F(ReportPdf, LongWordsAndManyColumnsStayOnThePage) {
  const std::string word(300, 'W');
  report.Title = word;
  report.Address = word;
  report.Blocks.push_back(ReportTable{{"a", "b", "c", "d", "e", "f", "g", "h"},
                                      {{word, "1", word, "2", word, "3", word, "end"}}});
  report.Blocks.push_back(ReportVerdict{true, "PASS", word});
  ASSERT_TRUE(WriteReportPdf(report, path).Ok());
  const QString all = Pages().join(' ');
  if (all.isEmpty()) GTEST_SKIP() << "pdftotext is not there";
  EXPECT_EQ(all.count('W'), 300 * 7);
  EXPECT_TRUE(all.contains("end"));
}

TEST_F(ReportPdf, ALogoThatIsNoPictureIsRefusedAndNothingIsWritten) {
  report.LogoFile = scratch.File("logo.png");
  EXPECT_EQ(WriteReportPdf(report, path).Why().Message,
            "The logo cannot be opened: No such file or directory");
  std::ofstream(report.LogoFile) << "text";
  EXPECT_EQ(WriteReportPdf(report, path).Why().Message, "The logo is not a picture");
  EXPECT_FALSE(std::filesystem::exists(path));
  EXPECT_EQ(CheckReportLogo(report.LogoFile).Why().Text(),
            report.LogoFile + ": The logo is not a picture");
  EXPECT_TRUE(CheckReportLogo("").Ok());
  QImage(30, 10, QImage::Format_RGB32).save(QString::fromStdString(report.LogoFile));
  EXPECT_TRUE(CheckReportLogo(report.LogoFile).Ok());
  EXPECT_TRUE(WriteReportPdf(report, path).Ok());
}

// A page of 600 dots to an inch shows no more of it.
TEST_F(ReportPdf, ALargeLogoMakesNoLargeReport) {
  report.LogoFile = scratch.File("logo.png");
  const auto sizeWith = [&](int width, int height) {
    QImage noise(width, height, QImage::Format_RGB32);
    quint32 x = 1;
    for (int row = 0; row < height; ++row)
      for (int column = 0; column < width; ++column)
        noise.setPixel(column, row, (x = x * 1664525 + 1013904223) >> 8);
    EXPECT_TRUE(noise.save(QString::fromStdString(report.LogoFile)));
    return WriteReportPdf(report, path).Ok() ? std::filesystem::file_size(path) : 0;
  };
  const auto fine = sizeWith(1250, 400);
  EXPECT_GT(fine, 100000u);
  EXPECT_GT(sizeWith(2000, 640), 100000u);
  EXPECT_LT(sizeWith(2000, 640), fine + fine / 4);
  EXPECT_GT(sizeWith(1, 3000), 1000u);
  EXPECT_GT(sizeWith(5000, 1), 1000u);
}

TEST_F(ReportPdf, ALogoOfTooManyPixelsSaysSo) {
  report.LogoFile = scratch.File("logo.png");
  QImage(4001, 4000, QImage::Format_Mono).save(QString::fromStdString(report.LogoFile));
  EXPECT_EQ(WriteReportPdf(report, path).Why().Message, "The logo has more than 16 million pixels");
  QImage(4000, 4000, QImage::Format_Mono).save(QString::fromStdString(report.LogoFile));
  EXPECT_TRUE(WriteReportPdf(report, path).Ok());
}

TEST_F(ReportPdf, AFolderThatIsNotThereIsReportedWithItsPath) {
  const auto refused = WriteReportPdf(report, scratch.File("none/r.pdf"));
  ASSERT_FALSE(refused.Ok());
  EXPECT_EQ(refused.Why().Place, scratch.File("none/r.pdf"));
  EXPECT_FALSE(WriteVectorFile(scratch.File("none/p.svg"), {100, 100}, [](Canvas&) {}).Ok());
}

TEST_F(ReportPdf, VectorFilesAreKnownByTheirExtension) {
  for (const char* name : {"a.svg", "a.SVG", "/x.y/a.Pdf"}) EXPECT_TRUE(IsVectorPath(name)) << name;
  for (const char* name : {"a.png", "svg", "a.svg/b", "a.pdf.bmp"})
    EXPECT_FALSE(IsVectorPath(name)) << name;
}

// A batch with limits that every piece keeps, before its Start.
void MakeBatchReady(UiFixture& vna) {
  vna.StartUp();
  Session& session = vna.program.session();
  session.Plan.NumPoints = 51;
  ASSERT_TRUE(LoadFreqSweep(vna.program.controller().rig()));
  session.Cal.CalDataReady = session.Cal.Cal12Term = true;
  for (PortTerms* terms : {&session.Terms.Forward, &session.Terms.Reverse}) {
    terms->ERT.Fill({1, 0});
    terms->ETT.Fill({1, 0});
  }
  session.Limits.Of(1).Segments[0] = {"3", "2000", "900", "-900"};
  ASSERT_TRUE(ApplyLimits(session, 1).Ok());
  session.Limits.Enabled = session.Limits.Of(1).Show = true;
  Host host = vna.host.host();
  ShowLimitsAsSwitched(session, host);
  vna.host.Show("Batch");
}

// The heights of the letters that pdftotext finds on the pages, least first, in points of paper.
std::vector<double> LetterHeights(const std::string& path) {
  QProcess text;
  text.start("pdftotext", {"-bbox", QString::fromStdString(path), "-"});
  if (!text.waitForFinished()) return {};
  const QString found = QString::fromUtf8(text.readAllStandardOutput());
  std::vector<double> heights;
  static const QRegularExpression word(
      "xMin=\"([0-9.]+)\" yMin=\"([0-9.]+)\" xMax=\"([0-9.]+)\" yMax=\"([0-9.]+)\"");
  for (const auto& match : word.globalMatch(found))
    heights.push_back(match.captured(4).toDouble() - match.captured(2).toDouble());
  std::ranges::sort(heights);
  return heights;
}

// Whatever the size of the picture area, and with nothing of the window's look switched on.
TEST_F(ReportPdf, GraphsHaveLettersOfSevenPointsOnPaper) {
  for (const Extent size : {Extent{400, 300}, Extent{1900, 900}, Extent{900, 1400}}) {
    UiFixture vna;
    MakeBatchReady(vna);
    vna.picture.Resize(size);
    Session& session = vna.program.session();
    session.Display.DisplaySet = DisplaySet::All;
    session.Display.MarkersOn = true;
    for (int m = 0; m < kMarkers; ++m) session.Markers.Set(m).Shown = true;
    vna.program.graphs().RedrawAll(false);
    session.Channel(1).GraphType = GraphType::Smith;  // with the longest read-outs
    vna.program.graphs().RedrawAll(false);
    session.Display.SweepCounted = true;
    ReportDocument graphs = MakeReport(vna.program.controller(), {}, {});
    std::erase_if(graphs.Blocks, [](const ReportBlock& block) {
      return !std::holds_alternative<ReportPicture>(block);
    });
    ASSERT_EQ(graphs.Blocks.size(), 1u);
    ASSERT_TRUE(WriteReportPdf(graphs, path).Ok());
    const std::vector<double> heights = LetterHeights(path);
    if (heights.empty()) GTEST_SKIP() << "pdftotext is not there";
    EXPECT_GT(heights.size(), 40u) << "titles, read-outs and the numbers at the axes";
    // The box of a word is its font's height, a sixth more than its size.
    EXPECT_GE(heights.front(), 7 * 7 / 6.0) << size.width;
  }
}

// What a barcode reader types goes to the serial, whatever was pressed before.
TEST(BatchKeys, TheKeyboardStaysWithTheSerial) {
  UiFixture vna;
  MakeBatchReady(vna);
  auto& serial = vna.Widget<QLineEdit>("Batch", "Serial");
  const auto focus = [&] { return vna.Window("Batch").focusWidget(); };
  vna.Widget("Batch", "Start").setFocus();
  vna.Click("Batch", "Start");
  ASSERT_TRUE(vna.program.batch().Running());
  EXPECT_EQ(focus(), &serial);
  TypeOver(serial, "A1");
  Key(serial, Qt::Key_Return);
  EXPECT_EQ(vna.program.batch().Yield().Devices, 1);
  EXPECT_EQ(focus(), &serial);
  EXPECT_EQ(serial.text(), "");
  for (const char* button : {"Again", "Measure"}) {
    if (button == std::string("Measure")) TypeOver(serial, "A2");
    vna.Widget("Batch", button).setFocus();
    vna.Click("Batch", button);
    EXPECT_EQ(focus(), &serial) << button;
  }
  EXPECT_EQ(vna.program.batch().Yield().Devices, 2);
  EXPECT_TRUE(std::filesystem::exists(vna.folder + "/Batch/A1-2.pdf"));
}

// Some of its characters come in mid-sweep, some wait while the report is written, some come
// behind.
TEST(BatchKeys, AScanThatBeginsBeforeTheMeasurementEndsLosesNoCharacter) {
  UiFixture vna;
  MakeBatchReady(vna);
  auto& serial = vna.Widget<QLineEdit>("Batch", "Serial");
  vna.Click("Batch", "Start");
  const auto typed = [&](char c) {
    const int key = c == '\r' ? static_cast<int>(Qt::Key_Return) : c;
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease})
      QCoreApplication::postEvent(&serial,
                                  new QKeyEvent(type, key, Qt::NoModifier, QString(QChar(c))));
  };
  for (const bool whole : {false, true}) {
    const std::string first = whole ? "C1" : "A1", second = whole ? "D23" : "B23";
    const int before = vna.program.batch().Yield().Devices;
    int sweeps = 0;
    vna.program.controller().OnSweepEnded = [&](bool) {
      if (++sweeps == 1) typed(second[0]);
      if (sweeps == 2) {
        typed(second[1]);
        if (whole) {
          typed(second[2]);
          typed('\r');
        }
      }
      return true;
    };
    TypeOver(serial, QString::fromStdString(first));
    Key(serial, Qt::Key_Return);
    vna.program.controller().OnSweepEnded = {};
    EXPECT_EQ(sweeps, 2);
    EXPECT_EQ(vna.program.batch().Yield().Devices, before + 1);
    EXPECT_TRUE(std::filesystem::exists(vna.folder + "/Batch/" + first + ".pdf"));
    EXPECT_EQ(vna.Window("Batch").focusWidget(), &serial);
    if (whole) {
      EXPECT_EQ(serial.selectedText(), "D23") << "entered too early: it waits, another takes over";
      Key(serial, Qt::Key_Return);  // the second one of a reader
      EXPECT_EQ(vna.program.batch().Yield().Devices, before + 1);
      EXPECT_EQ(serial.text(), "D23");
      RunUntil([] { return false; }, 800);
    } else {
      EXPECT_EQ(serial.text(), "B2");
      EXPECT_FALSE(serial.hasSelectedText());
      typed('3');
      QCoreApplication::processEvents();
    }
    Key(serial, Qt::Key_Return);
    EXPECT_EQ(vna.program.batch().Yield().Devices, before + 2);
    EXPECT_TRUE(std::filesystem::exists(vna.folder + "/Batch/" + second + ".pdf"));
    EXPECT_EQ(serial.text(), "");
  }
}

}  // namespace
}  // namespace qk::test
