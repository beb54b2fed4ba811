// SPDX-License-Identifier: MIT
// The side bar of file dialogs.
#include "ui/dialogs.h"

#include <gtest/gtest.h>

#include <QDir>
#include <filesystem>

#include "support/scratch_folder.h"

namespace qk::test {
namespace {

QStringList PathsOf(const QList<QUrl>& urls) {
  QStringList paths;
  for (const QUrl& url : urls) paths << url.toLocalFile();
  return paths;
}

struct SideBar : testing::Test {
  QString Folder(const std::string& name) {
    std::filesystem::create_directories(scratch.File(name));
    return QString::fromStdString(scratch.File(name));
  }
  ScratchFolder scratch;
  Places places;
};

TEST_F(SideBar, BeginsWithTheFolderOfTheDialogAndHasTheUsersOwn) {
  const QString start = Folder("start");
  const QStringList paths = PathsOf(places.SideBar(start.toStdString()));
  EXPECT_EQ(paths.front(), start);
  EXPECT_TRUE(paths.contains(QDir::homePath()));
}

TEST_F(SideBar, HasTheFoldersOfTheFilesChosenLastTheNewestFirst) {
  const QString start = Folder("start");
  for (const char* name : {"a", "b", "c", "d", "e", "a"})
    places.Chosen((Folder(name) + "/x.s2p").toStdString());
  const QStringList paths = PathsOf(places.SideBar(start.toStdString()));
  EXPECT_EQ(paths.mid(0, 5),
            (QStringList{start, Folder("a"), Folder("e"), Folder("d"), Folder("c")}));
  EXPECT_FALSE(paths.contains(Folder("b")));
}

// A folder noted twice would push an older one out.
TEST_F(SideBar, AFolderChosenTwiceInARowLeavesRoomForTheOthers) {
  const QString start = Folder("start");
  for (const char* name : {"b", "a", "a", "c", "d"})
    places.Chosen((Folder(name) + "/x.s2p").toStdString());
  EXPECT_EQ(PathsOf(places.SideBar(start.toStdString())).mid(0, 5),
            (QStringList{start, Folder("d"), Folder("c"), Folder("a"), Folder("b")}));
}

TEST_F(SideBar, NamesEachFolderOnceAndNoneThatIsGone) {
  const QString start = Folder("start");
  places.Chosen((start + "/x.s2p").toStdString());
  places.Chosen(scratch.File("gone/x.s2p"));
  const QStringList paths = PathsOf(places.SideBar(start.toStdString()));
  EXPECT_EQ(paths.count(start), 1);
  EXPECT_FALSE(paths.contains(QString::fromStdString(scratch.File("gone"))));
}

}  // namespace
}  // namespace qk::test
