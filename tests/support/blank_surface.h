// SPDX-License-Identifier: MIT
// A picture area of 1000 by 640 pixels that discards all drawing: for benchmarks, and for tests
// that sweep for a long time or count allocations.
#pragma once

#include "display/canvas.h"

namespace qk::test {

class BlankSurface : public PictureSurface, private Canvas {
 public:
  Canvas& Picture() override { return *this; }
  void Commit() override {}
  void Wipe() override {}
  void Present() override { ++Presented; }
  int Presented = 0;

 private:
  Extent Size() const override { return {1000, 640}; }
  void SetPen(std::uint32_t, PenStyle, int) override {}
  void SetFontSize(int) override {}
  Extent TextExtent(std::string_view text) const override {
    return {static_cast<int>(text.size()) * 7, 12};
  }
  void DrawLine(CanvasPoint, CanvasPoint) override {}
  void DrawRectangle(CanvasPoint, CanvasPoint) override {}
  void FillRectangle(CanvasPoint, CanvasPoint, std::uint32_t) override {}
  void DrawEllipse(CanvasPoint, CanvasPoint) override {}
  void DrawArc(CanvasPoint, CanvasPoint, double, double) override {}
  void DrawPolyline(std::span<const CanvasPoint>) override {}
  void FillPolygon(std::span<const CanvasPoint>, std::uint32_t, double) override {}
  void DrawText(CanvasPoint, std::string_view, std::uint32_t) override {}
};

}  // namespace qk::test
