// SPDX-License-Identifier: MIT
// The markers of a graph: their trace and point, and the values read there.
#pragma once

#include <optional>

#include "core/session.h"
#include "display/records.h"

namespace qk {

// A graph with the data that its markers need.
struct MarkedGraph {
  const GraphRecord& Graph;
  const TraceRecord& Data;
  const TraceRecord& Memory;

  const TraceRecord& Of(MarkerTrace trace) const {
    return trace == MarkerTrace::Memory ? Memory : Data;
  }
};

// Places the marker (from 0) on a trace and a point and reads value and pixel there. Without a
// trace or a point it keeps its current one; a point of 0 or beyond the sweep becomes the middle.
void SetMarker(const MarkedGraph& graph, std::optional<MarkerTrace> trace, std::optional<int> point,
               MarkerState state, int index, Marker& marker);

// Sets the state of the graph's markers (0 to 3) from "Markers Set Up", after its frame was drawn.
// With keepMarkers they stay on their trace and point; otherwise they move to the set point on the
// data trace. Intentional: a fixed marker becomes a normal reference again.
void SyncMarkers(Session& session, const MarkedGraph& graph, int graphIndex, bool keepMarkers);

// Updates value and pixel of the marker, unless it is fixed. A marker whose stored trace is not
// drawn moves to the data trace.
void FollowTrace(const MarkedGraph& graph, Marker& marker);

// Moves the marker to the point, clamped to the sweep, in all four graphs.
void MoveMarker(Session& session, int index, double point);

// The same, but only in graphs where it is shown and not fixed.
void PlaceMarker(Session& session, int index, double point);

// Moves all markers of all graphs to the data trace.
void MarkersToData(Session& session);

// "Fix" and "UnFix": fixes or releases the references at their current values in all four graphs.
void ToggleFixed(MarkerRecords& markers);

// The reference and the active marker of a graph, from 0; -1 if there is none.
int ReferenceOf(const MarkerRecords& markers, int graph);
int ActiveOf(const MarkerRecords& markers, int graph);

// The axis position of a point (from 1): hertz, or in the time domain ns or metres.
double PositionOf(const GraphRecord& graph, int point);

// Converts a reflection coefficient to an admittance in siemens; NaN for a short.
Complex AdmittanceOf(Complex gamma, double zo);

// Converts a reflection coefficient to an impedance in ohms.
Complex ImpedanceOf(Complex gamma, double zo);

}  // namespace qk
