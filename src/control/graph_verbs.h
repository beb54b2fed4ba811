// SPDX-License-Identifier: MIT
// User operations on a graph. Each is one verb over the session, used by the mouse, the graph's
// menu, the main window's menu and the console. Channels are 1 to 4. Every window is notified.
#pragma once

#include "control/controller.h"
#include "core/result.h"
#include "limits/marker_search.h"

namespace qk {

// StepScale changes the scale per division by a number of steps in the sequence 1, 2, 5.
// ShiftReference moves the reference by a number of divisions. No effect on a Smith chart, which
// has neither.
void StepScale(Controller& controller, int channel, int steps);
void ShiftReference(Controller& controller, int channel, int divisions);
// Position of the reference line, 0 (the top edge) to 8.
void PlaceReferenceLine(Controller& controller, int channel, int position);

// Sets scale, reference and units so that the whole trace is visible. The scale is rounded to 1, 2,
// 5. The reference is in the middle; for a standing wave ratio, whose minimum is 1, it is at the
// bottom. Another unit switches limits off, as below. No effect on a Smith chart or for a channel
// without data.
void AutoscaleGraph(Controller& controller, int channel);
void AutoscaleAll(Controller& controller);  // all displayed channels

// What a channel shows. Changing the graph type also sets a suitable scale, reference and unit. A
// transmission parameter on a reflection-only graph type becomes "LogMag". Fails without a change
// if the time domain is not available.
// Limits are numbers for the parameter, graph type and unit for which they were applied. Where a
// verb of this file gives a channel others, its limits are no longer shown and tested, and the
// passing line names them. (Display Set Up does not change the limits; a remark on the graph says
// what they are for.)
Result<Done> ShowParameter(Controller& controller, int channel, Parameter parameter);
Result<Done> ShowGraphType(Controller& controller, int channel, GraphType type);

// Moves the next hidden marker, or the active one if all are shown, to the point (from 1) in all
// graphs, and makes it the active marker.
void PutMarker(Controller& controller, int channel, int point);
// Moves the active marker by a number of points in all graphs, not beyond the ends. No effect if
// none is shown.
void StepMarker(Controller& controller, int points);
// Moves the active marker to the maximum or minimum of the channel, and makes the channel active.
void FindOnTrace(Controller& controller, int channel, Extreme which);
void StoreTrace(Controller& controller, int channel);
// Shows in the passing line which traces of channels first to last were stored, and when.
void ReportStored(Controller& controller, int first, int last);

// Undoes the last change of display, memory or markers. The passing line shows what was undone and
// what could not be restored. Fails if there is nothing to undo.
Result<std::string> UndoLast(Controller& controller);

enum class DisplayPreset { AllParameters, Filter, Antenna, TimeDomain };
// Presets: all four parameters; a filter (S21 and S11 in dB, S11 on a Smith chart, group delay of
// S21); an antenna (standing wave ratio and Smith chart of S11); the time response of S11.
Result<Done> ApplyPreset(Controller& controller, DisplayPreset preset);

// Switches the bands around the traces: the uncertainty, also in read-outs, and mean and spread of
// the repeated sweeps.
void ShowUncertainty(Controller& controller, bool on);
void ShowSpread(Controller& controller, bool on);

// Switches the axis numbers and the annotations on traces.
void ShowAxisNumbers(Controller& controller, bool on);
void ShowRemarks(Controller& controller, bool on);

}  // namespace qk
