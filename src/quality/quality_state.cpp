// SPDX-License-Identifier: MIT
#include "quality/quality_state.h"

#include <algorithm>
#include <array>

#include "core/local_time.h"
#include "core/measured_sweep.h"

namespace qk {

namespace {
double Size(const ComplexArray& array, int k) {
  const Complex z = array[k];
  return Magnitude(z.re, z.im);
}

// That of the run when its sweeps are of this plan, else of the last sweeps.
Spread SpreadAt(const QualityState& quality, const Session& session, Parameter parameter, int k) {
  const PointStatistics* run = quality.Run.Of(parameter);
  if (run != nullptr && SameGrid(quality.Run.Grid(), session.Plan)) return {run->Deviation(k), 1};
  return {quality.Hints.Noise(parameter, k), 1};
}

struct Measured {
  bool S11, S21, Both;
};
Measured MeasuredBy(const CalState& cal) {
  const bool both = cal.Cal12Term;
  return {both || cal.CalS11 || cal.CalS11S21, both || cal.CalS21 || cal.CalS11S21, both};
}

// Without this term there is no uncertainty.
CheckTerm LeastTermOf(Parameter parameter) {
  return RowOf(parameter).Reflection ? CheckTerm::Directivity : CheckTerm::TransmissionTracking;
}

std::string LowerCase(std::string_view name) {
  std::string text(name);
  text[0] = static_cast<char>(text[0] - 'A' + 'a');
  return text;
}

bool MayBeKnown(const Session& session, Parameter parameter) {
  const Measured measured = MeasuredBy(session.Cal);
  const bool delivered = parameter == Parameter::S11   ? measured.S11
                         : parameter == Parameter::S21 ? measured.S21
                                                       : false;
  return delivered && !session.Impedance.DeEmbedOn && !session.Impedance.ZoConvertOn;
}

// The terms that the uncertainty of a parameter needs.
std::array<CheckTerm, 4> TermsOf(Parameter parameter) {
  using enum CheckTerm;
  return RowOf(parameter).Reflection
             ? std::array{Directivity, SourceMatch, Tracking, LoadMatch}
             : std::array{TransmissionTracking, SourceMatch, LoadMatch, Isolation};
}

// Each check that the parameter rests on, once, with the terms that it gave.
struct Basis {
  CheckMethod By;
  std::int64_t Utc;
  std::string Terms;
};
std::vector<Basis> BasisOf(const CalCheck& check, Parameter parameter) {
  std::vector<Basis> basis;
  for (const CheckTerm term : TermsOf(parameter)) {
    const TermFound& found = check.Of(term);
    if (!found.Known) continue;
    const auto same = std::ranges::find_if(
        basis, [&](const Basis& b) { return b.By == found.By && b.Utc == found.Utc; });
    if (same == basis.end())
      basis.push_back({found.By, found.Utc, LowerCase(RowOf(term).Name)});
    else
      same->Terms += ", " + LowerCase(RowOf(term).Name);
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
  if (quality.Check.Of(LeastTermOf(parameter)).Known) return {};
  return "not checked: " + LowerCase(MissingTerms(quality.Check, parameter));
}

std::string UncertaintyBasis(const QualityState& quality, const Session& session,
                             Parameter parameter) {
  if (std::string why = WhyNoUncertainty(quality, session, parameter); !why.empty())
    return why;
  std::string text = "Coverage k = 2 (about 95 %).";
  for (const Basis& basis : BasisOf(quality.Check, parameter))
    text += " " + std::string(MethodName(basis.By)) + " " + UtcText(basis.Utc) + ": " +
            basis.Terms + ".";
  if (const std::string missing = MissingTerms(quality.Check, parameter); !missing.empty())
    text += " Not checked, taken as 0: " + LowerCase(missing) + ".";
  return text + " Left out: linearity of the receiver, cables, connectors.";
}

std::vector<std::string> UncertaintyWords(const QualityState& quality, const Session& session,
                                          Parameter parameter) {
  if (std::string why = WhyNoUncertainty(quality, session, parameter); !why.empty())
    return {"no ±U: " + why};
  std::vector<std::string> words{"±U k=2"};
  const std::string missing = MissingTerms(quality.Check, parameter);
  words.push_back("without " + (missing.empty() ? "" : LowerCase(missing) + ", ") +
                  "linearity, cables");
  for (const Basis& basis : BasisOf(quality.Check, parameter)) {
    std::string moment = UtcText(basis.Utc).substr(0, 16);
    std::ranges::replace(moment, 'T', ' ');
    words.push_back(std::string(MethodName(basis.By)) + " " + moment);
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
  if (!MayBeKnown(session, parameter) || !check.Of(LeastTermOf(parameter)).Known)
    return std::nullopt;

  const ResidualSizes residuals = check.SizesAt(session.Plan.Frequency(k));
  const SParamData& data = session.Data;
  DeviceSizes device;
  const auto [s11, s21, both] = MeasuredBy(session.Cal);
  if (s11) device.S11 = Size(data.S11, k);
  if (s21) device.S21 = Size(data.S21, k);
  if (both) {
    device.S12 = Size(data.S12, k);
    device.S22 = Size(data.S22, k);
  }
  const Spread spread = SpreadAt(quality, session, parameter, k);
  return reflection ? UncertaintyOfReflection(residuals, device, spread)
                    : UncertaintyOfTransmission(residuals, device, spread);
}

}  // namespace qk
