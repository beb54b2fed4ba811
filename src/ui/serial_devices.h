// SPDX-License-Identifier: MIT
// Which device stands for which COM number.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace qk {

struct SerialDevice {
  std::string Location;  // "/dev/ttyUSB0"
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

// Where the system has a device that was given by hand: a name alone is one of /dev, a path with a
// folder in it counts from the working folder, and an absolute one is itself.
std::string LocationOfDevice(const std::string& device);

// The COM numbers of one run of the program. The system is asked for its devices, which takes it a
// while, once a scan; a number that is not above the last one begins another.
class ComNumbers {
 public:
  using Lister = std::function<std::vector<SerialDevice>()>;

  explicit ComNumbers(std::map<int, std::string> given, Lister list = ListSerialDevices)
      : given_(std::move(given)), list_(std::move(list)) {}

  // The device of the number; empty when there is none.
  std::string DeviceOf(int com);
  // Neither given nor listed: no number has a device.
  bool None() const { return given_.empty() && listed_.empty(); }

 private:
  std::map<int, std::string> given_;
  Lister list_;
  std::vector<SerialDevice> listed_;
  bool listedInThisScan_ = false;
  int last_ = 0;
};

}  // namespace qk
