// SPDX-License-Identifier: MIT
// The marker table at the right of the picture area: the read-outs of the active channel.
#pragma once

#include <functional>
#include <string>

#include "display/markers.h"

namespace qk {

inline constexpr const char* kImpedancePicture = "#0.000";

// The two lines of a marker: "100.0000 MHz" and "-3.012 dB"; an impedance on a Smith chart, both
// parts as the picture gives them.
std::string MarkerPositionText(const GraphRecord& graph, const Marker& marker);
std::string MarkerValueText(const GraphRecord& graph, const Marker& marker, double zo,
                            const char* picture = kImpedancePicture);
// The same for active minus reference. Intentional: on a Smith chart the reference is an impedance
// at 50 ohms, whatever the system impedance is.
std::string DeltaPositionText(const GraphRecord& graph, const Marker& active,
                              const Marker& reference);
std::string DeltaValueText(const GraphRecord& graph, const Marker& active, const Marker& reference,
                           double zo);

// Font sizes of the table in points: the usual one, and the smallest to which a long text may
// shrink. At least 1 each; where text must be readable, at least kReadablePoints.
struct TableLetters {
  int Points, Least;
};
TableLetters LettersOfTable(float screenScale, bool readable);

// The position of the box in an area of this size with its top left corner at 0, 0.
Rect MarkerTableBox(Extent area);
// Box and heading, in the font of the area.
void DrawMarkerTableBox(Canvas& canvas, const Colours& colours);
// The fixed texts of the table, for the graph (0 to 3) of the active channel: the lines about the
// graph and its plane, and the titles of the markers.
void DrawMarkerTitles(Canvas& canvas, const Session& session, int graph, TableLetters letters);
// Position and value of each marker and of the delta; "---" as value if the graph has no data.
// valueText formats a marker instead of MarkerValueText; may be empty.
void DrawMarkerReadings(Canvas& canvas, const Session& session, const GraphRecord& record,
                        int graph, TableLetters letters, bool holdsData = true,
                        const std::function<std::string(const Marker&)>& valueText = {});

}  // namespace qk
