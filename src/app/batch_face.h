// SPDX-License-Identifier: MIT
// A batch without windows: serials from standard input, results to standard output.
#pragma once

#include "app/options.h"

namespace qk {

// Continues or starts the batch whose batch.txt is given in the options, in that file's folder,
// with the session stored in the folder or, if there is none, the one of the last Exit. Each line
// of standard input is a serial (as a barcode reader types it) and is measured at once; an empty
// line uses the next serial of the pattern. ":again" measures the last device again, ":again
// SERIAL" a known one, ":end" ends. With --demo, "bench ..." changes what is connected. Returns 0
// if every device passed, 1 if one did not, 2 if the batch could not run.
int RunBatch(const Options& options, int& argc, char** argv);

}  // namespace qk
