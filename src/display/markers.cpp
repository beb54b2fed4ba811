// SPDX-License-Identifier: MIT
#include "display/markers.h"

#include <algorithm>
#include <cmath>

#include "core/instrument_limits.h"

namespace qk {

namespace {

std::int16_t PointOrMiddle(int point, int numPoints) {
  return static_cast<std::int16_t>(point < 1 || point > numPoints ? numPoints / 2 + 1 : point);
}

std::int16_t PointInside(double point, int numPoints) {
  return static_cast<std::int16_t>(std::clamp<double>(std::round(point), 1, numPoints));
}

void CopyFromTrace(const TraceRecord& trace, Marker& marker) {
  const auto i = static_cast<std::size_t>(marker.Point);
  marker.Value = trace.Value[i];
  marker.Value2 = trace.Value2[i];
  marker.X = trace.Pixel[i].x;
  marker.Y = trace.Pixel[i].y;
}

// From 0; -1 if no marker of the graph is in one of the states.
int FirstIn(const MarkerRecords& markers, int graph, MarkerState low, MarkerState high) {
  for (int m = 0; m < kMarkers; ++m) {
    const MarkerState state = markers.Of(graph, m).State;
    if (state >= low && state <= high) return m;
  }
  return -1;
}

}  // namespace

void SetMarker(const MarkedGraph& graph, std::optional<MarkerTrace> trace, std::optional<int> point,
               MarkerState state, int index, Marker& marker) {
  marker.Number = static_cast<std::int16_t>(index + 1);
  marker.State = state;
  if (trace) marker.Trace = *trace;
  marker.Point = PointOrMiddle(point.value_or(marker.Point), graph.Graph.NumPoints);
  CopyFromTrace(graph.Of(marker.Trace), marker);
}

void SyncMarkers(Session& session, const MarkedGraph& graph, int graphIndex, bool keepMarkers) {
  for (int m = 0; m < kMarkers; ++m) {
    const MarkerSettings& set = session.Markers.Set(m);
    Marker& marker = session.Markers.Of(graphIndex, m);
    if (!session.Display.MarkersOn) {
      marker.State = MarkerState::Off;
      continue;
    }
    if (!set.Shown) {
      SetMarker(graph, MarkerTrace::Data, {}, MarkerState::Off, m, marker);
      continue;
    }
    MarkerState state = MarkerState::Shown;
    if (set.IsActive) state = MarkerState::Active;
    if (set.IsRef) state = MarkerState::Reference;
    if (keepMarkers)
      SetMarker(graph, {}, {}, state, m, marker);
    else
      SetMarker(graph, MarkerTrace::Data, set.Point, state, m, marker);
  }
}

void FollowTrace(const MarkedGraph& graph, Marker& marker) {
  if (marker.State == MarkerState::Fixed) return;
  if (!graph.Of(marker.Trace).Shown) marker.Trace = MarkerTrace::Data;
  marker.Point = PointOrMiddle(marker.Point, graph.Graph.NumPoints);
  CopyFromTrace(graph.Of(marker.Trace), marker);
}

void MoveMarker(Session& session, int index, double point) {
  for (int graph = 0; graph < kChannels; ++graph)
    session.Markers.Of(graph, index).Point = PointInside(point, session.Plan.NumPoints);
}

void PlaceMarker(Session& session, int index, double point) {
  for (int graph = 0; graph < kChannels; ++graph) {
    Marker& marker = session.Markers.Of(graph, index);
    if (marker.State != MarkerState::Off && marker.State != MarkerState::Fixed)
      marker.Point = PointInside(point, session.Plan.NumPoints);
  }
}

void MarkersToData(Session& session) {
  for (auto& graph : session.Markers.OfGraphs)
    for (Marker& marker : graph) marker.Trace = MarkerTrace::Data;
}

void ToggleFixed(MarkerRecords& markers) {
  for (auto& graph : markers.OfGraphs) {
    for (Marker& marker : graph) {
      if (marker.State == MarkerState::Reference)
        marker.State = MarkerState::Fixed;
      else if (marker.State == MarkerState::Fixed)
        marker.State = MarkerState::Reference;
    }
  }
}

int ReferenceOf(const MarkerRecords& markers, int graph) {
  return FirstIn(markers, graph, MarkerState::Reference, MarkerState::Fixed);
}

int ActiveOf(const MarkerRecords& markers, int graph) {
  return FirstIn(markers, graph, MarkerState::Active, MarkerState::Active);
}

double PositionOf(const GraphRecord& graph, int point) {
  if (graph.IsDistance) return (point - 1) * graph.MetresStep + graph.MetresStart;
  return graph.IsTime ? (point - 1) * static_cast<double>(graph.TimeStep) +
                            static_cast<double>(graph.TimeStart)
                      : (point - 1) * graph.XStep + graph.XStart;
}

Complex AdmittanceOf(Complex gamma, double zo) {
  return component::Quotient((1 / zo) * OnePlus(-gamma), OnePlus(gamma));
}

Complex ImpedanceOf(Complex gamma, double zo) {
  return zo * ComplexDivide(OnePlus(gamma), OnePlus(-gamma));
}

}  // namespace qk
