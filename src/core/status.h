// SPDX-License-Identifier: MIT
// The seven status panels: one place writes them, to the session and to the windows.
#pragma once

#include <string>

#include "core/host.h"
#include "core/session.h"

namespace qk {

// Writes panel n (1 to 7); tells the windows even when the text is the same.
void SetPanel(Session& session, Windows& windows, Panel panel, std::string text);

// Panel 3 from the calibration state, with mark behind (" ?" or "?") when the calibration is
// doubtful.
void ShowCalStatus(Session& session, Windows& windows, const char* mark = " ?");

// How long a text that passes stands in panel 3, in ms: the interval of Timer2.
inline constexpr int kPassingMs = 5000;

// Panel 3: an overload of a port. Timer2 brings the calibration back 5 s after the last one; a beep
// at the first.
void ShowOverload(Session& session, Host& host, const char* text);

// Panel 3: text for 5 s, after which Timer2 brings the calibration back.
void ShowInPassing(Session& session, Host& host, std::string text);

// Panel 4: "P1 Level: " and the level in dBm.
void ShowLevel(Session& session, Windows& windows);

// Panel 7: the frequency step, in MHz from 100 kHz upward, else in kHz.
void ShowStep(Session& session, Windows& windows);

// Whatever sweeps or tests ends a wave of the signal generator, whose window then says so.
void EndGeneratorWave(Session& session, Windows& windows);

}  // namespace qk
