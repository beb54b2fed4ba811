// SPDX-License-Identifier: MIT
#include "forms/iso_method.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "core/window_names.h"

namespace qk {

namespace {

constexpr std::uint32_t kPaper = 0xFFFFFF;
constexpr std::uint32_t kInk = 0x000000;
constexpr std::uint32_t kCase = 0xE4E4E4;    // the instrument
constexpr std::uint32_t kDevice = 0x2A6099;  // the device, in another colour than a load

constexpr const char* kLoad = "Load";
constexpr const char* kDut = "DUT";

constexpr int kMargin = 10;  // pixels

// Sizes of the parts of a diagram in pixels: the preferred size, limited to a percentage of its
// height.
struct Sizes {
  explicit Sizes(int height)
      : Case(std::min(34, height * 30 / 100)),
        Lead(std::min(18, height * 18 / 100)),
        Part(std::min(26, height * 28 / 100)),
        Ground(std::min(16, height * 16 / 100)) {}
  int Whole() const { return Case + Lead + Part + Ground; }

  int Case, Lead, Part, Ground;
};

void DrawBox(Canvas& canvas, Rect box, std::uint32_t fill, std::string_view text,
             std::uint32_t textColour) {
  canvas.FillRectangle({box.left, box.top}, {box.right, box.bottom}, fill);
  canvas.DrawRectangle({box.left, box.top}, {box.right, box.bottom});
  const Extent size = canvas.TextExtent(text);
  canvas.DrawText(
      {(box.left + box.right - size.width) / 2, (box.top + box.bottom - size.height) / 2}, text,
      textColour);
}

// Draws a line from the port down to the connected part; a load is grounded.
void DrawPart(Canvas& canvas, const Sizes& sizes, CanvasPoint port, int width,
              std::string_view name) {
  const bool device = name == kDut;
  const int top = port.y + sizes.Lead, bottom = top + sizes.Part;
  canvas.DrawLine(port, {port.x, top});
  DrawBox(canvas, {port.x - width / 2, top, port.x + width / 2, bottom}, device ? kDevice : kPaper,
          name, device ? kPaper : kInk);
  if (device) return;
  const int ground = bottom + sizes.Ground / 2;
  canvas.DrawLine({port.x, bottom}, {port.x, ground});
  for (int i = 0; i < 3; ++i) {
    const int half = sizes.Ground * (3 - i) / 5, y = ground + sizes.Ground * i / 5;
    canvas.DrawLine({port.x - half, y}, {port.x + half, y});
  }
}

void DrawScheme(Canvas& canvas, Rect area, const PortScheme& scheme) {
  const int width = area.right - area.left, height = area.bottom - area.top;
  const Sizes sizes(height);
  const int top = area.top + (height - sizes.Whole()) / 2, bottom = top + sizes.Case;
  const int left = area.left + width / 7, right = area.right - width / 7;
  const int middle = (left + right) / 2, partWidth = std::min(56, middle - left - 4);
  DrawBox(canvas, {left, top, middle, bottom}, kCase, "Port 1", kInk);
  DrawBox(canvas, {middle, top, right, bottom}, kCase, "Port 2", kInk);
  DrawPart(canvas, sizes, {(left + middle) / 2, bottom}, partWidth, scheme.Port1);
  DrawPart(canvas, sizes, {(middle + right) / 2, bottom}, partWidth, scheme.Port2);
}

}  // namespace

void DrawPortSchemes(Canvas& canvas, const std::vector<PortScheme>& sweeps) {
  const Extent size = canvas.Size();
  canvas.FillRectangle({0, 0}, {size.width, size.height}, kPaper);
  canvas.SetPen(kInk, PenStyle::Solid, 1);
  canvas.SetFontSize(9);
  const int height = (size.height - 2 * kMargin) / static_cast<int>(sweeps.size());
  int top = kMargin;
  for (std::size_t i = 0; i < sweeps.size(); ++i, top += height) {
    DrawScheme(canvas, {kMargin, top, size.width - kMargin, top + height}, sweeps[i]);
    if (sweeps.size() > 1) canvas.DrawText({kMargin, top}, std::to_string(i + 1) + ".", kInk);
  }
}

IsoMethodForm::IsoMethodForm(Rig& rig)
    : Form(window::kIsoMethod, "Isolation Calibration (optional step)", {.Modal = true}),
      rig_(rig) {
  struct Method {
    const char *Label, *Text, *Picture, *Button;
    char Key;
    std::vector<PortScheme> Sweeps;
  };
  const Method methods[] = {
      {"Label1",
       "Single step, basic (part of load calibration)",
       "Picture1",
       "Command1",
       'C',
       {{kLoad, kLoad}}},
      {"Label2",
       "One sweep with the device on both ports",
       "Picture2",
       "Command2",
       'k',
       {{kDut, kDut}}},
      {"Label3",
       "Two sweeps, the device on each port in turn and a load on the other",
       "Picture3",
       "Command3",
       'm',
       {{kDut, kLoad}, {kLoad, kDut}}},
  };
  for (std::int16_t i = 0; const Method& method : methods) {
    Section("", {.Where = i == 0 ? Position::Below : Position::Beside});
    AddLabel(method.Label, method.Text).Lines(3);
    AddPicture(method.Picture).Picture(220, 200, [sweeps = method.Sweeps](Canvas& canvas) {
      DrawPortSchemes(canvas, sweeps);
    });
    AddButton(method.Button, "Click to select this method",
              [this, i] { Take(static_cast<IsoMethod>(i)); })
        .Key(method.Key)
        .Wide();
    ++i;
  }
}

void IsoMethodForm::Take(IsoMethod method) {
  rig_.session.Cal.IsoMethod = method;
  rig_.host.windows.Hide(Name());
}

}  // namespace qk
