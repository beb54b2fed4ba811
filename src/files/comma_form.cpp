// SPDX-License-Identifier: MIT
#include "files/comma_form.h"

#include <algorithm>
#include <cmath>

#include "core/characters.h"
#include "core/text.h"

namespace qk {

namespace {
bool IsLineEnd(char c) {
  return c == '\r' || c == '\n';
}

bool EndsToken(char c) {
  return c == ',' || IsSpaceInLine(c) || IsLineEnd(c);
}

// An unexpected item for a message: short and printable.
std::string Shown(std::string_view item) {
  constexpr std::size_t kMost = 40;
  std::string shown(item.substr(0, kMost));
  std::replace_if(
      shown.begin(), shown.end(), [](char c) { return c < ' ' || c > '~'; }, '.');
  return item.size() > kMost ? shown + "..." : shown;
}

std::string Expected(std::string_view what, std::string_view item) {
  return std::string(what) + " is expected, not '" + Shown(item) + "'";
}

// Line numbers start at 1; lines end with CR LF, LF or CR.
long LineOf(std::string_view bytes, std::size_t at) {
  long line = 1;
  for (std::size_t i = 0; i < at; ++i)
    if (bytes[i] == '\n' || (bytes[i] == '\r' && bytes.substr(i + 1, 1) != "\n")) ++line;
  return line;
}

bool Same(std::string_view item, std::string_view lowerCase) {
  return std::equal(item.begin(), item.end(), lowerCase.begin(), lowerCase.end(),
                    [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a - 'A' + 'a' : a) == b; });
}

// The beginning of a text, not cut inside a UTF-8 character.
std::string_view Clipped(std::string_view text) {
  if (text.size() <= kMaxText) return text;
  std::size_t size = kMaxText;
  while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80) --size;
  return text.substr(0, size);
}
}  // namespace

void CommaWriter::Print(std::string_view text) {
  bytes_ += text;
  bytes_ += "\r\n";
}

void CommaWriter::Item(std::string_view text) {
  bytes_ += '"';
  for (const char c : Clipped(text)) {
    if (c == '"') bytes_ += '"';
    bytes_ += IsLineEnd(c) ? ' ' : c;
  }
  bytes_ += "\",";
}

inline void CommaReader::SkipBetween() {
  while (at_ != end_ && (IsSpaceInLine(*at_) || IsLineEnd(*at_))) ++at_;
}

inline bool CommaReader::Begin() {
  if (!Good()) return false;
  item_ = at_;
  SkipBetween();
  if (at_ == end_) {
    Cut("the file ends too soon");
    return false;
  }
  item_ = at_;
  return true;
}

inline void CommaReader::Finish() {
  while (at_ != end_ && IsSpaceInLine(*at_)) ++at_;
  if (at_ != end_ && *at_ == ',') ++at_;
}

std::string_view CommaReader::Token() const {
  return {at_, std::find_if(at_, end_, EndsToken)};
}

std::string CommaReader::Quoted() {
  std::string text;
  for (++at_;; ++at_) {
    if (at_ == end_) {
      Cut("a text is not closed");
      return {};
    }
    const char c = *at_;
    if (IsLineEnd(c) || text.size() > kMaxText) break;
    if (c != '"') {
      text += c;
    } else if (at_ + 1 != end_ && at_[1] == '"') {
      text += '"';
      ++at_;
    } else {
      ++at_;
      if (at_ != end_ && !EndsToken(*at_)) Refuse("a text is not closed by a comma");
      Finish();
      return text;
    }
  }
  Refuse(text.size() > kMaxText ? "a text is too long" : "a text is not closed");
  return {};
}

void CommaReader::Item(std::string& text) {
  if (!Begin()) return;
  if (*at_ != '"') {
    Refuse(Expected("a text in quotes", Token()));
    return;
  }
  std::string read = Quoted();
  if (Good()) text = std::move(read);
}

void CommaReader::Item(bool& flag) {
  if (!Begin()) return;
  const std::string_view token = Token();
  const bool on = Same(token, "#true#") || Same(token, "true");
  if (!on && !Same(token, "#false#") && !Same(token, "false")) {
    if (at_ + token.size() == end_) Cut("the file ends inside a flag");
    Refuse(Expected("#TRUE# or #FALSE#", token));
    return;
  }
  flag = on;
  at_ += token.size();
  Finish();
}

template <std::floating_point T>
void CommaReader::Number(T& value) {
  if (!Begin()) return;
  const char* const digits = at_ + (*at_ == '+' && at_ + 1 != end_ && at_[1] != '-');
  T read = 0;
  const std::from_chars_result result = std::from_chars(digits, end_, read);
  if (result.ec == std::errc::result_out_of_range) {  // too small is 0, too large is an error
    double wide = std::numeric_limits<double>::infinity();
    ParseNumber(Token(), wide);
    read = std::fabs(wide) < 1 ? T(0) : std::numeric_limits<T>::infinity();
  } else if (result.ec != std::errc{} || (result.ptr != end_ && !EndsToken(*result.ptr))) {
    if (at_ + Token().size() == end_) Cut("the file ends inside a number");
    Refuse(Expected("a number", Token()));
    return;
  }
  if (!std::isfinite(read)) {
    Refuse("the number '" + Shown(Token()) + "' is out of range");
    return;
  }
  if (result.ptr == end_) {  // it may have had more digits
    Cut("the file ends inside a number");
    return;
  }
  value = read;
  at_ = result.ptr;
  Finish();
}

void CommaReader::Item(float& value) {
  Number(value);
}

void CommaReader::Item(double& value) {
  Number(value);
}

template <std::integral T>
void CommaReader::Whole(T& value) {
  double read = 0;
  Number(read);
  if (!Good()) return;
  if (read != std::trunc(read) || read < std::numeric_limits<T>::min() ||
      read > std::numeric_limits<T>::max()) {
    Refuse(Expected("a whole number from " + std::to_string(std::numeric_limits<T>::min()) +
                        " to " + std::to_string(std::numeric_limits<T>::max()),
                    PlainNumber(read)));
    return;
  }
  value = static_cast<T>(read);
}

void CommaReader::Item(std::int16_t& value) {
  Whole(value);
}

void CommaReader::Item(std::int32_t& value) {
  Whole(value);
}

bool CommaReader::Takes(std::string_view text) {
  const CommaReader before = *this;
  const bool taken = AnyItem() == text && Good();
  if (!taken) *this = before;
  return taken;
}

std::string CommaReader::AnyItem() {
  if (!Good() || AtEnd()) return {};
  item_ = at_;
  if (*at_ == '"') return Quoted();
  const std::string_view rest(at_, end_);
  std::string_view item = rest.substr(0, kMaxText);
  item = item.substr(0, item.find_first_of(",\r\n"));
  at_ += item.size();
  while (!item.empty() && IsSpaceInLine(item.back())) item.remove_suffix(1);
  Finish();
  return std::string(item);
}

bool CommaReader::AtEnd() {
  SkipBetween();
  return at_ == end_;
}

void CommaReader::Refuse(std::string cause) {
  if (Good()) cause_ = std::move(cause);
}

void CommaReader::Cut(std::string cause) {
  Refuse(std::move(cause));
  ended_ = true;
}

Failure CommaReader::Why() const {
  const long line = LineOf(bytes_, static_cast<std::size_t>(item_ - bytes_.data()));
  return {"line " + std::to_string(line) + ": " + cause_, ""};
}

}  // namespace qk
