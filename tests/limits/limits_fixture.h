// SPDX-License-Identifier: MIT
// Graphs of 101 points from 3 to 103 MHz with limit segments to type.
#pragma once

#include <string>

#include "display/graphs_fixture.h"
#include "limits/limit_segments.h"
#include "limits/limit_test.h"
#include "support/fake_host.h"

namespace qk::test {

class Limits : public GraphsFixture {
 protected:
  Limits() {
    session->Plan.StartFreq = 3e6;
    session->Plan.StopFreq = 103e6;
    session->Plan.StepFreq = 1e6;
    session->Plan.NumPoints = 101;
  }
  LimitSegment& Segment(int channel, int number) {
    return session->Limits.Of(channel).Segments[static_cast<std::size_t>(number - 1)];
  }
  std::string Apply(int channel = 1) {
    const Result<Done> applied = ApplyLimits(*session, channel);
    return applied ? std::string() : applied.Why().Message;
  }
  float Upper(int i) { return Channel(1).UpperLimit[static_cast<std::size_t>(i)]; }
  float Lower(int i) { return Channel(1).LowerLimit[static_cast<std::size_t>(i)]; }
  // Limits of -10 to 10 over the whole sweep on a channel, shown, with the alarm.
  void Arm(int channel) {
    Segment(channel, 1) = {"3", "103", "10", "-10"};
    ASSERT_EQ(Apply(channel), "");
    session->Limits.Of(channel).Show = true;
    session->Limits.Enabled = session->Limits.Alarm = true;
    ShowLimitsAsSwitched(*session, host);
  }
  bool Failed(int channel) { return session->Limits.Of(channel).Failed; }

  FakeClock clock;
  FakeHost fake{clock};
  Host host = fake.host();
};

}  // namespace qk::test
