// SPDX-License-Identifier: MIT
// The command set of the instrument's controller. This is the only file that defines the bytes of a
// command.
//
// Framing. The program is the master. A command is one or two ASCII letters, followed by raw
// argument bytes (0 to 255 each, high byte of a number first). There is no terminator, no length
// and no checksum, and no marker at the start of a reply: a reply has the length that is fixed for
// its command, and nothing may be sent before all of it has arrived. The instrument reads commands
// as a stream, so letters, arguments and data may be sent in one write or in several.
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
// Samples. Three bytes, high byte first: the sum of the converter readings, one per average.
//   M, S   12 bytes a point: reference I, test I, reference Q, test Q
//   YO     18: reference I, port 2 I, port 1 I, reference Q, port 2 Q, port 1 Q
//   A      36: the 18 with the source on port 1, then the same with the source on port 2
//
// Firmware quirks.
//   - "Q" answers "R" or "S". The difference is unknown; either means that the controller is alive.
//   - Bulk writes ("W", "EE", "N") have no reply: the "Q" that follows waits until the controller
//   has
//     processed the block.
//   - "C" changes the measurement path: the path command must follow. It always sums 256 readings,
//     whatever the number of averages.
//   - Only firmware above 1.0 supports "O"; older controllers finish the sweep.
//   - "YI" and "YK" count the points from 1.
//   - "Q" in the middle of a sweep has no defined effect: only one exchange at a time.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "link/instrument_link.h"

namespace qk::command {

inline constexpr std::string_view kStatus = "Q";
inline constexpr std::string_view kIdentify = "*IDN?";
inline constexpr std::string_view kModel = "QK47-20-09";  // start of the reply to kIdentify
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
inline constexpr std::string_view kLevelCodes = "N";    // then one code per point
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

// Time-outs in ms. Each is the maximum silence before the next byte (for the abort: the maximum
// total time). A live controller starts to answer "Q" within a few ms; scanning 16 silent ports
// must not take noticeably long.
inline constexpr int kScanTimeout = 100;
// The longest time that the controller may take to process a block of "W" or "EE".
inline constexpr int kLinkCheckTimeout = 2000;
// The longest stream that can precede the identity after the line got out of step: the rest of the
// longest sweep.
inline constexpr int kStepTimeout = 5000;
// Short texts from the controller's memory, read at start-up, which must be fast.
inline constexpr int kShortReadTimeout = 100;
// After the three characters of the version: time for one more from a slow adaptor.
inline constexpr int kVersionQuiet = 20;
// An EEPROM block (64 or 120 bytes take 6 to 10 ms on the line), with a margin for the slow EEPROM
// bus.
inline constexpr int kEepromBlockTimeout = 200;
// Blocks of 128 bytes of a back-up. A lost block would invalidate the whole copy, and speed does
// not matter here.
inline constexpr int kEepromBackupTimeout = 500;
// Hardware information, read on request: a long wait is better than a missing field.
inline constexpr int kHardwareInfoTimeout = 5000;
// 256 readings of both channels, and settling at the offset point.
inline constexpr int kOffsetsTimeout = 2000;
// Single readings at the current point ("T", "YJ", "Y9"). Each takes less than a tenth of this; a
// dead link must not block the program.
inline constexpr int kReadingTimeout = 2000;
// One sample of one channel at 128 averages.
inline constexpr int kSampleTimeout = 200;
// From "O" to the "XX" that ends the stream. Also the longest wait for a stream to end when the
// line is out of step.
inline constexpr int kDrainTimeout = 1000;
// A stream has ended when the line has been quiet for this time. It has no end mark except the "XX"
// of an abort, and sample data may contain those bytes too.
inline constexpr int kStreamQuiet = 20;

// Sweep RAM: number of points (2 bytes) at address 0, then the records, 22 bytes per point. The
// record for measuring the receiver's offsets is at a separate address.
inline constexpr int kRecordLength = 22;
inline constexpr int kFirstRecordAddress = 2;
inline constexpr int kOffsetRecordAddress = 32738;

inline int HighByte(int x) {
  return x / 256;
}
inline int LowByte(int x) {
  return x % 256;
}

// The state of a reply with a known length. Because nothing marks the start of a reply, no byte of
// a reply that is too long can be trusted.
enum class ReplyState { NeedMore, Whole, TooLong };
constexpr ReplyState StateOfReply(std::size_t received, std::size_t expected) {
  if (received < expected) return ReplyState::NeedMore;
  return received == expected ? ReplyState::Whole : ReplyState::TooLong;
}

// True if the answer to "Q" begins with "R" or "S".
bool IsSignOfLife(std::span<const std::uint8_t> reply);

}  // namespace qk::command
