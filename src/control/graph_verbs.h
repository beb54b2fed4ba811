// SPDX-License-Identifier: MIT
// What a hand does on a graph: each is one verb over the session, for the mouse on the graph, its
// menu, the main window's menu and the console alike. Channels are 1 to 4. Every window is told.
#pragma once

#include "control/controller.h"
#include "core/result.h"
#include "limits/marker_search.h"

namespace qk {

// The scale per division through 1, 2, 5, so many steps up or down; the reference by so many
// divisions. Nothing on a Smith chart, which has neither.
void StepScale(Controller& controller, int channel, int steps);
void ShiftReference(Controller& controller, int channel, int divisions);
// The reference line, 0 (the top edge) to 8.
void PlaceReferenceLine(Controller& controller, int channel, int position);

// Scale, reference and units that show the whole trace, rounded to 1, 2, 5, the reference in the
// middle; at its lower edge for a standing wave ratio, whose least value is 1. Nothing on a Smith
// chart and for a channel without data.
void AutoscaleGraph(Controller& controller, int channel);
void AutoscaleAll(Controller& controller);  // the channels that are displayed

// What a channel shows. A graph type comes with a scale, reference and unit that suit it; a
// transmission on a graph type for reflections becomes "LogMag". Fails, and changes nothing, where
// the time domain is not to be had.
Result<Done> ShowParameter(Controller& controller, int channel, Parameter parameter);
Result<Done> ShowGraphType(Controller& controller, int channel, GraphType type);

// The next marker that is not shown, or the active one when all are, goes to the point (from 1) in
// all graphs and becomes the active one.
void PutMarker(Controller& controller, int channel, int point);
// The active marker goes so many points on in all graphs, and no farther than the ends. Nothing
// where none is shown.
void StepMarker(Controller& controller, int points);
// The active marker goes to the peak or minimum of the channel, which becomes the active one.
void FindOnTrace(Controller& controller, int channel, Extreme which);
void StoreTrace(Controller& controller, int channel);
// The passing line: which traces, and when. Channels first to last.
void TellStored(Controller& controller, int first, int last);

// The last change of display, memory or markers is taken back; what it was, and what could not be
// restored, passes by. Fails when there is none.
Result<std::string> UndoLast(Controller& controller);

enum class DisplayPreset { AllParameters, Filter, Antenna, TimeDomain };
// All four parameters; a filter (S21 and S11 in dB, S11 on a Smith chart, the delay of S21); an
// antenna (standing wave ratio and Smith chart of S11); the time response of S11.
Result<Done> ApplyPreset(Controller& controller, DisplayPreset preset);

// The bands about the traces, on or off: the uncertainty, also in read-outs, and mean and spread of
// the repeated sweeps.
void ShowUncertainty(Controller& controller, bool on);
void ShowSpread(Controller& controller, bool on);

// Axis numbers, and the remarks on traces, on or off.
void ShowAxisNumbers(Controller& controller, bool on);
void ShowRemarks(Controller& controller, bool on);

}  // namespace qk
