// SPDX-License-Identifier: MIT
#include "files/statistics_csv.h"

#include "files/digits.h"

namespace qk {

namespace {
std::string RunText(const SweepRun& run) {
  std::string text =
      std::to_string(run.Counted()) + " of " + std::to_string(run.Taken()) + " sweeps";
  const char* before = ", left out ";
  for (const int number : run.LeftOut()) {
    text += before + std::to_string(number);
    before = ", ";
  }
  return text;
}
}  // namespace

std::string StatisticsCsv(const SweepRun& run, std::vector<Fact> provenance) {
  provenance.push_back({"Statistics", RunText(run)});
  std::string text = FactLines(provenance, "# ", "\r\n") + "freq_Hz";
  std::vector<const PointStatistics*> columns;
  for (const Parameter parameter : run.Delivered()) {
    const PointStatistics* statistics = run.Of(parameter);
    if (statistics == nullptr) continue;
    columns.push_back(statistics);
    for (const std::string_view column : {"_mean_re", "_mean_im", "_s"})
      text.append(",").append(NameOf(parameter)).append(column);
  }
  text += "\r\n";
  for (int k = 0; k < run.Grid().NumPoints; ++k) {
    AppendPlainDigits(text, run.Grid().Frequency(k));
    for (const PointStatistics* statistics : columns) {
      const Complex mean = statistics->Mean(k);
      for (const double value : {mean.re, mean.im, statistics->Deviation(k)}) {
        text += ',';
        AppendDigits(text, value);
      }
    }
    text += "\r\n";
  }
  return text;
}

}  // namespace qk
