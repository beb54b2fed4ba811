// SPDX-License-Identifier: MIT
// The label that stands on prints and saved pictures: how it is composed, and where it is drawn.
#pragma once

#include <string>

#include "core/session.h"
#include "display/canvas.h"

namespace qk {

// The text with what is ticked of status (panels 3, 4 and 5) and date behind it, in brackets:
// "Filter A  (12 Term Cal  P1 Level: 0dBm  Temp 25.0 degC  2026-11-21)".
std::string ComposeLabel(const Session& session, const std::string& text, const std::string& date);

// The text moves, or comes, to the front of the list; the last one falls off when it is new.
void RememberLabel(LabelState& label, const std::string& text);

// Top left corner of a label of this size: by the width of the last graph drawn without the marker
// table, by that of the whole area with it. A label too long for its place begins at the left edge.
// Where a label that LabelAt puts over one of the titles stands clear of all: at the right of a
// title, else at its left, the nearest first; where it was when there is no such room in the area.
CanvasPoint ClearOfTitles(CanvasPoint at, Extent text, int gap, std::span<const Rect> titles,
                          int areaWidth);

CanvasPoint LabelAt(DisplaySet displaySet, bool markerTable, int width, Extent text);

}  // namespace qk
