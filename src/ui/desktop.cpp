#include "ui/desktop.h"

#include <functional>
#include <map>
#include <stdexcept>

#include "ui/calibration_window.h"
#include "ui/display_para_window.h"
#include "ui/enhance_para_window.h"
#include "ui/informing_window.h"
#include "ui/iso_method_window.h"
#include "ui/picture_view.h"
#include "ui/plain_window.h"
#include "ui/port_cal_windows.h"

namespace qk {

namespace {

using Maker = std::unique_ptr<FormWindow> (*)(Form&, QtHost&, QWidget*);

template <class Window>
std::unique_ptr<FormWindow> Make(Form& form, QtHost& host, QWidget* mainWindow) {
  return std::make_unique<Window>(form, host, mainWindow);
}

const std::map<std::string, Maker>& Makers() {
  static const std::map<std::string, Maker> makers = {
      {"Calibration", Make<CalibrationWindow>}, {"DisplayPara", Make<DisplayParaWindow>},
      {"EnhancePara", Make<EnhanceParaWindow>}, {"EEPROMdata", Make<InformingWindow>},
      {"IsoMethod", Make<IsoMethodWindow>},     {"MatchCal", Make<PortCalWindow>},
      {"OpenCal", Make<PortCalWindow>},         {"ShortCal", Make<PortCalWindow>},
      {"ShuttingDown", Make<InformingWindow>},  {"SweepStopping", Make<InformingWindow>},
      {"ThruCalForm", Make<ThruCalWindow>},     {"Updating", Make<InformingWindow>}};
  return makers;
}

}  // namespace

Desktop::Desktop(Program& program, QtHost& host, QtPicture& picture)
    : program_(program), host_(host) {
  Form* mainForm = program.desk().Find("Form1");
  if (mainForm == nullptr) throw std::logic_error("the desk has no main window");
  main_ = std::make_unique<MainWindow>(*mainForm, host, picture);
  host.AddWindow(*main_);
  for (Form* form : program.desk().All())
    if (form != mainForm) AddWindow(*form);

  main_->Picture().OnMouse = [this](Program::MouseAction action, bool left, int x, int y) {
    program_.Mouse(action, left, x, y);
  };
  main_->OnDrop = [this](const std::string& path) { program_.Drop(path); };
  main_->Picture().OnResized = [this] { program_.PictureResized(); };
  host.OnTick = [this](TimerId timer) { program_.Tick(timer); };
  host.OnPanel = [this](int n, const std::string& text) { main_->ShowPanel(n, text); };
}

Desktop::~Desktop() {
  host_.OnTick = nullptr;
  host_.OnPanel = nullptr;
  windows_.clear();  // children of the main window go before it
}

void Desktop::AddWindow(Form& form) {
  const auto maker = Makers().find(form.Name());
  windows_.push_back(maker == Makers().end() ? Make<PlainWindow>(form, host_, main_.get())
                                             : maker->second(form, host_, main_.get()));
  host_.AddWindow(*windows_.back());
}

std::vector<std::string> Desktop::WithoutWindow() const {
  std::vector<std::string> names;
  for (const Form* form : program_.desk().All())
    if (host_.WindowOf(form->Name()) == nullptr) names.push_back(form->Name());
  return names;
}

}  // namespace qk
