// SPDX-License-Identifier: MIT
// The command set of the instrument's controller: the only place that states a command's bytes.
//
// Framing. The program is the master; a command is one or two ASCII letters, followed by raw
// argument bytes (0 to 255 each, high byte of a number first). There is no terminator, no length
// and no checksum, and nothing in a reply tells where it begins: a reply is as many bytes as the
// command is known to give, and nothing may be sent before it is there. The instrument takes a
// command as a stream, so that letters, arguments and data may go out in one write or in many.
//
// Examples (text, then hex; > sent, < received):
//
//   link check         > Q                  51               < R                52 (or S, 53)
//   identity           > *IDN?              2A 49 44 4E 3F   < QK47-20-09 and two more characters
//   firmware           > V                  56               < 1.2              31 2E 32
//   EEPROM, 4 bytes    > P 4 0 10           50 04 00 0A      < 0147             30 31 34 37
//   EEPROM, 120 bytes  > P 120 43 0         50 78 2B 00      < 120 bytes from address 11008
//   101 points follow  > W 2 0 0 0 101      57 02 00 00 00 65        (no reply)
//   a block of records > W 125 0 2          57 7D 00 02, then 125 bytes (no reply; Q paces)
//   offset point       > W 22 127 226       57 16 7F E2, then 22 bytes
//   offsets            > C                  43               < 6 bytes: I, then Q
//   temperature        > T                  54               < 02 E6: count 742
//   averages, 16       > Y8 16              59 38 10         (no reply)
//   one S11 sweep      > M                  4D               < 12 bytes a point, no end mark
//   abort              > O                  4F               < rest of the stream, then XX (58 58)
//
// Samples. Three bytes, high first: the sum of as many converter readings as there are averages.
//   M, S   12 bytes a point: reference I, test I, reference Q, test Q
//   YO     18: reference I, port 2 I, port 1 I, reference Q, port 2 Q, port 1 Q
//   A      36: the 18 with the source on port 1, then the same with the source on port 2
//
// Oddities of the firmware.
//   - "Q" answers "R" or "S"; nothing is known of the difference, either is a sign of life.
//   - Bulk writes ("W", "EE", "N") answer nothing: the "Q" behind them waits until the controller
//     has digested the block.
//   - "C" leaves the measurement path disturbed: the path command must follow. It always sums 256
//     readings, whatever the averages are.
//   - "O" is known to firmware above 1.0 only; older controllers run the sweep out.
//   - "YI" and "YK" count the points from 1.
//   - "Q" in the middle of a sweep is read as nothing sensible: one exchange at a time.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "link/instrument_link.h"

namespace qk::command {

inline constexpr std::string_view kStatus = "Q";
inline constexpr std::string_view kIdentify = "*IDN?";
inline constexpr std::string_view kModel = "QK47-20-09";  // begins the reply to kIdentify
inline constexpr std::string_view kVersion = "V";
inline constexpr std::string_view kPathS11 = "YF";
inline constexpr std::string_view kPathS21 = "YE";
inline constexpr std::string_view kPathAll = "YG";
inline constexpr std::string_view kPathS11S21 = "YP";
inline constexpr std::string_view kSweepS11 = "M";
inline constexpr std::string_view kSweepS21 = "S";
inline constexpr std::string_view kSweepS11S21 = "YO";
inline constexpr std::string_view kSweepAll = "A";
inline constexpr std::string_view kAbort = "O";
inline constexpr std::string_view kOffsets = "C";
inline constexpr std::string_view kTemperature = "T";
inline constexpr std::string_view kLevelCodes = "N";    // then one code a point
inline constexpr std::string_view kPointLevel = "YK";   // then point high, low, code
inline constexpr std::string_view kSelectPoint = "YI";  // then point high, low
inline constexpr std::string_view kTakeReading = "YJ";
inline constexpr std::string_view kLockStatus = "Y9";
inline constexpr std::string_view kReferenceI = "Y0";
inline constexpr std::string_view kReferenceQ = "Y1";
inline constexpr std::string_view kTestI = "Y2";
inline constexpr std::string_view kTestQ = "Y3";

Bytes ReadEeprom(int count, int address);     // "P" n hi lo
Bytes WriteEeprom(int count, int address);    // "EE" n hi lo, then count data bytes
Bytes WriteSweepRam(int count, int address);  // "W" n hi lo, then count data bytes
Bytes Dwell(bool on);                         // "D" n
Bytes SetAverages(int count);                 // "Y8" n
Bytes ContinuousWave();                       // "Z" 0

// Reply lengths in bytes.
inline constexpr std::size_t kIdentityLength = 12;
inline constexpr std::size_t kVersionLength = 3;
inline constexpr std::size_t kOffsetsLength = 6;
inline constexpr std::size_t kTemperatureLength = 2;
inline constexpr std::size_t kReadingLength = 12;
inline constexpr std::size_t kSampleLength = 3;

// Time-outs in ms, each for the silence before the next byte (or, for the abort, for all of it).
// A live controller starts to answer "Q" within a few ms; 16 silent ports should not take longer
// than a breath.
inline constexpr int kScanTimeout = 100;
// The longest that the controller may take to digest a block of "W" or "EE".
inline constexpr int kLinkCheckTimeout = 2000;
// All that a line out of step may send before the identity: the rest of the longest sweep.
inline constexpr int kStepTimeout = 5000;
// Short texts out of the controller's memory, at start-up, where nobody wants to wait.
inline constexpr int kShortReadTimeout = 100;
// Behind the three characters of the version, for one that a busy adaptor brings later.
inline constexpr int kVersionQuiet = 20;
// A block of the EEPROM (64 or 120 bytes are 6 to 10 ms on the line) with room for its slow bus.
inline constexpr int kEepromBlockTimeout = 200;
// Blocks of 128 bytes of a back-up: a lost block would cost the whole copy, and nobody is in a
// hurry there.
inline constexpr int kEepromBackupTimeout = 500;
// Hardware information, read on request: it would rather wait than lose a field.
inline constexpr int kHardwareInfoTimeout = 5000;
// 256 readings of both channels and the settling of the offset point.
inline constexpr int kOffsetsTimeout = 2000;
// Single readings at the present point ("T", "YJ", "Y9"): none takes a tenth of it, and
// a dead link must not hold the program.
inline constexpr int kReadingTimeout = 2000;
// One sample of one channel at 128 averages.
inline constexpr int kSampleTimeout = 200;
// From "O" to the "XX" that closes the stream, and the longest wait for a stream out of step to
// end.
inline constexpr int kDrainTimeout = 1000;
// A stream is over when the line has been quiet for so long: it has no end mark but an abort's
// "XX", and sample data may hold that too.
inline constexpr int kStreamQuiet = 20;

// Sweep RAM: number of points (2 bytes) at 0, then the records, 22 bytes a point; the record that
// the receiver's offsets are measured with stands by itself.
inline constexpr int kRecordLength = 22;
inline constexpr int kFirstRecordAddress = 2;
inline constexpr int kOffsetRecordAddress = 32738;

inline int HighByte(int x) {
  return x / 256;
}
inline int LowByte(int x) {
  return x % 256;
}

// What has come of a reply of known length. Since nothing marks a reply's beginning, one that is
// too long cannot be trusted at any byte.
enum class ReplyState { NeedMore, Whole, TooLong };
constexpr ReplyState StateOfReply(std::size_t received, std::size_t expected) {
  if (received < expected) return ReplyState::NeedMore;
  return received == expected ? ReplyState::Whole : ReplyState::TooLong;
}

// True when the answer to "Q" begins with "R" or "S".
bool IsSignOfLife(std::span<const std::uint8_t> reply);

}  // namespace qk::command
