// SPDX-License-Identifier: MIT
// Interpolates a file's table to the points of a sweep, by natural cubic spline, separately for
// real and imaginary part.
#pragma once

#include <span>

#include "core/session.h"
#include "files/touchstone.h"

namespace qk {

// True if the file contains the parameter: S11 always, S21 with two or more pairs, S12 and S22 only
// with four.
bool HasParameter(FileKind kind, Parameter parameter);

// Empty: two rows have the same frequency where a value was needed; the value is then the later
// row's.
enum class Interval { Good, Empty };

// Interpolates the parameter to the points of the grid, the first at re[0] and im[0]. Below the
// file's first row the spline uses the knot at 0 Hz, which a first row at 0 Hz replaces; above the
// last row the end piece is extrapolated. The file's frequencies need not match the grid's.
Interval ToGrid(const TouchstoneTable& table, Parameter parameter, const PlanGrid& grid,
                std::span<double> re, std::span<double> im);

// Copies the parameters of the file to the network. Parameters that are not in the file are
// unchanged.
Interval ToNetwork(const TouchstoneTable& table, const PlanGrid& grid, Network& network);

// Copies the file to the stored trace of each displayed channel whose parameter it contains; the
// other channels keep their traces. Memory is then in use.
Interval ToMemory(const TouchstoneTable& table, Session& session);

}  // namespace qk
