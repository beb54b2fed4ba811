// SPDX-License-Identifier: MIT
#include "control/undo_history.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <optional>
#include <utility>

#include "control/verbs.h"
#include "core/instrument_limits.h"
#include "core/measured_sweep.h"
#include "limits/limit_segments.h"
#include "trace/memory.h"

namespace qk {

namespace {

constexpr std::int64_t kOneStepMs = 1000;

struct ChannelLook : ChannelExtension {
  Unit Units{};
  double Reference = 0, Scale = 0;
  std::int16_t RefPosition = 0;
  qk::Parameter Parameter{};
  qk::GraphType GraphType{};

  bool operator==(const ChannelLook&) const = default;
};

// The switches of a channel's limits. They change with the quantity of the graph, or in the window
// of the limits, which is no step.
struct LimitsLook {
  bool On = false, Show = false;
};

struct DisplayLook {
  qk::DisplayMode Mode{};
  DisplaySet Set{};
  std::int16_t ActiveChannel = 1, PlotRefreshPoints = 4;
  MemoryFunction Function{};
  MemoryHold Hold{};
  std::int16_t MemoryNumber = 1;
  std::array<bool, kMemories> MemoryShown{};
  bool AxisNumbers = false, Remarks = false;

  bool operator==(const DisplayLook&) const = default;
};

struct MarkerLook {
  MarkerState State{};
  MarkerTrace Trace{};
  std::int16_t Point = 0;
  bool operator==(const MarkerLook&) const = default;
};

struct SettingLook {
  bool Shown = false, IsRef = false, IsActive = false;
  std::int16_t Point = 0;
  bool operator==(const SettingLook&) const = default;
};

struct MarkersLook {
  bool On = false;
  std::array<std::array<MarkerLook, kMarkers>, kChannels> OfGraphs{};
  std::array<SettingLook, kMarkers> Settings{};
  bool operator==(const MarkersLook&) const = default;
};

struct StoredLook {
  ChannelSettings::PerPoint<double> Re{}, Im{};
  bool Valid = false;
  std::optional<Parameter> Of;

  // Compares bit by bit, because a trace may contain NaN.
  bool Same(const ConstStoredMemory& memory) const {
    return Valid == memory.Valid && (!Valid || (Of == memory.Of && SameValues(memory)));
  }
  bool SameValues(const ConstStoredMemory& memory) const {
    const auto sameBits = [](double a, double b) {
      return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
    };
    return std::ranges::equal(Re, memory.Re, sameBits) &&
           std::ranges::equal(Im, memory.Im, sameBits);
  }
};

ChannelLook LookOf(const ChannelSettings& channel) {
  ChannelLook look;
  static_cast<ChannelExtension&>(look) = channel;
  look.Units = channel.Units;
  look.Reference = channel.Reference;
  look.Scale = channel.Scale;
  look.RefPosition = channel.RefPosition;
  look.Parameter = channel.Parameter;
  look.GraphType = channel.GraphType;
  return look;
}

DisplayLook LookOf(const DisplayState& display, const ViewState& view) {
  return {
      display.DisplayMode,    display.DisplaySet, display.ActiveChannel, display.PlotRefreshPoints,
      display.MemoryFunction, display.MemoryHold, display.MemoryNumber,  display.MemoryShown,
      view.AxisNumbers,       view.Remarks};
}

MarkersLook LookOf(const Session& session) {
  MarkersLook look;
  look.On = session.Display.MarkersOn;
  for (std::size_t g = 0; g < look.OfGraphs.size(); ++g)
    for (std::size_t m = 0; m < kMarkers; ++m) {
      const Marker& marker = session.Markers.OfGraphs[g][m];
      look.OfGraphs[g][m] = {marker.State, marker.Trace, marker.Point};
    }
  for (std::size_t m = 0; m < kMarkers; ++m) {
    const MarkerSettings& set = session.Markers.Settings[m];
    look.Settings[m] = {set.Shown, set.IsRef, set.IsActive, set.Point};
  }
  return look;
}

// The index of a bank: memories 1 to 4 of channel 1, then of channel 2.
std::size_t PlaceOf(int channel, int number) {
  return static_cast<std::size_t>((channel - 1) * kMemories + number - 1);
}

std::string ChannelText(int n) {
  return "CH" + std::to_string(n);
}

std::string Joined(const std::vector<std::string>& parts) {
  std::string all;
  for (const std::string& part : parts) all += (all.empty() ? "" : ", ") + part;
  return all;
}

// The setting of a channel that differs.
const char* WordFor(const ChannelLook& before, const ChannelLook& now) {
  ChannelLook other = now;
  other.Scale = before.Scale;
  if (other == before) return "scale";
  other = now;
  other.Reference = before.Reference;
  other.RefPosition = before.RefPosition;
  if (other == before) return "reference";
  other = now;
  other.Parameter = before.Parameter;
  if (other == before) return "parameter";
  return "display";
}

}  // namespace

struct UndoHistory::Look {
  PlanGrid Grid;
  std::array<ChannelLook, kChannels> Channels;
  std::array<LimitsLook, kChannels> Limits;
  DisplayLook Display;
  MarkersLook Markers;
  bool MemoryInUse = false;
};

struct UndoHistory::Memories {
  std::array<StoredLook, static_cast<std::size_t>(kChannels* kMemories)> Traces;
};

// The previous state of everything that changed.
struct UndoHistory::Step {
  std::string What;
  PlanGrid Grid;
  float Zo = 0;  // impedance of the stored traces
  bool ZoConverted = false;
  std::array<std::optional<ChannelLook>, kChannels> Channels;
  std::array<LimitsLook, kChannels> Limits;  // of the channels above
  std::optional<DisplayLook> Display;
  std::optional<MarkersLook> Markers;
  std::optional<bool> MemoryInUse;
  struct Stored {
    int Channel, Number;
    std::unique_ptr<StoredLook> Before;
  };
  std::vector<Stored> Memories;
};

class UndoHistory::Scope {
 public:
  Scope(UndoHistory& history, std::string_view kind) : history_(history), kind_(kind) {
    history_.Enter();
  }
  ~Scope() { history_.Leave(kind_); }
  Scope(const Scope&) = delete;
  Scope& operator=(const Scope&) = delete;

 private:
  UndoHistory& history_;
  std::string_view kind_;
};

UndoHistory::UndoHistory(Rig& rig, Graphs& graphs)
    : rig_(rig),
      graphs_(graphs),
      look_(std::make_unique<Look>()),
      memories_(std::make_unique<Memories>()) {
  TakeSnapshot();
}

UndoHistory::~UndoHistory() = default;

void UndoHistory::Around(const std::function<void()>& action, std::string_view kind) {
  const Scope scope(*this, kind);
  action();
}

void UndoHistory::BeginGesture() {
  EndGesture();
  gesture_ = true;
  Enter();
}

void UndoHistory::EndGesture() {
  if (!std::exchange(gesture_, false)) return;
  Leave({});
}

void UndoHistory::Enter() {
  if (depth_++ > 0)
    Commit({});
  else
    TakeSnapshot();
}

void UndoHistory::Leave(std::string_view kind) {
  --depth_;
  Commit(kind);
}

void UndoHistory::TakeSnapshot() {
  const Session& session = rig_.session;
  look_->Grid = session.Plan;
  for (int n = 1; n <= kChannels; ++n) {
    const auto i = static_cast<std::size_t>(n - 1);
    look_->Channels[i] = LookOf(session.Channel(n));
    look_->Limits[i] = {session.Channel(n).LimitsOn, session.Limits.Of(n).Show};
  }
  look_->Display = LookOf(session.Display, graphs_.View);
  look_->Markers = LookOf(session);
  look_->MemoryInUse = session.Display.MemoryInUse;
  for (int n = 1; n <= kChannels; ++n)
    for (int number = 1; number <= kMemories; ++number) {
      const ConstStoredMemory memory = MemoryOf(session, n, number);
      StoredLook& stored = memories_->Traces[PlaceOf(n, number)];
      if (stored.Same(memory)) continue;
      stored = {memory.Re, memory.Im, memory.Valid, memory.Of};
    }
}

// The only change is that a hold has updated the memory: the user has stored nothing.
bool UndoHistory::HoldOnly(int channel, int number) const {
  const Session& session = rig_.session;
  const ConstStoredMemory memory = MemoryOf(session, channel, number);
  const StoredLook& stored = memories_->Traces[PlaceOf(channel, number)];
  return session.Display.MemoryHold != MemoryHold::Off && number == session.Display.MemoryNumber &&
         stored.Valid && memory.Valid && stored.Of == memory.Of;
}

void UndoHistory::Commit(std::string_view kind) {
  const Session& session = rig_.session;
  if (!SameGrid(look_->Grid, session.Plan)) {
    TakeSnapshot();  // another sweep, which markers and memories have followed
    return;
  }
  Step step;
  step.Grid = look_->Grid;
  step.Zo = session.Impedance.SystemZo;
  step.ZoConverted = session.Impedance.ZoConvertOn;
  step.Limits = look_->Limits;
  std::vector<std::string> words;
  for (int n = 1; n <= kChannels; ++n) {
    const auto i = static_cast<std::size_t>(n - 1);
    const ChannelLook now = LookOf(session.Channel(n));
    if (now == look_->Channels[i]) continue;
    step.Channels[i] = look_->Channels[i];
    words.push_back(std::string(WordFor(look_->Channels[i], now)) + " of " + ChannelText(n));
  }
  if (words.size() > 1) words = {"display"};
  DisplayLook display = LookOf(session.Display, graphs_.View);
  display.PlotRefreshPoints = look_->Display.PlotRefreshPoints;  // each sweep sets it by itself
  if (!(display == look_->Display)) {
    step.Display = look_->Display;
    DisplayLook other = look_->Display;
    other.ActiveChannel = session.Display.ActiveChannel;
    // A change of the active channel is not mentioned if something else changed.
    if (words.empty() && !(display == other)) words = {"display"};
  }
  if (!(LookOf(session) == look_->Markers)) {
    step.Markers = look_->Markers;
    words.emplace_back("markers");
  }
  std::vector<std::string> stored;
  for (int n = 1; n <= kChannels; ++n)
    for (int number = 1; number <= kMemories; ++number) {
      StoredLook& before = memories_->Traces[PlaceOf(n, number)];
      if (before.Same(MemoryOf(session, n, number)) || HoldOnly(n, number)) continue;
      step.Memories.push_back({n, number, std::make_unique<StoredLook>(before)});
      if (stored.empty() || stored.back() != ChannelText(n)) stored.push_back(ChannelText(n));
    }
  if (look_->MemoryInUse != session.Display.MemoryInUse) step.MemoryInUse = look_->MemoryInUse;
  if (!stored.empty()) words.push_back("memory of " + Joined(stored));
  TakeSnapshot();
  if (words.empty()) return;  // a change of only the active channel is not a step
  const std::int64_t now = rig_.host.loop.NowMs();
  const bool goesOn =
      !kind.empty() && kind == kind_ && now - kindMs_ < kOneStepMs && !steps_.empty();
  kind_ = kind;
  kindMs_ = now;
  if (goesOn) return;
  step.What = Joined(words);
  steps_.push_back(std::move(step));
  if (steps_.size() > kSteps) steps_.pop_front();
}

std::string UndoHistory::Next() const {
  return steps_.empty() ? std::string() : steps_.back().What;
}

void UndoHistory::Forget() {
  steps_.clear();
  kind_.clear();
  TakeSnapshot();
}

Result<std::string> UndoHistory::Undo() {
  if (depth_ > 0) Commit({});  // the last step is what an unfinished drag has done so far
  if (steps_.empty()) return Failure{"Nothing to undo", {}};
  const Step step = std::move(steps_.back());
  steps_.pop_back();
  kind_.clear();
  std::vector<std::string> lost;
  Restore(step, lost);
  TakeSnapshot();
  rig_.host.windows.SessionChanged();
  std::string text = "undone: " + step.What;
  if (!lost.empty()) text += "; not restored: " + Joined(lost);
  return text;
}

void UndoHistory::Restore(const Step& step, std::vector<std::string>& lost) {
  Session& session = rig_.session;
  for (int n = 1; n <= kChannels; ++n) {
    const auto& before = step.Channels[static_cast<std::size_t>(n - 1)];
    if (!before) continue;
    if (RowOf(before->GraphType).Form == PointForm::Spectrum &&
        session.Plan.NumPoints != kTimeDomainPoints) {
      static_assert(kTimeDomainPoints == 1024, "the text names the number");
      lost.push_back("time domain of " + ChannelText(n) + " (needs 1024 points)");
      continue;
    }
    ChannelSettings& channel = session.Channel(n);
    const bool otherQuantity = channel.Parameter != before->Parameter ||
                               channel.Units != before->Units ||
                               channel.GraphType != before->GraphType;
    static_cast<ChannelExtension&>(channel) = *before;
    channel.Units = before->Units;
    channel.Reference = before->Reference;
    channel.Scale = before->Scale;
    channel.RefPosition = before->RefPosition;
    channel.Parameter = before->Parameter;
    channel.GraphType = before->GraphType;
    if (!otherQuantity) continue;
    // The change has switched limits off. Those that were applied since are for what it showed.
    const LimitsLook& limits = step.Limits[static_cast<std::size_t>(n - 1)];
    channel.LimitsOn = limits.On;
    session.Limits.Of(n).Show = limits.Show;
    if (!SwitchOffUnsuitable(session, n).empty())
      lost.push_back("limits of " + ChannelText(n) + " (applied since, for another graph)");
  }
  if (step.Display) {
    DisplayState& display = session.Display;
    const DisplayLook& before = *step.Display;
    display.DisplayMode = before.Mode;
    display.DisplaySet = before.Set;
    display.PlotRefreshPoints = before.PlotRefreshPoints;
    display.MemoryFunction = before.Function;
    display.MemoryHold = before.Hold;
    display.MemoryNumber = before.MemoryNumber;
    display.MemoryShown = before.MemoryShown;
    graphs_.View.AxisNumbers = before.AxisNumbers;
    graphs_.View.Remarks = before.Remarks;
    SelectActiveChannel(session, rig_.host.windows, before.ActiveChannel);
  }
  RestoreMemories(step, lost);
  if (step.Markers) RestoreMarkers(step, lost);
  if (!SameGrid(step.Grid, session.Plan) && !session.Display.MemoryInUse)
    session.Display.DisplayMode = DisplayMode::Data;
  TakeActivePlane(session, rig_.host.windows);
  graphs_.ReplotAll();
}

// Restores the frequencies of the markers, which may be at other points now.
void UndoHistory::RestoreMarkers(const Step& step, std::vector<std::string>& lost) {
  Session& session = rig_.session;
  const PlanGrid& plan = session.Plan;
  const auto pointNow = [&](std::int16_t point) -> std::optional<std::int16_t> {
    if (point < 1 || SameGrid(step.Grid, plan)) return point;
    const double steps = (step.Grid.Frequency(point - 1) - plan.StartFreq) / plan.StepFreq;
    const auto nearest = std::lround(steps) + 1;
    if (steps < -0.01 || steps > plan.NumPoints - 1 + 0.01 || nearest > plan.NumPoints) return {};
    return static_cast<std::int16_t>(nearest);
  };
  session.Display.MarkersOn = step.Markers->On;
  for (std::size_t m = 0; m < kMarkers; ++m) {
    const SettingLook& set = step.Markers->Settings[m];
    const auto point = pointNow(set.Point);
    bool outside = !point;
    for (std::size_t g = 0; g < kChannels; ++g)
      outside = outside || !pointNow(step.Markers->OfGraphs[g][m].Point);
    if (outside) {
      lost.push_back("marker " + std::to_string(m + 1) + " (outside the sweep)");
      continue;
    }
    session.Markers.Settings[m] = {set.Shown, set.IsRef, set.IsActive, *point};
    for (std::size_t g = 0; g < kChannels; ++g) {
      const MarkerLook& before = step.Markers->OfGraphs[g][m];
      Marker& marker = session.Markers.OfGraphs[g][m];
      marker.State = before.State;
      marker.Trace = before.Trace;
      marker.Point = *pointNow(before.Point);
    }
  }
}

void UndoHistory::RestoreMemories(const Step& step, std::vector<std::string>& lost) {
  Session& session = rig_.session;
  const bool otherZo =
      step.Zo != session.Impedance.SystemZo || step.ZoConverted != session.Impedance.ZoConvertOn;
  for (const Step::Stored& stored : step.Memories) {
    const char* why = !SameGrid(step.Grid, session.Plan) ? "its sweep has gone"
                      : otherZo                          ? "it is of another impedance"
                                                         : nullptr;
    const StoredMemory memory = MemoryOf(session, stored.Channel, stored.Number);
    if (stored.Before->Valid && why != nullptr) {
      lost.push_back("memory " + std::to_string(stored.Number) + " of " +
                     ChannelText(stored.Channel) + " (" + why + ")");
      continue;
    }
    memory.Re = stored.Before->Re;
    memory.Im = stored.Before->Im;
    memory.Valid = stored.Before->Valid;
    memory.Of = stored.Before->Of;
  }
  bool any = false;
  for (int n = 1; n <= kChannels; ++n)
    for (int number = 1; number <= kMemories; ++number)
      any = any || MemoryOf(session, n, number).Valid;
  if (step.MemoryInUse) session.Display.MemoryInUse = *step.MemoryInUse && any;
}

}  // namespace qk
