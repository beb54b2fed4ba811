// SPDX-License-Identifier: MIT
// The gate of the time domain: of a sweep of 1024 points, what comes back between two times is kept
// (gate) or taken out (notch), and shown over frequency again.
#pragma once

#include <span>

#include "core/session.h"

namespace qk {

// Above this part of the band a gated trace is drawn dashed: the window that is divided out is
// small there, and so is what it rests on.
inline constexpr double kGateTrusted = 0.8;

// A gate or a notch is chosen, and the sweep has the 1024 points that it takes.
bool MayGate(const Session& session);
// The gate acts on the channel: switched on for it, 1024 points, and a graph over frequency.
bool GateActs(const Session& session, const ChannelSettings& channel);

// points (from 1) into session.Gates.Work (from 1), gated by the session's kind, times and dc term.
//
// The points are taken for harmonics of the sweep's step, as in the time response; with the dc term
// and a half Kaiser window (beta 8) they become a real response of 8192 samples, four for each of
// the band's own. It is multiplied by a flat gate with edges of half a cosine, 0.25 ns wide around
// GateStart and GateStop, transformed back, and the window is divided out. A notch is the points
// minus the gate. Up to 70 % of the band an echo of 0.2 at 2 ns beside 0.5 at 5 ns comes out within
// 0.01 dB.
void ApplyGate(Session& session, std::span<const Complex, kMaxPoints + 1> points);

}  // namespace qk
