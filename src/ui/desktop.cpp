// SPDX-License-Identifier: MIT
#include "ui/desktop.h"

#include <algorithm>

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QPrinter>

#include "control/colour_scheme.h"
#include "core/window_names.h"
#include "display/layout.h"
#include "ui/cursor_read_out.h"
#include "ui/picture_view.h"
#include "ui/plain_window.h"

namespace qk {

namespace {

// The current image of a window, at a resolution suitable for paper; null if there is none.
QImage ImageOf(const QtHost& host, const std::string& window) {
  constexpr double kPixelRatio = 3;
  FormWindow* shown = host.MadeWindow(window);
  if (shown == nullptr) return {};
  QImage image(shown->Widget().size() * kPixelRatio, QImage::Format_RGB32);
  image.setDevicePixelRatio(kPixelRatio);
  image.fill(Qt::white);
  shown->Widget().render(&image);
  return image;
}

Qt::CursorShape ShapeOf(PictureMouse::Grip grip) {
  switch (grip) {
    case PictureMouse::Grip::Marker:
      return Qt::SizeHorCursor;
    case PictureMouse::Grip::ReferenceMark:
      return Qt::SizeVerCursor;
    case PictureMouse::Grip::SetUp:
      return Qt::PointingHandCursor;
    case PictureMouse::Grip::Badge:
      return Qt::WhatsThisCursor;
    case PictureMouse::Grip::None:
      break;
  }
  return Qt::ArrowCursor;
}

}  // namespace

Desktop::Desktop(Program& program, QtHost& host, QtPicture& picture)
    : program_(program), host_(host) {
  Form& mainForm = program.registry().At(window::kForm1);
  main_ = std::make_unique<MainWindow>(mainForm, host, picture);
  host.AddWindow(*main_);
  PictureView& view = main_->Picture();
  view.setMinimumHeight(
      std::max(view.minimumSizeHint().height(),
               LeastHeight(QtCanvas::LineHeight(program.graphs().LetterPoints()))));
  docks_ = std::make_unique<Docks>(*main_, host, program.session().InstallFolder + "/Windows.ini");
  help_ = std::make_unique<HelpViewer>(program.registry());
  host.ShowInside = [this](const std::string& path) { return help_->ShowDocument(path); };
  AddWindowsMenu();
  host.MakeWindow = [this](std::string_view form) { return Make(form); };

  main_->Picture().OnMouse = [this](Program::MouseAction action, bool left, int x, int y) {
    program_.Mouse(action, left, x, y);
  };
  main_->OnDrop = [this](const std::string& path) { program_.Drop(path); };
  view.OnWheel = [this](int x, int y, int steps, bool shift) {
    program_.Wheel(x, y, steps, shift);
  };
  view.OnDoubleClick = [this](int x, int y) { program_.DoubleClick(x, y); };
  view.MenuAt = [this](int x, int y) { return program_.MenuAt(x, y); };
  main_->OnGraphMenu = [this, &view] {
    const int channel = program_.ChannelOfMenu();
    const GraphRecord& graph = program_.graphs().Graph(channel - 1);
    const QPoint inside(graph.Left + graph.Width() / 4, graph.Top + graph.Height() / 4);
    view.ShowMenu(program_.MenuOf(channel), inside);
  };
  auto* readOut = new CursorReadOut(
      view, [this](CanvasPoint cursor) { return program_.ReadOut(cursor.x, cursor.y); });
  readOut->Shape = [this](CanvasPoint cursor) {
    return ShapeOf(program_.GripAt(cursor.x, cursor.y));
  };
  main_->Picture().OnResized = [this] { program_.PictureResized(); };
  picture.ChosenPrinter = [&host] { return host.TakePrinter(); };
  picture.WindowImage = [&host](const std::string& window) { return ImageOf(host, window); };
  host.OnTick = [this](TimerId timer) { program_.Tick(timer); };
  host.OnPanel = [this](qk::Panel panel, const std::string& text) {
    main_->ShowPanel(panel, text);
  };
}

FormWindow* Desktop::Make(std::string_view name) {
  Form* form = program_.registry().Find(name);
  if (form == nullptr) return nullptr;
  auto window = std::make_unique<PlainWindow>(*form, host_, main_.get());
  if (form->Style().Closable && !form->Style().Modal) window->MayDock(docks_.get());
  windows_.push_back(std::move(window));
  return windows_.back().get();
}

void Desktop::MatchDesktopColours() {
  constexpr int kMiddle = 128;
  if (QApplication::palette().color(QPalette::Window).lightness() >= kMiddle ||
      !MatchDarkDesktop(program_.session()))
    return;
  program_.graphs().RedrawAll(true);
  host_.SessionChanged();
}

void Desktop::AddWindowsMenu() {
  QMenu* menu = main_->menuBar()->addMenu("&Windows");
  QAction* dock = menu->addAction("&Dock set-up windows");
  dock->setObjectName("DockWindows");
  dock->setCheckable(true);
  dock->setChecked(docks_->Enabled());
  QObject::connect(dock, &QAction::toggled, docks_.get(), [this](bool on) { docks_->Enable(on); });
  QAction* back = menu->addAction("&Return torn off windows");
  back->setObjectName("ReturnWindows");
  QObject::connect(back, &QAction::triggered, docks_.get(), [this] { docks_->ReturnAll(); });
}

Desktop::~Desktop() {
  host_.OnTick = nullptr;
  host_.OnPanel = nullptr;
  host_.ShowInside = nullptr;
  host_.ReleaseWindows();
  docks_.reset();
  windows_.clear();  // children of the main window are destroyed before it
}

}  // namespace qk
