// SPDX-License-Identifier: MIT
#include "app/version.h"

#include <QtGlobal>

#include "core/program_version.h"

namespace qk {

std::string VersionDetails() {
  return std::string(ProgramVersion()) + " (commit " + BuildCommit() + ", Qt " + qVersion() + ")";
}

}  // namespace qk
