// SPDX-License-Identifier: MIT
// Markers and limits of the trace that a client has selected.
#include <algorithm>
#include <cmath>
#include <optional>
#include <span>
#include <string>

#include "control/output_verbs.h"
#include "control/verbs.h"
#include "display/markers.h"
#include "display/remarks.h"
#include "limits/limit_segments.h"
#include "limits/limit_test.h"
#include "limits/marker_search.h"
#include "scpi/call.h"
#include "scpi/commands.h"
#include "scpi/formatted_sweep.h"

namespace qk::scpi {

namespace {

void ShowMarkers(Call& call, bool keep) {
  call.remote.controller().graphs().RedrawAll(keep);
  MarkersChanged(call.remote.host().windows);
}

int Marker(const Call& call) {
  return call.Index() - 1;
}

KeptFrequencies& KeptOf(Call& call) {
  return call.remote.controller().kept();
}

int PointOf(const Call& call) {
  const int points = call.session.Plan.NumPoints;
  const int point = call.session.Markers.Of(call.client.Trace - 1, Marker(call)).Point;
  return point < 1 || point > points ? points / 2 + 1 : point;
}

void Switch(Call& call) {
  const auto on = call.Switch(0);
  if (!on) return;
  if (KeptOf(call).WaitsAt(call.session, Marker(call))) {
    if (*on) return call.Fail(kSettingsConflict, "the marker is outside the sweep");
    KeptOf(call).Forget(Marker(call));
  }
  call.session.Markers.Set(Marker(call)).Shown = *on;
  if (*on) call.session.Display.MarkersOn = true;
  ShowMarkers(call, true);
}

void PlaceAt(Call& call, int point) {
  MarkerSettings& set = call.session.Markers.Set(Marker(call));
  set.Shown = call.session.Display.MarkersOn = true;
  set.Point = static_cast<std::int16_t>(point);
  KeptOf(call).Forget(Marker(call));
  MoveMarker(call.session, Marker(call), point);
  ShowMarkers(call, true);
}

Range Positions(const PlanGrid& grid) {
  return {grid.StartFreq, std::max(grid.StopFreq, grid.Frequency(grid.NumPoints - 1)),
          grid.StartFreq, Dimension::Hertz};
}

// Within the sweep in force, or within the wanted one: then the marker waits for it.
void SetPosition(Call& call) {
  Range range = Positions(call.session.Plan);
  if (call.At(0).Kind != ItemKind::Word) {
    const Range wanted = Positions(call.remote.wanted().Grid());
    range.Least = std::min(range.Least, wanted.Least);
    range.Most = std::max(range.Most, wanted.Most);
  }
  const auto hertz = call.Number(0, range);
  if (!hertz) return;
  KeptOf(call).Place(call.session, Marker(call), *hertz);
  call.session.Display.MarkersOn = true;
  ShowMarkers(call, true);
}

void AskPosition(Call& call) {
  if (call.AnswersExtreme(Positions(call.session.Plan))) return;
  const auto waits = KeptOf(call).WaitsAt(call.session, Marker(call));
  call.ReplyReal(waits ? *waits : call.session.Plan.Frequency(PointOf(call) - 1));
}

// ---- values ------------------------------------------------------------------------------------

// The kinds of reads from 0, which Remote::ReadComputed distinguishes; before them the markers.
constexpr int kBandwidthRead = kMarkers, kLimitRead = kMarkers + 1;

// The values of the selected trace for a read: those of the client's own sweep at its first read,
// then those on the screen. Otherwise reports why there are none. Only traces on the screen are
// computed.
class TraceValues {
 public:
  TraceValues(Call& call, int kind, bool first = true) {
    Session& session = call.session;
    const int trace = call.client.Trace;
    const DisplaySetRow& shown = RowOf(session.Display.DisplaySet);
    if (trace < shown.First || trace > shown.Last) {
      call.Fail(kSettingsConflict, "the trace is not on the screen");
      return;
    }
    const Remote::ComputedRead read =
        call.remote.ReadComputed(call.client, session.Channel(trace).Parameter, kind, first);
    const bool onScreen = call.remote.GraphsStand(call.client) && !IsOfEarlierSweep(session, trace);
    if (read.Stale || (read.Own == nullptr && !onScreen)) {
      call.Fail(kStaleData);
      return;
    }
    Graphs& graphs = call.remote.controller().graphs();
    graphs.CatchUp();
    sweep_ = read.Own;
    if (read.Own != nullptr) own_.emplace(session, trace, *read.Own);
    value_ = own_ ? &own_->Value() : &graphs.Trace(trace - 1, kDataTrace).Value;
    value2_ = own_ ? &own_->Value2() : &graphs.Trace(trace - 1, kDataTrace).Value2;
  }

  bool Here() const { return value_ != nullptr; }
  bool OfOwnSweep() const { return sweep_ != nullptr; }
  // The parameter itself, of the same sweep.
  Complex Ratio(const Call& call, int point) const {
    const Parameter parameter = call.session.Channel(call.client.Trace).Parameter;
    if (sweep_ != nullptr) return ArrayOf(sweep_->Data, parameter)[point - 1];
    return ArrayOf(call.session.Data, parameter)[point - 1];
  }
  // As the graph shows them, by point from 1.
  double Value(int point) const { return (*value_)[static_cast<std::size_t>(point)]; }
  double Value2(int point) const { return (*value2_)[static_cast<std::size_t>(point)]; }

 private:
  KeptSweep sweep_;
  std::optional<FormattedSweep> own_;
  const FormattedSweep::PerPoint* value_ = nullptr;
  const FormattedSweep::PerPoint* value2_ = nullptr;
};

// Value and second value at the marker, as displayed.
void AskValue(Call& call) {
  if (KeptOf(call).WaitsAt(call.session, Marker(call)))
    return call.Fail(kSettingsConflict, "the marker is outside the sweep");
  const TraceValues values(call, Marker(call));
  if (!values.Here()) return;
  const ChannelSettings& channel = call.session.Channel(call.client.Trace);
  const int point = PointOf(call);
  if (call.remote.FormOfTrace(call.client.Trace) == TraceForm::Polar) {
    const Complex ratio = values.Ratio(call, point);
    return call.Reply(RealText(ratio.re) + "," + RealText(ratio.im));
  }
  const bool chart = RowOf(channel.GraphType).Form == PointForm::Chart;
  call.Reply(RealText(values.Value(point)) + "," + (chart ? RealText(values.Value2(point)) : "0"));
}

// The search is no read: the value at the point that it finds is of the same sweep.
void Search(Call& call) {
  const auto which = call.Word(0, {"MAXimum", "MINimum"});
  if (!which) return;
  const Extreme extreme = *which == 0 ? Extreme::Peak : Extreme::Minimum;
  int point = 0;
  {
    const TraceValues values(call, Marker(call), false);
    if (!values.Here()) return;
    point =
        FindExtreme(call.session.Channel(call.client.Trace), call.session.Plan.NumPoints, extreme);
  }
  PlaceAt(call, point);
}

// Between the points 3 dB below the maximum.
void AskBandwidthOfMarker(Call& call) {
  const TraceValues values(call, kBandwidthRead);
  if (!values.Here()) return;
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
  LimitRecords& limits = call.session.Limits;
  limits.Enabled = limits.Alarm = *on;
  if (*on)
    for (int n = 1; n <= kChannels; ++n) {
      ChannelLimits& channel = limits.Of(n);
      if (channel.Applied && LimitsSuit(call.session.Channel(n), channel)) channel.Show = true;
    }
  ShowLimitsAsSwitched(call.session, call.remote.host());
  call.remote.controller().graphs().RedrawAll(true);
  call.remote.host().windows.SessionChanged();
}

// 0 means that the trace has passed; a trace that is not tested has no verdict.
void AskFailed(Call& call) {
  const TraceValues values(call, kLimitRead);
  if (!values.Here()) return;
  const Session& session = call.session;
  const auto trace = static_cast<std::size_t>(call.client.Trace - 1);
  const Parameter parameter = session.Channel(call.client.Trace).Parameter;
  // In a sweep the graph has points of two: the verdict is that of the last whole one.
  const LimitVerdict verdict =
      !values.OfOwnSweep() && call.remote.Sweeping()
          ? call.remote.controller().graphs().Verdict(call.client.Trace - 1)
          : LimitVerdicts(session, std::span(&parameter, 1))[trace];
  if (!verdict.Tested) return call.Fail(kSettingsConflict, "the trace is not tested");
  call.ReplySwitch(!verdict.Passed);
}

constexpr Row kMarkerRows[] = {
    {.Pattern = "CALCulate#1:MARKer#4[:STATe]",
     .Set = Switch,
     .Query = [](Call& call) { call.ReplySwitch(call.session.Markers.Set(Marker(call)).Shown); },
     .Takes = "ON|OFF",
     .Help = "Shows marker <n>."},
    {.Pattern = "CALCulate#1:MARKer#4:X",
     .Set = SetPosition,
     .Query = AskPosition,
     .Takes = "<frequency>",
     .Help =
         "Puts marker <n> on the point nearest to a frequency in hertz. It keeps the frequency: "
         "another sweep puts it on its own nearest point, or lets it wait.",
     .QueryTakes = {0, 1}},
    {.Pattern = "CALCulate#1:MARKer#4:Y",
     .Query = AskValue,
     .Help = "Value and second value of the selected trace at marker <n>, as displayed, in the "
             "channel's units. The first read after an INITiate gives that sweep.",
     .BeforeQuery = Needs::Sweep},
    {.Pattern = "CALCulate#1:MARKer#4:FUNCtion:EXECute",
     .Set = Search,
     .Takes = "MAX|MIN",
     .Help = "Puts marker <n> on the highest or lowest point of the selected trace.",
     .Before = Needs::Sweep},
    {.Pattern = "CALCulate#1:MARKer#4:BWIDth",
     .Query = AskBandwidthOfMarker,
     .Help = "Bandwidth in hertz 3 dB below the highest point of the selected trace.",
     .BeforeQuery = Needs::Sweep},
    {.Pattern = "CALCulate#1:LIMit[:STATe]",
     .Set = SwitchLimits,
     .Query = [](Call& call) { call.ReplySwitch(call.session.Display.LimitAlarmOn); },
     .Takes = "ON|OFF",
     .Help = "Shows and tests the limits that are applied, of all channels."},
    {.Pattern = "CALCulate#1:LIMit:FAIL",
     .Query = AskFailed,
     .Help = "1 if the selected trace fails its limits, 0 if it passes; -221 if it is not tested.",
     .BeforeQuery = Needs::Sweep},
};

}  // namespace

std::span<const Row> MarkerRows() {
  return kMarkerRows;
}

}  // namespace qk::scpi
