// SPDX-License-Identifier: MIT
#include "app/console_face.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include <unistd.h>

#include <QGuiApplication>
#include <QImage>

#include "app/folder_lock.h"
#include "app/guides.h"
#include "app/kit_through.h"
#include "app/process.h"
#include "app/remote_server.h"
#include "app/surroundings.h"
#include "app/version.h"
#include "console/front_panel.h"
#include "core/window_names.h"
#include "ui/image_file.h"
#include "ui/qt_canvas.h"

namespace qk {

namespace {

std::string WriteDrawing(Extent size, const std::function<void(Canvas&)>& draw,
                         const std::string& path) {
  QImage image(size.width, size.height, QImage::Format_RGB32);
  {
    QtCanvas canvas(image, size);
    draw(canvas);
  }
  const Result<Done> written = WriteImageFile(image, path);
  return written ? std::string() : written.Why().Text();
}

FrontPanelReach ReachOf(Program& program, QtPicture& picture, sim::Instrument* bench) {
  FrontPanelReach reach{program.registry(), program.session(), {}, {}, {}, {}, {}, {}, {}, {}, {}};
  reach.SweepsEnded = [&program] { return program.controller().SweepsEnded(); };
  reach.Mouse = [&program](Program::MouseAction action, bool left, int x, int y) {
    program.Mouse(action, left, x, y);
  };
  reach.Drop = [&program](const std::string& path) { program.Drop(path); };
  reach.PictureSize = [&picture] { return picture.Size(); };
  reach.Resize = [&program, &picture](int width, int height) {
    picture.Resize({width, height});
    program.PictureResized();
  };
  reach.WritePicture = [&picture](const std::string& path) {
    const Result<Done> saved = picture.Save(path);
    return saved ? std::string() : saved.Why().Text();
  };
  reach.CatchUp = [&picture] { picture.CatchUp(); };
  reach.WriteDrawing = WriteDrawing;
  reach.Quality = &program.controller().quality();
  reach.Owner = &program;
  if (bench != nullptr)
    reach.Bench = [bench](std::string_view line, std::string& text) {
      const sim::BenchReply reply = bench->Bench(line);
      text = reply.Text;
      return reply.Ok;
    };
  return reach;
}

// Treats console commands as user actions: the user answers their boxes, and clients are notified.
void ServePeople(ConsoleHost& host, scpi::Remote& remote) {
  host.OnCommand = [&remote, run = host.OnCommand](const std::string& line) {
    constexpr std::array kActs = {"click ", "set ", "mouse ", "drop ", "close ", "answer "};
    const bool act =
        std::ranges::any_of(kActs, [&line](const char* word) { return line.starts_with(word); });
    ConsoleHost::Outcome outcome;
    remote.PersonActs([&] { outcome = run(line); }, act);
    return outcome;
  };
}

}  // namespace

int RunConsole(const Options& options, int& argc, char** argv) {
  // Pictures need fonts and so the toolkit, but no screen.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);

  const Result<int> script = options.Script.empty() ? STDIN_FILENO : OpenScript(options.Script);
  if (!script) {
    std::fprintf(stderr, "qk47-vna: %s\n", script.Why().Text().c_str());
    return 2;
  }
  const EndSignals endSignals;
  const WakeSet wake;  // readable after a signal, and when remote clients send
  wake.Add(endSignals.Descriptor());
  DescriptorLines lines(*script, wake.Descriptor());

  const FolderLock lock(FolderOf(options));
  if (ReportsRefusal(lock)) return 2;
  FormRegistry registry;
  QtPicture picture(kPictureSize);
  Surroundings surroundings(options);
  ConsoleHost host(registry, lines, WriteLine, WakingConsoleClock(wake.Descriptor()));
  Program program(registry, host.host(), surroundings.Port(), picture,
                  {lock.Folder(), 1, "Program " + VersionDetails()});
  host.OnTick = [&program](TimerId timer) { program.Tick(timer); };
  CopyGuides(GuideFolder(QGuiApplication::applicationDirPath().toStdString()), lock.Folder());
  sim::Instrument* bench = surroundings.Bench();
  if (bench != nullptr) {
    bench->Bench("follow off");  // scripts connect explicitly; "bench follow on" changes that
    host.OnPrompt = [bench, &session = program.session()](const Message& message) {
      FollowPrompt(message, session, *bench);
    };
    program.controller().OnStart = [bench] { bench->BackToDevice(); };
  }
  host.OnSignal = [&endSignals] { return endSignals.Came(); };
  host.OnLeave = [&program] { program.controller().Leave(); };
  const FrontPanel panel(host, ReachOf(program, picture, bench));
  if (bench != nullptr)
    program.gate().OnConnect = [bench, &session = program.session()](const Message& message) {
      FollowPrompt(message, session, *bench);
    };
  RemoteServer server(program, [] { return false; });
  ServePeople(host, server.remote());
  if (!ListenAsAsked(options, server)) return 2;
  // Connections are events of the toolkit; without remote control its loop runs less often.
  wake.Add(server.WakeDescriptor());
  host.OnEvents = [&server, &wake, real = bench == nullptr] {
    wake.Drain();
    // The toolkit detects an unplugged serial adaptor, and connections.
    if (real || server.Port() != 0) server.RunEvents();
  };
  const int code = host.Run([&program, &host] {
    program.StartUp();
    host.Show(window::kForm1);
  });
  server.End();
  if (!lines.Broken().empty()) std::fprintf(stderr, "qk47-vna: %s\n", lines.Broken().c_str());
  surroundings.Port().Close();
  return code;
}

}  // namespace qk
