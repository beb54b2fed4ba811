// SPDX-License-Identifier: MIT
// The words of a bench command, read one after the other.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "sim/instrument.h"
#include "sim/words.h"

namespace qk::sim {

class Arguments {
 public:
  explicit Arguments(std::string_view line) : rest_(line) { Trim(); }

  bool Empty() const { return rest_.empty(); }

  // The next word unchanged; empty at the end.
  std::string Word() {
    const std::size_t end = std::min(rest_.find_first_of(" \t"), rest_.size());
    std::string word(rest_.substr(0, end));
    rest_.remove_prefix(end);
    Trim();
    return word;
  }

  // Takes the next word if it equals word, ignoring case.
  bool Take(std::string_view word) {
    Arguments ahead = *this;
    if (Lower(ahead.Word()) != word) return false;
    *this = ahead;
    return true;
  }

  // The next word as a number, optionally with its unit appended ("5.00mm") or after a blank.
  std::optional<double> NumberOf(std::string_view unit) {
    std::string word = Lower(Word());
    if (!unit.empty() && word.size() > unit.size() && word.ends_with(unit))
      word.erase(word.size() - unit.size());
    else if (!unit.empty())
      Take(unit);
    return Number(word);
  }

  // The rest of the line, without a surrounding pair of quotes.
  std::string Rest() {
    std::string_view rest = rest_;
    rest_ = {};
    if (rest.size() >= 2 && rest.front() == '"' && rest.back() == '"')
      rest = rest.substr(1, rest.size() - 2);
    return std::string(rest);
  }

 private:
  void Trim() {
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    while (!rest_.empty() && blank(rest_.front())) rest_.remove_prefix(1);
    while (!rest_.empty() && blank(rest_.back())) rest_.remove_suffix(1);
  }

  std::string_view rest_;
};

inline BenchReply Refused(std::string why) {
  return {false, std::move(why)};
}

// The error for unexpected text at the end of a line.
inline BenchReply TooMuch(Arguments& a) {
  return Refused("\"" + a.Word() + "\" is too much");
}

// The next word as a number from low to high, with or without its unit.
inline std::optional<double> InRange(Arguments& a, std::string_view unit, double low, double high) {
  const auto value = a.NumberOf(unit);
  if (!value || *value < low || *value > high) return std::nullopt;
  return value;
}

// "truth HZ": the small-signal S-parameters of the connected device.
BenchReply RunTruth(const Instrument& instrument, Arguments& a);
// "driven HZ DBM": S21 with a wave of the given level into port 1, and the resulting output level
// at port 2 in dBm.
BenchReply RunDriven(const Instrument& instrument, Arguments& a);
// "eeprom ADDRESS" reads a byte, "eeprom ADDRESS BYTE" changes it; the checksum is not updated.
BenchReply RunEeprom(Instrument& instrument, Arguments& a);
// "power cycle": off and on again.
BenchReply RunPower(Instrument& instrument, Arguments& a);
// "fault ...": see the help of the bench language.
BenchReply RunFault(Instrument& instrument, Arguments& arguments);

}  // namespace qk::sim
