// SPDX-License-Identifier: MIT
// A file's table carried onto the points of a sweep, by natural cubic spline, real and imaginary
// part on their own.
#pragma once

#include <span>

#include "core/session.h"
#include "files/touchstone.h"

namespace qk {

// The file has the parameter: S11 always, S21 with two or more pairs, S12 and S22 only with four.
bool HasParameter(FileKind kind, Parameter parameter);

// Two rows of one frequency met where a value was asked for; the value is then the later row's.
enum class Interval { Good, Empty };

// The parameter at the points of the grid, the first at re[0] and im[0]. Below the file's first row
// the knot at 0 Hz holds the spline, which a first row at 0 Hz replaces; above the last row the end
// piece goes on. The file's frequencies need not be the grid's.
Interval ToGrid(const TouchstoneTable& table, Parameter parameter, const PlanGrid& grid,
                std::span<double> re, std::span<double> im);

// The parameters of the file into the network. Entries of a parameter that is not in the file keep
// what stands there.
Interval ToNetwork(const TouchstoneTable& table, const PlanGrid& grid, Network& network);

// The file into the stored trace of each displayed channel whose parameter it has; the others keep
// their traces. Then memory is in use.
Interval ToMemory(const TouchstoneTable& table, Session& session);

}  // namespace qk
