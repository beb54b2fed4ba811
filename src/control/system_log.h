// SPDX-License-Identifier: MIT
// The system log: one text file per instrument in the install folder, one line per event. The file
// is opened for appending and closed again for each line, so that a crash loses nothing; it is
// never cleared. Without a serial number, start-up writes no line (shut-down does, to
// "0000-log.txt"). After a write error the program continues without the line; panel 3 shows the
// error for 5 s.
//
//   (a line of one blank)
//   System Started: Temp 24.5 degC.  2026-11-21             11:03:00
//   Cal complete: S11 Cal - Temp 25.0 degC. 2026-11-21      11:20:00
//   Shut down. Temp 25.0 degC. 2026-11-21     12:00:00
//
// Date and time are formatted by DateText and TimeText; the date is padded to the next print zone
// of 14 columns, counted from the start of the line. Lines end with CR LF.
#pragma once

#include <span>
#include <string>

#include "core/host.h"
#include "core/result.h"
#include "core/session.h"

namespace qk {

// The path of the log: the serial number as four digits and "-log.txt", in the install folder.
std::string SystemLogPath(const Session& session);

Result<Done> LogStart(const Session& session, EventLoop& loop);
Result<Done> LogShutDown(const Session& session, EventLoop& loop);
Result<Done> LogCalibration(const Session& session, EventLoop& loop);
// A start line, then the result lines.
Result<Done> LogDiagnostics(const Session& session, EventLoop& loop,
                            std::span<const std::string> results);

// Shows in panel 3, for 5 s, that a line could not be written. No message box: a log error must not
// interrupt the work.
void ReportLog(Session& session, Host& host, const Result<Done>& logged);

}  // namespace qk
