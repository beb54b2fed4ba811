// SPDX-License-Identifier: MIT
#include "forms/live_standard.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "core/text.h"
#include "numeric/median.h"

namespace qk {

namespace {

struct Look {
  std::uint32_t Paper, Ink, Grid;
  std::uint32_t Expected;  // the region of the expected trace
  std::array<std::uint32_t, 2> Traces;
};
constexpr Look kLight{0xFFFFFF, 0x000000, 0xC8C8C8, 0xDDF0DD, {0x000080, 0xA04000}};
constexpr Look kDark{0x16181C, 0xE6E6E6, 0x4A4E54, 0x1F3D28, {0x7FB8FF, 0xFFB070}};

// Light or dark like the background of the graphs.
const Look& LookBeside(std::uint32_t background) {
  const std::uint32_t sum =
      (background >> 16 & 0xFF) + (background >> 8 & 0xFF) + (background & 0xFF);
  return sum < 3 * 128 ? kDark : kLight;
}
constexpr float kTopDb = 20, kLeastDb = -200;

struct KindRow {
  const char *Name, *Expected;
  bool Transmission;
  float From, To;  // expected range in dB
  float Bottom;    // lower edge of the picture, dB
};

const KindRow& RowOf(StandardKind kind) {
  static constexpr std::array<KindRow, 5> kRows{
      {{"Open", "An open reflects fully: the raw trace is flat, near 0 dB.", false, -12, 12, -60},
       {"Short", "A short reflects fully: the raw trace is flat, near 0 dB.", false, -12, 12, -60},
       {"Load", "A load hardly reflects: the raw trace is far below that of open and short.", false,
        kLeastDb, -10, -60},
       {"Through", "A through transmits: the raw trace is flat, near 0 dB.", true, -12, 12, -100},
       {"Isolation",
        "Nothing is transmitted: the raw trace is noise, far below that of the through.", true,
        kLeastDb, -40, -140}}};
  return kRows[static_cast<std::size_t>(kind)];
}

struct Ratio {
  Complex RawPoint::*From;
  const char* Name;
};
constexpr std::array<Ratio, 2> kReflections{{{&RawPoint::S11, "S11"}, {&RawPoint::S22, "S22"}}};
constexpr std::array<Ratio, 2> kTransmissions{{{&RawPoint::S21, "S21"}, {&RawPoint::S12, "S12"}}};

float DbOf(Complex z) {
  return std::max(kLeastDb, static_cast<float>(20 * std::log10(Magnitude(z.re, z.im) + 1e-12)));
}

}  // namespace

std::string ExpectationText(StandardKind kind) {
  return RowOf(kind).Expected;
}

SweepWatch LiveStandard::Watch(StandardKind kind, int points, const Progress& bar,
                               std::string_view window, std::string_view button) {
  Clear();
  kind_ = kind;
  points_ = points;
  SweepWatch watch(bar);
  watch.Begins = [this](const StandardSweep& sweep) { Begins(sweep); };
  watch.Point = [this](int, const RawPoint& raw) {
    for (Trace& trace : traces_)
      if (trace.From != nullptr) trace.Db.push_back(DbOf(raw.*trace.From));
  };
  watch.Breathe = [this, window, button] { host_.loop.BreatheBut(window, button); };
  watch.Cancelled = [this] { return cancelled_; };
  return watch;
}

void LiveStandard::Begins(const StandardSweep& sweep) {
  measured_ = measuring_ = true;
  const auto& wanted = RowOf(kind_).Transmission ? kTransmissions : kReflections;
  std::size_t used = 0;
  traces_ = {};
  for (const Ratio& named : wanted)
    for (const Store& store : sweep.Stores)
      if (store.From == named.From) {
        traces_[used].From = named.From;
        traces_[used].Name = named.Name;
        traces_[used].Db.reserve(static_cast<std::size_t>(points_));
        ++used;
        break;
      }
  host_.windows.SessionChanged();  // also updates its text
}

bool LiveStandard::Cancel() {
  cancelled_ = cancelled_ || measuring_;
  return cancelled_;
}

void LiveStandard::Ended() {
  measuring_ = false;
}

void LiveStandard::Clear() {
  measured_ = measuring_ = cancelled_ = false;
  traces_ = {};
}

std::string LiveStandard::Text() const {
  if (!measured_) return {};
  std::string text;
  for (const Trace& trace : traces_) {
    if (trace.Db.empty()) continue;
    std::vector<float> sorted = trace.Db;
    const auto median = static_cast<double>(UpperMedian(std::span(sorted)));
    text += std::string(text.empty() ? ": " : ", ") + trace.Name + " about " +
            FormatNumber(std::round(median), "##0") + " dB";
  }
  return RowOf(kind_).Name + text;
}

void LiveStandard::Draw(Canvas& canvas, std::uint32_t background) const {
  const Extent size = canvas.Size();
  const Look& look = LookBeside(background);
  canvas.FillRectangle({0, 0}, {size.width, size.height}, look.Paper);
  canvas.SetFontSize(8);
  if (!measured_) {
    const char* text = "Raw trace of a standard";
    const Extent extent = canvas.TextExtent(text);
    canvas.DrawText({(size.width - extent.width) / 2, (size.height - extent.height) / 2}, text,
                    look.Ink);
    return;
  }
  const KindRow& row = RowOf(kind_);
  const Extent widest = canvas.TextExtent("-120");
  const Rect field{widest.width + 8, widest.height + 4, size.width - 6, size.height - 6};
  if (field.right <= field.left + 10 || field.bottom <= field.top + 10) return;
  const auto y = [&](float db) {
    const float part = (kTopDb - std::clamp(db, row.Bottom, kTopDb)) / (kTopDb - row.Bottom);
    return field.top +
           static_cast<int>(std::lround(part * static_cast<float>(field.bottom - field.top)));
  };
  canvas.FillRectangle({field.left, y(row.To)}, {field.right, y(row.From)}, look.Expected);
  canvas.SetPen(look.Grid, PenStyle::Solid, 1);
  const float step = row.Bottom < -100 ? 40 : 20;
  const int lines = static_cast<int>((kTopDb - row.Bottom) / step);
  for (int line = 0; line <= lines; ++line) {
    const float db = kTopDb - static_cast<float>(line) * step;
    canvas.DrawLine({field.left, y(db)}, {field.right, y(db)});
    const std::string label = FormatNumber(static_cast<double>(db), "##0");
    const Extent extent = canvas.TextExtent(label);
    canvas.DrawText({field.left - 4 - extent.width, y(db) - extent.height / 2}, label, look.Ink);
  }
  int x = field.left;
  canvas.DrawText({2, 1}, "dB", look.Ink);
  for (std::size_t t = 0; t < traces_.size(); ++t) {
    const Trace& trace = traces_[t];
    if (trace.From == nullptr) continue;
    const std::string name = std::string(row.Name) + ", raw " + trace.Name;
    canvas.DrawText({x, 1}, name, look.Traces[t]);
    x += canvas.TextExtent(name).width + 12;
    std::vector<CanvasPoint> line;
    line.reserve(trace.Db.size());
    const int steps = std::max(1, points_ - 1);
    for (std::size_t k = 0; k < trace.Db.size(); ++k)
      line.push_back(
          {field.left + static_cast<int>(k) * (field.right - field.left) / steps, y(trace.Db[k])});
    canvas.SetPen(look.Traces[t], PenStyle::Solid, 2);
    if (line.size() > 1) canvas.DrawPolyline(line);
  }
}

}  // namespace qk
