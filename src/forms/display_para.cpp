#include "forms/display_para.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "core/text.h"
#include "trace/autoscale.h"

namespace qk {

namespace {

enum Group { kChannel = 1, kDisplaySet };

constexpr std::array<const char*, 4> kChannelOptions{"CH1Select", "CH2Select", "CH3Select",
                                                     "CH4Select"};

// The display choices, in the order in which the window shows them.
struct DisplayChoice {
  const char* Option;
  const char* Caption;
  DisplaySet Set;
};
constexpr std::array<DisplayChoice, 4> kDisplayChoices{
    {{"Option1", "ALL", DisplaySet::All},
     {"Option2", "CH1", DisplaySet::One},
     {"Option3", "CH1, CH2", DisplaySet::OneTwo},
     {"Option4", "CH3, CH4", DisplaySet::ThreeFour}}};

DisplaySet ChosenDisplay(const Form& form) {
  for (const DisplayChoice& choice : kDisplayChoices)
    if (form.At(choice.Option).Checked) return choice.Set;
  return DisplaySet::One;
}

// What a list that holds a vocabulary in its order has selected; the first word if nothing.
template <class Word>
Word Chosen(const Control& list) {
  return static_cast<Word>(std::max(0, list.Index));
}

bool UnitsSuit(GraphType type, Unit unit) {
  const std::optional<UnitFamily>& family = RowOf(type).Family;
  return !family || *family == RowOf(unit).Family;
}

// A scale that a graph can work with: the graphs hold it in 32 bits, where a value out of range
// would be zero or infinite.
bool ScaleUsable(double scale) {
  return scale >= static_cast<double>(std::numeric_limits<float>::min()) &&
         scale <= static_cast<double>(std::numeric_limits<float>::max());
}

}  // namespace

DisplayPara::DisplayPara(Controller& controller, EnhancePara& enhance)
    : Form("DisplayPara", "Display Set Up"),
      controller_(controller),
      session_(controller.rig().session),
      host_(controller.rig().host),
      enhance_(enhance) {
  for (std::size_t i = 0; i < kChannelOptions.size(); ++i)
    AddOption(kChannelOptions[i], "CH" + std::to_string(i + 1), kChannel,
              [this] { ShowChannel(); });
  AddList("ListParameters", "Parameter", NamesOf<Parameter>());
  AddList("ListGraphType", "Graph Type", NamesOf<GraphType>(), [this] { TakeNaturalUnit(); });
  AddList("ListUnits", "Units", NamesOf<Unit>());
  AddText("REFinput", "Reference");
  AddList("ListRefPos", "Ref Position", {"1", "2", "3", "4", "5", "6", "7", "8", "9"});
  AddText("SensInput", "Scale / Div");
  for (const DisplayChoice& choice : kDisplayChoices)
    AddOption(choice.Option, choice.Caption, kDisplaySet);
  AddList("ActChSel", "Active Channel", {"1", "2", "3", "4"});
  AddButton("SelectAutoscale", "Autoscale", [this] { SelectAutoscale(); });
  AddButton("ApplyDisplay", "Apply", [this] { ApplyDisplay(); });
  AddButton("CloseDisplayPara", "Exit", [this] { host_.windows.Hide(Name()); });
}

void DisplayPara::OnOpen() {
  Choose("Option2");  // meant: the window opens with CH1 alone, whatever is displayed
  Choose("CH1Select");
  (*this)["ActChSel"].Index = session_.Display.ActiveChannel - 1;
  ShowChannel();
}

void DisplayPara::OnHidden() {
  // Without an instrument no timer runs.
  if (session_.Id.PortNumber != 0) host_.time.Enable(TimerId::Timer1, true);
}

int DisplayPara::ChosenChannel() const {
  for (int channel = 1; channel <= 4; ++channel)
    if (At(kChannelOptions[static_cast<std::size_t>(channel - 1)]).Checked) return channel;
  return 1;
}

void DisplayPara::ShowChannel() {
  const ChannelSettings& channel = session_.Channel(ChosenChannel());
  ShowEntry("ListUnits", NameOf(channel.Units));
  ShowEntry("ListParameters", NameOf(channel.Parameter));
  ShowEntry("ListGraphType", NameOf(channel.GraphType));
  (*this)["REFinput"].Text = PlainNumber(channel.Reference);
  (*this)["ListRefPos"].Index = channel.RefPosition;
  (*this)["SensInput"].Text = PlainNumber(channel.Scale);
}

void DisplayPara::TakeNaturalUnit() {
  const auto unit = RowOf(Chosen<GraphType>(At("ListGraphType"))).NaturalUnit;
  if (unit) ShowEntry("ListUnits", NameOf(*unit));
}

void DisplayPara::SelectAutoscale() {
  ChannelSettings& channel = session_.Channel(ChosenChannel());
  const AutoscaleResult result = Autoscale(channel, session_.Plan.NumPoints);
  if (!result.Changed) return;
  channel.RefPosition = 4;  // meant: written at once, where the fields wait for Apply
  (*this)["ListRefPos"].Index = 4;
  ShowEntry("ListUnits", NameOf(result.Units));
  (*this)["SensInput"].Text = FormatNumber(result.Scale, "####0.00");
  (*this)["REFinput"].Text = FormatNumber(result.Reference, "###0.00");
}

bool DisplayPara::FieldsValid() {
  const auto refuse = [this](const char* text) {
    host_.prompts.Tell("", text, Icon::None);
    return false;
  };
  const ChannelSettings& channel = session_.Channel(ChosenChannel());
  const auto parameter = Chosen<Parameter>(At("ListParameters"));
  const bool transmission = !RowOf(parameter).Reflection;
  const auto type = Chosen<GraphType>(At("ListGraphType"));

  if (type == GraphType::Smith && transmission)
    return refuse("Smith only available with Reflection Parameter");
  if (session_.Display.DisplayMode != DisplayMode::Data && channel.MemoryValid &&
      parameter != channel.MemoryParameter)
    host_.prompts.Tell("", "Warning: Parameter changed, memory trace cannot be displayed.",
                       Icon::None);
  if (type == GraphType::Swr && transmission)
    return refuse("SWR only available with Reflection Parameter");
  if (type == GraphType::Td) {
    for (int n = 1; n <= 4; ++n)
      if (n != ChosenChannel() && session_.Channel(n).GraphType == GraphType::Td)
        return refuse("TD only allowed on one channel");
    if (session_.Plan.NumPoints != kMaxPoints)
      return refuse("Warning: TD Only with 1024 Sweep points");
  }
  if (type != GraphType::Smith && !ScaleUsable(Val(At("SensInput").Text)))
    return refuse("Invalid Y-axis Scale");
  if (!UnitsSuit(type, Chosen<Unit>(At("ListUnits")))) return refuse("Invalid Units Selection");
  const DisplaySetRow& shown = RowOf(ChosenDisplay(*this));
  const int active = At("ActChSel").Index + 1;
  if (active < shown.First || active > shown.Last)
    return refuse("Active channel must be Displayed");
  return true;
}

void DisplayPara::ApplyDisplay() {
  if (FieldsValid()) TakeFields();
}

void DisplayPara::TakeFields() {
  ChannelSettings& channel = session_.Channel(ChosenChannel());
  channel.Units = Chosen<Unit>(At("ListUnits"));
  channel.Reference = Val(At("REFinput").Text);
  channel.RefPosition = static_cast<std::int16_t>(At("ListRefPos").Index);
  constexpr double kLargest = std::numeric_limits<float>::max();
  channel.Scale = std::clamp(Val(At("SensInput").Text), -kLargest, kLargest);
  channel.Parameter = Chosen<Parameter>(At("ListParameters"));
  channel.GraphType = Chosen<GraphType>(At("ListGraphType"));

  DisplayState& display = session_.Display;
  display.DisplaySet = ChosenDisplay(*this);
  display.PlotRefreshPoints = display.DisplaySet == DisplaySet::All ? 4 : 2;
  const int active = At("ActChSel").Index + 1;
  for (int i = 1; i <= 4; ++i) session_.Channel(i).Active = i == active;
  display.ActiveChannel = static_cast<std::int16_t>(active);
  enhance_.FollowActiveChannel();
  controller_.graphs().ReplotAll();
}

}  // namespace qk
