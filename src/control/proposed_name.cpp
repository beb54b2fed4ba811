// SPDX-License-Identifier: MIT
#include "control/proposed_name.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace qk {

namespace {
constexpr std::size_t kLongestLabel = 40;  // characters of the label used in a name

// Characters that every file system accepts and no shell splits.
bool Suits(char c) {
  const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  return letter || (c >= '0' && c <= '9') || c == '_' || c == '.' ||
         static_cast<unsigned char>(c) >= 0x80;
}

std::string NameFrom(const std::string& label) {
  std::string name;
  for (const char c : label) {
    if (Suits(c))
      name += c;
    else if (!name.empty() && name.back() != '-')
      name += '-';
  }
  // Not inside a multi-byte character.
  std::size_t end = std::min(name.size(), kLongestLabel);
  while (end < name.size() && (static_cast<unsigned char>(name[end]) & 0xC0) == 0x80) --end;
  name.resize(end);
  while (!name.empty() && (name.back() == '-' || name.back() == '.')) name.pop_back();
  return name.empty() || name.front() != '.' ? name : "_" + name;
}
}  // namespace

std::string TwoDigits(int value) {
  return (value < 10 ? "0" : "") + std::to_string(value);
}

std::string ProposedName(const Session& session, const LocalTime& now, const std::string& folder,
                         const std::string& ending) {
  return ProposedName(session.Label.GraphicsLabels[0], now, folder, ending);
}

std::string ProposedName(const std::string& label, const LocalTime& now, const std::string& folder,
                         const std::string& ending) {
  std::string stem = NameFrom(label);
  if (!stem.empty()) stem += "-";
  stem += std::to_string(now.Year) + "-" + TwoDigits(now.Month) + "-" + TwoDigits(now.Day);
  std::error_code ignored;
  std::string name = stem;
  for (int n = 2; std::filesystem::exists(std::filesystem::path(folder) / (name + ending), ignored);
       ++n)
    name = stem + "-" + std::to_string(n);
  return name;
}

}  // namespace qk
