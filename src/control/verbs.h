// SPDX-License-Identifier: MIT
// What several windows show of the session is changed by these, and by no window itself. Each tells
// every window (Windows::SessionChanged).
#pragma once

#include <array>
#include <cstdint>

#include "core/result.h"
#include "link/instrument_link.h"

namespace qk {

// The parameter that the active channel shows.
Parameter ActiveParameter(const Session& session);

// The channel, 1 to 4, takes charge of markers and reference plane.
void SelectActiveChannel(Session& session, Windows& windows, int channel);

// The active plane mirrors that of the active channel's parameter: after anything that changed
// either.
void TakeActivePlane(Session& session, Windows& windows);

// The active plane, and with it that of the active channel's parameter.
void SetActivePlane(Session& session, Windows& windows, double metres);

// The markers have been set, searched or moved on their traces.
void MarkersChanged(Windows& windows);

// "Trace Markers" shows the markers of this graph, from 0.
void AdjustMarkersOf(Session& session, Windows& windows, int graph);

// Timer1 goes on where a window or a question has held it up: not without an instrument, where no
// timer runs, and not while the signal generator's wave is on, which a tick would end.
void ResumeTimer1(const Rig& rig);

// The count that the averaging switch asks for, sent at once. A failure is told; the count is then
// due before the next sweep.
void SetAveragesWhileIdle(Rig& rig, std::int16_t count);

// The level of port 1 in dBm, 0 to -20: to the instrument at once, or at the end of the sweep that
// runs. Nothing when it stands so.
void SetPort1Level(Rig& rig, std::int16_t level);

// The channels on the screen; one of them is the active one. The caller replots.
void ChooseDisplaySet(Session& session, Windows& windows, DisplaySet set);

// What a channel shows. A graph that shows reflections alone becomes a logarithmic magnitude for a
// transmission. Units follow the graph type. The caller replots and may scale anew: true when the
// units are of another family.
bool ChooseParameter(Session& session, Windows& windows, int channel, Parameter parameter);
// type must suit the channel's parameter, and the number of points where it is a time response.
bool ChooseGraphType(Session& session, Windows& windows, int channel, GraphType type);

// The number of averages that the switch puts in force, kept within 1 to 255: to the instrument at
// once when it is on, or at the end of the sweep that runs.
void ChooseAverages(Rig& rig, int count);

// The aperture of the smoothing in percent of the sweep, kept within 0 to 10. The caller replots.
void ChooseSmoothing(Session& session, Windows& windows, int percent);

// The memory (1 to 4) that is stored, held and combined from now on, and by which markers stand on
// stored traces.
void UseMemory(Session& session, Windows& windows, int number);
// Whether "Data and Memory" draws a memory (1 to 4).
void ShowMemory(Session& session, Windows& windows, int number, bool shown);

// How the axis of time traces is read. The factor, that of Cable::Own, is 0.01 to 1; refused with
// the message for the user.
struct DistanceAxis {
  TimeAxis Axis = TimeAxis::Time;
  Cable Of = Cable::Air;
  double OwnFactor = 1;
};
Result<Done> SetTimeAxis(Session& session, const DistanceAxis& axis);

// The gate and the channels that it acts on. Times in ns on the time axis; a gate that is on wants
// a channel and 1024 points. Refused with the message for the user; nothing is changed then.
struct GateSettings {
  GateKind Kind = GateKind::Off;
  double Start = 0, Stop = 5;
  std::array<bool, 4> Channels{};
};
Result<Done> SetGate(Session& session, const GateSettings& gate);

// The velocity factor at which the active marker of the time trace on display stands so many metres
// from its reference marker, or without one from the reference plane.
Result<double> VelocityFactorFor(const Session& session, double metres);

}  // namespace qk
