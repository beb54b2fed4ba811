// SPDX-License-Identifier: MIT
#include "numeric/two_port.h"

namespace qk {

namespace {
// a * b - c * d.
Complex Cross(Complex a, Complex b, Complex c, Complex d) {
  return ComplexMultiply(a, b) - ComplexMultiply(c, d);
}
}  // namespace

TwoPort SToZ(double zRef, const TwoPort& s) {
  const Complex far = ComplexMultiply(s.p12, s.p21);
  const Complex d = ComplexMultiply(OnePlus(-s.p11), OnePlus(-s.p22)) - far;
  const auto ohms = [&](Complex numerator) { return zRef * ComplexDivide(numerator, d); };
  return {ohms(ComplexMultiply(OnePlus(s.p11), OnePlus(-s.p22)) + far), ohms(2 * s.p12),
          ohms(2 * s.p21), ohms(ComplexMultiply(OnePlus(-s.p11), OnePlus(s.p22)) + far)};
}

TwoPort ZToS(double zNew, const TwoPort& z) {
  const Complex zn{zNew, 0};
  const Complex d = Cross(z.p11 + zn, z.p22 + zn, z.p12, z.p21);
  return {ComplexDivide(Cross(z.p11 - zn, z.p22 + zn, z.p12, z.p21), d),
          ComplexDivide(2 * zNew * z.p12, d), ComplexDivide(2 * zNew * z.p21, d),
          ComplexDivide(Cross(z.p11 + zn, z.p22 - zn, z.p12, z.p21), d)};
}

TwoPort ConvertZo(double zRef, double zNew, const TwoPort& s) {
  return ZToS(zNew, SToZ(zRef, s));
}

TwoPort SToT(const TwoPort& s) {
  const Complex d = Cross(s.p11, s.p22, s.p12, s.p21);
  return {ComplexDivide(-d, s.p21), ComplexDivide(s.p11, s.p21), ComplexDivide(-s.p22, s.p21),
          ComplexDivide({1, 0}, s.p21)};
}

TwoPort TToS(const TwoPort& t) {
  const Complex d = Cross(t.p11, t.p22, t.p12, t.p21);
  return {ComplexDivide(t.p12, t.p22), ComplexDivide(d, t.p22), ComplexDivide({1, 0}, t.p22),
          ComplexDivide(-t.p21, t.p22)};
}

TwoPort InvertT(const TwoPort& t) {
  const Complex d = Cross(t.p11, t.p22, t.p12, t.p21);
  return {ComplexDivide(t.p22, d), ComplexDivide(-t.p12, d), ComplexDivide(-t.p21, d),
          ComplexDivide(t.p11, d)};
}

TwoPort MultiplyT(const TwoPort& a, const TwoPort& b) {
  const auto element = [](Complex w, Complex x, Complex y, Complex z) {
    return ComplexMultiply(w, x) + ComplexMultiply(y, z);
  };
  return {element(a.p11, b.p11, a.p12, b.p21), element(a.p11, b.p12, a.p12, b.p22),
          element(a.p21, b.p11, a.p22, b.p21), element(a.p21, b.p12, a.p22, b.p22)};
}

}  // namespace qk
