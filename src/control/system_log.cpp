// SPDX-License-Identifier: MIT
#include "control/system_log.h"

#include <filesystem>
#include <fstream>
#include <system_error>
#include <vector>

#include "core/text.h"

namespace qk {

namespace {

const std::string& CalText(const Session& session) {
  return session.Panels[3];
}

const std::string& Temperature(const Session& session) {
  return session.Panels[5];
}

std::string Dated(const std::string& text, EventLoop& loop) {
  const LocalTime now = loop.Now();
  return NextZone(text + DateText(now), TimeText(now));
}

// All the lines or none: what a full disk took of them is cut off again, so that the next line
// begins one.
void Append(const Session& session, std::span<const std::string> lines) {
  const std::string path = SystemLogPath(session);
  std::error_code none;
  const std::uintmax_t length = std::filesystem::file_size(path, none);
  std::ofstream file(path, std::ios::binary | std::ios::app);
  for (const std::string& line : lines) file << line << "\r\n";
  file.close();
  if (!file) std::filesystem::resize_file(path, none ? 0 : length, none);
}

}  // namespace

std::string SystemLogPath(const Session& session) {
  const std::string name = FormatNumber(session.Id.SerialNumber, "0000") + "-log.txt";
  return (std::filesystem::path(session.InstallFolder) / name).string();
}

// Without a serial number there is nothing to open a log for; the later lines go where it leads.
void LogStart(const Session& session, EventLoop& loop) {
  if (session.Id.SerialNumber == 0) return;
  const std::string lines[] = {" ", Dated("System Started: " + Temperature(session) + ".  ", loop)};
  Append(session, lines);
}

void LogShutDown(const Session& session, EventLoop& loop) {
  const std::string lines[] = {Dated("Shut down. " + Temperature(session) + ". ", loop)};
  Append(session, lines);
}

void LogCalibration(const Session& session, EventLoop& loop) {
  const std::string lines[] = {
      Dated("Cal complete: " + CalText(session) + " - " + Temperature(session) + ". ", loop)};
  Append(session, lines);
}

void LogDiagnostics(const Session& session, EventLoop& loop, std::span<const std::string> results) {
  std::vector<std::string> lines{
      Dated("Diagnostics Tests Started. " + Temperature(session) + ". ", loop)};
  lines.insert(lines.end(), results.begin(), results.end());
  Append(session, lines);
}

}  // namespace qk
