// SPDX-License-Identifier: MIT
#include "core/program_version.h"

namespace qk {

std::string_view ProgramVersion() {
  return QK_VERSION;
}

}  // namespace qk
