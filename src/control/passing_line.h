// SPDX-License-Identifier: MIT
// A line about what has just been done, which goes by itself: "S21 stored 12:03". It covers
// nothing.
#pragma once

#include <cstdint>
#include <string>

#include "core/host.h"

namespace qk {

class PassingLine {
 public:
  static constexpr int kStaysMs = 8000;

  explicit PassingLine(Host& host) : host_(host) {}

  // In place of the one before.
  void Say(std::string text);
  // ... with the time of day behind it: "S21 stored 12:03".
  void SayAt(const std::string& text);
  void SaySaved(const std::string& path);  // "saved NAME"
  // Empty once it has passed.
  const std::string& Text();

 private:
  Host& host_;
  std::string text_;
  std::int64_t untilMs_ = 0;
};

}  // namespace qk
