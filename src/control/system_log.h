// SPDX-License-Identifier: MIT
// The system log: one text file per instrument in the install folder, one line an event. It is
// opened for appending each time and closed again, so that a crash loses nothing; it is never
// cleared. Without a serial number a start writes no line (the end does, into "0000-log.txt"), and
// after an error the program goes on without the line; panel 3 shows the error for 5 s.
//
//   (a line of one blank)
//   System Started: Temp 24.5 degC.  2026-11-21             11:03:00
//   Cal complete: S11 Cal - Temp 25.0 degC. 2026-11-21      11:20:00
//   Shut down. Temp 25.0 degC. 2026-11-21     12:00:00
//
// Date and time stand as DateText and TimeText give them; the date is padded up to the next print
// zone of 14 columns, counted from the line's first. Lines end with CR LF.
#pragma once

#include <span>
#include <string>

#include "core/host.h"
#include "core/result.h"
#include "core/session.h"

namespace qk {

// The serial number in four digits and "-log.txt", in the install folder.
std::string SystemLogPath(const Session& session);

Result<Done> LogStart(const Session& session, EventLoop& loop);
Result<Done> LogShutDown(const Session& session, EventLoop& loop);
Result<Done> LogCalibration(const Session& session, EventLoop& loop);
// The line of its start, then the lines of its results.
Result<Done> LogDiagnostics(const Session& session, EventLoop& loop,
                            std::span<const std::string> results);

// Panel 3: a line that could not be written, for 5 s. No box: the log never holds up the work.
void TellLog(Session& session, Host& host, const Result<Done>& logged);

}  // namespace qk
