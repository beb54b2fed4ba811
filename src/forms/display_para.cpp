#include "forms/display_para.h"

#include <algorithm>
#include <limits>

#include "core/text.h"
#include "trace/autoscale.h"
#include "trace/graph_type.h"

namespace qk {

namespace {

enum Group { kChannel = 1, kDisplaySet };

constexpr std::array<const char*, 4> kChannelOptions{"CH1Select", "CH2Select", "CH3Select",
                                                     "CH4Select"};

// The display choices: which channels each shows.
struct DisplayChoice {
  const char* Option;
  const char* Caption;
  const char* DisplaySet;
  int FirstChannel, LastChannel;
};
constexpr std::array<DisplayChoice, 4> kDisplayChoices{
    {{"Option1", "ALL", "all", 1, 4},
     {"Option2", "CH1", "one", 1, 1},
     {"Option3", "CH1, CH2", "one-two", 1, 2},
     {"Option4", "CH3, CH4", "three-four", 3, 4}}};

const DisplayChoice& ChosenDisplay(const Form& form) {
  for (const DisplayChoice& choice : kDisplayChoices)
    if (form.At(choice.Option).Checked) return choice;
  return kDisplayChoices[1];
}

bool UnitsSuit(GraphKind kind, const std::string& units) {
  switch (kind) {
    case GraphKind::LogMag:
      return units == "dB";
    case GraphKind::Phase:
      return units == "deg";
    case GraphKind::GroupDelay:
      return units == "ps" || units == "ns" || units == "us";
    case GraphKind::LinMag:
    case GraphKind::Real:
    case GraphKind::Imag:
    case GraphKind::Td:
    case GraphKind::Swr:
      return units == "mU" || units == "U";
    case GraphKind::Smith:
    case GraphKind::Unknown:
      break;
  }
  return true;
}

// The unit that a graph type brings along; nothing for the Smith chart.
const char* NaturalUnit(GraphKind kind) {
  switch (kind) {
    case GraphKind::LogMag:
      return "dB";
    case GraphKind::Phase:
      return "deg";
    case GraphKind::GroupDelay:
      return "ns";
    case GraphKind::LinMag:
    case GraphKind::Real:
    case GraphKind::Imag:
    case GraphKind::Td:
    case GraphKind::Swr:
      return "U";
    case GraphKind::Smith:
    case GraphKind::Unknown:
      break;
  }
  return nullptr;
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
  AddList("ListParameters", "Parameter", {"S11", "S21", "S12", "S22"});
  AddList("ListGraphType", "Graph Type",
          {"LogMag", "Phase", "Smith", "SWR", "Group Delay", "LinMag", "Real", "Imag"},
          [this] { TakeNaturalUnit(); });
  AddList("ListUnits", "Units", {"ps", "ns", "us", "U", "mU", "dB", "deg"});
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
  ShowEntry("ListUnits", channel.Units);
  ShowEntry("ListParameters", channel.Parameter);
  ShowEntry("ListGraphType", channel.GraphType);
  (*this)["REFinput"].Text = PlainNumber(channel.Reference);
  (*this)["ListRefPos"].Index = channel.RefPosition;
  (*this)["SensInput"].Text = PlainNumber(channel.Scale);
}

void DisplayPara::TakeNaturalUnit() {
  const char* unit = NaturalUnit(GraphKindOf(At("ListGraphType").Value()));
  if (unit != nullptr) ShowEntry("ListUnits", unit);
}

void DisplayPara::SelectAutoscale() {
  ChannelSettings& channel = session_.Channel(ChosenChannel());
  const AutoscaleResult result = Autoscale(channel, session_.Plan.NumPoints);
  if (!result.Changed) return;
  channel.RefPosition = 4;  // meant: written at once, where the fields wait for Apply
  (*this)["ListRefPos"].Index = 4;
  ShowEntry("ListUnits", result.Units);
  (*this)["SensInput"].Text = FormatNumber(result.Scale, "####0.00");
  (*this)["REFinput"].Text = FormatNumber(result.Reference, "###0.00");
}

bool DisplayPara::FieldsValid() {
  const auto refuse = [this](const char* text) {
    host_.prompts.Tell("", text, Icon::None);
    return false;
  };
  const ChannelSettings& channel = session_.Channel(ChosenChannel());
  const std::string parameter = At("ListParameters").Value();
  const bool transmission = parameter == "S12" || parameter == "S21";
  const GraphKind kind = GraphKindOf(At("ListGraphType").Value());

  if (kind == GraphKind::Smith && transmission)
    return refuse("Smith only available with Reflection Parameter");
  if (session_.Display.DisplayMode != "Data" && channel.MemoryValid &&
      parameter != channel.MemoryParameter)
    host_.prompts.Tell("", "Warning: Parameter changed, memory trace cannot be displayed.",
                       Icon::None);
  if (kind == GraphKind::Swr && transmission)
    return refuse("SWR only available with Reflection Parameter");
  if (kind != GraphKind::Smith && !ScaleUsable(Val(At("SensInput").Text)))
    return refuse("Invalid Y-axis Scale");
  if (!UnitsSuit(kind, At("ListUnits").Value())) return refuse("Invalid Units Selection");
  const DisplayChoice& shown = ChosenDisplay(*this);
  const int active = At("ActChSel").Index + 1;
  if (active < shown.FirstChannel || active > shown.LastChannel)
    return refuse("Active channel must be Displayed");
  return true;
}

void DisplayPara::ApplyDisplay() {
  if (FieldsValid()) TakeFields();
}

void DisplayPara::TakeFields() {
  ChannelSettings& channel = session_.Channel(ChosenChannel());
  channel.Units = At("ListUnits").Value();
  channel.Reference = Val(At("REFinput").Text);
  channel.RefPosition = static_cast<std::int16_t>(At("ListRefPos").Index);
  constexpr double kLargest = std::numeric_limits<float>::max();
  channel.Scale = std::clamp(Val(At("SensInput").Text), -kLargest, kLargest);
  channel.Parameter = At("ListParameters").Value();
  channel.GraphType = At("ListGraphType").Value();

  DisplayState& display = session_.Display;
  display.DisplaySet = ChosenDisplay(*this).DisplaySet;
  display.PlotRefreshPoints = display.DisplaySet == "all" ? 4 : 2;
  const int active = At("ActChSel").Index + 1;
  for (int i = 1; i <= 4; ++i) session_.Channel(i).Active = i == active;
  display.ActiveChannel = static_cast<std::int16_t>(active);
  enhance_.FollowActiveChannel();
  controller_.graphs().ReplotAll();
}

}  // namespace qk
