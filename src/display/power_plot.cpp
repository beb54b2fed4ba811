// SPDX-License-Identifier: MIT
#include "display/power_plot.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "core/text.h"

namespace qk {

namespace {

constexpr std::uint32_t kPaper = 0xFFFFFF, kInk = 0x000000, kGrid = 0xC0C0C0;
constexpr int kMark = 2;  // pixels from the middle of a point's mark to its edge

int Whole(double pixel) {
  return static_cast<int>(std::lround(pixel));
}

// The frame in pixels and the values at its edges.
struct Field {
  int Left, Top, Right, Bottom;
  PlotRange Range;

  double X(double value) const {
    return Left + (value - Range.XMin) / (Range.XMax - Range.XMin) * (Right - Left);
  }
  double Y(double value) const {
    return Bottom - (value - Range.YMin) / (Range.YMax - Range.YMin) * (Bottom - Top);
  }
  bool Drawable() const {
    return Right > Left && Bottom > Top && Range.XMax > Range.XMin && Range.YMax > Range.YMin;
  }
};

std::string TickLabel(double value, int decimals) {
  std::string picture = "#0";
  if (decimals > 0) picture += "." + std::string(static_cast<std::size_t>(decimals), '0');
  return FormatNumber(value, picture);
}

// The part of a line inside the field (Liang and Barsky), in pixels; empty if it is outside.
std::optional<std::array<CanvasPoint, 2>> Inside(const Field& field, double x0, double y0,
                                                 double x1, double y1) {
  double from = 0, to = 1;
  const auto clip = [&](double towards, double room) {
    if (towards == 0) return room >= 0;
    const double t = room / towards;
    if (towards < 0) from = std::max(from, t);
    if (towards > 0) to = std::min(to, t);
    return true;
  };
  const double dx = x1 - x0, dy = y1 - y0;
  if (!clip(-dx, x0 - field.Left) || !clip(dx, field.Right - x0) || !clip(-dy, y0 - field.Top) ||
      !clip(dy, field.Bottom - y0) || from > to)
    return std::nullopt;
  return std::array<CanvasPoint, 2>{CanvasPoint{Whole(x0 + from * dx), Whole(y0 + from * dy)},
                                    CanvasPoint{Whole(x0 + to * dx), Whole(y0 + to * dy)}};
}

// Grid lines with their labels left of and below the frame.
void DrawAxes(Canvas& canvas, const Field& field, const Ticks& x, const Ticks& y) {
  const auto gridPen = [&canvas] { canvas.SetPen(kGrid, PenStyle::Dotted, 1); };
  gridPen();
  for (const double value : x.Values) {
    const int at = Whole(field.X(value));
    canvas.DrawLine({at, field.Top}, {at, field.Bottom});
    const std::string label = TickLabel(value, x.Decimals);
    canvas.DrawText({at - canvas.TextExtent(label).width / 2, field.Bottom + 2}, label, kInk);
  }
  for (const double value : y.Values) {
    const int at = Whole(field.Y(value));
    canvas.DrawLine({field.Left, at}, {field.Right, at});
    const std::string label = TickLabel(value, y.Decimals);
    const Extent size = canvas.TextExtent(label);
    canvas.DrawText({field.Left - size.width - 4, at - size.height / 2}, label, kInk);
  }
  canvas.SetPen(kInk, PenStyle::Solid, 1);
  canvas.DrawRectangle({field.Left, field.Top}, {field.Right, field.Bottom});
}

// A question mark above a point, or below one at the top of the frame.
void DrawDoubt(Canvas& canvas, const Field& field, CanvasPoint point) {
  const Extent size = canvas.TextExtent("?");
  const int above = point.y - kMark - size.height;
  canvas.DrawText({point.x - size.width / 2, above < field.Top ? point.y + kMark : above}, "?",
                  kInk);
}

void DrawCurve(Canvas& canvas, const Field& field, const PlotCurve& curve) {
  canvas.SetPen(curve.Colour, PenStyle::Solid, 2);
  for (std::size_t i = 0; i < curve.X.size(); ++i) {
    const double x = field.X(curve.X[i]), y = field.Y(curve.Y[i]);
    if (!std::isfinite(x) || !std::isfinite(y)) continue;
    if (const auto mark = Inside(field, x, y, x, y)) {
      const auto [centre, same] = *mark;
      if (curve.Marks)
        canvas.FillRectangle({centre.x - kMark, centre.y - kMark},
                             {centre.x + kMark, centre.y + kMark}, curve.Colour);
      if (i < curve.Doubtful.size() && curve.Doubtful[i]) DrawDoubt(canvas, field, centre);
    }
    if (i == 0) continue;
    const double beforeX = field.X(curve.X[i - 1]), beforeY = field.Y(curve.Y[i - 1]);
    if (!std::isfinite(beforeX) || !std::isfinite(beforeY)) continue;
    if (const auto line = Inside(field, beforeX, beforeY, x, y))
      canvas.DrawLine((*line)[0], (*line)[1]);
  }
}

// The width of a name in the legend, with its line sample and spacing.
int LegendWidth(const Extent& name) {
  return name.width + 4 + 2 * name.height;
}

// The number of lines that the names need next to the axis label.
int LegendLines(const Canvas& canvas, const PowerPlot& plot, int width) {
  int lines = 1, taken = canvas.TextExtent(plot.YLabel).width;
  for (auto curve = plot.Curves.rbegin(); curve != plot.Curves.rend(); ++curve) {
    const int name = LegendWidth(canvas.TextExtent(curve->Name));
    if (taken > 0 && taken + name > width) {
      ++lines;
      taken = 0;
    }
    taken += name;
  }
  return lines;
}

// Draws the names at the right end of the lines above the frame, the last one at the bottom, each
// after a line sample in its colour.
void DrawLegend(Canvas& canvas, const Field& field, const PowerPlot& plot, int top) {
  int right = field.Right, taken = canvas.TextExtent(plot.YLabel).width;
  for (auto curve = plot.Curves.rbegin(); curve != plot.Curves.rend(); ++curve) {
    const Extent size = canvas.TextExtent(curve->Name);
    const int stroke = size.height;
    if (taken > 0 && taken + LegendWidth(size) > field.Right - field.Left) {
      top -= size.height;
      right = field.Right;
      taken = 0;
    }
    taken += LegendWidth(size);
    canvas.DrawText({right - size.width, top}, curve->Name, kInk);
    const int middle = top + size.height / 2;
    const int end = right - size.width - 4;
    canvas.SetPen(curve->Colour, PenStyle::Solid, 2);
    canvas.DrawLine({end - stroke, middle}, {end, middle});
    right = end - stroke - size.height;
  }
}

int WidestLabel(const Canvas& canvas, const Ticks& ticks) {
  int widest = 0;
  for (const double value : ticks.Values)
    widest = std::max(widest, canvas.TextExtent(TickLabel(value, ticks.Decimals)).width);
  return widest;
}

}  // namespace

Ticks RoundTicks(double low, double high, int most) {
  Ticks ticks;
  if (!(high > low) || !std::isfinite(low) || !std::isfinite(high) || most < 1) return ticks;
  double step = std::pow(10.0, std::floor(std::log10((high - low) / most)));
  const auto count = [&](double s) {
    return std::floor(high / s + 1e-9) - std::ceil(low / s - 1e-9) + 1;
  };
  constexpr std::array<double, 3> kGrowth{2, 2.5, 2};  // 1, 2, 5, 10
  for (std::size_t i = 0; count(step) > most && i < 12; ++i) step *= kGrowth[i % 3];
  const double first = std::ceil(low / step - 1e-9);
  for (int i = 0; i < static_cast<int>(count(step)); ++i)
    ticks.Values.push_back((first + i) * step);
  ticks.Decimals = std::max(0, static_cast<int>(std::ceil(-std::log10(step) - 1e-9)));
  return ticks;
}

void DrawPowerPlot(Canvas& canvas, const PowerPlot& plot) {
  const Extent area = canvas.Size();
  canvas.FillRectangle({0, 0}, {area.width, area.height}, kPaper);
  canvas.SetFontSize(std::clamp(std::min(area.width / 60, area.height / 36), 8, 40));
  const int line = canvas.TextExtent("Ag").height;
  // Two lines of text above the frame (title; y label and names), two below (values; x label).
  Field field{0, 2 * line + line / 2, area.width - 2 * line, area.height - 2 * line - line / 2,
              plot.Range};
  const Ticks y = RoundTicks(plot.Range.YMin, plot.Range.YMax,
                             std::max(2, (field.Bottom - field.Top) / (2 * line)));
  field.Left = WidestLabel(canvas, y) + line;
  const int more =
      plot.Curves.size() > 1 ? LegendLines(canvas, plot, field.Right - field.Left) - 1 : 0;
  field.Top += more * line;
  const Ticks x = RoundTicks(plot.Range.XMin, plot.Range.XMax,
                             std::max(2, (field.Right - field.Left) / (4 * line)));
  if (!field.Drawable()) return;

  const Extent title = canvas.TextExtent(plot.Title);
  const int middle = (field.Left + field.Right) / 2;
  canvas.DrawText({std::max(0, middle - title.width / 2), line / 4}, plot.Title, kInk);
  const int second = line + line / 3 + more * line;
  canvas.DrawText({field.Left, second}, plot.YLabel, kInk);
  if (plot.Curves.size() > 1) DrawLegend(canvas, field, plot, second);
  DrawAxes(canvas, field, x, y);
  const Extent label = canvas.TextExtent(plot.XLabel);
  canvas.DrawText({middle - label.width / 2, field.Bottom + line + line / 4}, plot.XLabel, kInk);
  for (const PlotCurve& curve : plot.Curves) DrawCurve(canvas, field, curve);
}

}  // namespace qk
