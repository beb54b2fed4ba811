// SPDX-License-Identifier: MIT
// The sequential comma form of session and kit files: texts in double quotes, flags #TRUE# and
// #FALSE#, numbers with a point in the shortest form that reads back the same, items of a line
// between commas, lines ended by CR LF. A double quote inside a text is doubled. Nothing asks the
// locale.
//
// The reader goes by item and does not care where lines end: items stand between commas, blanks and
// line ends of any kind. It is strict about the items: a number is all of its item and finite, a
// whole number is one, a text is closed on its line. The first fault stays: what is read after it
// changes nothing.
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

// The longest text of an item; longer ones are cut by the writer and refused by the reader.
inline constexpr std::size_t kMaxText = 1000;

// A number of any kind, flags not among them.
template <class T>
concept CommaNumber = (std::integral<T> || std::floating_point<T>)&&!std::same_as<T, bool> &&
                      !std::same_as<T, char>;

class CommaWriter {
 public:
  explicit CommaWriter(std::size_t expectedBytes = 0) { bytes_.reserve(expectedBytes); }

  // A line of items: texts, flags, numbers. What is not finite is written as 0 (not a number) or as
  // the largest of its type, so that the file reads back.
  template <class... Items>
  void Line(const Items&... items) {
    (Item(items), ...);
    bytes_.back() = '\r';  // in place of the comma behind the last item
    bytes_ += '\n';
  }
  // A line as it is.
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
  // The bytes must outlive the reader. A byte-order mark before them is passed over.
  explicit CommaReader(std::string_view bytes)
      : bytes_(bytes.starts_with("\xEF\xBB\xBF") ? bytes.substr(3) : bytes),
        at_(bytes_.data()),
        end_(at_ + bytes_.size()),
        item_(at_) {}

  // The next items, in order.
  template <class... Items>
  void Line(Items&... items) {
    (Item(items), ...);
  }

  // The next item is the text (in quotes or bare), which is then passed over.
  bool Takes(std::string_view text);
  // The next item as text, whatever it is: what stands in quotes, or as it stands up to the next
  // comma or line end; nothing at the end.
  std::string AnyItem();
  // No item is left.
  bool AtEnd();

  bool Good() const { return cause_.empty(); }
  // The fault was the end of the bytes, in front of an item or inside it.
  bool Ended() const { return ended_; }
  // Notes a fault of the item read last, unless there is one already.
  void Refuse(std::string cause);
  // Message "line 12: CAUSE". Only when not Good().
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

  // Moves to the next item; false when there was a fault, or there is one now: nothing is left.
  bool Begin();
  void SkipBetween();
  // Behind an item: blanks, and a comma or the end of the line.
  void Finish();
  // The bare item that begins here, without moving.
  std::string_view Token() const;
  // A text in quotes that begins here; passed over.
  std::string Quoted();
  void Cut(std::string cause);

  std::string_view bytes_;
  const char* at_;
  const char* end_;
  const char* item_;  // where the item read last begins
  std::string cause_;
  bool ended_ = false;
};

}  // namespace qk
