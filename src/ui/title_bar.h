// SPDX-License-Identifier: MIT
// How wide a window must be for its title bar to show the title whole.
#pragma once

class QString;
class QWidget;

namespace qk {

// In device-independent pixels; the title bar itself belongs to the window system.
int TitleBarWidth(const QWidget& window, const QString& title);

}  // namespace qk
