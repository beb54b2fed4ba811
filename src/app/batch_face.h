// SPDX-License-Identifier: MIT
// A batch without a window: serials from standard input, results to standard output.
#pragma once

#include "app/options.h"

namespace qk {

// Goes on with, or begins, the batch whose batch.txt the options name, in that file's folder, with
// the session that the folder keeps, or else the one of the last Exit. Each line of standard
// input is a serial (what a barcode reader types) that is measured at once; an empty line takes the
// next one of the pattern. ":again" measures the last piece once more, ":again SERIAL" a known one,
// ":end" ends. With --demo, "bench ..." changes what is connected. Gives 0 when every piece passed,
// 1 when one did not, 2 when the batch could not run.
int RunBatch(const Options& options, int& argc, char** argv);

}  // namespace qk
