// SPDX-License-Identifier: MIT
#include "control/passing_line.h"

#include <filesystem>
#include <utility>

#include "control/proposed_name.h"

namespace qk {

void PassingLine::Say(std::string text) {
  text_ = std::move(text);
  untilMs_ = host_.loop.NowMs() + kStaysMs;
  host_.windows.SessionChanged();
}

void PassingLine::ShowWithTime(const std::string& text) {
  const LocalTime now = host_.loop.Now();
  Say(text + " " + TwoDigits(now.Hour) + ":" + TwoDigits(now.Minute));
}

void PassingLine::ShowSaved(const std::string& path) {
  Say("saved " + std::filesystem::path(path).filename().string());
}

const std::string& PassingLine::Text() {
  if (!text_.empty() && host_.loop.NowMs() >= untilMs_) text_.clear();
  return text_;
}

}  // namespace qk
