// SPDX-License-Identifier: MIT
// The width that a window needs to show its full title in the title bar.
#pragma once

class QString;
class QWidget;

namespace qk {

// In device-independent pixels. An estimate, because the title bar belongs to the window system.
int TitleBarWidth(const QWidget& window, const QString& title);

}  // namespace qk
