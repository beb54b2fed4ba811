// SPDX-License-Identifier: MIT
// qk47-vna: the control program of the QK47-20-09, with windows or run from lines of text.
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "app/batch_face.h"
#include "app/console_face.h"
#include "app/desktop_face.h"
#include "app/options.h"
#include "app/process.h"
#include "app/scpi_face.h"

int main(int argc, char** argv) {
  qk::FillStandardDescriptors();
  qk::IgnoreFileSizeSignal();
  const qk::Options options = qk::ParseOptions({argv + 1, argv + argc});
  if (!options.Error.empty()) {
    std::fprintf(stderr, "qk47-vna: %s\nTry qk47-vna --help.\n", options.Error.c_str());
    return 2;
  }
  if (std::error_code ignored;
      !options.File.empty() && !std::filesystem::exists(options.File, ignored)) {
    std::fprintf(stderr, "qk47-vna: there is no file \"%s\"\nTry qk47-vna --help.\n",
                 options.File.c_str());
    return 2;
  }
  if (options.Help) {
    std::fputs(qk::UsageText(), stdout);
    return 0;
  }
  if (options.Version) {
    std::fputs(qk::VersionText().c_str(), stdout);
    return 0;
  }
  // The toolkit would parse arguments too; all of these belong to the program.
  int taken = 1;
  if (options.ScpiStandard) return qk::RunScpi(options, taken, argv);
  if (!options.Batch.empty()) return qk::RunBatch(options, taken, argv);
  return options.Console ? qk::RunConsole(options, taken, argv)
                         : qk::RunDesktop(options, taken, argv);
}
