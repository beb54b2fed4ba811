// SPDX-License-Identifier: MIT
// The letters of all menus: those of the main window and the one of a graph.
#include <map>

#include <QAction>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMenuBar>
#include <QTest>

#include "ui/picture_view.h"
#include "ui_fixture.h"

namespace qk::test {
namespace {

// Each item of a menu has a letter that no other has, unless the others have all of its letters
// (S21 below S11); submenus are walked too.
void ExpectLettersOf(const QList<QAction*>& items, const std::string& menu) {
  std::map<std::string, std::string> owners;
  QStringList without;
  for (const QAction* item : items) {
    // A line that is only read, the title or the verdict of a graph, needs none.
    if (item->isSeparator() || !item->isVisible() || item->text().isEmpty()) continue;
    if (item->objectName() == "channel" || item->objectName() == "verdict") continue;
    const std::string text = item->text().toStdString();
    const std::string letter = QKeySequence::mnemonic(item->text()).toString().toStdString();
    if (letter.empty()) {
      without << item->text();
    } else {
      const auto [owner, first] = owners.emplace(letter, text);
      EXPECT_TRUE(first) << menu << ": " << text << " and " << owner->second;
    }
    if (item->menu() == nullptr) continue;
    emit item->menu()->aboutToShow();
    ExpectLettersOf(item->menu()->actions(), text);
  }
  for (const QString& text : without)
    for (const QChar c : text.toUpper())
      if (c >= 'A' && c <= 'Z') {
        EXPECT_TRUE(owners.contains("Alt+" + std::string(1, c.toLatin1())))
            << menu << ": " << text.toStdString() << " has " << c.toLatin1() << " free";
      }
}

TEST(Menus, NoLetterStandsTwiceInAMenuAndEachItemHasOne) {
  UiFixture vna;
  vna.StartUp();
  for (int i = 0; i < 10; ++i)
    vna.program.controller().recent().Note("/data/f" + std::to_string(i) +
                                           (i < 5 ? ".cal" : ".s2p"));
  vna.host.Show("Form1");
  ExpectLettersOf(vna.desktop.Main().menuBar()->actions(), "the menu bar");
}

TEST(Menus, TheMenuOfAGraphHasItsChannelAsTitleAndALetterForEachItem) {
  UiFixture vna;
  vna.StartUp();
  vna.program.session().Display.DisplaySet = DisplaySet::All;
  vna.program.graphs().RedrawAll(true);
  PictureView& view = vna.desktop.Main().Picture();
  for (int graph = 0; graph < 4; ++graph) {
    const GraphRecord& record = vna.program.graphs().Graph(graph);
    const QPoint at((record.Left + record.Right) / 2, (record.Top + record.Bottom) / 2);
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, view.mapToGlobal(at));
    QApplication::sendEvent(&view, &event);
    QMenu* menu = nullptr;
    for (QMenu* open : view.findChildren<QMenu*>("GraphMenu"))
      if (open->isVisible()) menu = open;
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->actions().front()->text(), QString("CH%1").arg(graph + 1));
    EXPECT_FALSE(menu->actions().front()->isEnabled());
    ExpectLettersOf(menu->actions(), "the graph's menu");
    menu->close();
  }
}

}  // namespace
}  // namespace qk::test
