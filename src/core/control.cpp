// SPDX-License-Identifier: MIT
#include "core/control.h"

namespace qk {

std::string Control::Value() const {
  switch (Kind) {
    case ControlKind::CheckBox:
    case ControlKind::OptionButton:
      return Checked ? "on" : "off";
    case ControlKind::ListField:
      return Index >= 0 && Index < static_cast<int>(Entries.size())
                 ? Entries[static_cast<std::size_t>(Index)]
                 : std::string();
    case ControlKind::ProgressBar:
      return std::to_string(Percent);
    case ControlKind::Label:
    case ControlKind::TextField:
    case ControlKind::Button:
    case ControlKind::Picture:
      break;
    case ControlKind::MenuItem:
      if (Ticks) return Checked ? "on" : "off";
      break;
  }
  return Text;
}

}  // namespace qk
