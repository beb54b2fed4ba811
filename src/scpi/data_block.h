// SPDX-License-Identifier: MIT
// Number formats for clients: an ASCII list, or a block of 32-bit or 64-bit numbers in either byte
// order. A block is "#", the number of digits of its length, the length, the bytes.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qk::scpi {

enum class DataForm : std::uint8_t { Ascii, Real32, Real64 };

std::string BlockOf(std::string_view bytes);
// swapped: little-endian.
std::string DataText(std::span<const double> values, DataForm form, bool swapped);
// Parses the numbers in the bytes of a block (without its header). Empty if they are not a whole
// number of values in that format, or for ASCII. Values that are not finite are kept.
std::optional<std::vector<double>> NumbersIn(std::string_view bytes, DataForm form, bool swapped);

}  // namespace qk::scpi
