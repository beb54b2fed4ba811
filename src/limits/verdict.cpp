// SPDX-License-Identifier: MIT
#include "limits/verdict.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/text.h"
#include "trace/smoothing.h"

namespace qk {

namespace {

// How far the value is inside its limits; infinite without any.
double MarginAt(const Session& session, const ChannelSettings& channel, std::size_t point) {
  const float upper = channel.UpperLimit[point], lower = channel.LowerLimit[point];
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  if (upper >= kNoUpperLimit && lower <= kNoLowerLimit) return kInfinity;
  const auto value = static_cast<double>(ShownValue(session, channel, point));
  if (std::isnan(value)) return -kInfinity;
  return std::min(static_cast<double>(upper) - value, value - static_cast<double>(lower));
}

LimitMargin MarginOf(const Session& session, int number) {
  const ChannelSettings& channel = session.Channel(number);
  LimitMargin worst{
      number, channel.Parameter, channel.Units, std::numeric_limits<double>::infinity(), 0, false};
  for (int i = 1; i <= session.Plan.NumPoints; ++i) {
    const double margin = MarginAt(session, channel, static_cast<std::size_t>(i));
    if (margin >= worst.Margin) continue;
    worst.Margin = margin;
    worst.Point = i;
  }
  worst.Failed = worst.Margin < 0;
  return worst;
}

}  // namespace

float ShownValue(const Session& session, const ChannelSettings& channel, std::size_t point) {
  return IsSmoothed(session, channel) ? channel.SmoothValue[point]
                                      : static_cast<float>(channel.Value[point]);
}

bool IsTested(const ChannelSettings& channel, std::span<const Parameter> measured) {
  return channel.LimitsOn && RowOf(channel.GraphType).Form != PointForm::Chart &&
         std::ranges::find(measured, channel.Parameter) != measured.end();
}

std::vector<LimitMargin> LimitMargins(const Session& session, std::span<const Parameter> measured) {
  std::vector<LimitMargin> margins;
  if (!session.Display.ShowLimits) return margins;
  const DisplaySetRow& shown = RowOf(session.Display.DisplaySet);
  for (int n = shown.First; n <= shown.Last; ++n)
    if (IsTested(session.Channel(n), measured)) margins.push_back(MarginOf(session, n));
  return margins;
}

bool AnyLimits(const Session& session, std::span<const Parameter> measured) {
  return std::ranges::any_of(LimitMargins(session, measured),
                             [](const LimitMargin& margin) { return margin.Point != 0; });
}

bool AnyFailed(const std::vector<LimitMargin>& margins) {
  return std::ranges::any_of(margins, &LimitMargin::Failed);
}

std::string MarginText(const LimitMargin& margin) {
  if (!std::isfinite(margin.Margin)) return "no number";
  // Rounded toward the worse side: a failure is never shown as 0.
  const double rounded = std::floor(margin.Margin * 1000) / 1000;
  return FormatNumber(rounded, "#0.000") + " " + std::string(NameOf(margin.Units));
}

std::string OutcomeText(const LimitMargin& margin, const PlanGrid& plan) {
  std::string text =
      "CH" + std::to_string(margin.Channel) + " " + std::string(NameOf(margin.Parameter));
  const std::string by = MarginText(margin);
  if (!std::isfinite(margin.Margin))
    text += " is " + by;
  else
    text += margin.Failed ? " fails by " + by.substr(1) : " passes by " + by;
  return text + " at " + FormatNumber(plan.Frequency(margin.Point - 1) / 1e6, "###0.0000") + " MHz";
}

}  // namespace qk
