// SPDX-License-Identifier: MIT
// qk47-sim: the simulated instrument as a separate program on a pseudo-terminal.
#include <sys/signalfd.h>

#include <csignal>
#include <cstdio>

#include "sim/pty_server.h"
#include "sim/server_options.h"

namespace {

int Refuse(const std::string& why) {
  std::fprintf(stderr, "qk47-sim: %s\nTry qk47-sim --help.\n", why.c_str());
  return 2;
}

// A descriptor that becomes readable after SIGINT or SIGTERM.
int StopSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  sigprocmask(SIG_BLOCK, &signals, nullptr);
  return signalfd(-1, &signals, SFD_CLOEXEC);
}

}  // namespace

int main(int argc, char** argv) {
  using namespace qk::sim;
  const ServerOptions options = ParseServerOptions({argv + 1, argv + argc});
  if (options.Help) {
    std::fputs(ServerUsage(), stdout);
    return 0;
  }
  if (!options.Error.empty()) return Refuse(options.Error);

  Instrument instrument(options.Box);
  instrument.SetPace(options.LinePace);
  for (const std::string& line : options.BenchLines) {
    const BenchReply reply = instrument.Bench(line);
    if (!reply.Ok) return Refuse("--device \"" + line + "\": " + reply.Text);
    if (!reply.Text.empty()) std::printf("%s\n", reply.Text.c_str());
  }
  const Descriptor stop(StopSignals());
  PtyServer server(instrument, options.Link, options.Control);
  std::string error = server.Open();
  if (!error.empty()) return Refuse(error);
  std::printf("ready %s\n", options.Link.c_str());
  std::fflush(stdout);
  error = server.Serve(stop.Get());
  if (error.empty()) return 0;
  std::fprintf(stderr, "qk47-sim: %s\n", error.c_str());
  return 1;
}
