// SPDX-License-Identifier: MIT
// The errors of remote control: their numbers, their standard texts, and their format.
#pragma once

#include <string>
#include <string_view>

namespace qk::scpi {

// Numbers and texts of SCPI-1999, volume 2, chapter 21.
inline constexpr int kNoError = 0;
inline constexpr int kInvalidCharacter = -101;
inline constexpr int kSyntaxError = -102;
inline constexpr int kInvalidSeparator = -103;
inline constexpr int kDataType = -104;
inline constexpr int kTooManyParameters = -108;
inline constexpr int kMissingParameter = -109;
inline constexpr int kUndefinedHeader = -113;
inline constexpr int kSuffixOutOfRange = -114;
inline constexpr int kInvalidUnit = -131;
inline constexpr int kInvalidWord = -141;
inline constexpr int kInvalidString = -151;
inline constexpr int kInvalidBlock = -161;
inline constexpr int kExecution = -200;
inline constexpr int kInitIgnored = -213;
inline constexpr int kSettingsConflict = -221;
inline constexpr int kOutOfRange = -222;
inline constexpr int kIllegalValue = -224;
inline constexpr int kStaleData = -230;
inline constexpr int kHardware = -240;
inline constexpr int kMassStorage = -250;
inline constexpr int kFileNotFound = -256;
inline constexpr int kFileName = -257;
inline constexpr int kQueueOverflow = -350;
inline constexpr int kInputOverrun = -363;

struct Error {
  int Number = kNoError;
  std::string Detail;  // follows the standard text after a semicolon; may be empty
};

// The standard text of a number; "Execution error" for one that is not listed.
std::string_view TextOf(int number);
// -113,"Undefined header;FOO": quotes inside are doubled, bytes that are not printable ASCII become
// a question mark, and the text in quotes has at most 255 characters.
std::string ErrorText(const Error& error);
// The bit of the standard event register for an error: 5 for a command error, 4 for an execution
// error, 3 for a device error; -1 for none.
int EventBitOf(int number);

}  // namespace qk::scpi
