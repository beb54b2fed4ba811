// SPDX-License-Identifier: MIT
// Files dragged onto the main window.
#include <gtest/gtest.h>

#include <QDropEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QUrl>
#include <fstream>

#include "ui_fixture.h"

namespace qk::test {
namespace {

struct Dragged {
  explicit Dragged(const std::vector<std::string>& paths) {
    QList<QUrl> urls;
    for (const std::string& path : paths) urls << QUrl::fromLocalFile(QString::fromStdString(path));
    files.setUrls(urls);
  }
  // Does the window take it when it is dragged in, and when it is let go there?
  bool Enters(QWidget& window) {
    QDragEnterEvent event({50, 50}, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    event.ignore();
    QCoreApplication::sendEvent(&window, &event);
    return event.isAccepted();
  }
  bool Drops(QWidget& window) {
    QDropEvent event({50, 50}, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    event.ignore();
    QCoreApplication::sendEvent(&window, &event);
    return event.isAccepted();
  }
  QMimeData files;
};

struct Drops : testing::Test, UiFixture {
  Drops() {
    std::ofstream(path) << "# MHZ S RI R 50\n0 0.5 0.25\n3000 0.5 0.25\n";
    StartUp();
  }
  bool Loaded() { return program.session().Channel(1).MemoryValid; }

  std::string path = scratch.File("a.s1p");
};

TEST_F(Drops, AFileIsTakenAndLoadedIntoMemory) {
  Dragged file({path});
  EXPECT_TRUE(file.Enters(Window("Form1")));
  EXPECT_TRUE(file.Drops(Window("Form1")));
  EXPECT_FALSE(Loaded());  // the program that gave it does not wait for the load
  EXPECT_TRUE(RunUntil([&] { return Loaded(); }));
  EXPECT_EQ(program.session().Channel(1).MemoryRe[1], 0.5);
}

TEST_F(Drops, SeveralFilesAndWhatIsNoFileAreNotTaken) {
  Dragged two({path, path});
  EXPECT_FALSE(two.Enters(Window("Form1")));
  EXPECT_FALSE(two.Drops(Window("Form1")));
  Dragged text({});
  text.files.setText("a.s1p");
  EXPECT_FALSE(text.Enters(Window("Form1")));
  Dragged page({});
  page.files.setUrls({QUrl("https://host/a.s1p")});
  EXPECT_FALSE(page.Enters(Window("Form1")));
}

TEST_F(Drops, NothingIsTakenWhileABoxIsUp) {
  bool looked = false;
  WhenUp<QMessageBox>(host, [&](QMessageBox& box) {
    Dragged file({path});
    EXPECT_FALSE(file.Enters(Window("Form1")));
    EXPECT_FALSE(file.Drops(Window("Form1")));
    looked = true;
    box.done(QMessageBox::Ok);
  });
  host.ShowMessage("T", "t", Icon::None);
  EXPECT_TRUE(looked);
  EXPECT_FALSE(RunUntil([&] { return Loaded(); }, 20));
}

}  // namespace
}  // namespace qk::test
