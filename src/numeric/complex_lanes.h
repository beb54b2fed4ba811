// Complex arithmetic on two points at once, each operation exactly that of complex.h in every
// lane: results are the same to the last bit, whatever number of points is computed together.
#pragma once

#include <cstddef>
#include <cstring>

#include "numeric/complex.h"

namespace qk {

inline constexpr int kLanes = 2;  // what every 64-bit processor divides in one instruction

using DoubleLanes = double __attribute__((vector_size(kLanes * sizeof(double))));

struct ComplexLanes {
  DoubleLanes re;
  DoubleLanes im;
};

// kLanes neighbours of a pair of arrays.
inline ComplexLanes LoadLanes(const double* re, const double* im) {
  ComplexLanes z;
  std::memcpy(&z.re, re, sizeof z.re);
  std::memcpy(&z.im, im, sizeof z.im);
  return z;
}
inline void StoreLanes(const ComplexLanes& z, double* re, double* im) {
  std::memcpy(re, &z.re, sizeof z.re);
  std::memcpy(im, &z.im, sizeof z.im);
}

inline ComplexLanes operator+(const ComplexLanes& a, const ComplexLanes& b) {
  return {a.re + b.re, a.im + b.im};
}
inline ComplexLanes operator-(const ComplexLanes& a, const ComplexLanes& b) {
  return {a.re - b.re, a.im - b.im};
}
inline ComplexLanes ComplexMultiply(const ComplexLanes& a, const ComplexLanes& b) {
  return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}
inline ComplexLanes ComplexDivide(const ComplexLanes& a, const ComplexLanes& b) {
  DoubleLanes d = b.re * b.re + b.im * b.im;
  d = d < kDivisionFloor ? DoubleLanes{} + kDivisionFloor : d;
  return {(a.re * b.re + a.im * b.im) / d, (a.im * b.re - a.re * b.im) / d};
}
// 1 + z.
inline ComplexLanes OnePlus(const ComplexLanes& z) {
  return {1 + z.re, z.im};
}

}  // namespace qk
