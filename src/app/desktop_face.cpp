// SPDX-License-Identifier: MIT
#include "app/desktop_face.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>

#include <QApplication>
#include <QScreen>
#include <QSessionManager>
#include <QSocketNotifier>
#include <QTimer>
#include <QtGlobal>

#include "app/demonstration.h"
#include "app/files_to_open.h"
#include "app/guides.h"
#include "app/kit_through.h"
#include "app/process.h"
#include "app/remote_server.h"
#include "app/surroundings.h"
#include "app/take_folder.h"
#include "app/version.h"
#include "core/window_names.h"
#include "ui/app_icon.h"
#include "ui/desktop.h"
#include "ui/main_window.h"

namespace qk {

namespace {
constexpr Extent kFirstPictureSize{820, 620};

// The ratio of the screen height to the design height, which determines the fonts of the graphs.
float ScreenScale() {
  const QScreen* screen = QGuiApplication::primaryScreen();
  return screen == nullptr ? 1.0f : static_cast<float>(screen->size().height()) / 768.0f;
}

// The toolkit ends the process if there is no screen; this message says what to do.
void RefuseWithoutScreen(QtMsgType type, const QMessageLogContext&, const QString&) {
  if (type != QtFatalMsg) return;
  std::fprintf(stderr,
               "qk47-vna: there is no screen to show the windows on (DISPLAY is not set, or leads "
               "to none): use --console, or ./demo --headless DIR\n");
  std::_Exit(2);
}

std::unique_ptr<QApplication> MakeApplication(int& argc, char** argv) {
  // The toolkit's own dispatcher delivers clicks made during a wait on the line at the next
  // opportunity; the GLib dispatcher holds them back until another screen event arrives.
  qputenv("QT_NO_GLIB", "1");
  const QtMessageHandler usual = qInstallMessageHandler(RefuseWithoutScreen);
  auto application = std::make_unique<QApplication>(argc, argv);
  qInstallMessageHandler(usual);
  return application;
}

// The tool tip of the port's panel says why ports did not open.
void ShowReasons(PortReasons& reasons, MainWindow& main) {
  reasons.OnChange = [&main, &reasons] { main.RemarkOn(Panel::Port, reasons.All()); };
}

}  // namespace

int RunDesktop(const Options& options, int& argc, char** argv) {
  const std::unique_ptr<QApplication> application = MakeApplication(argc, argv);
  QApplication::setApplicationName("qk47-vna");
  QApplication::setApplicationDisplayName({});
  QApplication::setWindowIcon(ProgramIcon());
  // Only the main window ends the process, not a message box before it is shown.
  QApplication::setQuitOnLastWindowClosed(false);

  int ended = 0;
  const std::unique_ptr<FolderLock> lock = TakeFolder(FolderOf(options), options.File, ended);
  if (lock == nullptr) return ended;

  FormRegistry registry;
  QtPicture picture(kFirstPictureSize);
  Surroundings surroundings(options);
  QtHost host(registry);
  Program program(registry, host.host(), surroundings.Port(), picture,
                  {.InstallFolder = lock->Folder(),
                   .ScreenScale = ScreenScale(),
                   .Version = "Program " + VersionDetails(),
                   .FullView = true});
  Desktop desktop(program, host, picture);
  CopyGuides(GuideFolder(QApplication::applicationDirPath().toStdString()), lock->Folder());
  ShowReasons(surroundings.Reasons(), desktop.Main());

  // A signal or the end of the desktop session ends a sweep like Exit, without a question.
  const EndSignals endSignals;
  QSocketNotifier signalled(endSignals.Descriptor(), QSocketNotifier::Read);
  const auto leave = [&program, &host, &signalled] {
    signalled.setEnabled(false);
    host.LeaveNow([&program] { program.controller().Leave(); });
  };
  QObject::connect(&signalled, &QSocketNotifier::activated, &host, leave);
  QObject::connect(application.get(), &QGuiApplication::commitDataRequest, &host, leave,
                   Qt::DirectConnection);

  std::optional<Demonstration> demonstration;
  if (sim::Instrument* bench = surroundings.Bench(); bench != nullptr)
    demonstration.emplace(*bench, program, host, desktop);
  if (sim::Instrument* bench = surroundings.Bench(); bench != nullptr)
    program.gate().OnConnect = [bench, &session = program.session()](const Message& message) {
      FollowPrompt(message, session, *bench);
    };

  RemoteServer server(program, [&host] { return host.Breathing(); });
  server.MarkIn(desktop.Main());
  server.OnServed = [&host] { host.SyncAll(); };
  host.AroundAct = [&server](const std::function<void()>& act) { server.remote().PersonActs(act); };
  FilesToOpen files(program, host, desktop.Main());
  files.ListenFor(lock->Folder());
  if (!options.File.empty()) files.Take(std::filesystem::absolute(options.File).string());
  host.BeforeTerminate = [&surroundings, &server, &files, &lock] {
    server.End();
    files.Close();
    lock->Release();
    surroundings.Port().Close();
  };
  if (!ListenAsAsked(options, server)) return 2;
  QTimer::singleShot(0, &host, [&program, &host, &desktop, &files] {
    host.Act([&program, &host, &desktop] {
      program.StartUp();
      desktop.MatchDesktopColours();
      host.Show(window::kForm1);
    });
    files.Started();
  });
  const int code = QApplication::exec();
  server.End();
  surroundings.Port().Close();
  return code;
}

}  // namespace qk
