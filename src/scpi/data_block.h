// SPDX-License-Identifier: MIT
// Numbers as clients take them: a list in ASCII, or a block of 32-bit or 64-bit numbers in either
// order of bytes. A block is "#", the number of digits of its length, the length, the bytes.
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
// swapped: the low byte first.
std::string DataText(std::span<const double> values, DataForm form, bool swapped);
// The numbers in the bytes of a block (not the block's head); nothing when they are no whole
// numbers of that form, or for ASCII. What is not finite stays so.
std::optional<std::vector<double>> NumbersIn(std::string_view bytes, DataForm form, bool swapped);

}  // namespace qk::scpi
