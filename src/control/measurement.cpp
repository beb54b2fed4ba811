// SPDX-License-Identifier: MIT
// The path of a point: its bytes arrive from the link, become raw ratios (offsets subtracted, test
// divided by reference), are corrected by the calibration, moved to their reference plane,
// de-embedded, converted to the system impedance, formatted for the channels that show them, and
// plotted; every PlotRefreshPoints points the live layer is redrawn.
//
// On the line a sweep is "M", "S", "YO" or "A" followed by a fixed number of bytes, without an end
// mark. Until they have arrived nothing else may be sent; what a handler wants to send meanwhile is
// served between two sweeps.
#include "control/measurement.h"

#include <algorithm>

#include "cal/correction.h"
#include "control/due_changes.h"
#include "control/sweep_traits.h"
#include "core/status.h"
#include "core/window_names.h"
#include "link/command_set.h"
#include "sweep/drain.h"
#include "sweep/up_to_date.h"
#include "trace/formatting.h"
#include "trace/reference_plane.h"
#include "trace/zo.h"

namespace qk {

namespace {

// Longest sleep in the port before events run again.
constexpr int kWaitMs = 5;
constexpr int kSweepMsPerPoint = 10;
// Between two sweeps a surplus byte has usually arrived by then; a byte takes a tenth of a
// millisecond on the line. A later one is noticed before the next exchange.
constexpr int kLastByteMs = 2;

// A longer sweep shows its progress at this interval, once its rate is known.
constexpr int kLongSweepMs = 2000;
constexpr int kProgressMs = 200;
constexpr int kPaceMs = 300;

}  // namespace

Measurement::Measurement(Rig& rig, Graphs& graphs) : rig_(rig), graphs_(graphs) {
  // Room for the largest sweep, and for a driver's buffer of surplus bytes after it.
  buffer_.reserve(static_cast<std::size_t>(2 * kMaxPoints * WireOf(SweepMode::All).BytesPerPoint));
}

void Measurement::Run(SweepMode mode) {
  SweepFlags& flags = rig_.session.Flags;
  mode_ = mode;
  if (!Prepare()) {
    flags.SweepIdle = true;  // START works at the next click
    return;
  }
  flags.SweepRunning = true;
  ShowSweepStatus("SWEEP ON");
  graphs_.RedrawAll(true);

  const SweepTraits& traits = TraitsOf(mode_);
  for (bool first = true;; first = false) {
    if (flags.SweepRunning) LetWaitingEventsRun(first);
    if (abandoned_) return;
    if (!flags.SweepRunning) break;
    const bool held = BringUpToDate(rig_, {traits.Title, traits.NoResponseIcon});
    if (abandoned_) return;
    if (!held) {
      EndAtOnce();
      return;
    }
    Trigger();
    const Ending ending = ReadSweep();
    if (ending == Ending::Abandoned) return;
    ShowProgress(std::nullopt);  // that of this sweep
    if (ending == Ending::Stalled) {
      ReportStall();
      return;
    }
    if (ending == Ending::Aborted) Abort();
    // A sweep with surplus bytes is drawn as received, but not used for anything else.
    const bool complete = !DropSurplus(ending) && ending == Ending::Complete;
    if (abandoned_) return;
    if (ending == Ending::Complete) {
      rig_.session.Display.SweepDisturbed = !complete;
      rig_.link.StreamEnded();
    }
    const bool whole = complete && rig_.session.Display.PointCounter == numPoints_;
    if (whole && OnWhole) OnWhole(DeliveredBy(mode_), overloaded_);
    ServeDueChanges(rig_, graphs_, DeliveredBy(mode_));
    ++sweepsEnded_;
    rig_.host.windows.SweepEnded();
    // A late byte shows itself at the latest in an exchange of ServeDueChanges.
    const bool undisturbed = complete && !rig_.session.Display.SweepDisturbed;
    if (OnSweepEnded && !OnSweepEnded(undisturbed)) flags.SweepRunning = false;
    if (single_ && undisturbed) flags.SweepRunning = false;
  }

  flags.SweepIdle = true;
  rig_.host.windows.Hide(window::kSweepStopping);
  ShowProgress(std::nullopt);
  ShowSweepStatus("Sweep Off");
  graphs_.RedrawAll(true);
}

// Handles events before a trigger: a pending STOP prevents the sweep, and changes made by other
// events are served first. Changes left from an earlier run are served before the first sweep.
void Measurement::LetWaitingEventsRun(bool first) {
  const SweepFlags& flags = rig_.session.Flags;
  // The failure has been shown; BringUpToDate sends what the next sweep needs.
  const bool stoodOver = !first && AnyChangeDue(flags);
  rig_.host.loop.LetEventsRun();
  if (abandoned_ || stoodOver || !AnyChangeDue(flags)) return;
  ServeDueChanges(rig_, graphs_, DeliveredBy(mode_));
}

bool Measurement::Prepare() {
  const SweepTraits& traits = TraitsOf(mode_);
  Host& host = rig_.host;
  if (!(rig_.session.Cal.*traits.Precondition)) {
    host.prompts.ShowMessage(traits.Title, traits.PreconditionText, Icon::Exclamation);
    return false;
  }
  host.loop.Enable(TimerId::Timer1, false);
  rig_.link.EnsurePortOpen();
  const bool answers = rig_.link.LinkCheck();
  if (!answers) host.prompts.ShowMessage(traits.Title, "No Response", traits.NoResponseIcon);
  if (answers || traits.RestartsTimer) host.loop.Enable(TimerId::Timer1, true);
  return answers;
}

void Measurement::Trigger() {
  Session& session = rig_.session;
  const SweepWire wire = WireOf(mode_);
  numPoints_ = session.Plan.NumPoints;
  bytesPerPoint_ = wire.BytesPerPoint;
  averages_ = session.Averaging.Averages;
  stop_ = Stop::None;
  overloaded_.fill(0);
  session.Display.PointCounter = 0;
  session.Display.SweepCounted = true;
  session.Flags.ReplyTimedOut = false;
  buffer_.clear();
  rig_.link.DropStale();  // a stray byte would shift every sample of the sweep
  rig_.link.SendCommand(wire.Trigger);
  triggeredMs_ = rig_.host.loop.NowMs();
  nextProgressMs_ = triggeredMs_ + kPaceMs;
}

Measurement::Ending Measurement::ReadSweep() {
  const Session& session = rig_.session;
  EventLoop& loop = rig_.host.loop;
  const int timeout = SweepTimeout(averages_, numPoints_, kSweepMsPerPoint);
  const bool endsOnReplyTimedOut = TraitsOf(mode_).EndsOnReplyTimedOut;
  std::int64_t deadline = loop.NowMs() + timeout;
  for (;;) {
    const int reduced = session.Display.PointCounter;
    if (rig_.link.TakeInput(buffer_) > 0) {
      ReducePoints();
      // Only a new complete point restarts the deadline, after its events have been handled: a
      // message box that was open meanwhile does not use it up.
      if (session.Display.PointCounter > reduced) deadline = loop.NowMs() + timeout;
    }
    if (abandoned_) return Ending::Abandoned;
    if (loop.NowMs() > deadline) return Ending::Stalled;
    if (buffer_.size() >= Expected()) return Ending::Complete;
    if (endsOnReplyTimedOut && session.Flags.ReplyTimedOut) return Ending::Complete;
    if (stop_ == Stop::Abort) return Ending::Aborted;
    if (!rig_.link.IsOpen()) return Ending::Stalled;  // unplugged: no more bytes can arrive
    ReportProgress();
    rig_.link.WaitForInput(kWaitMs);
    loop.LetEventsRun();
    NoteStop();
  }
}

// Estimated from the rate of the points so far, which includes their averages.
void Measurement::ReportProgress() {
  const std::int64_t now = rig_.host.loop.NowMs();
  const int counter = rig_.session.Display.PointCounter;
  if (now < nextProgressMs_ || counter == 0) return;
  nextProgressMs_ = now + kProgressMs;
  const std::int64_t whole = (now - triggeredMs_) * numPoints_ / counter;
  if (whole <= kLongSweepMs && !progress_) return;
  const std::int64_t left = triggeredMs_ + whole - now;
  ShowProgress(SweepProgress{100 * counter / numPoints_,
                             static_cast<int>(std::max<std::int64_t>(left + 999, 0) / 1000)});
}

void Measurement::ShowProgress(std::optional<SweepProgress> progress) {
  if (progress_ == progress) return;
  progress_ = progress;
  rig_.host.windows.SessionChanged();
}

void Measurement::ReducePoints() {
  int& counter = rig_.session.Display.PointCounter;
  // Surplus bytes after the last point are not samples.
  const int whole = std::min(numPoints_, static_cast<int>(buffer_.size()) / bytesPerPoint_);
  const int reduced = counter;
  while (counter < whole && !abandoned_) {
    ProcessPoint(counter++);
    rig_.host.loop.LetEventsRun();
  }
  if (counter > reduced) rig_.session.Display.SweptUtc = rig_.host.loop.UnixSeconds();
  NoteStop();
}

// Processes point p (from 0) completely.
void Measurement::ProcessPoint(int p) {
  Session& session = rig_.session;
  const std::uint8_t* bytes = buffer_.data() + static_cast<std::ptrdiff_t>(p) * bytesPerPoint_;
  const RawPoint raw = ReducePoint(mode_, bytes, session.Receiver, averages_);
  StoreRaw(raw, p);
  ReportOverload(raw);
  Correct(p);
  DeEmbedAndConvert(p);
  for (Parameter parameter : DeliveredBy(mode_))
    DispatchPoint(session, graphs_, ArrayOf(session.Data, parameter)[p], p + 1, parameter);

  const int refresh = std::max<int>(1, session.Display.PlotRefreshPoints);
  // The last point also leaves the drawing to the next frame: the next trigger does not wait for
  // it.
  if (p + 1 == numPoints_ || (p + 1) % refresh == 0) graphs_.LiveChanged();
}

// Parameters that the mode does not deliver keep their last values.
void Measurement::StoreRaw(const RawPoint& raw, int p) {
  SParamData& data = rig_.session.Data;
  for (const Parameter parameter : DeliveredBy(mode_))
    RawArrayOf(data, parameter).Set(p, ArrayOf(raw, parameter));
}

// Error correction and reference planes.
void Measurement::Correct(int p) {
  Session& session = rig_.session;
  switch (mode_) {
    case SweepMode::S11:
      CorrectS11Point(session, p);
      break;
    case SweepMode::S21:
      CorrectS21Point(session, p);
      break;
    case SweepMode::S11S21:
      // The transmission is divided by the reflection at its plane.
      CorrectS11Point(session, p);
      MoveToPlane(Parameter::S11, p);
      CorrectEnhancedPoint(session, p);
      MoveToPlane(Parameter::S21, p);
      return;
    case SweepMode::All:
      Correct12TermPoint(session, p);
      break;
  }
  for (Parameter parameter : DeliveredBy(mode_)) MoveToPlane(parameter, p);
}

void Measurement::DeEmbedAndConvert(int p) {
  Session& session = rig_.session;
  const ImpedanceState& impedance = session.Impedance;
  const SweepTraits& traits = TraitsOf(mode_);
  if (impedance.DeEmbedOn) traits.DeEmbed(session, p);
  if (impedance.ZoConvertOn && !impedance.ExternalZoMatch)
    ConvertPointZo(session, p, DeliveredBy(mode_));
}

void Measurement::MoveToPlane(Parameter parameter, int p) {
  Session& session = rig_.session;
  ComplexArray& array = ArrayOf(session.Data, parameter);
  array.Set(p, ApplyReferencePlane(session, array[p], p + 1, parameter));
}

void Measurement::ReportOverload(const RawPoint& raw) {
  overloaded_[0] += raw.Port1Overload ? 1 : 0;
  overloaded_[1] += raw.Port2Overload ? 1 : 0;
  if (raw.Port1Overload || raw.Port2Overload) ++overloads_;
  if (raw.Port2Overload) ShowOverload(rig_.session, rig_.host, "Port 2 Overload!");
  if (raw.Port1Overload) ShowOverload(rig_.session, rig_.host, "Port 1 Overload!");
}

// Decides once per sweep how STOP is handled, by the state of the stream at the request. Before the
// first byte it waits for the fifth, from which the instrument accepts an abort; between the two
// the sweep runs to its end.
void Measurement::NoteStop() {
  if (rig_.session.Flags.SweepRunning || stop_ == Stop::Abort || stop_ == Stop::AtSweepEnd) return;
  const bool knowsAbort = KnowsAbort(rig_.session);
  const bool waits = buffer_.empty() || (stop_ == Stop::Waiting && buffer_.size() <= 4);
  const bool inTheMiddle = buffer_.size() > 4 && buffer_.size() + 1 < Expected();
  if (!knowsAbort)
    stop_ = Stop::AtSweepEnd;
  else if (waits)
    stop_ = Stop::Waiting;
  else
    stop_ = inTheMiddle ? Stop::Abort : Stop::AtSweepEnd;
}

void Measurement::Abort() {
  AbortSweep(rig_, buffer_.size(), Expected(), [this] { return Turn(); });
  rig_.session.Display.PointCounter = numPoints_;
}

// The stream has no end mark, so surplus bytes are detected only here. If they stayed, they would
// be taken as the reply to the next command, or shift every sample of the next sweep. Returns true
// if there were any: a byte of noise inside the stream has then shifted the samples after it.
bool Measurement::DropSurplus(Ending ending) {
  if (abandoned_) return false;
  // Behind SINGLE and STOP no sweep waits: the line may be heard for longer.
  if (ending == Ending::Complete && (single_ || !rig_.session.Flags.SweepRunning))
    return DrainLine(rig_, false, [this] { return Turn(); }).Bytes > 0 ||
           buffer_.size() > Expected();
  const bool surplus =
      buffer_.size() > Expected() || (ending == Ending::Complete && buffer_.size() == Expected()
                                          ? rig_.link.WaitForInput(kLastByteMs)
                                          : rig_.link.Port().InBufferCount() > 0);
  if (surplus) DrainLine(rig_, false, [this] { return Turn(); });
  return surplus;
}

// Handles events while waiting for the rest of a stream.
bool Measurement::Turn() {
  if (!abandoned_) rig_.host.loop.LetEventsRun();
  return !abandoned_;
}

void Measurement::ReportStall() {
  const SweepTraits& traits = TraitsOf(mode_);
  rig_.session.Flags.ReplyTimedOut = true;
  // A byte that was lost has shifted the samples behind it.
  if (rig_.session.Display.PointCounter > 0) rig_.session.Display.SweepDisturbed = true;
  rig_.link.DropInput();
  rig_.link.ForgetState();
  rig_.host.prompts.ShowMessage(traits.StallTitle, "No Response", traits.NoResponseIcon);
  EndAtOnce();
}

// The run ends without the end of a sweep, whatever was still to be served.
void Measurement::EndAtOnce() {
  SweepFlags& flags = rig_.session.Flags;
  flags.SweepRunning = false;
  flags.SweepIdle = true;
  // These windows wait for the end of the sweep, which will not come.
  rig_.host.windows.Hide(window::kSweepStopping);
  rig_.host.windows.Hide(window::kUpdating);
  ShowProgress(std::nullopt);
  ShowSweepStatus("Sweep Off");
}

void Measurement::ShowSweepStatus(const char* text) {
  rig_.session.SweepStatusText = text;
  SetPanel(rig_.session, rig_.host.windows, Panel::Sweep, text);
}

}  // namespace qk
