// SPDX-License-Identifier: MIT
#include "display/remarks.h"

#include <algorithm>
#include <cmath>

#include "core/cal_arrays.h"
#include "core/quantity_text.h"
#include "core/text.h"
#include "trace/gate.h"
#include "trace/memory.h"
#include "trace/reference_plane.h"
#include "trace/smoothing.h"
#include "trace/time_domain.h"

namespace qk {

std::vector<std::string> RemarksOf(const Session& session, int number, bool measured) {
  const ChannelSettings& channel = session.Channel(number);
  std::vector<std::string> words;
  if (!measured) words.emplace_back("not measured");
  if (ShowsUnsuitableLimits(session, number))
    words.push_back("Limits for " + BasisText(session.Limits.Of(number)));
  if (session.Averaging.Averages > 1)
    words.push_back("Avg " + std::to_string(session.Averaging.Averages));
  if (IsSmoothed(session, channel))
    words.push_back("Smo " + std::to_string(session.Averaging.SmoothingPercent) + " %");
  if (session.Display.DisplayMode == DisplayMode::MemoryMath &&
      MemoryOf(session, number, session.Display.MemoryNumber).Valid) {
    switch (session.Display.MemoryFunction) {
      case MemoryFunction::Plus:
        words.emplace_back("D+M");
        break;
      case MemoryFunction::Subtract:
        words.emplace_back("D-M");
        break;
      case MemoryFunction::Divide:
        words.emplace_back("D/M");
        break;
      case MemoryFunction::None:
        break;
    }
  }
  if (GateActs(session, channel)) words.emplace_back("Gate");
  const auto plane = static_cast<double>(session.Planes.*PlaneOf(channel.Parameter).Plane);
  if (plane != 0) words.push_back("Plane " + FormatNumber(plane * 1000, "#0.0##") + " mm");
  if (session.Impedance.DeEmbedOn) words.emplace_back("De-embedded");
  if (session.Impedance.ZoConvertOn)
    words.push_back("Zo " + PlainNumber(static_cast<double>(session.Impedance.SystemZo)));
  if (session.Cal.CalInterpolated && session.Cal.AnyKind() && !TermsAreIdeal(session))
    words.emplace_back("Cal interpolated");
  return words;
}

bool LimitsSuit(const ChannelSettings& channel, const ChannelLimits& limits) {
  const UnitFamily family = RowOf(channel.Units).Family;
  const bool oneType = std::ranges::count(kGraphTypes, family, &GraphTypeRow::Family) == 1;
  return channel.Parameter == limits.ForParameter && channel.Units == limits.ForUnits &&
         (channel.GraphType == limits.ForType || oneType);
}

bool ShowsUnsuitableLimits(const Session& session, int number) {
  const ChannelSettings& channel = session.Channel(number);
  return session.Display.ShowLimits && channel.LimitsOn &&
         RowOf(channel.GraphType).Form != PointForm::Chart &&
         !LimitsSuit(channel, session.Limits.Of(number));
}

std::string BasisText(const ChannelLimits& limits) {
  return std::string(NameOf(limits.ForParameter)) + " " + std::string(NameOf(limits.ForType)) +
         " in " + std::string(NameOf(limits.ForUnits));
}

bool IsExempt(const ChannelSettings& channel, int point) {
  return RowOf(channel.GraphType).HasGaps() && NoLimits(channel, point);
}

bool PassesLimits(const ChannelSettings& channel, float value, int point) {
  if (IsExempt(channel, point)) return true;
  const auto k = static_cast<std::size_t>(point);
  return value <= channel.UpperLimit[k] && value >= channel.LowerLimit[k];
}

std::string_view WordOf(Verdict verdict) {
  constexpr std::array<std::string_view, 4> kWords{"PASS", "PASS (part)", "FAIL", "ERROR"};
  return kWords[static_cast<std::size_t>(verdict)];
}

std::string PointText(const Session& session, const ChannelSettings& channel, int point) {
  if (RowOf(channel.GraphType).Form != PointForm::Spectrum)
    return MegahertzText(session.Plan.Frequency(point - 1));
  const TimeDomainState& td = session.TimeDomain;
  const double ns = td.TdT1 + (point - 1) * td.TdStep;
  if (td.Axis == TimeAxis::Distance) return MetresText(MetresAt(session, channel.Parameter, ns));
  return NanosecondsText(ns);
}

std::string VerdictText(const Session& session, int channel, const LimitVerdict& verdict,
                        const std::string& untested) {
  const ChannelSettings& settings = session.Channel(channel);
  std::string text(WordOf(Judged(verdict.Passed, !untested.empty())));
  const std::string at = PointText(session, settings, verdict.Point);
  if (std::isfinite(verdict.Margin))
    text += ", worst margin " + FormatNumber(verdict.Margin, "#0.000") + " " +
            std::string(NameOf(settings.Units)) + " at " + at;
  else
    text += ", no value at " + at;
  return untested.empty() ? text : text + "; not tested: " + untested;
}

}  // namespace qk
