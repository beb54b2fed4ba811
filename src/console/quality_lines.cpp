// SPDX-License-Identifier: MIT
#include "console/quality_lines.h"

#include <array>
#include <cmath>

#include "console/words.h"
#include "core/vocabulary.h"

namespace qk {

namespace {
using Lines = std::vector<std::string>;
using Reply = Result<Lines>;

Reply Hints(const QualityState& quality) {
  const std::vector<Hint> hints = quality.Hints.Active();
  Lines lines;
  lines.reserve(hints.size());
  for (const Hint& hint : hints)
    lines.push_back(std::string(HintName(hint.Kind)) + " " + hint.Text);
  return lines;
}

Reply Check(const QualityState& quality, std::string_view name) {
  std::string known;
  for (std::size_t i = 0; i < kCheckTerms; ++i) {
    const auto term = static_cast<CheckTerm>(i);
    known += (i == 0 ? "" : ", ") + std::string(RowOf(term).Column);
    if (RowOf(term).Column != name) continue;
    const TermFound& found = quality.Check.Of(term);
    if (!found.Known) return Failure{std::string(name) + " has not been checked", {}};
    Lines lines;
    for (int k = found.First; k <= found.Last; ++k)
      lines.push_back(console::IndexedLine(
          k,
          {found.Grid.Frequency(k), static_cast<double>(found.Size[static_cast<std::size_t>(k)])}));
    return lines;
  }
  return Failure{"no term " + std::string(name) + ": " + known, {}};
}

Reply Statistics(const QualityState& quality, Parameter parameter) {
  const PointStatistics* statistics = quality.Run.Of(parameter);
  if (statistics == nullptr) return Failure{"no repeated sweeps of this parameter", {}};
  Lines lines;
  for (int k = 0; k < quality.Run.Grid().NumPoints; ++k) {
    const PointStatistics::Covariance c = statistics->CovarianceOf(k);
    lines.push_back(console::IndexedLine(
        k, {statistics->Mean(k).re, statistics->Mean(k).im, statistics->Deviation(k),
            statistics->DeviationOfMean(k), c.Re, c.Im, c.Cross}));
  }
  return lines;
}

Reply Uncertainty(const QualityState& quality, const Session& session, Parameter parameter) {
  if (std::string why = WhyNoWholeUncertainty(quality, session, parameter); !why.empty())
    return Failure{std::move(why), {}};
  Lines lines;
  for (int k = 0; k < session.Plan.NumPoints; ++k) {
    const auto u = UncertaintyAt(quality, session, parameter, k);
    lines.push_back(
        console::IndexedLine(k, {session.Plan.Frequency(k), kCoverage * u.value_or(std::nan(""))}));
  }
  return lines;
}
}  // namespace

std::optional<Reply> QualityLines(const QualityState& quality, const Session& session,
                                  std::span<const std::string_view> words) {
  if (words.empty()) return std::nullopt;
  if (words[0] == "hints" && words.size() == 1) return Hints(quality);
  const bool named = words[0] == "statistics" || words[0] == "uncertainty";
  if (words[0] == "check" && words.size() == 2) return Check(quality, words[1]);
  if (named && words.size() == 2) {
    const auto parameter = Named<Parameter>(words[1]);
    if (!parameter)
      return Failure{"no parameter " + std::string(words[1]) + ": S11, S21, S12 or S22", {}};
    return words[0] == "statistics" ? Statistics(quality, *parameter)
                                    : Uncertainty(quality, session, *parameter);
  }
  return std::nullopt;
}

}  // namespace qk
