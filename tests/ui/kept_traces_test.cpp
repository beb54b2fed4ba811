// SPDX-License-Identifier: MIT
// A marker that is moved over traces that are kept: the picture is that of a whole redraw.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include <QImage>
#include <QPainter>

#include "display/graphs.h"
#include "ui/qt_canvas.h"

namespace qk::test {
namespace {

// The same session in two pictures: one redraws its markers, the other everything.
struct TwoPictures {
  TwoPictures() {
    session->Plan.NumPoints = 101;
    session->Cal.Cal12Term = true;
    session->Display.DisplaySet = DisplaySet::All;
    session->Display.MarkersOn = true;
    for (int m = 0; m < kMarkers; ++m) session->Markers.Set(m) = {true, m == 1, m == 0, 40};
    for (Graphs* graphs : {&quick, &whole}) {
      graphs->View = {.AxisNumbers = true, .Remarks = true};
      graphs->RedrawAll(false);
    }
  }
  void Plot(int point) {
    for (int n = 1; n <= 4; ++n)
      for (Graphs* graphs : {&quick, &whole})
        graphs->PlotPoint(n, point, 30 * std::sin(point / 9.0 + n + sweep), 0);
  }
  // Both are drawn; true if they are equal, and if a screen on which only what has changed was
  // painted shows the same.
  bool Same() {
    quick.RedrawMarkers();
    whole.RedrawOverlay();
    const QImage& image = quickPicture.Image();
    for (const QRect& part : quickPicture.TakeChanged()) {
      QPainter painter(&screen);
      painter.drawImage(part.topLeft(), image, part);
    }
    return image == wholePicture.Image() && screen == image;
  }
  std::unique_ptr<Session> session = MakeSession();
  QtPicture quickPicture{{700, 460}}, wholePicture{{700, 460}};
  Graphs quick{*session, quickPicture}, whole{*session, wholePicture};
  QImage screen{700, 460, QImage::Format_RGB32};
  double sweep = 0;
};

TEST(KeptTraces, AMovedMarkerGivesThePictureOfAWholeRedraw) {
  TwoPictures pictures;
  for (int i = 1; i <= 101; ++i) pictures.Plot(i);
  std::mt19937 random(5);
  const auto dice = [&random](int most) {
    return std::uniform_int_distribution<int>(1, most)(random);
  };
  for (int step = 0; step < 400; ++step) {
    MoveMarker(*pictures.session, dice(kMarkers) - 1, dice(101));
    ASSERT_TRUE(pictures.Same()) << step;
    switch (dice(12)) {
      case 1:
        pictures.sweep += 1;
        pictures.Plot(dice(101));
        break;
      case 2:
        pictures.session->Channel(dice(4)).Scale = dice(20);
        for (Graphs* graphs : {&pictures.quick, &pictures.whole}) graphs->RedrawAll(true);
        break;
      case 3:
        pictures.quick.RedrawOverlay();
        break;
      case 4:
        pictures.quick.LiveChanged();  // a frame that is still to come
        break;
      default:
        break;
    }
  }
}

}  // namespace
}  // namespace qk::test
