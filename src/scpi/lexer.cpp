// SPDX-License-Identifier: MIT
#include "scpi/lexer.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <system_error>

#include "core/characters.h"

namespace qk::scpi {

namespace {
bool IsBlank(char c) {
  return static_cast<unsigned char>(c) <= 32;
}
bool IsLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
bool IsNameChar(char c) {
  return IsLetter(c) || IsDigit(c) || c == '_';
}
bool IsPrintable(char c) {
  return c >= ' ' && c <= '~';
}
}  // namespace

char Upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool SameWord(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, Upper, Upper);
}

std::string Unquoted(const Item& item) {
  const char quote = item.Raw.data()[-1];
  std::string text;
  text.reserve(item.Raw.size());
  for (std::size_t i = 0; i < item.Raw.size(); ++i) {
    text += item.Raw[i];
    if (item.Raw[i] == quote) ++i;
  }
  return text;
}

void MessageReader::SkipBlanks() {
  while (!AtEnd() && IsBlank(Peek())) ++at_;
}

// To the next semicolon outside quotes.
void MessageReader::SkipUnit() {
  char quote = 0;
  for (; !AtEnd(); ++at_) {
    const char c = Peek();
    if (quote != 0) {
      if (c == quote) quote = 0;
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == ';') {
      return;
    }
  }
}

bool MessageReader::Fail(Unit& unit, int number, std::string detail) {
  unit.Wrong = {number, std::move(detail)};
  SkipUnit();
  return false;
}

bool MessageReader::Next(Unit& unit) {
  for (;;) {
    SkipBlanks();
    if (AtEnd()) return false;
    if (Peek() != ';') break;
    ++at_;
  }
  const std::size_t begin = at_;
  unit.Header = {};
  unit.Query = false;
  unit.Items.clear();
  unit.Wrong = {};
  ReadHeader(unit);
  if (unit.Wrong.Number == kNoError) ReadItems(unit);
  std::size_t end = at_;
  // A block may end with bytes that would otherwise be blanks.
  const char* const lastItem =
      unit.Items.empty() ? nullptr : unit.Items.back().Raw.data() + unit.Items.back().Raw.size();
  const std::size_t least =
      lastItem == nullptr ? begin : static_cast<std::size_t>(lastItem - message_.data());
  while (end > least && IsBlank(message_[end - 1])) --end;
  unit.Written = message_.substr(begin, end - begin);
  if (!AtEnd()) ++at_;
  return true;
}

void MessageReader::ReadHeader(Unit& unit) {
  const std::size_t begin = at_;
  if (Peek() == '*' || Peek() == ':') ++at_;
  while (!AtEnd() && (IsNameChar(Peek()) || Peek() == ':')) ++at_;
  unit.Header = message_.substr(begin, at_ - begin);
  if (!AtEnd() && Peek() == '?') {
    unit.Query = true;
    ++at_;
  }
  if (!AtEnd() && !IsBlank(Peek()) && Peek() != ';') {
    Fail(unit, IsPrintable(Peek()) ? kSyntaxError : kInvalidCharacter, std::string(unit.Header));
    return;
  }
  const std::string_view name =
      unit.Header.substr(unit.Header.starts_with('*') || unit.Header.starts_with(':') ? 1 : 0);
  if (name.empty() || !IsLetter(name.front()) || name.ends_with(':') ||
      name.find("::") != std::string_view::npos)
    Fail(unit, kSyntaxError, std::string(unit.Header));
}

void MessageReader::ReadItems(Unit& unit) {
  SkipBlanks();
  if (AtEnd() || Peek() == ';') return;
  for (;;) {
    if (!ReadItem(unit)) return;
    SkipBlanks();
    if (AtEnd() || Peek() == ';') return;
    if (Peek() != ',') {
      Fail(unit, IsPrintable(Peek()) ? kInvalidSeparator : kInvalidCharacter);
      return;
    }
    ++at_;
    SkipBlanks();
  }
}

bool MessageReader::ReadItem(Unit& unit) {
  if (AtEnd()) return Fail(unit, kSyntaxError, "a parameter is missing");
  Item item;
  const char c = Peek();
  if (c == '"' || c == '\'') {
    if (!ReadText(unit, item)) return false;
  } else if (c == '#') {
    if (!ReadRadix(item) && !ReadBlock(unit, item)) return false;
  } else if (IsDigit(c) || c == '+' || c == '-' || c == '.') {
    if (!ReadNumber(unit, item)) return false;
  } else if (IsLetter(c)) {
    const std::size_t begin = at_;
    while (!AtEnd() && IsNameChar(Peek())) ++at_;
    item.Raw = message_.substr(begin, at_ - begin);
  } else {
    return Fail(unit, IsPrintable(c) ? kSyntaxError : kInvalidCharacter);
  }
  unit.Items.push_back(item);
  return true;
}

bool MessageReader::ReadText(Unit& unit, Item& item) {
  const char quote = Peek();
  const std::size_t begin = ++at_;
  for (;;) {
    const std::size_t end = message_.find(quote, at_);
    if (end == std::string_view::npos) {
      at_ = message_.size();
      return Fail(unit, kInvalidString, "the closing quote is missing");
    }
    at_ = end + 1;
    if (AtEnd() || Peek() != quote) {
      item.Kind = ItemKind::Text;
      item.Raw = message_.substr(begin, end - begin);
      return true;
    }
    ++at_;
  }
}

bool MessageReader::ReadBlock(Unit& unit, Item& item) {
  ++at_;
  const auto refused = [&](const char* why) {
    at_ = message_.size();  // its end is unknown
    return Fail(unit, kInvalidBlock, why);
  };
  if (AtEnd() || !IsDigit(Peek())) return refused("digits are missing");
  const auto digits = static_cast<std::size_t>(Peek() - '0');
  if (digits == 0) return refused("a block needs its length");
  ++at_;
  if (message_.size() - at_ < digits) return refused("digits are missing");
  std::size_t length = 0;
  const char* const first = message_.data() + at_;
  const auto [end, error] = std::from_chars(first, first + digits, length);
  if (error != std::errc() || end != first + digits) return refused("its length is not a number");
  at_ += digits;
  if (message_.size() - at_ < length) return refused("shorter than its length");
  item.Kind = ItemKind::Block;
  item.Raw = message_.substr(at_, length);
  at_ += length;
  return true;
}

// #H1F, #Q17, #B101. False, and nothing read, if it is not such a number.
bool MessageReader::ReadRadix(Item& item) {
  if (message_.size() - at_ < 3) return false;
  int base = 0;
  switch (Upper(message_[at_ + 1])) {
    case 'H':
      base = 16;
      break;
    case 'Q':
      base = 8;
      break;
    case 'B':
      base = 2;
      break;
    default:
      return false;
  }
  std::uint32_t value = 0;
  const char* const first = message_.data() + at_ + 2;
  const auto [end, error] = std::from_chars(first, message_.data() + message_.size(), value, base);
  if (error != std::errc() || end == first) return false;
  const auto length = static_cast<std::size_t>(end - (message_.data() + at_));
  item.Kind = ItemKind::Number;
  item.Raw = message_.substr(at_, length);
  item.Value = value;
  at_ += length;
  return true;
}

// Blanks are allowed on both sides of the E of an exponent (IEEE 488.2, 7.7.2.2). Returns the
// position after an exponent that starts here; the position itself if there is none.
std::size_t MessageReader::SpacedExponent(std::size_t from) const {
  std::size_t at = from;
  const auto skip = [&] {
    while (at < message_.size() && IsBlank(message_[at])) ++at;
  };
  skip();
  if (at >= message_.size() || Upper(message_[at]) != 'E') return from;
  ++at;
  skip();
  if (at < message_.size() && (message_[at] == '+' || message_[at] == '-')) ++at;
  const std::size_t first = at;
  while (at < message_.size() && IsDigit(message_[at])) ++at;
  return at > first ? at : from;
}

bool MessageReader::ReadNumber(Unit& unit, Item& item) {
  const std::size_t begin = at_;
  const std::size_t sign = Peek() == '+' || Peek() == '-' ? 1 : 0;
  const std::size_t digits = begin + (Peek() == '+' ? 1 : 0);
  if (begin + sign >= message_.size() ||
      !(IsDigit(message_[begin + sign]) || message_[begin + sign] == '.'))
    return Fail(unit, kSyntaxError, "a number is malformed");
  const char* const first = message_.data() + digits;
  const auto [end, error] = std::from_chars(first, message_.data() + message_.size(), item.Value);
  if (error == std::errc::invalid_argument)
    return Fail(unit, kSyntaxError, "a number is malformed");
  at_ = static_cast<std::size_t>(end - message_.data());
  std::errc range = error;
  const std::string_view digitsRead = message_.substr(digits, at_ - digits);
  if (const std::size_t past = SpacedExponent(at_);
      past > at_ && digitsRead.find_first_of("eE") == std::string_view::npos) {
    std::string joined(digitsRead);
    for (const char c : message_.substr(at_, past - at_))
      if (!IsBlank(c) && c != '+') joined += c;
    range = std::from_chars(joined.data(), joined.data() + joined.size(), item.Value).ec;
    at_ = past;
  }
  item.Kind = ItemKind::Number;
  item.Raw = message_.substr(begin, at_ - begin);
  if (range == std::errc::result_out_of_range)
    return Fail(unit, kOutOfRange, std::string(item.Raw.substr(0, 40)));
  std::size_t at = at_;
  while (at < message_.size() && IsBlank(message_[at])) ++at;
  if (at < message_.size() && IsLetter(message_[at])) {
    at_ = at;
    while (!AtEnd() && IsNameChar(Peek())) ++at_;
    item.Unit = message_.substr(at, at_ - at);
  }
  return true;
}

}  // namespace qk::scpi
