// SPDX-License-Identifier: MIT
// The return type of every function that can fail on its input: a value, or the reason why there is
// none. Files, entries and options report errors this way; exchanges with the instrument report
// them in SweepFlags::ReplyTimedOut.
#pragma once

#include <string>
#include <utility>
#include <variant>

namespace qk {

// The reason for a failure: a message for the user, and where it happened (a file, a line, an
// option). Place may be empty.
struct Failure {
  std::string Message;
  std::string Place;

  // "PLACE: MESSAGE", or only the message.
  std::string Text() const { return Place.empty() ? Message : Place + ": " + Message; }
};

// A T or a Failure. Reading the alternative that is not present throws std::bad_variant_access.
template <class T>
class [[nodiscard]] Result {
 public:
  Result(T value) : either_(std::in_place_index<0>, std::move(value)) {}
  Result(Failure failure) : either_(std::in_place_index<1>, std::move(failure)) {}

  bool Ok() const { return either_.index() == 0; }
  explicit operator bool() const { return Ok(); }
  const T& Value() const { return std::get<0>(either_); }
  T& Value() { return std::get<0>(either_); }
  const T& operator*() const { return Value(); }
  T& operator*() { return Value(); }
  const T* operator->() const { return &Value(); }
  T* operator->() { return &Value(); }
  const Failure& Why() const { return std::get<1>(either_); }

 private:
  std::variant<T, Failure> either_;
};

// Success without a value: the result is Done{} or a Failure.
struct Done {};

}  // namespace qk
