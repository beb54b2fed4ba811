// SPDX-License-Identifier: MIT
// The sweep: SENSe, SOURce, INITiate, TRIGger, OUTPut.
#include <cmath>
#include <string>

#include "control/verbs.h"
#include "core/instrument_limits.h"
#include "scpi/call.h"
#include "scpi/commands.h"

namespace qk::scpi {

namespace {

// ---- plan --------------------------------------------------------------------------------------

constexpr Range kFrequency{kLowestFreq, kHighestFreq, kLowestFreq, Dimension::Hertz};
constexpr Range kStopFrequency{kLowestFreq, kHighestFreq, 3e9, Dimension::Hertz};
constexpr Range kSpan{0, kHighestFreq - kLowestFreq, 2.997e9, Dimension::Hertz};

template <void (PendingPlan::*Set)(double), const Range& In>
void SetPlan(Call& call) {
  if (const auto hertz = call.Number(0, In)) (call.remote.wanted().*Set)(*hertz);
}
// MIN, MAX and DEF are answered with what setting them would give: the other settings of the plan
// limit it.
template <void (PendingPlan::*Set)(double), double (*Of)(const PlanGrid&), const Range& In>
void AskPlan(Call& call) {
  PendingPlan plan = call.remote.wanted();
  if (call.Count() > 0) {
    if (call.At(0).Kind != ItemKind::Word) return call.Fail(kDataType);
    const auto hertz = call.Number(0, In);
    if (!hertz) return;
    (plan.*Set)(*hertz);
  }
  call.ReplyWhole(std::lround(Of(plan.Grid())));
}
double Start(const PlanGrid& grid) {
  return grid.StartFreq;
}
double Stop(const PlanGrid& grid) {
  return grid.StopFreq;
}
double Centre(const PlanGrid& grid) {
  return (grid.StartFreq + grid.StopFreq) / 2;
}
double SpanOf(const PlanGrid& grid) {
  return grid.StopFreq - grid.StartFreq;
}

constexpr Range kPoints{kPointCounts.front(), kPointCounts.back(), 101};
void SetPoints(Call& call) {
  constexpr Range any{1, 1e9, 101};
  const bool word = call.At(0).Kind == ItemKind::Word;
  const auto points = call.Number(0, word ? kPoints : any);
  if (points && !call.remote.wanted().SetPoints(std::round(*points)))
    call.Fail(kOutOfRange, std::string(call.At(0).Raw));
}
void AskPoints(Call& call) {
  if (!call.AnswersExtreme(kPoints, true)) call.ReplyWhole(call.remote.wanted().Grid().NumPoints);
}

constexpr Range kLevel{kLowestLevelDbm, kHighestLevelDbm, kHighestLevelDbm, Dimension::Decibel};
void SetLevel(Call& call) {
  if (const auto level = call.Number(0, kLevel))
    call.remote.wanted().SetLevel(static_cast<int>(std::lround(*level)));
}
void AskLevel(Call& call) {
  if (!call.AnswersExtreme(kLevel, true)) call.ReplyWhole(call.remote.wanted().Level());
}

void TakeTime(Call& call) {
  constexpr Range any{0, 1e6, 0, Dimension::Seconds};
  call.Number(0, any);  // the instrument sets its own
}

void AskTime(Call& call) {
  const double seconds = call.remote.SweepSeconds();
  if (!call.AnswersExtreme({seconds, seconds, seconds, Dimension::Seconds}))
    call.ReplyReal(seconds);
}

constexpr Range kBandwidth{1000, 1000, 1000, Dimension::Hertz};
void AskReceiverBandwidth(Call& call) {
  if (!call.AnswersExtreme(kBandwidth, true)) call.ReplyWhole(1000);
}

void SetBandwidth(Call& call) {
  constexpr Range any{0, 1e9, 1000, Dimension::Hertz};
  const auto hertz = call.Number(0, any);
  if (hertz && call.At(0).Kind == ItemKind::Number && *hertz != 1000)
    call.Fail(kIllegalValue, "the bandwidth is 1000 Hz");
}

// ---- averaging ---------------------------------------------------------------------------------

void SwitchAverages(Call& call) {
  const auto on = call.Switch(0);
  if (!on || *on == call.session.Averaging.AverOn) return;
  if (*on)
    call.remote.controller().AverOn();
  else
    call.remote.controller().AverOff();
  call.remote.host().windows.SessionChanged();
}

void SetAverageCount(Call& call) {
  if (const auto count = call.Whole(0, 1, kMostAverages)) ChooseAverages(call.remote.rig(), *count);
}
void AskAverageCount(Call& call) {
  constexpr Range count{1, kMostAverages, 1};
  if (!call.AnswersExtreme(count, true)) call.ReplyWhole(call.session.Averaging.AveragesSet);
}

// ---- raw data ----------------------------------------------------------------------------------

void AskRaw(Call& call) {
  const auto parameter = call.SParameter(0);
  if (!parameter) return;
  const KeptSweep sweep = call.remote.RawSweep(call.client, *parameter);
  if (sweep == nullptr) return call.Fail(kStaleData, std::string(NameOf(*parameter)));
  call.ReplyData(Pairs(RawArrayOf(sweep->Data, *parameter), sweep->Grid.NumPoints));
}

// ---- sweeping ----------------------------------------------------------------------------------

// False, with its error, if no sweep can be started.
bool MayBegin(Call& call) {
  const auto why = call.remote.SweepObstacle();
  if (why) call.Fail(why->Number, why->Detail);
  return !why;
}

void Initiate(Call& call) {
  const bool pending = call.remote.Occupied() && !call.remote.Stopping();
  if (pending || call.remote.SweepsAsked() > 0 || call.remote.Continuous())
    return call.Fail(kInitIgnored);
  Remote::ExpectSweep(call.client);
  if (MayBegin(call)) call.remote.StartSweeps(call.client, 1);
}

// Data measured before a refused sweep are not what the client requested.
void ExpectSweep(Call& call) {
  Remote::ExpectSweep(call.client);
}

void GoOn(Call& call) {
  if (call.remote.Continuous()) return;
  if (!MayBegin(call)) return;
  if (call.remote.Source == TriggerSource::Manual)
    call.remote.ArmContinuous(call.client);
  else
    call.remote.StartContinuous(call.client);
}

void SetContinuous(Call& call) {
  const auto on = call.Switch(0);
  if (!on) return;
  if (*on)
    GoOn(call);
  else
    call.remote.Stop(call.client);
}

enum Mode { kHold, kContinuous, kSingle, kGroup };
constexpr std::string_view kModes[] = {"HOLD", "CONTinuous", "SINGle", "GROups"};

void SetMode(Call& call) {
  const auto mode = call.Word(0, kModes);
  if (!mode) return;
  if (*mode == kHold) return call.remote.Stop(call.client);
  if (*mode == kContinuous) return GoOn(call);
  if (call.remote.Occupied() && !call.remote.Stopping()) return call.Fail(kInitIgnored);
  Remote::ExpectSweep(call.client);
  if (!MayBegin(call)) return;
  // Continuous sweeping is replaced by the requested sweeps.
  if (call.remote.Sweeping() || call.remote.Continuous()) call.remote.Stop(call.client);
  call.remote.StartSweeps(call.client, *mode == kGroup ? call.remote.GroupCount : 1);
}

void ModeRefused(Call& call) {
  const auto mode = call.Word(0, kModes);
  if (mode == kSingle || mode == kGroup) ExpectSweep(call);
}

void AskMode(Call& call) {
  if (call.remote.Continuous()) return call.Reply("CONT");
  const int asked = call.remote.SweepsAsked();
  call.Reply(asked == 0 ? "HOLD" : asked == 1 ? "SING" : "GRO");
}

constexpr Range kGroups{1, 10000, 1};
void SetGroups(Call& call) {
  if (const auto count = call.Whole(0, 1, 10000)) call.remote.GroupCount = *count;
}

constexpr std::string_view kSources[] = {"IMMediate", "INTernal", "MANual"};
void SetSource(Call& call) {
  const auto source = call.Word(0, kSources);
  if (!source) return;
  Remote& remote = call.remote;
  remote.Source = static_cast<TriggerSource>(*source);
  // Continuous sweeping goes on with the new source.
  const bool manual = remote.Source == TriggerSource::Manual;
  if (!remote.Continuous() || manual == remote.ContinuousArmed) return;
  if (manual) return remote.ArmContinuous(call.client);
  remote.ContinuousArmed = false;
  GoOn(call);
}
void AskSource(Call& call) {
  constexpr std::string_view words[] = {"IMM", "INT", "MAN"};
  call.Reply(words[static_cast<std::size_t>(call.remote.Source)]);
}

void AskTrigger(Call& call) {
  const Remote& remote = call.remote;
  if (remote.Sweeping() || remote.SweepsAsked() > 0) return call.Reply("MEAS");
  if (remote.ContinuousArmed) return call.Reply("WTRG");
  call.Reply(remote.Continuous() ? "MEAS" : "HOLD");
}

void SetOutput(Call& call) {
  const auto on = call.Switch(0);
  if (on && !*on) call.remote.Stop(call.client);
}

constexpr const char* kHertz = "<frequency>|MIN|MAX|DEF";

constexpr Row kSense[] = {
    {.Pattern = "[SENSe#1]:FREQuency:STARt",
     .Set = SetPlan<&PendingPlan::SetStart, kFrequency>,
     .Query = AskPlan<&PendingPlan::SetStart, Start, kFrequency>,
     .Takes = kHertz,
     .Help = "Start of the sweep in hertz. Plan and level come into force with the next sweep; "
             "reading gives what it will have.",
     .QueryTakes = {0, 1}},
    {.Pattern = "[SENSe#1]:FREQuency:STOP",
     .Set = SetPlan<&PendingPlan::SetStop, kStopFrequency>,
     .Query = AskPlan<&PendingPlan::SetStop, Stop, kStopFrequency>,
     .Takes = kHertz,
     .Help = "Stop of the sweep in hertz: the last point of the grid.",
     .QueryTakes = {0, 1}},
    {.Pattern = "[SENSe#1]:FREQuency:CENTer",
     .Set = SetPlan<&PendingPlan::SetCentre, kFrequency>,
     .Query = AskPlan<&PendingPlan::SetCentre, Centre, kFrequency>,
     .Takes = kHertz,
     .Help = "Middle of the sweep in hertz; the span shrinks where it does not fit.",
     .QueryTakes = {0, 1}},
    {.Pattern = "[SENSe#1]:FREQuency:SPAN",
     .Set = SetPlan<&PendingPlan::SetSpan, kSpan>,
     .Query = AskPlan<&PendingPlan::SetSpan, SpanOf, kSpan>,
     .Takes = kHertz,
     .Help = "Width of the sweep in hertz; the middle moves where it does not fit.",
     .QueryTakes = {0, 1}},
    {.Pattern = "[SENSe#1]:SWEep:POINts",
     .Set = SetPoints,
     .Query = AskPoints,
     .Takes = "<n>|MIN|MAX|DEF",
     .Help = "Points: the next larger of 51, 101, 201, 401, 801, 1024. 1024 points are 3 MHz to "
             "3072 MHz.",
     .QueryTakes = {0, 1}},
    {.Pattern = "[SENSe#1]:SWEep:TIME",
     .Set = TakeTime,
     .Query = AskTime,
     .Takes = "<seconds>",
     .Help = "Approximate time of a sweep in seconds. A setting is accepted and ignored.",
     .QueryTakes = {0, 1}},
    {.Pattern = "[SENSe#1]:SWEep:TYPE",
     .Set = [](Call& call) { call.Word(0, {"LINear"}); },
     .Query = [](Call& call) { call.Reply("LIN"); },
     .Takes = "LIN",
     .Help = "Spacing of the points: always linear."},
    {.Pattern = "[SENSe#1]:SWEep:MODE",
     .Set = SetMode,
     .Query = AskMode,
     .Takes = "HOLD|CONT|SING|GRO",
     .Help = "Stops; sweeps continuously; one sweep; as many sweeps as SWEep:GROups:COUNt says.",
     .Before = Needs::Instrument,
     .Refused = ModeRefused},
    {.Pattern = "[SENSe#1]:SWEep:GROups:COUNt",
     .Set = SetGroups,
     .Query =
         [](Call& call) {
           if (!call.AnswersExtreme(kGroups, true)) call.ReplyWhole(call.remote.GroupCount);
         },
     .Takes = "1..10000",
     .Help = "Sweeps of a group.",
     .QueryTakes = {0, 1}},
    {.Pattern = "[SENSe#1]:BANDwidth[:RESolution]",
     .Set = SetBandwidth,
     .Query = AskReceiverBandwidth,
     .Takes = "1000",
     .Help = "Bandwidth of the receiver in hertz: 1000.",
     .QueryTakes = {0, 1}},
    {.Pattern = "[SENSe#1]:BWIDth[:RESolution]",
     .Set = SetBandwidth,
     .Query = AskReceiverBandwidth,
     .Takes = "1000",
     .Help = "The same.",
     .QueryTakes = {0, 1}},
    {.Pattern = "[SENSe#1]:AVERage[:STATe]",
     .Set = SwitchAverages,
     .Query = [](Call& call) { call.ReplySwitch(call.session.Averaging.AverOn); },
     .Takes = "ON|OFF",
     .Help = "Averaging; during a sweep from its end on."},
    {.Pattern = "[SENSe#1]:AVERage:COUNt",
     .Set = SetAverageCount,
     .Query = AskAverageCount,
     .Takes = "1..255",
     .Help = "Readings that are averaged at each point.",
     .QueryTakes = {0, 1}},
    {.Pattern = "[SENSe#1]:AVERage:MODE",
     .Set = [](Call& call) { call.Word(0, {"POINt"}); },
     .Query = [](Call& call) { call.Reply("POIN"); },
     .Takes = "POIN",
     .Help = "Averages are taken point by point."},
    {.Pattern = "[SENSe#1]:AVERage:CLEar",
     .Set = [](Call&) {},
     .Help = "Accepted without effect: every sweep averages from the start.",
     .SetTakes = {0, 0}},
    {.Pattern = "[SENSe#1]:DATA:RAWData",
     .Query = AskRaw,
     .Asks = "S11|S21|S12|S22",
     .Help = "Raw ratios of this client's last INITiate, re,im of each point.",
     .Otherwise = Fallback::Data,
     .BeforeQuery = Needs::Sweep,
     .QueryTakes = {1, 1}},
    {.Pattern = "[SOURce#1]:POWer[:LEVel][:IMMediate][:AMPLitude]",
     .Set = SetLevel,
     .Query = AskLevel,
     .Takes = "-20..0|MIN|MAX|DEF",
     .Help = "Level of port 1 in dBm, in whole dB.",
     .QueryTakes = {0, 1}},
    {.Pattern = "OUTPut#1[:STATe]",
     .Set = SetOutput,
     .Takes = "ON|OFF",
     .Help = "OFF stops the sweep; ON does nothing: a sweep switches the source on."},
};

constexpr Row kTrigger[] = {
    {.Pattern = "INITiate#1[:IMMediate]",
     .Set = Initiate,
     .Help = "One sweep, as an operation.",
     .Before = Needs::Instrument,
     .SetTakes = {0, 0},
     .Refused = ExpectSweep},
    {.Pattern = "INITiate#1:CONTinuous",
     .Set = SetContinuous,
     .Query = [](Call& call) { call.ReplySwitch(call.remote.Continuous()); },
     .Takes = "ON|OFF",
     .Help = "Sweeps continuously, after the pending sweep; OFF stops, pending until idle.",
     .Before = Needs::Instrument},
    {.Pattern = "ABORt",
     .Set = [](Call& call) { call.remote.Stop(call.client); },
     .Help = "Stops the sweep, pending until idle.",
     .SetTakes = {0, 0}},
    {.Pattern = "TRIGger#1[:SEQuence]:SOURce",
     .Set = SetSource,
     .Query = AskSource,
     .Takes = "IMM|INT|MAN",
     .Help = "With MAN, INITiate:CONTinuous ON waits for *TRG before each sweep; continuous "
             "sweeping goes on with the new source."},
    {.Pattern = "TRIGger#1[:SEQuence]:STATe",
     .Query = AskTrigger,
     .Help = "HOLD, MEAS while a sweep runs, WTRG while *TRG is waited for.",
     .Otherwise = Fallback::Text},
};

}  // namespace

std::span<const Row> SenseRows() {
  return kSense;
}
std::span<const Row> TriggerRows() {
  return kTrigger;
}

}  // namespace qk::scpi
