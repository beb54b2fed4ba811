// SPDX-License-Identifier: MIT
#include "ui/qt_canvas.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include <QMouseEvent>
#include <QTemporaryDir>
#include <QTest>

#include "ui/picture_view.h"
#include "ui/trace_stroke.h"
#include "ui_fixture.h"

namespace qk::test {
namespace {

constexpr std::uint32_t kRed = 0xFF0000;
const QColor kRedColour(255, 0, 0);

int Count(const QImage& image, const QColor& colour) {
  int count = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (image.pixelColor(x, y) == colour) ++count;
  return count;
}

TEST(QtCanvas, ALineCoversItsPixelsInItsColour) {
  QtPicture picture({40, 20});
  picture.Picture().SetPen(kRed, PenStyle::Solid, 1);
  picture.Picture().DrawLine({5, 10}, {20, 10});
  EXPECT_EQ(Count(picture.Image(), kRedColour), 16);
  EXPECT_EQ(picture.Image().pixelColor(5, 10), kRedColour);
  EXPECT_EQ(picture.Image().pixelColor(20, 10), kRedColour);
  EXPECT_EQ(picture.Image().pixelColor(21, 10), QColor(Qt::white));
}

TEST(QtCanvas, ADottedLineHasGaps) {
  QtPicture picture({120, 20});
  picture.Picture().SetPen(kRed, PenStyle::Dotted, 1);
  picture.Picture().DrawLine({0, 10}, {119, 10});
  EXPECT_GT(Count(picture.Image(), kRedColour), 20);
  EXPECT_LT(Count(picture.Image(), kRedColour), 80);
}

// Most lines of a trace are shorter than a dash.
TEST(QtCanvas, ADashedTraceOfManyPointsHasItsGapsAndEachStyleItsOwn) {
  std::vector<int> counts;
  for (const PenStyle style : {PenStyle::Dashed, PenStyle::Dotted, PenStyle::DashDot}) {
    QtPicture picture({240, 20});
    picture.Picture().SetPen(kRed, style, 1);
    std::vector<CanvasPoint> points;
    for (int x = 0; x < 240; ++x) points.push_back({x, 10});
    picture.Picture().DrawPolyline(points);
    QImage row = picture.Image().copy(0, 10, 240, 1);
    counts.push_back(240 - Count(row, Qt::white));
    // White after red after white: gaps all along.
    int gaps = 0;
    for (int x = 1; x < 240; ++x)
      if (row.pixelColor(x, 0) == QColor(Qt::white) &&
          row.pixelColor(x - 1, 0) != QColor(Qt::white))
        ++gaps;
    EXPECT_GT(gaps, 15) << static_cast<int>(style);
    EXPECT_GT(counts.back(), 60) << static_cast<int>(style);
  }
  EXPECT_GT(counts[0], counts[1]) << "dashes cover more than dots";
}

TEST(QtCanvas, AnAreaLetsShowThroughWhatIsBehindIt) {
  QtPicture picture({40, 20});
  picture.Picture().SetPen(0x0000FF, PenStyle::Solid, 1);
  picture.Picture().DrawLine({0, 10}, {39, 10});
  const CanvasPoint area[] = {{5, 5}, {30, 5}, {30, 15}, {5, 15}};
  picture.Picture().FillPolygon(area, kRed, 0.25);
  EXPECT_EQ(picture.Image().pixelColor(2, 7), QColor(Qt::white));
  const QColor filled = picture.Image().pixelColor(15, 7),
               line = picture.Image().pixelColor(15, 10);
  EXPECT_EQ(filled.red(), 255);
  EXPECT_NEAR(filled.green(), 191, 3);
  EXPECT_NEAR(line.blue(), 191, 3) << "the line behind it";
  EXPECT_NEAR(line.red(), 64, 3);
  // The pen is as it was, and nothing is left of it after a wipe.
  picture.Picture().DrawLine({0, 18}, {39, 18});
  EXPECT_EQ(picture.Image().pixelColor(20, 18), QColor(0, 0, 255));
  picture.Wipe();
  EXPECT_EQ(Count(picture.Image(), Qt::white), 40 * 20);
}

// Columns of a band: whole pixels inside, part of one at slanted edges, nothing beyond the image.
TEST(QtCanvas, AnAreaIsSmoothedAtItsEdgesAndEndsAtTheImage) {
  QImage image(20, 20, QImage::Format_RGB32);
  image.fill(Qt::white);
  const QPointF band[] = {{2, 4.25}, {18, 4.25}, {18, 10.5}, {2, 10.5}};
  FillArea(image, band, qRgb(0, 0, 0), 0.5);
  const auto grey = [&image](int x, int y) { return image.pixelColor(x, y).red(); };
  EXPECT_EQ(grey(1, 7), 255);
  EXPECT_NEAR(grey(2, 7), 128, 2);
  EXPECT_NEAR(grey(17, 9), 128, 2);
  EXPECT_EQ(grey(18, 7), 255);
  EXPECT_NEAR(grey(9, 4), 255 - 0.75 * 127, 3);
  EXPECT_NEAR(grey(9, 10), 255 - 0.5 * 127, 3);
  EXPECT_EQ(grey(9, 3), 255);
  EXPECT_EQ(grey(9, 11), 255);
  image.fill(Qt::white);
  const QPointF inOnePixel[] = {{0, 6.25}, {20, 6.25}, {20, 6.75}, {0, 6.75}};
  FillArea(image, inOnePixel, qRgb(0, 0, 0), 1);
  EXPECT_NEAR(grey(5, 6), 128, 2);
  // Twice about the same place is once; what lies outside is left out.
  image.fill(Qt::white);
  const QPointF beyond[] = {{-50, -50}, {70, -50}, {70, 70}, {-50, 70},
                            {-50, -50}, {70, -50}, {70, 70}, {-50, 70}};
  FillArea(image, beyond, qRgb(0, 0, 0), 0.5);
  for (const int at : {0, 10, 19}) EXPECT_NEAR(grey(at, 19 - at), 128, 2) << at;
  // A slope: half of the image, a triangle.
  image.fill(Qt::white);
  const QPointF triangle[] = {{0, 0}, {20, 20}, {0, 20}};
  FillArea(image, triangle, qRgb(0, 0, 0), 1);
  for (int x = 0; x < 20; ++x) {
    EXPECT_NEAR(grey(x, x), 128, 2) << x;
    EXPECT_EQ(grey(x, std::max(0, x - 1)), x == 0 ? grey(0, 0) : 255) << x;
    EXPECT_EQ(grey(x, std::min(19, x + 1)), x == 19 ? grey(19, 19) : 0) << x;
  }
}

TEST(QtCanvas, ALevelTraceIsOneSharpLine) {
  QtPicture picture({40, 20});
  picture.Picture().SetPen(kRed, PenStyle::Solid, 1);
  const CanvasPoint points[] = {{5, 10}, {15, 10}, {30, 10}};
  picture.Picture().DrawPolyline(points);
  EXPECT_GE(Count(picture.Image(), kRedColour), 24);
  EXPECT_EQ(picture.Image().pixelColor(15, 9), QColor(Qt::white));
  EXPECT_EQ(picture.Image().pixelColor(15, 11), QColor(Qt::white));
}

// A dot of the pen's colour, whatever draws: pixels, a painter's pixels, the points all at one
// place.
TEST(QtCanvas, PointsAtOnePlaceAreADotThatCanBeSeen) {
  const std::vector<CanvasPoint> points(101, CanvasPoint{20, 10});
  for (const double ratio : {1.0, 1.25, 2.0, 3.0}) {
    QtPicture picture({40, 20});
    picture.Resize({40, 20}, ratio);
    picture.Picture().SetPen(kRed, PenStyle::Solid, 1);
    picture.Picture().DrawPolyline(points);
    EXPECT_EQ(Count(picture.Image(), kRedColour), std::pow(3 * qRound(ratio), 2)) << ratio;
    EXPECT_EQ(picture.Image().pixelColor(qFloor(20.5 * ratio), qFloor(10.5 * ratio)), kRedColour);
  }
  QImage paper(40, 20, QImage::Format_RGB32);
  paper.fill(Qt::white);
  {
    QPainter painter(&paper);
    QtCanvas canvas(painter, {40, 20});
    canvas.SetPen(kRed, PenStyle::Solid, 1);
    canvas.DrawPolyline(points);
  }
  EXPECT_EQ(Count(paper, kRedColour), 9);
}

TEST(QtCanvas, PointsAtNeighbouringPlacesAreDotsToo) {
  for (const double ratio : {1.0, 2.0}) {
    QtPicture picture({40, 20});
    picture.Resize({40, 20}, ratio);
    picture.Picture().SetPen(kRed, PenStyle::Solid, 1);
    picture.Picture().DrawPolyline(
        std::array<CanvasPoint, 4>{{{20, 10}, {21, 10}, {20, 10}, {20, 11}}});
    const double dot = 3 * ratio, moved = ratio;
    EXPECT_EQ(Count(picture.Image(), kRedColour), dot * dot + 2 * dot * moved) << ratio;
    QtPicture other({40, 20});
    other.Resize({40, 20}, ratio);
    other.Picture().SetPen(kRed, PenStyle::Solid, 1);
    other.Picture().DrawPolyline(std::array<CanvasPoint, 3>{{{20, 10}, {21, 10}, {22, 10}}});
    EXPECT_EQ(Count(other.Image(), kRedColour), 3 * ratio * ratio) << "a line";
  }
}

// Level and upright parts of a trace have the pen's colour and no other, and the pen's width.
TEST(QtCanvas, ATraceOfStepsHasExactlyTheChosenColour) {
  const QColor blue(0, 0, 128);
  for (const double ratio : {1.0, 1.25, 1.5, 1.75, 2.0, 2.5, 3.0}) {
    QtPicture picture({100, 60});
    picture.Resize({100, 60}, ratio);
    picture.Picture().SetPen(0x000080, PenStyle::Solid, 1);
    picture.Picture().DrawPolyline(
        std::array<CanvasPoint, 6>{{{10, 50}, {30, 50}, {30, 20}, {60, 20}, {60, 40}, {90, 40}}});
    const QImage& image = picture.Image();
    const int drawn = Count(image, blue);
    EXPECT_EQ(drawn + Count(image, QColor(Qt::white)), image.width() * image.height()) << ratio;
    const double width = std::max(1, qRound(ratio));
    EXPECT_NEAR(drawn, width * ratio * (20 + 30 + 30 + 20 + 30), 8 * ratio * width) << ratio;
  }
}

// Every corner of a trace is covered: from each point of the trace, pixels of its colour lead to
// the next one, and the point itself is of the full colour.
TEST(QtCanvas, TheJointsOfATraceHaveNoGaps) {
  for (const double ratio : {1.0, 1.25, 2.0, 3.0}) {
    for (int step = 1; step < 40; step += 3) {
      QtPicture picture({400, 300});
      picture.Resize({400, 300}, ratio);
      picture.Picture().SetPen(0, PenStyle::Solid, 1);
      std::vector<CanvasPoint> points;
      for (int i = 0; i < 8; ++i)
        points.push_back({20 + i * step, i % 2 == 0 ? 20 : 20 + (i * 37) % 240});
      picture.Picture().DrawPolyline(points);
      for (const CanvasPoint p : points) {
        const QColor there =
            picture.Image().pixelColor(qFloor((p.x + 0.5) * ratio), qFloor((p.y + 0.5) * ratio));
        EXPECT_LT(there.lightness(), 64) << ratio << " " << p.x << " " << p.y;
      }
      // The picture of the trace is of one piece.
      const QImage mask = picture.Image().convertToFormat(QImage::Format_Grayscale8);
      std::vector<QPoint> open{
          {qFloor((points[0].x + 0.5) * ratio), qFloor((points[0].y + 0.5) * ratio)}};
      std::vector<bool> seen(static_cast<std::size_t>(mask.width() * mask.height()));
      int reached = 0, dark = 0;
      const auto isDark = [&mask](int x, int y) {
        return mask.valid(x, y) && mask.constScanLine(y)[x] < 160;
      };
      for (int y = 0; y < mask.height(); ++y)
        for (int x = 0; x < mask.width(); ++x) dark += isDark(x, y);
      while (!open.empty()) {
        const QPoint at = open.back();
        open.pop_back();
        const auto index = static_cast<std::size_t>(at.y() * mask.width() + at.x());
        if (!isDark(at.x(), at.y()) || seen[index]) continue;
        seen[index] = true;
        ++reached;
        for (const QPoint next : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1),
                                  QPoint(1, 1), QPoint(-1, -1), QPoint(1, -1), QPoint(-1, 1)})
          if (mask.valid(at + next)) open.push_back(at + next);
      }
      EXPECT_EQ(reached, dark) << ratio << " " << step;
    }
  }
}

// A slope is smoothed, and as dark as it is long: the sum of what it covers is its length times its
// width.
TEST(QtCanvas, ASlopeCoversItsLengthTimesItsWidth) {
  for (const double ratio : {1.0, 2.0, 3.0}) {
    for (const CanvasPoint end :
         {CanvasPoint{370, 30}, {370, 120}, {370, 290}, {120, 290}, {30, 290}}) {
      QtPicture picture({400, 300});
      picture.Resize({400, 300}, ratio);
      picture.Picture().SetPen(0, PenStyle::Solid, 1);
      picture.Picture().DrawPolyline(std::array<CanvasPoint, 2>{{{10, 10}, end}});
      const QImage mask = picture.Image().convertToFormat(QImage::Format_Grayscale8);
      double covered = 0;
      for (int y = 0; y < mask.height(); ++y)
        for (int x = 0; x < mask.width(); ++x) covered += (255 - mask.constScanLine(y)[x]) / 255.0;
      const double length = std::hypot(end.x - 10, end.y - 10) * ratio;
      EXPECT_NEAR(covered / (length * ratio), 1, 0.03) << ratio << " " << end.x << " " << end.y;
    }
  }
}

// So long a trace is drawn without smoothing, and nothing of it lies outside the picture.
TEST(QtCanvas, ATraceLongerThanIsSmoothedStaysInThePictureAndInItsColour) {
  QtPicture picture({300, 3000});
  picture.Picture().SetPen(kRed, PenStyle::Solid, 1);
  std::vector<CanvasPoint> points;
  for (int i = 0; i < 1024; ++i) points.push_back({i / 3 - 20, i % 2 == 0 ? -50 : 3050});
  picture.Picture().DrawPolyline(points);
  const QImage& image = picture.Image();
  EXPECT_EQ(Count(image, kRedColour) + Count(image, QColor(Qt::white)), 300 * 3000);
  EXPECT_GT(Count(image, kRedColour), 250 * 3000);
}

TEST(QtCanvas, ATraceWithoutPointsDrawsNothing) {
  QtPicture picture({40, 20});
  picture.Picture().SetPen(kRed, PenStyle::Solid, 1);
  picture.Picture().DrawPolyline({});
  EXPECT_EQ(Count(picture.Image(), QColor(Qt::white)), 800);
}

TEST(QtCanvas, ARectangleIsItsOutlineOnly) {
  QtPicture picture({40, 20});
  picture.Picture().SetPen(kRed, PenStyle::Solid, 1);
  picture.Picture().DrawRectangle({5, 5}, {25, 15});
  EXPECT_EQ(picture.Image().pixelColor(5, 5), kRedColour);
  EXPECT_EQ(picture.Image().pixelColor(25, 15), kRedColour);
  EXPECT_EQ(Count(picture.Image(), kRedColour), 2 * 21 + 2 * 9);
}

TEST(QtCanvas, AFilledRectangleIncludesItsEdges) {
  QtPicture picture({40, 20});
  picture.Picture().FillRectangle({5, 5}, {8, 6}, kRed);
  EXPECT_EQ(Count(picture.Image(), kRedColour), 4 * 2);
}

TEST(QtCanvas, AnArcOfNinetyDegreesStaysInItsQuarter) {
  QtPicture picture({41, 41});
  picture.Picture().SetPen(0, PenStyle::Solid, 1);
  picture.Picture().DrawArc({0, 0}, {40, 40}, 0, 90);  // from the right, anticlockwise: upper right
  int upperRight = 0, elsewhere = 0;
  for (int y = 0; y < 41; ++y)
    for (int x = 0; x < 41; ++x)
      if (picture.Image().pixelColor(x, y).lightness() < 128)
        ++(x >= 19 && y <= 21 ? upperRight : elsewhere);
  EXPECT_GT(upperRight, 20);
  EXPECT_EQ(elsewhere, 0);
}

TEST(QtCanvas, AnEllipseTouchesItsBox) {
  QtPicture picture({41, 21});
  picture.Picture().SetPen(0, PenStyle::Solid, 1);
  picture.Picture().DrawEllipse({0, 0}, {40, 20});
  EXPECT_LT(picture.Image().pixelColor(20, 0).lightness(), 200);
  EXPECT_LT(picture.Image().pixelColor(0, 10).lightness(), 200);
  EXPECT_EQ(picture.Image().pixelColor(20, 10), QColor(Qt::white));
}

TEST(QtCanvas, TextStandsBelowItsTopLeftCornerInsideItsExtent) {
  QtPicture picture({200, 60});
  Canvas& canvas = picture.Picture();
  canvas.SetFontSize(12);
  const Extent extent = canvas.TextExtent("S11 LogMag");
  canvas.DrawText({30, 20}, "S11 LogMag", 0);
  int inside = 0, outside = 0;
  for (int y = 0; y < 60; ++y)
    for (int x = 0; x < 200; ++x)
      if (picture.Image().pixelColor(x, y).lightness() < 128)
        ++(x >= 30 && x < 30 + extent.width && y >= 20 && y < 20 + extent.height ? inside
                                                                                 : outside);
  EXPECT_GT(inside, 50);
  EXPECT_EQ(outside, 0);
}

TEST(QtCanvas, TextGrowsWithTheFontSize) {
  QtPicture picture({200, 60});
  picture.Picture().SetFontSize(8);
  const Extent small = picture.Picture().TextExtent("10.0 dB/DIV");
  picture.Picture().SetFontSize(16);
  const Extent large = picture.Picture().TextExtent("10.0 dB/DIV");
  EXPECT_NEAR(large.width, 2 * small.width, small.width / 4);
  picture.Picture().SetFontSize(0);  // a tiny screen: still a font
  EXPECT_GT(picture.Picture().TextExtent("x").height, 0);
}

TEST(QtCanvas, ATextLeavesThePenAlone) {
  QtPicture picture({200, 60});
  picture.Picture().SetPen(kRed, PenStyle::Solid, 1);
  picture.Picture().DrawText({100, 20}, "x", 0x0000FF);
  picture.Picture().DrawLine({5, 10}, {20, 10});
  EXPECT_EQ(picture.Image().pixelColor(6, 10), kRedColour);
}

// ---- the two layers
// ------------------------------------------------------------------------------

TEST(QtPicture, WipingBringsTheCommittedPictureBack) {
  QtPicture picture({40, 20});
  Canvas& canvas = picture.Picture();
  canvas.FillRectangle({0, 0}, {9, 9}, kRed);
  picture.Commit();
  canvas.FillRectangle({0, 0}, {39, 19}, 0x00FF00);
  EXPECT_EQ(Count(picture.Image(), kRedColour), 0);
  picture.Wipe();
  EXPECT_EQ(Count(picture.Image(), kRedColour), 100);
  EXPECT_EQ(Count(picture.Image(), QColor(0, 255, 0)), 0);
}

TEST(QtPicture, AnotherSizeIsOfBothLayers) {
  QtPicture picture({40, 20});
  picture.Resize({100, 50});
  EXPECT_EQ(picture.Size().width, 100);
  EXPECT_EQ(picture.Picture().Size().height, 50);
  picture.Wipe();
  EXPECT_EQ(picture.Image().size(), QSize(100, 50));
  picture.Resize({100, 50}, 2);
  EXPECT_EQ(picture.Picture().Size().width, 100);
  EXPECT_EQ(picture.Image().size(), QSize(200, 100));
}

TEST(QtPicture, WhatIsDrawnOverManyPlacesGoesWithTheWipe) {
  QtPicture picture({500, 300});
  Canvas& canvas = picture.Picture();
  picture.Commit();
  canvas.SetPen(kRed, PenStyle::Solid, 3);
  for (int i = 0; i < 40; ++i) {
    canvas.DrawText({i * 12, i * 7}, "Marker", kRed);
    canvas.DrawLine({i * 12, 299}, {499 - i, i});
    canvas.DrawEllipse({i, i}, {i * 12, i * 7});
    canvas.DrawArc({i, i}, {i * 12, i * 7}, 20, 300);
    canvas.DrawPolyline(std::array<CanvasPoint, 3>{{{0, i * 7}, {250, 299 - i}, {499, i * 7}}});
    canvas.DrawRectangle({i * 3, i}, {499 - i, 299 - i});
  }
  EXPECT_GT(Count(picture.Image(), kRedColour), 1000);
  picture.Wipe();
  EXPECT_EQ(Count(picture.Image(), QColor(Qt::white)), 500 * 300);
}

TEST(QtPicture, TheLiveLayerIsDrawnWhenThePictureIsRead) {
  QtPicture picture({100, 100});
  int drawn = 0, told = 0;
  picture.DrawLive = [&] {
    ++drawn;
    picture.Wipe();
    picture.Picture().FillRectangle({10, 10}, {19, 19}, kRed);
    picture.Present();
  };
  picture.OnPresent = [&] { ++told; };
  for (int i = 0; i < 100; ++i) picture.LiveChanged();
  EXPECT_EQ(drawn, 0);
  EXPECT_EQ(told, 1);
  EXPECT_EQ(Count(picture.Image(), kRedColour), 100);
  EXPECT_EQ(Count(picture.Image(), kRedColour), 100);
  EXPECT_EQ(drawn, 1) << "nothing new, nothing drawn";
  EXPECT_EQ(told, 1) << "reading is no news";
  picture.LiveChanged();
  EXPECT_EQ(told, 2);
}

TEST(QtPicture, CatchingUpDrawsWhatWaitsAndNothingElse) {
  QtPicture picture({100, 100});
  int drawn = 0, told = 0;
  picture.DrawLive = [&] {
    ++drawn;
    picture.Present();
  };
  picture.OnPresent = [&] { ++told; };
  picture.CatchUp();
  EXPECT_EQ(drawn, 0);
  picture.LiveChanged();
  picture.CatchUp();
  picture.CatchUp();
  EXPECT_EQ(drawn, 1);
  EXPECT_EQ(told, 1) << "the screen knows already";
  picture.Image();
  EXPECT_EQ(drawn, 1);
}

TEST(QtPicture, ChangesAreReportedByTheirPlace) {
  QtPicture picture({1000, 800});
  picture.TakeChanged();
  picture.Picture().SetPen(kRed, PenStyle::Solid, 1);
  picture.Picture().DrawPolyline(std::array<CanvasPoint, 2>{{{100, 100}, {140, 110}}});
  picture.Present();
  const QRegion drawn = picture.TakeChanged();
  EXPECT_TRUE(drawn.contains(QRect(100, 100, 40, 10)));
  EXPECT_LT(drawn.boundingRect().width(), 140);
  EXPECT_TRUE(picture.TakeChanged().isEmpty());
  picture.Wipe();
  picture.Present();
  EXPECT_EQ(picture.TakeChanged(), drawn) << "what went is a change as well";
}

// At any ratio of device pixels a frame, a grid line and a level trace have sharp edges: no pixel
// is of a mixed colour, and the width is the pen's, rounded to whole pixels.
TEST(QtPicture, LinesLieOnWholePixelsAtEveryScaleFactor) {
  for (const double ratio : {1.0, 1.25, 1.5, 1.75, 2.0, 3.0}) {
    QtPicture picture({100, 60});
    picture.Resize({100, 60}, ratio);
    Canvas& canvas = picture.Picture();
    canvas.SetPen(kRed, PenStyle::Solid, 1);
    canvas.DrawRectangle({5, 5}, {94, 54});
    canvas.DrawLine({20, 10}, {80, 10});
    canvas.DrawLine({33, 15}, {33, 50});
    canvas.DrawPolyline(std::array<CanvasPoint, 2>{{{40, 23}, {80, 23}}});
    const QImage& image = picture.Image();
    const int width = std::max(1, qRound(ratio));
    // Down through frame, grid line, trace and frame; across through frame, grid line and frame.
    const auto look = [&](bool down, double at) {
      std::vector<int> runs;
      bool before = false;
      const int length = down ? image.height() : image.width();
      for (int i = 0; i < length; ++i) {
        const int fixed = static_cast<int>(at * ratio);
        const QColor colour = down ? image.pixelColor(fixed, i) : image.pixelColor(i, fixed);
        const bool red = colour == kRedColour;
        EXPECT_TRUE(red || colour == QColor(Qt::white)) << ratio << " " << i;
        if (red && !before) runs.push_back(0);
        if (red) ++runs.back();
        before = red;
      }
      return runs;
    };
    EXPECT_EQ(look(true, 60), std::vector<int>(4, width)) << ratio;
    EXPECT_EQ(look(false, 40), std::vector<int>(3, width)) << ratio;
  }
}

TEST(PictureView, ALayerThatChangesAllTheTimeIsDrawnOnceAFrame) {
  FormRegistry registry;
  QtHost host(registry);
  QtPicture picture({600, 400});
  PictureView view(picture, host);
  view.resize(600, 400);
  view.show();
  RunUntil([] { return false; }, 50);
  int drawn = 0;
  picture.DrawLive = [&] {
    ++drawn;
    picture.Present();
  };
  QElapsedTimer clock;
  clock.start();
  while (clock.elapsed() < 320) {
    picture.LiveChanged();
    QCoreApplication::processEvents();
  }
  EXPECT_GE(drawn, 3);
  EXPECT_LE(drawn, 22) << "a screen shows 60 pictures a second";
}

// A frame that takes long leaves others out: three quarters of the time stay for what is measured.
TEST(PictureView, FramesAreLeftOutWhereDrawingTakesLong) {
  FormRegistry registry;
  QtHost host(registry);
  QtPicture picture({600, 400});
  PictureView view(picture, host);
  view.resize(600, 400);
  view.show();
  RunUntil([] { return false; }, 50);
  QElapsedTimer clock;
  qint64 drawing = 0;
  picture.DrawLive = [&] {
    const qint64 begin = clock.elapsed();
    while (clock.elapsed() < begin + 40) {
    }
    drawing += clock.elapsed() - begin;
    picture.Present();
  };
  clock.start();
  while (clock.elapsed() < 1000) {
    picture.LiveChanged();
    QCoreApplication::processEvents();
  }
  EXPECT_GE(drawing, 80) << "it is drawn all the same";
  EXPECT_LE(drawing, clock.elapsed() * 2 / 5);
}

// Counts what comes of timers.
struct CountsTimers : QObject {
  bool eventFilter(QObject*, QEvent* event) override {
    events += event->type() == QEvent::Timer;
    return false;
  }
  int events = 0;
};

TEST(PictureView, ANewSizeIsTakenOnceAndWakesNobodyAfterwards) {
  FormRegistry registry;
  QtHost host(registry);
  QtPicture picture({600, 400});
  PictureView view(picture, host);
  int resized = 0;
  view.OnResized = [&resized] { ++resized; };
  view.resize(600, 400);
  view.show();
  for (int width = 500; width < 520; ++width) view.resize(width, 400);
  ASSERT_TRUE(RunUntil([&] { return resized == 1; }));
  EXPECT_EQ(picture.Size().width, 519);
  QTest::qWait(100);
  CountsTimers timers;
  qApp->installEventFilter(&timers);
  QElapsedTimer clock;
  clock.start();
  while (clock.elapsed() < 200) QCoreApplication::processEvents();
  qApp->removeEventFilter(&timers);
  EXPECT_EQ(timers.events, 0);
  EXPECT_EQ(resized, 1);
}

TEST(PictureView, WhatLiesBeyondThePictureHasItsBackground) {
  FormRegistry registry;
  QtHost host(registry);
  QtPicture picture({100, 100});
  PictureView view(picture, host);
  view.resize(200, 150);
  view.show();
  picture.Picture().FillRectangle({0, 0}, {199, 149}, kRed);
  picture.Present();
  view.resize(300, 250);  // the picture follows a moment later
  const QImage seen = view.grab().toImage();
  ASSERT_EQ(picture.Size().width, 200);
  EXPECT_EQ(seen.pixelColor(100, 100), kRedColour);
  EXPECT_EQ(seen.pixelColor(299, 10), kRedColour) << "at the right";
  EXPECT_EQ(seen.pixelColor(10, 249), kRedColour) << "below";
  EXPECT_EQ(seen.pixelColor(299, 249), kRedColour) << "in the corner";
}

TEST(PictureView, ShowsThePictureAndTakesTheSizeOfItsWindow) {
  FormRegistry registry;
  QtHost host(registry);
  QtPicture picture({100, 100});
  PictureView view(picture, host);
  int resized = 0;
  view.OnResized = [&] {
    ++resized;
    picture.Picture().FillRectangle({0, 0}, {600, 400}, kRed);
    picture.Present();
  };
  view.resize(600, 400);
  view.show();
  EXPECT_TRUE(RunUntil([&] { return resized > 0; }));
  EXPECT_EQ(picture.Size().width, 600);
  EXPECT_EQ(view.grab().toImage().pixelColor(599, 399), kRedColour);
}

TEST(PictureView, ThePictureHasItsSizeBeforeItIsFirstSeen) {
  FormRegistry registry;
  QtHost host(registry);
  QtPicture picture({100, 100});
  PictureView view(picture, host);
  view.resize(600, 400);
  view.show();
  EXPECT_EQ(picture.Size().width, 600);
  EXPECT_EQ(picture.Size().height, 400);
}

TEST(PictureView, AnotherSizeIsTakenWhileTheProgramWaitsForTheInstrument) {
  FormRegistry registry;
  QtHost host(registry);
  QtPicture picture({100, 100});
  PictureView view(picture, host);
  view.show();
  view.resize(700, 500);
  const QDeadlineTimer limit(5000);
  while (picture.Size().width != 700 && !limit.hasExpired()) host.Breathe();
  EXPECT_EQ(picture.Size().width, 700);
}

TEST(PictureView, SeveralPresentationsBecomeOneRepaint) {
  struct Counting : PictureView {
    using PictureView::PictureView;
    int painted = 0;
    void paintEvent(QPaintEvent* event) override {
      ++painted;
      PictureView::paintEvent(event);
    }
  };
  FormRegistry registry;
  QtHost host(registry);
  QtPicture picture({600, 400});
  Counting view(picture, host);
  view.resize(600, 400);
  view.show();
  RunUntil([&] { return view.painted > 0; });
  RunUntil([] { return false; }, 60);
  view.painted = 0;
  for (int i = 0; i < 100; ++i) picture.Present();
  EXPECT_TRUE(RunUntil([&] { return view.painted > 0; }));
  RunUntil([] { return false; }, 60);
  EXPECT_EQ(view.painted, 1);
}

TEST(PictureView, TheMouseIsReportedInPixelsOfThePicture) {
  FormRegistry registry;
  QtHost host(registry);
  QtPicture picture({600, 400});
  PictureView view(picture, host);
  view.resize(600, 400);
  std::vector<std::string> told;
  view.OnMouse = [&](Program::MouseAction action, bool left, int x, int y) {
    told.push_back(std::to_string(static_cast<int>(action)) + (left ? " left " : " right ") +
                   std::to_string(x) + " " + std::to_string(y));
  };
  const auto send = [&view](QEvent::Type type, Qt::MouseButton button, Qt::MouseButtons held,
                            QPointF at) {
    QMouseEvent event(type, at, view.mapToGlobal(at), button, held, Qt::NoModifier);
    QApplication::sendEvent(&view, &event);
  };
  send(QEvent::MouseButtonPress, Qt::LeftButton, Qt::LeftButton, {10, 20});
  send(QEvent::MouseMove, Qt::NoButton, Qt::LeftButton, {11, 21});
  send(QEvent::MouseButtonRelease, Qt::LeftButton, Qt::NoButton, {12, 22});
  send(QEvent::MouseButtonPress, Qt::RightButton, Qt::RightButton, {30, 40});
  send(QEvent::MouseButtonPress, Qt::MiddleButton, Qt::MiddleButton, {30, 40});
  EXPECT_EQ(told, (std::vector<std::string>{"0 left 10 20", "1 left 11 21", "2 left 12 22",
                                            "0 right 30 40"}));
}

// ---- image files
// ---------------------------------------------------------------------------------

}  // namespace
}  // namespace qk::test
