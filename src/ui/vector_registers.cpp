// SPDX-License-Identifier: MIT
#include "ui/vector_registers.h"

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

namespace qk {

#if defined(__x86_64__) || defined(__i386__)

namespace {
__attribute__((target("avx"))) void Clear() {
  _mm256_zeroupper();
}
}  // namespace

void ClearVectorRegisters() {
  static const bool hasAvx = __builtin_cpu_supports("avx") != 0;
  if (hasAvx) Clear();
}

#else

void ClearVectorRegisters() {}

#endif

}  // namespace qk
