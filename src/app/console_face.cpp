#include "app/console_face.h"

#include <cstdio>

#include <QGuiApplication>

#include "app/surroundings.h"
#include "console/front_panel.h"
#include "ui/image_file.h"
#include "ui/qt_canvas.h"

namespace qk {

namespace {

constexpr Extent kPictureSize{1000, 700};

void WriteLine(const std::string& line) {
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fputc('\n', stdout);
  std::fflush(stdout);
}

FrontPanelReach ReachOf(Program& program, QtPicture& picture, sim::Instrument* bench) {
  FrontPanelReach reach{program.desk(), program.session(), {}, {}, {}, {}, {}, {}, {}};
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
    return WriteImageFile(picture.Image(), path);
  };
  if (bench != nullptr)
    reach.Bench = [bench](std::string_view line, std::string& text) {
      const sim::BenchReply reply = bench->Bench(line);
      text = reply.Text;
      return reply.Ok;
    };
  return reach;
}

}  // namespace

int RunConsole(const Options& options, int& argc, char** argv) {
  // Pictures need fonts and so the toolkit, but no screen.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);

  std::FILE* script = stdin;
  if (!options.Script.empty()) {
    script = std::fopen(options.Script.c_str(), "r");
    if (script == nullptr) {
      std::fprintf(stderr, "qk47-vna: cannot read the script \"%s\"\n", options.Script.c_str());
      return 2;
    }
  }
  DescriptorLines lines(fileno(script));

  Desk desk;
  QtPicture picture(kPictureSize);
  Surroundings surroundings(options);
  ConsoleHost host(desk, lines, WriteLine, SteadyConsoleClock());
  Program program(desk, host.host(), surroundings.Port(), picture, {FolderOf(options), 1});
  host.OnTick = [&program](TimerId timer) { program.Tick(timer); };
  sim::Instrument* bench = surroundings.Bench();
  if (bench != nullptr) {
    bench->Bench("follow off");  // scripts connect by themselves; "bench follow on" changes that
    host.OnPrompt = [bench](const Message& message) { bench->FollowPrompt(message.Text); };
    program.controller().OnStart = [bench] { bench->BackToDevice(); };
  } else {
    // A serial adaptor that is pulled out is seen by the toolkit.
    host.OnEvents = [] { QCoreApplication::processEvents(); };
  }
  const FrontPanel panel(host, ReachOf(program, picture, bench));
  return host.Run([&program, &host] {
    program.StartUp();
    host.Show("Form1");
  });
}

}  // namespace qk
