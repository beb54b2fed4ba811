// What several windows show of the session is changed by these, and by no window itself. Each tells
// every window (Windows::SessionChanged).
#pragma once

#include <cstdint>

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

}  // namespace qk
