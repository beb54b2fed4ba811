#include "forms/port_cal.h"

#include <utility>

#include "forms/cal_progress.h"

namespace qk {

PortCalForm::PortCalForm(Rig& rig, const Texts& texts, Standard port1, Standard port2)
    : Form(texts.Name, texts.Title),
      rig_(rig),
      title_(texts.Title),
      port1_{"Command1", "Port 1 " + texts.Standard, port1},
      port2_{"Command2", "Port 2 " + texts.Standard, port2} {
  AddLabel("Label1", "Click to Measure");
  AddButton(port1_.Button, port1_.Plain, [this] { Measure(port1_); });
  AddButton(port2_.Button, port2_.Plain, [this] { Measure(port2_); });
  AddButton("Command3", "Exit", [this] { Exit(); });
}

void PortCalForm::PlainCaptions() {
  for (Port* port : {&port1_, &port2_}) {
    port->Pressed = false;
    port->Good = false;
    (*this)[port->Button].Caption = port->Plain;
  }
}

void PortCalForm::Measure(Port& port) {
  if (measuring_) return;
  measuring_ = true;
  port.Good = MeasureStandard(rig_, port.Measured, Bar(rig_.host));
  port.Pressed = true;
  (*this)[port.Button].Caption = port.Plain + " *";
  measuring_ = false;
}

void PortCalForm::Exit() {
  if (MayLeave()) rig_.host.windows.Hide(Name());
}

bool PortCalForm::MayLeave() {
  if (measuring_) return false;
  if (port1_.Pressed && port2_.Pressed) return true;
  // Meant: the text says "Open" in all three windows; the title tells them apart.
  return rig_.host.prompts.Ask({title_, "Open cal not complete. Exit anyway?", Icon::Question,
                                Buttons::YesNo}) == Answer::Yes;
}

ThruCalForm::ThruCalForm(Rig& rig) : Form("ThruCalForm", "Through Cal"), rig_(rig) {
  AddLabel("Label1", "Click to Measure");
  AddButton("Command1", "Measure", [this] { Measure(); });
  AddButton("Command2", "Exit", [this] { Exit(); });
}

void ThruCalForm::PlainCaptions() {
  good_ = false;
  (*this)["Command1"].Caption = "Measure";
}

void ThruCalForm::Measure() {
  if (measuring_) return;
  measuring_ = true;
  good_ = MeasureStandard(rig_, Standard::ThruNonInsertable, Bar(rig_.host));
  (*this)["Command1"].Caption = "Measure *";
  measuring_ = false;
}

void ThruCalForm::Exit() {
  if (!measuring_) rig_.host.windows.Hide(Name());
}

IsoMethodForm::IsoMethodForm(Rig& rig)
    : Form("IsoMethod", "Isolation Calibration (optional step)"), rig_(rig) {
  constexpr const char* kSelect = "Click to select this method";
  AddLabel("Label1", "Single step, basic (part of load calibration)");
  AddButton("Command1", kSelect, [this] { Take(0); });
  AddLabel("Label2", "One sweep with the device on both ports");
  AddButton("Command2", kSelect, [this] { Take(1); });
  AddLabel("Label3", "Two sweeps, the device on each port in turn and a load on the other");
  AddButton("Command3", kSelect, [this] { Take(2); });
}

void IsoMethodForm::Take(std::int16_t method) {
  rig_.session.Cal.IsoMethod = method;
  rig_.host.windows.Hide(Name());
}

}  // namespace qk
