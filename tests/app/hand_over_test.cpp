// SPDX-License-Identifier: MIT
// A file goes to the program that runs over the same folder; a folder in use is reported.
#include "app/hand_over.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

#include <QLocalSocket>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include "app/files_to_open.h"
#include "app/take_folder.h"
#include "files/session_file.h"
#include "support/scratch_folder.h"
#include "ui/ui_fixture.h"

namespace qk::test {
namespace {

namespace fs = std::filesystem;

// The runtime folder of a test's own; without a name there is none.
class RuntimeFolder {
 public:
  explicit RuntimeFolder(const char* path) {
    if (const char* before = std::getenv("XDG_RUNTIME_DIR")) before_ = before;
    path != nullptr ? setenv("XDG_RUNTIME_DIR", path, 1) : unsetenv("XDG_RUNTIME_DIR");
  }
  ~RuntimeFolder() {
    before_ ? setenv("XDG_RUNTIME_DIR", before_->c_str(), 1) : unsetenv("XDG_RUNTIME_DIR");
  }
  RuntimeFolder(const RuntimeFolder&) = delete;
  RuntimeFolder& operator=(const RuntimeFolder&) = delete;

 private:
  std::optional<std::string> before_;
};

// The second start has a process of its own in reality; here it is a thread.
Result<Done> HandOverFromElsewhere(const std::string& folder, const std::string& file) {
  std::optional<Result<Done>> result;
  std::atomic<bool> done = false;
  std::thread client([&] {
    result = HandOver(folder, file);
    done = true;
  });
  EXPECT_TRUE(RunUntil([&] { return done.load(); }, 30000));
  client.join();
  return *result;
}

TEST(HandOver, AFileGoesToTheProgramOverTheSameFolderWithItsWholePath) {
  for (const bool runtime : {true, false}) {
    const ScratchFolder run, folder, other;
    const RuntimeFolder here(runtime ? run.Text().c_str() : nullptr);
    std::vector<std::string> got;
    FileReceiver receiver;
    receiver.OnFile = [&](const std::string& file) {
      got.push_back(file);
      return std::string();
    };
    ASSERT_TRUE(receiver.Listen(folder.Text()));
    EXPECT_EQ(fs::is_empty(folder.Text()), runtime);
    EXPECT_TRUE(HandOverFromElsewhere(folder.Text() + "/", "a b\xC3\xA4.cal"));
    EXPECT_EQ(got, std::vector{(fs::current_path() / "a b\xC3\xA4.cal").string()});
    EXPECT_FALSE(HandOverFromElsewhere(other.Text(), "x.cal"));
    EXPECT_EQ(got.size(), 1u);
  }
}

TEST(HandOver, ARefusalComesBackWithItsReasonAndNobodyListeningWithoutAPlace) {
  const ScratchFolder run, folder;
  const RuntimeFolder here(run.Text().c_str());
  EXPECT_EQ(HandOverFromElsewhere(folder.Text(), "x.cal").Why().Place, "");
  FileReceiver receiver;
  receiver.OnFile = [](const std::string&) { return std::string("a box is up"); };
  ASSERT_TRUE(receiver.Listen(folder.Text()));
  EXPECT_EQ(HandOverFromElsewhere(folder.Text(), "x.cal").Why().Text(), "x.cal: a box is up");
  receiver.Close();
  EXPECT_EQ(HandOverFromElsewhere(folder.Text(), "x.cal").Why().Place, "");
  EXPECT_TRUE(fs::is_empty(run.Text()));
}

TEST(HandOver, OnlyTheUserReachesTheSocketAndADeadOneIsReplaced) {
  const ScratchFolder run, folder;
  const RuntimeFolder here(run.Text().c_str());
  const std::string place = SocketsOf(folder.Text()).front();
  {
    // What a killed program leaves: a socket without a listener.
    FileReceiver killed;
    ASSERT_TRUE(killed.Listen(folder.Text()));
    fs::rename(place, place + ".kept");
    killed.Close();
    fs::rename(place + ".kept", place);
  }
  FileReceiver receiver;
  ASSERT_TRUE(receiver.Listen(folder.Text()));
  struct stat kind {};
  ASSERT_EQ(stat(place.c_str(), &kind), 0);
  EXPECT_EQ(kind.st_mode & 077, 0u);
}

TEST(HandOver, AMessageWithoutAnEndIsCutOffAndHurtsNoOther) {
  const ScratchFolder run, folder;
  const RuntimeFolder here(run.Text().c_str());
  int files = 0;
  FileReceiver receiver;
  receiver.OnFile = [&](const std::string&) {
    ++files;
    return std::string();
  };
  ASSERT_TRUE(receiver.Listen(folder.Text()));
  QLocalSocket loud, silent;
  for (QLocalSocket* socket : {&loud, &silent})
    socket->connectToServer(QString::fromStdString(SocketsOf(folder.Text()).front()));
  loud.write(QByteArray(200000, 'x'));
  EXPECT_TRUE(RunUntil([&] { return loud.state() == QLocalSocket::UnconnectedState; }));
  EXPECT_TRUE(HandOverFromElsewhere(folder.Text(), "x.cal"));
  EXPECT_EQ(files, 1);
}

TEST(HandOver, AFolderWhosePathIsTooLongForASocketHasOneInTheRuntimeFolderAlone) {
  const ScratchFolder run;
  const std::string deep = run.File(std::string(120, 'd'));
  {
    const RuntimeFolder here(run.Text().c_str());
    EXPECT_EQ(SocketsOf(deep).size(), 1u);
  }
  const RuntimeFolder none(nullptr);
  EXPECT_TRUE(SocketsOf(deep).empty());
  FileReceiver receiver;
  EXPECT_FALSE(receiver.Listen(deep));
}

TEST(FilesToOpen, AFileIsOpenedByTheRunningProgramButNotByOneThatEnds) {
  const ScratchFolder run;
  const RuntimeFolder here(run.Text().c_str());
  UiFixture fixture;
  fixture.StartUp();
  FilesToOpen files(fixture.program, fixture.host, fixture.desktop.Main());
  files.Started();
  const std::string first = fixture.scratch.File("a.cal"), second = fixture.scratch.File("b.cal");
  for (const std::string& file : {first, second})
    ASSERT_TRUE(SaveSession(file, fixture.program.session()));
  const auto opened = [&fixture] { return fixture.program.controller().recent().Paths(); };
  EXPECT_EQ(files.Take(first), "");
  EXPECT_TRUE(RunUntil([&] { return !opened().empty(); }));
  // Taken, but the end comes first.
  EXPECT_EQ(files.Take(second), "");
  fixture.host.EndProcess(0);
  QTest::qWait(300);
  EXPECT_EQ(opened(), std::vector{first});
  EXPECT_EQ(files.Take(second), "the running program is ending");
}

// ---- the start in windows

TEST(TakeFolder, AFreeOneIsTakenWithoutAQuestion) {
  const ScratchFolder folder;
  int code = -1;
  const auto lock = TakeFolder(folder.Text(), "x.cal", code);
  ASSERT_NE(lock, nullptr);
  EXPECT_EQ(lock->Folder(), folder.Text());
}

TEST(TakeFolder, OneInUseIsReportedAndAnotherIsOffered) {
  const ScratchFolder folder;
  const std::string stem = folder.File("f");
  const FolderLock first(stem);
  int code = -1;
  QObject context;
  std::string text;
  WhenUp<QMessageBox>(context, [&](QMessageBox& box) {
    text = box.text().toStdString();
    EXPECT_EQ(box.defaultButton()->text(), QString::fromStdString("&Use " + stem + "-2"));
    box.defaultButton()->click();
  });
  const auto lock = TakeFolder(stem, {}, code);
  EXPECT_EQ(text, "The folder " + stem + " is in use by another VNA Control (process " +
                      std::to_string(getpid()) + ").");
  ASSERT_NE(lock, nullptr);
  EXPECT_EQ(lock->Folder(), stem + "-2");
}

TEST(TakeFolder, AFifoInThePlaceOfItsLockIsReportedAndAnotherFolderIsOffered) {
  const ScratchFolder folder;
  const std::string stem = folder.File("f"), fifo = stem + "/.qk47-vna.lock";
  fs::create_directories(stem);
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  int code = -1;
  QObject context;
  std::string text;
  WhenUp<QMessageBox>(context, [&](QMessageBox& box) {
    text = box.text().toStdString();
    box.defaultButton()->click();
  });
  const auto lock = TakeFolder(stem, "x.cal", code);
  EXPECT_EQ(text, fifo + ": is not an ordinary file");
  ASSERT_NE(lock, nullptr);
  EXPECT_EQ(lock->Folder(), stem + "-2");
}

TEST(TakeFolder, EscapeEndsTheStartWithoutAFolder) {
  const ScratchFolder folder;
  const FolderLock first(folder.File("f"));
  int code = -1;
  QObject context;
  WhenUp<QMessageBox>(context, [](QMessageBox& box) { Key(box, Qt::Key_Escape); });
  EXPECT_EQ(TakeFolder(folder.File("f"), {}, code), nullptr);
  EXPECT_EQ(code, 0);
  EXPECT_FALSE(fs::exists(folder.File("f-2")));
}

TEST(TakeFolder, AFileThatTheRunningProgramDoesNotReceiveIsOpenedOverAnotherFolder) {
  const ScratchFolder run, folder;
  const RuntimeFolder here(run.Text().c_str());
  const FolderLock first(folder.File("f"));
  int code = -1;
  QObject context;
  WhenUp<QMessageBox>(context, [](QMessageBox& box) { box.defaultButton()->click(); });
  const auto lock = TakeFolder(folder.File("f"), "x.cal", code);
  ASSERT_NE(lock, nullptr);
  EXPECT_EQ(lock->Folder(), folder.File("f-2"));
}

}  // namespace
}  // namespace qk::test
