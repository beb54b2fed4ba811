// SPDX-License-Identifier: MIT
// The markers of a graph: which point of which trace they stand on, and what is read off there.
#pragma once

#include <optional>

#include "core/session.h"
#include "display/records.h"

namespace qk {

// A graph as its markers see it.
struct MarkedGraph {
  const GraphRecord& Graph;
  const TraceRecord& Data;
  const TraceRecord& Memory;

  const TraceRecord& Of(MarkerTrace trace) const {
    return trace == MarkerTrace::Memory ? Memory : Data;
  }
};

// Puts the marker (from 0) on a trace and a point and takes value and pixel from there. Without a
// trace or a point it keeps its own; a point of 0 or beyond the sweep becomes the middle.
void SetMarker(const MarkedGraph& graph, std::optional<MarkerTrace> trace, std::optional<int> point,
               MarkerState state, int index, Marker& marker);

// State of the graph's markers (0 to 3) by "Markers Set Up", after its frame was drawn. Kept: they
// stay on their trace and point. Else they go to the point that was set, on the data trace. Meant:
// a fixed marker becomes a plain reference again.
void SyncMarkers(Session& session, const MarkedGraph& graph, int graphIndex, bool keepMarkers);

// Value and pixel of the marker's point, unless it is fixed. A marker whose stored trace is not
// drawn goes to the data trace.
void FollowTrace(const MarkedGraph& graph, Marker& marker);

// The marker goes to the point, kept inside the sweep, in all four graphs.
void MoveMarker(Session& session, int index, double point);

// The same, for the graphs where it is shown and not fixed.
void PlaceMarker(Session& session, int index, double point);

// All markers of all graphs on the data trace.
void MarkersToData(Session& session);

// "Fix" and "UnFix": references are held where they are, or let go, in all four graphs.
void ToggleFixed(MarkerRecords& markers);

// The reference and the active marker of a graph, from 0; -1 for none.
int ReferenceOf(const MarkerRecords& markers, int graph);
int ActiveOf(const MarkerRecords& markers, int graph);

// Where a point (from 1) stands on the axis: hertz, or in the time domain ns or metres.
double PositionOf(const GraphRecord& graph, int point);

// A reflection coefficient as an admittance in siemens; no number for a short.
Complex AdmittanceOf(Complex gamma, double zo);

// A reflection coefficient as an impedance in ohms.
Complex ImpedanceOf(Complex gamma, double zo);

}  // namespace qk
