// SPDX-License-Identifier: MIT
#include "ui/port_trouble.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qk {

namespace {

namespace fs = std::filesystem;

std::string UserName(uid_t user) {
  const passwd* entry = getpwuid(user);
  return entry != nullptr ? entry->pw_name : std::to_string(user);
}

std::string OwnerOf(const std::string& path) {
  struct stat there;
  return stat(path.c_str(), &there) == 0 ? UserName(there.st_uid) : std::string("unknown");
}

std::string FirstLine(const fs::path& file) {
  std::ifstream in(file);
  std::string line;
  std::getline(in, line);
  const std::size_t first = line.find_first_not_of(" \t");
  return first == std::string::npos ? std::string() : line.substr(first);
}

bool IsNumber(const std::string& text) {
  return !text.empty() && std::ranges::all_of(text, [](char c) {
    return std::isdigit(static_cast<unsigned char>(c)) != 0;
  });
}

// "minicom (process 1234 of user bob)".
std::string Describe(const std::string& process, const PortPlaces& places) {
  const fs::path entry = fs::path(places.Processes) / process;
  return FirstLine(entry / "comm") + " (process " + process + " of user " + OwnerOf(entry) + ")";
}

std::string WithoutPermission(const std::string& device) {
  struct stat there;
  if (stat(device.c_str(), &there) != 0) return "no permission";
  const group* owner = getgrgid(there.st_gid);
  if (owner == nullptr || (there.st_mode & S_IWGRP) == 0) return "no permission";
  return "no permission; members of the group " + std::string(owner->gr_name) +
         " have it (sudo usermod -aG " + owner->gr_name + " " + UserName(getuid()) +
         ", then log in again)";
}

// The lock file of the device, by the convention of serial programs: LCK.. and its name.
std::optional<std::string> LockedBy(const std::string& device, const PortPlaces& places) {
  std::string name = device.rfind("/dev/", 0) == 0 ? device.substr(5) : device;
  std::ranges::replace(name, '/', '_');
  const fs::path lock = fs::path(places.Locks) / ("LCK.." + name);
  std::error_code unknown;
  if (!fs::exists(lock, unknown)) return std::nullopt;
  const std::string process = FirstLine(lock);
  if (!IsNumber(process)) return "locked by " + lock.string() + " of user " + OwnerOf(lock);
  if (fs::exists(fs::path(places.Processes) / process, unknown))
    return "held by " + Describe(process, places);
  return "locked by " + lock.string() + " of user " + OwnerOf(lock) + " for process " + process +
         ", no longer running: remove that file";
}

bool HoldsOpen(const fs::path& process, const fs::path& device) {
  std::error_code unknown;
  for (fs::directory_iterator entry(process / "fd", unknown), end; entry != end;
       entry.increment(unknown)) {
    if (unknown) return false;
    if (fs::read_symlink(entry->path(), unknown) == device) return true;
  }
  return false;
}

std::optional<std::string> HeldBy(const std::string& device, const PortPlaces& places) {
  std::error_code unknown;
  const fs::path real = fs::canonical(device, unknown);
  for (fs::directory_iterator entry(places.Processes, unknown), end; entry != end;
       entry.increment(unknown)) {
    if (unknown) break;
    const std::string name = entry->path().filename().string();
    if (!IsNumber(name) || name == std::to_string(getpid())) continue;
    if (HoldsOpen(entry->path(), real)) return "held by " + Describe(name, places);
  }
  return std::nullopt;
}

}  // namespace

std::string WhyNotOpened(const std::string& device, const std::string& otherwise,
                         const PortPlaces& places) {
  std::error_code unknown;
  if (!fs::exists(device, unknown)) return device + ": there is no such device";
  if (access(device.c_str(), R_OK | W_OK) != 0) return device + ": " + WithoutPermission(device);
  if (const auto lock = LockedBy(device, places)) return device + ": " + *lock;
  if (const auto holder = HeldBy(device, places)) return device + ": " + *holder;
  return device + ": " + otherwise;
}

}  // namespace qk
