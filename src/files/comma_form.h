// SPDX-License-Identifier: MIT
// The sequential comma format of session and kit files: texts in double quotes, flags #TRUE# and
// #FALSE#, numbers with a decimal point in the shortest form that reads back the same, items of a
// line separated by commas, lines ended by CR LF. A double quote inside a text is doubled.
// Independent of the locale.
//
// The reader works item by item and ignores line structure: commas, blanks and line ends of any
// kind separate items. It is strict about the items: a number must be the whole item and finite, a
// whole number must be whole, a text must be closed on its line. The first error is kept: reading
// after it changes nothing.
#pragma once

#include <charconv>
#include <concepts>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

#include "core/result.h"

namespace qk {

// The maximum length of a text item; the writer truncates longer ones and the reader refuses them.
inline constexpr std::size_t kMaxText = 1000;

// Any number type; bool excluded.
template <class T>
concept CommaNumber = (std::integral<T> || std::floating_point<T>)&&!std::same_as<T, bool> &&
                      !std::same_as<T, char>;

class CommaWriter {
 public:
  explicit CommaWriter(std::size_t expectedBytes = 0) { bytes_.reserve(expectedBytes); }

  // Writes a line of items: texts, flags, numbers. NaN is written as 0 and an infinity as the
  // largest value of its type, so that the file reads back.
  template <class... Items>
  void Line(const Items&... items) {
    (Item(items), ...);
    bytes_.back() = '\r';  // replaces the comma after the last item
    bytes_ += '\n';
  }
  // Writes a line unchanged.
  void Print(std::string_view text);

  const std::string& Bytes() const& { return bytes_; }
  std::string Bytes() && { return std::move(bytes_); }

 private:
  void Item(std::string_view text);
  void Item(const char* text) { Item(std::string_view(text)); }
  void Item(std::same_as<bool> auto flag) { bytes_ += flag ? "#TRUE#," : "#FALSE#,"; }
  template <CommaNumber T>
  void Item(T value) {
    if constexpr (std::floating_point<T>) {
      if (!(value >= std::numeric_limits<T>::lowest() && value <= std::numeric_limits<T>::max()))
        value = Finite(value);
    }
    char digits[40];
    char* const end = std::to_chars(digits, digits + sizeof digits - 1, value).ptr;
    *end = ',';
    bytes_.append(digits, end + 1);
  }
  template <class T>
  static T Finite(T value) {
    if (value != value) return 0;
    return value > 0 ? std::numeric_limits<T>::max() : std::numeric_limits<T>::lowest();
  }

  std::string bytes_;
};

class CommaReader {
 public:
  // The bytes must outlive the reader. Skips a byte-order mark at the start.
  explicit CommaReader(std::string_view bytes)
      : bytes_(bytes.starts_with("\xEF\xBB\xBF") ? bytes.substr(3) : bytes),
        at_(bytes_.data()),
        end_(at_ + bytes_.size()),
        item_(at_) {}

  // Reads the next items, in order.
  template <class... Items>
  void Line(Items&... items) {
    (Item(items), ...);
  }

  // If the next item is the text (in quotes or bare), skips it and returns true.
  bool Takes(std::string_view text);
  // The next item of any kind as text: the content of the quotes, or everything up to the next
  // comma or line end; empty at the end.
  std::string AnyItem();
  // True if no item is left.
  bool AtEnd();

  bool Good() const { return cause_.empty(); }
  // True if the error was the end of the bytes, before an item or inside it.
  bool Ended() const { return ended_; }
  // Records an error in the item read last, unless there is one already.
  void Refuse(std::string cause);
  // Message "line 12: CAUSE". Only if not Good().
  Failure Why() const;

 private:
  void Item(std::string& text);
  void Item(bool& flag);
  void Item(std::int16_t& value);
  void Item(std::int32_t& value);
  void Item(float& value);
  void Item(double& value);
  template <std::floating_point T>
  void Number(T& value);
  template <std::integral T>
  void Whole(T& value);

  // Moves to the next item; false if there was an error or nothing is left, which is an error.
  bool Begin();
  void SkipBetween();
  // After an item: skips blanks, and a comma or the end of the line.
  void Finish();
  // The bare item at the current position; does not move.
  std::string_view Token() const;
  // Reads and skips the quoted text at the current position.
  std::string Quoted();
  void Cut(std::string cause);

  std::string_view bytes_;
  const char* at_;
  const char* end_;
  const char* item_;  // start of the item read last
  std::string cause_;
  bool ended_ = false;
};

}  // namespace qk
