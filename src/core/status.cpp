// SPDX-License-Identifier: MIT
// Texts of the status panels.
#include "core/status.h"

#include <utility>

#include "core/cal_arrays.h"
#include "core/text.h"

namespace qk {

void SetPanel(Session& session, Windows& windows, Panel panel, std::string text) {
  std::string& held = session.Panels[static_cast<std::size_t>(panel)];
  held = std::move(text);
  windows.PanelChanged(panel, held);
}

void ShowCalStatus(Session& session, Windows& windows, const char* mark) {
  std::string text = CalInForceText(session);
  if (CalDoubtful(session)) text += mark;
  SetPanel(session, windows, Panel::Calibration, std::move(text));
}

namespace {
void RestartTimer2(EventLoop& loop) {
  loop.Enable(TimerId::Timer2, false);
  loop.Enable(TimerId::Timer2, true);
}
}  // namespace

void ShowOverload(Session& session, Host& host, const char* text) {
  if (session.TextOf(Panel::Calibration) != text)
    SetPanel(session, host.windows, Panel::Calibration, text);
  if (!host.loop.Enabled(TimerId::Timer2)) host.windows.Beep();
  RestartTimer2(host.loop);  // the five seconds count from the last overload
}

void ShowBriefly(Session& session, Host& host, std::string text) {
  SetPanel(session, host.windows, Panel::Calibration, std::move(text));
  // Without an instrument the start does not set up the timers, but files can still be loaded.
  host.loop.SetInterval(TimerId::Timer2, kPassingMs);
  RestartTimer2(host.loop);
}

void ShowLevel(Session& session, Windows& windows) {
  SetPanel(session, windows, Panel::Level,
           "P1 Level: " + FormatNumber(session.Plan.Port1Level, "#0") + "dBm");
}

void ShowStep(Session& session, Windows& windows) {
  const double step = session.Plan.StepFreq;
  SetPanel(session, windows, Panel::Step,
           step >= 1e5 ? FormatNumber(step / 1e6, "###0.0000") + " MHz"
                       : FormatNumber(step / 1e3, "###0.0000") + " kHz");
}

void EndGeneratorWave(Session& session, Windows& windows) {
  if (!session.Flags.SigGenWave) return;
  session.Flags.SigGenWave = false;
  windows.SessionChanged();
}

}  // namespace qk
