// SPDX-License-Identifier: MIT
#include "console/words.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

namespace qk::console {

std::string_view IconWord(Icon icon) {
  static constexpr std::array<std::string_view, 5> words = {"none", "information", "question",
                                                            "exclamation", "critical"};
  return words[static_cast<std::size_t>(icon)];
}

std::string_view ButtonsWord(Buttons buttons) {
  static constexpr std::array<std::string_view, 4> words = {"ok", "ok/cancel", "yes/no",
                                                            "retry/cancel"};
  return words[static_cast<std::size_t>(buttons)];
}

std::string_view DialogWord(DialogKind kind) {
  static constexpr std::array<std::string_view, 4> words = {"open", "save", "colour", "print"};
  return words[static_cast<std::size_t>(kind)];
}

std::string_view KindWord(ControlKind kind) {
  static constexpr std::array<std::string_view, 9> words = {
      "Label",  "TextField", "CheckBox",    "OptionButton", "ListField",
      "Button", "MenuItem",  "ProgressBar", "Picture"};
  return words[static_cast<std::size_t>(kind)];
}

namespace {
constexpr std::array<std::string_view, 5> kAnswers = {"ok", "cancel", "yes", "no", "retry"};
}

std::optional<Answer> AnswerOf(std::string_view word) {
  for (std::size_t i = 0; i < kAnswers.size(); ++i)
    if (kAnswers[i] == word) return static_cast<Answer>(i);
  return std::nullopt;
}

bool Offers(Buttons buttons, Answer answer) {
  const std::string_view word = kAnswers[static_cast<std::size_t>(answer)];
  std::string_view offered = ButtonsWord(buttons);
  for (;;) {
    const std::size_t slash = offered.find('/');
    if (offered.substr(0, slash) == word) return true;
    if (slash == std::string_view::npos) return false;
    offered.remove_prefix(slash + 1);
  }
}

std::string OneLine(std::string_view text) {
  std::string line;
  line.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    if (text[i] == '\n' || text[i] == '\r')
      line += "\\n";
    else
      line += text[i];
  }
  return line;
}

std::string Digits17(double value) {
  std::array<char, 40> text;
  const auto [end, error] =
      std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 17);
  return error == std::errc() ? std::string(text.data(), end) : std::string();
}

std::string IndexedLine(int index, std::initializer_list<double> values) {
  std::string line = std::to_string(index);
  for (const double value : values) line += " " + Digits17(value);
  return line;
}

std::string_view FirstWord(std::string_view line, std::string_view& rest) {
  const std::size_t blank = line.find(' ');
  rest = blank == std::string_view::npos ? std::string_view() : line.substr(blank + 1);
  return line.substr(0, blank);
}

std::vector<std::string_view> Words(std::string_view line) {
  std::vector<std::string_view> words;
  for (;;) {
    const std::size_t start = line.find_first_not_of(" \t");
    if (start == std::string_view::npos) return words;
    line.remove_prefix(start);
    const std::size_t length = std::min(line.find_first_of(" \t"), line.size());
    words.push_back(line.substr(0, length));
    line.remove_prefix(length);
  }
}

std::optional<long> WholeNumber(std::string_view word) {
  long value = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
  if (error != std::errc() || end != word.data() + word.size()) return std::nullopt;
  return value;
}

}  // namespace qk::console
