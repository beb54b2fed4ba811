// SPDX-License-Identifier: MIT
// The groups of "Enhancement Set Up" below the reference plane: de-embedding and the system
// impedance.
#include <cmath>
#include <utility>

#include "control/touchstone_load.h"
#include "core/instrument_limits.h"
#include "core/measured_sweep.h"
#include "core/text.h"
#include "forms/enhance_para.h"
#include "trace/zo.h"

namespace qk {

namespace {

constexpr int kDeembedOn = 0, kDeembedOff = 1;  // the choices of de-embedding
constexpr const char* kZoTitle = "System Zo Conversion";
static_assert(kLeastOhms == 10 && kMostOhms == 200, "the message names the range");

std::string OhmsText(float ohms) {
  return PlainNumber(ohms);
}

// True if a network is not all 0, that is, was loaded from a file.
bool Loaded(const Network& network, int points) {
  for (int i = 0; i < points; ++i)
    if (!(network.S11[i] == Complex{}) || !(network.S21[i] == Complex{})) return true;
  return false;
}

// A file name with its extension, shortened to the available space without splitting a multi-byte
// character.
std::string Shortened(const std::string& file) {
  constexpr std::size_t kHead = 13, kTail = 10;
  if (file.size() <= kHead + kTail + 3) return file;
  const auto beginOfLetter = [&file](std::size_t at) {
    while ((static_cast<unsigned char>(file[at]) & 0xC0) == 0x80) --at;
    return at;
  };
  return file.substr(0, beginOfLetter(kHead)) + "..." +
         file.substr(beginOfLetter(file.size() - kTail));
}

// The parameters of the active calibration; without one, all data are used as they are.
std::span<const Parameter> DeliveredNow(const CalState& cal) {
  return DeliveredBy(ModeInForce(cal).value_or(SweepMode::All));
}

}  // namespace

void EnhancePara::AddDeEmbedding() {
  Section("De-embedding");
  deEmbed_ = AddOptions({{"Option1", "De-embed on"}, {"Option2", "De-embed off"}},
                        [this] { SwitchDeEmbed(); });
  deEmbed_.Keys("nf").Tip("Remove the ticked networks from the measured data");
  networks_[0] = AddCheck("Check1", "Port 1 network", [this] { SwitchNetwork(1); })
                     .Key('1')
                     .Tip("Load the network between port 1 and the device");
  networks_[1] = AddCheck("Check2", "Port 2 network", [this] { SwitchNetwork(2); })
                     .Key('2')
                     .Tip("Load the network between the device and port 2");
  files_[0] = AddLabel("Network1", "").Wide();
  files_[1] = AddLabel("Network2", "").Wide();
}

void EnhancePara::AddSystemZo() {
  Section("System Zo", {.Where = Position::Beside});
  convert_ = AddCheck("Check3", "Convert to System Zo")
                 .Key('C')
                 .Tip("Show what the device does in a system of another impedance");
  ohms_ = AddText("Text1", "Impedance")
              .Unit("ohms")
              .Key('I')
              .Number()
              .Tip("10 to 200 ohms; 50 switches the conversion off");
  match_ = AddCheck("Check4", "External Zo match")
               .Key('o')
               .Tip("External networks do the matching: nothing is converted");
  system_ = {convert_, ohms_, match_};
  AddButton("Command2", "Help", [this] {
    host_.windows.OpenDocument(session_.InstallFolder + "/ZoConversion.pdf");
  }).Key('H');
}

void EnhancePara::OpenSystem() {
  const ImpedanceState& impedance = session_.Impedance;
  convert_.Checked(impedance.ZoConvertOn);
  match_.Checked(impedance.ExternalZoMatch);
  ohms_.Text(OhmsText(impedance.SystemZo));
  ShowSystem();
}

void EnhancePara::ShowSystem() {
  const ImpedanceState& impedance = session_.Impedance;
  deEmbed_.Choose(impedance.DeEmbedOn ? kDeembedOn : kDeembedOff);
  networks_[0].Checked(session_.Networks.Port1NetOn);
  networks_[1].Checked(session_.Networks.Port2NetOn);
  for (const int port : {1, 2})
    files_[static_cast<std::size_t>(port - 1)].Caption(NetworkText(port));
  convert_.FollowChecked(impedance.ZoConvertOn);
  match_.FollowChecked(impedance.ExternalZoMatch);
  ohms_.FollowText(OhmsText(impedance.SystemZo));
}

void EnhancePara::SwitchDeEmbed() {
  session_.Impedance.DeEmbedOn = deEmbed_.Chosen() == kDeembedOn;
  const NetworkState& networks = session_.Networks;
  if (session_.Impedance.DeEmbedOn && !networks.Port1NetOn && !networks.Port2NetOn) {
    host_.prompts.ShowMessage("Measurement enhancement", "No embedding networks loaded",
                              Icon::Exclamation);
    session_.Impedance.DeEmbedOn = false;
  }
  host_.windows.SessionChanged();
}

void EnhancePara::SwitchNetwork(int port) {
  NetworkState& networks = session_.Networks;
  bool& on = port == 1 ? networks.Port1NetOn : networks.Port2NetOn;
  on = networks_[static_cast<std::size_t>(port - 1)]->Checked;
  // Without a new file, the network loaded before is used again; an empty network would remove
  // everything.
  if (on) {
    if (const auto file = LoadNetwork(session_, host_.prompts, port))
      sources_[static_cast<std::size_t>(port - 1)] = {*file, session_.Plan};
    else
      on = Loaded(networks.OfPort(port), session_.Plan.NumPoints);
  }
  if (!networks.Port1NetOn && !networks.Port2NetOn) session_.Impedance.DeEmbedOn = false;
  host_.windows.SessionChanged();
}

std::string EnhancePara::NetworkText(int port) const {
  const Network& network = std::as_const(session_.Networks).OfPort(port);
  const Source& source = sources_[static_cast<std::size_t>(port - 1)];
  if (source.File.empty() || !Loaded(network, source.Grid.NumPoints)) return "";
  return "Port " + std::to_string(port) + ": " + Shortened(source.File) +
         (SameGrid(session_.Plan, source.Grid) ? "" : ", for another sweep!");
}

bool EnhancePara::ApplySystemZo() {
  const double ohms = Val(ohms_->Text);
  const bool replot = convert_->Checked && !match_->Checked ? ConvertTo(ohms) : ConvertBack(ohms);
  convert_.Checked(session_.Impedance.ZoConvertOn);
  return replot;
}

bool EnhancePara::ImpedanceValid(double ohms) {
  if (ohms >= kLeastOhms && ohms <= kMostOhms) return true;
  host_.prompts.ShowMessage(kZoTitle, "Invalid System Impedance (valid range is 10 < Zsys < 200)",
                            Icon::Information);
  session_.Impedance.ZoConvertOn = false;
  return false;
}

// Converts the data to the impedance.
bool EnhancePara::ConvertTo(double ohms) {
  ImpedanceState& impedance = session_.Impedance;
  if (!ImpedanceValid(ohms)) return false;
  const auto zo = static_cast<float>(ohms);
  if (ohms == kInstrumentOhms) {
    // Intentional: the stored data are unchanged until the next sweep.
    impedance.SystemZo = zo;
    ohms_.Text(OhmsText(zo));
    match_.Checked(false);
    convert_.Checked(false);
    impedance.ZoConvertOn = impedance.ExternalZoMatch = false;
    return false;
  }
  if (!session_.Cal.Cal12Term)
    host_.prompts.ShowMessage(
        kZoTitle,
        "Not all s-parameters are available, so default values will be used for missing data",
        Icon::None);
  if (zo != impedance.SystemZo)
    ReconvertZo(session_, static_cast<double>(impedance.SystemZo), static_cast<double>(zo),
                DeliveredNow(session_.Cal));
  impedance.ZoConvertOn = true;
  impedance.ExternalZoMatch = false;
  impedance.SystemZo = zo;
  ohms_.Text(OhmsText(zo));
  match_.Checked(false);  // applied, so it follows a loaded session again
  return true;
}

// Converts the data back to 50 ohms: the conversion is off, or made outside the instrument.
bool EnhancePara::ConvertBack(double ohms) {
  ImpedanceState& impedance = session_.Impedance;
  const bool convert = convert_->Checked, match = match_->Checked;
  if (match && !ImpedanceValid(ohms)) return false;
  impedance.ZoConvertOn = convert;
  if (!impedance.ExternalZoMatch && static_cast<double>(impedance.SystemZo) != kInstrumentOhms)
    ReconvertZo(session_, static_cast<double>(impedance.SystemZo), kInstrumentOhms,
                DeliveredNow(session_.Cal));
  impedance.SystemZo = static_cast<float>(convert ? ohms : kInstrumentOhms);
  impedance.ExternalZoMatch = convert && match;
  if (static_cast<double>(impedance.SystemZo) == kInstrumentOhms)
    impedance.ZoConvertOn = impedance.ExternalZoMatch = false;
  ohms_.Text(OhmsText(impedance.SystemZo));
  match_.Checked(impedance.ExternalZoMatch);
  return true;
}

}  // namespace qk
