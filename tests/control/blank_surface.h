// A picture that keeps nothing of what is drawn: for tests that sweep for long or count
// allocations.
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
  Extent Size() const override { return {1000, 600}; }
  void SetPen(std::uint32_t, PenStyle, int) override {}
  void SetFontSize(int) override {}
  Extent TextExtent(std::string_view) const override { return {10, 10}; }
  void DrawLine(CanvasPoint, CanvasPoint) override {}
  void DrawRectangle(CanvasPoint, CanvasPoint) override {}
  void FillRectangle(CanvasPoint, CanvasPoint, std::uint32_t) override {}
  void DrawEllipse(CanvasPoint, CanvasPoint) override {}
  void DrawArc(CanvasPoint, CanvasPoint, double, double) override {}
  void DrawPolyline(std::span<const CanvasPoint>) override {}
  void DrawText(CanvasPoint, std::string_view, std::uint32_t) override {}
};

}  // namespace qk::test
