// SPDX-License-Identifier: MIT
// Nothing is allocated on a point's road, from its bytes to the redrawn layer.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "control/allocations.h"
#include "control/control_fixture.h"
#include "support/blank_surface.h"

namespace {

qk::test::Allocations counted;

void Restore(void* p) {
  if (p != nullptr) --counted.Living;
  std::free(p);
}

}  // namespace

void* operator new(std::size_t size) {
  ++counted.Made;
  ++counted.Living;
  if (void* p = std::malloc(size)) return p;
  throw std::bad_alloc();
}
void operator delete(void* p) noexcept {
  Restore(p);
}
void operator delete(void* p, std::size_t) noexcept {
  Restore(p);
}

namespace qk::test {

Allocations AllocationsSoFar() {
  return counted;
}

namespace {

TEST(APointsRoad, AllocatesNothing) {
  for (const KindOfSweep& kind : KindsOfSweep()) {
    for (const bool smooth : {false, true}) {
      BlankSurface surface;
      SweepingControl b{&surface};
      b.MakeReady(kind, 201);
      b.session->Display.DisplaySet = DisplaySet::All;
      const char* parameters[] = {"S11", "S21", "S12", "S22"};
      const char* types[] = {"LogMag", "Phase", "Group Delay", "Smith"};
      for (int ch = 1; ch <= 4; ++ch) {
        b.session->Channel(ch).Parameter = *Named<Parameter>(parameters[ch - 1]);
        b.session->Channel(ch).GraphType = *Named<GraphType>(types[ch - 1]);
      }
      b.session->Averaging.SmoothOn = smooth;
      b.session->Averaging.SmoothingPercent = 5;
      b.session->Planes.PlaneS11 = b.session->Planes.PlaneS21 = 0.1f;
      b.port.PointUs = 0;  // the stream is there at once, so that only the road is counted
      long before = 0, during = 0;
      int drawn = 0;
      b.fake.OnEvents = [&] {
        const int counter = b.session->Display.PointCounter;
        if (counter == 1) {
          before = AllocationsSoFar().Made;
          drawn = surface.Presented;
        }
        if (counter == 201 && b.session->Flags.SweepRunning) {
          during = AllocationsSoFar().Made - before;
          drawn = surface.Presented - drawn;
          b.control.StopMeasurement();
        }
      };
      b.control.StartMeasurement();
      EXPECT_EQ(during, 0) << kind.Trigger;
      EXPECT_GE(drawn, 20);
    }
  }
}

}  // namespace
}  // namespace qk::test
