// SPDX-License-Identifier: MIT
#include "limits/limit_test.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/instrument_limits.h"
#include "core/status.h"
#include "core/text.h"
#include "limits/verdict.h"

namespace qk {

namespace {

// Where 1000 may be a value, a point without limits is not tested. One without a value fails.
bool Passes(const ChannelSettings& channel, float value, std::size_t i) {
  if (RowOf(channel.GraphType).HasGaps() && NoLimits(channel, static_cast<int>(i))) return true;
  return value <= channel.UpperLimit[i] && value >= channel.LowerLimit[i];
}

// The last failing point; 0 when all pass.
std::int16_t LastFailure(const Session& session, const ChannelSettings& channel) {
  std::int16_t failure = 0;
  for (std::int16_t i = 1; i <= session.Plan.NumPoints; ++i) {
    const auto k = static_cast<std::size_t>(i);
    if (!Passes(channel, ShownValue(session, channel, k), k)) failure = i;
  }
  return failure;
}

constexpr double kNoMargin = std::numeric_limits<double>::infinity();

// To the nearer limit.
double MarginAt(const ChannelSettings& channel, float value, std::size_t i) {
  if (RowOf(channel.GraphType).HasGaps() && NoLimits(channel, static_cast<int>(i)))
    return kNoMargin;
  if (std::isnan(value)) return -kNoMargin;
  double margin = kNoMargin;
  const float upper = channel.UpperLimit[i], lower = channel.LowerLimit[i];
  if (upper < kNoUpperLimit || value > upper)
    margin = std::min(margin, static_cast<double>(upper) - static_cast<double>(value));
  if (lower > kNoLowerLimit || value < lower)
    margin = std::min(margin, static_cast<double>(value) - static_cast<double>(lower));
  return margin;
}

LimitVerdict VerdictOf(const Session& session, const ChannelSettings& channel) {
  LimitVerdict verdict;
  verdict.Margin = kNoMargin;
  for (std::int16_t i = 1; i <= session.Plan.NumPoints; ++i) {
    const auto k = static_cast<std::size_t>(i);
    const float value = ShownValue(session, channel, k);
    const double margin = MarginAt(channel, value, k);
    verdict.Passed = verdict.Passed && Passes(channel, value, k);
    if (margin == kNoMargin || (verdict.Tested && !(margin < verdict.Margin))) continue;
    verdict.Tested = true;
    verdict.Margin = margin;
    verdict.Point = i;
  }
  return verdict;
}

void ForgetFailures(LimitRecords& limits) {
  limits.LimitFailed = false;
  for (ChannelLimits& channel : limits.OfChannels) channel.Failed = false;
}

}  // namespace

void LimitTest(Session& session, Host& host, std::span<const Parameter> measured) {
  if (!session.Display.ShowLimits || !session.Display.LimitAlarmOn) return;
  LimitRecords& limits = session.Limits;
  ForgetFailures(limits);
  std::string told;
  for (int n = 1; n <= kChannels; ++n) {
    const ChannelSettings& channel = session.Channel(n);
    if (!IsTested(channel, measured)) continue;
    const std::int16_t point = LastFailure(session, channel);
    if (point == 0) continue;
    limits.LimitFailed = true;
    limits.Of(n).Failed = true;
    limits.Of(n).FailPoint = point;
    limits.Of(n).FailParameter = channel.Parameter;
    told = std::string(NameOf(channel.Parameter)) + " fail, Ch " + WholeNumberText(n);
  }
  if (!limits.LimitFailed) {
    ClearLimitFailure(session, host);
    return;
  }
  if (!host.loop.Enabled(TimerId::Timer3)) host.windows.Beep();
  host.loop.Enable(TimerId::Timer3, true);
  SetPanel(session, host.windows, Panel::Calibration, told);
}

std::array<LimitVerdict, kChannels> LimitVerdicts(const Session& session,
                                                  std::span<const Parameter> measured) {
  std::array<LimitVerdict, kChannels> verdicts{};
  if (!session.Display.ShowLimits || !session.Display.LimitAlarmOn) return verdicts;
  for (int n = 1; n <= kChannels; ++n)
    if (const ChannelSettings& channel = session.Channel(n); IsTested(channel, measured))
      verdicts[static_cast<std::size_t>(n - 1)] = VerdictOf(session, channel);
  return verdicts;
}

void ClearLimitFailure(Session& session, Host& host) {
  ForgetFailures(session.Limits);
  host.loop.Enable(TimerId::Timer3, false);
  ShowCalStatus(session, host.windows);
}

}  // namespace qk
