// SPDX-License-Identifier: MIT
// File, colour and printer dialogs of the host, and its boxes with a default answer.
#include "ui/dialogs.h"

#include <fstream>

#include <QColorDialog>
#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QTreeView>

#include "qt_host_fixture.h"

namespace qk::test {
namespace {

TEST(Dialogs, AFilterBecomesTheToolkitsList) {
  EXPECT_EQ(NameFilters("Bitmat (*.bmp)|*.bmp|PNG_files(*.png)|*.png|All Files (*.*)|*.*|"),
            (QStringList{"Bitmat (*.bmp)", "PNG_files (*.png)", "All Files (*.*)"}));
  EXPECT_EQ(NameFilters("Data|*.s1p;*.s2p"), (QStringList{"Data (*.s1p *.s2p)"}));
  EXPECT_EQ(NameFilters(""), QStringList{});
  EXPECT_EQ(NameFilters("lonely"), QStringList{});
}

TEST(Dialogs, ASaveDialogGivesThePathAndItsFilterStandsChosen) {
  HostFixture fixture;
  const QString path = QDir::tempPath() + "/qk_not_there_yet.cal";
  WhenUp<QFileDialog>(fixture.host, [&path](QFileDialog& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Save Cal");
    EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
    EXPECT_EQ(dialog.selectedNameFilter(), "Cal (*.cal)");
    dialog.selectFile(path);
    QMetaObject::invokeMethod(&dialog, "accept");
  });
  EXPECT_EQ(fixture.host.Choose({DialogKind::Save, "Save Cal", QDir::tempPath().toStdString(),
                                 "All Files (*.*)|*.*|Cal (*.cal)|*.cal|", 2}),
            path.toStdString());
}

TEST(Dialogs, OfAFolderThatIsGoneTheNearestOneThatIsThereIsOpenedAndNoNameProposed) {
  HostFixture fixture;
  ScratchFolder scratch;
  WhenUp<QFileDialog>(fixture.host, [&](QFileDialog& dialog) {
    EXPECT_EQ(dialog.directory().absolutePath().toStdString(), scratch.Text());
    EXPECT_EQ(dialog.findChild<QLineEdit*>("fileNameEdit")->text(), "");
    dialog.reject();
  });
  EXPECT_EQ(fixture.host.Choose({DialogKind::Save, "Save Cal", scratch.File("gone/with it"),
                                 "All Files (*.*)|*.*|", 1}),
            std::nullopt);
}

TEST(Dialogs, TheListOfFilesShowsSizeAndDateWhole) {
  HostFixture fixture;
  ScratchFolder scratch;
  std::ofstream(scratch.File("before the repair of port 2.cal")) << std::string(172365, 'x');
  WhenUp<QFileDialog>(fixture.host, [](QFileDialog& dialog) {
    auto* list = dialog.findChild<QTreeView*>("treeView");
    ASSERT_NE(list, nullptr);
    EXPECT_TRUE(RunUntil([&] { return list->model()->rowCount(list->rootIndex()) == 1; }));
    RunUntil([] { return false; }, 50);
    EXPECT_LE(list->header()->length(), list->viewport()->width());
    for (int column = 0; column < list->model()->columnCount(list->rootIndex()); ++column) {
      const QString text = list->model()->index(0, column, list->rootIndex()).data().toString();
      EXPECT_GE(list->columnWidth(column), list->fontMetrics().horizontalAdvance(text) + 4)
          << text.toStdString();
    }
    dialog.reject();
  });
  EXPECT_FALSE(fixture.host.Choose({DialogKind::Save, "Save Cal", scratch.Text(), "c|*.cal|", 1}));
}

TEST(Documents, WhatIsNotThereOrFindsNoViewerIsNotReported) {
  HostFixture fixture;
  ScratchFolder scratch;
  const std::string there = scratch.File("there.no-such-ending");
  std::ofstream(there) << "x";
  std::vector<std::string> told;
  for (const std::string& path : {scratch.File("UsersManual.pdf"), there}) {
    fixture.host.OnPrompt = [&](const Message& message) { told.push_back(message.Text); };
    fixture.host.OpenDocument(path);
  }
  EXPECT_TRUE(told.empty());
}

TEST(Dialogs, ANameTypedWithoutAnEndingGetsThatOfTheFilter) {
  HostFixture fixture;
  const std::string folder = QDir::tempPath().toStdString();
  std::string ending;
  const auto chosen = [&](const char* typed, const char* filter) {
    WhenUp<QFileDialog>(fixture.host, [&](QFileDialog& dialog) {
      dialog.findChild<QLineEdit*>("fileNameEdit")->setText(typed);
      QMetaObject::invokeMethod(&dialog, "accept");
    });
    return fixture.host.Choose({DialogKind::Save, "Save", folder, filter, 2, ending}).value_or("");
  };
  constexpr const char* kCal = "All Files (*.*)|*.*|cal_files(*.cal)|*.cal|";
  EXPECT_EQ(chosen("qk_none_such", kCal), folder + "/qk_none_such.cal");
  EXPECT_EQ(chosen("qk_none_such.old", kCal), folder + "/qk_none_such.old");
  EXPECT_EQ(chosen("qk_none_such", "A|*.*|spara_files(*.s?p)|*.s?p|"), folder + "/qk_none_such");
  EXPECT_EQ(chosen("qk_none_such", "A|*.*|All Files (*.*)|*.*|"), folder + "/qk_none_such");
  ending = "s1p";
  EXPECT_EQ(chosen("qk_none_such", "A|*.*|spara_files(*.s?p)|*.s?p|"),
            folder + "/qk_none_such.s1p");
  EXPECT_EQ(chosen("qk_none_such", "A|*.*|All Files (*.*)|*.*|"), folder + "/qk_none_such.s1p");
  EXPECT_EQ(chosen("qk_none_such", kCal), folder + "/qk_none_such.cal");
}

TEST(Boxes, WhereNoIsTheDefaultEnterAnswersNo) {
  HostFixture fixture;
  for (const bool no : {true, false}) {
    WhenUp<QMessageBox>(fixture.host,
                        [&](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); });
    EXPECT_EQ(fixture.host.Ask(
                  {.Title = "T", .Text = "Sure?", .Choice = Buttons::YesNo, .NoByDefault = no}),
              no ? Answer::No : Answer::Yes);
  }
}

TEST(Boxes, WorkContinuesBehindABox) {
  HostFixture fixture;
  int blocks = 0, atAnswer = 0;
  bool within = false;
  const auto work = [&] {
    EXPECT_FALSE(within) << "a wait inside the work must not begin the next piece of it";
    within = true;
    fixture.host.Breathe();
    within = false;
    return ++blocks < 50;
  };
  QTimer due;
  QObject::connect(&due, &QTimer::timeout, &due, [&] {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (box == nullptr || blocks < 50) return;
    atAnswer = blocks;
    box->accept();
  });
  due.start(1);
  fixture.host.Ask({.Title = "T", .Text = "Cannot Interrupt", .BackgroundWork = work});
  EXPECT_EQ(atAnswer, 50);
}

TEST(Dialogs, ADialogBehindAModalWindowBelongsToTheWindowThatOpenedThat) {
  HostFixture fixture;
  fixture.host.Show("First");
  fixture.window.activateWindow();
  ASSERT_TRUE(RunUntil([&] { return QApplication::activeWindow() == &fixture.window; }));
  QTimer due;
  QObject::connect(&due, &QTimer::timeout, &due, [&] {
    if (QApplication::activeWindow() == &fixture.secondWindow) fixture.host.Hide("Second");
  });
  due.start(1);
  fixture.host.Show("Second");
  due.stop();
  bool asked = false;
  WhenUp<QFileDialog>(fixture.host, [&](QFileDialog& dialog) {
    asked = true;
    EXPECT_EQ(dialog.parentWidget(), &fixture.window);
    dialog.reject();
  });
  fixture.host.Choose({DialogKind::Save, "Save", QDir::tempPath().toStdString(), "", 1});
  EXPECT_TRUE(asked);
}

TEST(Dialogs, ACancelledDialogGivesNothing) {
  HostFixture fixture;
  for (const DialogKind kind : {DialogKind::Open, DialogKind::Save, DialogKind::Colour}) {
    WhenUp<QDialog>(fixture.host, [](QDialog& dialog) { dialog.reject(); });
    EXPECT_EQ(fixture.host.Choose({kind, "T", "", "", 1}), std::nullopt);
  }
}

TEST(Dialogs, AColourIsGivenInHexadecimal) {
  HostFixture fixture;
  WhenUp<QColorDialog>(fixture.host, [](QColorDialog& dialog) {
    dialog.setCurrentColor(QColor(0x1A, 0x2B, 0x3C));
    dialog.accept();
  });
  EXPECT_EQ(fixture.host.Choose({DialogKind::Colour, "Colour", "", "", 1}), "#1a2b3c");
}

TEST(Dialogs, AColourBeginsWithTheOneThatIsInForce) {
  HostFixture fixture;
  WhenUp<QColorDialog>(fixture.host, [](QColorDialog& dialog) { dialog.accept(); });
  EXPECT_EQ(fixture.host.Choose({DialogKind::Colour, "Colour", "#4d5e6f", "", 1}), "#4d5e6f");
}

TEST(Dialogs, TheDialogOfColoursSaysColourAsThePagesDo) {
  HostFixture fixture;
  WhenUp<QColorDialog>(fixture.host, [](QColorDialog& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Select Colour");
    for (const QLabel* label : dialog.findChildren<QLabel*>())
      EXPECT_FALSE(label->text().contains("olor")) << label->text().toStdString();
    for (const QAbstractButton* button : dialog.findChildren<QAbstractButton*>())
      EXPECT_FALSE(button->text().contains("olor")) << button->text().toStdString();
    dialog.reject();
  });
  fixture.host.Choose({DialogKind::Colour, "", "", "", 1});
}

}  // namespace
}  // namespace qk::test
