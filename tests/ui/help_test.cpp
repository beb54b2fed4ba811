// SPDX-License-Identifier: MIT
// Help inside the program: F1 by the window, links, the page of keys, the log.
#include "ui/help_viewer.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <memory>

#include <QAbstractTextDocumentLayout>
#include <QAction>
#include <QFile>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QShortcut>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>
#include <QToolButton>

#include "help_fixture.h"
#include "quality/hints.h"

namespace qk::test {
namespace {

TEST(Help, F1ShowsThePageOfTheWindowThatHasTheKeyboard) {
  Helped vna;
  vna.F1("Form1");
  EXPECT_EQ(vna.Page(), "20-measuring.md");
  EXPECT_TRUE(vna.Text().toPlainText().startsWith("Measuring"));
  vna.Click("Form1", "SetEnhancement");
  vna.F1("EnhancePara");
  EXPECT_EQ(vna.Page(), "29-enhancement.md");
  EXPECT_EQ(vna.desktop.Help().findChild<QListWidget*>()->currentItem()->text().left(11),
            "Enhancement");
  QTest::keyClick(&vna.Text(), Qt::Key_Escape);
  EXPECT_FALSE(vna.desktop.Help().isVisible());
}

TEST(Help, F1WorksInAModalWindowAndInABox) {
  Helped vna;
  vna.Visit(*vna.registry.Find("NewCalKit"), [&](QWidget& window) {
    QTest::keyClick(&window, Qt::Key_F1);
    EXPECT_EQ(vna.Page(), "17-kits.md");
    vna.desktop.Help().hide();
  });
  vna.answers.stop();
  WhenUp<QMessageBox>(vna.host, [&](QMessageBox& box) {
    QTest::keyClick(&box, Qt::Key_F1);
    EXPECT_TRUE(vna.desktop.Help().isVisible());
    box.accept();
  });
  vna.host.ShowMessage("T", "t", Icon::None);
  EXPECT_TRUE(vna.desktop.Help().isVisible());
}

TEST(Help, AClickOnTheQuestionMarkOfAWindowShowsItsPage) {
  Helped vna;
  vna.Click("Form1", "SetEnhancement");
  auto& mark = vna.Widget<QToolButton>("EnhancePara", "WindowHelp");
  EXPECT_EQ(mark.toolTip(), "Help on this window (F1)");
  EXPECT_EQ(mark.focusPolicy(), Qt::NoFocus) << "Tab goes from field to field";
  QTest::mouseClick(&mark, Qt::LeftButton);
  EXPECT_TRUE(vna.desktop.Help().isVisible());
  EXPECT_EQ(vna.Page(), "29-enhancement.md");
  EXPECT_FALSE(vna.Text().textCursor().hasSelection());
  vna.desktop.Help().hide();
  vna.Visit(*vna.registry.Find("NewCalKit"), [&](QWidget& window) {
    QTest::mouseClick(window.findChild<QToolButton*>("WindowHelp"), Qt::LeftButton);
    EXPECT_TRUE(vna.desktop.Help().isVisible());
    EXPECT_EQ(vna.Page(), "17-kits.md");
  });
  // A window without a page, which only informs, has no mark.
  vna.host.Show("SweepStopping");
  EXPECT_EQ(vna.Window("SweepStopping").findChild<QToolButton*>("WindowHelp"), nullptr);
}

TEST(Help, EveryWindowThatCanBeWorkedHasAPageAndEveryPageIsThere) {
  UiFixture vna;
  for (const Form* form : vna.registry.All()) {
    if (!form->Style().Closable) continue;
    const QString page = PageOf(QString::fromStdString(form->Name()));
    EXPECT_TRUE(QFile::exists(":/manual/" + page) && !page.isEmpty()) << form->Name();
  }
}

TEST(Help, LinksAndPicturesOfThePagesLeadSomewhere) {
  Helped vna;
  auto& contents = *vna.desktop.Help().findChild<QListWidget*>();
  ASSERT_GE(contents.count(), 19);
  static const QRegularExpression kTarget("\\]\\(([^)#:]+)\\)");
  for (int row = 0; row < contents.count() - 1; ++row) {
    const QString name = contents.item(row)->data(Qt::UserRole).toString();
    QFile page(":/manual/" + name);
    ASSERT_TRUE(page.open(QIODevice::ReadOnly)) << name.toStdString();
    auto targets = kTarget.globalMatch(QString::fromUtf8(page.readAll()));
    while (targets.hasNext()) {
      const QString target = targets.next().captured(1);
      EXPECT_TRUE(QFile::exists(":/manual/" + target))
          << name.toStdString() << ": " << target.toStdString();
    }
    contents.setCurrentRow(row);
    EXPECT_EQ(vna.Page(), name);
    EXPECT_GT(vna.Text().toPlainText().size(), 200) << name.toStdString();
  }
}

TEST(Help, ALinkToASectionLeadsToItsHeading) {
  Helped vna;
  static const QRegularExpression kTarget("\\]\\(([0-9][^)#:]+)#([^)]+)\\)");
  QFile index(":/manual/99-index.md");
  ASSERT_TRUE(index.open(QIODevice::ReadOnly));
  auto targets = kTarget.globalMatch(QString::fromUtf8(index.readAll()));
  int sections = 0;
  while (targets.hasNext()) {
    const auto target = targets.next();
    vna.Text().setSource(QUrl("qrc:/manual/" + target.captured(1) + "#" + target.captured(2)));
    EXPECT_EQ(vna.Page(), target.captured(1));
    const QTextBlock block = vna.Text().textCursor().block();
    EXPECT_GT(block.blockFormat().headingLevel(), 1) << target.captured(2).toStdString();
    const QString letters = target.captured(2).section('-', 0, 0);
    EXPECT_TRUE(block.text().toLower().remove('"').startsWith(letters)) << letters.toStdString();
    ++sections;
  }
  EXPECT_GT(sections, 40);
}

TEST(Help, NoPictureIsWiderThanTheWindow) {
  Helped vna;
  vna.desktop.Help().show();
  vna.desktop.Help().ShowPage("00-start.md");
  EXPECT_LE(vna.Text().document()->idealWidth(), vna.Text().viewport()->width());
  vna.desktop.Help().ShowPage("34-pictures.md");
  EXPECT_LE(vna.Text().document()->idealWidth(), vna.Text().viewport()->width());
}

// The widths of the pictures on the page shown.
QList<double> PictureWidths(const QTextDocument& page) {
  QList<double> widths;
  for (QTextBlock block = page.begin(); block.isValid(); block = block.next())
    for (auto it = block.begin(); !it.atEnd(); ++it)
      if (it.fragment().charFormat().isImageFormat())
        widths << it.fragment().charFormat().toImageFormat().width();
  return widths;
}

// The colours of the links on the page shown.
QList<QColor> LinkColours(const QTextDocument& page) {
  QList<QColor> colours;
  for (QTextBlock block = page.begin(); block.isValid(); block = block.next())
    for (auto it = block.begin(); !it.atEnd(); ++it)
      if (it.fragment().charFormat().isAnchor())
        colours << it.fragment().charFormat().foreground().color();
  return colours;
}

TEST(Help, LinksCanBeReadOnADarkDesktopTooAndFollowIt) {
  const QPalette light = QApplication::palette();
  Helped vna;
  vna.desktop.Help().show();
  vna.desktop.Help().ShowPage("00-start.md");
  QPalette dark(QColor(49, 54, 59), QColor(49, 54, 59));
  dark.setColor(QPalette::Base, QColor(27, 30, 32));
  dark.setColor(QPalette::Link, QColor(0, 0, 255));  // the toolkit's own
  for (const QPalette& palette : {dark, light}) {
    QApplication::setPalette(palette);
    QCoreApplication::processEvents();
    const QList<QColor> colours = LinkColours(*vna.Text().document());
    ASSERT_GT(colours.size(), 3);
    const int ground = qGray(vna.Text().palette().color(QPalette::Base).rgb());
    for (const QColor& colour : colours) EXPECT_GT(std::abs(qGray(colour.rgb()) - ground), 80);
  }
}

TEST(Help, TheTitlesOfAllPagesAreWholeAlsoBesideAScrollBar) {
  Helped vna;
  for (const QSize size : {QSize(920, 640), QSize(900, 300)}) {
    vna.desktop.Help().resize(size);
    vna.desktop.Help().show();
    auto& contents = *vna.desktop.Help().findChild<QListWidget*>();
    ASSERT_TRUE(RunUntil([&] { return vna.desktop.Help().height() == size.height(); }));
    EXPECT_GE(contents.viewport()->width(), contents.sizeHintForColumn(0)) << size.width();
    EXPECT_EQ(contents.verticalScrollBar()->isVisible(), size.height() < 500);
  }
}

TEST(Help, TheContentsFoldInAWindowOfLessThanTwiceTheirWidthAndByTheirButton) {
  Helped vna;
  HelpViewer& help = vna.desktop.Help();
  help.resize(1200, 640);
  help.ShowDocument(AddressOf("25-display.md"));
  auto& contents = *help.findChild<QListWidget*>();
  auto& button = *help.findChild<QPushButton*>("ShowContents");
  ASSERT_TRUE(contents.isVisible());
  EXPECT_TRUE(button.isChecked());
  QTest::mouseClick(contents.viewport(), Qt::LeftButton, {},
                    contents.visualItemRect(contents.item(2)).center());
  EXPECT_TRUE(contents.isVisible()) << "there is room for both";
  QTest::mouseClick(&button, Qt::LeftButton);
  EXPECT_FALSE(contents.isVisible());
  help.resize(1190, 640);
  EXPECT_FALSE(contents.isVisible()) << "as it was chosen";
  QTest::mouseClick(&button, Qt::LeftButton);
  EXPECT_TRUE(contents.isVisible());
  const int least = 2 * contents.width();
  help.resize(least, 640);
  EXPECT_TRUE(contents.isVisible());
  help.resize(least - 1, 640);
  EXPECT_FALSE(contents.isVisible());
  help.resize(1200, 640);
  EXPECT_TRUE(contents.isVisible());
}

TEST(Help, APictureFollowsTheWidthOfTheWindow) {
  Helped vna;
  vna.desktop.Help().ShowPage("00-start.md");  // as F1 does it: the page first, then the window
  vna.desktop.Help().show();
  vna.desktop.Help().resize(920, 640);
  const auto widest = [&] {
    const QList<double> widths = PictureWidths(*vna.Text().document());
    return *std::max_element(widths.begin(), widths.end());
  };
  ASSERT_TRUE(RunUntil([&] { return widest() <= vna.Text().viewport()->width(); }));
  const double first = widest();
  EXPECT_GT(first, 400);
  vna.desktop.Help().resize(760, 640);
  ASSERT_TRUE(RunUntil([&] { return widest() < first; }));
  EXPECT_LE(vna.Text().document()->idealWidth(), vna.Text().viewport()->width());
  const double narrow = widest();
  vna.desktop.Help().resize(1800, 640);
  ASSERT_TRUE(RunUntil([&] { return widest() > first; })) << "its own size again";
  const QImage own(":/manual/pictures/main-parts.png");
  EXPECT_LE(widest(), own.width()) << "never larger than drawn";
  EXPECT_LT(narrow, own.width());
}

TEST(Help, ALongPageIsLaidOutOnce) {
  Helped vna;
  vna.desktop.Help().show();
  int layouts = 0;
  for (const char* page : {"96-messages.md", "86-remote.md"}) {
    const auto* layout = vna.Text().document()->documentLayout();
    const auto count = QObject::connect(layout, &QAbstractTextDocumentLayout::documentSizeChanged,
                                        [&layouts] { ++layouts; });
    vna.desktop.Help().ShowPage(page);
    QObject::disconnect(count);
  }
  EXPECT_GT(layouts, 0);
  EXPECT_LT(layouts, 40) << "not once for each cell of its tables";
}

// That each piece of text on the page shown has lines, that the page is as high as a copy of it
// that is laid out as a whole, and that the text at its end is painted.
void ExpectTextInItsPlace(QTextBrowser& shown, const std::string& name) {
  SCOPED_TRACE(name);
  const QTextDocument& page = *shown.document();
  const auto* layout = page.documentLayout();
  const double height = page.size().height();
  const std::unique_ptr<QTextDocument> copy(page.clone());
  copy->setTextWidth(page.textWidth());
  EXPECT_NEAR(height, copy->size().height(), 1);
  ASSERT_TRUE(RunUntil([&] {
    const double beyond = height - shown.viewport()->height();
    return std::abs(shown.verticalScrollBar()->maximum() - std::max(0.0, beyond)) <= 1;
  })) << "the scroll bar does not lead to its end";
  shown.verticalScrollBar()->setValue(shown.verticalScrollBar()->maximum());
  const QImage end = shown.viewport()->grab().toImage();
  const int top = shown.verticalScrollBar()->value();
  const QRect view = shown.viewport()->rect();
  int painted = 0;
  for (QTextBlock block = page.begin(); block.isValid(); block = block.next()) {
    QString text = block.text();
    if (text.remove(QChar::ObjectReplacementCharacter).trimmed().isEmpty()) continue;
    const QRectF place = layout->blockBoundingRect(block);
    ASSERT_GT(block.layout()->lineCount(), 0) << text.toStdString();
    ASSERT_GT(place.height(), 5) << text.toStdString();
    const QRect seen = place.translated(0, -top).toAlignedRect();
    if (!view.contains(seen)) continue;
    bool ink = false;
    for (int y = seen.top(); y <= seen.bottom() && !ink; ++y)
      for (int x = seen.left(); x <= seen.right() && !ink; ++x) ink = qGray(end.pixel(x, y)) < 160;
    EXPECT_TRUE(ink) << "not painted: " << text.toStdString();
    ++painted;
  }
  EXPECT_GT(painted, 0) << "the end of the page is text";
}

TEST(Help, EveryPageShowsAllItsText) {
  Helped vna;
  HelpViewer& help = vna.desktop.Help();
  auto& contents = *help.findChild<QListWidget*>();
  const auto words = [](QString text) {
    return text.remove(QChar::ObjectReplacementCharacter).simplified().toStdString();
  };
  int width = 920;
  for (int row = 0; row < contents.count() - 1; ++row) {
    const QString name = contents.item(row)->data(Qt::UserRole).toString();
    QFile file(":/manual/" + name);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    QTextDocument written;
    written.setMarkdown(QString::fromUtf8(file.readAll()));
    help.hide();
    help.ShowPage(name);
    help.show();
    EXPECT_EQ(words(vna.Text().toPlainText()), words(written.toPlainText())) << name.toStdString();
    ExpectTextInItsPlace(vna.Text(), name.toStdString() + ", the page first, then the window");
    help.ShowPage(name);
    ExpectTextInItsPlace(vna.Text(), name.toStdString() + ", in a window that is open");
    help.ShowPage(name);
    width = width == 920 ? 760 : 920;
    help.resize(width, 640);
    QApplication::processEvents();
    ExpectTextInItsPlace(vna.Text(), name.toStdString() + ", in another width");
  }
}

TEST(Help, AHeadingIsAtTheTopHoweverFarDownItIs) {
  Helped vna;
  HelpViewer& help = vna.desktop.Help();
  auto& contents = *help.findChild<QListWidget*>();
  for (int row = 0; row < contents.count() - 1; ++row) {
    const QString name = contents.item(row)->data(Qt::UserRole).toString();
    help.ShowPage(name);
    QString last;
    const QTextDocument& page = *vna.Text().document();
    for (QTextBlock block = page.begin(); block.isValid(); block = block.next())
      if (block.blockFormat().headingLevel() > 0) last = block.text();
    help.ShowPage("90-simulator.md");
    ASSERT_TRUE(help.ShowDocument(AddressOf(name + "#" + last)));
    QApplication::processEvents();
    const QTextBlock heading = vna.Text().textCursor().block();
    EXPECT_EQ(heading.text(), last);
    const double top = page.documentLayout()->blockBoundingRect(heading).top();
    const QScrollBar& bar = *vna.Text().verticalScrollBar();
    const double end = page.size().height() - vna.Text().viewport()->height();
    EXPECT_NEAR(bar.value(), std::max(0.0, std::min(top, end)), 2) << name.toStdString();
  }
}

TEST(Help, BackLeadsToThePageBefore) {
  Helped vna;
  vna.desktop.Help().ShowPage("25-display.md");
  vna.desktop.Help().ShowPage("30-markers.md");
  auto* back = vna.desktop.Help().findChild<QPushButton*>("Back");
  ASSERT_EQ(back->text(), "&Back");
  back->click();
  EXPECT_EQ(vna.Page(), "25-display.md");
}

TEST(Help, APageListsAllKeys) {
  Helped vna;
  auto& contents = *vna.desktop.Help().findChild<QListWidget*>();
  contents.setCurrentRow(contents.count() - 1);
  const QString text = vna.Text().toPlainText();
  EXPECT_TRUE(text.startsWith("All keys"));
  const QString page = vna.desktop.Help().KeysPage();
  EXPECT_TRUE(page.contains("| Alt+S | START |"));
  int letters = 0;
  for (const Form* form : vna.registry.All())
    for (const Control& control : form->Controls()) {
      if (control.Key == 0 || control.Key == ' ' || control.Kind == ControlKind::MenuItem) continue;
      ++letters;
      EXPECT_TRUE(page.contains("| Alt+" + QString(QChar(control.Key)).toUpper() + " | " +
                                QString::fromStdString(control.Caption) + " |"))
          << form->Name() << "." << control.Name;
    }
  EXPECT_GT(letters, 50);
  const QString main =
      page.section("## " + QString::fromStdString(vna.registry.Find("Form1")->Caption()), 1)
          .section("## ", 0, 0);
  EXPECT_TRUE(main.contains("| Alt+S | START |"));
  EXPECT_FALSE(main.contains("| Alt+1 |")) << "letters of menu items count in their menu only";
  EXPECT_FALSE(page.contains("| Key | |"));
  const QString common = page.section("## ", 0, 0);  // of each key only its table
  int keys = 0;
  for (const QAction* item : vna.desktop.Main().findChildren<QAction*>())
    for (const QKeySequence& key : item->shortcuts()) {
      ++keys;
      EXPECT_TRUE(common.contains(key.toString())) << key.toString().toStdString();
    }
  EXPECT_GE(keys, 13);
  for (const QShortcut* key : vna.desktop.Main().findChildren<QShortcut*>()) {
    const QString name = key->key().toString().replace("Pg", "Page");
    EXPECT_TRUE(common.contains(name == "Esc"    ? "Escape"
                                : name == "Menu" ? "Menu key"
                                                 : name))
        << name.toStdString();
  }
  contents.setCurrentRow(0);
  EXPECT_EQ(vna.Page(), "00-start.md") << "and back from it";
}

TEST(Help, WhatTheSystemCannotShowIsShownInside) {
  Helped vna;
  EXPECT_TRUE(vna.desktop.Help().ShowDocument(vna.folder + "/UsersManual.pdf"));
  EXPECT_EQ(vna.Page(), "00-start.md");
  EXPECT_TRUE(vna.desktop.Help().ShowDocument("ZoConversion.pdf"));
  EXPECT_EQ(vna.Page(), "29-enhancement.md");
  const std::string log = vna.folder + "/SysLog.txt";
  std::ofstream(log) << "a line of the log\n";
  EXPECT_TRUE(vna.desktop.Help().ShowDocument(log));
  EXPECT_EQ(vna.Text().toPlainText(), "a line of the log\n");
  vna.desktop.Help().ShowPage("29-enhancement.md");
  EXPECT_TRUE(vna.Text().toPlainText().startsWith("Enhancement")) << "the page shown before it";
  EXPECT_FALSE(vna.desktop.Help().ShowDocument(vna.folder + "/other.pdf"));
  EXPECT_FALSE(vna.desktop.Help().ShowDocument(vna.folder + "/gone.txt"));
}

// Without the file that the system would show.
TEST(Help, UsersGuideFallsBackOnThePages) {
  Helped vna;
  vna.host.OpenDocument(vna.folder + "/UsersManual.pdf");
  EXPECT_TRUE(vna.desktop.Help().isVisible());
  EXPECT_TRUE(vna.prompts.empty());
  vna.AnswerAll();
  vna.host.OpenDocument(vna.folder + "/gone.pdf");
  EXPECT_TRUE(vna.prompts.empty()) << "nothing is reported of a document that nothing shows";
}

TEST(Help, EveryHintHasItsParagraphInTheManual) {
  Helped vna;
  for (std::size_t i = 0; i < kHintKinds; ++i) {
    const std::string topic(HintTopic(static_cast<HintKind>(i)));
    vna.host.OpenDocument("manual:68-trust.md#" + topic);
    EXPECT_TRUE(vna.desktop.Help().isVisible());
    EXPECT_EQ(vna.Page(), "68-trust.md");
    const QTextBlock at = vna.Text().textCursor().block();
    EXPECT_EQ(at.text().toStdString(), topic);
    EXPECT_EQ(vna.Text().textCursor().selectedText().toStdString(), topic);
    EXPECT_GT(at.blockFormat().headingLevel(), 0) << topic;
    EXPECT_TRUE(vna.Text().viewport()->rect().contains(vna.Text().cursorRect().center())) << topic;
    EXPECT_FALSE(at.next().text().isEmpty()) << topic;
  }
}

TEST(FileMenu, ListsTheFilesUsedLastBelowExitAndOpensThem) {
  Helped vna;
  auto* first = vna.desktop.Main().findChild<QAction*>("Recent1");
  ASSERT_NE(first, nullptr);
  EXPECT_FALSE(first->isVisible());
  const std::string path = vna.folder + "/filter.cal";
  vna.program.controller().recent().Note(vna.folder + "/x.s2p");
  vna.program.controller().recent().Note(path);
  auto* menu = qobject_cast<QMenu*>(first->parent());
  emit menu->aboutToShow();
  EXPECT_TRUE(first->isVisible());
  EXPECT_EQ(first->text(), "&1 filter.cal");
  EXPECT_EQ(vna.desktop.Main().findChild<QAction*>("Recent2")->text(), "&2 x.s2p");
  EXPECT_FALSE(vna.desktop.Main().findChild<QAction*>("Recent3")->isVisible());
  const QList<QAction*> items = menu->actions();
  EXPECT_GT(items.indexOf(first), items.indexOf(vna.desktop.Main().findChild<QAction*>("Exit")));
  vna.AnswerAll();
  first->trigger();
  ASSERT_EQ(vna.prompts.size(), 1u);
  EXPECT_EQ(vna.prompts[0].Text, path + ": the file is no longer there");
  EXPECT_EQ(first->text(), "&1 x.s2p");
}

TEST(FileMenu, KeysOpenSaveAndPrint) {
  Helped vna;
  vna.desktop.Main().activateWindow();
  ASSERT_TRUE(RunUntil([&] { return vna.desktop.Main().isActiveWindow(); }));
  struct Row {
    Qt::Key Key;
    const char* Item;
  };
  for (const Row& row :
       {Row{Qt::Key_O, "LoadCal"}, {Qt::Key_S, "SaveCal"}, {Qt::Key_P, "Printgraphics"}}) {
    auto* item = vna.desktop.Main().findChild<QAction*>(row.Item);
    int triggered = 0;
    const auto count = QObject::connect(item, &QAction::triggered, [&triggered] { ++triggered; });
    WhenUp<QDialog>(vna.host, [](QDialog& dialog) { dialog.reject(); });
    vna.desktop.Main().activateWindow();
    ASSERT_TRUE(RunUntil([&] { return vna.desktop.Main().isActiveWindow(); }));
    QTest::keyClick(&vna.desktop.Main(), row.Key, Qt::ControlModifier);
    EXPECT_EQ(triggered, 1) << row.Item;
    QObject::disconnect(count);
  }
}

}  // namespace
}  // namespace qk::test
