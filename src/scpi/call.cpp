// SPDX-License-Identifier: MIT
#include "scpi/call.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "scpi/data_block.h"

namespace qk::scpi {

namespace {

struct UnitRow {
  Dimension Of;
  std::string_view Name;
  double Size;
};
constexpr std::array<UnitRow, 12> kUnitRows{{{Dimension::Hertz, "HZ", 1},
                                             {Dimension::Hertz, "KHZ", 1e3},
                                             {Dimension::Hertz, "MHZ", 1e6},
                                             {Dimension::Hertz, "GHZ", 1e9},
                                             {Dimension::Seconds, "S", 1},
                                             {Dimension::Seconds, "MS", 1e-3},
                                             {Dimension::Seconds, "US", 1e-6},
                                             {Dimension::Seconds, "NS", 1e-9},
                                             {Dimension::Seconds, "PS", 1e-12},
                                             {Dimension::Decibel, "DB", 1},
                                             {Dimension::Decibel, "DBM", 1},
                                             {Dimension::Ohm, "OHM", 1}}};

std::string Shortened(std::string_view text) {
  return std::string(text.substr(0, 60));
}

}  // namespace

bool IsWord(std::string_view text, std::string_view word) {
  std::size_t shortest = 0;
  while (shortest < word.size() && !(word[shortest] >= 'a' && word[shortest] <= 'z')) ++shortest;
  return SameWord(text, word) || SameWord(text, word.substr(0, shortest));
}

std::string RealText(double value) {
  if (std::isnan(value)) return "9.91E37";
  if (std::isinf(value)) return value > 0 ? "9.9E37" : "-9.9E37";
  constexpr double kPlain = 1e15;
  if (value == std::floor(value) && std::abs(value) < kPlain)
    return std::to_string(static_cast<long long>(value));
  std::array<char, 32> text;
  const auto written = std::to_chars(text.data(), text.data() + text.size(), value);
  std::string shortest(text.data(), written.ptr);
  for (char& c : shortest)
    if (c == 'e') c = 'E';
  return shortest;
}

void Call::Fail(int number, std::string detail) {
  if (failed_) return;
  failed_ = true;
  client.Push({number, std::move(detail)});
}

std::optional<double> Call::Extreme(std::string_view word, const Range& range) const {
  if (IsWord(word, "MINimum")) return range.Least;
  if (IsWord(word, "MAXimum")) return range.Most;
  if (IsWord(word, "DEFault")) return range.Usual;
  return std::nullopt;
}

std::optional<double> Call::Number(std::size_t i, const Range& range) {
  if (i >= Count()) {
    Fail(kMissingParameter);
    return std::nullopt;
  }
  const Item& item = At(i);
  if (item.Kind == ItemKind::Word) {
    const std::optional<double> extreme = Extreme(item.Raw, range);
    if (!extreme) Fail(kInvalidWord, Shortened(item.Raw));
    return extreme;
  }
  if (item.Kind != ItemKind::Number) {
    Fail(kDataType);
    return std::nullopt;
  }
  double value = item.Value;
  if (!item.Unit.empty()) {
    const UnitRow* found = nullptr;
    for (const UnitRow& row : kUnitRows)
      if (row.Of == range.Of && SameWord(row.Name, item.Unit)) found = &row;
    if (found == nullptr) {
      Fail(kInvalidUnit, Shortened(item.Unit));
      return std::nullopt;
    }
    value *= found->Size;
  }
  if (!(value >= range.Least && value <= range.Most)) {
    Fail(kOutOfRange, Shortened(item.Raw));
    return std::nullopt;
  }
  return value;
}

std::optional<int> Call::Whole(std::size_t i, int least, int most) {
  const auto number = Number(i, {least - 0.5, most + 0.4999, static_cast<double>(least)});
  if (!number) return std::nullopt;
  return std::clamp(static_cast<int>(std::lround(*number)), least, most);
}

std::optional<bool> Call::Switch(std::size_t i) {
  if (i >= Count()) {
    Fail(kMissingParameter);
    return std::nullopt;
  }
  const Item& item = At(i);
  if (item.Kind == ItemKind::Number && item.Unit.empty()) return std::lround(item.Value) != 0;
  if (item.Kind == ItemKind::Word && SameWord(item.Raw, "ON")) return true;
  if (item.Kind == ItemKind::Word && SameWord(item.Raw, "OFF")) return false;
  Fail(item.Kind == ItemKind::Word ? kInvalidWord : kDataType, Shortened(item.Raw));
  return std::nullopt;
}

std::optional<int> Call::Word(std::size_t i, std::span<const std::string_view> words) {
  if (i >= Count()) {
    Fail(kMissingParameter);
    return std::nullopt;
  }
  const Item& item = At(i);
  if (item.Kind != ItemKind::Word) {
    Fail(kDataType, Shortened(item.Raw));
    return std::nullopt;
  }
  for (std::size_t n = 0; n < words.size(); ++n)
    if (IsWord(item.Raw, words[n])) return static_cast<int>(n);
  Fail(kIllegalValue, Shortened(item.Raw));
  return std::nullopt;
}

std::optional<std::string> Call::Text(std::size_t i) {
  if (i >= Count()) {
    Fail(kMissingParameter);
    return std::nullopt;
  }
  if (At(i).Kind != ItemKind::Text) {
    Fail(kDataType, Shortened(At(i).Raw));
    return std::nullopt;
  }
  return Unquoted(At(i));
}

std::optional<Parameter> Call::SParameter(std::size_t i) {
  if (i >= Count()) {
    Fail(kMissingParameter);
    return std::nullopt;
  }
  const Item& item = At(i);
  if (item.Kind != ItemKind::Word && item.Kind != ItemKind::Text) {
    Fail(kDataType, Shortened(item.Raw));
    return std::nullopt;
  }
  for (std::size_t n = 0; n < kParameters.size(); ++n)
    if (SameWord(item.Raw, kParameters[n].Name)) return static_cast<Parameter>(n);
  Fail(kIllegalValue, Shortened(item.Raw));
  return std::nullopt;
}

bool Call::AnswersExtreme(const Range& range, bool whole) {
  if (Count() == 0) return false;
  const auto value = Number(0, range);
  if (!value) return true;
  if (At(0).Kind != ItemKind::Word)
    Fail(kDataType);
  else if (whole)
    ReplyWhole(std::lround(*value));
  else
    ReplyReal(*value);
  return true;
}

void Call::Reply(std::string_view text) {
  replied_ = true;
  client.Write(text);
}

void Call::ReplyReal(double value) {
  Reply(RealText(value));
}

void Call::ReplyQuoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    quoted += c;
    if (c == '"') quoted += c;
  }
  Reply(quoted + "\"");
}

void Call::ReplyBlock(std::string_view bytes) {
  Reply(BlockOf(bytes));
}

void Call::ReplyData(std::span<const double> values) {
  Reply(DataText(values, client.Form, client.Swapped));
}

}  // namespace qk::scpi
