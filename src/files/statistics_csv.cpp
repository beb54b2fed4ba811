// SPDX-License-Identifier: MIT
#include "files/statistics_csv.h"

#include "files/digits.h"

namespace qk {

namespace {
std::string Numbers(const std::vector<int>& sweeps) {
  std::string text;
  for (const int number : sweeps) text += (text.empty() ? "" : ", ") + std::to_string(number);
  return text;
}

std::string RunText(const SweepRun& run) {
  std::string text =
      std::to_string(run.Counted()) + " of " + std::to_string(run.Taken()) + " sweeps";
  if (!run.LeftOut().empty()) text += ", left out " + Numbers(run.LeftOut());
  return text;
}

// During the run each sweep would be compared with only a few others.
std::string OutlierText(const SweepRun& run) {
  if (run.Running()) return "not judged before the last sweep";
  const std::vector<int> outliers = run.Outliers();
  return (outliers.empty() ? "none" : Numbers(outliers) + ", counted") +
         (run.Drifts() ? "; the sweeps drift" : "");
}
}  // namespace

std::string StatisticsCsv(const SweepRun& run, std::vector<Fact> provenance) {
  provenance.push_back({"Statistics", RunText(run)});
  provenance.push_back({"Outliers", OutlierText(run)});
  std::string text = FactLines(provenance, "# ", "\r\n") + "freq_Hz";
  std::vector<const PointStatistics*> columns;
  for (const Parameter parameter : run.Delivered()) {
    const PointStatistics* statistics = run.Of(parameter);
    if (statistics == nullptr) continue;
    columns.push_back(statistics);
    for (const std::string_view column :
         {"_mean_re", "_mean_im", "_s", "_s_mean", "_var_re", "_var_im", "_cov"})
      text.append(",").append(NameOf(parameter)).append(column);
  }
  text += "\r\n";
  for (int k = 0; k < run.Grid().NumPoints; ++k) {
    AppendPlainDigits(text, run.Grid().Frequency(k));
    for (const PointStatistics* statistics : columns) {
      const Complex mean = statistics->Mean(k);
      const PointStatistics::Covariance c = statistics->CovarianceOf(k);
      for (const double value : {mean.re, mean.im, statistics->Deviation(k),
                                 statistics->DeviationOfMean(k), c.Re, c.Im, c.Cross}) {
        text += ',';
        AppendDigits(text, value);
      }
    }
    text += "\r\n";
  }
  return text;
}

}  // namespace qk
