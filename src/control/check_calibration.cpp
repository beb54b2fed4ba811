// SPDX-License-Identifier: MIT
#include "control/check_calibration.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <utility>

#include "cal/correction.h"
#include "cal/kit_reflection.h"
#include "cal/standard_sweeps.h"
#include "cal/standards.h"
#include "control/quality_watch.h"
#include "core/text.h"
#include "files/check_trend.h"
#include "numeric/complex.h"

namespace qk {

namespace {
constexpr const char* kTitle = "Check Calibration";
constexpr const char* kLessDirectivity = "less directivity";  // of a load match, in the trend
constexpr const char* kTwoAlike = "Two of the three standards measure the same: no result.";
constexpr const char* kPort2Open = "Three standards at port 2 check its short and open.";

ComplexArray& RawS11(Session& s) {
  return s.Data.RawS11;
}
ComplexArray& RawS21(Session& s) {
  return s.Data.RawS21;
}
ComplexArray& RawS12(Session& s) {
  return s.Data.RawS12;
}
ComplexArray& RawS22(Session& s) {
  return s.Data.RawS22;
}

constexpr std::array<Store, 4> kStores{{{&RawPoint::S11, RawS11},
                                        {&RawPoint::S21, RawS21},
                                        {&RawPoint::S12, RawS12},
                                        {&RawPoint::S22, RawS22}}};

// The destinations of the parameters that a kind of sweep delivers.
std::array<Store, 4> StoresOf(SweepMode mode) {
  std::array<Store, 4> stores = kStores;
  if (mode == SweepMode::S21) stores[0] = {};
  if (mode == SweepMode::S11) stores[1] = {};
  if (mode != SweepMode::All) stores[2] = stores[3] = {};
  return stores;
}

void CorrectAll(Session& session, SweepMode mode) {
  for (int k = 0; k < session.Plan.NumPoints; ++k) {
    switch (mode) {
      case SweepMode::S11:
        CorrectS11Point(session, k);
        break;
      case SweepMode::S21:
        CorrectS21Point(session, k);
        break;
      case SweepMode::S11S21:
        CorrectS11Point(session, k);
        CorrectEnhancedPoint(session, k);
        break;
      case SweepMode::All:
        Correct12TermPoint(session, k);
        break;
    }
  }
}

std::vector<Cplx> AsComplex(const ComplexArray& array, int points) {
  std::vector<Cplx> values;
  values.reserve(static_cast<std::size_t>(points));
  for (int k = 0; k < points; ++k) values.emplace_back(array[k].re, array[k].im);
  return values;
}

Cplx AsComplex(Complex z) {
  return {z.re, z.im};
}

// The corrected sweeps of a check.
struct Device {
  std::vector<Cplx> S11, S21, S22 = {};
};

// Saves the measured data of the session and restores them after the check.
class KeptData {
 public:
  explicit KeptData(Session& session)
      : session_(session), data_(std::make_unique<SParamData>(session.Data)) {}
  ~KeptData() { session_.Data = *data_; }
  KeptData(const KeptData&) = delete;
  KeptData& operator=(const KeptData&) = delete;

 private:
  Session& session_;
  std::unique_ptr<SParamData> data_;
};

std::optional<Device> Measure(Rig& rig, const std::string& prompt, const SweepWatch& watch) {
  Session& session = rig.session;
  const SweepMode mode = *ModeInForce(session.Cal);
  const KeptData kept(session);
  const StandardSweep sweep{kTitle, prompt, mode, StoresOf(mode)};
  if (!MeasureSweeps(rig, std::span(&sweep, 1), watch)) return std::nullopt;
  CorrectAll(session, mode);
  const int points = session.Plan.NumPoints;
  return Device{AsComplex(session.Data.S11, points), AsComplex(session.Data.S21, points),
                AsComplex(session.Data.S22, points)};
}

// Measures the raw reflection at port 1, whatever the calibration measures. Uses the sweep of both
// parameters, because the S11 sweep disconnects port 2 from the path.
std::optional<Device> MeasureRawS11(Rig& rig, const std::string& prompt, const SweepWatch& watch) {
  Session& session = rig.session;
  const KeptData kept(session);
  const StandardSweep sweep{kTitle, prompt, SweepMode::S11S21, StoresOf(SweepMode::S11)};
  if (!MeasureSweeps(rig, std::span(&sweep, 1), watch)) return std::nullopt;
  return Device{AsComplex(session.Data.RawS11, session.Plan.NumPoints), {}};
}

std::vector<double> Frequencies(const PlanGrid& grid) {
  std::vector<double> f;
  f.reserve(static_cast<std::size_t>(grid.NumPoints));
  for (int k = 0; k < grid.NumPoints; ++k) f.push_back(grid.Frequency(k));
  return f;
}

constexpr std::array kPort1Terms{CheckTerm::Directivity, CheckTerm::SourceMatch,
                                 CheckTerm::Tracking};
constexpr std::array kPort2Terms{CheckTerm::Directivity2, CheckTerm::SourceMatch2,
                                 CheckTerm::Tracking2};

// Stores the results of a check in CalCheck, with position and method.
struct Finding {
  CalCheck& Check;
  const PlanGrid& Grid;
  CheckMethod By;
  std::int64_t Utc;
  bool SameKit = false;
  std::string Standard = {};  // as in CheckSummary
  std::vector<CheckTerm> Terms = {};
  std::string Scope = {};  // instead of "Good", if the check shows a part only

  void Take(CheckTerm term, int first, int last, std::span<const double> sizes) {
    Check.Take(term, Grid, first, last, sizes, By, Utc, SameKit);
    Terms.push_back(term);
  }
  void Take(CheckTerm term, int first, int last, std::span<const Cplx> values) {
    Check.Take(term, Grid, first, last, values, By, Utc, SameKit);
    Terms.push_back(term);
  }
  // The terms are those of a port: directivity, source match and tracking.
  void TakeResiduals(int first, int last, std::span<const Residual> points,
                     const std::array<CheckTerm, 3>& terms = kPort1Terms) {
    std::vector<Cplx> d, m, t;
    for (std::vector<Cplx>* values : {&d, &m, &t}) values->reserve(points.size());
    for (const Residual& r : points) {
      d.push_back(r.Directivity);
      m.push_back(r.SourceMatch);
      t.push_back(r.Tracking);
    }
    Take(terms[0], first, last, d);
    Take(terms[1], first, last, m);
    Take(terms[2], first, last, t);
  }
};

std::string LineWord(double mm) {
  return PlainNumber(mm) + " mm";
}

std::string LineText(double mm) {
  return " behind the air line of " + LineWord(mm);
}

bool Refuse(Rig& rig, const std::string& why) {
  rig.host.prompts.ShowMessage(kTitle, why, Icon::Exclamation);
  return false;
}

std::string Decibels(double size) {
  return FormatNumber(20 * Log10Floored(size), "#0.0");
}

constexpr double kWrongStandard = 0.5;     // distance of a reflection from that of the kit
constexpr double kLeastRawTracking = 0.1;  // of a test set; less: two standards measure the same
constexpr double kMostRawMatch = 0.7;
constexpr double kWrongThrough = 0.3;  // distance of S21 from 1
constexpr double kWrongGain = 0.1;     // of |S21| from 1: 0.9 dB, a pad
// The phase of a line, not of a cable that moved a little. A shorter line is within the band.
constexpr double kLongestThrough = 2e-3, kLeastTurn = 2 * std::numbers::pi / 180;
constexpr double kLeastTurnOfLine = kLeastTurn / 10;  // if all of the phase is that of a line
constexpr double kConnected = 0.1;  // transmission between ports that are not terminated
constexpr double kMostMismatch = 0.5;

// The port whose standards are measured: short, open and load, in this order.
struct PortOfKit {
  CalKit Session::*Kit;
  std::string CalRecord::*KitThen;  // its name in the record of the calibration
  std::array<Standard, 3> Standards;
  std::vector<Cplx> Device::*Reflection;
  std::array<CheckTerm, 3> Terms;
};
constexpr PortOfKit kPort1{&Session::Kit1,
                           &CalRecord::Kit1,
                           {Standard::ShortS11, Standard::OpenS11, Standard::LoadS11},
                           &Device::S11,
                           kPort1Terms};
constexpr PortOfKit kPort2{&Session::Kit2,
                           &CalRecord::Kit2,
                           {Standard::ShortPort2, Standard::OpenPort2, Standard::LoadPort2},
                           &Device::S22,
                           kPort2Terms};

// True if the kit in use is that of the calibration, or if that one is not known.
bool HasKitOfCalibration(const Session& session, const PortOfKit& port) {
  const std::string& then = session.CalMade.*port.KitThen;
  return then.empty() || then == (session.*port.Kit).KitName;
}

// The reflections of short, open and load at each point.
std::vector<std::array<Cplx, 3>> KnownOf(const CalKit& kit, const Session& session,
                                         const PlanGrid& grid) {
  LoadTable table(kit);
  std::vector<std::array<Cplx, 3>> known;
  known.reserve(static_cast<std::size_t>(grid.NumPoints));
  for (int k = 0; k < grid.NumPoints; ++k) {
    const KitReflections g = ReflectionsOf(kit, table, grid.Frequency(k),
                                           static_cast<double>(session.Impedance.SystemZo));
    known.push_back({AsComplex(g.Short), AsComplex(g.Open), AsComplex(g.Load)});
  }
  return known;
}

// Measures short, open and load of the port's kit; the result is the residual of the one-port model
// at each point. raw: uncorrected, as the test set measures it. A standard whose reflection is not
// that of the kit is refused: no calibration in use is that wrong, unless it was itself made with
// another standard. Empty after a message.
std::optional<std::vector<Residual>> MeasureKit(Rig& rig, const PlanGrid& grid,
                                                const PortOfKit& port, const SweepWatch& watch,
                                                bool raw) {
  constexpr std::array kNames{"short", "open", "load"};
  const Session& session = rig.session;
  const auto known = KnownOf(session.*port.Kit, session, grid);
  std::array<std::vector<Cplx>, 3> measured;
  for (std::size_t i = 0; i < port.Standards.size(); ++i) {
    const std::string prompt = port.Kit == &Session::Kit1
                                   ? SweepOf(session, port.Standards[i]).Prompt
                                   : PromptAtPort2(session, port.Standards[i]);
    auto device = raw ? MeasureRawS11(rig, prompt, watch) : Measure(rig, prompt, watch);
    if (!device) return std::nullopt;
    measured[i] = std::move((*device).*port.Reflection);
    if (raw) continue;
    std::vector<Cplx> away;
    away.reserve(known.size());
    for (std::size_t k = 0; k < known.size(); ++k) away.push_back(measured[i][k] - known[k][i]);
    if (MedianSize(away) <= kWrongStandard) continue;
    Refuse(rig, std::string("What was measured is not the ") + kNames[i] +
                    " of the kit, or the calibration was made with a wrong standard.");
    return std::nullopt;
  }
  std::vector<Residual> points;
  std::vector<Cplx> tracking;
  points.reserve(known.size());
  tracking.reserve(known.size());
  for (std::size_t k = 0; k < known.size(); ++k) {
    const auto found =
        ResidualFromThree(known[k], {measured[0][k], measured[1][k], measured[2][k]});
    if (!found) {
      Refuse(rig, kTwoAlike);
      return std::nullopt;
    }
    points.push_back(*found);
    tracking.push_back(1.0 + found->Tracking);
  }
  if (raw && MedianSize(tracking) < kLeastRawTracking) {
    Refuse(rig, kTwoAlike);
    return std::nullopt;
  }
  return points;
}

bool CheckByStandards(Rig& rig, Finding& finding, const PortOfKit& port, const SweepWatch& watch,
                      std::string& note) {
  const auto points = MeasureKit(rig, finding.Grid, port, watch, false);
  if (!points) return false;
  finding.Standard = TrendWord((rig.session.*port.Kit).KitName);
  finding.SameKit = HasKitOfCalibration(rig.session, port);
  finding.TakeResiduals(0, finding.Grid.NumPoints - 1, *points, port.Terms);
  note = finding.SameKit
             ? "The kit used for the calibration shows drift and repeatability only; another kit "
               "shows the residuals."
             : "";
  return true;
}

// Finds the matches of the two ports, which an S21 calibration does not correct: that of port 1
// from raw reflections of the kit, and then that of port 2 from a through.
bool CheckPortMatch(Rig& rig, Finding& finding, const SweepWatch& watch, std::string& note) {
  const auto points = MeasureKit(rig, finding.Grid, kPort1, watch, true);
  if (!points) return false;
  const auto through = MeasureRawS11(rig, "Connect Through (0.00 mm)", watch);
  if (!through) return false;
  std::vector<Cplx> source, matches;
  source.reserve(points->size());
  matches.reserve(points->size());
  for (std::size_t k = 0; k < points->size(); ++k) {
    const Residual& box = (*points)[k];
    source.push_back(box.SourceMatch);
    const Cplx x = through->S11[k] - box.Directivity;
    matches.push_back(x / (1.0 + box.Tracking + box.SourceMatch * x));
  }
  if (const double size = MedianSize(matches); size > kMostRawMatch)
    return Refuse(rig, "The far end of the through reflects " + Decibels(size) +
                           " dB: connect the ports directly to each other.");
  finding.Standard = TrendWord(rig.session.Kit1.KitName);
  const int last = finding.Grid.NumPoints - 1;
  finding.Take(CheckTerm::SourceMatch, 0, last, source);
  finding.Take(CheckTerm::LoadMatch, 0, last, matches);
  note = "The matches of the test set: a calibration of S21 does not correct them.";
  return true;
}

bool CheckByShortedLine(Rig& rig, Finding& finding, double lineMm, const SweepWatch& watch,
                        std::string& note) {
  const auto device = Measure(rig, "Short Circuit on Port 1" + LineText(lineMm), watch);
  if (!device) return false;
  std::string why;
  const ResidualSweep found =
      ResidualFromShortedLine(Frequencies(finding.Grid), device->S11, lineMm / 1000, &why);
  if (found.Empty()) return Refuse(rig, why);
  finding.Standard = LineWord(lineMm);
  finding.Scope = "Good as far as a line shows; not checked: tracking like length or loss";
  finding.TakeResiduals(found.First, found.Last, found.Points);
  const double top = finding.Grid.Frequency(found.Last);
  const double hidden =
      std::abs(4 * std::numbers::pi * top / kSpeedOfLight * (found.Line.Metres - lineMm / 1000));
  note = "Line of " + FormatNumber(found.Line.Metres * 1000, "#0.0") + " mm, loss " +
         FormatNumber(found.Line.LossDbAt1GHz, "#0.000") + " dB at 1 GHz. Valid from " +
         FormatNumber(finding.Grid.Frequency(found.First) / 1e6, "#0") + " to " +
         FormatNumber(top / 1e6, "#0") +
         " MHz. Tracking that acts like length or loss of the line is not found: if the line has "
         "exactly " +
         LineWord(lineMm) + ", " + Decibels(hidden) + " dB at " + FormatNumber(top / 1e6, "#0") +
         " MHz.";
  return true;
}

bool CheckByMismatchedLine(Rig& rig, Finding& finding, double lineMm, const SweepWatch& watch,
                           std::string& note) {
  const auto device = Measure(rig, "Mismatch on Port 1" + LineText(lineMm), watch);
  if (!device) return false;
  int first = 0, last = -1;
  const std::vector<double> ripple =
      HalfRipple(Frequencies(finding.Grid), device->S11, AirLine{lineMm / 1000, 0}, first, last);
  if (last < first)
    return Refuse(rig,
                  "A longer line, a wider span or more points are needed: one period of the "
                  "ripple must lie in the sweep.");
  if (const double size = MedianSize(device->S11); size > kMostMismatch)
    return Refuse(rig, "What was measured reflects " + Decibels(size) +
                           " dB: it is not a mismatch. Behind a short, use the other method.");
  const double metres = LengthByPhase(Frequencies(finding.Grid), device->S11, lineMm / 1000);
  if (!IsLength(metres, lineMm / 1000))
    return Refuse(rig, "The phase is that of a line of " + FormatNumber(metres * 1000, "#0.0") +
                           " mm, not of " + PlainNumber(lineMm) +
                           " mm: the length, the mismatch or the calibration is wrong.");
  finding.Standard = LineWord(lineMm);
  finding.Take(CheckTerm::Directivity, first, last, ripple);
  note = "Directivity alone, from half of the ripple: valid from " +
         FormatNumber(finding.Grid.Frequency(first) / 1e6, "#0") + " to " +
         FormatNumber(finding.Grid.Frequency(last) / 1e6, "#0") + " MHz.";
  return true;
}

// What a through that is good does not show: a wrong load of the calibration cancels in it.
std::string ScopeOfThrough(const CalCheck& check) {
  std::string missing;
  for (const CheckTerm term : {CheckTerm::Directivity, CheckTerm::SourceMatch}) {
    if (check.Of(term).Known) continue;
    missing += (missing.empty() ? "" : ", ") + NameInText(term);
  }
  return missing.empty() ? missing : "Good as far as a through shows; not checked: " + missing;
}

// True if the phase of this transmission is that of the line over frequencies from near zero: less
// than a quarter of it (RMS) remains. A constant phase leaves half.
bool HasPhaseOfLine(std::span<const double> f, std::span<const Cplx> s21, double metres) {
  double all = 0, rest = 0;
  for (std::size_t k = 0; k < f.size(); ++k) {
    const double phase = std::arg(s21[k]);
    const double left = phase + 2 * std::numbers::pi * f[k] * metres / kSpeedOfLight;
    all += phase * phase;
    rest += left * left;
  }
  return f.front() < f.back() / 4 && rest < all / 16;
}

bool CheckByThrough(Rig& rig, Finding& finding, const SweepWatch& watch, std::string& note) {
  const Session& session = rig.session;
  const auto device = Measure(rig, "Connect Through (0.00 mm)", watch);
  if (!device) return false;
  std::vector<Cplx> errors;
  std::vector<double> tracking;
  errors.reserve(device->S21.size());
  tracking.reserve(device->S21.size());
  for (const Cplx& s21 : device->S21) {
    errors.push_back(s21 - 1.0);
    tracking.push_back(TransmissionError(s21));
  }
  const double gain = MedianSize(device->S21);
  if (MedianSize(errors) > kWrongThrough || std::abs(gain - 1) > kWrongGain)
    return Refuse(rig, "What was measured is not a through of zero length (S21 " + Decibels(gain) +
                           " dB): connect the ports directly to each other.");
  const int last = finding.Grid.NumPoints - 1;
  const std::vector<double> f = Frequencies(finding.Grid);
  const double metres = LengthOfThrough(f, device->S21);
  const double turn =
      2 * std::numbers::pi * finding.Grid.Frequency(last) * std::abs(metres) / kSpeedOfLight;
  const bool line =
      turn > kLeastTurn || (turn > kLeastTurnOfLine && HasPhaseOfLine(f, device->S21, metres));
  if (std::abs(metres) > kLongestThrough && line)
    return Refuse(rig, "S21 has the phase of a line of " + FormatNumber(metres * 1000, "#0.0") +
                           " mm: the through must have zero length, now and in the calibration.");
  const bool directivity = finding.Check.Of(CheckTerm::Directivity).Known;
  if (!session.Cal.CalS21) {
    if (directivity) finding.Standard = kLessDirectivity;
    finding.Take(CheckTerm::LoadMatch, 0, last, device->S11);
  }
  finding.Take(CheckTerm::TransmissionTracking, 0, last, tracking);
  const auto worst =
      static_cast<std::size_t>(std::ranges::max_element(tracking) - tracking.begin());
  note = "The through must have zero length: connect the ports directly to each other. It reads " +
         FormatNumber(20 * Log10Floored(std::abs(device->S21[worst])), "#0.000") + " dB, " +
         FormatNumber(std::arg(device->S21[worst]) * 180 / std::numbers::pi, "#0.0#") + " deg at " +
         FormatNumber(finding.Grid.Frequency(static_cast<int>(worst)) / 1e6, "#0") + " MHz.";
  if (session.Cal.CalS11S21)
    note += " The load match is that of the test set: S11+S21 does not correct it.";
  if (!session.Cal.CalS21) finding.Scope = ScopeOfThrough(finding.Check);
  return true;
}

// With loads at both ports, S22 is the directivity that a calibration of both directions left at
// port 2. A through measured again does not show it: a wrong load of the calibration cancels there.
bool CheckByIsolation(Rig& rig, Finding& finding, const SweepWatch& watch) {
  const auto device = Measure(rig, "Terminate Ports 1 & 2", watch);
  if (!device) return false;
  if (const double size = MedianSize(device->S21); size > kConnected)
    return Refuse(
        rig, "Between the ports " + Decibels(size) + " dB is transmitted: terminate both of them.");
  const CalState& cal = rig.session.Cal;
  for (const auto& [port, reflection] : {std::pair{"1", cal.CalS21 ? nullptr : &device->S11},
                                         std::pair{"2", cal.Cal12Term ? &device->S22 : nullptr}}) {
    const double size = reflection != nullptr ? MedianSize(*reflection) : 0;
    if (size > kWrongStandard)
      return Refuse(rig, std::string("Port ") + port + " reflects " + Decibels(size) +
                             " dB: connect loads to both ports.");
  }
  std::vector<double> leak;
  leak.reserve(device->S21.size());
  for (const Cplx& s21 : device->S21) leak.push_back(std::abs(s21));
  const int last = finding.Grid.NumPoints - 1;
  finding.Take(CheckTerm::Isolation, 0, last, leak);
  if (!cal.Cal12Term) return true;
  finding.SameKit = HasKitOfCalibration(rig.session, kPort2);
  finding.Take(CheckTerm::Directivity2, 0, last, device->S22);
  return true;
}

bool Run(Rig& rig, Finding& finding, const CheckRequest& request, const SweepWatch& watch,
         std::string& note) {
  switch (request.Method) {
    case CheckMethod::Standards:
      return CheckByStandards(rig, finding, kPort1, watch, note);
    case CheckMethod::Standards2:
      return CheckByStandards(rig, finding, kPort2, watch, note);
    case CheckMethod::ShortedLine:
      return CheckByShortedLine(rig, finding, request.LineMm, watch, note);
    case CheckMethod::MismatchedLine:
      return CheckByMismatchedLine(rig, finding, request.LineMm, watch, note);
    case CheckMethod::Through:
      return CheckByThrough(rig, finding, watch, note);
    case CheckMethod::PortMatch:
      return CheckPortMatch(rig, finding, watch, note);
    case CheckMethod::Isolation:
      break;
  }
  return CheckByIsolation(rig, finding, watch);
}
}  // namespace

std::optional<std::string> WhyNoCheck(const Session& session, CheckMethod method) {
  const auto mode = ModeInForce(session.Cal);
  if (!mode) return "No Calibration";
  if (!session.Flags.SweepLoaded) return "Sweep Not Set";
  const bool transmission = method == CheckMethod::Through || method == CheckMethod::Isolation;
  if (method == CheckMethod::PortMatch)
    return *mode == SweepMode::S21
               ? std::nullopt
               : std::optional<std::string>(
                     "Only a calibration of S21 alone leaves both matches uncorrected.");
  if (method == CheckMethod::Standards2)
    return *mode == SweepMode::All ? std::nullopt
                                   : std::optional<std::string>(
                                         "Only a calibration of both directions corrects port 2.");
  if (transmission && *mode == SweepMode::S11) return "The calibration in force has no S21.";
  if (!transmission && *mode == SweepMode::S21) return "The calibration in force has no S11.";
  return std::nullopt;
}

namespace {
// The trend file does not name the load of port 2 in a check of the isolation: it may be that of
// the calibration.
bool IsSameKit(const CheckSummary& check, CheckTerm term, const Session& session) {
  const bool standards =
      check.Method == CheckMethod::Standards || check.Method == CheckMethod::Standards2;
  if (!standards) return check.Method == CheckMethod::Isolation && IsOfPort2(term);
  const std::string& kit = IsOfPort2(term) ? session.CalMade.Kit2 : session.CalMade.Kit1;
  return kit.empty() || check.Standard.empty() || check.Standard == TrendWord(kit);
}
}  // namespace

LastChecks LastChecksOf(const Session& session, const QualityState& quality) {
  LastChecks last;
  const std::optional<std::int64_t>& made = session.CalMade.MadeUtc;
  const auto trend = ReadCheckTrend(CheckTrendPath(session));
  if (trend && made)
    for (const CheckSummary& check : *trend) {
      if (check.Serial != session.Id.SerialNumber || check.CalMadeUtc != made) continue;
      for (std::size_t i = 0; i < kCheckTerms; ++i)
        if (check.Terms[i])
          last[i] = TermChecked{check.Method, IsSameKit(check, static_cast<CheckTerm>(i), session),
                                check.Utc, *check.Terms[i]};
    }
  if (quality.Calibration != IdentityOf(session)) return last;
  for (std::size_t i = 0; i < kCheckTerms; ++i) {
    const auto term = static_cast<CheckTerm>(i);
    const TermFound& found = quality.Check.Of(term);
    if (const auto worst = quality.Check.Worst(term))
      last[i] = TermChecked{found.By, found.SameKit, found.Utc, *worst};
  }
  return last;
}

std::optional<CheckReport> CheckCalibration(Rig& rig, QualityState& quality,
                                            const CheckRequest& request, const SweepWatch& watch) {
  const Session& session = rig.session;
  if (const auto why = WhyNoCheck(session, request.Method)) {
    Refuse(rig, *why);
    return std::nullopt;
  }
  FollowCalibration(quality, session);
  const bool first = !quality.Check.Any();
  const PlanGrid grid = session.Plan;
  Finding finding{quality.Check, grid, request.Method, rig.host.loop.UnixSeconds()};
  CheckReport report;
  if (!Run(rig, finding, request, watch, report.Note)) return std::nullopt;
  if (first && session.Cal.Cal12Term && request.Method != CheckMethod::Standards2)
    report.Note += std::string(report.Note.empty() ? "" : " ") + kPort2Open;

  CheckSummary& summary = report.Summary;
  summary.Utc = finding.Utc;
  summary.Serial = session.Id.SerialNumber;
  summary.Method = request.Method;
  summary.DegC = session.Receiver.Temperature;
  summary.CalMadeUtc = session.CalMade.MadeUtc;
  summary.Grid = grid;
  summary.Calibration = ModeInForce(session.Cal);
  summary.Standard = finding.Standard;
  for (const CheckTerm term : finding.Terms)
    summary.Terms[static_cast<std::size_t>(term)] = quality.Check.Worst(term);

  const std::string path = CheckTrendPath(session);
  const auto earlier = ReadCheckTrend(path);
  report.Verdict = JudgeCheck(
      summary, earlier ? std::span<const CheckSummary>(*earlier) : std::span<const CheckSummary>());
  if (report.Verdict.Good && !finding.Scope.empty()) report.Verdict.Lines = {finding.Scope};
  if (const auto added = AddToCheckTrend(path, summary); !added)
    rig.host.prompts.ShowMessage(kTitle, added.Why().Text(), Icon::Exclamation);
  rig.host.windows.SessionChanged();
  return report;
}

}  // namespace qk
