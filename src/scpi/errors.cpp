// SPDX-License-Identifier: MIT
#include "scpi/errors.h"

#include <algorithm>
#include <array>

namespace qk::scpi {

namespace {
struct ErrorRow {
  int Number;
  std::string_view Text;
};
constexpr std::array<ErrorRow, 26> kErrorRows{{{kNoError, "No error"},
                                               {kInvalidCharacter, "Invalid character"},
                                               {kSyntaxError, "Syntax error"},
                                               {kInvalidSeparator, "Invalid separator"},
                                               {kDataType, "Data type error"},
                                               {kTooManyParameters, "Parameter not allowed"},
                                               {kMissingParameter, "Missing parameter"},
                                               {kUndefinedHeader, "Undefined header"},
                                               {kSuffixOutOfRange, "Header suffix out of range"},
                                               {kInvalidUnit, "Invalid suffix"},
                                               {kInvalidWord, "Invalid character data"},
                                               {kInvalidString, "Invalid string data"},
                                               {kInvalidBlock, "Invalid block data"},
                                               {kExecution, "Execution error"},
                                               {kInitIgnored, "Init ignored"},
                                               {kSettingsConflict, "Settings conflict"},
                                               {kOutOfRange, "Data out of range"},
                                               {kIllegalValue, "Illegal parameter value"},
                                               {kStaleData, "Data corrupt or stale"},
                                               {kHardware, "Hardware error"},
                                               {kMassStorage, "Mass storage error"},
                                               {kFileNotFound, "File name not found"},
                                               {kFileName, "File name error"},
                                               {kQueueOverflow, "Queue overflow"},
                                               {kInputOverrun, "Input buffer overrun"},
                                               {-300, "Device-specific error"}}};
constexpr std::size_t kLongest = 255;
}  // namespace

std::string_view TextOf(int number) {
  const auto row = std::ranges::find(kErrorRows, number, &ErrorRow::Number);
  return row == kErrorRows.end() ? "Execution error" : row->Text;
}

std::string ErrorText(const Error& error) {
  std::string text(TextOf(error.Number));
  if (!error.Detail.empty()) text += ";" + error.Detail;
  if (text.size() > kLongest) text.resize(kLongest);
  std::string written = std::to_string(error.Number) + ",\"";
  for (const char c : text) {
    const bool printable = c >= ' ' && c <= '~';
    written += printable ? c : '?';
    if (c == '"') written += c;
  }
  return written + "\"";
}

int EventBitOf(int number) {
  if (number <= -100 && number > -200) return 5;
  if (number <= -200 && number > -300) return 4;
  if (number <= -300 && number > -400) return 3;
  return -1;
}

}  // namespace qk::scpi
