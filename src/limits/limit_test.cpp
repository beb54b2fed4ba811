// SPDX-License-Identifier: MIT
#include "limits/limit_test.h"

#include "core/instrument_limits.h"
#include "core/status.h"
#include "core/text.h"
#include "display/remarks.h"
#include "limits/verdict.h"

namespace qk {

namespace {

// The last failing point; 0 if all pass.
std::int16_t LastFailure(const Session& session, const ChannelSettings& channel) {
  std::int16_t failure = 0;
  for (std::int16_t i = 1; i <= session.Plan.NumPoints; ++i) {
    const auto k = static_cast<std::size_t>(i);
    if (!PassesLimits(channel, ShownValue(session, channel, k), i)) failure = i;
  }
  return failure;
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
  std::string failure;
  for (int n = 1; n <= kChannels; ++n) {
    const ChannelSettings& channel = session.Channel(n);
    if (!IsTested(channel, measured)) continue;
    const std::int16_t point = LastFailure(session, channel);
    if (point == 0) continue;
    limits.LimitFailed = true;
    limits.Of(n).Failed = true;
    limits.Of(n).FailPoint = point;
    limits.Of(n).FailParameter = channel.Parameter;
    failure = std::string(NameOf(channel.Parameter)) + " fail, Ch " + WholeNumberText(n);
  }
  if (!limits.LimitFailed) {
    ClearLimitFailure(session, host);
    return;
  }
  if (!host.loop.Enabled(TimerId::Timer3)) host.windows.Beep();
  host.loop.Enable(TimerId::Timer3, true);
  SetPanel(session, host.windows, Panel::Calibration, failure);
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
