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
//   limit 1 500 1080.5 0 -40          frequencies as they were typed for limits that now are at
//                                     points of the sweep: channel, start and stop in MHz, upper
//                                     and lower limit; a line each, left out where they are the
//                                     same
//
// The hash ties the two files together: if another program has written the session file, the record
// is no longer valid.
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

// A segment of limits whose frequencies were typed beside the points of the sweep.
struct TypedLimit {
  int Channel = 1;
  std::string Start, Stop, Upper, Lower;  // plain numbers

  bool operator==(const TypedLimit&) const = default;
};
using TypedLimits = std::vector<TypedLimit>;
TypedLimits TypedLimitsOf(const LimitRecords& limits);
// The limits' segments become those that were typed, for RebuildSegments to compare with.
void PutTypedLimits(const TypedLimits& typed, LimitRecords& limits);

// The bytes for a session file of these bytes.
std::string CalInfoBytes(const CalRecord& record, std::string_view sessionBytes,
                         const TypedLimits& typed = {});
// Nothing when the bytes are not of this form or belong to other session bytes.
std::optional<CalRecord> CalInfoFrom(std::string_view info, std::string_view sessionBytes,
                                     TypedLimits* typed = nullptr);

// The record beside the session file; an empty one when there is none that belongs to it.
CalRecord ReadCalInfo(const std::string& sessionPath, std::string_view sessionBytes,
                      TypedLimits* typed = nullptr);
// Writes the record beside the session file. With neither a known time nor typed limits, or when it
// cannot be written, no file is left there: the age of that calibration is then unknown.
void WriteCalInfo(const std::string& sessionPath, std::string_view sessionBytes,
                  const CalRecord& record, const TypedLimits& typed = {});

}  // namespace qk
