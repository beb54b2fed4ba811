// SPDX-License-Identifier: MIT
// Converts a point's bytes to raw ratios: samples to volts, offsets subtracted, test divided by
// reference.
#include "sweep/reduction.h"

#include "link/command_set.h"

namespace qk {

namespace {
constexpr double kOverloadVolts = 2.49;

// The samples of one point, in volts, numbered from 1 in the order received.
class Samples {
 public:
  Samples(const std::uint8_t* bytes, int averages) : bytes_(bytes), averages_(averages) {}
  double operator()(int n) const {
    const std::uint8_t* b = bytes_ + 3 * (n - 1);
    return VoltsFromCounts(b[0], b[1], b[2], averages_);
  }

 private:
  const std::uint8_t* bytes_;
  int averages_;
};

struct Halves {
  Complex Port2, Port1;  // test values divided by the reference
  Complex Port2Test, Port1Test;
};

// One block of six samples.
Halves ReduceSix(const std::uint8_t* bytes, const ReceiverState& rx, int averages) {
  const Samples a(bytes, averages);
  // Intentional: the I offset is subtracted from both samples of the reference, the Q offset from
  // those of the tests.
  const Complex reference{a(1) - rx.DcOffsetI, a(4) - rx.DcOffsetI};
  const Complex port2{a(2) - rx.DcOffsetQ, a(5) - rx.DcOffsetQ};
  const Complex port1{a(3) - rx.DcOffsetQ, a(6) - rx.DcOffsetQ};
  return {ComplexDivide(port2, reference), ComplexDivide(port1, reference), port2, port1};
}
}  // namespace

SweepWire WireOf(SweepMode mode) {
  switch (mode) {
    case SweepMode::S11:
      return {command::kSweepS11, command::kPathS11, 12};
    case SweepMode::S21:
      return {command::kSweepS21, command::kPathS21, 12};
    case SweepMode::S11S21:
      return {command::kSweepS11S21, command::kPathS11S21, 18};
    case SweepMode::All:
      break;
  }
  return {command::kSweepAll, command::kPathAll, 36};
}

bool Overloads(Complex test) {
  return Magnitude(test.re, test.im) >= kOverloadVolts;
}

PointVolts VoltsOfPoint(const std::uint8_t* bytes, const ReceiverState& receiver, int averages) {
  const Samples a(bytes, averages);
  // Intentional: the I offset is subtracted from both samples of the reference, the Q offset from
  // those of the test.
  return {{a(1) - receiver.DcOffsetI, a(3) - receiver.DcOffsetI},
          {a(2) - receiver.DcOffsetQ, a(4) - receiver.DcOffsetQ}};
}

RawPoint ReducePoint(SweepMode mode, const std::uint8_t* bytes, const ReceiverState& receiver,
                     int averages) {
  RawPoint raw;
  if (mode == SweepMode::S11 || mode == SweepMode::S21) {
    const auto [reference, test] = VoltsOfPoint(bytes, receiver, averages);
    const Complex ratio = ComplexDivide(test, reference);
    if (mode == SweepMode::S11) {
      raw.S11 = ratio;  // no overload test for a single reflection
    } else {
      raw.S21 = ratio;
      raw.Port2Overload = Overloads(test);
    }
    return raw;
  }
  const Halves forward = ReduceSix(bytes, receiver, averages);
  raw.S11 = forward.Port1;
  raw.S21 = forward.Port2;
  raw.Port2Overload = Overloads(forward.Port2Test);
  if (mode == SweepMode::All) {
    const Halves reverse = ReduceSix(bytes + 18, receiver, averages);
    raw.S22 = reverse.Port2;
    raw.S12 = reverse.Port1;
    raw.Port1Overload = Overloads(reverse.Port1Test);
  }
  return raw;
}

}  // namespace qk
