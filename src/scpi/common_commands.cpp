// SPDX-License-Identifier: MIT
// The common commands of IEEE 488.2, the SYSTem and the STATus subsystem.
#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "core/instrument_limits.h"
#include "core/program_version.h"
#include "core/scopes.h"
#include "core/text.h"
#include "scpi/call.h"
#include "scpi/commands.h"

namespace qk::scpi {

namespace {

// ---- common ------------------------------------------------------------------------------------

void Identify(Call& call) {
  const Identity& id = call.session.Id;
  call.Reply("QK47,QK47-20-09," + std::to_string(id.SerialNumber) + "," +
             std::string(ProgramVersion()));
}

void SelfTest(Call& call) {
  Rig& rig = call.remote.rig();
  // A running sweep is a better test, and it uses the line.
  if (!call.session.Flags.SweepIdle) return call.ReplyWhole(0);
  if (const std::string why = call.remote.Obstacle(); !why.empty())
    return call.Fail(kExecution, why);
  const Timer1Pause pause(rig.host.loop);
  rig.link.EnsurePortOpen();
  call.ReplyWhole(rig.link.LinkCheck() ? 0 : 1);
}

void Reset(Call& call) {
  call.client.Form = DataForm::Ascii;
  call.client.Swapped = true;
  call.client.Trace = 1;
  call.client.Selected.reset();
  call.client.Measurements = {{"CH1_S11_1", Parameter::S11}};
  call.client.CompletionAsked = false;
  call.remote.calibration().Forget(call.client.Number());
  call.remote.Source = TriggerSource::Immediate;
  call.remote.GroupCount = 1;
  call.remote.Stop(call.client);
}

void ClearStatus(Call& call) {
  call.client.Status.Clear();
  call.client.CompletionAsked = false;
}

template <int ClientStatus::*Register>
void SetMask(Call& call) {
  if (const auto mask = call.Whole(0, 0, 255)) call.client.Status.*Register = *mask;
}
// Bit 6, which summarises the others, has no mask.
void SetServiceMask(Call& call) {
  constexpr int kSummary = 1 << 6;
  if (const auto mask = call.Whole(0, 0, 255)) call.client.Status.ServiceEnable = *mask & ~kSummary;
}
template <int ClientStatus::*Register>
void AskMask(Call& call) {
  call.ReplyWhole(call.client.Status.*Register);
}

void Trigger(Call& call) {
  if (call.remote.Occupied() || (call.remote.Continuous() && !call.remote.ContinuousArmed))
    return call.Fail(kInitIgnored);
  Remote::ExpectSweep(call.client);
  if (const auto why = call.remote.SweepObstacle()) return call.Fail(why->Number, why->Detail);
  call.remote.StartSweeps(call.client, 1);
}

void Complete(Call& call) {
  if (call.remote.Pending())
    call.client.CompletionAsked = true;
  else
    call.client.Status.Raise(Event::OperationComplete);
}

constexpr Row kCommon[] = {
    {.Pattern = "*IDN",
     .Query = Identify,
     .Help = "Maker, model, serial number, version of the program.",
     .Otherwise = Fallback::Text},
    {.Pattern = "*OPT", .Query = [](Call& call) { call.Reply("0"); }, .Help = "Options: none."},
    {.Pattern = "*RST",
     .Set = Reset,
     .Help = "Stops the sweep; number form, trigger and selections of this client as at its start. "
             "Plan and calibration stay.",
     .SetTakes = {0, 0}},
    {.Pattern = "*CLS",
     .Set = ClearStatus,
     .Help = "Empties this client's error queue and event registers.",
     .Before = Needs::Nothing,
     .SetTakes = {0, 0}},
    {.Pattern = "*ESE",
     .Set = SetMask<&ClientStatus::EventEnable>,
     .Query = AskMask<&ClientStatus::EventEnable>,
     .Takes = "0..255",
     .Help = "Mask of the standard event register.",
     .Before = Needs::Nothing},
    {.Pattern = "*ESR",
     .Query = [](Call& call) { call.ReplyWhole(call.client.Status.TakeEvents()); },
     .Help = "Standard event register, which the query empties."},
    {.Pattern = "*OPC",
     .Set = Complete,
     .Query = [](Call& call) { call.Reply("1"); },
     .Help = "Sets bit 0 of the event register, or answers 1, once no operation is pending.",
     .Before = Needs::Nothing,
     .BeforeQuery = Needs::Completion,
     .SetTakes = {0, 0}},
    {.Pattern = "*WAI",
     .Set = [](Call&) {},
     .Help = "Holds this client's further commands until no operation is pending.",
     .Before = Needs::Completion,
     .SetTakes = {0, 0}},
    {.Pattern = "*SRE",
     .Set = SetServiceMask,
     .Query = AskMask<&ClientStatus::ServiceEnable>,
     .Takes = "0..255",
     .Help = "Mask of the status byte.",
     .Before = Needs::Nothing},
    {.Pattern = "*STB",
     .Query = [](Call& call) { call.ReplyWhole(call.client.Status.StatusByte()); },
     .Help = "Status byte."},
    {.Pattern = "*TST",
     .Query = SelfTest,
     .Help = "0 when the instrument answers on its line, 1 when it does not. Refused while a "
             "window is using it.",
     .BeforeQuery = Needs::Completion},
    {.Pattern = "*TRG",
     .Set = Trigger,
     .Help = "One sweep, as INITiate.",
     .Before = Needs::Instrument,
     .SetTakes = {0, 0},
     .Refused = [](Call& call) { Remote::ExpectSweep(call.client); }},
};

// ---- SYSTem ------------------------------------------------------------------------------------

void AllErrors(Call& call) {
  std::string all;
  do {
    if (!all.empty()) all += ',';
    all += ErrorText(call.client.Status.Pop());
  } while (call.client.Status.Errors() > 0);
  call.Reply(all);
}

void SelectedName(Call& call) {
  const Client& client = call.client;
  if (client.Selected) return call.ReplyQuoted(*client.Selected);
  // Without a measurement selected by name: the measurement of the selected trace's parameter.
  const auto& known = client.Measurements;
  const Parameter shown = call.session.Channel(client.Trace).Parameter;
  const auto same = std::ranges::find(known, shown, &Client::Measurement::Which);
  call.ReplyQuoted(same != known.end() ? same->Name : known.empty() ? "" : known.front().Name);
}

void MeasurementNumbers(Call& call) {
  if (call.Count() > 0 && !call.Whole(0, 1, 1)) return;
  std::string numbers;
  for (std::size_t i = 0; i < call.client.Measurements.size(); ++i)
    numbers += (i == 0 ? "" : ",") + std::to_string(i + 1);
  call.ReplyQuoted(numbers);
}

void SelectInstrument(Call& call) {
  const auto name = call.Text(0);
  if (name && !SameWord(*name, "NA")) call.Fail(kIllegalValue, *name);
}

void MeasurementName(Call& call) {
  const auto index = static_cast<std::size_t>(call.Index() - 1);
  if (index >= call.client.Measurements.size())
    return call.Fail(kSuffixOutOfRange, "no such measurement");
  call.ReplyQuoted(call.client.Measurements[index].Name);
}

constexpr Row kSystem[] = {
    {.Pattern = "SYSTem:ERRor[:NEXT]",
     .Query = [](Call& call) { call.Reply(ErrorText(call.client.Status.Pop())); },
     .Help = "Number and text of the oldest error of this client; 0 when there is none.",
     .Otherwise = Fallback::Text},
    {.Pattern = "SYSTem:ERRor:COUNt",
     .Query = [](Call& call) { call.ReplyWhole(static_cast<long>(call.client.Status.Errors())); },
     .Help = "Errors that wait, 32 at most."},
    {.Pattern = "SYSTem:ERRor:ALL",
     .Query = AllErrors,
     .Help = "All errors that wait.",
     .Otherwise = Fallback::Text},
    {.Pattern = "SYSTem:VERSion",
     .Query = [](Call& call) { call.Reply("1999.0"); },
     .Help = "Version of SCPI."},
    {.Pattern = "SYSTem:HELP:HEADers",
     .Query = [](Call& call) { call.ReplyBlock(HeaderList(call.remote.tree())); },
     .Help = "Every header, a line each, as a block.",
     .Otherwise = Fallback::Block},
    {.Pattern = "SYSTem:PRESet", .Set = Reset, .Help = "As *RST.", .SetTakes = {0, 0}},
    {.Pattern = "SYSTem:ACTive:CHANnel",
     .Query = [](Call& call) { call.Reply("1"); },
     .Help = "The channel: always 1."},
    {.Pattern = "SYSTem:ACTive:MEASurement",
     .Query = SelectedName,
     .Help = "Name of the selected measurement.",
     .Otherwise = Fallback::Text},
    {.Pattern = "SYSTem:CHANnels:CATalog",
     .Query = [](Call& call) { call.Reply("\"1\""); },
     .Help = "The channels: 1.",
     .Otherwise = Fallback::Text},
    {.Pattern = "SYSTem:CHANnels:DELete",
     .Set = [](Call& call) { call.Fail(kSuffixOutOfRange, "the one channel stays"); },
     .Takes = "<n>",
     .Help = "Refused: the one channel stays."},
    {.Pattern = "SYSTem:MEASure:CATalog",
     .Query = MeasurementNumbers,
     .Asks = "[1]",
     .Help = "Numbers of this client's measurements.",
     .Otherwise = Fallback::Text,
     .QueryTakes = {0, 1}},
    {.Pattern = "SYSTem:MEASure#64:NAME",
     .Query = MeasurementName,
     .Help = "Name of this client's measurement <n>.",
     .Otherwise = Fallback::Text},
    {.Pattern = "INSTrument[:SELect]",
     .Set = SelectInstrument,
     .Query = [](Call& call) { call.ReplyQuoted("NA"); },
     .Takes = "'NA'",
     .Help = "Kind of instrument: a network analyser.",
     .Otherwise = Fallback::Text,
     .Before = Needs::Nothing},
    {.Pattern = "SYSTem:CAPability:HARDware:PORTs:COUNt",
     .Query = [](Call& call) { call.Reply("2"); },
     .Help = "Ports: 2."},
    {.Pattern = "SERVice:PORT:COUNt",
     .Query = [](Call& call) { call.Reply("2"); },
     .Help = "Ports: 2."},
    {.Pattern = "SERVice:SWEep:FREQuency:MAXimum",
     .Query = [](Call& call) { call.ReplyWhole(std::lround(kHighestFreq)); },
     .Help = "Highest frequency in hertz."},
    {.Pattern = "SERVice:SWEep:FREQuency:MINimum",
     .Query = [](Call& call) { call.ReplyWhole(std::lround(kLowestFreq)); },
     .Help = "Lowest frequency in hertz."},
    {.Pattern = "SERVice:SWEep:POINts",
     .Query = [](Call& call) { call.ReplyWhole(kMaxPoints); },
     .Help = "Most points of a sweep."},
};

// ---- STATus ------------------------------------------------------------------------------------

template <StatusGroup ClientStatus::*Group>
void AskEvent(Call& call) {
  call.ReplyWhole((call.client.Status.*Group).TakeEvent());
}
template <StatusGroup ClientStatus::*Group>
void AskCondition(Call& call) {
  call.ReplyWhole((call.client.Status.*Group).Condition());
}
template <StatusGroup ClientStatus::*Group>
void AskEnable(Call& call) {
  call.ReplyWhole((call.client.Status.*Group).Enable);
}
template <StatusGroup ClientStatus::*Group>
void SetEnable(Call& call) {
  if (const auto mask = call.Whole(0, 0, 32767)) (call.client.Status.*Group).Enable = *mask;
}

constexpr auto kOper = &ClientStatus::Operation;
constexpr auto kQues = &ClientStatus::Questionable;

constexpr Row kStatus[] = {
    {.Pattern = "STATus:OPERation[:EVENt]",
     .Query = AskEvent<kOper>,
     .Help = "Operation events since the last read."},
    {.Pattern = "STATus:OPERation:CONDition",
     .Query = AskCondition<kOper>,
     .Help = "Operation status now."},
    {.Pattern = "STATus:OPERation:ENABle",
     .Set = SetEnable<kOper>,
     .Query = AskEnable<kOper>,
     .Takes = "0..32767",
     .Help = "Mask of the operation events.",
     .Before = Needs::Nothing},
    {.Pattern = "STATus:QUEStionable[:EVENt]",
     .Query = AskEvent<kQues>,
     .Help = "Questionable events since the last read."},
    {.Pattern = "STATus:QUEStionable:CONDition",
     .Query = AskCondition<kQues>,
     .Help = "Questionable status now."},
    {.Pattern = "STATus:QUEStionable:ENABle",
     .Set = SetEnable<kQues>,
     .Query = AskEnable<kQues>,
     .Takes = "0..32767",
     .Help = "Mask of the questionable events.",
     .Before = Needs::Nothing},
    {.Pattern = "STATus:PRESet",
     .Set = [](Call& call) { call.client.Status.Preset(); },
     .Help = "Both masks to 0.",
     .Before = Needs::Nothing,
     .SetTakes = {0, 0}},
};

}  // namespace

std::span<const Row> CommonRows() {
  return kCommon;
}
std::span<const Row> SystemRows() {
  return kSystem;
}
std::span<const Row> StatusRows() {
  return kStatus;
}

}  // namespace qk::scpi
