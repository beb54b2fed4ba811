// SPDX-License-Identifier: MIT
// How traces are interpreted: elements, chart grids, memories, distance and gates; and the quality
// of their numbers: hints, uncertainty, statistics.
#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "control/display_mode.h"
#include "control/graph_verbs.h"
#include "control/quality_verbs.h"
#include "control/verbs.h"
#include "core/instrument_limits.h"
#include "scpi/call.h"
#include "scpi/commands.h"
#include "trace/memory.h"

namespace qk::scpi {

namespace {

Graphs& GraphsOf(Call& call) {
  return call.remote.controller().graphs();
}

void NotifyWindows(Call& call) {
  call.remote.host().windows.SessionChanged();
}

void Replot(Call& call) {
  GraphsOf(call).ReplotAll();
  NotifyWindows(call);
}

// Replies with the word for an enum's index, in its short form.
void ReplyWord(Call& call, std::string_view word) {
  std::string text;
  for (const char c : word)
    if (c < 'a' || c > 'z') text += c;
  call.Reply(text);
}

// ---- elements and grids ------------------------------------------------------------------------

constexpr std::array<std::string_view, 3> kElementWords{"REFLection", "SERies", "SHUNt"};
void SetElement(Call& call) {
  const auto chosen = call.Word(0, kElementWords);
  if (!chosen) return;
  ChannelSettings& channel = call.session.Channel(call.Index());
  const auto element = static_cast<Element>(*chosen);
  const bool part = RowOf(channel.GraphType).Form == PointForm::Component;
  if (part && element == Element::Reflection && !RowOf(channel.Parameter).Reflection)
    return call.Fail(kSettingsConflict, "series or shunt with a transmission");
  channel.Element = element;
  Replot(call);
}
void AskElement(Call& call) {
  ReplyWord(call,
            kElementWords[static_cast<std::size_t>(ElementOf(call.session.Channel(call.Index())))]);
}

constexpr std::array<std::string_view, 3> kGridWords{"IMPedance", "ADMittance", "BOTH"};
void SetGrid(Call& call) {
  const auto chosen = call.Word(0, kGridWords);
  if (!chosen) return;
  call.session.Channel(call.Index()).Grid = static_cast<ChartGrid>(*chosen);
  Replot(call);
}
void AskGrid(Call& call) {
  ReplyWord(call, kGridWords[static_cast<std::size_t>(call.session.Channel(call.Index()).Grid)]);
}

// ---- memories ----------------------------------------------------------------------------------

constexpr Range kMemoryRange{1, kMemories, 1};
void SetMemory(Call& call) {
  const auto number = call.Whole(0, 1, kMemories);
  if (!number) return;
  UseMemory(call.session, call.remote.host().windows, *number);
  GraphsOf(call).ReplotAll();
}
void AskMemory(Call& call) {
  if (!call.AnswersExtreme(kMemoryRange, true)) call.ReplyWhole(call.session.Display.MemoryNumber);
}

void Memorize(Call& call) {
  if (!call.remote.GraphsStand(call.client)) return call.Fail(kStaleData);
  StoreMemory(call.session, call.Index(), call.Index());
  Replot(call);
}

constexpr std::array<std::string_view, 4> kMathWords{"NORMal", "ADD", "SUBTract", "DIVide"};
void SetMath(Call& call) {
  const auto chosen = call.Word(0, kMathWords);
  if (!chosen) return;
  Session& session = call.session;
  if (*chosen != 0) {
    bool stored = false;
    for (int n = 1; n <= kChannels; ++n)
      for (int number = 1; number <= kMemories; ++number)
        stored = stored || MemoryOf(session, n, number).Valid;
    if (!stored) return call.Fail(kSettingsConflict, "no trace is stored");
    session.Display.MemoryFunction = static_cast<MemoryFunction>(*chosen);
  }
  SwitchDisplayMode(session, call.remote.host(), GraphsOf(call),
                    *chosen == 0 ? DisplayMode::Data : DisplayMode::MemoryMath);
  NotifyWindows(call);
}
void AskMath(Call& call) {
  const DisplayState& display = call.session.Display;
  const bool acts = display.DisplayMode == DisplayMode::MemoryMath;
  ReplyWord(call, kMathWords[acts ? static_cast<std::size_t>(display.MemoryFunction) : 0]);
}

// ---- distance and gate -------------------------------------------------------------------------

DistanceAxis AxisNow(const Session& session) {
  const TimeDomainState& td = session.TimeDomain;
  return {td.Axis, td.Cable, td.VelocityFactor};
}

void TakeAxis(Call& call, const DistanceAxis& axis) {
  if (const Result<Done> taken = SetTimeAxis(call.session, axis); !taken)
    return call.Fail(kSettingsConflict, taken.Why().Message);
  Replot(call);
}

constexpr std::array<std::string_view, 2> kAxisWords{"TIME", "DISTance"};
void SetAxis(Call& call) {
  const auto chosen = call.Word(0, kAxisWords);
  if (!chosen) return;
  DistanceAxis axis = AxisNow(call.session);
  axis.Axis = static_cast<TimeAxis>(*chosen);
  TakeAxis(call, axis);
}

constexpr Range kFactorRange{kLeastVelocityFactor, 1, 1};
void SetFactor(Call& call) {
  const auto factor = call.Number(0, kFactorRange);
  if (!factor) return;
  DistanceAxis axis = AxisNow(call.session);
  axis.Of = Cable::Own;
  axis.OwnFactor = *factor;
  TakeAxis(call, axis);
}

GateSettings GateNow(const Session& session) {
  const TimeDomainState& td = session.TimeDomain;
  GateSettings gate{td.Gate, td.GateStart, td.GateStop, {}};
  for (int n = 1; n <= kChannels; ++n)
    gate.Channels[static_cast<std::size_t>(n - 1)] = session.Channel(n).Gated;
  return gate;
}

void TakeGate(Call& call, const GateSettings& gate) {
  if (const Result<Done> taken = SetGate(call.session, gate); !taken)
    return call.Fail(kSettingsConflict, taken.Why().Message);
  Replot(call);
}

constexpr std::array<std::string_view, 3> kGateWords{"OFF", "BPASs", "NOTCh"};
void SetGateKind(Call& call) {
  const auto chosen = call.Word(0, kGateWords);
  if (!chosen) return;
  GateSettings gate = GateNow(call.session);
  gate.Kind = static_cast<GateKind>(*chosen);
  TakeGate(call, gate);
}

constexpr Range kGateRange{kFirstGateNs * 1e-9, kLastGateNs * 1e-9, 0, Dimension::Seconds};
constexpr double kLeastGateNs = 0.1;
// A start beyond the stop moves the stop, and the reverse.
template <bool Start>
void SetGateEdge(Call& call) {
  const auto seconds = call.Number(0, kGateRange);
  if (!seconds) return;
  GateSettings gate = GateNow(call.session);
  const double ns = std::round(*seconds * 1e15) / 1e6;  // to a femtosecond
  if (Start) {
    gate.Start = std::min(ns, kLastGateNs - kLeastGateNs);
    gate.Stop = std::max(gate.Stop, gate.Start + kLeastGateNs);
  } else {
    gate.Stop = std::max(ns, kFirstGateNs + kLeastGateNs);
    gate.Start = std::min(gate.Start, gate.Stop - kLeastGateNs);
  }
  TakeGate(call, gate);
}
template <bool Start>
void AskGateEdge(Call& call) {
  const TimeDomainState& td = call.session.TimeDomain;
  if (!call.AnswersExtreme(kGateRange)) call.ReplyReal((Start ? td.GateStart : td.GateStop) / 1e9);
}

// Removing the last channel from a gate switches the gate off.
void SwitchGate(Call& call) {
  const auto on = call.Switch(0);
  if (!on) return;
  GateSettings gate = GateNow(call.session);
  gate.Channels[static_cast<std::size_t>(call.Index() - 1)] = *on;
  if (gate.Channels == std::array<bool, 4>{}) gate.Kind = GateKind::Off;
  TakeGate(call, gate);
}

// ---- quality -----------------------------------------------------------------------------------

void AskHints(Call& call) {
  std::string text;
  for (const Hint& hint : call.remote.controller().quality().Hints.Active())
    text += (text.empty() ? "\"" : ",\"") + std::string(HintName(hint.Kind)) + "\",\"" + hint.Text +
            "\"";
  call.Reply(text.empty() ? "\"\"" : text);
}

void AskUncertainty(Call& call) {
  const auto parameter = call.SParameter(0);
  if (!parameter) return;
  const QualityState& quality = call.remote.controller().quality();
  if (const std::string why = WhyNoWholeUncertainty(quality, call.session, *parameter);
      !why.empty())
    return call.Fail(kStaleData, why);
  if (!call.remote.GraphsStand(call.client)) return call.Fail(kStaleData);
  std::vector<double> expanded;
  expanded.reserve(static_cast<std::size_t>(call.session.Plan.NumPoints));
  for (int k = 0; k < call.session.Plan.NumPoints; ++k)
    expanded.push_back(kCoverage *
                       UncertaintyAt(quality, call.session, *parameter, k).value_or(std::nan("")));
  call.ReplyData(expanded);
}

void AskBasis(Call& call) {
  const auto parameter = call.SParameter(0);
  if (!parameter) return;
  call.ReplyQuoted(UncertaintyBasis(call.remote.controller().quality(), call.session, *parameter));
}

constexpr Row kTraceRows[] = {
    {.Pattern = "CALCulate#1:TRACe#4:ELEMent",
     .Set = SetElement,
     .Query = AskElement,
     .Takes = "REFL|SER|SHUN",
     .Help = "How the part is connected whose impedance channel <n> shows.",
     .Otherwise = Fallback::Text},
    {.Pattern = "DISPlay:WINDow#1:TRACe#4:GRID",
     .Set = SetGrid,
     .Query = AskGrid,
     .Takes = "IMP|ADM|BOTH",
     .Help = "Grid of the Smith chart of channel <n>.",
     .Otherwise = Fallback::Text},
    {.Pattern = "CALCulate#1:MATH:MEMory",
     .Set = SetMemory,
     .Query = AskMemory,
     .Takes = "1..4",
     .Help = "The memory that is stored and combined.",
     .QueryTakes = {0, 1}},
    {.Pattern = "CALCulate#1:TRACe#4:MATH:MEMorize",
     .Set = Memorize,
     .Help = "Stores the data of channel <n> in the memory in use.",
     .Before = Needs::Sweep,
     .SetTakes = {0, 0}},
    {.Pattern = "CALCulate#1:MATH:FUNCtion",
     .Set = SetMath,
     .Query = AskMath,
     .Takes = "NORM|ADD|SUBT|DIV",
     .Help = "Data alone, or data combined with the memory in use. The corrected data that clients "
             "read are never combined.",
     .Otherwise = Fallback::Text},
    {.Pattern = "CALCulate#1:TRANsform:AXIS",
     .Set = SetAxis,
     .Query =
         [](Call& call) {
           ReplyWord(call, kAxisWords[static_cast<std::size_t>(call.session.TimeDomain.Axis)]);
         },
     .Takes = "TIME|DIST",
     .Help = "How the axis of a time response is read.",
     .Otherwise = Fallback::Text},
    {.Pattern = "CALCulate#1:TRANsform:VFACtor",
     .Set = SetFactor,
     .Query =
         [](Call& call) {
           if (!call.AnswersExtreme(kFactorRange))
             call.ReplyReal(call.session.TimeDomain.VelocityFactor);
         },
     .Takes = "0.01..1",
     .Help = "Velocity factor of the cable.",
     .QueryTakes = {0, 1}},
    {.Pattern = "CALCulate#1:GATE:TYPE",
     .Set = SetGateKind,
     .Query =
         [](Call& call) {
           ReplyWord(call, kGateWords[static_cast<std::size_t>(call.session.TimeDomain.Gate)]);
         },
     .Takes = "OFF|BPAS|NOTC",
     .Help = "Keeps or removes the response between start and stop; 1024 points.",
     .Otherwise = Fallback::Text},
    {.Pattern = "CALCulate#1:GATE:STARt",
     .Set = SetGateEdge<true>,
     .Query = AskGateEdge<true>,
     .Takes = "<time>",
     .Help = "Start of the gate in seconds. A start after the stop moves the stop.",
     .QueryTakes = {0, 1}},
    {.Pattern = "CALCulate#1:GATE:STOP",
     .Set = SetGateEdge<false>,
     .Query = AskGateEdge<false>,
     .Takes = "<time>",
     .Help = "Stop of the gate in seconds.",
     .QueryTakes = {0, 1}},
    {.Pattern = "CALCulate#1:TRACe#4:GATE[:STATe]",
     .Set = SwitchGate,
     .Query = [](Call& call) { call.ReplySwitch(call.session.Channel(call.Index()).Gated); },
     .Takes = "ON|OFF",
     .Help = "Whether the gate acts on channel <n>."},
    {.Pattern = "STATus:HINT",
     .Query = AskHints,
     .Help = "Hints at likely mistakes, from the last sweeps: name and text of each, the most "
             "serious first; an empty string when there is none.",
     .Otherwise = Fallback::Text},
    {.Pattern = "STATus:HINT:STATe",
     .Set =
         [](Call& call) {
           if (const auto on = call.Switch(0)) SwitchHints(call.remote.controller(), *on);
         },
     .Query = [](Call& call) { call.ReplySwitch(call.remote.controller().quality().Hints.On()); },
     .Takes = "ON|OFF",
     .Help = "Hints on or off."},
    {.Pattern = "CALCulate#1:UNCertainty:DATA",
     .Query = AskUncertainty,
     .Asks = "S11|S21",
     .Help = "Expanded uncertainty (coverage 2, linear) of each point, from the checks of the "
             "calibration; known from the fourth sweep of a device on, which shows the noise.",
     .Otherwise = Fallback::Data,
     .BeforeQuery = Needs::Sweep,
     .QueryTakes = {1, 1}},
    {.Pattern = "CALCulate#1:UNCertainty:BASis",
     .Query = AskBasis,
     .Asks = "S11|S21",
     .Help = "What the uncertainty is based on and what it leaves out, or what is missing.",
     .Otherwise = Fallback::Text,
     .QueryTakes = {1, 1}},
    {.Pattern = "DISPlay:UNCertainty[:STATe]",
     .Set =
         [](Call& call) {
           if (const auto on = call.Switch(0)) ShowUncertainty(call.remote.controller(), *on);
         },
     .Query = [](Call& call) { call.ReplySwitch(GraphsOf(call).View.Uncertainty); },
     .Takes = "ON|OFF",
     .Help = "The uncertainty as a band behind the traces of S11 and S21, and in read-outs."},
    {.Pattern = "DISPlay:STATistics[:STATe]",
     .Set =
         [](Call& call) {
           if (const auto on = call.Switch(0)) ShowSpread(call.remote.controller(), *on);
         },
     .Query = [](Call& call) { call.ReplySwitch(GraphsOf(call).View.Spread); },
     .Takes = "ON|OFF",
     .Help = "Mean and spread of the repeated sweeps as a band behind the traces."},
};

}  // namespace

std::span<const Row> TraceRows() {
  return kTraceRows;
}

}  // namespace qk::scpi
