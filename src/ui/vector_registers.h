// SPDX-License-Identifier: MIT
// The processor's vector registers after drawing.
#pragma once

namespace qk {

// The toolkit's fills (AVX2 code) return with the upper halves of the vector registers in use.
// Until somebody clears them, each scalar instruction that follows waits for them: the program's
// arithmetic would run three to nine times slower from the first picture on. Called where drawing
// ends and where the message loop returns. Does nothing on other processors.
void ClearVectorRegisters();

}  // namespace qk
