// SPDX-License-Identifier: MIT
// The two layers of the picture, and the widget that shows it.
#include <gtest/gtest.h>

#include <array>

#include <QMouseEvent>
#include <QTest>

#include "counted_pixels.h"
#include "ui/picture_view.h"
#include "ui/qt_canvas.h"
#include "ui_fixture.h"

namespace qk::test {
namespace {

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

}  // namespace
}  // namespace qk::test
