// SPDX-License-Identifier: MIT
// The windows on a screen of 800 by 480 pixels with letters of 16 points: each fits, scrolls what
// has no room, keeps its row of buttons in view, and has every button within reach of the mouse.
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTabWidget>
#include <QTest>
#include <QToolButton>

#include "app/bench_window.h"
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

// Turns to the page of tabs on which the widget stands.
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
