// SPDX-License-Identifier: MIT
#include "app/scpi_face.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <deque>

#include <poll.h>
#include <unistd.h>

#include <QGuiApplication>

#include "app/folder_lock.h"
#include "app/kit_through.h"
#include "app/process.h"
#include "app/surroundings.h"
#include "app/version.h"
#include "console/console_host.h"
#include "core/window_names.h"
#include "scpi/remote.h"
#include "ui/qt_canvas.h"

namespace qk {

namespace {

class StandardOutput : public scpi::Transport {
 public:
  void Send(std::string_view bytes) override {
    std::fwrite(bytes.data(), 1, bytes.size(), stdout);
    std::fflush(stdout);
  }
  std::size_t Unsent() const override { return 0; }  // a client that does not read blocks us
  void Close() override { Closed = true; }

  bool Closed = false;
};

// Passes standard input to the client. It provides no lines to the host: the end of the input ends
// the program once everything has been run.
class StandardInput : public LineSource {
 public:
  StandardInput(scpi::Remote& remote, scpi::Client& client, const StandardOutput& output,
                std::deque<std::function<void()>>& posted, int wake)
      : remote_(remote), client_(client), output_(output), posted_(posted), wake_(wake) {}

  Got Next(int waitMs, std::string&) override {
    if (output_.Closed) return Got::End;
    if (end_) {
      if (!Busy()) return Got::End;
      poll(nullptr, 0, waitMs < 0 ? kSliceMs : std::min(waitMs, kSliceMs));
      return Got::Nothing;
    }
    if (!client_.WantsInput()) return Got::Nothing;
    std::array<pollfd, 2> entries = {{{STDIN_FILENO, POLLIN, 0}, {wake_, POLLIN, 0}}};
    const int wait = posted_.empty() ? waitMs : 0;
    if (poll(entries.data(), entries.size(), wait) <= 0 || entries[0].revents == 0)
      return Got::Nothing;
    std::array<char, 65536> block;
    const ssize_t count = read(STDIN_FILENO, block.data(), block.size());
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) return Got::Nothing;
    if (count > 0)
      client_.Receive({block.data(), static_cast<std::size_t>(count)});
    else
      client_.Receive("\n");  // a last message without a line end
    end_ = count <= 0;
    remote_.Serve(client_);
    return Got::Nothing;
  }
  bool AtEnd() override { return end_ && !Busy(); }

 private:
  static constexpr int kSliceMs = 10;
  bool Busy() const { return !client_.Idle() || !posted_.empty() || remote_.Pending(); }

  scpi::Remote& remote_;
  scpi::Client& client_;
  const StandardOutput& output_;
  std::deque<std::function<void()>>& posted_;
  int wake_;
  bool end_ = false;
};

// The line source until the program exists.
class Switch : public LineSource {
 public:
  Got Next(int waitMs, std::string& line) override { return To->Next(waitMs, line); }
  bool AtEnd() override { return To != nullptr && To->AtEnd(); }
  LineSource* To = nullptr;
};

}  // namespace

int RunScpi(const Options& options, int& argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");  // pictures need fonts, and so the toolkit
  const QGuiApplication application(argc, argv);
  const EndSignals endSignals;

  const FolderLock lock(FolderOf(options));
  if (ReportsRefusal(lock)) return 2;
  FormRegistry registry;
  QtPicture picture(kPictureSize);
  Surroundings surroundings(options);
  Switch lines;
  ConsoleHost host(
      registry, lines, [](const std::string&) {}, SteadyConsoleClock());
  Program program(registry, host.host(), surroundings.Port(), picture,
                  {lock.Folder(), 1, "Program " + VersionDetails()});
  program.gate().NoUser = true;
  host.OnTick = [&program](TimerId timer) { program.Tick(timer); };
  if (sim::Instrument* bench = surroundings.Bench(); bench != nullptr) {
    program.gate().OnConnect = [bench, &session = program.session()](const Message& message) {
      FollowPrompt(message, session, *bench);
    };
    program.controller().OnStart = [bench] { bench->BackToDevice(); };
  }

  std::deque<std::function<void()>> posted;
  scpi::Remote remote(program,
                      [&posted](std::function<void()> act) { posted.push_back(std::move(act)); });
  StandardOutput output;
  scpi::Client* client = remote.Connect(output, "standard input");
  StandardInput input(remote, *client, output, posted, endSignals.Descriptor());
  lines.To = &input;
  host.OnEvents = [&posted] {
    QCoreApplication::processEvents();  // detects an unplugged serial adaptor
    for (std::size_t n = posted.size(); n > 0 && !posted.empty(); --n) {
      const std::function<void()> act = std::move(posted.front());
      posted.pop_front();
      act();
    }
  };
  host.OnSignal = [&endSignals] { return endSignals.Came(); };
  host.OnLeave = [&program] { program.controller().Leave(); };
  const int code = host.Run([&program, &host] {
    program.StartUp();
    host.Show(window::kForm1);
  });
  remote.End();
  surroundings.Port().Close();
  return code;
}

}  // namespace qk
