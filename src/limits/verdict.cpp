// SPDX-License-Identifier: MIT
#include "limits/verdict.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/text.h"
#include "trace/smoothing.h"

namespace qk {

namespace {

constexpr double kNoMargin = std::numeric_limits<double>::infinity();

// The margin to the nearer limit.
double MarginAt(const ChannelSettings& channel, float value, std::size_t point) {
  if (IsExempt(channel, static_cast<int>(point))) return kNoMargin;
  if (std::isnan(value)) return -kNoMargin;
  double margin = kNoMargin;
  const float upper = channel.UpperLimit[point], lower = channel.LowerLimit[point];
  if (upper < kNoUpperLimit || value > upper)
    margin = std::min(margin, static_cast<double>(upper) - static_cast<double>(value));
  if (lower > kNoLowerLimit || value < lower)
    margin = std::min(margin, static_cast<double>(value) - static_cast<double>(lower));
  return margin;
}

// True if the channel has a limit at any point of the sweep.
bool HasLimits(const ChannelSettings& channel, std::int16_t points) {
  for (int i = 1; i <= points; ++i)
    if (!NoLimits(channel, i)) return true;
  return false;
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

LimitVerdict VerdictOf(const Session& session, const ChannelSettings& channel) {
  LimitVerdict verdict;
  verdict.Margin = kNoMargin;
  for (std::int16_t i = 1; i <= session.Plan.NumPoints; ++i) {
    const auto k = static_cast<std::size_t>(i);
    const float value = ShownValue(session, channel, k);
    const double margin = MarginAt(channel, value, k);
    verdict.Passed = verdict.Passed && PassesLimits(channel, value, i);
    if (margin == kNoMargin || (verdict.Tested && margin >= verdict.Margin)) continue;
    verdict.Tested = true;
    verdict.Margin = margin;
    verdict.Point = i;
  }
  return verdict;
}

std::vector<LimitMargin> LimitMargins(const Session& session, std::span<const Parameter> measured) {
  std::vector<LimitMargin> margins;
  if (!session.Display.ShowLimits) return margins;
  const DisplaySetRow& shown = RowOf(session.Display.DisplaySet);
  for (int n = shown.First; n <= shown.Last; ++n) {
    const ChannelSettings& channel = session.Channel(n);
    if (!IsTested(channel, measured)) continue;
    const LimitVerdict verdict = VerdictOf(session, channel);
    margins.push_back(
        {n, channel.Parameter, channel.Units, verdict.Margin, verdict.Point, !verdict.Passed});
  }
  return margins;
}

bool AnyLimits(const Session& session, std::span<const Parameter> measured) {
  if (!session.Display.ShowLimits) return false;
  const DisplaySetRow& shown = RowOf(session.Display.DisplaySet);
  for (int n = shown.First; n <= shown.Last; ++n)
    if (const ChannelSettings& channel = session.Channel(n);
        IsTested(channel, measured) && HasLimits(channel, session.Plan.NumPoints))
      return true;
  return false;
}

bool AnyFailed(const std::vector<LimitMargin>& margins) {
  return std::ranges::any_of(margins, &LimitMargin::Failed);
}

Verdict OutcomeOf(const std::vector<LimitMargin>& margins) {
  const bool partly = std::ranges::any_of(
      margins, [](const LimitMargin& margin) { return !margin.Untested.empty(); });
  return Judged(!AnyFailed(margins), partly);
}

std::string MarginText(const LimitMargin& margin) {
  if (!std::isfinite(margin.Margin)) return "no number";
  // Rounded toward the worse side: a failure is never shown as 0.
  const double rounded = std::floor(margin.Margin * 1000) / 1000;
  return FormatNumber(rounded, "#0.000") + " " + std::string(NameOf(margin.Units));
}

std::string OutcomeAt(const LimitMargin& margin, const std::string& position) {
  std::string text =
      "CH" + std::to_string(margin.Channel) + " " + std::string(NameOf(margin.Parameter));
  const std::string by = MarginText(margin);
  if (!std::isfinite(margin.Margin))
    text += " is " + by;
  else
    text += margin.Failed ? " fails by " + by.substr(1) : " passes by " + by;
  return position.empty() ? text : text + " at " + position;
}

std::string OutcomeText(const LimitMargin& margin, const Session& session) {
  return OutcomeAt(margin, PointText(session, session.Channel(margin.Channel), margin.Point));
}

std::string UntestedText(const std::vector<LimitMargin>& margins) {
  std::string text;
  for (const LimitMargin& margin : margins)
    if (!margin.Untested.empty())
      text += (text.empty() ? "not tested: CH" : ", CH") + std::to_string(margin.Channel) + " " +
              margin.Untested;
  return text;
}

}  // namespace qk
