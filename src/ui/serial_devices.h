// Which device stands for which COM number.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace qk {

struct SerialDevice {
  std::string Location;  // "/dev/ttyUSB0", "COM3"
  bool Usb = false;      // an adaptor on the bus, by its vendor number
};

// USB adaptors first, then the others; each by name, numbers in a name by value (ttyUSB2 before
// ttyUSB10).
std::vector<SerialDevice> OrderSerialDevices(std::vector<SerialDevice> devices);

// The devices that the system lists now, in that order.
std::vector<SerialDevice> ListSerialDevices();

// The device of COM number com: the one given for it, else the com-th of the list; empty when
// there is none.
std::string DeviceOfCom(int com, const std::map<int, std::string>& given,
                        const std::vector<SerialDevice>& listed);

}  // namespace qk
