// Message loop, timers, boxes and the end, with the toolkit's own loop.
#include "ui/qt_host.h"

#include <QColorDialog>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>

#include "ui/dialogs.h"
#include "ui_fixture.h"

namespace qk::test {
namespace {

class PlainForm : public Form {
 public:
  using Form::Form;
};

class PlainWindow : public DialogWindow {
 public:
  using DialogWindow::DialogWindow;
};

struct HostFixture {
  HostFixture() {
    desk.Add(form);
    desk.Add(second);
    host.AddWindow(window);
    host.AddWindow(secondWindow);
    host.OnTick = [this](TimerId id) { ticks.push_back(id); };
    host.Terminate = [](int) {};
  }
  ~HostFixture() {
    if (host.Ending()) ForgetQuit();
  }
  PlainForm form{"First", "First"};
  PlainForm second{"Second", "Second"};
  Desk desk;
  QtHost host{desk};
  PlainWindow window{form, host, nullptr};
  PlainWindow secondWindow{second, host, nullptr};
  std::vector<TimerId> ticks;
};

// ---- timers ------------------------------------------------------------------------------------

TEST(QtHostTimers, TickInTheMessageLoopWhileEnabled) {
  HostFixture bench;
  bench.host.SetInterval(TimerId::Timer2, 5);
  EXPECT_FALSE(bench.host.Enabled(TimerId::Timer2));
  bench.host.Enable(TimerId::Timer2, true);
  EXPECT_TRUE(RunUntil([&] { return bench.ticks.size() >= 2; }));
  EXPECT_EQ(bench.ticks[0], TimerId::Timer2);
  bench.host.Enable(TimerId::Timer2, false);
  const std::size_t seen = bench.ticks.size();
  RunUntil([] { return false; }, 30);
  EXPECT_EQ(bench.ticks.size(), seen);
}

TEST(QtHostTimers, ATimerWithoutAnIntervalNeverTicks) {
  HostFixture bench;
  bench.host.Enable(TimerId::Timer1, true);
  RunUntil([] { return false; }, 30);
  EXPECT_TRUE(bench.ticks.empty());
}

TEST(QtHostTimers, ATickThatMeetsAWaitComesAfterIt) {
  HostFixture bench;
  bench.host.SetInterval(TimerId::Timer1, 5);
  bench.host.Enable(TimerId::Timer1, true);
  const QDeadlineTimer wait(60);
  while (!wait.hasExpired()) bench.host.Breathe();
  EXPECT_TRUE(bench.ticks.empty());
  EXPECT_TRUE(RunUntil([&] { return !bench.ticks.empty(); }));
}

// A handler that waits again and again lets a click in between two waits.
TEST(QtHostActions, WhatIsDoneInAWaitComesAtTheNextChanceForEvents) {
  HostFixture bench;
  std::string done;
  QTimer::singleShot(0, &bench.window, [&bench, &done] {
    const std::string text = "clicked";
    bench.host.Act([&done, text] { done = text; });
  });
  const QDeadlineTimer wait(30);
  while (!wait.hasExpired()) bench.host.Breathe();
  EXPECT_EQ(done, "");
  bench.host.LetEventsRun();
  EXPECT_EQ(done, "clicked");
}

TEST(QtHostTimers, ATickThatMeetsAWaitIsDroppedWhenTheTimerIsSwitchedOffMeanwhile) {
  HostFixture bench;
  bench.host.SetInterval(TimerId::Timer1, 5);
  bench.host.Enable(TimerId::Timer1, true);
  const QDeadlineTimer wait(30);
  while (!wait.hasExpired()) bench.host.Breathe();
  bench.host.Enable(TimerId::Timer1, false);
  RunUntil([] { return false; }, 40);
  EXPECT_TRUE(bench.ticks.empty());
}

TEST(QtHostTimers, LettingEventsRunTicksAndDoesNotWait) {
  HostFixture bench;
  bench.host.SetInterval(TimerId::Timer3, 1);
  bench.host.Enable(TimerId::Timer3, true);
  const std::int64_t before = bench.host.NowMs();
  bench.host.LetEventsRun();
  EXPECT_LT(bench.host.NowMs() - before, 500);
  const QDeadlineTimer limit(5000);
  while (bench.ticks.empty() && !limit.hasExpired()) bench.host.LetEventsRun();
  EXPECT_FALSE(bench.ticks.empty());
}

TEST(QtHostActs, AnActThatMeetsAWaitComesAfterIt) {
  HostFixture bench;
  bool acted = false;
  QTimer::singleShot(0, &bench.host, [&] { bench.host.Act([&] { acted = true; }); });
  const QDeadlineTimer wait(30);
  while (!wait.hasExpired()) bench.host.Breathe();
  EXPECT_FALSE(acted);
  EXPECT_TRUE(RunUntil([&] { return acted; }));
}

// ---- windows -----------------------------------------------------------------------------------

TEST(QtHostWindows, AModalWindowHoldsItsCallerUntilItIsHidden) {
  HostFixture bench;
  QTimer::singleShot(0, &bench.host, [&] {
    EXPECT_TRUE(bench.window.isVisible());
    EXPECT_TRUE(bench.window.isModal());
    bench.host.Hide("First");
  });
  bench.host.ShowModal("First");
  EXPECT_FALSE(bench.form.Shown);
  EXPECT_FALSE(bench.window.isVisible());
}

TEST(QtHostWindows, AModalWindowOverAnotherReturnsFirst) {
  HostFixture bench;
  std::vector<std::string> order;
  QTimer::singleShot(0, &bench.host, [&] {
    QTimer::singleShot(0, &bench.host, [&] {
      bench.host.Hide("First");  // the lower one goes first; its caller still waits
      bench.host.Hide("Second");
    });
    bench.host.ShowModal("Second");
    order.push_back("second");
  });
  bench.host.ShowModal("First");
  order.push_back("first");
  EXPECT_EQ(order, (std::vector<std::string>{"second", "first"}));
}

TEST(QtHostWindows, AWindowShownBesideOthersIsNotModal) {
  HostFixture bench;
  bench.host.Show("First");
  EXPECT_FALSE(bench.window.isModal());
  EXPECT_THROW(bench.host.Show("Nowhere"), std::logic_error);
  bench.host.Refresh("First");
  bench.host.Hide("First");
  EXPECT_FALSE(bench.window.isVisible());
}

// ---- boxes
// ---------------------------------------------------------------------------------------

struct BoxCase {
  Buttons Choice;
  QMessageBox::StandardButton Pressed;
  Answer Given;
};

TEST(QtHostBoxes, EachButtonGivesItsAnswer) {
  HostFixture bench;
  const BoxCase cases[] = {{Buttons::Ok, QMessageBox::Ok, Answer::Ok},
                           {Buttons::OkCancel, QMessageBox::Ok, Answer::Ok},
                           {Buttons::OkCancel, QMessageBox::Cancel, Answer::Cancel},
                           {Buttons::YesNo, QMessageBox::Yes, Answer::Yes},
                           {Buttons::YesNo, QMessageBox::No, Answer::No},
                           {Buttons::RetryCancel, QMessageBox::Retry, Answer::Retry},
                           {Buttons::RetryCancel, QMessageBox::Cancel, Answer::Cancel}};
  for (const BoxCase& c : cases) {
    WhenUp<QMessageBox>(bench.host, [&c](QMessageBox& box) { box.button(c.Pressed)->click(); });
    EXPECT_EQ(bench.host.Ask({"T", "t", Icon::Question, c.Choice}), c.Given);
  }
}

TEST(QtHostBoxes, TitleTextAndIconAreThoseOfTheMessage) {
  HostFixture bench;
  const std::pair<Icon, QMessageBox::Icon> icons[] = {{Icon::None, QMessageBox::NoIcon},
                                                      {Icon::Information, QMessageBox::Information},
                                                      {Icon::Question, QMessageBox::Question},
                                                      {Icon::Exclamation, QMessageBox::Warning},
                                                      {Icon::Critical, QMessageBox::Critical}};
  for (const auto& [icon, shown] : icons) {
    WhenUp<QMessageBox>(bench.host, [shown = shown](QMessageBox& box) {
      EXPECT_EQ(box.windowTitle(), "Open Cal");
      EXPECT_EQ(box.text(), "<b>Open</b> & more");
      EXPECT_EQ(box.textFormat(), Qt::PlainText);
      EXPECT_EQ(box.icon(), shown);
      EXPECT_GE(box.width(), box.fontMetrics().horizontalAdvance("Open Cal"));
      box.accept();
    });
    bench.host.Tell("Open Cal", "<b>Open</b> & more", icon);
  }
}

TEST(QtHostBoxes, EscapeAndTheCloseControlAreTheAnswerThatChangesLeast) {
  HostFixture bench;
  for (const auto& [choice, given] :
       {std::pair{Buttons::Ok, Answer::Ok}, std::pair{Buttons::OkCancel, Answer::Cancel},
        std::pair{Buttons::RetryCancel, Answer::Cancel}}) {
    WhenUp<QMessageBox>(bench.host, [](QMessageBox& box) { Key(box, Qt::Key_Escape); });
    EXPECT_EQ(bench.host.Ask({"T", "t", Icon::None, choice}), given);
    WhenUp<QMessageBox>(bench.host, [](QMessageBox& box) { box.close(); });
    EXPECT_EQ(bench.host.Ask({"T", "t", Icon::None, choice}), given);
  }
}

// Escape and the close control are tried on the box that message puts up; gives whether it stood
// both, after which its first button answers it.
bool StandsEscapeAndClose(HostFixture& bench, const Message& message) {
  bool stood = false;
  WhenUp<QMessageBox>(bench.host, [&stood](QMessageBox& box) {
    Key(box, Qt::Key_Escape);
    const bool afterEscape = box.isVisible();
    box.close();
    stood = afterEscape && box.isVisible();
    EXPECT_FALSE(box.windowFlags().testFlag(Qt::WindowCloseButtonHint)) << "a deaf control";
    if (stood) box.button(box.standardButton(box.buttons().constFirst()))->click();
  });
  bench.host.Ask(message);
  return stood;
}

TEST(QtHostBoxes, EscapeAndTheCloseControlDoNotAnswerAYesNoQuestion) {
  HostFixture bench;
  EXPECT_TRUE(StandsEscapeAndClose(bench, {"T", "Keep?", Icon::Question, Buttons::YesNo}));
}

TEST(QtHostBoxes, EscapeAndTheCloseControlDoNotSayThatAStandardIsConnected) {
  HostFixture bench;
  EXPECT_TRUE(StandsEscapeAndClose(
      bench, {"Open Cal", "Open Circuit on Port 1", Icon::Information, Buttons::Ok, true}));
}

TEST(QtHostBoxes, ABoxWithoutATitleBearsTheNameOfTheMainWindow) {
  PlainForm main("Form1", "The Program");
  HostFixture bench;
  PlainWindow window(main, bench.host, nullptr);
  bench.host.AddWindow(window);
  QString title;
  WhenUp<QMessageBox>(bench.host, [&](QMessageBox& box) {
    title = box.windowTitle();
    box.accept();
  });
  bench.host.Tell("", "Averages", Icon::None);
  EXPECT_EQ(title, "The Program");
}

TEST(QtHostBoxes, ABoxThatFollowsAnotherAtOnceBelongsToTheSameWindow) {
  PlainForm main("Form1", "The Program");
  HostFixture bench;
  PlainWindow window(main, bench.host, nullptr);
  bench.desk.Add(main);
  bench.host.AddWindow(window);
  bench.host.Show("Form1");
  bench.host.Show("First");
  bench.window.activateWindow();
  ASSERT_TRUE(RunUntil([&] { return QApplication::activeWindow() == &bench.window; }));
  std::vector<QWidget*> owners;
  for (int i = 0; i < 2; ++i) {
    WhenUp<QMessageBox>(bench.host, [&](QMessageBox& box) {
      owners.push_back(box.parentWidget());
      EXPECT_TRUE(RunUntil([&] { return box.isActiveWindow(); }));
      Key(*QApplication::focusWidget(), Qt::Key_Return);
    });
    bench.host.Tell("T", "t", Icon::None);
    // The window system takes its time to give the keyboard back.
    QApplication::setActiveWindow(nullptr);
  }
  EXPECT_EQ(owners, (std::vector<QWidget*>{&bench.window, &bench.window}));
}

TEST(QtHostBoxes, TheTickOfTimer1WaitsUntilTheBoxIsAnswered) {
  HostFixture bench;
  bench.host.SetInterval(TimerId::Timer1, 2);
  bench.host.Enable(TimerId::Timer1, true);
  WhenUp<QMessageBox>(bench.host, [&](QMessageBox& box) {
    RunUntil([] { return false; }, 30);
    EXPECT_TRUE(bench.ticks.empty()) << "it may put up a box of its own over this one";
    bench.host.SetInterval(TimerId::Timer1, 86400000);
    box.accept();
  });
  bench.host.Tell("T", "t", Icon::None);
  EXPECT_TRUE(RunUntil([&] { return !bench.ticks.empty(); })) << "held, not lost";
}

TEST(QtHostBoxes, TheOtherTimersTickWhileABoxIsUp) {
  HostFixture bench;
  bench.host.SetInterval(TimerId::Timer3, 2);
  bench.host.Enable(TimerId::Timer3, true);
  WhenUp<QMessageBox>(bench.host, [&](QMessageBox& box) {
    auto* timer = new QTimer(&box);
    QObject::connect(timer, &QTimer::timeout, &box, [&] {
      if (!bench.ticks.empty()) box.accept();
    });
    timer->start(1);
  });
  bench.host.Tell("T", "t", Icon::None);
  EXPECT_FALSE(bench.ticks.empty());
}

// ---- dialogs
// -------------------------------------------------------------------------------------

TEST(Dialogs, AFilterBecomesTheToolkitsList) {
  EXPECT_EQ(NameFilters("Bitmat (*.bmp)|*.bmp|PNG_files(*.png)|*.png|All Files (*.*)|*.*|"),
            (QStringList{"Bitmat (*.bmp)", "PNG_files (*.png)", "All Files (*.*)"}));
  EXPECT_EQ(NameFilters("Data|*.s1p;*.s2p"), (QStringList{"Data (*.s1p *.s2p)"}));
  EXPECT_EQ(NameFilters(""), QStringList{});
  EXPECT_EQ(NameFilters("lonely"), QStringList{});
}

TEST(Dialogs, ASaveDialogGivesThePathAndItsFilterStandsChosen) {
  HostFixture bench;
  const QString path = QDir::tempPath() + "/qk_not_there_yet.cal";
  WhenUp<QFileDialog>(bench.host, [&path](QFileDialog& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Save Cal");
    EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
    EXPECT_EQ(dialog.selectedNameFilter(), "Cal (*.cal)");
    dialog.selectFile(path);
    QMetaObject::invokeMethod(&dialog, "accept");
  });
  EXPECT_EQ(bench.host.Choose({DialogKind::Save, "Save Cal", QDir::tempPath().toStdString(),
                               "All Files (*.*)|*.*|Cal (*.cal)|*.cal|", 2}),
            path.toStdString());
}

TEST(Dialogs, ANameTypedWithoutAnEndingGetsThatOfTheFilter) {
  HostFixture bench;
  const std::string folder = QDir::tempPath().toStdString();
  const auto chosen = [&](const char* typed, const char* filter) {
    WhenUp<QFileDialog>(bench.host, [&](QFileDialog& dialog) {
      dialog.findChild<QLineEdit*>("fileNameEdit")->setText(typed);
      QMetaObject::invokeMethod(&dialog, "accept");
    });
    return bench.host.Choose({DialogKind::Save, "Save", folder, filter, 2}).value_or("");
  };
  constexpr const char* kCal = "All Files (*.*)|*.*|cal_files(*.cal)|*.cal|";
  EXPECT_EQ(chosen("qk_none_such", kCal), folder + "/qk_none_such.cal");
  EXPECT_EQ(chosen("qk_none_such.old", kCal), folder + "/qk_none_such.old");
  EXPECT_EQ(chosen("qk_none_such", "A|*.*|spara_files(*.s?p)|*.s?p|"), folder + "/qk_none_such");
  EXPECT_EQ(chosen("qk_none_such", "A|*.*|All Files (*.*)|*.*|"), folder + "/qk_none_such");
}

TEST(Dialogs, ADialogBehindAModalWindowBelongsToTheWindowThatOpenedThat) {
  HostFixture bench;
  bench.host.Show("First");
  bench.window.activateWindow();
  ASSERT_TRUE(RunUntil([&] { return QApplication::activeWindow() == &bench.window; }));
  QTimer due;
  QObject::connect(&due, &QTimer::timeout, &due, [&] {
    if (QApplication::activeWindow() == &bench.secondWindow) bench.host.Hide("Second");
  });
  due.start(1);
  bench.host.ShowModal("Second");
  due.stop();
  bool asked = false;
  WhenUp<QFileDialog>(bench.host, [&](QFileDialog& dialog) {
    asked = true;
    EXPECT_EQ(dialog.parentWidget(), &bench.window);
    dialog.reject();
  });
  bench.host.Choose({DialogKind::Save, "Save", QDir::tempPath().toStdString(), "", 1});
  EXPECT_TRUE(asked);
}

TEST(Dialogs, ACancelledDialogGivesNothing) {
  HostFixture bench;
  for (const DialogKind kind : {DialogKind::Open, DialogKind::Save, DialogKind::Colour}) {
    WhenUp<QDialog>(bench.host, [](QDialog& dialog) { dialog.reject(); });
    EXPECT_EQ(bench.host.Choose({kind, "T", "", "", 1}), std::nullopt);
  }
}

TEST(Dialogs, AColourIsGivenInHexadecimal) {
  HostFixture bench;
  WhenUp<QColorDialog>(bench.host, [](QColorDialog& dialog) {
    dialog.setCurrentColor(QColor(0x1A, 0x2B, 0x3C));
    dialog.accept();
  });
  EXPECT_EQ(bench.host.Choose({DialogKind::Colour, "Colour", "", "", 1}), "#1a2b3c");
}

// ---- the end
// -------------------------------------------------------------------------------------

TEST(QtHostEnd, TheProcessEndsFromNestedLoopsToo) {
  HostFixture bench;
  bool left = false;
  QTimer::singleShot(0, &bench.host, [&] {
    QTimer::singleShot(0, &bench.host, [&] {
      QTimer::singleShot(0, &bench.host, [&] { bench.host.EndProcess(7); });
      bench.host.Ask({"T", "t", Icon::Question, Buttons::YesNo});
    });
    bench.host.ShowModal("First");
    left = true;
  });
  EXPECT_EQ(QApplication::exec(), 7);
  EXPECT_TRUE(left);
}

TEST(QtHostEnd, ToldToLeaveBoxesAndModalWindowsReturnAndNoneComesUpAgain) {
  HostFixture bench;
  std::vector<std::string> order;
  WhenUp<QMessageBox>(
      bench.host, [&](QMessageBox&) { bench.host.LeaveNow([&] { order.push_back("leave"); }); });
  EXPECT_EQ(bench.host.Ask({"T", "Keep?", Icon::Question, Buttons::YesNo}), Answer::No);
  order.push_back("answered");
  EXPECT_EQ(bench.host.Ask({"T", "t", Icon::None, Buttons::OkCancel}), Answer::Cancel);
  bench.host.ShowModal("First");
  EXPECT_EQ(order, (std::vector<std::string>{"leave", "answered"}));
}

TEST(QtHostEnd, ToldToLeaveWhileItWaitsForTheInstrumentItLeavesAfterwards) {
  HostFixture bench;
  bool left = false;
  QTimer::singleShot(0, &bench.host, [&] { bench.host.LeaveNow([&] { left = true; }); });
  const QDeadlineTimer wait(30);
  while (!wait.hasExpired()) bench.host.Breathe();
  EXPECT_FALSE(left);
  EXPECT_TRUE(RunUntil([&] { return left; }));
}

TEST(QtHostEnd, OnceEndingNothingMoreIsAsked) {
  HostFixture bench;
  bench.host.EndProcess(0);
  EXPECT_EQ(bench.host.Ask({"T", "t", Icon::None, Buttons::YesNo}), Answer::No);
  EXPECT_EQ(bench.host.Ask({"T", "t", Icon::None, Buttons::RetryCancel}), Answer::Cancel);
  EXPECT_EQ(bench.host.Choose({DialogKind::Open, "", "", "", 1}), std::nullopt);
  bench.host.ShowModal("First");
}

}  // namespace
}  // namespace qk::test
