// SPDX-License-Identifier: MIT
#include "app/surroundings.h"

#include <cstdio>
#include <utility>

#include <poll.h>

#include "sim/simulated_port.h"
#include "ui/qt_serial_port.h"
#include "ui/serial_devices.h"

namespace qk {

namespace {
void WriteToStandardError(const std::string& why) {
  std::fprintf(stderr, "qk47-vna: %s\n", why.c_str());
}
}  // namespace

Surroundings::Surroundings(const Options& options) : reasons_(WriteToStandardError) {
  if (options.Demo) {
    bench_ = std::make_unique<sim::Instrument>();
    port_ = std::make_unique<sim::SimulatedPort>(*bench_, sim::RealClock(), options.DemoPace, 1);
    return;
  }
  auto port =
      std::make_unique<QtSerialPort>([this, numbers = ComNumbers(options.Com)](int com) mutable {
        std::string device = numbers.DeviceOf(com);
        if (com == 1 && numbers.None())
          reasons_.Add("no serial port is listed by the system; --com 1=DEVICE names one");
        return device;
      });
  port->OnRefused = [this](const std::string& why) { reasons_.Add(why); };
  port_ = std::move(port);
}

Surroundings::~Surroundings() = default;

void WriteLine(const std::string& line) {
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fputc('\n', stdout);
  std::fflush(stdout);
}

std::string FolderOf(const Options& options) {
  return options.Folder.empty() ? DefaultFolder() : options.Folder;
}

ConsoleClock WakingConsoleClock(int wake) {
  ConsoleClock clock = SteadyConsoleClock();
  clock.Sleep = [wake](std::int64_t ms) {
    pollfd entry{wake, POLLIN, 0};
    poll(&entry, 1, static_cast<int>(ms));
  };
  return clock;
}

}  // namespace qk
