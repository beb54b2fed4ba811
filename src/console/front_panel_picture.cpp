// SPDX-License-Identifier: MIT
// The commands of the picture area.
#include <algorithm>

#include "console/front_panel.h"
#include "console/words.h"
#include "core/window_names.h"

namespace qk {

using namespace console;

namespace {
constexpr int kSmallestPicture = 64;
constexpr int kLargestPicture = 8192;
}  // namespace

ConsoleHost::Outcome FrontPanel::Mouse(std::string_view rest) {
  constexpr std::string_view kUse = "mouse down|move|up left|right X Y";
  const auto words = Words(rest);
  if (words.size() != 4) return Outcome::Refused(std::string(kUse));
  Program::MouseAction action = Program::MouseAction::Down;
  if (words[0] == "move")
    action = Program::MouseAction::Move;
  else if (words[0] == "up")
    action = Program::MouseAction::Up;
  else if (words[0] != "down")
    return Outcome::Refused(std::string(kUse));
  const auto x = WholeNumber(words[2]);
  const auto y = WholeNumber(words[3]);
  if ((words[1] != "left" && words[1] != "right") || !x || !y)
    return Outcome::Refused(std::string(kUse));
  const Form* form = reach_.registry.Find(window::kForm1);
  if (form == nullptr || !reach_.Mouse) return Outcome::Refused("no picture area");
  if (std::string reason = Reachable(*form); !reason.empty()) return Outcome::Refused(reason);
  const Extent size = reach_.PictureSize();
  if (*x < 0 || *y < 0 || *x >= size.width || *y >= size.height)
    return Outcome::Refused("outside the picture area of " + std::to_string(size.width) + " by " +
                            std::to_string(size.height));
  reach_.Mouse(action, words[1] == "left", static_cast<int>(*x), static_cast<int>(*y));
  return Outcome::Done();
}

ConsoleHost::Outcome FrontPanel::Resize(std::string_view rest) {
  const auto words = Words(rest);
  const auto width = words.size() == 2 ? WholeNumber(words[0]) : std::nullopt;
  const auto height = words.size() == 2 ? WholeNumber(words[1]) : std::nullopt;
  if (!width || !height) return Outcome::Refused("resize W H");
  if (!reach_.Resize) return Outcome::Refused("no picture area");
  if (std::min(*width, *height) < kSmallestPicture || std::max(*width, *height) > kLargestPicture)
    return Outcome::Refused("W and H are " + std::to_string(kSmallestPicture) + " to " +
                            std::to_string(kLargestPicture) + " pixels");
  reach_.Resize(static_cast<int>(*width), static_cast<int>(*height));
  return Outcome::Done();
}

ConsoleHost::Outcome FrontPanel::Picture(std::string_view rest) {
  if (rest.empty()) return Outcome::Refused("picture FILE");
  const auto outcome = [](const std::string& reason) {
    return reason.empty() ? Outcome::Done() : Outcome::Refused(reason);
  };
  // If the first word names a picture in a window, such as the plot of a power test, that picture
  // is written.
  if (const std::size_t end = rest.find(' '); end != std::string_view::npos) {
    std::string ignored;
    const auto place = Find(rest.substr(0, end), ignored);
    if (place && place->Item.Draw && reach_.WriteDrawing)
      return outcome(reach_.WriteDrawing({place->Item.PictureWidth, place->Item.PictureHeight},
                                         place->Item.Draw, std::string(rest.substr(end + 1))));
  }
  if (!reach_.WritePicture) return Outcome::Refused("no picture area");
  return outcome(reach_.WritePicture(std::string(rest)));
}

}  // namespace qk
