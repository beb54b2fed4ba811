// SPDX-License-Identifier: MIT
// Clears the processor's vector registers after drawing.
#pragma once

namespace qk {

// The toolkit's fill functions (AVX2 code) return with the upper halves of the vector registers in
// use. Until these are cleared, each scalar instruction that follows waits for them: the program's
// arithmetic would run three to nine times slower after the first picture. Called at the end of
// drawing and when the message loop returns. No effect on other processors.
void ClearVectorRegisters();

}  // namespace qk
