// SPDX-License-Identifier: MIT
// What checks of the calibration in force have found: the sizes of the residual terms over
// frequency, their worst values, and what to say of them.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/session.h"
#include "quality/residuals.h"
#include "quality/uncertainty.h"

namespace qk {

enum class CheckMethod : std::uint8_t {
  Standards,
  ShortedLine,
  MismatchedLine,
  Through,
  Isolation
};

enum class CheckTerm : std::uint8_t {
  Directivity,
  SourceMatch,
  Tracking,
  LoadMatch,
  TransmissionTracking,
  Isolation
};
inline constexpr std::size_t kCheckTerms = 6;

// How a term is named, and from where on it is too large.
struct CheckTermRow {
  std::string_view Name;    // "Directivity"
  std::string_view Column;  // of the trend's file
  bool AsGain;              // an error of tracking, told as 20 log10(1 + size); else 20 log10(size)
  std::optional<double> LimitDb;
};
const CheckTermRow& RowOf(CheckTerm term);
// The size of a term in the decibels that its row uses.
double TermDb(CheckTerm term, double size);

// A term over the points of the sweep in which it was checked.
struct TermFound {
  bool Known = false;
  PlanGrid Grid;
  int First = 0, Last = -1;  // points at which it is known
  std::array<float, kMaxPoints> Size{};
  CheckMethod By = CheckMethod::Standards;
  std::int64_t Utc = 0;
};

struct WorstTerm {
  double Size = 0, Db = 0, Hz = 0;
};

// The terms that the checks of this calibration have found. A term that is checked again replaces
// the one found before.
class CalCheck {
 public:
  // Another calibration is in force: nothing is known of it.
  void Forget() { *this = CalCheck(); }
  bool Any() const;
  const TermFound& Of(CheckTerm term) const { return terms_[static_cast<std::size_t>(term)]; }

  // Sizes of one term at each point of the grid, known from first to last.
  void Take(CheckTerm term, const PlanGrid& grid, int first, int last,
            std::span<const double> sizes, CheckMethod by, std::int64_t utc);

  // The size at a frequency, linear between the points; beyond the ends of what is known the
  // nearest value. Nothing when the term has not been checked.
  std::optional<double> At(CheckTerm term, double hz) const;
  std::optional<WorstTerm> Worst(CheckTerm term) const;
  // All sizes at a frequency, 0 for what is not known.
  ResidualSizes SizesAt(double hz) const;

 private:
  std::array<TermFound, kCheckTerms> terms_;
};

// One check as the trend keeps it: the worst decibels of each term that it found.
struct CheckSummary {
  std::int64_t Utc = 0;
  int Serial = 0;
  CheckMethod Method = CheckMethod::Standards;
  std::optional<float> DegC;
  std::optional<std::int64_t> CalMadeUtc;
  PlanGrid Grid;
  std::array<std::optional<WorstTerm>, kCheckTerms> Terms;
};

// "Good", or what is wrong, a line each: a term above its limit, or outside mean +- 3 s of the last
// ten checks of the same kind (at least five of them).
struct CheckVerdict {
  bool Good = true;
  std::vector<std::string> Lines;
};
CheckVerdict JudgeCheck(const CheckSummary& check, std::span<const CheckSummary> earlier);

// How a check is named in windows and files.
std::string_view MethodName(CheckMethod method);

// "-38.2 dB", "0.041 dB" for an error of tracking.
std::string TermDbText(CheckTerm term, double db);
// The term is above the limit of its row.
bool IsTooLarge(CheckTerm term, double db);

// Which terms an uncertainty of a parameter needs and has not: "Load match, isolation". Empty when
// all are known.
std::string MissingTerms(const CalCheck& check, Parameter parameter);

}  // namespace qk
