// SPDX-License-Identifier: MIT
// The windows on a screen of 800 by 480 pixels with letters of 16 points: each fits, scrolls what
// has no room, keeps its row of buttons in view, and has every button within reach of the mouse.
#include <QAbstractTextDocumentLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTabWidget>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>
#include <QToolButton>

#include "app/bench_window.h"
#include "app/demonstration.h"
#include "ui/placement.h"
#include "ui/scroll_body.h"
#include "ui/ui_fixture.h"
#include "ui/ui_main.h"

namespace qk::test {
namespace {

// Buttons, switches and options that are shown, the toolkit's own parts apart.
std::vector<QAbstractButton*> ButtonsOf(QWidget& window) {
  std::vector<QAbstractButton*> buttons;
  for (QAbstractButton* button : window.findChildren<QAbstractButton*>())
    if (button->window() == &window && qobject_cast<QToolButton*>(button) == nullptr &&
        !button->objectName().startsWith("qt_"))
      buttons.push_back(button);
  return buttons;
}

// Turns to the page of tabs that contains the widget.
void TurnTo(QWidget& widget) {
  for (QWidget* page = &widget; page != nullptr; page = page->parentWidget())
    for (QTabWidget* tabs : widget.window()->findChildren<QTabWidget*>())
      if (const int index = tabs->indexOf(page); index >= 0) tabs->setCurrentIndex(index);
}

// Moves the scroll bars as a mouse would, and only those that are seen.
void ScrollTo(QWidget& widget) {
  for (QScrollArea* area : widget.window()->findChildren<QScrollArea*>()) {
    if (!area->widget()->isAncestorOf(&widget)) continue;
    const QPoint at = widget.mapTo(area->widget(), widget.rect().center());
    const QSize half = area->viewport()->size() / 2;
    if (area->verticalScrollBar()->isVisible())
      area->verticalScrollBar()->setValue(at.y() - half.height());
    if (area->horizontalScrollBar()->isVisible())
      area->horizontalScrollBar()->setValue(at.x() - half.width());
  }
  QCoreApplication::processEvents();
}

// What a click at the middle of the widget would go to.
bool MouseReaches(QWidget& widget) {
  QWidget& window = *widget.window();
  const QPoint at = widget.mapTo(&window, widget.rect().center());
  const QRect screen = window.screen()->availableGeometry();
  return window.rect().contains(at) && screen.contains(window.mapToGlobal(at)) &&
         window.childAt(at) == &widget;
}

std::string NameOf(const QWidget& window, const QWidget& widget) {
  return window.objectName().toStdString() + "." + widget.objectName().toStdString();
}

void ExpectEachButtonInReach(QWidget& window) {
  for (QAbstractButton* button : ButtonsOf(window)) {
    TurnTo(*button);
    QCoreApplication::processEvents();
    if (!button->isVisible()) continue;
    const bool foot = button->parentWidget() != nullptr &&
                      !window.findChildren<ScrollBody*>().empty() &&
                      !window.findChildren<ScrollBody*>().front()->isAncestorOf(button);
    if (!foot) ScrollTo(*button);
    EXPECT_TRUE(MouseReaches(*button)) << NameOf(window, *button);
  }
}

void ExpectOnTheScreen(const QWidget& window) {
  const QRect screen = window.screen()->availableGeometry();
  EXPECT_LE(window.frameSize().width(), screen.width()) << window.objectName().toStdString();
  EXPECT_LE(window.frameSize().height(), screen.height()) << window.objectName().toStdString();
}

// Nothing scrolls that would fit.
void ExpectScrollingForWantOfRoomAlone(const QWidget& window) {
  for (const ScrollBody* body : window.findChildren<ScrollBody*>()) {
    // A scroll bar's width from all that the contents want or the screen has.
    const QSize nearlyAll = window.sizeHint().boundedTo(RoomInside(window)) - QSize(24, 24);
    const std::string name = window.objectName().toStdString();
    if (body->horizontalScrollBar()->isVisible()) {
      EXPECT_GT(window.width(), nearlyAll.width()) << name;
    }
    if (body->verticalScrollBar()->isVisible()) {
      EXPECT_GT(window.height(), nearlyAll.height()) << name;
    }
  }
}

TEST(SmallScreen, IsWhatItIsSaidToBe) {
  const QSize screen = QGuiApplication::primaryScreen()->availableSize();
  EXPECT_EQ(screen, QSize(800, 480));
  EXPECT_EQ(QApplication::font().pointSize(), 16);
}

TEST(SmallScreen, EveryWindowFitsAndEachOfItsButtonsIsInReachOfTheMouse) {
  UiFixture vna;
  int windows = 0;
  for (const Form* form : vna.registry.All()) {
    if (form->Name() == "Form1") continue;
    vna.Visit(*form, [&](QWidget& window) {
      QCoreApplication::processEvents();
      ExpectOnTheScreen(window);
      ExpectScrollingForWantOfRoomAlone(window);
      ExpectEachButtonInReach(window);
      ++windows;
    });
  }
  EXPECT_GE(windows, 30);
}

TEST(SmallScreen, TheMainWindowFitsAndItsButtonsAreInReach) {
  UiFixture vna;
  vna.StartUp();
  vna.host.Show("Form1");
  QCoreApplication::processEvents();
  ExpectOnTheScreen(vna.desktop.Main());
  ExpectEachButtonInReach(vna.desktop.Main());
}

TEST(SmallScreen, TheBenchFits) {
  sim::Instrument instrument;
  BenchWindow bench(instrument);
  bench.show();
  QCoreApplication::processEvents();
  ExpectOnTheScreen(bench);
  ExpectEachButtonInReach(bench);
  for (const QLabel* label : bench.findChildren<QLabel*>())
    EXPECT_GE(label->width(), label->minimumSizeHint().width()) << label->text().toStdString();
}

TEST(SmallScreen, TheBenchIsBroughtWhollyOnTheScreen) {
  UiFixture vna;
  vna.StartUp();
  vna.host.Show("Form1");
  QWidget& main = vna.desktop.Main();
  const QRect screen = main.screen()->availableGeometry();
  BenchWindow bench(vna.instrument);
  bench.resize(300, 200);
  main.resize(main.minimumSizeHint());
  main.move(0, 0);
  bench.show();
  for (const QPoint& place : {QPoint(780, 20), QPoint(20, 470), QPoint(-100, -50)}) {
    bench.move(place);
    bench.LeaveClear(main);
    EXPECT_TRUE(screen.contains(bench.frameGeometry())) << place.x() << "," << place.y();
  }
}

// What the program says in passing, in the status bar of the main window.
TEST(SmallScreen, ABenchThatWouldCoverTheGraphsClosesAtTheStartAndSaysHowToOpenIt) {
  UiFixture vna;
  Demonstration demonstration(vna.instrument, vna.program, vna.host, vna.desktop);
  QWidget* bench = nullptr;
  for (QWidget* window : QApplication::topLevelWidgets())
    if (window->objectName() == "Bench") bench = window;
  ASSERT_NE(bench, nullptr);
  EXPECT_TRUE(bench->isVisible());
  vna.StartUp();
  EXPECT_TRUE(bench->isVisible()) << "until the main window is there";
  vna.host.Show("Form1");
  vna.desktop.Main().activateWindow();
  ASSERT_TRUE(RunUntil([&] { return !bench->isVisible(); }));
  EXPECT_EQ(vna.program.controller().notice().Text(),
            "Bench is closed to leave the graphs free: Alt+B");
  ASSERT_TRUE(RunUntil([&] { return vna.desktop.Main().isActiveWindow(); }));
  QTest::keyClick(&vna.desktop.Main(), Qt::Key_B, Qt::AltModifier);
  EXPECT_TRUE(RunUntil([&] { return bench->isVisible() && bench->isActiveWindow(); }));
  QTest::keyClick(bench, Qt::Key_Escape);
  EXPECT_FALSE(bench->isVisible());
}

TEST(SmallScreen, AClickOnAButtonAtTheFootWorksWithoutScrolling) {
  UiFixture vna;
  vna.StartUp();
  vna.host.Show("Form1");
  vna.Click("Form1", "SetCal");
  QWidget& window = vna.Window("Calibration");
  QCoreApplication::processEvents();
  auto& body = vna.Widget<ScrollBody>("Calibration", "Body");
  ASSERT_TRUE(body.verticalScrollBar()->isVisible()) << "it does not fit without scrolling";
  QWidget& close = vna.Widget("Calibration", "Cls_Cal");
  QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {},
                    close.mapTo(&window, close.rect().center()));
  EXPECT_TRUE(RunUntil([&] { return !window.isVisible(); }));
}

TEST(SmallScreen, TabScrollsToTheFieldThatItLeadsTo) {
  UiFixture vna;
  vna.StartUp();
  vna.host.Show("EnhancePara");
  QWidget& window = vna.Window("EnhancePara");
  QCoreApplication::processEvents();
  for (int presses = 0; presses < 30; ++presses) {
    QTest::keyClick(&window, Qt::Key_Tab);
    QCoreApplication::processEvents();
    const QWidget* focused = window.focusWidget();
    ASSERT_NE(focused, nullptr);
    EXPECT_FALSE(focused->visibleRegion().isEmpty()) << NameOf(window, *focused);
  }
}

// A wheel over a list on the way down would change it without a word.
TEST(SmallScreen, TheWheelScrollsTheWindowAndChangesNoListOnItsWay) {
  UiFixture vna;
  vna.StartUp();
  vna.host.Show("EnhancePara");
  QWidget& window = vna.Window("EnhancePara");
  window.activateWindow();
  QCoreApplication::processEvents();
  auto& body = vna.Widget<ScrollBody>("EnhancePara", "Body");
  ASSERT_TRUE(body.verticalScrollBar()->isVisible());
  auto& list = vna.Widget<QComboBox>("EnhancePara", "ListLevel");
  vna.Widget("EnhancePara", "InputAverages").setFocus();
  const int level = list.currentIndex();
  body.ensureWidgetVisible(&list);
  const int before = body.verticalScrollBar()->value();
  const QPointF at = list.mapTo(&window, QPointF(list.rect().center()));
  const auto turn = [&] {
    QWheelEvent wheel(at, window.mapToGlobal(at), {}, QPoint(0, -120), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&wheel);  // as the window system's own: ignored, it goes on
    qApp->notify(window.windowHandle(), &wheel);
  };
  turn();
  EXPECT_EQ(list.currentIndex(), level);
  EXPECT_GT(body.verticalScrollBar()->value(), before);
}

struct SmallHelp : UiFixture {
  SmallHelp() {
    StartUp();
    host.Show("Form1");
    help.ShowDocument(AddressOf("30-markers.md"));
    help.activateWindow();
    EXPECT_TRUE(RunUntil([this] { return help.isActiveWindow(); }));
  }
  QString Page() const { return text.source().path().section('/', -1); }
  HelpViewer& help = desktop.Help();
  QTextBrowser& text = *help.findChild<QTextBrowser*>();
  QListWidget& contents = *help.findChild<QListWidget*>();
  QPushButton& button = *help.findChild<QPushButton*>("ShowContents");
};

TEST(SmallScreen, HelpGivesItsTextTheWholeWidthAndFoldsTheContentsAway) {
  SmallHelp vna;
  EXPECT_FALSE(vna.contents.isVisible());
  EXPECT_FALSE(vna.button.isChecked());
  EXPECT_GT(vna.text.width(), vna.help.width() * 9 / 10);
  EXPECT_TRUE(vna.text.hasFocus());
  EXPECT_TRUE(MouseReaches(vna.button));
}

TEST(SmallScreen, TheContentsOfHelpAreReachedByAKeyAndFoldedByEnter) {
  SmallHelp vna;
  QTest::keyClick(&vna.text, Qt::Key_T, Qt::AltModifier);
  ASSERT_TRUE(RunUntil([&] { return vna.contents.isVisible(); }));
  EXPECT_TRUE(vna.contents.hasFocus());
  EXPECT_EQ(vna.contents.currentItem()->data(Qt::UserRole).toString(), "30-markers.md");
  QTest::keyClick(&vna.contents, Qt::Key_Down);
  EXPECT_EQ(vna.Page(), "32-limits.md");
  EXPECT_TRUE(vna.contents.isVisible()) << "the next page may be wanted";
  QTest::keyClick(&vna.contents, Qt::Key_Return);
  EXPECT_FALSE(vna.contents.isVisible());
  EXPECT_TRUE(vna.text.hasFocus());
  EXPECT_EQ(vna.Page(), "32-limits.md");
}

TEST(SmallScreen, TheContentsOfHelpAreReachedByTheMouseAndFoldedByAClickOnAPage) {
  SmallHelp vna;
  QTest::mouseClick(&vna.button, Qt::LeftButton);
  ASSERT_TRUE(vna.contents.isVisible());
  QTest::mouseClick(&vna.button, Qt::LeftButton);
  EXPECT_FALSE(vna.contents.isVisible());
  EXPECT_TRUE(vna.text.hasFocus());
  QTest::mouseClick(&vna.button, Qt::LeftButton);
  QListWidgetItem& limits = *vna.contents.item(vna.contents.currentRow() + 1);
  QTest::mouseClick(vna.contents.viewport(), Qt::LeftButton, {},
                    vna.contents.visualItemRect(&limits).center());
  EXPECT_EQ(vna.Page(), "32-limits.md");
  EXPECT_FALSE(vna.contents.isVisible());
}

TEST(SmallScreen, AHeadingOfHelpIsAtTheTopWhereTheContentsAreFolded) {
  UiFixture vna;
  vna.StartUp();
  HelpViewer& help = vna.desktop.Help();
  ASSERT_TRUE(help.ShowDocument("manual:68-trust.md#Hints"));
  QApplication::processEvents();
  const auto& text = *help.findChild<QTextBrowser*>();
  const QTextBlock heading = text.textCursor().block();
  EXPECT_EQ(heading.text(), "Hints");
  EXPECT_NEAR(text.verticalScrollBar()->value(),
              text.document()->documentLayout()->blockBoundingRect(heading).top(), 2);
}

TEST(SmallScreen, SetUpWindowsOpenWhollyOnTheScreen) {
  UiFixture vna;
  vna.StartUp();
  vna.host.Show("Form1");
  for (const char* button : {"LimiLines", "Cursors", "SetDisplay", "SetDomain"}) {
    vna.Click("Form1", button);
    QCoreApplication::processEvents();
  }
  const QRect screen = vna.desktop.Main().screen()->availableGeometry();
  for (const char* form : {"NewLimitsSet", "MarkersSet", "DisplayPara", "TDR_Opts"})
    EXPECT_TRUE(screen.contains(vna.Window(form).frameGeometry())) << form;
}

// Six buttons at the foot, two kits beside each other.
TEST(SmallScreen, CalibrationKitParametersFits1024PixelsWithLettersOf16Points) {
  UiFixture vna;
  vna.host.Show("CalKitForm");
  QWidget& window = vna.Window("CalKitForm");
  const auto& body = vna.Widget<ScrollBody>("CalKitForm", "Body");
  const int margins = window.width() - body.width();
  EXPECT_LE(body.widget()->minimumSizeHint().width() + margins, 1016);
}

}  // namespace
}  // namespace qk::test

int main(int argc, char** argv) {
  return qk::test::RunWindowTestsOnScreen(argc, argv, "800", "480", [] {
    qk::test::UiFixture::ScreenScale = 480.0f / 768;
    QFont letters = QApplication::font();
    letters.setPointSize(16);
    QApplication::setFont(letters);
  });
}
