// SPDX-License-Identifier: MIT
// One command during execution: its parameters as values, its replies, its errors.
#pragma once

#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "scpi/client.h"
#include "scpi/lexer.h"
#include "scpi/remote.h"
#include "scpi/tree.h"

namespace qk::scpi {

// The dimension of a number, which determines the units that may follow it.
enum class Dimension { Plain, Hertz, Seconds, Decibel, Ohm };

// The values of MIN, MAX and DEF; MIN and MAX are the limits of the range.
struct Range {
  double Least, Most, Usual;
  Dimension Of = Dimension::Plain;
};

class Call {
 public:
  Call(Remote& control, Client& by, const Unit& unit, const Found& found)
      : remote(control), client(by), session(control.session()), unit_(unit), found_(found) {}

  Remote& remote;
  Client& client;
  Session& session;

  int Index() const { return found_.Index; }  // the suffix of the header
  std::size_t Count() const { return unit_.Items.size(); }
  const Item& At(std::size_t i) const { return unit_.Items[i]; }

  // ---- parameters, from 0 --------------------------------------------------------------------
  // Each returns an empty value after it has recorded the error: a parameter that is missing or of
  // another kind, a value out of range, a word that is not in the list.
  std::optional<double> Number(std::size_t i, const Range& range);
  std::optional<int> Whole(std::size_t i, int least, int most);  // rounded
  std::optional<bool> Switch(std::size_t i);                     // 1 0 ON OFF, or a number
  // The index of the word in the list, whose entries are in SCPI notation ("SINGle").
  std::optional<int> Word(std::size_t i, std::span<const std::string_view> words);
  std::optional<int> Word(std::size_t i, std::initializer_list<std::string_view> words) {
    return Word(i, std::span(words.begin(), words.size()));
  }
  std::optional<std::string> Text(std::size_t i);      // in quotes
  std::optional<Parameter> SParameter(std::size_t i);  // S21, quoted or not

  // For a query of MIN, MAX or DEF: answers it and returns true.
  bool AnswersExtreme(const Range& range, bool whole = false);

  // ---- replies -------------------------------------------------------------------------------
  void Reply(std::string_view text);
  void ReplyWhole(long value) { Reply(std::to_string(value)); }
  void ReplySwitch(bool on) { Reply(on ? "1" : "0"); }
  void ReplyReal(double value);
  void ReplyQuoted(std::string_view text);
  void ReplyBlock(std::string_view bytes);
  // Numbers in the client's format: a list, or a block of 32 or 64 bits.
  void ReplyData(std::span<const double> values);
  bool Replied() const { return replied_; }

  // ---- errors --------------------------------------------------------------------------------
  void Fail(int number, std::string detail = {});
  bool Failed() const { return failed_; }

 private:
  std::optional<double> Extreme(std::string_view word, const Range& range) const;

  const Unit& unit_;
  const Found& found_;
  bool replied_ = false;
  bool failed_ = false;
};

// True if text is the short or the long form of a word in SCPI notation, in any case.
bool IsWord(std::string_view text, std::string_view word);
// The shortest text that reads back the same; 9.91E37 for NaN, 9.9E37 for an infinity.
std::string RealText(double value);

}  // namespace qk::scpi
