// SPDX-License-Identifier: MIT
// The words of a bench line, taken one after the other.
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

  // The next word as it stands; empty at the end.
  std::string Word() {
    const std::size_t end = std::min(rest_.find_first_of(" \t"), rest_.size());
    std::string word(rest_.substr(0, end));
    rest_.remove_prefix(end);
    Trim();
    return word;
  }

  // Takes the next word when it is this one, in either case.
  bool Take(std::string_view word) {
    Arguments ahead = *this;
    if (Lower(ahead.Word()) != word) return false;
    *this = ahead;
    return true;
  }

  // The next word as a number, which may carry its unit at its end ("5.00mm") or behind a blank.
  std::optional<double> NumberOf(std::string_view unit) {
    std::string word = Lower(Word());
    if (!unit.empty() && word.size() > unit.size() && word.ends_with(unit))
      word.erase(word.size() - unit.size());
    else if (!unit.empty())
      Take(unit);
    return Number(word);
  }

  // What is left of the line, a pair of quotes around it taken off.
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

// What is left of a line that should have ended.
inline BenchReply TooMuch(Arguments& a) {
  return Refused("\"" + a.Word() + "\" is too much");
}

// The next word as a number from low to high, with or without its unit.
inline std::optional<double> InRange(Arguments& a, std::string_view unit, double low, double high) {
  const auto value = a.NumberOf(unit);
  if (!value || *value < low || *value > high) return std::nullopt;
  return value;
}

// "truth HZ": the small-signal S-parameters of what is connected.
BenchReply RunTruth(const Instrument& instrument, Arguments& a);
// "driven HZ DBM": S21 with a wave of so many dBm into port 1, and what then leaves port 2 in dBm.
BenchReply RunDriven(const Instrument& instrument, Arguments& a);
// "eeprom ADDRESS" tells a byte, "eeprom ADDRESS BYTE" changes it; the checksum is left alone.
BenchReply RunEeprom(Instrument& instrument, Arguments& a);
// "power cycle": off and on again.
BenchReply RunPower(Instrument& instrument, Arguments& a);
// "fault ...": see the help of the bench language.
BenchReply RunFault(Instrument& instrument, Arguments& arguments);

}  // namespace qk::sim
