// SPDX-License-Identifier: MIT
// Output of the picture area to paper and image files, and of windows to paper.
#pragma once

#include <functional>
#include <string>

#include "control/controller.h"

namespace qk {

// "Print Graphics": prints the picture on the printer chosen in the dialog, in the default colours
// if selected, and with the label if it is enabled.
void PrintGraphics(Controller& controller);

// "Save Graphics": saves the picture, with the label if it is enabled, to an image file. A write
// failure is shown with its cause.
void SaveGraphics(Controller& controller);

// Copies the picture, with the label if it is enabled, to the clipboard.
void CopyGraphics(Controller& controller);

// A window to print: as it is on the screen or, without a screen, its picture drawn again.
struct WindowPrint {
  std::string Window;  // window name
  std::string Title;   // title of the document and of messages
  Extent Size;         // size of the drawing
  std::function<void(Canvas&)> Draw;
};
// Asks for the printer and prints the window, fitted to the page.
void PrintWindow(Host& host, PictureSurface& surface, const WindowPrint& print);

}  // namespace qk
