// SPDX-License-Identifier: MIT
#include "control/graph_verbs.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

#include "control/verbs.h"
#include "core/instrument_limits.h"
#include "display/markers.h"
#include "limits/limit_segments.h"
#include "limits/limit_test.h"
#include "trace/autoscale.h"
#include "trace/memory.h"

namespace qk {

namespace {

bool HasAxis(const ChannelSettings& channel) {
  return RowOf(channel.GraphType).Form != PointForm::Chart;
}

// Redraws the same values with another axis.
void Redraw(Controller& controller) {
  controller.graphs().RedrawAll(true);
  controller.rig().host.windows.SessionChanged();
}

// Recomputes the values; the active plane may be that of another parameter. off names the limits
// that were switched off; may be empty.
void Replot(Controller& controller, const std::string& off = {}) {
  Session& session = controller.rig().session;
  TakeActivePlane(session, controller.rig().host.windows);
  if (!off.empty()) ClearLimitFailure(session, controller.rig().host);
  controller.graphs().ReplotAll();
  if (!off.empty()) controller.notice().Say(off + " switched off");
}

// An initial scale and reference.
struct Axis {
  double Scale, Reference;
  std::int16_t Position;
};

// For a transmission, the impedance types need to know how the device is connected.
bool NeedsReflection(const ChannelSettings& channel, GraphType type) {
  return RowOf(type).ReflectionOnly ||
         (RowOf(type).Form == PointForm::Component && channel.Element == Element::Reflection);
}

bool IsTimeResponse(GraphType type) {
  return RowOf(type).Form == PointForm::Spectrum;
}

Axis AxisFor(GraphType type) {
  if (RowOf(type).Form == PointForm::Component) return {20, 0, 4};
  if (RowOf(type).Form == PointForm::Unwrapped) return {360, 0, 1};
  switch (type) {
    case GraphType::LogMag:
      return {10, 0, 1};
    case GraphType::Phase:
      return {45, 0, 4};
    case GraphType::Swr:
      return {0.5, 1, 8};
    case GraphType::GroupDelay:
      return {5, 0, 7};  // -5 to 35 ns
    case GraphType::LinMag:
      return {0.2, 0, 8};
    case GraphType::Smith:
      return {0.2, 0, 4};
    default:
      return {0.25, 0, 4};
  }
}

// Limits are numbers for the parameter, type and unit for which they were applied: for others they
// are no longer shown and tested. Appends what was switched off.
void DropLimits(Session& session, int n, std::string& off) {
  const std::string text = SwitchOffUnsuitable(session, n);
  if (!text.empty()) off += (off.empty() ? "" : ", ") + text;
}

// With the type's natural unit and a suitable axis.
void ShowType(Session& session, int n, GraphType type, std::string& off) {
  ChannelSettings& channel = session.Channel(n);
  channel.GraphType = type;
  channel.Units = RowOf(type).NaturalUnit.value_or(channel.Units);
  DropLimits(session, n, off);
  const Axis axis = AxisFor(type);
  channel.Scale = axis.Scale;
  channel.Reference = axis.Reference;
  channel.RefPosition = axis.Position;
}

static_assert(kTimeDomainPoints == 1024, "the warnings name the number");

Result<Done> MayShow(const Session& session, int channel, GraphType type) {
  if (!IsTimeResponse(type)) return Done{};
  for (int n = 1; n <= kChannels; ++n)
    if (n != channel && IsTimeResponse(session.Channel(n).GraphType))
      return Failure{"TD only allowed on one channel", {}};
  if (session.Plan.NumPoints != kTimeDomainPoints)
    return Failure{"Warning: TD Only with 1024 Sweep points", {}};
  return Done{};
}

bool Rescale(const Graphs& graphs, Session& session, int n, std::string& off) {
  ChannelSettings& channel = session.Channel(n);
  if (!HasAxis(channel) || !graphs.HoldsData(n - 1)) return false;
  const AutoscaleResult found = RoundedAutoscale(channel, session.Plan.NumPoints);
  if (!found.Changed) return false;
  const bool otherUnits = found.Units != channel.Units;
  channel.Units = found.Units;
  if (otherUnits) DropLimits(session, n, off);
  channel.Scale = found.Scale;
  channel.Reference = found.Reference;
  channel.RefPosition = 4;
  if (channel.GraphType != GraphType::Swr || found.Units != Unit::U) return true;
  // Starts at 1: the trace then fits above its minimum.
  double most = 1;
  for (int i = 1; i <= session.Plan.NumPoints; ++i)
    if (const double value = channel.Value[static_cast<std::size_t>(i)]; value < 1e9)
      most = std::max(most, value);
  channel.Scale =
      most > 1 ? std::max(kLeastShownScale, NextScale((most - 1) / 8 * (1 - 2e-6), 1)) : 0.5;
  channel.Reference = 1;
  channel.RefPosition = 8;
  return true;
}

void NotifyMarkers(Controller& controller) {
  MarkersChanged(controller.rig().host.windows);
}

struct Shown {
  qk::Parameter Parameter;
  GraphType Type;
};

struct PresetRow {
  DisplaySet Set;
  std::span<const Shown> Channels;
};

PresetRow RowOfPreset(DisplayPreset preset) {
  static constexpr Shown kAll[] = {{Parameter::S11, GraphType::LogMag},
                                   {Parameter::S21, GraphType::LogMag},
                                   {Parameter::S12, GraphType::LogMag},
                                   {Parameter::S22, GraphType::LogMag}};
  static constexpr Shown kFilter[] = {{Parameter::S21, GraphType::LogMag},
                                      {Parameter::S11, GraphType::LogMag},
                                      {Parameter::S11, GraphType::Smith},
                                      {Parameter::S21, GraphType::GroupDelay}};
  static constexpr Shown kAntenna[] = {{Parameter::S11, GraphType::Swr},
                                       {Parameter::S11, GraphType::Smith}};
  static constexpr Shown kTime[] = {{Parameter::S11, GraphType::Td}};
  switch (preset) {
    case DisplayPreset::AllParameters:
      return {DisplaySet::All, kAll};
    case DisplayPreset::Filter:
      return {DisplaySet::All, kFilter};
    case DisplayPreset::Antenna:
      return {DisplaySet::OneTwo, kAntenna};
    case DisplayPreset::TimeDomain:
      break;
  }
  return {DisplaySet::One, kTime};
}

}  // namespace

void StepScale(Controller& controller, int n, int steps) {
  ChannelSettings& channel = controller.rig().session.Channel(n);
  if (!HasAxis(channel) || !(channel.Scale > 0)) return;
  // A finer scale would be displayed as 0.
  channel.Scale =
      std::max(NextScale(channel.Scale, steps), std::min(channel.Scale, kLeastShownScale));
  Redraw(controller);
}

void ShiftReference(Controller& controller, int n, int divisions) {
  ChannelSettings& channel = controller.rig().session.Channel(n);
  if (!HasAxis(channel)) return;
  channel.Reference += divisions * channel.Scale;
  Redraw(controller);
}

void PlaceReferenceLine(Controller& controller, int n, int position) {
  ChannelSettings& channel = controller.rig().session.Channel(n);
  if (!HasAxis(channel)) return;
  channel.RefPosition = static_cast<std::int16_t>(std::clamp(position, 0, 8));
  Redraw(controller);
}

void AutoscaleGraph(Controller& controller, int n) {
  std::string off;
  if (Rescale(controller.graphs(), controller.rig().session, n, off)) Replot(controller, off);
}

void AutoscaleAll(Controller& controller) {
  Session& session = controller.rig().session;
  const DisplaySetRow& shown = RowOf(session.Display.DisplaySet);
  bool changed = false;
  std::string off;
  for (int n = shown.First; n <= shown.Last; ++n)
    changed = Rescale(controller.graphs(), session, n, off) || changed;
  if (changed) Replot(controller, off);
}

Result<Done> ShowParameter(Controller& controller, int n, Parameter parameter) {
  Session& session = controller.rig().session;
  ChannelSettings& channel = session.Channel(n);
  std::string off;
  const bool otherType =
      !RowOf(parameter).Reflection && NeedsReflection(channel, channel.GraphType);
  channel.Parameter = parameter;
  DropLimits(session, n, off);
  if (otherType) ShowType(session, n, GraphType::LogMag, off);
  Replot(controller, off);
  return Done{};
}

Result<Done> ShowGraphType(Controller& controller, int n, GraphType type) {
  Session& session = controller.rig().session;
  ChannelSettings& channel = session.Channel(n);
  const bool transmission = !RowOf(channel.Parameter).Reflection;
  if (transmission && RowOf(type).ReflectionOnly)
    return Failure{std::string(NameOf(type)) + " only available with Reflection Parameter", {}};
  if (Result<Done> may = MayShow(session, n, type); !may) return may;
  // The more common of the two; Display Set Up offers the choice.
  if (transmission && NeedsReflection(channel, type)) channel.Element = Element::Series;
  std::string off;
  ShowType(session, n, type, off);
  Replot(controller, off);
  return Done{};
}

void PutMarker(Controller& controller, int n, int point) {
  Session& session = controller.rig().session;
  MarkerRecords& markers = session.Markers;
  int chosen = -1;
  for (int m = kMarkers - 1; m >= 0; --m)
    if (!session.Display.MarkersOn || !markers.Set(m).Shown) chosen = m;
  for (int m = 0; m < kMarkers && chosen < 0; ++m)
    if (markers.Set(m).IsActive) chosen = m;
  chosen = std::max(chosen, 0);
  if (!session.Display.MarkersOn)
    for (int m = 0; m < kMarkers; ++m) markers.Set(m).Shown = false;
  session.Display.MarkersOn = true;
  for (int m = 0; m < kMarkers; ++m) markers.Set(m).IsActive = m == chosen;
  MarkerSettings& set = markers.Set(chosen);
  set.Shown = true;
  set.IsRef = false;
  set.Point = static_cast<std::int16_t>(std::clamp<int>(point, 1, session.Plan.NumPoints));
  MoveMarker(session, chosen, set.Point);
  if (!session.Channel(n).Active) SelectActiveChannel(session, controller.rig().host.windows, n);
  controller.graphs().RedrawAll(true);
  NotifyMarkers(controller);
}

void StepMarker(Controller& controller, int points) {
  Session& session = controller.rig().session;
  const int graph = session.Display.ActiveChannel - 1;
  const int active = session.Display.MarkersOn ? ActiveOf(session.Markers, graph) : -1;
  if (active < 0) return;
  MoveMarker(session, active, session.Markers.Of(graph, active).Point + points);
  controller.graphs().RedrawOverlay();
  NotifyMarkers(controller);
}

void FindOnTrace(Controller& controller, int n, Extreme which) {
  Session& session = controller.rig().session;
  if (!session.Channel(n).Active) SelectActiveChannel(session, controller.rig().host.windows, n);
  int chosen = 0;
  for (int m = 0; m < kMarkers; ++m)
    if (session.Markers.Set(m).IsActive) chosen = m;
  SearchMarkers(session, which, std::nullopt, chosen);
  controller.graphs().RedrawAll(false);
  NotifyMarkers(controller);
}

void StoreTrace(Controller& controller, int n) {
  Session& session = controller.rig().session;
  StoreMemory(session, n, n);
  if (session.Display.MemoryFunction == MemoryFunction::None)
    session.Display.MemoryFunction = MemoryFunction::Plus;
  Replot(controller);
  ReportStored(controller, n, n);
}

void ReportStored(Controller& controller, int first, int last) {
  std::string names;
  for (int n = first; n <= last; ++n)
    names += (names.empty() ? "" : ", ") +
             std::string(NameOf(controller.rig().session.Channel(n).Parameter));
  controller.notice().ShowWithTime(names + " stored");
}

Result<std::string> UndoLast(Controller& controller) {
  Result<std::string> done = controller.undo().Undo();
  controller.notice().Say(done ? *done : done.Why().Message);
  return done;
}

Result<Done> ApplyPreset(Controller& controller, DisplayPreset preset) {
  Session& session = controller.rig().session;
  if (preset == DisplayPreset::TimeDomain && session.Plan.NumPoints != kTimeDomainPoints)
    return Failure{"Warning: TD Only with 1024 Sweep points", {}};
  const PresetRow row = RowOfPreset(preset);
  std::string off;
  // Another channel's time response is replaced.
  if (preset == DisplayPreset::TimeDomain)
    for (int n = 2; n <= kChannels; ++n)
      if (IsTimeResponse(session.Channel(n).GraphType))
        ShowType(session, n, GraphType::LogMag, off);
  int n = 1;
  for (const Shown& shown : row.Channels) {
    session.Channel(n).Parameter = shown.Parameter;
    ShowType(session, n++, shown.Type, off);
  }
  session.Display.DisplaySet = row.Set;
  session.Display.PlotRefreshPoints = row.Set == DisplaySet::All ? 4 : 2;
  SelectActiveChannel(session, controller.rig().host.windows, 1);
  Replot(controller, off);
  return Done{};
}

void ShowUncertainty(Controller& controller, bool on) {
  controller.graphs().View.Uncertainty = on;
  Redraw(controller);
}

void ShowSpread(Controller& controller, bool on) {
  controller.graphs().View.Spread = on;
  Redraw(controller);
}

void ShowAxisNumbers(Controller& controller, bool on) {
  controller.graphs().View.AxisNumbers = on;
  Redraw(controller);
}

void ShowRemarks(Controller& controller, bool on) {
  controller.graphs().View.Remarks = on;
  Redraw(controller);
}

}  // namespace qk
