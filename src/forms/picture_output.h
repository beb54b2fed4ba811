// SPDX-License-Identifier: MIT
// The picture area on paper and in image files, and windows on paper.
#pragma once

#include <functional>
#include <string>

#include "control/controller.h"

namespace qk {

// "Print Graphics": the picture, in the default colours if so chosen and with the label if it is to
// be shown, on a page of the printer that the dialog gives.
void PrintGraphics(Controller& controller);

// "Save Graphics": the picture, with the label if it is to be shown, in an image file. What cannot
// be written is told with its cause.
void SaveGraphics(Controller& controller);

// The picture, with the label if it is to be shown, on the clipboard.
void CopyGraphics(Controller& controller);

// A window on paper: as it is on the screen or, without a screen, its picture drawn again.
struct WindowPrint {
  std::string Window;  // by its name
  std::string Title;   // of the document and of messages
  Extent Size;         // of what Draw draws
  std::function<void(Canvas&)> Draw;
};
// Asks for the printer and prints the window, fitted to the page.
void PrintWindow(Host& host, PictureSurface& surface, const WindowPrint& print);

}  // namespace qk
