// SPDX-License-Identifier: MIT
// Marks a field whose entry has not been applied: italic text, with the reason in its tool tip and
// its accessible description.
#pragma once

class QWidget;

namespace qk {

struct Control;

// Marks the widget, or removes the mark. Call it after the tool tip has been set.
void MarkPending(QWidget& widget, const Control& control);

}  // namespace qk
