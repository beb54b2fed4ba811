// SPDX-License-Identifier: MIT
#include "quality/cal_check.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <type_traits>

#include "core/text.h"
#include "numeric/complex.h"
#include "numeric/median.h"

namespace qk {

namespace {
constexpr std::array<CheckTermRow, kCheckTerms> kRows{
    {{"Directivity", "directivity", false, -40.0},
     {"Source match", "source_match", false, -35.0},
     {"Reflection tracking", "reflection_tracking", true, 0.05},
     {"Load match", "load_match", false, -35.0},
     {"Transmission tracking", "transmission_tracking", true, 0.05},
     {"Isolation", "isolation", false, std::nullopt},
     {"Directivity of port 2", "port2_directivity", false, -40.0},
     {"Source match of port 2", "port2_source_match", false, -35.0},
     {"Reflection tracking of port 2", "port2_reflection_tracking", true, 0.05}}};

constexpr std::array<std::string_view, kCheckMethods> kMethods{
    "Three standards", "Short behind an air line", "Mismatch behind an air line", "Through",
    "Isolation",       "Match of the ports",       "Three standards at port 2"};

constexpr std::size_t kTrend = 10, kLeastTrend = 5;
constexpr double kDeviations = 3;

// The last digit that TermDbText shows.
double DigitOf(CheckTerm term) {
  return RowOf(term).AsGain ? 0.001 : 0.1;
}

// Removes the values that are worse than the others: above the median + 5 * 1.4826 MAD, and by more
// than least. At least half of them remain.
void LeaveOutBad(std::vector<double>& values, double least) {
  constexpr double kBad = 5 * 1.4826;
  const double middle = UpperMedian(std::span(values));
  std::vector<double> away;
  away.reserve(values.size());
  for (const double value : values) away.push_back(std::abs(value - middle));
  const double limit = middle + std::max(kBad * UpperMedian(std::span(away)), least);
  std::erase_if(values, [limit](double value) { return value > limit; });
}

// The RMS around each point, over the part of the window that is available.
void TakeRms(TermFound& found, std::span<const double> sizes) {
  const double step = found.Grid.StepFreq;
  const int half =
      step > 0
          ? static_cast<int>(std::min(kResidualWindow / 2 / step, static_cast<double>(kMaxPoints)))
          : 0;
  double sum = 0;
  int from = found.First, to = found.First;  // the window, to not included
  const auto square = [&](int k) {
    const double size = sizes[static_cast<std::size_t>(k)];
    return size * size;
  };
  for (int k = found.First; k <= found.Last; ++k) {
    while (to <= std::min(k + half, found.Last)) sum += square(to++);
    while (from < k - half) sum -= square(from++);
    found.Rms[static_cast<std::size_t>(k)] =
        static_cast<float>(std::sqrt(std::max(0.0, sum / (to - from))));
  }
}

bool Alike(double hz, double other) {
  return std::abs(hz - other) < 1;
}
}  // namespace

const CheckTermRow& RowOf(CheckTerm term) {
  return kRows[static_cast<std::size_t>(term)];
}

std::string NameInText(CheckTerm term) {
  std::string text(RowOf(term).Name);
  text[0] = static_cast<char>(text[0] - 'A' + 'a');
  return text;
}

double TermDb(CheckTerm term, double size) {
  return 20 * Log10Floored(RowOf(term).AsGain ? 1 + size : size);
}

std::string TermDbText(CheckTerm term, double db) {
  return FormatNumber(db, RowOf(term).AsGain ? "#0.000" : "#0.0") + " dB";
}

double TransmissionError(Cplx s21) {
  const double gain = std::max(std::abs(s21), 1e-11);
  return std::max(std::max(gain, 1 / gain) - 1, std::abs(s21 - 1.0));
}

double LengthOfThrough(std::span<const double> f, std::span<const Cplx> s21) {
  double phases = 0, squares = 0;
  for (std::size_t k = 0; k < s21.size(); ++k) {
    phases -= f[k] * std::arg(s21[k]);
    squares += f[k] * f[k];
  }
  return squares > 0 ? phases / squares * kSpeedOfLight / (2 * std::numbers::pi) : 0;
}

bool Corrects(std::optional<SweepMode> calibration, CheckTerm term) {
  if (term == CheckTerm::LoadMatch || IsOfPort2(term)) return calibration == SweepMode::All;
  return term != CheckTerm::SourceMatch || calibration != SweepMode::S21;
}

bool IsTooLarge(CheckTerm term, double db) {
  const CheckTermRow& row = RowOf(term);
  return row.LimitDb && db > *row.LimitDb;
}

std::string_view MethodName(CheckMethod method) {
  return kMethods[static_cast<std::size_t>(method)];
}

template <class Value>
auto CalCheck::Between(const TermFound& found, const std::array<Value, kMaxPoints>& values,
                       double hz) {
  const double step = found.Grid.StepFreq;
  const double place = step > 0 ? (hz - found.Grid.StartFreq) / step : found.First;
  const double inside = std::clamp<double>(place, found.First, found.Last);
  const int low = std::min(static_cast<int>(inside), found.Last);
  const int high = std::min(low + 1, found.Last);
  using Wide = std::conditional_t<std::is_same_v<Value, float>, double, Cplx>;
  const auto value = [&](int k) { return static_cast<Wide>(values[static_cast<std::size_t>(k)]); };
  return value(low) + (inside - low) * (value(high) - value(low));
}

bool CalCheck::Any() const {
  return std::ranges::any_of(terms_, &TermFound::Known);
}

void CalCheck::Take(CheckTerm term, const PlanGrid& grid, int first, int last,
                    std::span<const double> sizes, CheckMethod by, std::int64_t utc, bool sameKit) {
  TermFound& found = terms_[static_cast<std::size_t>(term)];
  found = {};
  found.Known = last >= first;
  found.Grid = grid;
  found.First = first;
  found.Last = last;
  found.By = by;
  found.SameKit = sameKit;
  found.Utc = utc;
  for (int k = first; k <= last; ++k) {
    const auto at = static_cast<std::size_t>(k);
    found.Size[at] = static_cast<float>(sizes[at]);
  }
  TakeRms(found, sizes);
  if (term == CheckTerm::Directivity) DeriveLoadMatch();
}

void CalCheck::Take(CheckTerm term, const PlanGrid& grid, int first, int last,
                    std::span<const Cplx> values, CheckMethod by, std::int64_t utc, bool sameKit) {
  std::vector<double> sizes;
  sizes.reserve(values.size());
  for (const Cplx& value : values) sizes.push_back(std::abs(value));
  Take(term, grid, first, last, sizes, by, utc, sameKit);
  TermFound& found = terms_[static_cast<std::size_t>(term)];
  found.HasValues = true;
  for (int k = first; k <= last; ++k) {
    const auto at = static_cast<std::size_t>(k);
    found.Values[at] = std::complex<float>(values[at]);
  }
  DeriveLoadMatch();
}

bool CalCheck::LoadMatchNeedsDirectivity() const {
  const TermFound& load = Of(CheckTerm::LoadMatch);
  return load.Known && load.By == CheckMethod::Through;
}

void CalCheck::DeriveLoadMatch() {
  TermFound& load = terms_[static_cast<std::size_t>(CheckTerm::LoadMatch)];
  if (!LoadMatchNeedsDirectivity() || !load.HasValues) return;
  const TermFound& directivity = Of(CheckTerm::Directivity);
  std::vector<double> sizes(static_cast<std::size_t>(load.Last) + 1);
  for (int k = load.First; k <= load.Last; ++k) {
    const auto at = static_cast<std::size_t>(k);
    const Cplx seen(load.Values[at]);
    const double hz = load.Grid.Frequency(k);
    const PlanGrid& grid = directivity.Grid;
    constexpr double kSlackHz = 1;
    double size = std::abs(seen);
    if (directivity.Known && directivity.HasValues &&
        hz >= grid.Frequency(directivity.First) - kSlackHz &&
        hz <= grid.Frequency(directivity.Last) + kSlackHz)
      size = std::abs(seen - Between(directivity, directivity.Values, hz));
    else if (directivity.Known)
      size = std::hypot(size, Between(directivity, directivity.Size, hz));
    sizes[at] = size;
    load.Size[at] = static_cast<float>(size);
  }
  TakeRms(load, sizes);
}

std::optional<double> CalCheck::At(CheckTerm term, double hz) const {
  const TermFound& found = Of(term);
  if (!found.Known) return std::nullopt;
  return Between(found, found.Size, hz);
}

std::optional<WorstTerm> CalCheck::Worst(CheckTerm term) const {
  const TermFound& found = Of(term);
  if (!found.Known) return std::nullopt;
  const auto begin = found.Size.begin();
  const auto worst = std::max_element(begin + found.First, begin + found.Last + 1);
  const double size = static_cast<double>(*worst);
  return WorstTerm{size, TermDb(term, size), found.Grid.Frequency(static_cast<int>(worst - begin))};
}

ResidualSizes CalCheck::SizesAt(double hz) const {
  const auto at = [&](CheckTerm term) {
    const TermFound& found = Of(term);
    return found.Known ? Between(found, found.Rms, hz) : 0;
  };
  return {.Directivity = at(CheckTerm::Directivity),
          .SourceMatch = at(CheckTerm::SourceMatch),
          .Tracking = at(CheckTerm::Tracking),
          .LoadMatch = at(CheckTerm::LoadMatch),
          .TransmissionTracking = at(CheckTerm::TransmissionTracking),
          .Isolation = at(CheckTerm::Isolation),
          .Directivity2 = at(CheckTerm::Directivity2),
          .SourceMatch2 = at(CheckTerm::SourceMatch2),
          .Tracking2 = at(CheckTerm::Tracking2)};
}

bool IsSameKind(const CheckSummary& a, const CheckSummary& b) {
  return a.Method == b.Method && a.Serial == b.Serial && a.Calibration == b.Calibration &&
         a.Standard == b.Standard && Alike(a.Grid.StartFreq, b.Grid.StartFreq) &&
         Alike(a.Grid.StopFreq, b.Grid.StopFreq);
}

CheckVerdict JudgeCheck(const CheckSummary& check, std::span<const CheckSummary> earlier) {
  CheckVerdict verdict;
  std::vector<std::string> found;
  bool judged = false;
  for (std::size_t i = 0; i < kCheckTerms; ++i) {
    if (!check.Terms[i]) continue;
    const auto term = static_cast<CheckTerm>(i);
    const CheckTermRow& row = RowOf(term);
    const WorstTerm& worst = *check.Terms[i];
    const std::string what = std::string(row.Name) + " " + TermDbText(term, worst.Db) + " at " +
                             FormatNumber(worst.Hz / 1e6, "#0") + " MHz";
    if (!row.LimitDb || !Corrects(check.Calibration, term))
      found.push_back(what + ": no limit");
    else {
      judged = true;
      if (IsTooLarge(term, worst.Db))
        verdict.Lines.push_back(what + ": above " + PlainNumber(*row.LimitDb) + " dB");
      else
        found.push_back(what + ": good");
    }

    std::vector<double> last;
    for (auto it = earlier.rbegin(); it != earlier.rend() && last.size() < kTrend; ++it)
      if (it->Terms[i] && IsSameKind(*it, check)) last.push_back(it->Terms[i]->Db);
    if (last.size() < kLeastTrend) continue;
    LeaveOutBad(last, 10 * DigitOf(term));
    double mean = 0, squares = 0;
    for (const double db : last) mean += db / static_cast<double>(last.size());
    for (const double db : last) squares += (db - mean) * (db - mean);
    const double s = std::sqrt(squares / static_cast<double>(last.size() - 1));
    const double usual = std::max(kDeviations * s, DigitOf(term));
    if (worst.Db - mean > usual)
      verdict.Lines.push_back(what + ": outside the trend of " + TermDbText(term, mean) + " +- " +
                              TermDbText(term, usual));
  }
  verdict.Good = verdict.Lines.empty();
  if (!verdict.Good) return verdict;
  if (judged && check.Method != CheckMethod::Isolation)
    verdict.Lines.emplace_back("Good");
  else
    verdict.Lines = std::move(found);
  return verdict;
}

bool IsOfPort2(CheckTerm term) {
  return term >= CheckTerm::Directivity2;
}

std::span<const CheckTerm> TermsOf(const CalCheck& check, Parameter parameter) {
  using enum CheckTerm;
  static constexpr std::array kReflection{Directivity,  SourceMatch,  Tracking, LoadMatch,
                                          Directivity2, SourceMatch2, Tracking2};
  static constexpr std::array kTransmission{
      TransmissionTracking, SourceMatch,  LoadMatch, Isolation,
      Directivity2,         SourceMatch2, Tracking2};
  static constexpr std::array kByThrough{
      TransmissionTracking, Directivity,  SourceMatch, LoadMatch, Isolation,
      Directivity2,         SourceMatch2, Tracking2};
  if (RowOf(parameter).Reflection) return kReflection;
  if (check.LoadMatchNeedsDirectivity()) return kByThrough;
  return kTransmission;
}

std::string MissingTerms(const CalCheck& check, std::optional<SweepMode> calibration,
                         Parameter parameter) {
  std::string missing;
  for (const CheckTerm term : TermsOf(check, parameter)) {
    if (check.Of(term).Known || IsOfPort2(term)) continue;
    if (term == CheckTerm::LoadMatch && calibration == SweepMode::S11) continue;
    missing += (missing.empty() ? "" : ", ") + NameInText(term);
  }
  return missing;
}

}  // namespace qk
