// SPDX-License-Identifier: MIT
// The table of markers at the right of the picture area: the read-outs of the active channel.
#pragma once

#include <functional>
#include <string>

#include "display/markers.h"

namespace qk {

// The two lines of a marker: "100.0000 MHz" and "-3.012 dB"; an impedance on a Smith chart.
std::string MarkerPositionText(const GraphRecord& graph, const Marker& marker);
std::string MarkerValueText(const GraphRecord& graph, const Marker& marker, double zo);
// The same for active minus reference. Meant: on a Smith chart the reference is an impedance at
// 50 ohms, whatever the system impedance.
std::string DeltaPositionText(const GraphRecord& graph, const Marker& active,
                              const Marker& reference);
std::string DeltaValueText(const GraphRecord& graph, const Marker& active, const Marker& reference,
                           double zo);

// The points of the table's text: whole, at least 1.
int TableFontPoints(float screenScale);

// Where the box stands in an area of this size whose top left corner is 0, 0.
Rect MarkerTableBox(Extent area);
// Box and heading, in the font of the area.
void DrawMarkerTableBox(Canvas& canvas, const Colours& colours);
// What stands still in the table, for the graph (0 to 3) of the active channel: the lines about the
// graph and its plane, and the titles of the markers.
void DrawMarkerTitles(Canvas& canvas, const Session& session, int graph, float screenScale);
// Position and value of each marker, and of the delta; "---" for the values of a graph without
// data. valueText reads a marker in place of MarkerValueText; may be empty.
void DrawMarkerReadings(Canvas& canvas, const Session& session, const GraphRecord& record,
                        int graph, float screenScale, bool holdsData = true,
                        const std::function<std::string(const Marker&)>& valueText = {});

}  // namespace qk
