// SPDX-License-Identifier: MIT
// All changes of session data that several windows show are made by these functions, never by a
// window itself. Each notifies every window (Windows::SessionChanged).
#pragma once

#include <array>
#include <cstdint>

#include "core/result.h"
#include "link/instrument_link.h"

namespace qk {

// The parameter of the active channel.
Parameter ActiveParameter(const Session& session);

// Makes the channel, 1 to 4, the active one for markers and reference plane.
void SelectActiveChannel(Session& session, Windows& windows, int channel);

// Copies the plane of the active channel's parameter to the active plane. Call it after a change of
// either.
void TakeActivePlane(Session& session, Windows& windows);

// Sets the active plane and the plane of the active channel's parameter.
void SetActivePlane(Session& session, Windows& windows, double metres);

// Call it when markers were set, searched or moved.
void MarkersChanged(Windows& windows);

// "Trace Markers" shows the markers of this graph, from 0.
void AdjustMarkersOf(Session& session, Windows& windows, int graph);

// Resumes Timer1 after a window or a question paused it. No effect without an instrument, when no
// timer runs, and while the signal generator is on, because a tick would end its output.
void ResumeTimer1(const Rig& rig);

// Sets the level of port 1 in dBm, 0 to -20: at once, or at the end of a running sweep. No effect
// if unchanged.
void SetPort1Level(Rig& rig, std::int16_t level);

// Selects the displayed channels; the active channel becomes one of them. The caller replots.
void ChooseDisplaySet(Session& session, Windows& windows, DisplaySet set);

// Selects what a channel shows. A reflection-only graph type becomes logarithmic magnitude for a
// transmission parameter. Units follow the graph type. The caller replots. Returns true if the
// units changed to another family, so that the caller may rescale.
bool ChooseParameter(Session& session, Windows& windows, int channel, Parameter parameter);
// type must suit the channel's parameter, and for a time response also the number of points.
bool ChooseGraphType(Session& session, Windows& windows, int channel, GraphType type);

// Sets the number of averages, clamped to 1 to 255. It is sent at once if averaging is on, or at
// the end of a running sweep.
void ChooseAverages(Rig& rig, int count);

// Sets the smoothing aperture in percent of the sweep, clamped to 0 to 10. The caller replots.
void ChooseSmoothing(Session& session, Windows& windows, int percent);

// Selects the memory (1 to 4) to store, hold and combine. Markers on stored traces use it too.
void UseMemory(Session& session, Windows& windows, int number);
// Selects whether "Data and Memory" shows a memory (1 to 4).
void ShowMemory(Session& session, Windows& windows, int number, bool shown);

// How the axis of time traces is scaled. The factor for Cable::Own is 0.01 to 1; otherwise refused
// with a message for the user.
struct DistanceAxis {
  TimeAxis Axis = TimeAxis::Time;
  Cable Of = Cable::Air;
  double OwnFactor = 1;
};
Result<Done> SetTimeAxis(Session& session, const DistanceAxis& axis);

// The gate and the channels it is applied to. Times in ns on the time axis. An enabled gate
// requires a channel and 1024 points. If refused, nothing changes and the failure is a message for
// the user.
struct GateSettings {
  GateKind Kind = GateKind::Off;
  double Start = 0, Stop = 5;
  std::array<bool, 4> Channels{};
};
Result<Done> SetGate(Session& session, const GateSettings& gate);

// The velocity factor for which the active marker of the displayed time trace is the given distance
// in metres from its reference marker or, without one, from the reference plane.
Result<double> VelocityFactorFor(const Session& session, double metres);

}  // namespace qk
