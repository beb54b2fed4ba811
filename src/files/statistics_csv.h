// SPDX-License-Identifier: MIT
// Mean and spread of repeated sweeps as CSV, in the form of csv.h:
//
//     # Program: qk47-vna 0.2.0
//     # ...
//     # Statistics: 19 of 20 sweeps, left out 7
//     freq_Hz,S11_mean_re,S11_mean_im,S11_s,...
//     3000000,0.0125,-0.25,0.00013
//
// s is the standard deviation of the complex value of one sweep.
#pragma once

#include <string>
#include <vector>

#include "files/provenance.h"
#include "quality/sweep_run.h"

namespace qk {

std::string StatisticsCsv(const SweepRun& run, std::vector<Fact> provenance);

}  // namespace qk
