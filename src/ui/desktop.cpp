#include "ui/desktop.h"

#include <algorithm>

#include <QPrinter>

#include "core/window_names.h"
#include "display/layout.h"
#include "display/read_out.h"
#include "ui/cursor_read_out.h"
#include "ui/picture_view.h"
#include "ui/plain_window.h"

namespace qk {

namespace {

// A window as it stands, at a resolution that paper can show; null when there is none.
QImage ImageOf(const QtHost& host, const std::string& window) {
  constexpr double kPixelRatio = 3;
  FormWindow* shown = host.WindowOf(window);
  if (shown == nullptr) return {};
  QImage image(shown->Widget().size() * kPixelRatio, QImage::Format_RGB32);
  image.setDevicePixelRatio(kPixelRatio);
  image.fill(Qt::white);
  shown->Widget().render(&image);
  return image;
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
  for (Form* form : program.registry().All())
    if (form != &mainForm) {
      windows_.push_back(std::make_unique<PlainWindow>(*form, host, main_.get()));
      host.AddWindow(*windows_.back());
    }

  main_->Picture().OnMouse = [this](Program::MouseAction action, bool left, int x, int y) {
    program_.Mouse(action, left, x, y);
  };
  main_->OnDrop = [this](const std::string& path) { program_.Drop(path); };
  new CursorReadOut(main_->Picture(), [this](CanvasPoint cursor) {
    return ReadOutAt(program_.graphs(), static_cast<double>(program_.session().Impedance.SystemZo),
                     cursor);
  });
  main_->Picture().OnResized = [this] { program_.PictureResized(); };
  picture.ChosenPrinter = [&host] { return host.TakePrinter(); };
  picture.WindowImage = [&host](const std::string& window) { return ImageOf(host, window); };
  host.OnTick = [this](TimerId timer) { program_.Tick(timer); };
  host.OnPanel = [this](int n, const std::string& text) { main_->ShowPanel(n, text); };
}

Desktop::~Desktop() {
  host_.OnTick = nullptr;
  host_.OnPanel = nullptr;
  host_.LetWindowsGo();
  windows_.clear();  // children of the main window go before it
}

}  // namespace qk
