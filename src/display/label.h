// SPDX-License-Identifier: MIT
// The label on prints and saved pictures: its text and its position.
#pragma once

#include <string>

#include "core/session.h"
#include "display/canvas.h"

namespace qk {

// The text, followed in brackets by the selected items of status (panels 3, 4 and 5) and date:
// "Filter A  (12 Term Cal  P1 Level: 0dBm  Temp 25.0 degC  2026-11-21)".
std::string ComposeLabel(const Session& session, const std::string& text, const std::string& date);

// Moves or inserts the text at the front of the list; a new text drops the last one.
void RememberLabel(LabelState& label, const std::string& text);

// The top left corner of a label of this size: positioned by the width of the last drawn graph
// without the marker table, by the width of the whole area with it. A label that is too long starts
// at the left edge.
CanvasPoint LabelAt(DisplaySet displaySet, bool markerTable, int width, Extent text);

}  // namespace qk
