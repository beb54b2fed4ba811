// SPDX-License-Identifier: MIT
// Lines, areas, arcs and texts on the canvas of the toolkit.
#include "ui/qt_canvas.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "counted_pixels.h"
#include "ui/trace_stroke.h"
#include "ui_fixture.h"

namespace qk::test {
namespace {

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

}  // namespace
}  // namespace qk::test
