// SPDX-License-Identifier: MIT
#include "forms/display_para.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "control/verbs.h"
#include "core/instrument_limits.h"
#include "core/quantity_text.h"
#include "core/text.h"
#include "core/typed_value.h"
#include "core/window_names.h"
#include "trace/autoscale.h"
#include "trace/memory.h"

namespace qk {

namespace {

// The display choices in window order.
constexpr std::array<DisplaySet, 4> kDisplayChoices{DisplaySet::One, DisplaySet::OneTwo,
                                                    DisplaySet::ThreeFour, DisplaySet::All};
constexpr int kOneChannel = 0;

// The selected word of a list that contains a vocabulary in its order; the first word if nothing is
// selected.
template <class Word>
Word Chosen(const Handle& list) {
  return static_cast<Word>(std::max(0, list->Index));
}

bool UnitsSuit(GraphType type, Unit unit) {
  const std::optional<UnitFamily>& family = RowOf(type).Family;
  return !family || *family == RowOf(unit).Family;
}

// "CH1, CH2".
std::string ChannelsText(const DisplaySetRow& row) {
  std::string text;
  for (int n = row.First; n <= row.Last; ++n)
    text += (n == row.First ? "CH" : ", CH") + std::to_string(n);
  return text;
}

// True for a scale that a graph can use: graphs store it in 32 bits, where a value out of range
// would become zero or infinite.
bool ScaleUsable(double scale) {
  return scale >= static_cast<double>(std::numeric_limits<float>::min()) &&
         scale <= static_cast<double>(std::numeric_limits<float>::max());
}

}  // namespace

DisplayPara::DisplayPara(Controller& controller)
    : Form(window::kDisplayPara, "Display Set Up"),
      controller_(controller),
      session_(controller.rig().session),
      host_(controller.rig().host) {
  AddChannel();
  AddAxis();
  AddDisplay();
  channel_ = {parameter_, type_, units_, element_, grid_, reference_, position_, scale_};
  ActionRow();
  AddButton("ApplyDisplay", "Apply", [this] { ApplyDisplay(); }).Key('A').Default();
  AddButton("CloseDisplayPara", "Exit", [this] { host_.windows.Hide(Name()); }).Key('x');
}

void DisplayPara::AddChannel() {
  Section("Channel");
  channels_ = AddOptions(
      {{"CH1Select", "CH1"}, {"CH2Select", "CH2"}, {"CH3Select", "CH3"}, {"CH4Select", "CH4"}},
      [this] { ChannelChosen(); });
  channels_.Keys("1234");
  channels_.Choose(0);  // a session change may happen before the window is opened
  parameter_ = AddList("ListParameters", "Parameter", NamesOf<Parameter>(), [this] {
                 ParameterChosen();
               }).Key('P');
  type_ = AddList("ListGraphType", "Graph Type", NamesOf<GraphType>(), [this] {
            TypeChosen();
          }).Key('G');
  units_ = AddList("ListUnits", "Units", NamesOf<Unit>(), [this] { ShowUnits(); }).Key('U');
  element_ = AddList("ListElement", "Measured As", NamesOf<Element>(), [this] { ShowDisplayed(); })
                 .Key('M')
                 .Tip(
                     "For |Z|, R, X, L, C, Q: the part is at the end of the port, in series "
                     "between the ports, or from the line to ground");
  grid_ = AddList("ListGrid", "Smith Grid", NamesOf<ChartGrid>(), [this] { ShowDisplayed(); })
              .Key('i')
              .Tip("Lines of constant impedance, admittance, or both");
}

void DisplayPara::AddAxis() {
  Section("Vertical Axis", {.Where = Position::Beside});
  scale_ = AddText("SensInput", "Scale / Div", [this] { ShowDisplayed(); })
               .Unit("dB")
               .Key('S')
               .Number()
               .Tip("Units per division; a graph has eight divisions");
  reference_ = AddText("REFinput", "Reference", [this] { ShowDisplayed(); })
                   .Unit("dB")
                   .Key('R')
                   .Number()
                   .Tip("Value at the reference line, in the units chosen");
  position_ = AddList("ListRefPos", "Ref Position", {"1", "2", "3", "4", "5", "6", "7", "8", "9"},
                      [this] { ShowDisplayed(); })
                  .Key('o')
                  .Tip("Position of the reference line: 1 is the top edge, 9 the bottom");
  AddButton("SelectAutoscale", "Autoscale", [this] { SelectAutoscale(); })
      .Key('t')
      .Tip("Fill in scale and reference from the last sweep; Apply uses them");
}

void DisplayPara::AddDisplay() {
  Section("Displayed Channels");
  displays_ = AddOptions(
      {{"Option2", "CH1"}, {"Option3", "CH1, CH2"}, {"Option4", "CH3, CH4"}, {"Option1", "ALL"}},
      [this] { ShowDisplayed(); });
  displays_.Tip("Channels displayed after Apply");
  active_ = AddList("ActChSel", "Active Channel", {"1", "2", "3", "4"}, [this] { ShowDisplayed(); })
                .Key('v')
                .SameRow()
                .Tip("Marker searches and the entry of the reference plane act on this channel");
  displayed_ = AddLabel("Displayed", "Displayed now").Lines(2);
}

void DisplayPara::OnOpen() {
  displays_.Choose(kOneChannel);  // intentional: only CH1, whatever is displayed
  channels_.Choose(0);
  drafts_ = {};
  active_.Index(session_.Display.ActiveChannel - 1);
  ShowChannel();
  ShowDisplayed();
}

void DisplayPara::OnSessionChanged() {
  if (!channel_.Edited() && !ShowsChannel()) ShowChannel();
  active_.FollowIndex(session_.Display.ActiveChannel - 1);
  ShowDisplayed();
}

void DisplayPara::OnHidden() {
  ResumeTimer1(controller_.rig());
}

void DisplayPara::SetUp(int channel, std::string_view field) {
  const auto displayed = std::ranges::find(kDisplayChoices, session_.Display.DisplaySet);
  displays_.Follow(static_cast<int>(displayed - kDisplayChoices.begin()));
  Tick(channels_[channel - 1]->Name, true);
  ShowDisplayed();
  RequestFocus(field);
}

void DisplayPara::ChannelChosen() {
  if (ChosenChannel() == shownChannel_) return;
  KeepDraft();
  ShowChannel();
  ShowDraft();
  ShowDisplayed();
}

void DisplayPara::KeepDraft() {
  std::optional<Draft>& draft = drafts_[static_cast<std::size_t>(shownChannel_ - 1)];
  draft.reset();
  if (channel_.Edited())
    draft = {parameter_->Index, type_->Index, units_->Index, position_->Index,
             element_->Index,   grid_->Index, scale_->Text,  reference_->Text};
}

// Restores what was typed for the chosen channel before.
void DisplayPara::ShowDraft() {
  std::optional<Draft>& draft = drafts_[static_cast<std::size_t>(ChosenChannel() - 1)];
  if (!draft) return;
  parameter_.Index(draft->Parameter);
  type_.Index(draft->Type);
  units_.Index(draft->Units);
  position_.Index(draft->Position);
  element_.Index(draft->Element);
  grid_.Index(draft->Grid);
  scale_.Text(draft->Scale);
  reference_.Text(draft->Reference);
  BeginEdit("SensInput");
  draft.reset();
  ShowUnits();
}

void DisplayPara::ShowChannel() {
  shownChannel_ = ChosenChannel();
  const ChannelSettings& channel = session_.Channel(ChosenChannel());
  units_.ShowEntry(NameOf(channel.Units));
  parameter_.ShowEntry(NameOf(channel.Parameter));
  type_.ShowEntry(NameOf(channel.GraphType));
  reference_.Text(PlainNumber(channel.Reference));
  position_.Index(channel.RefPosition);
  scale_.Text(PlainNumber(channel.Scale));
  element_.ShowEntry(NameOf(ElementOf(channel)));
  grid_.ShowEntry(NameOf(channel.Grid));
  ShowUnits();
}

bool DisplayPara::ShowsChannel() const {
  const ChannelSettings& channel = session_.Channel(ChosenChannel());
  return Chosen<Unit>(units_) == channel.Units &&
         Chosen<Parameter>(parameter_) == channel.Parameter &&
         Chosen<GraphType>(type_) == channel.GraphType &&
         Val(reference_->Text) == channel.Reference && position_->Index == channel.RefPosition &&
         Val(scale_->Text) == channel.Scale && Chosen<Element>(element_) == ElementOf(channel) &&
         Chosen<ChartGrid>(grid_) == channel.Grid;
}

void DisplayPara::TypeChosen() {
  const auto unit = RowOf(Chosen<GraphType>(type_)).NaturalUnit;
  if (unit) units_.ShowEntry(NameOf(*unit));
  ShowUnits();
}

// A reflection parameter always uses Reflection, a transmission parameter never does.
void DisplayPara::ParameterChosen() {
  const bool reflection = RowOf(Chosen<Parameter>(parameter_)).Reflection;
  if (reflection != (Chosen<Element>(element_) == Element::Reflection))
    element_.ShowEntry(NameOf(reflection ? Element::Reflection : Element::Series));
  ShowUnits();
}

void DisplayPara::ShowUnits() {
  const PointForm form = RowOf(Chosen<GraphType>(type_)).Form;
  element_.Enabled(form == PointForm::Component &&
                   !RowOf(Chosen<Parameter>(parameter_)).Reflection);
  grid_.Enabled(form == PointForm::Chart);
  const bool axis = RowOf(Chosen<GraphType>(type_)).Form != PointForm::Chart;
  for (const Handle& field : {units_, scale_, reference_, position_}) field.Enabled(axis);
  for (const Handle& field : {scale_, reference_}) field.Unit(units_->Value());
  ShowDisplayed();
}

// "; Apply will display CH1 only, change CH1", or empty.
std::string DisplayPara::ChangesText() const {
  if (displays_.Chosen() < 0) return {};  // not opened yet
  const DisplayState& display = session_.Display;
  std::string text;
  const auto add = [&text](const std::string& change) {
    text += (text.empty() ? "; Apply will " : ", ") + change;
  };
  const DisplaySet chosen = kDisplayChoices[static_cast<std::size_t>(displays_.Chosen())];
  if (chosen != display.DisplaySet) {
    const DisplaySetRow& row = RowOf(chosen);
    add("display " + ChannelsText(row) + (row.First == row.Last ? " only" : ""));
  }
  if (active_->Index + 1 != display.ActiveChannel)
    add("make CH" + std::to_string(active_->Index + 1) + " active");
  if (channel_.Edited() && !ShowsChannel()) add("change CH" + std::to_string(ChosenChannel()));
  return text;
}

void DisplayPara::ShowDisplayed() {
  const std::string text = "Displayed now: " + ChannelsText(RowOf(session_.Display.DisplaySet)) +
                           "; active CH" + std::to_string(session_.Display.ActiveChannel) +
                           ChangesText();
  std::string waiting;
  for (std::size_t i = 0; i < drafts_.size(); ++i)
    if (drafts_[i]) waiting += (waiting.empty() ? " CH" : ", CH") + std::to_string(i + 1);
  displayed_.Text(text + (waiting.empty() ? "" : "; not applied yet:" + waiting));
}

void DisplayPara::SelectAutoscale() {
  ChannelSettings& channel = session_.Channel(ChosenChannel());
  const AutoscaleResult result = Autoscale(channel, session_.Plan.NumPoints);
  if (!result.Changed) return;
  channel.RefPosition = 4;  // intentional: written at once, although the fields wait for Apply
  position_.Index(4);
  // Number and unit match even if another unit of the same family is chosen but not applied. A unit
  // of another family belongs to a graph type that is not applied yet.
  const Unit listed = Chosen<Unit>(units_);
  if (result.Units != channel.Units || RowOf(listed).Family == RowOf(channel.Units).Family)
    units_.ShowEntry(NameOf(result.Units));
  scale_.Text(FormatNumber(result.Scale, "####0.00"));
  reference_.Text(FormatNumber(result.Reference, "###0.00"));
  BeginEdit("SensInput");  // they wait for Apply like typed values
  ShowUnits();
}

bool DisplayPara::FieldsValid() {
  const auto refuse = [this](const char* text) {
    host_.prompts.ShowMessage("", text, Icon::None);
    return false;
  };
  const auto parameter = Chosen<Parameter>(parameter_);
  const bool transmission = !RowOf(parameter).Reflection;
  const auto type = Chosen<GraphType>(type_);

  if (type == GraphType::Smith && transmission)
    return refuse("Smith only available with Reflection Parameter");
  const ConstStoredMemory memory =
      MemoryOf(std::as_const(session_), ChosenChannel(), session_.Display.MemoryNumber);
  if (session_.Display.DisplayMode != DisplayMode::Data && memory.Valid && parameter != memory.Of)
    host_.prompts.ShowMessage("", "Warning: Parameter changed, memory trace cannot be displayed.",
                              Icon::None);
  if (type == GraphType::Swr && transmission)
    return refuse("SWR only available with Reflection Parameter");
  if (type == GraphType::TdImpedance && transmission)
    return refuse("TD Z only available with Reflection Parameter");
  if (RowOf(type).Form == PointForm::Component && transmission &&
      Chosen<Element>(element_) == Element::Reflection)
    return refuse("Measured As must be Series or Shunt with S21 and S12");
  if (RowOf(type).Form == PointForm::Spectrum) {
    static_assert(kTimeDomainPoints == 1024, "the warning names the number");
    for (int n = 1; n <= kChannels; ++n)
      if (n != ChosenChannel() && RowOf(session_.Channel(n).GraphType).Form == PointForm::Spectrum)
        return refuse("TD only allowed on one channel");
    if (session_.Plan.NumPoints != kTimeDomainPoints)
      return refuse("Warning: TD Only with 1024 Sweep points");
  }
  const auto unit = Chosen<Unit>(units_);
  if (type != GraphType::Smith && !ScaleUsable(TypedFor(type, unit, scale_->Text).value_or(0)))
    return refuse("Invalid Y-axis Scale");
  if (type != GraphType::Smith && !TypedFor(type, unit, reference_->Text))
    return refuse("Invalid Reference");
  if (!UnitsSuit(type, Chosen<Unit>(units_))) return refuse("Invalid Units Selection");
  const DisplaySetRow& shown = RowOf(kDisplayChoices[static_cast<std::size_t>(displays_.Chosen())]);
  const int active = active_->Index + 1;
  if (active < shown.First || active > shown.Last)
    return refuse("Active channel must be Displayed");
  return true;
}

void DisplayPara::ApplyDisplay() {
  if (FieldsValid()) TakeFields();
}

void DisplayPara::TakeFields() {
  ChannelSettings& channel = session_.Channel(ChosenChannel());
  const auto type = Chosen<GraphType>(type_);
  channel.Units = Chosen<Unit>(units_);
  channel.Reference = TypedFor(type, channel.Units, reference_->Text).value_or(0);
  channel.RefPosition = static_cast<std::int16_t>(position_->Index);
  constexpr double kLargest = std::numeric_limits<float>::max();
  const double scale = TypedFor(type, channel.Units, scale_->Text).value_or(0);
  channel.Scale = std::clamp(scale, -kLargest, kLargest);
  channel.Parameter = Chosen<Parameter>(parameter_);
  channel.GraphType = type;
  // Stored only for a channel that shows them: a choice that is not used is not a setting.
  if (element_->Enabled) channel.Element = Chosen<Element>(element_);
  if (grid_->Enabled) channel.Grid = Chosen<ChartGrid>(grid_);
  if (HasPrefixes(RowOf(channel.Units).Family)) {
    scale_.Text(PlainNumber(channel.Scale));  // may have been typed with another prefix
    reference_.Text(PlainNumber(channel.Reference));
  }

  DisplayState& display = session_.Display;
  display.DisplaySet = kDisplayChoices[static_cast<std::size_t>(displays_.Chosen())];
  display.PlotRefreshPoints = display.DisplaySet == DisplaySet::All ? 4 : 2;
  channel_.Accept();
  active_.Accept();
  displays_.Choose(displays_.Chosen());
  SelectActiveChannel(session_, host_.windows, active_->Index + 1);
  ShowDisplayed();
  controller_.graphs().ReplotAll();
}

}  // namespace qk
