// SPDX-License-Identifier: MIT
#include "display/frame.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/instrument_limits.h"
#include "core/quantity_text.h"
#include "core/text.h"
#include "display/layout.h"

namespace qk {

namespace {
// The inset of the texts of a Smith chart from the left and right edges of its rectangle. In a
// narrow one they begin in its margin, not in the next graph or outside of the picture.
double ChartInset(const GraphRecord& graph) {
  constexpr double kMargin = 0.04;  // of the width; the smallest of all layouts
  if (!graph.IsSmith) return 0;
  return std::max(0.4 * graph.Width() - 0.5 * graph.Height(), -kMargin * graph.Width());
}

std::string WindowName(const TimeDomainState& timeDomain) {
  switch (timeDomain.TdWindow) {
    case TdWindow::Rect:
      return "Rect";
    case TdWindow::KaiserB:
      return "KB " + WholeNumberText(timeDomain.TdKaiserOrder);
    case TdWindow::RaisedCos:
      break;
  }
  return "Hann";
}

// With an exponent from 1e9 on, because up to 309 digits would not fit in the frame.
std::string AtTheFrame(double value) {
  return FormatNumber(value, std::fabs(value) < 1e9 ? "#0.0#" : "#0.0E+00");
}

void DrawTriangle(Canvas& canvas, CanvasPoint a, CanvasPoint b, CanvasPoint c) {
  canvas.DrawPolyline(std::array<CanvasPoint, 4>{a, b, c, a});
}
}  // namespace

std::string ScaleText(const ChannelSettings& channel) {
  return AtTheFrame(channel.Scale) + " " + std::string(NameOf(channel.Units)) + "/DIV";
}

std::string ReferenceText(const ChannelSettings& channel) {
  return AtTheFrame(channel.Reference) + " " + std::string(NameOf(channel.Units));
}

std::string TitleText(const ChannelSettings& channel, const TimeDomainState& timeDomain) {
  const std::string parameter(NameOf(channel.Parameter));
  const GraphTypeRow& type = RowOf(channel.GraphType);
  // Intentional: no blank between parameter and "TD (".
  if (channel.GraphType == GraphType::Td) return parameter + "TD (" + WindowName(timeDomain) + ")";
  std::string plain = parameter + " " + std::string(type.Name);
  switch (type.Form) {
    case PointForm::Spectrum:
      return plain + " (" + WindowName(timeDomain) + ")";
    case PointForm::Chart:
      return parameter +
             (channel.Grid == ChartGrid::Admittance ? " Reflection Y" : " Reflection Z");
    case PointForm::Component:
      switch (ElementOf(channel)) {
        case Element::Series:
          return plain + " series";
        case Element::Shunt:
          return plain + " shunt";
        case Element::Reflection:
          break;
      }
      return plain;
    case PointForm::Quantity:
    case PointForm::Delay:
    case PointForm::Unwrapped:
      break;
  }
  return plain;
}

std::string StartText(const Session& session, const GraphRecord& graph) {
  if (graph.IsDistance) return MetresText(graph.MetresStart);
  return graph.IsTime ? NanosecondsText(session.TimeDomain.TdT1)
                      : MegahertzText(session.Plan.StartFreq);
}

std::string StopText(const Session& session, const GraphRecord& graph) {
  if (graph.IsDistance) return MetresText(graph.MetresStart + (kMaxPoints - 1) * graph.MetresStep);
  return graph.IsTime ? NanosecondsText(session.TimeDomain.TdT2)
                      : MegahertzText(session.Plan.StopFreq);
}

std::string ZoText(const ImpedanceState& impedance) {
  return "[Zo=" + FormatNumber(static_cast<double>(impedance.SystemZo), "##0") + "]";
}

CanvasPoint ScaleTextAt(const GraphRecord& graph, Extent text) {
  return {graph.Right - text.width, graph.Top - text.height};
}

CanvasPoint ReferenceTextAt(const GraphRecord& graph, Extent text, int widthOfRe) {
  return {graph.Left + widthOfRe, graph.Top - text.height};
}

CanvasPoint TitleAt(const GraphRecord& graph, Extent text) {
  return {WholePixel(graph.Left + ChartInset(graph)),
          WholePixel(graph.Top - kTitleRise * text.height)};
}

CanvasPoint StartTextAt(const GraphRecord& graph) {
  return {WholePixel(graph.Left + ChartInset(graph)), graph.Bottom};
}

CanvasPoint StopTextAt(const GraphRecord& graph, Extent text) {
  return {WholePixel(graph.Right - text.width - ChartInset(graph)), graph.Bottom};
}

CanvasPoint ZoTextAt(Extent area, Extent text) {
  return {WholePixel(area.width - 1.1 * text.width), WholePixel(0.1 * text.height)};
}

void SetOutlinePen(Canvas& canvas, const Colours& colours) {
  canvas.SetPen(colours.OutlineColour, PenStyle::Solid, 1);
}

void SetGridPen(Canvas& canvas, const Colours& colours) {
  canvas.SetPen(colours.GridColour, PenStyle::Dotted, 1);
}

void DrawRectangularFrame(Canvas& canvas, const GraphRecord& graph, const Colours& colours) {
  SetOutlinePen(canvas, colours);
  canvas.DrawRectangle({graph.Left, graph.Top}, {graph.Right, graph.Bottom});
  SetGridPen(canvas, colours);
  for (int i = 1; i <= 9; ++i) {
    const int x = WholePixel(graph.Left + graph.Width() * i / 10.0);
    canvas.DrawLine({x, graph.Top}, {x, graph.Bottom});
  }
  for (int i = 1; i <= 7; ++i) {
    const int y = WholePixel(graph.Top + i * graph.Height() / 8.0);
    canvas.DrawLine({graph.Left, y}, {graph.Right, y});
  }
}

void DrawReference(Canvas& canvas, const GraphRecord& graph, const ChannelSettings& channel,
                   const Colours& colours) {
  canvas.SetPen(colours.TextColour, PenStyle::Solid, 1);
  const Extent r = canvas.TextExtent("R");
  DrawTriangle(canvas, {graph.Left, WholePixel(graph.Top - 0.8 * r.height)},
               {graph.Left, WholePixel(graph.Top - 0.2 * r.height)},
               {graph.Left + r.width, WholePixel(graph.Top - 0.5 * r.height)});
  const double line = graph.Top + graph.RefPosition * graph.Height() / 8.0;
  const int base = WholePixel(graph.Left - 1.1 * r.width);
  DrawTriangle(canvas, {base, WholePixel(line - 0.3 * r.height)},
               {base, WholePixel(line + 0.3 * r.height)},
               {WholePixel(graph.Left - 0.3 * r.width), WholePixel(line)});

  const std::string scale = ScaleText(channel);
  canvas.DrawText(ScaleTextAt(graph, canvas.TextExtent(scale)), scale, colours.TextColour);
  const std::string reference = ReferenceText(channel);
  canvas.DrawText(
      ReferenceTextAt(graph, canvas.TextExtent(reference), canvas.TextExtent("Re").width),
      reference, colours.TextColour);
}

void DrawGraphText(Canvas& canvas, const GraphRecord& graph, const ChannelSettings& channel,
                   const Session& session) {
  const std::uint32_t colour = session.Colour.TextColour;
  std::string title = TitleText(channel, session.TimeDomain);
  if (graph.IsGated) title += " " + std::string(NameOf(session.TimeDomain.Gate));
  canvas.DrawText(TitleAt(graph, canvas.TextExtent(title)), title, colour);
  canvas.DrawText(StartTextAt(graph), StartText(session, graph), colour);
  const std::string stop = StopText(session, graph);
  canvas.DrawText(StopTextAt(graph, canvas.TextExtent(stop)), stop, colour);
}

void DrawGateEdges(Canvas& canvas, const GraphRecord& graph, const Session& session) {
  const TimeDomainState& td = session.TimeDomain;
  if (td.Gate == GateKind::Off || !(td.TdT2 > td.TdT1)) return;
  canvas.SetPen(session.Colour.TextColour, PenStyle::Dashed, 1);
  for (const double ns : {td.GateStart, td.GateStop}) {
    if (ns < td.TdT1 || ns > td.TdT2) continue;
    const int x = WholePixel(graph.Left + graph.Width() * (ns - td.TdT1) / (td.TdT2 - td.TdT1));
    canvas.DrawLine({x, graph.Top}, {x, graph.Bottom});
  }
}

namespace {

// Enough decimals to distinguish adjacent divisions, at most four.
std::string DivisionText(double value, double division) {
  const double size = std::fabs(division);
  if (std::fabs(value) < 1e-9 * size) value = 0;
  if (!(size >= 1e-4) || !(std::fabs(value) < 1e9)) return FormatNumber(value, "#0.0E+00");
  // A whole number of tenths, hundredths, ... of the unit.
  constexpr const char* kPictures[] = {"#0", "#0.0", "#0.00", "#0.000", "#0.0000"};
  double part = size;
  std::size_t decimals = 0;
  while (decimals < 4 && std::fabs(part - std::round(part)) > 1e-6 * part) {
    part *= 10;
    ++decimals;
  }
  return FormatNumber(value, kPictures[decimals]);
}

// Fewer decimals if a division is many megahertz or nanoseconds.
std::string AxisNumberText(double value, double division) {
  const double size = std::fabs(division);
  return FormatNumber(value, size >= 100 ? "#0" : size >= 1 ? "#0.0" : "#0.0###");
}

constexpr int kGap = 3;  // between a number inside the frame and its edge, in pixels

// Clears the background of a number inside the frame, so that the grid does not cross it. Returns
// the place cleared.
Rect ClearRoom(Canvas& canvas, CanvasPoint at, Extent text, const Session& session) {
  const Rect room{at.x - 1, at.y + text.height / 8, at.x + text.width, at.y + text.height - 1};
  canvas.FillRectangle({room.left, room.top}, {room.right, room.bottom}, session.Colour.BackColour);
  return room;
}

// Returns the end of the lowest number.
int DrawValueNumbers(Canvas& canvas, const GraphRecord& graph, const Session& session,
                     std::vector<Rect>& places) {
  const int height = canvas.TextExtent("0").height;
  // If the grid lines are closer than the text height, only every second or fourth line gets a
  // number.
  const int room = std::max(1, graph.Height() / 8);
  const int every = room >= height ? 1 : 2 * room >= height ? 2 : 4;
  const auto scale = static_cast<double>(graph.Scale);
  int end = graph.Left;
  for (int i = 0; i <= 8; i += every) {
    const std::string text = DivisionText(graph.Reference + (graph.RefPosition - i) * scale, scale);
    const Extent size = canvas.TextExtent(text);
    const int line = WholePixel(graph.Top + i * graph.Height() / 8.0);
    const int y = i == 0 ? line + 1 : i == 8 ? line - size.height : line - size.height / 2;
    places.push_back(ClearRoom(canvas, {graph.Left + kGap, y}, size, session));
    canvas.DrawText({graph.Left + kGap, y}, text, session.Colour.TextColour);
    end = graph.Left + kGap + size.width;
  }
  return end;
}

// In one row: below the frame if all of them have room between the start and stop texts, otherwise
// inside above its lower edge, and then every second or fifth where they would touch each other.
void DrawPositionNumbers(Canvas& canvas, const GraphRecord& graph, const Session& session,
                         int insideFrom, std::vector<Rect>& places) {
  const TimeDomainState& time = session.TimeDomain;
  double first = session.Plan.StartFreq / 1e6, last = session.Plan.StopFreq / 1e6;
  if (graph.IsTime) {
    first = time.TdT1;
    last = time.TdT2;
  }
  if (graph.IsDistance) {
    first = graph.MetresStart;
    last = graph.MetresStart + (kMaxPoints - 1) * graph.MetresStep;
  }
  const int blank = canvas.TextExtent("0").width;
  struct Number {
    std::string Text;
    Extent Size;
    int Left = 0, Right = 0;
  };
  std::array<Number, 9> numbers;  // at the divisions 1 to 9 of 10
  for (int i = 1; i <= 9; ++i) {
    Number& number = numbers[static_cast<std::size_t>(i - 1)];
    number.Text = AxisNumberText(first + (last - first) * i / 10, (last - first) / 10);
    number.Size = canvas.TextExtent(number.Text);
    number.Left = WholePixel(graph.Left + graph.Width() * i / 10.0 - number.Size.width / 2.0);
    number.Right = number.Left + number.Size.width;
  }
  const auto apart = [&](std::size_t every) {
    for (std::size_t i = 2 * every - 1; i < numbers.size(); i += every)
      if (numbers[i].Left < numbers[i - every].Right + blank) return false;
    return true;
  };
  const int begin = graph.Left + canvas.TextExtent(StartText(session, graph)).width + blank;
  const int end = graph.Right - canvas.TextExtent(StopText(session, graph)).width - blank;
  const bool below = numbers.front().Left >= begin && numbers.back().Right <= end && apart(1);
  const std::size_t every = apart(1) ? 1 : apart(2) ? 2 : 5;
  for (std::size_t i = every - 1; i < numbers.size(); i += every) {
    const Number& number = numbers[i];
    const bool room = number.Left >= insideFrom + blank && number.Right <= graph.Right - kGap;
    if (!below && !room) continue;
    const CanvasPoint at{number.Left, below ? graph.Bottom : graph.Bottom - number.Size.height};
    if (!below) places.push_back(ClearRoom(canvas, at, number.Size, session));
    canvas.DrawText(at, number.Text, session.Colour.TextColour);
  }
}

}  // namespace

void DrawAxisNumbers(Canvas& canvas, const GraphRecord& graph, const Session& session,
                     std::vector<Rect>& places) {
  if (graph.IsSmith) return;
  const int end = DrawValueNumbers(canvas, graph, session, places);
  DrawPositionNumbers(canvas, graph, session, end, places);
}

void DrawZoTag(Canvas& canvas, const Session& session) {
  const std::string text = ZoText(session.Impedance);
  canvas.DrawText(ZoTextAt(canvas.Size(), canvas.TextExtent(text)), text,
                  session.Colour.TextColour);
}

}  // namespace qk
