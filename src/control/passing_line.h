// SPDX-License-Identifier: MIT
// A one-line message about the last action, which disappears by itself: "S21 stored 12:03". It does
// not cover anything.
#pragma once

#include <cstdint>
#include <string>

#include "core/host.h"

namespace qk {

class PassingLine {
 public:
  static constexpr int kStaysMs = 8000;

  explicit PassingLine(Host& host) : host_(host) {}

  // Replaces the previous message.
  void Say(std::string text);
  // The same with the time of day appended: "S21 stored 12:03".
  void ShowWithTime(const std::string& text);
  void ShowSaved(const std::string& path);  // "saved NAME"
  // Empty once the message has expired.
  const std::string& Text();

 private:
  Host& host_;
  std::string text_;
  std::int64_t untilMs_ = 0;
};

}  // namespace qk
