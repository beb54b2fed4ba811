// SPDX-License-Identifier: MIT
// The results of checks of the active calibration: the magnitudes of the residual terms over
// frequency, their worst values, and the verdict on them.
#pragma once

#include <array>
#include <complex>
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
  Isolation,
  PortMatch,
  Standards2  // at port 2
};
inline constexpr std::size_t kCheckMethods = 7;

enum class CheckTerm : std::uint8_t {
  Directivity,
  SourceMatch,
  Tracking,
  LoadMatch,
  TransmissionTracking,
  Isolation,
  Directivity2,  // of port 2 as a source, like the next two
  SourceMatch2,
  Tracking2
};
inline constexpr std::size_t kCheckTerms = 9;

// The name of a term, and its limit.
struct CheckTermRow {
  std::string_view Name;    // "Directivity"
  std::string_view Column;  // in the trend file
  bool AsGain;  // a tracking error, shown as 20 log10(1 + size); otherwise 20 log10(size)
  std::optional<double> LimitDb;
};
const CheckTermRow& RowOf(CheckTerm term);
// "directivity", for the middle of a sentence.
std::string NameInText(CheckTerm term);
// The size of a term in decibels, by the formula of its row.
double TermDb(CheckTerm term, double size);
// True if a calibration of this kind corrects the term. One direction does not correct the load
// match and port 2 as a source, and S21 alone corrects neither match: for these a check finds the
// test set's own values.
bool Corrects(std::optional<SweepMode> calibration, CheckTerm term);

// A term over the points of the sweep that checked it.
struct TermFound {
  bool Known = false;
  PlanGrid Grid;
  int First = 0, Last = -1;              // range of points where it is known
  std::array<float, kMaxPoints> Size{};  // as found at each point
  std::array<float, kMaxPoints> Rms{};   // around each point, for the uncertainty
  bool HasValues = false;                // the check found complex values, not only sizes
  std::array<std::complex<float>, kMaxPoints> Values{};  // of a load match by a through: what was
                                                         // measured, see CalCheck::Take
  CheckMethod By = CheckMethod::Standards;
  bool SameKit = false;  // checked with the calibration's own kit, whose errors it cannot detect
  std::int64_t Utc = 0;
};

// Bandwidth in hertz for averaging the sizes for an uncertainty.
inline constexpr double kResidualWindow = 600e6;

struct WorstTerm {
  double Size = 0, Db = 0, Hz = 0;
};

// The residual terms found by the checks of this calibration. A new check of a term replaces its
// previous result.
class CalCheck {
 public:
  // Clears everything, because another calibration is active.
  void Forget() { *this = CalCheck(); }
  bool Any() const;
  const TermFound& Of(CheckTerm term) const { return terms_[static_cast<std::size_t>(term)]; }

  // Stores the sizes of one term at each point of the grid, known from first to last.
  void Take(CheckTerm term, const PlanGrid& grid, int first, int last,
            std::span<const double> sizes, CheckMethod by, std::int64_t utc, bool sameKit = false);
  // The same from complex values. A load match found by a through measured again is derived from
  // its corrected reflection x = S11 and the directivity D of port 1: the source sees the
  // directivity and, with a transmission of 1, the load match, x = D + L, so that L = x - D. The
  // through of the calibration was measured with the same one-port terms, so a wrong load leaves L
  // = -D, and x shows neither. D turns as x does whatever the length of the through; only the phase
  // of L depends on it. Left out are T L, M L^2 and the tracking of the through times the load
  // match before correction. If only the size of D is known (by ripple, or beyond the points of its
  // check), L has the size sqrt(|x|^2 + |D|^2), which is a bound of its mean square; without D it
  // has that of x, and D is a missing term of S21. A later check of the directivity derives L
  // again.
  void Take(CheckTerm term, const PlanGrid& grid, int first, int last, std::span<const Cplx> values,
            CheckMethod by, std::int64_t utc, bool sameKit = false);
  // True if the load match is known by a through, and so contains or needs the directivity.
  bool LoadMatchNeedsDirectivity() const;

  // The size at a frequency, by linear interpolation between the points; outside the known range,
  // the nearest value. Empty if the term has not been checked.
  std::optional<double> At(CheckTerm term, double hz) const;
  std::optional<WorstTerm> Worst(CheckTerm term) const;
  // All sizes at a frequency for an uncertainty, 0 if unknown: the RMS over kResidualWindow around
  // it. A residual is a sum of reflections at different positions, so its size has nulls over
  // frequency, c / 2l apart for positions l apart. At a null the sum happens to vanish at one
  // frequency during the check; the next connection moves the null. An uncertainty from the size at
  // that single point would also vanish there. The RMS over the period of reflections 250 mm apart
  // does not, and it preserves the mean square over frequency, so that the band is as wide as
  // before on average. The largest size in the window would make it too wide.
  ResidualSizes SizesAt(double hz) const;

 private:
  void DeriveLoadMatch();
  // By linear interpolation: double of float, Cplx of complex<float>.
  template <class Value>
  static auto Between(const TermFound& found, const std::array<Value, kMaxPoints>& values,
                      double hz);

  std::array<TermFound, kCheckTerms> terms_;
};

// One check as stored in the trend file: the worst value in dB of each term that it found.
struct CheckSummary {
  std::int64_t Utc = 0;
  int Serial = 0;
  CheckMethod Method = CheckMethod::Standards;
  std::optional<float> DegC;
  std::optional<std::int64_t> CalMadeUtc;
  PlanGrid Grid;
  std::optional<SweepMode> Calibration;  // the kind of the checked calibration
  std::string Standard;  // the kit, or "300 mm" for the air line; empty: not recorded
  std::array<std::optional<WorstTerm>, kCheckTerms> Terms;
};
// True if two checks are comparable in a trend: same instrument, kind of calibration, method, kit
// or line, and span. The method includes the port.
bool IsSameKind(const CheckSummary& a, const CheckSummary& b);

// "Good", or the problems, one per line: a term that the calibration corrects and that is above its
// limit, or a term that is worse than mean + 3 s of the last ten checks of the same kind (at least
// five of them), by at least one displayed digit. Of these ten, values that are worse than their
// median by more than 5 * 1.4826 MAD (and ten digits) do not count, so that one bad check does not
// widen the trend. A better value is not a problem. If no term of the check has a limit, and for a
// check of the isolation, the lines are what was found instead of "Good": "Isolation -88.1 dB at
// 843 MHz: no limit".
struct CheckVerdict {
  bool Good = true;
  std::vector<std::string> Lines;
};
CheckVerdict JudgeCheck(const CheckSummary& check, std::span<const CheckSummary> earlier);

// The name of a check in windows and files.
std::string_view MethodName(CheckMethod method);

// The size of the error of a transmission s21 that should be 1: |s21 - 1|, or that of its gain if
// it is larger, so that TermDb of a loss is the loss: 3 dB of loss are 3 dB. An error of the phase
// counts as one of the gain of the same size: the uncertainty takes a tracking error with any
// phase, and a verdict on the gain alone would contradict it.
double TransmissionError(Cplx s21);

// The length in metres of the line that has the phase of this transmission, by least squares
// through zero; f in hertz. For less than a third of a turn at each point.
double LengthOfThrough(std::span<const double> f, std::span<const Cplx> s21);

// "-38.2 dB"; "0.041 dB" for a tracking error.
std::string TermDbText(CheckTerm term, double db);
// True if the term is above the limit of its row.
bool IsTooLarge(CheckTerm term, double db);

// The terms in the uncertainty of a parameter. That of S21 contains the directivity if its load
// match was found by a through.
std::span<const CheckTerm> TermsOf(const CalCheck& check, Parameter parameter);
// True for those of port 2 as a source.
bool IsOfPort2(CheckTerm term);

// The terms of TermsOf that no check has found, without those of port 2: "load match, isolation".
// Empty if all are known. A calibration of S11 has no load match: what is at port 2 belongs to the
// device.
std::string MissingTerms(const CalCheck& check, std::optional<SweepMode> calibration,
                         Parameter parameter);

}  // namespace qk
