// SPDX-License-Identifier: MIT
#include "scpi/commands.h"

namespace qk::scpi {

const Tree& CommandTree() {
  static const Tree tree({CommonRows(), SystemRows(), StatusRows(), SenseRows(), TriggerRows(),
                          CorrectionRows(), CalculateRows(), MarkerRows(), TraceRows(),
                          DisplayRows(), FileRows()});
  return tree;
}

}  // namespace qk::scpi
