// SPDX-License-Identifier: MIT
// The bench of the demonstration: what is chosen is connected, what is connected is shown.
#include "app/bench_window.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QEvent>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QTest>
#include <QWindow>

#include "app/kit_through.h"
#include "ui/ui_fixture.h"
#include "ui/ui_main.h"

namespace qk {
namespace {

struct WindowFixture {
  QString Connected() { return window.findChild<QLabel*>("Connected")->text(); }
  void Choose(const char* list, const QString& entry) {
    auto* box = window.findChild<QComboBox*>(list);
    const int index = box->findText(entry);
    ASSERT_GE(index, 0) << entry.toStdString();
    emit box->activated(index);
  }
  sim::Instrument instrument;
  BenchWindow window{instrument};
};

TEST(BenchWindow, ReportsWhatIsConnectedFromTheStart) {
  WindowFixture fixture;
  EXPECT_EQ(fixture.Connected().toStdString(), "Connected: " + fixture.instrument.Describe());
}

// Records which window the bench covers at the moment when it appears.
struct NotesParent : QObject {
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Show)
      parent = static_cast<const QWidget*>(watched)->windowHandle()->transientParent();
    return false;
  }
  const QWindow* parent = nullptr;
};

TEST(BenchWindow, StandsOverTheMainWindowAndCoversNoOther) {
  WindowFixture fixture;
  QWidget main;
  fixture.window.PlaceBeside(main);
  NotesParent notes;
  fixture.window.installEventFilter(&notes);
  for (int times = 0; times < 2; ++times) {
    notes.parent = nullptr;
    fixture.window.show();
    EXPECT_EQ(notes.parent, main.windowHandle());
    fixture.window.hide();
  }
  EXPECT_FALSE(fixture.window.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
}

TEST(BenchWindow, LeavesMarkerTableAndSwitchesClearWhereTheScreenIsNarrow) {
  WindowFixture fixture;
  QWidget main, picture(&main);
  picture.setObjectName("PicGraph");
  picture.setGeometry(0, 0, 600, 560);
  main.setGeometry(0, 0, 780, 600);
  main.show();
  const QRect switches(main.mapToGlobal(QPoint(600, 0)), QSize(180, 600));
  fixture.window.PlaceBeside(main);
  fixture.window.show();
  ASSERT_TRUE(fixture.window.frameGeometry().intersects(switches));
  fixture.window.LeaveClear(main);
  EXPECT_FALSE(fixture.window.frameGeometry().intersects(switches));
  const QPoint clear = fixture.window.pos();
  fixture.window.LeaveClear(main);
  EXPECT_EQ(fixture.window.pos(), clear);
}

TEST(BenchWindow, SaysWhereItWouldCoverMostOfTheGraphs) {
  WindowFixture fixture;
  const QRect screen = QApplication::primaryScreen()->availableGeometry();
  QWidget main, picture(&main);
  picture.setObjectName("PicGraph");
  main.setGeometry(screen);
  main.show();
  const QSize own = fixture.window.sizeHint();
  fixture.window.show();
  picture.setGeometry(0, 0, 4 * own.width(), 2 * own.height());
  EXPECT_TRUE(fixture.window.LeaveClear(main));
  picture.setGeometry(0, 0, 3 * own.width() / 2, own.height());
  EXPECT_FALSE(fixture.window.LeaveClear(main));
}

TEST(BenchWindow, MakesRoomBesideAMainWindowThatNobodyHasPlaced) {
  WindowFixture fixture;
  QWidget main;
  const int screen = main.screen()->availableGeometry().width();
  const int beside = fixture.window.sizeHint().width();
  main.resize(screen, 600);
  fixture.window.MakeRoom(main);
  EXPECT_EQ(main.width() < screen, screen - beside - 16 >= 1024);
  if (main.width() < screen) {
    EXPECT_GE(main.width(), 1024);
    EXPECT_LE(main.width() + beside, screen);
  }
  main.resize(500, 600);
  fixture.window.MakeRoom(main);
  EXPECT_EQ(main.width(), 500) << "there is room already";
  main.setGeometry(10, 10, screen, 600);
  fixture.window.MakeRoom(main);
  EXPECT_EQ(main.width(), screen) << "its place was chosen";
}

TEST(BenchWindow, GoesBesideTheMainWindowWhereTheScreenHasRoom) {
  WindowFixture fixture;
  QWidget main, picture(&main);
  picture.setObjectName("PicGraph");
  picture.setGeometry(0, 0, 200, 300);
  main.setGeometry(0, 0, 300, 300);
  main.show();
  fixture.window.move(20, 20);
  fixture.window.show();
  fixture.window.LeaveClear(main);
  EXPECT_FALSE(fixture.window.frameGeometry().intersects(main.frameGeometry()));
}

TEST(BenchWindow, EachListHasAKeyOfItsOwn) {
  WindowFixture fixture;
  fixture.window.show();
  fixture.window.activateWindow();
  ASSERT_TRUE(test::RunUntil([&] { return fixture.window.isActiveWindow(); }));
  for (const auto& [key, list] :
       {std::pair(Qt::Key_1, "Port1"), {Qt::Key_2, "Port2"}, {Qt::Key_0, "Device"}}) {
    QTest::keyClick(&fixture.window, key, Qt::AltModifier);
    EXPECT_TRUE(fixture.window.findChild<QComboBox*>(list)->hasFocus()) << list;
  }
}

TEST(BenchWindow, ALetterThatIsMeantForTheMainWindowConnectsNothing) {
  WindowFixture fixture;
  fixture.Choose("Port1", "Load");
  auto* list = fixture.window.findChild<QComboBox*>("Port1");
  QKeyEvent options(QEvent::KeyPress, Qt::Key_O, Qt::AltModifier, "o");  // TD Options
  QApplication::sendEvent(list, &options);
  EXPECT_EQ(list->currentText(), "Load");
  QKeyEvent open(QEvent::KeyPress, Qt::Key_O, Qt::NoModifier, "o");
  QApplication::sendEvent(list, &open);
  EXPECT_EQ(list->currentText(), "Open");
}

TEST(BenchWindow, TakesTheKeyboardWhenAskedForAndEscapeClosesIt) {
  WindowFixture fixture;
  QWidget main;
  main.resize(400, 300);
  main.show();
  main.activateWindow();
  fixture.window.PlaceBeside(main);
  fixture.window.show();
  fixture.window.ToFront();
  auto* device = fixture.window.findChild<QComboBox*>("Device");
  ASSERT_TRUE(test::RunUntil([&] { return device->hasFocus(); }));
  fixture.window.findChild<QComboBox*>("Port2")->setFocus();
  fixture.window.ToFront();
  EXPECT_TRUE(device->hasFocus());
  QTest::keyClick(device, Qt::Key_Escape);
  EXPECT_FALSE(fixture.window.isVisible());
  EXPECT_TRUE(test::RunUntil([&] { return main.isActiveWindow(); }));
  fixture.window.ToFront();
  EXPECT_TRUE(test::RunUntil([&] { return device->hasFocus(); })) << "and comes back";
}

TEST(BenchWindow, CanBeWorkedWhileAPromptBlocksTheMainWindow) {
  WindowFixture fixture;
  QWidget main;
  QPushButton button("START", &main);
  int clicks = 0;
  QObject::connect(&button, &QPushButton::clicked, [&clicks] { ++clicks; });
  fixture.window.PlaceBeside(main);
  main.show();
  fixture.window.show();
  QDialog prompt(&main);
  prompt.setWindowModality(Qt::WindowModal);
  prompt.show();
  // By way of the windows, as the window system delivers it: only there is a click turned away.
  const auto click = [](QWidget& widget) {
    QWindow* window = widget.window()->windowHandle();
    QTest::mouseClick(window, Qt::LeftButton, {},
                      widget.mapTo(widget.window(), widget.rect().center()));
  };
  click(button);
  EXPECT_EQ(clicks, 0) << "the main window is blocked";
  auto* follow = fixture.window.findChild<QCheckBox*>("Follow");
  ASSERT_TRUE(follow->isChecked());
  click(*follow);
  EXPECT_FALSE(follow->isChecked());
}

TEST(BenchWindow, ThePlayCannotBeBegunWhileAPromptIsUpButStopped) {
  WindowFixture fixture;
  const auto* play = fixture.window.findChild<QPushButton*>("Play");
  // What is connected is shown again, and with it what can be clicked.
  const auto works = [&] {
    fixture.Choose("Device", "Through");
    return play->isEnabled();
  };
  EXPECT_TRUE(works());
  QDialog prompt;
  prompt.setModal(true);
  prompt.show();
  EXPECT_FALSE(works());
  fixture.window.ShowStep("An open circuit on port 1");
  EXPECT_TRUE(works());
  fixture.window.ShowStep("");
  prompt.hide();
  EXPECT_TRUE(works());
}

TEST(BenchWindow, EveryDeviceOfTheListCanBeConnected) {
  WindowFixture fixture;
  const auto* list = fixture.window.findChild<QComboBox*>("Device");
  for (const char* entry : {"Through", "Attenuator 10 dB", "Line 100 mm", "Amplifier",
                            "Filter, not aligned", "Filter, nearly aligned", "Band-pass filter"}) {
    const QString before = fixture.Connected();
    fixture.Choose("Device", entry);
    EXPECT_NE(fixture.Connected(), before) << entry;
    EXPECT_EQ(fixture.Connected().toStdString(), "Connected: " + fixture.instrument.Describe());
  }
  EXPECT_EQ(list->count(), 8);
}

TEST(BenchWindow, WhatIsConnectedToAPortIsShownByItsOwnEntry) {
  WindowFixture fixture;
  for (const char* port : {"Port1", "Port2"})
    for (const char* entry :
         {"Nothing", "Open", "Short", "Load", "Antenna", "Broken cable", "Short in a fixture"}) {
      fixture.Choose(port, entry);
      EXPECT_EQ(fixture.window.findChild<QComboBox*>(port)->currentText(), entry) << port;
    }
}

TEST(BenchWindow, AStandardGoesToItsPort) {
  WindowFixture fixture;
  fixture.Choose("Port1", "Short");
  fixture.Choose("Port2", "Load");
  EXPECT_TRUE(fixture.Connected().contains("port 1: short"));
  EXPECT_TRUE(fixture.Connected().contains("port 2: load"));
}

// Whatever connected it, the list must show it.
TEST(BenchWindow, TheListsShowWhatTheLineSays) {
  WindowFixture fixture;
  const auto shown = [&fixture](const char* list) {
    return fixture.window.findChild<QComboBox*>(list)->currentText().toStdString();
  };
  EXPECT_EQ(shown("Device"), "Band-pass filter");
  EXPECT_EQ(shown("Port1"), "");
  fixture.Choose("Port1", "Short");
  EXPECT_EQ(shown("Device"), "");
  EXPECT_EQ(shown("Port1"), "Short");
  EXPECT_EQ(shown("Port2"), "Nothing");
  fixture.Choose("Device", "Line 100 mm");
  EXPECT_EQ(shown("Device"), "Line 100 mm");
  EXPECT_EQ(shown("Port1"), "");
  EXPECT_EQ(shown("Port2"), "");
  ASSERT_TRUE(fixture.instrument.FollowPrompt("Matched Load on Ports 1 and 2"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return shown("Port2") == "Load"; }));
  EXPECT_EQ(shown("Port1"), "Load");
  EXPECT_EQ(shown("Device"), "");
  fixture.instrument.Bench("line 25");
  ASSERT_TRUE(QTest::qWaitFor([&] { return shown("Port2").empty(); }));
  EXPECT_EQ(shown("Device"), "") << "no entry of the list";
}

// Alt+C, intended for Calibration, once started the demonstration.
TEST(BenchWindow, HasNoLetterOfTheMainWindow) {
  test::UiFixture vna;
  const BenchWindow bench(vna.instrument);
  const auto letterOf = [](const QString& text) {
    const qsizetype mark = QString(text).remove("&&").indexOf('&');
    return mark < 0 ? QChar() : QString(text).remove("&&")[mark + 1].toLower();
  };
  QString taken;
  for (const auto* button : vna.desktop.Main().findChildren<QAbstractButton*>())
    if (button->window() == &vna.desktop.Main()) taken += letterOf(button->text());
  for (const QAction* menu : vna.desktop.Main().menuBar()->actions())
    taken += letterOf(menu->text());
  ASSERT_TRUE(taken.contains('c') && taken.contains('f'));
  int letters = 0;
  const auto expect = [&](const QString& text) {
    if (letterOf(text).isNull()) return;
    ++letters;
    EXPECT_FALSE(taken.contains(letterOf(text))) << text.toStdString();
  };
  for (const auto* button : bench.findChildren<QAbstractButton*>()) expect(button->text());
  for (const auto* label : bench.findChildren<QLabel*>())
    if (label->buddy() != nullptr) expect(label->text());
  EXPECT_GE(letters, 3);
}

TEST(BenchWindow, ThePlayIsOffWhileTheProgramSaysSo) {
  WindowFixture fixture;
  bool may = false;
  fixture.window.MayPlay = [&may] { return may; };
  const auto* play = fixture.window.findChild<QPushButton*>("Play");
  EXPECT_TRUE(QTest::qWaitFor([&] { return !play->isEnabled(); }));
  fixture.window.ShowStep("An open circuit on port 1");
  EXPECT_TRUE(QTest::qWaitFor([&] { return play->isEnabled(); })) << "it can be stopped";
  fixture.window.ShowStep("");
  may = true;
  EXPECT_TRUE(QTest::qWaitFor([&] { return play->isEnabled(); }));
}

TEST(KitThrough, IsConnectedForTheThroughStandardAsTheKitDescribesIt) {
  sim::Instrument instrument;
  instrument.Bench("follow on");
  CalKit kit;
  ConnectThroughOf(kit, instrument);
  ASSERT_TRUE(instrument.FollowPrompt("Connect through using Through Standard"));
  EXPECT_EQ(instrument.Describe(), "line 25 mm") << "no table, no other standard";
  kit.KitName = "Std N";
  kit.KitHasThru = true;
  for (std::size_t i = 0; i < 101; ++i) {
    kit.KitThruData[0][i] = 3e6f + 3e7f * static_cast<float>(i);
    for (std::size_t row = 1; row < 9; ++row)
      kit.KitThruData[row][i] = 0.1f * static_cast<float>(row);
  }
  ConnectThroughOf(kit, instrument);
  ASSERT_TRUE(instrument.FollowPrompt("Connect through using Through Standard"));
  EXPECT_EQ(instrument.Describe(), "device through standard of kit Std N");
  const auto s = instrument.Truth(1e9);
  for (std::size_t p = 0; p < 4; ++p) {
    EXPECT_NEAR(s[p].real(), 0.1 * (2 * static_cast<double>(p) + 1), 1e-6) << p;
    EXPECT_NEAR(s[p].imag(), 0.1 * (2 * static_cast<double>(p) + 2), 1e-6) << p;
  }
  kit.KitName = "Broken";
  kit.KitThruData[0][50] = 0;
  ConnectThroughOf(kit, instrument);
  ASSERT_TRUE(instrument.FollowPrompt("Connect through using Through Standard"));
  EXPECT_EQ(instrument.Describe(), "device through standard of kit Std N");
}

TEST(KitThrough, AStandardThatTheBenchNamesStays) {
  sim::Instrument instrument;
  instrument.Bench("follow on");
  const auto session = MakeSession();
  session->Kit1.KitHasThru = true;
  for (std::size_t i = 0; i < 101; ++i)
    session->Kit1.KitThruData[0][i] = 3e6f + 3e7f * static_cast<float>(i);
  const Message prompt{"Through Cal", "Connect through using Through Standard"};
  FollowPrompt(prompt, *session, instrument);
  EXPECT_EQ(instrument.Describe(), "device through standard of kit Default");
  instrument.Bench("standard line 40");
  FollowPrompt(prompt, *session, instrument);
  EXPECT_EQ(instrument.Describe(), "line 40 mm");
}

TEST(BenchWindow, FollowingThePromptsCanBeSwitchedOff) {
  WindowFixture fixture;
  auto* follow = fixture.window.findChild<QCheckBox*>("Follow");
  EXPECT_TRUE(follow->isChecked());
  follow->click();
  EXPECT_FALSE(fixture.instrument.FollowPrompt("Short Circuit on Port 1 (0.00mm)"));
  follow->click();
  EXPECT_TRUE(fixture.instrument.FollowPrompt("Short Circuit on Port 1 (0.00mm)"));
}

TEST(BenchWindow, ThePlayIsBegunAndStoppedByItsButtonAndReportsItsStep) {
  WindowFixture fixture;
  auto* play = fixture.window.findChild<QPushButton*>("Play");
  int clicks = 0;
  fixture.window.OnPlay = [&] { ++clicks; };
  EXPECT_EQ(play->text(), "Cal&ibrate and measure for me");
  play->click();
  EXPECT_EQ(clicks, 1);
  fixture.window.ShowStep("Open on both ports");
  EXPECT_EQ(play->text(), "Stop");
  EXPECT_EQ(fixture.window.findChild<QLabel*>("Step")->text(), "Open on both ports");
  fixture.window.ShowStep("");
  EXPECT_EQ(play->text(), "Cal&ibrate and measure for me");
}

}  // namespace
}  // namespace qk

int main(int argc, char** argv) {
  return qk::test::RunWindowTests(argc, argv);
}
