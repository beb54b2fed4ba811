#include "forms/program.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "forms/am_to_pm_form.h"
#include "forms/calibration.h"
#include "forms/diagnostics_tests.h"
#include "forms/display_para.h"
#include "forms/eeprom_bk.h"
#include "forms/eeprom_rest.h"
#include "forms/enhance_para.h"
#include "forms/form1.h"
#include "forms/freq_gen.h"
#include "forms/hardware_info.h"
#include "forms/informing.h"
#include "forms/load_meas.h"
#include "forms/memory_para.h"
#include "forms/p1db_form.h"
#include "forms/port_cal.h"
#include "forms/save_meas.h"
#include "forms/tdr_opts.h"

namespace qk {

namespace {
// Makes a form, keeps it in forms and puts it on the desk.
template <class T, class... Args>
T& Place(std::vector<std::unique_ptr<Form>>& forms, Desk& desk, Args&&... args) {
  auto form = std::make_unique<T>(std::forward<Args>(args)...);
  T& placed = *form;
  desk.Add(placed);
  forms.push_back(std::move(form));
  return placed;
}
}  // namespace

Program::Program(Desk& desk, Host host, SerialPort& port, PictureSurface& surface,
                 const ProgramOptions& options)
    : desk_(desk), host_(host), session_(MakeSession()) {
  session_->InstallFolder = options.InstallFolder;
  std::error_code ignored;  // without the folder the program measures, and files are told as absent
  std::filesystem::create_directories(options.InstallFolder, ignored);

  link_ = std::make_unique<InstrumentLink>(port, *session_, host_);
  rig_ = std::make_unique<Rig>(Rig{*session_, host_, *link_});
  graphs_ = std::make_unique<Graphs>(*session_, surface, options.ScreenScale);
  controller_ = std::make_unique<Controller>(*rig_, *graphs_);

  Form1& form1 = Place<Form1>(forms_, desk_, *controller_);
  EnhancePara& enhance = Place<EnhancePara>(forms_, desk_, *controller_);
  Place<DisplayPara>(forms_, desk_, *controller_, enhance);
  Place<MemoryPara>(forms_, desk_, *session_, host_, *graphs_);
  Place<TdrOpts>(forms_, desk_, *session_, host_, *graphs_);
  auto& openCal =
      Place<PortCalForm>(forms_, desk_, *rig_, PortCalForm::Texts{"OpenCal", "Open Cal", "Open"},
                         Standard::OpenPort1, Standard::OpenPort2);
  auto& shortCal =
      Place<PortCalForm>(forms_, desk_, *rig_, PortCalForm::Texts{"ShortCal", "Short Cal", "Short"},
                         Standard::ShortPort1, Standard::ShortPort2);
  auto& matchCal =
      Place<PortCalForm>(forms_, desk_, *rig_, PortCalForm::Texts{"MatchCal", "Load Cal", "Load"},
                         Standard::LoadPort1, Standard::LoadPort2);
  auto& thru = Place<ThruCalForm>(forms_, desk_, *rig_);
  Place<IsoMethodForm>(forms_, desk_, *rig_);
  Place<Calibration>(forms_, desk_, *controller_, form1, enhance,
                     Calibration::Windows{openCal, shortCal, matchCal, thru});
  Place<HardwareInfo>(forms_, desk_, *rig_);
  Place<DiagnosticsTests>(forms_, desk_, *rig_);
  Place<EepromBk>(forms_, desk_, *rig_);
  Place<EepromRest>(forms_, desk_, *rig_);
  Place<FreqGen>(forms_, desk_, *rig_);
  Place<P1dBForm>(forms_, desk_, *rig_);
  Place<AMtoPM>(forms_, desk_, *rig_);
  Place<SaveMeas>(forms_, desk_, *controller_);
  Place<LoadMeas>(forms_, desk_, *controller_);
  Place<EepromDataForm>(forms_, desk_);
  Place<UpdatingForm>(forms_, desk_);
  Place<SweepStoppingForm>(forms_, desk_);
  Place<ShuttingDownForm>(forms_, desk_);
}

Program::~Program() = default;

void Program::PictureResized() {
  graphs_->RedrawAll(true);
}

void Program::Drop(const std::string& path) {
  if (MayLoadMeasurements(*session_, host_.prompts)) LoadMeasurements(*controller_, path);
}

// The picture area answers to no button: what stands on it is chosen in the windows.
void Program::Mouse(MouseAction, bool, int, int) {}

}  // namespace qk
