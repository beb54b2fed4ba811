// SPDX-License-Identifier: MIT
// The status panels, the values under the cursor, and the mouse on the graphs of the main window.
#include <QLabel>
#include <QMouseEvent>
#include <QTest>

#include "ui/cursor_read_out.h"
#include "ui/panel_row.h"
#include "ui/picture_view.h"
#include "ui_fixture.h"

namespace qk::test {
namespace {

TEST(MainWindow, StatusPanelsNeverOverlapHoweverNarrow) {
  UiFixture vna;
  vna.StartUp();
  for (const int width : {1200, 860, 640}) {
    vna.desktop.Main().resize(width, 700);
    QCoreApplication::processEvents();
    int right = -1;
    for (int n = 1; n <= 7; ++n) {
      const QRect at =
          vna.Widget<QLabel>("Form1", ("Panel" + std::to_string(n)).c_str()).geometry();
      EXPECT_GT(at.left(), right) << width << ": panel " << n;
      right = at.right();
    }
    EXPECT_LE(right, vna.desktop.Main().width());
  }
}

TEST(MainWindow, TheMouseDragsAMarkerAcrossThePicture) {
  UiFixture vna;
  vna.StartUp();
  vna.program.session().Display.MarkersOn = true;
  vna.program.session().Markers.Set(0) = {true, false, true, 30};
  vna.program.graphs().RedrawAll(false);
  PictureView& view = vna.desktop.Main().Picture();
  const Marker& marker = vna.program.session().Markers.Of(0, 0);
  const GraphRecord& graph = vna.program.graphs().Graph(0);
  const QPoint grab(marker.X, marker.LabelY);
  QTest::mouseMove(&view, grab);
  QTest::mousePress(&view, Qt::LeftButton, {}, grab);
  for (const int point : {35, 50, 77}) {
    const QPointF to(graph.Left + graph.Width() * (point - 1.0) / (graph.NumPoints - 1), grab.y());
    QMouseEvent move(QEvent::MouseMove, to, view.mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QApplication::sendEvent(&view, &move);
    EXPECT_NEAR(marker.Point, point, 1);
  }
  QTest::mouseRelease(&view, Qt::LeftButton, {}, grab);
  const int left = marker.Point;
  QTest::mouseMove(&view, grab);
  EXPECT_EQ(marker.Point, left) << "it was let go";
}

// What panel 3 says decides whether a number may be believed.
TEST(MainWindow, ThirdPanelIsTheLastToBeShortened) {
  UiFixture vna;
  vna.StartUp();
  QWidget& main = vna.desktop.Main();
  vna.host.Show("Form1");
  const char* text = "S11+S21 Cal ? Port 1 Overload! Port 2 Overload!  Limit Fail: S21";
  main.resize(1400, 720);
  vna.host.PanelChanged(Panel::Calibration, text);
  const auto panel = [&](int n) -> QLabel& {
    return vna.Widget<QLabel>("Form1", ("Panel" + std::to_string(n)).c_str());
  };
  const int whole = panel(3).fontMetrics().horizontalAdvance(text);
  const int other = panel(4).width();
  for (const int width : {1400, 1000, 860}) {
    main.resize(width, 720);
    QCoreApplication::processEvents();
    EXPECT_GE(panel(3).contentsRect().width(), whole) << width;
    EXPECT_EQ(panel(3).toolTip().count('\n'), 0) << width << ": shown whole";
  }
  EXPECT_LT(panel(4).width(), other);
  EXPECT_GE(panel(4).width(), panel(4).minimumSizeHint().width());
}

TEST(MainWindow, NoPanelIsShortenedWhileTheThirdHasRoomToSpare) {
  PanelRow row;
  row.Show(Panel::Calibration, "UNCAL");
  const auto panel = [&row](int n) { return row.findChild<QLabel*>("Panel" + QString::number(n)); };
  // Room for a text of 60 pixels more, not for the longest of the third panel.
  row.resize(row.sizeHint().width() - panel(3)->sizeHint().width() +
                 panel(3)->fontMetrics().horizontalAdvance("UNCAL") + 60,
             30);
  row.Show(Panel::Calibration, "UNCAL");
  ASSERT_LT(panel(3)->width(), panel(3)->sizeHint().width());
  for (const int n : {1, 2, 4, 5, 6, 7})
    EXPECT_EQ(panel(n)->width(), panel(n)->sizeHint().width()) << n;
}

TEST(MainWindow, APanelsTipHasTheWholeTextOnceItIsNarrowedAndNotBefore) {
  UiFixture vna;
  vna.StartUp();
  vna.host.Show("Form1");
  auto& panel = vna.Widget<QLabel>("Form1", "Panel4");
  vna.host.PanelChanged(Panel::Level, "P1 Level: -20dBm");
  vna.desktop.Main().resize(1400, 720);
  QCoreApplication::processEvents();
  EXPECT_EQ(panel.toolTip(), "Test signal level at port 1");
  panel.resize(40, panel.height());
  EXPECT_EQ(panel.toolTip(), "P1 Level: -20dBm\nTest signal level at port 1");
  panel.resize(400, panel.height());
  EXPECT_EQ(panel.toolTip(), "Test signal level at port 1");
}

TEST(MainWindow, ThePortsTipSaysWhyNoneOpenedWhateverThePanelShowsLater) {
  UiFixture vna;
  vna.StartUp();
  vna.host.Show("Form1");
  auto& panel = vna.Widget<QLabel>("Form1", "Panel2");
  vna.desktop.Main().RemarkOn(Panel::Port, "/dev/nodev: there is no such device");
  const QString both = "Serial port and speed\n/dev/nodev: there is no such device";
  EXPECT_EQ(panel.toolTip(), both);
  vna.host.PanelChanged(Panel::Port, "No Instrument");
  vna.desktop.Main().resize(1500, 720);
  QCoreApplication::processEvents();
  EXPECT_TRUE(panel.toolTip().endsWith(both)) << panel.toolTip().toStdString();
  vna.desktop.Main().RemarkOn(Panel::Port, "");
  EXPECT_TRUE(panel.toolTip().endsWith("Serial port and speed"));
}

TEST(Windows, FieldsOfAGridBearTheNameOfTheirCaptionForAReader) {
  UiFixture vna;
  EXPECT_EQ(vna.Widget("AdjMarkers", "Mk2Val").accessibleName(), "Marker 2");
  for (const Form* form : vna.registry.All())
    for (const Control& control : form->Controls()) {
      const FormSection& section = form->Sections()[static_cast<std::size_t>(control.Section)];
      const bool field =
          control.Kind == ControlKind::TextField || control.Kind == ControlKind::ListField;
      if (section.Hints.How != Arrange::Grid || !field) continue;
      EXPECT_EQ(
          vna.Widget(form->Name().c_str(), control.Name.c_str()).accessibleName().toStdString(),
          control.Caption)
          << form->Name() << "." << control.Name;
    }
}

// The bar comes and goes with each standard; what is below and beside it must not jump.
TEST(Windows, AHiddenProgressBarKeepsItsPlace) {
  UiFixture vna;
  vna.StartUp();
  vna.Click("Form1", "SetCal");
  QCoreApplication::processEvents();
  QWidget& window = vna.Window("Calibration");
  const QWidget& below = vna.Widget("Calibration", "NextStep_Caption");
  const QPoint place = below.mapTo(&window, QPoint(0, 0));
  const QWidget& beside = vna.Widget("Calibration", "CancelStandard");
  const QRect geometry = beside.geometry();
  QWidget& bar = vna.Widget("Calibration", "ProgressBar1");
  ASSERT_FALSE(bar.isVisible());
  (*vna.registry.Find("Calibration"))["ProgressBar1"].Shown = true;
  vna.host.Refresh("Calibration");
  QCoreApplication::processEvents();
  ASSERT_TRUE(bar.isVisible());
  EXPECT_EQ(below.mapTo(&window, QPoint(0, 0)), place);
  EXPECT_EQ(beside.geometry(), geometry);
}

TEST(MainWindow, TheValueUnderTheCursorStandsOverThePictureAndNotInIt) {
  UiFixture vna;
  vna.StartUp();
  PictureView& view = vna.desktop.Main().Picture();
  const QImage before = vna.picture.Image();
  const CanvasPoint at = vna.program.graphs().Trace(0, 0).Pixel[51];
  QTest::mouseMove(&view, QPoint(at.x, at.y));
  auto* readOut = view.findChild<QLabel*>("CursorReadOut");
  ASSERT_NE(readOut, nullptr);
  ASSERT_TRUE(RunUntil([&] { return readOut->isVisible(); }));
  EXPECT_EQ(readOut->text().left(3), "CH1");
  EXPECT_EQ(vna.picture.Image(), before);
}

TEST(MainWindow, TheTextUnderTheCursorIsBesideItAndInsideTheGraphs) {
  QWidget view;
  view.resize(400, 300);
  CursorReadOut readOut(view, [](CanvasPoint) { return std::optional<std::string>("-3.000 dB"); });
  view.show();
  const auto at = [&](int x, int y) {
    QTest::mouseMove(&view, QPoint(x, y));
    EXPECT_TRUE(RunUntil([&] { return readOut.isVisible() && readOut.pos() != QPoint(0, 0); }));
    EXPECT_TRUE(view.rect().contains(readOut.geometry())) << x << "," << y;
    EXPECT_FALSE(readOut.geometry().contains(x, y)) << "the point itself is seen";
    return readOut.geometry();
  };
  const QRect middle = at(100, 100);
  EXPECT_EQ(middle.topLeft(), QPoint(114, 114));
  const QRect right = at(395, 100);
  EXPECT_EQ(right.left() + right.width(), 395 - 14);
  EXPECT_EQ(right.top(), 114);
  const QRect low = at(100, 295);
  EXPECT_EQ(low.left(), 114);
  EXPECT_EQ(low.top() + low.height(), 295 - 14);
}

// The verdict under the cursor names the frequencies that were not tested.
TEST(MainWindow, ATextUnderTheCursorThatIsWiderThanTheGraphsIsWhole) {
  QWidget view;
  view.resize(300, 200);
  const std::string text =
      "PASS (part), worst margin 6.811 dB at 900.0000 MHz; not tested: 848.0000 to 900.0000 MHz, "
      "1100.0000 to 1148.0000 MHz";
  CursorReadOut readOut(view, [&text](CanvasPoint) { return std::optional<std::string>(text); });
  view.show();
  QTest::mouseMove(&view, QPoint(290, 20));
  ASSERT_TRUE(RunUntil([&] { return readOut.isVisible(); }));
  EXPECT_TRUE(view.rect().contains(readOut.geometry()));
  const QRect lines = readOut.fontMetrics().boundingRect(
      QRect(0, 0, readOut.width(), 1000), Qt::TextWordWrap, QString::fromStdString(text));
  EXPECT_GT(lines.height(), 2 * readOut.fontMetrics().height());
  EXPECT_GE(readOut.height(), lines.height());
}

}  // namespace
}  // namespace qk::test
