// SPDX-License-Identifier: MIT
// Updates the seven status panels, in the session and in the windows.
#pragma once

#include <string>

#include "core/host.h"
#include "core/session.h"

namespace qk {

// Writes panel n (1 to 7). Notifies the windows even if the text is unchanged.
void SetPanel(Session& session, Windows& windows, Panel panel, std::string text);

// Shows the calibration state in panel 3; appends mark (" ?" or "?") if the calibration is
// doubtful.
void ShowCalStatus(Session& session, Windows& windows, const char* mark = " ?");

// How long a temporary text is shown in panel 3, in ms: the interval of Timer2.
inline constexpr int kPassingMs = 5000;

// Panel 3: shows a port overload, and beeps at the first one. Timer2 restores the calibration
// status 5 s after the last overload.
void ShowOverload(Session& session, Host& host, const char* text);

// Panel 3: shows text for 5 s, after which Timer2 restores the calibration status.
void ShowBriefly(Session& session, Host& host, std::string text);

// Panel 4: "P1 Level: " and the level in dBm.
void ShowLevel(Session& session, Windows& windows);

// Panel 7: the frequency step, in MHz from 100 kHz upward, otherwise in kHz.
void ShowStep(Session& session, Windows& windows);

// Ends the output of the signal generator and updates its window. Every sweep and test calls this.
void EndGeneratorWave(Session& session, Windows& windows);

}  // namespace qk
