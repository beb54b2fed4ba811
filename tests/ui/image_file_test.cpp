// SPDX-License-Identifier: MIT
#include "ui/image_file.h"

#include <gtest/gtest.h>

#include <cctype>
#include <clocale>
#include <cmath>
#include <random>
#include <set>

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>

#include "display/graphs.h"
#include "support/full_disk.h"
#include "support/own_locale.h"
#include "support/scratch_folder.h"
#include "ui/qt_canvas.h"

namespace qk {
namespace {

// A picture as users have it: four graphs, traces, markers and limits.
QImage UsersPicture() {
  const auto session = MakeSession();
  QtPicture picture({1000, 700});
  Graphs graphs(*session, picture);
  session->Display.DisplaySet = DisplaySet::All;
  session->Display.MarkersOn = true;
  session->Channel(4).Parameter = Parameter::S22;
  session->Channel(4).GraphType = GraphType::Smith;
  session->Markers.Set(0) = {true, false, true, 40};
  session->Markers.Set(1) = {true, true, false, 60};
  graphs.RedrawAll(true);
  for (int n = 1; n <= 4; ++n)
    for (int i = 1; i <= session->Plan.NumPoints; ++i) {
      const double turn = i / 9.0 + n;
      if (n == 4)
        graphs.PlotPoint(n, i, 0.8 * std::cos(turn), 0.8 * std::sin(turn));
      else
        graphs.PlotPoint(n, i, 25 * std::sin(turn), 0);
    }
  graphs.RedrawAll(false);
  return picture.Image();
}

// More than 256 colours.
QImage ManyColours() {
  QImage image(64, 64, QImage::Format_RGB32);
  std::mt19937 random(5);
  for (int y = 0; y < 64; ++y)
    for (int x = 0; x < 64; ++x)
      image.setPixel(x, y, qRgb(static_cast<int>(random() % 256), 4 * x, 4 * y));
  return image;
}

int Distance(QRgb a, QRgb b) {
  return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                   std::abs(qBlue(a) - qBlue(b))});
}

struct Differences {
  int Largest = 0;
  double Mean = 0;
};

Differences Compare(const QImage& a, const QImage& b) {
  Differences d;
  if (a.size() != b.size()) return {255, 255};
  double sum = 0;
  for (int y = 0; y < a.height(); ++y)
    for (int x = 0; x < a.width(); ++x) {
      const int distance = Distance(a.pixel(x, y), b.pixel(x, y));
      d.Largest = std::max(d.Largest, distance);
      sum += distance;
    }
  d.Mean = sum / (a.width() * a.height());
  return d;
}

class ImageFiles : public testing::Test {
 protected:
  std::string Write(const QImage& image, const std::string& name) {
    const Result<Done> written = WriteImageFile(image, folder.File(name));
    return written ? std::string() : written.Why().Message;
  }
  QImage Back(const std::string& name) {
    // By what the file holds, whatever its name says.
    QFile file(QString::fromStdString(folder.File(name)));
    if (!file.open(QIODevice::ReadOnly)) return {};
    return QImage::fromData(file.readAll());
  }
  std::string FormatOf(const std::string& name) {
    QFile file(QString::fromStdString(folder.File(name)));
    if (!file.open(QIODevice::ReadOnly)) return {};
    QByteArray bytes = file.readAll();
    QBuffer nameless(&bytes);
    nameless.open(QIODevice::ReadOnly);
    return QImageReader::imageFormat(&nameless).toStdString();
  }
  test::ScratchFolder folder;
};

TEST_F(ImageFiles, HoldTheFormatThatTheirExtensionNamesInAnyCase) {
  const std::pair<const char*, const char*> files[] = {
      {"a.bmp", "bmp"},   {"a.dib", "bmp"},       {"a.rle", "bmp"},   {"a.png", "png"},
      {"A.PNG", "png"},   {"a.gif", "gif"},       {"a.Gif", "gif"},   {"a.tif", "tiff"},
      {"b.tiff", "tiff"}, {"a.jpg", "jpeg"},      {"a.jpeg", "jpeg"}, {"a.jpe", "jpeg"},
      {"a.JFIF", "jpeg"}, {"two.dots.png", "png"}};
  const QImage picture = UsersPicture();
  for (const auto& [name, format] : files) {
    EXPECT_EQ(Write(picture, name), "") << name;
    EXPECT_EQ(FormatOf(name), format) << name;
    EXPECT_EQ(Back(name).size(), picture.size()) << name;
  }
}

TEST_F(ImageFiles, BmpPngAndTiffHoldThePicturePixelByPixel) {
  for (const QImage& picture : {UsersPicture(), ManyColours()})
    for (const char* name : {"a.bmp", "a.png", "a.tif"}) {
      ASSERT_EQ(Write(picture, name), "");
      EXPECT_EQ(Compare(Back(name), picture).Largest, 0) << name;
    }
}

TEST_F(ImageFiles, AGifHoldsAPictureOfTheProgramPixelByPixel) {
  QImage plain = UsersPicture().convertToFormat(QImage::Format_RGB32);
  std::set<QRgb> colours;
  for (int y = 0; y < plain.height(); ++y)
    for (int x = 0; x < plain.width(); ++x) colours.insert(plain.pixel(x, y));
  ASSERT_EQ(Write(plain, "a.gif"), "");
  const Differences d = Compare(Back("a.gif"), plain);
  if (colours.size() <= 256) {
    EXPECT_EQ(d.Largest, 0);
  } else {
    EXPECT_LE(d.Largest, 24);
    EXPECT_LE(d.Mean, 0.05);
  }
}

TEST_F(ImageFiles, AGifOfAThousandColoursTakesTheNearestOf256) {
  const QImage picture = ManyColours();
  ASSERT_EQ(Write(picture, "a.gif"), "");
  const Differences d = Compare(Back("a.gif"), picture);
  EXPECT_GT(d.Largest, 0);
  EXPECT_LE(d.Mean, 40);
}

TEST_F(ImageFiles, AGifOfOneColourAndOfOnePixelCanBeRead) {
  QImage one(1, 1, QImage::Format_RGB32);
  one.fill(qRgb(10, 20, 30));
  ASSERT_EQ(Write(one, "one.gif"), "");
  EXPECT_EQ(Compare(Back("one.gif"), one).Largest, 0);
}

TEST_F(ImageFiles, AJpegIsNearThePictureAtQuality85) {
  const QImage picture = UsersPicture();
  ASSERT_EQ(Write(picture, "a.jpg"), "");
  const Differences d = Compare(Back("a.jpg"), picture);
  EXPECT_LE(d.Mean, 3);
  EXPECT_GT(d.Mean, 0);
  QBuffer better;
  ASSERT_TRUE(picture.save(&better, "jpeg", 85));
  EXPECT_EQ(QFileInfo(QString::fromStdString(folder.File("a.jpg"))).size(), better.size());
}

TEST_F(ImageFiles, AnExtensionThatNamesNoFormatIsRefusedWithItsCause) {
  for (const char* name : {"trace.xyz", "trace", "trace.", "png", ".d/trace"}) {
    EXPECT_EQ(Write(QImage(4, 4, QImage::Format_RGB32), name), "Unknown Image Format") << name;
    EXPECT_FALSE(QFile::exists(QString::fromStdString(folder.File(name)))) << name;
  }
}

TEST_F(ImageFiles, WhatCannotBeWrittenIsRefusedWithItsCauseAndPlace) {
  const Result<Done> written =
      WriteImageFile(QImage(4, 4, QImage::Format_RGB32), "/no/such/folder/trace.png");
  ASSERT_FALSE(written);
  EXPECT_EQ(written.Why().Message, "cannot be written: No such file or directory");
  EXPECT_EQ(written.Why().Place, "/no/such/folder/trace.png");
  EXPECT_EQ(Write(QImage(), "none.png"), "Generic Error");
  EXPECT_EQ(Write(QImage(), "none.gif"), "Generic Error");
}

TEST_F(ImageFiles, OnAFullDiskTheOldPictureStaysAndTheCauseIsReported) {
  const QImage former(4, 4, QImage::Format_RGB32), picture(400, 400, QImage::Format_RGB32);
  for (const char* name : {"a.bmp", "a.png", "a.gif", "a.tif", "a.jpg"}) {
    ASSERT_EQ(Write(former, name), "") << name;
    const auto old = QFileInfo(QString::fromStdString(folder.File(name))).size();
    {
      const test::FullDisk disk(100);
      EXPECT_EQ(Write(picture, name), "cannot be written: File too large") << name;
    }
    EXPECT_EQ(QFileInfo(QString::fromStdString(folder.File(name))).size(), old) << name;
  }
  EXPECT_EQ(QDir(QString::fromStdString(folder.Text())).count(), 5u + 2u) << "nothing beside";
}

// As in Turkish, where I is not the capital of i.
TEST(ImageFile, AnEndingIsComparedWithoutTheLocale) {
  const test::OwnLocale locale(
      "LC_CTYPE\nupper <U0041>..<U005A>\nlower <U0061>..<U007A>\n"
      "tolower (<U0047>,<U0067>);(<U0046>,<U0066>)\nEND LC_CTYPE\n");
  ASSERT_TRUE(locale.Made());
  if (std::setlocale(LC_CTYPE, "") == nullptr) GTEST_SKIP() << "the locale was not taken";
  ASSERT_NE(std::tolower('I'), 'i');
  const test::ScratchFolder folder;
  for (const char* ending : {"GIF", "gif", "TIFF", "Dib"})
    EXPECT_TRUE(WriteImageFile(ManyColours(), folder.File(std::string("a.") + ending)).Ok());
}

}  // namespace
}  // namespace qk
