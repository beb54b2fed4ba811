// Nothing is allocated on a point's road, from its bytes to the redrawn layer.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "control/control_bench.h"

namespace {
long allocations = 0;
}

void* operator new(std::size_t size) {
  ++allocations;
  if (void* p = std::malloc(size)) return p;
  throw std::bad_alloc();
}
void operator delete(void* p) noexcept {
  std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
  std::free(p);
}

namespace qk::test {
namespace {

// A picture that keeps nothing.
class BlankSurface : public PictureSurface, private Canvas {
 public:
  Canvas& Picture() override { return *this; }
  void Commit() override {}
  void Wipe() override {}
  void Present() override { ++presented; }
  int presented = 0;

 private:
  Extent Size() const override { return {1000, 600}; }
  void SetPen(std::uint32_t, PenStyle, int) override {}
  void SetFontSize(int) override {}
  Extent TextExtent(std::string_view) const override { return {10, 10}; }
  void DrawLine(Point, Point) override {}
  void DrawRectangle(Point, Point) override {}
  void FillRectangle(Point, Point, std::uint32_t) override {}
  void DrawEllipse(Point, Point) override {}
  void DrawArc(Point, Point, double, double) override {}
  void DrawPolyline(std::span<const Point>) override {}
  void DrawText(Point, std::string_view, std::uint32_t) override {}
};

TEST(APointsRoad, AllocatesNothing) {
  for (const KindOfSweep& kind : KindsOfSweep()) {
    for (const bool smooth : {false, true}) {
      ControlBench b;
      b.MakeReady(kind, 201);
      BlankSurface surface;
      Graphs graphs{b.session, surface};
      Controller control{b.rig, graphs};
      b.session.Display.DisplaySet = "all";
      const char* parameters[] = {"S11", "S21", "S12", "S22"};
      const char* types[] = {"LogMag", "Phase", "Group Delay", "Smith"};
      for (int ch = 1; ch <= 4; ++ch) {
        b.session.Channel(ch).Parameter = parameters[ch - 1];
        b.session.Channel(ch).GraphType = types[ch - 1];
      }
      b.session.Averaging.SmoothOn = smooth;
      b.session.Averaging.SmoothingPercent = 5;
      b.session.Planes.PlaneS11 = b.session.Planes.PlaneS21 = 0.1f;
      b.port.PointUs = 0;  // the stream is there at once, so that only the road is counted
      long before = 0, during = 0;
      int drawn = 0;
      b.fake.OnEvents = [&] {
        const int counter = b.session.Display.PointCounter;
        if (counter == 1) {
          before = allocations;
          drawn = surface.presented;
        }
        if (counter == 201) {
          during = allocations - before;
          drawn = surface.presented - drawn;
          control.StopMeasurement();
        }
      };
      control.StartMeasurement();
      EXPECT_EQ(during, 0) << kind.Trigger;
      EXPECT_GE(drawn, 20);
    }
  }
}

}  // namespace
}  // namespace qk::test
