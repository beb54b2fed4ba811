// SPDX-License-Identifier: MIT
// Message loop, timers, boxes and the end, with the toolkit's own loop.
#include "ui/qt_host.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QWindow>

#include "qt_host_fixture.h"
#include "ui/dialogs.h"

namespace qk::test {
namespace {

// ---- timers ------------------------------------------------------------------------------------

TEST(QtHostTimers, TickInTheMessageLoopWhileEnabled) {
  HostFixture fixture;
  fixture.host.SetInterval(TimerId::Timer2, 5);
  EXPECT_FALSE(fixture.host.Enabled(TimerId::Timer2));
  fixture.host.Enable(TimerId::Timer2, true);
  EXPECT_TRUE(RunUntil([&] { return fixture.ticks.size() >= 2; }));
  EXPECT_EQ(fixture.ticks[0], TimerId::Timer2);
  fixture.host.Enable(TimerId::Timer2, false);
  const std::size_t seen = fixture.ticks.size();
  RunUntil([] { return false; }, 30);
  EXPECT_EQ(fixture.ticks.size(), seen);
}

// The toolkit's usual timers may come some milliseconds early.
TEST(QtHostTimers, ATickIsNeverEarly) {
  HostFixture fixture;
  constexpr int kInterval = 111;
  fixture.host.SetInterval(TimerId::Timer3, kInterval);
  for (int times = 0; times < 8; ++times) {
    fixture.ticks.clear();
    QElapsedTimer clock;
    clock.start();
    fixture.host.Enable(TimerId::Timer3, true);
    ASSERT_TRUE(RunUntil([&] { return !fixture.ticks.empty(); }));
    EXPECT_GE(clock.elapsed(), kInterval - 1);
    fixture.host.Enable(TimerId::Timer3, false);
  }
}

TEST(QtHostTimers, ATimerWithoutAnIntervalNeverTicks) {
  HostFixture fixture;
  fixture.host.Enable(TimerId::Timer1, true);
  RunUntil([] { return false; }, 30);
  EXPECT_TRUE(fixture.ticks.empty());
}

TEST(QtHostTimers, ATickThatMeetsAWaitComesAfterIt) {
  HostFixture fixture;
  fixture.host.SetInterval(TimerId::Timer1, 5);
  fixture.host.Enable(TimerId::Timer1, true);
  const QDeadlineTimer wait(60);
  while (!wait.hasExpired()) fixture.host.Breathe();
  EXPECT_TRUE(fixture.ticks.empty());
  EXPECT_TRUE(RunUntil([&] { return !fixture.ticks.empty(); }));
}

// A handler that waits again and again lets a click in between two waits.
TEST(QtHostActions, WhatIsDoneInAWaitComesAtTheNextChanceForEvents) {
  HostFixture fixture;
  std::string done;
  QTimer::singleShot(0, &fixture.window, [&fixture, &done] {
    const std::string text = "clicked";
    fixture.host.Act([&done, text] { done = text; });
  });
  const QDeadlineTimer wait(30);
  while (!wait.hasExpired()) fixture.host.Breathe();
  EXPECT_EQ(done, "");
  fixture.host.LetEventsRun();
  EXPECT_EQ(done, "clicked");
}

TEST(QtHostTimers, ATickThatMeetsAWaitIsDroppedWhenTheTimerIsSwitchedOffMeanwhile) {
  HostFixture fixture;
  fixture.host.SetInterval(TimerId::Timer1, 5);
  fixture.host.Enable(TimerId::Timer1, true);
  const QDeadlineTimer wait(30);
  while (!wait.hasExpired()) fixture.host.Breathe();
  fixture.host.Enable(TimerId::Timer1, false);
  RunUntil([] { return false; }, 40);
  EXPECT_TRUE(fixture.ticks.empty());
}

TEST(QtHostTimers, LettingEventsRunTicksAndDoesNotWait) {
  HostFixture fixture;
  fixture.host.SetInterval(TimerId::Timer3, 1);
  fixture.host.Enable(TimerId::Timer3, true);
  const std::int64_t before = fixture.host.NowMs();
  fixture.host.LetEventsRun();
  EXPECT_LT(fixture.host.NowMs() - before, 500);
  const QDeadlineTimer limit(5000);
  while (fixture.ticks.empty() && !limit.hasExpired()) fixture.host.LetEventsRun();
  EXPECT_FALSE(fixture.ticks.empty());
}

// What comes neither by a click nor by a timer of the program.
TEST(QtHostActs, LettingEventsRunShowsWhatTheyHaveChanged) {
  struct Labelled : Form {
    Labelled() : Form("Labelled", "Labelled") {
      Section("");
      told = AddLabel("Told", "before");
    }
    Handle told;
  };
  Labelled form;
  FormRegistry registry;
  registry.Add(form);
  QtHost host(registry);
  PlainWindow window(form, host, nullptr);
  QLabel* label = window.GetBinder().Caption("Told");
  label->setParent(&window);
  host.AddWindow(window);
  host.Show("Labelled");
  host.LetEventsRun();
  EXPECT_EQ(label->text(), "before");
  QMetaObject::invokeMethod(
      &host, [&form] { form.told.Caption("after"); }, Qt::QueuedConnection);
  host.LetEventsRun();
  EXPECT_EQ(label->text(), "after");
}

TEST(QtHostActs, AnActThatMeetsAWaitComesAfterIt) {
  HostFixture fixture;
  bool acted = false;
  QTimer::singleShot(0, &fixture.host, [&] { fixture.host.Act([&] { acted = true; }); });
  const QDeadlineTimer wait(30);
  while (!wait.hasExpired()) fixture.host.Breathe();
  EXPECT_FALSE(acted);
  EXPECT_TRUE(RunUntil([&] { return acted; }));
}

TEST(QtHostActs, AnActOfAWaitThatIsDroppedNeverComes) {
  HostFixture fixture;
  bool acted = false;
  QTimer::singleShot(0, &fixture.host, [&] { fixture.host.Act([&] { acted = true; }); });
  const QDeadlineTimer wait(30);
  while (!wait.hasExpired()) fixture.host.Breathe();
  fixture.host.DropInput();
  RunUntil([] { return false; }, 60);
  fixture.host.LetEventsRun();
  EXPECT_FALSE(acted);
}

// ---- windows -----------------------------------------------------------------------------------

TEST(QtHostWindows, AModalWindowHoldsItsCallerUntilItIsHidden) {
  HostFixture fixture({.Modal = true});
  QTimer::singleShot(0, &fixture.host, [&] {
    EXPECT_TRUE(fixture.window.isVisible());
    EXPECT_TRUE(fixture.window.isModal());
    fixture.host.Hide("First");
  });
  fixture.host.Show("First");
  EXPECT_FALSE(fixture.form.Shown);
  EXPECT_FALSE(fixture.window.isVisible());
}

TEST(QtHostWindows, AModalWindowOverAnotherReturnsFirst) {
  HostFixture fixture({.Modal = true});
  std::vector<std::string> order;
  QTimer::singleShot(0, &fixture.host, [&] {
    QTimer::singleShot(0, &fixture.host, [&] {
      fixture.host.Hide("First");  // the lower one goes first; its caller still waits
      fixture.host.Hide("Second");
    });
    fixture.host.Show("Second");
    order.push_back("second");
  });
  fixture.host.Show("First");
  order.push_back("first");
  EXPECT_EQ(order, (std::vector<std::string>{"second", "first"}));
}

TEST(QtHostWindows, AWindowShownBesideOthersIsNotModal) {
  HostFixture fixture;
  fixture.host.Show("First");
  EXPECT_FALSE(fixture.window.isModal());
  EXPECT_THROW(fixture.host.Show("Nowhere"), std::logic_error);
  fixture.host.Refresh("First");
  fixture.host.Hide("First");
  EXPECT_FALSE(fixture.window.isVisible());
}

// ---- boxes -------------------------------------------------------------------------------------

struct BoxCase {
  Buttons Choice;
  QMessageBox::StandardButton Pressed;
  Answer Given;
};

TEST(QtHostBoxes, EachButtonGivesItsAnswer) {
  HostFixture fixture;
  const BoxCase cases[] = {{Buttons::Ok, QMessageBox::Ok, Answer::Ok},
                           {Buttons::OkCancel, QMessageBox::Ok, Answer::Ok},
                           {Buttons::OkCancel, QMessageBox::Cancel, Answer::Cancel},
                           {Buttons::YesNo, QMessageBox::Yes, Answer::Yes},
                           {Buttons::YesNo, QMessageBox::No, Answer::No},
                           {Buttons::RetryCancel, QMessageBox::Retry, Answer::Retry},
                           {Buttons::RetryCancel, QMessageBox::Cancel, Answer::Cancel}};
  for (const BoxCase& c : cases) {
    WhenUp<QMessageBox>(fixture.host, [&c](QMessageBox& box) { box.button(c.Pressed)->click(); });
    EXPECT_EQ(fixture.host.Ask({"T", "t", Icon::Question, c.Choice}), c.Given);
  }
}

TEST(QtHostBoxes, TitleTextAndIconAreThoseOfTheMessage) {
  HostFixture fixture;
  const std::pair<Icon, QMessageBox::Icon> icons[] = {{Icon::None, QMessageBox::NoIcon},
                                                      {Icon::Information, QMessageBox::Information},
                                                      {Icon::Question, QMessageBox::Question},
                                                      {Icon::Exclamation, QMessageBox::Warning},
                                                      {Icon::Critical, QMessageBox::Critical}};
  for (const auto& [icon, shown] : icons) {
    WhenUp<QMessageBox>(fixture.host, [shown = shown](QMessageBox& box) {
      EXPECT_EQ(box.windowTitle(), "Open Cal");
      EXPECT_EQ(box.text(), "<b>Open</b> & more");
      EXPECT_EQ(box.textFormat(), Qt::PlainText);
      EXPECT_EQ(box.icon(), shown);
      EXPECT_GE(box.width(), box.fontMetrics().horizontalAdvance("Open Cal"));
      box.accept();
    });
    fixture.host.ShowMessage("Open Cal", "<b>Open</b> & more", icon);
  }
}

TEST(QtHostBoxes, EscapeAndTheCloseControlAreTheAnswerThatChangesLeast) {
  HostFixture fixture;
  for (const auto& [choice, given] :
       {std::pair{Buttons::Ok, Answer::Ok}, std::pair{Buttons::OkCancel, Answer::Cancel},
        std::pair{Buttons::RetryCancel, Answer::Cancel}, std::pair{Buttons::YesNo, Answer::No}}) {
    WhenUp<QMessageBox>(fixture.host, [](QMessageBox& box) { Key(box, Qt::Key_Escape); });
    EXPECT_EQ(fixture.host.Ask({"T", "t", Icon::None, choice}), given);
    WhenUp<QMessageBox>(fixture.host, [](QMessageBox& box) { box.close(); });
    EXPECT_EQ(fixture.host.Ask({"T", "t", Icon::None, choice}), given);
  }
}

TEST(QtHostBoxes, EscapeCancelsAMeasurementThatAsksToConnect) {
  HostFixture fixture;
  const Message ask{.Title = "T", .Text = "t", .Choice = Buttons::OkCancel, .AsksToConnect = true};
  WhenUp<QMessageBox>(fixture.host, [](QMessageBox& box) { Key(box, Qt::Key_Escape); });
  EXPECT_EQ(fixture.host.Ask(ask), Answer::Cancel);
  WhenUp<QMessageBox>(fixture.host, [](QMessageBox& box) { box.close(); });
  EXPECT_EQ(fixture.host.Ask(ask), Answer::Cancel);
  WhenUp<QMessageBox>(fixture.host, [](QMessageBox& box) { Key(box, Qt::Key_Return); });
  EXPECT_EQ(fixture.host.Ask(ask), Answer::Ok);
}

// Escape and the close control are tried on the box that message puts up; gives whether it was open
// both, after which its first button answers it.
bool StandsEscapeAndClose(HostFixture& fixture, const Message& message) {
  bool stood = false;
  WhenUp<QMessageBox>(fixture.host, [&stood](QMessageBox& box) {
    Key(box, Qt::Key_Escape);
    const bool afterEscape = box.isVisible();
    box.close();
    stood = afterEscape && box.isVisible();
    EXPECT_FALSE(box.windowFlags().testFlag(Qt::WindowCloseButtonHint)) << "a deaf control";
    if (stood) box.button(box.standardButton(box.buttons().constFirst()))->click();
  });
  fixture.host.Ask(message);
  return stood;
}

TEST(QtHostBoxes, EscapeAndTheCloseControlDoNotAnswerAQuestionWhoseNoChangesSomething) {
  HostFixture fixture;
  EXPECT_TRUE(StandsEscapeAndClose(
      fixture, {.Title = "T", .Text = "Keep?", .Choice = Buttons::YesNo, .NoActs = true}));
}

TEST(QtHostBoxes, EscapeAndTheCloseControlDoNotSayThatAStandardIsConnected) {
  HostFixture fixture;
  EXPECT_TRUE(StandsEscapeAndClose(
      fixture, {"Open Cal", "Open Circuit on Port 1", Icon::Information, Buttons::Ok, true}));
}

// Enter on "Open", held: its repeats must not say that the open is connected.
TEST(QtHostBoxes, AKeyThatIsHeldSinceBeforeABoxCameUpDoesNotAnswerIt) {
  HostFixture fixture;
  bool stood = false;
  WhenUp<QMessageBox>(fixture.host, [&stood](QMessageBox& box) {
    QAbstractButton& ok = *box.button(QMessageBox::Ok);
    for (int i = 0; i < 3; ++i) {
      QKeyEvent repeat(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, "\r", true);
      QCoreApplication::sendEvent(&ok, &repeat);
    }
    stood = box.isVisible();
    Key(ok, Qt::Key_Return);
    EXPECT_FALSE(box.isVisible());
    box.accept();
  });
  fixture.host.AskToConnect("Open Cal", "Open Circuit on Port 1 (0.00mm)");
  EXPECT_TRUE(stood);
}

TEST(QtHostBoxes, ABoxWithoutATitleBearsTheNameOfTheMainWindow) {
  PlainForm main("Form1", "The Program");
  HostFixture fixture;
  PlainWindow window(main, fixture.host, nullptr);
  fixture.host.AddWindow(window);
  QString title;
  WhenUp<QMessageBox>(fixture.host, [&](QMessageBox& box) {
    title = box.windowTitle();
    box.accept();
  });
  fixture.host.ShowMessage("", "Averages", Icon::None);
  EXPECT_EQ(title, "The Program");
}

// The first window, with the keyboard, over the main window; whose the boxes were.
struct OverTheMain : HostFixture {
  OverTheMain() {
    registry.Add(main);
    host.AddWindow(mainWindow);
    host.Show("Form1");
    host.Show("First");
    window.activateWindow();
    EXPECT_TRUE(RunUntil([&] { return QApplication::activeWindow() == &window; }));
  }
  void WhenABoxIsUp(std::function<void(QMessageBox&)> then) {
    WhenUp<QMessageBox>(host, [this, then = std::move(then)](QMessageBox& box) {
      owners.push_back(box.parentWidget());
      EXPECT_TRUE(RunUntil([&] { return box.isActiveWindow(); }));
      then(box);
    });
  }
  PlainForm main{"Form1", "The Program"};
  PlainWindow mainWindow{main, host, nullptr};
  std::vector<QWidget*> owners;
};

TEST(QtHostBoxes, ABoxThatFollowsAnotherAtOnceBelongsToTheSameWindow) {
  OverTheMain fixture;
  for (int i = 0; i < 2; ++i) {
    fixture.WhenABoxIsUp([&](QMessageBox&) { Key(*QApplication::focusWidget(), Qt::Key_Return); });
    fixture.host.ShowMessage("T", "t", Icon::None);
    // The window system takes its time to give the keyboard back.
    QApplication::setActiveWindow(nullptr);
  }
  EXPECT_EQ(fixture.owners, (std::vector<QWidget*>{&fixture.window, &fixture.window}));
}

TEST(QtHostBoxes, ABoxTakesTheKeyboardBackFromTheWindowThatItBlocks) {
  OverTheMain fixture;
  for (int i = 0; i < 2; ++i) {
    fixture.WhenABoxIsUp([&](QMessageBox& box) {
      bool taken = false;
      QObject::connect(qApp, &QGuiApplication::focusWindowChanged, &box, [&](const QWindow* has) {
        taken |= has == fixture.mainWindow.windowHandle();
      });
      fixture.mainWindow.windowHandle()
          ->requestActivate();  // as a late word of the window system does
      EXPECT_TRUE(RunUntil([&] { return taken; }));
      EXPECT_TRUE(RunUntil([&] { return box.isActiveWindow(); }, 2000)) << "the box is deaf";
      box.accept();
    });
    fixture.host.ShowMessage("T", "t", Icon::None);
  }
  EXPECT_EQ(fixture.owners, (std::vector<QWidget*>{&fixture.window, &fixture.window}));
}

TEST(QtHostBoxes, TheTickOfTimer1WaitsUntilTheBoxIsAnswered) {
  HostFixture fixture;
  fixture.host.SetInterval(TimerId::Timer1, 2);
  fixture.host.Enable(TimerId::Timer1, true);
  WhenUp<QMessageBox>(fixture.host, [&](QMessageBox& box) {
    RunUntil([] { return false; }, 30);
    EXPECT_TRUE(fixture.ticks.empty()) << "it may put up a box of its own over this one";
    fixture.host.SetInterval(TimerId::Timer1, 86400000);
    box.accept();
  });
  fixture.host.ShowMessage("T", "t", Icon::None);
  EXPECT_TRUE(RunUntil([&] { return !fixture.ticks.empty(); })) << "held, not lost";
}

TEST(QtHostBoxes, AHeldTickIsForgottenWhenItsTimerIsSwitchedOffMeanwhile) {
  HostFixture fixture;
  fixture.host.SetInterval(TimerId::Timer1, 2);
  fixture.host.Enable(TimerId::Timer1, true);
  WhenUp<QMessageBox>(fixture.host, [&](QMessageBox& box) {
    RunUntil([] { return false; }, 30);  // a tick is held
    fixture.host.Enable(TimerId::Timer1, false);
    fixture.host.SetInterval(TimerId::Timer1, 86400000);
    fixture.host.Enable(TimerId::Timer1, true);
    box.accept();
  });
  fixture.host.ShowMessage("T", "t", Icon::None);
  RunUntil([] { return false; }, 30);
  EXPECT_TRUE(fixture.ticks.empty()) << "it belongs to the time before";
}

TEST(QtHostBoxes, TheOtherTimersTickWhileABoxIsUp) {
  HostFixture fixture;
  fixture.host.SetInterval(TimerId::Timer3, 2);
  fixture.host.Enable(TimerId::Timer3, true);
  WhenUp<QMessageBox>(fixture.host, [&](QMessageBox& box) {
    auto* timer = new QTimer(&box);
    QObject::connect(timer, &QTimer::timeout, &box, [&] {
      if (!fixture.ticks.empty()) box.accept();
    });
    timer->start(1);
  });
  fixture.host.ShowMessage("T", "t", Icon::None);
  EXPECT_FALSE(fixture.ticks.empty());
}

// ---- the end -----------------------------------------------------------------------------------

TEST(QtHostEnd, TheProcessEndsFromNestedLoopsToo) {
  HostFixture fixture({.Modal = true});
  bool left = false;
  QTimer::singleShot(0, &fixture.host, [&] {
    QTimer::singleShot(0, &fixture.host, [&] {
      QTimer::singleShot(0, &fixture.host, [&] { fixture.host.EndProcess(7); });
      fixture.host.Ask({"T", "t", Icon::Question, Buttons::YesNo});
    });
    fixture.host.Show("First");
    left = true;
  });
  EXPECT_EQ(QApplication::exec(), 7);
  EXPECT_TRUE(left);
}

TEST(QtHostEnd, AskedToLeaveBoxesAndModalWindowsReturnAndNoneOpensAgain) {
  HostFixture fixture({.Modal = true});
  std::vector<std::string> order;
  WhenUp<QMessageBox>(fixture.host, [&](QMessageBox&) {
    fixture.host.LeaveNow([&] { order.push_back("leave"); });
  });
  EXPECT_EQ(fixture.host.Ask({"T", "Keep?", Icon::Question, Buttons::YesNo}), Answer::No);
  order.push_back("answered");
  EXPECT_EQ(fixture.host.Ask({"T", "t", Icon::None, Buttons::OkCancel}), Answer::Cancel);
  fixture.host.Show("First");
  EXPECT_EQ(order, (std::vector<std::string>{"leave", "answered"}));
}

TEST(QtHostEnd, AskedToLeaveWhileItWaitsForTheInstrumentItLeavesAfterwards) {
  HostFixture fixture;
  bool left = false;
  QTimer::singleShot(0, &fixture.host, [&] { fixture.host.LeaveNow([&] { left = true; }); });
  const QDeadlineTimer wait(30);
  while (!wait.hasExpired()) fixture.host.Breathe();
  EXPECT_FALSE(left);
  EXPECT_TRUE(RunUntil([&] { return left; }));
}

TEST(QtHostEnd, OnceEndingNothingMoreIsAsked) {
  HostFixture fixture({.Modal = true});
  fixture.host.EndProcess(0);
  EXPECT_EQ(fixture.host.Ask({"T", "t", Icon::None, Buttons::YesNo}), Answer::No);
  EXPECT_EQ(fixture.host.Ask({"T", "t", Icon::None, Buttons::RetryCancel}), Answer::Cancel);
  EXPECT_EQ(fixture.host.Choose({DialogKind::Open, "", "", "", 1}), std::nullopt);
  fixture.host.Show("First");
}

}  // namespace
}  // namespace qk::test
