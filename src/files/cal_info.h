// SPDX-License-Identifier: MIT
// The file beside a session file that keeps when and under which conditions its calibration was
// made: "NAME.cal" has "NAME.cal-info". Session files have a fixed form without room for it. Lines:
//
//   QK47-20-09 calibration record 1
//   session 0123456789abcdef          FNV-1a hash (64 bit) of the session file's bytes
//   made 2026-11-22T10:12:00Z
//   temperature 24.1                  degrees Celsius; left out when unknown
//   kit1 Default
//   kit2 Default
//
// The hash ties the two files together: after another program has written the session file, the
// record beside it no longer applies.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/cal_record.h"

namespace qk {

std::string CalInfoPath(const std::string& sessionPath);

// The bytes for a session file of these bytes.
std::string CalInfoBytes(const CalRecord& record, std::string_view sessionBytes);
// Nothing when the bytes are not of this form or belong to other session bytes.
std::optional<CalRecord> CalInfoFrom(std::string_view info, std::string_view sessionBytes);

// The record beside the session file; an empty one when there is none that belongs to it.
CalRecord ReadCalInfo(const std::string& sessionPath, std::string_view sessionBytes);
// Writes the record beside the session file. Without a known time, or when it cannot be written, no
// file is left there: the age of that calibration is then unknown.
void WriteCalInfo(const std::string& sessionPath, std::string_view sessionBytes,
                  const CalRecord& record);

}  // namespace qk
