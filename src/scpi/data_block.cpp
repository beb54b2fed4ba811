// SPDX-License-Identifier: MIT
#include "scpi/data_block.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "scpi/call.h"

namespace qk::scpi {

namespace {

template <class Number>
std::string Bytes(std::span<const double> values, bool swapped) {
  const bool turn = swapped != (std::endian::native == std::endian::little);
  std::string bytes(values.size() * sizeof(Number), '\0');
  char* to = bytes.data();
  for (const double value : values) {
    auto raw = std::bit_cast<std::array<char, sizeof(Number)>>(static_cast<Number>(value));
    if (turn) std::ranges::reverse(raw);
    std::memcpy(to, raw.data(), sizeof(Number));
    to += sizeof(Number);
  }
  return bytes;
}

template <class Number>
std::optional<std::vector<double>> Numbers(std::string_view bytes, bool swapped) {
  if (bytes.size() % sizeof(Number) != 0) return std::nullopt;
  const bool turn = swapped != (std::endian::native == std::endian::little);
  std::vector<double> numbers;
  numbers.reserve(bytes.size() / sizeof(Number));
  for (std::size_t at = 0; at < bytes.size(); at += sizeof(Number)) {
    std::array<char, sizeof(Number)> raw;
    std::memcpy(raw.data(), bytes.data() + at, sizeof(Number));
    if (turn) std::ranges::reverse(raw);
    numbers.push_back(static_cast<double>(std::bit_cast<Number>(raw)));
  }
  return numbers;
}

}  // namespace

std::string BlockOf(std::string_view bytes) {
  const std::string length = std::to_string(bytes.size());
  std::string block = "#" + std::to_string(length.size()) + length;
  return block.append(bytes);
}

std::string DataText(std::span<const double> values, DataForm form, bool swapped) {
  if (form == DataForm::Real32) return BlockOf(Bytes<float>(values, swapped));
  if (form == DataForm::Real64) return BlockOf(Bytes<double>(values, swapped));
  std::string text;
  for (const double value : values) {
    if (!text.empty()) text += ',';
    text += RealText(value);
  }
  return text;
}

std::optional<std::vector<double>> NumbersIn(std::string_view bytes, DataForm form, bool swapped) {
  if (form == DataForm::Real32) return Numbers<float>(bytes, swapped);
  if (form == DataForm::Real64) return Numbers<double>(bytes, swapped);
  return std::nullopt;
}

}  // namespace qk::scpi
