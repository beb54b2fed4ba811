// SPDX-License-Identifier: MIT
// The instrument behind a real pseudo-terminal: what a client process meets.
#include "sim/pty_server.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <thread>

#include "sim/talker.h"

namespace qk::sim::test {
namespace {

namespace fs = std::filesystem;

struct Folder {
  Folder() {
    std::string name = (fs::temp_directory_path() / "qk-sim-XXXXXX").string();
    Path = mkdtemp(name.data());
  }
  ~Folder() { fs::remove_all(Path); }
  std::string operator/(const char* name) const { return Path + "/" + name; }
  std::string Path;
};

// A server in a thread of its own; Stop ends it.
struct Serving {
  Serving(const std::string& link, const std::string& control) : Server(Box, link, control) {
    EXPECT_EQ(pipe(stop_), 0);
    Error = Server.Open();
    if (Error.empty()) thread_ = std::thread([this] { Error = Server.Serve(stop_[0]); });
  }
  ~Serving() { Stop(); }
  void Stop() {
    if (thread_.joinable()) {
      EXPECT_EQ(write(stop_[1], "x", 1), 1);
      thread_.join();
    }
  }
  Instrument Box;
  PtyServer Server;
  std::string Error;

 private:
  int stop_[2] = {-1, -1};
  std::thread thread_;
};

struct Client {
  explicit Client(const std::string& path) : Port(open(path.c_str(), O_RDWR | O_NOCTTY)) {}
  std::string Ask(std::string_view command, std::size_t count) {
    EXPECT_EQ(write(Port.Get(), command.data(), command.size()),
              static_cast<ssize_t>(command.size()));
    std::string got;
    pollfd ready = {Port.Get(), POLLIN, 0};
    while (got.size() < count && poll(&ready, 1, 5000) > 0) {
      char buffer[4096];
      const ssize_t n = read(Port.Get(), buffer, sizeof buffer);
      if (n <= 0) break;
      got.append(buffer, static_cast<std::size_t>(n));
    }
    return got;
  }
  Descriptor Port;
};

TEST(PtyServer, ServesRawBytesThroughItsLinkAndRemovesItAtTheEnd) {
  const Folder folder;
  const std::string link = folder / "vna";
  {
    Serving serving(link, "");
    Client client(link);
    ASSERT_TRUE(client.Port.IsOpen());
    EXPECT_EQ(client.Ask("*IDN?", 12), "QK47-20-09\r\n");
    // Bytes that a terminal would change: end of file, carriage return, interrupt, newline.
    EXPECT_EQ(client.Ask(std::string("EE\x04\x60\x00\x04\r\x03\n", 9) + "Q", 1), "R");
    EXPECT_EQ(client.Ask(std::string("P\x04\x60\x00", 4), 4), "\x04\r\x03\n");
  }
  EXPECT_FALSE(fs::exists(fs::symlink_status(link)));
}

TEST(PtyServer, SurvivesAClientThatGoesAndComesBack) {
  const Folder folder;
  const std::string link = folder / "vna";
  Serving serving(link, "");
  for (int i = 0; i < 3; ++i) {
    Client client(link);
    EXPECT_EQ(client.Ask("Q", 1), "R");
  }
}

TEST(PtyServer, GivesTheNextClientNothingThatWasMeantForTheOneBefore) {
  const Folder folder;
  const std::string link = folder / "vna";
  Serving serving(link, "");
  {
    Client client(link);
    // The replies to the last question stay unread.
    EXPECT_EQ(client.Ask(std::string("QP\xFA\x00\x00", 5), 1).front(), 'R');
    EXPECT_EQ(client.Ask(std::string("P\x78\x00\x00", 4), 0), "");
  }
  while (serving.Server.HasClient()) std::this_thread::yield();
  Client client(link);
  EXPECT_EQ(client.Ask("Q", 1), "R");
}

TEST(PtyServer, ReplacesALinkThatAnotherRunLeftBehind) {
  const Folder folder;
  const std::string link = folder / "vna";
  fs::create_symlink("/dev/pts/99999", link);
  Serving serving(link, "");
  EXPECT_EQ(serving.Error, "");
  EXPECT_EQ(Client(link).Ask("Q", 1), "R");
}

TEST(PtyServer, TakesNothingAwayThatItDidNotMake) {
  const Folder folder;
  const std::string link = folder / "vna", beside = folder / "vna.new", file = folder / "file";
  std::ofstream(file) << "precious";
  std::ofstream(beside) << "precious";
  {
    Serving serving(link, "");
    EXPECT_EQ(serving.Error, "");
  }
  EXPECT_TRUE(fs::is_regular_file(beside));
  fs::create_symlink(file, link);
  {
    Serving refused(link, "");
    EXPECT_EQ(refused.Error,
              link + ": exists and leads to " + file + ", which is no pseudo-terminal");
  }
  EXPECT_EQ(fs::read_symlink(link), file);
  {
    Serving refused(file, "");
    EXPECT_EQ(refused.Error, file + ": exists and is no symbolic link");
  }
  EXPECT_TRUE(fs::is_regular_file(file));
}

TEST(PtyServer, ItsPipeGoesWithItAndOneThatWasThereStays) {
  const Folder folder;
  const std::string own = folder / "own", there = folder / "there";
  ASSERT_EQ(mkfifo(there.c_str(), 0600), 0);
  {
    Serving first(folder / "vna", own);
    Serving second(folder / "vna2", there);
    EXPECT_EQ(first.Error + second.Error, "");
    EXPECT_TRUE(fs::exists(own));
  }
  EXPECT_FALSE(fs::exists(own));
  EXPECT_TRUE(fs::exists(there));
}

TEST(PtyServer, LeavesALinkThatAnotherOneHasTakenOver) {
  const Folder folder;
  const std::string link = folder / "vna";
  {
    Serving first(link, "");
    fs::remove(link);
    fs::create_symlink("/nowhere/other", link);
  }
  EXPECT_TRUE(fs::is_symlink(link));
}

TEST(PtyServer, TakesBenchLinesFromItsPipe) {
  const Folder folder;
  const std::string link = folder / "vna", control = folder / "control";
  Serving serving(link, control);
  ASSERT_EQ(serving.Error, "");
  ::testing::internal::CaptureStdout();
  {
    const Descriptor pipe(open(control.c_str(), O_WRONLY));
    const std::string lines = "line 12\ndance\nshow\n";
    ASSERT_EQ(write(pipe.Get(), lines.data(), lines.size()), static_cast<ssize_t>(lines.size()));
  }
  // The pipe is read in the round that serves this exchange, or before it.
  Client client(link);
  for (int i = 0; i < 20; ++i) EXPECT_EQ(client.Ask("Q", 1), "R");
  serving.Stop();
  EXPECT_EQ(::testing::internal::GetCapturedStdout(),
            "ok\nerror: \"dance\" is not a bench command; try help\n"
            "line 12 mm; noise on; follow on; pace fast; fault none\nok\n");
}

TEST(PtyServer, RefusesAControlPathThatIsNoPipe) {
  const Folder folder;
  const std::string control = folder / "control";
  std::ofstream(control) << "precious";
  Serving serving(folder / "vna", control);
  EXPECT_EQ(serving.Error, control + ": exists and is no named pipe");
}

TEST(PtyServer, ReportsAPlaceWhereNoLinkCanBe) {
  Serving serving("/nowhere/at/all", "");
  EXPECT_NE(serving.Error, "");
}

}  // namespace
}  // namespace qk::sim::test
