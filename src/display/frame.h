// SPDX-License-Identifier: MIT
// The background of a rectangular graph, and the text around every graph.
#pragma once

#include <string>
#include <vector>

#include "core/session.h"
#include "display/records.h"

namespace qk {

// The texts around a graph.
std::string ScaleText(const ChannelSettings& channel);      // "10.0 dB/DIV"
std::string ReferenceText(const ChannelSettings& channel);  // "0.0 dB"
// "S11 LogMag"; "S11 Reflection Z" on a Smith chart; "S11TD (Rect)" in the time domain; "S21 L
// series" for a series element between the ports.
std::string TitleText(const ChannelSettings& channel, const TimeDomainState& timeDomain);
std::string StartText(const Session& session, const GraphRecord& graph);  // "3.0000 MHz"
std::string StopText(const Session& session, const GraphRecord& graph);
std::string ZoText(const ImpedanceState& impedance);  // "[Zo=50]"

// Their positions (top left corner), for a text of the given size.
CanvasPoint ScaleTextAt(const GraphRecord& graph, Extent text);
CanvasPoint ReferenceTextAt(const GraphRecord& graph, Extent text, int widthOfRe);
CanvasPoint TitleAt(const GraphRecord& graph, Extent text);
CanvasPoint StartTextAt(const GraphRecord& graph);
CanvasPoint StopTextAt(const GraphRecord& graph, Extent text);
CanvasPoint ZoTextAt(Extent area, Extent text);

// The pens for the background.
void SetOutlinePen(Canvas& canvas, const Colours& colours);
void SetGridPen(Canvas& canvas, const Colours& colours);

// The outline and the grid of 10 by 8 divisions.
void DrawRectangularFrame(Canvas& canvas, const GraphRecord& graph, const Colours& colours);
// The triangles above the corner and at the reference line, and the scale and reference texts.
void DrawReference(Canvas& canvas, const GraphRecord& graph, const ChannelSettings& channel,
                   const Colours& colours);
// Title, start text and stop text.
void DrawGraphText(Canvas& canvas, const GraphRecord& graph, const ChannelSettings& channel,
                   const Session& session);
// The start and stop of the gate, on a graph over time.
void DrawGateEdges(Canvas& canvas, const GraphRecord& graph, const Session& session);
// The impedance tag in the upper right corner of the area.
void DrawZoTag(Canvas& canvas, const Session& session);

// Numbers at the divisions, along the inside of the left edge and between start and stop text; if
// there is no room there, inside the frame above the lower edge. Not on a Smith chart. Uses the
// current font. Appends the places of the numbers inside the frame.
void DrawAxisNumbers(Canvas& canvas, const GraphRecord& graph, const Session& session,
                     std::vector<Rect>& places);

}  // namespace qk
