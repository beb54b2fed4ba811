// SPDX-License-Identifier: MIT
// The search in the viewer of the manual.
#include <fstream>

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTest>

#include "help_fixture.h"

namespace qk::test {
namespace {

struct Searched : Helped {
  Searched() {
    desktop.Help().show();
    desktop.Help().activateWindow();
    EXPECT_TRUE(RunUntil([&] { return desktop.Help().isActiveWindow(); }));
  }
  QLineEdit& Words() { return *desktop.Help().findChild<QLineEdit*>("Words"); }
  QCheckBox& AllPages() { return *desktop.Help().findChild<QCheckBox*>("AllPages"); }
  std::string FindStatus() {
    return desktop.Help().findChild<QLabel*>("FindStatus")->text().toStdString();
  }
  std::string Found() { return Text().textCursor().selectedText().toStdString(); }
  int Place() { return Text().textCursor().selectionStart(); }
  bool Visible() { return Text().viewport()->rect().contains(Text().cursorRect().center()); }
  void Type(const char* words) {
    QTest::keyClick(&Text(), Qt::Key_F, Qt::ControlModifier);
    ASSERT_TRUE(RunUntil([&] { return Words().hasFocus(); }));
    QTest::keyClicks(&Words(), words);
  }
};

TEST(Help, CtrlFFindsWordsOnThePageWhileTheyAreTyped) {
  Searched vna;
  vna.desktop.Help().ShowPage("96-messages.md");
  vna.Type("no longer there");
  EXPECT_EQ(vna.Words().text(), "no longer there");
  EXPECT_EQ(vna.Found(), "no longer there");
  EXPECT_TRUE(vna.Visible());
  EXPECT_EQ(vna.FindStatus(), "");
  vna.Type("SYSTEM zo");  // Ctrl+F marks the words of before: they are typed over
  EXPECT_EQ(vna.Words().text(), "SYSTEM zo");
  EXPECT_EQ(vna.Found(), "System Zo") << "whatever the case";
}

TEST(Help, F3GoesOnAndShiftF3BackAndBothRoundTheEnds) {
  Searched vna;
  vna.desktop.Help().ShowPage("96-messages.md");
  vna.Type("Apply Cal");
  const int first = vna.Place();
  QTest::keyClick(&vna.Words(), Qt::Key_F3);
  const int second = vna.Place();
  EXPECT_GT(second, first);
  EXPECT_TRUE(vna.Visible());
  QTest::keyClick(&vna.Words(), Qt::Key_F3, Qt::ShiftModifier);
  EXPECT_EQ(vna.Place(), first);
  EXPECT_EQ(vna.FindStatus(), "");
  QTest::keyClick(&vna.Words(), Qt::Key_F3, Qt::ShiftModifier);
  EXPECT_GT(vna.Place(), second);
  EXPECT_EQ(vna.FindStatus(), "From the end again");
  QTest::keyClick(&vna.Words(), Qt::Key_Return);
  EXPECT_EQ(vna.Place(), first);
  EXPECT_EQ(vna.FindStatus(), "From the top again");
  QTest::keyClick(&vna.Text(), Qt::Key_F3);
  EXPECT_EQ(vna.Place(), second) << "also with the keyboard on the text";
  EXPECT_EQ(vna.Page(), "96-messages.md");
}

TEST(Help, WhatIsNotThereIsReportedAndThePlaceStays) {
  Searched vna;
  vna.desktop.Help().ShowPage("30-markers.md");
  vna.Type("marker");
  vna.Type("glockenspiel");
  const int place = vna.Place();
  EXPECT_EQ(vna.FindStatus(), "Not on this page");
  EXPECT_EQ(vna.Found(), "") << "nothing is marked as found";
  QTest::keyClick(&vna.Words(), Qt::Key_Return);
  EXPECT_EQ(vna.FindStatus(), "Not on this page");
  EXPECT_EQ(vna.Page(), "30-markers.md");
  EXPECT_EQ(vna.Place(), place);
  vna.AllPages().click();
  QTest::keyClick(&vna.Words(), Qt::Key_Return);
  EXPECT_EQ(vna.FindStatus(), "On no page of the manual");
  EXPECT_EQ(vna.Page(), "30-markers.md");
  vna.Words().clear();
  QTest::keyClick(&vna.Words(), Qt::Key_F3);
  EXPECT_EQ(vna.FindStatus(), "") << "no words, nothing to look for";
}

TEST(Help, AllPagesFindsAMessageFromAnyPage) {
  Searched vna;
  vna.desktop.Help().ShowPage("30-markers.md");
  vna.AllPages().click();
  vna.Type("the file is no longer there");
  EXPECT_EQ(vna.FindStatus(), "Not on this page. Enter looks in the others");
  EXPECT_EQ(vna.Page(), "30-markers.md") << "typing turns no page";
  QTest::keyClick(&vna.Words(), Qt::Key_Return);
  EXPECT_EQ(vna.Page(), "96-messages.md");
  EXPECT_EQ(vna.Found(), "the file is no longer there");
  EXPECT_TRUE(vna.Visible());
  EXPECT_EQ(vna.desktop.Help().findChild<QListWidget*>()->currentItem()->text(), "Messages");
  EXPECT_TRUE(vna.Words().hasFocus()) << "for the next Enter";
}

TEST(Help, AllPagesGoesThroughThePagesInTheirOrderAndRound) {
  Searched vna;
  vna.desktop.Help().ShowPage("00-start.md");
  vna.AllPages().click();
  vna.Type("velocity factor");
  const auto shown = [&] {
    return vna.desktop.Help()
        .findChild<QListWidget*>()
        ->currentItem()
        ->data(Qt::UserRole)
        .toString();
  };
  QStringList pages;
  while (pages.size() < 3 || pages.last() != pages.first()) {
    QTest::keyClick(&vna.Words(), Qt::Key_F3);
    EXPECT_EQ(QString::fromStdString(vna.Found()).toLower(), "velocity factor");
    EXPECT_TRUE(vna.Visible());
    if (pages.isEmpty() || pages.last() != shown()) pages << shown();
    ASSERT_LT(pages.size(), 40) << "it never comes round";
  }
  pages.removeLast();
  EXPECT_EQ(pages.first(), "07-examples.md");
  EXPECT_TRUE(pages.contains("27-time-domain.md") && pages.contains("97-glossary.md"));
  EXPECT_EQ(pages.last(), "All keys");
  EXPECT_TRUE(std::is_sorted(pages.begin(), pages.end()));
  QTest::keyClick(&vna.Words(), Qt::Key_F3, Qt::ShiftModifier);
  EXPECT_EQ(shown(), "All keys") << "and back";
  QTest::keyClick(&vna.Words(), Qt::Key_F3, Qt::ShiftModifier);
  EXPECT_EQ(shown(), "99-index.md");
}

TEST(Help, TheLogAndTheKeysCanBeSearched) {
  Searched vna;
  const std::string log = vna.folder + "/SysLog.txt";
  std::ofstream(log) << "one\ntwo\nthree\n";
  ASSERT_TRUE(vna.desktop.Help().ShowDocument(log));
  vna.Type("thr");
  EXPECT_EQ(vna.Found(), "thr");
  vna.Type("Alt+S");
  EXPECT_EQ(vna.FindStatus(), "Not on this page");
  vna.AllPages().click();
  QTest::keyClick(&vna.Words(), Qt::Key_Return);
  EXPECT_EQ(vna.Found(), "Alt+S");
  EXPECT_EQ(vna.desktop.Help().findChild<QListWidget*>()->currentItem()->text(), "All keys");
}

}  // namespace
}  // namespace qk::test
