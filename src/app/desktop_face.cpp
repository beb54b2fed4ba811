#include "app/desktop_face.h"

#include <optional>

#include <QApplication>
#include <QScreen>
#include <QTimer>

#include "app/bench_window.h"
#include "app/surroundings.h"
#include "ui/app_icon.h"
#include "ui/desktop.h"

namespace qk {

namespace {
constexpr Extent kFirstPictureSize{820, 620};

// The height of the screen against that of the design, which sizes the fonts of the graphs.
float ScreenScale() {
  const QScreen* screen = QGuiApplication::primaryScreen();
  return screen == nullptr ? 1.0f : static_cast<float>(screen->size().height()) / 768.0f;
}
}  // namespace

int RunDesktop(const Options& options, int& argc, char** argv) {
  const QApplication application(argc, argv);
  QApplication::setApplicationName("qk47-vna");
  QApplication::setApplicationDisplayName({});
  QApplication::setWindowIcon(ProgramIcon());
  // The main window ends the process; a message box before it is shown must not.
  QApplication::setQuitOnLastWindowClosed(false);

  Desk desk;
  QtPicture picture(kFirstPictureSize);
  Surroundings surroundings(options);
  QtHost host(desk);
  Program program(desk, host.host(), surroundings.Port(), picture,
                  {FolderOf(options), ScreenScale()});
  Desktop desktop(program, host, picture);
  host.BeforeTerminate = [&surroundings] { surroundings.Port().Close(); };

  std::optional<BenchWindow> benchWindow;
  if (sim::Instrument* bench = surroundings.Bench(); bench != nullptr) {
    bench->Bench("follow on");
    host.OnPrompt = [bench](const Message& message) { bench->FollowPrompt(message.Text); };
    program.controller().OnStart = [bench] { bench->BackToDevice(); };
    benchWindow.emplace(*bench);
    benchWindow->PlaceBeside(desktop.Main());
    benchWindow->show();
  }
  QTimer::singleShot(0, &host, [&program, &host] {
    host.Act([&program, &host] {
      program.StartUp();
      host.Show("Form1");
    });
  });
  return QApplication::exec();
}

}  // namespace qk
