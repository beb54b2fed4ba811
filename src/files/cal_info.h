// SPDX-License-Identifier: MIT
// The file next to a session file that stores when and under which conditions its calibration was
// made: "NAME.cal" has "NAME.cal-info". The fixed format of session files has no room for this.
// Lines:
//
//   QK47-20-09 calibration record 1
//   session 0123456789abcdef          FNV-1a hash (64 bit) of the session file's bytes
//   made 2026-11-22T10:12:00Z
//   temperature 24.1                  degrees Celsius; omitted if unknown
//   kit1 Default
//   kit2 Default
//   limit 1 500 1080.5 0 -40          the typed frequencies of a limit segment that Apply moved to
//                                     points of the sweep: channel, start and stop in MHz, upper
//                                     and lower limit; one line per segment, omitted if they are
//                                     equal
//
// The hash ties the two files together: if another program has written the session file, the record
// is no longer valid. While the session file is being replaced, the file holds the records of the
// new and of the old session file, one after the other; the reader takes the one whose hash fits.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/cal_record.h"
#include "core/limit_records.h"

namespace qk {

std::string CalInfoPath(const std::string& sessionPath);

// A limit segment whose typed frequencies are not points of the sweep.
struct TypedLimit {
  int Channel = 1;
  std::string Start, Stop, Upper, Lower;  // plain numbers

  bool operator==(const TypedLimit&) const = default;
};
using TypedLimits = std::vector<TypedLimit>;
TypedLimits TypedLimitsOf(const LimitRecords& limits);
// Sets the segments of the limits to the typed ones, for comparison in RebuildSegments.
void PutTypedLimits(const TypedLimits& typed, LimitRecords& limits);

// The file's bytes for a session file with the given bytes.
std::string CalInfoBytes(const CalRecord& record, std::string_view sessionBytes,
                         const TypedLimits& typed = {});
// Empty if the bytes do not have this format or no record in them belongs to the session file.
std::optional<CalRecord> CalInfoFrom(std::string_view info, std::string_view sessionBytes,
                                     TypedLimits* typed = nullptr);

// The record next to the session file; an empty one if no record belongs to it.
CalRecord ReadCalInfo(const std::string& sessionPath, std::string_view sessionBytes,
                      TypedLimits* typed = nullptr);
// Before a session file is replaced: puts the record of its new bytes before that of the bytes
// that it has, so that the session file has its record whenever the program is killed.
// WriteCalInfo, after the session file, leaves the new one alone. A file that cannot be written
// stays as it is.
void PrepareCalInfo(const std::string& sessionPath, std::string_view sessionBytes,
                    const CalRecord& record, const TypedLimits& typed = {});
// Writes the record next to the session file. If there are neither a known time nor typed limits,
// or if the file cannot be written, no file is left there: the age of that calibration is then
// unknown.
void WriteCalInfo(const std::string& sessionPath, std::string_view sessionBytes,
                  const CalRecord& record, const TypedLimits& typed = {});

}  // namespace qk
