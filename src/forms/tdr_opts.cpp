// SPDX-License-Identifier: MIT
#include "forms/tdr_opts.h"

#include <algorithm>
#include <cmath>

#include "control/verbs.h"
#include "core/instrument_limits.h"
#include "core/text.h"
#include "core/typed_value.h"
#include "core/window_names.h"

namespace qk {

namespace {
constexpr double kFirstNs = -5, kFullEndNs = 161.667, kLastNs = 328.333;
constexpr double kWidestNs = 166.66701;
constexpr int kFull = 0, kEntered = 1;  // the choices of the axis
}  // namespace

TdrOpts::TdrOpts(Session& session, Host& host, Graphs& graphs)
    : Form(window::kTDR_Opts, "Time Domain Options"),
      session_(session),
      host_(host),
      graphs_(graphs) {
  AddAxis();
  AddDistance();
  AddWindow();
  AddGate();
  AddDcTerm();
  response_ = {t1_, t2_, order_, resistance_};
  response_.Add(axes_).Add(windows_).Add(dcTerms_);
  ActionRow();
  AddButton("Command1", "Apply", [this] { Apply(); }).Key('A').Default();
  AddButton("Command2", "Exit", [this] { host_.windows.Hide(Name()); }).Key('x');
}

void TdrOpts::AddAxis() {
  Section("Time Axis");
  axes_ = AddOptions({{"Option4", "Full"}, {"Option5", "Enter T1, T2"}});
  axes_.Keys("FE");
  const auto entered = [this] { Tick(axes_[kEntered]->Name, true); };
  t1_ = AddText("Text1", "T1", entered)
            .Unit("ns")
            .Key('1')
            .Number()
            .Tip("Left end of the axis, from -5 ns");
  t2_ = AddText("Text2", "T2", entered)
            .Unit("ns")
            .Key('2')
            .Number()
            .Tip("Right end of the axis: at most 328.333 ns, and 166.667 ns after T1");
}

void TdrOpts::AddWindow() {
  Section("Window");
  windows_ = AddOptions(
      {{"Option1", "Rectangular"}, {"Option2", "Hanning"}, {"Option3", "Kaiser Bessel"}});
  windows_.Keys("ngK").Tip("From Rectangular to Kaiser Bessel: less ringing, slower step");
  order_ = AddText("Text4", "Order").Key('O').Number().Tip("1 to 10");
}

void TdrOpts::AddDcTerm() {
  Section("DC Termination");
  dcTerms_ = AddOptions({{"Option6", "Auto"},
                         {"Option7", "Open circuit"},
                         {"Option8", "Short circuit"},
                         {"Option9", "Resitive"}});
  dcTerms_.Keys("uphR").Tip("What the device is at 0 Hz, below any sweep");
  resistance_ = AddText("Text3", "Resistance").Unit("ohms").Key('s').Number();
}

void TdrOpts::AddDistance() {
  Section("Axis As", {.Where = Position::Beside});
  scale_ = AddOptions({{"AxisTime", "Time"}, {"AxisDistance", "Distance"}});
  scale_.Keys("TD").Tip("Units of the time axis and of markers on it");
  cable_ = AddList("Cable", "Cable", NamesOf<Cable>(), [this] { ChooseCable(); }).Key('C');
  factor_ =
      AddText("VelocityFactor", "Velocity factor", [this] { cable_.ShowEntry(NameOf(Cable::Own)); })
          .Key('V')
          .Number()
          .Tip("Speed of the wave in the cable relative to light: 0.01 to 1");
  length_ = AddText("KnownLength", "Known length")
                .Unit("m")
                .Key('l')
                .Number()
                .Chars(8)
                .Tip(
                    "Length of cable from the reference marker, or the reference plane, to the "
                    "active marker");
  AddButton("FindFactor", "Find Factor", [this] { FindFactor(); })
      .Key('i')
      .SameRow()
      .Tip("Fills in the velocity factor that puts the active marker at this length");
}

void TdrOpts::AddGate() {
  Section("Gate", {.Where = Position::Beside});
  gate_ = AddOptions({{"GateOff", "Off"}, {"GateOn", "Gate"}, {"GateNotch", "Notch"}});
  gate_.Tip("Keeps or removes the response between the two times");
  gateStart_ =
      AddText("GateStart", "Start").Unit("ns").Number().Tip("On the time axis, from -5 ns");
  gateStop_ = AddText("GateStop", "Stop").Unit("ns").Number().Tip("To 328.333 ns");
  for (int n = 1; n <= kChannels; ++n) {
    Handle& channel = gated_[static_cast<std::size_t>(n - 1)];
    channel = AddCheck("GateCH" + std::to_string(n), "CH" + std::to_string(n))
                  .Tip("The gate acts on channel " + std::to_string(n));
    if (n > 1) channel.SameRow();
  }
  distanceAndGate_ = {cable_, factor_, gateStart_, gateStop_};
  distanceAndGate_.Add(scale_).Add(gate_);
  for (const Handle& channel : gated_) distanceAndGate_.Add(channel);
}

void TdrOpts::ShowDistance() {
  const TimeDomainState& td = session_.TimeDomain;
  scale_.Choose(static_cast<int>(td.Axis));
  cable_.ShowEntry(NameOf(td.Cable));
  factor_.Text(PlainNumber(td.VelocityFactor));
}

void TdrOpts::ShowGate() {
  const TimeDomainState& td = session_.TimeDomain;
  gate_.Choose(static_cast<int>(td.Gate));
  gateStart_.Text(PlainNumber(td.GateStart));
  gateStop_.Text(PlainNumber(td.GateStop));
  for (int n = 1; n <= kChannels; ++n)
    gated_[static_cast<std::size_t>(n - 1)].Checked(session_.Channel(n).Gated);
}

void TdrOpts::ChooseCable() {
  const auto cable = static_cast<Cable>(std::max(0, cable_->Index));
  if (cable != Cable::Own) factor_.Text(PlainNumber(RowOf(cable).VelocityFactor));
}

void TdrOpts::FindFactor() {
  const Result<double> factor = VelocityFactorFor(session_, Val(length_->Text));
  if (!factor) {
    host_.prompts.ShowMessage("TD Options", factor.Why().Message, Icon::Exclamation);
    return;
  }
  factor_.Text(FormatNumber(*factor, "0.0000"));
  cable_.ShowEntry(NameOf(Cable::Own));
  BeginEdit("VelocityFactor");  // waits for Apply like typed text
}

bool TdrOpts::TakeDistanceAndGate() {
  const std::optional<double> gateStart = NumberAlone(gateStart_->Text);
  const std::optional<double> gateStop = NumberAlone(gateStop_->Text);
  if (!gateStart || !gateStop) {
    host_.prompts.ShowMessage("TD Options", "Gate start and stop must be numbers",
                              Icon::Exclamation);
    return false;
  }
  GateSettings gate{static_cast<GateKind>(gate_.Chosen()), *gateStart, *gateStop, {}};
  for (std::size_t i = 0; i < gated_.size(); ++i) gate.Channels[i] = gated_[i]->Checked;
  const DistanceAxis axis{static_cast<TimeAxis>(scale_.Chosen()),
                          static_cast<Cable>(std::max(0, cable_->Index)), Val(factor_->Text)};
  const TimeDomainState before = session_.TimeDomain;
  Result<Done> taken = SetTimeAxis(session_, axis);
  if (taken) taken = SetGate(session_, gate);
  if (!taken) {
    session_.TimeDomain = before;
    host_.prompts.ShowMessage("TD Options", taken.Why().Message, Icon::Exclamation);
    return false;
  }
  ShowDistance();
  ShowGate();
  return true;
}

void TdrOpts::OnSessionChanged() {
  const TimeDomainState& td = session_.TimeDomain;
  const bool typed = factor_->Edited || cable_->Edited || scale_[0]->Edited || scale_[1]->Edited;
  if (!typed) ShowDistance();
  gateStart_.FollowText(PlainNumber(td.GateStart));
  gateStop_.FollowText(PlainNumber(td.GateStop));
  for (int n = 1; n <= kChannels; ++n)
    gated_[static_cast<std::size_t>(n - 1)].FollowChecked(session_.Channel(n).Gated);
  if (!gate_[0]->Edited && !gate_[1]->Edited && !gate_[2]->Edited)
    gate_.Choose(static_cast<int>(td.Gate));
}

void TdrOpts::OnOpen() {
  ShowDistance();
  ShowGate();
  t1_.Text(FormatNumber(kFirstNs, "#0.000"));
  t2_.Text(FormatNumber(kFullEndNs, "##0.000"));
  order_.Text(FormatNumber(5, "0"));
  resistance_.Text(FormatNumber(50, "#0.00"));
  axes_.Choose(kFull);
  dcTerms_.Choose(static_cast<int>(TdDcTerm::Auto));
  windows_.Choose(static_cast<int>(TdWindow::Rect));
}

void TdrOpts::OnSessionLoaded() {
  const TimeDomainState& td = session_.TimeDomain;
  if (td.TdDcTerm == TdDcTerm::Open || td.TdDcTerm == TdDcTerm::Auto)
    dcTerms_.Choose(static_cast<int>(td.TdDcTerm));
  if (td.TdWindow != TdWindow::Rect) windows_.Choose(static_cast<int>(td.TdWindow));
}

std::optional<TdrOpts::Axis> TdrOpts::EnteredAxis() {
  if (axes_.Chosen() != kEntered) return Axis{kFirstNs, kFullEndNs};
  const Axis axis{std::max(Val(t1_->Text), kFirstNs), std::min(Val(t2_->Text), kLastNs)};
  const char* wrong = nullptr;
  if (axis.T1 >= axis.T2)
    wrong = "T2 must greater than T1";
  else if (axis.T2 - axis.T1 > kWidestNs)
    wrong = "Span cannot be > 166.667 ns";
  if (wrong == nullptr) return axis;
  host_.prompts.ShowMessage("TD Options", wrong, Icon::Exclamation);
  return std::nullopt;
}

void TdrOpts::Apply() {
  const std::optional<Axis> axis = EnteredAxis();
  if (!axis || !TakeDistanceAndGate()) return;
  t1_.Text(FormatNumber(axis->T1, "##0.000"));
  t2_.Text(FormatNumber(axis->T2, "##0.000"));
  TimeDomainState& td = session_.TimeDomain;
  td.TdT1 = axis->T1;
  td.TdT2 = axis->T2;
  td.TdStep = (axis->T2 - axis->T1) / (kTimeDomainPoints - 1);

  td.TdDcTerm = static_cast<TdDcTerm>(dcTerms_.Chosen());
  constexpr double kLargestOhms = 1e30;  // fits a 32-bit number
  if (td.TdDcTerm == TdDcTerm::Res)
    td.TdResistance =
        static_cast<float>(std::clamp(Val(resistance_->Text), -kLargestOhms, kLargestOhms));

  td.TdWindow = static_cast<TdWindow>(windows_.Chosen());
  if (td.TdWindow == TdWindow::KaiserB) {
    const double order = std::clamp(std::trunc(std::fabs(Val(order_->Text))), 1.0, 10.0);
    td.TdKaiserOrder = static_cast<std::int16_t>(order);
    order_.Text(FormatNumber(order, "##"));
  }
  response_.Accept();
  graphs_.ReplotAll();
  host_.windows.SessionChanged();
}

}  // namespace qk
