// SPDX-License-Identifier: MIT
#include "control/system_log.h"

#include <unistd.h>

#include <filesystem>
#include <vector>

#include "core/descriptor.h"
#include "core/status.h"
#include "core/text.h"

namespace qk {

namespace {

const std::string& CalText(const Session& session) {
  return session.TextOf(Panel::Calibration);
}

const std::string& Temperature(const Session& session) {
  return session.TextOf(Panel::Temperature);
}

std::string Dated(const std::string& text, EventLoop& loop) {
  const LocalTime now = loop.Now();
  return NextZone(text + DateText(now), TimeText(now));
}

// Writes all the lines or none: if the disk becomes full, the part already written is removed, so
// that the next line starts at the beginning of a line.
Result<Done> Append(const Session& session, std::span<const std::string> lines) {
  const std::string path = SystemLogPath(session);
  const Result<Descriptor> file = OpenForWriting(path, WriteMode::Append);
  if (!file) return file.Why();
  std::string text;
  for (const std::string& line : lines) text += line + "\r\n";
  const off_t length = ::lseek(file->Get(), 0, SEEK_END);
  if (WriteAll(file->Get(), text)) return Done{};
  Failure why = LastError(path, "cannot be written");
  if (length < 0 || ::ftruncate(file->Get(), length) != 0) why.Message += ", a part was";
  return why;
}

}  // namespace

std::string SystemLogPath(const Session& session) {
  const std::string name = FormatNumber(session.Id.SerialNumber, "0000") + "-log.txt";
  return (std::filesystem::path(session.InstallFolder) / name).string();
}

// Without a serial number the name of the log is unknown, so nothing is written at start.
Result<Done> LogStart(const Session& session, EventLoop& loop) {
  if (session.Id.SerialNumber == 0) return Done{};
  const std::string lines[] = {" ", Dated("System Started: " + Temperature(session) + ".  ", loop)};
  return Append(session, lines);
}

Result<Done> LogShutDown(const Session& session, EventLoop& loop) {
  const std::string lines[] = {Dated("Shut down. " + Temperature(session) + ". ", loop)};
  return Append(session, lines);
}

Result<Done> LogCalibration(const Session& session, EventLoop& loop) {
  const std::string lines[] = {
      Dated("Cal complete: " + CalText(session) + " - " + Temperature(session) + ". ", loop)};
  return Append(session, lines);
}

Result<Done> LogDiagnostics(const Session& session, EventLoop& loop,
                            std::span<const std::string> results) {
  std::vector<std::string> lines{
      Dated("Diagnostics Tests Started. " + Temperature(session) + ". ", loop)};
  lines.insert(lines.end(), results.begin(), results.end());
  return Append(session, lines);
}

void ReportLog(Session& session, Host& host, const Result<Done>& logged) {
  if (!logged) ShowBriefly(session, host, "Log: " + logged.Why().Message);
}

}  // namespace qk
