#include "app/surroundings.h"

#include "sim/simulated_port.h"
#include "ui/qt_serial_port.h"
#include "ui/serial_devices.h"

namespace qk {

Surroundings::Surroundings(const Options& options) {
  if (options.Demo) {
    bench_ = std::make_unique<sim::Instrument>();
    port_ = std::make_unique<sim::SimulatedPort>(*bench_, sim::RealClock(), options.DemoPace, 1);
    return;
  }
  port_ = std::make_unique<QtSerialPort>(
      [given = options.Com](int com) { return DeviceOfCom(com, given, ListSerialDevices()); });
}

Surroundings::~Surroundings() = default;

std::string FolderOf(const Options& options) {
  return options.Folder.empty() ? DefaultFolder() : options.Folder;
}

}  // namespace qk
