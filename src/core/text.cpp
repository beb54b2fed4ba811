// SPDX-License-Identifier: MIT
// Conversion between numbers and text with decimal digits, independent of the locale.
#include "core/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "core/characters.h"

namespace qk {

namespace {

// A decimal number 0.d1d2d3... * 10^Point. Zero has no digits; otherwise the first digit is not 0.
struct Decimal {
  bool Negative = false;
  std::string Digits;
  int Point = 0;
};

// The shortest digits that read back to the value; zero if it is not finite.
template <class Float>
Decimal ShortestDecimal(Float value) {
  Decimal d;
  if (!std::isfinite(value) || value == 0) return d;
  std::array<char, 40> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::fabs(value),
                                 std::chars_format::scientific)
                       .ptr;
  const char* at = buffer.data();
  for (; at != end && *at != 'e'; ++at)
    if (*at != '.') d.Digits += *at;
  const bool below = at[1] == '-';
  int exponent = 0;
  std::from_chars(at + 2, end, exponent);
  d.Point = (below ? -exponent : exponent) + 1;
  d.Negative = value < 0;
  return d;
}

// Keeps count digits, rounded half away from zero. A carry out of the first digit moves Point.
void RoundDigits(Decimal& d, int count) {
  if (count >= static_cast<int>(d.Digits.size())) return;
  if (count < 0) {
    d.Digits.clear();
    return;
  }
  const bool up = d.Digits[static_cast<std::size_t>(count)] >= '5';
  d.Digits.resize(static_cast<std::size_t>(count));
  if (!up) return;
  std::size_t i = d.Digits.size();
  while (i > 0 && d.Digits[i - 1] == '9') d.Digits[--i] = '0';
  if (i > 0) {
    ++d.Digits[i - 1];
  } else {
    d.Digits.insert(d.Digits.begin(), '1');
    ++d.Point;
  }
}

// The digit at a decimal place (0 the units, 1 the tens, -1 the tenths).
char DigitAt(const Decimal& d, int place) {
  const int index = d.Point - 1 - place;
  if (index < 0 || index >= static_cast<int>(d.Digits.size())) return '0';
  return d.Digits[static_cast<std::size_t>(index)];
}

// The contents of a picture: mandatory digits, and the maximum number of decimals.
struct Picture {
  int WholeDigits = 0;
  int Decimals = 0;
  int MostDecimals = 0;
  bool HasPoint = false;
  bool HasExponent = false;
  bool ExponentSign = false;  // "E+": show the sign for positive exponents too
  int ExponentDigits = 0;
};

Picture ReadPicture(std::string_view text) {
  Picture p;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '.') {
      p.HasPoint = true;
    } else if (c == 'E') {
      p.HasExponent = true;
      p.ExponentSign = i + 1 < text.size() && text[i + 1] == '+';
      ++i;
    } else if (p.HasExponent) {
      ++p.ExponentDigits;
    } else if (p.HasPoint) {
      ++p.MostDecimals;
      if (c == '0') p.Decimals = p.MostDecimals;
    } else if (c == '0') {
      ++p.WholeDigits;
    }
  }
  return p;
}

// The digits before and after the point, as the picture requires.
std::string InPicture(const Decimal& d, const Picture& p) {
  std::string out;
  if (d.Negative && !d.Digits.empty()) out += '-';
  const int whole = std::max(d.Digits.empty() ? 0 : d.Point, p.WholeDigits);
  for (int place = whole - 1; place >= 0; --place) out += DigitAt(d, place);
  int decimals = p.MostDecimals;
  while (decimals > p.Decimals && DigitAt(d, -decimals) == '0') --decimals;
  if (p.HasPoint) out += '.';
  for (int place = 1; place <= decimals; ++place) out += DigitAt(d, -place);
  return out;
}

void AppendExponent(std::string& out, int exponent, bool showPlus, int leastDigits) {
  out += 'E';
  if (exponent < 0) out += '-';
  if (exponent >= 0 && showPlus) out += '+';
  std::string digits = std::to_string(std::abs(exponent));
  while (static_cast<int>(digits.size()) < leastDigits) digits.insert(digits.begin(), '0');
  out += digits;
}

template <class Float>
std::string ShortestText(Float value) {
  Decimal d = ShortestDecimal(value);
  Picture p;
  p.WholeDigits = 1;
  if (d.Digits.empty()) return "0";
  const int exponent = d.Point - 1;
  const bool plain = exponent >= -5 && exponent < 15;
  if (!plain) d.Point = 1;
  p.MostDecimals = std::max(0, static_cast<int>(d.Digits.size()) - d.Point);
  p.HasPoint = p.MostDecimals > 0;
  std::string out = InPicture(d, p);
  if (!plain) AppendExponent(out, exponent, true, 2);
  return out;
}

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

// The length of the number at the start of text, without its sign; 0 if there is no digit.
std::size_t NumberLength(std::string_view text) {
  std::size_t i = 0;
  std::size_t digits = 0;
  while (i < text.size() && IsDigit(text[i])) ++i, ++digits;
  if (i < text.size() && text[i] == '.') {
    ++i;
    while (i < text.size() && IsDigit(text[i])) ++i, ++digits;
  }
  if (digits == 0) return 0;
  if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
    std::size_t j = i + 1;
    if (j < text.size() && (text[j] == '+' || text[j] == '-')) ++j;
    const std::size_t first = j;
    while (j < text.size() && IsDigit(text[j])) ++j;
    if (j > first) i = j;
  }
  return i;
}

// For an unsigned number outside the range of double: true if it is too large, false if it is too
// small.
bool IsOverflow(std::string_view number) {
  const std::size_t mark = std::min(number.find_first_of("eE"), number.size());
  const std::string_view mantissa = number.substr(0, mark);
  const std::size_t lead = mantissa.find_first_of("123456789");
  if (lead == std::string_view::npos) return false;
  const bool down = mark + 1 < number.size() && number[mark + 1] == '-';
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  if (mark == number.size()) return lead < point;
  // The decimal places of the mantissa matter only for an exponent of moderate size.
  long long exponent = 0;
  const std::string_view digits = number.substr(number.find_first_of("0123456789", mark));
  if (std::from_chars(digits.data(), digits.data() + digits.size(), exponent).ec != std::errc{})
    return !down;
  const auto places = static_cast<long long>(point) - static_cast<long long>(lead);
  return (down ? -exponent : exponent) + places > 0;
}

enum class Range { Inside, Above, Below };

// Reads text, which must be a complete number without a sign.
double ReadUnsigned(std::string_view text, Range& range) {
  double value = 0;
  const auto ec = std::from_chars(text.data(), text.data() + text.size(), value).ec;
  range = Range::Inside;
  if (ec == std::errc::result_out_of_range || std::isinf(value)) {
    const bool above = IsOverflow(text);
    range = above ? Range::Above : Range::Below;
    value = above ? std::numeric_limits<double>::max() : 0.0;
  }
  return value;
}

std::string_view SkipBlanks(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  return text;
}

bool TakeSign(std::string_view& text) {
  if (text.empty() || (text.front() != '+' && text.front() != '-')) return false;
  const bool negative = text.front() == '-';
  text.remove_prefix(1);
  return negative;
}

}  // namespace

std::string FormatNumber(double value, std::string_view picture) {
  const Picture p = ReadPicture(picture);
  Decimal d = ShortestDecimal(value);
  if (!p.HasExponent) {
    RoundDigits(d, d.Point + p.MostDecimals);
    return InPicture(d, p);
  }
  RoundDigits(d, 1 + p.MostDecimals);
  const int exponent = d.Digits.empty() ? 0 : d.Point - 1;
  d.Point = 1;
  std::string out = InPicture(d, p);
  AppendExponent(out, exponent, p.ExponentSign, p.ExponentDigits);
  return out;
}

std::string PlainNumber(double value) {
  return ShortestText(value);
}

std::string PlainNumber(float value) {
  return ShortestText(value);
}

std::string WholeNumberText(long value) {
  return (value >= 0 ? " " : "") + std::to_string(value);
}

double Val(std::string_view text) {
  text = SkipBlanks(text);
  const bool negative = TakeSign(text);
  const std::size_t length = NumberLength(text);
  if (length == 0) return 0;
  Range range;
  const double value = ReadUnsigned(text.substr(0, length), range);
  return negative && value != 0 ? -value : value;
}

bool ParseNumber(std::string_view text, double& out) {
  text = Trimmed(text);
  const bool negative = TakeSign(text);
  if (text.empty() || NumberLength(text) != text.size()) return false;
  Range range;
  const double value = ReadUnsigned(text, range);
  if (range == Range::Above) return false;
  out = negative && value != 0 ? -value : value;
  return true;
}

std::string_view Trimmed(std::string_view text) {
  text = SkipBlanks(text);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

std::string AsciiLower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return lower;
}

std::string NextZone(std::string line, std::string_view item) {
  constexpr std::size_t kZone = 14;
  const auto columns = static_cast<std::size_t>(
      std::count_if(line.begin(), line.end(), [](char c) { return (c & 0xC0) != 0x80; }));
  if (!line.empty()) line.append(kZone - columns % kZone, ' ');
  line += item;
  return line;
}

}  // namespace qk
