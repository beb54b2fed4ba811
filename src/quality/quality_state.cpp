// SPDX-License-Identifier: MIT
#include "quality/quality_state.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/local_time.h"
#include "core/measured_sweep.h"
#include "core/text.h"

namespace qk {

namespace {
double Size(const ComplexArray& array, int k) {
  const Complex z = array[k];
  return Magnitude(z.re, z.im);
}

// The run of repeated sweeps, if it belongs to this plan and this device.
const PointStatistics* RunOf(const QualityState& quality, const Session& session,
                             Parameter parameter) {
  const SweepRun& run = quality.Run;
  return run.IsOfThisDevice() && SameGrid(run.Grid(), session.Plan) ? run.Of(parameter) : nullptr;
}

// The spread of the run, otherwise of the last sweeps; 0 if IsNoiseKnown is false.
Spread SpreadAt(const QualityState& quality, const Session& session, Parameter parameter, int k) {
  const PointStatistics* run = RunOf(quality, session, parameter);
  const NoiseEstimate noise = run != nullptr ? run->NoiseAt(k, session.Plan.NumPoints)
                                             : quality.Hints.NoiseAt(parameter, k);
  return {noise.Deviation, 1, noise.Freedom};
}

bool IsNoiseKnown(const QualityState& quality, const Session& session, Parameter parameter) {
  return RunOf(quality, session, parameter) != nullptr || quality.Hints.NoiseKnown(parameter);
}

struct Measured {
  bool S11, S21, Both;
};
Measured MeasuredBy(const CalState& cal) {
  const bool both = cal.Cal12Term;
  return {both || cal.CalS11 || cal.CalS11S21, both || cal.CalS21 || cal.CalS11S21, both};
}

// True for terms without which there is no uncertainty: the largest one, and each match that the
// calibration does not correct.
bool Needs(const CalState& cal, Parameter parameter, CheckTerm term) {
  if (term == CheckTerm::Directivity) return RowOf(parameter).Reflection;
  if (term == CheckTerm::TransmissionTracking) return !RowOf(parameter).Reflection;
  if (cal.Cal12Term) return false;
  if (term == CheckTerm::LoadMatch) return cal.CalS21 || cal.CalS11S21;
  return term == CheckTerm::SourceMatch && cal.CalS21;
}

bool MayBeKnown(const Session& session, Parameter parameter) {
  const Measured measured = MeasuredBy(session.Cal);
  const bool delivered = parameter == Parameter::S11   ? measured.S11
                         : parameter == Parameter::S21 ? measured.S21
                                                       : false;
  return delivered && !session.Impedance.DeEmbedOn && !session.Impedance.ZoConvertOn;
}

// The sizes at point k. A calibration in both directions has found the load match of the test set;
// of the others a check has, because they do not correct it.
ResidualSizes SizesFor(const CalCheck& check, const Session& session, int k) {
  ResidualSizes sizes = check.SizesAt(session.Plan.Frequency(k));
  if (!session.Cal.Cal12Term) {
    sizes.RawLoadMatch = sizes.LoadMatch;
    return sizes;
  }
  sizes.RawLoadMatch = Size(session.Terms.Forward.EL, k);
  sizes.RawLoadMatch2 = Size(session.Terms.Reverse.EL, k);
  return sizes;
}

// What no check has looked at of port 2 as a source, which only a calibration of both directions
// corrects: the words for all of it, or short and open if the load was seen with the isolation.
std::string Port2Of(const CalCheck& check, const CalState& cal, const char* words) {
  if (!cal.Cal12Term || check.Of(CheckTerm::SourceMatch2).Known) return {};
  return check.Of(CheckTerm::Directivity2).Known ? ", short and open of port 2" : words;
}

// The terms that a check has found above their limits, although the calibration corrects them:
// "directivity of port 2 -26.0 dB".
std::string TooLargeOf(const CalCheck& check, const CalState& cal, Parameter parameter) {
  std::string text;
  for (const CheckTerm term : TermsOf(check, parameter)) {
    const auto worst = check.Worst(term);
    if (!worst || !Corrects(ModeInForce(cal), term) || !IsTooLarge(term, worst->Db)) continue;
    text += (text.empty() ? "" : ", ") + NameInText(term) + " " + TermDbText(term, worst->Db);
  }
  return text;
}

// True if the reflection tracking of the parameter was found with a line, which hides what acts
// like its length or loss.
bool TrackingByLine(const CalCheck& check, Parameter parameter) {
  const TermFound& tracking = check.Of(CheckTerm::Tracking);
  return RowOf(parameter).Reflection && tracking.Known && tracking.By == CheckMethod::ShortedLine;
}

// The terms that must be checked before there is an uncertainty: "source match, load match".
std::string TermsToCheck(const CalCheck& check, const CalState& cal, Parameter parameter) {
  std::string names;
  for (const CheckTerm term : TermsOf(check, parameter))
    if (!check.Of(term).Known && Needs(cal, parameter, term))
      names += (names.empty() ? "" : ", ") + NameInText(term);
  return names;
}

bool EnoughChecked(const CalCheck& check, const CalState& cal, Parameter parameter) {
  return std::ranges::all_of(TermsOf(check, parameter), [&](CheckTerm term) {
    return check.Of(term).Known || !Needs(cal, parameter, term);
  });
}

// The largest |S22| of a passive reciprocal device with these reflection and transmission. With
// a = |S11|^2, t = |S21|^2 and the absorbed part d = 1 - a - t, the matrix 1 - S^H S has no
// negative eigenvalue if d (1 - t - |S22|^2) >= t (|S11| - |S22|)^2 for the phases that allow most.
// Without loss |S22| = |S11|; for a matched attenuator |S22| <= 1 - t.
double MostS22(double s11, double s21) {
  const double a = s11 * s11, t = s21 * s21;
  const double d = std::max(0.0, 1 - a - t);
  if (t >= 1 || d == 0) return std::max(s11, std::sqrt(std::max(0.0, 1 - t)));
  const double root = t * t * a - (t + d) * (t * a - d * (1 - t));
  return (t * s11 + std::sqrt(std::max(0.0, root))) / (t + d);
}

// The sizes at point k. Parameters that are not measured are assumed to be those of a passive
// reciprocal device, as large as they can be, so that a missing value does not hide a mismatch.
DeviceSizes DeviceAt(const Session& session, int k) {
  const auto [s11, s21, both] = MeasuredBy(session.Cal);
  const SParamData& data = session.Data;
  const auto rest = [](double size) { return std::sqrt(std::max(0.0, 1 - size * size)); };
  DeviceSizes device;
  if (s11) device.S11 = Size(data.S11, k);
  device.S21 = s21 ? Size(data.S21, k) : rest(device.S11);
  if (!s11) device.S11 = rest(device.S21);
  device.S12 = both ? Size(data.S12, k) : std::min(1.0, device.S21);
  device.S22 = both ? Size(data.S22, k) : MostS22(device.S11, device.S21);
  return device;
}

// The parameters that DeviceAt assumes; empty if the formula multiplies them by an unknown 0.
std::string AssumedOf(const QualityState& quality, const CalState& cal) {
  const Measured measured = MeasuredBy(cal);
  if (measured.Both || !quality.Check.Of(CheckTerm::LoadMatch).Known) return {};
  if (measured.S11 && measured.S21) return "S12, S22 assumed";
  return measured.S11 ? "S12, S21 assumed" : "S11, S12, S22 assumed";
}

// Each check that the parameter depends on, once, with the terms that it provided.
struct Basis {
  CheckMethod By;
  bool SameKit;
  std::int64_t Utc;
  std::string Terms;
  std::string Range = {};  // if the check does not cover its sweep

  std::string Name() const { return std::string(MethodName(By)) + (SameKit ? " (same kit)" : ""); }
};
// " (258 to 2745 MHz; the nearest value beyond)"; empty if all points of the check are known.
std::string RangeText(const TermFound& found) {
  if (found.First <= 0 && found.Last >= found.Grid.NumPoints - 1) return {};
  const auto megahertz = [&found](int k) {
    return FormatNumber(found.Grid.Frequency(k) / 1e6, "#0");
  };
  return " (" + megahertz(found.First) + " to " + megahertz(found.Last) +
         " MHz; the nearest value beyond)";
}

std::vector<Basis> BasisOf(const CalCheck& check, Parameter parameter) {
  std::vector<Basis> basis;
  for (const CheckTerm term : TermsOf(check, parameter)) {
    const TermFound& found = check.Of(term);
    if (!found.Known) continue;
    const auto same = std::ranges::find_if(basis, [&](const Basis& b) {
      return b.By == found.By && b.Utc == found.Utc && b.SameKit == found.SameKit;
    });
    if (same == basis.end())
      basis.push_back({found.By, found.SameKit, found.Utc, NameInText(term), RangeText(found)});
    else
      same->Terms += ", " + NameInText(term);
  }
  return basis;
}
}  // namespace

std::string WhyNoUncertainty(const QualityState& quality, const Session& session,
                             Parameter parameter) {
  const std::string name(NameOf(parameter));
  if (parameter != Parameter::S11 && parameter != Parameter::S21)
    return "checks look at S11 and S21, not at " + name;
  const Measured measured = MeasuredBy(session.Cal);
  if (!(parameter == Parameter::S11 ? measured.S11 : measured.S21)) return name + " not measured";
  if (session.Impedance.DeEmbedOn) return "not known after de-embedding";
  if (session.Impedance.ZoConvertOn) return "not known after impedance conversion";
  if (EnoughChecked(quality.Check, session.Cal, parameter)) return {};
  return "not checked: " + TermsToCheck(quality.Check, session.Cal, parameter);
}

std::string WhyNoWholeUncertainty(const QualityState& quality, const Session& session,
                                  Parameter parameter) {
  if (std::string why = WhyNoUncertainty(quality, session, parameter); !why.empty()) return why;
  if (IsNoiseKnown(quality, session, parameter)) return {};
  return "noise not known: four sweeps of the device are needed";
}

std::string UncertaintyBasis(const QualityState& quality, const Session& session,
                             Parameter parameter) {
  if (std::string why = WhyNoUncertainty(quality, session, parameter); !why.empty()) return why;
  std::string text = "Coverage k = 2 (about 95 %).";
  bool sameKit = false;
  for (const Basis& basis : BasisOf(quality.Check, parameter)) {
    text += " " + basis.Name() + " " + UtcText(basis.Utc) + ": " + basis.Terms + basis.Range + ".";
    sameKit = sameKit || basis.SameKit;
  }
  if (const std::string large = TooLargeOf(quality.Check, session.Cal, parameter); !large.empty())
    text += " Above the limit: " + large + ".";
  if (TrackingByLine(quality.Check, parameter))
    text += " Tracking that acts like length or loss of the line is not included.";
  if (session.Cal.CalInterpolated)
    text +=
        " The calibration is interpolated: a check made at other points does not show what that "
        "adds.";
  if (sameKit)
    text += " The check used the kit of the calibration: errors of that kit are not found.";
  if (const std::string missing = MissingTerms(quality.Check, ModeInForce(session.Cal), parameter);
      !missing.empty())
    text += " Not checked, taken as 0: " + missing + ".";
  if (const std::string assumed = AssumedOf(quality, session.Cal); !assumed.empty())
    text += " " + assumed + " as large as a passive device may have them: U is a bound.";
  text += " Left out: ";
  if (!IsNoiseKnown(quality, session, parameter)) text += "noise (too few sweeps so far), ";
  return text + "linearity of the receiver, cables, connectors" +
         Port2Of(quality.Check, session.Cal, ", errors of port 2") + ".";
}

std::vector<std::string> UncertaintyWords(const QualityState& quality, const Session& session,
                                          Parameter parameter) {
  if (std::string why = WhyNoUncertainty(quality, session, parameter); !why.empty())
    return {"no ±U: " + why};
  std::vector<std::string> words{"±U k=2"};
  const std::vector<Basis> checks = BasisOf(quality.Check, parameter);
  if (std::ranges::any_of(checks, &Basis::SameKit)) words.emplace_back("same kit");
  const std::string missing = MissingTerms(quality.Check, ModeInForce(session.Cal), parameter);
  const std::string_view noise = IsNoiseKnown(quality, session, parameter) ? "" : "noise, ";
  const std::string_view line =
      TrackingByLine(quality.Check, parameter) ? "tracking like length of the line, " : "";
  words.push_back("without " + (missing.empty() ? "" : missing + ", ") + std::string(line) +
                  std::string(noise) + "linearity, cables" +
                  Port2Of(quality.Check, session.Cal, ", port 2"));
  if (std::string assumed = AssumedOf(quality, session.Cal); !assumed.empty())
    words.push_back(std::move(assumed));
  if (const std::string large = TooLargeOf(quality.Check, session.Cal, parameter); !large.empty())
    words.push_back("too large: " + large);
  for (const Basis& basis : checks) {
    std::string moment = UtcText(basis.Utc).substr(0, 16);
    std::ranges::replace(moment, 'T', ' ');
    std::string check = std::string(MethodName(basis.By)) + " " + moment;
    if (std::ranges::find(words, check) == words.end()) words.push_back(std::move(check));
  }
  return words;
}

CalIdentity IdentityOf(const Session& session) {
  const PlanGrid& plan = session.Plan.SavedPlan;
  const PortTerms& terms = session.SavedTerms.Forward;
  return {session.CalMade, ModeInForce(session.Cal), plan.StartFreq, plan.StepFreq, terms.ED[0],
          terms.ETT[0]};
}

std::optional<double> UncertaintyAt(const QualityState& quality, const Session& session,
                                    Parameter parameter, int k) {
  const CalCheck& check = quality.Check;
  const bool reflection = RowOf(parameter).Reflection;
  if (!MayBeKnown(session, parameter) || !EnoughChecked(check, session.Cal, parameter))
    return std::nullopt;

  const ResidualSizes residuals = SizesFor(check, session, k);
  const DeviceSizes device = DeviceAt(session, k);
  const Spread spread = SpreadAt(quality, session, parameter, k);
  const double u = reflection ? UncertaintyOfReflection(residuals, device, spread)
                              : UncertaintyOfTransmission(residuals, device, spread);
  return CoveringUncertainty(u, spread);
}

}  // namespace qk
