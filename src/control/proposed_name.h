// SPDX-License-Identifier: MIT
// The file name that a save dialog proposes: the picture label, if there is one, and the date.
#pragma once

#include <string>

#include "core/local_time.h"
#include "core/session.h"

namespace qk {

// "07" for 7.
std::string TwoDigits(int value);

// "Filter-A-2026-11-22", without extension. Appends "-2", "-3" ... if folder already contains a
// file with that name and ending (".cal"). Characters of the label that are unsuitable for file
// names become "-".
std::string ProposedName(const Session& session, const LocalTime& now, const std::string& folder,
                         const std::string& ending);
// The same with another text in place of the label, for example a serial.
std::string ProposedName(const std::string& label, const LocalTime& now, const std::string& folder,
                         const std::string& ending);

}  // namespace qk
