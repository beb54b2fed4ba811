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

}  // namespace qk
