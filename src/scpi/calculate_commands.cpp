// SPDX-License-Identifier: MIT
// Traces, measurements and their data: CALCulate, FORMat, DISPlay.
#include <algorithm>
#include <string>
#include <vector>

#include "control/graph_verbs.h"
#include "control/verbs.h"
#include "core/instrument_limits.h"
#include "core/text.h"
#include "limits/limit_segments.h"
#include "limits/limit_test.h"
#include "scpi/call.h"
#include "scpi/commands.h"
#include "scpi/formatted_sweep.h"
#include "trace/autoscale.h"

namespace qk::scpi {

namespace {

// ---- traces ------------------------------------------------------------------------------------

Parameter Selected(const Call& call) {
  if (call.client.Selected)
    for (const Client::Measurement& measurement : call.client.Measurements)
      if (measurement.Name == *call.client.Selected) return measurement.Which;
  return call.session.Channel(call.client.Trace).Parameter;
}

void Redraw(Call& call, int channel, bool scaleAnew) {
  Controller& controller = call.remote.controller();
  Graphs& graphs = controller.graphs();
  graphs.ReplotAll();
  ChannelSettings& settings = call.session.Channel(channel);
  const AutoscaleResult result =
      scaleAnew ? Autoscale(settings, call.session.Plan.NumPoints) : AutoscaleResult();
  if (result.Changed) {
    settings.Units = result.Units;
    settings.Scale = result.Scale;
    settings.Reference = result.Reference;
    settings.RefPosition = 4;
  }
  const std::string off = SwitchOffUnsuitable(call.session, channel);
  if (!off.empty()) {
    ClearLimitFailure(call.session, call.remote.host());
    controller.notice().Say(off + " switched off");
  }
  if (!result.Changed && off.empty()) return;
  graphs.ReplotAll();
  call.remote.host().windows.SessionChanged();
}

void ShowSet(Call& call, DisplaySet set) {
  ChooseDisplaySet(call.session, call.remote.host().windows, set);
  call.remote.controller().graphs().ReplotAll();
}

void SetCount(Call& call) {
  const auto count = call.Whole(0, 1, 4);
  if (!count) return;
  const DisplaySet set = *count == 1   ? DisplaySet::One
                         : *count == 2 ? DisplaySet::OneTwo
                                       : DisplaySet::All;
  ShowSet(call, set);
}

void AskCount(Call& call) {
  constexpr Range traces{1, 4, 1};
  if (call.AnswersExtreme(traces, true)) return;
  const DisplaySetRow& row = RowOf(call.session.Display.DisplaySet);
  call.ReplyWhole(row.Last - row.First + 1);
}

void DefineTrace(Call& call) {
  const auto parameter = call.SParameter(0);
  if (!parameter) return;
  call.remote.OwnForms[static_cast<std::size_t>(call.Index() - 1)].reset();
  Redraw(call, call.Index(),
         ChooseParameter(call.session, call.remote.host().windows, call.Index(), *parameter));
}

void AskTrace(Call& call) {
  call.Reply(NameOf(call.session.Channel(call.Index()).Parameter));
}

// ---- named measurements ------------------------------------------------------------------------

Client::Measurement* FindMeasurement(Call& call, std::string_view name) {
  for (Client::Measurement& measurement : call.client.Measurements)
    if (measurement.Name == name) return &measurement;
  return nullptr;
}

// A name, in quotes or as a bare word.
std::optional<std::string> NameAt(Call& call, std::size_t i) {
  if (i < call.Count() && call.At(i).Kind == ItemKind::Word) return std::string(call.At(i).Raw);
  return call.Text(i);
}

void Select(Call& call) {
  if (call.Count() == 0) {
    call.client.Trace = call.Index();
    call.client.Selected.reset();
    return;
  }
  const auto name = NameAt(call, 0);
  if (!name || (call.Count() > 1 && !call.Word(1, {"FAST"}))) return;
  if (FindMeasurement(call, *name) == nullptr) return call.Fail(kIllegalValue, *name);
  call.client.Selected = *name;
}

// A trace selected by its number has the name of the measurement of its parameter, if there is one.
void AskSelected(Call& call) {
  if (call.client.Selected) return call.ReplyQuoted(*call.client.Selected);
  const auto& known = call.client.Measurements;
  const Parameter shown = call.session.Channel(call.client.Trace).Parameter;
  const auto same = std::ranges::find(known, shown, &Client::Measurement::Which);
  call.ReplyQuoted(same == known.end() ? std::string_view() : same->Name);
}

// The catalog separates names by commas.
bool IsTraceName(std::string_view name) {
  const auto fits = [](char c) {
    return c >= ' ' && c <= '~' && c != ',' && c != '"' && c != '\'';
  };
  return !name.empty() && name.size() <= 64 && std::ranges::all_of(name, fits);
}

void Define(Call& call) {
  constexpr std::size_t kMost = 64;
  const auto name = NameAt(call, 0);
  if (!name) return;
  const auto parameter = call.SParameter(1);
  if (!parameter) return;
  if (!IsTraceName(*name))
    return call.Fail(kIllegalValue, "a name has 1 to 64 characters, no comma and no quote");
  if (Client::Measurement* known = FindMeasurement(call, *name); known != nullptr) {
    known->Which = *parameter;
    return;
  }
  if (call.client.Measurements.size() >= kMost) return call.Fail(kIllegalValue, "64 at most");
  call.client.Measurements.push_back({*name, *parameter});
}

void DeleteTrace(Call& call) {
  const auto name = NameAt(call, 0);
  if (!name) return;
  if (std::erase_if(call.client.Measurements,
                    [&name](const auto& known) { return known.Name == *name; }) == 0)
    return call.Fail(kIllegalValue, *name);
  if (call.client.Selected == *name) call.client.Selected.reset();
}

void DeleteAll(Call& call) {
  call.client.Measurements.clear();
  call.client.Selected.reset();
}

void CatalogOfTraces(Call& call) {
  std::string catalog;
  for (const Client::Measurement& measurement : call.client.Measurements)
    catalog += (catalog.empty() ? "" : ",") + measurement.Name + "," +
               std::string(NameOf(measurement.Which));
  call.ReplyQuoted(catalog.empty() ? "NO CATALOG" : catalog);
}

void SelectNumber(Call& call) {
  const auto number = call.Whole(0, 1, 64);
  if (!number) return;
  const auto index = static_cast<std::size_t>(*number - 1);
  if (index >= call.client.Measurements.size()) return call.Fail(kIllegalValue, "no such number");
  call.client.Selected = call.client.Measurements[index].Name;
}

void AskNumber(Call& call) {
  const auto& known = call.client.Measurements;
  for (std::size_t i = 0; i < known.size(); ++i)
    if (call.client.Selected == known[i].Name) return call.ReplyWhole(static_cast<long>(i + 1));
  call.ReplyWhole(1);
}

void Feed(Call& call) {
  const auto name = NameAt(call, 0);
  if (name && FindMeasurement(call, *name) == nullptr) call.Fail(kIllegalValue, *name);
}

// ---- trace formats -----------------------------------------------------------------------------

void SetFormOf(Call& call, int channel) {
  std::vector<std::string_view> words;
  for (const TraceFormRow& row : TraceForms()) words.push_back(row.Word);
  const auto chosen = call.Word(0, words);
  if (!chosen) return;
  const TraceFormRow& row = TraceForms()[static_cast<std::size_t>(*chosen)];
  auto& own = call.remote.OwnForms[static_cast<std::size_t>(channel - 1)];
  const ChannelSettings& settings = call.session.Channel(channel);
  if (!row.Shown) {
    own = Remote::OwnForm{static_cast<TraceForm>(*chosen), settings.GraphType};
    return;
  }
  if (RowOf(*row.Shown).ReflectionOnly && !RowOf(settings.Parameter).Reflection)
    return call.Fail(kSettingsConflict, "this form shows reflections only");
  if (RowOf(*row.Shown).Form == PointForm::Component && !RowOf(settings.Parameter).Reflection &&
      settings.Element == Element::Reflection)
    return call.Fail(kSettingsConflict, "CALC:TRAC:ELEM must be SER or SHUN with a transmission");
  if (RowOf(*row.Shown).Form == PointForm::Spectrum) {
    if (const Result<Done> shown = ShowGraphType(call.remote.controller(), channel, *row.Shown);
        !shown)
      return call.Fail(kSettingsConflict, shown.Why().Message);
    own.reset();
    return;
  }
  own.reset();
  Redraw(call, channel,
         ChooseGraphType(call.session, call.remote.host().windows, channel, *row.Shown));
}

void SetForm(Call& call) {
  SetFormOf(call, call.Index());
}
void SetFormOfSelected(Call& call) {
  SetFormOf(call, call.client.Trace);
}

void AskFormOf(Call& call, int channel) {
  const TraceForm form = call.remote.FormOfTrace(channel);
  std::string word;
  for (const char c : TraceForms()[static_cast<std::size_t>(form)].Word)
    if (c < 'a' || c > 'z') word += c;
  call.Reply(word);
}

void AskForm(Call& call) {
  AskFormOf(call, call.Index());
}
void AskFormOfSelected(Call& call) {
  AskFormOf(call, call.client.Trace);
}

// ---- data --------------------------------------------------------------------------------------

void ReplyCorrected(Call& call, Parameter parameter) {
  const KeptSweep sweep = call.remote.ReadSweep(call.client, parameter);
  if (sweep == nullptr) return call.Fail(kStaleData, std::string(NameOf(parameter)));
  call.ReplyData(Pairs(ArrayOf(sweep->Data, parameter), sweep->Grid.NumPoints));
}

void ReplyFormatted(Call& call, int channel, Parameter parameter) {
  const TraceForm form = call.remote.FormOfTrace(channel);
  const ChannelSettings& settings = call.session.Channel(channel);
  const KeptSweep sweep = call.remote.ReadSweep(call.client, parameter);
  if (sweep == nullptr) return call.Fail(kStaleData, std::string(NameOf(parameter)));
  if (form != TraceForm::Time && form != TraceForm::TimeImpedance) {
    const AveragingState& averaging = call.session.Averaging;
    const int smoothing = averaging.SmoothOn ? averaging.SmoothingPercent : 0;
    return call.ReplyData(FormattedPairs(
        *sweep, parameter, form, smoothing,
        {ElementOf(settings), static_cast<double>(call.session.Impedance.SystemZo)}));
  }
  // A time response, as the trace shows it, of this sweep.
  if (parameter != settings.Parameter)
    return call.Fail(kSettingsConflict, "the trace shows the response of another parameter");
  const FormattedSweep own(call.session, channel, *sweep);
  std::vector<double> pairs;
  pairs.reserve(2 * static_cast<std::size_t>(sweep->Grid.NumPoints));
  for (int i = 1; i <= sweep->Grid.NumPoints; ++i) {
    pairs.push_back(own.Value()[static_cast<std::size_t>(i)]);
    pairs.push_back(0);
  }
  call.ReplyData(pairs);
}

void AskSelectedCorrected(Call& call) {
  ReplyCorrected(call, Selected(call));
}
void AskSelectedFormatted(Call& call) {
  ReplyFormatted(call, call.client.Trace, Selected(call));
}
void AskData(Call& call) {
  const auto which = call.Word(0, {"SDATA", "FDATA"});
  if (!which) return;
  if (*which == 0)
    AskSelectedCorrected(call);
  else
    AskSelectedFormatted(call);
}
void AskTraceCorrected(Call& call) {
  ReplyCorrected(call, call.session.Channel(call.Index()).Parameter);
}
void AskTraceFormatted(Call& call) {
  ReplyFormatted(call, call.Index(), call.session.Channel(call.Index()).Parameter);
}

void AskAxis(Call& call) {
  const PlanGrid grid =
      call.session.Flags.SweepLoaded ? call.session.Plan : call.remote.wanted().Grid();
  std::vector<double> hertz;
  hertz.reserve(static_cast<std::size_t>(grid.NumPoints));
  for (int i = 0; i < grid.NumPoints; ++i) hertz.push_back(grid.Frequency(i));
  call.ReplyData(hertz);
}

// Frequencies, then the real and the imaginary parts of each parameter, row by row.
void AskNetwork(Call& call) {
  const auto text = call.Text(0);
  if (!text) return;
  std::string digits;
  for (const char c : *text)
    if (c != ',' && c != ' ') digits += c;
  if (digits != "1" && digits != "2" && digits != "1,2" && digits != "12" && digits != "21")
    return call.Fail(kIllegalValue, *text);
  std::vector<Parameter> parameters;
  for (const char to : digits)
    for (const char from : digits)
      parameters.push_back(*Named<Parameter>(std::string("S") + to + from));
  const KeptSweep sweep = call.remote.ReadSweep(call.client, parameters);
  if (sweep == nullptr) return call.Fail(kStaleData);
  const int count = sweep->Grid.NumPoints;
  std::vector<double> rows;
  rows.reserve(static_cast<std::size_t>(count) * (1 + 2 * parameters.size()));
  for (int i = 0; i < count; ++i) rows.push_back(sweep->Grid.Frequency(i));
  for (const Parameter parameter : parameters) {
    const ComplexArray& array = ArrayOf(sweep->Data, parameter);
    for (int i = 0; i < count; ++i) rows.push_back(array[i].re);
    for (int i = 0; i < count; ++i) rows.push_back(array[i].im);
  }
  call.ReplyData(rows);
}

// ---- smoothing ---------------------------------------------------------------------------------

void SwitchSmoothing(Call& call) {
  const auto on = call.Switch(0);
  if (!on) return;
  call.session.Averaging.SmoothOn = *on;
  call.remote.controller().SmoothChanged();
  call.remote.host().windows.SessionChanged();
}

constexpr Range kAperture{0, kMostSmoothing, 0};
void SetAperture(Call& call) {
  const auto percent = call.Whole(0, 0, kMostSmoothing);
  if (!percent) return;
  ChooseSmoothing(call.session, call.remote.host().windows, *percent);
  call.remote.controller().SmoothChanged();
}

// ---- number format and display -----------------------------------------------------------------

void SetDataForm(Call& call) {
  const auto form = call.Word(0, {"ASCii", "REAL"});
  if (!form) return;
  if (*form == 0) {
    if (call.Count() < 2 || call.Whole(1, 0, 0)) call.client.Form = DataForm::Ascii;
    return;
  }
  if (call.Count() < 2) {
    call.client.Form = DataForm::Real64;
    return;
  }
  const auto bits = call.Whole(1, 0, 1000);
  if (!bits) return;
  if (*bits != 32 && *bits != 64) return call.Fail(kIllegalValue, "32 or 64");
  call.client.Form = *bits == 32 ? DataForm::Real32 : DataForm::Real64;
}
void AskDataForm(Call& call) {
  constexpr std::string_view words[] = {"ASC,0", "REAL,32", "REAL,64"};
  call.Reply(words[static_cast<std::size_t>(call.client.Form)]);
}
void SetOrder(Call& call) {
  if (const auto order = call.Word(0, {"NORMal", "SWAPped"})) call.client.Swapped = *order == 1;
}

struct SplitRow {
  std::string_view Word;
  DisplaySet Set;
};
constexpr SplitRow kSplits[] = {{"D1", DisplaySet::One},     {"D2", DisplaySet::OneTwo},
                                {"D3", DisplaySet::All},     {"D12H", DisplaySet::OneTwo},
                                {"D11_23", DisplaySet::All}, {"D12_34", DisplaySet::All}};

void SetSplit(Call& call) {
  std::vector<std::string_view> words;
  for (const SplitRow& row : kSplits) words.push_back(row.Word);
  const auto chosen = call.Word(0, words);
  if (!chosen) return;
  call.remote.Split = *chosen;
  ShowSet(call, kSplits[*chosen].Set);
}
void AskSplit(Call& call) {
  const DisplaySet set = call.session.Display.DisplaySet;
  const int last = call.remote.Split;
  if (last >= 0 && kSplits[last].Set == set) return call.Reply(kSplits[last].Word);
  call.Reply(set == DisplaySet::One ? "D1" : set == DisplaySet::All ? "D12_34" : "D2");
}

constexpr const char* kAnyParameter = "S11|S21|S12|S22";
constexpr const char* kForms =
    "MLOG|MLIN|PHAS|UPH|GDEL|SWR|REAL|IMAG|SMIT|POL|ZMAG|RES|REAC|IND|CAP|QFAC|TDR|TDIM";

constexpr Row kCalculate[] = {
    {.Pattern = "CALCulate#1:PARameter:COUNt",
     .Set = SetCount,
     .Query = AskCount,
     .Takes = "1..4",
     .Help = "Channels on the screen: 1, 2, or all four, also for 3.",
     .QueryTakes = {0, 1}},
    {.Pattern = "CALCulate#1:PARameter#4:DEFine",
     .Set = DefineTrace,
     .Query = AskTrace,
     .Takes = kAnyParameter,
     .Help = "What channel <n> shows."},
    {.Pattern = "CALCulate#1:PARameter#4:SELect",
     .Set = Select,
     .Query = AskSelected,
     .Takes = "['<name>'[,fast]]",
     .Help = "Selects trace <n>, or a measurement by its name, for this client's reads.",
     .Otherwise = Fallback::Text,
     .Before = Needs::Nothing,
     .SetTakes = {0, 2}},
    {.Pattern = "CALCulate#1:PARameter[:DEFine]:EXTended",
     .Set = Define,
     .Takes = "'<name>',S11|S21|S12|S22",
     .Help = "A measurement of this client, by name.",
     .Before = Needs::Nothing,
     .SetTakes = {2, 2}},
    {.Pattern = "CALCulate#1:PARameter:DELete[:NAME]",
     .Set = DeleteTrace,
     .Takes = "'<name>'",
     .Help = "Deletes a measurement of this client.",
     .Before = Needs::Nothing},
    {.Pattern = "CALCulate#1:PARameter:DELete:ALL",
     .Set = DeleteAll,
     .Help = "Deletes all of them.",
     .Before = Needs::Nothing,
     .SetTakes = {0, 0}},
    {.Pattern = "CALCulate#1:PARameter:CATalog[:EXTended]",
     .Query = CatalogOfTraces,
     .Help = "Names and parameters of this client's measurements.",
     .Otherwise = Fallback::Text},
    {.Pattern = "CALCulate#1:PARameter:MNUMber[:SELect]",
     .Set = SelectNumber,
     .Query = AskNumber,
     .Takes = "<n>",
     .Help = "Selects a measurement by its number.",
     .Before = Needs::Nothing},
    {.Pattern = "CALCulate#1:DATA",
     .Query = AskData,
     .Asks = "SDATA|FDATA",
     .Help = "Data of the selected trace: corrected re,im, or as formatted. The first read of a "
             "parameter after an INITiate gives that sweep, later ones the last whole sweep.",
     .Otherwise = Fallback::Data,
     .BeforeQuery = Needs::Sweep,
     .QueryTakes = {1, 1}},
    {.Pattern = "CALCulate#1:DATA:SDATa",
     .Query = AskSelectedCorrected,
     .Help = "Corrected re,im of each point of the selected trace.",
     .Otherwise = Fallback::Data,
     .BeforeQuery = Needs::Sweep},
    {.Pattern = "CALCulate#1:DATA:FDATa",
     .Query = AskSelectedFormatted,
     .Help = "Formatted value, second value of each point of the selected trace.",
     .Otherwise = Fallback::Data,
     .BeforeQuery = Needs::Sweep},
    {.Pattern = "CALCulate#1:DATA:XAXis",
     .Query = AskAxis,
     .Help = "Frequencies of the points in hertz.",
     .Otherwise = Fallback::Data},
    {.Pattern = "[SENSe#1]:X[:VALues]",
     .Query = AskAxis,
     .Help = "The same.",
     .Otherwise = Fallback::Data},
    {.Pattern = "CALCulate#1:DATA:SNP:PORTs",
     .Query = AskNetwork,
     .Asks = "'1,2'|'1'|'2'",
     .Help = "Frequencies, then real and imaginary parts of S11, S12, S21, S22, each as a row.",
     .Otherwise = Fallback::Data,
     .BeforeQuery = Needs::Sweep,
     .QueryTakes = {1, 1}},
    {.Pattern = "CALCulate#1:TRACe#4:DATA:SDATa",
     .Query = AskTraceCorrected,
     .Help = "Corrected re,im of each point of trace <n>.",
     .Otherwise = Fallback::Data,
     .BeforeQuery = Needs::Sweep},
    {.Pattern = "CALCulate#1:TRACe#4:DATA:FDATa",
     .Query = AskTraceFormatted,
     .Help = "Formatted value, second value of each point of trace <n>: dB, ratios, degrees, "
             "seconds, ohms, henries, farads; re,im on charts.",
     .Otherwise = Fallback::Data,
     .BeforeQuery = Needs::Sweep},
    {.Pattern = "CALCulate#1:TRACe#4:FORMat",
     .Set = SetForm,
     .Query = AskForm,
     .Takes = kForms,
     .Help = "What channel <n> shows of its parameter. POL changes the data alone. Parts of "
             "an impedance in ohms, henries, farads; 9.91E37 where there is no value."},
    {.Pattern = "CALCulate#1:FORMat",
     .Set = SetFormOfSelected,
     .Query = AskFormOfSelected,
     .Takes = kForms,
     .Help = "The same of the selected trace.",
     .Otherwise = Fallback::Text},
    {.Pattern = "CALCulate#1:SMOothing[:STATe]",
     .Set = SwitchSmoothing,
     .Query = [](Call& call) { call.ReplySwitch(call.session.Averaging.SmoothOn); },
     .Takes = "ON|OFF",
     .Help = "Smoothing of the graphs and of formatted data."},
    {.Pattern = "CALCulate#1:SMOothing:APERture",
     .Set = SetAperture,
     .Query =
         [](Call& call) {
           if (!call.AnswersExtreme(kAperture, true))
             call.ReplyWhole(call.session.Averaging.SmoothingPercent);
         },
     .Takes = "0..10",
     .Help = "Aperture in percent of the sweep.",
     .QueryTakes = {0, 1}},
};

constexpr Row kDisplay[] = {
    {.Pattern = "FORMat[:DATA]",
     .Set = SetDataForm,
     .Query = AskDataForm,
     .Takes = "ASC,0|REAL,32|REAL,64",
     .Help = "Form in which this client gets and gives data.",
     .Otherwise = Fallback::Text,
     .Before = Needs::Nothing,
     .SetTakes = {1, 2}},
    {.Pattern = "FORMat:BORDer",
     .Set = SetOrder,
     .Query = [](Call& call) { call.Reply(call.client.Swapped ? "SWAP" : "NORM"); },
     .Takes = "SWAP|NORM",
     .Help = "Order of bytes in blocks: SWAP has the low byte first.",
     .Otherwise = Fallback::Text,
     .Before = Needs::Nothing},
    {.Pattern = "DISPlay:WINDow#1:SPLit",
     .Set = SetSplit,
     .Query = AskSplit,
     .Takes = "D1|D2|D3|D12H|D11_23|D12_34",
     .Help = "Channels on the screen: one, two, or all four.",
     .Otherwise = Fallback::Text},
    {.Pattern = "DISPlay:WINDow#1:CATalog",
     .Query =
         [](Call& call) { call.ReplyQuoted(call.client.Measurements.empty() ? "EMPTY" : "1"); },
     .Help = "\"1\", or \"EMPTY\" when this client has no measurement.",
     .Otherwise = Fallback::Text},
    {.Pattern = "DISPlay:WINDow#1:TRACe#99:FEED",
     .Set = Feed,
     .Takes = "'<name>'",
     .Help =
         "Accepted for an existing measurement; the screen shows what PARameter<n>:DEFine says.",
     .Before = Needs::Nothing},
    {.Pattern = "DISPlay:WINDow#1:TRACe#4:Y[:SCALe]:AUTO",
     .Set = [](Call& call) { AutoscaleGraph(call.remote.controller(), call.Index()); },
     .Help = "Autoscale of channel <n>.",
     .SetTakes = {0, 0}},
};

}  // namespace

std::span<const Row> CalculateRows() {
  return kCalculate;
}
std::span<const Row> DisplayRows() {
  return kDisplay;
}

}  // namespace qk::scpi
