// SPDX-License-Identifier: MIT
#include "display/smith_chart.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string_view>

#include "display/frame.h"
#include "display/layout.h"

namespace qk {

namespace {
struct Chart {
  double cx, cy, r;  // centre and radius of the unit circle, pixels
  // 1 for impedances; -1 for admittances, whose lines are those of impedances rotated by 180
  // degrees.
  int side = 1;
};

void DrawBox(Canvas& canvas, double left, double top, double right, double bottom) {
  canvas.DrawEllipse({WholePixel(left), WholePixel(top)}, {WholePixel(right), WholePixel(bottom)});
}

// The average of two colours, 0xRRGGBB.
std::uint32_t Halfway(std::uint32_t a, std::uint32_t b) {
  return ((a >> 1) & 0x7F7F7F) + ((b >> 1) & 0x7F7F7F);
}

// A label at an angle of the circle: x = cx + u TW + sideX R cos, y = cy + v TH - sideY R sin.
struct Label {
  std::string_view Text;
  double U, V, SideX, SideY, Angle;
};

void DrawLabels(Canvas& canvas, const Chart& chart, std::uint32_t colour) {
  constexpr double kT1 = 0.3948, kT2 = 0.9273, kT3 = 1.5708;
  constexpr Label kLabels[] = {
      {"0", -1.5, -0.5, -1, 0, 0},      {"5", 0.5, -0.5, 1, 1, kT1},
      {"-5", 0.25, -0.5, 1, -1, kT1},   {"2", 0, -1, 1, 1, kT2},
      {"-2", 0, 0, 1, -1, kT2},         {"1", 0, -1, 1, 1, kT3},
      {"-1", -0.5, 0.5, 1, -1, kT3},    {".5", -1, -1, -1, 1, kT2},
      {"-.5", -1, 0.5, -1, -1, kT2},    {".2", -1.5, -0.5, -1, 1, kT1},
      {"-.2", -1.3, -0.5, -1, -1, kT1},
  };
  for (const Label& label : kLabels) {
    const Extent size = canvas.TextExtent(label.Text);
    // A rotation by 180 degrees exchanges the label's corners. No label is farther above the circle
    // than its own height, because the title is there.
    const double u = chart.side > 0 ? label.U : -(label.U + 1);
    const double v = chart.side > 0 ? label.V : std::max(-1.0, -(label.V + 1));
    const double x =
        chart.cx + u * size.width + chart.side * label.SideX * chart.r * std::cos(label.Angle);
    const double y =
        chart.cy + v * size.height - chart.side * label.SideY * chart.r * std::sin(label.Angle);
    canvas.DrawText({WholePixel(x), WholePixel(y)}, label.Text, colour);
  }
}

void DrawResistances(Canvas& canvas, const Chart& chart) {
  for (const double r : {5.0, 2.0, 1.0, 0.5, 0.2}) {
    const double a = 1 / (1 + r), b = r / (1 + r), h = 2 * chart.r;
    const double near = (b - 0.5) * h, far = (b - 0.5 + a) * h;
    DrawBox(canvas, chart.cx + (chart.side > 0 ? near : -far), chart.cy - 0.5 * h * a,
            chart.cx + (chart.side > 0 ? far : -near), chart.cy + 0.5 * h * a);
  }
}

// The parts of the arcs inside the unit circle, radians anticlockwise from the right. Intentional:
// stored, not computed; because of these values the arcs of 1 stop short of the axis.
struct Reactance {
  double X;
  float PlusStart, PlusStop, MinusStart, MinusStop;
};
constexpr Reactance kReactances[] = {
    {5, 1.9656f, 4.71239f, 1.5708f, 4.3176f},  {2, 2.4981f, 4.0689f, 2.2143f, 3.7851f},
    {1, 3.15f, 4.382f, 1.9012f, 3.14159f},     {0.5, 3.7851f, 4.5461f, 1.7371f, 2.4981f},
    {0.2, 4.3176f, 4.6457f, 1.6375f, 1.9656f},
};

void DrawReactance(Canvas& canvas, double x, double y, double radius, float start, float stop) {
  constexpr double kDegrees = 180 / std::numbers::pi;
  canvas.DrawArc({WholePixel(x - radius), WholePixel(y - radius)},
                 {WholePixel(x + radius), WholePixel(y + radius)},
                 static_cast<double>(start) * kDegrees,
                 (static_cast<double>(stop) - static_cast<double>(start)) * kDegrees);
}

void DrawReactances(Canvas& canvas, const Chart& chart) {
  for (const Reactance& arc : kReactances) {
    const double radius = chart.r / arc.X;
    const double x = chart.cx + chart.side * chart.r;
    if (chart.side > 0) {
      DrawReactance(canvas, x, chart.cy - radius, radius, arc.PlusStart, arc.PlusStop);
      DrawReactance(canvas, x, chart.cy + radius, radius, arc.MinusStart, arc.MinusStop);
    } else {
      constexpr float kHalf = std::numbers::pi_v<float>;
      DrawReactance(canvas, x, chart.cy + radius, radius, arc.PlusStart - kHalf,
                    arc.PlusStop - kHalf);
      DrawReactance(canvas, x, chart.cy - radius, radius, arc.MinusStart - kHalf,
                    arc.MinusStop - kHalf);
    }
  }
}
}  // namespace

void DrawSmithFrame(Canvas& canvas, const GraphRecord& graph, const Colours& colours) {
  Chart chart{graph.Left + graph.Width() / 2.0, graph.Top + graph.Height() / 2.0,
              graph.Height() / 2.0};
  SetOutlinePen(canvas, colours);
  DrawBox(canvas, chart.cx - chart.r, chart.cy - chart.r, chart.cx + chart.r, chart.cy + chart.r);
  SetGridPen(canvas, colours);
  canvas.DrawLine({WholePixel(chart.cx - chart.r), WholePixel(chart.cy)},
                  {WholePixel(chart.cx + chart.r), WholePixel(chart.cy)});
  if (graph.Grid == ChartGrid::Admittance) chart.side = -1;
  DrawLabels(canvas, chart, colours.GridColour);
  DrawResistances(canvas, chart);
  DrawReactances(canvas, chart);
  if (graph.Grid != ChartGrid::Both) return;
  chart.side = -1;
  canvas.SetPen(Halfway(colours.GridColour, colours.BackColour), PenStyle::Solid, 1);
  DrawResistances(canvas, chart);
  DrawReactances(canvas, chart);
}

}  // namespace qk
