// SPDX-License-Identifier: MIT
// Any bytes as a file of lines that the program continues: the definition of a batch, its table,
// the trend of the checks of a calibration. Either refused with the line, or read; then the file
// written from it reads back the same.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "files/batch_folder.h"
#include "files/check_trend.h"

namespace {
void Require(bool holds) {
  if (!holds) std::abort();
}

template <class Read>
void RequireReason(const Read& read) {
  Require(!read.Why().Message.empty() && read.Why().Text().size() < 1200);
}

void CheckDefinition(std::string_view text) {
  const auto read = qk::ReadBatchText(text);
  if (!read) return RequireReason(read);
  Require(read->Sweeps >= 1 && read->Sweeps <= 100);
  const std::string written = qk::BatchText(*read);
  const auto again = qk::ReadBatchText(written);
  Require(again.Ok() && qk::BatchText(*again) == written);
}

void CheckTable(std::string_view text) {
  const auto read = qk::BatchLog::EntriesOf(text);
  if (!read) return RequireReason(read);
  for (const qk::BatchLog::Entry& entry : *read) Require(entry.Run >= 1);
}

void CheckTrend(std::string_view text) {
  const auto read = qk::CheckTrendFrom(text);
  if (!read) return RequireReason(read);
  std::string written = qk::CheckTrendHeader();
  for (const qk::CheckSummary& check : *read) written += qk::CheckTrendLine(check);
  const auto again = qk::CheckTrendFrom(written);
  Require(again.Ok() && again->size() == read->size());
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  CheckDefinition(text);
  CheckTable(text);
  CheckTrend(text);
  return 0;
}
