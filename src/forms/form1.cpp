#include "forms/form1.h"

#include "control/display_mode.h"
#include "core/window_names.h"
#include "forms/load_meas.h"

namespace qk {

namespace {
enum Group { kSmoothing = 1, kAveraging };

constexpr const char* kSetUpWindows[] = {"OpenCal",   "ShortCal",    "MatchCal",    "ThruCalForm",
                                         "IsoMethod", "Calibration", "DisplayPara", "EnhancePara"};
}  // namespace

Form1::Form1(Controller& controller)
    : Form("Form1", "QK47-20-09 VNA Control"),
      controller_(controller),
      session_(controller.rig().session),
      host_(controller.rig().host) {
  AddMenuItem("File", "SaveMeasurements", "Save Measurements",
              [this] { host_.windows.Show(window::kSaveMeas); });
  AddMenuItem("File", "LoadMeasFile", "Load Measurements", [this] {
    if (MayLoadMeasurements(session_, host_.prompts)) host_.windows.Show(window::kLoadMeas);
  });
  AddMenuItem("File", "Exit", "Exit", [this] { controller_.Exit(); });
  AddMenuItem("Tools", "ReStart", "Re-Start Program", [this] { controller_.ReStart(); });
  AddMenuItem("Help", "About", "About", [this] { About(); });

  AddButton("StartMeasurement", "START", [this] { controller_.StartMeasurement(); });
  AddButton("StopMeasurement", "STOP", [this] { controller_.StopMeasurement(); });
  AddButton("SetCal", "Calibration", [this] { OpenCalibration(); });
  AddButton("SetMemory", "Memory", [this] { host_.windows.Show(window::kMemoryPara); });
  AddButton("SetEnhancement", "Enhancement", [this] { host_.windows.Show("EnhancePara"); });
  AddButton("SetDisplay", "Display", [this] { OpenDisplay(); });
  AddButton("SetDomain", "TD Options", [this] { host_.windows.Show(window::kTDR_Opts); });
  // In the order of DisplayMode.
  displayed_ = AddOptions({{"DisplayData", "Data"},
                           {"DisplayMem_Data", "Data and Memory"},
                           {"MemoryMath", "Memory Math"}},
                          [this] { SwitchDisplay(); });
  AddOption("SmoothOff", "Off", kSmoothing, [this] { SwitchSmoothing(); });
  AddOption("SmoothOn", "On", kSmoothing, [this] { SwitchSmoothing(); });
  AddOption("AverOff", "Off", kAveraging, [this] { controller_.AverOff(); });
  AddOption("AverOn", "On", kAveraging, [this] { controller_.AverOn(); });
  AddPicture("PicGraph");
  ShowSwitches();
}

void Form1::OnRefresh() {
  // What a set-up window shows of the session goes with it when the program starts anew.
  if (controller_.StartingUp())
    for (const char* window : kSetUpWindows) host_.windows.Hide(window);
  ShowSwitches();
}

void Form1::ShowSwitches() {
  Choose(session_.Averaging.SmoothOn ? "SmoothOn" : "SmoothOff");
  Choose(session_.Averaging.AverOn ? "AverOn" : "AverOff");
  displayed_.Choose(static_cast<int>(session_.Display.DisplayMode));
}

bool Form1::OnCloseBox() {
  controller_.CloseAtOnce();
  return true;
}

void Form1::OpenCalibration() {
  if (!controller_.Idle()) {
    host_.prompts.Tell("Calibration", "Stop Measurement First", Icon::Exclamation);
    return;
  }
  host_.windows.Show("Calibration");
}

void Form1::OpenDisplay() {
  host_.time.Enable(TimerId::Timer1, false);  // DisplayPara gives it back when it closes
  host_.windows.Show("DisplayPara");
}

void Form1::SwitchDisplay() {
  SwitchDisplayMode(session_, host_, controller_.graphs(),
                    static_cast<DisplayMode>(displayed_.Chosen()));
  ShowSwitches();
}

void Form1::SwitchSmoothing() {
  session_.Averaging.SmoothOn = At("SmoothOn").Checked;
  controller_.SmoothChanged();
}

void Form1::About() {
  host_.prompts.Tell("VNA Control", Caption() + "\nV1.62 Mar 09", Icon::Information);
}

}  // namespace qk
