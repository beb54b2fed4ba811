// SPDX-License-Identifier: MIT
#include "forms/markers_set.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "control/verbs.h"
#include "core/quantity_text.h"
#include "core/text.h"
#include "core/window_names.h"
#include "trace/time_domain.h"

namespace qk {

namespace {

constexpr int kOn = 0, kOff = 1;
constexpr int kMegahertz = 0, kNanoseconds = 1, kMetres = 2;
constexpr int kActiveGroup = 1;
// Positions beyond any sweep are equivalent.
constexpr double kFarthest = 5000;

bool SameSettings(const std::array<MarkerSettings, kMarkers>& a,
                  const std::array<MarkerSettings, kMarkers>& b) {
  return std::ranges::equal(a, b, [](const MarkerSettings& one, const MarkerSettings& other) {
    return one.Shown == other.Shown && one.IsRef == other.IsRef && one.IsActive == other.IsActive &&
           one.Point == other.Point;
  });
}

}  // namespace

std::optional<double> MarkersSet::Bands::Chosen() const {
  if (Narrow->Checked) return Db;
  if (Wide->Checked) return 2 * Db;
  return std::nullopt;
}

void MarkersSet::Bands::Clear() const {
  Narrow.Checked(false);
  Wide.Checked(false);
}

MarkersSet::MarkersSet(Controller& controller)
    : Form(window::kMarkersSet, "Markers Set Up"),
      controller_(controller),
      session_(controller.rig().session),
      host_(controller.rig().host) {
  channel_ = AddLabel("Label2", "Ch 1, measuring S11");
  markersOn_ = AddOptions({{"Option1", "On"}, {"Option2", "Off"}});
  markersOn_.Heading("Markers").Keys("nf");
  markersOn_.Choose(kOff);
  AddMarkerRows();
  Section("Position of the active marker");
  position_ = AddText("Text1", "").Number().Chars(12).Tip("Position of the active marker");
  unit_ = AddOptions({{"Option13", "MHz"}, {"Option14", "ns"}, {"Option15", "m"}},
                     [this] { ShowMarkerPosition(); });
  unit_[0].SameRow();
  unit_.Choose(kMegahertz);
  peak_ = AddSearch("Peak", Extreme::Peak, "Command3", "Find Peak", {"Check9", "Check10"}, -3);
  minimum_ =
      AddSearch("Minimum", Extreme::Minimum, "Command4", "Find Minimum", {"Check11", "Check12"}, 3);
  Section("");
  waiting_ = AddLabel("Waiting", "").Wide();
  ActionRow();
  const Handle apply = AddButton("Command2", "Apply", [this] { Apply(); }).Key('A').Default();
  position_.Returns(apply);
  AddButton("Command1", "Exit", [this] { host_.windows.Hide(Name()); }).Key('x');
}

void MarkersSet::AddMarkerRows() {
  Section("", {.How = Arrange::Grid, .Columns = 3});
  for (int m = 0; m < kMarkers; ++m) {
    const auto i = static_cast<std::size_t>(m);
    const std::string number = std::to_string(m + 1);
    shown_[i] =
        AddCheck("Check" + number, "Marker " + number).Key(number[0]).Tip("Shows marker " + number);
    reference_[i] = AddCheck("Check" + std::to_string(m + 5), "Ref", [this, m] {
                      TakeReference(m);
                    }).Tip("Marker " + number + " is the reference of the delta read-out");
    active_[i] = AddOption("Option" + std::to_string(m + 3), "Active", kActiveGroup, [this] {
                   ShowMarkerPosition();
                 }).Tip("Marker " + number + " is the active one");
  }
  active_[0].Checked();
  settings_.Add(markersOn_);
  for (std::size_t i = 0; i < kMarkers; ++i)
    settings_.Add(shown_[i]).Add(reference_[i]).Add(active_[i]);
}

MarkersSet::Bands MarkersSet::AddSearch(const char* title, Extreme which, const char* command,
                                        const char* caption, std::array<const char*, 2> checks,
                                        double db) {
  Section(title, {.How = Arrange::Row});
  const auto text = [](double value) {
    return (value > 0 ? "+" : "") + FormatNumber(value, "#0") + " dB band";
  };
  const auto other = [this](const char* name) { (*this)[name].Checked = false; };
  Bands bands;
  bands.Db = db;
  bands.Narrow = AddCheck(checks[0], text(db), [other, checks] { other(checks[1]); });
  bands.Wide = AddCheck(checks[1], text(2 * db), [other, checks] { other(checks[0]); });
  AddButton(command, caption, [this, which] { Find(which); })
      .Key(which == Extreme::Peak ? 'P' : 'M')
      .Tip(
          "Moves the active marker there; with a band ticked, marker 1 goes there and markers 2 "
          "and 3 to the edges of the band");
  return bands;
}

void MarkersSet::OnOpen() {
  ShowChannel();
  ShowSettings();
  ShowMarkerPosition();
}

// Another sweep has other frequencies, and a drag changes the position; check boxes that were
// changed but not applied are kept.
void MarkersSet::OnSessionChanged() {
  ShowChannel();
  ForgetUndoneBand();
  if (!settings_.Edited()) ShowSettings();
  if (!PositionIsShown()) ShowMarkerPosition();
}

void MarkersSet::ForgetUndoneBand() {
  if (!beforeBand_ || !SameSettings(session_.Markers.Settings, *beforeBand_)) return;
  beforeBand_.reset();
  peak_.Clear();
  minimum_.Clear();
}

void MarkersSet::OnSessionLoaded() {
  beforeBand_.reset();
  ShowSettings();
  ShowMarkerPosition();
}

MarkersSet::Place MarkersSet::ActivePlace() const {
  Place place{session_.Plan, {}, {}};
  for (int m = 0; m < kMarkers; ++m) {
    const auto i = static_cast<std::size_t>(m);
    place.Markers[i] = session_.Markers.Of(session_.Display.ActiveChannel - 1, m).Point;
    place.Settings[i] = session_.Markers.Set(m).Point;
  }
  return place;
}

bool MarkersSet::PositionIsShown() const {
  const Place place = ActivePlace();
  return SameGrid(place.Grid, place_.Grid) && place.Markers == place_.Markers &&
         place.Settings == place_.Settings;
}

void MarkersSet::ShowChannel() {
  const std::string waiting = controller_.kept().WaitingMarkers(session_);
  waiting_.Caption(waiting).Shown(!waiting.empty());
  const int active = session_.Display.ActiveChannel;
  channel_.Caption("Ch" + WholeNumberText(active) + ", measuring " +
                   std::string(NameOf(session_.Channel(active).Parameter)));
}

void MarkersSet::ShowSettings() {
  markersOn_.Choose(session_.Display.MarkersOn ? kOn : kOff);
  for (int m = 0; m < kMarkers; ++m) {
    const auto i = static_cast<std::size_t>(m);
    const MarkerSettings& set = session_.Markers.Set(m);
    shown_[i].Checked(set.Shown);
    reference_[i].Checked(set.IsRef);
    if (set.IsActive) active_[i].Checked();
  }
}

// Shows the result of a search without a band; check boxes that were changed but not applied are
// kept.
void MarkersSet::ShowSearched(const Settings& before) {
  const auto chosen = static_cast<std::size_t>(ChosenMarker());
  for (int m = 0; m < kMarkers; ++m) {
    const auto i = static_cast<std::size_t>(m);
    if (session_.Markers.Set(m).Shown && !before[i].Shown) shown_[i].Checked();
  }
  shown_[chosen].Checked();
  reference_[chosen].Checked(false);
  markersOn_.Choose(kOn);
}

// The frequency of a marker that waits for a sweep, as the field shows it; empty if it does not
// wait.
std::optional<std::string> MarkersSet::WaitingText() const {
  if (unit_.Chosen() == kNanoseconds || unit_.Chosen() == kMetres) return {};
  const std::optional<double> waits = controller_.kept().WaitsAt(session_, ChosenMarker());
  if (!waits) return {};
  return MegahertzNumber(*waits);
}

int MarkersSet::ChosenMarker() const {
  for (int m = 0; m < kMarkers; ++m)
    if (active_[static_cast<std::size_t>(m)]->Checked) return m;
  return 0;
}

MarkersSet::Metres MarkersSet::MetresOfPoints() const {
  const TimeDomainState& td = session_.TimeDomain;
  const Parameter parameter = ActiveParameter(session_);
  const double first = MetresAt(session_, parameter, td.TdT1);
  return {first, MetresAt(session_, parameter, td.TdT1 + td.TdStep) - first};
}

void MarkersSet::ShowPosition(int point) {
  place_ = ActivePlace();
  if (unit_.Chosen() == kMetres) {
    const Metres metres = MetresOfPoints();
    position_.Text(FormatNumber(metres.First + (point - 1) * metres.Step, kPositionPicture));
    return;
  }
  // Intentional: a time is that of the next point, a frequency that of the point itself.
  position_.Text(
      unit_.Chosen() == kNanoseconds
          ? FormatNumber(point * session_.TimeDomain.TdStep + session_.TimeDomain.TdT1, "##0.000")
          : MegahertzNumber(session_.Plan.Frequency(point - 1)));
}

void MarkersSet::ShowMarkerPosition() {
  if (const auto waits = WaitingText(); waits) {
    place_ = ActivePlace();
    position_.Text(*waits);
    return;
  }
  const int points = session_.Plan.NumPoints;
  const int point = session_.Markers.Of(session_.Display.ActiveChannel - 1, ChosenMarker()).Point;
  ShowPosition(point < 1 || point > points ? points / 2 + 1 : point);
}

int MarkersSet::TypedPoint() const {
  const double typed = Val(position_->Text);
  const Metres metres = MetresOfPoints();
  const double position = unit_.Chosen() == kMetres ? (typed - metres.First) / metres.Step
                          : unit_.Chosen() == kNanoseconds
                              ? (typed - session_.TimeDomain.TdT1) / session_.TimeDomain.TdStep
                              : (typed * 1e6 - session_.Plan.StartFreq) / session_.Plan.StepFreq;
  const double index = std::floor(std::clamp(position, -1.0, kFarthest) + 0.5) + 1;
  // A loaded time axis of zero length gives NaN: then the first point, as for positions below it.
  if (!(index >= 1)) return 1;
  return static_cast<int>(std::min<double>(index, session_.Plan.NumPoints));
}

void MarkersSet::TakeReference(int index) {
  const bool on = reference_[static_cast<std::size_t>(index)]->Checked;
  for (int m = 0; m < kMarkers && on; ++m)
    if (m != index) reference_[static_cast<std::size_t>(m)].Checked(false);
}

void MarkersSet::Apply() {
  const bool on = markersOn_.Chosen() == kOn;
  const int active = ChosenMarker();
  const int point = TypedPoint();
  shown_[static_cast<std::size_t>(active)].Checked();
  reference_[static_cast<std::size_t>(active)].Checked(false);
  session_.Display.MarkersOn = on;
  for (int m = 0; m < kMarkers; ++m) {
    const auto i = static_cast<std::size_t>(m);
    MarkerSettings& set = session_.Markers.Set(m);
    set.Shown = on && shown_[i]->Checked;
    set.IsRef = reference_[i]->Checked;
    set.IsActive = m == active;
  }
  // Intentional: the marker itself moves there with the next search or loaded session.
  session_.Markers.Set(active).Point = static_cast<std::int16_t>(point);
  settings_.Accept();
  controller_.graphs().RedrawAll(true);
  ShowPosition(point);
  MarkersChanged(host_.windows);
}

void MarkersSet::Find(Extreme which) {
  const Bands& bands = which == Extreme::Peak ? peak_ : minimum_;
  const std::optional<double> band = bands.Chosen();
  const Settings before = session_.Markers.Settings;
  const bool taken = SearchMarkers(session_, which, band, ChosenMarker());
  beforeBand_.reset();
  if (band && taken && !SameSettings(session_.Markers.Settings, before)) beforeBand_ = before;
  if (!taken) {
    peak_.Clear();
    minimum_.Clear();
  }
  if (band && taken)
    ShowSettings();
  else
    ShowSearched(before);
  controller_.graphs().RedrawAll(false);
  ShowPosition(session_.Markers.Set(ChosenMarker()).Point);
  MarkersChanged(host_.windows);
}

}  // namespace qk
