// SPDX-License-Identifier: MIT
// The commands as tables of rows, one file per subsystem. A new command is a new row.
#pragma once

#include <span>

#include "scpi/tree.h"

namespace qk::scpi {

std::span<const Row> CommonRows();
std::span<const Row> SystemRows();
std::span<const Row> StatusRows();
std::span<const Row> SenseRows();
std::span<const Row> TriggerRows();
std::span<const Row> CorrectionRows();
std::span<const Row> CalculateRows();
std::span<const Row> MarkerRows();
std::span<const Row> TraceRows();
std::span<const Row> DisplayRows();
std::span<const Row> FileRows();

// The tree of all commands.
const Tree& CommandTree();

}  // namespace qk::scpi
