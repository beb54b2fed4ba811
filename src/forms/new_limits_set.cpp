// SPDX-License-Identifier: MIT
#include "forms/new_limits_set.h"

#include <string>

#include "core/instrument_limits.h"
#include "core/window_names.h"
#include "limits/limit_segments.h"

namespace qk {

namespace {

// The differences between the tabs of the four channels.
struct TabNames {
  int FirstText;  // number of the first of 24 fields
  const char* Show;
  const char* Apply;
};
constexpr std::array<TabNames, kChannels> kTabs{{{1, "Check1", "Command2"},
                                                 {33, "Check3", "Command3"},
                                                 {65, "Check11", "Command6"},
                                                 {97, "Check28", "Command8"}}};

struct FieldOfSegment {
  std::string LimitSegment::*Text;
  const char* Caption;
  const char* Unit;  // next to the field if the caption does not contain it
  int Chars;         // as few as a value needs: the window shares its screen with the graphs
};
constexpr const char* kAsShown = ", in the unit that the channel shows";
constexpr std::array<FieldOfSegment, 4> kFields{
    {{&LimitSegment::Start, "Start MHz", "", 9},
     {&LimitSegment::Stop, "Stop MHz", "", 9},
     {&LimitSegment::Upper, "Upper limit", kAsShown, 7},
     {&LimitSegment::Lower, "Lower limit", kAsShown, 7}}};

}  // namespace

NewLimitsSet::NewLimitsSet(Controller& controller)
    : Form(window::kNewLimitsSet, "Limit Lines Set Up"),
      controller_(controller),
      session_(controller.rig().session),
      host_(controller.rig().host) {
  for (int channel = 1; channel <= kChannels; ++channel) AddTab(channel);
  Section("", {.How = Arrange::Row});
  enabled_ =
      AddCheck("Check37", "Enable Limits", [this] { session_.Limits.Enabled = enabled_->Checked; })
          .Key('E')
          .Tip("Shows the limits of the channels that are ticked and applied");
  alarm_ = AddCheck("Check38", "Alarm", [this] { session_.Limits.Alarm = alarm_->Checked; })
               .Key('l')
               .Tip("Tests each sweep against the limits, beeps and marks a failure");
  Section("");
  waiting_ = AddLabel("Waiting", "").Wide();
  ActionRow();
  AddButton("Command1", "Apply & Exit", [this] { ApplyAndExit(); })
      .Key('x')
      .Tip("Shows the limits that are ticked and applied, and closes the window");
}

void NewLimitsSet::AddTab(int channel) {
  const TabNames& names = kTabs[static_cast<std::size_t>(channel - 1)];
  Tab& tab = tabs_[static_cast<std::size_t>(channel - 1)];
  const std::string page = "CH" + std::to_string(channel);
  Section("", {.How = Arrange::Grid, .Columns = 5, .Tab = page});
  AddLabel(page + "Head", "");
  for (const FieldOfSegment& field : kFields)
    AddLabel(page + std::string(field.Caption), field.Caption);
  for (std::size_t s = 0; s < kLimitSegments; ++s) {
    const std::string segment = "Seg " + std::to_string(s + 1);
    AddLabel(page + segment, segment);
    for (std::size_t f = 0; f < kFields.size(); ++f) {
      const int number = names.FirstText + static_cast<int>(4 * s + f);
      tab.Fields[s][f] =
          AddText("Text" + std::to_string(number), segment + " " + kFields[f].Caption,
                  [this, channel, s, f] {
                    LimitSegment& typed = session_.Limits.Of(channel).Segments[s];
                    typed.*kFields[f].Text =
                        tabs_[static_cast<std::size_t>(channel - 1)].Fields[s][f]->Text;
                    if (f == 0) typed.EnteredStart.clear();
                    if (f == 1) typed.EnteredStop.clear();
                  })
              .Number()
              .Chars(kFields[f].Chars)
              .Tip(segment + ": " + kFields[f].Caption + kFields[f].Unit);
    }
  }
  Section("", {.How = Arrange::Row, .Tab = page});
  tab.Show = AddCheck(names.Show, "Show Limits",
                      [this, channel] {
                        session_.Limits.Of(channel).Show =
                            tabs_[static_cast<std::size_t>(channel - 1)].Show->Checked;
                      })
                 .Key('S')
                 .Tip("Shows and tests the limits of channel " + std::to_string(channel));
  const Handle apply =
      AddButton(names.Apply, "Apply", [this, channel] { Apply(channel); })
          .Key('A')
          .Tip("Makes limits from the segments of channel " + std::to_string(channel));
  for (const auto& segment : tab.Fields)
    for (const Handle& field : segment) {
      field.Returns(apply);
      tab.Entry.Add(field);
    }
}

void NewLimitsSet::ShowFields() {
  for (int channel = 1; channel <= kChannels; ++channel) {
    const ChannelLimits& limits = session_.Limits.Of(channel);
    const Tab& tab = tabs_[static_cast<std::size_t>(channel - 1)];
    for (std::size_t s = 0; s < kLimitSegments; ++s)
      for (std::size_t f = 0; f < kFields.size(); ++f)
        // A text that is typed and not applied keeps its mark.
        if (const std::string& text = limits.Segments[s].*kFields[f].Text;
            tab.Fields[s][f]->Text != text)
          tab.Fields[s][f].Text(text);
    tab.Show.Checked(limits.Show);
  }
  std::string waiting = controller_.kept().WaitingLimits(session_);
  for (const std::string& more : {UnsuitableLimits(session_), LimitsBeyondSegments(session_),
                                  LimitsOnTimeAxis(session_), SegmentsWithoutLimit(session_)}) {
    if (!waiting.empty() && !more.empty()) waiting += "\n";
    waiting += more;
  }
  waiting_.Caption(waiting).Shown(!waiting.empty());
  enabled_.Checked(session_.Limits.Enabled);
  alarm_.Checked(session_.Limits.Alarm);
}

void NewLimitsSet::OnSessionLoaded() {
  for (const Tab& tab : tabs_) tab.Entry.Accept();
  ShowFields();
}

void NewLimitsSet::Apply(int channel) {
  const Result<Done> applied = ApplyLimits(session_, channel);
  if (applied) tabs_[static_cast<std::size_t>(channel - 1)].Entry.Accept();
  ShowFields();
  if (!applied)
    host_.prompts.ShowMessage("Limit Lines Set", applied.Why().Message, Icon::Exclamation);
}

void NewLimitsSet::ApplyAndExit() {
  ShowLimitsAsSwitched(session_, host_);
  bool applied = false;
  for (int channel = 1; channel <= kChannels; ++channel)
    applied = applied || session_.Limits.Of(channel).Applied;
  if (applied && !session_.Display.ShowLimits)
    controller_.notice().Say("No limits are shown: tick Show Limits and Enable Limits");
  host_.windows.Hide(Name());
  controller_.graphs().RedrawAll(true);
}

}  // namespace qk
