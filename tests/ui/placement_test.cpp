// SPDX-License-Identifier: MIT
// Where a window opens for the first time.
#include "ui/placement.h"

#include <QPushButton>
#include <QScreen>

#include "display/marker_table.h"
#include "ui_fixture.h"

namespace qk::test {
namespace {

// A large screen with the main window in its middle; its graphs and, beside them, what is taken.
Surface WideScreen() {
  return {{0, 0, 2000, 1000}, {400, 100, 1200, 800}, {410, 150, 850, 700}, {{1260, 150, 340, 700}}};
}

Surface FullScreen() {
  Surface surface = WideScreen();
  surface.Room = {400, 100, 1200, 800};
  return surface;
}

TEST(FirstPlace, IsAtTheRightOfTheMainWindowWhereTheScreenHasRoom) {
  EXPECT_EQ(FirstPlace({300, 400}, WideScreen()), QPoint(1607, 100));
}

TEST(FirstPlace, IsAtTheLeftWhenTheRightIsTooNarrow) {
  Surface surface = WideScreen();
  surface.Room.setWidth(1800);
  EXPECT_EQ(FirstPlace({300, 400}, surface), QPoint(92, 100));
}

TEST(FirstPlace, OfAWindowBesideTheMainWindowIsBeneathOneThatIsThere) {
  Surface surface = WideScreen();
  surface.Taken.emplace_back(1608, 100, 300, 350);
  EXPECT_EQ(FirstPlace({300, 400}, surface), QPoint(1607, 499));
}

TEST(FirstPlace, WithoutRoomBesideIsInTheLowerCornerLeftOfWhatIsTaken) {
  EXPECT_EQ(FirstPlace({300, 400}, FullScreen()), QPoint(960, 450));
}

// The main window as wide as the screen, with room below it.
TEST(FirstPlace, IsBelowOrAboveTheMainWindowWhereOnlyThereIsRoom) {
  Surface surface = WideScreen();
  surface.Room = {400, 100, 1200, 1200};
  EXPECT_EQ(FirstPlace({300, 350}, surface), QPoint(1300, 907));
  surface.Room = {400, -300, 1200, 1200};
  EXPECT_EQ(FirstPlace({300, 350}, surface), QPoint(1300, -258));
}

// Higher than the graphs: in one of the corners less of it lies over them.
TEST(FirstPlace, OfAWindowOverTheGraphsCoversTheLeastOfThem) {
  Surface surface = FullScreen();
  surface.Graphs = {410, 150, 850, 300};
  surface.Taken.clear();
  EXPECT_EQ(FirstPlace({300, 400}, surface), QPoint(960, 100));
  surface.Main.setTop(0);
  surface.Room.setTop(0);
  EXPECT_EQ(FirstPlace({300, 400}, surface), QPoint(960, 50));
}

// Before the main window is placed the size of its frame is unknown.
TEST(RoomInside, LeavesATitleBarAndEdgesFree) {
  const QWidget alone;
  const QSize screen = alone.screen()->availableSize();
  const int title = screen.height() - RoomInside(alone).height();
  EXPECT_GE(title, alone.fontMetrics().height() + 8);
  EXPECT_LE(title, 2 * alone.fontMetrics().height() + 8);
  EXPECT_EQ(screen.width() - RoomInside(alone).width(), 8);
}

TEST(FirstPlace, OfASecondWindowIsBesideTheFirst) {
  Surface surface = FullScreen();
  surface.Taken.emplace_back(960, 450, 300, 400);
  EXPECT_EQ(FirstPlace({400, 300}, surface), QPoint(410, 550));
}

TEST(FirstPlace, OfAWindowTooWideForTheGraphsCoversAsLittleAsCanBeAndStaysOnTheScreen) {
  Surface surface = FullScreen();
  surface.Taken.emplace_back(410, 600, 850, 250);  // a window in the lower half
  EXPECT_EQ(FirstPlace({900, 300}, surface), QPoint(400, 150));
  EXPECT_TRUE(surface.Room.contains(QRect(FirstPlace({1200, 800}, surface), QSize(1200, 800))));
  EXPECT_EQ(FirstPlace({1500, 900}, surface), QPoint(400, 100));
}

TEST(Windows, OpenWhereTheyCoverNeitherMarkerTableNorSwitchesNorEachOther) {
  UiFixture vna;
  vna.StartUp();
  vna.host.Show("Form1");
  const QWidget& picture = vna.Widget("Form1", "PicGraph");
  const Rect table = MarkerTableBox({picture.width(), picture.height()});
  const QRect onScreen(picture.mapToGlobal(QPoint(table.left, table.top)),
                       picture.mapToGlobal(QPoint(table.right, table.bottom)));
  vna.Click("Form1", "Cursors");
  const QRect markers = vna.Window("MarkersSet").frameGeometry();
  EXPECT_FALSE(markers.intersects(onScreen));
  for (const char* button : {"StartMeasurement", "StopMeasurement", "MemoryMath", "AverOn"}) {
    const QWidget& widget = vna.Widget("Form1", button);
    EXPECT_FALSE(markers.intersects({widget.mapToGlobal(QPoint(0, 0)), widget.size()})) << button;
  }
  vna.host.Show("AdjMarkers");
  EXPECT_FALSE(vna.Window("AdjMarkers").frameGeometry().intersects(onScreen));
  EXPECT_FALSE(vna.Window("AdjMarkers").frameGeometry().intersects(markers));
}

}  // namespace
}  // namespace qk::test
