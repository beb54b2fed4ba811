// SPDX-License-Identifier: MIT
#include "utilities/receiver_scale.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "core/instrument_limits.h"
#include "core/text.h"

namespace qk {

namespace {
constexpr const char* kFile = "RXCal.dat";
constexpr std::size_t kNumbers = 2 * ReceiverScale::kEntries + 1;
// Larger than any table that the load writes.
constexpr std::size_t kLargestFile = 1 << 20;

// The lines of a text as numbers; empty if a line before the last is not a number.
std::vector<float> Numbers(std::string_view text) {
  std::vector<float> numbers;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    double value = 0;
    if (!ParseNumber(line, value)) break;
    numbers.push_back(static_cast<float>(value));
  }
  if (!text.empty()) numbers.clear();  // a line that is not a number
  return numbers;
}

// A number in print statement format: a leading blank unless negative, CR LF.
std::string PrintedLine(double value) {
  const std::string text = PlainNumber(value);
  return (text.front() == '-' ? "" : " ") + text + "\r\n";
}
}  // namespace

ReceiverScaleFile::ReceiverScaleFile(const std::string& folder)
    : path_((std::filesystem::path(folder) / kFile).string()),
      file_(OpenForWriting(path_, WriteMode::Anew)) {}

void ReceiverScaleFile::Entry(double millivolts, double dbm) {
  all_ += PrintedLine(millivolts) + PrintedLine(dbm);
}

void ReceiverScaleFile::LastByte(int byte) {
  all_ += WholeNumberText(byte) + "\r\n";
  Flush();
}

void ReceiverScaleFile::Flush() {
  if (!file_)
    written_ = file_.Why();
  else if (!WriteAll(file_->Get(), std::string_view(all_).substr(flushed_)))
    written_ = LastError(path_, "cannot be written");
  flushed_ = all_.size();
}

Result<ReceiverScale> ParseReceiverScale(std::string_view text) {
  // The number in a last line without a line end may be incomplete.
  const std::vector<float> numbers = text.ends_with('\n') ? Numbers(text) : std::vector<float>();
  if (numbers.size() != kNumbers) return Failure{"no receiver data", kFile};
  ReceiverScale scale;
  scale.CalTable.resize(ReceiverScale::kEntries);
  for (std::size_t i = 0; i < ReceiverScale::kEntries; ++i)
    scale.CalTable[i] = {numbers[2 * i], numbers[2 * i + 1]};
  scale.CalTemperature = numbers.back() / 10 + 15;
  return scale;
}

Result<ReceiverScale> ReadReceiverScale(const std::string& folder) {
  const auto path = std::filesystem::path(folder) / kFile;
  std::error_code trouble;
  const auto size = std::filesystem::file_size(path, trouble);
  if (trouble || size > kLargestFile) return Failure{"cannot be read", path.string()};
  std::ifstream file(path, std::ios::binary);
  const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  return ParseReceiverScale(text);
}

std::size_t ScaleEntryOf(const SweepPlan& plan, int testPoint) {
  const double m = std::floor((testPoint * plan.StepFreq + (plan.StartFreq - kReceiverTableStart)) /
                                  kReceiverTableStep +
                              0.5);
  return static_cast<std::size_t>(
      std::clamp(m, 0.0, static_cast<double>(ReceiverScale::kEntries - 1)));
}

double PowerMeter::Dbm(double millivolts) const {
  const double known = std::max(static_cast<double>(Entry.Millivolts), kDivisionFloor);
  const double dbm = 20 * Log10Floored(millivolts / known) + static_cast<double>(Entry.Dbm);
  return static_cast<double>(TempCorrection) + dbm;
}

PowerMeter MeterFor(const ReceiverScale& scale, const SweepPlan& plan, int testPoint,
                    float temperature) {
  return {scale.CalTable[ScaleEntryOf(plan, testPoint)],
          (temperature - scale.CalTemperature) * 0.05f};
}

}  // namespace qk
