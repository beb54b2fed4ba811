// SPDX-License-Identifier: MIT
// Assigns devices to COM numbers.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace qk {

struct SerialDevice {
  std::string Location;  // "/dev/ttyUSB0"
  bool Usb = false;      // a USB adaptor, recognised by its vendor number
};

// USB adaptors first, then the others; each group by name, with numbers in a name compared by value
// (ttyUSB2 before ttyUSB10).
std::vector<SerialDevice> OrderSerialDevices(std::vector<SerialDevice> devices);

// The devices that the system currently lists, in that order.
std::vector<SerialDevice> ListSerialDevices();

// The device of COM number com: the one configured for it, otherwise number com of the list; empty
// if there is none.
std::string DeviceOfCom(int com, const std::map<int, std::string>& given,
                        const std::vector<SerialDevice>& listed);

// The location of a device that the user specified: a plain name is in /dev, a path with a folder
// is relative to the working folder, an absolute path is unchanged.
std::string LocationOfDevice(const std::string& device);

// The COM numbers of one run of the program. Listing the devices takes the system some time, so it
// is done once per scan; a number that is not above the previous one starts a new scan.
class ComNumbers {
 public:
  using Lister = std::function<std::vector<SerialDevice>()>;

  explicit ComNumbers(std::map<int, std::string> given, Lister list = ListSerialDevices)
      : given_(std::move(given)), list_(std::move(list)) {}

  // The device of the number; empty if there is none.
  std::string DeviceOf(int com);
  // No device is configured or listed, so no number has one.
  bool None() const { return given_.empty() && listed_.empty(); }

 private:
  std::map<int, std::string> given_;
  Lister list_;
  std::vector<SerialDevice> listed_;
  bool listedInThisScan_ = false;
  int last_ = 0;
};

}  // namespace qk
