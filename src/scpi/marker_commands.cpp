// SPDX-License-Identifier: MIT
// Markers and limits of the trace that a client has selected.
#include <algorithm>
#include <cmath>
#include <string>

#include "control/verbs.h"
#include "display/markers.h"
#include "limits/limit_segments.h"
#include "limits/marker_search.h"
#include "scpi/call.h"
#include "scpi/commands.h"

namespace qk::scpi {

namespace {

void ShowMarkers(Call& call, bool keep) {
  call.remote.controller().graphs().RedrawAll(keep);
  MarkersChanged(call.remote.host().windows);
}

int Marker(const Call& call) {
  return call.Index() - 1;
}

int PointOf(const Call& call) {
  const int points = call.session.Plan.NumPoints;
  const int point = call.session.Markers.Of(call.client.Trace - 1, Marker(call)).Point;
  return point < 1 || point > points ? points / 2 + 1 : point;
}

void Switch(Call& call) {
  const auto on = call.Switch(0);
  if (!on) return;
  call.session.Markers.Set(Marker(call)).Shown = *on;
  if (*on) call.session.Display.MarkersOn = true;
  ShowMarkers(call, true);
}

void PlaceAt(Call& call, int point) {
  MarkerSettings& set = call.session.Markers.Set(Marker(call));
  set.Shown = call.session.Display.MarkersOn = true;
  set.Point = static_cast<std::int16_t>(point);
  MoveMarker(call.session, Marker(call), point);
  ShowMarkers(call, true);
}

Range Positions(const PlanGrid& grid) {
  return {grid.StartFreq, std::max(grid.StopFreq, grid.Frequency(grid.NumPoints - 1)),
          grid.StartFreq, Dimension::Hertz};
}

void SetPosition(Call& call) {
  const PlanGrid& grid = call.session.Plan;
  const auto hertz = call.Number(0, Positions(grid));
  if (!hertz) return;
  const double index = std::floor((*hertz - grid.StartFreq) / grid.StepFreq + 0.5);
  PlaceAt(call, std::clamp(static_cast<int>(index), 0, grid.NumPoints - 1) + 1);
}

void AskPosition(Call& call) {
  if (!call.AnswersExtreme(Positions(call.session.Plan)))
    call.ReplyReal(call.session.Plan.Frequency(PointOf(call) - 1));
}

// Whether the trace has values that a marker can read; otherwise reports why not. Only traces on
// the screen are computed.
bool HasValues(Call& call) {
  const DisplaySetRow& shown = RowOf(call.session.Display.DisplaySet);
  if (!call.remote.GraphsStand(call.client))
    call.Fail(kStaleData);
  else if (call.client.Trace < shown.First || call.client.Trace > shown.Last)
    call.Fail(kSettingsConflict, "the trace is not on the screen");
  else
    return true;
  return false;
}

// Value and second value at the marker, as displayed.
void AskValue(Call& call) {
  if (!HasValues(call)) return;
  call.remote.controller().graphs().CatchUp();
  const ChannelSettings& channel = call.session.Channel(call.client.Trace);
  const auto point = static_cast<std::size_t>(PointOf(call));
  const bool chart = RowOf(channel.GraphType).Form == PointForm::Chart;
  call.Reply(RealText(channel.Value[point]) + "," +
             (chart ? RealText(channel.Value2[point]) : "0"));
}

void Search(Call& call) {
  const auto which = call.Word(0, {"MAXimum", "MINimum"});
  if (!which || !HasValues(call)) return;
  const Extreme extreme = *which == 0 ? Extreme::Peak : Extreme::Minimum;
  PlaceAt(call, FindExtreme(call.session.Channel(call.client.Trace), call.session.Plan.NumPoints,
                            extreme));
}

// Between the points 3 dB below the maximum.
void AskBandwidth(Call& call) {
  if (!HasValues(call)) return;
  const ChannelSettings& channel = call.session.Channel(call.client.Trace);
  if (channel.GraphType != GraphType::LogMag && channel.GraphType != GraphType::LinMag)
    return call.Fail(kSettingsConflict, "the trace shows no magnitude");
  const int points = call.session.Plan.NumPoints;
  const int peak = FindExtreme(channel, points, Extreme::Peak);
  const BandEdges edges = FindBand(channel, points, peak, Extreme::Peak, -3);
  call.ReplyReal((edges.Upper - edges.Lower) * call.session.Plan.StepFreq);
}

// ---- limits ------------------------------------------------------------------------------------

void SwitchLimits(Call& call) {
  const auto on = call.Switch(0);
  if (!on) return;
  call.session.Limits.Enabled = call.session.Limits.Alarm = *on;
  ShowLimitsAsSwitched(call.session, call.remote.host());
  call.remote.controller().graphs().RedrawAll(true);
  call.remote.host().windows.SessionChanged();
}

void AskFailed(Call& call) {
  if (call.client.AwaitsOwn) return call.Fail(kStaleData);
  call.ReplySwitch(call.session.Limits.Of(call.client.Trace).Failed);
}

constexpr Row kRows[] = {
    {.Pattern = "CALCulate#1:MARKer#4[:STATe]",
     .Set = Switch,
     .Query = [](Call& call) { call.ReplySwitch(call.session.Markers.Set(Marker(call)).Shown); },
     .Takes = "ON|OFF",
     .Help = "Shows marker <n>."},
    {.Pattern = "CALCulate#1:MARKer#4:X",
     .Set = SetPosition,
     .Query = AskPosition,
     .Takes = "<frequency>",
     .Help = "Puts marker <n> on the nearest point; hertz.",
     .QueryTakes = {0, 1}},
    {.Pattern = "CALCulate#1:MARKer#4:Y",
     .Query = AskValue,
     .Help = "Value and second value of the selected trace at marker <n>, in the channel's units.",
     .BeforeQuery = Needs::Sweep},
    {.Pattern = "CALCulate#1:MARKer#4:FUNCtion:EXECute",
     .Set = Search,
     .Takes = "MAX|MIN",
     .Help = "Puts marker <n> on the highest or lowest point of the selected trace.",
     .Before = Needs::Sweep},
    {.Pattern = "CALCulate#1:MARKer#4:BWIDth",
     .Query = AskBandwidth,
     .Help = "Bandwidth in hertz 3 dB below the highest point of the selected trace.",
     .BeforeQuery = Needs::Sweep},
    {.Pattern = "CALCulate#1:LIMit[:STATe]",
     .Set = SwitchLimits,
     .Query = [](Call& call) { call.ReplySwitch(call.session.Display.LimitAlarmOn); },
     .Takes = "ON|OFF",
     .Help = "Shows and tests the limits that are applied."},
    {.Pattern = "CALCulate#1:LIMit:FAIL",
     .Query = AskFailed,
     .Help = "1 when the selected trace failed by the last test.",
     .BeforeQuery = Needs::Sweep},
};

}  // namespace

std::span<const Row> MarkerRows() {
  return kRows;
}

}  // namespace qk::scpi
