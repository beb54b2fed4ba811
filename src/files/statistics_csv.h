// SPDX-License-Identifier: MIT
// Mean and spread of repeated sweeps as CSV, in the format of csv.h:
//
//     # Program: qk47-vna 0.2.0
//     # ...
//     # Statistics: 19 of 20 sweeps, left out 7
//     # Outliers: 12, counted
//     freq_Hz,S11_mean_re,S11_mean_im,S11_s,S11_s_mean,S11_var_re,S11_var_im,S11_cov,...
//     3000000,0.0125,-0.25,0.00013,0.00003,8.2e-9,8.7e-9,1e-10
//
// s is the standard deviation of the complex value of one sweep, s_mean = s / sqrt(N) that of the
// mean of the N counted sweeps; var_re, var_im and cov are variances and covariance of real and
// imaginary part of one sweep (s^2 = var_re + var_im). Outliers are listed if they are not
// excluded.
#pragma once

#include <string>
#include <vector>

#include "files/provenance.h"
#include "quality/sweep_run.h"

namespace qk {

std::string StatisticsCsv(const SweepRun& run, std::vector<Fact> provenance);

}  // namespace qk
